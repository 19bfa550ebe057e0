// The texts of the format engine's number conversions (internal): integer
// digits and the layouts of the floating-point conversions e, E, f, g and G.
// They write ASCII characters into any sink with Put(char), Fill(char, n),
// Size(), At(i) and Truncate(n), so that the engine (which pads and stores
// the text) and the number members of the strings share them.
#ifndef KALBOR_FORMAT_CONVERSIONS_H
#define KALBOR_FORMAT_CONVERSIONS_H

#include <cstdint>

#include "format/float_digits.h"

namespace ka_detail {

// The largest text UnsignedDigits writes: 32-bit octal takes 11 digits.
constexpr int kMaxIntegerDigits = 11;

// Writes the digits of value in base 8, 10 or 16 backwards, ending just before
// end, and returns the first one. Octal and hexadecimal take 3 and 4 bits at a
// time, decimal divides by 10; 0 gives "0".
inline char* UnsignedDigits(uint32_t value, unsigned base, bool upper, char* end) {
  const char* const set = upper ? "0123456789ABCDEF" : "0123456789abcdef";
  char* p = end;
  do {
    if (base == 10) {
      *--p = set[value % 10];
      value /= 10;
    } else {
      const unsigned bits = base == 8 ? 3 : 4;
      *--p = set[value & (base - 1)];
      value >>= bits;
    }
  } while (value != 0);
  return p;
}

// The magnitude of a signed 32-bit value, the most negative one included.
inline uint32_t Magnitude(uint32_t bits) { return (bits & 0x80000000u) != 0 ? 0u - bits : bits; }

namespace float_layout {

inline char DigitAt(const Ka_FloatDigits& d, int i) { return i >= 0 && i < d.count ? d.digits[i] : '0'; }

// A decimal exponent of at least minDigits digits.
template <class Sink>
void PutExponent(Sink& out, int exponent, int minDigits) {
  char buffer[kMaxIntegerDigits];
  char* const end = buffer + kMaxIntegerDigits;
  char* p = UnsignedDigits(static_cast<uint32_t>(exponent < 0 ? -exponent : exponent), 10, false, end);
  out.Put(exponent < 0 ? '-' : '+');
  for (int n = static_cast<int>(end - p); n < minDigits; ++n) out.Put('0');
  for (; p < end; ++p) out.Put(*p);
}

template <class Sink>
void Fixed(Sink& out, double value, int precision, bool given, bool alt, bool* negative) {
  Ka_FloatDigits d;
  GenerateFloatDigits(value, 15, precision, false, &d);
  *negative = d.negative;
  const int start = out.Size();
  if (d.point > 0) {
    for (int i = 0; i < d.point; ++i) out.Put(DigitAt(d, i));
    if (precision > 0 || alt) out.Put('.');
    for (int i = 0; i < precision; ++i) out.Put(DigitAt(d, d.point + i));
  } else {
    out.Put('0');
    if (precision > 0) {
      out.Put('.');
      out.Fill('0', -d.point);
      // Below 0.1 one digit fewer follows the leading zeros (deliberate):
      // "%.3f" of 0.005 is "0.0050".
      const int taken = d.point < 0 ? precision - 1 : precision;
      for (int i = 0; i < taken; ++i) out.Put(DigitAt(d, i));
    } else if (alt) {
      out.Put('.');
    }
  }
  if (!given) {  // without a precision, trailing zeros and a bare point go (deliberate)
    int end = out.Size();
    while (end > start && out.At(end - 1) == '0') --end;
    if (end > start && out.At(end - 1) == '.') --end;
    out.Truncate(end);
  }
}

template <class Sink>
void Exponent(Sink& out, double value, char letter, int precision, bool alt, bool* negative) {
  Ka_FloatDigits d;
  GenerateFloatDigits(value, 14, precision, true, &d);
  *negative = d.negative;
  const int start = out.Size();
  out.Put(d.digits[0]);  // the generator leaves at least one digit in exponent mode
  if (precision > 0 || alt) out.Put('.');
  // The precision acts only through the cut-off and never pads (deliberate):
  // "%.2e" of 12345.0 is "1.2345e+04".
  for (int i = 1; i < d.count; ++i) out.Put(d.digits[i]);
  if (out.Size() - start >= 3 && out.At(start + 2) == '#') return;  // "1.#INF" has no exponent
  out.Put(letter);
  PutExponent(out, d.point - 1, 2);
}

template <class Sink>
void General(Sink& out, double value, char letter, int precision, bool alt, bool* negative) {
  Ka_FloatDigits d;
  GenerateFloatDigits(value, precision, precision, true, &d);
  *negative = d.negative;
  const int start = out.Size();
  int counted = d.count;  // trailing zero digits do not count
  while (counted > 0 && d.digits[counted - 1] == '0') --counted;
  if (d.point < -3 || (d.point >= 0 && d.point - counted > 4)) {
    // The exponent keeps only the digits it needs and the point stays even
    // without digits after it (deliberate): "1.e+8".
    out.Put(d.digits[0]);
    out.Put('.');
    for (int i = 1; i < counted; ++i) out.Put(d.digits[i]);
    out.Put(letter == 'G' ? 'E' : 'e');
    PutExponent(out, d.point - 1, 1);
  } else {
    if (d.point <= 0) {  // no leading zero (deliberate): ".25"
      out.Put('.');
      out.Fill('0', -d.point);
    }
    for (int i = 0; i < counted; ++i) {
      out.Put(d.digits[i]);
      if (i + 1 == d.point) out.Put('.');
    }
    if (counted < d.point) {
      out.Fill('0', d.point - counted);
      out.Put('.');
    }
    if (out.Size() > start && out.At(out.Size() - 1) == '.') out.Truncate(out.Size() - 1);
  }
  if (alt) {
    bool point = false;
    for (int i = start; i < out.Size() && !point; ++i) point = out.At(i) == '.';
    if (!point) out.Put('.');
  }
}

}  // namespace float_layout

// Writes the text of conversion letter ('e', 'E', 'f', 'g' or 'G') for
// value without its sign, and returns whether the value counts as negative.
// precision is the one given (given = true) or ignored (15 is used).
template <class Sink>
bool FloatText(Sink& out, double value, char letter, int precision, bool given, bool alt) {
  if (!given) precision = 15;
  bool negative = false;
  switch (letter) {
    case 'f':
      float_layout::Fixed(out, value, precision, given, alt, &negative);
      break;
    case 'e':
    case 'E':
      float_layout::Exponent(out, value, letter, precision, alt, &negative);
      break;
    default:
      float_layout::General(out, value, letter, precision > 0 ? precision : 1, alt, &negative);
      break;
  }
  return negative;
}

}  // namespace ka_detail

#endif  // KALBOR_FORMAT_CONVERSIONS_H
