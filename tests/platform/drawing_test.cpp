#include <gmock/gmock.h>

#include <atomic>
#include <cmath>
#include <filesystem>
#include <limits>
#include <thread>
#include <vector>

#include "platform/bitmap.h"
#include "platform/canvas.h"
#include "platform/graphics.h"
#include "tests/platform/temp_folder.h"

namespace orvo::test {
namespace {

constexpr Argb kWhite = 0xFFFFFFFF;
constexpr Argb kBlack = 0xFF000000;
constexpr Font kFont{u"Arial", 9};

Bitmap MakeBitmap(int width, int height, Argb background = kWhite) {
  Bitmap bitmap;
  EXPECT_EQ(Bitmap::Create(width, height, background, &bitmap), S_OK);
  return bitmap;
}

/// The pixels that are not white: how many, and the rectangle around them.
struct Ink {
  int count = 0;
  int left = std::numeric_limits<int>::max();
  int top = std::numeric_limits<int>::max();
  int right = -1;
  int bottom = -1;
  int width() const { return right - left + 1; }
  int height() const { return bottom - top + 1; }
};

Ink InkOf(const Bitmap& bitmap) {
  Ink ink;
  for (int y = 0; y < bitmap.height(); ++y) {
    for (int x = 0; x < bitmap.width(); ++x) {
      if (bitmap.PixelAt(x, y) == kWhite) continue;
      ++ink.count;
      ink.left = std::min(ink.left, x);
      ink.top = std::min(ink.top, y);
      ink.right = std::max(ink.right, x);
      ink.bottom = std::max(ink.bottom, y);
    }
  }
  return ink;
}

TEST(BitmapTest, SizesAreBounded) {
  Bitmap bitmap;
  const int least = std::numeric_limits<int>::min();
  const int most = std::numeric_limits<int>::max();
  const std::pair<int, int> refused[] = {{0, 10},      {10, 0},   {-1, 10},  {least, least},
                                         {most, most}, {8193, 1}, {1, 8193}, {8192, 2049}};
  for (auto [width, height] : refused) {
    EXPECT_EQ(Bitmap::Create(width, height, kWhite, &bitmap), E_FAIL) << width << " x " << height;
  }
  EXPECT_EQ(Bitmap::Create(8192, 1, kWhite, &bitmap), S_OK);
  EXPECT_EQ(Bitmap::Create(1, 1, 0x80000000, &bitmap), S_OK);
  EXPECT_EQ(bitmap.PixelAt(0, 0), 0xFF7F7F7F) << "half black on white";
}

TEST(BitmapTest, ASavedPictureReadsBack) {
  TempFolder folder;
  Bitmap bitmap = MakeBitmap(20, 10, 0xFF102030);
  Canvas(&bitmap).FillRectangle({2, 3, 5, 4}, 0xFFFF8000);
  const std::u16string path = folder.Path("a.png");
  ASSERT_EQ(bitmap.Save(u"image/png", path), S_OK);
  Bitmap read;
  ASSERT_EQ(Bitmap::Load(path, &read), S_OK);
  EXPECT_EQ(read.width(), 20);
  EXPECT_EQ(read.height(), 10);
  EXPECT_EQ(read.PixelAt(1, 3), 0xFF102030);
  EXPECT_EQ(read.PixelAt(2, 3), 0xFFFF8000);
  EXPECT_EQ(read.PixelAt(6, 6), 0xFFFF8000);
  EXPECT_EQ(read.PixelAt(7, 6), 0xFF102030);
}

TEST(BitmapTest, NothingIsLeftOfAPictureThatCannotBeSaved) {
  TempFolder folder;
  const std::u16string base = folder.Path();
  std::filesystem::create_directory(folder.System("taken"));
  const Bitmap bitmap = MakeBitmap(4, 4);
  EXPECT_EQ(bitmap.Save(u"image/jpeg", base + u"\\a.jpg"), E_FAIL);
  EXPECT_EQ(bitmap.Save(u"image/", base + u"\\a"), E_FAIL);
  EXPECT_EQ(bitmap.Save(u"image/png", base + u"\\none\\a.png"), StatusFromError(kErrorPathNotFound));
  EXPECT_TRUE(Failed(bitmap.Save(u"image/png", base + u"\\taken")));
  EXPECT_TRUE(Failed(bitmap.Save(u"image/png", u"")));
  EXPECT_EQ(Bitmap().Save(u"image/png", base + u"\\a.png"), E_FAIL);
  EXPECT_EQ(folder.Count(), 1U);
}

TEST(BitmapTest, FilesThatAreNoPicturesAreRefused) {
  TempFolder folder;
  const Bitmap bitmap = MakeBitmap(40, 40);
  const std::u16string path = folder.Path("a.png");
  ASSERT_EQ(bitmap.Save(u"image/png", path), S_OK);
  const std::string good = folder.Get("a.png");

  std::string huge = good;
  huge.replace(16, 4, "\x7F\xFF\xFF\xFF");
  std::string damaged = good;
  damaged[good.size() / 2] = static_cast<char>(damaged[good.size() / 2] ^ 0x55);
  const std::string bad[] = {"", "GIF89a", good.substr(0, 20), good.substr(0, good.size() / 2), huge, damaged};
  for (const std::string& bytes : bad) {
    folder.Put("a.png", bytes);
    Bitmap read;
    EXPECT_TRUE(Failed(Bitmap::Load(path, &read))) << bytes.size();
    EXPECT_EQ(read.width(), 0);
  }
  Bitmap read;
  EXPECT_EQ(Bitmap::Load(folder.Path("none"), &read), StatusFromError(kErrorFileNotFound));
}

TEST(CanvasTest, LinesThroughTheMiddleOfPixelsAreSharp) {
  Bitmap bitmap = MakeBitmap(20, 20);
  Canvas canvas(&bitmap);
  canvas.DrawLine({2.5, 5.5}, {17.5, 5.5}, {kBlack, 1});
  EXPECT_EQ(bitmap.PixelAt(10, 5), kBlack);
  EXPECT_EQ(bitmap.PixelAt(10, 4), kWhite);
  EXPECT_EQ(bitmap.PixelAt(10, 6), kWhite);
  canvas.DrawLine({2, 8}, {17, 16}, {kBlack, 1});
  Argb shades = 0;
  for (int y = 8; y < 17; ++y) shades += bitmap.PixelAt(10, y) != kWhite && bitmap.PixelAt(10, y) != kBlack;
  EXPECT_GT(shades, 0U) << "slanting lines have smooth edges";
}

TEST(CanvasTest, ColoursWithAlphaLetTheGroundThrough) {
  Bitmap bitmap = MakeBitmap(4, 4);
  Canvas(&bitmap).FillRectangle({0, 0, 4, 4}, 0xC0D40000);
  const Argb pixel = bitmap.PixelAt(1, 1);
  EXPECT_NEAR(pixel >> 16 & 0xFF, 0xD4 * 0.753 + 255 * 0.247, 2);
  EXPECT_NEAR(pixel >> 8 & 0xFF, 255 * 0.247, 2);
}

TEST(CanvasTest, PiesGoClockwiseFromTheirStart) {
  Bitmap bitmap = MakeBitmap(40, 40);
  Canvas canvas(&bitmap);
  canvas.FillPie({0, 0, 40, 40}, 0, std::acos(0.0), 0xFF00FF00);
  EXPECT_EQ(bitmap.PixelAt(30, 30), 0xFF00FF00) << "lower right";
  for (auto [x, y] : {std::pair(10, 10), {30, 10}, {10, 30}, {39, 39}}) EXPECT_EQ(bitmap.PixelAt(x, y), kWhite);
  canvas.FillEllipse({0, 10, 40, 20}, 0xFF0000FF);
  EXPECT_EQ(bitmap.PixelAt(5, 20), 0xFF0000FF);
  EXPECT_EQ(bitmap.PixelAt(3, 11), kWhite);
}

TEST(CanvasTest, BitmapsFillTheirPlace) {
  const Bitmap red = MakeBitmap(4, 2, 0xFFFF0000);
  Bitmap bitmap = MakeBitmap(30, 30);
  Canvas canvas(&bitmap);
  canvas.DrawBitmap(red, {10, 5, 12, 20});
  EXPECT_EQ(bitmap.PixelAt(16, 15), 0xFFFF0000);
  for (auto [x, y] : {std::pair(8, 15), {24, 15}, {16, 3}, {16, 27}}) EXPECT_EQ(bitmap.PixelAt(x, y), kWhite);
  canvas.DrawBitmap(Bitmap(), {0, 0, 30, 30});
  canvas.DrawBitmap(red, {0, 0, 0, 30});
  EXPECT_EQ(bitmap.PixelAt(1, 1), kWhite);
}

TEST(CanvasTest, WhatHasNoPlaceIsLeftOut) {
  Bitmap bitmap = MakeBitmap(10, 10);
  Canvas canvas(&bitmap);
  const double nan = std::nan("");
  canvas.DrawLine({nan, 1}, {5, nan}, {});
  canvas.FillRectangle({0, 0, HUGE_VAL, 5}, kBlack);
  canvas.FillPie({1, 1, 0, 5}, 0, 1, kBlack);
  canvas.FillPie({1, 1, 5, 5}, nan, 1, kBlack);
  canvas.DrawText(TextLine(u"text", kFont), {nan, 5}, kBlack);
  canvas.DrawLines({}, {});
  EXPECT_EQ(InkOf(bitmap).count, 0);
  canvas.DrawLine({2.5, 2.5}, {7.5, 2.5}, {});
  EXPECT_EQ(bitmap.PixelAt(5, 2), kBlack) << "the canvas is still of use";
}

TEST(TextLineTest, SizesArePointsOf96PixelsToTheInch) {
  const double nine = TextLine(u"Mbits Per Second", kFont).width();
  EXPECT_NEAR(TextLine(u"Mbits Per Second", {u"Arial", 18}).width(), 2 * nine, 4);
  const FontMetrics metrics = MeasureFont({u"Arial", 72});
  EXPECT_GT(metrics.ascent, 96 * 0.7);
  EXPECT_LT(metrics.height(), 96 * 1.6);
  EXPECT_GT(TextLine(u"Mbits Per Second", {u"Arial", 9, true}).width(), nine);
}

TEST(TextLineTest, TextIsDrawnWhereItWasMeasured) {
  const TextLine line(u"Hxg", kFont);
  for (bool upwards : {false, true}) {
    Bitmap bitmap = MakeBitmap(60, 60);
    Canvas canvas(&bitmap);
    if (upwards) {
      canvas.DrawTextUpwards(line, {30, 50}, kBlack);
    } else {
      canvas.DrawText(line, {30, 50}, kBlack);
    }
    const Ink ink = InkOf(bitmap);
    ASSERT_GT(ink.count, 20);
    const int length = upwards ? ink.height() : ink.width();
    EXPECT_NEAR(length, line.width(), 3);
    EXPECT_GE(ink.left, upwards ? 20 : 29);
    EXPECT_LE(ink.bottom, upwards ? 51 : 54);
    EXPECT_LE(ink.top, 50 - (upwards ? line.width() - 4 : 6));
  }
}

TEST(TextLineTest, WideTextsEndInAnEllipsis) {
  const std::u16string_view text = u"a-host-with-a-long-name.example.com";
  const TextLine whole(text, kFont);
  EXPECT_FALSE(whole.elided());
  for (double room : {0.0, 20.0, 60.0, whole.width() - 1}) {
    const TextLine line(text, kFont, room);
    EXPECT_TRUE(line.elided());
    EXPECT_LE(line.width(), std::max(room, 12.0)) << "the ellipsis itself stays";
  }
  EXPECT_FALSE(TextLine(text, kFont, whole.width()).elided());
}

TEST(TextLineTest, EveryTextCanBeMeasuredAndDrawn) {
  std::u16string unpaired(1, static_cast<char16_t>(0xD800));
  const std::u16string texts[] = {u"",
                                  unpaired,
                                  unpaired + u"x",
                                  std::u16string(3, u'\0'),
                                  u"two\nlines\ttab\u2028",
                                  u"\u05E9\u05DC\u05D5\u05DD abc 123",
                                  u"\u0633\u0644\u0627\u0645",
                                  u"\u65E5\u672C\u8A9E",
                                  u"\U0001F600",
                                  std::u16string(100'000, u'W'),
                                  std::u16string(700, u'\u0301')};
  for (const std::u16string& text : texts) {
    for (const Font& font : {kFont, Font{u"No Such Family", 9}, Font{u"", 9}}) {
      Bitmap bitmap = MakeBitmap(80, 40);
      const TextLine line(text, font);
      EXPECT_TRUE(std::isfinite(line.width()));
      EXPECT_LT(line.width(), 20'000);
      Canvas(&bitmap).DrawText(line, {5, 30}, kBlack);
      EXPECT_LE(TextLine(text, font, 50).width(), 50);
    }
  }
}

TEST(TextLineTest, TextsThatReadLeftwardsBeginAtTheirLeftEnd) {
  Bitmap bitmap = MakeBitmap(200, 40);
  const TextLine line(u"\u05E9\u05DC\u05D5\u05DD", kFont, 150);
  Canvas(&bitmap).DrawText(line, {20, 30}, kBlack);
  EXPECT_GE(InkOf(bitmap).left, 18);
  EXPECT_LE(InkOf(bitmap).right, 22 + line.width());
}

TEST(GraphicsTest, ThreadsDrawAtOnce) {
  const GraphicsStartup graphics;
  std::atomic<int> drawn = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < 20; ++round) {
        Bitmap bitmap;
        if (Failed(Bitmap::Create(100, 40, kWhite, &bitmap))) return;
        Canvas(&bitmap).DrawText(TextLine(u"14:05:09 \u0434\u0430", kFont, 90), {5, 30}, kBlack);
        if (InkOf(bitmap).count > 20) ++drawn;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(drawn, 80);
}

}  // namespace
}  // namespace orvo::test
