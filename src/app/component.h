#pragma once

#include <string>

#include "app/messages.h"
#include "platform/class_factory.h"

namespace orvo::app {

/// The report library that lies beside the command (in ../lib, or ../lib/orvo once installed), as a path with
/// backslashes; empty when there is none.
std::u16string LibraryBesideCommand();

/// Lets classes that the registry does not list come from that library.
void UseLibraryBesideCommand();

/// Creates an object of the report library. Ends the command when that fails.
template <class T>
ComPtr<T> CreateComponent(const Guid& class_id, std::string_view what) {
  ComPtr<T> object;
  Require(CreateInstance(class_id, &object), what);
  return object;
}

}  // namespace orvo::app
