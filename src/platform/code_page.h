#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/export.h"
#include "platform/status.h"

namespace orvo {

/// Sets the code page of text files for the whole process by an encoding's name ("UTF-8", "windows-1252", "Shift_JIS").
/// E_INVALIDARG for an unknown encoding and for one that is no superset of ASCII. Without a call it is the codeset of
/// the user's locale, UTF-8 where that names none.
ORVO_PLATFORM_API Status SetCodePage(std::string_view name);
ORVO_PLATFORM_API std::string CodePageName();

/// Appends the text in the code page; what it lacks, unpaired surrogates included, becomes "?".
/// Kept ready per thread; runs of ASCII are copied. A failure status only when the converter refuses to work.
ORVO_PLATFORM_API Status AppendNarrow(std::u16string_view text, std::string* out);

/// Appends the text in ASCII with best fit (an accented letter loses its accent), "?" for what has none.
ORVO_PLATFORM_API Status AppendSystemNarrow(std::u16string_view text, std::string* out);

/// The bytes of an encoding that code pages may have, known by its name, in UTF-8 with U+FFFD for what it lacks.
/// Nothing for any other encoding, and for UTF-8 and ASCII, which need no decoding.
ORVO_PLATFORM_API std::optional<std::string> DecodeToUtf8(std::string_view encoding, std::string_view bytes);

/// Strict for valid text, U+FFFD for what is not.
ORVO_PLATFORM_API std::string ToUtf8(std::u16string_view text);
ORVO_PLATFORM_API std::u16string FromUtf8(std::string_view text);

}  // namespace orvo
