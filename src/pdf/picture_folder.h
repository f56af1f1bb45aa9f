#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "pdf/pdf_report.h"
#include "platform/file.h"
#include "util/folders.h"

namespace orvo {

/// The folder in which charts wait to be placed, with a backslash at its end. It stays behind.
inline std::u16string PictureFolder(const PdfReport& report) {
  return report.job.folder + u"Temp\\";
}

/// Makes it with all that is missing above it; a folder that cannot be made fails the charts.
inline void MakePictureFolder(const PdfReport& report) {
  MakeFolders(PictureFolder(report));
}

/// Has `draw` write a chart to a file of that name, hands the file to `place`, and deletes it. A chart that cannot be
/// drawn is left out, which the observer hears of, and one for which `draw` answers S_FALSE is left out as not wanted.
template <class Draw, class Place>
void PlaceChart(const PdfReport& report, std::u16string_view name, Draw&& draw, Place&& place) {
  const std::u16string path = PictureFolder(report) + std::u16string(name) + u".png";
  const Status drawn = draw(path.c_str());
  if (Failed(drawn) && report.observer) report.observer->FileDone(path.c_str(), 0, drawn);
  if (drawn != S_OK) return;
  const Status placed = Guard([&] { place(path); });
  (void)DeleteFile(path);
  Check(placed);
}

}  // namespace orvo
