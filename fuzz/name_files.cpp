// The files that give names: hosts, and the registries of physical addresses.

#include "capture/names/hosts_file.h"
#include "capture/names/vendor_table.h"
#include "fuzz/support/target.h"

namespace orvo::fuzz {

void TestOneInput(Input input) {
  const MemoryFile file(input);
  std::vector<KnownName> names;
  Require(ReadHostsFile(file.path(), &names) == S_OK, "whatever can be read is a hosts file");
  for (const KnownName& known : names) {
    Require(known.address.type == kAddressIp || known.address.type == kAddressIpv6, "names are those of IP addresses");
    Require(!known.name.empty(), "names are not empty");
  }
  for (char letter : VendorWord(AsText(input))) {
    Require(letter > ' ' && letter < '\x7F' && letter != ',', "a vendor is one word of ASCII");
  }
}

void MakeSeeds(const SeedSink& add) {
  add("127.0.0.1 localhost\n192.0.2.1\tgateway.example gateway # the first\n\n2001:db8::1 web\n0.0.0.0 nobody\n");
  add("Example Networks, Inc.");
  add("The \"Tr\xC3\xA8s Bon\" Company (Holding) GmbH & Co. KG");
}

}  // namespace orvo::fuzz
