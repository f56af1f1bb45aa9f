#include "tests/support/pdf_pages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <sstream>

#include "tests/pdf/pdf_judge.h"
#include "tests/support/temporary_folder.h"

namespace orvo::test {
namespace {

constexpr const char* kQpdf = "/usr/bin/qpdf";
constexpr int kFooterHeight = 50;

/// One line of a page while its content is read.
struct PageLine {
  bool shaded = false;
  std::vector<std::string> items;
};

/// Reads the content of a page: one operator and its operands to a line, as they were drawn.
class PageReader {
 public:
  void Read(const std::string& line) {
    std::istringstream words(line);
    std::vector<std::string> operands;
    for (std::string word; words >> word;) operands.push_back(word);
    if (operands.empty()) return;
    const std::string operation = operands.back();
    auto number = [&](std::size_t at) { return std::lround(std::stod(operands.at(at))); };
    if (operation == "Tf") bold_ = Bold(operands.at(0));
    if (operation == "rg") color_ = Color(operands);
    if (operation == "Td") {
      x_ = number(0);
      y_ = number(1);
    }
    if (operation == "re") Line(number(1)).shaded = true;
    if (operation == "cm") {
      Add(number(5),
          std::to_string(number(4)) + ":image " + std::to_string(number(0)) + "x" + std::to_string(number(3)));
    }
    if (operation == "Tj" || operation == "'") AddText(line);
  }

  std::vector<std::string> Describe() const {
    std::vector<std::string> described;
    for (auto line = lines_.rbegin(); line != lines_.rend(); ++line) {
      if (line->first == kFooterHeight) continue;
      std::string text = std::to_string(line->first) + (line->second.shaded ? " #" : "");
      for (const std::string& item : line->second.items) text += " " + item;
      described.push_back(text);
    }
    return described;
  }

  /// The name of the first face is that of regular text: every page's footer is drawn first.
  bool Bold(const std::string& face) {
    if (regular_.empty()) regular_ = face;
    return face != regular_;
  }

 private:
  static std::string Color(const std::vector<std::string>& operands) {
    std::string color;
    for (std::size_t i = 0; i < 3; ++i) {
      std::ostringstream part;
      part << std::stod(operands.at(i));
      color += (i == 0 ? "[" : " ") + part.str();
    }
    color += "]";
    return color == "[0 0 0]" ? "" : color;
  }

  void AddText(const std::string& line) {
    std::string text;
    for (std::size_t at = line.find('(') + 1; at < line.rfind(')'); ++at) {
      if (line[at] == '\\') ++at;
      text += line[at];
    }
    Add(y_, std::to_string(x_) + color_ + ":" + (bold_ ? "*" : "") + text);
  }

  void Add(long y, const std::string& item) {
    std::vector<std::string>& items = Line(y).items;
    if (std::ranges::find(items, item) == items.end()) items.push_back(item);
  }

  PageLine& Line(long y) { return lines_[y]; }

  std::map<long, PageLine> lines_;
  std::string regular_;
  std::string color_;
  bool bold_ = false;
  long x_ = 0;
  long y_ = 0;
};

}  // namespace

std::vector<std::vector<std::string>> PdfPages(const std::string& path) {
  const CommandResult plain = RunProgram(kQpdf, {"--qdf", "--object-streams=disable", path, "-"});
  EXPECT_EQ(plain.exit_status, 0) << plain.messages;
  std::vector<std::vector<std::string>> pages;
  PageReader reader;
  bool is_page = false;
  bool in_stream = false;
  for (const std::string& line : Lines(plain.output)) {
    if (line.starts_with("%% Contents for page ")) {
      is_page = true;
      reader = PageReader();
    } else if (is_page && line == "stream") {
      in_stream = true;
    } else if (is_page && line == "endstream") {
      pages.push_back(reader.Describe());
      is_page = in_stream = false;
    } else if (in_stream) {
      reader.Read(line);
    }
  }
  return pages;
}

std::vector<std::string> PdfOutlineOf(const std::string& path) {
  std::vector<std::string> lines = OutlineOf(path);
  for (std::string& line : lines) {
    const std::size_t depth = line.find_first_not_of('.');
    line.replace(0, depth, std::string(2 * depth, ' '));
    if (const std::size_t destination = line.rfind(" ["); destination != line.npos) line.erase(destination);
    if (const std::size_t arrow = line.rfind(" -> "); arrow != line.npos) line.replace(arrow, 4, " ");
  }
  return lines;
}

}  // namespace orvo::test
