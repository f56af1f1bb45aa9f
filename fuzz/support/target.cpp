#include "fuzz/support/target.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

namespace orvo::fuzz {
namespace {

constexpr std::string_view kWriteSeeds = "--write-seeds=";

void WriteSeeds(const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  int number = 0;
  MakeSeeds([&](std::string_view seed) {
    std::ofstream out(folder / ("seed-" + std::to_string(number++)), std::ios::binary);
    out.write(seed.data(), static_cast<std::streamsize>(seed.size()));
    Require(out.good(), "seeds can be written");
  });
}

}  // namespace

void Require(bool kept, std::string_view promise, std::source_location where) {
  if (kept) return;
  std::fprintf(stderr, "%s:%u: broken promise: %.*s\n", where.file_name(), static_cast<unsigned>(where.line()),
               static_cast<int>(promise.size()), promise.data());
  std::abort();
}

std::string_view AsText(Input input) {
  return {reinterpret_cast<const char*>(input.data()), input.size()};
}

std::uint8_t TakeByte(Input* input) {
  Input taken = Take(input, 1);
  return taken.empty() ? std::uint8_t{0} : taken[0];
}

Input Take(Input* input, std::size_t count) {
  Input taken = input->first(std::min(count, input->size()));
  *input = input->subspan(taken.size());
  return taken;
}

std::span<const std::string> Samples() {
  static const std::vector<std::string> paths = [] {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(ORVO_SOURCE_DIR "/samples")) {
      if (entry.path().extension().string().starts_with(".pcap")) found.push_back(entry.path().string());
    }
    std::ranges::sort(found);
    return found;
  }();
  return paths;
}

std::string ReadFileBytes(const std::string& path, std::size_t limit) {
  std::ifstream in(path, std::ios::binary);
  std::string bytes(std::min<std::size_t>(std::filesystem::file_size(path), limit), '\0');
  Require(static_cast<bool>(in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()))), "files can be read");
  return bytes;
}

MemoryFile::MemoryFile(Input content)
    : descriptor_(memfd_create("input", MFD_CLOEXEC)), path_("/proc/self/fd/" + std::to_string(descriptor_)) {
  const auto written = write(descriptor_, content.data(), content.size());
  Require(written == static_cast<ssize_t>(content.size()), "a file in memory takes the input");
}

MemoryFile::~MemoryFile() {
  close(descriptor_);
}

}  // namespace orvo::fuzz

extern "C" {

// What the fuzzer calls, under the names that it knows.
int LLVMFuzzerInitialize(int* count, char*** arguments);
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// With the option `--write-seeds=FOLDER` the program writes its seeds and ends.
int LLVMFuzzerInitialize(int* count, char*** arguments) {
  for (int i = 1; i < *count; ++i) {
    const std::string_view argument = (*arguments)[i];
    if (!argument.starts_with(orvo::fuzz::kWriteSeeds)) continue;
    orvo::fuzz::WriteSeeds(argument.substr(orvo::fuzz::kWriteSeeds.size()));
    std::exit(0);
  }
  return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  orvo::fuzz::TestOneInput({data, size});
  return 0;
}
}
