// The settings document, from XML to switches and back.

#include "fuzz/support/target.h"
#include "platform/code_page.h"
#include "platform/path.h"
#include "platform/xml_interfaces.h"
#include "prefs/stats_output_prefs.h"

namespace orvo::fuzz {
namespace {

ComPtr<IXmlDocument> NewDocument() {
  ComPtr<IXmlDocument> document;
  Require(CreateXmlDocument(document.Out()) == S_OK, "there is memory for a document");
  return document;
}

std::u16string TextOf(IXmlDocument* document) {
  Bstr text;
  Require(document->GetText(text.Out()) == S_OK, "a document has a text");
  return std::u16string(text.view());
}

/// What was loaded can be written, and reads as the same again.
void CheckText(IXmlDocument* document) {
  const std::u16string text = TextOf(document);
  ComPtr<IXmlDocument> again = NewDocument();
  Require(again->LoadText(text.c_str()) == S_OK, "the text of a document loads");
  Require(TextOf(again.get()) == text, "it loads as the same document");
}

void CheckSwitches(const ComPtr<StatsOutputPrefs>& prefs) {
  ComPtr<IXmlDocument> document = NewDocument();
  Require(prefs->Save(document.get(), document.get()) == S_OK, "switches can be saved");
  auto loaded = MakeObject<StatsOutputPrefs>();
  Require(loaded->Load(document.get(), document.get()) == S_OK, "what was saved loads");
  for (std::uint32_t i = 0; i < kSwitchIdLimit; ++i) {
    std::int32_t one = 0;
    std::int32_t other = 0;
    Require(prefs->GetPreference(i, &one) == S_OK && loaded->GetPreference(i, &other) == S_OK, "switches have values");
    Require(one == other, "a switch keeps its value");
  }
}

}  // namespace

/// The first byte tells whether the rest is a file or a text.
void TestOneInput(Input input) {
  ComPtr<IXmlDocument> document = NewDocument();
  const bool is_text = (TakeByte(&input) & 1U) != 0;
  Status status = S_OK;
  if (is_text) {
    status = document->LoadText(FromUtf8(AsText(input)).c_str());
  } else {
    const MemoryFile file(input);
    status = document->Load(PathFromSystem(file.path()).c_str());
  }
  if (Succeeded(status)) CheckText(document.get());
  auto prefs = MakeObject<StatsOutputPrefs>();
  // Also after a failure: switches read before it stay.
  prefs->Load(document.get(), document.get());
  CheckSwitches(prefs);
}

void MakeSeeds(const SeedSink& add) {
  auto prefs = MakeObject<StatsOutputPrefs>();
  ComPtr<IXmlDocument> document = NewDocument();
  Require(prefs->Save(document.get(), document.get()) == S_OK, "switches can be saved");
  const std::string text = ToUtf8(TextOf(document.get()));
  add('\0' + text);
  add('\1' + text);
  add("\1<StatsOutputPrefs><NodeStats OutputNodeStats=\"-1\" NodeTypeIP=\" 7\"/><Graphs/></StatsOutputPrefs>");
  add("\1<?xml version=\"1.0\"?><!DOCTYPE a [<!ENTITY b \"c\">]><!-- d --><a>&amp;&#233;<![CDATA[e]]></a>");
}

}  // namespace orvo::fuzz
