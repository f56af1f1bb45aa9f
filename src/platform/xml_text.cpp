#include "platform/xml_text.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <unordered_set>

#include "platform/code_page.h"
#include "platform/file.h"
#include "platform/utf.h"
#include "platform/xml_tree.h"

namespace orvo {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

// XML 1.0 (fifth edition), productions [4] and [4a], without U+FFFD: it stands for what was no character.
constexpr Range kNameStart[] = {{':', ':'},       {'A', 'Z'},       {'_', '_'},       {'a', 'z'},
                                {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
                                {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
                                {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFC}, {0x10000, 0xEFFFF}};
constexpr Range kNameFurther[] = {{'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

template <std::size_t count>
bool IsIn(const Range (&ranges)[count], char32_t c) {
  return std::ranges::any_of(ranges, [c](const Range& range) { return c >= range.first && c <= range.last; });
}

template <class Text>
std::string Cleaned(Text text) {
  std::string utf8;
  utf8.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    CodePoint code_point = NextCodePoint(text, at);
    AppendCodePoint(IsXmlCharacter(code_point.value) ? code_point.value : kReplacementCharacter, &utf8);
    at += code_point.length;
  }
  return utf8;
}

bool IsClean(std::string_view utf8) {
  for (std::size_t at = 0; at < utf8.size();) {
    CodePoint code_point = NextCodePoint(utf8, at);
    if (!code_point.valid || !IsXmlCharacter(code_point.value)) return false;
    at += code_point.length;
  }
  return true;
}

/// Replaces what may not stand in the value of a node or an attribute.
template <class Holder>
Status CleanValue(Holder holder) {
  std::string_view value = holder.value();
  if (IsClean(value) || holder.set_value(Cleaned(value).c_str())) return S_OK;
  return E_OUTOFMEMORY;
}

Status CleanAttributes(pugi::xml_node node) {
  std::unordered_set<std::string_view> names;
  for (pugi::xml_attribute attribute : node.attributes()) {
    if (!IsXmlName(attribute.name()) || !names.insert(attribute.name()).second) return E_FAIL;
    if (Status status = CleanValue(attribute); Failed(status)) return status;
  }
  return S_OK;
}

/// What the parser lets pass: names that are none, attributes given twice, forbidden characters.
Status CleanNode(pugi::xml_node node, unsigned depth) {
  switch (node.type()) {
    case pugi::node_element:
      if (depth > kXmlDepthLimit || !IsXmlName(node.name())) return E_FAIL;
      return CleanAttributes(node);
    case pugi::node_pi:
      if (!IsXmlName(node.name())) return E_FAIL;
      return CleanValue(node);
    default: return CleanValue(node);
  }
}

/// Walks without recursion, since the depth is not known to be harmless yet.
Status CleanTree(pugi::xml_node document) {
  unsigned depth = 1;
  pugi::xml_node node = document.first_child();
  while (node) {
    if (Status status = CleanNode(node, depth); Failed(status)) return status;
    if (node.first_child()) {
      node = node.first_child();
      ++depth;
      continue;
    }
    while (node && node != document && !node.next_sibling()) {
      node = node.parent();
      --depth;
    }
    node = node == document ? pugi::xml_node() : node.next_sibling();
  }
  return S_OK;
}

/// One document element, and no text beside it.
bool HasDocumentForm(pugi::xml_node document) {
  std::size_t elements = 0;
  for (pugi::xml_node node : document.children()) {
    if (node.type() == pugi::node_element) ++elements;
    if (node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata) return false;
  }
  return elements == 1;
}

/// True for bytes in an encoding of more than one byte a unit: they begin with a byte order mark or a wide "<".
bool IsWide(std::string_view bytes) {
  if (bytes.size() < 2) return false;
  return bytes.starts_with("\xFE\xFF") || bytes.starts_with("\xFF\xFE") || (bytes[0] == 0) != (bytes[1] == 0) ||
         bytes.starts_with(std::string_view("\0\0", 2));
}

/// The encoding that a document of one-byte units declares; empty when it declares none.
std::string_view DeclaredEncoding(std::string_view bytes) {
  constexpr std::string_view kKey = "encoding";
  constexpr std::size_t kLongestDeclaration = 256;
  if (!bytes.starts_with("<?xml ")) return {};
  std::string_view rest = bytes.substr(0, std::min(bytes.find("?>"), kLongestDeclaration));
  if (rest.find(kKey) == rest.npos) return {};
  rest.remove_prefix(rest.find(kKey) + kKey.size());
  const std::size_t quote = rest.find_first_of("'\"");
  if (quote == rest.npos || rest.substr(0, quote).find_first_not_of("= \t\r\n") != rest.npos) return {};
  return rest.substr(quote + 1, rest.find(rest[quote], quote + 1) - quote - 1);
}

/// No less than what the tree of a document takes: an element for every start tag, a text behind every tag, and an
/// attribute for every equals sign.
std::uint64_t TreeSize(std::string_view bytes) {
  constexpr std::uint64_t kNodeSize = 64;
  constexpr std::uint64_t kAttributeSize = 40;
  std::uint64_t nodes = 0;
  for (std::size_t at = bytes.find('<'); at != bytes.npos; at = bytes.find('<', at + 1)) {
    nodes += bytes.substr(at + 1, 1) == "/" ? 1U : 2U;
  }
  return bytes.size() + nodes * kNodeSize + static_cast<std::uint64_t>(std::ranges::count(bytes, '=')) * kAttributeSize;
}

class StringWriter final : public pugi::xml_writer {
 public:
  explicit StringWriter(std::string* out) : out_(out) {}
  void write(const void* data, std::size_t size) override { out_->append(static_cast<const char*>(data), size); }

 private:
  std::string* out_;
};

}  // namespace

bool IsXmlCharacter(char32_t c) {
  return (c >= 0x20 && c != 0xFFFE && c != 0xFFFF) || c == '\t' || c == '\n' || c == '\r';
}

bool IsXmlName(std::string_view utf8) {
  for (std::size_t at = 0; at < utf8.size();) {
    CodePoint code_point = NextCodePoint(utf8, at);
    bool allowed = IsIn(kNameStart, code_point.value) || (at > 0 && IsIn(kNameFurther, code_point.value));
    if (!code_point.valid || !allowed) return false;
    at += code_point.length;
  }
  return !utf8.empty();
}

std::string XmlCharacters(std::u16string_view text) {
  return Cleaned(text);
}

std::string XmlCharacters(std::string_view utf8) {
  return Cleaned(utf8);
}

Status ParseXml(std::string_view bytes, pugi::xml_encoding encoding, pugi::xml_document* document) {
  document->reset();
  // The parser would take a zero for the end.
  bool is_wide = encoding == pugi::encoding_auto && IsWide(bytes);
  if (!is_wide && bytes.find('\0') != bytes.npos) return E_FAIL;
  if (TreeSize(bytes) > kXmlTreeLimit) return E_OUTOFMEMORY;
  std::optional<std::string> decoded;
  if (encoding == pugi::encoding_auto && !is_wide) decoded = DecodeToUtf8(DeclaredEncoding(bytes), bytes);
  if (decoded) {
    bytes = *decoded;
    encoding = pugi::encoding_utf8;
  }
  // As a fragment, text beside the document element is seen rather than skipped.
  constexpr unsigned kOptions = pugi::parse_default | pugi::parse_comments | pugi::parse_pi | pugi::parse_fragment;
  pugi::xml_parse_result result = document->load_buffer(bytes.data(), bytes.size(), kOptions, encoding);
  Status status = E_FAIL;
  if (result.status == pugi::status_out_of_memory) status = E_OUTOFMEMORY;
  if (result && HasDocumentForm(*document)) status = CleanTree(*document);
  if (Failed(status)) document->reset();
  return status;
}

Status ParseXmlFile(std::u16string_view path, pugi::xml_document* document) {
  document->reset();
  std::string bytes;
  if (Status status = ReadFile(path, kXmlSizeLimit, &bytes); Failed(status)) return status;
  return ParseXml(bytes, pugi::encoding_auto, document);
}

pugi::xml_node DocumentElement(pugi::xml_node document) {
  return document.find_child([](pugi::xml_node node) { return node.type() == pugi::node_element; });
}

void AppendXml(pugi::xml_node node, unsigned depth, std::string* out) {
  StringWriter writer(out);
  node.print(writer, "  ", pugi::format_indent, pugi::encoding_utf8, depth);
}

std::string PrintXml(std::string_view declaration, pugi::xml_node document, pugi::xml_node hidden) {
  std::string text(declaration);
  for (pugi::xml_node node : document.children()) {
    if (node != hidden) AppendXml(node, 0, &text);
  }
  return text;
}

}  // namespace orvo
