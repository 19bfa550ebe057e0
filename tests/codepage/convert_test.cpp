// KaToUnicode, KaToAscii and Ka_ConvCodePage: results, terminators, the
// destination-size rules, threads building the encoders, and the locale code
// page. Round trips are the business of the Windows comparison (every byte,
// byte pair and unit against the system), of the cross-check (every cell of
// the other pages, both ways) and of the codepage fuzz target.
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

// Converts src into a marked buffer of dstSize + 12 places; checks the
// terminator after a result, and that nothing was stored past it, or from
// dst[dstSize] on after a 0.
template <class C, class In>
int Into(int (*convert)(C*, int, const In*, int, unsigned), int dstSize, const std::basic_string<In>& src,
         int srcLen, unsigned cp, const std::string& guards) {
  std::basic_string<C> dst(static_cast<size_t>(std::max(dstSize, 0)) + 12, C(0x5A));
  const int n = convert(&dst[0], dstSize, src.c_str(), srcLen, cp);
  const size_t from = n > 0 ? static_cast<size_t>(n) : static_cast<size_t>(std::max(dstSize, 0));
  std::basic_string<C> marks(dst.size() - from, C(0x5A));
  if (n > 0) marks[0] = C(0);
  EXPECT_EQ(dst.substr(from), marks) << guards;
  return n;
}

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
  EXPECT_EQ(KaToUnicode(nullptr, 0, nullptr, 2, 1252) + KaToAscii(nullptr, 0, nullptr, -1, 65001), 0);  // null src
}

// Every page converts with its own room checks: at every destination size
// short of the result, 0, and nothing stored from dst[size] on.
TEST(Conversion, EveryTooSmallDestinationGivesZeroAndNothingPastIt) {
  for (unsigned cp : kLibraryPages) {
    const std::string bytes = ToNarrow(cp, kMixed), at = "page " + std::to_string(cp) + ", size ";
    const int length = static_cast<int>(bytes.size()), units = static_cast<int>(ToWide(cp, bytes).size());
    for (int size = 1; size < units; ++size)
      ASSERT_EQ(Into(KaToUnicode, size, bytes, length, cp, at + std::to_string(size)), 0) << at << size;
    for (int size = 1; size < length; ++size)
      ASSERT_EQ(Into(KaToAscii, size, kMixed, int(kMixed.size()), cp, at + std::to_string(size)), 0) << at << size;
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
      for (int i = 0; i < 5; ++i) results[t][(i + t) % 5] = ToNarrow(pages[(i + t) % 5], kMixed);
    });
  for (std::thread& th : threads) th.join();
  for (int t = 0; t < 4; ++t)
    for (int p = 0; p < 5; ++p) EXPECT_EQ(results[t][p], ToNarrow(pages[p], kMixed)) << pages[p];
}

TEST(Conversion, LocaleCodePageServesCodePageZero) {
  // (The string tests convert through the locale page in both directions.)
  KaSetLocaleCP(0);
  const unsigned platform = KaGetLocaleCP();  // chosen from the platform
  EXPECT_TRUE(ka_codepage::IsLibraryPage(platform)) << platform;
  EXPECT_EQ(KaSetLocaleCP(949), platform);  // returns what was stored
  ka_wchar w[4];
  ASSERT_EQ(KaToUnicode(w, 3, "\xB0\xA1", 2, 0), 1);
  EXPECT_EQ(w[0], 0xAC00);
  EXPECT_EQ(KaSetLocaleCP(0), 949u);
  EXPECT_EQ(KaSetLocaleCP(0), 0u);  // nothing chosen since
}

// (The guide's example re-encodes Hangul from 949 to UTF-8; the fuzz target
// gives every pair of pages exactly the room the contract asks for.)
TEST(ConvCodePage, ReEncodesThroughWideTextIntoOneAndAHalfTimesTheInput) {
  struct Row { const char* src; int srcLen; unsigned from, to; std::string out; const char* guards; } rows[] = {
      {"", -1, 1252, 65001, "", "empty input: 0, dst emptied"},
      {"\xE9\xE9", -1, 1252, 65001, "\xC3\xA9\xC3\xA9", "exactly one and a half times fits"},
      {"\x93\xFA", -1, 932, 50220, "", "escapes make it too long: 0, dst emptied"},
      {"ab", -1, 1200, 65001, "", "an unconverted page: 0"},
  };
  for (const Row& r : rows) {
    std::vector<char> dst(64, 'Z');
    const long n = Ka_ConvCodePage(dst.data(), r.src, r.srcLen, r.from, r.to);
    EXPECT_EQ(n, static_cast<long>(r.out.size())) << r.guards;
    EXPECT_EQ(std::string(dst.data()), r.out) << r.guards;
  }
  char dst[8] = "keep";
  EXPECT_EQ(Ka_ConvCodePage(dst, nullptr, 3, 1252, 1252) + Ka_ConvCodePage(nullptr, "abc", 3, 1252, 1252), 0);
  EXPECT_STREQ(dst, "keep");  // null arguments write nothing
}

}  // namespace
