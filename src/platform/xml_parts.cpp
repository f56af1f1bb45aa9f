#include "platform/xml_parts.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <pugixml.hpp>

#include "platform/code_page.h"
#include "platform/error.h"
#include "platform/file.h"
#include "platform/path.h"
#include "platform/system_file.h"
#include "platform/xml_lines.h"
#include "platform/xml_text.h"
#include "platform/xml_writer.h"

namespace orvo {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;
/// A line that is longer stands in no document of a report.
constexpr std::size_t kLongestLine = std::size_t{4} << 20;

/// Walks the lines of a text; false as soon as `take`, given one without its end, answers so, and for a last one that
/// has none.
template <class Take>
bool ForEachLine(std::string_view text, Take&& take) {
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    if (end == text.npos || !take(text.substr(0, end))) return false;
    text.remove_prefix(end + 1);
  }
  return true;
}

/// The name of the element that a line begins with.
std::string_view NameIn(std::string_view line) {
  line.remove_prefix(line.find('<') + 1);
  return line.substr(0, line.find_first_of(" >"));
}

std::string NewHead(std::string_view root) {
  return std::string(kXmlFileDeclaration).append("<").append(root).append(">\n");
}

std::string EndLine(std::string_view root) {
  return std::string("</").append(root).append(">\n");
}

/// The line that begins an element of a tree.
std::string StartLine(pugi::xml_node element) {
  pugi::xml_document alone;
  pugi::xml_node copy = alone.append_child(element.name());
  for (pugi::xml_attribute attribute : element.attributes()) copy.append_copy(attribute);
  std::string line;
  AppendXml(copy, 0, &line);
  constexpr std::string_view kEmptyEnd = " />\n";
  return line.replace(line.size() - kEmptyEnd.size(), kEmptyEnd.size(), ">\n");
}

/// Copies a file in the known layout, checking it on the way, but for the line that ends its root. False when it is in
/// another layout, or has another root.
bool CopyForMore(int from, std::string_view root, int to) {
  XmlLineCheck check;
  std::string pending;  // the beginning of a line
  std::string block;
  off_t size = 0;
  do {
    Check(ReadSome(from, kBlock, &block));
    Check(WriteAll(to, block));
    size += static_cast<off_t>(block.size());
    pending += block;
    const std::size_t last = pending.rfind('\n');
    const std::size_t whole = last == pending.npos ? 0 : last + 1;
    if (!ForEachLine(std::string_view(pending).substr(0, whole), [&](auto line) { return check.Take(line); }))
      return false;
    pending.erase(0, whole);
    if (pending.size() > kLongestLine) return false;
  } while (block.size() == kBlock);
  const off_t end = size - static_cast<off_t>(EndLine(root).size());
  if (!pending.empty() || !check.is_complete() || check.root() != root || check.is_empty()) return false;
  if (ftruncate(to, end) != 0 || lseek(to, end, SEEK_SET) != end) Raise(StatusFromErrno(errno));
  return true;
}

/// Begins the file with what is kept of the old one, up to the line that ends the root; gives what stands behind that.
std::string BeginFrom(std::u16string_view path, std::string_view root, int to) {
  std::string system;
  Check(PathToSystem(path, &system));
  Descriptor from;
  if (Succeeded(OpenForReading(system, &from)) && CopyForMore(from.get(), root, to)) return {};
  if (ftruncate(to, 0) != 0 || lseek(to, 0, SEEK_SET) != 0) Raise(StatusFromErrno(errno));
  XmlParts old;
  const Status status = old.Load(path);
  if (status == E_OUTOFMEMORY) Raise(status);  // nothing wrong with the file
  if (Failed(status) || old.root() != root) {
    Check(WriteAll(to, NewHead(root)));
    return {};
  }
  Check(WriteAll(to, old.head()));
  for (const XmlParts::Part& part : old.parts()) Check(WriteAll(to, part.lines));
  return std::string(old.tail());
}

/// The lines of a child in a part of the known layout: only what stands in the part itself is indented like this.
std::string_view FindChild(std::string_view part, std::string_view name) {
  constexpr std::string_view kIndent = "    <";
  std::string_view child;
  ForEachLine(part, [&](std::string_view line) {
    const bool begins = line.size() > kIndent.size() && line.starts_with(kIndent) && line[kIndent.size()] != '/';
    if (child.empty() && begins && NameIn(line) == name) {
      child = {line.data(), line.size() + 1};
      return line.ends_with(">") && !line.ends_with("/>") && line.find("</") == line.npos;
    }
    if (child.empty()) return true;
    child = {child.data(), static_cast<std::size_t>(line.data() + line.size() + 1 - child.data())};
    return !line.starts_with(kIndent);
  });
  return child;
}

}  // namespace

bool XmlParts::FindLines() {
  XmlLineCheck check;
  const char* begin = nullptr;
  const bool is_known = ForEachLine(text_, [&](std::string_view line) {
    const bool begins = check.depth() == 1 && !begin;
    if (!check.Take(line)) return false;
    const char* const end = line.data() + line.size() + 1;
    if (begins) begin = line.data();
    if (!begin && check.depth() == 1) head_ = {text_.data(), end};
    if (begin && check.depth() == 1) {
      const std::string_view lines(begin, end);
      parts_.push_back({.name = NameIn(lines), .lines = lines});
      begin = nullptr;
    }
    return true;
  });
  if (!is_known || !check.is_complete() || check.is_empty()) return false;
  root_ = check.root();
  return true;
}

void XmlParts::TakeTree(pugi::xml_node_struct* document) {
  const pugi::xml_node root = DocumentElement(pugi::xml_node(document));
  root_ = root.name();
  text_ = kXmlFileDeclaration;
  for (pugi::xml_node node = pugi::xml_node(document).first_child(); node != root; node = node.next_sibling()) {
    AppendXml(node, 0, &text_);
  }
  text_ += StartLine(root);
  const std::size_t head_size = text_.size();
  std::vector<std::size_t> ends;
  for (pugi::xml_node child : root.children()) {
    AppendXml(child, 1, &text_);
    ends.push_back(text_.size());
  }
  const std::size_t inner_end = text_.size();
  for (pugi::xml_node node = root.next_sibling(); node; node = node.next_sibling()) AppendXml(node, 0, &text_);

  const std::string_view text = text_;
  head_ = text.substr(0, head_size);
  tail_ = text.substr(inner_end);
  std::size_t begin = head_size;
  auto end = ends.begin();
  for (pugi::xml_node child : root.children()) {
    const std::string_view lines = text.substr(begin, *end - begin);
    const bool is_element = child.type() == pugi::node_element;
    parts_.push_back({.name = is_element ? NameIn(lines) : std::string_view(), .lines = lines, .in_layout = false});
    begin = *end++;
  }
}

Status XmlParts::Load(std::u16string_view path) {
  const Status status = Guard([&] {
    Clear();
    Check(ReadFile(path, kXmlSizeLimit, &text_));
    if (FindLines()) return;
    Clear();
    pugi::xml_document document;
    Check(ParseXml(text_, pugi::encoding_auto, &document));
    TakeTree(document.internal_object());
  });
  if (Failed(status)) Clear();
  return status;
}

void XmlParts::Clear() {
  root_.clear();
  head_ = tail_ = {};
  parts_.clear();
}

XmlParts::Part XmlParts::Take(std::string_view name) {
  const auto found = std::ranges::find(parts_, name, &Part::name);
  if (found == parts_.end()) return {};
  const Part part = *found;
  parts_.erase(found);
  return part;
}

void XmlParts::Save(std::u16string_view path, std::string_view root, const std::vector<std::string>& added) const {
  std::string system;
  Check(PathToSystem(path, &system));
  Replacement file(system);
  const auto put = [&](std::string_view text) { Check(WriteAll(file.descriptor(), text)); };
  if (head_.empty()) {
    put(NewHead(root));
  } else {
    put(head_);
  }
  for (const Part& part : parts_) put(part.lines);
  for (const std::string& lines : added) put(lines);
  put(EndLine(root));
  put(tail_);
  file.Commit(/*durable=*/true);
}

std::string XmlChildLines(const XmlParts::Part& part, std::string_view name) {
  if (part.in_layout) return std::string(FindChild(part.lines, name));
  pugi::xml_document document;
  Check(ParseXml(part.lines, pugi::encoding_utf8, &document));
  std::string lines;
  for (pugi::xml_node child : DocumentElement(document).children()) {
    if (child.type() != pugi::node_element || name != child.name()) continue;
    AppendXml(child, 2, &lines);
    break;
  }
  return lines;
}

Status ExtendXmlFile(std::u16string_view path, std::string_view root, std::string_view lines) {
  return Guard([&] {
    std::string system;
    Check(PathToSystem(path, &system));
    Replacement replacement(system);
    const std::string tail = BeginFrom(path, root, replacement.descriptor());
    Check(WriteAll(replacement.descriptor(), lines));
    Check(WriteAll(replacement.descriptor(), EndLine(root).append(tail)));
    replacement.Commit(/*durable=*/true);
  });
}

}  // namespace orvo
