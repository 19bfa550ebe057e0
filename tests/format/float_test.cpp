// The floating-point conversions over both widths. Most values are exact in
// binary (sums of powers of two), so that their digits follow by hand from
// the digit generator's rules.
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "format/float_digits.h"
#include "format/format_support.h"

namespace {
const double kInf = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kOnePlus = 1.0 + std::ldexp(1.0, -40);  // 1.0000000000009094947...
}  // namespace

template <class S>
class FloatFormat : public ::testing::Test {};
TYPED_TEST_SUITE(FloatFormat, BothStrings);

TYPED_TEST(FloatFormat, FixedExponentAndGeneralNotations) {
  const DoubleRow rows[] = {
      {"%f|%.2f", 0.0, "0|0.00"},                      // zero
      {"%f", -0.0, "0"},                               // negative zero has no sign
      {"%f|%.1f", 2.0, "2|2.0"},                       // no precision: zeros and point go (deliberate)
      {"%.3f|%.3f", 0.005, "0.0050|0.0050"},           // below 0.1 one digit fewer (deliberate)
      {"%.3f", 0.05, "0.050"},
      {"%.2f|%.1f", 0.0625, "0.06|0.1"},               // rounded at the cut-off, creating a digit
      {"%.3f|%.1f", 0.001953125, "0.0020|0.00"},       // 2^-9: no digit within one place
      {"%.2f", 9.999, "10.00"},                        // a carry out of the first digit
      {"%.0f|%#.0f", 2.75, "2|2."},                    // precision 0 truncates
      {"%f", kOnePlus, "1.00000000000091"},            // 15 digits, rounded by the 16th
      {"%f", 1e22, "10000000000000000000000"},         // integer digits past 15 are zeros
      {"%08.2f|%-08.1f|", -1.5, "-0001.50|-1.50000|"}, // zeros after the sign, and on the right (e, g alike)
      {"%+.1f|% lf", 1.5, "+1.5| 1.5"},
      {"%e|%e", 0.0, "0.e+00|0.e+00"},                 // zero
      {"%e|%.0e", 2.0, "2.e+00|2e+00"},                // never padded; the point stays
      {"%.2e|%E", 12345.0, "1.2345e+04|1.2345E+04"},   // precision counts fixed places (deliberate)
      {"%e|%.3e", 0.0625, "6.25e-02|6.3e-02"},         // 0.063: rounded half up
      {"%.1e", 0.0625, "6.e-02"},                      // no place left: one digit all the same
      {"%e", kOnePlus, "1.0000000000009e+00"},         // 14 digits
      {"%e", 1e22, "1.0000000000000e+22"},             // trailing zeros up to 14
      {"%.1e", 1e-100, "1.e-100"},                     // three exponent digits
      {"%g|%#g", 0.0, "0|0."},                         // zero
      {"%g|%#g", 0.25, ".25|.25"},                     // no leading zero (deliberate)
      {"%g", 120000.0, "120000"},                      // four zeros past the digits
      {"%g|%G", 1200000.0, "1.2e+6|1.2E+6"},           // five: the exponent form
      {"%g", 100000000.0, "1.e+8"},                    // the point stays (deliberate)
      {"%g", 0.0009765625, ".0009765625"},             // 2^-10: point position -3
      {"%g", 0.00006103515625, "6.103515625e-5"},      // 2^-14: below it
      {"%.3g|%.0g", 0.1875, ".188|.2"},                // the digit at the cap rounds; precision 0 is 1
      {"%e|%E", kInf, "1.#INF|1.#INF"},                // no exponent after "#"
      {"%.0e", kInf, "1#INFe-01"},                     // without the point "#" is not third
      {"%f|%.2f", -kInf, "-0.1#INF|-0.1#"},            // the digits after "0.", zeros stripped
      {"%g", -kInf, "-.1#INF"},
      {"%e|%8e", kNaN, "1.#INF|  1.#INF"},             // a NaN is an infinity of its sign
      {"%e", -kNaN, "-1.#INF"},
  };
  for (const DoubleRow& r : rows) {
    ASSERT_LE(std::count(r.format, r.format + std::strlen(r.format), '%'), 2) << "two values per row";
    EXPECT_EQ(Formatted<TypeParam>(r.format, r.value, r.value), r.expected) << r.format;
  }
}

TYPED_TEST(FloatFormat, ExtremeValuesGiveWellFormedTexts) {
  EXPECT_EQ(Formatted<TypeParam>("%f", DBL_MAX).size(), 309u);
  EXPECT_EQ(Formatted<TypeParam>("%.1f", DBL_TRUE_MIN), "0." + std::string(323, '0')) << "no digit within the places";
  const std::string e = Formatted<TypeParam>("%e|%e|%g", DBL_MAX, DBL_TRUE_MIN, DBL_MIN);
  EXPECT_EQ(e.substr(0, 13), "1.79769313486") << e;
  EXPECT_EQ(e.substr(e.find('e')), "e+308|5.e-324|2.e-308") << "the smallest keep one digit, rounded";
}

// The digits come from binary64 arithmetic on a decimal scale, not from an
// exact conversion: over values of every magnitude the exponent form must
// still read back within its digits, each of them a digit.
TEST(FloatDigits, ExponentFormReadsBackAtEveryMagnitude) {
  std::mt19937_64 random(20240601);
  for (int i = 0; i < 20000; ++i) {
    const uint64_t bits = random() & 0x7FFFFFFFFFFFFFFFull;
    double value;
    std::memcpy(&value, &bits, 8);
    if (!std::isfinite(value) || value == 0) continue;
    Ka_AString s;
    s.Format("%e", value);
    const std::string text = Bytes(s);
    const size_t e = text.find('e');
    ASSERT_NE(e, std::string::npos) << text;
    ASSERT_TRUE(text[0] >= '1' && text[0] <= '9' && text[1] == '.') << text;
    ASSERT_EQ(text.find_first_not_of("0123456789", 2), e) << text;
    // Half a unit of the last digit (14 digits from 0.01 up, fewer below,
    // one at least), and a little for the arithmetic.
    EXPECT_NEAR(s.ToDouble() / value, 1.0, 0.5 * std::pow(10.0, 2 - static_cast<int>(e)) + 1e-13) << text;
  }
}

// The digit generator as plain double steps: each integer digit from the
// fraction of integer / 10, each fraction digit from fraction x 10, then the
// rounding at the cut-off. The generator takes 64-bit integer shortcuts
// through both loops; its digits must be these, every step's rounding
// included.
void DoubleStepDigits(double value, int cap, int places, bool exponentMode, ka_detail::Ka_FloatDigits* out) {
  auto split = [](double x, double* integer) {  // modf for x >= 0
    *integer = x < 4503599627370496.0 ? static_cast<double>(static_cast<int64_t>(x)) : x;
    return x - *integer;
  };
  cap = std::min(std::max(cap, 1), int(ka_detail::Ka_FloatDigits::kMaxCap));
  char reversed[320], *d = out->digits;
  int integerDigits = 0, point = 0, n = 0;
  double integer, fraction = split(std::fabs(value), &integer);
  if (integer != 0) {
    while (integer != 0) reversed[integerDigits++] = char('0' + int((split(integer / 10, &integer) + .03) * 10));
    point = integerDigits;
  } else {
    for (double scaled; (scaled = fraction * 10) < 1; --point) fraction = scaled;
  }
  out->point = point;
  out->negative = value < 0;
  int cutoff = places >= 1 && point + places < cap ? point + places : cap;
  if (exponentMode && cutoff < 1) cutoff = 1;
  if (cutoff >= 0) {
    while (integerDigits > 0 && n <= cutoff) d[n++] = reversed[--integerDigits];
    for (double digit; n <= cutoff && fraction != 0; d[n++] = char('0' + int(digit))) fraction = split(fraction * 10, &digit);
  }
  if (cutoff >= 0 && cutoff < n) {
    int p = cutoff;
    bool carriedOut = false;
    for (d[p] = char(d[p] + 5); d[p] > '9';) {
      d[p] = '0';
      if (p > 0) {
        d[--p]++;
      } else {
        d[0] = '1';
        ++out->point;
        carriedOut = true;
      }
    }
    n = carriedOut && !exponentMode ? (cutoff > 0 ? (d[cutoff] = '0', cutoff + 1) : 1) : cutoff;
  }
  out->count = n;
}

TEST(FloatDigits, IntegerShortcutsGiveTheDoubleStepsDigits) {
  std::mt19937_64 random(20261124);
  for (int i = 0; i < 300000; ++i) {
    const uint64_t bits = random();
    double value;
    if (i % 3 == 0)  // any finite double
      std::memcpy(&value, &bits, 8);
    else if (i % 3 == 1)  // integers of every size, with and without a fraction, across the 2^49 seam
      value = std::ldexp(double(bits >> 11), int(random() % 110) - 53);
    else  // decimal-looking values
      value = double(int64_t(bits >> (random() % 64))) / std::pow(10.0, double(random() % 20));
    if (!std::isfinite(value) || value == 0) continue;
    const int cap = 1 + int(random() % 31), places = int(random() % 40) - 5;
    const bool exponentMode = (random() & 1) != 0;
    ka_detail::Ka_FloatDigits got, want;
    ka_detail::GenerateFloatDigits(value, cap, places, exponentMode, &got);
    DoubleStepDigits(value, cap, places, exponentMode, &want);
    ASSERT_EQ(std::string(got.digits, size_t(got.count)), std::string(want.digits, size_t(want.count)))
        << value << " cap " << cap << " places " << places << " exponent " << exponentMode;
    ASSERT_EQ(got.point, want.point) << value;
    ASSERT_EQ(got.negative, want.negative) << value;
  }
}
