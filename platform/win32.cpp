// The platform layer on Windows: the Win32 calls the device used.
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>

#include "platform.h"

namespace ka_platform {

static_assert(sizeof(CRITICAL_SECTION) <= KA_LOCK_RECORD_BYTES, "the lock record must fit Ka_ThreadMutex");
static_assert(alignof(CRITICAL_SECTION) <= 8, "the lock record must fit Ka_ThreadMutex's alignment");

namespace {
CRITICAL_SECTION* Record(void* record) { return static_cast<CRITICAL_SECTION*>(record); }
}  // namespace

void LockInit(void* record) { InitializeCriticalSection(Record(record)); }
void LockDestroy(void* record) { DeleteCriticalSection(Record(record)); }
void LockEnter(void* record) { EnterCriticalSection(Record(record)); }
void LockLeave(void* record) { LeaveCriticalSection(Record(record)); }

uint32_t TickCount() { return static_cast<uint32_t>(::GetTickCount()); }

int LastError() { return static_cast<int>(::GetLastError()); }

void GetLocalTime(LocalTime* out) {
  SYSTEMTIME st;
  ::GetLocalTime(&st);
  out->year = st.wYear;
  out->month = st.wMonth;
  out->day = st.wDay;
  out->weekday = st.wDayOfWeek;
  out->hour = st.wHour;
  out->minute = st.wMinute;
  out->second = st.wSecond;
  out->millisecond = st.wMilliseconds;
}

unsigned int AnsiCodePage() { return ::GetACP(); }

void SetBinaryStdio() {
  _setmode(_fileno(stdin), _O_BINARY);
  _setmode(_fileno(stdout), _O_BINARY);
}

bool SystemToWide(unsigned int cp, const char* src, int srcLen, ka_wchar* dst, int dstSize, int* result) {
  if (!::IsValidCodePage(cp)) return false;
  *result = ::MultiByteToWideChar(cp, 0, src, srcLen, dst, dstSize);
  return true;
}

bool SystemToNarrow(unsigned int cp, const ka_wchar* src, int srcLen, char* dst, int dstSize, int* result) {
  if (!::IsValidCodePage(cp)) return false;
  *result = ::WideCharToMultiByte(cp, 0, src, srcLen, dst, dstSize, nullptr, nullptr);
  return true;
}

void DebugWrite(const ka_wchar* text) {
  if (text != nullptr) ::OutputDebugStringW(text);
}

}  // namespace ka_platform
