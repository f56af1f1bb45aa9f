#pragma once

#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/error.h"
#include "platform/xml_writer.h"

namespace orvo {

/// The elements under which rows of the same text stand together, in the order in which the texts come first.
class RowGroups {
 public:
  struct Group {
    explicit Group(std::size_t depth) : stream(depth) {}

    XmlStream stream;
    XmlWriter element{};
    std::uint64_t bytes = 0;  ///< for its user to add up
  };

  /// Groups become children of `parent`, their text an attribute.
  RowGroups(XmlWriter parent, std::string_view element, std::string_view attribute)
      : parent_(parent), element_(element), attribute_(attribute) {}

  /// The group of a text, made when it is the first of it.
  Group& Of(const std::u16string& text) {
    auto [place, is_new] = places_.try_emplace(text, groups_.size());
    if (is_new) {
      Group& group = groups_.emplace_back(parent_.depth());
      group.element = group.stream.Add(element_);
      group.element.SetAttribute(attribute_, text);
    }
    return groups_[place->second];
  }

  /// Adds the groups to the parent, each once `end` has been called with it.
  template <class End>
  void Finish(End&& end) {
    for (Group& group : groups_) {
      end(group);
      parent_.AddLines(group.stream.Finish());
    }
    groups_.clear();
  }

 private:
  XmlWriter parent_;
  std::string_view element_;
  std::string_view attribute_;
  std::deque<Group> groups_;
  std::unordered_map<std::u16string, std::size_t> places_;
};

/// One child element of a row that has a flat and a grouped form. `add` answers false when the row lacks the value.
template <class Row>
struct RowColumn {
  std::string_view name;
  bool (*add)(const Row& row, std::string_view name, XmlWriter element);
};

/// Adds the values that a row has.
template <class Row>
void AddValues(std::span<const RowColumn<Row>> columns, const Row& values, XmlWriter row) {
  for (const RowColumn<Row>& column : columns) column.add(values, column.name, row);
}

/// Adds all values of a row; raises E_FAIL for one that it lacks, since a grouped row must be complete.
template <class Row>
void AddAllValues(std::span<const RowColumn<Row>> columns, const Row& values, XmlWriter row) {
  for (const RowColumn<Row>& column : columns) {
    if (!column.add(values, column.name, row)) Raise(E_FAIL);
  }
}

}  // namespace orvo
