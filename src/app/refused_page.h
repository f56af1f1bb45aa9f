#pragma once

#include <string>
#include <string_view>

#include "app/content_policy.h"

namespace orvo::app {

/// Which pages of a report run, and where that comes from.
struct TrustedPages {
  Scripts scripts;
  /// The folder of the templates that have these scripts.
  std::string templates;
  /// The folder of the report.
  std::string report;
};

/// What stands in the place of a page whose script is not trusted: why, and what to do about it.
struct RefusedPage {
  std::string html;
  std::string policy;
};

RefusedPage RefusePage(std::string_view file, const TrustedPages& trusted);

}  // namespace orvo::app
