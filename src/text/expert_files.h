#pragma once

#include "text/text_report.h"

namespace orvo {

/// The expert section: flows, applications and event counts, one file each, the first two under switches of their own.
/// What fails in one file ends the section, but for its number of rows: that ends its file alone.
/// Raises E_POINTER when the engine's expert statistics have no tables.
void WriteExpertFiles(TextReport& report);

/// The voice and video section: one file of chosen columns, under its own switch even if its section is called.
/// Raises E_NOINTERFACE when the engine's expert statistics have no tables.
void WriteMediaFile(TextReport& report);

}  // namespace orvo
