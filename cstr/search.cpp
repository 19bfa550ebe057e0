// Character, substring and set search in zero-terminated text, and counting
// of occurrences.
#include <kalbor/cstr.h>

#include <climits>

#include "cstr/search.h"
#include "cstr/text.h"

namespace ka_cstr {
namespace {

template <class Char>
Char* Writable(const Char* p) {
  return const_cast<Char*>(p);  // the C runtime's convention: const in, plain out
}

// The first character equal to c; the terminator is never found (c = 0 gives
// null, deliberately), nor is a c that no character can equal.
template <class T>
typename T::Char* FirstOf(const typename T::Char* s, int c) {
  if (s == nullptr || c == 0) return nullptr;
  for (; *s != 0; ++s)
    if (T::Value(*s) == c) return Writable(s);
  return nullptr;
}

// The last character equal to c, the terminator included.
template <class T>
typename T::Char* LastOf(const typename T::Char* s, int c) {
  if (s == nullptr) return nullptr;
  const typename T::Char* found = nullptr;
  for (;; ++s) {
    if (T::Value(*s) == c) found = s;
    if (*s == 0) return Writable(found);
  }
}

// The leftmost occurrence of pat in s; s itself for a null or empty pat.
// An exact-case pattern of two or more characters is found by the traits'
// pair scan (the processor's vector code for wide text), which stops at the
// terminator itself: each start whose first two characters match is compared
// in full. Should those comparisons cost more than the text passed over (a
// text full of near-matches), and for the other patterns, the text is
// measured window by window as the search goes, the windows doubling in
// size, and searched with the first-and-last filter. Either way a call costs
// about as much as the text up to the match: a caller that searches again
// from just past each match stays linear in the text, however long it is.
template <class T, bool kFold>
typename T::Char* Occurrence(const typename T::Char* s, const typename T::Char* pat) {
  typedef typename T::Char Char;
  const size_t m = LengthOrZero<T>(pat);
  if (m == 0) return Writable(s);
  if (s == nullptr) return nullptr;
  const Char* p = s;
  if (!kFold && m >= 2) {
    size_t compared = 0;  // characters compared at candidates that failed
    for (;; ++p) {
      p = T::FindPair(p, pat[0], pat[1]);
      if (p == nullptr) return nullptr;
      size_t i = 2;
      while (i < m && p[i] == pat[i]) ++i;  // the text's terminator ends it: pat has none
      if (i == m) return Writable(p);
      compared += i;
      if (compared > static_cast<size_t>(p - s) + 4096) break;
    }
  }
  Searcher<T, kFold> searcher(pat, m);
  size_t window = 256;  // starts examined per round
  for (;;) {
    // Every start of this window has room for a whole match, or the text ends.
    const size_t have = T::LengthUpTo(p, window + m - 1);
    if (const Char* hit = searcher.Find(p, have)) return Writable(hit);
    if (have < window + m - 1) return nullptr;
    p += window;
    if (window < 65536) window *= 2;
  }
}

template <class T>
typename T::Char* FirstInSet(const typename T::Char* s, const typename T::Char* set) {
  if (s == nullptr || *s == 0) return nullptr;
  if (set == nullptr) return Writable(s);
  for (; *s != 0; ++s)
    if (InSet(set, *s)) return Writable(s);
  return nullptr;
}

template <class T>
int SpanOfSet(const typename T::Char* s, const typename T::Char* set) {
  if (s == nullptr || set == nullptr) return -1;
  const typename T::Char* p = s;
  while (*p != 0 && InSet(set, *p)) ++p;
  return static_cast<int>(p - s);
}

// Non-overlapping occurrences, left to right. A null or empty pattern would
// match forever at the same place; it counts 0 instead.
template <class T>
int CountOccurrences(const typename T::Char* s, const typename T::Char* pat) {
  const size_t m = LengthOrZero<T>(pat);
  if (s == nullptr || m == 0) return 0;
  const typename T::Char* const end = s + T::Length(s);
  Searcher<T, false> searcher(pat, m);
  int count = 0;
  for (const typename T::Char* p = s; count < INT_MAX; ++count) {
    p = searcher.Find(p, static_cast<size_t>(end - p));
    if (p == nullptr) break;
    p += m;
  }
  return count;
}

}  // namespace
}  // namespace ka_cstr

using ka_cstr::NarrowText;
using ka_cstr::WideText;

ka_wchar* ka_strchrW(const ka_wchar* s, int c) { return ka_cstr::FirstOf<WideText>(s, c); }
char* ka_strrchrA(const char* s, int c) { return ka_cstr::LastOf<NarrowText>(s, c); }
ka_wchar* ka_strrchrW(const ka_wchar* s, int c) { return ka_cstr::LastOf<WideText>(s, c); }

ka_wchar* ka_strstrW(const ka_wchar* s, const ka_wchar* pat) { return ka_cstr::Occurrence<WideText, false>(s, pat); }
char* ka_stristrA(const char* s, const char* pat) { return ka_cstr::Occurrence<NarrowText, true>(s, pat); }
ka_wchar* ka_stristrW(const ka_wchar* s, const ka_wchar* pat) { return ka_cstr::Occurrence<WideText, true>(s, pat); }

char* ka_strpbrkA(const char* s, const char* set) { return ka_cstr::FirstInSet<NarrowText>(s, set); }
ka_wchar* ka_strpbrkW(const ka_wchar* s, const ka_wchar* set) { return ka_cstr::FirstInSet<WideText>(s, set); }
int ka_strspnA(const char* s, const char* set) { return ka_cstr::SpanOfSet<NarrowText>(s, set); }
int ka_strspnW(const ka_wchar* s, const ka_wchar* set) { return ka_cstr::SpanOfSet<WideText>(s, set); }

int ka_countstrA(const char* s, const char* pat) { return ka_cstr::CountOccurrences<NarrowText>(s, pat); }
int ka_countstrW(const ka_wchar* s, const ka_wchar* pat) { return ka_cstr::CountOccurrences<WideText>(s, pat); }
