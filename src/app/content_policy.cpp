#include "app/content_policy.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace orvo::app {
namespace {

/// What the buttons of menu pages do when they are clicked. The same texts stand in the writer of these pages, which is
/// a part of another library; a test compares them.
constexpr std::string_view kCalls[] = {"parent.loadMain()",
                                       "parent.loadSnapshots()",
                                       "parent.loadSummaryHistory()",
                                       "parent.loadGraphs()",
                                       "parent.loadNodes()",
                                       "parent.loadNodeHistory()",
                                       "parent.loadNodeDetails()",
                                       "parent.loadNodeHierarchy()",
                                       "parent.loadProtocols()",
                                       "parent.loadProtocolsHistory()",
                                       "parent.loadExpertCounts()",
                                       "parent.loadExpertFlowStats()",
                                       "parent.loadExpertApplication()",
                                       "parent.loadExpertEventLog()",
                                       "parent.loadWLAN()",
                                       "parent.loadWLANHistory()",
                                       "parent.loadWChannels()",
                                       "parent.loadVoIPMedia()"};

constexpr std::string_view kMenuPages[] = {"MainMenu.htm", "NodesMenu.htm",    "ProtocolsMenu.htm",    "ExpertMenu.htm",
                                           "VoIPMenu.htm", "WirelessMenu.htm", "ConversationsMenu.htm"};
constexpr std::string_view kFrontPages[] = {"Report.htm", "Nodes.htm",    "Protocols.htm",    "Expert.htm",
                                            "VoIP.htm",   "Wireless.htm", "Conversations.htm"};

/// What a page may do at all: show pictures and style sheets of the report, read its documents and frame its pages.
constexpr std::string_view kCommonRules =
    "default-src 'none'; img-src 'self'; connect-src 'self'; frame-src 'self'; base-uri 'none'; form-action 'none'; "
    "frame-ancestors 'self'";

/// Texts that may run or style, each once.
using Sources = Scripts;

/// Hashes of every text between `begin` and `end` that is wanted.
template <class Wanted>
Sources Between(std::string_view bytes, std::string_view begin, std::string_view end, Wanted wanted) {
  Sources sources;
  for (std::size_t at = bytes.find(begin); at != bytes.npos; at = bytes.find(begin, at)) {
    at += begin.size();
    const std::size_t last = bytes.find(end, at);
    if (last == bytes.npos) break;
    const std::string_view text = bytes.substr(at, last - at);
    if (wanted(text)) sources.insert(HashSource(text));
    at = last + end.size();
  }
  return sources;
}

/// The scripts that stand in a page of the front end, which has them in elements without attributes.
Sources ScriptsOf(std::string_view bytes) {
  return Between(bytes, "<script>", "</script>", [](std::string_view) { return true; });
}

/// True for a style that says no more than where a picture stands and how large it is.
bool IsPosition(std::string_view style) {
  constexpr std::string_view kWords[] = {"position", "absolute", "top", "left", "width", "height", "px"};
  while (!style.empty()) {
    const auto is_letter = [](char c) { return c >= 'a' && c <= 'z'; };
    const auto length = static_cast<std::size_t>(std::ranges::find_if_not(style, is_letter) - style.begin());
    if (length == 0) {
      if (std::string_view(" :;%0123456789").find(style.front()) == std::string_view::npos) return false;
    } else if (std::ranges::find(kWords, style.substr(0, length)) == std::end(kWords)) {
      return false;
    }
    style.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return true;
}

std::string Rule(std::string_view name, std::string_view fixed, const Sources& sources) {
  std::string rule = "; " + std::string(name);
  if (!fixed.empty()) rule.append(" ").append(fixed);
  for (const std::string& source : sources) rule.append(" ").append(source);
  return rule;
}

template <std::size_t count>
bool IsOneOf(const std::string_view (&names)[count], std::string_view name) {
  return std::ranges::find(names, name) != std::end(names);
}

}  // namespace

std::string HashSource(std::string_view text) {
  constexpr std::size_t kSize = 32;
  std::array<unsigned char, EVP_MAX_MD_SIZE> hash{};
  EVP_Digest(text.data(), text.size(), hash.data(), nullptr, EVP_sha256(), nullptr);
  std::array<unsigned char, (kSize + 2) / 3 * 4 + 1> base64{};
  EVP_EncodeBlock(base64.data(), hash.data(), kSize);
  return "'sha256-" + std::string(reinterpret_cast<const char*>(base64.data())) + "'";
}

Scripts TrustedScripts(const std::string& templates) {
  Scripts scripts;
  for (const std::string_view page : kFrontPages) {
    std::ifstream file(std::filesystem::path(templates) / "Reports" / page, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    scripts.merge(ScriptsOf(bytes));
  }
  return scripts;
}

std::optional<std::string> ContentPolicy(std::string_view file, std::string_view bytes, const Scripts& trusted) {
  if (IsOneOf(kMenuPages, file)) {
    const auto is_call = [](std::string_view call) { return IsOneOf(kCalls, call); };
    return std::string(kCommonRules) +
           Rule("script-src", "'unsafe-hashes'", Between(bytes, "onclick=\"", "\"", is_call)) +
           Rule("style-src", "'unsafe-hashes'", Between(bytes, "style=\"", "\"", IsPosition));
  }
  if (IsOneOf(kFrontPages, file)) {
    if (!std::ranges::includes(trusted, ScriptsOf(bytes))) return {};
    return std::string(kCommonRules) + Rule("script-src", "", trusted) + Rule("style-src", "'self'", {});
  }
  return kInertPolicy;
}

}  // namespace orvo::app
