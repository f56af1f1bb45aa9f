#pragma once

#include "capture/source/byte_reader.h"

namespace orvo {

/// The bytes of an open file or pipe.
class FileReader final : public ByteReader {
 public:
  /// Owns the descriptor. `size` is the file's in bytes, 0 when it is unknown.
  FileReader(int descriptor, std::uint64_t size);
  FileReader(const FileReader&) = delete;
  FileReader& operator=(const FileReader&) = delete;
  ~FileReader() override;

  std::size_t Read(std::uint8_t* room, std::size_t size) override;
  std::uint64_t position() const override { return position_; }
  std::uint64_t size() const override { return size_; }
  const std::string& problem() const override { return problem_; }

 private:
  int descriptor_;
  std::uint64_t size_;
  std::uint64_t position_ = 0;
  std::string problem_;
};

}  // namespace orvo
