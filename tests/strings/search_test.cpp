// Searching and slicing over both widths, with the one search rule in which
// the widths differ.
#include <climits>
#include <functional>
#include <type_traits>

#include "strings/string_support.h"

template <class S>
class Search : public ::testing::Test {};
TYPED_TEST_SUITE(Search, BothStrings);

TYPED_TEST(Search, FindClampsTheStartAndStopsAtTheFirstZeroReverseFindAndFindOneOf) {
  typedef CharOf<TypeParam> C;
  struct Row {
    std::string text;
    const char* pattern;  // a one-character pattern also runs Find(char); null: a null pattern
    int start, found;
  } rows[] = {
      {"", "a", 0, -1},                        // the null string finds nothing
      {"", "", 0, -1},                         // not even the empty pattern
      {"abcabc", "c", 3, 5},                   //
      {"abcabc", "c", 6, -1},                  // start at the length: nothing left
      {"abcabc", "c", INT_MIN, 2},             // a negative start counts as 0
      {"abcabc", "bc", 6, -1},                 // the empty tail holds nothing
      {"abcabc", "", 6, 6},                    // the empty pattern is found at start
      {"abcabc", nullptr, 4, 4},               // so is a null one
      {"abcabc", "", 7, -1},                   // start above the length
      {std::string("ab\0cb", 5), "b", 2, -1},  // the search stops at the zero
      {std::string("ab\0cb", 5), "c", 3, 3},   // but may start past it
  };
  for (const Row& r : rows) {
    const TypeParam s = Make<TypeParam>(r.text);
    const auto pattern = Chars<TypeParam>(r.pattern ? r.pattern : "");
    EXPECT_EQ(s.Find(r.pattern ? pattern.c_str() : nullptr, r.start), r.found) << r.text << "/" << r.start;
    if (pattern.size() == 1) {
      EXPECT_EQ(s.Find(pattern[0], r.start), r.found) << r.text << "/" << r.start;
    }
  }
  const TypeParam s = Make<TypeParam>("xxABcab\xC9");
  EXPECT_EQ(s.Findi(Chars<TypeParam>("ab").c_str()), 2);
  EXPECT_EQ(s.Findi(Chars<TypeParam>("AB").c_str(), 3), 5);
  EXPECT_EQ(s.Findi(Chars<TypeParam>("ab").c_str(), 9), -1);
  EXPECT_EQ(s.Findi(Chars<TypeParam>("\xE9").c_str(), -2), -1) << "only ASCII letters fold";
  EXPECT_EQ(TypeParam().Findi(Chars<TypeParam>("").c_str()), -1);
  // Reverse search, set search and Find of the zero character.
  const TypeParam abc = Make<TypeParam>("abcabc");
  EXPECT_EQ(abc.ReverseFind(C('b')), 4);
  EXPECT_EQ(abc.ReverseFind(C('z')), -1);
  EXPECT_EQ(abc.ReverseFind(C(0)), 6) << "the terminator is the last zero";
  EXPECT_EQ(Make<TypeParam>("a\xE9" "b\xE9" "c").ReverseFind(C(0xE9)), 3) << "high bytes, on every platform";
  EXPECT_EQ(TypeParam().ReverseFind(C('a')), -1);
  // Find of the zero character: the narrow class finds the first zero, the
  // wide one nothing (deliberate).
  const TypeParam zeros = Make<TypeParam>(std::string("ab\0cd", 5));
  const bool narrow = std::is_same<TypeParam, Ka_AString>::value;
  EXPECT_EQ(zeros.Find(C(0), 1), narrow ? 2 : -1);
  EXPECT_EQ(abc.Find(C(0)), narrow ? 6 : -1);
  EXPECT_EQ(abc.FindOneOf(Chars<TypeParam>("zc").c_str()), 2);
  EXPECT_EQ(abc.FindOneOf(Chars<TypeParam>("").c_str()), -1);
  EXPECT_EQ(abc.FindOneOf(nullptr), 0) << "a null set matches the first character";
  EXPECT_EQ(TypeParam().FindOneOf(Chars<TypeParam>("a").c_str()), -1);
}

TYPED_TEST(Search, SlicesClipToTheTextAndShareWholeCopies) {
  typedef TypeParam S;
  struct Row {
    std::function<S(const S&)> slice;
    std::string held;  // "=" : the whole text, shared
  } rows[] = {
      {[](const S& s) { return s.Mid(0, 0); }, ""},              // an empty range is the null string
      {[](const S& s) { return s.Mid(4, 10); }, "bc"},           // clipped to the end
      {[](const S& s) { return s.Mid(6, 1); }, ""},              // start at the end
      {[](const S& s) { return s.Mid(7, 1); }, ""},              // start past the end
      {[](const S& s) { return s.Mid(0, 6); }, "="},             // the whole text
      {[](const S& s) { return s.Mid(-2, 3); }, "abc"},          // negative start: 0
      {[](const S& s) { return s.Mid(2, -1); }, ""},             // negative count: 0
      {[](const S& s) { return s.Mid(1, INT_MAX); }, "bcabc"},   // no overflow
      {[](const S& s) { return s.Mid(INT_MAX, INT_MAX); }, ""},  //
      {[](const S& s) { return s.Mid(1); }, "bcabc"},            //
      {[](const S& s) { return s.Mid(INT_MIN); }, "="},          //
      {[](const S& s) { return s.Left(-1); }, ""},               //
      {[](const S& s) { return s.Left(2); }, "ab"},              //
      {[](const S& s) { return s.Left(INT_MAX); }, "="},         //
      {[](const S& s) { return s.Right(-3); }, ""},              //
      {[](const S& s) { return s.Right(2); }, "bc"},             //
      {[](const S& s) { return s.Right(6); }, "="},              //
  };
  const S source = Make<S>("abcabc");
  for (size_t i = 0; i < sizeof rows / sizeof rows[0]; ++i) {
    const S piece = rows[i].slice(source);
    const bool whole = rows[i].held == "=";
    EXPECT_EQ(Text(piece), whole ? "abcabc" : rows[i].held) << "row " << i;
    EXPECT_EQ(piece.GetData() == source.GetData(), whole) << "row " << i;
    EXPECT_EQ(piece.GetData() == nullptr, rows[i].held.empty()) << "row " << i;
  }
  EXPECT_EQ(Refs(source), 1);
  EXPECT_EQ(Text(Make<S>(std::string("a\0b\0c", 5)).Mid(1, 3)), std::string("\0b\0", 3)) << "slices keep zeros";
}
