#include "app/refused_page.h"

#include <fmt/core.h>

namespace orvo::app {
namespace {

constexpr std::string_view kStyle =
    ":root { color-scheme: light dark }"
    " body { max-width: 46em; margin: 8vh auto; padding: 0 1.5em; font: 16px/1.5 system-ui, sans-serif }"
    " h1 { font-size: 1.6em } h2 { margin-top: 1.6em; font-size: 1.1em }"
    " pre { padding: .8em 1em; overflow-x: auto; border: 1px solid #8888; border-radius: .5em }";

/// As one word of a shell.
std::string Quoted(std::string_view text) {
  std::string word = "'";
  for (const char c : text) word += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return word + "'";
}

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '&')
      escaped += "&amp;";
    else if (c == '<')
      escaped += "&lt;";
    else
      escaped += c;
  }
  return escaped;
}

}  // namespace

RefusedPage RefusePage(std::string_view file, const TrustedPages& trusted) {
  const std::string pages = Quoted(trusted.templates + "/Reports/");
  const std::string copy = fmt::format("cp {0}*.htm {0}StatsReport.css {1}/", pages, Quoted(trusted.report));
  const std::string view = fmt::format("orvo-report view {} --templates FOLDER", Quoted(trusted.report));
  RefusedPage page;
  page.html = fmt::format(
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<title>{0} is not shown</title>\n<style>{1}</style>\n</head>\n<body>\n<h1>{0} is not shown</h1>\n"
      "<p>This page has another script than the pages of this version of orvo-report, so it does not run. The report\n"
      "was made by another version or with templates of somebody's own, or somebody has changed the page.</p>\n"
      "<h2>To see the report with the pages of this version</h2>\n"
      "<p>Copy them into its folder, and load this page again:</p>\n<pre>{2}</pre>\n"
      "<h2>To see it with the pages that it has</h2>\n"
      "<p>When you trust the templates that it was made with, name their\n"
      "folder:</p>\n<pre>{3}</pre>\n</body>\n</html>\n",
      Escaped(file), kStyle, Escaped(copy), Escaped(view));
  page.policy = fmt::format("default-src 'none'; sandbox; frame-ancestors 'self'; style-src {}", HashSource(kStyle));
  return page;
}

}  // namespace orvo::app
