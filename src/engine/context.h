#pragma once

#include <cstdint>

#include "engine/address.h"
#include "engine/conversations.h"
#include "platform/persist.h"
#include "platform/unknown.h"

namespace orvo {

enum MediumType : std::uint32_t {
  kMediumEthernet = 0,  ///< 802.3 and everything like it; with a wireless subtype, 802.11
  kMediumTokenRing = 1,
  kMediumWan = 3,
  kMediumWanFrame = 12,
};

/// Subtype 0 is wired; the others are wireless bands.
enum MediumSubtype : std::uint32_t {
  kSubtypeWired = 0,
  kSubtype80211b = 1,
  kSubtype80211a = 2,
  kSubtype80211bg = 3,
};

constexpr bool IsWirelessSubtype(std::uint32_t subtype) {
  return subtype >= kSubtype80211b && subtype <= kSubtype80211bg;
}

/// The statistics of one capture, live or as of a snapshot. Here and in every interface that this one leads to, S_OK
/// comes with the object or record asked for; where there may be none, the operation says what it answers instead.
/// Whatever object it hands out is a frozen view of one moment, the same moment for all objects from one availability
/// query to the next; it may be read as long as it is held, while the capture goes on.
class IStatsContext : public IUnknown {
 public:
  static constexpr Guid kIid = "B4C53C38-CE57-43AD-B98E-86AE66525496"_guid;

  /// The object of a category (see categories.h). A failure, or a null object, when the capture has nothing of the
  /// kind.
  virtual Status GetCategory(const Guid& category, const Guid& iid, void** out) = 0;
  virtual Status ResetStatistics() = 0;
  virtual Status GetMediumType(std::uint32_t* type) = 0;
  virtual Status GetMediumSubtype(std::uint32_t* subtype) = 0;
  virtual Status GetAddressTable(IAddressTable** table) = 0;
  virtual Status GetConversationIndex(IConversationIndex** index) = 0;
  /// Nanoseconds since 1601-01-01 UTC.
  virtual Status GetStartTime(std::uint64_t* time) = 0;
  /// Nanoseconds.
  virtual Status GetDuration(std::uint64_t* duration) = 0;
  virtual Status GetTotalPackets(std::uint64_t* packets) = 0;
  virtual Status GetTotalBytes(std::uint64_t* bytes) = 0;
  /// S_OK when there are statistics to report; a failure when no report is to be written.
  virtual Status IsAvailable() = 0;

 protected:
  ~IStatsContext() = default;
};

/// Offered by the live context: writes the statistics as of one moment, to be loaded by a StatsSnapshot object.
class IStatsSnapshotSource : public IUnknown {
 public:
  static constexpr Guid kIid = "389A6BC2-E62A-4221-B099-D89603766A96"_guid;

  /// Fills the stream at its position and leaves the moment in `time_mark` (nanoseconds since 1601-01-01 UTC; for a
  /// capture file the time of its last packet).
  virtual Status WriteStatistics(IStream* stream, std::uint64_t* time_mark) = 0;

 protected:
  ~IStatsSnapshotSource() = default;
};

/// Offers IStatsContext and IPersistStream; empty until loaded.
inline constexpr Guid kStatsSnapshotClass = "88DABB50-DE91-4551-B1DB-928B791B6F94"_guid;

/// The interface by which a live context's site (IObjectWithSite) shows that a capture is running behind it.
class IEngineSite : public IUnknown {
 public:
  static constexpr Guid kIid = "6EEA017C-42F0-455C-8D57-C75BF5F4D6E4"_guid;

 protected:
  ~IEngineSite() = default;
};

/// Receives what a scheduled output has to tell.
class INotificationSink : public IUnknown {
 public:
  static constexpr Guid kIid = "F3072EA6-4670-4EA6-AB74-22E7B78B4E67"_guid;

  /// `severity` is 0 for a success and 3 for a failure; `text` is the sink's only during the call; the numbers in
  /// between and the last argument are 0.
  virtual Status Notify(const Guid& context, const Guid& source_class, std::uint32_t first, std::uint32_t second,
                        std::uint32_t third, std::uint32_t severity, const char16_t* text, std::uint32_t last) = 0;

 protected:
  ~INotificationSink() = default;
};

/// May be offered by a live context whose host wants to know what became of every file of a report: a section that
/// fails does not fail the report, so its status is heard of here alone.
class IReportObserver : public IUnknown {
 public:
  static constexpr Guid kIid = "DA504A3E-6AC2-45B8-939C-CFE574728089"_guid;

  /// Called once a file is closed, or could not be opened: its path, the rows written by this report, and S_OK or the
  /// status that ended the section early. The answer is ignored.
  virtual Status FileDone(const char16_t* path, std::uint64_t rows, Status status) = 0;

 protected:
  ~IReportObserver() = default;
};

}  // namespace orvo
