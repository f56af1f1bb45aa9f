#include "capture/source/link_state.h"

#include <gtest/gtest.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <thread>

namespace orvo {
namespace {

/// Takes the loopback interface up or down.
void SetLoopback(bool up) {
  const int any_socket = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  ifreq request{};
  std::string("lo").copy(request.ifr_name, sizeof request.ifr_name - 1);
  request.ifr_flags = up ? IFF_UP : 0;
  EXPECT_EQ(ioctl(any_socket, SIOCSIFFLAGS, &request), 0);
  close(any_socket);
}

TEST(LinkState, TellsOfChanges) {
  bool possible = true;
  // A thread of its own, with a network of its own.
  std::thread([&possible] {
    possible = unshare(CLONE_NEWNET) == 0;
    if (!possible) return;
    SetLoopback(true);
    LinkState link("lo");
    EXPECT_GE(link.descriptor(), 0);
    EXPECT_EQ(link.Change(), std::nullopt);
    SetLoopback(false);
    EXPECT_EQ(link.Change(), false);
    EXPECT_EQ(link.Change(), std::nullopt);
    SetLoopback(true);
    EXPECT_EQ(link.Change(), true);
    SetLoopback(false);
    SetLoopback(true);
    EXPECT_EQ(link.Change(), std::nullopt) << "nobody was there to see it";
    for (const char* none : {"", "any", "orvo-none"}) EXPECT_EQ(LinkState(none).descriptor(), -1) << none;
  }).join();
  if (!possible) GTEST_SKIP() << "this process may not have a network of its own";
}

}  // namespace
}  // namespace orvo
