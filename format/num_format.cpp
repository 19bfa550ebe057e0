// Number and mask formatting: NumFormat and MaskStr of both string classes,
// written once over the number traits (format/number_traits.h).
#include <kalbor/format.h>
#include <kalbor/strings.h>

#include <charconv>
#include <cmath>
#include <cstring>

#include "format/number_traits.h"

namespace ka_detail {

void PrintFixedRounded(double value, int decimals, Ka_AString& out) {
  // Every decimal of a double past the 1074th is 0: those are left to the
  // caller's zero padding.
  constexpr int kExactDecimals = 1074;
  char text[1 + 309 + 1 + kExactDecimals + 8];
  const int precision = decimals < kExactDecimals ? decimals : kExactDecimals;
  const std::to_chars_result r = std::to_chars(text, text + sizeof(text), value, std::chars_format::fixed, precision);
  out.Set(text, r.ec == std::errc() ? static_cast<int>(r.ptr - text) : 0);
}

namespace {

template <class S>
struct Ka_NumFormatOps {
  typedef typename S::Traits::Char Char;
  typedef Ka_NumberTraits<Char> Nt;

  static int NumFormat(S& s, double value, int decimals) {
    if (decimals < 0) {
      // Scaled down one decade per step, as many steps as asked; once the
      // value is 0 or not finite, further steps change nothing.
      for (unsigned int steps = 0u - static_cast<unsigned int>(decimals); steps > 0; --steps) {
        if (value == 0 || !std::isfinite(value)) break;
        value *= 0.1;
      }
      decimals = 0;
    }
    if (decimals > KA_FORMAT_MAX_FIELD) decimals = KA_FORMAT_MAX_FIELD;
    Ka_AString printed;
    Nt::PrintFixed(value, decimals, printed);
    const char* const text = printed;
    const int length = printed.GetLength();
    int dot = 0;
    while (dot < length && text[dot] != '.') ++dot;

    Ka_AString grouped;
    // The integer part with at most one "," per digit, then the fraction.
    char* out = grouped.GetSafeBuffer(2 * dot + 1 + (decimals > 0 ? decimals + 2 : 0));
    if (out == nullptr) return s.GetLength();
    int n = 0;
    if (dot == 0) {
      out[n++] = '0';
    } else {
      int digits = 0;
      for (int i = 0; i < dot; ++i) digits += text[i] >= '0' && text[i] <= '9';
      for (int i = 0, seen = 0; i < dot; ++i) {
        const bool digit = text[i] >= '0' && text[i] <= '9';
        if (digit && seen > 0 && (digits - seen) % 3 == 0) out[n++] = ',';
        seen += digit;
        out[n++] = text[i];
      }
    }
    if (decimals > 0) {
      out[n++] = '.';
      if (dot < length) {
        int i = dot + 1;
        for (; i < length && i <= dot + decimals; ++i) out[n++] = text[i];
        for (; i <= dot + decimals; ++i) out[n++] = '0';
      } else {
        // A printed text without a point gets one zero more than asked
        // (deliberate): "inf" with 2 decimals is "inf.000".
        for (int i = 0; i <= decimals; ++i) out[n++] = '0';
      }
    }
    out[n] = 0;
    grouped.FreeExtra(n);
    Nt::Store(s, grouped);
    return s.GetLength();
  }

  static int MaskStr(S& s, const S& value, const S& mask) {
    s.Set(mask);
    const int length = s.GetLength();
    if (length == 0) return 0;
    Char* const text = s.GetSafeBuffer(-1);  // made private, even with no "@"
    if (text == nullptr) return s.GetLength();
    const Char* const fill = value;
    const int available = value.GetLength();
    int next = 0;
    for (int i = 0; i < length; ++i)
      if (text[i] == Char('@')) text[i] = next < available ? fill[next++] : Char(' ');
    return length;
  }
};

}  // namespace
}  // namespace ka_detail

// The second argument is accepted and ignored (deliberate).
int Ka_AString::NumFormat(double value, int, int decimals) {
  return ka_detail::Ka_NumFormatOps<Ka_AString>::NumFormat(*this, value, decimals);
}
int Ka_AString::MaskStr(Ka_AString value, Ka_AString mask) {
  return ka_detail::Ka_NumFormatOps<Ka_AString>::MaskStr(*this, value, mask);
}
int Ka_WString::NumFormat(double value, int, int decimals) {
  return ka_detail::Ka_NumFormatOps<Ka_WString>::NumFormat(*this, value, decimals);
}
int Ka_WString::MaskStr(Ka_WString value, Ka_WString mask) {
  return ka_detail::Ka_NumFormatOps<Ka_WString>::MaskStr(*this, value, mask);
}
