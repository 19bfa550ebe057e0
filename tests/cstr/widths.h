// The narrow and wide forms of the C-string functions behind one name each,
// so that typed tests run the same cases over both widths.
#ifndef KALBOR_TESTS_CSTR_WIDTHS_H
#define KALBOR_TESTS_CSTR_WIDTHS_H

#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <string>

// An ASCII (or Latin-1 byte) literal in the text type of width C.
template <class C>
std::basic_string<C> Txt(const char* s) {
  std::basic_string<C> out;
  for (; *s != 0; ++s) out.push_back(static_cast<C>(static_cast<unsigned char>(*s)));
  return out;
}

// A writable zero-terminated copy with room for `room` more characters.
template <class C>
std::basic_string<C> Buf(const char* s, size_t room = 16) {
  std::basic_string<C> b = Txt<C>(s);
  const size_t end = b.size();
  b.append(room + 1, C('#'));
  b[end] = 0;
  return b;
}

// The text held by a buffer, up to its terminator.
template <class C>
std::basic_string<C> Held(const C* p) {
  return p == nullptr ? std::basic_string<C>() : std::basic_string<C>(p);
}

#define KA_WIDTH_FUNCTIONS(S)                         \
  static constexpr auto strncmp = ka_strncmp##S;      \
  static constexpr auto stricmp = ka_stricmp##S;      \
  static constexpr auto strnicmp = ka_strnicmp##S;    \
  static constexpr auto strncat = ka_strncat##S;      \
  static constexpr auto strdup = _ka_strdup##S;       \
  static constexpr auto substr = ka_substr##S;        \
  static constexpr auto right = ka_right##S;          \
  static constexpr auto strrchr = ka_strrchr##S;      \
  static constexpr auto stristr = ka_stristr##S;      \
  static constexpr auto strpbrk = ka_strpbrk##S;      \
  static constexpr auto strspn = ka_strspn##S;        \
  static constexpr auto countstr = ka_countstr##S;    \
  static constexpr auto strlwr = ka_strlwr##S;        \
  static constexpr auto strupr = ka_strupr##S;        \
  static constexpr auto strrev = ka_strrev##S;        \
  static constexpr auto skipspace = ka_skipspace##S;  \
  static constexpr auto findskip = ka_findskip##S;    \
  static constexpr auto findrskip = ka_findrskip##S;  \
  static constexpr auto ltrim = ka_ltrim##S;          \
  static constexpr auto rtrim = ka_rtrim##S;          \
  static constexpr auto trim = ka_trim##S;            \
  static constexpr auto lpad = ka_lpad##S;            \
  static constexpr auto rpad = ka_rpad##S;            \
  static constexpr auto packstr = ka_packstr##S;      \
  static constexpr auto findbrace = ka_findbrace##S;  \
  static constexpr auto trimbrace = ka_trimbrace##S;  \
  static constexpr auto replace = ka_replace##S;

struct Narrow {
  typedef char Char;
  KA_WIDTH_FUNCTIONS(A)
};
struct Wide {
  typedef ka_wchar Char;
  KA_WIDTH_FUNCTIONS(W)
};
typedef ::testing::Types<Narrow, Wide> BothWidths;

#endif  // KALBOR_TESTS_CSTR_WIDTHS_H
