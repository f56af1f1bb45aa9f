#pragma once

#include <span>
#include <string_view>

#include "xml/xml_report.h"

namespace orvo {

/// A file of the template folder, and the name that it gets in the report when that is another.
struct AssetFile {
  std::u16string_view name;
  std::u16string_view target = {};
};

/// The images of every kind of report.
extern const std::span<const std::u16string_view> kCommonImages;

/// What presents a kind of report in a browser, besides the common images.
struct ReportAssets {
  std::span<const AssetFile> files;
  std::span<const std::u16string_view> images;
};

extern const ReportAssets kFullAssets;
extern const ReportAssets kAdditionalNodeAssets;
extern const ReportAssets kExpertSummaryAssets;
extern const ReportAssets kExecutiveSummaryAssets;
extern const ReportAssets kConversationsOnlyAssets;

/// Copies the files from the template folder's "\Reports\" into the report's folder, images into its "\Images\". A file
/// that cannot be copied is passed over, as all are when there is no template folder.
void CopyAssets(const XmlReport& report, const ReportAssets& assets);

}  // namespace orvo
