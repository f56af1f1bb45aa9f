// Draws the charts of a capture, each into a file and all of them on one sheet, so that one can look at them.

#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <string>

#include "platform/bitmap.h"
#include "tools/chart_sheet/capture_charts.h"
#include "tools/chart_sheet/pictures.h"
#include "tools/chart_sheet/showcase.h"

namespace orvo::tools {
namespace {

enum ExitStatus : int { kDone = 0, kFailed = 1, kUsage = 2 };

struct Options {
  std::string capture;
  std::string out;
  std::int32_t width = 420;
  std::int32_t height = 220;
  bool showcase = false;
};

void AddOptions(CLI::App* parser, Options* options) {
  auto* capture = parser->add_option("CAPTURE", options->capture, "A capture file (pcap or pcapng)")->type_name("");
  parser->add_option("--out", options->out, "Folder of the pictures, made when missing")->required()->type_name("DIR");
  parser->add_option("--width", options->width, "Pixels of each chart from left to right")
      ->type_name("N")
      ->check(CLI::Range(1, Bitmap::kLongestSide))
      ->capture_default_str();
  parser->add_option("--height", options->height, "Pixels from top to bottom")
      ->type_name("N")
      ->check(CLI::Range(1, Bitmap::kLongestSide))
      ->capture_default_str();
  parser
      ->add_flag("--showcase", options->showcase, "Draw made-up data that is hard to show well, in place of a capture")
      ->excludes(capture);
}

int Run(int argc, char** argv) {
  CLI::App parser("Draws the charts of a capture, each as a PNG file and all of them on \"contact-sheet.png\".",
                  "chart-sheet");
  Options options;
  AddOptions(&parser, &options);
  try {
    parser.parse(argc, argv);
    if (options.capture.empty() && !options.showcase) throw CLI::RequiredError("CAPTURE");
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return parser.exit(error);
    fmt::print(stderr, "chart-sheet: {} (try: chart-sheet --help)\n", error.what());
    return kUsage;
  }
  Pictures pictures(options.out, options.width, options.height);
  if (options.showcase) {
    DrawShowcase(&pictures);
  } else {
    DrawCapture(options.capture, &pictures);
  }
  pictures.WriteContactSheet();
  return kDone;
}

}  // namespace
}  // namespace orvo::tools

int main(int argc, char** argv) {
  try {
    return orvo::tools::Run(argc, argv);
  } catch (const orvo::tools::ToolError& error) {
    fmt::print(stderr, "chart-sheet: {}\n", error.message());
  } catch (const std::exception& error) {
    fmt::print(stderr, "chart-sheet: {}\n", error.what());
  }
  return orvo::tools::kFailed;
}
