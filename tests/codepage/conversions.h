// Helpers of the code-page tests: texts as strings of bytes and of 16-bit
// units, converted through the library's own converters.
#ifndef KALBOR_TESTS_CODEPAGE_CONVERSIONS_H
#define KALBOR_TESTS_CODEPAGE_CONVERSIONS_H

#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <string>

#include "codepage/converters.h"

typedef std::basic_string<ka_wchar> WText;

// A text of ka_wchar from a zero-terminated char16_t text (the two types
// differ on Windows), or from a list of units (which may hold zeros).
inline WText W(const char16_t* s) { return WText(s, s + std::char_traits<char16_t>::length(s)); }
inline WText W(std::initializer_list<unsigned> units) { return WText(units.begin(), units.end()); }

// A converter on the whole of src, into room for exactly what it measured
// (the fuzz target checks that it writes as much, and nothing past it).
template <class Out, class In, class Convert>
Out Converted(Convert convert, unsigned cp, const In& src) {
  const int length = static_cast<int>(src.size()), need = convert(cp, src.data(), length, nullptr, 0);
  Out buf(static_cast<size_t>(need) + 1, typename Out::value_type(0));
  buf.resize(static_cast<size_t>(convert(cp, src.data(), length, &buf[0], need)));
  return buf;
}
inline WText ToWide(unsigned cp, const std::string& src) { return Converted<WText>(ka_codepage::ToWide, cp, src); }
inline std::string ToNarrow(unsigned cp, const WText& src) {
  return Converted<std::string>(ka_codepage::ToNarrow, cp, src);
}

// Every code page the library converts.
const unsigned kLibraryPages[] = {874,   1250,  1251,  1252,  1253,  1254,  1255,  1256,  1257,  1258,  708,   720,
                                  850,   852,   862,   866,   28592, 28593, 28594, 28595, 28596, 28597, 28598, 38598,
                                  20866, 21866, 932,   936,   949,   950,   51932, 50220, 50225, 52936, 65001};

#endif  // KALBOR_TESTS_CODEPAGE_CONVERSIONS_H
