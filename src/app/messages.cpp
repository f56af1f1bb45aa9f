#include "app/messages.h"

#include <fmt/core.h>

#include <cerrno>
#include <cstdio>

#include "platform/code_page.h"
#include "platform/message.h"

namespace orvo::app {

std::string Printable(std::string_view text) {
  std::string shown(text);
  for (char& byte : shown) {
    if (static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F) byte = '?';
  }
  return shown;
}

void PrintMessage(std::string_view message) {
  fmt::print(stderr, "orvo-report: {}\n", Printable(message));
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
