// On Windows (and under Wine): the library's own converters beside the
// system's MultiByteToWideChar and WideCharToMultiByte, measuring and
// converting, for every byte, byte pair and unit of every page the system
// converts, and every three-byte UTF-8 input and surrogate pair (a
// converter reads a character at a time). Inputs on which Wine's UTF-8 decoder takes more than the maximal
// ill-formed subpart (see WineTakesMore), at odds with Windows and the
// Unicode Standard, which the library follows, are left to pages_test.cpp.
// The rules for a destination too small are checked on every platform by
// convert_test.cpp.
#include <windows.h>

#include <type_traits>
#include <utility>

#include "tests/codepage/conversions.h"

namespace {

// One conversion of s by the system or by the library into room for 64
// units (dstSize 0: measuring only): the result and the text written.
template <class In, class Out = std::conditional_t<std::is_same<In, std::string>::value, WText, std::string>>
std::pair<int, Out> Convert(bool system, unsigned cp, const In& s, int dstSize) {
  Out out(64, 0);
  const auto dst = dstSize != 0 ? &out[0] : nullptr;
  int n;
  if constexpr (std::is_same<In, std::string>::value)
    n = system ? MultiByteToWideChar(cp, 0, s.data(), int(s.size()), dst, dstSize)
               : ka_codepage::ToWide(cp, s.data(), int(s.size()), dst, dstSize);
  else
    n = system ? WideCharToMultiByte(cp, 0, s.data(), int(s.size()), dst, dstSize, nullptr, nullptr)
               : ka_codepage::ToNarrow(cp, s.data(), int(s.size()), dst, dstSize);
  out.resize(dstSize != 0 && n > 0 ? size_t(n) : 0);
  return {n, out};
}

// Whether Wine's UTF-8 decoder takes more than a maximal subpart of s: after
// a lead byte that announces more bytes than the input has left (it takes
// them all), and after E0, ED, F0 or F4 followed by a continuation byte
// outside that lead's narrower range (it takes the two).
bool WineTakesMore(const std::string& s) {
  static const size_t kLength[16] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 2, 3, 4};
  for (size_t i = 0; i < s.size(); ++i) {
    const unsigned b = static_cast<unsigned char>(s[i]);
    const unsigned c = i + 1 < s.size() ? static_cast<unsigned char>(s[i + 1]) : 0;
    const unsigned lo = b == 0xE0 ? 0xA0 : b == 0xF0 ? 0x90 : 0x80, hi = b == 0xED ? 0x9F : b == 0xF4 ? 0x8F : 0xBF;
    if (b >= 0xC2 && b <= 0xF4 && (i + kLength[b >> 4] > s.size() || (c >= 0x80 && c <= 0xBF && (c < lo || c > hi))))
      return true;
  }
  return false;
}

// Compares one input, measured and converted; the first ten differences are
// reported.
template <class In>
void Compare(unsigned cp, const In& in, long* differences) {
  if constexpr (std::is_same<In, std::string>::value)
    if (cp == CP_UTF8 && WineTakesMore(in)) return;
  for (int size : {0, 64}) {
    const auto system = Convert(true, cp, in, size), library = Convert(false, cp, in, size);
    if (system != library && ++*differences <= 10)
      ADD_FAILURE() << cp << ": input " << ::testing::PrintToString(in) << " size " << size << ": system "
                    << ::testing::PrintToString(system) << ", library " << ::testing::PrintToString(library);
  }
}

TEST(WindowsComparison, EveryByteBytePairAndUnitAsTheSystemConvertsThem) {
  long pages = 0, differences = 0;
  for (unsigned cp : kLibraryPages) {
    if (!IsValidCodePage(cp)) continue;  // the library converts it alone
    ++pages;
    for (unsigned a = 0; a < 0x100; ++a) {
      Compare(cp, std::string(1, char(a)), &differences);
      for (unsigned b = 0; b < 0x100; ++b) Compare(cp, std::string{char(a), char(b)}, &differences);
    }
    for (unsigned u = 0; u < 0x10000; ++u) Compare(cp, W({u}), &differences);
    if (cp == CP_UTF8) {
      for (unsigned a = 0xE0; a <= 0xF4; ++a)
        for (unsigned b = 0; b < 0x10000; ++b) Compare(cp, std::string{char(a), char(b >> 8), char(b)}, &differences);
      for (unsigned hi = 0xD800; hi < 0xE000; ++hi)
        for (unsigned lo = 0xD800; lo < 0xE000; lo += (hi < 0xDC00 ? 1 : 0x41)) Compare(cp, W({hi, lo}), &differences);
    }
  }
  EXPECT_GE(pages, 29);  // every table page and UTF-8
}

}  // namespace
