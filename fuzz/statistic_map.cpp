// The file that names summary statistics.

#include "statistics/statistic_map.h"

#include "fuzz/support/target.h"
#include "platform/path.h"

namespace orvo::fuzz {
namespace {

constexpr Guid kKnown = "B1B1BA51-5BA6-42D7-B822-F2E5D845D0F9"_guid;

}  // namespace

void TestOneInput(Input input) {
  const MemoryFile file(input);
  StatisticMap map;
  const Status status = map.Load(PathFromSystem(file.path()));
  Require(Succeeded(status) || map.empty(), "the map is empty after a failure");
  Require(!map.empty() || map.Find(kKnown).empty(), "an empty map names nothing");
}

void MakeSeeds(const SeedSink& add) {
  add("<statmap><stat id=\"{B1B1BA51-5BA6-42D7-B822-F2E5D845D0F9}\" name=\"Packets\"/>\n"
      "<stat id=\"{183275C2-05C3-406B-BEE5-43BB4F80C634}\" name=\"Bytes &amp; more\"/><other/></statmap>");
  add("<?xml version=\"1.0\" encoding=\"utf-8\"?><a><stat id=\"B1B1BA51\" name=\"\"/></a>");
}

}  // namespace orvo::fuzz
