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

/// Finds the parts of a text in the known layout. False for any other.
bool FindParts(std::string_view text, std::string* root, std::vector<XmlParts::Part>* parts) {
  XmlLineCheck check;
  const char* begin = nullptr;
  const bool is_known = ForEachLine(text, [&](std::string_view line) {
    const bool begins = check.depth() == 1 && !begin;
    if (!check.Take(line)) return false;
    if (begins) begin = line.data();
    if (begin && check.depth() == 1) {
      const std::string_view lines(begin, static_cast<std::size_t>(line.data() + line.size() + 1 - begin));
      parts->push_back({NameIn(lines), lines});
      begin = nullptr;
    }
    return true;
  });
  if (!is_known || !check.is_complete()) return false;
  *root = check.root();
  return true;
}

/// Adds an element of a tree with all that is in it.
void AddTree(pugi::xml_node node, XmlWriter parent) {
  std::string text;
  bool has_elements = false;
  for (pugi::xml_node child : node.children()) {
    if (child.type() == pugi::node_element) has_elements = true;
    if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) text += child.value();
  }
  // Documents of reports hold no text beside elements or attributes.
  if (!has_elements && !text.empty() && !node.first_attribute()) {
    parent.AddElement(node.name(), FromUtf8(text));
    return;
  }
  const XmlWriter element = parent.AddElement(node.name());
  for (pugi::xml_attribute attribute : node.attributes()) {
    element.SetAttribute(attribute.name(), FromUtf8(attribute.value()));
  }
  for (pugi::xml_node child : node.children()) {
    if (child.type() == pugi::node_element) AddTree(child, element);
  }
}

/// The root of a tree and its elements in the known layout.
std::string Normalise(pugi::xml_node document) {
  const pugi::xml_node root = DocumentElement(document);
  XmlStream stream(0);
  const XmlWriter writer = stream.Add(root.name());
  for (pugi::xml_node child : root.children()) {
    if (child.type() == pugi::node_element) AddTree(child, writer);
  }
  return std::string(kXmlFileDeclaration).append(stream.Finish());
}

/// The lines between the first and the last of a document's root; nothing for a root without elements.
std::string_view InnerLines(const std::vector<XmlParts::Part>& parts) {
  if (parts.empty()) return {};
  const char* begin = parts.front().lines.data();
  return {begin, static_cast<std::size_t>(parts.back().lines.data() + parts.back().lines.size() - begin)};
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
  const off_t end = size - static_cast<off_t>(root.size() + std::string_view("</>\n").size());
  if (!pending.empty() || !check.is_complete() || check.root() != root || check.is_empty()) return false;
  if (ftruncate(to, end) != 0 || lseek(to, end, SEEK_SET) != end) Raise(StatusFromErrno(errno));
  return true;
}

/// Begins the file with what is kept of the old one, up to the line that ends the root.
void BeginFrom(std::u16string_view path, std::string_view root, int to) {
  std::string system;
  Check(PathToSystem(path, &system));
  Descriptor from;
  if (Succeeded(OpenForReading(system, &from)) && CopyForMore(from.get(), root, to)) return;
  XmlParts old;
  std::string text = std::string(kXmlFileDeclaration).append("<").append(root).append(">\n");
  if (Succeeded(old.Load(path)) && old.root() == root) text += InnerLines(old.parts());
  if (ftruncate(to, 0) != 0 || lseek(to, 0, SEEK_SET) != 0) Raise(StatusFromErrno(errno));
  Check(WriteAll(to, text));
}

}  // namespace

Status XmlParts::Load(std::u16string_view path) {
  const Status status = Guard([&] {
    Clear();
    Check(ReadFile(path, kXmlSizeLimit, &text_));
    if (FindParts(text_, &root_, &parts_)) return;
    pugi::xml_document document;
    Check(ParseXml(text_, pugi::encoding_auto, &document));
    text_ = Normalise(document);
    Clear();
    if (!FindParts(text_, &root_, &parts_)) Raise(E_FAIL);
  });
  if (Failed(status)) {
    Clear();
    root_.clear();
  }
  return status;
}

std::string_view XmlParts::Take(std::string_view name) {
  const auto found = std::ranges::find(parts_, name, &Part::name);
  if (found == parts_.end()) return {};
  const std::string_view lines = found->lines;
  parts_.erase(found);
  return lines;
}

std::string_view XmlChildLines(std::string_view part, std::string_view name) {
  // Of a text in the known layout only what stands in the part itself is indented like this.
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

Status ExtendXmlFile(std::u16string_view path, std::string_view root, std::string_view lines) {
  return Guard([&] {
    std::string system;
    Check(PathToSystem(path, &system));
    Replacement replacement(system);
    BeginFrom(path, root, replacement.descriptor());
    Check(WriteAll(replacement.descriptor(), lines));
    Check(WriteAll(replacement.descriptor(), std::string("</").append(root).append(">\n")));
    replacement.Commit(/*durable=*/true);
  });
}

}  // namespace orvo
