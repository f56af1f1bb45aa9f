#include "pdf/pdf_document.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>

#include "platform/bitmap.h"
#include "platform/error.h"
#include "platform/path.h"
#include "tests/pdf/pdf_judge.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/text.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class PdfDocumentTest : public testing::Test {
 protected:
  std::u16string WidePath(const std::string& name) const { return PathFromSystem(folder_.Path(name)); }

  /// Saves the document and has its structure checked.
  std::string Save(PdfDocument* document) {
    document->Save(WidePath("Report.pdf"));
    ExpectSound(folder_.Path("Report.pdf"));
    return folder_.Path("Report.pdf");
  }

  std::u16string SavePng(const std::string& name, int width, int height) {
    Bitmap bitmap;
    EXPECT_EQ(Bitmap::Create(width, height, 0xFF336699, &bitmap), S_OK);
    EXPECT_EQ(bitmap.Save(u"image/png", WidePath(name)), S_OK);
    return WidePath(name);
  }

  /// A page without a bookmark.
  static PdfPage* AddPage(PdfDocument* document) {
    bool pending = false;
    return document->AddPage(nullptr, u"", &pending);
  }

  TemporaryFolder folder_;
};

/// The status that something raises; S_OK when it raises none.
template <class Action>
Status Raised(Action&& action) {
  return Guard([&] { action(); });
}

TEST_F(PdfDocumentTest, TextsStandWhereTheyWereDrawn) {
  PdfDocument document;
  document.SetCompression();
  const PdfPage* page = AddPage(&document);
  EXPECT_EQ(document.PageWidth(page), 595);
  EXPECT_EQ(document.PageHeight(page), 841);
  EXPECT_EQ(document.CurrentPage(), page);
  EXPECT_TRUE(document.DrawText(u"regular", 50, 700));
  EXPECT_TRUE(document.DrawBoldText(u"bold", 120.5F, 688));
  EXPECT_TRUE(document.DrawText(u"lowest", 50, 74.5F));
  EXPECT_TRUE(document.DrawBoldText(u"lower", 50, 60));
  EXPECT_FALSE(document.DrawText(u"refused", 50, 74));
  EXPECT_FALSE(document.DrawColoredText(u"refused", 50, 0, kPdfBlack));
  AddPage(&document);
  EXPECT_TRUE(document.DrawColoredText(u"next", 220, 500, {1, 0, 0}));
  const std::string file = Save(&document);

  std::vector<std::string> places;
  for (const PdfWord& word : WordsOf(file)) {
    // From the top of a line of 10 points to its baseline it is 7.18 points.
    const double baseline = 841 - word.top - 7.18;
    char place[64];
    (void)std::snprintf(place, sizeof place, "%d %s %g %g", word.page, word.text.c_str(), word.left, baseline);
    if (baseline > 55) places.emplace_back(place);
  }
  EXPECT_THAT(places, ElementsAre("1 regular 50 700", "1 bold 120.5 688", "1 lowest 50 74.5", "1 lower 50 60",
                                  "2 next 220 500"));
  EXPECT_THAT(OutputLines("/usr/bin/pdffonts", {file}), testing::Contains(testing::StartsWith("Helvetica-Bold")));
}

TEST_F(PdfDocumentTest, OddTextsArePrintedInTheSystemCodePage) {
  const std::pair<std::u16string, std::string> texts[] = {
      {u"Résumé – naïve", "Resume - naive"},
      {u"漢字 \xD83D\xDE00 \xD800.", "?? ? ?."},
      {std::u16string(u"a\0b\x01\x1B\x7F.", 7), "a?b???."},
      {u"one\ttwo\nthree\r.", "one two three ."},
      {u"(un)balanced) \\( 100%", "(un)balanced) \\( 100%"},
  };
  PdfDocument document;
  AddPage(&document);
  float y = 700;
  std::vector<std::string> expected;
  for (const auto& [text, printed] : texts) {
    EXPECT_TRUE(document.DrawText(text, 50, y -= 12));
    expected.push_back(printed);
  }
  EXPECT_FALSE(document.DrawText(std::u16string(65'536, u'x'), 50, 200)) << "more than a line of the file can hold";
  EXPECT_TRUE(document.DrawText(u"", 50, 200));
  EXPECT_TRUE(document.DrawText(std::u16string(10'000, u'x'), 50, 200));
  std::vector<std::string> lines = LinesOf(Save(&document));
  ASSERT_FALSE(lines.empty());
  EXPECT_THAT(lines.back(), testing::StartsWith("xxxxxxxx")) << "what runs over the page's edge is not shown";
  lines.pop_back();
  EXPECT_EQ(lines, expected);
  EXPECT_NE(folder_.Read("Report.pdf").find("(" + std::string(10'000, 'x') + ")"), std::string::npos);
}

TEST_F(PdfDocumentTest, BookmarksLeadToTheFirstPageOfTheirSection) {
  PdfDocument document;
  PdfOutline* root = document.CreateRootOutline(u"Report");
  PdfOutline* group = document.CreateChildOutline(root, u"Statistics");
  bool pending = true;
  document.AddPage(root, u"", &pending);
  EXPECT_TRUE(pending) << "no title, no bookmark";
  for (const char16_t* section : {u"Summary", u"Nœuds (all)"}) {
    pending = true;
    for (int page = 0; page < 3; ++page) {
      document.AddPage(group, section, &pending);
      EXPECT_FALSE(pending);
    }
  }
  document.CreateChildOutline(root, u"Expert");
  EXPECT_THAT(OutlineOf(Save(&document)), ElementsAre("Report +", ".Statistics", "..Summary -> 2 ['/XYZ', 0, 841, 1]",
                                                      "..Noeuds (all) -> 5 ['/XYZ', 0, 841, 1]", ".Expert"));
  EXPECT_THAT(folder_.Read("Report.pdf"), HasSubstr("/PageMode /UseOutlines"));
}

TEST_F(PdfDocumentTest, TitlesAndPathsHaveTheirLimits) {
  SavePng("even.png", 10, 10);
  SavePng("odd.png", 10, 10);
  // The path of a file in the folder, as many bytes long.
  auto padded = [&](std::size_t bytes, const std::string& even, const std::string& odd) {
    std::string path = folder_.Path();
    const std::string& name = (bytes - path.size() - 1 - even.size()) % 2 == 0 ? even : odd;
    while (path.size() + 1 + name.size() < bytes) path += "/.";
    return PathFromSystem(path + "/" + name);
  };
  PdfDocument document;
  AddPage(&document);
  PdfOutline* root = document.CreateRootOutline(std::u16string(255, u'r'));
  EXPECT_EQ(Raised([&] { document.CreateRootOutline(std::u16string(256, u'r')); }), E_UNEXPECTED);
  document.CreateChildOutline(root, std::u16string(255, u'c'));
  EXPECT_EQ(Raised([&] { document.CreateChildOutline(root, std::u16string(256, u'c')); }), E_UNEXPECTED);
  for (auto [bytes, fits] : {std::pair{1022U, true}, {1023U, true}, {1024U, false}, {1025U, false}}) {
    float y = 700;
    EXPECT_EQ(document.DrawImageFitHeight(padded(bytes, "even.png", "odd.png"), &y, 20), fits) << bytes;
    EXPECT_EQ(y, fits ? 656 : 700) << bytes;
  }
  for (auto [bytes, status] : {std::pair{510U, S_OK}, {511U, S_OK}, {512U, E_UNEXPECTED}, {513U, E_UNEXPECTED}}) {
    Status cause = E_FAIL;
    EXPECT_EQ(Raised([&, size = bytes] { document.Save(padded(size, "Report.pdf", "Other.pdf"), &cause); }), status);
    EXPECT_EQ(cause, Failed(status) ? StatusFromError(kErrorNameTooLong) : S_OK) << bytes;
  }
  ExpectSound(folder_.Path("Report.pdf"));
}

TEST_F(PdfDocumentTest, EverySecondRowIsShaded) {
  PdfDocument document;
  bool shade = false;
  EXPECT_EQ(Raised([&] { document.ShadeRow(500, &shade); }), S_OK) << "the first draws nothing and needs no page";
  EXPECT_TRUE(shade);
  AddPage(&document);
  document.ShadeRow(400, &shade);
  EXPECT_FALSE(shade);
  document.ShadeRow(300, &shade);
  AddPage(&document);
  document.ShadeRow(200.5F, &shade);
  Save(&document);
  const std::string bytes = folder_.Read("Report.pdf");
  EXPECT_THAT(bytes, HasSubstr("ET\n0.68 0.77 0.87 rg\n50 400 495 10 re\nf\n0 0 0 rg\n\nendstream"));
  EXPECT_THAT(bytes, HasSubstr("ET\n0.68 0.77 0.87 rg\n50 200.5 495 10 re\nf\n0 0 0 rg\n\nendstream"));
}

TEST_F(PdfDocumentTest, ImagesAreFittedAndCentred) {
  struct Case {
    const char* name;
    int width, height;  // pixels
    float fit_height;   // 0 to fit the width
    float y;
    const char* placed;  // null when it has no room
    float y_after;
  };
  const Case cases[] = {
      {"wide", 600, 300, 180, 700, "360 0 0 180 117.5 520 cm", 496},
      {"exactly the room", 600, 300, 180, 230, "360 0 0 180 117.5 50 cm", 26},
      {"higher than the room", 600, 300, 180, 200, nullptr, 200},
      {"as a graph page", 400, 300, 0, 761, "495 0 0 371.25 50 389.75 cm", 365.75F},
      {"judged by its pixels, not by its height: too high", 990, 700, 0, 700, nullptr, 700},
      {"judged by its pixels, not by its height: below the page", 99, 150, 0, 200, "495 0 0 750 50 -550 cm", -574},
      {"on a new section", 10, 10, 0, 0, nullptr, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::u16string png = SavePng("chart.png", c.width, c.height);
    PdfDocument document;
    AddPage(&document);
    float y = c.y;
    const bool drawn =
        c.fit_height > 0 ? document.DrawImageFitHeight(png, &y, c.fit_height) : document.DrawImageFitWidth(png, &y);
    EXPECT_EQ(drawn, c.placed != nullptr);
    EXPECT_EQ(y, c.y_after);
    const std::string file = Save(&document);
    EXPECT_THAT(folder_.Read("Report.pdf"),
                c.placed ? testing::Matcher<std::string>(HasSubstr(c.placed)) : Not(HasSubstr("/XObject")));
    EXPECT_EQ(OutputLines("/usr/bin/pdfimages", {"-list", file}).size(), c.placed ? 3 : 2);
  }
}

TEST_F(PdfDocumentTest, ImagesKeepTheirColoursInACompressedDocument) {
  PdfDocument document;
  document.SetCompression();
  AddPage(&document);
  float y = 700;
  EXPECT_TRUE(document.DrawImageFitHeight(SavePng("chart.png", 310, 190), &y, 230));
  const std::string file = Save(&document);
  RunProgram("/usr/bin/pdfimages", {"-png", file, folder_.Path("out")});
  Bitmap read;
  ASSERT_EQ(Bitmap::Load(WidePath("out-000.png"), &read), S_OK);
  EXPECT_EQ(read.width(), 310);
  EXPECT_EQ(read.height(), 190);
  EXPECT_EQ(read.PixelAt(309, 189), 0xFF336699U);
}

TEST_F(PdfDocumentTest, WhatIsNoImageIsLeftOut) {
  SavePng("chart.png", 40, 30);
  const std::string png = folder_.Read("chart.png");
  folder_.Write("empty.png", "");
  folder_.Write("cut.png", png.substr(0, png.size() - 20));
  folder_.Write("header only.png", png.substr(0, 33));
  folder_.Write("text.png", "not a picture at all, but long enough for its header");
  std::string huge = png;
  huge.replace(16, 8, std::string("\0\0\xFF\xFF\0\0\xFF\xFF", 8));
  folder_.Write("huge.png", huge);
  std::filesystem::create_directory(folder_.Path("folder.png"));
  ASSERT_EQ(mkfifo(folder_.Path("pipe.png").c_str(), 0600), 0);
  std::filesystem::remove(folder_.Path("chart.png"));

  PdfDocument document;
  AddPage(&document);
  for (const char* name : {"chart.png", "empty.png", "cut.png", "header only.png", "text.png", "huge.png", "folder.png",
                           "pipe.png", "none/chart.png"}) {
    float y = 700;
    EXPECT_FALSE(document.DrawImageFitHeight(WidePath(name), &y, 180)) << name;
    EXPECT_FALSE(document.DrawImageFitWidth(WidePath(name), &y)) << name;
    EXPECT_EQ(y, 700) << name;
  }
  EXPECT_TRUE(document.DrawText(u"still here", 50, 700));
  EXPECT_THAT(LinesOf(Save(&document)), ElementsAre("still here"));
}

TEST_F(PdfDocumentTest, WithoutAPageNothingCanBeDrawn) {
  const std::u16string png = SavePng("chart.png", 40, 30);
  PdfDocument document;
  bool shade = true;
  float y = 700;
  EXPECT_FALSE(document.DrawText(u"text", 50, 700));
  EXPECT_FALSE(document.DrawBoldText(u"text", 50, 700));
  EXPECT_FALSE(document.DrawImageFitWidth(png, &y));
  EXPECT_EQ(Raised([&] { document.ShadeRow(700, &shade); }), E_FAIL);
  EXPECT_EQ(Raised([&] { document.DrawFooter(); }), E_FAIL);
  EXPECT_EQ(Raised([&] { (void)document.CurrentPage(); }), E_FAIL);
  EXPECT_EQ(document.PageWidth(nullptr), 0);
  AddPage(&document);
  EXPECT_TRUE(document.DrawText(u"text", 50, 700));
  EXPECT_THAT(LinesOf(Save(&document)), ElementsAre("text"));
}

/// No file of this process grows beyond so many bytes.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    (void)std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit before_{};
  void (*handler_)(int);
};

TEST_F(PdfDocumentTest, AFailedSaveLeavesTheOldFileAndCanBeRepeated) {
  folder_.Write("Report.pdf", "the old one");
  PdfDocument document;
  AddPage(&document);
  EXPECT_TRUE(document.DrawText(u"the new one", 50, 700));
  Status cause = S_OK;
  for (rlim_t bytes : {0U, 1U, 700U}) {
    const FileSizeLimit limit(bytes);
    EXPECT_EQ(Raised([&] { document.Save(WidePath("Report.pdf"), &cause); }), E_FAIL) << bytes;
    EXPECT_EQ(cause, StatusFromErrno(EFBIG)) << bytes;
  }
  EXPECT_THAT(folder_.Names(), ElementsAre("Report.pdf"));
  EXPECT_EQ(folder_.Read("Report.pdf"), "the old one");

  const std::pair<std::u16string, Status> places[] = {
      {WidePath("none/Report.pdf"), StatusFromError(kErrorPathNotFound)},
      {u"\\proc\\self\\Report.pdf", 0},  // no kernel lets anybody make a file there
      {u"", StatusFromError(kErrorInvalidName)},
  };
  for (const auto& [path, expected] : places) {
    EXPECT_EQ(Raised([&, &place = path] { document.Save(place, &cause); }), E_FAIL);
    EXPECT_TRUE(expected != 0 ? cause == expected : Failed(cause)) << Ascii(path);
  }
  std::filesystem::permissions(folder_.Path(), std::filesystem::perms{0500});
  const bool is_root = geteuid() == 0;
  EXPECT_EQ(Raised([&] { document.Save(WidePath("Report.pdf"), &cause); }), is_root ? S_OK : E_FAIL);
  EXPECT_EQ(cause, is_root ? S_OK : StatusFromError(kErrorAccessDenied));
  std::filesystem::permissions(folder_.Path(), std::filesystem::perms{0700});

  EXPECT_THAT(LinesOf(Save(&document)), ElementsAre("the new one"));
  EXPECT_TRUE(document.DrawText(u"and more", 50, 600));
  EXPECT_THAT(LinesOf(Save(&document)), ElementsAre("the new one", "and more"));
}

/// Draws a little of everything; every operation fails once one has.
Status DrawEverything(PdfDocument* document, const std::u16string& png, const std::u16string& file) {
  Status first = S_OK;
  auto note = [&](Status status) {
    if (Failed(first)) {
      EXPECT_TRUE(Failed(status)) << "after a failure something seemed to work";
    } else {
      first = status;
    }
  };
  auto drawn = [&](bool done) { note(done ? S_OK : E_FAIL); };
  PdfOutline* root = nullptr;
  float y = 600;
  bool pending = true;
  bool shade = true;
  note(Raised([&] { document->SetCompression(); }));
  note(Raised([&] { root = document->CreateRootOutline(u"Report"); }));
  note(Raised([&] { root = document->CreateChildOutline(root, u"Group"); }));
  note(Raised([&] { document->AddPage(root, u"Section", &pending); }));
  drawn(document->DrawText(u"text", 50, 700));
  drawn(document->DrawBoldText(u"text", 50, 700));
  drawn(document->DrawColoredText(std::u16string(9000, u'x'), 50, 700, {1, 1, 0}));
  note(Raised([&] { document->ShadeRow(700, &shade); }));
  drawn(document->DrawImageFitHeight(png, &y, 100));
  note(Raised([&] { document->Save(file); }));
  return first;
}

TEST_F(PdfDocumentTest, LackOfMemoryAnywhereFailsCleanly) {
  const std::u16string png = SavePng("chart.png", 40, 30);
  for (bool for_good : {false, true}) {
    int failures = 0;
    for (int allowed = 0;; ++allowed) {
      int asked = 0;
      PdfDocument document([&](std::size_t) { return for_good ? ++asked <= allowed : ++asked != allowed + 1; });
      const Status status = DrawEverything(&document, png, WidePath("Report.pdf"));
      if (asked <= allowed) {
        EXPECT_EQ(status, S_OK);
        break;
      }
      ASSERT_EQ(status, E_FAIL) << "at allocation " << allowed;
      ASSERT_FALSE(folder_.Has("Report.pdf"));
      ++failures;
    }
    EXPECT_GT(failures, 100);
    EXPECT_THAT(folder_.Names(), ElementsAre("Report.pdf", "chart.png"));
    ExpectSound(folder_.Path("Report.pdf"));
    std::filesystem::remove(folder_.Path("Report.pdf"));
  }
}

TEST(PdfLayoutTest, LongTextsAreCut) {
  const std::tuple<std::u16string, std::size_t, std::u16string> cases[] = {
      {u"1234567890123456789", 18, u"123456789012345..."},
      {u"123456789012345678", 18, u"123456789012345678"},
      {u"", 18, u""},
      {u"abcd", 3, u"..."},
  };
  for (const auto& [text, length, expected] : cases) {
    std::u16string fitted = text;
    FitText(&fitted, length);
    EXPECT_EQ(fitted, expected);
  }
}

TEST(PdfLayoutTest, NineRowsNeed108Points) {
  EXPECT_TRUE((PdfCursor{50, 100}.RowsDontFit(9)));
  EXPECT_TRUE((PdfCursor{50, 107.5F}.RowsDontFit(9)));
  EXPECT_FALSE((PdfCursor{50, 108}.RowsDontFit(9)));
}

}  // namespace
}  // namespace orvo::test
