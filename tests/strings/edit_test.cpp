// Trimming and editing, each made on a private text and on a shared one;
// searching, slicing and comparison, with the rules in which the widths
// deliberately differ; then the substring Replace, checked against the
// step-by-step loop it stands for. All over both widths. Trims of texts
// without zeros, Remove, Insert, Delete, and searches and slices inside short
// texts without zeros are left to the differential fuzz target, which runs
// them against std::string.
#include <algorithm>
#include <random>
#include <utility>

#include "strings/string_support.h"

template <class S>
class Strings : public ::testing::Test {};
TYPED_TEST_SUITE(Strings, BothStrings);

TYPED_TEST(Strings, EditsKeepLengthsAndZerosAndTrimOnlyTheGivenCharacters) {
  typedef TypeParam S;
  typedef CharOf<S> C;
  const auto none = Chars<S>(""), x = Chars<S>("x"), ab = Chars<S>("AB");
  const std::string zeros("\0\0ab", 4), mixed("aB1\xE9z\0q", 7);
  RunEdits<S>({
      {std::string("  a\0 b ", 7), DO(s.Trim()), std::string("a\0 b ", 5), 0},  // no blank before the zero
      {std::string(" a \0b", 5), DO(s.Trim()), "a", 0},                          // the blanks before it go
      {"xxaxx", DO((s.TrimLeft(C('x')), s.TrimRight(C('x')))), "a", 0},          // one character, from each end
      {zeros, DO(s.TrimLeft(C(0))), "ab", 0},                                    // leading zeros
      {std::string(3, '\0'), DO(s.TrimLeft(C(0))), "", 0},                       // but no further than the length
      {" a ", DO((s.TrimLeft(none.c_str()), s.TrimRight(static_cast<const C*>(nullptr)))), " a ", 0},  // empty and null sets
      {zeros, DO(s.TrimLeft(x.c_str())), zeros, 0},                              // a zero is in no set
      {" \"a\\tb\" ", DO(s.TrimBrace(1)), "a\tb", 0},                            // trim, then the quotes, unescaped
      {"   ", DO(s.TrimBrace(1)), "", 0},                                        // nothing left to unbrace
      {"", EDIT(s.Replace(C('a'), C('b'))), "", 0},                                      // the null string
      {std::string("a\0a", 3), EDIT(s.Replace(C('a'), C('b'))), std::string("b\0b", 3), 2},  // past zeros
      {std::string("a\0a", 3), EDIT(s.Replace(C(0), C('-'))), "a-a", 1},                 // zeros themselves
      {"ab", EDIT(s.Insert(INT_MAX, ab.c_str())), "abAB", 4},                            // no overflow
      {"ab", EDIT(s.Insert(1, static_cast<const C*>(nullptr))), "ab", 2},                // nothing to insert
      {"abcd", EDIT(s.Delete(-3, 2)), "cd", 2},                                          // negative: from 0; the new length
      {"banana", EDIT(s.Replace(C('a'), C('a'))), "banana", 0},                          // by itself: nothing replaced
      // Case changes stop at the first zero.
      {mixed, DO(s.MakeUpper()), std::string("AB1\xE9Z\0q", 7), 0},    // ASCII only
      {mixed, DO(s.MakeLower()), std::string("ab1\xE9z\0q", 7), 0},    //
  });
}

TYPED_TEST(Strings, SearchesClampTheStartAndStopAtTheFirstZeroAndComparisonsKeepEachWidthsRules) {
  typedef TypeParam S;
  typedef CharOf<S> C;
  const C* const none = nullptr;
  auto P = [](const char* bytes) { return Chars<S>(bytes); };
#define Q(expr) [&](const S& s) { return (expr); }
  struct Row { std::string text; std::function<int(const S&)> query; int narrow, wide; } rows[] = {  // "": null
      {"", Q(s.Find(P("").c_str())), -1, -1},                            // the null string finds nothing, not even ""
      {"abcabc", Q(s.Find(C('c'), 6)), -1, -1},                          // start at the length: nothing left
      {"abcabc", Q(s.Find(C('c'), INT_MIN)), 2, 2},                      // a negative start counts as 0
      {std::string("ab\0cb", 5), Q(s.Find(P("b").c_str(), 2)), -1, -1},  // the search stops at the zero
      {std::string("ab\0cb", 5), Q(s.Find(C('c'), 3)), 3, 3},            // but may start past it
      {std::string("ab\0cd", 5), Q(s.Find(C(0), 1)), 2, -1},             // the zero character (deliberate)
      {"xxABcab", Q(s.Findi(P("ab").c_str(), 3)), 5, 5},                 //
      {"xxABcab", Q(s.Findi(P("ab").c_str(), 8)), -1, -1},               // start above the length
      {"a\xE9" "b\xE9" "c", Q(s.ReverseFind(C(0xE9))), 3, 3},           // high bytes, on every platform
      {"", Q(Sign(s.Compare(none))), 0, 0},                              // both null
      {std::string(1, '\0'), Q(Sign(s.Compare(none))), -1, 0},           // a leading zero below even null (narrow, deliberate)
      {"a", Q(Sign(s.Compare(none))), 1, 1},                             //
      {"\xE9", Q(Sign(s.Compare(P("a").c_str()))), 1, 1},                // bytes compare unsigned
      {"ABD", Q(Sign(s.CompareNoCase(P("abc").c_str()))), 1, 1},         // letters fold before they compare
  };
#undef Q
  const bool narrow = std::is_same<S, Ka_AString>::value;
  for (size_t i = 0; i < sizeof rows / sizeof rows[0]; ++i)
    EXPECT_EQ(rows[i].query(Make<S>(rows[i].text)), narrow ? rows[i].narrow : rows[i].wide) << "row " << i;
  const ka_wchar high[] = {0xFF21, 0};
  EXPECT_GT(Ka_WString(high).Compare(KA_W("a")), 0) << "units compare unsigned";
}

TYPED_TEST(Strings, SlicesClipToTheTextAndShareWholeCopies) {
  typedef TypeParam S;
  const S source = Make<S>("abcabc");
  // The piece of count characters from `from`, both clipped to the text.
  // Only the whole text is shared; an empty piece is the null string.
  auto expect = [&source](const S& piece, long long from, long long count) {
    from = std::min(std::max(from, 0LL), 6LL);
    const std::string held = std::string("abcabc").substr(size_t(from), size_t(std::min(std::max(count, 0LL), 6 - from)));
    EXPECT_EQ(Text(piece) + (piece.GetData() == source.GetData() ? " shared" : piece.GetData() ? "" : " null"),
              held + (held.size() == 6 ? " shared" : held.empty() ? " null" : "")) << from << "+" << count;
  };
  for (int a : {INT_MIN, -1, 0, 1, 5, 6, 7, INT_MAX}) {
    expect(source.Left(a), 0, a);
    expect(source.Right(a), 6 - std::min(std::max(a, 0), 6), a);
    expect(source.Mid(a), a, 6);
    for (int b : {INT_MIN, -1, 0, 2, 6, INT_MAX}) expect(source.Mid(a, b), a, b);
  }
  EXPECT_EQ(Refs(source), 1) << "the slices gave their references back";
}

// The substring Replace as the device's loop made it: replace the next
// occurrence while the end of the previous replacement lies below the new
// length, then cut at the new length and return the occurrences not reached.
// Written the slow way on std::string, as the oracle of the one-pass rewrite.
std::pair<std::string, int> ReplaceModel(std::string text, const std::string& from, const std::string& to) {
  const std::string head = text.substr(0, text.find('\0'));
  int count = 0;
  for (size_t at = head.find(from); !from.empty() && at != std::string::npos; at = head.find(from, at + from.size()))
    ++count;
  if (count == 0) return {text, 0};
  const size_t newLength = text.size() + count * to.size() - count * from.size();
  for (size_t position = 0; count > 0 && position < newLength; --count) {
    const size_t at = text.substr(0, text.find('\0')).find(from, position);
    text.replace(at, from.size(), to);
    position = at + to.size();
  }
  text.resize(newLength);
  return {text, count};
}

TYPED_TEST(Strings, SubstringReplaceAgreesWithTheStepByStepLoop) {
  typedef TypeParam S;
  typedef CharOf<S> C;
  // Only the wide class writes through a shared block, and only when the
  // text does not grow (deliberate).
  auto check = [](const std::string& before, const char* from, const char* to, const std::pair<std::string, int>& expected) {
    const auto f = Chars<S>(from ? from : ""), t = Chars<S>(to ? to : "");
    const C *fp = from ? f.c_str() : nullptr, *tp = to ? t.c_str() : nullptr;
    const bool through = std::is_same<S, Ka_WString>::value && expected.first.size() <= before.size();
    RunEdits<S>({{before, EDIT(s.Replace(fp, tp)), expected.first, expected.second, through}});
  };
  // Arguments the random texts below never take.
  check("banana", nullptr, "x", {"banana", 0});  // null from
  check("banana", "", "x", {"banana", 0});       // empty from
  check("banana", "a", nullptr, {"bnn", 0});     // null to deletes
  // The result the model must give too: the last "a" lies past the new end.
  EXPECT_EQ(ReplaceModel("baa", "a", ""), std::make_pair(std::string("b"), 1));
  check("baa", "a", "", {"b", 1});
  // Random texts of a, b and zeros against the model.
  std::mt19937 random(20240607);
  const char* patterns[] = {"", "a", "ab", "ba", "aa", "b", "aba", "xyz"};
  for (int round = 0; round < 3000 && !::testing::Test::HasFailure(); ++round) {
    const bool longText = round % 25 == 0;  // without zeros: hundreds of occurrences
    std::string before(random() % (longText ? 400 : 40), 'a');
    for (char& c : before) c = "aab\0"[random() % (!longText && random() % 8 == 0 ? 4 : 3)];
    const char *from = patterns[1 + random() % 6], *to = patterns[random() % 8];
    check(before, from, to, ReplaceModel(before, from, to));
  }
}
