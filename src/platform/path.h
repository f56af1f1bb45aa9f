#pragma once

#include <string>
#include <string_view>

#include "platform/export.h"
#include "platform/status.h"

namespace orvo {

/// Paths are UTF-16 texts with backslashes at every interface. This is the one place that maps them to the system's
/// own: a backslash is the separator, several in a row are one, a leading one is the root; "X:" stands for the folder
/// that AddDrive gave the letter. Bytes of system names that are no UTF-8, and backslashes in them, travel as
/// unpaired surrogates (U+DC80 to U+DCFF, U+DC5C), so that every system path survives the round trip.

/// kErrorPathNotFound for a drive that is not mapped; kErrorInvalidName for an empty path, a zero character or a
/// slash, since no name can hold them.
ORVO_PLATFORM_API Status PathToSystem(std::u16string_view path, std::string* system);
ORVO_PLATFORM_API std::u16string PathFromSystem(std::string_view system);

/// Maps a drive letter (either case) to a folder of the system; an empty folder unmaps it.
ORVO_PLATFORM_API void AddDrive(char16_t letter, std::string_view system_folder);

/// The path cut into drive ("C:"), folder with its trailing backslash, name, and extension with its full stop.
struct PathParts {
  std::u16string drive;
  std::u16string folder;
  std::u16string name;
  std::u16string extension;
};

ORVO_PLATFORM_API PathParts SplitPath(std::u16string_view path);

}  // namespace orvo
