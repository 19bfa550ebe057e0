// Length, copy, append, duplicate, width change, pieces and case changes of
// zero-terminated text.
#include <kalbor/cstr.h>
#include <kalbor/memory.h>

#include <climits>

#include "cstr/text.h"

namespace ka_cstr {
namespace {

// Copies src with its terminator into dst; a null src empties dst.
template <class T>
typename T::Char* Copy(typename T::Char* dst, const typename T::Char* src) {
  if (dst == nullptr) return nullptr;
  if (src == nullptr) {
    dst[0] = 0;
    return dst;
  }
  CopyTerminated(dst, src, T::Length(src));
  return dst;
}

// The bounded copy that ka_strncpyW, ka_strncatA/W, ka_ascii2wide and
// ka_wide2ascii share: converts and copies characters while fewer than n
// have been copied, stopping after a converted terminator, then stores one
// more terminator: deliberately, so a short src leaves two and dst must hold
// n + 1 characters. convert maps a source character to a destination one.
template <class To, class From, class Convert>
To* CopyBounded(To* dst, const From* src, int n, Convert convert) {
  if (dst == nullptr) return nullptr;
  if (src == nullptr) {
    dst[0] = 0;
    return dst;
  }
  int i = 0;
  while (i < n) {
    const To c = convert(src[i]);
    dst[i++] = c;
    if (c == 0) break;
  }
  dst[i] = 0;
  return dst;
}

template <class Char>
Char Same(Char c) {
  return c;
}

// A byte widens to the unit of the same number, 0x00-0xFF; no code page.
ka_wchar WidenByte(char c) { return static_cast<ka_wchar>(static_cast<unsigned char>(c)); }

// A unit narrows to its low 8 bits, so 0x0100 becomes the terminator and ends
// the copy: this truncation is deliberate, code pages convert properly.
char NarrowUnit(ka_wchar u) { return static_cast<char>(static_cast<unsigned char>(u & 0xFF)); }

template <class T>
typename T::Char* AppendBounded(typename T::Char* dst, const typename T::Char* src, int n) {
  if (dst == nullptr) return nullptr;
  if (src == nullptr || n < 1) return dst;  // nothing written, not even a terminator
  CopyBounded(dst + T::Length(dst), src, n, Same<typename T::Char>);
  return dst;
}

// A new _ka_malloc block holding s; null for a null or empty s (deliberately
// no empty copy) or when no block can be had.
template <class T>
typename T::Char* Duplicate(const typename T::Char* s) {
  typedef typename T::Char Char;
  const size_t len = LengthOrZero<T>(s);
  if (len == 0) return nullptr;
  if (len >= static_cast<size_t>(INT_MAX) / sizeof(Char)) return nullptr;  // beyond any block
  Char* copy = static_cast<Char*>(_ka_malloc(static_cast<int>((len + 1) * sizeof(Char))));
  if (copy != nullptr) CopyTerminated(copy, s, len);
  return copy;
}

template <class T>
typename T::Char* Middle(const typename T::Char* src, int start, int count, typename T::Char* dst) {
  const size_t len = LengthOrZero<T>(src);
  if (dst == nullptr) return nullptr;
  if (start < 0) start = 0;  // callers mean the start of the text
  const size_t from = static_cast<size_t>(start);
  if (from < len && count > 0) {
    const size_t rest = len - from;
    const size_t take = rest <= static_cast<size_t>(count) ? rest : static_cast<size_t>(count);
    CopyTerminated(dst, src + from, take);
  } else {
    dst[0] = 0;
  }
  return dst;
}

template <class T>
typename T::Char* Right(const typename T::Char* src, int n, typename T::Char* dst) {
  const size_t len = LengthOrZero<T>(src);
  if (dst == nullptr) return nullptr;
  const size_t want = n > 0 ? static_cast<size_t>(n) : 0;
  if (len > want)
    CopyTerminated(dst, src + (len - want), want);
  else if (src != nullptr)
    CopyTerminated(dst, src, len);
  else
    dst[0] = 0;
  return dst;
}

// Replaces each character whose value map changes; the others are not written.
template <class T, class Map>
void MapCase(typename T::Char* s, Map map) {
  if (s == nullptr) return;
  for (; *s != 0; ++s) {
    const int v = T::Value(*s);
    const int m = map(v);
    if (m != v) *s = static_cast<typename T::Char>(m);
  }
}

// Swaps the case of ASCII letters: the name promises a reversal, but the
// order of the characters is kept (deliberate).
int SwapCase(int v) {
  const int lower = AsciiLower(v);
  return lower != v ? lower : AsciiUpper(v);
}

}  // namespace
}  // namespace ka_cstr

using namespace ka_cstr;

int ka_strlenW(const ka_wchar* s) { return static_cast<int>(LengthOrZero<WideText>(s)); }
ka_wchar* ka_strcpyW(ka_wchar* dst, const ka_wchar* src) { return Copy<WideText>(dst, src); }
ka_wchar* ka_strncpyW(ka_wchar* dst, const ka_wchar* src, int n) { return CopyBounded(dst, src, n, Same<ka_wchar>); }

ka_wchar* ka_strcatW(ka_wchar* dst, const ka_wchar* src) {
  if (dst == nullptr) return nullptr;
  if (src != nullptr) Copy<WideText>(dst + WideText::Length(dst), src);
  return dst;
}

char* ka_strncatA(char* dst, const char* src, int n) { return AppendBounded<NarrowText>(dst, src, n); }
ka_wchar* ka_strncatW(ka_wchar* dst, const ka_wchar* src, int n) { return AppendBounded<WideText>(dst, src, n); }

char* _ka_strdupA(const char* s) { return Duplicate<NarrowText>(s); }
ka_wchar* _ka_strdupW(const ka_wchar* s) { return Duplicate<WideText>(s); }

ka_wchar* ka_ascii2wide(ka_wchar* dst, const char* src, int n) { return CopyBounded(dst, src, n, WidenByte); }
char* ka_wide2ascii(char* dst, const ka_wchar* src, int n) { return CopyBounded(dst, src, n, NarrowUnit); }

char* ka_substrA(const char* src, int start, int count, char* dst) {
  return Middle<NarrowText>(src, start, count, dst);
}
ka_wchar* ka_substrW(const ka_wchar* src, int start, int count, ka_wchar* dst) {
  return Middle<WideText>(src, start, count, dst);
}
char* ka_rightA(const char* src, int n, char* dst) { return Right<NarrowText>(src, n, dst); }
ka_wchar* ka_rightW(const ka_wchar* src, int n, ka_wchar* dst) { return Right<WideText>(src, n, dst); }

void ka_strlwrA(char* s) { MapCase<NarrowText>(s, AsciiLower); }
void ka_strlwrW(ka_wchar* s) { MapCase<WideText>(s, AsciiLower); }
void ka_struprA(char* s) { MapCase<NarrowText>(s, AsciiUpper); }
void ka_struprW(ka_wchar* s) { MapCase<WideText>(s, AsciiUpper); }
void ka_strrevA(char* s) { MapCase<NarrowText>(s, SwapCase); }
void ka_strrevW(ka_wchar* s) { MapCase<WideText>(s, SwapCase); }
