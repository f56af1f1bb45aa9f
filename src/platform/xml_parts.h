#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/export.h"
#include "platform/status.h"

namespace orvo {

/// A document that grows from report to report: a root, and in it one element after the other, which are only ever
/// taken over as they are, removed, or added. They are kept as text in the layout of XmlWriter; comments, processing
/// instructions and attributes of the root are not kept.
class ORVO_PLATFORM_API XmlParts {
 public:
  struct Part {
    std::string_view name;
    std::string_view lines;  ///< with the line end, indented by one level
  };

  XmlParts() = default;
  // What the parts refer to does not move.
  XmlParts(const XmlParts&) = delete;
  XmlParts& operator=(const XmlParts&) = delete;

  /// Reads a file (path with backslashes). Fails as XmlTree::Load does, and is empty then.
  Status Load(std::u16string_view path);

  const std::string& root() const { return root_; }
  const std::vector<Part>& parts() const { return parts_; }
  void Clear() { parts_.clear(); }
  /// Removes the first part of that name; gives its lines, or nothing when there is none.
  std::string_view Take(std::string_view name);

 private:
  std::string text_;
  std::string root_;
  std::vector<Part> parts_;
};

/// The lines of the first child of that name in a part; nothing when it has none.
ORVO_PLATFORM_API std::string_view XmlChildLines(std::string_view part, std::string_view name);

/// Adds lines (elements in the layout of XmlWriter, indented by one level) at the end of the root of a file, which
/// begins anew when it is missing, cannot be read, is not well formed or has another root. A file in that layout is
/// checked and copied line by line, at any size; any other is parsed. The old file is unchanged when this fails.
ORVO_PLATFORM_API Status ExtendXmlFile(std::u16string_view path, std::string_view root, std::string_view lines);

}  // namespace orvo
