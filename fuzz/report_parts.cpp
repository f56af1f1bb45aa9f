// A document of an earlier report, of which parts are taken over into the next one.

#include "fuzz/support/target.h"
#include "platform/path.h"
#include "platform/xml_parts.h"
#include "platform/xml_tree.h"

namespace orvo::fuzz {

void TestOneInput(Input input) {
  const MemoryFile file(input);
  const std::u16string path = PathFromSystem(file.path());
  XmlParts parts;
  XmlTree tree;
  const Status loaded = tree.Load(path);
  const Status status = parts.Load(path);
  Require(Failed(status) || Succeeded(loaded), "nothing is taken over that the parser refuses");
  if (Failed(status)) {
    Require(parts.parts().empty(), "nothing is kept of a document that cannot be read");
    return;
  }
  std::string text(parts.head());
  const TextSink put = [&text](std::string_view piece) { text += piece; };
  for (const XmlParts::Part& part : parts.parts()) {
    parts.Copy(part, put);
    if (part.name.empty()) continue;
    for (const char* name : {"Summary", "Stats"}) {
      std::string history = "<History>\n";
      parts.CopyChild(part, name, [&history](std::string_view piece) { history += piece; });
      XmlTree entry;
      Require(entry.LoadText(history + "</History>\n") == S_OK, "a child of a part is whole");
    }
  }
  text.append("</").append(parts.root()).append(">").append(parts.tail());
  XmlTree again;
  Require(again.LoadText(text) == S_OK, "the parts make a document again");
}

void MakeSeeds(const SeedSink& add) {
  constexpr const char* kHead = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";
  add(std::string(kHead) + "<StatsReport />\n");
  add(std::string(kHead) +
      "<StatsReport>\n  <NodeStatistics Version=\"2.0\">\n    <Summary>\n      <Packets>1</Packets>\n    </Summary>\n"
      "    <Stats />\n  </NodeStatistics>\n  <Graphs />\n</StatsReport>\n");
  add("<StatsReport><!-- c --><A v='1&amp;'><![CDATA[x]]></A></StatsReport>");
  add("<?xml version='1.0' encoding='iso-8859-1'?><!-- a --><S:R N='1'>t<A><Stats>x<B/>y</Stats></A></S:R><?p i?>");
}

}  // namespace orvo::fuzz
