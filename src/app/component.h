#pragma once

#include <string>

#include "app/messages.h"
#include "platform/class_factory.h"

namespace orvo::app {

/// A path in the system's form, for messages; in its own form when it has none.
std::string SystemPath(std::u16string_view path);

/// The report library that lies beside the command (in ../lib, or ../lib/orvo once installed), as a path with
/// backslashes; empty when there is none.
std::u16string LibraryBesideCommand();

/// The folder of report templates that came with the command (../share/orvo-reports/templates), as the system's path;
/// empty when there is none.
std::string TemplatesBesideCommand();

/// Lets classes that the registry does not list come from that library. Ends the command when the library is there but
/// not to be trusted.
void UseLibraryBesideCommand();

/// Ends the command when `what`, an object of the report library, could not be created.
void RequireClass(Status status, std::string_view what);

/// Creates an object of the report library. Ends the command when that fails.
template <class T>
ComPtr<T> CreateComponent(const Guid& class_id, std::string_view what) {
  ComPtr<T> object;
  RequireClass(CreateInstance(class_id, &object), what);
  return object;
}

}  // namespace orvo::app
