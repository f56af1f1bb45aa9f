#pragma once

#include "engine/nodes.h"
#include "statistics/value.h"

/// The values of a node's columns, for every writer that shows nodes. A size is nothing where no packet had one.
namespace orvo::node_values {

template <std::uint64_t NodeEntry::*field>
constexpr Value Count(const NodeEntry& node) {
  return Value::Unsigned(node.*field);
}

template <std::uint64_t NodeEntry::*field>
constexpr Value Time(const NodeEntry& node) {
  return Value::Time(node.*field);
}

template <std::uint16_t NodeEntry::*field>
constexpr Value MinSize(const NodeEntry& node) {
  return node.*field == kNoMinimumSize ? Value() : Value::Unsigned(node.*field);
}

template <std::uint16_t NodeEntry::*field>
constexpr Value MaxSize(const NodeEntry& node) {
  return node.*field == 0 ? Value() : Value::Unsigned(node.*field);
}

}  // namespace orvo::node_values
