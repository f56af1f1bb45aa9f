#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <string_view>

namespace orvo::test {

/// A socket that sends to itself, so that the traffic stays the test's own.
class Echo {
 public:
  Echo() : socket_(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    address_.sin_family = AF_INET;
    address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address_;
    if (bind(socket_, reinterpret_cast<sockaddr*>(&address_), size) != 0 ||
        getsockname(socket_, reinterpret_cast<sockaddr*>(&address_), &size) != 0) {
      ADD_FAILURE() << "there is no loopback";
    }
  }
  Echo(const Echo&) = delete;
  Echo& operator=(const Echo&) = delete;
  ~Echo() { close(socket_); }

  void Send(std::string_view text) const {
    EXPECT_EQ(
        sendto(socket_, text.data(), text.size(), 0, reinterpret_cast<const sockaddr*>(&address_), sizeof address_),
        static_cast<ssize_t>(text.size()));
  }
  std::string Filter() const { return "udp and dst port " + std::to_string(ntohs(address_.sin_port)); }

 private:
  int socket_;
  sockaddr_in address_{};
};

}  // namespace orvo::test
