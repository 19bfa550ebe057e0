// NumFormat and MaskStr over both widths.
#include <climits>
#include <limits>

#include "format/format_support.h"

template <class S>
class NumberFormatting : public ::testing::Test {};
TYPED_TEST_SUITE(NumberFormatting, BothStrings);

TYPED_TEST(NumberFormatting, GroupsThousandsAndFixesTheDecimals) {
  // narrow: rounded correctly; wide: printed by the library's own "%.*lf" (deliberate).
  struct Row { double value; int decimals; const char *narrow, *wide; } rows[] = {
      {0.0, 2, "0.00", "0.00"},
      {1234567.891, 2, "1,234,567.89", "1,234,567.89"},
      {999.0, 1, "999.0", "999.0"},                 // three digits: no separator
      {-999999.0, 0, "-999,999", "-999,999"},
      {1e20, 0, "100,000,000,000,000,000,000", "100,000,000,000,000,000,000"},
      {2.75, 0, "3", "2"},                          // the library's %.0f truncates
      {0.125, 2, "0.12", "0.13"},                   // a tie: to even, against half up
      {1234567.0, -3, "1,235", "1,234"},            // scaled to 1234.567 first
      {5e-324, INT_MIN, "0", "0"},                  // scaling stops at zero
      {std::numeric_limits<double>::infinity(), 2, "inf.000", "0.1#"},  // no point: one zero more (deliberate)
  };
  for (const Row& r : rows) {
    const std::string expected = sizeof(CharOf<TypeParam>) == 1 ? r.narrow : r.wide;
    TypeParam s, ignored;
    EXPECT_EQ(s.NumFormat(r.value, 0, r.decimals), static_cast<int>(expected.size()));
    EXPECT_EQ(Bytes(s), expected) << r.narrow;
    ignored.NumFormat(r.value, 5, r.decimals);  // the second argument changes nothing
    EXPECT_EQ(Bytes(ignored), expected);
  }
  TypeParam s;
  EXPECT_EQ(s.NumFormat(1.5, 0, 1100), 1102);
  EXPECT_EQ(Bytes(s), "1.5" + std::string(1099, '0')) << "padded past the double's digits";
  EXPECT_EQ(s.NumFormat(1.5, 0, INT_MAX), 2 + KA_FORMAT_MAX_FIELD) << "decimals are bounded";
}

TYPED_TEST(NumberFormatting, MaskFillsEachAtSignInTurn) {
  struct Row { const char* value; const char* mask; const char* expected; } rows[] = {
      {"", "", ""},                                      // empty mask
      {"", "@@", "  "},                                  // blanks once the value is used up
      {"0212345678", "(@@@) @@@-@@@@", "(021) 234-5678"},
      {"12", "@@-@@", "12-  "},
      {"abcdef", "@@", "ab"},                            // the rest of the value is dropped
  };
  for (const Row& r : rows) {
    TypeParam s;
    const TypeParam mask = Make<TypeParam>(r.mask);
    EXPECT_EQ(s.MaskStr(Make<TypeParam>(r.value), mask), static_cast<int>(std::string(r.mask).size()));
    EXPECT_EQ(Bytes(s) + "|" + Bytes(mask), std::string(r.expected) + "|" + r.mask) << "the mask is not touched";
  }
  TypeParam self = Make<TypeParam>("ab");
  const TypeParam plain = Make<TypeParam>("no marks");
  self.MaskStr(self, plain);
  EXPECT_NE(self.GetData(), plain.GetData()) << "made private";
  self = Make<TypeParam>("ab");
  self.MaskStr(self, Make<TypeParam>("[@@@]"));
  EXPECT_EQ(Bytes(self), "[ab ]");
}
