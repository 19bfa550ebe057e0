// The platform layer on the system the tests run on: Win32 calls on Windows
// (and under Wine), POSIX calls elsewhere. Where the two differ, a test asks
// which one it runs on. The system code-page conversions are the code-page
// tests' (every conversion goes through them, and on Windows they are
// compared with the system's own).
#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>
#include <thread>

#include "calendar/civil_days.h"
#include "platform/platform.h"

#if defined(_WIN32)
#include <io.h>
#include <windows.h>
#define dup _dup
#define dup2 _dup2
#define close _close
#define fileno _fileno
#else
#include <unistd.h>
#endif

namespace {

// Seconds since 1970 of a broken-down local date and time, by the proleptic
// Gregorian calendar (no time zone: both sides of a comparison are local).
long long LocalSeconds(int year, int month, int day, int hour, int minute, int second) {
  return (DayNumber(year, month, day) - DayNumber(1970, 1, 1)) * 86400 + hour * 3600 + minute * 60 + second;
}

// What the system says by its own routes: its ANSI code page, the calling
// thread's error code, and the local time in seconds as LocalSeconds counts
// them (Windows' UTC clock turned local by its time zone, or the C library's
// localtime_r of clock_gettime, as the platform layer reads it: time() may
// lag behind).
#if defined(_WIN32)
const bool kWindows = true;
unsigned int SystemAnsiCodePage() { return ::GetACP(); }
void SetErrorCode(int code) { ::SetLastError(static_cast<DWORD>(code)); }
long long ReferenceLocalSeconds() {
  SYSTEMTIME utc, local;
  ::GetSystemTime(&utc);
  ::SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local);
  return LocalSeconds(local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond);
}
#else
const bool kWindows = false;
unsigned int SystemAnsiCodePage() { return 65001; }
void SetErrorCode(int code) { errno = code; }
long long ReferenceLocalSeconds() {
  struct timespec ts;
  clock_gettime(CLOCK_REALTIME, &ts);
  std::tm tm;
  localtime_r(&ts.tv_sec, &tm);
  return LocalSeconds(tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec);
}
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
  const int saved = dup(fileno(stderr));
  dup2(fileno(file), fileno(stderr));
  fn();
  std::fflush(stderr);
  dup2(saved, fileno(stderr));
  close(saved);
  std::string text;
  std::rewind(file);
  for (int c; (c = std::fgetc(file)) != EOF;) text.push_back(static_cast<char>(c));
  std::fclose(file);
  std::remove(path);
  return text;
}

}  // namespace

TEST(PlatformClock, TickCountFollowsTheWallClockInMilliseconds) {
  const uint32_t first = ka_platform::TickCount();
  const auto start = std::chrono::steady_clock::now();
  std::this_thread::sleep_for(std::chrono::milliseconds(120));
  const uint32_t elapsed = ka_platform::TickCount() - first;  // unsigned: right across the wrap too
  const auto waited =
      std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
  // GetTickCount advances in steps of up to about 16 ms.
  EXPECT_TRUE(elapsed + 20 >= 120u && elapsed <= static_cast<uint32_t>(waited) + 20) << elapsed << " ms of " << waited;
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
  EXPECT_TRUE(before <= at && at <= after) << at - before << " s after the first reading, " << after - at << " before the second";
  EXPECT_EQ(t.weekday, static_cast<int>((at / 86400 + 4) % 7));
}

TEST(PlatformSystem, TheAnsiCodePageIsTheSystemsAndLastErrorTheCallingThreadsOwn) {
  EXPECT_EQ(ka_platform::AnsiCodePage(), SystemAnsiCodePage());
  // Each thread sets its own code while the other's is set, then reads it.
  // The threads wait on atomics only: any system call could change the code.
  std::atomic<int> stage{0};
  int otherSaw = 0;
  std::thread other([&] {
    while (stage.load() != 1) {}
    SetErrorCode(22);
    stage = 2;
    while (stage.load() != 3) {}
    otherSaw = ka_platform::LastError();
  });
  SetErrorCode(13);
  stage = 1;
  while (stage.load() != 2) {}
  const int mainSaw = ka_platform::LastError();
  stage = 3;
  other.join();
  EXPECT_EQ(std::make_pair(mainSaw, otherSaw), std::make_pair(13, 22));
}

TEST(PlatformDebug, DefaultChannelIsStandardErrorAsUtf8OnlyOffWindows) {
  // A text longer than the writer's 1024-byte pieces, with three-byte
  // characters and a surrogate pair where a piece ends, must arrive whole.
  typedef std::basic_string<ka_wchar> Units;
  const Units units = Units(340, 0x3131) + KA_W("ab\U0001F600x\xd800") + Units(700, 0xE9);
  std::string utf8;
  for (int i = 0; i < 340; ++i) utf8 += "\xe3\x84\xb1";  // three bytes each
  utf8 += "ab\xf0\x9f\x98\x80x\xef\xbf\xbd";      // four bytes, then the lone surrogate's U+FFFD
  for (int i = 0; i < 700; ++i) utf8 += "\xc3\xa9";
  const std::string written = CaptureStandardError([&] { ka_platform::DebugWrite(units.c_str()); });
  // On Windows the text goes to the debugger (OutputDebugStringW), not to
  // standard error.
  EXPECT_TRUE(written == (kWindows ? std::string() : utf8)) << written.size() << " bytes written of " << utf8.size();
  // A null or empty text writes nothing.
  EXPECT_EQ(CaptureStandardError([] { ka_platform::DebugWrite(nullptr); ka_platform::DebugWrite(KA_W("")); }), "");
}

TEST(PlatformByteOrder, NetworkOrderIsMostSignificantByteFirst) {
  const unsigned char bytes[4] = {0x80, 0xFF, 0x01, 0x02};  // high bits set in the upper bytes
  const uint32_t net = ka_platform::HostToNet32(0x80FF0102u);
  uint16_t net16;
  std::memcpy(&net16, bytes, 2);
  EXPECT_EQ(std::memcmp(&net, bytes, 4), 0);
  EXPECT_EQ(std::make_pair(ka_platform::NetToHost32(net), ka_platform::NetToHost16(net16)),
            std::make_pair(0x80FF0102u, uint16_t(0x80FF)));
}
