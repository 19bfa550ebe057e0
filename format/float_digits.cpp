// The decimal digit generator of the floating-point conversions: an
// ecvt/fcvt-style routine on plain binary64 arithmetic. Its digits are part
// of the library's output, so every operation below is done exactly as
// written, in this order: the sources of this folder are compiled without
// floating-point contraction (no fused multiply-add), and excess precision
// would change the digits too.
#include "format/float_digits.h"

#include <kalbor/util.h>

#include <cfloat>
#include <cstdint>

#if !defined(FLT_EVAL_METHOD) || FLT_EVAL_METHOD != 0
#error "the digit generator needs double arithmetic without excess precision (x87: use -msse2 -mfpmath=sse)"
#endif

namespace ka_detail {

namespace {
// Room for every integer digit of the largest double (309 of them).
constexpr int kIntegerArea = 320;

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
    while (integer != 0 && integerDigits < kIntegerArea) {
      const double tenth = SplitFraction(integer / 10, &integer);
      reversed[integerDigits++] = static_cast<char>('0' + static_cast<int>((tenth + .03) * 10));
    }
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
  while (n <= cutoff && fraction != 0) {
    double digit;
    fraction = SplitFraction(fraction * 10, &digit);
    d[n++] = static_cast<char>('0' + static_cast<int>(digit));
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
