#pragma once

#include <algorithm>
#include <string_view>

namespace orvo {

/// Cuts the first line, without its end, off a text in which CR LF or LF alone ends a line.
inline std::string_view TakeLine(std::string_view* text) {
  std::size_t end = text->find('\n');
  std::string_view line = text->substr(0, end);
  text->remove_prefix(end == std::string_view::npos ? text->size() : end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

/// Whether a line has no control characters but tabs.
inline bool IsPlain(std::string_view line) {
  return std::ranges::none_of(line, [](char letter) {
    auto byte = static_cast<unsigned char>(letter);
    return (byte < 0x20 && letter != '\t') || byte == 0x7F;
  });
}

}  // namespace orvo
