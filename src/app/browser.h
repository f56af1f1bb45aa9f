#pragma once

#include <string>

namespace orvo::app {

/// Has the desktop's browser show an address, by xdg-open and without a shell. False when it cannot be started; what it
/// makes of the address is not waited for.
bool OpenInBrowser(const std::string& address);

}  // namespace orvo::app
