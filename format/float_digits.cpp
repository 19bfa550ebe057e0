// The decimal digit generator of the floating-point conversions: an
// ecvt/fcvt-style routine on plain binary64 arithmetic. Its digits are part
// of the library's output, so every operation below is done exactly as
// written, in this order: the sources of this folder are compiled without
// floating-point contraction (no fused multiply-add), and excess precision
// would change the digits too.
#include "format/float_digits.h"

#include <kalbor/util.h>

#include "platform/bits.h"

#include <cfloat>
#include <cstdint>

#if !defined(FLT_EVAL_METHOD) || FLT_EVAL_METHOD != 0
#error "the digit generator needs double arithmetic without excess precision (x87: use -msse2 -mfpmath=sse)"
#endif

namespace ka_detail {

namespace {
// Room for every integer digit of the largest double (309 of them).
constexpr int kIntegerArea = 320;

// Below this, an integer's digits from the loop's double steps are its exact
// decimal digits: integer / 10 then lies within 2^-7 of k + r / 10 (for
// integer = 10k + r), which truncates to k and leaves a tenth that gives r.
// There the loop goes on in 64-bit integers, with the same digits.
constexpr double kExactIntegerDigits = 562949953421312.0;  // 2^49

// Every fraction the digit loop meets is a multiple of 2^-56: a value of 1
// or more leaves a fraction on its own grid (2^-52 or coarser), a smaller
// one is scaled to at least 0.1 (grid 2^-56), and each step's fraction lies
// on a coarser grid than the one before. So the loop runs on the fraction's
// 2^56 multiple in a 64-bit integer, where x 10 is exact and the double
// multiplication's rounding is done by hand.
constexpr int kFractionBits = 56;
constexpr uint64_t kFractionOne = uint64_t(1) << kFractionBits;

// fraction x 10 rounded to 53 significant bits, to nearest, ties to even,
// as the double multiplication rounds it; fraction < 2^56, so no overflow.
inline uint64_t TimesTenRounded(uint64_t fraction) {
  uint64_t p = fraction * 10;
  const int extra = ka_bit_width64(p) - 53;
  if (extra > 0) {
    const uint64_t low = p & ((uint64_t(1) << extra) - 1);
    const uint64_t half = uint64_t(1) << (extra - 1);
    p >>= extra;
    if (low > half || (low == half && (p & 1) != 0)) ++p;
    p <<= extra;
  }
  return p;
}

// modf for a finite value >= 0, without the library call: below 2^52 the
// integer part is exact as a 64-bit integer and x minus it is exact too;
// from 2^52 up every double is an integer.
inline double SplitFraction(double x, double* integer) {
  if (x < 4503599627370496.0) {
    *integer = static_cast<double>(static_cast<int64_t>(x));
    return x - *integer;
  }
  *integer = x;
  return 0.0;
}
}  // namespace

void GenerateFloatDigits(double value, int cap, int places, bool exponentMode, Ka_FloatDigits* out) {
  if (cap > Ka_FloatDigits::kMaxCap) cap = Ka_FloatDigits::kMaxCap;
  if (cap < 1) cap = 1;
  char* const d = out->digits;
  out->count = 0;
  out->point = 0;
  out->negative = false;

  // Infinity, and a NaN with it (ka_isinf counts a NaN as an infinity of its
  // sign): the digit string "1#INF" (deliberate).
  const int infinity = ka_isinf(value);
  if (infinity != 0) {
    const char text[] = "1#INF";
    for (int i = 0; i < 5; ++i) d[i] = text[i];
    out->count = 5;
    out->negative = infinity < 0;
    return;
  }
  if (value < 0) {
    out->negative = true;
    value = -value;
  }
  if (value == 0) {  // one "0" before the point, so every layout shows a zero
    d[0] = '0';
    out->count = 1;
    out->point = 1;
    return;
  }

  double integer;
  double fraction = SplitFraction(value, &integer);
  int point = 0;
  char reversed[kIntegerArea];
  int integerDigits = 0;
  if (integer != 0) {
    // From the right: each digit is the integer part of (the fraction of
    // integer / 10 + 0.03) x 10. The loop ends: integer / 10 truncated is
    // below integer until it reaches 0, after at most 309 steps.
    while (integer >= kExactIntegerDigits && integerDigits < kIntegerArea) {
      const double tenth = SplitFraction(integer / 10, &integer);
      reversed[integerDigits++] = static_cast<char>('0' + static_cast<int>((tenth + .03) * 10));
    }
    for (uint64_t rest = static_cast<uint64_t>(integer); rest != 0 && integerDigits < kIntegerArea; rest /= 10)
      reversed[integerDigits++] = static_cast<char>('0' + rest % 10);
    point = integerDigits;
  } else {
    // A value below 1: scale it up to just below 1, one step per decade.
    double scaled;
    while ((scaled = fraction * 10) < 1) {
      fraction = scaled;
      --point;
    }
  }
  out->point = point;

  int cutoff = places >= 1 && point + places < cap ? point + places : cap;
  if (exponentMode && cutoff < 1) cutoff = 1;  // exponent forms keep one digit
  if (cutoff < 0) return;                      // nothing left at these places

  // The digits up to and including the one at the cut-off, which rounds:
  // the leading integer digits, then fraction digits until the fraction is
  // exactly zero.
  int n = 0;
  while (integerDigits > 0 && n <= cutoff) d[n++] = reversed[--integerDigits];
  uint64_t rest = static_cast<uint64_t>(fraction * static_cast<double>(kFractionOne));  // exact
  while (n <= cutoff && rest != 0) {
    const uint64_t tenfold = TimesTenRounded(rest);
    d[n++] = static_cast<char>('0' + (tenfold >> kFractionBits));
    rest = tenfold & (kFractionOne - 1);
  }

  if (cutoff < n) {
    int p = cutoff;
    d[p] = static_cast<char>(d[p] + 5);
    bool carriedOut = false;
    while (d[p] > '9') {
      d[p] = '0';
      if (p > 0) {
        --p;
        d[p] = static_cast<char>(d[p] + 1);
      } else {
        d[0] = '1';
        ++out->point;
        carriedOut = true;
      }
    }
    n = cutoff;
    // Fixed mode keeps the rounded position as one more "0".
    if (carriedOut && !exponentMode) {
      if (cutoff > 0) d[cutoff] = '0';
      n = cutoff + 1;
    }
  }
  out->count = n;
}

}  // namespace ka_detail
