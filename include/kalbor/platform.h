// Kalbor400U platform types.
//
// The few facts of the platform that the public interface needs: the 16-bit
// character type and its literals, the export macro, the interlocked
// reference-count operations and the storage of the library's lock. This
// header and the sources under platform/ are the only places that know which
// operating system or compiler the library is built for.
#ifndef KALBOR_PLATFORM_H
#define KALBOR_PLATFORM_H

#include <cstddef>
#include <cstdint>

// ka_wchar: the library's 16-bit character. Windows' wchar_t is 16 bits; on
// every other platform wchar_t is 32 bits, so char16_t stands in for it.
#if defined(_WIN32)
typedef wchar_t ka_wchar;
#define KA_W_(s) L##s
#else
typedef char16_t ka_wchar;
#define KA_W_(s) u##s
#endif
// KA_W("text"): a literal of ka_wchar.
#define KA_W(s) KA_W_(s)
static_assert(sizeof(ka_wchar) == 2, "ka_wchar must be a 16-bit unit");

// KA_API marks what the shared library exports.
#if defined(KALBOR_STATIC)
#define KA_API
#elif defined(_WIN32)
#if defined(KALBOR_BUILDING)
#define KA_API __declspec(dllexport)
#else
#define KA_API __declspec(dllimport)
#endif
#else
#define KA_API __attribute__((visibility("default")))
#endif

// Interlocked operations on a 32-bit count: each returns the new value. These
// are the locked read-modify-write instructions that Windows' Interlocked-
// Increment/Decrement compile to, with full ordering.
inline int32_t ka_interlocked_increment(volatile int32_t* p) {
  return __atomic_add_fetch(p, 1, __ATOMIC_SEQ_CST);
}
inline int32_t ka_interlocked_decrement(volatile int32_t* p) {
  return __atomic_sub_fetch(p, 1, __ATOMIC_SEQ_CST);
}
// Reads and writes of a count that other threads may change at the same time.
inline int32_t ka_interlocked_read(const volatile int32_t* p) {
  return __atomic_load_n(p, __ATOMIC_ACQUIRE);
}
inline void ka_interlocked_write(volatile int32_t* p, int32_t v) {
  __atomic_store_n(p, v, __ATOMIC_RELEASE);
}

// Bytes reserved inside Ka_ThreadMutex for the platform's lock record
// (CRITICAL_SECTION on Windows, a re-entrant spin-then-yield lock elsewhere); the
// platform sources check that their record fits.
#define KA_LOCK_RECORD_BYTES 64

#endif  // KALBOR_PLATFORM_H
