#include "statistics/graph_file_name.h"

#include <cstddef>

#include "platform/utf.h"

namespace orvo {
namespace {

/// A name of a file has at most 255 bytes in UTF-8; the number and the extension take the rest.
constexpr std::size_t kLongestName = 230;

/// Whether a character can stand in the name of a file and in the documents that lead to it.
bool IsPlain(const CodePoint& one) {
  constexpr std::u16string_view kForbidden = u"/:\\";
  return one.valid && one.value >= 0x20 && one.value != 0x7F && one.value != 0xFFFE && one.value != 0xFFFF &&
         (one.value > 0x7F || kForbidden.find(static_cast<char16_t>(one.value)) == kForbidden.npos);
}

}  // namespace

std::u16string GraphFileName(std::u16string_view graph) {
  std::u16string name;
  std::size_t bytes = 0;
  for (std::size_t at = 0; at < graph.size();) {
    const CodePoint one = NextCodePoint(graph, at);
    bytes += one.value < 0x80 ? 1 : one.value < 0x800 ? 2 : one.length == 1 ? 3 : 4;
    if (bytes > kLongestName) break;
    if (one.value == ' ') {
      name += u'_';
    } else if (IsPlain(one)) {
      name += graph.substr(at, one.length);
    } else {
      name += u'-';
    }
    at += one.length;
  }
  return name;
}

}  // namespace orvo
