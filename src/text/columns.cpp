#include "text/columns.h"

namespace orvo {

std::string HeaderLine(std::string_view separator, std::span<const std::string_view> titles, Layout layout) {
  std::string line;
  for (std::size_t i = 0; i < titles.size(); ++i) {
    if (i != 0) line += separator;
    line += titles[i];
  }
  if (layout == Layout::kTerminated) line += separator;
  line += '\n';
  return line;
}

}  // namespace orvo
