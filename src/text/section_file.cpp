#include "text/section_file.h"

#include <utility>

#include "platform/error.h"

namespace orvo {
namespace {

constexpr std::size_t kBlock = std::size_t{256} * 1024;
constexpr std::size_t kBufferCapacity = kBlock + std::size_t{16} * 1024;
constexpr int kOpenAttempts = 8;

constexpr Status kFileNotFound = StatusFromError(kErrorFileNotFound);
constexpr Status kAlreadyExists = StatusFromError(kErrorAlreadyExists);

}  // namespace

SectionFile::SectionFile() : buffer_(kBufferCapacity) {}

void SectionFile::Open(std::u16string_view path, const HeaderMaker& header) {
  // Others may create or delete the file between our two attempts, so neither answer is final the first time.
  Status status = kFileNotFound;
  for (int attempt = 0; attempt < kOpenAttempts; ++attempt) {
    status = File::OpenExisting(path, &file_);
    if (Succeeded(status)) return EndPartialRow();
    if (status != kFileNotFound) break;
    const std::string first_line = header();
    Check(File::CreateUnpublished(path, &file_));
    Check(file_.Write(first_line));
    status = file_.Publish();
    if (Succeeded(status)) return;
    if (status != kAlreadyExists) break;
    file_ = File();
  }
  Raise(status);
}

void SectionFile::EndPartialRow() {
  std::uint64_t size = 0;
  Check(file_.SeekEnd(&size));
  if (size == 0) return;
  char last = '\n';
  std::size_t read = 0;
  Check(file_.ReadAt(size - 1, &last, 1, &read));
  if (last != '\n') Check(file_.Write("\n"));
}

void SectionFile::EndRow() {
  buffer_.Append('\n');
  ended_ = buffer_.size();
  ++rows_;
  if (ended_ >= kBlock) WriteRows();
}

void SectionFile::WriteRows() {
  buffer_.Truncate(ended_);
  std::size_t written = std::exchange(ended_, 0);
  Status status = file_.Write(buffer_.view().substr(0, written));
  buffer_.Truncate(0);
  Check(status);
  rows_written_ = rows_;
}

Status SectionFile::Close() {
  if (!file_.is_open()) return S_OK;
  Status written = Guard([&] {
    if (ended_ != 0) WriteRows();
  });
  Status closed = file_.Close();
  return Failed(written) ? written : closed;
}

void WriteSectionFile(TextReport& report, const std::u16string& path, const HeaderMaker& header,
                      const std::function<void(SectionFile&)>& write_rows) {
  SectionFile file;
  Status status = Guard([&] {
    file.Open(path, header);
    write_rows(file);
  });
  Status closed = file.Close();
  if (Succeeded(status)) status = closed;
  if (report.observer) report.observer->FileDone(path.c_str(), file.rows_written(), status);
  Check(status);
}

void WriteSectionFile(TextReport& report, const std::u16string& path, const std::string& header,
                      const std::function<void(SectionFile&)>& write_rows) {
  WriteSectionFile(
      report, path, [&header] { return header; }, write_rows);
}

std::string TimeSaved(TextReport& report) {
  TextBuffer text(64);
  report.util.FormatTimestamp(report.time_mark, &report.scratch);
  text.AppendWide(report.scratch);
  return std::string(text.view());
}

}  // namespace orvo
