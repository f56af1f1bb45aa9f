#include "platform/xml_tree.h"

#include <pugixml.hpp>

#include "platform/code_page.h"
#include "platform/error.h"
#include "platform/file.h"
#include "platform/xml_text.h"

namespace orvo {
namespace {

/// The first element from `node` on, of that name unless the name is empty.
pugi::xml_node ElementFrom(pugi::xml_node node, std::string_view name) {
  while (node && (node.type() != pugi::node_element || (!name.empty() && name != node.name()))) {
    node = node.next_sibling();
  }
  return node;
}

pugi::xml_attribute FindAttribute(pugi::xml_node node, std::string_view name) {
  return node.find_attribute([name](pugi::xml_attribute attribute) { return name == attribute.name(); });
}

void CheckName(std::string_view name) {
  if (!IsXmlName(name)) Raise(E_INVALIDARG);
}

/// What the XML library could not do for want of memory.
void CheckMade(bool made) {
  if (!made) Raise(E_OUTOFMEMORY);
}

pugi::xml_node AppendElement(pugi::xml_node parent, std::string_view name) {
  CheckName(name);
  pugi::xml_node element = parent.append_child(pugi::node_element);
  CheckMade(element && element.set_name(std::string(name).c_str()));
  return element;
}

}  // namespace

std::u16string XmlElement::Name() const {
  return FromUtf8(pugi::xml_node(node_).name());
}

std::u16string XmlElement::Text() const {
  std::u16string text;
  for (pugi::xml_node child : pugi::xml_node(node_).children()) {
    if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) text += FromUtf8(child.value());
  }
  return text;
}

std::optional<std::u16string> XmlElement::Attribute(std::string_view name) const {
  pugi::xml_attribute attribute = FindAttribute(pugi::xml_node(node_), name);
  if (!attribute) return std::nullopt;
  return FromUtf8(attribute.value());
}

std::vector<std::u16string> XmlElement::AttributeNames() const {
  std::vector<std::u16string> names;
  for (pugi::xml_attribute attribute : pugi::xml_node(node_).attributes()) names.push_back(FromUtf8(attribute.name()));
  return names;
}

XmlElement XmlElement::FirstChild(std::string_view name) const {
  return XmlElement(ElementFrom(pugi::xml_node(node_).first_child(), name).internal_object());
}

XmlElement XmlElement::NextSibling(std::string_view name) const {
  return XmlElement(ElementFrom(pugi::xml_node(node_).next_sibling(), name).internal_object());
}

XmlElement XmlElement::AddElement(std::string_view name) {
  if (!node_) return {};
  return XmlElement(AppendElement(pugi::xml_node(node_), name).internal_object());
}

XmlElement XmlElement::AddElement(std::string_view name, std::u16string_view text) {
  XmlElement element = AddElement(name);
  if (element && !text.empty()) {
    pugi::xml_node child = pugi::xml_node(element.node()).append_child(pugi::node_pcdata);
    CheckMade(child && child.set_value(XmlCharacters(text).c_str()));
  }
  return element;
}

void XmlElement::SetAttribute(std::string_view name, std::u16string_view value) {
  if (!node_) return;
  CheckName(name);
  pugi::xml_node node(node_);
  pugi::xml_attribute attribute = FindAttribute(node, name);
  if (!attribute) attribute = node.append_attribute(std::string(name).c_str());
  CheckMade(attribute && attribute.set_value(XmlCharacters(value).c_str()));
}

void XmlElement::AddComment(std::u16string_view text) {
  if (!node_) return;
  pugi::xml_node comment = pugi::xml_node(node_).append_child(pugi::node_comment);
  CheckMade(comment && comment.set_value(XmlCharacters(text).c_str()));
}

void XmlElement::RemoveChild(XmlElement child) {
  pugi::xml_node(node_).remove_child(pugi::xml_node(child.node_));
}

XmlElement XmlElement::AddCopy(XmlElement element) {
  if (!node_ || !element) return {};
  pugi::xml_node copy = pugi::xml_node(node_).append_copy(pugi::xml_node(element.node_));
  CheckMade(copy);
  return XmlElement(copy.internal_object());
}

struct XmlTree::Impl {
  pugi::xml_document document;
};

XmlTree::XmlTree() : impl_(std::make_unique<Impl>()) {}
XmlTree::~XmlTree() = default;
XmlTree::XmlTree(XmlTree&&) noexcept = default;
XmlTree& XmlTree::operator=(XmlTree&&) noexcept = default;

Status XmlTree::Load(std::u16string_view path) {
  return Guard([&] { return ParseXmlFile(path, &impl_->document); });
}

Status XmlTree::LoadText(std::string_view utf8) {
  return Guard([&] { return ParseXml(utf8, pugi::encoding_utf8, &impl_->document); });
}

Status XmlTree::Save(std::u16string_view path) const {
  return Guard([&] { return ReplaceFile(path, ToText()); });
}

std::string XmlTree::ToText() const {
  return PrintXml(kXmlFileDeclaration, impl_->document);
}

XmlElement XmlTree::Root() const {
  return XmlElement(DocumentElement(impl_->document).internal_object());
}

XmlElement XmlTree::AddRoot(std::string_view name) {
  if (Root()) Raise(E_FAIL);
  return XmlElement(AppendElement(impl_->document, name).internal_object());
}

void XmlTree::RemoveRoot() {
  impl_->document.remove_child(DocumentElement(impl_->document));
}

}  // namespace orvo
