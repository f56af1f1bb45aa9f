// The templates that the build puts together are those that reports copy.

#include <gmock/gmock.h>

#include <filesystem>
#include <set>
#include <string>

#include "xml/report_assets.h"

namespace orvo::test {
namespace {

using Names = std::set<std::string>;

Names FilesIn(const std::filesystem::path& folder) {
  Names names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.is_regular_file()) names.insert(entry.path().filename().string());
  }
  return names;
}

std::string Narrow(std::u16string_view name) {
  return {name.begin(), name.end()};
}

TEST(ReportTemplatesTest, AreTheFilesThatReportsCopy) {
  Names files;
  Names images;
  for (std::u16string_view image : kCommonImages) images.insert(Narrow(image));
  for (const ReportAssets* assets : {&kFullAssets, &kAdditionalNodeAssets, &kExpertSummaryAssets,
                                     &kExecutiveSummaryAssets, &kConversationsOnlyAssets}) {
    for (const AssetFile& file : assets->files) files.insert(Narrow(file.name));
    for (std::u16string_view image : assets->images) images.insert(Narrow(image));
  }
  const std::filesystem::path templates = ORVO_BINARY_DIR "/share/orvo-reports/templates/Reports";
  EXPECT_EQ(FilesIn(templates), files);
  EXPECT_EQ(FilesIn(templates / "Images"), images);
}

}  // namespace
}  // namespace orvo::test
