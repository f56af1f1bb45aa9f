#pragma once

#include <cstdint>

#include "engine/address.h"
#include "prefs/switch_ids.h"
#include "util/string_table.h"
#include "xml/xml_report.h"

namespace orvo {

/// A kind of node as documents group them.
struct XmlNodeFamily {
  int gate;
  StringId name;
  std::uint8_t type;  ///< of its addresses
};

/// The order of XML documents.
inline constexpr XmlNodeFamily kXmlNodeFamilies[] = {
    {kSwitchNodeTypePhysical, kStrPhysical, kAddressPhysical},
    {kSwitchNodeTypeIP, kStrIp, kAddressIp},
    {kSwitchNodeTypeIPv6, kStrIpv6, kAddressIpv6},
    {kSwitchNodeTypeIPX, kStrIpx, kAddressIpx},
    {kSwitchNodeTypeDEC, kStrDecnet, kAddressDecnet},
    {kSwitchNodeTypeApple, kStrAppleTalk, kAddressAppleTalk},
};

/// Calls visit(family, element) with a new "Type" element for every family that is switched on, rows or none.
template <class Visit>
void ForEachFamily(const XmlReport& report, XmlWriter stats, Visit&& visit) {
  for (const XmlNodeFamily& family : kXmlNodeFamilies) {
    if (!report.IsOn(family.gate)) continue;
    const XmlWriter type = stats.AddElement("Type");
    type.SetAttribute("Name", TextOf(family.name));
    visit(family, type);
  }
}

}  // namespace orvo
