// Comparison of zero-terminated text: exact and ASCII case-insensitive,
// whole or limited to n characters, wide with wide, narrow with narrow and
// wide with narrow.
#include <kalbor/cstr.h>

#include "cstr/text.h"

namespace ka_cstr {
namespace {

// Compares a (read through TA) with b (read through TB). A null text reads
// as empty but yields exactly -1, 0 or 1; otherwise the raw difference of the
// first pair that differs (deliberately not clamped to -1/0/1). kLimited
// compares at most n characters; kFold compares ASCII-lower-cased values.
template <class TA, class TB, bool kFold, bool kLimited>
int Compare(const typename TA::Char* a, const typename TB::Char* b, int n) {
  if (a == nullptr) return (b != nullptr && *b != 0) ? -1 : 0;
  if (b == nullptr) return *a != 0 ? 1 : 0;
  if (kLimited && n <= 0) return 0;
  for (;;) {
    int x = TA::Value(*a);
    int y = TB::Value(*b);
    if (kFold) {
      x = AsciiLower(x);
      y = AsciiLower(y);
    }
    if (x != y || x == 0) return TA::Diff(x) - TB::Diff(y);
    ++a;
    ++b;
    if (kLimited && --n == 0) return 0;
  }
}

}  // namespace
}  // namespace ka_cstr

using ka_cstr::Compare;
using ka_cstr::NarrowInWideText;
using ka_cstr::NarrowText;
using ka_cstr::WideText;

int ka_strcmpW(const ka_wchar* a, const ka_wchar* b) { return Compare<WideText, WideText, false, false>(a, b, 0); }
int ka_strcmpWA(const ka_wchar* a, const char* b) { return Compare<WideText, NarrowInWideText, false, false>(a, b, 0); }

int ka_strncmpA(const char* a, const char* b, int n) { return Compare<NarrowText, NarrowText, false, true>(a, b, n); }
int ka_strncmpW(const ka_wchar* a, const ka_wchar* b, int n) { return Compare<WideText, WideText, false, true>(a, b, n); }
int ka_strncmpWA(const ka_wchar* a, const char* b, int n) {
  return Compare<WideText, NarrowInWideText, false, true>(a, b, n);
}

int ka_stricmpA(const char* a, const char* b) { return Compare<NarrowText, NarrowText, true, false>(a, b, 0); }
int ka_stricmpW(const ka_wchar* a, const ka_wchar* b) { return Compare<WideText, WideText, true, false>(a, b, 0); }
int ka_stricmpWA(const ka_wchar* a, const char* b) { return Compare<WideText, NarrowInWideText, true, false>(a, b, 0); }

int ka_strnicmpA(const char* a, const char* b, int n) { return Compare<NarrowText, NarrowText, true, true>(a, b, n); }
int ka_strnicmpW(const ka_wchar* a, const ka_wchar* b, int n) { return Compare<WideText, WideText, true, true>(a, b, n); }
int ka_strnicmpWA(const ka_wchar* a, const char* b, int n) {
  return Compare<WideText, NarrowInWideText, true, true>(a, b, n);
}
