#pragma once

#include "xml/xml_report.h"

namespace orvo {

/// Which menu pages a kind of report has.
enum class MenuSet {
  kGeneral,  ///< the main menu, and one page for every section that was written
  kAdditionalNode,
  kConversations,
};

/// Builds the pages, which show what was written; the two sets of a fixed number of pages first mark what these are
/// about. E_FAIL is raised for a report without a folder, else the failure of the page that could not be saved.
void WriteMenuPages(XmlReport& report, MenuSet set);

}  // namespace orvo
