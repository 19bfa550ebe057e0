// Substring search over text of known length (internal to the library).
//
// A Searcher is made once per pattern and finds the leftmost occurrence in
// any counted text; the replace and count functions reuse it along the whole
// text. A one-character pattern, and any pattern on a short text, is found by
// scanning for its first character (memchr for narrow text; both cases when
// letters match either case) and comparing the rest. Longer texts go through
// a first-and-last filter: for a block of candidate starts at a time, a loop
// without branches (which the compiler turns into vector code) flags the
// starts whose first and last characters both match, and only those are
// compared in full. Either way the leftmost match wins; the cost is linear
// in the text unless the text is full of near-matches of a long pattern.
#ifndef KALBOR_CSTR_SEARCH_H
#define KALBOR_CSTR_SEARCH_H

#include <cstdint>
#include <cstring>

#include "cstr/text.h"

namespace ka_cstr {

// kFold: ASCII letters match either case.
template <class T, bool kFold>
class Searcher {
 public:
  typedef typename T::Char Char;
  typedef typename T::UChar UChar;

  // pat: m characters (m >= 1), kept by pointer.
  Searcher(const Char* pat, size_t m)
      : m_pat(pat), m_len(m), m_first(Key(pat[0])), m_last(Key(pat[m - 1])) {}

  // The leftmost occurrence in the n characters at s, or null.
  const Char* Find(const Char* s, size_t n) const {
    if (m_len > n) return nullptr;
    if (m_len == 1) return ScanFirst(s, n);
    return Filter(s, n);
  }

 private:
  // Candidate starts examined together by the filter.
  static const size_t kBlock = 64;

  // The character as an unsigned number, lower-cased when folding. Kept in
  // the character's own width so that the filter's vector code stays narrow.
  static UChar Key(Char c) {
    const UChar u = static_cast<UChar>(c);
    if (!kFold) return u;
    return static_cast<UChar>(u | (static_cast<UChar>(u - 'A') < 26 ? 0x20 : 0));
  }
  static bool Same(const Char* a, const Char* b, size_t n) {
    if (!kFold) return std::memcmp(a, b, n * sizeof(Char)) == 0;
    for (size_t i = 0; i < n; ++i)
      if (Key(a[i]) != Key(b[i])) return false;
    return true;
  }

  // First-character scan: each candidate found with T::Find, then compared.
  const Char* ScanFirst(const Char* s, size_t n) const {
    if (m_len > n) return nullptr;
    const Char* const last = s + (n - m_len);  // the last possible start
    const size_t rest = m_len - 1;
    const Char first = m_pat[0];
    const UChar lower = m_first;
    const UChar upper = static_cast<UChar>(kFold && lower >= 'a' && lower <= 'z' ? lower - 0x20 : lower);
    if (lower == upper) {
      for (const Char* p = s; p <= last; ++p) {
        p = T::Find(p, static_cast<size_t>(last - p) + 1, kFold ? static_cast<Char>(lower) : first);
        if (p == nullptr) return nullptr;
        if (Same(p + 1, m_pat + 1, rest)) return p;
      }
      return nullptr;
    }
    // A letter: follow the next lower-case and the next upper-case candidate.
    const Char* nextLower = T::Find(s, n - m_len + 1, static_cast<Char>(lower));
    const Char* nextUpper = T::Find(s, n - m_len + 1, static_cast<Char>(upper));
    while (nextLower != nullptr || nextUpper != nullptr) {
      const Char* p = nextUpper == nullptr || (nextLower != nullptr && nextLower < nextUpper) ? nextLower : nextUpper;
      if (Same(p + 1, m_pat + 1, rest)) return p;
      const size_t left = static_cast<size_t>(last - p);  // candidates after p
      if (p == nextLower)
        nextLower = left == 0 ? nullptr : T::Find(p + 1, left, static_cast<Char>(lower));
      else
        nextUpper = left == 0 ? nullptr : T::Find(p + 1, left, static_cast<Char>(upper));
    }
    return nullptr;
  }

  // The first-and-last filter over whole blocks of starts; the starts left
  // over at the end go to the first-character scan.
  const Char* Filter(const Char* s, size_t n) const {
    const size_t lastIndex = m_len - 1;
    const size_t starts = n - lastIndex;
    size_t i = 0;
    for (; i + kBlock <= starts; i += kBlock) {
      unsigned char flags[kBlock];
      for (size_t j = 0; j < kBlock; ++j)
        flags[j] = static_cast<unsigned char>(static_cast<unsigned>(Key(s[i + j]) == m_first) &
                                              static_cast<unsigned>(Key(s[i + j + lastIndex]) == m_last));
      uint64_t words[kBlock / 8];
      std::memcpy(words, flags, sizeof(flags));
      for (size_t w = 0; w < kBlock / 8; ++w) {
        if (words[w] == 0) continue;  // eight starts without a candidate
        for (size_t j = w * 8; j < w * 8 + 8; ++j)
          if (flags[j] != 0 && Same(s + i + j + 1, m_pat + 1, lastIndex - 1)) return s + i + j;
      }
    }
    return ScanFirst(s + i, n - i);
  }

  const Char* m_pat;
  size_t m_len;
  UChar m_first;  // Key of the first character
  UChar m_last;   // Key of the last character
};

}  // namespace ka_cstr

#endif  // KALBOR_CSTR_SEARCH_H
