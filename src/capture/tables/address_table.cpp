#include "capture/tables/address_table.h"

#include <cstring>

#include "capture/decode/packet_facts.h"

namespace orvo {
namespace {

/// Compares in words: most look-ups end with one such comparison.
bool Same(const AddressRecord& a, const AddressRecord& b) {
  std::uint64_t x[3];
  std::uint64_t y[3];
  static_assert(sizeof x == sizeof(AddressRecord));
  std::memcpy(x, &a, sizeof x);
  std::memcpy(y, &b, sizeof y);
  return ((x[0] ^ y[0]) | (x[1] ^ y[1]) | (x[2] ^ y[2])) == 0;
}

}  // namespace

std::uint32_t AddressTable::Intern(const AddressRecord& record) {
  if (record.valid == 0) return kNoAddress;
  std::uint64_t hash = hash_(record);
  std::uint32_t found = index_.Find(hash, [&](std::uint32_t row) { return Same(records_[row], record); });
  if (found != kNoRow) return found;
  bool is_protocol = record.type == kAddressProtocol;
  if (!is_protocol && records_.size() - protocols_ >= limit_) return kNoAddress;

  auto row = static_cast<std::uint32_t>(records_.size());
  index_.Reserve();
  records_.Append(record);
  next_.Append(kNoAddress);
  index_.Add(hash, row);
  std::size_t type = record.type % kAddressTypes;
  if (first_[type] == kNoAddress) {
    first_[type] = row;
  } else {
    next_.Edit(last_[type]) = row;
  }
  last_[type] = row;
  protocols_ += is_protocol;
  return row;
}

AddressRecord ProtocolRecord(std::uint16_t number) {
  AddressRecord record;
  const std::uint8_t bytes[] = {static_cast<std::uint8_t>(number & 0xFF), static_cast<std::uint8_t>(number >> 8)};
  SetAddress<sizeof bytes>(&record, kAddressProtocol, bytes);
  return record;
}

}  // namespace orvo
