#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/xml_tree.h"
#include "tests/support/report_fixture.h"
#include "xml/xml_stats_output.h"

namespace orvo::test {

inline constexpr const char* kDeclaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";

class XmlReportTest : public ReportTest {
 public:
  XmlReportTest() : ReportTest(CreateXmlStatsOutput) {
    engine.live.total_packets = 10;
    engine.live.total_bytes = 1000;
    SetTemplates({});
  }

  void SetTemplates(const std::u16string& root) {
    EXPECT_EQ(method->SetFormat(nullptr, nullptr, preferences.get(), Bstr(root).get()), S_OK);
  }
  /// After a report that must go through.
  XmlReportTest& Reported(const std::source_location& place = std::source_location::current()) {
    ExpectReport(place);
    return *this;
  }

  /// An element of a document, found by the names on the way down from its root; empty when there is none.
  static XmlElement At(const XmlTree& document, std::initializer_list<const char*> names) {
    XmlElement element = document.Root();
    for (const char* name : names) element = element.FirstChild(name);
    return element;
  }
  /// What stands in such an element, a line each: "Name Attribute=value {" and "}" around elements, "Name=text" for one
  /// that holds none ("Name Attribute=value" when it has attributes).
  std::string Brief(const std::string& file, std::initializer_list<const char*> names) const {
    XmlTree document;
    EXPECT_EQ(document.Load(PathFromSystem(folder.Path(file))), S_OK) << file;
    std::string text;
    Describe(At(document, names), &text);
    return text;
  }
  /// The names of an element's children, in order.
  std::vector<std::string> Children(const std::string& file, std::initializer_list<const char*> names) const {
    XmlTree document;
    EXPECT_EQ(document.Load(PathFromSystem(folder.Path(file))), S_OK) << file;
    std::vector<std::string> children;
    for (XmlElement child = At(document, names).FirstChild(); child; child = child.NextSibling()) {
      children.push_back(Ascii(child.Name()));
    }
    return children;
  }
  std::vector<std::string> Sections() const { return Children("StatsReport.xml", {}); }

 private:
  static void Describe(const XmlElement& element, std::string* text) {
    *text += Ascii(element.Name());
    bool attributes = false;
    for (const char* name : {"Version", "TimeSaved", "Time", "Name", "Value", "Protocol", "Address"}) {
      const auto value = element.Attribute(name);
      if (!value) continue;
      *text += " " + std::string(name) + "=" + Ascii(*value);
      attributes = true;
    }
    XmlElement child = element.FirstChild();
    *text += child ? " {\n" : (attributes ? "" : "=") + Ascii(element.Text()) + "\n";
    if (!child) return;
    for (; child; child = child.NextSibling()) Describe(child, text);
    *text += "}\n";
  }
};

/// Brings a text into the form of `Brief`: in it a ";" may stand in place of a line end, braces need none, and blanks
/// may begin a line.
inline std::string Items(std::string_view text) {
  std::string items;
  std::string item;
  auto end = [&] {
    const std::size_t begin = item.find_first_not_of(' ');
    if (begin != item.npos) items += item.substr(begin, item.find_last_not_of(' ') + 1 - begin) + "\n";
    item.clear();
  };
  for (char c : text) {
    if (c == '}' || c == ';' || c == '\n') end();
    if (c != ';' && c != '\n') item += c;
    if (c == '{' || c == '}') end();
  }
  end();
  return items;
}

}  // namespace orvo::test
