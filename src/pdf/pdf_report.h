#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "frame/output_method.h"
#include "pdf/pdf_document.h"
#include "platform/error.h"

namespace orvo {

/// What the sections of one PDF report share. It lives for the length of that report.
struct PdfReport {
  const ReportJob& job;
  IStatsOutputPrefs& preferences;
  ReportUtil& util;
  IProtocolNameService& protocol_names;
  PdfDocument& document;
  std::uint64_t time_mark;
  bool lacks_site;             ///< no capture runs behind the statistics
  IReportObserver* observer;   ///< null for none
  std::u16string time_text{};  ///< of the time mark
  ComPtr<IAddressTable> addresses{};
  std::uint64_t rows = 0;       ///< of all tables so far
  Status first_failure = S_OK;  ///< of a section

  /// Raises the failing status of a switch that cannot be read.
  bool IsOn(std::uint32_t identifier) const { return orvo::IsOn(preferences, identifier); }
};

/// The boundary of a section: what is raised inside ends that section alone, and what it has drawn stays.
template <class Body>
void Contain(PdfReport& report, Body&& body) {
  const Status status = Guard(std::forward<Body>(body));
  if (Succeeded(report.first_failure) && Failed(status)) report.first_failure = status;
}

/// Raises E_FAIL for what had to be drawn and was not.
inline void MustBeDrawn(bool drawn) {
  if (!drawn) Raise(E_FAIL);
}

}  // namespace orvo
