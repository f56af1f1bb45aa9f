#pragma once

#include "util/folders.h"
#include "xml/xml_report.h"

namespace orvo {

/// A name below the report's folder. A report without a folder stays where the process is, not at the root.
inline std::u16string PathBelow(const XmlReport& report, std::u16string_view name) {
  return report.job.folder.empty() ? std::u16string(name) : report.job.folder + u"\\" + std::u16string(name);
}

/// The folder of pictures, made with all that is missing above it.
inline std::u16string MakePictureFolder(const XmlReport& report) {
  std::u16string folder = PathBelow(report, u"Graphs\\");
  MakeFolders(folder);  // a folder that is not there fails the picture
  return folder;
}

/// How documents name a picture there.
inline std::u16string PictureSource(std::u16string_view file) {
  return u".\\Graphs\\" + std::u16string(file);
}

}  // namespace orvo
