// Copies, appends, duplicates, width changes, pieces and case changes.
#include "cstr/widths.h"

#include <algorithm>

template <class W>
class Copy : public ::testing::Test {};
TYPED_TEST_SUITE(Copy, BothWidths);

TYPED_TEST(Copy, BoundedAppendStopsAtNAndKeepsTheNullRules) {
  typedef typename TypeParam::Char C;
  struct Row {
    const char* src;
    int n;
    const char* result;
  } rows[] = {
      {nullptr, 3, "ab"},  // null source: dst unchanged
      {"cd", 0, "ab"},     // n < 1: nothing written, not even a terminator
      {"cd", -1, "ab"},    // likewise for a negative n
      {"cd", 1, "abc"},    // at most n characters
      {"cd", 9, "abcd"},   // a short source ends with its terminator
  };
  for (const Row& r : rows) {
    auto dst = Buf<C>("ab");
    const auto src = Txt<C>(r.src ? r.src : "");
    EXPECT_EQ(TypeParam::strncat(&dst[0], r.src ? src.c_str() : nullptr, r.n), &dst[0]);
    EXPECT_EQ(Held(dst.c_str()), Txt<C>(r.result)) << r.n;
  }
  EXPECT_EQ(TypeParam::strncat(nullptr, Txt<C>("x").c_str(), 1), nullptr);
}

TYPED_TEST(Copy, DuplicateOfEmptyTextIsNull) {
  typedef typename TypeParam::Char C;
  EXPECT_EQ(TypeParam::strdup(nullptr), nullptr);
  EXPECT_EQ(TypeParam::strdup(Txt<C>("").c_str()), nullptr);  // deliberately no empty copy
  const auto text = Txt<C>("hello");
  C* copy = TypeParam::strdup(text.c_str());
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy, text.c_str());
  EXPECT_EQ(Held(copy), text);
  ka_free(copy);
}

TYPED_TEST(Copy, MiddleAndRightPiecesClampToTheText) {
  typedef typename TypeParam::Char C;
  struct Row {
    const char* src;
    int start, count;  // count < 0 in the table: ka_right with n = start
    const char* piece;
  } rows[] = {
      {nullptr, 0, 3, ""},      // null source: empty piece
      {"abcdef", 2, 3, "cde"},  // exactly count characters
      {"abcdef", 2, 10, "cdef"},  // the rest when shorter than count
      {"abcdef", 5, 1, "f"},    // the last character
      {"abc", 3, 1, ""},        // start at the end
      {"abc", 9, 1, ""},        // start past the end
      {"abc", 0, 0, ""},        // count 0
      {"abc", 1, -4, ""},       // negative count
      {"abc", -2, 2, "ab"},     // negative start counts as 0
  };
  for (const Row& r : rows) {
    const auto src = Txt<C>(r.src ? r.src : "");
    auto dst = Buf<C>("garbage");
    EXPECT_EQ(TypeParam::substr(r.src ? src.c_str() : nullptr, r.start, r.count, &dst[0]), &dst[0]);
    EXPECT_EQ(Held(dst.c_str()), Txt<C>(r.piece)) << r.start << "," << r.count;
  }
  struct RightRow {
    const char* src;
    int n;
    const char* piece;
  } rights[] = {
      {nullptr, 2, ""},     // null source: empty
      {"abcdef", 2, "ef"},  // the last n
      {"ab", 5, "ab"},      // all of a shorter text
      {"ab", 0, ""},        // none
      {"ab", -3, ""},       // a negative n takes none, reading nothing past the end
  };
  for (const RightRow& r : rights) {
    const auto src = Txt<C>(r.src ? r.src : "");
    auto dst = Buf<C>("garbage");
    EXPECT_EQ(TypeParam::right(r.src ? src.c_str() : nullptr, r.n, &dst[0]), &dst[0]);
    EXPECT_EQ(Held(dst.c_str()), Txt<C>(r.piece)) << r.n;
  }
  const auto abc = Txt<C>("abc");
  EXPECT_EQ(TypeParam::substr(abc.c_str(), 0, 1, nullptr), nullptr);
  EXPECT_EQ(TypeParam::right(abc.c_str(), 1, nullptr), nullptr);
}

TYPED_TEST(Copy, CaseChangesTouchAsciiLettersOnly) {
  typedef typename TypeParam::Char C;
  auto s = Txt<C>("aB1z[@\xC9\xE9");
  TypeParam::strrev(&s[0]);  // swaps case and deliberately keeps the order
  EXPECT_EQ(s, Txt<C>("Ab1Z[@\xC9\xE9"));
  TypeParam::strlwr(&s[0]);
  EXPECT_EQ(s, Txt<C>("ab1z[@\xC9\xE9"));
  TypeParam::strupr(&s[0]);
  EXPECT_EQ(s, Txt<C>("AB1Z[@\xC9\xE9"));
  TypeParam::strlwr(nullptr);  // ignored
  TypeParam::strupr(nullptr);
  TypeParam::strrev(nullptr);
}

TEST(CopyWide, CopiesFollowTheNullRules) {
  ka_wchar dst[8] = {'x', 'y', 0};
  EXPECT_EQ(ka_strlenW(nullptr), 0);
  EXPECT_EQ(ka_strlenW(KA_W("abc")), 3);
  EXPECT_EQ(ka_strcpyW(nullptr, KA_W("a")), nullptr);
  EXPECT_EQ(ka_strcatW(nullptr, KA_W("a")), nullptr);
  EXPECT_EQ(ka_strcatW(dst, nullptr), dst);
  EXPECT_EQ(Held(dst), Txt<ka_wchar>("xy"));
  EXPECT_EQ(ka_strcatW(dst, KA_W("z")), dst);
  EXPECT_EQ(Held(dst), Txt<ka_wchar>("xyz"));
  EXPECT_EQ(ka_strcpyW(dst, nullptr), dst);
  EXPECT_EQ(dst[0], 0);
  EXPECT_EQ(ka_strncpyW(nullptr, KA_W("a"), 1), nullptr);
}

TEST(CopyWide, BoundedCopyAlwaysTerminatesAndDoublesTheTerminatorOfShortText) {
  ka_wchar dst[8];
  std::fill(dst, dst + 8, ka_wchar('#'));
  ka_strncpyW(dst, KA_W("ab"), 5);
  EXPECT_EQ(Held(dst), Txt<ka_wchar>("ab"));
  EXPECT_EQ(dst[3], 0);  // a second terminator after the copied one
  EXPECT_EQ(dst[4], '#');
  ka_strncpyW(dst, KA_W("abcdef"), 3);
  EXPECT_EQ(Held(dst), Txt<ka_wchar>("abc"));  // n units and a terminator
  ka_strncpyW(dst, KA_W("abc"), -1);
  EXPECT_EQ(dst[0], 0);  // a negative n copies nothing
}

TEST(CopyWidths, WideningZeroExtendsAndNarrowingTruncates) {
  ka_wchar wide[8];
  EXPECT_EQ(Held(ka_ascii2wide(wide, "ab", 1)), Txt<ka_wchar>("a"));
  EXPECT_EQ(Held(ka_ascii2wide(wide, "\xE9\x80", 8)), Txt<ka_wchar>("\xE9\x80"));  // no code page, no sign
  EXPECT_EQ(Held(ka_ascii2wide(wide, nullptr, 8)), Txt<ka_wchar>(""));
  char narrow[8];
  const ka_wchar units[] = {0x0061, 0x0100, 0x0062, 0};
  EXPECT_EQ(Held(ka_wide2ascii(narrow, units, 8)), "a");  // 0x0100 ends the text (deliberate)
  const ka_wchar high[] = {0x0141, 0x20E9, 0};
  EXPECT_EQ(Held(ka_wide2ascii(narrow, high, 8)), "A\xE9");  // low bytes only
  EXPECT_EQ(ka_wide2ascii(nullptr, units, 8), nullptr);
  EXPECT_EQ(ka_ascii2wide(nullptr, "a", 8), nullptr);
}
