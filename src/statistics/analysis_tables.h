#pragma once

#include <cstdint>
#include <string>

#include "engine/context.h"
#include "engine/tables.h"

namespace orvo {

/// The columns of the table of voice and video media that reports show, by their number in the engine's table.
enum MediaColumn : std::uint32_t {
  kMediaStart = 1,
  kMediaMosLq = 5,
  kMediaEvents = 7,
  kMediaFinish = 8,
  kMediaMosCq = 11,
  kMediaHops = 13,
  kMediaDuration = 14,
  kMediaMosPq = 18,
  kMediaPackets = 19,
  kMediaMosNom = 21,
  kMediaBytes = 23,
  kMediaRListening = 25,
  kMediaProtocol = 26,
  kMediaRConversational = 30,
  kMediaRG107 = 35,
  kMediaFlowId = 36,
  kMediaRNominal = 41,
  kMediaSourceAddress = 44,
  kMediaDestinationAddress = 48,
  kMediaSourcePort = 53,
  kMediaDestinationPort = 58,
  kMediaJitter = 59,
  kMediaPacketLoss = 63,
  kMediaSsrc = 67,
  kMediaCodec = 70,
};

/// One analysis table, read cell by cell. Every operation raises the failure of its query; a text is valid until the
/// next call.
class AnalysisTable {
 public:
  /// The table of a kind; raises the provider's failure.
  AnalysisTable(ITableProvider& provider, TableKind kind);

  std::uint32_t ColumnCount();
  std::uint32_t RowCount();
  std::u16string& ColumnTitle(std::uint32_t column);
  std::u16string& ColumnIdentifier(std::uint32_t column);
  std::u16string& Cell(std::uint32_t row, std::uint32_t column);

 private:
  ComPtr<ITable> table_;
  std::u16string text_;
};

/// The analysis tables of a capture; null for one without expert and voice statistics. Raises `without_tables` when the
/// statistics offer no tables.
ComPtr<ITableProvider> OpenAnalysisTables(IStatsContext& statistics, Status without_tables);

}  // namespace orvo
