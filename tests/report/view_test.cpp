// A report as a browser gets it from `orvo-report view`, and as somebody who means no good gets it.

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "tests/support/command.h"
#include "tests/support/temporary_folder.h"

namespace orvo::test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// The command at work, until it is stopped.
class Viewer {
 public:
  explicit Viewer(std::vector<std::string> arguments, const std::string& programs = {})
      : command_(Words(std::move(arguments)), Environment(programs)) {
    if (!command_.WaitFor("/\n")) throw std::runtime_error("the command did not begin");
    address_ = command_.output().substr(0, command_.output().find('\n'));
  }

  /// Sends a signal; gives the exit status, 128 + signal when a signal ended it.
  int Stop(int signal) {
    command_.Signal(signal);
    return command_.Finish().exit_status;
  }

  const std::string& address() const { return address_; }
  std::string host() const { return address_.substr(7, address_.size() - 8); }
  std::uint16_t port() const { return static_cast<std::uint16_t>(std::stoi(address_.substr(address_.rfind(':') + 1))); }

  /// A connection to it.
  int Connect() const {
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_port = htons(port());
    to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(socket, reinterpret_cast<sockaddr*>(&to), sizeof to) != 0) throw std::runtime_error("no connection");
    return socket;
  }

  /// What it answers to these bytes, until it closes the connection.
  std::string Send(const std::string& bytes) const {
    const int socket = Connect();
    std::string answer;
    std::size_t sent = 0;
    while (sent < bytes.size()) {
      const ssize_t count = send(socket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
      if (count <= 0) break;
      sent += static_cast<std::size_t>(count);
    }
    shutdown(socket, SHUT_WR);
    std::vector<char> block(1 << 16);
    for (ssize_t count = 0; (count = recv(socket, block.data(), block.size(), 0)) > 0;) {
      answer.append(block.data(), static_cast<std::size_t>(count));
    }
    close(socket);
    return answer;
  }

  std::string Ask(const std::string& line, const std::string& headers = {}) const {
    return Send(line + " HTTP/1.1\r\nHost: " + host() + "\r\nConnection: close\r\n" + headers + "\r\n");
  }
  std::string Get(const std::string& path, const std::string& headers = {}) const {
    return Ask("GET " + path, headers);
  }

 private:
  static std::vector<std::string> Words(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "view");
    return arguments;
  }
  static std::vector<std::pair<std::string, std::string>> Environment(const std::string& programs) {
    if (programs.empty()) return {};
    return {{"PATH", programs}};
  }

  RunningCommand command_;
  std::string address_;
};

std::string Body(const std::string& answer) {
  const std::size_t end = answer.find("\r\n\r\n");
  return end == answer.npos ? std::string() : answer.substr(end + 4);
}

std::string Status(const std::string& answer) {
  return answer.substr(0, std::min(answer.find("\r\n"), answer.size())).substr(0, 12);
}

constexpr const char* kHashProgram = "printf %s \"$1\" | openssl dgst -sha256 -binary | openssl base64 -A";

/// A folder with a small report, beside a file that is none of it.
class ViewTest : public testing::Test {
 protected:
  ViewTest() {
    fs::create_directories(folder_.Path("report/Graphs"));
    folder_.Write("secret.xml", "<secret/>");
    folder_.Write("report/Report.htm", "<html><script>begin()</script></html>");
    fs::create_directories(folder_.Path("templates/Reports"));
    folder_.Write("templates/Reports/Report.htm", folder_.Read("report/Report.htm"));
    folder_.Write("report/StatsReport.xml", "<StatsReport/>");
    folder_.Write("report/Graphs/A b%.png", "PNG");
    folder_.Write("report/StatsReport.css", "body {}");
    folder_.Write("report/.hidden.xml", "<hidden/>");
    folder_.Write("report/notes.txt", "mine");
  }

  std::string report() const { return folder_.Path("report"); }
  /// The report, whose templates come from the folder as well.
  std::vector<std::string> whole() const { return {report(), "--templates", folder_.Path("templates")}; }

  TemporaryFolder folder_;
};

TEST_F(ViewTest, ShowsFilesByTheirTypes) {
  const Viewer viewer(whole());
  EXPECT_THAT(viewer.address(), AllOf(StartsWith("http://127.0.0.1:"), EndsWith("/")));
  EXPECT_THAT(viewer.Get("/"), AllOf(StartsWith("HTTP/1.1 302"), HasSubstr("Location: /Report.htm\r\n")));
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"/Report.htm", "text/html; charset=utf-8", "<html><script>begin()</script></html>"},
      {"/StatsReport.xml?1", "application/xml", "<StatsReport/>"},
      {"/StatsReport.css", "text/css; charset=utf-8", "body {}"},
      {"/Graphs/A%20b%25.png", "image/png", "PNG"},
  };
  for (const auto& [path, type, body] : cases) {
    const std::string answer = viewer.Get(path);
    EXPECT_EQ(Status(answer), "HTTP/1.1 200") << path;
    EXPECT_THAT(answer, HasSubstr(std::string("Content-Type: ") + type + "\r\n"));
    EXPECT_EQ(Body(answer), body);
    for (const char* header : {"X-Content-Type-Options: nosniff", "Referrer-Policy: no-referrer",
                               "Cross-Origin-Resource-Policy: same-origin", "Cache-Control: no-store",
                               "Content-Security-Policy: default-src 'none'; "}) {
      EXPECT_THAT(answer, HasSubstr(header)) << path;
    }
  }
  const std::string head = viewer.Ask("HEAD /StatsReport.xml");
  EXPECT_THAT(head, AllOf(StartsWith("HTTP/1.1 200"), HasSubstr("Content-Length: 14\r\n"), EndsWith("\r\n\r\n")));
}

TEST_F(ViewTest, LetsPagesRunTheirOwnScriptAndNothingElse) {
  folder_.Write("report/Other.htm", "<html><script>other()</script></html>");
  const Viewer viewer(whole());
  // The hash of "begin()", from another tool.
  EXPECT_THAT(viewer.Get("/Report.htm"),
              HasSubstr("; script-src 'sha256-15S4FGE7rP6kq/PzA1uIhN3+8zfaO6/TnJp4fMWo7lE='; style-src 'self'\r\n"));
  EXPECT_THAT(viewer.Get("/Other.htm"), HasSubstr("Policy: default-src 'none'; sandbox; frame-ancestors 'self'\r\n"));
  // A page that somebody exchanged does not run, and says so.
  folder_.Write("report/Nodes.htm", "<html><script>begin()</script><script>other()</script></html>");
  folder_.Write("report/Expert.htm", "<html><script src=\"other.js\"></script></html>");
  EXPECT_THAT(viewer.Get("/Nodes.htm"),
              AllOf(StartsWith("HTTP/1.1 403"), HasSubstr("orvo-report view '" + report() + "' --templates"),
                    HasSubstr("cp '" + folder_.Path("templates/Reports/") + "'*.htm"), Not(HasSubstr("other()"))));
  EXPECT_THAT(viewer.Get("/Expert.htm"), Not(HasSubstr("script-src 'self'")));
}

TEST_F(ViewTest, TellsStatesOfFilesApart) {
  const Viewer viewer(whole());
  const auto tag = [&viewer] {
    const std::string answer = viewer.Ask("HEAD /StatsReport.xml");
    return answer.substr(std::min(answer.find("ETag: \""), answer.size()), 30);
  };
  const std::string before = tag();
  EXPECT_THAT(before, StartsWith("ETag: \""));
  EXPECT_EQ(tag(), before);
  folder_.Write("report/StatsReport.xml", "<StatsReports/>");
  EXPECT_NE(tag(), before);
}

TEST_F(ViewTest, MenuPagesMayDoWhatTheirWriterPutThere) {
  // Calls of buttons and positions of pictures, each allowed by its own hash. The hashes come from another program.
  std::map<std::string, std::string> hashes;
  std::set<std::string> calls;
  for (const char* capture : {"office.pcapng", "voice.pcap", "wireless.pcap"}) {
    const std::string out = folder_.Path(std::string("out-") + capture);
    for (int round = 0; round < 2; ++round) {  // the second one has histories
      ASSERT_EQ(RunCommand({"make", ORVO_SOURCE_DIR "/samples/" + std::string(capture), "--out", out, "--format", "xml",
                            "--set", "OutputVoIPOnly=1"})
                    .exit_status,
                0);
    }
    const Viewer viewer({out});
    for (const fs::directory_entry& file : fs::directory_iterator(out)) {
      const std::string name = file.path().filename();
      if (!name.ends_with("Menu.htm")) continue;
      const std::string answer = viewer.Get("/" + name);
      const std::string policy = answer.substr(0, answer.find("\r\n\r\n"));
      EXPECT_THAT(policy, HasSubstr("script-src 'unsafe-hashes'"));
      EXPECT_THAT(policy, Not(HasSubstr("unsafe-inline")));
      for (const char* attribute : {" onclick=\"", " style=\""}) {
        const std::string bytes = Body(answer);
        for (std::size_t at = 0; (at = bytes.find(attribute, at)) != bytes.npos;) {
          at += std::string(attribute).size();
          const std::string text = bytes.substr(at, bytes.find('"', at) - at);
          if (text.ends_with(')')) calls.insert(text);
          std::string& hash = hashes[text];
          if (hash.empty()) hash = RunProgram("/bin/sh", {"-c", kHashProgram, "sh", text}).output;
          EXPECT_THAT(policy, HasSubstr("'sha256-" + hash + "'")) << name << " " << text;
        }
      }
    }
  }
  EXPECT_EQ(calls.size(), 18) << "these reports show every button";
}

TEST_F(ViewTest, MenuPagesMayDoNothingElse) {
  folder_.Write("report/MainMenu.htm",
                "<html><img style=\"background: url(x)\" onclick=\"alert(1)\"/><script>alert(2)</script></html>");
  const Viewer viewer(whole());
  EXPECT_THAT(viewer.Get("/MainMenu.htm"), HasSubstr("; script-src 'unsafe-hashes'; style-src 'unsafe-hashes'\r\n"));
}

TEST_F(ViewTest, NothingOutsideOfTheFolderIsSeen) {
  fs::create_symlink(folder_.Path("secret.xml"), report() + "/link.xml");
  fs::create_symlink("StatsReport.xml", report() + "/inner.xml");
  fs::create_symlink(folder_.Path(), report() + "/up");
  ASSERT_EQ(mkfifo((report() + "/pipe.xml").c_str(), 0600), 0);
  fs::create_directory(report() + "/folder.xml");
  const Viewer viewer(whole());
  const char* const paths[] = {
      // clang-format off
      "/../secret.xml", "/%2e%2e/secret.xml", "/..%2fsecret.xml", "/%2e%2e%2fsecret.xml", "/Graphs/../../secret.xml",
      "/..\\secret.xml", "/..%5csecret.xml", "//etc/fonts/fonts.xml", "/link.xml", "/inner.xml", "/up/secret.xml",
      "/./StatsReport.xml", "/Graphs/./A%20b%25.png", "/Graphs//A%20b%25.png", "/.hidden.xml", "/notes.txt",
      "/pipe.xml", "/folder.xml", "/StatsReport.xml/", "/StatsReport.xml/x.xml", "/StatsReport.xml%00.htm",
      "/%00.xml", "/Graphs", "/Graphs/", "/missing.xml", "/statsreport.xml", "/%ff.xml", "/%.xml",
      // clang-format on
  };
  for (const char* path : paths) {
    const std::string answer = viewer.Get(path);
    EXPECT_EQ(Status(answer), "HTTP/1.1 404") << path;
    EXPECT_THAT(answer, Not(HasSubstr("secret/"))) << path;
  }
}

TEST_F(ViewTest, FollowsLinksToTheFolderItself) {
  fs::create_symlink(report(), folder_.Path("latest"));
  const Viewer viewer({folder_.Path("latest")});
  EXPECT_EQ(Status(viewer.Get("/StatsReport.xml")), "HTTP/1.1 200");
}

TEST_F(ViewTest, AnswersOnlyUnderItsOwnName) {
  const Viewer viewer(whole());
  const std::string port = std::to_string(viewer.port());
  const std::string line = "GET /StatsReport.xml HTTP/1.1\r\nConnection: close\r\n";
  EXPECT_EQ(Status(viewer.Send(line + "Host: localhost:" + port + "\r\n\r\n")), "HTTP/1.1 200");
  for (const std::string& host :
       {std::string("evil.example:") + port, std::string("127.0.0.1.evil.example:") + port, std::string("127.0.0.1"),
        std::string("127.0.0.1:1"), std::string("localhost:") + port + "\r\nHost: evil.example", std::string()}) {
    std::string request = line;
    request.append("Host: ").append(host).append("\r\n\r\n");
    EXPECT_EQ(Status(viewer.Send(request)), "HTTP/1.1 403") << host;
  }
  EXPECT_EQ(Status(viewer.Send(line + "\r\n")), "HTTP/1.1 403");
}

TEST_F(ViewTest, CanOnlyBeRead) {
  const Viewer viewer(whole());
  for (const char* method : {"POST", "PUT", "DELETE", "PATCH", "OPTIONS"}) {
    const std::string answer = viewer.Ask(std::string(method) + " /StatsReport.xml", "Content-Length: 3\r\n");
    EXPECT_THAT(answer, AllOf(StartsWith("HTTP/1.1 405"), HasSubstr("Allow: GET, HEAD\r\n"))) << method;
  }
  EXPECT_EQ(folder_.Read("report/StatsReport.xml"), "<StatsReport/>");
  // What follows as a body is no second request.
  const std::string smuggled = "GET /StatsReport.xml HTTP/1.1\r\nHost: " + viewer.host() + "\r\n\r\n";
  const std::string answer =
      viewer.Send("GET /StatsReport.css HTTP/1.1\r\nHost: " + viewer.host() +
                  "\r\nContent-Length: " + std::to_string(smuggled.size()) + "\r\n\r\n" + smuggled);
  EXPECT_THAT(answer, Not(HasSubstr("<StatsReport/>")));
}

TEST_F(ViewTest, SendsPartsOfFiles) {
  const Viewer viewer(whole());
  // The range that is asked for; the status, the body, and the place of it that the answer names.
  const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
      {"bytes=1-5", "HTTP/1.1 206", "Stats", "bytes 1-5/14"},
      {"bytes=7-", "HTTP/1.1 206", "eport/>", "bytes 7-13/14"},
      {"bytes=-2", "HTTP/1.1 206", "/>", "bytes 12-13/14"},
      {"bytes=-99", "HTTP/1.1 206", "<StatsReport/>", "bytes 0-13/14"},
      {"bytes=12-99", "HTTP/1.1 206", "/>", "bytes 12-13/14"},
      {"bytes=0-18446744073709551615", "HTTP/1.1 416", "", nullptr},  // not a number to the library
      {"bytes=14-", "HTTP/1.1 416", "", "bytes */14"},
      {"bytes=-0", "HTTP/1.1 416", "", "bytes */14"},
      {"bytes=0-1,4-5", "HTTP/1.1 200", "<StatsReport/>", nullptr},
  };
  for (const auto& [range, status, body, place] : cases) {
    const std::string answer = viewer.Get("/StatsReport.xml", "Range: " + std::string(range) + "\r\n");
    EXPECT_EQ(Status(answer), status) << range;
    EXPECT_EQ(Body(answer), body) << range;
    EXPECT_THAT(answer, place ? HasSubstr("Content-Range: " + std::string(place) + "\r\n") : HasSubstr("HTTP"));
  }
}

TEST_F(ViewTest, SendsLargeAndEmptyFiles) {
  // Sparse, larger than 32 bits can count, and read at its end only.
  std::ofstream(report() + "/Large.xml") << '<';
  fs::resize_file(report() + "/Large.xml", (std::uint64_t{5} << 30) + 3);
  std::string middle(3 << 20, 'x');
  for (std::size_t i = 0; i < middle.size(); i += 97) middle[i] = static_cast<char>('a' + i % 26);
  folder_.Write("report/Middle.xml", middle);
  folder_.Write("report/Empty.xml", "");
  const Viewer viewer(whole());
  EXPECT_THAT(viewer.Ask("HEAD /Large.xml"), HasSubstr("Content-Length: 5368709123\r\n"));
  EXPECT_EQ(Body(viewer.Get("/Large.xml", "Range: bytes=5368709121-\r\n")), std::string(2, '\0'));
  EXPECT_TRUE(Body(viewer.Get("/Middle.xml")) == middle);
  EXPECT_THAT(viewer.Get("/Empty.xml"), AllOf(StartsWith("HTTP/1.1 200"), HasSubstr("Content-Length: 0\r\n")));
}

TEST_F(ViewTest, BearsWithBadClients) {
  const Viewer viewer(whole());
  const std::string start = "GET /StatsReport.xml HTTP/1.1\r\nHost: " + viewer.host() + "\r\n";
  std::string many;
  for (int i = 0; i < 100'000; ++i) many.append("X-Header: value\r\n");
  // None of these gets the file, and none takes the server down.
  for (const std::string& bytes :
       {std::string("\0\0\0\r\n\r\n", 7), std::string("GET\r\n\r\n"), std::string("BREW / HTTP/1.1\r\n\r\n"),
        std::string("GET http://127.0.0.1/StatsReport.xml HTTP/1.1\r\nHost: ") + viewer.host() +
            "\r\nConnection: close\r\n\r\n",
        "GET /" + std::string(10'000, 'a') + " HTTP/1.1\r\n\r\n",
        start + "X: " + std::string(1 << 20, 'a') + "\r\n\r\n", start + many + "\r\n",
        start + "Range: bytes=" + std::string(7000, '1') + "-\r\n\r\n", std::string(1 << 20, 'G'), start}) {
    EXPECT_THAT(viewer.Send(bytes), Not(HasSubstr("<StatsReport/>"))) << bytes.substr(0, 60);
  }
  EXPECT_EQ(Status(viewer.Get("/StatsReport.xml")), "HTTP/1.1 200");
}

TEST_F(ViewTest, SlowClientsDoNotKeepOthersWaiting) {
  const Viewer viewer({report()});
  std::vector<int> slow;
  for (int i = 0; i < 60; ++i) {
    slow.push_back(viewer.Connect());
    ASSERT_EQ(send(slow.back(), "GET /", 5, 0), 5);
  }
  EXPECT_EQ(Status(viewer.Get("/StatsReport.xml")), "HTTP/1.1 200");
  // Those that came before are still being waited for.
  char byte = 0;
  EXPECT_TRUE(recv(slow.back(), &byte, 1, MSG_DONTWAIT) < 0 && errno == EAGAIN);
  for (const int socket : slow) close(socket);
}

TEST_F(ViewTest, AFileThatShrinksBreaksItsAnswerOff) {
  folder_.Write("report/Shrinking.xml", std::string(64 << 20, 'x'));
  const Viewer viewer(whole());
  const int socket = viewer.Connect();
  const std::string request = "GET /Shrinking.xml HTTP/1.1\r\nHost: " + viewer.host() + "\r\n\r\n";
  ASSERT_EQ(send(socket, request.data(), request.size(), 0), static_cast<ssize_t>(request.size()));
  std::vector<char> block(1 << 16);
  auto received = static_cast<std::size_t>(recv(socket, block.data(), block.size(), 0));
  fs::resize_file(report() + "/Shrinking.xml", 0);
  for (ssize_t count = 0; (count = recv(socket, block.data(), block.size(), 0)) > 0;) {
    received += static_cast<std::size_t>(count);
  }
  close(socket);
  EXPECT_LT(received, std::size_t{64} << 20);
  EXPECT_EQ(Status(viewer.Get("/StatsReport.xml")), "HTTP/1.1 200");
}

TEST_F(ViewTest, StopsAtOnceWhenItIsTold) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    Viewer viewer({report()});
    const int idle = viewer.Connect();  // does not keep it from stopping
    EXPECT_EQ(Status(viewer.Get("/StatsReport.xml")), "HTTP/1.1 200");
    EXPECT_EQ(viewer.Stop(signal), 0);
    close(idle);
  }
}

TEST_F(ViewTest, SaysWhyItCannotShowAReport) {
  fs::create_directories(folder_.Path("both/xml"));
  folder_.Write("both/xml/Report.htm", "<html/>");
  const Viewer other({report()});
  const std::tuple<std::vector<std::string>, int, std::string> cases[] = {
      {{}, 2, "DIR"},
      {{""}, 2, "DIR: must not be empty"},
      {{report(), "--port", "65536"}, 2, "--port"},
      {{report(), "--port", std::to_string(other.port())}, 1, "Address already in use"},
      {{folder_.Path("missing")}, 1, "missing: "},
      {{folder_.Path("secret.xml")}, 1, "secret.xml: "},
      {{folder_.Path()}, 1, "Report.htm is missing"},
      {{report(), "--templates", folder_.Path("both")}, 1, "both: holds no pages of reports"},
      {{folder_.Path("both")}, 1, "did you mean " + folder_.Path("both/xml")},
  };
  for (const auto& [more, status, message] : cases) {
    std::vector<std::string> arguments = {"view"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const CommandResult result = RunCommand(arguments);
    EXPECT_EQ(result.exit_status, status) << result.messages;
    EXPECT_THAT(result.messages, AllOf(StartsWith("orvo-report: "), HasSubstr(message)));
    EXPECT_EQ(result.output, "");
  }
}

TEST_F(ViewTest, OpensTheBrowserOfTheDesktop) {
  fs::create_directory(folder_.Path("bin"));
  folder_.Write("bin/xdg-open", "#!/bin/sh\nprintf '%s' \"$*\" >\"$0.new\"; mv \"$0.new\" \"$0.called\"\n");
  fs::permissions(folder_.Path("bin/xdg-open"), fs::perms::owner_all);
  Viewer viewer({report(), "--open"}, folder_.Path("bin") + ":/usr/bin:/bin");
  for (int i = 0; i < 500 && !folder_.Has("bin/xdg-open.called"); ++i) usleep(10'000);
  EXPECT_EQ(folder_.Read("bin/xdg-open.called"), viewer.address());
  EXPECT_EQ(viewer.Stop(SIGTERM), 0);
  // Without one, the address alone must do.
  Viewer alone({report(), "--open"}, folder_.Path("no-programs"));
  EXPECT_EQ(Status(alone.Get("/StatsReport.xml")), "HTTP/1.1 200");
}

}  // namespace
}  // namespace orvo::test
