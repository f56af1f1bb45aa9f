#include "platform/xml_writer.h"

#include <algorithm>

#include "platform/error.h"
#include "platform/path.h"
#include "platform/system_file.h"
#include "platform/utf.h"
#include "platform/xml_text.h"

namespace orvo {
namespace {

constexpr std::size_t kDrainSize = std::size_t{256} << 10;

/// What stands for a character of markup, and for white space, so that every element stays on its line; empty for any
/// other.
std::string_view Escape(char32_t c, bool in_attribute) {
  switch (c) {
    case '&': return "&amp;";
    case '<': return "&lt;";
    case '>': return in_attribute ? "" : "&gt;";
    case '\r': return "&#13;";
    case '"': return in_attribute ? "&quot;" : "";
    case '\t': return "&#09;";
    case '\n': return "&#10;";
    default: return {};
  }
}

/// True for what stands in a document as it is.
constexpr bool IsPlain(char16_t unit) {
  return unit >= 0x20 && unit < 0x80 && unit != '&' && unit != '<' && unit != '>' && unit != '"';
}

void AppendEscaped(std::u16string_view text, bool in_attribute, std::string* out) {
  while (!text.empty()) {
    const auto run = static_cast<std::size_t>(std::ranges::find_if_not(text, IsPlain) - text.begin());
    AppendAscii(text.substr(0, run), out);
    text.remove_prefix(run);
    if (text.empty()) return;
    const CodePoint one = NextCodePoint(text, 0);
    if (const std::string_view escape = Escape(one.value, in_attribute); !escape.empty()) {
      out->append(escape);
    } else {
      AppendCodePoint(IsXmlCharacter(one.value) ? one.value : kReplacementCharacter, out);
    }
    text.remove_prefix(one.length);
  }
}

}  // namespace

XmlStream::~XmlStream() = default;

/// Names of plain letters and digits, which nearly all are, are checked without a look at Unicode's tables.
void XmlStream::CheckName(std::string_view name) {
  const auto is_letter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; };
  const auto is_plain = [&](char c) { return is_letter(c) || (c >= '0' && c <= '9'); };
  const bool plain = !name.empty() && is_letter(name.front()) && std::ranges::all_of(name, is_plain);
  if (!plain && !IsXmlName(name)) Raise(E_INVALIDARG);
}

XmlWriter XmlStream::Add(std::string_view name) {
  CheckName(name);
  EndDownTo(0);
  Begin(0, name);
  return {this, 1};
}

std::string_view XmlStream::Finish() {
  EndDownTo(0);
  return text_;
}

void XmlStream::Begin(std::size_t level, std::string_view name) {
  MakeChildLine(level);
  text_.append(1, '<').append(name);
  open_.emplace_back(name);
  in_tag_ = true;
}

void XmlStream::EndDownTo(std::size_t level) {
  while (open_.size() > level) {
    if (in_tag_) {
      text_.append(" />\n");
      in_tag_ = false;
    } else {
      text_.append((base_ + open_.size() - 1) * 2, ' ').append("</").append(open_.back()).append(">\n");
    }
    open_.pop_back();
  }
  if (text_.size() >= kDrainSize) Drain();
}

void XmlStream::MakeChildLine(std::size_t level) {
  EndDownTo(level);
  if (in_tag_) {
    text_.append(">\n");
    in_tag_ = false;
  }
  text_.append((base_ + level) * 2, ' ');
}

void XmlStream::Attribute(std::size_t level, std::string_view name, std::u16string_view value) {
  CheckName(name);
  if (!in_tag_ || open_.size() != level) Raise(E_UNEXPECTED);
  text_.append(1, ' ').append(name).append("=\"");
  AppendEscaped(value, true, &text_);
  text_.append(1, '"');
}

void XmlStream::Leaf(std::size_t level, std::string_view name, std::u16string_view text) {
  CheckName(name);
  MakeChildLine(level);
  text_.append(1, '<').append(name);
  if (text.empty()) {
    text_.append(" />\n");
    return;
  }
  text_.append(1, '>');
  AppendEscaped(text, false, &text_);
  text_.append("</").append(name).append(">\n");
}

void XmlStream::Leaf(std::size_t level, std::string_view name, std::string_view ascii) {
  CheckName(name);
  MakeChildLine(level);
  text_.append(1, '<').append(name).append(1, '>').append(ascii).append("</").append(name).append(">\n");
}

void XmlStream::Raw(std::size_t level, std::string_view lines) {
  if (lines.empty()) return;
  EndDownTo(level);
  if (in_tag_) {
    text_.append(">\n");
    in_tag_ = false;
  }
  text_.append(lines);
}

XmlWriter XmlWriter::AddElement(std::string_view name) const {
  if (!stream_) return {};
  XmlStream::CheckName(name);
  stream_->Begin(level_, name);
  return {stream_, level_ + 1};
}

void XmlWriter::AddElement(std::string_view name, std::u16string_view text) const {
  if (stream_) stream_->Leaf(level_, name, text);
}

void XmlWriter::AddPlain(std::string_view name, std::string_view ascii) const {
  if (stream_) stream_->Leaf(level_, name, ascii);
}

void XmlWriter::SetAttribute(std::string_view name, std::u16string_view value) const {
  if (stream_) stream_->Attribute(level_, name, value);
}

void XmlWriter::AddLines(std::string_view lines) const {
  if (stream_) stream_->Raw(level_, lines);
}

std::size_t XmlWriter::depth() const {
  return stream_ ? stream_->base_ + level_ : 0;
}

struct XmlFile::Impl {
  explicit Impl(std::string path) : file(std::move(path)) {}
  Replacement file;
};

XmlFile::XmlFile(std::u16string_view path) : XmlStream(0) {
  std::string system;
  Check(PathToSystem(path, &system));
  impl_ = std::make_unique<Impl>(std::move(system));
  text_ = kXmlFileDeclaration;
}

XmlFile::~XmlFile() = default;

void XmlFile::Drain() {
  Check(WriteAll(impl_->file.descriptor(), text_));
  text_.clear();
}

void XmlFile::Commit() {
  Finish();
  Drain();
  impl_->file.Commit(/*durable=*/true);
}

}  // namespace orvo
