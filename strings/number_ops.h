// Number conversion and classification, shared by Ka_AString and Ka_WString
// (internal). What differs between the widths is in ka_detail::
// Ka_NumberTraits (format/number_traits.h).
#ifndef KALBOR_STRINGS_NUMBER_OPS_H
#define KALBOR_STRINGS_NUMBER_OPS_H

#include <kalbor/strings.h>
#include <kalbor/util.h>

#include <cstdint>
#include <cstring>

#include "format/conversions.h"
#include "format/number_traits.h"

namespace ka_detail {

// The platform's atol, locale-independent: ASCII white space, an optional
// sign, decimal digits; saturated to the int range; 0 for null or no digit.
int ParseLong(const char* s);
// The platform's wcstod, locale-independent: ASCII white space, an optional
// sign, digits with an optional point (one digit at least), an optional
// exponent; correctly rounded, +-infinity above the double range, +-0 below
// it; 0.0 for null or no number.
double ParseDouble(const ka_wchar* s);

// "00" to "99", for writing decimal digits two at a time.
struct Ka_DigitPairs {
  char text[200];
  constexpr Ka_DigitPairs() : text() {
    for (int i = 0; i < 100; ++i) {
      text[2 * i] = static_cast<char>('0' + i / 10);
      text[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
  }
};
inline constexpr Ka_DigitPairs kDigitPairs{};

// The text of a number, in ASCII.
struct Ka_NumberText {
  static constexpr int kRoom = 64;  // Set(double) writes at most 38 characters
  char text[kRoom];
  int size = 0;
  void Put(char c) {
    if (size < kRoom) text[size++] = c;
  }
  void Fill(char c, int n) {
    for (int i = 0; i < n; ++i) Put(c);
  }
  int Size() const { return size; }
  char At(int i) const { return text[i]; }
  void Truncate(int n) { size = n; }
};

template <class S>
struct Ka_NumberOps {
  typedef typename S::Traits::Char Char;
  typedef Ka_NumberTraits<Char> Nt;

  // The decimal text of value, two digits per division (the format engine's
  // digits, with half the divisions in a row).
  static void IntegerText(int value, Ka_NumberText& out) {
    uint32_t m = Magnitude(static_cast<uint32_t>(value));
    char buffer[12];  // a sign and ten digits
    char* const end = buffer + sizeof(buffer);
    char* p = end;
    for (; m >= 100; m /= 100) {
      p -= 2;
      std::memcpy(p, kDigitPairs.text + 2 * (m % 100), 2);
    }
    if (m >= 10) {
      p -= 2;
      std::memcpy(p, kDigitPairs.text + 2 * m, 2);
    } else {
      *--p = static_cast<char>('0' + m);
    }
    if (value < 0) *--p = '-';
    for (; p < end; ++p) out.Put(*p);
  }

  // Set(double)'s text: "0" for either zero; fixed notation with 15 decimals
  // and no trailing zeros for binary exponents -24..64; the exponent form
  // otherwise.
  static void DoubleText(double value, Ka_NumberText& out) {
    if (value == 0) {
      out.Put('0');
      return;
    }
    Ka_NumberText body;
    const int exponent = ka_dblexponent(value);
    bool negative;
    if (exponent >= -24 && exponent <= 64) {
      negative = FloatText(body, value, 'f', 15, true, false);
      int end = body.Size();
      while (end > 0 && body.At(end - 1) == '0') --end;
      if (end > 0 && body.At(end - 1) == '.') --end;
      body.Truncate(end);
    } else {
      negative = FloatText(body, value, 'e', Nt::kExponentPrecision, true, false);
    }
    if (negative) out.Put('-');
    for (int i = 0; i < body.Size(); ++i) out.Put(body.At(i));
  }

  // s = the text, sized to it.
  static void Store(S& s, const Ka_NumberText& number) {
    Char* const buffer = s.GetSafeBuffer(number.size);
    if (buffer == nullptr) return;
    for (int i = 0; i < number.size; ++i) buffer[i] = static_cast<Char>(number.text[i]);
  }

  static void Append(S& s, const Ka_NumberText& number) {
    Char text[Ka_NumberText::kRoom + 1];
    for (int i = 0; i < number.size; ++i) text[i] = static_cast<Char>(number.text[i]);
    text[number.size] = 0;
    s += static_cast<const Char*>(text);
  }

  static int ToInteger(const S& s) {
    const int length = s.GetLength();
    if (length < 1) return 0;
    const Char* const text = s;
    if (length == 4 && Nt::IsTrue(text)) return 1;
    Ka_AString narrow;
    return ParseLong(Nt::ToNarrow(text, narrow));
  }

  static double ToDouble(const S& s) {
    if (s.GetLength() < 1) return 0.0;
    Ka_WString wide;
    return ParseDouble(Nt::ToWide(s, wide));
  }

  static bool IsDigit(Char c) { return c >= Char('0') && c <= Char('9'); }

  // Deliberately loose: a sign alone, a lone point or several points pass.
  static int IsNumber(const S& s) {
    const int length = s.GetLength();
    if (length < 1) return 0;
    const Char* const text = s;
    for (int i = 0; i < length; ++i) {
      const Char c = text[i];
      if (c == 0) return 1;
      if (i == 0 && (c == Char('-') || c == Char('+'))) continue;
      if (c != Char('.') && !IsDigit(c)) return 0;
    }
    return 1;
  }

  static int IsString(const S& s) {
    const int length = s.GetLength();
    if (length < 1) return 0;
    const Char* const text = s;
    if (text[0] != Char('"') && text[0] != Char('\'')) return 0;
    const int match = Nt::FindBrace(text, 0);
    if (match < 1) return 1;  // an opening quote without its closer counts (deliberate)
    return match == length - 1 ? 1 : 0;
  }

  // A character whose low 8 bits are 128 or more passes, as the 16-bit
  // character stands (deliberate: 0x00E9 passes, 0x4E00 and 0x0141 do not).
  static int IsName(const S& s) {
    const int length = s.GetLength();
    if (length < 1) return 0;
    const Char* const text = s;
    if (IsDigit(text[0])) return 0;
    for (int i = 0; i < length; ++i) {
      const Char c = text[i];
      if (c == 0) return 1;
      const bool letter = (c >= Char('A') && c <= Char('Z')) || (c >= Char('a') && c <= Char('z'));
      if (!letter && !IsDigit(c) && c != Char('_') && (static_cast<unsigned int>(c) & 0xFFu) < 0x80u) return 0;
    }
    return 1;
  }
};

}  // namespace ka_detail

#endif  // KALBOR_STRINGS_NUMBER_OPS_H
