#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/file.h"
#include "text/text_report.h"

namespace orvo {

/// Makes the first line of a new file, with its line end.
using HeaderMaker = std::function<std::string()>;

/// One file of a text report while its section appends to it. Rows are gathered and written in large blocks; a row that
/// was ended is never lost to a failure after it, and one that was not is never written.
class SectionFile {
 public:
  SectionFile();

  /// Opens the file so that nobody else can write it meanwhile: an existing one as it is, behind its last row (a
  /// partial row that a killed run left is ended first), a new one with `header` as its first line. The new file
  /// appears under its name together with its header, already held. The header is asked for only when it is needed; a
  /// file whose header cannot be made is not made either. Raises that failure, or the platform's.
  void Open(std::u16string_view path, const HeaderMaker& header);

  /// Where the next row is formatted.
  TextBuffer& row() { return buffer_; }
  void EndRow();

  /// Writes what is left and closes the file; a row begun but not ended is dropped.
  Status Close();

  /// Rows handed to the system so far.
  std::uint64_t rows_written() const { return rows_written_; }

 private:
  void EndPartialRow();
  void WriteRows();

  File file_;
  TextBuffer buffer_;
  std::size_t ended_ = 0;  // bytes of the buffer that belong to ended rows
  std::uint64_t rows_ = 0;
  std::uint64_t rows_written_ = 0;
};

/// Opens a section's file, has `write_rows` append to it, closes it, and tells the report's observer what became of it.
/// Raises what ended the file early.
void WriteSectionFile(TextReport& report, const std::u16string& path, const HeaderMaker& header,
                      const std::function<void(SectionFile&)>& write_rows);

/// The same with a header that is known beforehand.
void WriteSectionFile(TextReport& report, const std::u16string& path, const std::string& header,
                      const std::function<void(SectionFile&)>& write_rows);

/// The report's time as the first field of every row: formatted once per file.
std::string TimeSaved(TextReport& report);

}  // namespace orvo
