#include "app/formats.h"

#include <fmt/core.h>

#include <algorithm>

#include "app/messages.h"
#include "frame/stats_output_method.h"

namespace orvo::app {
namespace {

constexpr Format kFormats[] = {
    {"csv", kCsvStatsOutputClass, u".csv", u",", kOutputCsv},
    {"tab", kCsvStatsOutputClass, u".txt", u"\t", kOutputTab},
    {"xml", kXmlStatsOutputClass, u".xml", u",", kOutputXml},
    {"pdf", kPdfStatsOutputClass, u".pdf", u",", kOutputPdf},
};

const Format* FindFormat(std::string_view name) {
  const auto* found = std::ranges::find_if(kFormats, [&](const Format& format) { return format.name == name; });
  if (found != std::end(kFormats)) return &*found;
  throw CommandError(kUsage, fmt::format("--format {}: there is no such format (known: {})", name, FormatNames()));
}

}  // namespace

std::vector<const Format*> ParseFormats(std::string_view list) {
  std::vector<const Format*> formats;
  for (std::size_t begin = 0; begin <= list.size();) {
    const std::size_t end = std::min(list.find(',', begin), list.size());
    const Format* format = FindFormat(list.substr(begin, end - begin));
    if (std::ranges::find(formats, format) == formats.end()) formats.push_back(format);
    begin = end + 1;
  }
  return formats;
}

const Format& FormatOfType(std::int32_t type) {
  const auto* found = std::ranges::find_if(kFormats, [type](const Format& format) { return format.type == type; });
  if (found != std::end(kFormats)) return *found;
  return kFormats[0];
}

std::string FormatNames() {
  std::string names;
  for (const Format& format : kFormats) names += (names.empty() ? "" : ", ") + std::string(format.name);
  return names;
}

}  // namespace orvo::app
