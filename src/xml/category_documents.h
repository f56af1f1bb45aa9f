#pragma once

#include "xml/xml_report.h"

namespace orvo {

// The writers of an XML report, one for each category. Each contains its own failures: what it has saved stays, its
// entry of the index is there in full or not at all, and the report goes on. They answer whether they wrote their
// category.

/// "SummaryStatistics" of the index, and "SummaryStatistics.xml". The answer means nothing.
bool WriteSummaryDocument(XmlReport& report);
/// "NodeStatistics" of the index; an older one that stands there moves into "NodeStatistics.xml".
bool WriteNodeDocument(XmlReport& report);
/// "ProtocolStatistics" of the index, and "ProtocolStatistics.xml".
bool WriteProtocolDocument(XmlReport& report);
/// "ConversationStatistics.xml", written anew.
bool WriteConversationDocument(XmlReport& report);
/// "HierarchicalNodeStatistics.xml", written anew. True also when there was nothing to write.
bool WriteHierarchyDocument(XmlReport& report);

}  // namespace orvo
