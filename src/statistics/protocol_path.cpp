#include "statistics/protocol_path.h"

#include <array>

namespace orvo {
namespace {

void RemoveAll(std::u16string* text, const std::u16string& part) {
  for (std::size_t at = text->find(part); at != text->npos; at = text->find(part, at)) text->erase(at, part.size());
}

}  // namespace

bool HasGap(std::u16string_view path, std::u16string_view separator) {
  std::u16string gap;
  for (int i = 0; i < 3; ++i) gap += separator;
  return path.find(gap) != path.npos;
}

std::optional<std::u16string> ProtocolChain(IProtocolNameService& names, std::uint16_t number,
                                            std::u16string_view separator) {
  std::array<std::uint16_t, kProtocolChainLimit> chain;
  std::uint32_t count = 0;
  if (Failed(names.GetChain(number, chain.data(), kProtocolChainLimit, &count)) || count > chain.size()) return {};
  std::u16string path;
  for (std::uint32_t at = count; at-- > 0;) {
    if (Failed(names.AppendName(chain[at], &path))) return {};
    if (at != 0) path += separator;
  }
  RemoveAll(&path, u"Switch" + std::u16string(separator));
  return path;
}

std::optional<std::u16string> ProtocolPath(IProtocolNameService& names, std::uint16_t number,
                                           std::u16string_view separator) {
  std::optional<std::u16string> path = ProtocolChain(names, number, separator);
  if (path && HasGap(*path, separator)) return {};
  return path;
}

}  // namespace orvo
