#pragma once

#include <string>
#include <vector>

#include "capture/names/name_directory.h"
#include "platform/status.h"

namespace orvo {

/// Appends what a file of the form of /etc/hosts says: an IPv4 or IPv6 address and its name on each line, further names
/// passed over, "#" before remarks. The first line about an address counts. Lines that say something else are passed
/// over, and so is the unspecified address, which block lists name over and over. The status of opening and reading.
Status ReadHostsFile(const std::string& path, std::vector<KnownName>* names);

}  // namespace orvo
