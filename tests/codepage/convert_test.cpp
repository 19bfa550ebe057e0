// KaToUnicode, KaToAscii and Ka_ConvCodePage: results, terminators, the
// destination-size rules, round trips through every page, and the locale
// code page.
#include <algorithm>
#include <thread>
#include <vector>

#include "tests/codepage/conversions.h"

namespace {

// A wide text with something for every script the pages hold. It ends in
// ASCII: under Wine, which stands in for Windows in CI, UTF-8 decoding into a
// destination one unit short of a final surrogate pair reports success.
const WText kMixed = W(u"Az~\\ \u00E9\u00C0\u20AC \u0416\u03A9\u05D0\u0E01 \uAC00\uB098 \u65E5\u672C\u4E2D "
                       u"\u3042\uFF71 \uFF5E\u301C\U0001F600.");

// Converts src into a marked buffer of 12 places; checks the terminator
// after a result, or that nothing was stored from dst[dstSize] on after a 0.
template <class C, class In>
int Into(int (*convert)(C*, int, const In*, int, unsigned), int dstSize, const std::basic_string<In>& src,
         int srcLen, unsigned cp, const char* guards) {
  std::basic_string<C> dst(12, C(0x5A));
  const int n = convert(&dst[0], dstSize, src.c_str(), srcLen, cp);
  const size_t size = static_cast<size_t>(std::max(dstSize, 0));
  if (n > 0) {
    EXPECT_EQ(dst[static_cast<size_t>(n)], C(0)) << guards;
  } else {
    EXPECT_EQ(dst.substr(size), std::basic_string<C>(12 - size, C(0x5A))) << guards;
  }
  return n;
}

// The sizes around a result's own are AtEverySize's business below.
TEST(Conversion, ResultsTerminatorsAndRefusals) {
  struct Row { unsigned cp; std::string src; int srcLen, dstSize, result; const char* guards; } rows[] = {
      {1252, "abc", 0, 8, 0, "srcLen 0 converts nothing"},
      {1252, "ab", -1, 8, 3, "srcLen -1 converts the terminator too, then stores one"},
      {1252, "abc", 3, 0, 0, "dstSize 0 with a buffer converts nothing"},
      {1200, "ab", 2, 8, 0, "a page outside the library's set, UTF-16 too: 0"},
      {1252, "abc", 3, -1, 0, "a negative dstSize gives 0"},
  };
  for (const Row& r : rows) {
    EXPECT_EQ(Into(KaToUnicode, r.dstSize, r.src, r.srcLen, r.cp, r.guards), r.result) << r.guards;
    const WText wide(r.src.begin(), r.src.end());  // the narrow direction follows the same rules
    EXPECT_EQ(Into(KaToAscii, r.dstSize, wide, r.srcLen, r.cp, r.guards), r.result) << r.guards << " (narrow)";
  }
  EXPECT_EQ(KaToUnicode(nullptr, 4, "ab", 2, 1252), 0);  // no destination to write
  EXPECT_EQ(KaToUnicode(nullptr, 0, nullptr, 2, 1252), 0);
  EXPECT_EQ(KaToAscii(nullptr, 0, nullptr, -1, 65001), 0);
}

// Converting src at every destination size up to its whole result: 0 with
// nothing stored at dst[size] until it fits, then the result and its terminator.
template <class C, class In>
void AtEverySize(int (*convert)(C*, int, const In*, int, unsigned), unsigned cp, const std::basic_string<In>& src,
                 const std::basic_string<C>& whole) {
  const std::basic_string<C> marks(2, C(0x5A));
  for (size_t size = 1; size <= whole.size(); ++size) {
    std::basic_string<C> dst(whole.size() + 2, C(0x5A));
    const bool fits = size == whole.size();
    ASSERT_EQ(convert(&dst[0], static_cast<int>(size), src.c_str(), static_cast<int>(src.size()), cp),
              fits ? static_cast<int>(size) : 0) << cp << " size " << size;
    EXPECT_EQ(fits ? dst : dst.substr(size, 2), fits ? whole + C(0) + C(0x5A) : marks) << cp << " size " << size;
  }
}

TEST(Conversion, EveryTooSmallDestinationGivesZeroAndNothingPastIt) {
  for (unsigned cp : kLibraryPages) {
    const std::string bytes = ToNarrow(cp, kMixed);
    AtEverySize(KaToUnicode, cp, bytes, ToWide(cp, bytes));
    AtEverySize(KaToAscii, cp, kMixed, bytes);
  }
}

TEST(Conversion, EveryCharacterAPageHoldsSurvivesARoundTrip) {
  // Every byte pair decoded gives every character of a table page; UTF-8
  // takes every unit outside the surrogates. The stateful pages' characters
  // and EUC-JP's JIS X 0212 ones are each compared with another
  // implementation in crosscheck_test.cpp.
  std::string pairs;
  for (unsigned a = 1; a <= 0xFF; ++a)
    for (unsigned b = 1; b <= 0xFF; ++b) pairs += {char(a), char(b)};
  for (unsigned cp : kLibraryPages) {
    if (cp == 50220 || cp == 50225 || cp == 52936) continue;
    WText held;  // every unit but the default ones
    for (unsigned u = 0x80; cp == 65001 && u < 0x10000; ++u)
      if ((u & 0xF800) != 0xD800) held.push_back(static_cast<ka_wchar>(u));
    for (ka_wchar u : cp == 65001 ? WText() : ToWide(cp, pairs))
      if (u != 0x30FB && u != '?' && u != 0xFFFD) held.push_back(u);
    ASSERT_GT(held.size(), 100u) << cp;
    const WText back = ToWide(cp, ToNarrow(cp, held));
    ASSERT_EQ(back.size(), held.size()) << cp;
    for (size_t i = 0; i < held.size(); ++i) ASSERT_EQ(back[i], held[i]) << cp << " at " << i;
  }
}

TEST(Conversion, ThreadsThatFirstUseAnEncoderTogetherAllGetItWhole) {
  // Run alone (one process per test case), this is the first use of these
  // encoders, which are built on first use.
  const unsigned pages[] = {932, 936, 949, 950, 51932};
  std::string results[4][5];
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&results, &pages, t] {
      for (int i = 0; i < 5; ++i) {
        const int p = (i + t) % 5;
        std::string out(kMixed.size() * 3 + 1, '\0');
        const int n = KaToAscii(&out[0], static_cast<int>(out.size() - 1), kMixed.c_str(),
                                static_cast<int>(kMixed.size()), pages[p]);
        results[t][p] = out.substr(0, static_cast<size_t>(std::max(n, 0)));
      }
    });
  for (std::thread& th : threads) th.join();
  for (int t = 0; t < 4; ++t)
    for (int p = 0; p < 5; ++p) EXPECT_EQ(results[t][p], ToNarrow(pages[p], kMixed)) << pages[p];
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
}

TEST(ConvCodePage, ReEncodesThroughWideTextIntoOneAndAHalfTimesTheInput) {
  struct Row { const char* src; int srcLen; unsigned from, to; std::string out; const char* guards; } rows[] = {
      {"", -1, 1252, 65001, "", "empty input: 0, dst emptied"},
      {"\xB0\xA1\xB3\xAA", -1, 949, 65001, "\xEA\xB0\x80\xEB\x82\x98", "two Hangul: 4 bytes become 6"},
      {"\xEA\xB0\x80xyz", 4, 65001, 949, "\xB0\xA1x", "srcLen bounds the input"},
      {"\xE9\xE9", -1, 1252, 65001, "\xC3\xA9\xC3\xA9", "exactly one and a half times fits"},
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
