#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/xml_tree.h"

namespace orvo::app {

/// Of ASCII names the one that was probably meant by a word that is none of them; empty when none is like it.
std::string_view NearestName(std::string_view word, std::span<const std::string_view> names);

/// A sentence about each element and attribute of a settings document that no setting has, with what was probably
/// meant; no more than a few, the last one then tells how many there are besides. `root` is the document element.
std::vector<std::string> UnknownNames(XmlElement root);

}  // namespace orvo::app
