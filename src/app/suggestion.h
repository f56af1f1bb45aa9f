#pragma once

#include <span>
#include <string>
#include <string_view>

namespace orvo::app {

/// "; did you mean ...?" with the known word that was probably meant: one that begins like it, or is it but for a slip
/// or two, whatever their case and leading hyphens. Empty when there is none.
std::string Suggestion(std::string_view word, std::span<const std::string_view> known);

}  // namespace orvo::app
