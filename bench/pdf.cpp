// Printing the tables of a large report, beside the bare calls of the PDF library that draw the same texts and bands,
// time and memory; and the same at a fourth of the rows, to see that both grow with the rows and no faster.

#include <benchmark/benchmark.h>
#include <hpdf.h>
#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "bench/support/ratio_reporter.h"
#include "pdf/pdf_document.h"
#include "pdf/pdf_table.h"
#include "platform/path.h"

namespace orvo::bench {
namespace {

/// A section: its columns, and how many rows it prints in each of its two tables.
struct Section {
  const char* name;
  std::vector<PdfColumn> columns;
  int rows;
};

const std::vector<PdfColumn> kNodeColumns = {
    {"Address", "", 50},  {"Bytes", "", 150},       {"Bytes", "Sent", 220},      {"Bytes", "Received", 290},
    {"Packets", "", 360}, {"Packets", "Sent", 430}, {"Packets", "Received", 500}};
const std::vector<PdfColumn> kFlowColumns = {
    {"Flow", "ID", 50},      {"Client", "Address", 120}, {"Client", "Port", 220}, {"Server", "Address", 270},
    {"Server", "Port", 370}, {"Bytes", "", 420},         {"Packets", "", 490}};

const std::vector<Section>& Sections() {
  static const std::vector<Section> sections = {
      {"nodes_25k", kNodeColumns, 25'000}, {"nodes_100k", kNodeColumns, 100'000}, {"flows_20k", kFlowColumns, 20'000}};
  return sections;
}

constexpr const char* kPageTitle = "Node Statistics: Reported 11/14/2023 22:13:20.000";
constexpr const char* kNotice = "Network statistics report, created by OrvoReports.";
constexpr int kTexts = 1000;  // rows that differ

/// The texts of the rows, in both forms, so that neither side pays for making them.
struct Texts {
  std::vector<std::vector<std::string>> narrow;
  std::vector<std::vector<std::u16string>> wide;

  Texts() {
    for (unsigned row = 0; row < kTexts; ++row) {
      std::vector<std::string> cells{"IP-10.20." + std::to_string(row / 250) + "." + std::to_string(row % 250)};
      for (unsigned column = 1; column < 7; ++column) cells.push_back(std::to_string((row + 7) * 7919 * column));
      narrow.push_back(cells);
      wide.emplace_back();
      for (const std::string& cell : cells) wide.back().emplace_back(cell.begin(), cell.end());
    }
  }
};

const Texts& TheTexts() {
  static const Texts texts;
  return texts;
}

/// A file that is gone with the program.
const std::string& File() {
  static const struct Temporary {
    std::string folder = (std::filesystem::temp_directory_path() / "orvo-bench-XXXXXX").string();
    std::string file;
    Temporary() {
      if (!mkdtemp(folder.data())) std::abort();
      file = folder + "/Report.pdf";
    }
    ~Temporary() { std::filesystem::remove_all(folder); }
  } temporary;
  return temporary.file;
}

double HeapMegabytes() {
  const struct mallinfo2 heap = mallinfo2();
  return static_cast<double>(heap.uordblks + heap.hblkhd) / 1e6;
}

/// What each benchmark held when its document was saved.
std::map<std::string, double>& Megabytes() {
  static std::map<std::string, double> megabytes;
  return megabytes;
}

void Note(benchmark::State& state, const std::string& name, double held) {
  Megabytes()[name] = held;
  state.counters["MB"] = held;
  state.counters["file_MB"] = static_cast<double>(std::filesystem::file_size(File())) / 1e6;
}

void Print(benchmark::State& state, const Section& section) {
  const std::u16string path = PathFromSystem(File());
  const Texts& texts = TheTexts();
  for (auto _ : state) {
    const double before = HeapMegabytes();
    PdfDocument document;
    document.SetCompression();
    PdfOutline* root = document.CreateRootOutline(u"Report");
    for (const char16_t* bookmark : {u"Nodes", u""}) {
      PdfTable table(&document, {.parent = root,
                                 .bookmark = bookmark,
                                 .page_title = {kPageTitle, kPageTitle + std::char_traits<char>::length(kPageTitle)},
                                 .columns = section.columns});
      std::vector<PdfCell> cells(section.columns.size());
      for (int row = 0; row < section.rows; ++row) {
        const auto& words = texts.wide[static_cast<std::size_t>(row % kTexts)];
        for (std::size_t i = 0; i < cells.size(); ++i) cells[i].text = words[i];
        table.AddRow(cells);
      }
    }
    document.Save(path);
    Note(state, section.name, HeapMegabytes() - before);
  }
}

/// The library as one calls it who knows where everything goes.
class Bare {
 public:
  Bare() : document_(HPDF_New(nullptr, nullptr)) {
    HPDF_SetCompressionMode(document_, HPDF_COMP_ALL);
    regular_ = HPDF_GetFont(document_, "Helvetica", nullptr);
    bold_ = HPDF_GetFont(document_, "Helvetica-Bold", nullptr);
  }
  Bare(const Bare&) = delete;
  Bare& operator=(const Bare&) = delete;
  ~Bare() { HPDF_Free(document_); }

  void Table(const Section& section) {
    const Texts& texts = TheTexts();
    float y = 0;
    bool shade = false;
    for (int row = 0; row < section.rows; ++row) {
      const auto& words = texts.narrow[static_cast<std::size_t>(row % kTexts)];
      if (y > 74) {
        Text(words[0].c_str(), 50, y);  // what the report draws first to see whether there is room
      } else {
        y = StartPage(section);
      }
      if (shade) Band(y);
      shade = !shade;
      for (std::size_t i = 0; i < words.size(); ++i) Text(words[i].c_str(), section.columns[i].position, y);
      y -= 12;
    }
  }

  void Save() { HPDF_SaveToFile(document_, File().c_str()); }

 private:
  float StartPage(const Section& section) {
    page_ = HPDF_AddPage(document_);
    HPDF_Page_SetFontAndSize(page_, regular_, 10);
    Text(kNotice, 50, 50);
    Text(kPageTitle, 50, 791);
    HPDF_Page_SetFontAndSize(page_, bold_, 10);
    for (const PdfColumn& column : section.columns) {
      Text(column.header.data(), column.position, 761);
      if (!column.header_more.empty()) Text(column.header_more.data(), column.position, 749);
    }
    HPDF_Page_SetFontAndSize(page_, regular_, 10);
    return 725;
  }

  void Text(const char* text, float x, float y) {
    HPDF_Page_BeginText(page_);
    HPDF_Page_TextOut(page_, x, y, text);
    HPDF_Page_EndText(page_);
  }

  void Band(float y) {
    HPDF_Page_SetRGBFill(page_, 0.68F, 0.77F, 0.87F);
    HPDF_Page_Rectangle(page_, 50, y, 495, 10);
    HPDF_Page_Fill(page_);
    HPDF_Page_SetRGBFill(page_, 0, 0, 0);
  }

  HPDF_Doc document_;
  HPDF_Font regular_;
  HPDF_Font bold_;
  HPDF_Page page_ = nullptr;
};

void PrintBare(benchmark::State& state, const Section& section) {
  for (auto _ : state) {
    const double before = HeapMegabytes();
    Bare bare;
    bare.Table(section);
    bare.Table(section);
    bare.Save();
    Note(state, std::string(section.name) + "/floor", HeapMegabytes() - before);
  }
}

void Register() {
  for (const Section& section : Sections()) {
    const std::string name = section.name;
    for (auto [label, print] : {std::pair{name, &Print}, {name + "/floor", &PrintBare}}) {
      benchmark::RegisterBenchmark(label.c_str(),
                                   [&section, print = print](benchmark::State& state) {
                                     print(state, section);
                                     state.SetItemsProcessed(state.iterations() * section.rows);
                                   })
          ->Unit(benchmark::kMillisecond)
          ->Iterations(1)
          ->Repetitions(3);
    }
  }
}

void PrintMemoryRatios() {
  for (const Section& section : Sections()) {
    const double held = Megabytes()[section.name];
    const double bare = Megabytes()[std::string(section.name) + "/floor"];
    std::printf("%-40s %8.1f MB, floor %8.1f MB, ratio %.2f\n", section.name, held, bare, held / bare);
  }
}

}  // namespace
}  // namespace orvo::bench

int main(int argc, char** argv) {
  orvo::bench::Register();
  const int status = orvo::bench::RunWithRatios(argc, argv);
  orvo::bench::PrintMemoryRatios();
  return status;
}
