#include "app/report_server.h"

#include <fmt/core.h>
#include <httplib.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "app/content_policy.h"
#include "app/http_connection.h"
#include "app/messages.h"
#include "app/refused_page.h"

namespace orvo::app {
namespace {

using httplib::Request;
using httplib::Response;

constexpr const char* kLoopback = "127.0.0.1";
constexpr std::string_view kFirstPage = "Report.htm";
constexpr std::string_view kPageSuffix = ".htm";
/// Pages are read whole, as their policy follows from all of their bytes.
constexpr std::uint64_t kLargestPage = std::uint64_t{8} << 20;
constexpr std::size_t kBlock = std::size_t{256} << 10;
constexpr int kRequestsPerConnection = 1000;
/// One for each connection, so that clients which send nothing, or little by little, do not keep others waiting.
constexpr std::size_t kThreads = 128;

/// The kinds of files that a report has. There are no others to be seen.
struct FileType {
  std::string_view suffix;
  const char* type;
};
constexpr FileType kFileTypes[] = {
    {kPageSuffix, "text/html; charset=utf-8"}, {".xml", "application/xml"}, {".xsl", "application/xml"},
    {".css", "text/css; charset=utf-8"},       {".gif", "image/gif"},       {".png", "image/png"},
};

const httplib::Headers kHeaders = {{"X-Content-Type-Options", "nosniff"},
                                   {"Referrer-Policy", "no-referrer"},
                                   {"Cross-Origin-Resource-Policy", "same-origin"},
                                   {"Cross-Origin-Opener-Policy", "same-origin"},
                                   // A report tells of other people's traffic: it stays out of caches.
                                   {"Cache-Control", "no-store"}};

const char* TypeOf(std::string_view path) {
  for (const FileType& known : kFileTypes) {
    if (path.ends_with(known.suffix)) return known.type;
  }
  return nullptr;
}

void Refuse(Response& response, int status, std::string_view why) {
  response.status = status;
  response.set_header("Content-Security-Policy", kInertPolicy);
  response.set_content(std::string(why) + "\n", "text/plain; charset=utf-8");
}

/// The part of a file that a request asks for, end excluded.
struct Part {
  std::uint64_t begin;
  std::uint64_t end;
};

/// One range of bytes (RFC 9110, 14.1.2), cut to what is there; an empty one cannot be satisfied. Nothing for a text
/// that is none, or several, which are answered with the whole file.
std::optional<Part> ParseRange(std::string_view text, std::uint64_t size) {
  constexpr std::string_view kUnit = "bytes=";
  const std::size_t dash = text.find('-');
  if (!text.starts_with(kUnit) || dash == text.npos) return {};
  const auto number = [](std::string_view digits, std::uint64_t* value) {
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), *value);
    return error == std::errc() && end == digits.data() + digits.size();
  };
  const std::string_view first = text.substr(kUnit.size(), dash - kUnit.size());
  const std::string_view last = text.substr(dash + 1);
  std::uint64_t begin = 0;
  std::uint64_t end = size;
  if (first.empty()) {  // so many bytes before the end
    if (!number(last, &begin)) return {};
    return Part{size - std::min(size, begin), size};
  }
  if (!number(first, &begin)) return {};
  if (!last.empty()) {
    if (!number(last, &end) || end < begin) return {};
    end = std::min(size, end == UINT64_MAX ? end : end + 1);
  }
  return Part{std::min(begin, end), end};
}

/// Reads a page whole; nothing when it is longer than pages are, or ends early.
std::optional<std::string> ReadPage(const ServedFile& file) {
  if (file.size() > kLargestPage) return {};
  std::string bytes(static_cast<std::size_t>(file.size()), '\0');
  std::size_t done = 0;
  while (done < bytes.size()) {
    const std::size_t read = file.ReadAt(done, bytes.data() + done, bytes.size() - done);
    if (read == 0) return {};
    done += read;
  }
  return bytes;
}

void SendPage(const ServedFile& file, const std::string& name, const TrustedPages& trusted, Response& response) {
  const std::optional<std::string> bytes = ReadPage(file);
  if (!bytes) return Refuse(response, 500, "this page cannot be read");
  if (const std::optional<std::string> policy = ContentPolicy(name, *bytes, trusted.scripts)) {
    response.status = 200;
    response.set_header("Content-Security-Policy", *policy);
    return response.set_content(*bytes, TypeOf(name));
  }
  const RefusedPage page = RefusePage(name, trusted);
  response.status = 403;
  response.set_header("Content-Security-Policy", page.policy);
  response.set_content(page.html, TypeOf(name));
}

/// Sends a file, or a part of it, block by block. One that turns out to be shorter breaks the answer off.
void SendFile(std::shared_ptr<const ServedFile> file, const std::string& range, const char* type, Response& response) {
  const std::uint64_t size = file->size();
  const std::optional<Part> asked = ParseRange(range, size);
  response.set_header("Content-Security-Policy", kInertPolicy);
  response.set_header("Accept-Ranges", "bytes");
  response.set_header("ETag", file->tag());
  if (asked && asked->begin >= asked->end) {
    response.set_header("Content-Range", fmt::format("bytes */{}", size));
    response.status = 416;
    return;
  }
  const Part part = asked.value_or(Part{0, size});
  response.status = asked ? 206 : 200;
  if (asked) response.set_header("Content-Range", fmt::format("bytes {}-{}/{}", part.begin, part.end - 1, size));
  if (part.begin == part.end) return response.set_content("", type);
  auto block = std::make_shared<std::vector<char>>();
  response.set_content_provider(part.end - part.begin, type,
                                [file = std::move(file), block, begin = part.begin](
                                    std::size_t offset, std::size_t length, httplib::DataSink& sink) {
                                  block->resize(std::min(length, kBlock));
                                  const std::size_t read = file->ReadAt(begin + offset, block->data(), block->size());
                                  return read != 0 && sink.write(block->data(), read);
                                });
}

}  // namespace

class ReportServer::Impl final : public httplib::Server {
 public:
  Impl(const ServedFolder& folder, TrustedPages trusted)
      : folder_(folder), trusted_(std::move(trusted)), stop_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (stop_ < 0) Require(StatusFromErrno(errno), "the server");
    new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
    // Unlike the library's own choice, a port that somebody else listens on is not shared with him.
    set_socket_options([](socket_t socket) {
      const int on = 1;
      setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    });
    set_default_headers(kHeaders);
    set_pre_routing_handler([this](const Request& request, Response& response) {
      Answer(request, response);
      return HandlerResponse::Handled;
    });
  }

  ~Impl() override { ::close(stop_); }

  void Bind(int port) {
    errno = 0;
    port_ = port == 0 ? bind_to_any_port(kLoopback) : bind_to_port(kLoopback, port) ? port : -1;
    if (port_ > 0) return;
    throw CommandError(kFailed, fmt::format("port {} of {}: {}", port, kLoopback, Describe(StatusFromErrno(errno))));
  }

  int port() const { return port_; }

  bool Refuses(const std::string& page) const {
    const std::shared_ptr<const ServedFile> file = folder_.Open(page);
    const std::optional<std::string> bytes = file ? ReadPage(*file) : std::nullopt;
    return bytes && !ContentPolicy(page, *bytes, trusted_.scripts);
  }

  bool Run() {
    listen_after_bind();
    const std::lock_guard lock(mutex_);
    has_ended_ = true;
    ended_.notify_all();
    return is_stopping_;
  }

  void RequestStop() {
    is_stopping_ = true;
    const std::uint64_t one = 1;
    (void)!::write(stop_, &one, sizeof one);
    // The library forgets a request to stop that comes before it listens.
    std::unique_lock lock(mutex_);
    while (!has_ended_) {
      stop();
      ended_.wait_for(lock, std::chrono::milliseconds(10));
    }
  }

 private:
  /// Takes the place of the library's own loop over the requests of a connection.
  bool process_and_close_socket(socket_t socket) override {
    HttpConnection connection(socket, stop_);
    for (int left = kRequestsPerConnection; left > 0 && connection.WaitForRequest(); --left) {
      bool is_last = left == 1;
      const bool done = process_request(connection, is_last, is_last, [&is_last](Request& request) {
        // Ranges are read where the size of the file is known.
        request.ranges.clear();
        // A body is not read; nothing that follows it could be understood.
        is_last |= request.has_header("Content-Length") || request.has_header("Transfer-Encoding");
      });
      if (!done || is_last) break;
    }
    return true;
  }

  bool IsForThisMachine(const Request& request) const {
    if (request.get_header_value_count("Host") != 1) return false;
    const std::string host = request.get_header_value("Host");
    for (const char* name : {kLoopback, "localhost"}) {
      if (host == fmt::format("{}:{}", name, port_) || (port_ == 80 && host == name)) return true;
    }
    return false;
  }

  void Answer(const Request& request, Response& response) const {
    if (!IsForThisMachine(request)) return Refuse(response, 403, "this report is shown under its own address only");
    if (request.method != "GET" && request.method != "HEAD") {
      response.set_header("Allow", "GET, HEAD");
      return Refuse(response, 405, "a report can only be read");
    }
    if (!request.path.starts_with('/')) return Refuse(response, 400, "this is no path");
    if (request.path == "/") {
      response.set_header("Content-Security-Policy", kInertPolicy);
      return response.set_redirect("/" + std::string(kFirstPage));
    }
    const std::string path = request.path.substr(1);
    const char* type = TypeOf(path);
    std::shared_ptr<const ServedFile> file = type ? folder_.Open(path) : nullptr;
    if (!file) return Refuse(response, 404, "the report has no such file");
    if (path.ends_with(kPageSuffix)) return SendPage(*file, path, trusted_, response);
    SendFile(std::move(file), request.get_header_value("Range"), type, response);
  }

  const ServedFolder& folder_;
  const TrustedPages trusted_;
  int stop_;
  int port_ = -1;
  std::atomic<bool> is_stopping_ = false;
  std::mutex mutex_;
  std::condition_variable ended_;
  bool has_ended_ = false;
};

ReportServer::ReportServer(const ServedFolder& folder, TrustedPages trusted)
    : impl_(std::make_unique<Impl>(folder, std::move(trusted))) {}
ReportServer::~ReportServer() = default;

bool ReportServer::Refuses(const std::string& page) const {
  return impl_->Refuses(page);
}

void ReportServer::Bind(int port) {
  impl_->Bind(port);
}

std::string ReportServer::Address() const {
  return fmt::format("http://{}:{}/", kLoopback, impl_->port());
}

bool ReportServer::Run() {
  return impl_->Run();
}

void ReportServer::Stop() {
  impl_->RequestStop();
}

}  // namespace orvo::app
