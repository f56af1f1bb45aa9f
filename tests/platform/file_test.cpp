#include "platform/file.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <atomic>
#include <csignal>
#include <thread>
#include <utility>

#include "tests/platform/temp_folder.h"

namespace orvo {
namespace {

using test::InChildProcess;
using test::TempFolder;

constexpr Status kNotFound = StatusFromError(kErrorFileNotFound);
constexpr Status kNoPath = StatusFromError(kErrorPathNotFound);
constexpr Status kDenied = StatusFromError(kErrorAccessDenied);
constexpr Status kShared = StatusFromError(kErrorSharingViolation);
constexpr Status kExists = StatusFromError(kErrorAlreadyExists);
constexpr Status kBadName = StatusFromError(kErrorInvalidName);
constexpr Status kFull = StatusFromError(kErrorDiskFull);
constexpr Status kIsFolder = StatusFromError(kErrorIsAFolder);

TEST(FileTest, OnlyOneWriterHoldsAFile) {
  TempFolder folder;
  folder.Put("a.txt", "first\n");
  File file;
  ASSERT_EQ(File::OpenExisting(folder.Path("a.txt"), &file), S_OK);
  auto try_open = [&] {
    File other;
    return File::OpenExisting(folder.Path("a.txt"), &other);
  };
  EXPECT_EQ(try_open(), kShared);
  EXPECT_EQ(InChildProcess([&] { return try_open() == kShared ? 0 : 1; }), 0);

  File moved = std::move(file);
  EXPECT_EQ(try_open(), kShared);
  std::uint64_t size = 0;
  EXPECT_EQ(moved.SeekEnd(&size), S_OK);
  EXPECT_EQ(size, 6U);
  EXPECT_EQ(moved.Write("second\n"), S_OK);
  char bytes[16];
  std::size_t read = 0;
  EXPECT_EQ(moved.ReadAt(6, bytes, sizeof bytes, &read), S_OK);
  EXPECT_EQ(std::string_view(bytes, read), "second\n");
  EXPECT_EQ(moved.Close(), S_OK);
  EXPECT_EQ(moved.Close(), S_OK);
  EXPECT_TRUE(Failed(moved.Write("late")));
  EXPECT_EQ(try_open(), S_OK);
  EXPECT_EQ(folder.Get("a.txt"), "first\nsecond\n");
}

TEST(FileTest, ALockHeldByAnotherProcessIsSeen) {
  TempFolder folder;
  folder.Put("a.txt", "");
  int ready[2], done[2];
  ASSERT_EQ(pipe(ready) | pipe(done), 0);
  pid_t child = fork();
  char byte = 0;
  if (child == 0) {
    File file;
    Status status = File::OpenExisting(folder.Path("a.txt"), &file);
    bool told = write(ready[1], "x", 1) == 1 && read(done[0], &byte, 1) == 1;
    _exit(status == S_OK && told ? 0 : 1);
  }
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  File file;
  EXPECT_EQ(File::OpenExisting(folder.Path("a.txt"), &file), kShared);
  ASSERT_EQ(write(done[1], "x", 1), 1);
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(File::OpenExisting(folder.Path("a.txt"), &file), S_OK);
  for (int end : {ready[0], ready[1], done[0], done[1]}) close(end);
}

TEST(FileTest, OpensOnlyRegularFilesAndNoLinks) {
  TempFolder folder;
  folder.Put("target.txt", "kept");
  ASSERT_EQ(symlink(folder.System("target.txt").c_str(), folder.System("link").c_str()), 0);
  ASSERT_EQ(mkfifo(folder.System("pipe").c_str(), 0600), 0);
  ASSERT_EQ(mkdir(folder.System("folder").c_str(), 0700), 0);
  struct Case {
    std::string name;
    Status status;
  };
  for (const Case& c : {Case{"link", kDenied},
                        {"pipe", kDenied},
                        {"folder", kIsFolder},
                        {"none", kNotFound},
                        {"none/none", kNoPath},
                        {"target.txt/none", StatusFromError(kErrorNotAFolder)},
                        {std::string(300, 'n'), StatusFromError(kErrorNameTooLong)}}) {
    File file;
    EXPECT_EQ(File::OpenExisting(folder.Path(c.name), &file), c.status) << c.name;
    EXPECT_FALSE(file.is_open());
  }
}

TEST(FileTest, AnUnpublishedFileIsInvisibleAndLeavesNothing) {
  TempFolder folder;
  {
    File file;
    ASSERT_EQ(File::CreateUnpublished(folder.Path("new.txt"), &file), S_OK);
    EXPECT_EQ(file.Write("content"), S_OK);
    EXPECT_FALSE(PathAttributes(folder.Path("new.txt"), nullptr));
  }
  EXPECT_EQ(folder.Count(), 0U);

  File file;
  ASSERT_EQ(File::CreateUnpublished(folder.Path("new.txt"), &file), S_OK);
  EXPECT_EQ(file.Write("content"), S_OK);
  EXPECT_EQ(file.Publish(), S_OK);
  EXPECT_EQ(file.Publish(), E_UNEXPECTED);
  EXPECT_EQ(folder.Get("new.txt"), "content");
  EXPECT_EQ(folder.Count(), 1U);
  File other;
  EXPECT_EQ(File::OpenExisting(folder.Path("new.txt"), &other), kShared);
  EXPECT_EQ(file.Close(), S_OK);
  EXPECT_EQ(File::OpenExisting(folder.Path("new.txt"), &other), S_OK);

  EXPECT_EQ(File::CreateUnpublished(folder.Path("none/new.txt"), &file), kNoPath);
  EXPECT_EQ(File::CreateUnpublished(folder.Path("x") + u"\\", &file), kBadName);
}

TEST(FileTest, NewFilesFollowTheProcessMask) {
  TempFolder folder;
  EXPECT_EQ(InChildProcess([&] {
              umask(027);
              File file;
              if (Failed(File::CreateUnpublished(folder.Path("a"), &file)) || Failed(file.Publish())) return 1;
              struct stat details {};
              return stat(folder.System("a").c_str(), &details) == 0 && (details.st_mode & 0777) == 0640 ? 0 : 2;
            }),
            0);
}

TEST(FileTest, OnePublisherWinsAName) {
  TempFolder folder;
  constexpr int kThreads = 8;
  std::atomic<int> winners = 0, losers = 0;
  std::vector<std::thread> threads(kThreads);
  for (std::thread& thread : threads) {
    thread = std::thread([&, i = &thread - threads.data()] {
      File file;
      if (Failed(File::CreateUnpublished(folder.Path("a.txt"), &file))) return;
      if (Failed(file.Write(std::to_string(i)))) return;
      Status status = file.Publish();
      winners += status == S_OK;
      losers += status == kExists;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(winners, 1);
  EXPECT_EQ(losers, kThreads - 1);
  EXPECT_EQ(folder.Get("a.txt").size(), 1U);
  EXPECT_EQ(folder.Count(), 1U);

  // A link that leads nowhere takes the name too, and is not followed.
  ASSERT_EQ(symlink(folder.System("elsewhere").c_str(), folder.System("b.txt").c_str()), 0);
  File file;
  ASSERT_EQ(File::CreateUnpublished(folder.Path("b.txt"), &file), S_OK);
  EXPECT_EQ(file.Publish(), kExists);
  EXPECT_FALSE(PathAttributes(folder.Path("elsewhere"), nullptr));
}

/// Runs the body where no file may grow beyond `limit` bytes.
template <class Body>
int WithFileSizeLimit(rlim_t limit, Body&& body) {
  return InChildProcess([&] {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limits{limit, limit};
    return setrlimit(RLIMIT_FSIZE, &limits) == 0 ? body() : 125;
  });
}

TEST(FileTest, AFailingWriteKeepsWhatFitted) {
  TempFolder folder;
  folder.Put("a.txt", "");
  EXPECT_EQ(WithFileSizeLimit(4096,
                              [&] {
                                File file;
                                if (Failed(File::OpenExisting(folder.Path("a.txt"), &file))) return 1;
                                return file.Write(std::string(10'000, 'x')) == kFull ? 0 : 2;
                              }),
            0);
  EXPECT_EQ(folder.Get("a.txt"), std::string(4096, 'x'));
}

TEST(FileTest, AFailingReplacementKeepsTheOldFile) {
  TempFolder folder;
  folder.Put("a.txt", "old");
  folder.Put("big", std::string(3'000'000, 'b'));
  EXPECT_EQ(WithFileSizeLimit(4096,
                              [&] {
                                if (ReplaceFile(folder.Path("a.txt"), std::string(10'000, 'x')) != kFull) return 1;
                                return CopyFile(folder.Path("big"), folder.Path("a.txt")) == kFull ? 0 : 2;
                              }),
            0);
  EXPECT_EQ(folder.Get("a.txt"), "old");
  EXPECT_EQ(folder.Count(), 2U);
}

TEST(FileTest, WhoIsKilledWhileReplacingAFileLeavesNothing) {
  TempFolder folder;
  if (open(folder.System().c_str(), O_TMPFILE | O_RDWR, 0600) < 0) GTEST_SKIP() << "no nameless files here";
  std::string_view left = "new";
  std::size_t names_meanwhile = 1;
  const auto next_block = [&] {
    names_meanwhile = folder.Count();
    return std::exchange(left, {});
  };
  EXPECT_EQ(ReplaceFile(folder.Path("a.txt"), next_block), S_OK);
  EXPECT_EQ(names_meanwhile, 0U);
  EXPECT_EQ(folder.Get("a.txt"), "new");
  EXPECT_EQ(folder.Count(), 1U);
}

TEST(FileTest, ReplacementKeepsTheModeAndFollowsNoLink) {
  TempFolder folder;
  folder.Put("a.txt", "old");
  ASSERT_EQ(chmod(folder.System("a.txt").c_str(), 0606), 0);
  EXPECT_EQ(ReplaceFile(folder.Path("a.txt"), "new"), S_OK);
  struct stat details {};
  ASSERT_EQ(stat(folder.System("a.txt").c_str(), &details), 0);
  EXPECT_EQ(details.st_mode & 0777, 0606U);

  ASSERT_EQ(symlink(folder.System("a.txt").c_str(), folder.System("link").c_str()), 0);
  EXPECT_EQ(ReplaceFile(folder.Path("link"), "link's"), S_OK);
  EXPECT_EQ(folder.Get("a.txt"), "new");
  EXPECT_EQ(folder.Get("link"), "link's");

  EXPECT_EQ(ReplaceFile(folder.Path("none/a"), "x"), kNoPath);
  EXPECT_EQ(ReplaceFile(folder.Path(), "x"), kIsFolder);
}

TEST(FileTest, CopiesAndReadsWholeFiles) {
  TempFolder folder;
  const std::string content = std::string(2'500'000, 'c') + "end";
  folder.Put("a", content);
  folder.Put("b", "replaced");
  EXPECT_EQ(CopyFile(folder.Path("a"), folder.Path("b")), S_OK);
  EXPECT_EQ(folder.Get("b"), content);
  EXPECT_EQ(CopyFile(folder.Path("b"), folder.Path("b")), S_OK);
  EXPECT_EQ(folder.Get("b"), content);
  EXPECT_EQ(CopyFile(folder.Path("none"), folder.Path("b")), kNotFound);
  EXPECT_EQ(CopyFile(folder.Path(), folder.Path("b")), kIsFolder);
  EXPECT_EQ(folder.Count(), 2U);

  std::string bytes;
  EXPECT_EQ(ReadFile(folder.Path("a"), content.size(), &bytes), S_OK);
  EXPECT_EQ(bytes, content);
  EXPECT_EQ(ReadFile(folder.Path("a"), content.size() - 1, &bytes), E_OUTOFMEMORY);
  EXPECT_EQ(bytes, "");
  // Its size says nothing about what can be read from it.
  EXPECT_EQ(ReadFile(u"\\proc\\self\\status", 10, &bytes), E_OUTOFMEMORY);
  EXPECT_EQ(ReadFile(u"\\dev\\zero", 10, &bytes), kDenied);
}

TEST(FileTest, FoldersAndAttributes) {
  TempFolder folder;
  EXPECT_EQ(CreateFolder(folder.Path("a")), S_OK);
  EXPECT_EQ(CreateFolder(folder.Path("a")), kExists);
  EXPECT_EQ(CreateFolder(folder.Path("b/c")), kNoPath);
  bool is_folder = false;
  EXPECT_TRUE(PathAttributes(folder.Path("a"), &is_folder));
  EXPECT_TRUE(is_folder);
  folder.Put("file", "");
  EXPECT_TRUE(PathAttributes(folder.Path("file"), &is_folder));
  EXPECT_FALSE(is_folder);
  EXPECT_FALSE(PathAttributes(u"", &is_folder));
  EXPECT_EQ(DeleteFile(folder.Path("a")), kIsFolder);
  EXPECT_EQ(DeleteFile(folder.Path("file")), S_OK);
  EXPECT_EQ(DeleteFile(folder.Path("file")), kNotFound);
}

TEST(FileTest, DeletesATreeButNothingBehindItsLinks) {
  TempFolder outside;
  outside.Put("kept", "kept");
  TempFolder folder;
  ASSERT_TRUE(std::filesystem::create_directories(folder.System("set/a/b/c")));
  ASSERT_TRUE(std::filesystem::create_directories(folder.System("set/empty")));
  folder.Put("set/a/b/file", "x");
  folder.Put("set/z", "x");
  ASSERT_EQ(symlink(outside.System().c_str(), folder.System("set/a/link").c_str()), 0);
  ASSERT_EQ(symlink(outside.System().c_str(), folder.System("link").c_str()), 0);
  EXPECT_EQ(DeleteTree(folder.Path("set") + u"\\\\"), S_OK);
  EXPECT_EQ(DeleteTree(folder.Path("link")), S_OK);
  EXPECT_EQ(folder.Count(), 0U);
  EXPECT_EQ(outside.Get("kept"), "kept");
  EXPECT_EQ(DeleteTree(folder.Path("set")), kNotFound);

  EXPECT_EQ(DeleteTree(u""), kBadName);
  EXPECT_EQ(DeleteTree(u"\\"), kDenied);
  EXPECT_EQ(DeleteTree(u"\\\\.\\"), kDenied);
  EXPECT_EQ(DeleteTree(u"\\..\\"), kDenied);
  outside.Put("more", "");
  EXPECT_EQ(DeleteTree(outside.Path() + u"\\."), kBadName);
  EXPECT_EQ(outside.Count(), 2U);
}

TEST(FileTest, DeletesATreeDeeperThanAnyPath) {
  TempFolder folder;
  int current = open(folder.System().c_str(), O_RDONLY | O_DIRECTORY);
  for (int depth = 0; depth < 1100; ++depth) {
    ASSERT_EQ(mkdirat(current, "deep", 0700), 0);
    int next = openat(current, "deep", O_RDONLY | O_DIRECTORY);
    close(current);
    current = next;
  }
  close(current);
  EXPECT_EQ(DeleteTree(folder.Path("deep")), S_OK);
  EXPECT_EQ(folder.Count(), 0U);
}

}  // namespace
}  // namespace orvo
