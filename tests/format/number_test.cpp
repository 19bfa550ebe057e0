// Numbers to text and back, and the three classifiers, over both widths.
#include <cfloat>
#include <climits>
#include <cmath>
#include <limits>

#include "format/format_support.h"

namespace {
const double kInf = std::numeric_limits<double>::infinity();
}  // namespace

template <class S>
class Numbers : public ::testing::Test {};
TYPED_TEST_SUITE(Numbers, BothStrings);

TYPED_TEST(Numbers, IntegersAndDoublesToText) {
  EXPECT_EQ(Bytes(TypeParam().Set(0)) + " " + Bytes(TypeParam::FromInteger(INT_MIN)), "0 -2147483648");
  for (int v : {7, -9, 10, 99, -100, 101, 4321, -99999, INT_MAX})  // digits go in pairs: odd and even counts
    EXPECT_EQ(Bytes(TypeParam::FromInteger(v)), std::to_string(v));
  TypeParam s;
  s = INT_MAX;
  EXPECT_EQ(s.GetAllocLength(), 32 / static_cast<int>(sizeof(CharOf<TypeParam>))) << "sized to the text";
  // The wide exponent form keeps one place more (deliberate).
  struct Row { double value; const char *narrow, *wide; } rows[] = {
      {0.0, "0", "0"},
      {-0.0, "0", "0"},                                     // either zero
      {0.1, "0.1", "0.1"},                                  // 15 decimals, zeros cut
      {-3.0, "-3", "-3"},                                   // and the bare point
      {std::ldexp(1.0, -24), "0.000000059604645", "0.000000059604645"},  // the smallest fixed
      {std::nextafter(std::ldexp(1.0, -24), 0.0), "5.960464e-08", "5.9604645e-08"},  // just below
      {std::ldexp(1.0, -30), "9.3132e-10", "9.31323e-10"},  // places of the fixed form
      {1e-20, "1.e-20", "1.e-20"},                          // one digit at least
      {1e19, "10000000000000000000", "10000000000000000000"},  // below 2^65: fixed
      {std::ldexp(1.0, 65), "3.6893488147419e+19", "3.6893488147419e+19"},
      {1e30, "1.0000000000000e+30", "1.0000000000000e+30"},  // trailing zeros kept
      {-kInf, "-1.#INF", "-1.#INF"},
      {std::numeric_limits<double>::quiet_NaN(), "1.#INF", "1.#INF"},
  };
  for (const Row& r : rows) {
    const std::string expected = sizeof(CharOf<TypeParam>) == 1 ? r.narrow : r.wide;
    s = r.value;
    EXPECT_EQ(Bytes(s), expected) << r.narrow;
    EXPECT_EQ(Bytes(TypeParam::FromDouble(r.value)), expected);
  }
  TypeParam appended(Widen<TypeParam>("n=").c_str()), shared(appended);
  appended += 5;
  appended += -3;
  appended += 2.5;
  EXPECT_EQ(Bytes(appended) + "|" + Bytes(shared), "n=5-32.5|n=");
}

TYPED_TEST(Numbers, TextToIntegerAndDouble) {
  struct IntegerRow { const char* text; int value; } integers[] = {
      {"", 0},                       // empty
      {"TrUe", 1},                   // "true" in any case
      {"true!", 0},                  // exactly four characters
      {"\t\n\v\f\r-17abc", -17},          // white space, digits up to the first other
      {"- 5", 0},
      {"0x10", 0},                   // no hexadecimal
      {"2147483648", INT_MAX},       // saturated
      {"-99999999999", INT_MIN},
  };
  for (const IntegerRow& r : integers) EXPECT_EQ(Make<TypeParam>(r.text).ToInteger(), r.value) << r.text;
  struct DoubleRow { std::string text; double value; } doubles[] = {
      {"", 0.0},                                          // empty
      {"  -2.5e2xyz", -250.0},                            // the rest is ignored
      {"+.5e-1", 0.05},
      {"1e+x", 1.0},                                      // an exponent needs a digit
      {".", 0.0},                                         // no digit
      {"inf", 0.0},                                       // not read
      {"0x1p3", 0.0},                                     // hexadecimal stops at the x
      {"1,5", 1.0},                                       // no locale: "," ends it
      {"0.1", 0.1},                                       // correctly rounded
      {"4.9406564584124654e-324", DBL_TRUE_MIN},
      {"-1e400", -kInf},                                  // beyond the range
      {"1e-400", 0.0},                                    // below it
      {"123456789012345678901234567890e-300", 123456789012345678901234567890e-300},
      {"1.00000000000000011102230246251565404236316680908203125", 1.0},  // a tie: to even
      {"1.00000000000000011102230246251565404236316680908203125" + std::string(500, '0') + "1",
       1.0000000000000002},                               // the last of many digits decides
  };
  for (const DoubleRow& r : doubles) EXPECT_EQ(Make<TypeParam>(r.text).ToDouble(), r.value) << r.text;
}

TYPED_TEST(Numbers, ClassifiersAreDeliberatelyLoose) {
  struct Row { std::string text; int number, string, name; } rows[] = {
      {"", 0, 0, 0},                         // empty
      {"-", 1, 0, 0},                        // a sign alone is a number
      {"1.2.3", 1, 0, 0},                    // points anywhere
      {std::string("12\0x", 4), 1, 0, 0},    // a zero ends the examination
      {"1e5", 0, 0, 0},                      // no exponent; no leading digit in a name
      {"1-", 0, 0, 0},
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
    EXPECT_EQ(s.IsNumber(), r.number) << r.text;
    EXPECT_EQ(s.IsString(), r.string) << r.text;
    EXPECT_EQ(s.IsName(), r.name) << r.text;
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
