// Comparisons: the null rules, raw differences, the n and i forms, signed
// narrow characters and the wide-with-narrow forms.
#include <cstring>
#include <vector>

#include "cstr/widths.h"

KA_BOTH_WIDTHS(Compare);

TYPED_TEST(Compare, NullRulesRawDifferencesAndLimits) {
  typedef typename TypeParam::Char C;
  struct {
    const char *a, *b;
    int n, exact_n, fold_n, fold;  // ka_strncmp(a, b, n), ka_strnicmp(a, b, n), ka_stricmp(a, b)
  } rows[] = {
      {nullptr, nullptr, 3, 0, 0, 0},                  // both null: equal
      {nullptr, "", 3, 0, 0, 0},                       // null reads as empty
      {nullptr, "xy", 3, -1, -1, -1},                  // null before text: exactly -1
      {"xy", nullptr, 3, 1, 1, 1},                     // text after null: exactly 1
      {"abc", "xyz", -5, 0, 0, -23},                   // n <= 0 compares nothing
      {"abc", "abd", 2, 0, 0, -1},                     // the difference lies past n
      {"a", "c", 1, -2, -2, -2},                       // raw difference, not -1
      {"ab", "abc", 5, -'c', -'c', -'c'},              // the terminator takes part
      {"ABC", "abc", 5, 'A' - 'a', 0, 0},              // only the i forms fold case
      {"B", "a", 1, 'B' - 'a', 1, 1},                  // i forms subtract the lower-cased pair
      {"[", "A", 1, '[' - 'A', '[' - 'a', '[' - 'a'},  // folding lowers, never raises
      {"\xC9", "\xE9", 1, 0xC9 - 0xE9, 0xC9 - 0xE9, 0xC9 - 0xE9},  // Latin-1 letters are not folded
  };
  for (auto& r : rows) {
    Arg<C> a(r.a), b(r.b);
    SCOPED_TRACE(::testing::Message() << (r.a ? r.a : "null") << " / " << (r.b ? r.b : "null") << " n=" << r.n);
    EXPECT_EQ(TypeParam::strncmp(a.p(), b.p(), r.n), r.exact_n);
    EXPECT_EQ(TypeParam::strnicmp(a.p(), b.p(), r.n), r.fold_n);
    EXPECT_EQ(TypeParam::stricmp(a.p(), b.p()), r.fold);
  }
}

TEST(CompareWidths, NarrowBytesAreSignedWideUnitsUnsigned) {
  EXPECT_EQ(ka_strncmpA("\xE9", "a", 1), -23 - 'a');  // 0xE9 is -23 and sorts first
  EXPECT_EQ(ka_strncmpW(KA_W("\u00E9"), KA_W("a"), 1), 0xE9 - 'a');
  EXPECT_EQ(ka_strcmpW(KA_W("\uFFFF"), KA_W("a")), 0xFFFF - 'a');
  EXPECT_EQ(ka_strcmpW(nullptr, KA_W("x")), -1);  // the whole-text forms keep the null rules
  EXPECT_EQ(ka_strcmpWA(KA_W("x"), nullptr), 1);
}

TEST(CompareWidths, WideWithNarrowSignExtendsTheNarrowByte) {
  EXPECT_EQ(ka_stricmpWA(KA_W("ABC"), "abc"), 0);
  EXPECT_EQ(ka_strcmpWA(KA_W("\u00E9"), "\xE9"), 0xE9 - 0xFFE9);  // 0xE9 never equals a unit
  EXPECT_EQ(ka_strncmpWA(KA_W("a\u00E9"), "a\xE9", 1), 0);        // the pair lies past n
  // Against the unit 0xFFE9 the walk stops, yet the difference is 0 (deliberate).
  EXPECT_EQ(ka_strcmpWA(KA_W("\uFFE9z"), "\xE9y"), 0);
}

TEST(CompareWidths, AllFormsAgreeOnAsciiText) {
  // Every string of up to three characters over a small alphabet against
  // every other, narrow, wide and wide-with-narrow.
  std::vector<std::string> texts{""};
  for (size_t i = 0; texts[i].size() < 3; ++i)
    for (char c : {'a', 'B', 'b', '~'}) texts.push_back(texts[i] + c);
  for (const std::string& a : texts) {
    const auto wa = Txt<ka_wchar>(a.c_str());
    for (const std::string& b : texts) {
      const auto wb = Txt<ka_wchar>(b.c_str());
      const int exact = ka_strncmpA(a.c_str(), b.c_str(), 8), fold = ka_stricmpA(a.c_str(), b.c_str());
      SCOPED_TRACE(a + " / " + b);
      ASSERT_EQ(exact < 0, std::strcmp(a.c_str(), b.c_str()) < 0);
      ASSERT_EQ(ka_strcmpW(wa.c_str(), wb.c_str()), exact);
      ASSERT_EQ(ka_strcmpWA(wa.c_str(), b.c_str()), exact);
      ASSERT_EQ(ka_stricmpW(wa.c_str(), wb.c_str()), fold);
      ASSERT_EQ(ka_stricmpWA(wa.c_str(), b.c_str()), fold);
      ASSERT_EQ(ka_strnicmpWA(wa.c_str(), b.c_str(), 2), ka_strnicmpA(a.c_str(), b.c_str(), 2));
    }
  }
}
