#include "capture/source/read_ahead_reader.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <cstring>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>

#include "platform/thread.h"

namespace orvo {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18;
constexpr std::size_t kBlocks = 8;
/// Captures are mostly read one after the other; of many that are not, each would take a thread and two megabytes.
constexpr int kMostThreads = 4;

std::atomic<int> g_threads = 0;

class ReadAheadReader final : public ByteReader {
 public:
  explicit ReadAheadReader(std::unique_ptr<ByteReader> reader) : reader_(std::move(reader)) {}
  ReadAheadReader(const ReadAheadReader&) = delete;
  ReadAheadReader& operator=(const ReadAheadReader&) = delete;
  ~ReadAheadReader() override {
    if (!has_thread_) return;
    {
      std::lock_guard lock(mutex_);
      ending_ = true;
    }
    half_empty_.notify_one();
    thread_.Join();
  }

  std::size_t Read(std::uint8_t* room, std::size_t size) override {
    if (!begun_) Begin();
    if (!has_thread_) return reader_->Read(room, size);
    std::size_t count = 0;
    while (count < size && HasBlock(count == 0)) {
      const Block& block = (*blocks_)[used_ % kBlocks];
      const std::size_t taken = std::min(size - count, block.size - used_of_block_);
      std::memcpy(room + count, block.bytes.data() + used_of_block_, taken);
      position_ = block.position;
      count += taken;
      used_of_block_ += taken;
      if (used_of_block_ == block.size) GiveBack();
    }
    return count;
  }

  std::uint64_t position() const override { return has_thread_ ? position_ : reader_->position(); }
  std::uint64_t size() const override { return reader_->size(); }
  const std::string& problem() const override { return has_thread_ ? problem_ : reader_->problem(); }

 private:
  struct Block {
    std::array<std::uint8_t, kBlock> bytes;
    std::size_t size;
    std::uint64_t position;  ///< of the file, behind the block
  };

  void Begin() {
    begun_ = true;
    if (reader_->position() >= reader_->size() || std::thread::hardware_concurrency() < 2) return;
    position_ = reader_->position();
    blocks_ = std::make_unique_for_overwrite<std::array<Block, kBlocks>>();
    has_thread_ = g_threads.fetch_add(1) < kMostThreads && Succeeded(thread_.Start(Run, this));
    if (has_thread_) return;
    g_threads.fetch_sub(1);
    blocks_.reset();
  }

  /// Whether there is a block to be used. Who waits for one learns what has ended the stream.
  bool HasBlock(bool wait) {
    std::unique_lock lock(mutex_);
    if (wait) filled_one_.wait(lock, [this] { return filled_ != used_ || ended_; });
    if (filled_ != used_) return true;
    if (wait && exception_) std::rethrow_exception(exception_);
    if (wait) problem_ = reader_->problem();
    return false;
  }

  void GiveBack() {
    used_of_block_ = 0;
    std::lock_guard lock(mutex_);
    ++used_;
    // The thread is not woken for every single block.
    if (filled_ - used_ == kBlocks / 2) half_empty_.notify_one();
  }

  static Status Run(void* self) {
    static_cast<ReadAheadReader*>(self)->FillBlocks();
    g_threads.fetch_sub(1);
    return S_OK;
  }

  void FillBlocks() {
    std::unique_lock lock(mutex_);
    while (!ended_ && !ending_) {
      if (filled_ - used_ == kBlocks) {
        half_empty_.wait(lock, [this] { return filled_ - used_ <= kBlocks / 2 || ending_; });
        continue;
      }
      Block& block = (*blocks_)[filled_ % kBlocks];
      lock.unlock();
      std::exception_ptr exception;
      const bool full = Fill(&block, &exception);
      lock.lock();
      exception_ = exception;
      ended_ = !full;
      if (block.size != 0) ++filled_;
      filled_one_.notify_one();
    }
  }

  /// False when the stream ends before the block is full, which then holds the rest.
  bool Fill(Block* block, std::exception_ptr* exception) {
    block->size = 0;
    try {
      std::size_t read = 1;
      while (read != 0 && block->size < kBlock) {
        read = reader_->Read(block->bytes.data() + block->size, kBlock - block->size);
        block->size += read;
      }
    } catch (...) {
      *exception = std::current_exception();
    }
    block->position = reader_->position();
    return block->size == kBlock && !*exception;
  }

  const std::unique_ptr<ByteReader> reader_;  // the thread's, as soon as there is one and until the stream has ended
  std::unique_ptr<std::array<Block, kBlocks>> blocks_;  // made with the thread, in turns its and the user's
  bool begun_ = false;
  bool has_thread_ = false;
  std::size_t used_of_block_ = 0;
  std::uint64_t position_ = 0;
  std::string problem_;
  std::mutex mutex_;  // guards what follows
  std::condition_variable filled_one_;
  std::condition_variable half_empty_;
  std::uint64_t filled_ = 0;
  std::uint64_t used_ = 0;
  bool ended_ = false;
  bool ending_ = false;
  std::exception_ptr exception_;
  Thread thread_;
};

}  // namespace

std::unique_ptr<ByteReader> MakeReadAheadReader(std::unique_ptr<ByteReader> reader) {
  return std::make_unique<ReadAheadReader>(std::move(reader));
}

}  // namespace orvo
