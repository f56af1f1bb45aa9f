#include "capture/source/link_state.h"

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>

namespace orvo {

LinkState::LinkState(const std::string& name) : name_(name) {
  if (if_nametoindex(name.c_str()) == 0) return;
  descriptor_ = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE);
  if (descriptor_ < 0) return;
  sockaddr_nl address{};
  address.nl_family = AF_NETLINK;
  address.nl_groups = RTMGRP_LINK;
  if (bind(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    close(descriptor_);
    descriptor_ = -1;
  }
}

LinkState::~LinkState() {
  if (descriptor_ >= 0) close(descriptor_);
}

std::optional<bool> LinkState::Change() {
  // What the messages say does not count, only that there are some: the interface is asked itself, so that none can be
  // lost and none forged.
  std::array<char, 8192> message{};
  bool any = false;
  while (descriptor_ >= 0 && recv(descriptor_, message.data(), message.size(), 0) > 0) any = true;
  if (!any) return std::nullopt;
  const std::optional<bool> up = IsUp();
  if (!up || *up == up_) return std::nullopt;
  up_ = *up;
  return up;
}

std::optional<bool> LinkState::IsUp() const {
  ifreq request{};
  name_.copy(request.ifr_name, sizeof request.ifr_name - 1);
  if (ioctl(descriptor_, SIOCGIFFLAGS, &request) != 0) return std::nullopt;
  return (request.ifr_flags & IFF_UP) != 0;
}

}  // namespace orvo
