#pragma once

#include <array>
#include <cstdint>

#include "capture/classify/ndpi_module.h"

namespace orvo {

/// The protocols of the registry that stand for what nDPI found, as in PacketFacts::applications. `port_application` is
/// the one that the flow's ports stand for, 0 for none: it is named where it says more than nDPI does.
///
/// A name that was asked for is no application: what nDPI reads from the question of a name service is left out.
std::array<std::uint16_t, 2> ApplicationsOf(NdpiModule::Finding finding, std::uint16_t port_application);

}  // namespace orvo
