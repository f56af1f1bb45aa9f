#include "platform/xml_parts.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <pugixml.hpp>
#include <utility>

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
/// More parts than that neither.
constexpr std::size_t kMostParts = 10'000;
constexpr std::uint64_t kWholeFile = std::numeric_limits<std::uint64_t>::max();

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

/// Reads `size` bytes at most, block by block, and gives each block and the lines that end there. False as soon as
/// `take` answers so, and for a line that is too long or has no end.
template <class See, class Take>
bool ReadLines(int from, std::uint64_t size, See&& see, Take&& take) {
  std::string pending;  // the beginning of a line
  std::string block;
  for (bool at_end = false; !at_end; size -= block.size()) {
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(kBlock, size));
    Check(ReadSome(from, wanted, &block));
    at_end = block.size() < kBlock;
    see(block);
    pending += block;
    const std::size_t last = pending.rfind('\n');
    const std::size_t whole = last == pending.npos ? 0 : last + 1;
    if (!ForEachLine(std::string_view(pending).substr(0, whole), take)) return false;
    pending.erase(0, whole);
    if (pending.size() > kLongestLine) return false;
  }
  return pending.empty();
}

void Ignore(std::string_view /*block*/) {}

void Seek(int file, std::uint64_t position) {
  if (lseek(file, static_cast<off_t>(position), SEEK_SET) < 0) Raise(StatusFromErrno(errno));
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
  off_t size = 0;
  const auto copy = [&](std::string_view block) {
    Check(WriteAll(to, block));
    size += static_cast<off_t>(block.size());
  };
  if (!ReadLines(from, kWholeFile, copy, [&](auto line) { return check.Take(line); })) return false;
  if (!check.is_complete() || check.root() != root || check.is_empty()) return false;
  const off_t end = size - static_cast<off_t>(EndLine(root).size());
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
  for (const XmlParts::Part& part : old.parts()) {
    old.Copy(part, [to](std::string_view text) { Check(WriteAll(to, text)); });
  }
  return old.tail();
}

}  // namespace

/// A document in the known layout.
struct XmlParts::File {
  Descriptor descriptor;
};

XmlParts::XmlParts() = default;
XmlParts::~XmlParts() = default;

bool XmlParts::FindLines() {
  XmlLineCheck check;
  Part part;
  bool in_part = false;
  std::uint64_t at = 0;
  const auto take = [&](std::string_view line) {
    if (check.depth() == 1 && !in_part) {
      part = {.name = std::string(NameIn(line)), .begin = at};
      in_part = true;
    }
    if (!check.Take(line)) return false;
    at += line.size() + 1;
    if (!in_part) head_.append(line).append(1, '\n');
    if (in_part && check.depth() == 1) {
      part.end = at;
      parts_.push_back(std::move(part));
      in_part = false;
    }
    return parts_.size() <= kMostParts;
  };
  if (!ReadLines(file_->descriptor.get(), kWholeFile, Ignore, take)) return false;
  if (!check.is_complete() || check.is_empty()) return false;
  root_ = check.root();
  return true;
}

void XmlParts::TakeTree(pugi::xml_node_struct* document) {
  const pugi::xml_node root = DocumentElement(pugi::xml_node(document));
  root_ = root.name();
  head_ = kXmlFileDeclaration;
  for (pugi::xml_node node = pugi::xml_node(document).first_child(); node != root; node = node.next_sibling()) {
    AppendXml(node, 0, &head_);
  }
  head_ += StartLine(root);
  for (pugi::xml_node child : root.children()) {
    const std::uint64_t begin = text_.size();
    AppendXml(child, 1, &text_);
    const bool is_element = child.type() == pugi::node_element;
    parts_.push_back({.name = is_element ? child.name() : "", .begin = begin, .end = text_.size()});
  }
  for (pugi::xml_node node = root.next_sibling(); node; node = node.next_sibling()) AppendXml(node, 0, &tail_);
}

Status XmlParts::Load(std::u16string_view path) {
  const Status status = Guard([&] {
    Clear();
    std::string system;
    Check(PathToSystem(path, &system));
    Descriptor file;
    Check(OpenForReading(system, &file));
    file_ = std::make_unique<File>(std::move(file));
    if (FindLines()) return;
    Clear();
    pugi::xml_document document;
    Check(ParseXmlFile(path, &document));
    TakeTree(document.internal_object());
  });
  if (Failed(status)) Clear();
  return status;
}

void XmlParts::Clear() {
  file_.reset();
  for (std::string* text : {&text_, &root_, &head_, &tail_}) text->clear();
  parts_.clear();
}

XmlParts::Part XmlParts::Take(std::string_view name) {
  const auto found = std::ranges::find(parts_, name, &Part::name);
  if (found == parts_.end()) return {};
  Part part = std::move(*found);
  parts_.erase(found);
  return part;
}

void XmlParts::Copy(const Part& part, const TextSink& put) const {
  if (!file_) return put(std::string_view(text_).substr(part.begin, part.end - part.begin));
  Seek(file_->descriptor.get(), part.begin);
  std::string block;
  for (std::uint64_t left = part.end - part.begin; left > 0; left -= block.size()) {
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(kBlock, left));
    Check(ReadSome(file_->descriptor.get(), wanted, &block));
    // Somebody has cut the file since it was read.
    if (block.size() != wanted) Raise(E_FAIL);
    put(block);
  }
}

/// Only what stands in the part itself is indented by exactly two levels.
XmlParts::Part XmlParts::FindChild(const Part& part, std::string_view name) const {
  constexpr std::string_view kIndent = "    <";
  Part child;
  std::uint64_t at = part.begin;
  const auto take = [&](std::string_view line) {
    const std::uint64_t begin = std::exchange(at, at + line.size() + 1);
    const bool is_own = line.size() > kIndent.size() && line.starts_with(kIndent);
    if (child.empty()) {
      if (!is_own || line[kIndent.size()] == '/' || NameIn(line) != name) return true;
      child = {.name = std::string(name), .begin = begin, .end = at};
      return !line.ends_with("/>") && line.find("</") == line.npos;
    }
    child.end = at;
    return !is_own;
  };
  Seek(file_->descriptor.get(), part.begin);
  ReadLines(file_->descriptor.get(), part.end - part.begin, Ignore, take);
  return child;
}

void XmlParts::CopyChild(const Part& part, std::string_view name, const TextSink& put) const {
  if (file_) return Copy(FindChild(part, name), put);
  pugi::xml_document document;
  Check(ParseXml(std::string_view(text_).substr(part.begin, part.end - part.begin), pugi::encoding_utf8, &document));
  for (pugi::xml_node child : DocumentElement(document).children()) {
    if (child.type() != pugi::node_element || name != child.name()) continue;
    std::string lines;
    AppendXml(child, 2, &lines);
    return put(lines);
  }
}

void XmlParts::Save(std::u16string_view path, std::string_view root, const std::vector<std::string>& added) const {
  std::string system;
  Check(PathToSystem(path, &system));
  Replacement file(system);
  const auto put = [&](std::string_view text) { Check(WriteAll(file.descriptor(), text)); };
  put(head_.empty() ? NewHead(root) : head_);
  for (const Part& part : parts_) Copy(part, put);
  for (const std::string& lines : added) put(lines);
  put(EndLine(root));
  put(tail_);
  file.Commit(/*durable=*/true);
}

Status ExtendXmlFile(std::u16string_view path, std::string_view root,
                     const std::function<void(const TextSink& put)>& write) {
  return Guard([&] {
    std::string system;
    Check(PathToSystem(path, &system));
    Replacement replacement(system);
    const std::string tail = BeginFrom(path, root, replacement.descriptor());
    write([&](std::string_view text) { Check(WriteAll(replacement.descriptor(), text)); });
    Check(WriteAll(replacement.descriptor(), EndLine(root).append(tail)));
    replacement.Commit(/*durable=*/true);
  });
}

Status ExtendXmlFile(std::u16string_view path, std::string_view root, std::string_view lines) {
  return ExtendXmlFile(path, root, [lines](const TextSink& put) { put(lines); });
}

}  // namespace orvo
