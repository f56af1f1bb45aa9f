#include "capture/analysis/call_table.h"

#include <algorithm>
#include <cstring>

namespace orvo {
namespace {

constexpr std::size_t kEndpointsPerCall = 4;

/// What an answer that refuses an INVITE makes of the call (RFC 3261 section 21).
struct Refusal {
  std::uint16_t status;
  CallState state;
};
constexpr Refusal kRefusals[] = {
    {401, CallState::kChallenged}, {407, CallState::kChallenged}, {408, CallState::kUnanswered},
    {480, CallState::kUnanswered}, {486, CallState::kBusy},       {487, CallState::kCancelled},
    {600, CallState::kBusy},       {403, CallState::kRejected},   {603, CallState::kRejected},
};

CallState RefusedState(std::uint16_t status) {
  const auto* found = std::ranges::find(kRefusals, status, &Refusal::status);
  if (found != std::end(kRefusals)) return found->state;
  return status < 400 ? CallState::kRedirected : CallState::kFailed;
}

bool IsRefused(CallState state) {
  return state != CallState::kCalling && state != CallState::kRinging && state != CallState::kInCall &&
         state != CallState::kCompleted;
}

void End(Call* call, CallState state, std::uint64_t time) {
  call->state = state;
  if (call->end_time == 0) call->end_time = time;
}

/// An answer to an INVITE. Once the call is answered, others are about a change of it that is asked for.
void TakeAnswer(Call* call, std::uint16_t status, std::uint64_t time) {
  call->status = status;
  if (call->answer_time != 0) return;
  if (status >= 300) {
    if (!IsRefused(call->state)) End(call, RefusedState(status), time);
  } else if (status >= 200) {
    call->answer_time = time;
    call->end_time = 0;  // it crossed a CANCEL
    call->state = CallState::kInCall;
  } else if (status > 100 && !IsRefused(call->state)) {
    if (call->ringing_time == 0) call->ringing_time = time;
    call->state = CallState::kRinging;
  }
}

void TakeRequest(Call* call, const SipMessage& message, std::uint64_t time) {
  if (message.method == "BYE" && call->answer_time != 0) {
    End(call, CallState::kCompleted, time);
  } else if (message.method == "CANCEL" && call->answer_time == 0 && !IsRefused(call->state)) {
    End(call, CallState::kCancelled, time);
  } else if (message.method == "INVITE" && call->state == CallState::kChallenged) {
    call->state = CallState::kCalling;  // once more, with the answer to the challenge
    call->end_time = 0;
  }
}

}  // namespace

bool CallTable::Take(const SipMessage& message, std::uint64_t time) {
  std::uint32_t row = RowOf(message, time);
  bool begins = message.is_request && message.method == "INVITE";
  if (row == kNoRow) return !begins;  // of no call, or of one whose beginning was not captured
  Call& call = calls_.Edit(row);
  call.last_time = std::max(call.last_time, time);
  if (message.is_request) {
    TakeRequest(&call, message, time);
  } else if (message.method == "INVITE") {
    TakeAnswer(&call, message.status, time);
  }
  bool taken = true;
  for (const OfferedMedia& media : message.media) taken = Announce(media, row) && taken;
  return taken;
}

/// The row of the message's call, which an INVITE begins; kNoRow when there is none.
std::uint32_t CallTable::RowOf(const SipMessage& message, std::uint64_t time) {
  std::uint64_t hash = HashOfText(message.call_id);
  std::uint32_t row =
      call_index_.Find(hash, [&](std::uint32_t at) { return calls_[at].texts->call_id == message.call_id; });
  if (row != kNoRow || !message.is_request || message.method != "INVITE" || calls_.size() >= limit_) return row;
  call_index_.Reserve();
  Call call;
  call.texts = std::make_shared<CallTexts>(CallTexts{message.call_id, message.from, message.to});
  call.invite_time = time;
  row = static_cast<std::uint32_t>(calls_.size());
  calls_.Append(call);
  call_index_.Add(hash, row);
  return row;
}

bool CallTable::Announce(const OfferedMedia& media, std::uint32_t call) {
  ++announcements_;
  std::uint64_t hash = HashOf(hash_, media.endpoint);
  std::uint32_t row =
      announced_index_.Find(hash, [&](std::uint32_t at) { return announced_[at].endpoint == media.endpoint; });
  if (row != kNoRow) {
    announced_[row] = {media.endpoint, call, media.description};
    return true;
  }
  if (announced_.size() >= limit_ * kEndpointsPerCall) return false;
  announced_index_.Reserve();
  announced_.push_back({media.endpoint, call, media.description});
  announced_index_.Add(hash, static_cast<std::uint32_t>(announced_.size() - 1));
  return true;
}

const CallTable::Announced* CallTable::Find(const IpEndpoint& endpoint) const {
  if (announced_.empty()) return nullptr;
  std::uint32_t row = announced_index_.Find(HashOf(hash_, endpoint),
                                            [&](std::uint32_t at) { return announced_[at].endpoint == endpoint; });
  return row == kNoRow ? nullptr : &announced_[row];
}

std::uint64_t CallTable::HashOfText(std::string_view text) const {
  std::uint64_t hash = text.size();
  while (!text.empty()) {
    std::uint64_t word = 0;
    std::size_t count = std::min(text.size(), sizeof word);
    std::memcpy(&word, text.data(), count);
    hash = hash_(std::array<std::uint64_t, 2>{hash, word});
    text.remove_prefix(count);
  }
  return hash;
}

}  // namespace orvo
