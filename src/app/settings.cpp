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
// Far more than all switches with their explanations, and read in no time.
constexpr std::uintmax_t kLargestFile = 1 << 20;
constexpr std::size_t kLongestShownValue = 40;

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

/// The switch whose value in the document is no number, with that value; empty when all are numbers.
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
    if (Failed(ChangeType(&number, text, VT_I4))) {
      std::u16string shown(text.text());
      if (shown.size() > kLongestShownValue) shown = shown.substr(0, kLongestShownValue) + u"...";
      return fmt::format("{}=\"{}\"", entry.name, ToUtf8(shown));
    }
  }
  return {};
}

/// Ends the command for what is there but can be no settings file: a pipe, a device, something huge.
void CheckKindAndSize(const std::string& file) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(file, error);
  if (!std::filesystem::exists(status) || std::filesystem::is_directory(status)) return;  // reading says what is wrong
  if (!std::filesystem::is_regular_file(status)) {
    throw CommandError(kFailed, fmt::format("{}: is not a regular file; save the settings in one", file));
  }
  if (const std::uintmax_t size = std::filesystem::file_size(file, error); !error && size > kLargestFile) {
    throw CommandError(
        kFailed, fmt::format("{}: is too large for a settings file ({} bytes, at most {})", file, size, kLargestFile));
  }
}

void LoadFile(IStatsOutputPrefs& preferences, const std::string& file) {
  CheckKindAndSize(file);
  std::error_code error;
  const std::u16string path = PathFromSystem(std::filesystem::absolute(file, error).string());
  ComPtr<IXmlDocument> document;
  Require(CreateXmlDocument(document.Out()), file);
  Status loaded = document->Load(path.c_str());
  if (loaded == E_FAIL)
    throw CommandError(kFailed, fmt::format("{}: is not a well-formed XML document, or nests too deep", file));
  Require(loaded, file);

  ComPtr<IXmlNode> node = SettingsNode(*document, file);
  ComPtr<IPersistXml> persist;
  Require(Query(&preferences, &persist), file);
  Status status = persist->Load(document.get(), node.get());
  if (Succeeded(status)) return;
  if (std::string bad = BadSwitch(*node); !bad.empty()) {
    throw CommandError(kFailed,
                       fmt::format("{}: {} is no whole number of 32 bits; write 0 for off, 1 for on", file, bad));
  }
  Require(status, file);
}

const Switch& FindSwitch(std::string_view name) {
  const auto* found = std::ranges::find(kSwitches, name, &Switch::name);
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
    throw CommandError(kUsage,
                       fmt::format("--set {}: the value must be a whole number of 32 bits, 0 for off", assignment));
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
  for (const auto* entry = kSwitches.begin(); entry != kSwitches.end();) {
    const auto* const group = entry;
    const auto* const group_end =
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
