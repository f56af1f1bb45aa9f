#include "capture/source/capture_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <system_error>
#include <utility>

#include "capture/source/byte_window.h"
#include "capture/source/file_reader.h"
#include "capture/source/gzip_reader.h"
#include "capture/source/pcap_file.h"
#include "capture/source/pcapng_file.h"
#include "capture/source/source_notes.h"
#include "capture/source/zstd_reader.h"

namespace orvo {
namespace {

/// Every kind of file that is known tells itself by its first bytes.
constexpr std::size_t kMagic = 4;

/// Packed files of which the user should hear what they are: how they begin, and their packer.
constexpr struct {
  std::string_view magic;
  const char* packer;
} kPackers[] = {{"\xFD\x37zX", "xz"}, {"BZh", "bzip2"}, {"PK\x03\x04", "zip"}, {"\x04\x22\x4D\x18", "lz4"}};

SourceError ErrnoRefusal(int code, const std::string& path) {
  const char* remedy = path == "-"       ? "; name /dev/stdin to read standard input"
                       : code == ENOENT  ? "; check the path"
                       : code == EACCES  ? "; ask for permission to read it"
                       : code == EMFILE  ? "; name fewer files at once, or raise the limit with ulimit -n"
                       : code == ENOTDIR ? "; a file stands where the path names a folder"
                                         : "";
  return Refusal(StatusFromErrno(code), path,
                 "cannot be opened (" + std::generic_category().message(code) + ")" + remedy);
}

/// What speaks against opening the path, or nothing. It is looked at first, since opening some devices has effects.
SourceError Judge(const std::string& path, std::uint64_t* size) {
  struct stat about {};
  if (stat(path.c_str(), &about) != 0) return ErrnoRefusal(errno, path);
  if (S_ISDIR(about.st_mode)) {
    return Refusal(StatusFromError(kErrorIsAFolder), path, "is a folder; name a capture file in it");
  }
  if (S_ISFIFO(about.st_mode)) return {};
  if (!S_ISREG(about.st_mode)) {
    return Refusal(E_INVALIDARG, path, "is neither a file nor a pipe; name a capture file");
  }
  if (about.st_size == 0) {
    return Refusal(E_FAIL, path, "is empty; a capture starts with a header, record it again");
  }
  *size = static_cast<std::uint64_t>(about.st_size);
  return {};
}

/// What a file is that begins with these bytes (null: with fewer), but no capture.
std::string WhatElse(const std::uint8_t* magic) {
  const std::string_view begin(reinterpret_cast<const char*>(magic), magic ? kMagic : 0);
  for (const auto& [packed, packer] : kPackers) {
    if (begin.starts_with(packed)) return std::string("is packed by ") + packer + "; unpack it first";
  }
  return "is not a capture file (it begins like none); give a file in pcap or pcapng format";
}

/// The file's bytes; null and the cause in `error`.
std::unique_ptr<ByteReader> OpenBytes(const std::string& path, SourceError* error) {
  std::uint64_t size = 0;
  *error = Judge(path, &size);
  if (Failed(error->status)) return nullptr;
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor >= 0) return std::make_unique<FileReader>(descriptor, size);
  *error = ErrnoRefusal(errno, path);
  return nullptr;
}

}  // namespace

std::unique_ptr<PacketSource> OpenCaptureFile(const std::string& path, SourceError* error) {
  std::unique_ptr<ByteReader> bytes = OpenBytes(path, error);
  if (!bytes) return nullptr;
  ByteWindow window(std::move(bytes));
  const std::uint8_t* magic = window.Look(kMagic);
  if (magic && IsGzip(magic)) {
    window = ByteWindow(MakeGzipReader(std::move(window)));
    magic = window.Look(kMagic);
  } else if (magic && IsZstd(magic)) {
    window = ByteWindow(MakeZstdReader(std::move(window)));
    magic = window.Look(kMagic);
  }
  const bool is_pipe = window.size() == 0;
  if (!is_pipe) window.ReadAhead();
  if (magic && IsPcap(magic)) return OpenPcap(path, std::move(window), error);
  if (magic && IsPcapng(magic)) return OpenPcapng(path, std::move(window), error);
  *error = window.problem().empty()
               ? Refusal(E_FAIL, path, WhatElse(magic))
               : Refusal(E_FAIL, path, "cannot be unpacked (" + window.problem() + "); pack or copy the capture again");
  return nullptr;
}

}  // namespace orvo
