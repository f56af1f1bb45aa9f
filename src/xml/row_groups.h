#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/error.h"
#include "platform/xml_tree.h"

namespace orvo {

/// The elements under which rows of the same text stand together, in the order in which the texts come first.
class RowGroups {
 public:
  struct Group {
    XmlElement element;
    std::uint64_t bytes = 0;  ///< for its user to add up
  };

  /// Groups become children of `parent`, their text an attribute.
  RowGroups(XmlElement parent, std::string_view element, std::string_view attribute)
      : parent_(parent), element_(element), attribute_(attribute) {}

  /// The group of a text, made when it is the first of it; valid until the next one is asked for.
  Group& Of(const std::u16string& text) {
    auto [place, is_new] = places_.try_emplace(text, groups_.size());
    if (is_new) {
      groups_.push_back({.element = parent_.AddElement(element_)});
      groups_.back().element.SetAttribute(attribute_, text);
    }
    return groups_[place->second];
  }

  const std::vector<Group>& all() const { return groups_; }

 private:
  XmlElement parent_;
  std::string_view element_;
  std::string_view attribute_;
  std::vector<Group> groups_;
  std::unordered_map<std::u16string, std::size_t> places_;
};

/// One child element of a row that is copied from the flat into the grouped form.
template <class Row>
struct RowText {
  std::string_view name;
  std::optional<std::u16string> (*text)(const Row& row);
};

/// Adds the texts that a row has.
template <class Row>
void AddTexts(std::span<const RowText<Row>> columns, const Row& values, XmlElement row) {
  for (const RowText<Row>& column : columns) {
    if (const std::optional<std::u16string> text = column.text(values)) row.AddElement(column.name, *text);
  }
}

/// Adds all texts of a row; raises E_FAIL for one that it lacks, since a grouped row must be complete.
template <class Row>
void AddAllTexts(std::span<const RowText<Row>> columns, const Row& values, XmlElement row) {
  for (const RowText<Row>& column : columns) {
    const std::optional<std::u16string> text = column.text(values);
    if (!text) Raise(E_FAIL);
    row.AddElement(column.name, *text);
  }
}

}  // namespace orvo
