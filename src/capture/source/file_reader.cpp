#include "capture/source/file_reader.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace orvo {

FileReader::FileReader(int descriptor, std::uint64_t size) : descriptor_(descriptor), size_(size) {
  // Only advice: a pipe refuses it, and that does not matter.
  posix_fadvise(descriptor_, 0, 0, POSIX_FADV_SEQUENTIAL);
}

FileReader::~FileReader() {
  close(descriptor_);
}

std::size_t FileReader::Read(std::uint8_t* room, std::size_t size) {
  if (!problem_.empty()) return 0;
  ssize_t count = 0;
  do {
    count = read(descriptor_, room, size);
  } while (count < 0 && errno == EINTR);
  if (count < 0) {
    problem_ = "the file cannot be read on: " + std::generic_category().message(errno);
    return 0;
  }
  position_ += static_cast<std::uint64_t>(count);
  return static_cast<std::size_t>(count);
}

}  // namespace orvo
