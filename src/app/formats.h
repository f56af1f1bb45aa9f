#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/guid.h"
#include "scheduler/scheduler.h"

namespace orvo::app {

/// A report form by its name on the command line: the output method that writes it, and what it is told.
struct Format {
  const char* name;
  Guid method;
  const char16_t* extension;
  const char16_t* separator;
  OutputType type;  ///< what a scheduler calls it
};

/// The formats of a list such as "csv,tab", in its order and each once. Ends the command (wrong usage) for a name that
/// is none.
std::vector<const Format*> ParseFormats(std::string_view list);

/// The format that a scheduler with this output type writes. Ends the command for one that there is not.
const Format& FormatOfType(std::int32_t type);

/// "csv, tab, ...": the names that ParseFormats knows.
std::string FormatNames();

}  // namespace orvo::app
