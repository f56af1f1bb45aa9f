#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace orvo {

/// How tables are laid out: items stand in pages of a fixed number, about 16 KB each, and a directory names the pages.
template <class T>
struct TablePages {
  static constexpr std::size_t kItems = std::bit_floor(sizeof(T) < 16384 ? 16384 / sizeof(T) : std::size_t{1});
  using Page = std::array<T, kItems>;
  using Directory = std::vector<std::shared_ptr<Page>>;
};

/// A table as of the moment it was frozen. Copying it is cheap; any number of threads read it without a lock, for as
/// long as they like, and references to its items hold as long as one copy of it does.
template <class T>
class FrozenTable {
 public:
  using Pages = TablePages<T>;

  FrozenTable() = default;
  FrozenTable(std::shared_ptr<const typename Pages::Directory> directory, std::size_t count)
      : directory_(std::move(directory)), size_(count) {}

  std::size_t size() const { return size_; }
  /// `index` is below size().
  const T& operator[](std::size_t index) const {
    return (*(*directory_)[index / Pages::kItems])[index % Pages::kItems];
  }

 private:
  std::shared_ptr<const typename Pages::Directory> directory_;
  std::size_t size_ = 0;
};

/// A growing table of one writer. Freeze shares the pages with whoever reads them, and costs no copy; the writer copies
/// a page when it first writes to it after a freeze, and the directory, which is a few pointers per thousand items.
template <class T>
class PagedVector {
 public:
  using Pages = TablePages<T>;

  std::size_t size() const { return size_; }
  /// `index` is below size().
  const T& operator[](std::size_t index) const { return (*slots_[index / Pages::kItems].page)[index % Pages::kItems]; }

  /// Begins to fetch an item that will be written.
  void Prefetch(std::size_t index) const {
    const T* item = &(*this)[index];
    for (std::size_t at = 0; at < sizeof(T); at += kCacheLine) {
      __builtin_prefetch(reinterpret_cast<const char*>(item) + at, 1);
    }
    __builtin_prefetch(reinterpret_cast<const char*>(item + 1) - 1, 1);
  }

  /// For writing; the reference holds until the next Freeze.
  T& Edit(std::size_t index) {
    Slot& slot = slots_[index / Pages::kItems];
    if (slot.epoch != epoch_) CopyPage(index / Pages::kItems);
    return (*slot.page)[index % Pages::kItems];
  }

  T& Append(const T& item) {
    if (size_ == slots_.size() * Pages::kItems) AddPage();
    T& added = Edit(size_);
    added = item;
    ++size_;
    return added;
  }

  FrozenTable<T> Freeze() {
    ++epoch_;
    directory_shared_ = true;
    return {directory_, size_};
  }

 private:
  static constexpr std::size_t kCacheLine = 64;

  /// A page, and the freeze after which the writer made it its own.
  struct Slot {
    typename Pages::Page* page = nullptr;
    std::uint64_t epoch = 0;
  };

  typename Pages::Directory& OwnDirectory() {
    if (directory_shared_) {
      directory_ = std::make_shared<typename Pages::Directory>(*directory_);
      directory_shared_ = false;
    }
    return *directory_;
  }

  void CopyPage(std::size_t number) {
    auto copy = std::make_shared<typename Pages::Page>(*slots_[number].page);
    typename Pages::Page* page = copy.get();
    OwnDirectory()[number] = std::move(copy);  // the old page lives on in the frozen directories
    slots_[number] = {page, epoch_};
  }

  void AddPage() {
    auto page = std::make_shared<typename Pages::Page>();
    slots_.reserve(slots_.size() + 1 > slots_.capacity() ? slots_.size() * 2 + 1 : slots_.capacity());
    OwnDirectory().push_back(page);
    slots_.push_back({page.get(), epoch_});
  }

  std::shared_ptr<typename Pages::Directory> directory_ = std::make_shared<typename Pages::Directory>();
  std::vector<Slot> slots_;
  std::size_t size_ = 0;
  std::uint64_t epoch_ = 0;
  bool directory_shared_ = false;
};

}  // namespace orvo
