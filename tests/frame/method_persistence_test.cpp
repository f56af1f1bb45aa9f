#include "frame/method_persistence.h"

#include <gtest/gtest.h>

#include "platform/object.h"
#include "platform/xml_interfaces.h"

namespace orvo {
namespace {

class Stranger final : public Object<IUnknown> {
  void* FindInterface(const Guid& iid) override {
    return iid == IUnknown::kIid ? static_cast<IUnknown*>(this) : nullptr;
  }
};

class MethodPersistence : public testing::Test {
 protected:
  MethodPersistence() {
    EXPECT_EQ(CreateXmlDocument(document_.Out()), S_OK);
    EXPECT_EQ(document_->LoadText(u"<csvstatsoutput><below/></csvstatsoutput>"), S_OK);
    EXPECT_EQ(document_->SelectSingleNode(u"csvstatsoutput", node_.Out()), S_OK);
  }
  ~MethodPersistence() override { FailStringAllocation(-1); }

  std::u16string Text() {
    Bstr text;
    EXPECT_EQ(document_->GetText(text.Out()), S_OK);
    return std::u16string(text.view());
  }

  ComPtr<IXmlDocument> document_;
  ComPtr<IXmlNode> node_;
};

TEST_F(MethodPersistence, FindsNothingButADocumentElement) {
  const std::pair<const char16_t*, Status> cases[] = {
      {u"csvstatsoutput", S_OK}, {u"xmlstatsoutput", S_FALSE}, {u"below", S_FALSE}};
  for (const auto& [element, status] : cases) {
    for (bool text_method : {true, false}) {
      EXPECT_EQ(LoadMethodElement(document_.get(), node_.get(), element, text_method), status);
    }
  }
}

TEST_F(MethodPersistence, SavesNothing) {
  std::u16string before = Text();
  for (bool text_method : {true, false}) {
    EXPECT_EQ(SaveMethodElement(document_.get(), node_.get(), u"pdfstatsoutput", text_method), S_OK);
  }
  EXPECT_EQ(Text(), before);
}

TEST_F(MethodPersistence, TellsWhatIsWrongWithItsArguments) {
  ComPtr<Stranger> stranger = MakeObject<Stranger>();
  const std::tuple<IUnknown*, IUnknown*, Status> cases[] = {
      {nullptr, node_.get(), E_POINTER},
      {document_.get(), nullptr, E_POINTER},
      {stranger.get(), node_.get(), E_NOINTERFACE},
      {document_.get(), stranger.get(), E_NOINTERFACE},
  };
  for (const auto& [document, node, status] : cases) {
    for (auto* operation : {LoadMethodElement, SaveMethodElement}) {
      EXPECT_EQ(operation(document, node, u"csvstatsoutput", true), E_FAIL);
      EXPECT_EQ(operation(document, node, u"xmlstatsoutput", false), status);
    }
  }
}

TEST_F(MethodPersistence, NeedsMemoryForTheName) {
  for (auto* operation : {LoadMethodElement, SaveMethodElement}) {
    for (bool text_method : {true, false}) {
      FailStringAllocation(0);
      EXPECT_EQ(operation(document_.get(), node_.get(), u"csvstatsoutput", text_method), E_OUTOFMEMORY);
      EXPECT_EQ(operation(document_.get(), node_.get(), u"csvstatsoutput", text_method), S_OK);
    }
  }
}

}  // namespace
}  // namespace orvo
