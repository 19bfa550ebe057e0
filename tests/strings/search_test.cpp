// Searching, slicing and comparison over both widths, with the rules in which
// the widths deliberately differ, and the item handlers that the lists build
// on. Searches and slices inside short texts without zeros are left to the
// differential fuzz target.
#include <algorithm>
#include <climits>
#include <type_traits>

#include "strings/string_support.h"

namespace {
int Sign(int v) { return (v > 0) - (v < 0); }
}  // namespace

template <class S>
class Search : public ::testing::Test {};
TYPED_TEST_SUITE(Search, BothStrings);

TYPED_TEST(Search, SearchesClampTheStartAndStopAtTheFirstZeroAndComparisonsKeepEachWidthsRules) {
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
      {"abcabc", Q(s.FindOneOf(none)), 0, 0},                            // a null set matches the first character
      {"", Q(Sign(s.Compare(none))), 0, 0},                              // both null
      {"", Q(Sign(s.Compare(P("").c_str()))), -1, 0},                    // null below an empty text (narrow, deliberate)
      {std::string(1, '\0'), Q(Sign(s.Compare(none))), -1, 0},           // a leading zero below even null (narrow, deliberate)
      {"a", Q(Sign(s.Compare(none))), 1, 1},                             //
      {"\xE9", Q(Sign(s.Compare(P("a").c_str()))), 1, 1},                // bytes compare unsigned
      {"ABC", Q(Sign(s.CompareNoCase(P("abd").c_str()))), -1, -1},       //
  };
#undef Q
  const bool narrow = std::is_same<S, Ka_AString>::value;
  for (size_t i = 0; i < sizeof rows / sizeof rows[0]; ++i)
    EXPECT_EQ(rows[i].query(Make<S>(rows[i].text)), narrow ? rows[i].narrow : rows[i].wide) << "row " << i;
  const ka_wchar high[] = {0xFF21, 0};
  EXPECT_GT(Ka_WString(high).Compare(KA_W("a")), 0) << "units compare unsigned";
}

TYPED_TEST(Search, SlicesClipToTheTextAndShareWholeCopies) {
  typedef TypeParam S;
  const S source = Make<S>("abcabc");
  // The piece of count characters from `from`, both clipped to the text.
  auto expect = [&source](const S& piece, long long from, long long count) {
    from = std::min(std::max(from, 0LL), 6LL);
    const std::string held = std::string("abcabc").substr(size_t(from), size_t(std::min(std::max(count, 0LL), 6 - from)));
    EXPECT_EQ(Text(piece), held) << from << "+" << count;
    EXPECT_EQ(piece.GetData() == source.GetData(), held.size() == 6) << "only the whole text is shared";
    EXPECT_EQ(piece.GetData() == nullptr, held.empty()) << "an empty piece is the null string";
  };
  for (int a : {INT_MIN, -1, 0, 1, 5, 6, 7, INT_MAX}) {
    expect(source.Left(a), 0, a);
    expect(source.Right(a), 6 - std::min(std::max(a, 0), 6), a);
    expect(source.Mid(a), a, 6);
    for (int b : {INT_MIN, -1, 0, 2, 6, INT_MAX}) expect(source.Mid(a, b), a, b);
  }
  EXPECT_EQ(Refs(source), 1) << "the slices gave their references back";
  EXPECT_EQ(Text(Make<S>(std::string("a\0b\0c", 5)).Mid(1, 3)), std::string("\0b\0", 3)) << "slices keep zeros";
}

TYPED_TEST(Search, ItemHandlerSharesOnAssignAndComparesByTheClassRules) {
  Ka_ListObjHandler& handler = HandlerOf<TypeParam>();
  TypeParam key = Make<TypeParam>("key"), none, zero = Make<TypeParam>(std::string(1, '\0'));
  alignas(TypeParam) unsigned char room[sizeof(TypeParam)];
  void* const item = handler._InitItem(room);
  EXPECT_EQ(static_cast<TypeParam*>(item)->GetData(), nullptr);
  handler._AssignItem(item, &key);
  EXPECT_EQ(Refs(key), 2) << "assignment shares";
  EXPECT_EQ(handler._CompareItem(item, &key), 0);
  EXPECT_GT(handler._CompareItem(item, nullptr), 0) << "a missing key counts as the null string";
  handler._FreeItem(item);
  EXPECT_EQ(Refs(key), 1) << "destroying the item released its text";
  EXPECT_EQ(handler._InitItem(nullptr), nullptr);
  handler._FreeItem(nullptr);
  handler._AssignItem(nullptr, &key);
  handler._AssignItem(&key, nullptr);
  EXPECT_EQ(Text(key), "key");
  EXPECT_EQ(Sign(handler._CompareItem(&zero, &none)), (std::is_same<TypeParam, Ka_AString>::value ? -1 : 0))
      << "the narrow rules order items too (deliberate)";
}
