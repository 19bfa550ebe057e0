// UTF-8 (65001). Ill-formed input becomes U+FFFD once per maximal subpart,
// as the Unicode Standard recommends (chapter 3, "U+FFFD Substitution of
// Maximal Subparts"): a lead byte and the continuation bytes that can still
// belong to its character count as one. Lone surrogates become U+FFFD on the
// way out.
#include <cstring>

#include "codepage/converters.h"

namespace ka_codepage {
namespace {

const ka_wchar kReplacement = Wide(0xFFFD);

// Whether the eight bytes at p are all ASCII.
inline bool Ascii8(const unsigned char* p) {
  uint64_t w;
  std::memcpy(&w, p, 8);
  return (w & 0x8080808080808080ull) == 0;
}

// Decodes the non-ASCII character at p (p < end): stores its code point, or
// 0xFFFD for an ill-formed subpart, and returns the bytes it took.
inline size_t DecodeOne(const unsigned char* p, const unsigned char* end, uint32_t* cp) {
  const unsigned b = p[0];
  const size_t avail = static_cast<size_t>(end - p);
  *cp = 0xFFFD;
  if (b >= 0xC2 && b <= 0xDF) {
    if (avail < 2 || (p[1] & 0xC0) != 0x80) return 1;
    *cp = ((b & 0x1Fu) << 6) | (p[1] & 0x3Fu);
    return 2;
  }
  if (b >= 0xE0 && b <= 0xEF) {
    // The second byte's range is narrower after E0 (no overlongs) and ED (no surrogates).
    const unsigned lo = b == 0xE0 ? 0xA0 : 0x80, hi = b == 0xED ? 0x9F : 0xBF;
    if (avail < 2 || p[1] < lo || p[1] > hi) return 1;
    if (avail < 3 || (p[2] & 0xC0) != 0x80) return 2;
    *cp = ((b & 0x0Fu) << 12) | ((p[1] & 0x3Fu) << 6) | (p[2] & 0x3Fu);
    return 3;
  }
  if (b >= 0xF0 && b <= 0xF4) {
    // After F0 no overlongs, after F4 nothing above U+10FFFF.
    const unsigned lo = b == 0xF0 ? 0x90 : 0x80, hi = b == 0xF4 ? 0x8F : 0xBF;
    if (avail < 2 || p[1] < lo || p[1] > hi) return 1;
    if (avail < 3 || (p[2] & 0xC0) != 0x80) return 2;
    if (avail < 4 || (p[3] & 0xC0) != 0x80) return 3;
    *cp = ((b & 0x07u) << 18) | ((p[1] & 0x3Fu) << 12) | ((p[2] & 0x3Fu) << 6) | (p[3] & 0x3Fu);
    return 4;
  }
  return 1;  // a continuation byte, C0, C1 or F5-FF on its own
}

}  // namespace

int Utf8ToWide(const unsigned char* src, size_t n, ka_wchar* dst, int dstSize) {
  const unsigned char* p = src;
  const unsigned char* const end = src + n;
  if (dstSize == 0) {
    size_t count = 0;
    while (p < end) {
      if (*p < 0x80) {
        ++p;
        ++count;
        continue;
      }
      uint32_t cp;
      p += DecodeOne(p, end, &cp);
      count += cp >= 0x10000 ? 2 : 1;
    }
    return count > INT_MAX ? 0 : static_cast<int>(count);
  }
  ka_wchar* out = dst;
  ka_wchar* const outEnd = dst + dstSize;
  while (p < end) {
    if (out == outEnd) return 0;
    const unsigned b = *p;
    if (b < 0x80) {
      // A run of ASCII: eight bytes at a time while it lasts, then one by one.
      while (end - p >= 8 && outEnd - out >= 8 && Ascii8(p)) {
        for (int i = 0; i < 8; ++i) out[i] = Wide(p[i]);
        p += 8;
        out += 8;
      }
      while (p < end && out < outEnd && *p < 0x80) *out++ = Wide(*p++);
      continue;
    }
    // Three-byte characters whose second byte needs no range check (most of
    // the BMP: Hangul, CJK, kana), decoded in one step.
    if (b >= 0xE1 && b != 0xED && b <= 0xEF && end - p >= 3 && (p[1] & 0xC0) == 0x80 && (p[2] & 0xC0) == 0x80) {
      *out++ = Wide(((b & 0x0Fu) << 12) | ((p[1] & 0x3Fu) << 6) | (p[2] & 0x3Fu));
      p += 3;
      continue;
    }
    uint32_t cp;
    const size_t used = DecodeOne(p, end, &cp);
    if (cp >= 0x10000) {
      if (outEnd - out < 2) return 0;  // never half a surrogate pair
      out[0] = Wide(0xD800 + ((cp - 0x10000) >> 10));
      out[1] = Wide(0xDC00 + ((cp - 0x10000) & 0x3FF));
      out += 2;
    } else {
      *out++ = cp == 0xFFFD ? kReplacement : Wide(cp);
    }
    p += used;
  }
  return static_cast<int>(out - dst);
}

int WideToUtf8(const ka_wchar* src, size_t n, char* dst, int dstSize) {
  const bool counting = dstSize == 0;
  char* out = dst;
  const size_t room = counting ? 0 : static_cast<size_t>(dstSize);
  size_t count = 0;
  for (size_t i = 0; i < n; ++i) {
    uint32_t c = Unit(src[i]);
    if (c < 0x80) {
      if (!counting) {
        if (count == room) return 0;
        out[count] = Byte(c);
      }
      ++count;
      continue;
    }
    size_t len;
    if (c < 0x800) {
      len = 2;
    } else if (c >= 0xD800 && c <= 0xDBFF && i + 1 < n && Unit(src[i + 1]) >= 0xDC00 && Unit(src[i + 1]) <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (Unit(src[i + 1]) - 0xDC00u);
      ++i;
      len = 4;
    } else {
      if (c >= 0xD800 && c <= 0xDFFF) c = 0xFFFD;  // a lone surrogate
      len = 3;
    }
    if (!counting) {
      if (room - count < len) return 0;  // never half a character
      char* o = out + count;
      switch (len) {
        case 2:
          o[0] = Byte(0xC0 | (c >> 6));
          o[1] = Byte(0x80 | (c & 0x3F));
          break;
        case 3:
          o[0] = Byte(0xE0 | (c >> 12));
          o[1] = Byte(0x80 | ((c >> 6) & 0x3F));
          o[2] = Byte(0x80 | (c & 0x3F));
          break;
        default:
          o[0] = Byte(0xF0 | (c >> 18));
          o[1] = Byte(0x80 | ((c >> 12) & 0x3F));
          o[2] = Byte(0x80 | ((c >> 6) & 0x3F));
          o[3] = Byte(0x80 | (c & 0x3F));
          break;
      }
    }
    count += len;
  }
  return count > INT_MAX ? 0 : static_cast<int>(count);
}

}  // namespace ka_codepage
