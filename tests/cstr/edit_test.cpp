// Skipping, trimming, padding, packing and bracket handling in place.
#include <cstring>

#include "cstr/widths.h"

KA_BOTH_WIDTHS(Edit);

TYPED_TEST(Edit, SkipCountsOnlyTheFourBlanks) {
  typedef typename TypeParam::Char C;
  struct { const char* s; int n, lead, trail; } rows[] = {  // ka_findskip / ka_findrskip over the first n
      {nullptr, 3, 0, 0},      // null
      {"", 5, 0, 0},           // empty: the terminator stops both walks
      {" \t\r\nx", 0, 0, 0},   // n = 0
      {" \t\r\nx", 9, 4, 0},   // all four blanks lead
      {"  ", 1, 1, 1},         // n cuts the run
      {"x \n", 2, 0, 1},       // up to s[n-1] only
      {"x \n", 40, 0, 2},      // n past the terminator stops at the text's end
      {"\v\fx", 3, 0, 0},      // vertical tab and form feed are not blanks
  };
  for (auto& r : rows) {
    Arg<C> s(r.s);
    EXPECT_EQ(TypeParam::findskip(s.p(), r.n), r.lead) << r.n;
    EXPECT_EQ(TypeParam::findrskip(s.p(), r.n), r.trail) << r.n;
    EXPECT_EQ(TypeParam::skipspace(s.p(), r.n), r.s ? s.p() + r.lead : nullptr) << r.n;
  }
}

TYPED_TEST(Edit, TrimsReturnLengthsExceptLeftTrimsNegatedCount) {
  typedef typename TypeParam::Char C;
  struct {
    const char* s;
    int left, right, both;  // the results of ka_ltrim, ka_rtrim, ka_trim
    const char *lefted, *righted, *trimmed;
  } rows[] = {
      {nullptr, 0, 0, 0, nullptr, nullptr, nullptr},  // null
      {"", 0, 0, 0, "", "", ""},                      // empty
      {" \t\n\r", -4, 0, 0, "", "", ""},              // all blank
      {"  ab", -2, 4, 2, "ab", "  ab", "ab"},         // minus the count (deliberate)
      {"ab\t\n", 0, 2, 2, "ab\t\n", "ab", "ab"},      // nothing to remove on the left: 0
      {" a b ", -1, 4, 3, "a b ", " a b", "a b"},     // inner blanks stay
  };
  for (auto& r : rows) {
    Arg<C> l(r.s), rt(r.s), both(r.s);
    EXPECT_EQ(TypeParam::ltrim(l.p()), r.left) << r.s;
    EXPECT_EQ(TypeParam::rtrim(rt.p()), r.right) << r.s;
    EXPECT_EQ(TypeParam::trim(both.p()), r.both) << r.s;
    if (r.s == nullptr) continue;
    EXPECT_EQ(l.held(), Txt<C>(r.lefted));
    EXPECT_EQ(rt.held(), Txt<C>(r.righted));
    EXPECT_EQ(both.held(), Txt<C>(r.trimmed));
  }
}

TYPED_TEST(Edit, PaddingNeverShortens) {
  typedef typename TypeParam::Char C;
  struct { const char* s; int width; const char *left, *right; } rows[] = {
      {nullptr, 2, "", ""},    // null: length 0
      {"", 2, "00", "00"},     // empty text
      {"7", -1, "7", "7"},     // negative width
      {"77", 1, "77", "77"},   // wider: never shortened
      {"7", 3, "007", "700"},  // padded
  };
  for (auto& r : rows) {
    Arg<C> l(r.s), rt(r.s);
    const int want = static_cast<int>(std::strlen(r.left));  // the new length
    EXPECT_EQ(TypeParam::lpad(l.p(), C('0'), r.width), want) << r.s << "," << r.width;
    EXPECT_EQ(TypeParam::rpad(rt.p(), C('0'), r.width), want) << r.s << "," << r.width;
    EXPECT_EQ(l.held(), Txt<C>(r.left));
    EXPECT_EQ(rt.held(), Txt<C>(r.right));
  }
}

TYPED_TEST(Edit, PackDropsEveryBlankAndTheRemoveSet) {
  typedef typename TypeParam::Char C;
  Arg<C> s(" a b,\tc\r\n,"), t("a, b");
  EXPECT_EQ(TypeParam::packstr(s.p(), Arg<C>(",").p()), 3);
  EXPECT_EQ(s.held(), Txt<C>("abc"));
  EXPECT_EQ(TypeParam::packstr(t.p(), nullptr), 3);
  EXPECT_EQ(t.held(), Txt<C>("a,b"));
  EXPECT_EQ(TypeParam::packstr(nullptr, nullptr), 0);
}

TYPED_TEST(Edit, ClosingBracketSkipsNestingAndQuotes) {
  typedef typename TypeParam::Char C;
  struct { const char* s; int pos, close; } rows[] = {
      {nullptr, 0, -1},       // null
      {"", 0, -1},            // empty: the terminator opens nothing
      {"(ab)", -1, -1},       // negative pos
      {"(ab)", 9, -1},        // pos past the terminator is never read
      {"x(a(b)c)", 3, 5},     // an inner opener; the index counts from s
      {"x", 0, -1},           // not an opener
      {"(abc", 0, -1},        // no closer
      {"(a(b)c)", 0, 6},      // nesting of the same kind
      {"(a\")\"b)", 0, 6},    // a quoted closer is skipped
      {"(a'\\')')", 0, 7},    // a backslash escapes inside an inner quote
      {"[a(b]", 0, 4},        // other kinds are ordinary characters
      {"\"a\\\"b\"", 0, 5},   // an escaped quote does not close
      {"'a\\", 0, -1},        // an escape before the terminator stops
      {"{'}", 0, -1},         // an inner quote left open hides the closer
  };
  for (auto& r : rows) EXPECT_EQ(TypeParam::findbrace(Arg<C>(r.s).p(), r.pos), r.close) << r.s << " at " << r.pos;
}

TYPED_TEST(Edit, OuterPairIsStrippedAndEscapesOptionallyDecoded) {
  typedef typename TypeParam::Char C;
  struct { const char* s; int unescape; const char* result; } rows[] = {
      {"", 1, ""},                          // empty
      {" plain ", 1, "plain"},              // no pair: just trimmed
      {" \"a\\tb\" ", 1, "a\tb"},           // tab escape decoded
      {"\"a\\tb\"", 0, "a\\tb"},            // kept when not unescaping
      {"\"\\n\\r\\q\\\"\"", 1, "\n\nq\""},  // \n and \r both a line feed (deliberate)
      {"\"a\\\"b\"", 0, "a\\"},             // without unescaping a backslash cannot protect
      {"'ab'cd", 1, "ab"},                  // text after the closing quote goes
      {"'ab\\", 1, "ab\\"},                 // a lone final backslash is kept
      {"{abc}def", 1, "abc"},               // text after the bracket goes
      {"{abc", 1, "abc"},                   // no closer: only the opener goes
      {"( a )", 1, " a "},                  // the content is not trimmed again
  };
  for (auto& r : rows) {
    Arg<C> s(r.s);
    EXPECT_EQ(TypeParam::trimbrace(s.p(), r.unescape), static_cast<int>(std::strlen(r.result))) << r.s;
    EXPECT_EQ(s.held(), Txt<C>(r.result)) << r.s;
  }
  EXPECT_EQ(TypeParam::trimbrace(nullptr, 1), 0);
}
