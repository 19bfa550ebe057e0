// KaToUnicode, KaToAscii and Ka_ConvCodePage: results, terminators, the
// destination-size rules, round trips through every page, and the locale
// code page.
#include <cstring>
#include <thread>
#include <vector>

#include "tests/codepage/conversions.h"

namespace {

const ka_wchar kMark = static_cast<ka_wchar>(0xBEEF);

// A wide text with something for every script the pages hold. It ends in
// ASCII: under Wine, which stands in for Windows in CI, UTF-8 decoding into a
// destination one unit short of a final surrogate pair reports success.
const WText kMixed = W(u"Az~\\ \u00E9\u00C0\u20AC \u0416\u03A9\u05D0\u0E01 \uAC00\uB098 \u65E5\u672C\u4E2D "
                       u"\u3042\uFF71 \uFF5E\u301C\U0001F600.");

TEST(Conversion, ResultsTerminatorsAndRefusals) {
  struct Row {
    unsigned cp;
    std::string src;
    int srcLen, dstSize, result;
    const char* guards;
  } rows[] = {
      {1252, "abc", 0, 8, 0, "srcLen 0 converts nothing"},
      {1252, "abc", 3, 8, 3, "the units, then a terminator"},
      {1252, "ab", -1, 8, 3, "srcLen -1 converts the terminator too"},
      {1252, "ab", -7, 8, 3, "any negative srcLen does"},
      {1252, "abc", 3, 3, 3, "dstSize counts the units before the terminator"},
      {1252, "abc", 3, 2, 0, "one unit too many: 0"},
      {1252, "abc", 3, 0, 0, "dstSize 0 with a buffer converts nothing"},
      {949, "\xB0\xA1\xB0\xA1", 4, 1, 0, "a double-byte text too long: 0"},
      {1200, "ab", 2, 8, 0, "UTF-16 is refused, as by Windows"},
      {437, "ab", 2, 8, 0, "pages outside the library's set give 0"},
      {1252, "abc", 3, -1, 0, "a negative dstSize gives 0"},
  };
  for (const Row& r : rows) {
    WText dst(12, kMark);
    const int n = KaToUnicode(&dst[0], r.dstSize, r.src.c_str(), r.srcLen, r.cp);
    EXPECT_EQ(n, r.result) << r.guards;
    const int size = r.dstSize > 0 ? r.dstSize : 0;
    if (n > 0) {
      EXPECT_EQ(dst[static_cast<size_t>(n)], 0) << r.guards;
    } else {
      for (size_t i = static_cast<size_t>(size); i < dst.size(); ++i) EXPECT_EQ(dst[i], kMark) << r.guards;
    }
    // The narrow direction follows the same rules.
    WText wsrc(r.src.begin(), r.src.end());
    std::string out(12, 'Z');
    const int m = KaToAscii(&out[0], r.dstSize, wsrc.c_str(), r.srcLen, r.cp);
    if (r.cp != 949) {
      EXPECT_EQ(m, r.result) << r.guards << " (narrow)";
    }
    if (m > 0) {
      EXPECT_EQ(out[static_cast<size_t>(m)], 0) << r.guards;
    } else {
      EXPECT_EQ(out.substr(static_cast<size_t>(size)), std::string(12 - static_cast<size_t>(size), 'Z')) << r.guards;
    }
  }
  EXPECT_EQ(KaToUnicode(nullptr, 4, "ab", 2, 1252), 0);  // no destination to write
  EXPECT_EQ(KaToUnicode(nullptr, 0, nullptr, 2, 1252), 0);
  EXPECT_EQ(KaToAscii(nullptr, 0, nullptr, -1, 65001), 0);
}

TEST(Conversion, EveryTooSmallDestinationGivesZeroAndNothingPastIt) {
  for (unsigned cp : kLibraryPages) {
    const std::string bytes = ToNarrow(cp, kMixed).text;
    const WText units = ToWide(cp, bytes).text;
    const int nb = static_cast<int>(bytes.size()), nu = static_cast<int>(units.size());
    for (int size = 1; size <= nu; ++size) {
      WText dst(static_cast<size_t>(nu) + 2, kMark);
      const int n = KaToUnicode(&dst[0], size, bytes.c_str(), nb, cp);
      ASSERT_EQ(n, size == nu ? nu : 0) << cp << " size " << size;
      EXPECT_EQ(dst[static_cast<size_t>(size)], size == nu ? 0 : kMark) << cp << " size " << size;
      EXPECT_EQ(dst[static_cast<size_t>(size) + 1], kMark) << cp << " size " << size;
    }
    for (int size = 1; size <= nb; ++size) {
      std::string dst(static_cast<size_t>(nb) + 2, 'Z');
      const int n = KaToAscii(&dst[0], size, kMixed.c_str(), static_cast<int>(kMixed.size()), cp);
      ASSERT_EQ(n, size == nb ? nb : 0) << cp << " size " << size;
      EXPECT_EQ(dst[static_cast<size_t>(size)], size == nb ? '\0' : 'Z') << cp << " size " << size;
      if (n > 0) {
        EXPECT_EQ(dst.substr(0, static_cast<size_t>(n)), bytes) << cp;
      }
    }
  }
}

// Input that exercises every character a page holds: every byte and every
// lead-byte pair of the table pages, every row/cell pair of the stateful ones.
std::string EveryCode(unsigned cp) {
  std::string s;
  auto pairs = [&s](const std::string& prefix, unsigned lo, unsigned hi, unsigned offset) {
    for (unsigned a = lo; a <= hi; ++a)
      for (unsigned b = lo; b <= hi; ++b) s += prefix + char(a + offset) + char(b + offset);
  };
  switch (cp) {
    case 50220: s = "\x1B$B"; pairs("", 0x21, 0x7E, 0); break;
    case 50225: s = "\x1B$)C\x0E"; pairs("", 0x21, 0x7E, 0); break;
    case 52936: s = "~{"; pairs("", 0x21, 0x7E, 0); break;
    case 51932: pairs("", 0x21, 0x7E, 0x80); pairs("\x8F", 0x21, 0x7E, 0x80); pairs("\x8E", 0x21, 0x7E, 0x80); break;
    case 65001:
      for (unsigned a = 0xC2; a <= 0xEF; ++a)
        for (unsigned b = 0x80; b <= 0xBF; ++b) s += a < 0xE0 ? std::string{char(a), char(b)} : std::string{char(a), char(0xA0 | (b & 0x1F)), char(b)};
      break;
    default:
      for (unsigned a = 1; a <= 0xFF; ++a)
        for (unsigned b = 1; b <= 0xFF; ++b) s += {char(a), char(b)};
  }
  return s;
}

TEST(Conversion, EveryCharacterAPageHoldsSurvivesARoundTrip) {
  for (unsigned cp : kLibraryPages) {
    const WText decoded = ToWide(cp, EveryCode(cp)).text;
    const WText fallback = ToWide(cp, cp == 52936 ? "~{\x7F\x7F" : "\xFF\xFF").text.substr(0, 1);
    WText held;  // every unit but the default one
    for (ka_wchar u : decoded)
      if (u != fallback[0] && u != 0xFFFD) held.push_back(u);
    ASSERT_GT(held.size(), 100u) << cp;
    const WText back = ToWide(cp, ToNarrow(cp, held).text).text;
    ASSERT_EQ(back.size(), held.size()) << cp;
    for (size_t i = 0; i < held.size(); ++i) ASSERT_EQ(back[i], held[i]) << cp << " at " << i;
  }
}

TEST(Conversion, ThreadsThatFirstUseAnEncoderTogetherAllGetItWhole) {
  // Run alone (one process per test case), this is the first use of these
  // encoders, which are built on first use.
  const unsigned pages[] = {932, 936, 949, 950, 51932};
  std::vector<std::string> results(4 * 5);
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&results, &pages, t] {
      for (int i = 0; i < 5; ++i) {
        const unsigned cp = pages[(i + t) % 5];
        std::string out(kMixed.size() * 3 + 1, '\0');
        const int n = KaToAscii(&out[0], static_cast<int>(out.size() - 1), kMixed.c_str(),
                                static_cast<int>(kMixed.size()), cp);
        results[static_cast<size_t>(t * 5) + (i + t) % 5] = out.substr(0, n > 0 ? static_cast<size_t>(n) : 0);
      }
    });
  for (std::thread& th : threads) th.join();
  for (int t = 0; t < 4; ++t)
    for (int i = 0; i < 5; ++i) EXPECT_EQ(results[static_cast<size_t>(t * 5 + i)], ToNarrow(pages[i], kMixed).text) << pages[i];
}

TEST(Conversion, LocaleCodePageServesCodePageZero) {
  KaSetLocaleCP(0);
  const unsigned platform = KaGetLocaleCP();
  EXPECT_TRUE(ka_codepage::IsLibraryPage(platform)) << platform;
  EXPECT_EQ(KaGetLocaleCP(), platform);
  EXPECT_EQ(KaSetLocaleCP(949), platform);  // returns what was stored
  ka_wchar w[4];
  ASSERT_EQ(KaToUnicode(w, 3, "\xB0\xA1", 2, 0), 1);
  EXPECT_EQ(w[0], 0xAC00);
  char b[4];
  ASSERT_EQ(KaToAscii(b, 3, w, 1, 0), 2);
  EXPECT_EQ(std::string(b), "\xB0\xA1");
  EXPECT_EQ(KaSetLocaleCP(0), 949u);
  EXPECT_EQ(KaSetLocaleCP(0), 0u);  // nothing chosen since
  EXPECT_EQ(KaGetLocaleCP(), platform);
}

TEST(ConvCodePage, ReEncodesThroughWideTextIntoOneAndAHalfTimesTheInput) {
  struct Row {
    const char* src;
    int srcLen;
    unsigned from, to;
    std::string out;
    const char* guards;
  } rows[] = {
      {"", -1, 1252, 65001, "", "empty input: 0, dst emptied"},
      {"\xB0\xA1\xB3\xAA", -1, 949, 65001, "\xEA\xB0\x80\xEB\x82\x98", "two Hangul: 4 bytes become 6"},
      {"\xEA\xB0\x80xyz", 4, 65001, 949, "\xB0\xA1x", "srcLen bounds the input"},
      {"caf\xC3\xA9", -1, 65001, 1252, "caf\xE9", "UTF-8 to 1252"},
      {"\xE9\xE9", -1, 1252, 65001, "\xC3\xA9\xC3\xA9", "exactly one and a half times fits"},
      {"\xE0\xE0", -1, 28598, 1255, "\xE0\xE0", "ISO-8859-8 to 1255"},
      {"\x93\xFA", -1, 932, 50220, "", "escapes make it too long: 0, dst emptied"},
      {"ab", -1, 1200, 65001, "", "an unconverted source page: 0"},
      {"ab", -1, 1252, 1200, "", "an unconverted target page: 0"},
  };
  for (const Row& r : rows) {
    std::vector<char> dst(64, 'Z');
    const long n = Ka_ConvCodePage(dst.data(), r.src, r.srcLen, r.from, r.to);
    EXPECT_EQ(n, static_cast<long>(r.out.size())) << r.guards;
    EXPECT_EQ(std::string(dst.data()), r.out) << r.guards;
  }
  char dst[8] = "keep";
  EXPECT_EQ(Ka_ConvCodePage(dst, nullptr, 3, 1252, 1252), 0);
  EXPECT_EQ(Ka_ConvCodePage(nullptr, "abc", 3, 1252, 1252), 0);
  EXPECT_STREQ(dst, "keep");  // null arguments write nothing
}

}  // namespace
