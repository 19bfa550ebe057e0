// Comparisons: the null rules, raw differences, the n and i forms, signed
// narrow characters and the wide-with-narrow forms.
#include "cstr/widths.h"

#include <cstring>

template <class W>
class Compare : public ::testing::Test {};
TYPED_TEST_SUITE(Compare, BothWidths);

TYPED_TEST(Compare, NullRulesRawDifferencesAndLimits) {
  typedef typename TypeParam::Char C;
  struct Row {
    const char *a, *b;
    int n, exact_n, fold_n, fold;  // ka_strncmp(a, b, n), ka_strnicmp(a, b, n), ka_stricmp(a, b)
  } rows[] = {
      {nullptr, nullptr, 3, 0, 0, 0},         // both null: equal
      {nullptr, "", 3, 0, 0, 0},              // null reads as empty
      {"", nullptr, 3, 0, 0, 0},              // ... on either side
      {nullptr, "xy", 3, -1, -1, -1},         // null before text: exactly -1
      {"xy", nullptr, 3, 1, 1, 1},            // text after null: exactly 1
      {"abc", "xyz", 0, 0, 0, -23},           // n = 0 compares nothing
      {"abc", "xyz", -5, 0, 0, -23},          // nor does a negative n
      {"abc", "abd", 2, 0, 0, -1},            // the difference lies past n
      {"a", "c", 1, -2, -2, -2},              // raw difference, not -1
      {"ab", "abc", 5, -'c', -'c', -'c'},     // the terminator takes part
      {"ABC", "abc", 5, 'A' - 'a', 0, 0},     // only the i forms fold case
      {"B", "a", 1, 'B' - 'a', 1, 1},         // i forms subtract the lower-cased pair
      {"[", "A", 1, '[' - 'A', '[' - 'a', '[' - 'a'},  // folding lowers, never raises
  };
  for (const Row& r : rows) {
    const std::basic_string<C> a = Txt<C>(r.a ? r.a : ""), b = Txt<C>(r.b ? r.b : "");
    const C* pa = r.a ? a.c_str() : nullptr;
    const C* pb = r.b ? b.c_str() : nullptr;
    SCOPED_TRACE(::testing::Message() << (r.a ? r.a : "null") << " / " << (r.b ? r.b : "null") << " n=" << r.n);
    EXPECT_EQ(TypeParam::strncmp(pa, pb, r.n), r.exact_n);
    EXPECT_EQ(TypeParam::strnicmp(pa, pb, r.n), r.fold_n);
    EXPECT_EQ(TypeParam::stricmp(pa, pb), r.fold);
  }
}

TYPED_TEST(Compare, CaseFoldingIgnoresNonAsciiLetters) {
  typedef typename TypeParam::Char C;
  // In Latin-1 0xC9 and 0xE9 are one letter in two cases; here they differ.
  EXPECT_NE(TypeParam::stricmp(Txt<C>("\xC9").c_str(), Txt<C>("\xE9").c_str()), 0);
  EXPECT_EQ(TypeParam::stricmp(Txt<C>("x\xC9Z").c_str(), Txt<C>("X\xC9z").c_str()), 0);
}

TEST(CompareWidths, NarrowBytesAreSignedWideUnitsUnsigned) {
  EXPECT_EQ(ka_strncmpA("\xE9", "a", 1), -23 - 'a');  // 0xE9 is -23 and sorts first
  EXPECT_EQ(ka_strncmpW(KA_W("\u00E9"), KA_W("a"), 1), 0xE9 - 'a');
  EXPECT_EQ(ka_strcmpW(KA_W("\uFFFF"), KA_W("a")), 0xFFFF - 'a');
}

TEST(CompareWidths, WholeWideComparisonFollowsTheNullRules) {
  EXPECT_EQ(ka_strcmpW(nullptr, KA_W("")), 0);
  EXPECT_EQ(ka_strcmpW(KA_W(""), nullptr), 0);
  EXPECT_EQ(ka_strcmpW(nullptr, KA_W("x")), -1);
  EXPECT_EQ(ka_strcmpW(KA_W("x"), nullptr), 1);
  EXPECT_EQ(ka_strcmpW(KA_W("abc"), KA_W("abd")), -1);
  EXPECT_EQ(ka_strcmpW(KA_W("a"), KA_W("c")), -2);
  EXPECT_EQ(ka_strcmpWA(nullptr, "x"), -1);
  EXPECT_EQ(ka_strnicmpWA(KA_W("x"), nullptr, 4), 1);
}

TEST(CompareWidths, WideWithNarrowSignExtendsTheNarrowByte) {
  EXPECT_EQ(ka_stricmpWA(KA_W("ABC"), "abc"), 0);
  // 0xE9 as a narrow byte never equals the unit 0x00E9 ...
  EXPECT_EQ(ka_strcmpWA(KA_W("\u00E9"), "\xE9"), 0xE9 - 0xFFE9);
  EXPECT_EQ(ka_strncmpWA(KA_W("a\u00E9"), "a\xE9", 1), 0);  // the pair lies past n
  // ... and counts as 0xFFE9 in the difference, so against the unit 0xFFE9
  // the walk stops yet the result is 0 (deliberate).
  EXPECT_EQ(ka_strcmpWA(KA_W("\uFFE9z"), "\xE9y"), 0);
}

TEST(CompareWidths, AllFormsAgreeOnAsciiText) {
  // Every string of up to three characters over a small alphabet, compared
  // with every other, narrow, wide and wide-with-narrow.
  const char alphabet[] = {'a', 'B', 'b', '~'};
  std::vector<std::string> texts{""};
  for (size_t i = 0; texts[i].size() < 3; ++i)
    for (char c : alphabet) texts.push_back(texts[i] + c);
  for (const std::string& a : texts) {
    const auto wa = Txt<ka_wchar>(a.c_str());
    for (const std::string& b : texts) {
      const auto wb = Txt<ka_wchar>(b.c_str());
      const int exact = ka_strncmpA(a.c_str(), b.c_str(), 8);
      const int fold = ka_stricmpA(a.c_str(), b.c_str());
      ASSERT_EQ(exact < 0, std::strcmp(a.c_str(), b.c_str()) < 0) << a << " / " << b;
      ASSERT_EQ(ka_strcmpW(wa.c_str(), wb.c_str()), exact) << a << " / " << b;
      ASSERT_EQ(ka_strcmpWA(wa.c_str(), b.c_str()), exact) << a << " / " << b;
      ASSERT_EQ(ka_stricmpW(wa.c_str(), wb.c_str()), fold) << a << " / " << b;
      ASSERT_EQ(ka_stricmpWA(wa.c_str(), b.c_str()), fold) << a << " / " << b;
      ASSERT_EQ(ka_strnicmpWA(wa.c_str(), b.c_str(), 2), ka_strnicmpA(a.c_str(), b.c_str(), 2)) << a << " / " << b;
    }
  }
}
