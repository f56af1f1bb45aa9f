#include "capture/names/text_lines.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <vector>

namespace orvo {
namespace {

constexpr std::size_t kLongestLine = std::size_t{64} << 10;
constexpr std::size_t kLongestFile = std::size_t{256} << 20;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

/// Puts pieces of a file together to lines.
class LineJoiner {
 public:
  explicit LineJoiner(const std::function<void(std::string_view)>& take) : take_(take) {}

  void Add(std::string_view piece) {
    for (std::size_t end = piece.find('\n'); end != std::string_view::npos; end = piece.find('\n')) {
      Append(piece.substr(0, end));
      End();
      piece.remove_prefix(end + 1);
    }
    Append(piece);
  }

  void End() {
    if (!line_.empty() && line_.back() == '\r') line_.pop_back();
    if (!too_long_ && !line_.empty()) take_(line_);
    line_.clear();
    too_long_ = false;
  }

 private:
  void Append(std::string_view piece) {
    too_long_ = too_long_ || line_.size() + piece.size() > kLongestLine;
    if (!too_long_) line_.append(piece);
  }

  const std::function<void(std::string_view)>& take_;
  std::string line_;
  bool too_long_ = false;
};

}  // namespace

Status ForEachLine(const std::string& path, const std::function<void(std::string_view)>& take) {
  const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "re"));
  if (!file) return StatusFromErrno(errno);
  LineJoiner lines(take);
  std::vector<char> block(kLongestLine);
  for (std::size_t total = 0; total < kLongestFile;) {
    const std::size_t read = std::fread(block.data(), 1, block.size(), file.get());
    if (read == 0) break;
    lines.Add({block.data(), read});
    total += read;
  }
  if (std::ferror(file.get()) != 0) return StatusFromErrno(errno);
  lines.End();
  return S_OK;
}

}  // namespace orvo
