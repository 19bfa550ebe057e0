// Helpers for the formatting tests: texts of either width written as bytes,
// what a string holds read back as bytes, and the rows of the tables.
#ifndef KALBOR_TESTS_FORMAT_FORMAT_SUPPORT_H
#define KALBOR_TESTS_FORMAT_FORMAT_SUPPORT_H

#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <cstdio>
#include <string>
#include <type_traits>

typedef ::testing::Types<Ka_AString, Ka_WString> BothStrings;
template <class S>
using CharOf = typename S::Traits::Char;

// Text of S's width, one character per byte.
template <class S>
std::basic_string<CharOf<S>> Widen(const std::string& bytes) {
  std::basic_string<CharOf<S>> out;
  for (unsigned char b : bytes) out.push_back(static_cast<CharOf<S>>(b));
  return out;
}

// A string of S holding exactly these bytes, zeros included.
template <class S>
S Make(const std::string& bytes) {
  const auto text = Widen<S>(bytes);
  return S(text.data(), static_cast<int>(text.size()));
}

// What s holds over its length, one byte per character; a character above
// 0xFF shows as <XXXX>.
template <class S>
std::string Bytes(const S& s) {
  std::string out;
  char hex[8];
  for (int i = 0; i < s.GetLength(); ++i) {
    const unsigned c = static_cast<std::make_unsigned_t<CharOf<S>>>(static_cast<const CharOf<S>*>(s)[i]);
    std::snprintf(hex, sizeof(hex), "<%04X>", c);
    out += c <= 0xFF ? std::string(1, static_cast<char>(c)) : std::string(hex);
  }
  return out;
}

// s.Format(format widened, args...): what s holds, after checking that
// Format returned s's own buffer.
template <class S, class... A>
std::string Formatted(const std::string& format, A... args) {
  S s;
  const CharOf<S>* result = s.Format(Widen<S>(format).c_str(), args...);
  EXPECT_EQ(result, static_cast<const CharOf<S>*>(s));
  return Bytes(s);
}

// The directive of a text of S's own width.
template <class S>
std::string OwnText() { return sizeof(CharOf<S>) == 1 ? "%hs" : "%s"; }

// Table rows: a format, its arguments (as many ints as the format reads, or
// one double passed for every conversion), the text expected.
struct IntRow { const char* format; int a, b, c; const char* expected; };
struct DoubleRow { const char* format; double value; const char* expected; };

#endif  // KALBOR_TESTS_FORMAT_FORMAT_SUPPORT_H
