#include "platform/thread.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>
#include <pthread.h>

#include <atomic>
#include <csignal>
#include <thread>

namespace orvo {
namespace {

struct Seen {
  Thread* thread = nullptr;
  std::atomic<bool> may_go{false};
  std::atomic<bool> gone{false};
  bool is_current = false;
  bool blocks_signals = false;
};

Status Look(void* argument) {
  Seen& seen = *static_cast<Seen*>(argument);
  while (!seen.may_go) std::this_thread::yield();
  seen.is_current = seen.thread->IsCurrent();
  sigset_t blocked;
  pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
  seen.blocks_signals = sigismember(&blocked, SIGINT) == 1 && sigismember(&blocked, SIGTERM) == 1;
  seen.gone = true;
  return StatusFromError(kErrorDiskFull);
}

TEST(PlatformThread, RunsAFunctionAndTellsItsStatus) {
  Thread thread;
  Seen seen{.thread = &thread};
  EXPECT_FALSE(thread.IsCurrent());
  ASSERT_EQ(thread.Start(Look, &seen), S_OK);
  EXPECT_FALSE(thread.IsCurrent());
  seen.may_go = true;
  EXPECT_EQ(thread.Join(), StatusFromError(kErrorDiskFull));
  EXPECT_TRUE(seen.is_current);
  EXPECT_TRUE(seen.blocks_signals) << "they are the program's";
  sigset_t blocked;
  pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
  EXPECT_EQ(sigismember(&blocked, SIGINT), 0) << "the starting thread gets them as before";
}

TEST(PlatformThread, GoesOnByItselfWhenItsObjectGoes) {
  Thread other;
  Seen seen{.thread = &other};
  {
    Thread thread;
    ASSERT_EQ(thread.Start(Look, &seen), S_OK);
  }
  seen.may_go = true;
  while (!seen.gone) std::this_thread::yield();
}

TEST(PlatformThread, TellsWhyItCannotStart) {
  Thread thread;
  Seen seen{.thread = &thread};
  FailNextThread(E_OUTOFMEMORY);
  EXPECT_EQ(thread.Start(Look, &seen), E_OUTOFMEMORY);
  seen.may_go = true;
  EXPECT_EQ(thread.Start(Look, &seen), S_OK);
  thread.Join();
}

// A thread comes back here from the last library that it held, which may have been the only one that needs this layer.
TEST(PlatformThread, LiesInALibraryThatStays) {
  void* platform = dlopen("liborvo_platform.so", RTLD_NOW | RTLD_NOLOAD);
  ASSERT_NE(platform, nullptr);
  const link_map* map = nullptr;
  ASSERT_EQ(dlinfo(platform, RTLD_DI_LINKMAP, static_cast<void*>(&map)), 0);
  const ElfW(Dyn)* entry = map->l_ld;
  while (entry->d_tag != DT_NULL && entry->d_tag != DT_FLAGS_1) ++entry;
  EXPECT_EQ(entry->d_tag, DT_FLAGS_1);
  EXPECT_NE(entry->d_un.d_val & DF_1_NODELETE, 0U);
  dlclose(platform);
}

}  // namespace
}  // namespace orvo
