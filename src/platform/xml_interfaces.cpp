#include "platform/xml_interfaces.h"

#include <memory>
#include <pugixml.hpp>

#include "platform/code_page.h"
#include "platform/error.h"
#include "platform/file.h"
#include "platform/object.h"
#include "platform/xml_text.h"

namespace orvo {
namespace {

/// What the handles of one document share. Elements that stand nowhere hang below an element of their own, which no
/// operation shows; so all of them live in one tree, and appending one moves it without changing its address.
struct Content {
  pugi::xml_document document;
  pugi::xml_node limbo;

  pugi::xml_node Root() const {
    return document.find_child(
        [this](pugi::xml_node node) { return node.type() == pugi::node_element && node != limbo; });
  }
};

/// Content with `document` parsed and the limbo in place; the content is replaced as a whole, so that handles into the
/// old one stay valid.
template <class Parse>
std::shared_ptr<Content> NewContent(Parse&& parse) {
  auto content = std::make_shared<Content>();
  Check(parse(&content->document));
  content->limbo = content->document.append_child("limbo");
  if (!content->limbo) Raise(E_OUTOFMEMORY);
  return content;
}

std::shared_ptr<Content> EmptyContent() {
  return NewContent([](pugi::xml_document*) { return S_OK; });
}

/// Where a handle points to: an element, or the document itself.
struct Place {
  std::shared_ptr<Content> content;
  pugi::xml_node node;

  bool is_document() const { return node == content->document; }
};

/// Tells the handles of this file from those of others.
class INodeHandle : public IUnknown {
 public:
  static constexpr Guid kIid = "5B7C1E52-0F3D-4B0F-9A64-2D1C0B7B5D0F"_guid;
  virtual Place Where() const = 0;

 protected:
  ~INodeHandle() = default;
};

/// The UTF-8 form of a name; raises E_INVALIDARG for what is none.
std::string CheckedName(const char16_t* name) {
  std::string utf8 = ToUtf8(name);
  if (!IsXmlName(utf8)) Raise(E_INVALIDARG);
  return utf8;
}

Status SelectElement(const Place& place, const char16_t* name, IXmlNode** out);

void Append(const Place& target, IXmlNode* child) {
  ComPtr<INodeHandle> handle;
  if (Failed(Query(child, &handle))) Raise(E_INVALIDARG);
  Place moved = handle->Where();
  if (moved.is_document()) Raise(E_INVALIDARG);
  if (target.is_document()) {
    pugi::xml_node root = target.content->Root();
    if (root && root != moved.node) Raise(E_FAIL);
  }
  pugi::xml_node node = target.node;
  if (moved.content == target.content) {
    if (!node.append_move(moved.node)) Raise(E_FAIL);
  } else if (!node.append_copy(moved.node)) {
    Raise(E_OUTOFMEMORY);
  }
}

/// The operations that elements and documents have in common.
template <class Interface>
class NodeObject : public Object<Interface, INodeHandle> {
 public:
  Status SelectSingleNode(const char16_t* name, IXmlNode** node) override {
    if (!node) return E_POINTER;
    *node = nullptr;
    if (!name) return E_POINTER;
    return Guard([&] { return SelectElement(this->Where(), name, node); });
  }

  Status AppendChild(IXmlNode* child) override {
    if (!child) return E_POINTER;
    return Guard([&] { Append(this->Where(), child); });
  }

  Status GetNodeName(BSTR* name) override {
    if (!name) return E_POINTER;
    *name = nullptr;
    return Guard([&] {
      Place place = this->Where();
      *name = Bstr(place.is_document() ? u"#document" : FromUtf8(place.node.name())).Detach();
    });
  }

 protected:
  void* FindInterface(const Guid& iid) override {
    if (iid == IXmlNode::kIid) return static_cast<IXmlNode*>(this);
    return Object<Interface, INodeHandle>::FindInterface(iid);
  }
};

class ElementObject final : public NodeObject<IXmlElement> {
 public:
  explicit ElementObject(Place place) : place_(std::move(place)) {}

  Place Where() const override { return place_; }

  Status GetAttribute(const char16_t* name, Variant* value) override {
    if (!value) return E_POINTER;
    *value = Variant();
    if (!name) return E_POINTER;
    return Guard([&] {
      pugi::xml_attribute attribute = place_.node.attribute(CheckedName(name).c_str());
      if (!attribute) return S_FALSE;
      *value = Variant(FromUtf8(attribute.value()));
      return S_OK;
    });
  }

  Status SetAttribute(const char16_t* name, const Variant& value) override {
    if (!name) return E_POINTER;
    return Guard([&] {
      std::string checked = CheckedName(name);
      Variant text;
      Check(ChangeType(&text, value, VT_BSTR));
      pugi::xml_attribute attribute = place_.node.attribute(checked.c_str());
      if (!attribute) attribute = place_.node.append_attribute(checked.c_str());
      if (!attribute || !attribute.set_value(XmlCharacters(text.text()).c_str())) Raise(E_OUTOFMEMORY);
    });
  }

 private:
  Place place_;
};

class DocumentObject final : public NodeObject<IXmlDocument> {
 public:
  Place Where() const override { return {content_, content_->document}; }

  Status CreateElement(const char16_t* name, IXmlElement** element) override {
    if (!element) return E_POINTER;
    *element = nullptr;
    if (!name) return E_POINTER;
    return Guard([&] {
      std::string checked = CheckedName(name);
      pugi::xml_node node = content_->limbo.append_child(checked.c_str());
      if (!node) Raise(E_OUTOFMEMORY);
      *element = MakeObject<ElementObject>(Place{content_, node}).Detach();
    });
  }

  Status Load(const char16_t* path) override {
    if (!path) return E_POINTER;
    return Replace([&](pugi::xml_document* document) { return ParseXmlFile(path, document); });
  }

  Status LoadText(const char16_t* xml) override {
    if (!xml) return E_POINTER;
    // The text is no longer in the encoding that its declaration may name.
    return Replace([&](pugi::xml_document* document) { return ParseXml(ToUtf8(xml), pugi::encoding_utf8, document); });
  }

  Status Save(const char16_t* path) override {
    if (!path) return E_POINTER;
    return Guard([&] { return ReplaceFile(path, Print(kXmlFileDeclaration)); });
  }

  Status GetText(BSTR* xml) override {
    if (!xml) return E_POINTER;
    *xml = nullptr;
    return Guard([&] { *xml = Bstr(FromUtf8(Print(kXmlTextDeclaration))).Detach(); });
  }

 private:
  std::string Print(std::string_view declaration) const {
    return PrintXml(declaration, content_->document, content_->limbo);
  }

  template <class Parse>
  Status Replace(Parse&& parse) {
    return Guard([&] {
      content_ = EmptyContent();
      content_ = NewContent(parse);
    });
  }

  std::shared_ptr<Content> content_ = EmptyContent();
};

Status SelectElement(const Place& place, const char16_t* name, IXmlNode** out) {
  std::string checked = CheckedName(name);
  pugi::xml_node found = place.node.find_child([&](pugi::xml_node child) {
    return child.type() == pugi::node_element && child != place.content->limbo && checked == child.name();
  });
  if (!found) return S_FALSE;
  *out = MakeObject<ElementObject>(Place{place.content, found}).Detach();
  return S_OK;
}

}  // namespace

Status CreateXmlDocument(IXmlDocument** document) {
  if (!document) return E_POINTER;
  *document = nullptr;
  return Guard([&] { *document = MakeObject<DocumentObject>().Detach(); });
}

}  // namespace orvo
