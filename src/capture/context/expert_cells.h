#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "capture/analysis/expert/response_times.h"
#include "capture/context/cell_texts.h"

namespace orvo {

// Cells that several tables of the expert analysis have.

/// ASCII as it is.
std::u16string PlainCell(std::string_view ascii);
/// A port; nothing for 0.
std::u16string PortCell(std::uint16_t port);
/// The name of what is spoken; of the transport where nobody knows.
std::u16string ProtocolCell(std::array<std::uint16_t, 2> applications, std::uint8_t ip_protocol);
/// The name of the service that is spoken to where it is known, else as ProtocolCell.
std::u16string ApplicationCell(std::array<std::uint16_t, 2> applications, std::uint8_t ip_protocol);
/// TCP or UDP; empty for none.
std::u16string TransportCell(std::uint8_t ip_protocol);
/// Microseconds as milliseconds with three digits behind the point.
std::u16string MillisecondCell(double microseconds);

/// Two digits behind the point, or "NS" for no samples (Apdex Alliance, version 1.1 section 3.5).
template <class Count>
std::u16string ApdexCell(const ResponseTimes<Count>& responses) {
  return responses.count() == 0 ? u"NS" : RealCell(responses.apdex(), 2);
}

/// Times of answers; nothing without samples.
template <class Count>
std::u16string BestCell(const ResponseTimes<Count>& responses) {
  return responses.count() == 0 ? u"" : MillisecondCell(responses.best);
}
template <class Count>
std::u16string WorstCell(const ResponseTimes<Count>& responses) {
  return responses.count() == 0 ? u"" : MillisecondCell(responses.worst);
}
template <class Count>
std::u16string MeanCell(const ResponseTimes<Count>& responses) {
  return responses.count() == 0 ? u"" : MillisecondCell(responses.mean());
}

}  // namespace orvo
