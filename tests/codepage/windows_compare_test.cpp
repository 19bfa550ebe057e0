// On Windows (and under Wine): the library's own converters beside the
// system's MultiByteToWideChar and WideCharToMultiByte, measuring and
// converting, for every byte, byte pair and unit of every page the system
// converts, every three-byte UTF-8 input and surrogate pair, and random
// texts. The only differences tolerated are Wine's UTF-8 decoder taking
// more than the maximal ill-formed subpart in two cases (see WineTakesMore),
// at odds with Windows and the Unicode Standard, which the library follows.
// The rules for a destination too small are checked on every platform by
// convert_test.cpp.
#include <windows.h>

#include <cstdint>
#include <type_traits>

#include "tests/codepage/conversions.h"

namespace {

template <class Text>
struct Outcome {
  int result;
  Text text;
  bool operator==(const Outcome& o) const { return result == o.result && text == o.text; }
};

// One conversion of in into a buffer of dstSize units (0: measure only), by
// the system or by the library.
template <class Out, class In, class Fn>
Outcome<Out> Run(const In& in, int dstSize, Fn convert) {
  Out out(64, 0);
  const int n = convert(in.data(), static_cast<int>(in.size()), dstSize ? &out[0] : nullptr, dstSize);
  return {n, out.substr(0, dstSize != 0 && n > 0 ? static_cast<size_t>(n) : 0)};
}
Outcome<WText> Convert(bool system, unsigned cp, const std::string& s, int dstSize) {
  return Run<WText>(s, dstSize, [system, cp](const char* p, int n, ka_wchar* d, int size) {
    return system ? MultiByteToWideChar(cp, 0, p, n, d, size) : ka_codepage::ToWide(cp, p, n, d, size);
  });
}
Outcome<std::string> Convert(bool system, unsigned cp, const WText& s, int dstSize) {
  return Run<std::string>(s, dstSize, [system, cp](const ka_wchar* p, int n, char* d, int size) {
    return system ? WideCharToMultiByte(cp, 0, p, n, d, size, nullptr, nullptr)
                  : ka_codepage::ToNarrow(cp, p, n, d, size);
  });
}

// Wine's UTF-8 decoder takes more than the maximal subpart when a lead byte
// announces more bytes than the input has left (it takes them all), and when
// the byte after E0, ED, F0 or F4 is a continuation byte outside that lead's
// narrower range (it takes the two). Returns where the first such lead is,
// or npos.
size_t WineTakesMore(const std::string& s) {
  static const size_t kLength[16] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 2, 3, 4};
  for (size_t i = 0; i < s.size(); ++i) {
    const unsigned b = static_cast<unsigned char>(s[i]);
    if (b < 0xC2 || b > 0xF4) continue;
    if (i + kLength[b >> 4] > s.size()) return i;
    const unsigned c = static_cast<unsigned char>(s[i + 1]);
    if ((b == 0xE0 && c >= 0x80 && c < 0xA0) || (b == 0xED && c >= 0xA0 && c < 0xC0) ||
        (b == 0xF0 && c >= 0x80 && c < 0x90) || (b == 0xF4 && c >= 0x90 && c < 0xC0))
      return i;
  }
  return std::string::npos;
}

// Whether both outputs begin with the units of the input before position i
// (a lead byte, so no character spans it): Wine may differ only from its
// deviation on.
bool AgreeBefore(unsigned cp, const std::string& in, size_t i, const Outcome<WText>& a, const Outcome<WText>& b) {
  const WText head = i == 0 ? WText() : Convert(false, cp, in.substr(0, i), 64).text;
  return a.text.compare(0, head.size(), head) == 0 && b.text.compare(0, head.size(), head) == 0;
}

struct Tally {
  long compared = 0, tolerated = 0, differences = 0;
};

// Compares one input, measured and with room.
template <class In>
void Compare(unsigned cp, const In& in, Tally* tally) {
  for (int size : {0, 64}) {
    ++tally->compared;
    const auto system = Convert(true, cp, in, size), library = Convert(false, cp, in, size);
    if (system == library) continue;
    if constexpr (std::is_same<In, std::string>::value) {
      const size_t at = cp == CP_UTF8 ? WineTakesMore(in) : std::string::npos;
      if (at != std::string::npos && (size == 0 || AgreeBefore(cp, in, at, system, library))) {
        ++tally->tolerated;
        continue;
      }
    }
    if (++tally->differences <= 10)
      ADD_FAILURE() << cp << ": input " << Hex(in) << " size " << size << ": system " << system.result << " ["
                    << Hex(system.text) << "], library " << library.result << " [" << Hex(library.text) << "]";
  }
}

TEST(WindowsComparison, EveryByteBytePairAndUnitAsTheSystemConvertsThem) {
  long pages = 0;
  Tally t;
  for (unsigned cp : kLibraryPages) {
    if (!IsValidCodePage(cp)) continue;  // the library converts it alone
    ++pages;
    const long differences = t.differences, tolerated = t.tolerated;
    for (unsigned a = 0; a < 0x100; ++a) {
      Compare(cp, std::string(1, char(a)), &t);
      for (unsigned b = 0; b < 0x100; ++b) Compare(cp, std::string{char(a), char(b)}, &t);
    }
    for (unsigned u = 0; u < 0x10000; ++u) Compare(cp, W({u}), &t);
    if (cp == CP_UTF8) {
      for (unsigned a = 0xE0; a <= 0xF4; ++a)
        for (unsigned b = 0; b < 0x10000; ++b) Compare(cp, std::string{char(a), char(b >> 8), char(b)}, &t);
      for (unsigned hi = 0xD800; hi < 0xE000; ++hi)
        for (unsigned lo = 0xD800; lo < 0xE000; lo += (hi < 0xDC00 ? 1 : 0x41)) Compare(cp, W({hi, lo}), &t);
    }
    // Random texts, high bytes and units likely.
    uint32_t state = 2463534242u;  // xorshift32
    auto next = [&state] { state ^= state << 13; state ^= state >> 17; state ^= state << 5; return state; };
    for (int i = 0; i < 3000; ++i) {
      const int length = 1 + static_cast<int>(next() % 12);
      std::string bytes;
      WText units;
      for (int k = 0; k < length; ++k) {
        const uint32_t r = next();
        bytes.push_back(char((r & 3) == 0 ? 0x20 + (r >> 8) % 0x60 : 0x80 | (r >> 8)));
        units.push_back(static_cast<ka_wchar>((r & 3) == 0 ? 0x20 + (r >> 8) % 0x60 : 0x80 + (r >> 8) % 0xFF80));
      }
      Compare(cp, bytes, &t);
      Compare(cp, units, &t);
    }
    EXPECT_EQ(t.differences, differences) << cp;
    if (t.tolerated != tolerated)
      std::printf("code page %u: %ld differences tolerated (Wine's UTF-8 decoder)\n", cp, t.tolerated - tolerated);
  }
  std::printf("%ld code pages, %ld conversions compared, %ld differences tolerated, none other\n", pages, t.compared,
              t.tolerated);
  EXPECT_GE(pages, 29);  // every table page and UTF-8
}

}  // namespace
