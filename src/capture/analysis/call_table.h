#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "capture/analysis/ip_endpoint.h"
#include "capture/analysis/sip_message.h"
#include "capture/tables/paged_vector.h"
#include "capture/tables/row_index.h"

namespace orvo {

enum class CallState : std::uint8_t {
  kCalling,     ///< asked for, nothing but "trying" answered
  kChallenged,  ///< asked for, and told to authenticate
  kRinging,
  kInCall,
  kCompleted,  ///< answered, and ended with BYE
  kCancelled,  ///< given up by the caller
  kBusy,
  kUnanswered,
  kRejected,
  kRedirected,
  kFailed,
};

struct CallTexts {
  std::string call_id;
  std::string from;
  std::string to;
};

/// One call, from the first INVITE with its Call-ID on. Times are nanoseconds since 1601-01-01 UTC, 0 for not yet.
struct Call {
  std::shared_ptr<const CallTexts> texts;
  std::uint64_t invite_time = 0;
  std::uint64_t ringing_time = 0;  ///< of the first answer that says more than "trying"
  std::uint64_t answer_time = 0;
  std::uint64_t end_time = 0;   ///< of the BYE, of the CANCEL, or of the answer that refuses
  std::uint64_t last_time = 0;  ///< of the last message
  std::uint16_t status = 0;     ///< of the last answer to an INVITE
  CallState state = CallState::kCalling;
};

/// Calls by their Call-ID, and where their parties have said that they want media.
///
/// No row is ever removed. Beyond the limit new calls are refused, and so are endpoints beyond four a call; a new call
/// that names an endpoint of an old one takes it over.
class CallTable {
 public:
  /// What was said of an endpoint last.
  struct Announced {
    IpEndpoint endpoint;
    std::uint32_t call = kNoRow;
    std::shared_ptr<const MediaDescription> description;
  };

  explicit CallTable(std::size_t limit) : limit_(limit) {}

  /// False when the message is of a call that the full table does not take.
  bool Take(const SipMessage& message, std::uint64_t time);

  /// Null for an endpoint that no call has named.
  const Announced* Find(const IpEndpoint& endpoint) const;
  /// Counts what has been said of endpoints, so that one knows when to ask again.
  std::uint32_t announcements() const { return announcements_; }

  std::size_t size() const { return calls_.size(); }
  const Call& operator[](std::size_t row) const { return calls_[row]; }
  FrozenTable<Call> Freeze() { return calls_.Freeze(); }

 private:
  std::uint32_t RowOf(const SipMessage& message, std::uint64_t time);
  bool Announce(const OfferedMedia& media, std::uint32_t call);
  std::uint64_t HashOfText(std::string_view text) const;

  std::size_t limit_;
  KeyedHash hash_;
  PagedVector<Call> calls_;
  RowIndex call_index_;
  std::vector<Announced> announced_;
  RowIndex announced_index_;
  std::uint32_t announcements_ = 0;
};

}  // namespace orvo
