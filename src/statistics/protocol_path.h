#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "engine/protocols.h"

namespace orvo {

/// The names of a protocol and its ancestors, outermost first, with `separator` between them; the engine's "Switch"
/// above others is left out. Nothing when the engine fails to name one. For protocols below others: one at the top of
/// the tree has no path.
std::optional<std::u16string> ProtocolChain(IProtocolNameService& names, std::uint16_t number,
                                            std::u16string_view separator);

/// The same, and nothing when names are missing so that three separators stand in a row.
std::optional<std::u16string> ProtocolPath(IProtocolNameService& names, std::uint16_t number,
                                           std::u16string_view separator);

/// True when the path leaves out names so that three separators stand in a row.
bool HasGap(std::u16string_view path, std::u16string_view separator);

}  // namespace orvo
