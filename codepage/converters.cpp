// The argument rules shared by every converter, the choice of converter, and
// the converters of the single-byte and double-byte table pages.
#include "codepage/converters.h"

#include <cstring>

#include "codepage/tables.h"

namespace ka_codepage {
namespace {

// ---- Single-byte pages: one unit per byte and one byte per unit ------------

int SbcsToWide(const SbcsTable& t, const unsigned char* src, size_t n, ka_wchar* dst, int dstSize) {
  if (dstSize == 0) return n > INT_MAX ? 0 : static_cast<int>(n);
  // A destination too small is filled, and the result is 0.
  const size_t m = n < static_cast<size_t>(dstSize) ? n : static_cast<size_t>(dstSize);
  for (size_t i = 0; i < m; ++i) dst[i] = SbcsDecode(t, src[i]);
  return m < n ? 0 : static_cast<int>(n);
}

int WideToSbcs(const SbcsTable& t, const ka_wchar* src, size_t n, char* dst, int dstSize) {
  if (dstSize == 0) return n > INT_MAX ? 0 : static_cast<int>(n);
  const size_t m = n < static_cast<size_t>(dstSize) ? n : static_cast<size_t>(dstSize);
  for (size_t i = 0; i < m; ++i) {
    const uint16_t u = Unit(src[i]);
    dst[i] = Byte(u < 0x80 ? u : SbcsEncode(t, u));
  }
  return m < n ? 0 : static_cast<int>(n);
}

// ---- Double-byte pages ------------------------------------------------------
// A lead byte followed by a non-zero byte is one character (the page's
// default unit when the pair has none); a lead byte at the end of the input
// or before a zero byte is the default unit alone.

int DbcsToWide(const DbcsTable& t, const unsigned char* src, size_t n, ka_wchar* dst, int dstSize) {
  const unsigned char* const end = src + n;
  if (dstSize == 0) {
    size_t count = 0;
    for (const unsigned char* p = src; p < end; ++count)
      p += (*p >= 0x80 && t.rows[*p].lead && end - p > 1 && p[1] != 0) ? 2 : 1;
    return count > INT_MAX ? 0 : static_cast<int>(count);
  }
  ka_wchar* out = dst;
  ka_wchar* const outEnd = dst + dstSize;
  const unsigned char* p = src;
  while (p < end) {
    if (out == outEnd) return 0;
    const unsigned char b = *p;
    if (b < 0x80) {
      *out++ = Wide(b);
      ++p;
      continue;
    }
    const DbcsRow& r = t.rows[b];
    if (r.lead == 0) {
      *out++ = Wide(t.single[b - 0x80]);
      ++p;
    } else if (end - p > 1 && p[1] != 0) {
      const unsigned char trail = p[1];
      *out++ = Wide((trail >= r.first && trail <= r.last) ? t.pool[r.offset + (trail - r.first)] : t.defaultUnit);
      p += 2;
    } else {
      *out++ = Wide(t.defaultUnit);
      ++p;
    }
  }
  return static_cast<int>(out - dst);
}

int WideToDbcs(DbcsId id, const ka_wchar* src, size_t n, char* dst, int dstSize) {
  const DbcsEncoder& e = Encoder(id);
  if (dstSize == 0) {
    size_t count = 0;
    for (size_t i = 0; i < n; ++i) {
      const uint16_t u = Unit(src[i]);
      count += (u >= 0x80 && DbcsEncode(e, u) >= 0x100) ? 2 : 1;
    }
    return count > INT_MAX ? 0 : static_cast<int>(count);
  }
  char* out = dst;
  char* const outEnd = dst + dstSize;
  for (size_t i = 0; i < n; ++i) {
    const uint16_t u = Unit(src[i]);
    if (u < 0x80) {
      if (out == outEnd) return 0;
      *out++ = Byte(u);
      continue;
    }
    const uint16_t c = DbcsEncode(e, u);
    if (c >= 0x100) {
      if (outEnd - out < 2) return 0;  // never half a character
      out[0] = Byte(c >> 8);
      out[1] = Byte(c & 0xFF);
      out += 2;
    } else {
      if (out == outEnd) return 0;
      *out++ = Byte(c != 0 ? c : kDefaultByte);
    }
  }
  return static_cast<int>(out - dst);
}

size_t Length(const char* s) { return std::strlen(s); }
size_t Length(const ka_wchar* s) {
  size_t n = 0;
  while (s[n] != 0) ++n;
  return n;
}

// The input length under the platform's rules: a negative srcLen reads
// through the terminator.
template <class C>
size_t InputLength(const C* src, int srcLen) {
  return srcLen < 0 ? Length(src) + 1 : static_cast<size_t>(srcLen);
}

}  // namespace

bool IsLibraryPage(unsigned int cp) {
  DbcsId id;
  if (FindSbcs(cp) != nullptr || FindDbcs(cp, &id) != nullptr) return true;
  return cp == 65001 || cp == 50220 || cp == 50225 || cp == 51932 || cp == 52936;
}

int ToWide(unsigned int cp, const char* src, int srcLen, ka_wchar* dst, int dstSize) {
  if (src == nullptr || srcLen == 0 || dstSize < 0 || (dst == nullptr && dstSize != 0)) return 0;
  const unsigned char* s = reinterpret_cast<const unsigned char*>(src);
  const size_t n = InputLength(src, srcLen);
  if (const SbcsTable* t = FindSbcs(cp)) return SbcsToWide(*t, s, n, dst, dstSize);
  DbcsId id;
  if (const DbcsTable* t = FindDbcs(cp, &id)) return DbcsToWide(*t, s, n, dst, dstSize);
  switch (cp) {
    case 65001: return Utf8ToWide(s, n, dst, dstSize);
    case 50220: return Iso2022JpToWide(s, n, dst, dstSize);
    case 50225: return Iso2022KrToWide(s, n, dst, dstSize);
    case 51932: return EucJpToWide(s, n, dst, dstSize);
    case 52936: return HzToWide(s, n, dst, dstSize);
    default: return 0;
  }
}

int ToNarrow(unsigned int cp, const ka_wchar* src, int srcLen, char* dst, int dstSize) {
  if (src == nullptr || srcLen == 0 || dstSize < 0 || (dst == nullptr && dstSize != 0)) return 0;
  const size_t n = InputLength(src, srcLen);
  if (const SbcsTable* t = FindSbcs(cp)) return WideToSbcs(*t, src, n, dst, dstSize);
  DbcsId id;
  if (FindDbcs(cp, &id) != nullptr) return WideToDbcs(id, src, n, dst, dstSize);
  switch (cp) {
    case 65001: return WideToUtf8(src, n, dst, dstSize);
    case 50220: return WideToIso2022Jp(src, n, dst, dstSize);
    case 50225: return WideToIso2022Kr(src, n, dst, dstSize);
    case 51932: return WideToEucJp(src, n, dst, dstSize);
    case 52936: return WideToHz(src, n, dst, dstSize);
    default: return 0;
  }
}

}  // namespace ka_codepage
