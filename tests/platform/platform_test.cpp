// The platform layer on the system the tests run on: Win32 calls on Windows
// (and under Wine), POSIX calls elsewhere. Where the two differ, a test asks
// which one it runs on.
#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>
#include <thread>

#if defined(_WIN32)
#include <io.h>
#include <windows.h>
#else
#include <time.h>
#include <unistd.h>
#endif

#include "calendar/civil_days.h"
#include "platform/platform.h"

namespace {

constexpr bool kWindows =
#if defined(_WIN32)
    true;
#else
    false;
#endif

// Everything written to the process's standard error while fn runs, through
// a file in the working directory (the test's build folder): the C library's
// temporary files may lie where a Windows user cannot write.
template <class Fn>
std::string CaptureStandardError(Fn fn) {
  const char* const path = "kalbor_platform_test_stderr.tmp";
  std::FILE* file = std::fopen(path, "w+b");
  if (file == nullptr) return "<cannot create " + std::string(path) + ">";
  std::fflush(stderr);
#if defined(_WIN32)
  const int saved = _dup(_fileno(stderr));
  _dup2(_fileno(file), _fileno(stderr));
  fn();
  std::fflush(stderr);
  _dup2(saved, _fileno(stderr));
  _close(saved);
#else
  const int saved = dup(fileno(stderr));
  dup2(fileno(file), fileno(stderr));
  fn();
  std::fflush(stderr);
  dup2(saved, fileno(stderr));
  close(saved);
#endif
  std::string text;
  std::rewind(file);
  for (int c; (c = std::fgetc(file)) != EOF;) text.push_back(static_cast<char>(c));
  std::fclose(file);
  std::remove(path);
  return text;
}

// Seconds since 1970 of a broken-down local date and time, by the proleptic
// Gregorian calendar (no time zone: both sides of a comparison are local).
long long LocalSeconds(int year, int month, int day, int hour, int minute, int second) {
  return DaysFromCivil(year, month, day) * 86400 + hour * 3600 + minute * 60 + second;
}

}  // namespace

TEST(PlatformClock, TickCountFollowsTheWallClockInMillisecondsAndNeverRunsBackwards) {
  const uint32_t first = ka_platform::TickCount();
  const auto start = std::chrono::steady_clock::now();
  std::this_thread::sleep_for(std::chrono::milliseconds(120));
  const uint32_t elapsed = ka_platform::TickCount() - first;  // unsigned: right across the wrap too
  const auto waited =
      std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
  // GetTickCount advances in steps of up to about 16 ms.
  EXPECT_GE(elapsed + 20, 120u);
  EXPECT_LE(elapsed, static_cast<uint32_t>(waited) + 20);
  uint32_t last = ka_platform::TickCount();
  for (int i = 0; i < 100000; ++i) {
    const uint32_t now = ka_platform::TickCount();
    ASSERT_LT(now - last, 0x80000000u) << "went back from " << last << " to " << now;
    last = now;
  }
}

// The local time by the system's other route, in seconds as LocalSeconds
// counts them: Windows' UTC clock turned local by its time zone, or the C
// library's localtime_r.
long long ReferenceLocalSeconds() {
#if defined(_WIN32)
  SYSTEMTIME utc, local;
  ::GetSystemTime(&utc);
  ::SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local);
  return LocalSeconds(local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond);
#else
  // clock_gettime, as the platform layer reads it: time() may lag behind.
  struct timespec ts;
  clock_gettime(CLOCK_REALTIME, &ts);
  const std::time_t now = ts.tv_sec;
  std::tm tm;
  localtime_r(&now, &tm);
  return LocalSeconds(tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec);
#endif
}

TEST(PlatformClock, LocalTimeIsTheSystemsLocalTime) {
  // Between two readings of the reference (whole seconds), whatever the
  // time zone; the weekday belongs to the date (1970-01-01 was a Thursday).
  const long long before = ReferenceLocalSeconds();
  ka_platform::LocalTime t;
  ka_platform::GetLocalTime(&t);
  const long long after = ReferenceLocalSeconds();

  EXPECT_TRUE(t.millisecond >= 0 && t.millisecond <= 999) << t.millisecond;
  const long long at = LocalSeconds(t.year, t.month, t.day, t.hour, t.minute, t.second);
  EXPECT_GE(at, before);
  EXPECT_LE(at, after);
  EXPECT_EQ(t.weekday, static_cast<int>((at / 86400 + 4) % 7));
}

TEST(PlatformSystem, LastErrorIsTheCallingThreadsOwn) {
#if defined(_WIN32)
  auto set = [](int code) { ::SetLastError(static_cast<DWORD>(code)); };
#else
  auto set = [](int code) { errno = code; };
#endif
  // Each thread sets its own code while the other's is set, then reads it.
  // The threads wait on atomics only: any system call could change the code.
  std::atomic<int> stage{0};
  int otherSaw = 0;
  std::thread other([&] {
    while (stage.load() != 1) {}
    set(22);
    stage = 2;
    while (stage.load() != 3) {}
    otherSaw = ka_platform::LastError();
  });
  set(13);
  stage = 1;
  while (stage.load() != 2) {}
  const int mainSaw = ka_platform::LastError();
  stage = 3;
  other.join();
  EXPECT_EQ(mainSaw, 13);
  EXPECT_EQ(otherSaw, 22);
}

TEST(PlatformSystem, AnsiCodePageAndSystemConversionsAreWindowsOnly) {
#if defined(_WIN32)
  EXPECT_EQ(ka_platform::AnsiCodePage(), ::GetACP());
#else
  EXPECT_EQ(ka_platform::AnsiCodePage(), 65001u);
#endif
  const ka_wchar wide[] = {u'A', 0xE9, 0};
  ka_wchar wout[4] = {};
  char nout[4] = {};
  int n[2] = {-7, -7};  // untouched off Windows
  EXPECT_EQ(ka_platform::SystemToWide(1252, "A\xE9", 2, wout, 4, &n[0]), kWindows);
  EXPECT_EQ(ka_platform::SystemToNarrow(1252, wide, 2, nout, 4, &n[1]), kWindows);
  EXPECT_EQ(n[0], kWindows ? 2 : -7);
  EXPECT_EQ(n[1], kWindows ? 2 : -7);
  if (kWindows) {
    EXPECT_EQ(std::memcmp(wout, wide, 2 * sizeof(ka_wchar)), 0);
    EXPECT_EQ(std::string(nout, 2), "A\xE9");
  }
}

TEST(PlatformDebug, DefaultChannelIsStandardErrorAsUtf8OnlyOffWindows) {
  // A text longer than the writer's 1024-byte pieces, with three-byte
  // characters and a surrogate pair where a piece ends, must arrive whole.
  const std::u16string text = std::u16string(340, u'\u3131') + u"ab\U0001F600x\xd800" + std::u16string(700, u'\u00e9');
  std::string utf8;
  for (int i = 0; i < 340; ++i) utf8 += "\xe3\x84\xb1";  // three bytes each
  utf8 += "ab\xf0\x9f\x98\x80x\xef\xbf\xbd";      // four bytes, then a lone surrogate's U+FFFD
  for (int i = 0; i < 700; ++i) utf8 += "\xc3\xa9";
  std::basic_string<ka_wchar> units(text.begin(), text.end());

  const std::string written = CaptureStandardError([&] { ka_platform::DebugWrite(units.c_str()); });
  // On Windows the text goes to the debugger (OutputDebugStringW), not to
  // standard error.
  const std::string expected = kWindows ? std::string() : utf8;
  EXPECT_TRUE(written == expected) << written.size() << " bytes written of " << expected.size();
  EXPECT_EQ(CaptureStandardError([] { ka_platform::DebugWrite(nullptr); }), "");
  EXPECT_EQ(CaptureStandardError([] { ka_platform::DebugWrite(KA_W("")); }), "");
}

TEST(PlatformByteOrder, NetworkOrderIsMostSignificantByteFirst) {
  const unsigned char bytes[4] = {0x80, 0xFF, 0x01, 0x02};  // high bits set in the upper bytes
  const uint32_t net = ka_platform::HostToNet32(0x80FF0102u);
  uint16_t net16;
  std::memcpy(&net16, bytes, 2);
  EXPECT_EQ(std::memcmp(&net, bytes, 4), 0);
  EXPECT_EQ(ka_platform::NetToHost32(net), 0x80FF0102u);
  EXPECT_EQ(ka_platform::NetToHost16(net16), 0x80FFu);
}
