// The platform layer on POSIX systems: a recursive pthread mutex, the
// monotonic clock, localtime_r, errno and standard error.
#include <errno.h>
#include <pthread.h>
#include <time.h>

#include <cstdio>
#include <cstring>

#include "platform.h"
#include "utf16_to_utf8.h"

namespace ka_platform {

static_assert(sizeof(pthread_mutex_t) <= KA_LOCK_RECORD_BYTES, "the lock record must fit Ka_ThreadMutex");
static_assert(alignof(pthread_mutex_t) <= 8, "the lock record must fit Ka_ThreadMutex's alignment");

namespace {
pthread_mutex_t* Record(void* record) { return static_cast<pthread_mutex_t*>(record); }
}  // namespace

void LockInit(void* record) {
  pthread_mutexattr_t attr;
  pthread_mutexattr_init(&attr);
  pthread_mutexattr_settype(&attr, PTHREAD_MUTEX_RECURSIVE);
  pthread_mutex_init(Record(record), &attr);
  pthread_mutexattr_destroy(&attr);
}
void LockDestroy(void* record) { pthread_mutex_destroy(Record(record)); }
void LockEnter(void* record) { pthread_mutex_lock(Record(record)); }
void LockLeave(void* record) { pthread_mutex_unlock(Record(record)); }

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
