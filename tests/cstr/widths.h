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

// A literal of width C that may be null, in a writable buffer with 16 spare
// places after its terminator.
template <class C>
struct Arg {
  explicit Arg(const char* s) : null(s == nullptr), buf(Txt<C>(s ? s : "")) {
    const size_t end = buf.size();
    buf.append(17, C('#'));
    buf[end] = 0;
  }
  C* p() { return null ? nullptr : &buf[0]; }
  std::basic_string<C> held() const { return buf.c_str(); }  // up to the terminator
  bool null;
  std::basic_string<C> buf;
};

#define KA_FN(name, S) static constexpr auto name = ka_##name##S;
#define KA_WIDTH_FUNCTIONS(S)                                                                 \
  KA_FN(strncmp, S) KA_FN(stricmp, S) KA_FN(strnicmp, S) KA_FN(strncat, S) KA_FN(substr, S) \
  KA_FN(right, S) KA_FN(replace, S) KA_FN(strrchr, S) KA_FN(stristr, S) KA_FN(strpbrk, S)  \
  KA_FN(strspn, S) KA_FN(countstr, S) KA_FN(strlwr, S) KA_FN(strupr, S) KA_FN(strrev, S)   \
  KA_FN(skipspace, S) KA_FN(findskip, S) KA_FN(findrskip, S) KA_FN(ltrim, S)               \
  KA_FN(rtrim, S) KA_FN(trim, S) KA_FN(lpad, S) KA_FN(rpad, S) KA_FN(packstr, S)           \
  KA_FN(findbrace, S) KA_FN(trimbrace, S) static constexpr auto strdup = _ka_strdup##S;

struct Narrow {
  typedef char Char;
  KA_WIDTH_FUNCTIONS(A)
};
struct Wide {
  typedef ka_wchar Char;
  KA_WIDTH_FUNCTIONS(W)
};
typedef ::testing::Types<Narrow, Wide> BothWidths;

// A typed suite over both widths.
#define KA_BOTH_WIDTHS(Suite)                         \
  template <class W>                                  \
  class Suite : public ::testing::Test {};            \
  TYPED_TEST_SUITE(Suite, BothWidths)

#endif  // KALBOR_TESTS_CSTR_WIDTHS_H
