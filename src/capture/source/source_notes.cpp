#include "capture/source/source_notes.h"

#include <algorithm>

#include "capture/source/link_type.h"

namespace orvo {
namespace {

/// Link types that a warning names; a capture with more of them is a made-up one.
constexpr std::size_t kMaxNamedLinks = 8;

}  // namespace

std::string OneLine(std::string_view text) {
  std::string line(text);
  std::replace_if(
      line.begin(), line.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, '?');
  return line;
}

SourceError Refusal(Status status, std::string_view subject, std::string_view why) {
  return {status, OneLine(subject) + ": " + std::string(why)};
}

void SourceNotes::Add(std::string_view note) {
  warning_.status = E_FAIL;
  warning_.message += warning_.message.empty() ? subject_ + ": " : "; ";
  warning_.message += OneLine(note);
}

void SourceNotes::AddUnknownLink(std::uint32_t link_type) {
  if (links_.size() == kMaxNamedLinks || std::ranges::find(links_, link_type) != links_.end()) return;
  links_.push_back(link_type);
  Add("frames of " + LinkTypeText(link_type) + " cannot be looked into and count as protocol \"Unknown\"");
}

}  // namespace orvo
