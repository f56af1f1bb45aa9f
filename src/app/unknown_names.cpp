#include "app/unknown_names.h"

#include <fmt/core.h>

#include <algorithm>
#include <set>
#include <utility>

#include "app/schedule_settings.h"
#include "app/suggestion.h"
#include "platform/code_page.h"
#include "prefs/switch_table.h"

namespace orvo::app {
namespace {

constexpr std::size_t kMostSentences = 10;
constexpr std::size_t kLongestName = 64;  // longer ones are cut where they are shown

/// An element of a settings document: what may stand in it.
struct Place {
  std::string_view name;
  std::vector<std::string_view> attributes;
  std::vector<Place> children;
};

Place SwitchesPlace() {
  Place switches{.name = kSwitchesElement, .attributes = {}, .children = {}};
  for (const std::string_view group : kSwitchGroupElements) {
    switches.children.push_back({.name = group, .attributes = {}, .children = {}});
  }
  for (const Switch& entry : kSwitches) {
    switches.children[static_cast<std::size_t>(entry.group)].attributes.push_back(entry.name);
  }
  return switches;
}

Place DocumentPlace() {
  Place schedule{.name = "statsoutput", .attributes = {}, .children = {}};
  for (const ScheduleSetting& setting : ScheduleSettings()) schedule.attributes.push_back(setting.name);
  return {.name = "OrvoSettings", .attributes = {}, .children = {std::move(schedule), SwitchesPlace()}};
}

/// The place of that name, from this one downwards; null when there is none.
const Place* FindPlace(const Place& from, std::string_view name) {
  if (from.name == name) return &from;
  for (const Place& child : from.children) {
    if (const Place* found = FindPlace(child, name)) return found;
  }
  return nullptr;
}

/// The element in which an attribute would count; empty when there is none.
std::string_view OwnerOf(const Place& from, std::string_view attribute) {
  if (std::ranges::count(from.attributes, attribute) != 0) return from.name;
  for (const Place& child : from.children) {
    if (const std::string_view owner = OwnerOf(child, attribute); !owner.empty()) return owner;
  }
  return {};
}

std::string Shown(const std::string& name) {
  return name.size() > kLongestName ? name.substr(0, kLongestName) + "..." : name;
}

class Search {
 public:
  void LookAt(XmlElement element, const Place& place) {
    for (const std::u16string& name : element.AttributeNames()) LookAtAttribute(ToUtf8(name), place);
    std::vector<std::string_view> names;
    for (const Place& child : place.children) names.push_back(child.name);
    std::set<std::string, std::less<>> seen;
    for (XmlElement child = element.FirstChild(); child; child = child.NextSibling()) {
      const std::string name = ToUtf8(child.Name());
      const auto found = std::ranges::find(place.children, name, &Place::name);
      if (found != place.children.end() && seen.insert(name).second) {
        LookAt(child, *found);
      } else if (IsToBeTold()) {
        sentences_.push_back(
            found == place.children.end()
                ? fmt::format("there is no element {} in {}, it is passed over{}", Shown(name), place.name,
                              Suggestion(name, names))
                : fmt::format("{} stands more than once in {}; only the first counts", name, place.name));
      }
    }
  }

  std::vector<std::string> Sentences() {
    if (count_ > kMostSentences) {
      sentences_.push_back(fmt::format("{} more names are passed over", count_ - kMostSentences));
    }
    return std::move(sentences_);
  }

  const Place& document() const { return document_; }

 private:
  void LookAtAttribute(const std::string& name, const Place& place) {
    // Namespaces are XML's own.
    if (std::ranges::count(place.attributes, name) != 0 || name.starts_with("xml") || !IsToBeTold()) return;
    const std::string_view owner = OwnerOf(document_, name);
    sentences_.push_back(
        fmt::format("{} has no attribute {}, it is passed over{}", place.name, Shown(name),
                    owner.empty() ? Suggestion(name, place.attributes) : fmt::format("; it belongs to {}", owner)));
  }

  bool IsToBeTold() { return count_++ < kMostSentences; }

  const Place document_ = DocumentPlace();
  std::size_t count_ = 0;
  std::vector<std::string> sentences_;
};

}  // namespace

std::vector<std::string> UnknownNames(XmlElement root) {
  Search search;
  if (const Place* place = FindPlace(search.document(), ToUtf8(root.Name()))) search.LookAt(root, *place);
  return search.Sentences();
}

}  // namespace orvo::app
