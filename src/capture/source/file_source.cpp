#include "capture/source/file_source.h"

namespace orvo {

bool FileSource::EndOfStream() {
  if (window_.left() != 0 || !window_.problem().empty()) return CutOff();
  ended_ = true;
  return false;
}

bool FileSource::CutOff() {
  return End(window_.problem().empty() ? "the file ends in the middle of a packet" : window_.problem());
}

bool FileSource::End(std::string_view why) {
  ended_ = true;
  notes_.Add("reading stopped after packet " + std::to_string(packets_) + " (" + std::string(why) +
             "); the report covers the packets up to there, record the capture again for the rest");
  return false;
}

void FileSource::NoteLength(std::uint32_t claimed_length) {
  if (length_noted_) return;
  length_noted_ = true;
  notes_.Add("packet " + std::to_string(packets_) + " claims to be " + std::to_string(claimed_length) +
             " bytes long; such packets are counted at their captured length");
}

void FileSource::NoteTime(std::uint64_t claimed, std::uint64_t last) {
  if (time_noted_) return;
  time_noted_ = true;
  constexpr std::uint64_t kDay = std::uint64_t{86'400} * 1'000'000'000;
  const bool later = claimed > last;
  notes_.Add("packet " + std::to_string(packets_ + 1) + " claims to be " +
             std::to_string((later ? claimed - last : last - claimed) / kDay) + " days " +
             (later ? "later" : "earlier") +
             " than the one before; such a packet counts at the time of that one, unless the next agrees with it");
}

}  // namespace orvo
