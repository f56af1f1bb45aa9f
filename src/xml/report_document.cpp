#include "xml/report_document.h"

#include "platform/error.h"
#include "util/ascii.h"

namespace orvo {

XmlElement OpenGrowingDocument(const XmlReport& report, std::u16string_view file, std::string_view root,
                               XmlTree* document) {
  if (Succeeded(document->Load(report.job.folder + std::u16string(file))) &&
      document->Root().Name() == WidenAscii(root)) {
    return document->Root();
  }
  *document = XmlTree();
  return document->AddRoot(root);
}

void SaveDocument(XmlReport& report, std::u16string_view file, const XmlTree& document, std::uint64_t rows) {
  const std::u16string path = report.job.folder + std::u16string(file);
  Check(document.Save(path));
  if (report.observer) report.observer->FileDone(path.c_str(), rows, S_OK);
}

IndexEntry::IndexEntry(XmlReport& report, std::string_view name, std::u16string_view version) : report_(report) {
  report_.index_root.RemoveChild(report_.index_root.FirstChild(name));
  element_ = report_.index_root.AddElement(name);
  element_.SetAttribute("Version", version);
}

IndexEntry::~IndexEntry() {
  if (!kept_) report_.index_root.RemoveChild(element_);
}

void IndexEntry::Keep(std::uint64_t rows) {
  kept_ = true;
  report_.index_rows += rows;
}

void AddHistory(XmlReport& report, std::u16string_view file, std::string_view root, std::string_view entry,
                const std::function<std::optional<std::uint64_t>(XmlElement)>& fill) {
  XmlTree document;
  XmlElement parent = OpenGrowingDocument(report, file, root, &document);
  XmlElement element = parent.AddElement(entry);
  const std::optional<std::uint64_t> rows = fill(element);
  if (!rows) parent.RemoveChild(element);
  SaveDocument(report, file, document, rows.value_or(0));
}

}  // namespace orvo
