#pragma once

#include "pdf/pdf_report.h"

namespace orvo {

// The sections of a PDF report. `parent` is the entry of the outline below which the section's own go. Each raises what
// ends it early; a section without its category, or without rows, draws nothing.

/// The first page: what was captured, and the charts that find room.
void DrawDashboard(PdfReport& report, PdfOutline* parent);
/// The statistics of the summary in their groups.
void PrintSummary(PdfReport& report, PdfOutline* parent);
/// Nodes by the kind of address that fits the medium, in two tables.
void PrintNodes(PdfReport& report, PdfOutline* parent);
void PrintProtocols(PdfReport& report, PdfOutline* parent);
/// Events, flows in two tables, and applications, each a section of its own.
void PrintExpert(PdfReport& report, PdfOutline* parent);
/// Streams of voice and video in five tables, each a section of its own.
void PrintMedia(PdfReport& report, PdfOutline* parent);
void PrintWirelessNodes(PdfReport& report, PdfOutline* parent);
/// Radio channels by bytes, then by packets, each a section of its own.
void PrintWirelessChannels(PdfReport& report, PdfOutline* parent);
/// A page for each graph of the collection that can be drawn.
void DrawGraphPages(PdfReport& report, PdfOutline* parent);

}  // namespace orvo
