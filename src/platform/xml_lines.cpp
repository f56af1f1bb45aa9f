#include "platform/xml_lines.h"

#include <algorithm>
#include <iterator>

#include "platform/utf.h"
#include "platform/xml_text.h"
#include "platform/xml_tree.h"

namespace orvo {
namespace {

constexpr std::size_t kMostAttributes = 16;

bool IsNameStart(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

/// Takes a name of ASCII letters, digits and signs from the front; empty when there is none.
std::string_view TakeName(std::string_view* line) {
  const auto is_part = [](char c) { return IsNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.'; };
  if (line->empty() || !IsNameStart(line->front())) return {};
  const auto length = static_cast<std::size_t>(std::ranges::find_if_not(*line, is_part) - line->begin());
  const std::string_view name = line->substr(0, length);
  line->remove_prefix(length);
  return name;
}

bool TakeWord(std::string_view word, std::string_view* line) {
  if (!line->starts_with(word)) return false;
  line->remove_prefix(word.size());
  return true;
}

/// The entities that documents of reports hold.
bool IsEntity(std::string_view text) {
  constexpr std::string_view kEntities[] = {"&amp;", "&lt;", "&gt;", "&quot;", "&#09;", "&#10;", "&#13;"};
  return std::ranges::any_of(kEntities, [text](std::string_view entity) { return text.starts_with(entity); });
}

/// Characters and entities without markup.
bool IsText(std::string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (byte == '<' || byte < 0x20 || (byte == '&' && !IsEntity(text.substr(at)))) return false;
    if (byte < 0x80) continue;
    const CodePoint one = NextCodePoint(text, at);
    if (!one.valid || !IsXmlCharacter(one.value)) return false;
    at += one.length - 1;
  }
  return true;
}

/// Takes attributes, each behind a blank.
bool TakeAttributes(std::string_view* line) {
  std::string_view names[kMostAttributes];
  std::size_t count = 0;
  while (line->size() > 1 && line->front() == ' ' && IsNameStart((*line)[1])) {
    line->remove_prefix(1);
    const std::string_view name = TakeName(line);
    if (!TakeWord("=\"", line) || count == kMostAttributes) return false;
    const std::size_t end = line->find('"');
    if (end == line->npos || !IsText(line->substr(0, end))) return false;
    line->remove_prefix(end + 1);
    if (std::find(names, names + count, name) != names + count) return false;
    names[count++] = name;
  }
  return true;
}

}  // namespace

bool XmlLineCheck::TakeEnd(std::string_view line) {
  if (open_.empty() || TakeName(&line) != open_.back() || line != ">") return false;
  open_.pop_back();
  return true;
}

bool XmlLineCheck::Take(std::string_view line) {
  if (!has_declaration_) {
    has_declaration_ = line == kXmlFileDeclaration.substr(0, kXmlFileDeclaration.size() - 1);
    return has_declaration_;
  }
  const std::size_t indent = std::min(line.find_first_not_of(' '), line.size());
  line.remove_prefix(indent);
  if (!TakeWord("<", &line)) return false;
  if (TakeWord("/", &line)) return indent + 2 == open_.size() * 2 && TakeEnd(line);
  // A second root has no place.
  if (indent != open_.size() * 2 || (open_.empty() && !root_.empty()) || open_.size() >= kXmlDepthLimit) return false;
  const std::string_view name = TakeName(&line);
  if (name.empty() || !TakeAttributes(&line)) return false;
  if (root_.empty()) root_ = name;
  if (line == " />") return true;
  if (!TakeWord(">", &line)) return false;
  if (line.empty()) {
    open_.emplace_back(name);
    is_empty_ = false;
    return true;
  }
  const std::size_t tail = name.size() + 3;
  if (line.size() < tail || !line.ends_with(">") || line.substr(line.size() - tail, 2) != "</" ||
      line.substr(line.size() - tail + 2, name.size()) != name) {
    return false;
  }
  // "]]>" has no place in a text, and the writer leaves no ">" there.
  const std::string_view text = line.substr(0, line.size() - tail);
  return text.find('>') == text.npos && IsText(text);
}

}  // namespace orvo
