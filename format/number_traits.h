// What the number members of the two string classes do differently
// (internal): Set, ToInteger, ToDouble, IsString and NumFormat are written
// once (strings/number_ops.h, format/num_format.cpp) over these traits.
// Both specialisations have the same members:
//   kExponentPrecision  the precision of Set(double)'s exponent form: 14
//                       narrow, 15 wide (deliberate)
//   IsTrue(s)           s starts with "true" in any case (ka_strnicmpA / WA)
//   ToNarrow(s, temp)   s as narrow text: itself, or converted through code
//                       page 0 into temp
//   ToWide(s, temp)     s as wide text, the same way
//   FindBrace(s, pos)   ka_findbraceA / ka_findbraceW
//   PrintFixed(v, n, out)  out = v with n decimals: narrow correctly rounded
//                       (the platform's "%.*lf"), wide through the library's
//                       own Ka_AString::Format("%.*lf") with its digits
//   Store(s, text)      s = the narrow text: a copy, or converted through
//                       code page 0
#ifndef KALBOR_FORMAT_NUMBER_TRAITS_H
#define KALBOR_FORMAT_NUMBER_TRAITS_H

#include <kalbor/cstr.h>
#include <kalbor/strings.h>

namespace ka_detail {

// "%.*lf" of value with decimals places, correctly rounded and independent
// of the locale: "inf", "-inf", "nan" or "-nan" for what is not finite.
void PrintFixedRounded(double value, int decimals, Ka_AString& out);

template <class C>
struct Ka_NumberTraits;

template <>
struct Ka_NumberTraits<char> {
  static constexpr int kExponentPrecision = 14;
  static bool IsTrue(const char* s) { return ka_strnicmpA(s, "true", 4) == 0; }
  static const char* ToNarrow(const char* s, Ka_AString&) { return s; }
  static const ka_wchar* ToWide(const char* s, Ka_WString& temp) {
    temp.Set(s, -1, 0);
    return temp;
  }
  static int FindBrace(const char* s, int pos) { return ka_findbraceA(s, pos); }
  static void PrintFixed(double value, int decimals, Ka_AString& out) { PrintFixedRounded(value, decimals, out); }
  static void Store(Ka_AString& s, const Ka_AString& text) { s.Set(text, text.GetLength()); }
};

template <>
struct Ka_NumberTraits<ka_wchar> {
  static constexpr int kExponentPrecision = 15;
  static bool IsTrue(const ka_wchar* s) { return ka_strnicmpWA(s, "true", 4) == 0; }
  static const char* ToNarrow(const ka_wchar* s, Ka_AString& temp) {
    temp.Set(s, -1, 0);
    return temp;
  }
  static const ka_wchar* ToWide(const ka_wchar* s, Ka_WString&) { return s; }
  static int FindBrace(const ka_wchar* s, int pos) { return ka_findbraceW(s, pos); }
  static void PrintFixed(double value, int decimals, Ka_AString& out) { out.Format("%.*lf", decimals, value); }
  static void Store(Ka_WString& s, const Ka_AString& text) { s.Set(text, -1, 0); }
};

}  // namespace ka_detail

#endif  // KALBOR_FORMAT_NUMBER_TRAITS_H
