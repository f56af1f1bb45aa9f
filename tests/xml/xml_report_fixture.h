#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/clock.h"
#include "platform/xml_tree.h"
#include "prefs/stats_output_prefs.h"
#include "prefs/switch_ids.h"
#include "tests/support/scripted_engine.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/text.h"
#include "xml/xml_stats_output.h"

namespace orvo::test {

/// 2026-11-22 14:05:09 UTC, and so many seconds later.
inline std::uint64_t Moment(std::int64_t seconds = 0) {
  return TimeFromUnix((1'795'356'309 + seconds) * 1'000'000'000);
}

inline constexpr const char* kDeclaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";

/// An XML report from a scripted engine into a folder of its own.
class XmlReportTest : public testing::Test {
 protected:
  XmlReportTest() {
    engine.snapshot_time = Moment();
    engine.live.total_packets = 10;
    engine.live.total_bytes = 1000;
    NewMethod();
    EXPECT_EQ(CreateStatsOutputPrefs(IStatsOutputPrefs::kIid, preferences.OutVoid()), S_OK);
    SetTemplates({});
  }

  void NewMethod() { EXPECT_EQ(CreateXmlStatsOutput(IStatsOutputMethod::kIid, method.OutVoid()), S_OK); }
  void SetTemplates(const std::u16string& root) {
    EXPECT_EQ(method->SetFormat(nullptr, nullptr, preferences.get(), Bstr(root).get()), S_OK);
  }
  void Switch(std::uint32_t identifier, std::int32_t value) { preferences->SetPreference(identifier, value); }
  std::int32_t Value(std::uint32_t identifier) const {
    std::int32_t value = 0;
    preferences->GetPreference(identifier, &value);
    return value;
  }

  Status Output(IGraphCollection* graphs = nullptr) {
    return method->Output(Bstr(folder.ReportFolder()).get(), engine.Context().get(), graphs);
  }
  Status OutputLive(IGraphCollection* graphs = nullptr) {
    return method->OutputLive(engine.Context().get(), Bstr(folder.ReportFolder()).get(), graphs);
  }

  /// An element of a document, found by the names on the way down from its root; empty when there is none.
  static XmlElement At(const XmlTree& document, std::initializer_list<const char*> names) {
    XmlElement element = document.Root();
    for (const char* name : names) element = element.FirstChild(name);
    return element;
  }
  /// The text of such an element with everything in it, as a document of its own.
  std::string Part(const std::string& file, std::initializer_list<const char*> names) const {
    XmlTree document;
    EXPECT_EQ(document.Load(PathFromSystem(folder.Path(file))), S_OK) << file;
    const XmlElement element = At(document, names);
    if (!element) return "(none)";
    XmlTree part;
    part.AddRoot("part").AddCopy(element);
    std::string text = part.ToText();
    // Without declaration, the root around it, and its indentation.
    std::string plain;
    for (const std::string& line : Lines(text)) {
      if (line.starts_with("  ")) plain += line.substr(2) + "\n";
    }
    return plain;
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

  /// What the observer heard last of a file; S_FALSE when it heard nothing.
  Status FileStatus(const std::string& name) const {
    Status status = S_FALSE;
    for (const ScriptedEngine::FileReport& file : engine.files) {
      if (file.path == folder.ReportFolder() + Wide(name)) status = file.status;
    }
    return status;
  }

  TemporaryFolder folder;
  ScriptedEngine engine;
  ComPtr<IStatsOutputMethod> method;
  ComPtr<IStatsOutputPrefs> preferences;
};

}  // namespace orvo::test
