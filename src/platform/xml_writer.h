#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/export.h"
#include "platform/status.h"

namespace orvo {

class XmlWriter;

/// XML as text that only grows at its end, in the layout of XmlTree::Save (two blanks a level, one element a line), so
/// that a document of any size needs no tree. Characters that XML 1.0 forbids become U+FFFD.
class ORVO_PLATFORM_API XmlStream {
 public:
  /// `depth` is the level of the elements that are written without a parent.
  explicit XmlStream(std::size_t depth) : base_(depth) {}
  virtual ~XmlStream();
  XmlStream(const XmlStream&) = delete;
  XmlStream& operator=(const XmlStream&) = delete;

  /// Begins an element that stands in no other of this stream, ending the one before. Raises E_INVALIDARG for a name
  /// that is none.
  XmlWriter Add(std::string_view name);
  /// Ends all elements and gives what was written, but for what has been drained.
  std::string_view Finish();

 protected:
  /// Called when there is much in the buffer, to take it away.
  virtual void Drain() {}

  std::string text_;

 private:
  friend class XmlWriter;

  void Begin(std::size_t level, std::string_view name);
  void EndDownTo(std::size_t level);
  /// Makes ready for a child of an element of that level.
  void MakeChildLine(std::size_t level);
  void Attribute(std::size_t level, std::string_view name, std::u16string_view value);
  void Leaf(std::size_t level, std::string_view name, std::u16string_view text);
  void Leaf(std::size_t level, std::string_view name, std::string_view ascii);
  void Raw(std::size_t level, std::string_view lines);
  static void CheckName(std::string_view name);

  std::size_t base_;
  std::vector<std::string> open_;  // names, from the outermost
  bool in_tag_ = false;            // the innermost one's start tag is not ended yet
};

/// A light handle on an element of a stream: a value, free to copy. What is added to it ends all elements that were
/// begun in it, and those cannot be added to any more. An empty handle takes what is added and does nothing.
class ORVO_PLATFORM_API XmlWriter {
 public:
  XmlWriter() = default;
  explicit operator bool() const { return stream_ != nullptr; }

  /// Begins an element in this one. Raises E_INVALIDARG for a name that is none.
  XmlWriter AddElement(std::string_view name) const;
  /// Adds an element that holds no more than a text.
  void AddElement(std::string_view name, std::u16string_view text) const;
  /// The same for text that is known to be ASCII without markup, such as numbers.
  void AddPlain(std::string_view name, std::string_view ascii) const;
  /// Only before anything is added to the element, and each name once.
  void SetAttribute(std::string_view name, std::u16string_view value) const;
  /// Adds elements of a finished stream, which must have had the depth of this element's children.
  void AddLines(std::string_view lines) const;
  /// The level of this element's children.
  std::size_t depth() const;

 private:
  friend class XmlStream;
  XmlWriter(XmlStream* stream, std::size_t level) : stream_(stream), level_(level) {}

  XmlStream* stream_ = nullptr;
  std::size_t level_ = 0;  // how many elements are open when this one is the innermost
};

/// A document that is written beside the file of that name, block by block, and takes its place once it is complete.
class ORVO_PLATFORM_API XmlFile final : public XmlStream {
 public:
  /// Begins the document with its declaration. Raises the platform's error when there can be no file.
  explicit XmlFile(std::u16string_view path);
  ~XmlFile() override;

  /// Ends the document and puts it in its place, durably. Raises a failure of writing; the old file is unchanged then.
  void Commit();

 private:
  void Drain() override;

  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace orvo
