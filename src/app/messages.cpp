#include "app/messages.h"

#include <fmt/core.h>

#include <cerrno>
#include <cstdio>

#include "platform/code_page.h"
#include "platform/message.h"

namespace orvo::app {

std::string Printable(std::string_view text) {
  std::string shown;
  shown.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    // U+0080 to U+009F: terminals obey them like their forms of two characters.
    const bool wide = byte == 0xC2 && at + 1 < text.size() && (text[at + 1] & 0xE0) == 0x80;
    shown += byte < 0x20 || byte == 0x7F || wide ? '?' : text[at];
    if (wide) ++at;
  }
  return shown;
}

void WriteError(std::string_view text) {
  (void)!std::fwrite(text.data(), 1, text.size(), stderr);
  (void)!std::fflush(stderr);
}

void PrintMessage(std::string_view message) {
  WriteError(fmt::format("orvo-report: {}\n", Printable(message)));
}

void PrintWarning(std::string_view message) {
  PrintMessage(fmt::format("warning: {}", message));
}

void PrintOutput(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0) return;
  throw CommandError(kFailed, fmt::format("standard output: {}", Describe(StatusFromErrno(errno))));
}

std::string Describe(Status status) {
  std::string text = ToUtf8(SystemMessage(status));
  return text.empty() ? fmt::format("failed with status 0x{:08X}", static_cast<std::uint32_t>(status)) : text;
}

void Require(Status status, std::string_view subject) {
  if (Failed(status)) throw CommandError(kFailed, fmt::format("{}: {}", subject, Describe(status)));
}

}  // namespace orvo::app
