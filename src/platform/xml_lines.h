#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvo {

/// Checks that a document is well formed and in the layout of XmlWriter, line by line as they come, at a fraction of
/// what parsing costs. It knows no more of XML than documents of reports need: what it lets pass is well-formed XML,
/// but not the other way round.
class XmlLineCheck {
 public:
  /// Takes the next line, without its line end. False when it does not belong to such a document; all is over then.
  bool Take(std::string_view line);

  /// How many elements are open behind the lines taken so far.
  std::size_t depth() const { return open_.size(); }
  /// The name of the root, once its line was taken.
  const std::string& root() const { return root_; }
  /// The root is one without a line of its own for its end.
  bool is_empty() const { return is_empty_; }
  /// The root has begun and has ended again.
  bool is_complete() const { return has_declaration_ && open_.empty() && !root_.empty(); }

 private:
  bool TakeEnd(std::string_view line);

  bool has_declaration_ = false;
  bool is_empty_ = true;
  std::string root_;
  std::vector<std::string> open_;
};

}  // namespace orvo
