#pragma once

#include <gmock/gmock.h>

#include <regex>
#include <string>
#include <vector>

#include "tests/support/command.h"

// What programs that others wrote make of a PDF file.
namespace orvo::test {

/// The file as a checker of PDF structure sees it: sound, without a warning.
inline void ExpectSound(const std::string& file) {
  const CommandResult check = RunProgram("/usr/bin/qpdf", {"--check", file});
  EXPECT_EQ(check.exit_status, 0) << check.output << check.messages;
  EXPECT_THAT(check.output + check.messages, testing::Not(testing::HasSubstr("WARNING")));
}

/// The lines of a program's output, without blanks around them and empty ones.
inline std::vector<std::string> OutputLines(const std::string& program, const std::vector<std::string>& arguments) {
  const std::string output = RunProgram(program, arguments).output;
  static const std::regex line(R"([^\s\f]([^\n\f]*[^\s\f])?)");
  return {std::sregex_token_iterator(output.begin(), output.end(), line), {}};
}

/// The entries of the outline from top to bottom: as many dots as there are entries above, the title, " +" for one that
/// is opened, and for one that leads to a page its number and destination.
inline std::vector<std::string> OutlineOf(const std::string& file) {
  static const char* const script = R"(
import json, subprocess, sys
def show(entries, dots):
    for e in entries:
        place = ' -> %d %s' % (e['destpageposfrom1'], e['dest'][1:]) if e['dest'] else ''
        print(dots + e['title'] + (' +' if e['kids'] and e['open'] else '') + place)
        show(e['kids'], dots + '.')
show(json.loads(subprocess.check_output(['qpdf', '--json=2', '--json-key=outlines', sys.argv[1]]))['outlines'], '')
)";
  return OutputLines("/usr/bin/python3", {"-c", script, file});
}

/// A word of a page: its left and right edge and the top of its line, in points from the upper left corner.
struct PdfWord {
  int page = 0;
  double left = 0, right = 0, top = 0;
  std::string text;
};

inline std::vector<PdfWord> WordsOf(const std::string& file) {
  const std::string output = RunProgram("/usr/bin/pdftotext", {"-bbox", file, "-"}).output;
  static const std::regex token(R"re(<page |<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)"[^>]*>([^<]*)<)re");
  std::vector<PdfWord> words;
  int page = 0;
  for (std::sregex_iterator found(output.begin(), output.end(), token), end; found != end; ++found) {
    if (!(*found)[1].matched) {
      ++page;
    } else {
      words.push_back({page, std::stod((*found)[1]), std::stod((*found)[3]), std::stod((*found)[2]), (*found)[4]});
    }
  }
  return words;
}

/// The texts of the file, one line of a page each, without the footers.
inline std::vector<std::string> LinesOf(const std::string& file) {
  std::vector<std::string> lines = OutputLines("/usr/bin/pdftotext", {"-layout", "-enc", "UTF-8", file, "-"});
  std::erase_if(lines, [](const std::string& line) { return line.starts_with("Network statistics report"); });
  return lines;
}

}  // namespace orvo::test
