// Numbers to text and back, and the three classifiers, over both widths.
#include <cfloat>
#include <climits>
#include <cmath>
#include <limits>

#include "format/format_support.h"

namespace {
const double kInf = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();
}  // namespace

template <class S>
class Numbers : public ::testing::Test {};
TYPED_TEST_SUITE(Numbers, BothStrings);

TYPED_TEST(Numbers, IntegersInDecimal) {
  struct Row {
    int value;
    const char* text;
  } rows[] = {
      {0, "0"},
      {INT_MIN, "-2147483648"},  // the most negative int
      {INT_MAX, "2147483647"},
      {-7, "-7"},
  };
  for (const Row& r : rows) {
    TypeParam s;
    EXPECT_EQ(Bytes(s.Set(r.value)), r.text);
    EXPECT_EQ(s.GetAllocLength(), 32 / static_cast<int>(sizeof(CharOf<TypeParam>))) << "sized to the text";
    EXPECT_EQ(Bytes(TypeParam::FromInteger(r.value)), r.text);
    s = r.value;
    EXPECT_EQ(Bytes(s), r.text);
  }
}

TYPED_TEST(Numbers, DoublesInTheShortestForm) {
  const double belowFixed = std::nextafter(std::ldexp(1.0, -24), 0.0);
  struct Row {
    double value;
    const char* narrow;
    const char* wide;  // the exponent form has one digit more (deliberate)
  } rows[] = {
      {0.0, "0", "0"},
      {-0.0, "0", "0"},                                // either zero
      {0.1, "0.1", "0.1"},                             // 15 decimals, zeros cut
      {-3.0, "-3", "-3"},                              // and the bare point
      {2.5, "2.5", "2.5"},
      {1024.125, "1024.125", "1024.125"},
      {std::ldexp(1.0, -24), "0.000000059604645", "0.000000059604645"},  // the smallest fixed
      {belowFixed, "5.960464e-08", "5.9604645e-08"},   // just below: exponent form
      {std::ldexp(1.0, -30), "9.3132e-10", "9.31323e-10"},  // places of the fixed form
      {1e-20, "1.e-20", "1.e-20"},                     // one digit at least
      {1e19, "10000000000000000000", "10000000000000000000"},  // below 2^65: fixed
      {std::ldexp(1.0, 65), "3.6893488147419e+19", "3.6893488147419e+19"},
      {1e30, "1.0000000000000e+30", "1.0000000000000e+30"},  // trailing zeros kept
      {kInf, "1.#INF", "1.#INF"},
      {-kInf, "-1.#INF", "-1.#INF"},
      {kNaN, "1.#INF", "1.#INF"},                      // an infinity of its sign
  };
  for (const Row& r : rows) {
    const char* expected = sizeof(CharOf<TypeParam>) == 1 ? r.narrow : r.wide;
    TypeParam s;
    EXPECT_EQ(Bytes(s.Set(r.value)), expected) << r.narrow;
    EXPECT_EQ(Bytes(TypeParam::FromDouble(r.value)), expected);
    s = r.value;
    EXPECT_EQ(Bytes(s), expected);
  }
}

TYPED_TEST(Numbers, AppendingNumbers) {
  TypeParam s(Widen<TypeParam>("n=").c_str());
  s += 5;
  s += -3;
  s += 2.5;
  s += 1e30;
  EXPECT_EQ(Bytes(s), "n=5-32.51.0000000000000e+30");
  TypeParam shared(s);
  s += 0;
  EXPECT_EQ(Bytes(shared), "n=5-32.51.0000000000000e+30") << "appending made the text private";
}

TYPED_TEST(Numbers, ToIntegerReadsTrueOrALeadingDecimal) {
  struct Row {
    const char* text;
    int value;
  } rows[] = {
      {"", 0},                        // empty
      {"true", 1},
      {"TrUe", 1},                    // any case
      {"true!", 0},                   // exactly four characters
      {"true ", 0},
      {"1", 1},
      {"  42abc", 42},                // white space, then digits up to the first other
      {"\t\n\v\f\r7", 7},
      {"-17", -17},
      {"+5", 5},
      {"- 5", 0},
      {"0x10", 0},                    // no hexadecimal
      {"yes", 0},
      {"2147483647", INT_MAX},
      {"2147483648", INT_MAX},        // saturated
      {"-2147483648", INT_MIN},
      {"-99999999999999999999", INT_MIN},
  };
  for (const Row& r : rows) EXPECT_EQ(Make<TypeParam>(r.text).ToInteger(), r.value) << r.text;
}

TYPED_TEST(Numbers, ToDoubleReadsALeadingDecimalCorrectlyRounded) {
  struct Row {
    const char* text;
    double value;
  } rows[] = {
      {"", 0.0},                                     // empty
      {"1.5", 1.5},
      {"  -2.5e2xyz", -250.0},                       // the rest is ignored
      {".5", 0.5},
      {"5.", 5.0},
      {"+.5e-1", 0.05},
      {"1e", 1.0},                                   // an exponent needs a digit
      {"1e+", 1.0},
      {".", 0.0},                                    // no digit
      {"e5", 0.0},
      {"inf", 0.0},                                  // not read
      {"nan", 0.0},
      {"0x1p3", 0.0},                                // hexadecimal stops at the x
      {"1,5", 1.0},                                  // no locale: "," ends the number
      {"0.1", 0.1},                                  // correctly rounded
      {"2.2250738585072011e-308", 2.2250738585072011e-308},
      {"4.9406564584124654e-324", DBL_TRUE_MIN},
      {"1e400", kInf},                               // above the range
      {"-1e400", -kInf},
      {"1e-400", 0.0},                               // below it
      {"0.00000000000000000000000000000000001e-300", 0.0},
      {"123456789012345678901234567890e-300", 123456789012345678901234567890e-300},
  };
  for (const Row& r : rows) EXPECT_EQ(Make<TypeParam>(r.text).ToDouble(), r.value) << r.text;
  // Halfway between 1 and the next double, then just above: the last digit
  // of a long text decides.
  const std::string half = "1.00000000000000011102230246251565404236316680908203125";
  EXPECT_EQ(Make<TypeParam>(half).ToDouble(), 1.0);
  EXPECT_EQ(Make<TypeParam>(half + std::string(500, '0') + "1").ToDouble(), 1.0000000000000002);
  EXPECT_TRUE(std::signbit(Make<TypeParam>("-0").ToDouble()));
}

TYPED_TEST(Numbers, IsNumberAcceptsDigitsPointsAndALeadingSign) {
  struct Row {
    std::string text;
    int result;
  } rows[] = {
      {"", 0},                         // empty
      {"-", 1}, {"+", 1}, {".", 1},    // deliberately loose
      {"1.2.3", 1},
      {"-12.5", 1},
      {std::string("12\0x", 4), 1},    // stops at a zero
      {"1e5", 0},                      // no exponent
      {" 1", 0},                       // no white space
      {"1-", 0},                       // a sign only first
      {"1\\", 0},
      {"12a", 0},
  };
  for (const Row& r : rows) EXPECT_EQ(Make<TypeParam>(r.text).IsNumber(), r.result) << r.text;
}

TYPED_TEST(Numbers, IsStringWantsTheMatchingQuoteLast) {
  struct Row {
    const char* text;
    int result;
  } rows[] = {
      {"", 0},                  // empty
      {"\"", 1},                // no closer at all still counts (deliberate)
      {"\"abc", 1},
      {"\"abc\"", 1},
      {"'x'", 1},
      {"\"a\\\"b\"", 1},        // an escaped quote is not the closer
      {"\"abc\"d", 0},          // more after the closer
      {"\"a\" \"b\"", 0},
      {"abc", 0},               // no opening quote
      {"(x)", 0},
  };
  for (const Row& r : rows) EXPECT_EQ(Make<TypeParam>(r.text).IsString(), r.result) << r.text;
}

TYPED_TEST(Numbers, IsNameWantsIdentifierCharacters) {
  struct Row {
    std::string text;
    int result;
  } rows[] = {
      {"", 0},                         // empty
      {"_a1", 1},
      {"A_Z09", 1},
      {"1a", 0},                       // no leading digit
      {"a-b", 0},
      {"a b", 0},
      {"\xE9t\xE9", 1},                // a byte of 128 or more passes
      {std::string("ab\0-", 4), 1},    // stops at a zero
  };
  for (const Row& r : rows) EXPECT_EQ(Make<TypeParam>(r.text).IsName(), r.result) << r.text;
}

TEST(NumbersWide, IsNameTestsTheLowByteOfTheWideCharacter) {
  // Deliberate: the low 8 bits of the character as it stands.
  EXPECT_EQ(Ka_WString(KA_W("\u00e9t\u00e9")).IsName(), 1);
  EXPECT_EQ(Ka_WString(KA_W("a\u4e00")).IsName(), 0);   // low byte 0
  EXPECT_EQ(Ka_WString(KA_W("a\u0141")).IsName(), 0);   // low byte 'A', not a letter
  EXPECT_EQ(Ka_WString(KA_W("a\u00ff")).IsName(), 1);
}

TEST(NumbersWide, TextReachesTheParsersThroughTheLocaleCodePage) {
  const unsigned int saved = KaSetLocaleCP(1252);
  // In 1252 a full-width digit has a best-fit mapping to its ASCII digit.
  EXPECT_EQ(Ka_WString(KA_W("\uff14\uff12")).ToInteger(), 42);
  EXPECT_EQ(Ka_WString(KA_W("\uff14\uff12")).ToDouble(), 0.0) << "the wide text is read as it is";
  KaSetLocaleCP(saved);
}
