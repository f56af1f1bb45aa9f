#include "app/settings.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <filesystem>

#include "app/component.h"
#include "platform/code_page.h"
#include "platform/path.h"
#include "platform/xml_interfaces.h"
#include "prefs/switch_table.h"
#include "util/persist_xml.h"

namespace orvo::app {
namespace {

constexpr const char16_t* kRootElement = u"OrvoSettings";
constexpr const char16_t* kSwitchesNode = u"StatsOutputPrefs";

std::u16string Wide(std::string_view ascii) {
  return {ascii.begin(), ascii.end()};
}

std::string_view GroupElement(const Switch& entry) {
  return kSwitchGroupElements[static_cast<std::size_t>(entry.group)];
}

/// The node below which the switches lie: the document itself or its root.
ComPtr<IXmlNode> SettingsNode(IXmlDocument& document, const std::string& file) {
  ComPtr<IXmlNode> found;
  if (document.SelectSingleNode(kSwitchesNode, found.Out()) == S_OK) return ComPtr<IXmlNode>(&document);
  ComPtr<IXmlNode> root;
  if (document.SelectSingleNode(kRootElement, root.Out()) == S_OK &&
      root->SelectSingleNode(kSwitchesNode, found.Out()) == S_OK) {
    return root;
  }
  throw CommandError(kFailed, fmt::format("{}: holds no settings (print a template with: orvo-report settings)", file));
}

/// The name of the switch whose value in the document is no number, empty when all are.
std::string BadSwitch(IXmlNode& node) {
  ComPtr<IXmlNode> switches;
  if (node.SelectSingleNode(kSwitchesNode, switches.Out()) != S_OK) return {};
  for (const Switch& entry : kSwitches) {
    ComPtr<IXmlNode> group;
    ComPtr<IXmlElement> element;
    if (switches->SelectSingleNode(Wide(GroupElement(entry)).c_str(), group.Out()) != S_OK) continue;
    if (Failed(Query(group.get(), &element))) continue;
    Variant text;
    Variant number;
    if (element->GetAttribute(Wide(entry.name).c_str(), &text) != S_OK) continue;
    if (Failed(ChangeType(&number, text, VT_I4))) return fmt::format("{}=\"{}\"", entry.name, ToUtf8(text.text()));
  }
  return {};
}

void LoadFile(IStatsOutputPrefs& preferences, const std::string& file) {
  std::error_code error;
  const std::u16string path = PathFromSystem(std::filesystem::absolute(file, error).string());
  ComPtr<IXmlDocument> document;
  Require(CreateXmlDocument(document.Out()), file);
  Status loaded = document->Load(path.c_str());
  if (loaded == E_FAIL) throw CommandError(kFailed, fmt::format("{}: is not a well-formed XML document", file));
  Require(loaded, file);

  ComPtr<IXmlNode> node = SettingsNode(*document, file);
  ComPtr<IPersistXml> persist;
  Require(Query(&preferences, &persist), file);
  Status status = persist->Load(document.get(), node.get());
  if (Succeeded(status)) return;
  if (std::string bad = BadSwitch(*node); !bad.empty()) {
    throw CommandError(kFailed, fmt::format("{}: {} is no whole number", file, bad));
  }
  Require(status, file);
}

const Switch& FindSwitch(std::string_view name) {
  auto found = std::ranges::find(kSwitches, name, &Switch::name);
  if (found != kSwitches.end()) return *found;
  throw CommandError(kUsage,
                     fmt::format("--set {}: there is no such switch (list them with: orvo-report settings)", name));
}

void Assign(IStatsOutputPrefs& preferences, const std::string& assignment) {
  const std::size_t equals = assignment.find('=');
  if (equals == std::string::npos) {
    throw CommandError(kUsage, fmt::format("--set {}: must read NAME=VALUE", assignment));
  }
  const Switch& entry = FindSwitch(std::string_view(assignment).substr(0, equals));
  const std::string_view text = std::string_view(assignment).substr(equals + 1);
  std::int32_t value = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) {
    throw CommandError(kUsage, fmt::format("--set {}: the value must be a whole number, 0 for off", assignment));
  }
  Require(preferences.SetPreference(entry.identifier, value), assignment);
}

}  // namespace

ComPtr<IStatsOutputPrefs> LoadPreferences(const SettingsOptions& options) {
  auto preferences = CreateComponent<IStatsOutputPrefs>(kStatsOutputPrefsClass, "the report library");
  if (!options.file.empty()) LoadFile(*preferences, options.file);
  for (const std::string& assignment : options.assignments) Assign(*preferences, assignment);
  return preferences;
}

std::string SettingsDocument(IStatsOutputPrefs& preferences) {
  std::string text = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<OrvoSettings>\n  <StatsOutputPrefs>\n";
  for (auto entry = kSwitches.begin(); entry != kSwitches.end();) {
    const auto group = entry;
    const auto group_end =
        std::find_if(group, kSwitches.end(), [&](const Switch& other) { return other.group != group->group; });
    text += "    <!--\n";
    for (; entry != group_end; ++entry) text += fmt::format("      {}: {}\n", entry->name, entry->explanation);
    text += fmt::format("    -->\n    <{}", GroupElement(*group));
    for (entry = group; entry != group_end; ++entry) {
      std::int32_t value = 0;
      Require(preferences.GetPreference(entry->identifier, &value), entry->name);
      text += fmt::format("\n      {}=\"{}\"", entry->name, value);
    }
    text += "/>\n";
  }
  return text + "  </StatsOutputPrefs>\n</OrvoSettings>\n";
}

}  // namespace orvo::app
