// Helpers of the fuzz targets: wide text from input bytes, the text of a
// library string, and a check that stops the run the way a sanitizer report
// does.
#ifndef KALBOR_FUZZ_FUZZ_SUPPORT_H
#define KALBOR_FUZZ_FUZZ_SUPPORT_H

#include <kalbor/kalbor.h>

#include <cstdio>
#include <cstdlib>
#include <string>

typedef std::basic_string<ka_wchar> WText;

// Each pair of bytes as one 16-bit unit, low byte first; an odd last byte
// stands alone.
inline WText Wide(const std::string& bytes) {
  WText w((bytes.size() + 1) / 2, 0);
  for (size_t i = 0; i < bytes.size(); ++i)
    w[i / 2] |= static_cast<ka_wchar>(static_cast<unsigned char>(bytes[i]) << i % 2 * 8);
  return w;
}

// The input's text in the width of C: the bytes, or Wide of them.
template <class C>
std::basic_string<C> Units(const std::string& bytes) {
  if constexpr (sizeof(C) == 1) return bytes;
  else return Wide(bytes);
}

// A broken property is a finding: abort, so that libFuzzer keeps the input.
inline void Check(bool ok, const char* what) {
  if (ok) return;
  std::fprintf(stderr, "property broken: %s\n", what);
  std::abort();
}

// The text of a library string (Ka_AString, Ka_WString); none when it is null.
template <class S, class C = typename S::Traits::Char>
std::basic_string<C> Text(const S& s) {
  const C* p = s;
  return p != nullptr ? std::basic_string<C>(p, static_cast<size_t>(s.GetLength())) : std::basic_string<C>();
}

#endif  // KALBOR_FUZZ_FUZZ_SUPPORT_H
