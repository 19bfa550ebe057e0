// The escaping members shared by Ka_AString and Ka_WString (internal to the
// string classes): quoting, XML character data and URL percent-encoding.
//
// Ka_EscapeOps<S> is written once over Ka_EscapeTraits of S's character
// type; the two traits have the same members and hold everything in which
// the widths differ. It uses only the classes' public members: text goes in
// through GetSafeBuffer and the length is fixed with FreeExtra.
//
// Every member is one pass over the text (two for the encoders: count, then
// build). A decoder's argument may point into the string's own block: a
// second reference keeps that block alive while the string is rebuilt.
#ifndef KALBOR_STRINGS_ESCAPE_OPS_H
#define KALBOR_STRINGS_ESCAPE_OPS_H

#include <kalbor/codepage.h>
#include <kalbor/strings.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>

namespace ka_detail {

// The percent-encoding of bytes, shared by both widths (the wide EncodeUrl
// encodes the text's bytes in the locale code page).
Ka_AString EncodeUrlBytes(const Ka_AString& bytes);

// The rules of one width for escaping. Both specialisations have the same
// members:
//   UrlCode(c)       c's code in the "%" pair arithmetic
//   XmlHexDigit(c)   c's value as a hex digit of "&#x", or -1 (ends the number)
//   PutUnit(out, u)  writes the characters of a numeric entity's 16-bit value
//                    at out (room for 4) and returns how many
//   ToBytes(s)       the text whose bytes EncodeUrl encodes
//   FromBytes(a)     the encoded bytes as a string of this width
template <class C>
struct Ka_EscapeTraits;

template <>
struct Ka_EscapeTraits<char> {
  typedef Ka_AString String;
  // Narrow characters are signed: bytes 0x80-0xFF count below "A".
  static int UrlCode(char c) { return static_cast<signed char>(c); }
  static int XmlHexDigit(char c) {
    if (c >= '1' && c <= '8') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= '`' && c <= 'f') return c == '`' ? 9 : c - 'a' + 10;  // the backquote as 9 (deliberate)
    return -1;  // "0" and "9" end the number (deliberate)
  }
  static int PutUnit(char* out, uint16_t unit) {
    const ka_wchar u = static_cast<ka_wchar>(unit);
    char bytes[5];
    const int n = KaToAscii(bytes, 4, &u, 1, 0);
    if (n <= 0) return 0;
    std::memcpy(out, bytes, static_cast<size_t>(n));
    return n;
  }
  static const Ka_AString& ToBytes(const Ka_AString& s) { return s; }
  static Ka_AString FromBytes(const Ka_AString& a) { return a; }
};

template <>
struct Ka_EscapeTraits<ka_wchar> {
  typedef Ka_WString String;
  static int UrlCode(ka_wchar c) { return static_cast<int>(static_cast<uint16_t>(c)); }
  static int XmlHexDigit(ka_wchar c) {
    if (c >= '1' && c <= '8') return static_cast<int>(c - '0');
    if (c >= 'A' && c <= 'F') return static_cast<int>(c - 'A' + 10);
    if (c >= 'a' && c <= 'f') return static_cast<int>(c - 'a' + 10);
    return -1;  // "0" and "9" end the number (deliberate)
  }
  static int PutUnit(ka_wchar* out, uint16_t unit) {
    out[0] = static_cast<ka_wchar>(unit);
    return 1;
  }
  static Ka_AString ToBytes(const Ka_WString& s) { return Ka_AString(s, -1, 0); }
  static Ka_WString FromBytes(const Ka_AString& a) { return Ka_WString(a, -1, 0); }
};

// EncodeXml's entities, by character code (all below 64), and the
// characters each adds to the length. Blanks and line ends are escaped too,
// so that they survive attribute normalisation (deliberate).
struct Ka_XmlEntities {
  const char* text[64];
  unsigned char extra[64];
};
constexpr Ka_XmlEntities MakeXmlEntities() {
  const struct {
    char c;
    const char* entity;
  } map[] = {{'<', "&lt;"},   {'>', "&gt;"},   {'&', "&amp;"},   {'"', "&quot;"}, {'\'', "&apos;"},
             {'\t', "&#9;"}, {'\n', "&#10;"}, {'\r', "&#13;"}, {' ', "&#32;"}};
  Ka_XmlEntities t{};
  for (const auto& m : map) {
    int length = 0;
    while (m.entity[length] != 0) ++length;
    t.text[static_cast<int>(m.c)] = m.entity;
    t.extra[static_cast<int>(m.c)] = static_cast<unsigned char>(length - 1);
  }
  return t;
}
inline constexpr Ka_XmlEntities kXmlEntities = MakeXmlEntities();

template <class S>
struct Ka_EscapeOps {
  typedef typename S::Traits Tr;
  typedef typename Tr::Char Char;
  typedef Ka_EscapeTraits<Char> Esc;
  typedef typename std::make_unsigned<Char>::type Unsigned;

  static uint32_t Code(Char c) { return static_cast<Unsigned>(c); }
  static const Char* Text(const S& s) { return s; }

  // Copies the ASCII text t to out; returns the end.
  static Char* Put(Char* out, const char* t) {
    while (*t != 0) *out++ = static_cast<Char>(*t++);
    return out;
  }

  // A string of `size` characters to write into, or null when size is 0,
  // above Traits::kMaxLength or refused.
  static Char* NewText(S& result, int64_t size) {
    if (size <= 0 || size > Tr::kMaxLength) return nullptr;
    return result.GetSafeBuffer(static_cast<int>(size));
  }

  // ---- Quotes ----------------------------------------------------------------

  static S QuoteStr(const S& s, Char quote) {
    const int length = s.GetLength();
    if (length == 0) return s;  // no quotes around an empty string (deliberate)
    const Char q = quote == Char('\'') ? Char('\'') : Char('"');
    const Char* const p = Text(s);
    int64_t count = 0;
    for (int i = 0; i < length; ++i) count += p[i] == q || p[i] == Char('\\');
    S result;
    Char* out = NewText(result, length + count + 2);
    if (out == nullptr) return result;
    *out++ = q;
    if (count == 0) {
      std::memcpy(out, p, static_cast<size_t>(length) * sizeof(Char));
      out += length;
    } else {
      for (int i = 0; i < length; ++i) {
        if (p[i] == q || p[i] == Char('\\')) *out++ = Char('\\');
        *out++ = p[i];
      }
    }
    *out = q;
    return result;
  }

  static S UnQuoteStr(const S& s) {
    const int length = s.GetLength();
    const Char* const p = Text(s);
    if (length == 0 || (p[0] != Char('"') && p[0] != Char('\''))) return s;
    const Char q = p[0];
    S result;
    Char* const out = NewText(result, length - 1);
    if (out == nullptr) return result;
    int w = 0;
    for (int i = 1; i < length; ++i) {
      if (p[i] == Char('\\')) {
        // The backslash goes; the character after it stays, whatever it is
        // (after a final backslash, that is the terminator).
        if (++i < length) out[w++] = p[i];
      } else if (i == length - 1 && p[i] == q) {
        break;
      } else {
        out[w++] = p[i];
      }
    }
    out[w] = 0;
    result.FreeExtra(-1);
    return result;
  }

  // ---- XML ---------------------------------------------------------------------

  static S EncodeXml(const S& s) {
    const int length = s.GetLength();
    const Char* const p = Text(s);
    int64_t extra = 0;
    for (int i = 0; i < length; ++i) extra += Code(p[i]) < 64 ? kXmlEntities.extra[Code(p[i])] : 0;
    if (extra == 0) return s;
    S result;
    Char* out = NewText(result, length + extra);
    if (out == nullptr) return result;
    for (int i = 0; i < length; ++i) {
      const char* const e = Code(p[i]) < 64 ? kXmlEntities.text[Code(p[i])] : nullptr;
      if (e == nullptr)
        *out++ = p[i];
      else
        out = Put(out, e);
    }
    return result;
  }

  // The position of the first c in text[from, n), or n.
  static int Next(const Char* text, int from, int n, Char c) {
    // The ';' of an entity is usually a few characters away: look at those
    // before calling the library's search.
    const int near = from + 8 < n ? from + 8 : n;
    for (; from < near; ++from)
      if (text[from] == c) return from;
    if (from == n) return n;
    const Char* const at = std::char_traits<Char>::find(text + from, static_cast<size_t>(n - from), c);
    return at != nullptr ? static_cast<int>(at - text) : n;
  }

  // Whether the m characters of the ASCII word w follow at text[i] (within n).
  static bool Follows(const Char* text, int n, int i, const char* w, int m) {
    if (n - i < m) return false;
    for (int k = 0; k < m; ++k)
      if (text[i + k] != Char(w[k])) return false;
    return true;
  }

  // The low 16 bits of the decimal number at text[from, to) as atoi reads it:
  // blanks (space, tab, line feed, vertical tab, form feed, carriage return),
  // an optional sign, then digits; no digits give 0.
  static uint16_t Decimal(const Char* text, int from, int to) {
    int i = from;
    while (i < to && (text[i] == Char(' ') || (text[i] >= Char('\t') && text[i] <= Char('\r')))) ++i;
    bool negative = false;
    if (i < to && (text[i] == Char('-') || text[i] == Char('+'))) negative = text[i++] == Char('-');
    uint32_t value = 0;  // wraps: only the low 16 bits count
    for (; i < to && text[i] >= Char('0') && text[i] <= Char('9'); ++i) value = value * 10 + (Code(text[i]) - '0');
    return static_cast<uint16_t>(negative ? 0u - value : value);
  }

  static uint16_t Hex(const Char* text, int from, int to) {
    uint32_t value = 0;
    for (int i = from; i < to; ++i) {
      const int digit = Esc::XmlHexDigit(text[i]);
      if (digit < 0) break;
      value = (value << 4 | static_cast<uint32_t>(digit)) & 0xFFFF;
    }
    return static_cast<uint16_t>(value);
  }

  // The characters of numeric entities below 128, converted once per decoding.
  struct UnitCache {
    signed char count[128];
    Char chars[128][4];
    UnitCache() { std::memset(count, -1, sizeof count); }
    int Put(Char* out, uint16_t unit) {
      if (unit >= 128) return Esc::PutUnit(out, unit);
      if (count[unit] < 0) count[unit] = static_cast<signed char>(Esc::PutUnit(chars[unit], unit));
      std::memcpy(out, chars[unit], static_cast<size_t>(count[unit]) * sizeof(Char));
      return count[unit];
    }
  };

  // The n >= 1 characters of text, decoded, into s.
  static void DecodeXml(S& s, const Char* text, int n) {
    const S keep(s);  // text may lie in s's block
    s.Empty();
    Char* const out = s.GetSafeBuffer(n);  // entities never grow: "&#;" (3) is the shortest, giving one
    if (out == nullptr) return;
    UnitCache units;
    int w = 0;
    int semicolon = -1;  // the first ';' at or after the last search start; n when there is none
    for (int i = 0; i < n;) {
      if (text[i] != Char('&')) {
        out[w++] = text[i++];
        continue;
      }
      if (Follows(text, n, i + 1, "lt;", 3)) {
        out[w++] = Char('<');
        i += 4;
      } else if (Follows(text, n, i + 1, "gt;", 3)) {
        out[w++] = Char('>');
        i += 4;
      } else if (Follows(text, n, i + 1, "amp;", 4)) {
        out[w++] = Char('&');
        i += 5;
      } else if (Follows(text, n, i + 1, "quot;", 5)) {
        out[w++] = Char('"');
        i += 6;
      } else if (Follows(text, n, i + 1, "apos;", 5)) {
        out[w++] = Char('\'');
        i += 6;
      } else if (i + 1 < n && text[i + 1] == Char('#')) {
        // Searches start at increasing positions: a ';' found earlier is
        // still the first one until the search passes it.
        if (semicolon < i + 2) semicolon = Next(text, i + 2, n, Char(';'));
        if (semicolon == n) {  // no ';' after it: "&" is text
          out[w++] = Char('&');
          ++i;
          continue;
        }
        const bool hex = text[i + 2] == Char('x') || text[i + 2] == Char('X');
        const uint16_t unit = hex ? Hex(text, i + 3, semicolon) : Decimal(text, i + 2, semicolon);
        Char scratch[4];
        int m = units.Put(scratch, unit);
        if (m > n - w) m = n - w;  // never taken: an entity is at least as long as what it gives
        for (int k = 0; k < m; ++k) out[w++] = scratch[k];
        i = semicolon + 1;
      } else {  // an unknown entity: "&" and what follows are text
        out[w++] = Char('&');
        ++i;
      }
    }
    out[w] = 0;
    s.FreeExtra(-1);
  }

  // ---- URL ---------------------------------------------------------------------

  // Whether the character with this code is kept by EncodeUrl: "0" to ";",
  // "A" to "Z", "a" to "z" and $ _ . ! * ' ( ). "-" and "~" are not (deliberate).
  static bool UrlSafe(uint32_t code) {
    static const uint32_t kKept[4] = {0, 0x0FFF4792u, 0x87FFFFFEu, 0x07FFFFFEu};  // bit c of word c / 32
    return code < 128 && (kKept[code >> 5] >> (code & 31) & 1u) != 0;
  }

  static S EncodeUrl(const S& s) {
    const int length = s.GetLength();
    const Char* const p = Text(s);
    int i = 0;
    while (i < length && UrlSafe(Code(p[i]))) ++i;
    if (i == length) return s;
    return Esc::FromBytes(EncodeUrlBytes(Esc::ToBytes(s)));
  }

  static int UrlDigit(Char c) {
    const int code = Esc::UrlCode(c);
    return code < 'A' ? code - '0' : (code & ~0x20) - 55;
  }

  // The n >= 1 characters of text, decoded, into s.
  static void DecodeUrl(S& s, const Char* text, int n) {
    const S keep(s);  // text may lie in s's block
    s.Empty();
    Char* const out = s.GetSafeBuffer(n);
    if (out == nullptr) return;
    int w = 0;
    for (int i = 0; i < n;) {
      // Everything but "%" is copied, "+" included: it stays "+" (deliberate).
      if (text[i] != Char('%')) {
        out[w++] = text[i++];
        continue;
      }
      if (n - i >= 3) {
        // Any pair gives a byte: nothing is rejected (deliberate).
        const int value = UrlDigit(text[i + 1]) * 16 + UrlDigit(text[i + 2]);
        out[w++] = static_cast<Char>(static_cast<unsigned char>(static_cast<unsigned int>(value) & 0xFFu));
        i += 3;
      } else {  // fewer than two characters left: "%" is text
        out[w++] = Char('%');
        ++i;
      }
    }
    out[w] = 0;
    s.FreeExtra(-1);
  }

  // ---- The decoders' shared entry ------------------------------------------------

  static bool Holds(const Char* text, int n, Char c) {
    for (int i = 0; i < n; ++i)
      if (text[i] == c) return true;
    return false;
  }

  // s becomes the decoding of text by proper(text, n), or text itself when
  // trigger does not occur in it.
  template <class Proper>
  static void DecodeText(S& s, const Char* text, int n, Char trigger, Proper proper) {
    if (n < 0) n = Tr::Length(text);
    if (text == nullptr || n == 0) {
      s.Empty();
    } else if (!Holds(text, n, trigger)) {
      s.Set(text, n);
    } else {
      proper(text, n);
    }
  }

  template <class Proper>
  static void DecodeString(S& s, const S& text, Char trigger, Proper proper) {
    const int n = text.GetLength();
    if (n == 0) {
      s.Empty();
    } else if (!Holds(Text(text), n, trigger)) {
      s.Set(text);
    } else {
      proper(Text(text), n);
    }
  }
};

}  // namespace ka_detail

#endif  // KALBOR_STRINGS_ESCAPE_OPS_H
