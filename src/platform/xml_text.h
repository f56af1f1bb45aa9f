#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace orvo {

/// Larger XML files are not loaded.
inline constexpr std::uint64_t kXmlSizeLimit = std::uint64_t{256} << 20;
/// Nor are those whose trees may take more: tags and attributes of a few bytes each take many times their size.
inline constexpr std::uint64_t kXmlTreeLimit = std::uint64_t{1} << 30;

/// True for a character in the sense of XML 1.0, production [2], surrogates aside.
bool IsXmlCharacter(char32_t c);

/// True for a name in the sense of XML 1.0, production [5].
bool IsXmlName(std::string_view utf8);

/// The text in UTF-8, with U+FFFD for what XML 1.0 forbids (production [2]).
std::string XmlCharacters(std::u16string_view text);
std::string XmlCharacters(std::string_view utf8);

/// Parses a document into an empty tree. `encoding` is encoding_auto for the bytes of a file. E_FAIL when it is no
/// well-formed document or deeper than kXmlDepthLimit, E_OUTOFMEMORY beyond kXmlTreeLimit; the tree is empty after
/// every failure. Forbidden characters and malformed UTF-8 in texts and values are replaced, so that what was loaded
/// can be written again.
Status ParseXml(std::string_view bytes, pugi::xml_encoding encoding, pugi::xml_document* document);

/// ParseXml of a regular file (path with backslashes).
Status ParseXmlFile(std::u16string_view path, pugi::xml_document* document);

/// The document element.
pugi::xml_node DocumentElement(pugi::xml_node document);

/// Appends a node with all that is in it in UTF-8, on lines of its own at that level.
void AppendXml(pugi::xml_node node, unsigned depth, std::string* out);

/// Appends a declaration and the children of `document` in UTF-8, indented by two blanks a level, without `hidden`.
std::string PrintXml(std::string_view declaration, pugi::xml_node document, pugi::xml_node hidden = {});

inline constexpr std::string_view kXmlFileDeclaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";
inline constexpr std::string_view kXmlTextDeclaration = "<?xml version=\"1.0\"?>\n";

}  // namespace orvo
