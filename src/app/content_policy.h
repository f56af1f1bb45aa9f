#pragma once

#include <string>
#include <string_view>

namespace orvo::app {

/// A Content-Security-Policy for what is no page: it may load and run nothing.
inline constexpr const char* kInertPolicy = "default-src 'none'; frame-ancestors 'self'";

/// The Content-Security-Policy (W3C CSP3) of a page of a report, by its file name and its bytes. A menu page may run
/// the calls of its buttons and have the positions of its pictures; a page of the front end its own script and style,
/// word for word as they stand in the file. Text from a capture is in neither, so that nothing of it ever runs, in
/// whatever way it gets into a page. Everything that is loaded comes from the report itself.
std::string ContentPolicy(std::string_view file, std::string_view bytes);

}  // namespace orvo::app
