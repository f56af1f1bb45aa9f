#include "capture/context/snapshot_format.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>

#include "capture/context/snapshot_bytes.h"
#include "capture/context/snapshot_wireless.h"
#include "platform/error.h"

namespace orvo {
namespace {

constexpr std::string_view kMagic = "ORVOSNAP";
constexpr std::uint32_t kVersion = 1;
// Magic, version, checksum of everything behind it, length of the body.
constexpr std::size_t kHeaderLength = 8 + 4 + 4 + 8;
constexpr std::size_t kChecksumStart = 16;
constexpr std::uint64_t kLongestBody = std::uint64_t{1} << 30;
constexpr std::size_t kStep = std::size_t{64} * 1024;

constexpr std::uint32_t Tag(const char (&name)[5]) {
  std::uint32_t tag = 0;
  for (int i = 3; i >= 0; --i) tag = (tag << 8) | static_cast<unsigned char>(name[i]);
  return tag;
}
constexpr std::uint32_t kCaptureTag = Tag("CAPT");
constexpr std::uint32_t kStatisticsTag = Tag("STAT");
constexpr std::uint32_t kSummariesTag = Tag("SUMM");
constexpr std::uint32_t kProtocolsTag = Tag("PROT");
constexpr std::uint32_t kWirelessTag = Tag("WLAN");  // for a wireless medium only

constexpr std::size_t kStatisticLength = 16 + 4 + 4;  // without its name
constexpr std::size_t kGroupLength = 16 + 4;
constexpr std::size_t kValueLength = 4 + 8 + 8;
constexpr std::size_t kProtocolLength = 4 + 8 + 8;

/// CRC-32C (RFC 3720 appendix B.4).
std::uint32_t Checksum(std::string_view bytes) {
  static constexpr auto kTable = [] {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < table.size(); ++i) {
      std::uint32_t value = i;
      for (int bit = 0; bit < 8; ++bit) value = (value >> 1) ^ ((value & 1) != 0 ? 0x82F63B78U : 0U);
      table[i] = value;
    }
    return table;
  }();
  std::uint32_t crc = 0xFFFFFFFF;
  for (char byte : bytes) crc = (crc >> 8) ^ kTable[(crc ^ static_cast<unsigned char>(byte)) & 0xFF];
  return ~crc;
}

std::string Serialise(const Epoch& epoch) {
  SnapshotWriter out;
  out.Raw(kMagic);
  out.Number(kVersion);
  out.Number(std::uint32_t{0});
  out.Number(std::uint64_t{0});
  out.Section(kCaptureTag, [&] {
    out.Number(epoch.medium_type);
    out.Number(epoch.medium_subtype);
    for (std::uint64_t value : {epoch.packets, epoch.bytes, epoch.start, epoch.duration}) out.Number(value);
  });
  out.Section(kStatisticsTag, [&] {
    out.Number(static_cast<std::uint32_t>(epoch.catalogue->groups.size()));
    for (const auto& group : epoch.catalogue->groups) {
      out.Identifier(group.identifier);
      out.Text(group.name);
    }
    out.Number(static_cast<std::uint32_t>(epoch.catalogue->statistics.size()));
    for (const auto& statistic : epoch.catalogue->statistics) {
      out.Identifier(statistic.identifier);
      out.Number(statistic.group);
      out.Text(statistic.name);
    }
  });
  out.Section(kSummariesTag, [&] {
    out.Number(static_cast<std::uint32_t>(epoch.summaries.size()));
    for (const auto& summary : epoch.summaries) {
      out.Text(summary->name);
      for (const SummaryValue& value : summary->values) {
        out.Number(value.kind);
        out.Number(value.first);
        out.Number(value.second);
      }
    }
  });
  out.Section(kProtocolsTag, [&] {
    out.Number(static_cast<std::uint32_t>(epoch.protocols.size()));
    for (std::size_t i = 0; i < epoch.protocols.size(); ++i) {
      out.Number(epoch.protocols[i].key);
      out.Number(epoch.protocols[i].packets);
      out.Number(epoch.protocols[i].bytes);
    }
  });
  if (epoch.wireless) out.Section(kWirelessTag, [&] { WriteWireless(*epoch.wireless, out); });
  out.PutAt(kChecksumStart, std::uint64_t{out.bytes().size() - kHeaderLength});
  out.PutAt(kMagic.size() + 4, Checksum(std::string_view(out.bytes()).substr(kChecksumStart)));
  return out.bytes();
}

void ReadCapture(SnapshotReader in, Epoch* epoch) {
  epoch->medium_type = in.Number<std::uint32_t>();
  epoch->medium_subtype = in.Number<std::uint32_t>();
  for (auto* value : {&epoch->packets, &epoch->bytes, &epoch->start, &epoch->duration}) {
    *value = in.Number<std::uint64_t>();
  }
  if (!in.AtEnd()) Raise(E_FAIL);
}

std::shared_ptr<const SummaryCatalogue> ReadCatalogue(SnapshotReader in) {
  auto catalogue = std::make_shared<SummaryCatalogue>();
  catalogue->groups.resize(in.Count(kGroupLength));
  for (auto& group : catalogue->groups) {
    group.identifier = in.Identifier();
    group.name = in.Text();
  }
  catalogue->statistics.resize(in.Count(kStatisticLength));
  for (auto& statistic : catalogue->statistics) {
    statistic.identifier = in.Identifier();
    statistic.group = in.Number<std::uint32_t>();
    statistic.name = in.Text();
    if (statistic.group >= catalogue->groups.size()) Raise(E_FAIL);
  }
  if (!in.AtEnd() || !catalogue->Index()) Raise(E_FAIL);
  return catalogue;
}

void ReadSummaries(SnapshotReader in, Epoch* epoch) {
  std::size_t values = epoch->catalogue->statistics.size();
  std::uint32_t count = in.Count(4 + values * kValueLength);
  if (count == 0) Raise(E_FAIL);
  for (std::uint32_t i = 0; i < count; ++i) {
    auto record = std::make_shared<SummaryRecord>();
    record->name = in.Text();
    record->values.resize(values);
    for (SummaryValue& value : record->values) {
      value.kind = in.Number<std::uint32_t>();
      value.first = in.Number<std::uint64_t>();
      value.second = in.Number<std::uint64_t>();
      if (value.kind > kSummaryReal) Raise(E_FAIL);
    }
    epoch->summaries.push_back(std::move(record));
  }
  if (!in.AtEnd()) Raise(E_FAIL);
}

FrozenTable<ProtocolEntry> ReadProtocols(SnapshotReader in) {
  PagedVector<ProtocolEntry> protocols;
  std::uint32_t count = in.Count(kProtocolLength);
  for (std::uint32_t i = 0; i < count; ++i) {
    ProtocolEntry entry;
    entry.key = in.Number<std::uint32_t>();
    entry.packets = in.Number<std::uint64_t>();
    entry.bytes = in.Number<std::uint64_t>();
    protocols.Append(entry);
  }
  if (!in.AtEnd()) Raise(E_FAIL);
  return protocols.Freeze();
}

/// The sections of a snapshot, at most once each and in whatever order; it must have the first four. Those with other
/// tags are passed over.
struct Sections {
  static constexpr std::size_t kNeeded = 4;
  std::array<std::uint32_t, 5> tags{kCaptureTag, kStatisticsTag, kSummariesTag, kProtocolsTag, kWirelessTag};
  std::array<std::string_view, 5> bodies;
  bool has_wireless = false;

  explicit Sections(SnapshotReader in) {
    std::array<bool, 5> seen{};
    while (!in.AtEnd()) {
      auto tag = in.Number<std::uint32_t>();
      std::string_view body = in.Take(in.Number<std::uint32_t>());
      auto place = static_cast<std::size_t>(std::find(tags.begin(), tags.end(), tag) - tags.begin());
      if (place == tags.size()) continue;
      if (seen[place]) Raise(E_FAIL);
      seen[place] = true;
      bodies[place] = body;
    }
    if (std::find(seen.begin(), seen.begin() + kNeeded, false) != seen.begin() + kNeeded) Raise(E_FAIL);
    has_wireless = seen[kNeeded];
  }
};

/// Appends exactly `count` bytes of the stream, in steps, so that a length that lies allocates nothing.
void ReadExactly(IStream* stream, std::uint64_t count, std::string* bytes) {
  while (count > 0) {
    auto step = static_cast<std::uint32_t>(std::min<std::uint64_t>(count, kStep));
    std::size_t at = bytes->size();
    bytes->resize(at + step);
    std::uint32_t read = 0;
    Check(stream->Read(bytes->data() + at, step, &read));
    if (read == 0 || read > step) Raise(E_FAIL);
    bytes->resize(at + read);
    count -= read;
  }
}

}  // namespace

void WriteSnapshot(const Epoch& epoch, IStream* stream) {
  std::string bytes = Serialise(epoch);
  for (std::size_t at = 0; at < bytes.size();) {
    auto step = static_cast<std::uint32_t>(std::min(bytes.size() - at, kStep));
    std::uint32_t written = 0;
    Check(stream->Write(bytes.data() + at, step, &written));
    if (written == 0 || written > step) Raise(STG_E_MEDIUMFULL);
    at += written;
  }
}

EpochPtr ReadSnapshot(IStream* stream) {
  std::string bytes;
  ReadExactly(stream, kHeaderLength, &bytes);
  SnapshotReader header(bytes);
  if (header.Take(kMagic.size()) != kMagic) Raise(E_FAIL);
  if (header.Number<std::uint32_t>() != kVersion) Raise(E_FAIL);
  auto checksum = header.Number<std::uint32_t>();
  auto length = header.Number<std::uint64_t>();
  if (length > kLongestBody) Raise(E_FAIL);
  ReadExactly(stream, length, &bytes);
  std::string_view all = bytes;
  if (Checksum(all.substr(kChecksumStart)) != checksum) Raise(E_FAIL);

  Sections sections{SnapshotReader(all.substr(kHeaderLength))};
  auto epoch = std::make_shared<Epoch>();
  ReadCapture(SnapshotReader(sections.bodies[0]), epoch.get());
  epoch->catalogue = ReadCatalogue(SnapshotReader(sections.bodies[1]));
  ReadSummaries(SnapshotReader(sections.bodies[2]), epoch.get());
  epoch->protocols = ReadProtocols(SnapshotReader(sections.bodies[3]));
  if (sections.has_wireless) epoch->wireless = ReadWireless(SnapshotReader(sections.bodies[4]));
  return epoch;
}

}  // namespace orvo
