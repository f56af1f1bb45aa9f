// Documents that grow: written as a stream, read back as parts, extended in place of what was there.

#include "platform/xml_parts.h"

#include <gmock/gmock.h>

#include <fstream>

#include "platform/error.h"
#include "platform/xml_text.h"
#include "platform/xml_tree.h"
#include "platform/xml_writer.h"
#include "tests/support/temporary_folder.h"

namespace orvo::test {
namespace {

constexpr const char* kHead = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";

class XmlPartsTest : public testing::Test {
 protected:
  std::u16string Path(const std::string& name) const { return PathFromSystem(folder_.Path(name)); }
  /// The file after a line was added to it.
  std::string Extended(const std::string& bytes) {
    folder_.Write("x.xml", bytes);
    EXPECT_EQ(ExtendXmlFile(Path("x.xml"), "Root", "  <New />\n"), S_OK);
    return folder_.Read("x.xml");
  }

  static TextSink Into(std::string* text) {
    return [text](std::string_view piece) { *text += piece; };
  }
  static std::string Lines(const XmlParts& parts, const XmlParts::Part& part) {
    std::string lines;
    parts.Copy(part, Into(&lines));
    return lines;
  }
  static std::string Child(const XmlParts& parts, const XmlParts::Part& part, std::string_view name) {
    std::string lines;
    parts.CopyChild(part, name, Into(&lines));
    return lines;
  }

  // In memory where that can be, as every file is made durable.
  TemporaryFolder folder_{std::filesystem::is_directory("/dev/shm") ? "/dev/shm"
                                                                    : std::filesystem::temp_directory_path()};
};

TEST_F(XmlPartsTest, AStreamWritesWhatATreeWrites) {
  const std::u16string texts[] = {u"", u"plain", u"a<b>&\"c\"'", u"\U0001F600 \u00E9",
                                  std::u16string(1, 0xD800) + u"\x01 \uFFFF"};
  XmlTree tree;
  XmlElement root = tree.AddRoot("Root");
  {
    XmlFile file(Path("stream.xml"));
    const XmlWriter writer = file.Add("Root");
    for (const std::u16string& text : texts) {
      XmlElement element = root.AddElement("Row");
      element.SetAttribute("Name", text);
      element.SetAttribute("Other", text);
      element.AddElement("Text", text);
      element.AddElement("Inner").AddElement("Empty");
      const XmlWriter row = writer.AddElement("Row");
      row.SetAttribute("Name", text);
      row.SetAttribute("Other", text);
      row.AddElement("Text", text);
      row.AddElement("Inner").AddElement("Empty");
    }
    root.AddElement("Last");
    writer.AddElement("Last");
    EXPECT_FALSE(folder_.Has("stream.xml")) << "not before it is complete";
    file.Commit();
  }
  EXPECT_EQ(folder_.Read("stream.xml"), tree.ToText());
  XmlStream stream(1);
  EXPECT_THROW(stream.Add("no name"), StatusError);
  EXPECT_THROW(stream.Add("Root").AddElement("1"), StatusError);
}

TEST_F(XmlPartsTest, WhiteSpaceOfTextsIsReadBack) {
  const std::u16string text = u"a\tb\nc\rd";
  XmlFile file(Path("x.xml"));
  const XmlWriter root = file.Add("Root");
  root.SetAttribute("Name", text);
  root.AddElement("Text", text);
  file.Commit();
  XmlTree tree;
  ASSERT_EQ(tree.Load(Path("x.xml")), S_OK);
  EXPECT_EQ(tree.Root().Attribute("Name"), text);
  EXPECT_EQ(tree.Root().FirstChild("Text").Text(), text);
}

TEST_F(XmlPartsTest, FindsPartsAndWhatIsInThem) {
  folder_.Write("x.xml", std::string(kHead) +
                             "<Root>\n  <A V=\"1\">\n    <Summary>\n      <N>1</N>\n    </Summary>\n    <Stats />\n"
                             "  </A>\n  <B />\n  <C>c</C>\n  <A />\n</Root>\n");
  XmlParts parts;
  ASSERT_EQ(parts.Load(Path("x.xml")), S_OK);
  EXPECT_EQ(parts.root(), "Root");
  std::string names;
  for (const XmlParts::Part& part : parts.parts()) names += part.name;
  EXPECT_EQ(names, "ABCA");
  const XmlParts::Part first = parts.Take("A");
  EXPECT_EQ(Child(parts, first, "Summary"), "    <Summary>\n      <N>1</N>\n    </Summary>\n");
  EXPECT_EQ(Child(parts, first, "Stats"), "    <Stats />\n");
  EXPECT_EQ(Child(parts, first, "N"), "");
  EXPECT_EQ(Lines(parts, parts.Take("C")), "  <C>c</C>\n");
  EXPECT_EQ(Lines(parts, parts.Take("A")), "  <A />\n");
  EXPECT_TRUE(parts.Take("A").empty());
}

TEST_F(XmlPartsTest, ExtendsDocumentsOfAnyLayout) {
  const std::string kept = std::string(kHead) + "<Root>\n  <Old>1</Old>\n  <New />\n</Root>\n";
  const std::string body = "<Root><Old>1</Old></Root>";
  std::string wide("\xFF\xFE", 2);
  for (char c : body) wide += std::string{c, '\0'};
  for (const std::string& bytes :
       {std::string(kHead) + "<Root>\n  <Old>1</Old>\n</Root>\n", body, "\xEF\xBB\xBF" + body, wide,
        std::string(kHead) + "<Root>\r\n  <Old>1</Old>\r\n</Root>\r\n"}) {
    EXPECT_EQ(Extended(bytes), kept) << bytes;
  }
  const std::string fresh = std::string(kHead) + "<Root>\n  <New />\n</Root>\n";
  EXPECT_EQ(Extended(std::string(kHead) + "<Root />\n"), fresh);
  EXPECT_EQ(ExtendXmlFile(Path("none.xml"), "Root", ""), S_OK);
  EXPECT_EQ(folder_.Read("none.xml"), std::string(kHead) + "<Root>\n</Root>\n");
}

TEST_F(XmlPartsTest, NothingThatAnotherProgramWroteIsLost) {
  const std::pair<std::string, std::string> cases[] = {
      {R"(<!-- a --><?style x?><Root A="1"><Old N="x">text</Old></Root><!-- z -->)",
       "<!-- a -->\n<?style x?>\n<Root A=\"1\">\n  <Old N=\"x\">text</Old>\n  <New />\n</Root>\n<!-- z -->\n"},
      {"<Root>\n  <o:Old o:N=\"1\" />\n  <Gr\u00F6\u00DFe />\n</Root>\n",
       "<Root>\n  <o:Old o:N=\"1\" />\n  <Gr\u00F6\u00DFe />\n  <New />\n</Root>\n"},
      {"<Root><Old>a<B />c<!-- d --></Old><!-- e --></Root>",
       "<Root>\n  <Old>a<B />c<!-- d -->\n  </Old>\n  <!-- e -->\n  <New />\n</Root>\n"},
      {"<Root><Old><![CDATA[a<\n</Root>]]></Old></Root>",
       "<Root>\n  <Old><![CDATA[a<\n</Root>]]></Old>\n  <New />\n</Root>\n"},
      {"<Root>\n  <Old>]]></Old>\n</Root>\n", "<Root>\n  <Old>]]&gt;</Old>\n  <New />\n</Root>\n"},
  };
  for (const auto& [bytes, kept] : cases) {
    EXPECT_EQ(Extended(kHead + bytes), kHead + kept);
    // As a document that is written again.
    folder_.Write("x.xml", kHead + bytes);
    XmlParts parts;
    ASSERT_EQ(parts.Load(Path("x.xml")), S_OK);
    parts.Save(Path("x.xml"), "Root", {"  <New />\n"});
    EXPECT_EQ(folder_.Read("x.xml"), kHead + kept);
  }
  EXPECT_THAT(Extended("<?xml version='1.0' encoding = 'windows-1252'?><Root><Old N=\"\x80\xE9\" /></Root>"),
              testing::HasSubstr("N=\"\u20AC\u00E9\""));
  std::string many = "<Root>\n  <Old";
  for (char name = 'a'; name <= 'z'; ++name) many += std::string(" ") + name + "=\"\"";
  EXPECT_THAT(Extended(kHead + many + " />\n</Root>\n"), testing::HasSubstr("z=\"\""));
}

TEST_F(XmlPartsTest, ChildrenAreFoundWhereTextLooksLikeMarkup) {
  const std::string text = "<![CDATA[\n    </Summary>\n    <Stats>\n]]>";
  folder_.Write("x.xml", "<Root><A><Summary>" + text + "</Summary><Stats /></A></Root>");
  XmlParts parts;
  ASSERT_EQ(parts.Load(Path("x.xml")), S_OK);
  const XmlParts::Part part = parts.Take("A");
  EXPECT_EQ(Child(parts, part, "Summary"), "    <Summary>" + text + "</Summary>\n");
  EXPECT_EQ(Child(parts, part, "Stats"), "    <Stats />\n");
  EXPECT_EQ(Child(parts, part, "None"), "");
}

// Neither the size of a document that was written here nor what lies in the way of its lines is a reason to lose it.
TEST_F(XmlPartsTest, ADocumentMayBeLargerThanWhatIsParsed) {
  constexpr std::size_t kLine = std::size_t{3} << 20;
  const std::string line = "    <Summary>" + std::string(kLine, 'x') + "</Summary>\n";
  {
    std::ofstream file(folder_.Path("x.xml"));
    file << kHead << "<Root>\n  <A>\n    <Stats />\n  </A>\n  <B>\n";
    for (std::size_t size = 0; size <= kXmlSizeLimit; size += line.size()) file << line;
    file << "  </B>\n</Root>\n";
  }
  XmlParts parts;
  ASSERT_EQ(parts.Load(Path("x.xml")), S_OK);
  const XmlParts::Part large = parts.Take("B");
  EXPECT_EQ(Child(parts, large, "Summary"), line);
  parts.Save(Path("x.xml"), "Root", {"  <New />\n"});
  EXPECT_EQ(folder_.Read("x.xml"), std::string(kHead) + "<Root>\n  <A>\n    <Stats />\n  </A>\n  <New />\n</Root>\n");
  EXPECT_GT(large.end - large.begin, kXmlSizeLimit);
}

TEST_F(XmlPartsTest, ATreeOfManyTimesTheSizeIsNotMade) {
  std::string bytes = "<Root>";
  while (bytes.size() < kXmlTreeLimit / 16) bytes += "<a/>";
  folder_.Write("x.xml", bytes + "</Root>");
  XmlParts parts;
  EXPECT_EQ(parts.Load(Path("x.xml")), E_OUTOFMEMORY);
  EXPECT_EQ(ExtendXmlFile(Path("x.xml"), "Root", ""), E_OUTOFMEMORY);
  EXPECT_EQ(std::filesystem::file_size(folder_.Path("x.xml")), bytes.size() + 7) << "left alone";
}

TEST_F(XmlPartsTest, WhatIsNoSuchDocumentIsBegunAnew) {
  const std::string fresh = std::string(kHead) + "<Root>\n  <New />\n</Root>\n";
  const std::string head = kHead;
  std::string deep = head + "<Root>\n";
  for (int i = 1; i < 5000; ++i) deep += std::string(static_cast<std::size_t>(i) * 2, ' ') + "<D>\n";
  for (const std::string& bytes :
       {std::string(), std::string("\0\0\0", 3), head, head + "<Root>\n  <Old>1</Old>\n",
        head + "<Other>\n  <Old />\n</Other>\n", head + "<Root>\n  <Old>1</Old>\n</Root>\n<Root />\n",
        head + "<Root>\n  <Old>\n</Root>\n", head + "<Root>\n  <Old>1</Odl>\n</Root>\n",
        head + "<Root>\n  <Old>a < b</Old>\n</Root>\n", head + "<Root>\n  <Old A=\"1\" A=\"2\" />\n</Root>\n",
        head + "<Root>\n  <Old A=\"<\" />\n</Rot>\n", head + "<Root>\n  text\n</Root>\n</Root>\n", deep,
        std::string("<Root>") + std::string(300, '<') + "</Root>"}) {
    EXPECT_EQ(Extended(bytes), fresh) << bytes.substr(0, 100);
  }
}

TEST_F(XmlPartsTest, DeclaredEntitiesAreNotFollowed) {
  folder_.Write("secret", "secret");
  const std::string bytes = Extended("<!DOCTYPE Root [<!ENTITY e SYSTEM \"file://" + folder_.Path("secret") +
                                     R"("><!ENTITY l "&l2;&l2;"><!ENTITY l2 "lol">]><Root><Old>&e;&l;</Old></Root>)");
  EXPECT_EQ(bytes.find("secret<"), bytes.npos);
  XmlTree tree;
  ASSERT_EQ(tree.Load(Path("x.xml")), S_OK);
  EXPECT_TRUE(tree.Root().FirstChild("New"));
}

TEST_F(XmlPartsTest, FileThatCannotBeReplacedStaysAsItWas) {
  std::filesystem::create_directory(folder_.Path("x.xml"));
  EXPECT_TRUE(Failed(ExtendXmlFile(Path("x.xml"), "Root", "")));
  EXPECT_TRUE(Failed(ExtendXmlFile(Path("none/x.xml"), "Root", "")));
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"x.xml"});
}

// Every prefix and every changed byte of a document: what the quick check lets pass, the parser must accept.
TEST_F(XmlPartsTest, TheQuickCheckLetsNothingPassThatTheParserRefuses) {
  const std::string good =
      std::string(kHead) + "<Root>\n  <A V=\"1&lt;\" W=\"\">\n    <B>x&amp;\xC3\xA9</B>\n  </A>\n</Root>\n";
  const auto check = [&](const std::string& bytes) {
    folder_.Write("x.xml", bytes);
    ASSERT_EQ(ExtendXmlFile(Path("x.xml"), "Root", "  <New />\n"), S_OK);
    XmlTree tree;
    ASSERT_EQ(tree.Load(Path("x.xml")), S_OK) << bytes << "\nbecame\n" << folder_.Read("x.xml");
    ASSERT_TRUE(tree.Root().FirstChild("New")) << bytes;
  };
  for (std::size_t at = std::string(kHead).size(); at < good.size(); ++at) {
    check(good.substr(0, at));
    for (char other : {'<', '>', '&', '"', '/', ' ', '\n', 'a', '\x01', '\xFF'}) {
      std::string changed = good;
      changed[at] = other;
      check(changed);
    }
  }
}

}  // namespace
}  // namespace orvo::test
