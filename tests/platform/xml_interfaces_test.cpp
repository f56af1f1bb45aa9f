#include "platform/xml_interfaces.h"

#include "platform/object.h"
#include "tests/platform/temp_folder.h"

namespace orvo {
namespace {

using test::TempFolder;

class XmlInterfacesTest : public testing::Test {
 protected:
  static ComPtr<IXmlDocument> NewDocument(const char16_t* text = nullptr) {
    ComPtr<IXmlDocument> document;
    EXPECT_EQ(CreateXmlDocument(document.Out()), S_OK);
    if (text) {
      EXPECT_EQ(document->LoadText(text), S_OK);
    }
    return document;
  }
  static ComPtr<IXmlElement> NewElement(const ComPtr<IXmlDocument>& document, const char16_t* name) {
    ComPtr<IXmlElement> element;
    EXPECT_EQ(document->CreateElement(name, element.Out()), S_OK);
    return element;
  }
  static ComPtr<IXmlElement> Select(IXmlNode* node, const char16_t* name) {
    ComPtr<IXmlNode> found;
    ComPtr<IXmlElement> element;
    EXPECT_EQ(node->SelectSingleNode(name, found.Out()), S_OK);
    EXPECT_EQ(Query(found.get(), &element), S_OK);
    return element;
  }
  static std::u16string Text(const ComPtr<IXmlDocument>& document) {
    Bstr text;
    EXPECT_EQ(document->GetText(text.Out()), S_OK);
    std::u16string_view view = text.view();
    view.remove_prefix(std::min(view.find(u'\n') + 1, view.size()));
    return std::u16string(view);
  }
  static std::u16string Name(IXmlNode* node) {
    Bstr name;
    EXPECT_EQ(node->GetNodeName(name.Out()), S_OK);
    return std::u16string(name.view());
  }
};

TEST_F(XmlInterfacesTest, ElementsStandNowhereUntilTheyAreAppended) {
  ComPtr<IXmlDocument> document = NewDocument();
  ComPtr<IXmlElement> root = NewElement(document, u"settings");
  ComPtr<IXmlElement> child = NewElement(document, u"NodeStats");
  ComPtr<IXmlNode> found;
  EXPECT_EQ(document->SelectSingleNode(u"settings", found.Out()), S_FALSE);
  EXPECT_FALSE(found);
  EXPECT_EQ(document->SelectSingleNode(u"limbo", found.Out()), S_FALSE);
  EXPECT_EQ(Text(document), u"");

  EXPECT_EQ(child->SetAttribute(u"late", Variant(std::int32_t{-7})), S_OK);
  EXPECT_EQ(root->AppendChild(child.get()), S_OK);
  EXPECT_EQ(document->AppendChild(root.get()), S_OK);
  EXPECT_EQ(child->SetAttribute(u"later", Variant(u"<\x0001>")), S_OK);
  EXPECT_EQ(Text(document), u"<settings>\n  <NodeStats late=\"-7\" later=\"&lt;\uFFFD>\" />\n</settings>\n");

  // Appending what is there already moves it to the end.
  ComPtr<IXmlElement> second = NewElement(document, u"second");
  EXPECT_EQ(root->AppendChild(second.get()), S_OK);
  EXPECT_EQ(root->AppendChild(child.get()), S_OK);
  EXPECT_EQ(document->AppendChild(root.get()), S_OK);
  EXPECT_EQ(Text(document).find(u"<second />"), 13U);
  EXPECT_EQ(Name(document.get()), u"#document");
  EXPECT_EQ(Name(child.get()), u"NodeStats");
}

TEST_F(XmlInterfacesTest, RefusesWhatWouldBreakTheTree) {
  ComPtr<IXmlDocument> document = NewDocument(u"<a><b><c/></b></a>");
  ComPtr<IXmlElement> a = Select(document.get(), u"a");
  ComPtr<IXmlElement> b = Select(a.get(), u"b");
  ComPtr<IXmlElement> c = Select(b.get(), u"c");
  EXPECT_EQ(c->AppendChild(a.get()), E_FAIL);
  EXPECT_EQ(b->AppendChild(b.get()), E_FAIL);
  EXPECT_EQ(document->AppendChild(c.get()), E_FAIL);
  EXPECT_EQ(document->AppendChild(NewElement(document, u"second").get()), E_FAIL);
  EXPECT_EQ(a->AppendChild(document.get()), E_INVALIDARG);
  EXPECT_EQ(Text(document), u"<a>\n  <b>\n    <c />\n  </b>\n</a>\n");

  struct Foreign final : Object<IXmlNode> {
    Status SelectSingleNode(const char16_t*, IXmlNode**) override { return E_NOTIMPL; }
    Status AppendChild(IXmlNode*) override { return E_NOTIMPL; }
    Status GetNodeName(BSTR*) override { return E_NOTIMPL; }
  };
  EXPECT_EQ(a->AppendChild(MakeObject<Foreign>().get()), E_INVALIDARG);

  ComPtr<IXmlElement> element;
  ComPtr<IXmlNode> node;
  Variant value;
  for (const char16_t* name : {u"", u"a b", u"1", u"a/b", u"..", u"a\xD800"}) {
    EXPECT_EQ(document->CreateElement(name, element.Out()), E_INVALIDARG);
    EXPECT_EQ(a->SelectSingleNode(name, node.Out()), E_INVALIDARG);
    EXPECT_EQ(a->SetAttribute(name, Variant(u"x")), E_INVALIDARG);
    EXPECT_EQ(a->GetAttribute(name, &value), E_INVALIDARG);
  }
  EXPECT_EQ(document->CreateElement(nullptr, element.Out()), E_POINTER);
  EXPECT_EQ(document->CreateElement(u"a", nullptr), E_POINTER);
  EXPECT_EQ(a->SelectSingleNode(nullptr, node.Out()), E_POINTER);
  EXPECT_EQ(a->SelectSingleNode(u"b", nullptr), E_POINTER);
  EXPECT_EQ(a->AppendChild(nullptr), E_POINTER);
  EXPECT_EQ(a->GetAttribute(u"x", nullptr), E_POINTER);
  EXPECT_EQ(a->SetAttribute(nullptr, value), E_POINTER);
  EXPECT_EQ(a->GetNodeName(nullptr), E_POINTER);
  EXPECT_EQ(document->GetText(nullptr), E_POINTER);
  EXPECT_EQ(document->LoadText(nullptr), E_POINTER);
  EXPECT_EQ(CreateXmlDocument(nullptr), E_POINTER);
}

TEST_F(XmlInterfacesTest, AnElementOfAnotherDocumentIsCopiedWhole) {
  ComPtr<IXmlDocument> source = NewDocument(u"<a><b x=\"1\"><c/></b></a>");
  ComPtr<IXmlElement> b = Select(Select(source.get(), u"a").get(), u"b");
  ComPtr<IXmlDocument> target = NewDocument();
  EXPECT_EQ(target->AppendChild(b.get()), S_OK);
  EXPECT_EQ(b->SetAttribute(u"x", Variant(u"2")), S_OK);
  EXPECT_EQ(Text(target), u"<b x=\"1\">\n  <c />\n</b>\n");
  EXPECT_EQ(Text(source), u"<a>\n  <b x=\"2\">\n    <c />\n  </b>\n</a>\n");
}

TEST_F(XmlInterfacesTest, HandlesOutliveTheDocumentAndItsContent) {
  ComPtr<IXmlDocument> document = NewDocument(u"<a x=\"1\"/>");
  ComPtr<IXmlElement> old = Select(document.get(), u"a");
  EXPECT_EQ(document->LoadText(u"<broken>"), E_FAIL);
  EXPECT_EQ(Text(document), u"");
  EXPECT_EQ(document->LoadText(u"<new/>"), S_OK);
  EXPECT_EQ(Select(document.get(), u"new")->AppendChild(old.get()), S_OK);
  EXPECT_EQ(Text(document), u"<new>\n  <a x=\"1\" />\n</new>\n");
  document.Reset();
  Variant value;
  EXPECT_EQ(old->GetAttribute(u"x", &value), S_OK);
  EXPECT_EQ(value.text(), u"1");
  EXPECT_EQ(old->GetAttribute(u"y", &value), S_FALSE);
  EXPECT_EQ(value.type(), VT_EMPTY);
}

TEST_F(XmlInterfacesTest, AnswersItsInterfaces) {
  ComPtr<IXmlDocument> document = NewDocument(u"<a/>");
  ComPtr<IXmlElement> a = Select(document.get(), u"a");
  ComPtr<IXmlNode> node;
  EXPECT_EQ(Query(a.get(), &node), S_OK);
  EXPECT_EQ(Query(document.get(), &node), S_OK);
  ComPtr<IXmlDocument> no_document;
  EXPECT_EQ(Query(a.get(), &no_document), E_NOINTERFACE);
  EXPECT_FALSE(no_document);
  EXPECT_EQ(a->QueryInterface(IUnknown::kIid, nullptr), E_POINTER);
}

TEST_F(XmlInterfacesTest, SavesAndLoadsFilesAndReportsWantOfMemory) {
  TempFolder folder;
  ComPtr<IXmlDocument> document = NewDocument(u"<?xml version=\"1.0\" encoding=\"utf-16\"?><!--c--><a x=\"\u00E9\"/>");
  EXPECT_EQ(document->Save(folder.Path("s.xml").c_str()), S_OK);
  EXPECT_EQ(folder.Get("s.xml"), "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<!--c-->\n<a x=\"\xC3\xA9\" />\n");
  ComPtr<IXmlDocument> loaded = NewDocument();
  EXPECT_EQ(loaded->Load(folder.Path("s.xml").c_str()), S_OK);
  EXPECT_EQ(Text(loaded), Text(document));
  EXPECT_EQ(loaded->Load(folder.Path("none.xml").c_str()), StatusFromError(kErrorFileNotFound));
  EXPECT_EQ(Text(loaded), u"");

  Bstr text;
  FailStringAllocation(0);
  EXPECT_EQ(document->GetText(text.Out()), E_OUTOFMEMORY);
  EXPECT_EQ(document->GetText(text.Out()), S_OK);
}

}  // namespace
}  // namespace orvo
