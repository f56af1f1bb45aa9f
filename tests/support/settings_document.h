#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/code_page.h"
#include "platform/xml_interfaces.h"

namespace orvo::test {

/// A document with an element <settings>, which objects are loaded from and saved into.
class SettingsDocument {
 public:
  explicit SettingsDocument(const std::string& inside = {}) {
    EXPECT_EQ(CreateXmlDocument(document_.Out()), S_OK);
    EXPECT_EQ(document_->LoadText(FromUtf8("<settings>" + inside + "</settings>").c_str()), S_OK);
    EXPECT_EQ(document_->SelectSingleNode(u"settings", node_.Out()), S_OK);
  }

  template <class T>
  static ComPtr<IPersistXml> PersistOf(const ComPtr<T>& object) {
    ComPtr<IPersistXml> persist;
    EXPECT_EQ(Query(object.get(), &persist), S_OK);
    return persist;
  }
  template <class T>
  Status LoadInto(const ComPtr<T>& object) const {
    return PersistOf(object)->Load(document_.get(), node_.get());
  }
  template <class T>
  Status SaveFrom(const ComPtr<T>& object) const {
    return PersistOf(object)->Save(document_.get(), node_.get());
  }

  std::string Text() const {
    Bstr text;
    EXPECT_EQ(document_->GetText(text.Out()), S_OK);
    return ToUtf8(text.view());
  }
  IXmlDocument* document() const { return document_.get(); }
  IXmlNode* node() const { return node_.get(); }

 private:
  ComPtr<IXmlDocument> document_;
  ComPtr<IXmlNode> node_;
};

}  // namespace orvo::test
