#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/export.h"
#include "platform/status.h"

namespace pugi {
struct xml_node_struct;
}

namespace orvo {

/// Deeper elements end a load with E_FAIL, so that no input exhausts the stack of those who walk the tree.
inline constexpr unsigned kXmlDepthLimit = 256;

/// A light handle on an element: a value, free to copy, valid as long as its tree. An empty handle answers everything
/// harmlessly (no name, no children, no attributes; what is added to it goes nowhere).
/// Texts are UTF-16; characters that XML 1.0 forbids are replaced by U+FFFD where they are set.
class ORVO_PLATFORM_API XmlElement {
 public:
  XmlElement() = default;
  explicit XmlElement(pugi::xml_node_struct* node) : node_(node) {}
  explicit operator bool() const { return node_ != nullptr; }
  pugi::xml_node_struct* node() const { return node_; }

  std::u16string Name() const;
  std::u16string Text() const;
  std::optional<std::u16string> Attribute(std::string_view name) const;
  std::vector<std::u16string> AttributeNames() const;

  /// The first child element, or the first of that name.
  XmlElement FirstChild(std::string_view name = {}) const;
  /// The next sibling element, or the next of that name.
  XmlElement NextSibling(std::string_view name = {}) const;

  /// Adds an element at the end. Raises E_OUTOFMEMORY.
  XmlElement AddElement(std::string_view name);
  XmlElement AddElement(std::string_view name, std::u16string_view text);
  void SetAttribute(std::string_view name, std::u16string_view value);
  void AddComment(std::u16string_view text);
  void RemoveChild(XmlElement child);
  /// Adds a deep copy of an element of this or another tree at the end; nothing for an empty handle. Raises
  /// E_OUTOFMEMORY.
  XmlElement AddCopy(XmlElement element);

 private:
  pugi::xml_node_struct* node_ = nullptr;
};

/// An XML document held whole. DTDs and entities beyond the five of XML are never followed.
class ORVO_PLATFORM_API XmlTree {
 public:
  XmlTree();
  ~XmlTree();
  XmlTree(XmlTree&&) noexcept;
  XmlTree& operator=(XmlTree&&) noexcept;

  /// Reads a file (path with backslashes) in UTF-8 or UTF-16. The platform's error when it cannot be read, E_FAIL when
  /// it is no well-formed document or too deep; the tree is empty then.
  Status Load(std::u16string_view path);
  Status LoadText(std::string_view utf8);

  /// Writes `<?xml version="1.0" encoding="utf-8"?>` and the tree, indented by two blanks a level, beside the file,
  /// then replaces it.
  Status Save(std::u16string_view path) const;
  std::string ToText() const;

  /// The document element, empty when there is none.
  XmlElement Root() const;
  /// Makes the document element of an empty tree; raises E_FAIL when there is one already.
  XmlElement AddRoot(std::string_view name);
  /// Takes the document element away, with everything in it; what stands beside it stays.
  void RemoveRoot();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace orvo
