#include <algorithm>
#include <span>

#include "pdf/analysis_section.h"
#include "pdf/sections.h"
#include "prefs/switch_ids.h"

namespace orvo {
namespace {

/// The name of a codec, in which a page font has no Greek letter for "µ-law".
void ShowCodec(PdfReport& report, const AnalysisRow& row, SectionCell* cell) {
  ShowCell<kMediaCodec>(report, row, cell);
  std::ranges::replace(cell->text, u'\u00B5', u'u');
}

constexpr AnalysisColumn kAddresses[] = {
    {"Flow", "ID", 50, ShowCell<kMediaFlowId>},
    {"Events", "", 120, ShowCell<kMediaEvents>},
    {"Source", "Addr", 190, ShowCell<kMediaSourceAddress>},
    {"Source", "Port", 290, ShowCell<kMediaSourcePort>},
    {"Dest", "Addr", 360, ShowCell<kMediaDestinationAddress>},
    {"Dest", "Port", 460, ShowCell<kMediaDestinationPort>},
};

constexpr AnalysisColumn kTimes[] = {
    {"Flow", "ID", 50, ShowCell<kMediaFlowId>},          {"Start", "", 120, ShowCell<kMediaStart>, 16},
    {"Finish", "", 220, ShowCell<kMediaFinish>, 16},     {"Duration", "", 320, ShowCell<kMediaDuration>, 16},
    {"Protocol", "", 420, ShowCell<kMediaProtocol>, 17},
};

constexpr AnalysisColumn kStreams[] = {
    {"Flow", "ID", 50, ShowCell<kMediaFlowId>},    {"Hops", "", 100, ShowCell<kMediaHops>},
    {"Packets", "", 170, ShowCell<kMediaPackets>}, {"Bytes", "", 240, ShowCell<kMediaBytes>},
    {"SSRC", "", 310, ShowCell<kMediaSsrc>},       {"Codec", "", 380, ShowCodec, 26},
};

constexpr AnalysisColumn kQuality[] = {
    {"Flow", "ID", 50, ShowCell<kMediaFlowId>}, {"Jitter", "", 120, ShowCell<kMediaJitter>},
    {"MOS-LQ", "", 220, ShowCell<kMediaMosLq>}, {"MOS-CQ", "", 290, ShowCell<kMediaMosCq>},
    {"MOS-PQ", "", 360, ShowCell<kMediaMosPq>}, {"MOS-NOM", "", 430, ShowCell<kMediaMosNom>},
};

constexpr AnalysisColumn kLoss[] = {
    {"Flow", "ID", 50, ShowCell<kMediaFlowId>},
    {"Packet", "Loss %", 120, ShowCell<kMediaPacketLoss>},
    {"R Factor", "Listening", 190, ShowCell<kMediaRListening>},
    {"R Factor", "Conversational", 260, ShowCell<kMediaRConversational>},
    {"R Factor", "G. 107", 360, ShowCell<kMediaRG107>},
    {"R Factor", "Nominal", 430, ShowCell<kMediaRNominal>},
};

struct MediaSection {
  std::u16string_view bookmark;
  std::span<const AnalysisColumn> columns;
  float header_gap = kPdfAfterHeader;
};

constexpr MediaSection kSections[] = {
    {u"Addresses", kAddresses},        {u"", kTimes}, {u"", kStreams}, {u"Quality Metrics", kQuality},
    {u"", kLoss, 2 * kPdfAfterHeader},
};

}  // namespace

void PrintMedia(PdfReport& report, PdfOutline* parent) {
  if (!report.IsOn(kSwitchOutputVoIPOnly)) return;
  const ComPtr<ITableProvider> tables = OpenAnalysisTables(*report.job.live, E_NOINTERFACE);
  if (!tables) return;
  std::optional<AnalysisTable> table = FindTable(*tables, kTableMedia);
  if (!table || table->RowCount() == 0) return;
  PdfOutline* group = report.document.CreateChildOutline(parent, u"Voice & Video");
  for (const MediaSection& section : kSections) {
    Contain(report, [&] {
      const SectionTitle title{.bookmark = section.bookmark,
                               .page_title = u"Voice & Video Statistics: Reported ",
                               .header_gap = section.header_gap};
      PrintAnalysisTable(report, group, title, section.columns, *table);
    });
  }
}

}  // namespace orvo
