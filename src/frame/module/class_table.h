#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "platform/unknown.h"

namespace orvo {

/// A class that the module offers. Texts are ASCII.
struct ModuleClass {
  Guid class_id;
  std::string_view prog_id;
  std::string_view version_independent_prog_id;
  std::string_view description;
  std::uint16_t script;  ///< number of its registry script, which gives the order of registration
  /// Makes an object and answers one of its interfaces.
  Status (*create)(const Guid& iid, void** out);
};

/// All classes in the order of registration. A new class is a new line of this table.
std::span<const ModuleClass> ModuleClasses();

/// Null for a class that the module does not offer.
const ModuleClass* FindModuleClass(const Guid& class_id);

}  // namespace orvo
