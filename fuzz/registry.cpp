// The registry's file.

#include "platform/registry.h"

#include <cstdlib>

#include "fuzz/support/target.h"

namespace orvo::fuzz {
namespace {

void Walk(const Registry& registry, const std::u16string& key, int depth) {
  Require(depth <= 256, "keys nest no deeper than elements may");
  registry.Value(key);
  registry.Value(key, u"named");
  for (const std::u16string& name : registry.Subkeys(key)) {
    // A name with a separator in it cannot be asked for.
    if (name.find(u'\\') != std::u16string::npos) continue;
    const std::u16string below = key.empty() ? name : key + u'\\' + name;
    Require(registry.HasKey(below), "a key that is listed is there");
    // Of names that differ in case alone the first answers, as often as they are listed.
    if (depth < 4) Walk(registry, below, depth + 1);
  }
}

}  // namespace

void TestOneInput(Input input) {
  const MemoryFile file(input);
  setenv("ORVO_REGISTRY", file.path().c_str(), 1);
  Registry registry;
  const Status status = Registry::Read(&registry);
  Require(Succeeded(status) || registry.Subkeys(u"").empty(), "nothing is kept of a file that is no registry");
  Walk(registry, u"", 0);
}

void MakeSeeds(const SeedSink& add) {
  add("<?xml version=\"1.0\" encoding=\"utf-8\"?><registry version=\"1\"><key name=\"CLSID\" default=\"d\">"
      "<key name=\"{C65DBD20-EF17-4BDB-B308-77750038F172}\"><key name=\"InprocServer32\" default=\"/lib/a.so\">"
      "<value name=\"ThreadingModel\" data=\"Both\"/></key></key></key><key name=\"Clsid\"/></registry>");
}

}  // namespace orvo::fuzz
