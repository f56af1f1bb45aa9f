#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/guid.h"

namespace orvo::app {

/// A report form by its name on the command line: the output method that writes it, and what it is told.
struct Format {
  const char* name;
  Guid method;
  const char16_t* extension;
  const char16_t* separator;
};

/// The formats of a list such as "csv,tab", in its order and each once. Ends the command (wrong usage) for a name that
/// is none.
std::vector<const Format*> ParseFormats(std::string_view list);

/// "csv, tab, ...": the names that ParseFormats knows.
std::string FormatNames();

}  // namespace orvo::app
