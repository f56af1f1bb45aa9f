#include "xml/report_document.h"

#include "platform/error.h"

namespace orvo {

void ReportSaved(XmlReport& report, std::u16string_view file, std::uint64_t rows) {
  const std::u16string path = report.job.folder + std::u16string(file);
  if (report.observer) report.observer->FileDone(path.c_str(), rows, S_OK);
}

IndexEntry::IndexEntry(XmlReport& report, std::string_view name, std::u16string_view version)
    : report_(report), stream_(kPartDepth) {
  report_.index.Take(name);
  element_ = stream_.Add(name);
  element_.SetAttribute("Version", version);
}

void IndexEntry::Keep(std::uint64_t rows) {
  report_.index.Add(stream_.Take(), rows);
}

void AddHistory(XmlReport& report, std::u16string_view file, std::string_view root, std::string_view entry,
                const std::function<std::optional<std::uint64_t>(XmlWriter)>& fill) {
  XmlStream stream(kPartDepth);
  const std::optional<std::uint64_t> rows = fill(stream.Add(entry));
  const std::string_view lines = rows ? stream.Finish() : std::string_view();
  Check(ExtendXmlFile(report.job.folder + std::u16string(file), root, lines));
  ReportSaved(report, file, rows.value_or(0));
}

void MoveToHistory(XmlReport& report, std::u16string_view file, std::string_view root, const XmlParts::Part& old) {
  // As long as the report before was: copied without being held in memory.
  Check(ExtendXmlFile(report.job.folder + std::u16string(file), root, [&](const TextSink& put) {
    put("  <History>\n");
    for (const char* child : {"Summary", "Stats"}) report.index.old().CopyChild(old, child, put);
    put("  </History>\n");
  }));
  ReportSaved(report, file, 0);
}

}  // namespace orvo
