#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "platform/xml_interfaces.h"
#include "prefs/preferences.h"
#include "prefs/switch_table.h"
#include "util/component_object.h"
#include "util/persist_xml.h"

namespace orvo {

/// Holds the switches of switch_table.h. They are read and written without a lock from any thread; Load and Save hold
/// the object lock.
class StatsOutputPrefs final : public ComponentObject<IStatsOutputPrefs, IPersistXml> {
 public:
  StatsOutputPrefs();

  Status GetPreference(std::uint32_t identifier, std::int32_t* value) override;
  Status SetPreference(std::uint32_t identifier, std::int32_t value) override;
  Status SetDefaults() override;

  Status GetClassID(Guid* class_id) override;
  /// Takes the switches from the element "StatsOutputPrefs" below the node: S_FALSE and no change when it is absent.
  /// Absent attributes leave their switches as they are, and so does an absent group, except that a document without
  /// the last group (older than the special reports) turns OutputAdditionalNode off and gives S_FALSE.
  /// A value that is no number ends the operation with the conversion's status; what was read before it stays.
  Status Load(IUnknown* document, IUnknown* node) override;
  /// Appends the element with all switches; nothing is appended when it fails.
  Status Save(IUnknown* document, IUnknown* node) override;

 private:
  void* FindInterface(const Guid& iid) override;
  Status LoadGroup(IXmlNode* root, SwitchGroup group);
  void SaveGroup(IXmlDocument* document, IXmlElement* root, SwitchGroup group);

  std::array<std::atomic<std::int32_t>, kSwitchIdLimit> values_{};
};

/// The class's creator.
Status CreateStatsOutputPrefs(const Guid& iid, void** out);

}  // namespace orvo
