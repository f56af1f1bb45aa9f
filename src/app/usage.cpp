#include "app/usage.h"

#include <fmt/core.h>

#include <algorithm>
#include <vector>

#include "app/suggestion.h"

namespace orvo::app {
namespace {

const auto kEvery = [](const CLI::App*) { return true; };

/// The options of a word, those of its groups included.
std::vector<std::string> OptionsOf(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options()) {
    if (!option->get_lnames().empty()) names.push_back("--" + option->get_lnames().front());
  }
  for (const CLI::App* group : app.get_subcommands(kEvery)) {
    if (!group->get_name().empty()) continue;
    std::ranges::move(OptionsOf(*group), std::back_inserter(names));
  }
  return names;
}

/// What may stand in the first place.
std::vector<std::string> Words(const CLI::App& parser) {
  std::vector<std::string> words = OptionsOf(parser);
  for (const CLI::App* word : parser.get_subcommands(kEvery)) words.push_back(word->get_name());
  return words;
}

std::string Meant(std::string_view word, const std::vector<std::string>& known) {
  return Suggestion(word, std::vector<std::string_view>(known.begin(), known.end()));
}

/// The parser's own words, of which it has a few fixed ones, in plainer ones.
std::string Plain(const std::string& said) {
  constexpr std::string_view kOneOf = "Exactly 1 option from [";
  if (said.starts_with(kOneOf)) {
    std::string options = said.substr(kOneOf.size(), said.find(']') - kOneOf.size());
    if (const std::size_t comma = options.find(','); comma != options.npos) options.replace(comma, 1, " and ");
    return fmt::format("one of {} must be given, and not both", options);
  }
  constexpr std::string_view kOverride = " was given a disallowed flag override";
  if (said.ends_with(kOverride)) return "--" + said.substr(0, said.size() - kOverride.size()) + ": takes no value";
  const std::string option = said.substr(0, said.find(": "));
  const std::string_view cause = std::string_view(said).substr(std::min(option.size(), said.size()));
  if (cause.ends_with(" missing")) return option + ": its value is missing";
  if (cause.starts_with(": At Most 1 ")) return option + ": may be given only once";
  return said;
}

}  // namespace

std::string UsageMessage(const CLI::App& parser, const CLI::ParseError& error, std::string_view first) {
  const std::vector<const CLI::App*> given = parser.get_subcommands(kEvery);
  const auto word = std::ranges::find_if(given, [](const CLI::App* app) { return app->parsed(); });
  const CLI::App& app = word == given.end() ? parser : **word;
  const std::string help = word == given.end() ? "--help" : app.get_name() + " --help";

  std::string message;
  // An option that is mistyped is why another seems to be missing. What ends the options is none itself.
  std::vector<std::string> unknown = parser.remaining(/*recurse=*/true);
  std::erase(unknown, "--");
  if (word == given.end() && !first.empty() && !first.starts_with('-')) {
    message = fmt::format("{}: there is no such word{}", first, Meant(first, Words(parser)));
  } else if (unknown.empty()) {
    message = word == given.end() ? "the word that says what to do is missing" : Plain(error.what());
  } else if (const std::string& other = unknown.front(); other.starts_with('-')) {
    const std::string name = other.substr(0, other.find('='));
    message = fmt::format("{}: there is no such option{}", name, Meant(name, OptionsOf(app)));
  } else {
    message = fmt::format("{}: nothing is expected here", other);
  }
  return fmt::format("{} (try: orvo-report {})", message, help);
}

}  // namespace orvo::app
