// Searching and slicing, over both widths, and the search rules in which
// the widths differ.
#include <climits>
#include <functional>
#include <string>

#include "strings/string_support.h"

template <class S>
class Search : public ::testing::Test {};
TYPED_TEST_SUITE(Search, BothStrings);

TYPED_TEST(Search, FindClampsTheStartAndStopsAtTheFirstZero) {
  typedef CharOf<TypeParam> C;
  struct Row {
    std::string text;
    const char* pattern;  // a one-character pattern also runs Find(char)
    bool null;            // pass a null pattern
    int start;
    int found;
  } rows[] = {
      {"", "a", false, 0, -1},                       // the null string finds nothing
      {"", "", false, 0, -1},                        // not even the empty pattern
      {"abcabc", "c", false, 3, 5},                  //
      {"abcabc", "c", false, 6, -1},                 // start at the length: nothing to search
      {"abcabc", "c", false, -4, 2},                 // a negative start counts as 0
      {"abcabc", "c", false, INT_MIN, 2},            // even the most negative one
      {"abcabc", "z", false, 0, -1},                 // absent
      {"abcabc", "bc", false, 6, -1},                // the empty tail holds nothing
      {"abcabc", "", false, 6, 6},                   // the empty pattern is found at start
      {"abcabc", "", true, 4, 4},                    // so is a null one
      {"abcabc", "", false, 7, -1},                  // start above the length
      {"abcabc", "bc", false, INT_MAX, -1},          //
      {"abcabc", "ca", false, 0, 2},                 //
      {std::string("ab\0cb", 5), "b", false, 2, -1}, // the search stops at the zero
      {std::string("ab\0cb", 5), "c", false, 3, 3},  // but may start past it
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.text + "/" + r.pattern + "/" + std::to_string(r.start));
    const TypeParam s = Make<TypeParam>(r.text);
    const auto pattern = Chars<TypeParam>(r.pattern);
    EXPECT_EQ(s.Find(r.null ? nullptr : pattern.c_str(), r.start), r.found);
    if (pattern.size() == 1) {
      EXPECT_EQ(s.Find(pattern[0], r.start), r.found);
    }
  }
  EXPECT_EQ(Make<TypeParam>("abcabc").Find(C('b')), 1);
  EXPECT_EQ(Make<TypeParam>("abcabc").Find(Chars<TypeParam>("ca").c_str()), 2);
}

TYPED_TEST(Search, CaseBlindFindMatchesAsciiLettersOnly) {
  const TypeParam s = Make<TypeParam>("xxABcab\xC9");
  struct Row {
    const char* pattern;
    int start;
    int found;
  } rows[] = {
      {"ab", 0, 2},       // either case
      {"AB", 3, 5},       //
      {"ab", 9, -1},      // start above the length
      {"ab", -2, 2},      // a negative start counts as 0
      {"", 8, 8},         // empty pattern at the length
      {"\xE9", 0, -1},    // only ASCII letters fold
  };
  for (const Row& r : rows) EXPECT_EQ(s.Findi(Chars<TypeParam>(r.pattern).c_str(), r.start), r.found) << r.pattern;
  EXPECT_EQ(TypeParam().Findi(Chars<TypeParam>("").c_str()), -1);
}

TYPED_TEST(Search, ReverseFindAndFindOneOf) {
  typedef CharOf<TypeParam> C;
  const TypeParam s = Make<TypeParam>("abcabc");
  EXPECT_EQ(s.ReverseFind(C('b')), 4);
  EXPECT_EQ(s.ReverseFind(C('z')), -1);
  EXPECT_EQ(s.ReverseFind(C(0)), 6) << "the terminator is the last zero";
  EXPECT_EQ(Make<TypeParam>("a\xE9" "b\xE9" "c").ReverseFind(C(0xE9)), 3) << "bytes above 0x7F are found on every platform";
  EXPECT_EQ(TypeParam().ReverseFind(C('a')), -1);

  EXPECT_EQ(s.FindOneOf(Chars<TypeParam>("zc").c_str()), 2);
  EXPECT_EQ(s.FindOneOf(Chars<TypeParam>("z").c_str()), -1);
  EXPECT_EQ(s.FindOneOf(Chars<TypeParam>("").c_str()), -1);
  EXPECT_EQ(s.FindOneOf(nullptr), 0) << "a null set matches the first character";
  EXPECT_EQ(TypeParam().FindOneOf(Chars<TypeParam>("a").c_str()), -1);
}

TEST(SearchWidths, NarrowFindOfZeroFindsTheTerminatorWideFindsNothing) {
  EXPECT_EQ(Make<Ka_AString>("abcabc").Find('\0'), 6);
  EXPECT_EQ(Make<Ka_AString>(std::string("ab\0cd", 5)).Find('\0', 1), 2);
  EXPECT_EQ(Make<Ka_WString>("abcabc").Find(ka_wchar(0)), -1);  // deliberate
  EXPECT_EQ(Make<Ka_WString>(std::string("ab\0cd", 5)).Find(ka_wchar(0), 1), -1);
}

TYPED_TEST(Search, SlicesClipToTheTextAndShareWholeCopies) {
  typedef std::function<TypeParam(const TypeParam&)> Slice;
  struct Row {
    const char* what;
    Slice slice;
    std::string held;
    bool shares;  // the result shares the source's block
  } rows[] = {
      {"Mid(0,0)", [](const TypeParam& s) { return s.Mid(0, 0); }, "", false},                  // an empty range: null
      {"Mid(4,10)", [](const TypeParam& s) { return s.Mid(4, 10); }, "bc", false},              // clipped to the end
      {"Mid(7,1)", [](const TypeParam& s) { return s.Mid(7, 1); }, "", false},                  // start past the end
      {"Mid(6,1)", [](const TypeParam& s) { return s.Mid(6, 1); }, "", false},                  // start at the end
      {"Mid(0,6)", [](const TypeParam& s) { return s.Mid(0, 6); }, "abcabc", true},             // the whole text
      {"Mid(-2,3)", [](const TypeParam& s) { return s.Mid(-2, 3); }, "abc", false},             // negative start: 0
      {"Mid(2,-1)", [](const TypeParam& s) { return s.Mid(2, -1); }, "", false},                // negative count: 0
      {"Mid(1,MAX)", [](const TypeParam& s) { return s.Mid(1, INT_MAX); }, "bcabc", false},     // no overflow
      {"Mid(MAX,MAX)", [](const TypeParam& s) { return s.Mid(INT_MAX, INT_MAX); }, "", false},  //
      {"Mid(1)", [](const TypeParam& s) { return s.Mid(1); }, "bcabc", false},                  //
      {"Mid(-5)", [](const TypeParam& s) { return s.Mid(-5); }, "abcabc", true},                //
      {"Mid(MIN)", [](const TypeParam& s) { return s.Mid(INT_MIN); }, "abcabc", true},          //
      {"Mid(9)", [](const TypeParam& s) { return s.Mid(9); }, "", false},                       //
      {"Left(-1)", [](const TypeParam& s) { return s.Left(-1); }, "", false},                   // negative: 0
      {"Left(0)", [](const TypeParam& s) { return s.Left(0); }, "", false},                     //
      {"Left(2)", [](const TypeParam& s) { return s.Left(2); }, "ab", false},                   //
      {"Left(6)", [](const TypeParam& s) { return s.Left(6); }, "abcabc", true},                //
      {"Left(MAX)", [](const TypeParam& s) { return s.Left(INT_MAX); }, "abcabc", true},        //
      {"Right(-3)", [](const TypeParam& s) { return s.Right(-3); }, "", false},                 //
      {"Right(2)", [](const TypeParam& s) { return s.Right(2); }, "bc", false},                 //
      {"Right(10)", [](const TypeParam& s) { return s.Right(10); }, "abcabc", true},            //
  };
  const TypeParam source = Make<TypeParam>("abcabc");
  for (const Row& r : rows) {
    const TypeParam piece = r.slice(source);
    EXPECT_EQ(Text(piece), r.held) << r.what;
    EXPECT_EQ(piece.GetData() == source.GetData(), r.shares) << r.what;
    EXPECT_EQ(piece.GetData() == nullptr, r.held.empty()) << r.what << ": an empty slice is the null string";
    ExpectWellFormed(piece);
  }
  EXPECT_EQ(Text(source), "abcabc");
  EXPECT_EQ(Refs(source), 1);
  EXPECT_EQ(Text(Make<TypeParam>(std::string("a\0b\0c", 5)).Mid(1, 3)), std::string("\0b\0", 3)) << "slices keep zeros";
  EXPECT_EQ(TypeParam().Mid(0, 3).GetData(), nullptr);
}
