#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/address.h"
#include "platform/status.h"

namespace orvo {

/// What somebody thinks of a node. The numbers are those of WirelessNodeEntry::trust.
enum class Trust : std::uint8_t { kKnown = 1, kTrusted = 2 };

struct TrustedAddress {
  AddressRecord address;  ///< a physical one
  Trust trust = Trust::kKnown;
};

/// Appends what a file tells: a physical address (02:00:5e:00:00:01, or with hyphens) and "known" or "trusted" on each
/// line; "#" begins a comment. A path of the system. The status of opening and reading it; E_INVALIDARG for a line of
/// another form, which goes into `*bad_line`.
Status ReadTrustFile(const std::string& path, std::vector<TrustedAddress>* addresses, std::string* bad_line);

}  // namespace orvo
