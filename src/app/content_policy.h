#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace orvo::app {

/// A Content-Security-Policy for what is no page: it may load and run nothing.
inline constexpr const char* kInertPolicy = "default-src 'none'; sandbox; frame-ancestors 'self'";

/// Scripts, each by its hash as policies name it.
using Scripts = std::set<std::string>;

/// 'sha256-...': a script or a style by its hash, as policies name it.
std::string HashSource(std::string_view text);

/// The scripts of the front end's pages in a folder of templates; none for a folder without them.
Scripts TrustedScripts(const std::string& templates);

/// The Content-Security-Policy (W3C CSP3) of a page of a report, by its file name and its bytes. A menu page may run
/// the calls of its buttons and have the positions of its pictures; a page of the front end the scripts of `trusted`.
/// Text from a capture is in neither, and what somebody else put into the folder is in neither, so that nothing of
/// them ever runs, in whatever way it gets into a page. Everything that is loaded comes from the report itself.
/// Nothing for a page of the front end that has another script and so would not work.
std::optional<std::string> ContentPolicy(std::string_view file, std::string_view bytes, const Scripts& trusted);

}  // namespace orvo::app
