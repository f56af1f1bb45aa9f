#pragma once

#include "xml/xml_report.h"

namespace orvo {

// Pictures go into the folder "Graphs" of the report's folder. Both writers contain their failures.

/// "Graphs" of the index: traffic history, top talkers, size distribution. What was drawn before a failure stays.
bool WriteReportGraphs(XmlReport& report);
/// "Graphs.xml": one picture of every graph of the collection, beside those of the reports before. The report must have
/// a collection.
bool WriteGraphCollection(XmlReport& report);

/// The name of a graph's picture, a single name whatever the graph's holds: blanks become "_", slashes, backslashes,
/// colons and what no document can name become "-", and a name beyond a file's is cut.
std::u16string PictureName(std::u16string_view graph, std::uint32_t number);

}  // namespace orvo
