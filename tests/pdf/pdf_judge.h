#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
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
  std::vector<std::string> lines;
  for (std::size_t begin = 0, end = 0; begin < output.size(); begin = end + 1) {
    end = std::min(output.find_first_of("\n\f", begin), output.size());
    const std::string line = output.substr(begin, end - begin);
    const std::size_t first = line.find_first_not_of(" \t\r");
    if (first != std::string::npos) lines.push_back(line.substr(first, line.find_last_not_of(" \t\r") + 1 - first));
  }
  return lines;
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
  std::vector<PdfWord> words;
  PdfWord word;
  for (const std::string& line : OutputLines("/usr/bin/pdftotext", {"-bbox", file, "-"})) {
    if (line.starts_with("<page ")) ++word.page;
    if (std::sscanf(line.c_str(), "<word xMin=\"%lf\" yMin=\"%lf\" xMax=\"%lf\"", &word.left, &word.top, &word.right) !=
        3) {
      continue;
    }
    const std::size_t begin = line.find('>') + 1;
    word.text = line.substr(begin, line.find('<', begin) - begin);
    words.push_back(word);
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
