#include "capture/decode/wireless_elements.h"

#include <algorithm>
#include <iterator>

#include "capture/decode/little_endian.h"

namespace orvo {
namespace {

/// Numbers of elements (IEEE 802.11-2020 table 9-92; 133 is a maker's own).
enum Element : std::uint8_t {
  kName = 0,
  kRates = 1,
  kDsssParameters = 3,
  kSecurity = 48,
  kMoreRates = 50,
  kHtOperation = 61,
  kAironet = 133,
  kVendor = 221,
};

constexpr std::size_t kSuiteLength = 4;
constexpr std::uint32_t kRsnSuites = 0x000FAC00;  // clause 9.4.2.24.2
constexpr std::uint32_t kWpaSuites = 0x0050F200;  // WPA, version 1
constexpr std::uint32_t kCkipSuites = 0x00409600;

/// What a list of cipher suites comes to: the strongest, as stations choose.
enum Cipher : std::uint8_t { kNoCipher, kUseGroup, kWep, kCkip, kTkip, kStrong };

Cipher CipherOf(std::uint32_t suite) {
  constexpr std::uint32_t kCkipTypes = 2;
  const std::uint32_t organisation = suite & 0xFFFFFF00U;
  const std::uint32_t type = suite & 0xFFU;
  if (organisation == kCkipSuites) return type < kCkipTypes ? kCkip : kNoCipher;
  if (organisation != kRsnSuites && organisation != kWpaSuites) return kNoCipher;
  switch (type) {
    case 0: return kUseGroup;
    case 1:  // 40 bits
    case 5: return kWep;
    case 2: return kTkip;
    default: return kStrong;
  }
}

std::uint8_t EncryptionOf(Cipher cipher) {
  switch (cipher) {
    case kWep: return kEncryptionWep;
    case kCkip: return kEncryptionCkip;
    case kTkip: return kEncryptionTkip;
    default: return kEncryptionNone;
  }
}

/// Whether an AKM suite stands for authentication by EAP (table 9-151).
bool IsEap(std::uint32_t suite) {
  constexpr std::uint32_t kTypes[] = {1, 3, 5, 11, 12, 13, 14, 15, 16, 17};
  const std::uint32_t organisation = suite & 0xFFFFFF00U;
  const std::uint32_t type = suite & 0xFFU;
  if (organisation == kCkipSuites) return type == 0;  // its own roaming with EAP
  if (organisation != kRsnSuites && organisation != kWpaSuites) return false;
  return std::ranges::find(kTypes, type) != std::end(kTypes);
}

/// Takes a list of suites, which a number of two bytes precedes, off the front; empty when it is not there.
Bytes TakeSuites(Bytes* rest) {
  if (rest->size() < 2) return *rest = {};
  const std::size_t length = ReadLe16(*rest, 0) * kSuiteLength;
  *rest = rest->subspan(2);
  Bytes suites = Within(*rest, length / kSuiteLength <= rest->size() / kSuiteLength ? length : 0);
  *rest = Behind(*rest, length);
  return suites;
}

/// The common part of RSN (clause 9.4.2.24) and WPA elements: version, group cipher, pairwise ciphers, key management.
/// Everything behind the version may be left out.
void ReadSuites(Bytes body, NetworkFacts* network) {
  if (body.size() < 2) return;
  body = body.subspan(2);
  Cipher group = kStrong;
  if (body.size() >= kSuiteLength) group = CipherOf(Read32(body, 0));
  body = Behind(body, kSuiteLength);
  Cipher pairwise = kNoCipher;
  for (Bytes suites = TakeSuites(&body); suites.size() >= kSuiteLength; suites = suites.subspan(kSuiteLength)) {
    pairwise = std::max(pairwise, CipherOf(Read32(suites, 0)));
  }
  network->has_security = true;
  network->encryption = EncryptionOf(pairwise <= kUseGroup ? group : pairwise);
  for (Bytes suites = TakeSuites(&body); suites.size() >= kSuiteLength; suites = suites.subspan(kSuiteLength)) {
    if (IsEap(Read32(suites, 0))) network->authentication = kAuthenticationEap;
  }
}

/// An RSN element counts more than the WPA element beside it.
void ReadVendor(Bytes body, NetworkFacts* network) {
  constexpr std::uint32_t kWpaElement = 0x0050F201;
  if (body.size() < kSuiteLength || Read32(body, 0) != kWpaElement || network->has_security) return;
  ReadSuites(body.subspan(kSuiteLength), network);
}

void ReadName(Bytes body, NetworkFacts* network) {
  if (body.size() > network->name.size()) return;
  network->has_name = true;
  network->name_length = static_cast<std::uint8_t>(body.size());
  std::ranges::copy(body, network->name.begin());
}

/// Rates in 500 kbit/s, basic ones with the highest bit set (clause 9.4.2.3). Numbers above 72 Mbit/s say what a member
/// must be able to do.
void ReadRates(Bytes body, NetworkFacts* network) {
  constexpr std::uint8_t kPlain[] = {2, 4, 11, 22};
  constexpr std::uint8_t kHighest = 108;
  for (std::uint8_t byte : body) {
    const std::uint8_t rate = byte & 0x7FU;
    const bool plain = std::ranges::find(kPlain, rate) != std::end(kPlain);
    network->plain_rates |= plain;
    network->ofdm_rates |= !plain && rate <= kHighest;
  }
}

/// Networks that protect their frames by WEP with a key for each packet say so in two bits of this element.
bool IsCkip(Bytes body) {
  constexpr std::size_t kAt = 8;
  constexpr std::uint8_t kBits = 0x18;
  return body.size() > kAt && (body[kAt] & kBits) != 0;
}

}  // namespace

bool ReadElements(Bytes elements, NetworkFacts* network) {
  bool ckip = false;
  bool whole = true;
  while (!elements.empty()) {
    whole = elements.size() >= 2 && elements[1] <= elements.size() - 2;
    if (!whole) break;
    const std::uint8_t number = elements[0];
    Bytes body = elements.subspan(2, elements[1]);
    elements = elements.subspan(2 + body.size());
    switch (number) {
      case kName: ReadName(body, network); break;
      case kRates:
      case kMoreRates: ReadRates(body, network); break;
      case kDsssParameters:
        if (!body.empty()) network->channel = body[0];
        break;
      case kHtOperation:
        if (!body.empty() && network->channel == 0) network->channel = body[0];
        break;
      case kSecurity: ReadSuites(body, network); break;
      case kAironet: ckip = IsCkip(body); break;
      case kVendor: ReadVendor(body, network); break;
      default: break;
    }
  }
  if (!network->has_security && network->privacy) network->encryption = ckip ? kEncryptionCkip : kEncryptionWep;
  return whole;
}

}  // namespace orvo
