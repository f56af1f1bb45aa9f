#include "capture/context/note_queue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <new>
#include <numeric>
#include <vector>

namespace orvo::test {
namespace {

void Put(NoteQueue* queue, std::uint64_t number) {
  NoteBatch& batch = queue->Fill();
  batch.size = 1;
  batch.notes[0].time = number;
  queue->Publish();
}

TEST(NoteQueue, CountsInOrderAndEverythingBeforeItEnds) {
  std::vector<std::uint64_t> expected(1000);
  std::iota(expected.begin(), expected.end(), 0);
  std::vector<std::uint64_t> counted;
  {
    NoteQueue queue([&](NoteBatch& batch) { counted.push_back(batch.packets().front().time); });
    if (!queue.Start()) GTEST_SKIP() << "needs two processors";
    for (std::uint64_t number = 0; number < 500; ++number) Put(&queue, number);
    queue.Drain();
    EXPECT_EQ(counted.size(), 500U);
    EXPECT_TRUE(queue.Start()) << "it runs";
    for (std::uint64_t number = 500; number < 1000; ++number) Put(&queue, number);
  }
  EXPECT_EQ(counted, expected);
}

TEST(NoteQueue, HandsOnWhatIsRaisedAndCountsOn) {
  std::uint64_t sum = 0;
  NoteQueue queue([&](NoteBatch& batch) {
    if (batch.packets().front().time == 3) throw std::bad_alloc();
    sum += batch.packets().front().time;
  });
  queue.Drain();  // nothing was begun
  if (!queue.Start()) GTEST_SKIP() << "needs two processors";
  for (std::uint64_t number : {1U, 2U, 3U}) Put(&queue, number);
  EXPECT_THROW(queue.Drain(), std::bad_alloc);
  queue.Drain();  // told once
  for (std::uint64_t number : {4U, 5U}) Put(&queue, number);
  queue.Drain();
  EXPECT_EQ(sum, 12U);
}

TEST(NoteQueue, EndsUnused) {
  NoteQueue queue([](NoteBatch&) { FAIL(); });
  NoteQueue started([](NoteBatch&) { FAIL(); });
  started.Start();
}

}  // namespace
}  // namespace orvo::test
