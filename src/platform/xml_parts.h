#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/export.h"
#include "platform/status.h"

namespace pugi {
struct xml_node_struct;
}

namespace orvo {

/// Takes a text piece by piece.
using TextSink = std::function<void(std::string_view)>;

/// A document that grows from report to report: a root, and in it one element after the other, which are only ever
/// taken over as they are, removed, or added. In the layout of XmlWriter it stays in its file, which is held open and
/// may have any size; that of another program is kept as text, as a parser understood it.
class ORVO_PLATFORM_API XmlParts {
 public:
  struct Part {
    std::string name;         ///< empty for what is no element, such as a comment
    std::uint64_t begin = 0;  ///< where its lines stand, which are indented by one level
    std::uint64_t end = 0;

    bool empty() const { return begin == end; }
  };

  XmlParts();
  ~XmlParts();
  XmlParts(const XmlParts&) = delete;
  XmlParts& operator=(const XmlParts&) = delete;

  /// Reads a file (path with backslashes). Fails as XmlTree::Load does, and is empty then.
  Status Load(std::u16string_view path);

  const std::string& root() const { return root_; }
  const std::vector<Part>& parts() const { return parts_; }
  /// What stands before the parts, the line that begins the root included, and behind the line that ends it.
  const std::string& head() const { return head_; }
  const std::string& tail() const { return tail_; }
  void Clear();
  /// Removes the first part of that name and gives it; an empty one when there is none.
  Part Take(std::string_view name);

  /// Gives the lines of a part, or of its first child of that name, which has none when there is no such child. Raises
  /// the failure of reading.
  void Copy(const Part& part, const TextSink& put) const;
  void CopyChild(const Part& part, std::string_view name, const TextSink& put) const;

  /// Writes the document with more elements at its end (lines as ExtendXmlFile takes them) in place of the file of that
  /// name. One that is empty gets a root of that name. Raises the failure of writing; the old file is unchanged then.
  void Save(std::u16string_view path, std::string_view root, const std::vector<std::string>& added) const;

 private:
  struct File;

  /// Finds head and parts of a file in the known layout. False for any other.
  bool FindLines();
  /// Takes them, and the tail, from a document that was parsed.
  void TakeTree(pugi::xml_node_struct* document);
  Part FindChild(const Part& part, std::string_view name) const;

  std::unique_ptr<File> file_;  // null for a document that was parsed
  std::string text_;            // of the parts of such a one
  std::string root_;
  std::string head_;
  std::string tail_;
  std::vector<Part> parts_;
};

/// Adds lines (elements in the layout of XmlWriter, indented by one level), all that `write` gives, at the end of the
/// root of a file, which begins anew when it is missing, cannot be read, is not well formed or has another root. A file
/// in that layout is checked and copied line by line, at any size; any other is parsed. The old file is unchanged when
/// this fails.
ORVO_PLATFORM_API Status ExtendXmlFile(std::u16string_view path, std::string_view root,
                                       const std::function<void(const TextSink& put)>& write);
ORVO_PLATFORM_API Status ExtendXmlFile(std::u16string_view path, std::string_view root, std::string_view lines);

}  // namespace orvo
