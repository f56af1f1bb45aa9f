#pragma once

#include <string>
#include <vector>

namespace orvo::test {

// What stands in a PDF file, as qpdf tells it. Each fails the test when qpdf cannot read the file.

/// The pages of the file in words: a line for each height at which something stands, from top to bottom, such as
///   "749 # 50:name 220:*Sent": at y = 749, a shaded row with "name" at x = 50 and a bold "Sent" at x = 220.
/// Text in a colour of its own has it behind the position ("270[1 0 0]:Severe"), a picture is "image 495x180". Heights
/// and widths are rounded to whole points; what is drawn twice at one place is told once; footers are left out.
std::vector<std::vector<std::string>> PdfPages(const std::string& path);

/// The outline of the file, a line for each entry: indented by two blanks a level, with the number of the page that it
/// leads to, such as "  Dashboard 1". One that shows those below it has " +" behind its title.
std::vector<std::string> PdfOutlineOf(const std::string& path);

}  // namespace orvo::test
