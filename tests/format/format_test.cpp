// The format engine over both widths: parsing, integers, characters, texts,
// pointers, padding, the target's block, hostile formats and the floating
// point notations; and the digit generator against the plain double steps.
// Most floating-point values are exact in binary (sums of powers of two), so
// that their digits follow by hand from the digit generator's rules.
#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <tuple>

#include "format/float_digits.h"
#include "format/format_support.h"

namespace {
const double kInf = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kOnePlus = 1.0 + std::ldexp(1.0, -40);  // 1.0000000000009094947...
}  // namespace

template <class S>
class Format : public ::testing::Test {};
TYPED_TEST_SUITE(Format, BothStrings);

TYPED_TEST(Format, IntegersFlagsWidthsPrecisionsSizesLiteralsAndTheHexPrefixRule) {
  // (The guide's examples and the kalbor tool's cases show more: blank and
  // zero padding, "%-05d", and "%#x" on its own and after "%d".)
  const IntRow rows[] = {
      {"", 0, 0, 0, ""},                                 // empty format
      {"%% %5% %z %+3z", 0, 0, 0, "%     % %z  %z"},     // literals and unknown conversions, padded
      {"ab%-5", 0, 0, 0, "ab"},                          // a format ending inside a directive ends
      {"%d|%i|%d", 0, INT_MIN, INT_MAX, "0|-2147483648|2147483647"},
      {"%u %o %X", -1, 8, 255, "4294967295 10 FF"},
      {"%#o %#o %#.3o", 8, 0, 8, "010 0 010"},           // no second leading zero
      {"%.5d|%.5d|%.0d", 42, -42, 0, "00042|-00042|0"},  // precision: minimum digits
      {"% d|%+ d|%+u", 5, 5, 5, " 5|+5|5"},              // plus wins; unsigned takes no sign
      {"%-+06d|%5d", 42, -42, 0, "+42000|  -42"},        // zeros on the right (deliberate); blanks before the sign
      {"%hd %hu %hx", 0x18000, -1, 0x12345, "-32768 65535 2345"},  // low 16 bits, sign-extended for d
      {"%qd %qu", -7, -1, 0, "-7 4294967295"},           // q reads one int, as no size
      // "0x" only after a nonzero %d, %i or %u of the same call, remembered
      // with the l, h or no size but not with q (deliberate).
      {"%u %#X", 3, 171, 0, "3 0XAB"},                   // the letter's case
      {"%#x %d", 255, 1, 0, "ff 1"},                     // only from then on
      {"%qd %#x", 1, 255, 0, "1 ff"},                    // q is not remembered
      {"%hd %#x", 0x10000, 255, 0, "0 ff"},              // the value after h
      {"%d %d %#x", 1, 0, 255, "1 0 ff"},                // the latest counts, a zero value too
      {"%d %#6x|%#06x", 1, 255, 255, "1   0xff|000xff"},  // zeros go before the prefix
  };
  for (const IntRow& r : rows) EXPECT_EQ(Formatted<TypeParam>(r.format, r.a, r.b, r.c), r.expected) << r.format;
  EXPECT_EQ(Formatted<TypeParam>("%*d|%*d|%.*d|%.*d", 5, 42, -5, 42, 3, 7, -1, 7), "   42|42   |007|7")
      << "* width, negative: left; * precision, negative: 0";
  // l reads a long of which the low 32 bits count.
  EXPECT_EQ(Formatted<TypeParam>("%ld %lx %ld", -5L, -1L, static_cast<long>(0x100000005LL)), "-5 ffffffff 5");
  TypeParam s(Widen<TypeParam>("old").c_str());
  s.Format(nullptr);
  EXPECT_EQ(s.GetLength(), 0) << "a null format is empty";
  s.Format(Widen<TypeParam>("%d").c_str(), 1);
  s.Format(Widen<TypeParam>("%#x").c_str(), 255);
  EXPECT_EQ(Bytes(s), "ff") << "each call starts with no decimal value";
}

TYPED_TEST(Format, CharactersTextsAndPointersPadWithBlanks) {
  const unsigned char address[4] = {192, 168, 1, 20};                // network order
  const unsigned char socket[8] = {2, 0, 0x1F, 0x90, 10, 0, 0, 1};  // family, port 8080, 10.0.0.1
  const std::basic_string<ka_wchar> wide = Widen<Ka_WString>("abcdef");
  EXPECT_EQ(Formatted<TypeParam>("%c|%3c|%-3c|%03c|%+c", 'A', 0x178, 'x', 'y', 'z'), "A|  x|x  |  y|z")
      << "the low 8 bits; blanks whatever the flags; no sign";
  EXPECT_EQ(Formatted<TypeParam>("ab%ccd", 0), "ab") << "a zero character ends the text";
  EXPECT_EQ(Formatted<TypeParam>("%5.2s|%-4.3s|%04.0s|%+s", wide.c_str(), wide.c_str(), wide.c_str(), wide.c_str()),
            "   ab|abc |    |abcdef") << "precision truncates, width pads";
  EXPECT_EQ(Formatted<TypeParam>("[%hs]%.3hs|%8ls", "", static_cast<const char*>(nullptr),
                                 static_cast<const ka_wchar*>(nullptr)),
            "[](nu|  (null)");
  EXPECT_EQ(Formatted<TypeParam>("%pA|%16pA|%-14pA|", address, address, address), "192.168.1.20|    192.168.1.20|192.168.1.20  |");
  EXPECT_EQ(Formatted<TypeParam>("%pI|%.7pI|%pA", socket, socket, nullptr), "10.0.0.1:8080|10.0.0.|(null)");
  EXPECT_EQ(Formatted<TypeParam>("%p;%09pp|%pX", reinterpret_cast<void*>(0x1234), reinterpret_cast<void*>(0xbeef), nullptr),
            "1234beef|0") << "the sub-type is consumed; no padding for a value";
  EXPECT_EQ(Formatted<TypeParam>("%p", reinterpret_cast<void*>(0xabc)), "abc") << "ending right after p";
  if (sizeof(void*) == 8) {
    EXPECT_EQ(Formatted<TypeParam>("%p.", reinterpret_cast<void*>(uintptr_t(0x123456789abcdef0ULL))), "123456789abcdef0");
  }
}

TYPED_TEST(Format, ResultGetsTheBlockOfTheGrowthRuleAndArgumentsInsideTheTargetAreReadAsBefore) {
  // 256 characters at least, else the size group of length + 1 (the string
  // tests check the groups and that a private block with room is kept).
  for (int length : {255, 256}) {
    TypeParam s;
    s.Format(Widen<TypeParam>(OwnText<TypeParam>()).c_str(), Widen<TypeParam>(std::string(length, 'x')).c_str());
    EXPECT_EQ(std::tuple(s.GetLength(), s.GetAllocLength()), std::tuple(length, length == 255 ? 256 : 512));
  }
  TypeParam shared(Widen<TypeParam>("keep").c_str()), other(shared);  // a shared one is left alone
  shared.Format(Widen<TypeParam>("new").c_str());
  EXPECT_EQ(Bytes(shared) + Bytes(other), "newkeep");
  // (The fuzz target puts the format inside the target.)
  TypeParam s(Widen<TypeParam>("hello").c_str());
  const CharOf<TypeParam>* inside = s;
  const std::string head(600, 'y'), own = OwnText<TypeParam>();
  s.Format(Widen<TypeParam>(head + own + "][" + own).c_str(), inside, inside);
  EXPECT_EQ(Bytes(s), head + "hello][hello") << "read as before the call, even when the result moves";
}

TYPED_TEST(Format, HugeWidthsAndPrecisionsAreBounded) {
  const IntRow rows[] = {
      {"%2147483648d", 'x', 0, 0, ""},  // digits beyond the int range
      {"%*d", INT_MIN, 'x', 0, ""},     // the most negative * width: left-justified
      {"%.*d", INT_MAX, 'x', 0, ""},    // zeros up to the bound
  };
  for (const IntRow& r : rows) EXPECT_EQ(Formatted<TypeParam>(r.format, r.a, r.b).size(), size_t(KA_FORMAT_MAX_FIELD));
  EXPECT_EQ(Formatted<TypeParam>("%*d|", INT_MIN, 5).substr(0, 2), "5 ");
}

TYPED_TEST(Format, FixedExponentAndGeneralNotationsAndExtremeValues) {
  // (The guide's examples and the kalbor tool's cases show "%g" of 1e8,
  // "1.e+8": the point stays, deliberately.)
  const DoubleRow rows[] = {
      {"%f|%.2f|%e|%g|%#g", 0.0, "0|0.00|0.e+00|0|0."},  // zero in each notation
      {"%f", -0.0, "0"},                                  // negative zero has no sign
      {"%f|%.1f|%e|%.0e", 2.0, "2|2.0|2.e+00|2e+00"},     // no %f precision: zeros and point go; %e never padded
      {"%.3f", 0.005, "0.0050"},                          // below 0.1 one digit fewer (deliberate)
      {"%.3f", 0.05, "0.050"},
      {"%.2f|%.1f|%e|%.3e|%.1e", 0.0625, "0.06|0.1|6.25e-02|6.3e-02|6.e-02"},  // rounded, half up, one digit kept
      {"%.3f|%.1f", 0.001953125, "0.0020|0.00"},          // 2^-9: no digit within one place
      {"%.2f", 9.999, "10.00"},                           // a carry out of the first digit
      {"%.0f|%#.0f", 2.75, "2|2."},                       // precision 0 truncates
      {"%f|%e", kOnePlus, "1.00000000000091|1.0000000000009e+00"},  // 15 digits (14 for %e), rounded by the next
      {"%f|%e", 1e22, "10000000000000000000000|1.0000000000000e+22"},  // zeros past 15 digits; up to 14 kept
      {"%08.2f|%-08.1f|", -1.5, "-0001.50|-1.50000|"},   // zeros after the sign, and on the right (e, g alike)
      {"%.2e|%E", 12345.0, "1.2345e+04|1.2345E+04"},      // precision counts fixed places (deliberate)
      {"%.1e", 1e-100, "1.e-100"},                        // three exponent digits
      {"%g|%#g|%+g|% lg", 0.25, ".25|.25|+.25| .25"},    // no leading zero (deliberate); the sign flags
      {"%g", 120000.0, "120000"},                         // four zeros past the digits
      {"%g|%G", 1200000.0, "1.2e+6|1.2E+6"},              // five: the exponent form
      {"%g", 0.0009765625, ".0009765625"},                // 2^-10: point position -3
      {"%g", 0.00006103515625, "6.103515625e-5"},         // 2^-14: below it
      {"%.3g|%.0g", 0.1875, ".188|.2"},                   // the digit at the cap rounds; precision 0 is 1
      {"%e|%E|%.0e", kInf, "1.#INF|1.#INF|1#INFe-01"},    // no exponent after "#"; without the point "#" is not third
      {"%f|%.2f|%g", -kInf, "-0.1#INF|-0.1#|-.1#INF"},    // the digits after "0.", zeros stripped
      {"%e|%8e", kNaN, "1.#INF|  1.#INF"},                // a NaN is an infinity of its sign
      {"%e", -kNaN, "-1.#INF"},
  };
  for (const DoubleRow& r : rows) {
    const double v = r.value;
    EXPECT_EQ(Formatted<TypeParam>(r.format, v, v, v, v, v), r.expected) << r.format;
  }
  EXPECT_EQ(Formatted<TypeParam>("%f", DBL_MAX).size(), 309u);
  EXPECT_EQ(Formatted<TypeParam>("%.1f", DBL_TRUE_MIN), "0." + std::string(323, '0')) << "no digit within the places";
  const std::string e = Formatted<TypeParam>("%e|%e|%g", DBL_MAX, DBL_TRUE_MIN, DBL_MIN);
  EXPECT_EQ(e.substr(0, 13), "1.79769313486") << e;
  EXPECT_EQ(e.substr(e.find('e')), "e+308|5.e-324|2.e-308") << "the smallest keep one digit, rounded";
}

// ---- What differs between the two engines ------------------------------------

TEST(FormatWidths, WideCharactersSignExtendAndOtherWidthTextsUseTheLocaleCodePage) {
  EXPECT_EQ(Formatted<Ka_AString>("%c", 0xE9), "\xE9");
  EXPECT_EQ(Formatted<Ka_WString>("%c%c", 0xE9, 0x7F), "<FFE9>\x7F");  // deliberate
  const unsigned int saved = KaSetLocaleCP(65001);
  EXPECT_EQ(Formatted<Ka_AString>("%s|%.1s", KA_W("\u00e9"), KA_W("\u00e9")), "\xC3\xA9|\xC3") << "truncated in bytes";
  EXPECT_EQ(Formatted<Ka_WString>("%hs", "\xC3\xA9\xE2\x82\xAC"), "\xE9<20AC>");
  KaSetLocaleCP(saved);
  Ka_WString s;
  const ka_wchar* const text = s.FormatA("%d %s %hs", 42, KA_W("wide"), "narrow");
  EXPECT_EQ(text, static_cast<const ka_wchar*>(s));
  EXPECT_EQ(Bytes(s), "42 wide narrow") << "FormatA takes a narrow format";
}

// ---- The digit generator --------------------------------------------------------

// The digit generator as plain double steps: each integer digit from the
// fraction of integer / 10, each fraction digit from fraction x 10, then the
// rounding at the cut-off. The generator takes 64-bit integer shortcuts
// through both loops; its digits must be these, every step's rounding
// included.
void DoubleStepDigits(double value, int cap, int places, bool exponentMode, ka_detail::Ka_FloatDigits* out) {
  cap = std::min(std::max(cap, 1), int(ka_detail::Ka_FloatDigits::kMaxCap));
  char reversed[320], *d = out->digits;
  int integerDigits = 0, point = 0, n = 0;
  double integer, fraction = std::modf(std::fabs(value), &integer);
  if (integer != 0) {
    while (integer != 0) reversed[integerDigits++] = char('0' + int((std::modf(integer / 10, &integer) + .03) * 10));
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
    for (double digit; n <= cutoff && fraction != 0; d[n++] = char('0' + int(digit)))
      fraction = std::modf(fraction * 10, &digit);
  }
  if (cutoff >= 0 && cutoff < n) {
    // 5 added at the cut-off and carried; out of the first digit it makes
    // that digit "1", one place further left.
    int p = cutoff;
    for (d[p] = char(d[p] + 5); p > 0 && d[p] > '9'; ++d[--p]) d[p] = '0';
    const bool carriedOut = d[0] > '9';
    if (carriedOut) {
      d[0] = '1';
      ++out->point;
    }
    n = carriedOut && !exponentMode ? (cutoff > 0 ? (d[cutoff] = '0', cutoff + 1) : 1) : cutoff;
  }
  out->count = n;
}

// (The notation rows above check how the engine lays these digits out.)
TEST(FloatDigits, IntegerShortcutsGiveTheDoubleStepsDigits) {
  std::mt19937_64 random(20261124);
  for (int i = 0; i < 300000; ++i) {
    // Any finite double, integers of every size with and without a fraction
    // (across the 2^49 seam), and decimal-looking values.
    const uint64_t bits = random();
    double value = double(int64_t(bits >> (random() % 64))) / std::pow(10.0, double(random() % 20));
    if (i % 3 == 0) std::memcpy(&value, &bits, 8);
    if (i % 3 == 1) value = std::ldexp(double(bits >> 11), int(random() % 110) - 53);
    if (!std::isfinite(value) || value == 0) continue;
    const int cap = 1 + int(random() % 31), places = int(random() % 40) - 5;
    const bool exponentMode = (random() & 1) != 0;
    ka_detail::Ka_FloatDigits got, want;
    ka_detail::GenerateFloatDigits(value, cap, places, exponentMode, &got);
    DoubleStepDigits(value, cap, places, exponentMode, &want);
    ASSERT_EQ(std::tuple(std::string(got.digits, size_t(got.count)), got.point, got.negative),
              std::tuple(std::string(want.digits, size_t(want.count)), want.point, want.negative))
        << value << " cap " << cap << " places " << places << " exponent " << exponentMode;
  }
}
