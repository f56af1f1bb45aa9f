#include "tools/chart_sheet/pictures.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <system_error>

#include "platform/bitmap.h"
#include "platform/canvas.h"
#include "platform/code_page.h"
#include "platform/message.h"
#include "platform/path.h"

namespace orvo::tools {
namespace {

constexpr Argb kSheetColour = 0xFFE9ECF0;
constexpr double kMargin = 12;
/// Pictures are made smaller where the sheet would become longer or wider.
constexpr double kLongestSide = 2400;

void Require(Status status, std::string_view what) {
  if (Failed(status)) throw ToolError(fmt::format("{}: {}", what, ToUtf8(SystemMessage(status))));
}

}  // namespace

Pictures::Pictures(std::filesystem::path folder, std::int32_t width, std::int32_t height)
    : folder_(std::move(folder)), width_(width), height_(height) {
  std::error_code error;
  std::filesystem::create_directories(folder_, error);
  if (error) throw ToolError(fmt::format("{}: cannot be made: {}", folder_.string(), error.message()));
  folder_ = std::filesystem::absolute(folder_);
}

std::u16string Pictures::PathOf(std::string_view name) const {
  return PathFromSystem((folder_ / fmt::format("{}.png", name)).string());
}

void Pictures::Add(std::string_view name, const Draw& draw) {
  Require(draw(PathOf(name).c_str(), width_, height_), fmt::format("{}.png", name));
  names_.emplace_back(name);
}

void Pictures::WriteContactSheet() const {
  const auto count = static_cast<std::int32_t>(names_.size());
  if (count == 0) return;
  // As many columns as make the sheet about as wide as it is high.
  const double shape = static_cast<double>(height_) / width_;
  const std::int32_t columns = std::clamp(static_cast<std::int32_t>(std::lround(std::sqrt(count * shape))), 1, count);
  const std::int32_t rows = (count + columns - 1) / columns;
  const double scale = std::min({1.0, kLongestSide / (columns * width_), kLongestSide / (rows * height_)});
  const double width = std::floor(width_ * scale);
  const double height = std::floor(height_ * scale);
  auto place = [](std::int32_t number, double length) { return kMargin + number * (length + kMargin); };

  const std::string what = "contact-sheet.png";
  Bitmap sheet;
  Require(Bitmap::Create(static_cast<int>(place(columns, width)), static_cast<int>(place(rows, height)), kSheetColour,
                         &sheet),
          what);
  Canvas canvas(&sheet);
  for (std::int32_t i = 0; i < count; ++i) {
    Bitmap picture;
    Require(Bitmap::Load(PathOf(names_[static_cast<std::size_t>(i)]), &picture), what);
    canvas.DrawBitmap(picture, {place(i % columns, width), place(i / columns, height), width, height});
  }
  Require(sheet.Save(u"image/png", PathOf("contact-sheet")), what);
}

}  // namespace orvo::tools
