#pragma once

#include <cstdint>

namespace orvo {

/// What the analysis can say of an application.
enum class SpokenProtocol : std::uint8_t {
  kOther,
  kDns,
  kHttp,
  kTls,
  kAskedOverUdp,  ///< each query has one answer, also over UDP
};

/// For an application by its identifier in the registry; 0 is none.
SpokenProtocol SpokenBy(std::uint16_t application);

}  // namespace orvo
