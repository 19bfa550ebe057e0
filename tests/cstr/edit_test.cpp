// Skipping, trimming, padding, packing and bracket handling in place.
#include "cstr/widths.h"

#include <cstring>

template <class W>
class Edit : public ::testing::Test {};
TYPED_TEST_SUITE(Edit, BothWidths);

TYPED_TEST(Edit, SkipCountsOnlyTheFourBlanks) {
  typedef typename TypeParam::Char C;
  struct Row {
    const char* s;
    int n, lead, trail;  // ka_findskip / ka_findrskip over the first n
  } rows[] = {
      {"", 5, 0, 0},           // empty: the terminator stops both walks
      {" \t\r\nx", 0, 0, 0},   // n = 0
      {" \t\r\nx", -2, 0, 0},  // negative n
      {" \t\r\nx", 9, 4, 0},   // all four blanks lead
      {"  ", 1, 1, 1},         // n cuts the run
      {"  ", 2, 2, 2},         // all blank
      {"x \n", 3, 0, 2},       // trailing blanks
      {"x \n", 2, 0, 1},       // up to s[n-1] only
      {"x \n", 40, 0, 2},      // n past the terminator stops at the text's end
      {"\v\fx", 3, 0, 0},      // vertical tab and form feed are not blanks
  };
  for (const Row& r : rows) {
    const auto s = Txt<C>(r.s);
    EXPECT_EQ(TypeParam::findskip(s.c_str(), r.n), r.lead) << r.n;
    EXPECT_EQ(TypeParam::findrskip(s.c_str(), r.n), r.trail) << r.n;
    EXPECT_EQ(TypeParam::skipspace(s.c_str(), r.n), s.c_str() + r.lead) << r.n;
  }
  EXPECT_EQ(TypeParam::skipspace(nullptr, 3), nullptr);
  EXPECT_EQ(TypeParam::findskip(nullptr, 3), 0);
  EXPECT_EQ(TypeParam::findrskip(nullptr, 3), 0);
}

TYPED_TEST(Edit, TrimsReturnLengthsExceptLeftTrimsNegatedCount) {
  typedef typename TypeParam::Char C;
  struct Row {
    const char* s;
    int left;  // ka_ltrim's result, then its text
    const char* lefted;
    int right;  // ka_rtrim's result, then its text
    const char* righted;
    int both;  // ka_trim's result, then its text
    const char* trimmed;
  } rows[] = {
      {"", 0, "", 0, "", 0, ""},                        // empty
      {" \t\n\r", -4, "", 0, "", 0, ""},                // all blank
      {"  ab", -2, "ab", 4, "  ab", 2, "ab"},           // minus the count (deliberate)
      {"ab", 0, "ab", 2, "ab", 2, "ab"},                // nothing removed: 0
      {"ab\t\n", 0, "ab\t\n", 2, "ab", 2, "ab"},        // the right trim returns the length
      {" a b ", -1, "a b ", 4, " a b", 3, "a b"},       // inner blanks stay
  };
  for (const Row& r : rows) {
    auto s = Txt<C>(r.s);
    EXPECT_EQ(TypeParam::ltrim(&s[0]), r.left) << r.s;
    EXPECT_EQ(Held(s.c_str()), Txt<C>(r.lefted));
    s = Txt<C>(r.s);
    EXPECT_EQ(TypeParam::rtrim(&s[0]), r.right) << r.s;
    EXPECT_EQ(Held(s.c_str()), Txt<C>(r.righted));
    s = Txt<C>(r.s);
    EXPECT_EQ(TypeParam::trim(&s[0]), r.both) << r.s;
    EXPECT_EQ(Held(s.c_str()), Txt<C>(r.trimmed));
  }
  EXPECT_EQ(TypeParam::ltrim(nullptr), 0);
  EXPECT_EQ(TypeParam::rtrim(nullptr), 0);
  EXPECT_EQ(TypeParam::trim(nullptr), 0);
}

TYPED_TEST(Edit, PaddingNeverShortens) {
  typedef typename TypeParam::Char C;
  struct Row {
    const char* s;
    int width;
    const char *left, *right;
  } rows[] = {
      {"", 2, "00", "00"},    // empty text
      {"7", -1, "7", "7"},    // negative width
      {"7", 1, "7", "7"},     // already wide enough
      {"77", 1, "77", "77"},  // wider: never shortened
      {"7", 3, "007", "700"}, // padded
  };
  for (const Row& r : rows) {
    auto s = Buf<C>(r.s);
    const int want = static_cast<int>(std::strlen(r.left));
    EXPECT_EQ(TypeParam::lpad(&s[0], C('0'), r.width), want) << r.s << "," << r.width;
    EXPECT_EQ(Held(s.c_str()), Txt<C>(r.left));
    s = Buf<C>(r.s);
    EXPECT_EQ(TypeParam::rpad(&s[0], C('0'), r.width), want) << r.s << "," << r.width;
    EXPECT_EQ(Held(s.c_str()), Txt<C>(r.right));
  }
  EXPECT_EQ(TypeParam::lpad(nullptr, C('0'), 3), 0);
  EXPECT_EQ(TypeParam::rpad(nullptr, C('0'), 3), 0);
}

TYPED_TEST(Edit, PackDropsEveryBlankAndTheRemoveSet) {
  typedef typename TypeParam::Char C;
  auto s = Txt<C>(" a b,\tc\r\n,");
  EXPECT_EQ(TypeParam::packstr(&s[0], Txt<C>(",").c_str()), 3);
  EXPECT_EQ(Held(s.c_str()), Txt<C>("abc"));
  s = Txt<C>("a, b");
  EXPECT_EQ(TypeParam::packstr(&s[0], nullptr), 3);
  EXPECT_EQ(Held(s.c_str()), Txt<C>("a,b"));
  EXPECT_EQ(TypeParam::packstr(nullptr, nullptr), 0);
}

TYPED_TEST(Edit, ClosingBracketSkipsNestingAndQuotes) {
  typedef typename TypeParam::Char C;
  struct Row {
    const char* s;
    int pos, close;
  } rows[] = {
      {"", 0, -1},              // empty: the terminator opens nothing
      {"(ab)", -1, -1},         // negative pos
      {"(ab)", 4, -1},          // pos at the terminator
      {"(ab)", 9, -1},          // pos past the terminator is never read
      {"x", 0, -1},             // not an opener
      {"(abc", 0, -1},          // no closer
      {"(a(b)c)", 0, 6},        // nesting of the same kind
      {"(a(b)c)", 2, 4},        // an inner opener; the index counts from s
      {"(a\")\"b)", 0, 6},      // a quoted closer is skipped
      {"(a'\\')')", 0, 7},      // a backslash escapes inside an inner quote
      {"[a(b]", 0, 4},          // other kinds are ordinary characters
      {"(a\\)", 0, 3},          // outside quotes a backslash is ordinary
      {"\"a\\\"b\"", 0, 5},     // an escaped quote does not close
      {"'a\\", 0, -1},          // an escape before the terminator stops
      {"{'}", 0, -1},           // an inner quote left open hides the closer
  };
  for (const Row& r : rows) {
    const auto s = Txt<C>(r.s);
    EXPECT_EQ(TypeParam::findbrace(s.c_str(), r.pos), r.close) << r.s << " at " << r.pos;
  }
  EXPECT_EQ(TypeParam::findbrace(nullptr, 0), -1);
}

TYPED_TEST(Edit, OuterPairIsStrippedAndEscapesOptionallyDecoded) {
  typedef typename TypeParam::Char C;
  struct Row {
    const char* s;
    int unescape;
    const char* result;
  } rows[] = {
      {"", 1, ""},                        // empty
      {"  \t", 1, ""},                    // blank only
      {" plain ", 1, "plain"},            // no pair: just trimmed
      {" \"a\\tb\" ", 1, "a\tb"},         // tab escape decoded
      {"\"a\\tb\"", 0, "a\\tb"},          // kept when not unescaping
      {"\"\\n\\r\\q\\\"\"", 1, "\n\nq\""},  // \n and \r both a line feed (deliberate)
      {"\"a\\\"b\"", 0, "a\\"},           // without unescaping a backslash cannot protect
      {"'ab'cd", 1, "ab"},                // text after the closing quote goes
      {"'ab", 1, "ab"},                   // no closing quote
      {"'ab\\", 1, "ab\\"},               // a lone final backslash is kept
      {"{abc}def", 1, "abc"},             // text after the bracket goes
      {"{abc", 1, "abc"},                 // no closer: only the opener goes
      {"( a )", 1, " a "},                // the content is not trimmed again
  };
  for (const Row& r : rows) {
    auto s = Txt<C>(r.s);
    EXPECT_EQ(TypeParam::trimbrace(&s[0], r.unescape), static_cast<int>(std::strlen(r.result))) << r.s;
    EXPECT_EQ(Held(s.c_str()), Txt<C>(r.result)) << r.s;
  }
  EXPECT_EQ(TypeParam::trimbrace(nullptr, 1), 0);
}
