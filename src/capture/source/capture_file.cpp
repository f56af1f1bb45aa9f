#include "capture/source/capture_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
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

/// The file's bytes; null and the cause in `error`.
std::unique_ptr<ByteReader> OpenBytes(const std::string& path, SourceError* error) {
  // Looked at before it is opened, since opening some devices has effects.
  struct stat about {};
  if (stat(path.c_str(), &about) != 0) {
    *error = ErrnoRefusal(errno, path);
  } else if (S_ISDIR(about.st_mode)) {
    *error = Refusal(StatusFromError(kErrorIsAFolder), path, "is a folder; name a capture file in it");
  } else if (!S_ISREG(about.st_mode) && !S_ISFIFO(about.st_mode)) {
    *error = Refusal(E_INVALIDARG, path, "is neither a file nor a pipe; name a capture file");
  } else if (S_ISREG(about.st_mode) && about.st_size == 0) {
    *error = Refusal(E_FAIL, path, "is empty; a capture starts with a header, record it again");
  } else if (int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC); descriptor < 0) {
    *error = ErrnoRefusal(errno, path);
  } else {
    return std::make_unique<FileReader>(descriptor,
                                        S_ISREG(about.st_mode) ? static_cast<std::uint64_t>(about.st_size) : 0);
  }
  return nullptr;
}

}  // namespace

std::unique_ptr<PacketSource> OpenCaptureFile(const std::string& path, SourceError* error) {
  *error = {};
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
  if (magic && IsPcap(magic)) return OpenPcap(path, std::move(window), error);
  if (magic && IsPcapng(magic)) return OpenPcapng(path, std::move(window), error);
  const std::string why = window.problem().empty() ? "it begins like none" : window.problem();
  *error = Refusal(E_FAIL, path, "is not a capture file (" + why + "); give a file in pcap or pcapng format");
  return nullptr;
}

}  // namespace orvo
