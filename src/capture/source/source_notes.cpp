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

std::string Brief(std::string_view text) {
  constexpr std::size_t kLongest = 80;
  if (text.size() <= kLongest) return OneLine(text);
  std::size_t end = kLongest;
  while (end != 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;  // no part of a character of UTF-8
  return OneLine(text.substr(0, end)) + "...";
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
