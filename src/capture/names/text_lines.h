#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace orvo {

/// Hands out the lines of a text file without their ends. Lines of more than 64 KB are passed over, and reading stops
/// after 256 MB, so that no file takes more memory or time than that. The status of opening and reading.
Status ForEachLine(const std::string& path, const std::function<void(std::string_view)>& take);

}  // namespace orvo
