// Helpers of the code-page tests: texts as strings of bytes and of 16-bit
// units, converted through the library's own converters, with the result
// and the sentinel past it checked in one place.
#ifndef KALBOR_TESTS_CODEPAGE_CONVERSIONS_H
#define KALBOR_TESTS_CODEPAGE_CONVERSIONS_H

#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <string>

#include "codepage/converters.h"

typedef std::basic_string<ka_wchar> WText;

// A text of ka_wchar from a zero-terminated char16_t text (the two types
// differ on Windows), or from a list of units (which may hold zeros).
inline WText W(const char16_t* s) {
  WText w;
  for (; *s != 0; ++s) w.push_back(static_cast<ka_wchar>(*s));
  return w;
}
inline WText W(std::initializer_list<unsigned> units) {
  WText w;
  for (unsigned u : units) w.push_back(static_cast<ka_wchar>(u));
  return w;
}

// A conversion's units or bytes and its return value.
struct WideResult {
  int result;
  WText text;
};
struct NarrowResult {
  int result;
  std::string text;
};

// The library's converter on the whole of src, with room for exactly what
// it needs plus a sentinel that must survive.
inline WideResult ToWide(unsigned cp, const std::string& src) {
  const int need = ka_codepage::ToWide(cp, src.data(), static_cast<int>(src.size()), nullptr, 0);
  WText buf(static_cast<size_t>(need) + 1, static_cast<ka_wchar>(0xBEEF));
  const int n = ka_codepage::ToWide(cp, src.data(), static_cast<int>(src.size()), &buf[0], need);
  EXPECT_EQ(buf[static_cast<size_t>(need)], static_cast<ka_wchar>(0xBEEF)) << "wrote past dstSize, page " << cp;
  EXPECT_EQ(n, need) << "measured and written lengths differ, page " << cp;
  return {n, buf.substr(0, n > 0 ? static_cast<size_t>(n) : 0)};
}
inline NarrowResult ToNarrow(unsigned cp, const WText& src) {
  const int need = ka_codepage::ToNarrow(cp, src.data(), static_cast<int>(src.size()), nullptr, 0);
  std::string buf(static_cast<size_t>(need) + 1, '\x5A');
  const int n = ka_codepage::ToNarrow(cp, src.data(), static_cast<int>(src.size()), &buf[0], need);
  EXPECT_EQ(buf[static_cast<size_t>(need)], '\x5A') << "wrote past dstSize, page " << cp;
  EXPECT_EQ(n, need) << "measured and written lengths differ, page " << cp;
  return {n, buf.substr(0, n > 0 ? static_cast<size_t>(n) : 0)};
}

// Every code page the library converts.
const unsigned kLibraryPages[] = {874,   1250,  1251,  1252,  1253,  1254,  1255,  1256,  1257,  1258,
                                  708,   720,   850,   852,   862,   866,   28592, 28593, 28594, 28595,
                                  28596, 28597, 28598, 38598, 20866, 21866, 932,   936,   949,   950,
                                  51932, 50220, 50225, 52936, 65001};

// Units as hexadecimal, for failure messages.
inline std::string Hex(const WText& w) {
  std::string s;
  char buf[8];
  for (ka_wchar c : w) {
    std::snprintf(buf, sizeof(buf), "%04x ", static_cast<unsigned>(static_cast<uint16_t>(c)));
    s += buf;
  }
  return s;
}
inline std::string Hex(const std::string& b) {
  std::string s;
  char buf[8];
  for (char c : b) {
    std::snprintf(buf, sizeof(buf), "%02x ", static_cast<unsigned>(static_cast<unsigned char>(c)));
    s += buf;
  }
  return s;
}

#endif  // KALBOR_TESTS_CODEPAGE_CONVERSIONS_H
