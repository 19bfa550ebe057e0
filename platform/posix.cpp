// The platform layer on POSIX systems: the lock record, the monotonic clock,
// localtime_r, errno and standard error.
#include <errno.h>
#include <pthread.h>
#include <sched.h>
#include <time.h>

#include <cstdio>
#include <cstring>

#include "platform.h"
#include "utf16_to_utf8.h"

namespace ka_platform {

// The lock record: a re-entrant lock that costs one atomic exchange to take
// and one release store to leave when nobody else wants it. A waiting thread
// spins briefly on a plain read and then yields its processor until the
// lock is free. The pools hold it for a few dozen instructions at a time,
// so waits are short.
struct LockRecord {
  int32_t held;     // 1 while some thread owns the lock
  int32_t depth;    // how often the owner has entered; touched by the owner only
  uintptr_t owner;  // the owning thread, 0 when free; read by others only to compare
};
static_assert(sizeof(LockRecord) <= KA_LOCK_RECORD_BYTES, "the lock record must fit Ka_ThreadMutex");
static_assert(alignof(LockRecord) <= 8, "the lock record must fit Ka_ThreadMutex's alignment");

namespace {
LockRecord* Record(void* record) { return static_cast<LockRecord*>(record); }

uintptr_t Self() {
  static_assert(sizeof(pthread_t) <= sizeof(uintptr_t), "a thread handle fits a word");
  const pthread_t self = pthread_self();
  uintptr_t id = 0;
  std::memcpy(&id, &self, sizeof(self));
  return id;
}
}  // namespace

void LockInit(void* record) { std::memset(record, 0, sizeof(LockRecord)); }
void LockDestroy(void*) {}

void LockEnter(void* record) {
  LockRecord* r = Record(record);
  const uintptr_t self = Self();
  if (__atomic_load_n(&r->owner, __ATOMIC_RELAXED) == self) {
    ++r->depth;  // re-entry by the owner
    return;
  }
  while (__atomic_exchange_n(&r->held, 1, __ATOMIC_ACQUIRE) != 0) {
    for (int spins = 0; __atomic_load_n(&r->held, __ATOMIC_RELAXED) != 0; ++spins)
      if (spins >= 64) sched_yield();
  }
  __atomic_store_n(&r->owner, self, __ATOMIC_RELAXED);
  r->depth = 1;
}

void LockLeave(void* record) {
  LockRecord* r = Record(record);
  if (--r->depth > 0) return;
  __atomic_store_n(&r->owner, uintptr_t(0), __ATOMIC_RELAXED);
  __atomic_store_n(&r->held, 0, __ATOMIC_RELEASE);
}

uint32_t TickCount() {
  struct timespec ts;
  clock_gettime(CLOCK_MONOTONIC, &ts);
  const uint64_t ms = uint64_t(ts.tv_sec) * 1000u + uint64_t(ts.tv_nsec) / 1000000u;
  return static_cast<uint32_t>(ms);
}

int LastError() { return errno; }

void GetLocalTime(LocalTime* out) {
  struct timespec ts;
  clock_gettime(CLOCK_REALTIME, &ts);
  time_t now = ts.tv_sec;
  struct tm tm;
  std::memset(&tm, 0, sizeof(tm));
  localtime_r(&now, &tm);
  out->year = tm.tm_year + 1900;
  out->month = tm.tm_mon + 1;
  out->day = tm.tm_mday;
  out->weekday = tm.tm_wday;
  out->hour = tm.tm_hour;
  out->minute = tm.tm_min;
  out->second = tm.tm_sec;
  out->millisecond = static_cast<int>(ts.tv_nsec / 1000000);
}

unsigned int AnsiCodePage() { return 65001; }

// No system conversions here: the library's converters serve every page.
bool SystemToWide(unsigned int, const char*, int, ka_wchar*, int, int*) { return false; }
bool SystemToNarrow(unsigned int, const ka_wchar*, int, char*, int, int*) { return false; }

// POSIX streams never translate bytes.
void SetBinaryStdio() {}

void DebugWrite(const ka_wchar* text) {
  char buf[1024];
  // Long texts go out in pieces; the converter never splits a character.
  size_t units = 0;
  while (text != nullptr && *text != 0) {
    const size_t n = Utf16ToUtf8(text, buf, sizeof(buf), &units);
    if (units == 0) break;
    std::fwrite(buf, 1, n, stderr);
    text += units;
  }
  std::fflush(stderr);
}

}  // namespace ka_platform
