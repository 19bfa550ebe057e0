// The decimal digit generator behind every floating-point conversion of the
// format engine (internal).
#ifndef KALBOR_FORMAT_FLOAT_DIGITS_H
#define KALBOR_FORMAT_FLOAT_DIGITS_H

namespace ka_detail {

// The digits of one value: digits[0..count) are decimal digit characters
// (or "1#INF" for an infinity), the value being 0.d1d2... x 10^point.
struct Ka_FloatDigits {
  // The largest digit cap: the generator keeps at most cap + 1 digits, plus
  // one more "0" after a carry in fixed mode.
  static constexpr int kMaxCap = 30;
  char digits[kMaxCap + 2];
  int count;
  int point;     // digits before the decimal point; negative below 0.1
  bool negative;
};

// Generates the digits of value, rounded at the cut-off: point + places when
// places >= 1 and that is below cap, else cap (a cap above 30 counts as 30).
// In fixed mode a negative cut-off leaves no digits; in exponent mode the
// cut-off is at least 1. Infinity gives "1#INF" with point 0, and so does a
// NaN (as ka_isinf sees it); zero gives "0" with point 1.
void GenerateFloatDigits(double value, int cap, int places, bool exponentMode, Ka_FloatDigits* out);

}  // namespace ka_detail

#endif  // KALBOR_FORMAT_FLOAT_DIGITS_H
