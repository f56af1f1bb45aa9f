#include "statistics/statistic_map.h"

#include <optional>

#include "platform/error.h"
#include "platform/xml_tree.h"

namespace orvo {
namespace {

std::u16string RequiredAttribute(const XmlElement& element, std::string_view name) {
  std::optional<std::u16string> value = element.Attribute(name);
  if (!value) Raise(E_FAIL);
  return *std::move(value);
}

}  // namespace

Status StatisticMap::Load(std::u16string_view path) {
  names_.clear();
  Status status = Guard([&] {
    XmlTree document;
    if (Failed(document.Load(path))) Raise(E_FAIL);
    for (XmlElement stat = document.Root().FirstChild("stat"); stat; stat = stat.NextSibling("stat")) {
      Guid identifier;
      Check(ParseGuid(RequiredAttribute(stat, "id"), &identifier));
      names_[identifier] = RequiredAttribute(stat, "name");
    }
  });
  if (Failed(status)) names_.clear();
  return status;
}

std::u16string_view StatisticMap::Find(const Guid& identifier) const {
  auto found = names_.find(identifier);
  return found == names_.end() ? std::u16string_view() : std::u16string_view(found->second);
}

}  // namespace orvo
