#include <cstdlib>

namespace {

/// Every test sees the same clock and the same texts, wherever it runs; those that want others set them themselves.
const bool fixed_environment = [] {
  setenv("TZ", "UTC", 1);
  setenv("LC_ALL", "C", 1);
  return true;
}();

}  // namespace
