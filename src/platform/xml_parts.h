#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/export.h"
#include "platform/status.h"

namespace pugi {
struct xml_node_struct;
}

namespace orvo {

/// A document that grows from report to report: a root, and in it one element after the other, which are only ever
/// taken over as they are, removed, or added. They are kept as text, that of another program as a parser understood it.
class ORVO_PLATFORM_API XmlParts {
 public:
  struct Part {
    std::string_view name;   ///< empty for what is no element, such as a comment
    std::string_view lines;  ///< indented by one level, with the line end
    bool in_layout = true;   ///< that of XmlWriter
  };

  XmlParts() = default;
  // What the parts refer to does not move.
  XmlParts(const XmlParts&) = delete;
  XmlParts& operator=(const XmlParts&) = delete;

  /// Reads a file (path with backslashes). Fails as XmlTree::Load does, and is empty then.
  Status Load(std::u16string_view path);

  const std::string& root() const { return root_; }
  const std::vector<Part>& parts() const { return parts_; }
  /// What stands before the parts, the line that begins the root included, and behind the line that ends it.
  std::string_view head() const { return head_; }
  std::string_view tail() const { return tail_; }
  void Clear();
  /// Removes the first part of that name and gives it; an empty one when there is none.
  Part Take(std::string_view name);

  /// Writes the document with more elements at its end (lines as ExtendXmlFile takes them) in place of the file of that
  /// name. One that is empty gets a root of that name. Raises the failure of writing; the old file is unchanged then.
  void Save(std::u16string_view path, std::string_view root, const std::vector<std::string>& added) const;

 private:
  /// Finds head and parts of a text in the known layout. False for any other.
  bool FindLines();
  /// Takes them, and the tail, from a document that was parsed.
  void TakeTree(pugi::xml_node_struct* document);

  std::string text_;
  std::string root_;
  std::string_view head_;
  std::string_view tail_;
  std::vector<Part> parts_;
};

/// The lines of the first child of that name in a part; nothing when it has none. Raises a failure.
ORVO_PLATFORM_API std::string XmlChildLines(const XmlParts::Part& part, std::string_view name);

/// Adds lines (elements in the layout of XmlWriter, indented by one level) at the end of the root of a file, which
/// begins anew when it is missing, cannot be read, is not well formed or has another root. A file in that layout is
/// checked and copied line by line, at any size; any other is parsed. The old file is unchanged when this fails.
ORVO_PLATFORM_API Status ExtendXmlFile(std::u16string_view path, std::string_view root, std::string_view lines);

}  // namespace orvo
