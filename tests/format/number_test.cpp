// Numbers to text and back, the three classifiers, NumFormat and MaskStr,
// over both widths.
#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <random>
#include <tuple>

#include "format/format_support.h"

template <class S>
class Numbers : public ::testing::Test {};
TYPED_TEST_SUITE(Numbers, BothStrings);

TYPED_TEST(Numbers, IntegersAndDoublesToText) {
  // Digits go in pairs: odd and even counts.
  for (int v : {0, 7, -9, 10, 99, -100, 101, 4321, -99999, INT_MIN, INT_MAX})
    EXPECT_EQ(Bytes(TypeParam::FromInteger(v)), std::to_string(v));
  TypeParam s = TypeParam::FromInteger(INT_MAX);
  EXPECT_EQ(s.GetAllocLength(), 32 / static_cast<int>(sizeof(CharOf<TypeParam>))) << "sized to the text";
  // The wide exponent form keeps one place more (deliberate).
  struct Row { double value; const char *narrow, *wide; } rows[] = {
      {-0.0, "0", "0"},                                     // negative zero too
      {0.1, "0.1", "0.1"},                                  // 15 decimals, zeros cut
      {-3.0, "-3", "-3"},                                   // and the bare point
      {std::ldexp(1.0, -24), "0.000000059604645", "0.000000059604645"},  // the smallest fixed
      {std::nextafter(std::ldexp(1.0, -24), 0.0), "5.960464e-08", "5.9604645e-08"},  // below: fixed places
      {1e19, "10000000000000000000", "10000000000000000000"},  // below 2^65: fixed
      {std::ldexp(1.0, 65), "3.6893488147419e+19", "3.6893488147419e+19"},  // from 2^65, trailing zeros kept
      {-HUGE_VAL, "-1.#INF", "-1.#INF"},                   // (a NaN: the format rows)
  };
  for (const Row& r : rows) {
    const std::string expected = sizeof(CharOf<TypeParam>) == 1 ? r.narrow : r.wide;
    s = r.value;
    EXPECT_EQ(Bytes(s) + "|" + Bytes(TypeParam::FromDouble(r.value)), expected + "|" + expected) << r.narrow;
  }
  TypeParam appended(Widen<TypeParam>("n=").c_str()), shared(appended);
  appended += 5;
  appended += -3;
  appended += 2.5;
  EXPECT_EQ(Bytes(appended) + "|" + Bytes(shared), "n=5-32.5|n=");
}

TYPED_TEST(Numbers, TextToIntegerAndDoubleReadAsTheCRuntimeReadsDecimals) {
  // Random texts of blanks, signs, points, exponent letters and digits,
  // empty ones too, against strtol (saturated to the int range) and strtod,
  // both correctly rounded: white space, a sign, digits up to the first other
  // character, an exponent only with a digit, infinity beyond the range.
  std::mt19937 rng(20261125);
  const std::string alphabet = " \t+-.eE0123456789";
  for (int i = 0; i < 20000; ++i) {
    std::string text(rng() % 14, ' ');
    for (char& c : text) c = alphabet[rng() % alphabet.size()];
    const TypeParam s = Make<TypeParam>(text);
    ASSERT_EQ(s.ToInteger(), int(std::clamp<long>(std::strtol(text.c_str(), nullptr, 10), INT_MIN, INT_MAX))) << text;
    ASSERT_EQ(s.ToDouble(), std::strtod(text.c_str(), nullptr)) << text;
  }
  struct Row { std::string text; int integer; double value; } rows[] = {
      {"TrUe", 1, 0.0},                      // "true" in any case
      {"true!", 0, 0.0},                     // exactly four characters
      {"\n\v\f\r-17abc", -17, -17.0},        // every white space; digits up to the first other
      {"inf", 0, 0.0},                       // not read
      {"0x1p3", 0, 0.0},                     // no hexadecimal
      {"4.9406564584124654e-324", 4, DBL_TRUE_MIN},
      {"123456789012345678901234567890e-300", INT_MAX, 123456789012345678901234567890e-300},
      {"1.00000000000000011102230246251565404236316680908203125", 1, 1.0},  // a tie: to even
      {"1.00000000000000011102230246251565404236316680908203125" + std::string(500, '0') + "1", 1,
       1.0000000000000002},                  // the last of many digits decides
  };
  for (const Row& r : rows) {
    const TypeParam s = Make<TypeParam>(r.text);
    EXPECT_EQ(std::tuple(s.ToInteger(), s.ToDouble()), std::tuple(r.integer, r.value)) << r.text;
  }
}

TYPED_TEST(Numbers, ClassifiersAreDeliberatelyLoose) {
  struct Row { std::string text; int number, string, name; } rows[] = {
      {"", 0, 0, 0},                         // empty
      {"-", 1, 0, 0},                        // a sign alone is a number
      {"1.2.3", 1, 0, 0},                    // points anywhere
      {std::string("12\0x", 4), 1, 0, 0},    // a zero ends the examination
      {"1e5", 0, 0, 0},                      // no exponent; no leading digit in a name
      {"\"", 0, 1, 0},                       // a quote without closer is a string
      {"'x'", 0, 1, 0},
      {"\"abc\"d", 0, 0, 0},                 // more after the closer
      {"_a1", 0, 0, 1},
      {"a-b", 0, 0, 0},
      {"\xE9t\xE9", 0, 0, 1},                // bytes of 128 or more pass
      {std::string("ab\0-", 4), 0, 0, 1},
  };
  for (const Row& r : rows) {
    const TypeParam s = Make<TypeParam>(r.text);
    EXPECT_EQ(std::tuple(s.IsNumber(), s.IsString(), s.IsName()), std::tuple(r.number, r.string, r.name)) << r.text;
  }
}

TEST(NumbersWide, IsNameTestsLowBytesAndToIntegerReadsANarrowCopy) {
  EXPECT_EQ(Ka_WString(KA_W("a\u4e00")).IsName(), 0);  // low byte 0 (deliberate; U+00E9 passes, as in the rows above)
  EXPECT_EQ(Ka_WString(KA_W("a\u0141")).IsName(), 0);  // low byte 'A' (deliberate)
  // ToInteger reads a narrow copy, ToDouble the wide text itself.
  const unsigned int saved = KaSetLocaleCP(1252);  // full-width digits fit to ASCII there
  EXPECT_EQ(Ka_WString(KA_W("\uff14\uff12")).ToInteger(), 42);
  EXPECT_EQ(Ka_WString(KA_W("\uff14\uff12")).ToDouble(), 0.0);
  KaSetLocaleCP(saved);
}

TYPED_TEST(Numbers, NumFormatGroupsThousandsAndFixesTheDecimalsMaskStrFillsEachAtSign) {
  // narrow: rounded correctly; wide: printed by the library's own "%.*lf" (deliberate).
  // (1,234,567.89 and -9,876.5: the guide's examples.)
  struct Row { double value; int decimals; const char *narrow, *wide; } rows[] = {
      {0.0, 2, "0.00", "0.00"},
      {999.0, 1, "999.0", "999.0"},                 // three digits: no separator
      {-999999.0, 0, "-999,999", "-999,999"},
      {1e20, 0, "100,000,000,000,000,000,000", "100,000,000,000,000,000,000"},
      {2.75, 0, "3", "2"},                          // the library's %.0f truncates
      {0.125, 2, "0.12", "0.13"},                   // a tie: to even, against half up
      {1234567.0, -3, "1,235", "1,234"},            // scaled to 1234.567 first
      {5e-324, INT_MIN, "0", "0"},                  // scaling stops at zero
      {HUGE_VAL, 2, "inf.000", "0.1#"},                 // no point: one zero more (deliberate)
  };
  for (const Row& r : rows) {
    const std::string expected = sizeof(CharOf<TypeParam>) == 1 ? r.narrow : r.wide;
    TypeParam s, ignored;
    EXPECT_EQ(s.NumFormat(r.value, 0, r.decimals), static_cast<int>(expected.size()));
    ignored.NumFormat(r.value, 5, r.decimals);  // the second argument changes nothing
    EXPECT_EQ(Bytes(s) + "|" + Bytes(ignored), expected + "|" + expected) << r.narrow;
  }
  TypeParam s;
  EXPECT_EQ(s.NumFormat(1.5, 0, 1100), 1102);
  EXPECT_EQ(Bytes(s), "1.5" + std::string(1099, '0')) << "padded past the double's digits";
  EXPECT_EQ(s.NumFormat(1.5, 0, INT_MAX), 2 + KA_FORMAT_MAX_FIELD) << "decimals are bounded";
  // MaskStr fills each "@" in turn (a telephone number: the guide's example).
  struct MaskRow { const char* value; const char* mask; const char* expected; } masks[] = {
      {"", "", ""},                                      // empty mask
      {"", "@@", "  "},                                  // blanks once the value is used up, from the start
      {"abcdef", "@@", "ab"},                            // the rest of the value is dropped
  };
  for (const MaskRow& r : masks) {
    const TypeParam mask = Make<TypeParam>(r.mask);
    EXPECT_EQ(s.MaskStr(Make<TypeParam>(r.value), mask), static_cast<int>(std::string(r.mask).size()));
    EXPECT_EQ(Bytes(s) + "|" + Bytes(mask), std::string(r.expected) + "|" + r.mask) << "the mask is not touched";
  }
  TypeParam self = Make<TypeParam>("ab");
  self.MaskStr(self, Make<TypeParam>("[@@@]"));  // the value is the string itself
  EXPECT_EQ(Bytes(self), "[ab ]");
}
