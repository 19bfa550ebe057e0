// Searching, slicing and comparison over both widths, with the rules in which
// the widths deliberately differ, and the item handlers that the lists build
// on. Searches and slices inside short texts without zeros are left to the
// differential fuzz target.
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
      {"", Q(s.Findi(P("").c_str())), -1, -1},                           //
      {"", Q(s.ReverseFind(C('a'))), -1, -1},                            //
      {"", Q(s.FindOneOf(P("a").c_str())), -1, -1},                      //
      {"abcabc", Q(s.Find(C('c'), 3)), 5, 5},                            //
      {"abcabc", Q(s.Find(C('c'), 6)), -1, -1},                          // start at the length: nothing left
      {"abcabc", Q(s.Find(C('c'), INT_MIN)), 2, 2},                      // a negative start counts as 0
      {"abcabc", Q(s.Find(none, 4)), 4, 4},                              // a null pattern is found at start
      {std::string("ab\0cb", 5), Q(s.Find(P("b").c_str(), 2)), -1, -1},  // the search stops at the zero
      {std::string("ab\0cb", 5), Q(s.Find(C('c'), 3)), 3, 3},            // but may start past it
      {std::string("ab\0cd", 5), Q(s.Find(C(0), 1)), 2, -1},             // the zero character (deliberate)
      {"xxABcab", Q(s.Findi(P("ab").c_str(), 3)), 5, 5},                 //
      {"xxABcab", Q(s.Findi(P("ab").c_str(), 8)), -1, -1},               // start above the length
      {"abcabc", Q(s.ReverseFind(C(0))), 6, 6},                          // the terminator is the last zero
      {"a\xE9" "b\xE9" "c", Q(s.ReverseFind(C(0xE9))), 3, 3},           // high bytes, on every platform
      {"abcabc", Q(s.FindOneOf(none)), 0, 0},                            // a null set matches the first character
      {"", Q(Sign(s.Compare(none))), 0, 0},                              // both null
      {"", Q(Sign(s.Compare(P("").c_str()))), -1, 0},                    // null below an empty text (narrow, deliberate)
      {"", Q(Sign(s.Compare(P("a").c_str()))), -1, -1},                  //
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
  {
    struct Row { S piece; std::string held; } rows[] = {  // held "=": the whole text, shared
        {source.Mid(0, 0), ""},              // an empty range is the null string
        {source.Mid(1, INT_MAX), "bcabc"},   // no overflow
        {source.Mid(INT_MAX, INT_MAX), ""},  //
        {source.Mid(INT_MIN), "="},          //
        {source.Left(-1), ""},               //
        {source.Left(2), "ab"},              //
        {source.Left(INT_MAX), "="},         //
        {source.Right(-3), ""},              //
        {source.Right(2), "bc"},             //
        {source.Right(6), "="},              //
    };
    for (const Row& r : rows) {
      const bool whole = r.held == "=";
      EXPECT_EQ(Text(r.piece), whole ? "abcabc" : r.held);
      EXPECT_EQ(r.piece.GetData() == source.GetData(), whole) << r.held;
      EXPECT_EQ(r.piece.GetData() == nullptr, r.held.empty()) << r.held;
    }
  }
  EXPECT_EQ(Refs(source), 1) << "the slices gave their references back";
  EXPECT_EQ(Text(Make<S>(std::string("a\0b\0c", 5)).Mid(1, 3)), std::string("\0b\0", 3)) << "slices keep zeros";
}

TYPED_TEST(Search, ItemHandlerBuildsAssignsComparesAndDestroysStrings) {
  Ka_ListObjHandler& handler = HandlerOf<TypeParam>();
  Ka_ObjBufData* slot = handler.GetPool().Alloc();
  ASSERT_NE(slot, nullptr);
  void* item = handler._InitItem(slot->object());
  EXPECT_EQ(static_cast<TypeParam*>(item)->GetData(), nullptr);
  TypeParam key = Make<TypeParam>("key"), none;
  handler._AssignItem(item, &key);
  EXPECT_EQ(Refs(key), 2) << "assignment shares";
  EXPECT_EQ(handler._CompareItem(item, &key), 0);
  EXPECT_GT(handler._CompareItem(item, nullptr), 0) << "a missing key counts as the null string";
  EXPECT_LT(handler._CompareItem(&none, &key), 0);
  handler._FreeItem(item);
  EXPECT_EQ(Refs(key), 1) << "destroying the item released its text";
  slot->Release(&handler.GetPool());
  handler.GetPool().Free(slot);
  EXPECT_EQ(handler._InitItem(nullptr), nullptr);
  handler._FreeItem(nullptr);
  handler._AssignItem(nullptr, &key);
  handler._AssignItem(&key, nullptr);
  EXPECT_EQ(Text(key), "key");
  TypeParam zero = Make<TypeParam>(std::string(1, '\0'));  // the narrow rules order items too (deliberate)
  EXPECT_EQ(Sign(handler._CompareItem(&zero, &none)), (std::is_same<TypeParam, Ka_AString>::value ? -1 : 0));
}
