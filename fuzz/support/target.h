#pragma once

#include <cstdint>
#include <functional>
#include <source_location>
#include <span>
#include <string>
#include <string_view>

/// A fuzz target is one file that defines the first two functions below, and one line in fuzz/CMakeLists.txt.
namespace orvo::fuzz {

using Input = std::span<const std::uint8_t>;

/// Takes one more seed.
using SeedSink = std::function<void(std::string_view)>;

/// Lets the code under test have the bytes. Whatever they are, it ends in time and keeps every promise that it makes
/// (Require); it leaves nothing behind that the next input could meet.
void TestOneInput(Input input);

/// Makes the inputs to begin with: a few small ones that are sound.
void MakeSeeds(const SeedSink& add);

// What targets have in common.

/// Ends the program, with the promise in a message, when it is not kept.
void Require(bool kept, std::string_view promise, std::source_location where = std::source_location::current());

std::string_view AsText(Input input);

/// A byte, or 0 when there is none left.
std::uint8_t TakeByte(Input* input);
/// At most so many bytes.
Input Take(Input* input, std::size_t count);

/// The sample captures, as paths.
std::span<const std::string> Samples();
std::string ReadFileBytes(const std::string& path, std::size_t limit = SIZE_MAX);

/// A file in memory. It can be opened by its path any number of times, and is gone with the object.
class MemoryFile {
 public:
  explicit MemoryFile(Input content);
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile();

  /// In the system's form.
  const std::string& path() const { return path_; }

 private:
  int descriptor_;
  std::string path_;
};

}  // namespace orvo::fuzz
