#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/export.h"
#include "platform/status.h"

namespace orvo {

/// The classes root: a tree of keys, each with a default value, named values and subkeys, kept in one XML file:
/// $ORVO_REGISTRY, else $XDG_DATA_HOME/orvo/registry.xml, else $HOME/.local/share/orvo/registry.xml.
/// Key paths join names with backslashes and start below the root ("CLSID\{...}\InprocServer32"). Names compare
/// without regard to letter case.
class ORVO_PLATFORM_API Registry {
 public:
  /// Reads the file; one that does not exist is an empty tree. E_FAIL for a file that is no registry; access denied
  /// for one that anybody but root could write when the process has privileges that its user has not.
  static Status Read(Registry* registry);

  /// Reads the file under a lock against other processes, lets `change` work on it, and writes it back (beside, then
  /// renamed) when `change` returns a success. The status of whatever failed first.
  static Status Update(const std::function<Status(Registry&)>& change);

  /// The file's path in the system's form.
  static std::string FilePath();

  /// A key's default value (empty name) or named value; nothing when key or value is absent.
  std::optional<std::u16string> Value(std::u16string_view key, std::u16string_view name = {}) const;
  bool HasKey(std::u16string_view key) const;
  std::vector<std::u16string> Subkeys(std::u16string_view key) const;

  /// Makes the key with its parents, and sets a value.
  void SetKey(std::u16string_view key);
  void SetValue(std::u16string_view key, std::u16string_view name, std::u16string_view value);
  /// Removes a key with everything below it; one that is absent is no error.
  void RemoveKey(std::u16string_view key);
  void RemoveValue(std::u16string_view key, std::u16string_view name);

 private:
  struct Key {
    std::u16string name;
    std::optional<std::u16string> default_value;
    std::vector<std::pair<std::u16string, std::u16string>> values;
    std::vector<Key> subkeys;
  };

  Key root_;
};

}  // namespace orvo
