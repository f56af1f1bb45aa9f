#include "platform/xml_tree.h"

#include "platform/error.h"
#include "tests/platform/temp_folder.h"

namespace orvo {
namespace {

using test::TempFolder;

const std::string kDeclaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";

std::string Repeated(const std::string& text, unsigned count) {
  std::string result;
  for (unsigned i = 0; i < count; ++i) result += text;
  return result;
}

TEST(XmlTreeTest, WritesWhatWasBuilt) {
  XmlTree tree;
  EXPECT_FALSE(tree.Root());
  EXPECT_EQ(tree.ToText(), kDeclaration);
  XmlElement root = tree.AddRoot("report");
  root.SetAttribute("name", u"a \"b\" & <c>\n");
  root.SetAttribute("name", u"a \"b\" & <c>\t");
  root.AddComment(u"two -- hyphens -");
  XmlElement item = root.AddElement("item", u"1 < 2 & caf\u00E9 \U0001F600");
  EXPECT_EQ(item.Name(), u"item");
  root.RemoveChild(root.AddElement("removed"));
  root.AddElement("empty", u"");
  EXPECT_EQ(tree.ToText(), kDeclaration +
                               "<report name=\"a &quot;b&quot; &amp; &lt;c>&#09;\">\n"
                               "  <!--two - - hyphens - -->\n"
                               "  <item>1 &lt; 2 &amp; caf\xC3\xA9 \xF0\x9F\x98\x80</item>\n"
                               "  <empty />\n"
                               "</report>\n");
  XmlTree again;
  ASSERT_EQ(again.LoadText(tree.ToText()), S_OK);
  EXPECT_EQ(again.Root().Attribute("name"), u"a \"b\" & <c>\t");
  EXPECT_EQ(again.Root().FirstChild("item").Text(), u"1 < 2 & caf\u00E9 \U0001F600");
  EXPECT_EQ(again.Root().FirstChild("item").NextSibling().Name(), u"empty");
  EXPECT_EQ(again.ToText(), tree.ToText());

  try {
    tree.AddRoot("second");
    ADD_FAILURE() << "a second document element";
  } catch (const StatusError& error) {
    EXPECT_EQ(error.status(), E_FAIL);
  }
}

TEST(XmlTreeTest, AnEmptyHandleAnswersEverything) {
  XmlElement none;
  EXPECT_EQ(none.Name(), u"");
  EXPECT_EQ(none.Text(), u"");
  EXPECT_EQ(none.Attribute("a"), std::nullopt);
  EXPECT_FALSE(none.FirstChild().NextSibling("x"));
  none.SetAttribute("a", u"b");
  none.AddComment(u"c");
  none.RemoveChild(none);
  EXPECT_FALSE(none.AddElement("a", u"text"));
}

TEST(XmlTreeTest, ElementsAreCopiedFromTreeToTreeAndRootsReplaced) {
  XmlTree source;
  EXPECT_EQ(source.LoadText("<!--kept--><a><b c='1'>text<d/></b></a>"), S_OK);
  XmlTree target;
  XmlElement root = target.AddRoot("root");
  EXPECT_FALSE(root.AddCopy(XmlElement()));
  EXPECT_EQ(root.AddCopy(source.Root().FirstChild("b")).Name(), u"b");
  source.RemoveRoot();
  EXPECT_FALSE(source.Root());
  source.RemoveRoot();  // nothing is left to remove
  source.AddRoot("e");
  EXPECT_EQ(source.ToText(), kDeclaration + "<!--kept-->\n<e />\n");
  EXPECT_EQ(root.FirstChild("b").Attribute("c"), u"1");
  EXPECT_EQ(root.FirstChild("b").Text(), u"text");
  EXPECT_TRUE(root.FirstChild("b").FirstChild("d"));
}

TEST(XmlTreeTest, ForbiddenCharactersAreReplacedWhereTheyAreSet) {
  XmlTree tree;
  XmlElement root = tree.AddRoot("a");
  root.SetAttribute("b", std::u16string(u"\0\u0001\uFFFE\uFFFF\xD800x\xDC00\r\n", 9));
  EXPECT_EQ(root.Attribute("b"), u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDx\uFFFD\r\n");
  for (const char* name : {"", "1a", "a b", "a>", "-a", "a\xC3", "a\xC3\x97"}) {
    EXPECT_THROW(root.AddElement(name), StatusError) << name;
    EXPECT_THROW(root.SetAttribute(name, u""), StatusError) << name;
  }
  EXPECT_TRUE(root.AddElement("xsi:type-1.\xC3\xA9"));
}

TEST(XmlTreeTest, RefusesWhatIsNoDocument) {
  const std::string kBad[] = {
      "",
      " ",
      "text",
      "<a>",
      "<a></b>",
      "<a/><b/>",
      "<a/>text",
      "text<a/>",
      "<a b='1' b='2'/>",
      "<a b=1/>",
      "<a b/>",
      "<1a/>",
      "<a\xFF/>",
      "<a><!-- </a>",
      "<a><![CDATA[</a>",
      "<!DOCTYPE a [<!ELEMENT a",
      std::string("<a/>\0<b/>", 9),
      Repeated("<a>", kXmlDepthLimit + 1) + Repeated("</a>", kXmlDepthLimit + 1),
      Repeated("<a>", 500'000),
  };
  XmlTree tree;
  for (const std::string& text : kBad) {
    ASSERT_EQ(tree.LoadText("<before/>"), S_OK);
    EXPECT_EQ(tree.LoadText(text), E_FAIL) << text.substr(0, 80);
    EXPECT_FALSE(tree.Root());
  }
  EXPECT_EQ(tree.LoadText(Repeated("<a>", kXmlDepthLimit) + "text" + Repeated("</a>", kXmlDepthLimit)), S_OK);
}

TEST(XmlTreeTest, FollowsNoEntities) {
  XmlTree tree;
  ASSERT_EQ(tree.LoadText("<!DOCTYPE a [<!ENTITY x SYSTEM \"file:///etc/passwd\"><!ENTITY y \"yyyy\">]>"
                          "<a b='&y;'>&x;&lt;&#65;&#x42;</a>"),
            S_OK);
  EXPECT_EQ(tree.Root().Text(), u"&x;<AB");
  EXPECT_EQ(tree.Root().Attribute("b"), u"&y;");
  EXPECT_EQ(tree.ToText(), kDeclaration + "<a b=\"&amp;y;\">&amp;x;&lt;AB</a>\n");
}

TEST(XmlTreeTest, MalformedCharactersNeverReachTheOutput) {
  XmlTree tree;
  ASSERT_EQ(tree.LoadText("<a b='\xFF\xC3'><!--\x80--><![CDATA[\xED\xA0\x80]]>&#1;&#xD800;&#x110000;\x02</a>"), S_OK);
  std::string text = tree.ToText();
  for (char c : text) EXPECT_TRUE(static_cast<unsigned char>(c) >= 0x20 || c == '\n');
  EXPECT_EQ(text.find("&#"), text.npos);
  EXPECT_EQ(tree.Root().Attribute("b"), u"\uFFFD\uFFFD");
  XmlTree again;
  ASSERT_EQ(again.LoadText(text), S_OK);
  EXPECT_EQ(again.ToText(), text);
}

TEST(XmlTreeTest, LoadsAndSavesFiles) {
  TempFolder folder;
  const std::u16string wide = u"<?xml version=\"1.0\"?><a b=\"\u00E9\"/>";
  auto utf16 = [&](bool big_endian, bool mark) {
    std::string bytes;
    for (char16_t unit : (mark ? u"\uFEFF" + wide : wide)) {
      char low = static_cast<char>(unit & 0xFF), high = static_cast<char>(unit >> 8);
      bytes += big_endian ? high : low;
      bytes += big_endian ? low : high;
    }
    return bytes;
  };
  const std::string kInputs[] = {"<a b=\"\xC3\xA9\"/>", "\xEF\xBB\xBF<a b=\"\xC3\xA9\"/>",
                                 utf16(true, true),     utf16(false, true),
                                 utf16(true, false),    utf16(false, false)};
  XmlTree tree;
  for (const std::string& input : kInputs) {
    folder.Put("in.xml", input);
    ASSERT_EQ(tree.Load(folder.Path("in.xml")), S_OK);
    EXPECT_EQ(tree.Root().Attribute("b"), u"\u00E9");
  }
  ASSERT_EQ(tree.Save(folder.Path("out.xml")), S_OK);
  EXPECT_EQ(folder.Get("out.xml"), kDeclaration + "<a b=\"\xC3\xA9\" />\n");
  EXPECT_EQ(tree.Load(folder.Path("none.xml")), StatusFromError(kErrorFileNotFound));
  EXPECT_FALSE(tree.Root());
  EXPECT_EQ(tree.Load(u"\\dev\\zero"), StatusFromError(kErrorAccessDenied));
}

}  // namespace
}  // namespace orvo
