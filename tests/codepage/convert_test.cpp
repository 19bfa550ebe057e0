// KaToUnicode, KaToAscii and Ka_ConvCodePage: results, terminators, the
// destination-size rules and threads building the encoders (the locale code
// page is string_bridge_test.cpp's). Round trips are the business of the
// Windows comparison (every byte, byte pair and unit against the system), of
// the cross-check (every cell of the other pages, both ways) and of the
// codepage fuzz target.
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

// Converts src into a marked buffer of dstSize + 12 places: the result, or
// -1 when the terminator after a result is missing or something was stored
// past it, or from dst[dstSize] on after a 0.
template <class C, class In>
int Into(int (*convert)(C*, int, const In*, int, unsigned), int dstSize, const std::basic_string<In>& src,
         int srcLen, unsigned cp) {
  const size_t room = static_cast<size_t>(std::max(dstSize, 0));
  std::basic_string<C> dst(room + 12, C(0x5A));
  const int n = convert(&dst[0], dstSize, src.c_str(), srcLen, cp);
  std::basic_string<C> marks(dst.size() - (n > 0 ? size_t(n) : room), C(0x5A));
  if (n > 0) marks[0] = C(0);
  return dst.substr(dst.size() - marks.size()) == marks ? n : -1;
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
    const WText wide(r.src.begin(), r.src.end());  // the narrow direction follows the same rules
    EXPECT_EQ(std::pair(Into(KaToUnicode, r.dstSize, r.src, r.srcLen, r.cp),
                        Into(KaToAscii, r.dstSize, wide, r.srcLen, r.cp)),
              std::pair(r.result, r.result)) << r.guards;
  }
  // No destination to write; a null source.
  EXPECT_EQ(KaToUnicode(nullptr, 4, "ab", 2, 1252) + KaToUnicode(nullptr, 0, nullptr, 2, 1252) +
                KaToAscii(nullptr, 0, nullptr, -1, 65001), 0);
}

// Every page converts with its own room checks: at every destination size
// short of the result, 0, and nothing stored from dst[size] on.
TEST(Conversion, EveryTooSmallDestinationGivesZeroAndNothingPastIt) {
  for (unsigned cp : kLibraryPages) {
    const std::string bytes = ToNarrow(cp, kMixed);
    const int length = static_cast<int>(bytes.size()), units = static_cast<int>(ToWide(cp, bytes).size());
    for (int size = 1; size < units; ++size)
      ASSERT_EQ(Into(KaToUnicode, size, bytes, length, cp), 0) << "page " << cp << ", size " << size;
    for (int size = 1; size < length; ++size)
      ASSERT_EQ(Into(KaToAscii, size, kMixed, int(kMixed.size()), cp), 0) << "page " << cp << ", size " << size;
  }
}

TEST(Conversion, ThreadsThatFirstUseAnEncoderTogetherAllGetItWhole) {
  // Run alone (one process per test case), this is the first use of these
  // encoders, which are built on first use: four threads, each page in turn.
  const unsigned pages[] = {932, 936, 949, 950, 51932};
  std::vector<std::string> results(20);
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&results, &pages, t] {
      for (int i = t; i < t + 5; ++i) results[size_t(t * 5 + i % 5)] = ToNarrow(pages[i % 5], kMixed);
    });
  for (std::thread& th : threads) th.join();
  for (size_t i = 0; i < 20; ++i) EXPECT_EQ(results[i], ToNarrow(pages[i % 5], kMixed)) << pages[i % 5];
}

// (The guide's example re-encodes Hangul from 949 to UTF-8; the fuzz target
// gives every pair of pages, 437 that converts nothing among them, exactly
// the room the contract asks for, where a failure must leave dst empty.)
TEST(ConvCodePage, ReEncodesThroughWideTextIntoOneAndAHalfTimesTheInput) {
  char dst[8] = "keep";
  EXPECT_EQ(Ka_ConvCodePage(dst, nullptr, 3, 1252, 1252) + Ka_ConvCodePage(nullptr, "abc", 3, 1252, 1252), 0);
  EXPECT_STREQ(dst, "keep");  // null arguments write nothing
  EXPECT_EQ(Ka_ConvCodePage(dst, "\xE9\xE9", -1, 1252, 65001), 4);  // exactly one and a half times, and 2, fits
  EXPECT_STREQ(dst, "\xC3\xA9\xC3\xA9");
  EXPECT_EQ(Ka_ConvCodePage(dst, "\x93\xFA", -1, 932, 50220), 0);  // escapes make it too long: 0, dst emptied
  EXPECT_STREQ(dst, "");
}

}  // namespace
