#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "capture/source/packet_source.h"

namespace orvo {

/// Text from outside on its way into a message: one line, no control characters.
std::string OneLine(std::string_view text);

/// The beginning of such a text, where it may be long and only serves to recognise it.
std::string Brief(std::string_view text);

/// Why `subject`, a path or an interface, cannot be opened.
SourceError Refusal(Status status, std::string_view subject, std::string_view why);

/// Gathers what was wrong with a source into one warning. Each note is short, and each kind of trouble is noted once,
/// so that no capture makes the warning long.
class SourceNotes {
 public:
  explicit SourceNotes(std::string_view subject) : subject_(OneLine(subject)) {}

  void Add(std::string_view note);
  /// Notes that a link type was met which no decoder knows, once for each type. Cheap for a type already noted.
  void AddUnknownLink(std::uint32_t link_type);
  const SourceError& warning() const { return warning_; }

 private:
  std::string subject_;
  std::vector<std::uint32_t> links_;
  SourceError warning_;
};

}  // namespace orvo
