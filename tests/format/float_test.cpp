// The floating-point conversions e, E, f, g and G over both widths. Most
// values are exact in binary (sums of powers of two), so that their digits
// follow by hand from the digit generator's rules.
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

#include "format/format_support.h"

namespace {
const double kInf = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kOnePlus = 1.0 + std::ldexp(1.0, -40);  // 1.0000000000009094947...
}  // namespace

template <class S>
class FloatFormat : public ::testing::Test {};
TYPED_TEST_SUITE(FloatFormat, BothStrings);

TYPED_TEST(FloatFormat, FixedNotation) {
  struct Row {
    const char* format;
    double value;
    const char* expected;
  } rows[] = {
      {"%f", 0.0, "0"},                        // zero
      {"%.2f", 0.0, "0.00"},
      {"%f", -0.0, "0"},                       // negative zero takes no sign
      {"%f", 2.0, "2"},                        // no precision: trailing zeros go (deliberate)
      {"%f", 2.5, "2.5"},
      {"%f", 1024.125, "1024.125"},
      {"%.1f", 2.0, "2.0"},                    // a given precision keeps them
      {"%.2f", 0.25, "0.25"},                  // point position 0: all digits
      {"%.3f", 0.005, "0.0050"},               // below 0.1 one digit fewer (deliberate)
      {"%.3f", 0.05, "0.050"},
      {"%.4f", 0.0625, "0.0625"},
      {"%.2f", 0.0625, "0.06"},                // rounded at the cut-off
      {"%.1f", 0.0625, "0.1"},                 // rounding creates the first digit
      {"%.3f", 0.001953125, "0.0020"},         // 2^-9: rounding after two zeros
      {"%.1f", 0.001953125, "0.00"},           // no digit within the places
      {"%.2f", 9.999, "10.00"},                // a carry out of the first digit
      {"%.0f", 2.75, "2"},                     // precision 0 truncates (cut-off at the cap)
      {"%#.0f", 2.75, "2."},
      {"%f", kOnePlus, "1.00000000000091"},    // 15 digits, rounded by the 16th
      {"%f", 1e22, "10000000000000000000000"},  // integer digits past the cap are zeros
      {"%.1f", 1e19, "10000000000000000000.0"},
      {"%8.2f|", -1.5, "   -1.50|"},
      {"%08.2f", -1.5, "-0001.50"},            // zeros after the sign
      {"%+.1f|% .1f", 1.5, "+1.5| 1.5"},
      {"%-8.1f|", 1.5, "1.5     |"},
      {"%-08.1f|", 1.5, "1.500000|"},          // zeros on the right (deliberate)
      {"%lf", 0.5, "0.5"},                     // the l size changes nothing
  };
  for (const Row& r : rows) EXPECT_EQ(Formatted<TypeParam>(r.format, r.value, r.value), r.expected) << r.format;
  EXPECT_EQ(Formatted<TypeParam>("%.0f|%#.0f", 0.75, 0.75), "0|0.") << "below 1";
}

TYPED_TEST(FloatFormat, ExponentNotation) {
  struct Row {
    const char* format;
    double value;
    const char* expected;
  } rows[] = {
      {"%e", 0.0, "0.e+00"},                    // zero
      {"%e", 1.5, "1.5e+00"},                   // never padded with zeros
      {"%e", 2.0, "2.e+00"},                    // the point stays
      {"%.0e|%#.0e", 2.0, "2e+00|2.e+00"},
      {"%.2e", 12345.0, "1.2345e+04"},          // precision counts fixed places (deliberate)
      {"%E", 12345.0, "1.2345E+04"},
      {"%e", 0.0625, "6.25e-02"},
      {"%.3e", 0.0625, "6.3e-02"},              // 0.063: rounded half up
      {"%.1e", 0.0625, "6.e-02"},               // no place left: one digit all the same
      {"%e", kOnePlus, "1.0000000000009e+00"},  // 14 digits
      {"%e", 1e22, "1.0000000000000e+22"},      // trailing zeros up to the cap
      {"%.1e", 1e-100, "1.e-100"},              // three exponent digits
      {"%12.1e|", -1.5, "    -1.5e+00|"},
      {"%012.1e", -1.5, "-00001.5e+00"},
  };
  for (const Row& r : rows) EXPECT_EQ(Formatted<TypeParam>(r.format, r.value, r.value), r.expected) << r.format;
}

TYPED_TEST(FloatFormat, GeneralNotation) {
  struct Row {
    const char* format;
    double value;
    const char* expected;
  } rows[] = {
      {"%g", 0.0, "0"},                                // zero
      {"%g", 0.25, ".25"},                             // no leading zero (deliberate)
      {"%g", 123.0, "123"},
      {"%g", 1200.0, "1200"},                          // zeros up to the point
      {"%g", 120000.0, "120000"},                      // four zeros past the digits
      {"%g", 1200000.0, "1.2e+6"},                     // five: exponent form
      {"%g", 100000000.0, "1.e+8"},                    // the point stays (deliberate)
      {"%G", 1200000.0, "1.2E+6"},
      {"%g", 1e22, "1.e+22"},
      {"%g", 0.0009765625, ".0009765625"},             // 2^-10: point position -3
      {"%g", 0.00006103515625, "6.103515625e-5"},      // 2^-14: below it
      {"%.3g", 3.14159, "3.14"},
      {"%.3g", 0.1875, ".188"},                        // the digit at the cap rounds
      {"%.0g", 2.5, "3"},                              // precision 0 is 1
      {"%+g", 1.5, "+1.5"},
      {"%07g", -0.25, "-000.25"},
  };
  for (const Row& r : rows) EXPECT_EQ(Formatted<TypeParam>(r.format, r.value), r.expected) << r.format;
  EXPECT_EQ(Formatted<TypeParam>("%#g|%#g", 123.0, 0.25), "123.|.25") << "# adds a point where none is";
}

TYPED_TEST(FloatFormat, InfinityAndNaNPrintThroughTheDigitString1INF) {
  struct Row {
    const char* format;
    double value;
    const char* expected;
  } rows[] = {
      {"%e", kInf, "1.#INF"},       // no exponent after "#"
      {"%E", -kInf, "-1.#INF"},
      {"%.0e", kInf, "1#INFe-01"},  // without the point "#" is not third
      {"%f", kInf, "0.1#INF"},      // the digits after "0.", zeros stripped
      {"%.2f", kInf, "0.1#"},
      {"%g", -kInf, "-.1#INF"},
      {"%e", kNaN, "1.#INF"},       // a NaN is an infinity of its sign
      {"%e", -kNaN, "-1.#INF"},
      {"%8e|", kInf, "  1.#INF|"},
  };
  for (const Row& r : rows) EXPECT_EQ(Formatted<TypeParam>(r.format, r.value), r.expected) << r.format;
}

TYPED_TEST(FloatFormat, ExtremeValuesGiveWellFormedTexts) {
  EXPECT_EQ(Formatted<TypeParam>("%f", DBL_MAX).size(), 309u);
  EXPECT_EQ(Formatted<TypeParam>("%.1f", DBL_TRUE_MIN), "0." + std::string(323, '0')) << "no digit within the places";
  const std::string e = Formatted<TypeParam>("%e|%e|%g", DBL_MAX, DBL_TRUE_MIN, DBL_MIN);
  EXPECT_EQ(e.substr(0, 13), "1.79769313486") << e;
  // The smallest values keep one digit, rounded: 4.9e-324 gives 5.
  EXPECT_EQ(e.substr(e.find('e')), "e+308|5.e-324|2.e-308") << e;
}

// The digits come from binary64 arithmetic on a decimal scale, not from an
// exact conversion: over values of every magnitude the exponent form must
// still read back within its 14 digits, and every character be a digit
// where a digit belongs.
TEST(FloatDigits, ExponentFormReadsBackAtEveryMagnitude) {
  std::mt19937_64 random(20240601);
  for (int i = 0; i < 20000; ++i) {
    uint64_t bits = random() & 0x7FFFFFFFFFFFFFFFull;
    double value;
    std::memcpy(&value, &bits, 8);
    if (!std::isfinite(value) || value == 0) continue;
    Ka_AString s;
    s.Format("%e", value);
    const std::string text = Bytes(s);
    const size_t e = text.find('e');
    ASSERT_NE(e, std::string::npos) << text;
    for (size_t k = 0; k < e; ++k) {
      if (k == 1) continue;
      ASSERT_TRUE(text[k] >= '0' && text[k] <= '9') << text;
    }
    // Half a unit of the last digit shown (14 digits from 0.01 up, fewer
    // below, one at least), and a little for the arithmetic.
    const int digits = static_cast<int>(e) - 1;
    EXPECT_NEAR(s.ToDouble() / value, 1.0, 0.5 * std::pow(10.0, 1 - digits) + 1e-13) << text;
  }
}
