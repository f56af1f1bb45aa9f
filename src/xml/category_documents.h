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
/// "WirelessNodeStatistics" of the index, and "WirelessNodeStatistics.xml".
bool WriteWirelessNodeDocument(XmlReport& report);
/// "WirelessChannelStatistics" of the index.
bool WriteWirelessChannelDocument(XmlReport& report);
/// "ExpertStatistics" of the index, and "ExpertLog.xml", written anew. Marks flows, applications and event log.
bool WriteExpertDocuments(XmlReport& report);
/// "VoIPStatistics" of the index; none for a capture without calls.
bool WriteMediaDocument(XmlReport& report);

}  // namespace orvo
