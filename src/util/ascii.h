#pragma once

#include <string>
#include <string_view>

namespace orvo {

/// The UTF-16 form of a text that is known to be ASCII (titles, names of elements and attributes, numbers).
inline std::u16string WidenAscii(std::string_view ascii) {
  return {ascii.begin(), ascii.end()};
}

}  // namespace orvo
