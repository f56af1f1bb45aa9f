#pragma once

#include "platform/bstr.h"
#include "platform/export.h"
#include "platform/unknown.h"
#include "platform/variant.h"

namespace orvo {

/// The XML interfaces through which settings travel between a host and the objects it keeps. A node belongs to its
/// document and keeps it alive. One thread uses a document at a time.

class IXmlNode : public IUnknown {
 public:
  static constexpr Guid kIid = "5B7C1E52-0F3D-4B0F-9A64-2D1C0B7B5D01"_guid;

  /// The first child element of that name (for a document: its document element, when it has that name);
  /// S_FALSE and null when there is none. E_POINTER for null arguments, E_INVALIDARG for a name that is none.
  virtual Status SelectSingleNode(const char16_t* name, IXmlNode** node) = 0;
  /// Moves an element to the end of this node's children; one of another document is copied whole, and its handles
  /// stay with the original. E_FAIL for a second document element or an element appended below itself.
  virtual Status AppendChild(IXmlNode* child) = 0;
  /// The element's name; for a document "#document".
  virtual Status GetNodeName(BSTR* name) = 0;

 protected:
  ~IXmlNode() = default;
};

class IXmlElement : public IXmlNode {
 public:
  static constexpr Guid kIid = "5B7C1E52-0F3D-4B0F-9A64-2D1C0B7B5D02"_guid;

  /// The attribute as VT_BSTR; S_FALSE and an empty value when it is absent.
  virtual Status GetAttribute(const char16_t* name, Variant* value) = 0;
  /// Sets an attribute; a number as its decimal text.
  virtual Status SetAttribute(const char16_t* name, const Variant& value) = 0;

 protected:
  ~IXmlElement() = default;
};

class IXmlDocument : public IXmlNode {
 public:
  static constexpr Guid kIid = "5B7C1E52-0F3D-4B0F-9A64-2D1C0B7B5D03"_guid;

  /// A new element of this document that stands nowhere until it is appended. E_INVALIDARG for a name that is none.
  virtual Status CreateElement(const char16_t* name, IXmlElement** element) = 0;
  /// Replaces the content; on failure the document is empty.
  virtual Status Load(const char16_t* path) = 0;
  virtual Status LoadText(const char16_t* xml) = 0;
  /// Writes the document as UTF-8 with a declaration beside the file, then replaces it.
  virtual Status Save(const char16_t* path) = 0;
  virtual Status GetText(BSTR* xml) = 0;

 protected:
  ~IXmlDocument() = default;
};

/// A new empty document with one reference.
ORVO_PLATFORM_API Status CreateXmlDocument(IXmlDocument** document);

}  // namespace orvo
