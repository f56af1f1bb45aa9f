#include "tests/support/pdf_pages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <sstream>

#include "tests/support/command.h"
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
  const CommandResult json = RunProgram(kQpdf, {"--json=1", "--json-key=outlines", path});
  EXPECT_EQ(json.exit_status, 0) << json.messages;
  // An entry's keys come in the order of the alphabet, each on a line: its page, its children, its state, its title.
  struct Entry {
    std::size_t depth;
    std::string page;
    std::string title;
    bool open = false;
  };
  std::vector<Entry> entries;
  std::vector<std::size_t> path_down;  // entries that are not closed yet
  auto value = [](const std::string& line) {
    std::string text = line.substr(line.find(": ") + 2);
    if (text.ends_with(',')) text.pop_back();
    return text.starts_with('"') ? text.substr(1, text.size() - 2) : text;
  };
  for (const std::string& line : Lines(json.output)) {
    if (line.find("\"destpageposfrom1\": ") != line.npos) {
      path_down.push_back(entries.size());
      entries.push_back({.depth = path_down.size() - 1, .page = value(line), .title = {}});
    } else if (line.find("\"open\": ") != line.npos) {
      entries[path_down.back()].open = value(line) == "true";
    } else if (line.find("\"title\": ") != line.npos) {
      entries[path_down.back()].title = value(line);
      path_down.pop_back();
    }
  }
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const Entry& entry = entries[i];
    const bool has_entries = i + 1 < entries.size() && entries[i + 1].depth > entry.depth;
    lines.push_back(std::string(2 * entry.depth, ' ') + entry.title + (has_entries && entry.open ? "+" : "") +
                    (entry.page == "null" ? "" : " " + entry.page));
  }
  return lines;
}

std::string PdfProblems(const std::string& path) {
  const CommandResult check = RunProgram(kQpdf, {"--check", path});
  return check.exit_status == 0 && check.messages.empty() ? "" : check.output + check.messages;
}

}  // namespace orvo::test
