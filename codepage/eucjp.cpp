// 51932, EUC-JP: ASCII; JIS X 0208 in 0xA1-0xFE pairs, with the repertoire
// that 932 places in those rows (its IBM extensions go out as their
// NEC-selected forms); half-width katakana after 0x8E; JIS X 0212
// after 0x8F, as Windows' 20932 maps it (its user-defined rows excepted).
// A multi-byte sequence is taken whole when enough non-zero bytes follow its
// first byte (one after 0x8E and 0xA1-0xFE, two after 0x8F) and gives U+30FB,
// as 932 does, when it names no character; a first byte without enough bytes
// after it, and the bytes 0x80-0x8D, 0x90-0xA0 and 0xFF, give U+30FB alone.
// Encoding prefers an exact mapping in the standard JIS X 0208 rows, then an
// exact JIS X 0212 one, then 932's vendor rows (NEC row 13, the NEC-selected
// IBM extensions in rows 89-92), then 932's best fit; '?' for the rest.
#include "codepage/converters.h"
#include "codepage/tables.h"

namespace ka_codepage {

int EucJpToWide(const unsigned char* src, size_t n, ka_wchar* dst, int dstSize) {
  const DbcsTable& t932 = Dbcs(kCp932);
  const DbcsTable& t0212 = Dbcs(kJisX0212);
  const ka_wchar invalid = Wide(t932.defaultUnit);
  Sink<ka_wchar> out(dst, dstSize);
  const unsigned char* p = src;
  const unsigned char* const end = src + n;
  while (p < end) {
    const unsigned char b = *p;
    const size_t left = static_cast<size_t>(end - p);
    ka_wchar u = invalid;
    size_t used = 1;
    if (b < 0x80) {
      u = Wide(b);
    } else if (b == 0x8E) {
      if (left > 1 && p[1] != 0) {
        if (p[1] >= 0xA1 && p[1] <= 0xDF) u = Wide(0xFF61 + (p[1] - 0xA1));
        used = 2;
      }
    } else if (b == 0x8F) {
      if (left > 2 && p[1] != 0 && p[2] != 0) {
        u = Wide(DbcsDecodePair(t0212, p[1], p[2]));  // rows and trails outside 0xA1-0xFE hold nothing
        used = 3;
      }
    } else if (b >= 0xA1 && b <= 0xFE) {
      if (left > 1 && p[1] != 0) {
        if (p[1] >= 0xA1 && p[1] <= 0xFE) {
          unsigned char s1, s2;
          JisToSjis(b & 0x7F, p[1] & 0x7F, &s1, &s2);
          u = Wide(DbcsDecodePair(t932, s1, s2));
        }
        used = 2;
      }
    }
    if (!out.Put(u)) return 0;
    p += used;
  }
  return out.Result();
}

int WideToEucJp(const ka_wchar* src, size_t n, char* dst, int dstSize) {
  const DbcsTable& t932 = Dbcs(kCp932);
  const DbcsEncoder& e932 = Encoder(kCp932);
  const DbcsEncoder& e0212 = Encoder(kJisX0212);
  Sink<char> out(dst, dstSize);
  for (size_t i = 0; i < n; ++i) {
    const uint16_t u = Unit(src[i]);
    bool ok;
    unsigned char j1 = 0, j2 = 0;
    if (u < 0x80) {
      ok = out.Put(Byte(u));
    } else if (u >= 0xFF61 && u <= 0xFF9F) {
      ok = out.Put(Byte(0x8E), Byte(u - 0xFEC0));
    } else {
      const uint16_t c = Cp932InJisRows(u, DbcsEncode(e932, u));
      const bool jis = c >= 0x100 && SjisToJis(c >> 8, c & 0xFF, &j1, &j2);
      const bool exact = jis && DbcsDecodePair(t932, c >> 8, c & 0xFF) == u;
      // 932's vendor rows: NEC row 13 and the NEC-selected IBM extensions.
      const bool vendor = j1 == 0x2D || (j1 >= 0x79 && j1 <= 0x7C);
      uint16_t x;
      if (exact && !vendor) {
        ok = out.Put(Byte(j1 | 0x80), Byte(j2 | 0x80));
      } else if ((x = DbcsEncode(e0212, u)) != 0) {
        ok = out.Put(Byte(0x8F), Byte(x >> 8), Byte(x & 0xFF));
      } else if (jis) {
        ok = out.Put(Byte(j1 | 0x80), Byte(j2 | 0x80));  // a vendor row, or 932's best fit
      } else if (c >= 0xA1 && c <= 0xDF) {
        ok = out.Put(Byte(0x8E), Byte(c));
      } else {
        ok = out.Put(Byte((c != 0 && c < 0x80) ? c : kDefaultByte));
      }
    }
    if (!ok) return 0;
  }
  return out.Result();
}

}  // namespace ka_codepage
