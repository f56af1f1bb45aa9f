#pragma once

#include <cstdlib>
#include <ctime>
#include <string>
#include <thread>

namespace orvo::test {

/// Runs the body in a time zone, on a thread of its own, since the platform remembers offsets per thread.
template <class Body>
void InZone(const char* zone, Body&& body) {
  const char* before = std::getenv("TZ");
  const std::string previous = before ? before : "";
  setenv("TZ", zone, 1);
  tzset();
  std::thread(body).join();
  before ? setenv("TZ", previous.c_str(), 1) : unsetenv("TZ");
  tzset();
}

}  // namespace orvo::test
