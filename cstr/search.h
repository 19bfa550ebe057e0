// Substring search over text of known length (internal to the library).
//
// A Searcher is made once per pattern and finds the leftmost occurrence in
// any counted text; the replace and count functions reuse it along the whole
// text. Short texts and short patterns scan for the first character (memchr
// for narrow text, both cases when letters match either case) and compare
// the rest; longer patterns on longer texts use Horspool's shift table,
// which reads about one character in m. Either way the leftmost match wins.
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

  // pat: m characters (m >= 1), kept by pointer.
  Searcher(const Char* pat, size_t m) : m_pat(pat), m_len(m), m_tableReady(false) {}

  // The leftmost occurrence in the n characters at s, or null.
  const Char* Find(const Char* s, size_t n) {
    if (m_len > n) return nullptr;
    if (m_len < kMinShiftPattern || n < kMinShiftText) return ScanFirst(s, n);
    return Horspool(s, n);
  }

 private:
  // Below these sizes building the shift table costs more than it saves.
  static const size_t kMinShiftPattern = 4;
  static const size_t kMinShiftText = 256;
  static const unsigned kMaxShift = 255;

  static int Key(Char c) {
    const int v = static_cast<int>(T::Unit(c));
    return kFold ? AsciiLower(v) : v;
  }
  static bool Same(const Char* a, const Char* b, size_t n) {
    if (!kFold) return std::memcmp(a, b, n * sizeof(Char)) == 0;
    for (size_t i = 0; i < n; ++i)
      if (Key(a[i]) != Key(b[i])) return false;
    return true;
  }

  // First-character scan: each candidate found with T::Find, then compared.
  const Char* ScanFirst(const Char* s, size_t n) const {
    const Char first = m_pat[0];
    const Char* const last = s + (n - m_len);  // the last possible start
    const size_t rest = m_len - 1;
    const int k = Key(first);
    if (!kFold || !IsAsciiLetter(k)) {
      for (const Char* p = s; p <= last; ++p) {
        p = T::Find(p, static_cast<size_t>(last - p) + 1, first);
        if (p == nullptr) return nullptr;
        if (Same(p + 1, m_pat + 1, rest)) return p;
      }
      return nullptr;
    }
    // A letter: follow the next lower-case and the next upper-case candidate.
    const Char lower = static_cast<Char>(AsciiLower(k));
    const Char upper = static_cast<Char>(AsciiUpper(k));
    const Char* nextLower = T::Find(s, n - m_len + 1, lower);
    const Char* nextUpper = T::Find(s, n - m_len + 1, upper);
    while (nextLower != nullptr || nextUpper != nullptr) {
      const Char* p = nextUpper == nullptr || (nextLower != nullptr && nextLower < nextUpper) ? nextLower : nextUpper;
      if (Same(p + 1, m_pat + 1, rest)) return p;
      const size_t left = static_cast<size_t>(last - p);  // candidates after p
      if (p == nextLower)
        nextLower = left == 0 ? nullptr : T::Find(p + 1, left, lower);
      else
        nextUpper = left == 0 ? nullptr : T::Find(p + 1, left, upper);
    }
    return nullptr;
  }

  // Horspool: the window's last character picks the shift. The table is
  // indexed by the low byte of the (folded) character, so wide units that
  // share a low byte share the smallest of their shifts, which stays safe.
  const Char* Horspool(const Char* s, size_t n) {
    if (!m_tableReady) BuildTable();
    const size_t lastIndex = m_len - 1;
    const int lastKey = Key(m_pat[lastIndex]);
    for (size_t pos = 0; pos <= n - m_len;) {
      const int k = Key(s[pos + lastIndex]);
      if (k == lastKey && Same(s + pos, m_pat, lastIndex)) return s + pos;
      pos += m_shift[k & 0xFF];
    }
    return nullptr;
  }

  void BuildTable() {
    const unsigned whole = m_len < kMaxShift ? static_cast<unsigned>(m_len) : kMaxShift;
    std::memset(m_shift, static_cast<int>(whole), sizeof(m_shift));
    for (size_t i = 0; i + 1 < m_len; ++i) {
      const size_t d = m_len - 1 - i;
      m_shift[Key(m_pat[i]) & 0xFF] = static_cast<uint8_t>(d < kMaxShift ? d : kMaxShift);
    }
    m_tableReady = true;
  }

  const Char* m_pat;
  size_t m_len;
  bool m_tableReady;
  uint8_t m_shift[256];
};

}  // namespace ka_cstr

#endif  // KALBOR_CSTR_SEARCH_H
