#pragma once

#include <string>
#include <vector>

#include "platform/xml_tree.h"

namespace orvo::app {

/// A sentence about each element and attribute of a settings document that no setting has, with what was probably
/// meant; no more than a few, the last one then tells how many there are besides. `root` is the document element.
std::vector<std::string> UnknownNames(XmlElement root);

}  // namespace orvo::app
