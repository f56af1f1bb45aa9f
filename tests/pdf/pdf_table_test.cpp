#include "pdf/pdf_table.h"

#include <gmock/gmock.h>

#include <map>

#include "platform/error.h"
#include "platform/path.h"
#include "tests/pdf/pdf_judge.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/text.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr PdfColumn kColumns[] = {{"Address", "", 50}, {"Bytes", "Sent", 150}, {"Packets", "", 220}};

class PdfTableTest : public testing::Test {
 protected:
  PdfTableFormat Format(std::u16string bookmark = u"Nodes") {
    return {
        .parent = root_, .bookmark = std::move(bookmark), .page_title = u"Nodes: Reported now", .columns = kColumns};
  }
  std::string Save() {
    document_.Save(PathFromSystem(folder_.Path("Report.pdf")));
    ExpectSound(folder_.Path("Report.pdf"));
    return folder_.Path("Report.pdf");
  }

  /// Prints rows "a<number>", "b<number>", "c<number>".
  void AddRows(PdfTable* table, int count) {
    for (int i = 1; i <= count; ++i) {
      const std::u16string number = Wide(std::to_string(i));
      const std::u16string texts[] = {u"a" + number, u"b" + number, u"c" + number};
      const PdfCell cells[] = {{texts[0]}, {texts[1]}, {texts[2]}};
      table->AddRow(cells);
    }
  }

  TemporaryFolder folder_;
  PdfDocument document_;
  PdfOutline* root_ = document_.CreateRootOutline(u"Report");
};

// 841 - 50 leaves 791 for the title, 761 for the headers, 725 for the first row; the last of 55 stands at 77.
TEST_F(PdfTableTest, PagesRepeatTitleAndHeader) {
  PdfTable first(&document_, Format());
  AddRows(&first, 110);
  PdfTable second(&document_, Format(u""));
  AddRows(&second, 1);
  const std::string file = Save();
  EXPECT_THAT(OutlineOf(file), ElementsAre("Report +", ".Nodes -> 1 ['/XYZ', 0, 841, 1]"));

  std::map<std::string, std::string> places;
  for (const PdfWord& word : WordsOf(file)) {
    char place[64];
    (void)std::snprintf(place, sizeof place, "%d: %g %g; ", word.page, word.left, 841 - word.top - 7.18);
    places[word.text] += place;
  }
  EXPECT_EQ(places["Nodes:"], "1: 50 791; 2: 50 791; 3: 50 791; ");
  EXPECT_EQ(places["Address"], "1: 50 761; 2: 50 761; 3: 50 761; ");
  EXPECT_EQ(places["Bytes"], "1: 150 761; 2: 150 761; 3: 150 761; ");
  EXPECT_EQ(places["Sent"], "1: 150 749; 2: 150 749; 3: 150 749; ");
  EXPECT_EQ(places["a1"], "1: 50 725; 3: 50 725; ");
  EXPECT_EQ(places["c55"], "1: 220 77; ");
  EXPECT_EQ(places["b56"], "2: 150 725; ");
  EXPECT_EQ(places["a110"], "2: 50 77; ");
}

TEST_F(PdfTableTest, ARowIsTriedShadedAndDrawn) {
  PdfTable table(&document_, Format());
  AddRows(&table, 57);
  Save();
  const std::string bytes = folder_.Read("Report.pdf");
  auto cell = [](const std::string& text, int x, int y) {
    return "BT\n" + std::to_string(x) + " " + std::to_string(y) + " Td\n(" + text + ") Tj\nET\n";
  };
  auto row = [&](const std::string& number, int y) {
    return cell("a" + number, 50, y) + cell("b" + number, 150, y) + cell("c" + number, 220, y);
  };
  auto band = [](int y) { return "0.68 0.77 0.87 rg\n50 " + std::to_string(y) + " 495 10 re\nf\n0 0 0 rg\n"; };
  EXPECT_THAT(bytes, HasSubstr("/F1 10 Tf\n" + row("1", 725) + cell("a2", 50, 713) + band(713) + row("2", 713) +
                               cell("a3", 50, 701) + row("3", 701)))
      << "the first row of a page is tried on the page before";
  EXPECT_THAT(bytes,
              HasSubstr("ET\n" + band(725) + "/F1 10 Tf\n" + row("56", 725) + cell("a57", 50, 713) + row("57", 713)))
      << "shading runs on across pages";
}

TEST_F(PdfTableTest, CellsMayBeEmptyAndColoured) {
  constexpr PdfColor kMinor{0, 0.8F, 0};
  PdfTableFormat format = Format();
  format.header_gap = 72;
  PdfTable table(&document_, format);
  table.AddRow(std::vector<PdfCell>{{u"x"}, {u""}, {u"Minor", &kMinor}});
  table.AddRow({});
  const std::string file = Save();
  EXPECT_THAT(folder_.Read("Report.pdf"),
              HasSubstr("(x) Tj\nET\n0 0.8 0 rg\n0 Tr\nBT\n220 689 Td\n(Minor) Tj\nET\n0 0 0 rg\nBT\n50 677 Td\nET\n"));
}

TEST_F(PdfTableTest, WideTextsEndBeforeTheNextColumnAndThePage) {
  constexpr PdfColumn columns[] = {{"A", "", 50}, {"B", "", 150}, {"C", "", 550}};
  constexpr PdfColor red{1, 0, 0};
  PdfTableFormat format = Format();
  format.columns = columns;
  PdfTable table(&document_, format);
  const std::string address = "2001:db8:1111:2222:3333:4444:5555:6666";
  const std::u16string wide_address = Wide(address);
  const std::u16string capitals(80, u'W');
  const std::u16string endless(10'000, u'x');
  table.AddRow(std::vector<PdfCell>{{wide_address}, {u"fits"}, {u"4294967295"}});
  table.AddRow(std::vector<PdfCell>{{u"next"}, {capitals, &red}, {u"99"}});
  table.AddRow(std::vector<PdfCell>{{endless}, {u"after"}, {u"1"}});
  const std::string file = Save();
  std::map<std::string, PdfWord> words;
  for (const PdfWord& word : WordsOf(file)) words[word.text] = word;
  const struct {
    std::string text;
    double left, least, most;
  } cases[] = {{address, 50, 140, 147},
               {"fits", 150, 160, 170},
               {"4294967295", 550, 580, 585},
               {"next", 50, 65, 80},
               {std::string(80, 'W'), 150, 530, 547},
               {"99", 550, 560, 562}};
  for (const auto& expected : cases) {
    const PdfWord& word = words[expected.text];
    EXPECT_DOUBLE_EQ(word.left, expected.left) << expected.text;
    EXPECT_TRUE(word.right >= expected.least && word.right <= expected.most) << expected.text << ": " << word.right;
  }
  // What cannot be narrowed that far is cut off where the next column begins.
  EXPECT_THAT(folder_.Read("Report.pdf"), HasSubstr("q\n50 698 97 13 re\nW\nn\n40 Tz\nBT\n50 701 Td\n(xxx"));
  EXPECT_THAT(folder_.Read("Report.pdf"), HasSubstr("xxx) Tj\nET\nQ\nBT\n150 701 Td\n(after) Tj\nET\n"));
}

TEST_F(PdfTableTest, ATableWithoutRowsLeavesNothing) {
  const PdfTable table(&document_, Format());
  bool pending = false;
  document_.AddPage(nullptr, u"", &pending);
  EXPECT_THAT(OutlineOf(Save()), ElementsAre("Report"));
}

TEST_F(PdfTableTest, WhatCannotBeDrawnEndsTheSection) {
  const std::u16string too_long(70'000, u'x');
  PdfTable table(&document_, Format());
  AddRows(&table, 2);
  EXPECT_EQ(Guard([&] { table.AddRow(std::vector<PdfCell>{{u"cut"}, {too_long}}); }), E_FAIL);
  EXPECT_EQ(Guard([&] { table.AddRow(std::vector<PdfCell>(4)); }), E_UNEXPECTED) << "more cells than columns";
  PdfTable next(&document_, Format(u"Next"));
  AddRows(&next, 1);
  EXPECT_THAT(OutlineOf(Save()),
              ElementsAre("Report +", ".Nodes -> 1 ['/XYZ', 0, 841, 1]", ".Next -> 2 ['/XYZ', 0, 841, 1]"));
}

}  // namespace
}  // namespace orvo::test
