#include "capture/source/capture_file.h"

#include <fcntl.h>
#include <pcap/pcap.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <system_error>
#include <utility>

#include "capture/decode/protocol_registry.h"
#include "platform/clock.h"

namespace orvo {
namespace {

constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;
/// The longest frame that libpcap itself takes for possible.
constexpr std::uint32_t kLongestFrame = 262'144;
constexpr std::size_t kReadBuffer = std::size_t{256} * 1024;

/// Seconds of the classic format are 32 unsigned bits that libpcap widens with a sign; those of pcapng may lie beyond
/// every date that a time value can hold, and are brought back to the last one.
std::uint64_t PacketTime(const timeval& stamp) {
  std::int64_t seconds = stamp.tv_sec;
  if (seconds < 0) seconds += std::int64_t{1} << 32;
  constexpr auto kLast =
      static_cast<std::int64_t>((std::numeric_limits<std::uint64_t>::max() - kUnixEpoch) / kNanosecondsPerSecond) -
      4096;
  seconds = std::clamp<std::int64_t>(seconds, 0, kLast);
  auto fraction = std::clamp<std::int64_t>(stamp.tv_usec, 0, 4095 * static_cast<std::int64_t>(kNanosecondsPerSecond));
  return kUnixEpoch + static_cast<std::uint64_t>(seconds) * kNanosecondsPerSecond +
         static_cast<std::uint64_t>(fraction);
}

/// Text from outside on its way into a message: one line, no control characters.
std::string OneLine(std::string_view text) {
  std::string line(text);
  std::replace_if(
      line.begin(), line.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, '?');
  return line;
}

class CaptureFile final : public PacketSource {
 public:
  CaptureFile(std::string path, pcap_t* handle, std::uint64_t size)
      : path_(std::move(path)), handle_(handle), link_type_(static_cast<std::uint32_t>(pcap_datalink(handle))) {
    progress_.bytes_total = size;
  }
  CaptureFile(const CaptureFile&) = delete;
  CaptureFile& operator=(const CaptureFile&) = delete;
  ~CaptureFile() override { pcap_close(handle_); }

  bool Next(Packet* packet) override {
    if (ended_) return false;
    pcap_pkthdr* header = nullptr;
    const std::uint8_t* bytes = nullptr;
    int result = pcap_next_ex(handle_, &header, &bytes);
    if (result != 1) {
      ended_ = true;
      if (result != PCAP_ERROR_BREAK) WarnOfEnd();
      return false;
    }
    ++packets_;
    packet->time = PacketTime(header->ts);
    packet->bytes = {bytes, header->caplen};
    packet->original_length = OriginalLength(*header);
    packet->link_type = link_type_;
    packet->interface_number = 0;
    return true;
  }

  SourceProgress progress() const override {
    SourceProgress now = progress_;
    if (off_t position = ftello(pcap_file(handle_)); position > 0)
      now.bytes_read = static_cast<std::uint64_t>(position);
    return now;
  }

  std::uint64_t dropped() const override { return 0; }
  const SourceError& warning() const override { return warning_; }

 private:
  std::uint32_t OriginalLength(const pcap_pkthdr& header) {
    if (header.len <= kLongestFrame) return std::max(header.len, header.caplen);
    if (Succeeded(warning_.status)) {
      warning_ = {E_FAIL, OneLine(path_) + ": packet " + std::to_string(packets_) + " claims to be " +
                              std::to_string(header.len) +
                              " bytes long; such packets are counted at their captured length"};
    }
    return header.caplen;
  }

  void WarnOfEnd() {
    std::string why = OneLine(pcap_geterr(handle_));
    // Not damage: libpcap reads no further when a file describes an interface unlike "the first interface".
    const char* remedy =
        why.find("first interface") != why.npos ? "split the file by interface" : "record the capture again";
    warning_ = {E_FAIL, OneLine(path_) + ": reading stopped after packet " + std::to_string(packets_) + " (" + why +
                            "); the report covers the packets up to there, " + remedy + " for the rest"};
  }

  std::string path_;
  pcap_t* handle_;
  std::uint32_t link_type_;
  SourceProgress progress_;
  SourceError warning_;
  std::uint64_t packets_ = 0;
  bool ended_ = false;
};

/// Sets the error and gives the null source that goes with it.
std::nullptr_t Refuse(SourceError* error, Status status, const std::string& path, std::string_view why) {
  *error = {status, OneLine(path) + ": " + std::string(why)};
  return nullptr;
}

std::nullptr_t RefuseErrno(SourceError* error, int code, const std::string& path) {
  const char* remedy = path == "-"       ? "; name /dev/stdin to read standard input"
                       : code == ENOENT  ? "; check the path"
                       : code == EACCES  ? "; ask for permission to read it"
                       : code == EMFILE  ? "; name fewer files at once, or raise the limit with ulimit -n"
                       : code == ENOTDIR ? "; a file stands where the path names a folder"
                                         : "";
  return Refuse(error, StatusFromErrno(code), path,
                "cannot be opened (" + std::generic_category().message(code) + ")" + remedy);
}

}  // namespace

std::unique_ptr<PacketSource> OpenCaptureFile(const std::string& path, SourceError* error) {
  *error = {};
  // Looked at before it is opened, since opening some devices has effects.
  struct stat about {};
  if (stat(path.c_str(), &about) != 0) return RefuseErrno(error, errno, path);
  if (S_ISDIR(about.st_mode)) {
    return Refuse(error, StatusFromError(kErrorIsAFolder), path, "is a folder; name a capture file in it");
  }
  if (!S_ISREG(about.st_mode) && !S_ISFIFO(about.st_mode)) {
    return Refuse(error, E_INVALIDARG, path, "is neither a file nor a pipe; name a capture file");
  }
  if (S_ISREG(about.st_mode) && about.st_size == 0) {
    return Refuse(error, E_FAIL, path, "is empty; a capture starts with a header, record it again");
  }

  int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return RefuseErrno(error, errno, path);
  std::FILE* file = fdopen(descriptor, "rb");
  if (!file) {
    int code = errno;
    close(descriptor);
    return RefuseErrno(error, code, path);
  }
  std::setvbuf(file, nullptr, _IOFBF, kReadBuffer);
  std::array<char, PCAP_ERRBUF_SIZE> why{};
  // The handle owns the file from here on.
  pcap_t* handle = pcap_fopen_offline_with_tstamp_precision(file, PCAP_TSTAMP_PRECISION_NANO, why.data());
  if (!handle) {
    std::fclose(file);
    return Refuse(error, E_FAIL, path,
                  "is not a capture file (" + OneLine(why.data()) + "); give a file in pcap or pcapng format");
  }
  auto size = S_ISREG(about.st_mode) ? static_cast<std::uint64_t>(about.st_size) : 0;
  auto source = std::make_unique<CaptureFile>(path, handle, size);
  int link_type = pcap_datalink(handle);
  if (!ProtocolRegistry::Get().Find(Layer::kLink, static_cast<std::uint32_t>(link_type))) {
    const char* name = pcap_datalink_val_to_name(link_type);
    return Refuse(error, E_NOTIMPL, path,
                  "has link type " + std::to_string(link_type) + (name ? " (" + std::string(name) + ")" : "") +
                      ", which is not supported; give a capture of an Ethernet interface");
  }
  return source;
}

}  // namespace orvo
