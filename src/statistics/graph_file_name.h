#pragma once

#include <string>
#include <string_view>

namespace orvo {

/// The name of a graph as the first part of a file's name: "_" for a blank, and "-" for what separates folders and for
/// characters that names or documents cannot hold. Cut so that a number and an extension fit behind it.
std::u16string GraphFileName(std::u16string_view graph);

}  // namespace orvo
