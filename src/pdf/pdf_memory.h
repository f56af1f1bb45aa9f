#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace orvo {

/// The memory of one document of the PDF library. The library takes many small pieces, gives hardly any back before the
/// end, and loses some of them when it runs short. So pieces are cut from large blocks, none is taken back, and all are
/// gone with this object, whatever the library has forgotten.
class PdfMemory {
 public:
  using Gate = std::function<bool(std::size_t bytes)>;

  /// `gate`, where there is one, is asked before every piece; where it says no the library gets none.
  explicit PdfMemory(Gate gate) : gate_(std::move(gate)) {}

  /// While it lives, the library's calls on this thread are served from `memory`. The library passes its allocation
  /// functions nothing that would tell the document.
  class Use {
   public:
    explicit Use(PdfMemory* memory);
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
    ~Use();

   private:
    PdfMemory* outer_;
  };

  // What the library calls.
  static void* Take(unsigned int bytes) noexcept;
  static void GiveBack(void* piece) noexcept;

 private:
  void* Cut(std::size_t bytes);

  Gate gate_;
  std::vector<std::unique_ptr<std::byte[]>> blocks_;
  std::byte* next_ = nullptr;  // of what is left of the current block
  std::size_t left_ = 0;
};

}  // namespace orvo
