#include "capture/tables/address_table.h"

#include "capture/decode/packet_facts.h"

namespace orvo {

std::uint32_t AddressTable::Intern(const AddressRecord& record) {
  if (record.valid == 0) return kNoAddress;
  std::uint64_t hash = hash_(record);
  std::uint32_t found = index_.Find(hash, [&](std::uint32_t row) { return records_[row] == record; });
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
  SetAddress(&record, kAddressProtocol, bytes, sizeof bytes);
  return record;
}

}  // namespace orvo
