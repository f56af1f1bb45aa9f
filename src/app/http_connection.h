#pragma once

#include <httplib.h>

#include <chrono>
#include <cstddef>
#include <string>

namespace orvo::app {

/// The stream of bytes of one connection. The head of a request has a limit in bytes and in time, which the HTTP
/// library lacks, and every wait ends when the server stops.
class HttpConnection final : public httplib::Stream {
 public:
  /// Takes the socket over. `stop` is a descriptor that becomes readable when the server is to stop.
  HttpConnection(int socket, int stop);
  HttpConnection(const HttpConnection&) = delete;
  HttpConnection& operator=(const HttpConnection&) = delete;
  ~HttpConnection() override;

  /// Waits until the client sends one more request. False when it has gone, stays silent, or the server stops.
  bool WaitForRequest();

  bool is_readable() const override { return true; }
  bool is_writable() const override;
  ssize_t read(char* destination, std::size_t count) override;
  ssize_t write(const char* bytes, std::size_t count) override;
  void get_remote_ip_and_port(std::string& address, int& port) const override;
  void get_local_ip_and_port(std::string& address, int& port) const override;
  socket_t socket() const override { return socket_; }

 private:
  /// False when the time is over, or the server stops.
  bool Wait(short events, std::chrono::milliseconds time) const;
  /// Fills the buffer anew. False when the client has gone or used up its limits.
  bool Receive();

  int socket_;
  int stop_;
  std::string buffer_;  // what was received, of which the first `used_` bytes have been read
  std::size_t used_ = 0;
  std::size_t head_left_ = 0;
  std::chrono::steady_clock::time_point head_end_;
};

}  // namespace orvo::app
