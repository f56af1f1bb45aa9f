#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/guid.h"
#include "platform/status.h"

namespace orvo {

/// Display names of summary statistics and groups by identifier, for those that the engine has no name for.
class StatisticMap {
 public:
  /// Replaces the content by that of a map file: an XML document whose root holds `<stat id="{...}" name="..."/>`
  /// elements; a later entry replaces an earlier one of the same identifier, other elements are ignored.
  /// E_FAIL when the file does not load or an entry lacks an attribute, CO_E_CLASSSTRING for an identifier that is
  /// none; the map is empty after a failure.
  Status Load(std::u16string_view path);

  bool empty() const { return names_.empty(); }
  /// The name of an identifier, empty when the map has none. Valid until the next Load.
  std::u16string_view Find(const Guid& identifier) const;

 private:
  std::unordered_map<Guid, std::u16string, GuidHash> names_;
};

}  // namespace orvo
