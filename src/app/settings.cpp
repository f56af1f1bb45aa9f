#include "app/settings.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <filesystem>

#include "app/component.h"
#include "app/schedule_settings.h"
#include "app/suggestion.h"
#include "app/unknown_names.h"
#include "platform/code_page.h"
#include "platform/path.h"
#include "platform/xml_interfaces.h"
#include "platform/xml_tree.h"
#include "prefs/switch_table.h"
#include "util/persist_xml.h"

namespace orvo::app {
namespace {

constexpr const char16_t* kRootElement = u"OrvoSettings";
constexpr const char16_t* kSwitchesNode = u"StatsOutputPrefs";
constexpr const char16_t* kScheduleElement = u"statsoutput";
// Far more than all switches with their explanations, and read in no time.
constexpr std::uintmax_t kLargestFile = 1 << 20;
constexpr std::size_t kLongestShownValue = 40;

std::u16string Wide(std::string_view ascii) {
  return {ascii.begin(), ascii.end()};
}

std::string_view GroupElement(const Switch& entry) {
  return kSwitchGroupElements[static_cast<std::size_t>(entry.group)];
}

/// Ends the command when an attribute should be a number of this type (VT_I4 or VT_UI4) and is none.
void CheckNumber(const std::string& file, IXmlElement& element, std::string_view name, VariantType type) {
  Variant text;
  Variant number;
  if (element.GetAttribute(Wide(name).c_str(), &text) != S_OK || Succeeded(ChangeType(&number, text, type))) return;
  std::u16string shown(text.text());
  if (shown.size() > kLongestShownValue) shown = shown.substr(0, kLongestShownValue) + u"...";
  throw CommandError(kFailed,
                     fmt::format("{}: {}=\"{}\" is no whole number {}", file, name, ToUtf8(shown),
                                 type == VT_UI4 ? "from 0 to 4294967295" : "of 32 bits; write 0 for off, 1 for on"));
}

/// The element of that name below a node; null when there is none.
ComPtr<IXmlElement> ChildElement(IXmlNode& node, std::u16string_view name) {
  ComPtr<IXmlNode> child;
  ComPtr<IXmlElement> element;
  if (node.SelectSingleNode(std::u16string(name).c_str(), child.Out()) == S_OK) Query(child.get(), &element);
  return element;
}

/// Ends the command when a switch is set to what is no number.
void CheckSwitches(const std::string& file, IXmlNode& node) {
  const ComPtr<IXmlElement> switches = ChildElement(node, kSwitchesNode);
  if (!switches) return;
  for (const Switch& entry : kSwitches) {
    const ComPtr<IXmlElement> group = ChildElement(*switches, Wide(GroupElement(entry)));
    if (group) CheckNumber(file, *group, entry.name, VT_I4);
  }
}

/// The same for the settings of the scheduler.
void CheckSchedule(const std::string& file, IXmlNode& node) {
  const ComPtr<IXmlElement> element = ChildElement(node, kScheduleElement);
  if (!element) return;
  for (const ScheduleSetting& setting : ScheduleSettings()) {
    if (setting.type != VT_BSTR) CheckNumber(file, *element, setting.name, setting.type);
  }
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

const Switch& FindSwitch(std::string_view name) {
  const auto* found = std::ranges::find(kSwitches, name, &Switch::name);
  if (found != kSwitches.end()) return *found;
  std::vector<std::string_view> names;
  names.reserve(std::size(kSwitches));
  for (const Switch& entry : kSwitches) names.push_back(entry.name);
  throw CommandError(kUsage, fmt::format("--set {}: there is no such switch{} (list them with: orvo-report settings)",
                                         name, Suggestion(name, names)));
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

SettingsFile::SettingsFile(const std::string& file) : file_(file) {
  CheckKindAndSize(file);
  std::error_code error;
  const std::u16string path = PathFromSystem(std::filesystem::absolute(file, error).string());
  Require(CreateXmlDocument(document_.Out()), file);
  const Status loaded = document_->Load(path.c_str());
  if (loaded == E_FAIL)
    throw CommandError(
        kFailed,
        fmt::format(
            "{}: is not a well-formed XML document, or nests too deep (print a template with: orvo-report settings)",
            file));
  Require(loaded, file);

  // The elements lie below the document's root, or one of them is that root.
  const ComPtr<IXmlElement> root = ChildElement(*document_, kRootElement);
  for (IXmlNode* node : {static_cast<IXmlNode*>(document_.get()), static_cast<IXmlNode*>(root.get())}) {
    if (!node || (!ChildElement(*node, kSwitchesNode) && !ChildElement(*node, kScheduleElement))) continue;
    node_ = ComPtr<IXmlNode>(node);
    return;
  }
  throw CommandError(kFailed, fmt::format("{}: holds no settings (print a template with: orvo-report settings)", file));
}

void SettingsFile::LoadInto(IStatsOutputPrefs& preferences) const {
  const Status status = Load(&preferences);
  if (Failed(status)) CheckSwitches(file_, *node_);
  Require(status, file_);
}

void SettingsFile::LoadInto(ISkryStatsOutput& scheduler) const {
  const Status status = Load(&scheduler);
  if (Failed(status)) CheckSchedule(file_, *node_);
  Require(status, file_);
}

std::vector<std::string> SettingsFile::UnknownNames() const {
  Bstr text;
  XmlTree tree;
  Require(document_->GetText(text.Out()), file_);
  Require(tree.LoadText(ToUtf8(text.view())), file_);
  return app::UnknownNames(tree.Root());
}

Status SettingsFile::Load(IUnknown* object) const {
  ComPtr<IPersistXml> persist;
  const Status status = Query(object, &persist);
  return Failed(status) ? status : persist->Load(document_.get(), node_.get());
}

void ApplyPreferences(const SettingsOptions& options, IStatsOutputPrefs& preferences) {
  if (!options.file.empty()) SettingsFile(options.file).LoadInto(preferences);
  for (const std::string& assignment : options.assignments) Assign(preferences, assignment);
}

void WarnOfUnknownNames(const SettingsOptions& options) {
  if (options.file.empty()) return;
  for (const std::string& unknown : SettingsFile(options.file).UnknownNames()) {
    PrintWarning(fmt::format("{}: {}", options.file, unknown));
  }
}

ComPtr<IStatsOutputPrefs> LoadPreferences(const SettingsOptions& options) {
  auto preferences = CreateComponent<IStatsOutputPrefs>(kStatsOutputPrefsClass, "the report library");
  ApplyPreferences(options, *preferences);
  return preferences;
}

namespace {

/// A value as it stands between quotes.
std::string Escaped(std::string_view value) {
  std::string escaped;
  for (const char c : value) {
    switch (c) {
      case '&': escaped += "&amp;"; break;
      case '<': escaped += "&lt;"; break;
      case '"': escaped += "&quot;"; break;
      default: escaped += c;
    }
  }
  return escaped;
}

/// The scheduler's settings, a line each, with what they mean.
std::string ScheduleText(ISkryStatsOutput& scheduler) {
  ComPtr<IPersistXml> persist;
  ComPtr<IXmlDocument> document;
  Require(Query(&scheduler, &persist), "the scheduler");
  Require(CreateXmlDocument(document.Out()), "the scheduler");
  ComPtr<IXmlElement> root;
  Require(document->CreateElement(kRootElement, root.Out()), "the scheduler");
  Require(document->AppendChild(root.get()), "the scheduler");
  Require(persist->Save(document.get(), root.get()), "the scheduler");
  const ComPtr<IXmlElement> element = ChildElement(*root, kScheduleElement);
  std::string explanations;
  std::string attributes;
  for (const ScheduleSetting& setting : ScheduleSettings()) {
    Variant value;
    if (!element || element->GetAttribute(Wide(setting.name).c_str(), &value) != S_OK) continue;
    explanations += fmt::format("    {}: {}\n", setting.name, setting.explanation);
    attributes += fmt::format("\n    {}=\"{}\"", setting.name, Escaped(ToUtf8(value.text())));
  }
  return fmt::format("  <!-- When `orvo-report watch` makes reports, and where:\n{}  -->\n  <statsoutput{}/>\n",
                     explanations, attributes);
}

}  // namespace

std::string SettingsDocument(IStatsOutputPrefs& preferences, ISkryStatsOutput& scheduler) {
  std::string text = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<OrvoSettings>\n";
  text += ScheduleText(scheduler);
  text += "  <!-- What reports contain: -->\n  <StatsOutputPrefs>\n";
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
