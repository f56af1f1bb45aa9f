#include "prefs/stats_output_prefs.h"

#include <algorithm>
#include <mutex>
#include <span>

#include "util/ascii.h"
#include "util/persist_xml_arguments.h"

namespace orvo {
namespace {

constexpr bool IsTableSound() {
  std::array<int, kSwitchIdLimit> seen{};
  for (const Switch& entry : kSwitches) ++seen[entry.identifier];
  for (std::uint32_t i = 0; i < kSwitchIdLimit; ++i) {
    if (seen[i] != (IsSwitchId(i) ? 1 : 0)) return false;
  }
  return std::ranges::is_sorted(kSwitches, {}, &Switch::group);
}
static_assert(IsTableSound(), "every identifier once, group by group");

constexpr std::size_t kGroupCount = kSwitchGroupElements.size();

std::u16string ElementName(SwitchGroup group) {
  return WidenAscii(kSwitchGroupElements[static_cast<std::size_t>(group)]);
}

std::span<const Switch> SwitchesOf(SwitchGroup group) {
  return {std::ranges::lower_bound(kSwitches, group, {}, &Switch::group),
          std::ranges::upper_bound(kSwitches, group, {}, &Switch::group)};
}

}  // namespace

StatsOutputPrefs::StatsOutputPrefs() {
  SetDefaults();
}

void* StatsOutputPrefs::FindInterface(const Guid& iid) {
  if (iid == IPersist::kIid) return static_cast<IPersistXml*>(this);
  return ComponentObject::FindInterface(iid);
}

Status StatsOutputPrefs::GetPreference(std::uint32_t identifier, std::int32_t* value) {
  if (!value) return E_POINTER;
  if (IsSwitchId(identifier)) *value = values_[identifier].load(std::memory_order_relaxed);
  return S_OK;
}

Status StatsOutputPrefs::SetPreference(std::uint32_t identifier, std::int32_t value) {
  if (IsSwitchId(identifier)) values_[identifier].store(value, std::memory_order_relaxed);
  return S_OK;
}

Status StatsOutputPrefs::SetDefaults() {
  for (const Switch& entry : kSwitches) SetPreference(entry.identifier, entry.default_value);
  return S_OK;
}

Status StatsOutputPrefs::GetClassID(Guid* class_id) {
  if (!class_id) return E_POINTER;
  *class_id = kStatsOutputPrefsClass;
  return S_OK;
}

Status StatsOutputPrefs::Load(IUnknown* document, IUnknown* node) {
  return Guard([&] {
    std::lock_guard hold(lock());
    PersistXmlArguments arguments;
    Check(GetPersistXmlArguments(document, node, &arguments));
    ComPtr<IXmlNode> root;
    Status found = arguments.node->SelectSingleNode(WidenAscii(kSwitchesElement).c_str(), root.Out());
    if (found != S_OK) return found;
    for (std::size_t i = 0; i < kGroupCount; ++i) {
      auto group = static_cast<SwitchGroup>(i);
      found = LoadGroup(root.get(), group);
      if (group != SwitchGroup::kAdditionalReports) Check(found);
    }
    if (found != S_OK) SetPreference(kSwitchOutputAdditionalNode, 0);
    return found;
  });
}

// The status of looking for the group's element; whatever fails after it was found is raised.
Status StatsOutputPrefs::LoadGroup(IXmlNode* root, SwitchGroup group) {
  ComPtr<IXmlNode> node;
  Status found = root->SelectSingleNode(ElementName(group).c_str(), node.Out());
  if (found != S_OK) return found;
  ComPtr<IXmlElement> element;
  Check(Query(node.get(), &element));
  for (const Switch& entry : SwitchesOf(group)) {
    Variant text;
    if (Check(element->GetAttribute(WidenAscii(entry.name).c_str(), &text)) != S_OK) continue;
    Variant number;
    Check(ChangeType(&number, text, VT_I4));
    SetPreference(entry.identifier, std::get<std::int32_t>(number.value()));
  }
  return S_OK;
}

Status StatsOutputPrefs::Save(IUnknown* document, IUnknown* node) {
  return Guard([&] {
    std::lock_guard hold(lock());
    PersistXmlArguments arguments;
    Check(GetPersistXmlArguments(document, node, &arguments));
    ComPtr<IXmlElement> root;
    Check(arguments.document->CreateElement(WidenAscii(kSwitchesElement).c_str(), root.Out()));
    for (std::size_t i = 0; i < kGroupCount; ++i) {
      SaveGroup(arguments.document.get(), root.get(), static_cast<SwitchGroup>(i));
    }
    return arguments.node->AppendChild(root.get());
  });
}

void StatsOutputPrefs::SaveGroup(IXmlDocument* document, IXmlElement* root, SwitchGroup group) {
  ComPtr<IXmlElement> element;
  Check(document->CreateElement(ElementName(group).c_str(), element.Out()));
  for (const Switch& entry : SwitchesOf(group)) {
    Variant value(values_[entry.identifier].load(std::memory_order_relaxed));
    Check(element->SetAttribute(WidenAscii(entry.name).c_str(), value));
  }
  Check(root->AppendChild(element.get()));
}

Status CreateStatsOutputPrefs(const Guid& iid, void** out) {
  return CreateComponentObject<StatsOutputPrefs>(iid, out);
}

}  // namespace orvo
