// Helpers of the fuzz targets: wide text from input bytes, and a check that
// stops the run the way a sanitizer report does.
#ifndef KALBOR_FUZZ_FUZZ_SUPPORT_H
#define KALBOR_FUZZ_FUZZ_SUPPORT_H

#include <kalbor/platform.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

typedef std::basic_string<ka_wchar> WText;

// Each pair of bytes as one 16-bit unit, low byte first; an odd last byte
// stands alone.
inline WText Wide(const std::string& bytes) {
  WText w;
  for (size_t i = 0; i < bytes.size(); i += 2) {
    unsigned unit = static_cast<unsigned char>(bytes[i]);
    if (i + 1 < bytes.size()) unit |= static_cast<unsigned>(static_cast<unsigned char>(bytes[i + 1])) << 8;
    w.push_back(static_cast<ka_wchar>(unit));
  }
  return w;
}

// A broken property is a finding: abort, so that libFuzzer keeps the input.
inline void Check(bool ok, const char* what) {
  if (ok) return;
  std::fprintf(stderr, "property broken: %s\n", what);
  std::abort();
}

// A library string (Ka_AString, Ka_WString) holds exactly text.
template <class S, class C>
bool Holds(const S& s, const std::basic_string<C>& text) {
  return static_cast<size_t>(s.GetLength()) == text.size() &&
         (text.empty() || std::memcmp(static_cast<const C*>(s), text.data(), text.size() * sizeof(C)) == 0);
}

// The text of a library string.
template <class C, class S>
std::basic_string<C> Text(const S& s) {
  const C* p = s;
  return p != nullptr ? std::basic_string<C>(p, static_cast<size_t>(s.GetLength())) : std::basic_string<C>();
}

#endif  // KALBOR_FUZZ_FUZZ_SUPPORT_H
