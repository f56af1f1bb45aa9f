#pragma once

#include <string_view>

namespace orvo {

// Paths are texts with backslashes (see platform/path.h, which also splits them); a view without a text stands for "no
// path".

/// True for a file or folder whose attributes can be read.
bool PathExists(std::u16string_view path);

/// True for a folder whose attributes can be read.
bool FolderExists(std::u16string_view path);

/// Makes every folder of the path that is missing, with or without a backslash at the path's end. True when the last
/// one was made, so that a path that was there already gives false: ask FolderExists whether the folder is there now.
bool MakeFolders(std::u16string_view path);

}  // namespace orvo
