// The 7-bit stateful code pages, built on the repertoires of the double-byte
// pages:
//  - 50220, ISO-2022-JP (RFC 1468): ASCII, and the JIS X 0208 rows of 932
//    (row/cell pairs converted to Shift-JIS and looked up in 932's table;
//    IBM extensions go out as their NEC-selected forms in rows 89-92).
//  - 50225, ISO-2022-KR (RFC 1557): ASCII, and KS X 1001 as 949 holds it
//    (both bytes 0xA1-0xFE), shifted in with SO and out with SI.
//  - 52936, HZ-GB-2312 (RFC 1843): ASCII, and GB 2312 as 936 holds it, between
//    "~{" and "~}".
// Decoding is lenient: an escape sequence it does not know passes through as
// its bytes, controls and spaces are themselves in every mode, a byte
// 0x80-0xFF or an incomplete pair gives the default unit of the underlying
// page (U+30FB for 50220, '?' for the others). Encoding writes only the
// sequences above and leaves the text in ASCII; a unit the repertoire cannot
// hold becomes '?'.
#include "codepage/converters.h"
#include "codepage/tables.h"

namespace ka_codepage {
namespace {

const unsigned char kEsc = 0x1B, kSo = 0x0E, kSi = 0x0F;
const char kToJis[] = "\x1B$B", kToAscii[] = "\x1B(B", kKsc[] = "\x1B$)C";

inline bool Graphic(unsigned b) { return b >= 0x21 && b <= 0x7E; }

// Whether the bytes at p (p < end) start with the n bytes of seq.
inline bool StartsWith(const unsigned char* p, const unsigned char* end, const char* seq, size_t n) {
  if (static_cast<size_t>(end - p) < n) return false;
  for (size_t i = 0; i < n; ++i)
    if (p[i] != static_cast<unsigned char>(seq[i])) return false;
  return true;
}

// The ASCII byte that unit u goes out as when its code c (0 for u < 0x80)
// is not a pair: u itself, a best-fit byte below 0x80, or '?'.
inline unsigned char AsciiOf(uint16_t u, uint16_t c) {
  if (u < 0x80) return static_cast<unsigned char>(u);
  return (c != 0 && c < 0x80) ? static_cast<unsigned char>(c) : kDefaultByte;
}

// How unit u goes out in 50220: as a JIS pair when its 932 code lies in the
// JIS X 0208 rows, else as one ASCII byte (itself, a best-fit byte, or '?').
struct JisCode {
  unsigned char j1, j2;  // a JIS pair when j1 != 0
  unsigned char ascii;   // else this ASCII byte
};
JisCode ToJis(const DbcsEncoder& e932, uint16_t u) {
  JisCode r = {0, 0, 0};
  // Half-width katakana go out as their full-width forms: the JIS X 0208
  // rows hold only those.
  if (u >= 0xFF61 && u <= 0xFF9F) u = Unit(FullwidthKatakana(Wide(u)));
  if (u < 0x80) {
    r.ascii = static_cast<unsigned char>(u);
    return r;
  }
  uint16_t c = DbcsEncode(e932, u);
  if (c >= 0xA1 && c <= 0xDF) c = DbcsEncode(e932, Unit(FullwidthKatakana(Wide(0xFF61 + (c - 0xA1)))));
  c = Cp932InJisRows(u, c);
  if (c >= 0x100 && SjisToJis(c >> 8, c & 0xFF, &r.j1, &r.j2)) return r;
  r.j1 = 0;
  r.ascii = (c != 0 && c < 0x80) ? static_cast<unsigned char>(c) : kDefaultByte;
  return r;
}

}  // namespace

// ---- 50220 ISO-2022-JP --------------------------------------------------------

int Iso2022JpToWide(const unsigned char* src, size_t n, ka_wchar* dst, int dstSize) {
  enum Mode { kAscii, kKana, kJis } mode = kAscii;
  bool shifted = false;  // SO: half-width katakana until SI
  const DbcsTable& t932 = Dbcs(kCp932);
  Sink<ka_wchar> out(dst, dstSize);
  const unsigned char* p = src;
  const unsigned char* const end = src + n;
  while (p < end) {
    const unsigned char b = *p;
    if (b == kEsc) {
      if (StartsWith(p, end, "\x1B(B", 3) || StartsWith(p, end, "\x1B(J", 3)) {
        mode = kAscii;  // ASCII, or JIS X 0201 Roman read as ASCII as 932 reads it
        p += 3;
        continue;
      }
      if (StartsWith(p, end, "\x1B(I", 3)) {
        mode = kKana;
        p += 3;
        continue;
      }
      if (StartsWith(p, end, "\x1B$@", 3) || StartsWith(p, end, "\x1B$B", 3)) {
        mode = kJis;
        p += 3;
        continue;
      }
    } else if (b == kSo || b == kSi) {
      shifted = b == kSo;
      ++p;
      continue;
    }
    ka_wchar u;
    size_t used = 1;
    if (b >= 0x80) {
      u = Wide(t932.defaultUnit);
    } else if (!Graphic(b) || (mode == kAscii && !shifted)) {
      u = Wide(b);
    } else if (shifted || mode == kKana) {
      u = Wide(b <= 0x5F ? 0xFF40 + b : t932.defaultUnit);
    } else if (end - p > 1 && Graphic(p[1])) {
      unsigned char s1, s2;
      JisToSjis(b, p[1], &s1, &s2);
      u = Wide(DbcsDecodePair(t932, s1, s2));
      used = 2;
    } else {
      u = Wide(t932.defaultUnit);
    }
    if (!out.Put(u)) return 0;
    p += used;
  }
  return out.Result();
}

int WideToIso2022Jp(const ka_wchar* src, size_t n, char* dst, int dstSize) {
  const DbcsEncoder& e932 = Encoder(kCp932);
  Sink<char> out(dst, dstSize);
  bool jis = false;
  for (size_t i = 0; i < n; ++i) {
    const JisCode c = ToJis(e932, Unit(src[i]));
    bool ok;
    if (c.j1 != 0) {
      ok = (jis || out.Put(kToJis, 3)) && out.Put(Byte(c.j1), Byte(c.j2));
      jis = true;
    } else {
      ok = (!jis || out.Put(kToAscii, 3)) && out.Put(Byte(c.ascii));
      jis = false;
    }
    if (!ok) return 0;
  }
  if (jis && !out.Put(kToAscii, 3)) return 0;
  return out.Result();
}

// ---- 50225 ISO-2022-KR --------------------------------------------------------

int Iso2022KrToWide(const unsigned char* src, size_t n, ka_wchar* dst, int dstSize) {
  const DbcsTable& t949 = Dbcs(kCp949);
  Sink<ka_wchar> out(dst, dstSize);
  bool shifted = false;
  const unsigned char* p = src;
  const unsigned char* const end = src + n;
  while (p < end) {
    const unsigned char b = *p;
    if (b == kEsc && StartsWith(p, end, "\x1B$)C", 4)) {
      p += 4;  // the designation of KS X 1001; SO works with or without it
      continue;
    }
    if (b == kSo || b == kSi) {
      shifted = b == kSo;
      ++p;
      continue;
    }
    ka_wchar u;
    size_t used = 1;
    if (b >= 0x80) {
      u = Wide(t949.defaultUnit);
    } else if (!shifted || !Graphic(b)) {
      u = Wide(b);
    } else if (end - p > 1 && Graphic(p[1])) {
      u = Wide(DbcsDecodePair(t949, b | 0x80, p[1] | 0x80));
      used = 2;
    } else {
      u = Wide(t949.defaultUnit);
    }
    if (!out.Put(u)) return 0;
    p += used;
  }
  return out.Result();
}

int WideToIso2022Kr(const ka_wchar* src, size_t n, char* dst, int dstSize) {
  const DbcsEncoder& e949 = Encoder(kCp949);
  Sink<char> out(dst, dstSize);
  bool designated = false, shifted = false;
  for (size_t i = 0; i < n; ++i) {
    const uint16_t u = Unit(src[i]);
    const uint16_t c = u < 0x80 ? 0 : DbcsEncode(e949, u);
    bool ok;
    if (c >= 0xA1A1 && (c & 0xFF) >= 0xA1) {
      // The designation goes out once, before the first SO.
      ok = (designated || out.Put(kKsc, 4)) && (shifted || out.Put(Byte(kSo))) &&
           out.Put(Byte((c >> 8) & 0x7F), Byte(c & 0x7F));
      designated = shifted = true;
    } else {
      ok = (!shifted || out.Put(Byte(kSi))) && out.Put(Byte(AsciiOf(u, c)));
      shifted = false;
    }
    if (!ok) return 0;
  }
  if (shifted && !out.Put(Byte(kSi))) return 0;
  return out.Result();
}

// ---- 52936 HZ-GB-2312 ---------------------------------------------------------

int HzToWide(const unsigned char* src, size_t n, ka_wchar* dst, int dstSize) {
  const DbcsTable& t936 = Dbcs(kCp936);
  Sink<ka_wchar> out(dst, dstSize);
  bool gb = false;
  const unsigned char* p = src;
  const unsigned char* const end = src + n;
  while (p < end) {
    const unsigned char b = *p;
    if (b == '~' && end - p > 1) {
      const unsigned char next = p[1];
      if (gb && next == '}') {
        gb = false;
        p += 2;
        continue;
      }
      if (!gb && (next == '{' || next == '\n' || next == '~')) {
        gb = next == '{';
        p += 2;
        if (next == '~' && !out.Put(Wide('~'))) return 0;
        continue;  // "~\n" continues the line: nothing
      }
    }
    ka_wchar u;
    size_t used = 1;
    if (b >= 0x80) {
      u = Wide(t936.defaultUnit);
    } else if (!gb || !Graphic(b)) {
      u = Wide(b);  // in ASCII mode any other '~' is itself
    } else if (end - p > 1 && Graphic(p[1])) {
      u = Wide(DbcsDecodePair(t936, b | 0x80, p[1] | 0x80));
      used = 2;
    } else {
      u = Wide(t936.defaultUnit);
    }
    if (!out.Put(u)) return 0;
    p += used;
  }
  return out.Result();
}

int WideToHz(const ka_wchar* src, size_t n, char* dst, int dstSize) {
  const DbcsEncoder& e936 = Encoder(kCp936);
  Sink<char> out(dst, dstSize);
  bool gb = false;
  for (size_t i = 0; i < n; ++i) {
    const uint16_t u = Unit(src[i]);
    const uint16_t c = u < 0x80 ? 0 : DbcsEncode(e936, u);
    bool ok;
    if (c >= 0xA1A1 && (c & 0xFF) >= 0xA1) {
      ok = (gb || out.Put('~', '{')) && out.Put(Byte((c >> 8) & 0x7F), Byte(c & 0x7F));
      gb = true;
    } else {
      const unsigned char a = AsciiOf(u, c);
      ok = (!gb || out.Put('~', '}')) && (a == '~' ? out.Put('~', '~') : out.Put(Byte(a)));
      gb = false;
    }
    if (!ok) return 0;
  }
  if (gb && !out.Put('~', '}')) return 0;
  return out.Result();
}

}  // namespace ka_codepage
