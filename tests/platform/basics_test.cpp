// The small pieces: statuses and their messages, identifiers, strings, locks, clock, objects.

#include <gtest/gtest.h>

#include <cerrno>
#include <stdexcept>
#include <thread>

#include "platform/bstr.h"
#include "platform/clock.h"
#include "platform/error.h"
#include "platform/lock.h"
#include "platform/message.h"
#include "platform/object.h"

namespace orvo {
namespace {

TEST(StatusTest, ErrnoValuesKeepTheirMeaning) {
  struct Case {
    int error;
    Status status;
  };
  const Case kCases[] = {
      {ENOENT, MakeStatus(0x80070002)},
      {EMFILE, MakeStatus(0x80070004)},
      {EACCES, MakeStatus(0x80070005)},
      {EWOULDBLOCK, MakeStatus(0x80070020)},
      {ENOSPC, MakeStatus(0x80070070)},
      {EEXIST, MakeStatus(0x800700B7)},
      {ENOMEM, E_OUTOFMEMORY},
      {EINVAL, E_INVALIDARG},
      {0, E_FAIL},
      {EIO, MakeStatus(0x80074005)},
      {ECONNRESET, MakeStatus(0x80074068)},
  };
  for (const Case& c : kCases) EXPECT_EQ(StatusFromErrno(c.error), c.status) << c.error;
}

TEST(StatusTest, MessagesAreOneLine) {
  EXPECT_EQ(SystemMessage(StatusFromErrno(ENOSPC)), u"The disk is full.");
  EXPECT_EQ(SystemMessage(StatusFromErrno(EIO)), u"Input/output error.");
  EXPECT_EQ(SystemMessage(MakeStatus(0x80041234)), u"");
  EXPECT_EQ(SystemMessage(MakeStatus(0x8007FFFF)), u"");
  EXPECT_EQ(SystemMessage(MakeStatus(0x80074000)), u"");
  for (int error = 0; error < 200; ++error) {
    std::u16string text = SystemMessage(StatusFromErrno(error));
    EXPECT_EQ(text.find(u'\n'), text.npos);
  }
}

TEST(StatusTest, AGuardTurnsExceptionsIntoStatuses) {
  EXPECT_EQ(Guard([] {}), S_OK);
  EXPECT_EQ(Guard([] { return S_FALSE; }), S_FALSE);
  EXPECT_EQ(Guard([] { return Check(S_FALSE); }), S_FALSE);
  EXPECT_EQ(Guard([] { Check(E_POINTER); }), E_POINTER);
  EXPECT_EQ(Guard([] { throw std::bad_alloc(); }), E_OUTOFMEMORY);
  EXPECT_EQ(Guard([] { throw std::runtime_error("x"); }), E_UNEXPECTED);
}

TEST(GuidTest, TextFormsRoundTrip) {
  constexpr Guid kGuid = "6de20d14-0C8D-4FF8-A880-5A3A0D7ABAFF"_guid;
  const std::u16string text = u"{6DE20D14-0C8D-4FF8-A880-5A3A0D7ABAFF}";
  EXPECT_EQ(FormatGuid(kGuid), text);
  Guid parsed;
  EXPECT_EQ(ParseGuid(u"{6de20d14-0c8d-4FF8-A880-5A3A0D7ABAFF}", &parsed), S_OK);
  EXPECT_EQ(parsed, kGuid);
  EXPECT_EQ(ParseGuid(text, nullptr), E_POINTER);

  Guid unchanged = kGuid;
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::u16string bad = text;
    bad[i] = u'x';
    EXPECT_EQ(ParseGuid(bad, &unchanged), CO_E_CLASSSTRING) << i;
  }
  EXPECT_EQ(ParseGuid(u"", &unchanged), CO_E_CLASSSTRING);
  EXPECT_EQ(ParseGuid(text + u" ", &unchanged), CO_E_CLASSSTRING);
  EXPECT_EQ(ParseGuid(text.substr(1, 36), &unchanged), CO_E_CLASSSTRING);
  EXPECT_EQ(unchanged, kGuid);
}

TEST(BstrTest, CountsAndOwnsItsText) {
  Bstr string(std::u16string_view(u"a\0b", 3));
  EXPECT_EQ(string.view(), std::u16string_view(u"a\0b", 3));
  EXPECT_EQ(string.get()[3], 0);
  Bstr moved = std::move(string);
  EXPECT_EQ(moved.view().size(), 3U);
  *moved.Out() = AllocString(u"other");
  EXPECT_EQ(moved.view(), u"other");
  EXPECT_EQ(StringLength(nullptr), 0U);
  EXPECT_EQ(StringView(nullptr), u"");
  FreeString(nullptr);
  EXPECT_EQ(Bstr(u"").view(), u"");
}

TEST(BstrTest, AFailureComesOnceAndOnItsThreadOnly) {
  FailStringAllocation(1);
  Bstr first(u"made");
  std::thread([] { EXPECT_NO_THROW(Bstr(u"elsewhere")); }).join();
  EXPECT_EQ(Guard([] { Bstr(u"fails"); }), E_OUTOFMEMORY);
  EXPECT_NO_THROW(Bstr(u"made"));
  FailStringAllocation(0);
  FailStringAllocation(-1);
  EXPECT_NO_THROW(Bstr(u"made"));
}

TEST(LockTest, TheHolderMayTakeItAgain) {
  CriticalSection section;
  FailNextCriticalSection(E_OUTOFMEMORY);
  EXPECT_EQ(section.Initialise(), E_OUTOFMEMORY);
  ASSERT_EQ(section.Initialise(), S_OK);
  int counter = 0;
  auto count = [&] {
    for (int i = 0; i < 1000; ++i) {
      std::lock_guard outer(section);
      std::lock_guard inner(section);
      ++counter;
    }
  };
  std::thread other(count);
  count();
  other.join();
  EXPECT_EQ(counter, 2000);
}

TEST(ClockTest, EventsWakeOnceAndTimeOut) {
  std::unique_ptr<Event> event = ProcessClock().CreateEvent();
  EXPECT_EQ(event->Wait(0), WaitResult::kTimeOut);
  event->Set();
  event->Set();
  EXPECT_EQ(event->Wait(0xFFFFFFFF), WaitResult::kSignalled);
  EXPECT_EQ(event->Wait(1), WaitResult::kTimeOut);
  std::thread setter([&] { event->Set(); });
  EXPECT_EQ(event->Wait(0xFFFFFFFF), WaitResult::kSignalled);
  setter.join();
}

TEST(ClockTest, ATestMayPutItsOwnClockInPlace) {
  struct FixedClock : Clock {
    std::uint64_t Now() override { return 42; }
    std::unique_ptr<Event> CreateEvent() override { return nullptr; }
  } fixed;
  std::uint64_t now = ProcessClock().Now();
  EXPECT_EQ(now % 100, 0U);
  EXPECT_GT(now, TimeFromUnix(1'577'836'800'000'000'000));  // later than 2020
  SetProcessClock(&fixed);
  EXPECT_EQ(ProcessClock().Now(), 42U);
  SetProcessClock(nullptr);
  EXPECT_GE(ProcessClock().Now(), now);
}

}  // namespace
}  // namespace orvo
