// Character traits and small helpers shared by the C-string functions
// (internal to the library).
//
// Every function of the family is one template over a traits type; the
// traits are the only place where narrow and wide text differ. Each traits
// type has the same members:
//   Char           the character type
//   UChar          the unsigned integer type of the same width
//   Value(c)       the value a comparison sees and subtracts
//   Diff(v)        what a compared value counts as in a returned difference
//   Length(s)      characters before the terminator of a non-null s
//   LengthUpTo(s, limit)  the same, reading no further than limit characters
//   Find(s, n, c)  the first of the n characters at s equal to c, or null;
//                  stops reading at the match
//   FindPair(s, a, b)  the first p at or after s, before the terminator,
//                  with p[0] == a and p[1] == b (a, b not 0), or null
#ifndef KALBOR_CSTR_TEXT_H
#define KALBOR_CSTR_TEXT_H

#include <kalbor/platform.h>

#include <cstddef>
#include <cstring>

#include "platform/wide_scan.h"

namespace ka_cstr {

// 8-bit text.
struct NarrowText {
  typedef char Char;
  typedef unsigned char UChar;
  // Narrow characters compare and subtract as signed 8-bit values: bytes
  // 0x80-0xFF are negative and sort before ASCII (deliberate).
  static int Value(Char c) { return static_cast<signed char>(c); }
  static int Diff(int v) { return v; }
  static size_t Length(const Char* s) { return std::strlen(s); }
  // memchr reads no further than the terminator it finds.
  static size_t LengthUpTo(const Char* s, size_t limit) {
    const void* end = std::memchr(s, 0, limit);
    return end != nullptr ? static_cast<size_t>(static_cast<const Char*>(end) - s) : limit;
  }
  static const Char* Find(const Char* s, size_t n, Char c) {
    return static_cast<const Char*>(std::memchr(s, static_cast<unsigned char>(c), n));
  }
  static const Char* FindPair(const Char* s, Char a, Char b) {
    for (const Char* p = s; *p != 0; ++p)
      if (p[0] == a && p[1] == b) return p;  // p[1] is the terminator at worst
    return nullptr;
  }
};

// 16-bit text: units compare and subtract as unsigned values 0..65535.
struct WideText {
  typedef ka_wchar Char;
  typedef uint16_t UChar;
  static int Value(Char c) { return static_cast<int>(static_cast<uint16_t>(c)); }
  static int Diff(int v) { return v; }
  // The platform layer measures with the processor's vector code where it can.
  static size_t Length(const Char* s) { return ka_platform::WideLength(reinterpret_cast<const uint16_t*>(s)); }
  static size_t LengthUpTo(const Char* s, size_t limit) {
    return ka_platform::WideLengthUpTo(reinterpret_cast<const uint16_t*>(s), limit);
  }
  static const Char* Find(const Char* s, size_t n, Char c) {
    for (const Char* end = s + n; s != end; ++s)
      if (*s == c) return s;
    return nullptr;
  }
  static const Char* FindPair(const Char* s, Char a, Char b) {
    return reinterpret_cast<const Char*>(ka_platform::WideFindPair(
        reinterpret_cast<const uint16_t*>(s), static_cast<uint16_t>(a), static_cast<uint16_t>(b)));
  }
};

// The narrow side of a wide-with-narrow (WA) comparison. It compares as a
// signed 8-bit value, so a byte 0x80-0xFF never equals a wide unit, but in
// the returned difference it counts as its 16-bit sign extension (0xE9 as
// 0xFFE9): the wide unit 0xFFE9 against the byte 0xE9 stops the walk and
// still yields 0. Both halves are deliberate.
struct NarrowInWideText {
  typedef char Char;
  typedef unsigned char UChar;
  static int Value(Char c) { return static_cast<signed char>(c); }
  static int Diff(int v) { return v & 0xFFFF; }
  static size_t Length(const Char* s) { return NarrowText::Length(s); }
  static size_t LengthUpTo(const Char* s, size_t limit) { return NarrowText::LengthUpTo(s, limit); }
  static const Char* Find(const Char* s, size_t n, Char c) { return NarrowText::Find(s, n, c); }
  static const Char* FindPair(const Char* s, Char a, Char b) { return NarrowText::FindPair(s, a, b); }
};

// ASCII-only case mapping of a compared value: the same for every byte and
// unit on every platform, whatever the process locale.
inline int AsciiLower(int v) { return (v >= 'A' && v <= 'Z') ? v + ('a' - 'A') : v; }
inline int AsciiUpper(int v) { return (v >= 'a' && v <= 'z') ? v - ('a' - 'A') : v; }
inline bool IsAsciiLetter(int v) { return AsciiLower(v) != AsciiUpper(v); }

// Space, tab, line feed and carriage return; no other character is blank.
template <class Char>
inline bool IsBlank(Char c) {
  return c == Char(' ') || c == Char('\t') || c == Char('\n') || c == Char('\r');
}

// Whether c (not the terminator) occurs in the zero-terminated set.
template <class Char>
inline bool InSet(const Char* set, Char c) {
  for (; *set != 0; ++set)
    if (*set == c) return true;
  return false;
}

// Length of a text that may be null.
template <class T>
inline size_t LengthOrZero(const typename T::Char* s) {
  return s != nullptr ? T::Length(s) : 0;
}

// Copies n characters and a terminator; the ranges may overlap.
template <class Char>
inline void CopyTerminated(Char* dst, const Char* src, size_t n) {
  std::memmove(dst, src, n * sizeof(Char));
  dst[n] = 0;
}

}  // namespace ka_cstr

#endif  // KALBOR_CSTR_TEXT_H
