#include "frame/module/registration.h"

#include <ranges>
#include <span>
#include <string>

#include "frame/module/class_table.h"
#include "platform/locale.h"
#include "platform/registry.h"
#include "util/ascii.h"
#include "util/string_table.h"

namespace orvo {
namespace {

// What becomes of a line's key when the module is unregistered.
enum class Removal {
  kWhenEmpty,  // stays with what others have written below it
  kWhole,
};

// One value of a key. An empty name is the key's default value. A word in percent signs stands for a text of the module
// or class.
struct RegistryLine {
  std::string_view key;
  std::string_view name;
  std::string_view value;
  Removal removal = Removal::kWhenEmpty;
};

constexpr RegistryLine kApplicationScript[] = {
    {"AppID\\%APPID%", "", "%PROJECT%"},
    {"AppID\\OrvoReports.DLL", "AppID", "%APPID%"},
};

constexpr RegistryLine kClassScript[] = {
    {"%PROGID%", "", "%DESCRIPTION%"},
    {"%PROGID%\\CLSID", "", "%CLSID%"},
    {"%VIPROGID%", "", "%DESCRIPTION%"},
    {"%VIPROGID%\\CLSID", "", "%CLSID%"},
    {"%VIPROGID%\\CurVer", "", "%PROGID%"},
    {"CLSID\\%CLSID%", "", "%DESCRIPTION%", Removal::kWhole},
    {"CLSID\\%CLSID%", "AppID", "%APPID%"},
    {"CLSID\\%CLSID%\\ProgID", "", "%PROGID%"},
    {"CLSID\\%CLSID%\\VersionIndependentProgID", "", "%VIPROGID%"},
    {"CLSID\\%CLSID%\\InprocServer32", "", "%MODULE%"},
    {"CLSID\\%CLSID%\\InprocServer32", "ThreadingModel", "Both"},
    {"CLSID\\%CLSID%\\TypeLib", "", "%APPID%"},
};

// The application identifier, and that of the type library as well.
constexpr Guid kApplication = "B4F068B1-A52D-49AD-9CBE-C0962C54D481"_guid;

// The texts that words in percent signs stand for.
struct Replacements {
  std::u16string module_path;
  const ModuleClass* module_class = nullptr;  // of a class script

  std::u16string For(std::string_view word) const {
    if (word == "APPID") return FormatGuid(kApplication);
    if (word == "PROJECT") return std::u16string(TextOf(kStrProjectName));
    if (word == "MODULE") return module_path;
    if (word == "CLSID") return FormatGuid(module_class->class_id);
    if (word == "PROGID") return WidenAscii(module_class->prog_id);
    if (word == "VIPROGID") return WidenAscii(module_class->version_independent_prog_id);
    return WidenAscii(module_class->description);
  }

  std::u16string Fill(std::string_view text) const {
    std::u16string filled;
    bool is_word = false;
    for (auto piece : std::views::split(text, '%')) {
      std::string_view part(piece.begin(), piece.end());
      filled += is_word ? For(part) : WidenAscii(part);
      is_word = !is_word;
    }
    return filled;
  }
};

void WriteLine(const RegistryLine& line, const Replacements& texts, Registry* registry) {
  registry->SetValue(texts.Fill(line.key), WidenAscii(line.name), texts.Fill(line.value));
}

void RemoveLine(const RegistryLine& line, const Replacements& texts, Registry* registry) {
  std::u16string key = texts.Fill(line.key);
  registry->RemoveValue(key, WidenAscii(line.name));
  if (line.removal == Removal::kWhole || registry->Subkeys(key).empty()) registry->RemoveKey(key);
}

// Each script is one change of the registry's file, so that what was written before a failure stays.
Status Write(std::span<const RegistryLine> script, const Replacements& texts) {
  return Registry::Update([&](Registry& registry) {
    for (const RegistryLine& line : script) WriteLine(line, texts, &registry);
    return S_OK;
  });
}

// In reverse, so that keys are empty once the keys below them are gone.
Status Remove(std::span<const RegistryLine> script, const Replacements& texts) {
  return Registry::Update([&](Registry& registry) {
    for (const RegistryLine& line : std::views::reverse(script)) RemoveLine(line, texts, &registry);
    return S_OK;
  });
}

// Registration works under the system's locale, whatever the thread's own.
class SystemLocale {
 public:
  SystemLocale() : previous_(GetThreadLocale()) { SetThreadLocale(kSystemDefaultLocale); }
  ~SystemLocale() { SetThreadLocale(previous_); }
  SystemLocale(const SystemLocale&) = delete;
  SystemLocale& operator=(const SystemLocale&) = delete;

 private:
  std::uint32_t previous_;
};

}  // namespace

Status RegisterModule(std::u16string_view module_path) {
  SystemLocale locale;
  Replacements texts{std::u16string(module_path)};
  Status status = Write(kApplicationScript, texts);
  for (const ModuleClass& module_class : ModuleClasses()) {
    if (Failed(status)) break;
    texts.module_class = &module_class;
    status = Write(kClassScript, texts);
  }
  return status;
}

Status UnregisterModule() {
  SystemLocale locale;
  Replacements texts;
  Status status = S_OK;
  for (const ModuleClass& module_class : ModuleClasses()) {
    texts.module_class = &module_class;
    status = Remove(kClassScript, texts);
    if (Failed(status)) return status;
  }
  return Remove(kApplicationScript, texts);
}

}  // namespace orvo
