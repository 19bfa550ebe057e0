// The platform layer's interface to the rest of the library (internal).
//
// Everything the library asks of the operating system goes through these
// functions: platform/posix.cpp implements them with POSIX calls,
// platform/win32.cpp with the Win32 calls the device used. Byte order needs
// no system call and is computed here, identically everywhere.
#ifndef KALBOR_PLATFORM_PLATFORM_H
#define KALBOR_PLATFORM_PLATFORM_H

#include <kalbor/platform.h>

#include <cstdint>

namespace ka_platform {

// The recursive lock record inside Ka_ThreadMutex (KA_LOCK_RECORD_BYTES,
// 8-byte aligned).
void LockInit(void* record);
void LockDestroy(void* record);
void LockEnter(void* record);
void LockLeave(void* record);

// Milliseconds of a monotonic clock, truncated to 32 bits (GetTickCount).
uint32_t TickCount();
// The calling thread's last error code (GetLastError, errno elsewhere).
int LastError();

// The local date and time (GetLocalTime).
struct LocalTime {
  int year, month, day;          // month 1..12, day 1..31
  int weekday;                   // 0 = Sunday
  int hour, minute, second, millisecond;
};
void GetLocalTime(LocalTime* out);

// The ANSI code page: the system's on Windows, 65001 (UTF-8) elsewhere.
unsigned int AnsiCodePage();

// The system's code-page conversions, MultiByteToWideChar(cp, 0, src,
// srcLen, dst, dstSize) and WideCharToMultiByte(cp, 0, src, srcLen, dst,
// dstSize, NULL, NULL): true, with the call's result in *result, when the
// system converts cp; false when it does not (always, except on Windows), so
// that the caller converts with the library's own converter.
bool SystemToWide(unsigned int cp, const char* src, int srcLen, ka_wchar* dst, int dstSize, int* result);
bool SystemToNarrow(unsigned int cp, const ka_wchar* src, int srcLen, char* dst, int dstSize, int* result);

// Puts standard input and standard output in binary mode: no line-end
// translation and no end-of-file byte (Windows); nothing where streams are
// always binary.
void SetBinaryStdio();

// The default debug sink: OutputDebugStringW on Windows, standard error as
// UTF-8 elsewhere.
void DebugWrite(const ka_wchar* text);

// Host/network byte order of 32- and 16-bit values (htonl, ntohl, ntohs).
// Written with shifts over the bytes in memory, so the same code serves
// either byte order.
inline uint32_t HostToNet32(uint32_t v) {
  const unsigned char b[4] = {static_cast<unsigned char>(v >> 24), static_cast<unsigned char>(v >> 16),
                              static_cast<unsigned char>(v >> 8), static_cast<unsigned char>(v)};
  uint32_t r;
  __builtin_memcpy(&r, b, 4);
  return r;
}
inline uint32_t NetToHost32(uint32_t v) {
  unsigned char b[4];
  __builtin_memcpy(b, &v, 4);
  return (uint32_t(b[0]) << 24) | (uint32_t(b[1]) << 16) | (uint32_t(b[2]) << 8) | uint32_t(b[3]);
}
inline uint16_t NetToHost16(uint16_t v) {
  unsigned char b[2];
  __builtin_memcpy(b, &v, 2);
  return static_cast<uint16_t>((b[0] << 8) | b[1]);
}

}  // namespace ka_platform

#endif  // KALBOR_PLATFORM_PLATFORM_H
