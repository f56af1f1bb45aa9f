#pragma once

#include <string_view>

#include "platform/status.h"

namespace orvo {

/// Writes the registry entries of the module and then of each of its classes, which name the library at `module_path`.
/// Stops at the first failure and returns its status; the entries written before it stay.
Status RegisterModule(std::u16string_view module_path);

/// Removes the entries of each class and then of the module. The keys that it shares with others, and keys below which
/// others have written, stay. Stops at the first failure like RegisterModule.
Status UnregisterModule();

}  // namespace orvo
