#include "app/http_connection.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace orvo::app {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::size_t kMostHeadBytes = std::size_t{64} << 10;
constexpr milliseconds kMostHeadTime{5'000};
constexpr milliseconds kMostIdleTime{5'000};
constexpr milliseconds kMostWriteTime{10'000};

}  // namespace

HttpConnection::HttpConnection(int socket, int stop) : socket_(socket), stop_(stop) {
  const int on = 1;
  setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

HttpConnection::~HttpConnection() {
  shutdown(socket_, SHUT_RDWR);
  close(socket_);
}

bool HttpConnection::Wait(short events, milliseconds time) const {
  std::array<pollfd, 2> watched{{{socket_, events, 0}, {stop_, POLLIN, 0}}};
  int ready = 0;
  do {
    ready = poll(watched.data(), watched.size(), static_cast<int>(time.count()));
  } while (ready < 0 && errno == EINTR);
  return ready > 0 && watched[1].revents == 0;
}

bool HttpConnection::WaitForRequest() {
  if (used_ == buffer_.size() && !Wait(POLLIN, kMostIdleTime)) return false;
  head_left_ = kMostHeadBytes;
  head_end_ = steady_clock::now() + kMostHeadTime;
  return true;
}

bool HttpConnection::is_writable() const {
  return Wait(POLLOUT, kMostWriteTime);
}

bool HttpConnection::Receive() {
  const auto left = std::chrono::duration_cast<milliseconds>(head_end_ - steady_clock::now());
  if (head_left_ == 0 || left.count() <= 0 || !Wait(POLLIN, left)) return false;
  used_ = 0;
  buffer_.resize(std::min<std::size_t>(head_left_, 4096));
  const ssize_t received = recv(socket_, buffer_.data(), buffer_.size(), 0);
  buffer_.resize(received > 0 ? static_cast<std::size_t>(received) : 0);
  head_left_ -= buffer_.size();
  return received > 0;
}

ssize_t HttpConnection::read(char* destination, std::size_t count) {
  if (used_ == buffer_.size() && !Receive()) return -1;
  const std::size_t size = buffer_.copy(destination, count, used_);
  used_ += size;
  return static_cast<ssize_t>(size);
}

ssize_t HttpConnection::write(const char* bytes, std::size_t count) {
  if (!is_writable()) return -1;
  return send(socket_, bytes, count, MSG_NOSIGNAL | MSG_DONTWAIT);
}

void HttpConnection::get_remote_ip_and_port(std::string& /*address*/, int& /*port*/) const {}

void HttpConnection::get_local_ip_and_port(std::string& /*address*/, int& /*port*/) const {}

}  // namespace orvo::app
