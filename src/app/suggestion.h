#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvo::app {

/// "; did you mean ...?" with the known word that was probably meant: one that begins like it, or is it but for a slip
/// or two, whatever their case and leading hyphens. Empty when there is none.
std::string Suggestion(std::string_view word, const std::vector<std::string>& known);

}  // namespace orvo::app
