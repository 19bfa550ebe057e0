// Copies, appends, duplicates, width changes, pieces and case changes.
#include "cstr/widths.h"

KA_BOTH_WIDTHS(Copy);

TYPED_TEST(Copy, BoundedAppendStopsAtNAndKeepsTheNullRules) {
  typedef typename TypeParam::Char C;
  struct { const char* src; int n; const char* result; } rows[] = {
      {nullptr, 3, "ab"},  // null source: dst unchanged
      {"cd", -1, "ab"},    // n < 1: nothing written, not even a terminator
      {"cd", 1, "abc"},    // at most n characters
      {"cd", 9, "abcd"},   // a short source ends with its terminator
  };
  for (auto& r : rows) {
    Arg<C> dst("ab"), src(r.src);
    EXPECT_EQ(TypeParam::strncat(dst.p(), src.p(), r.n), dst.p());
    EXPECT_EQ(dst.held(), Txt<C>(r.result)) << r.n;
  }
  EXPECT_EQ(TypeParam::strncat(nullptr, Arg<C>("x").p(), 1), nullptr);
}

TYPED_TEST(Copy, DuplicateOfEmptyTextIsNull) {
  typedef typename TypeParam::Char C;
  EXPECT_EQ(TypeParam::strdup(nullptr), nullptr);
  EXPECT_EQ(TypeParam::strdup(Arg<C>("").p()), nullptr);  // deliberately no empty copy
  C* copy = TypeParam::strdup(Arg<C>("hello").p());
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(std::basic_string<C>(copy), Txt<C>("hello"));
  ka_free(copy);
}

TYPED_TEST(Copy, MiddleAndRightPiecesClampToTheText) {
  typedef typename TypeParam::Char C;
  struct {
    const char* src;
    int start, count;  // count below -100: ka_right with n = start instead
    const char* piece;
  } rows[] = {
      {nullptr, 0, 3, ""},         // null source: empty piece
      {"abcdef", 2, 3, "cde"},     // exactly count characters
      {"abcdef", 2, 10, "cdef"},   // the rest when shorter than count
      {"abc", 3, 1, ""},           // start at the end
      {"abc", 0, 0, ""},           // count 0
      {"abc", 1, -4, ""},          // negative count
      {"abc", -2, 2, "ab"},        // negative start counts as 0
      {"abcdef", 2, -999, "ef"},   // right: the last n
      {"ab", 5, -999, "ab"},       // right: all of a shorter text
      {"ab", -3, -999, ""},        // right: a negative n takes none, reading nothing past the end
  };
  for (auto& r : rows) {
    Arg<C> src(r.src), dst("garbage");
    C* got = r.count < -100 ? TypeParam::right(src.p(), r.start, dst.p())
                            : TypeParam::substr(src.p(), r.start, r.count, dst.p());
    EXPECT_EQ(got, dst.p());
    EXPECT_EQ(dst.held(), Txt<C>(r.piece)) << r.start << "," << r.count;
  }
  EXPECT_EQ(TypeParam::substr(Arg<C>("abc").p(), 0, 1, nullptr), nullptr);
  EXPECT_EQ(TypeParam::right(Arg<C>("abc").p(), 1, nullptr), nullptr);
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

TEST(CopyWide, CopiesFollowTheNullRulesAndShortBoundedCopiesTerminateTwice) {
  Arg<ka_wchar> dst("xy"), out("#####");
  EXPECT_EQ(ka_strlenW(nullptr), 0);
  EXPECT_EQ(ka_strcpyW(nullptr, KA_W("a")), nullptr);
  EXPECT_EQ(ka_strcatW(nullptr, KA_W("a")), nullptr);
  EXPECT_EQ(ka_strncpyW(nullptr, KA_W("a"), 1), nullptr);
  EXPECT_EQ(ka_strcatW(ka_strcatW(dst.p(), nullptr), KA_W("z")), dst.p());
  EXPECT_EQ(dst.held(), Txt<ka_wchar>("xyz"));
  EXPECT_EQ(ka_strcpyW(dst.p(), nullptr), dst.p());
  EXPECT_EQ(dst.held(), Txt<ka_wchar>(""));
  ka_strncpyW(out.p(), KA_W("ab"), 5);
  EXPECT_EQ(out.buf.substr(0, 5), Txt<ka_wchar>("ab").append(2, 0) + KA_W("#"));
  ka_strncpyW(out.p(), KA_W("abc"), -1);
  EXPECT_EQ(out.held(), Txt<ka_wchar>(""));  // a negative n copies nothing
}

TEST(CopyWidths, WideningZeroExtendsAndNarrowingTruncates) {
  ka_wchar wide[8];
  char narrow[8];
  EXPECT_EQ(std::basic_string<ka_wchar>(ka_ascii2wide(wide, "ab", 1)), KA_W("a"));
  EXPECT_EQ(std::basic_string<ka_wchar>(ka_ascii2wide(wide, "\xE9\x80", 8)), KA_W("\u00E9\u0080"));  // no sign, no code page
  EXPECT_EQ(std::basic_string<ka_wchar>(ka_ascii2wide(wide, nullptr, 8)), KA_W(""));
  EXPECT_STREQ(ka_wide2ascii(narrow, KA_W("a\u0100b"), 8), "a");  // 0x0100 ends the text (deliberate)
  EXPECT_STREQ(ka_wide2ascii(narrow, KA_W("\u0141\u20E9"), 8), "A\xE9");  // low bytes only
  EXPECT_EQ(ka_wide2ascii(nullptr, KA_W("a"), 8), nullptr);
  EXPECT_EQ(ka_ascii2wide(nullptr, "a", 8), nullptr);
}
