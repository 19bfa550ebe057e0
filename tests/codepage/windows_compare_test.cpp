// On Windows (and under Wine): the library's own converters beside the
// system's MultiByteToWideChar and WideCharToMultiByte, for every byte, byte
// pair and unit of every page the system converts, every three-byte UTF-8
// input and surrogate pair, and random texts at every destination size.
// The only differences tolerated are two of Wine's UTF-8 decoder, both at
// odds with Windows and the Unicode Standard, which the library follows: it
// takes more than the maximal ill-formed subpart in two cases (see
// WineTakesMore), and it reports success after writing only the first half
// of a surrogate pair when that fills the destination at the end of the
// input (see WineSplitsLastPair).
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

// One conversion into a buffer of dstSize units (0: measure only).
template <class Out, class In, class Fn>
Outcome<Out> Run(const In& in, int dstSize, Fn convert) {
  Out out(64, 0);
  const int n = convert(in.data(), static_cast<int>(in.size()), dstSize ? &out[0] : nullptr, dstSize);
  return {n, out.substr(0, dstSize != 0 && n > 0 ? static_cast<size_t>(n) : 0)};
}

Outcome<WText> System(unsigned cp, const std::string& s, int dstSize) {
  return Run<WText>(s, dstSize, [cp](const char* p, int n, ka_wchar* d, int size) {
    return MultiByteToWideChar(cp, 0, p, n, d, size);
  });
}
Outcome<WText> Library(unsigned cp, const std::string& s, int dstSize) {
  return Run<WText>(s, dstSize, [cp](const char* p, int n, ka_wchar* d, int size) {
    return ka_codepage::ToWide(cp, p, n, d, size);
  });
}
Outcome<std::string> System(unsigned cp, const WText& s, int dstSize) {
  return Run<std::string>(s, dstSize, [cp](const ka_wchar* p, int n, char* d, int size) {
    return WideCharToMultiByte(cp, 0, p, n, d, size, nullptr, nullptr);
  });
}
Outcome<std::string> Library(unsigned cp, const WText& s, int dstSize) {
  return Run<std::string>(s, dstSize, [cp](const ka_wchar* p, int n, char* d, int size) {
    return ka_codepage::ToNarrow(cp, p, n, d, size);
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
  const WText head = i == 0 ? WText() : Library(cp, in.substr(0, i), 64).text;
  return a.text.compare(0, head.size(), head) == 0 && b.text.compare(0, head.size(), head) == 0;
}

// Wine's result when the destination holds all but the second unit of the
// surrogate pair that ends the input: that many units and success, the
// first half of the pair last.
bool WineSplitsLastPair(const Outcome<WText>& system, const Outcome<WText>& library, const WText& whole, int size) {
  return size > 0 && library.result == 0 && system.result == size && whole.size() == static_cast<size_t>(size) + 1 &&
         whole.substr(0, static_cast<size_t>(size)) == system.text && (whole[static_cast<size_t>(size) - 1] & 0xFC00) == 0xD800;
}

struct Tally {
  long compared = 0, tolerated = 0, differences = 0;
};

// Compares one input, measured and with room, or at the given size.
template <class In>
void Compare(unsigned cp, const In& in, Tally* tally, int dstSize = 64) {
  for (int size : {0, dstSize}) {
    ++tally->compared;
    const auto system = System(cp, in, size);
    const auto library = Library(cp, in, size);
    if (system == library) continue;
    if constexpr (std::is_same<In, std::string>::value) {
      const size_t at = cp == CP_UTF8 ? WineTakesMore(in) : std::string::npos;
      if ((at != std::string::npos && (size < static_cast<int>(in.size()) || AgreeBefore(cp, in, at, system, library))) ||
          (cp == CP_UTF8 && WineSplitsLastPair(system, library, Library(cp, in, 64).text, size))) {
        ++tally->tolerated;
        continue;
      }
    }
    if (++tally->differences <= 10)
      ADD_FAILURE() << cp << ": input " << Hex(in) << " size " << size << ": system " << system.result << " ["
                    << Hex(system.text) << "], library " << library.result << " [" << Hex(library.text) << "]";
  }
}

struct XorShift {
  uint32_t s = 2463534242u;
  uint32_t Next() {
    s ^= s << 13;
    s ^= s >> 17;
    s ^= s << 5;
    return s;
  }
};

TEST(WindowsComparison, EveryByteBytePairAndUnitAsTheSystemConvertsThem) {
  long pages = 0, compared = 0, tolerated = 0;
  for (unsigned cp : kLibraryPages) {
    if (!IsValidCodePage(cp)) continue;  // the library converts it alone
    ++pages;
    Tally t;
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
    // Random texts, high bytes and units likely, at every destination size.
    XorShift rng;
    for (int i = 0; i < 3000; ++i) {
      const int length = 1 + static_cast<int>(rng.Next() % 12);
      std::string bytes;
      WText units;
      for (int k = 0; k < length; ++k) {
        const uint32_t r = rng.Next();
        bytes.push_back(char((r & 3) == 0 ? 0x20 + (r >> 8) % 0x60 : 0x80 | (r >> 8)));
        units.push_back(static_cast<ka_wchar>((r & 3) == 0 ? 0x20 + (r >> 8) % 0x60 : 0x80 + (r >> 8) % 0xFF80));
      }
      for (int size = 0; size <= 3 * length; ++size) {
        Compare(cp, bytes, &t, size);
        Compare(cp, units, &t, size);
      }
    }
    EXPECT_EQ(t.differences, 0) << cp;
    compared += t.compared;
    tolerated += t.tolerated;
    if (t.tolerated != 0) std::printf("code page %u: %ld differences tolerated (Wine's UTF-8 decoder)\n", cp, t.tolerated);
  }
  std::printf("%ld code pages, %ld conversions compared, %ld differences tolerated, none other\n", pages, compared,
              tolerated);
  EXPECT_GE(pages, 29);  // every table page and UTF-8
}

TEST(WindowsComparison, PagesTheSystemRefusesConvertWithTheLibrarysConverter) {
  for (unsigned cp : kLibraryPages) {
    if (IsValidCodePage(cp)) continue;
    const WText text = W(u"a\u65E5\uAC00\u4E2D");
    char bytes[32];
    const int n = KaToAscii(bytes, 31, text.c_str(), static_cast<int>(text.size()), cp);
    EXPECT_GT(n, 0) << cp;
    EXPECT_EQ(std::string(bytes, static_cast<size_t>(n)), ToNarrow(cp, text).text) << cp;
  }
  ka_wchar w[4];
  EXPECT_EQ(KaToUnicode(w, 3, "ab", 2, 1200), 0);  // refused by the system and by the library
}

}  // namespace
