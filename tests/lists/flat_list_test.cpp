// The flat integer and pointer lists: which edits write through a shared
// array (Set, Delete and Pack, deliberately) and which copy it first,
// GetBuffer, and the sharing rules of AssignList, AppendList and GetSubList.
// Results and ranges of every edit are run against std::vector by the
// differential fuzz target; both lists are one template.
#include <functional>

#include "lists/list_support.h"

namespace {

char g_cells[16];

// Element i of either list (int i; the address of cell i, null for 0 and
// -1), and back.
int Elem(Ka_IntList*, int i) { return i; }
void* Elem(Ka_PtrList*, int i) { return i <= 0 ? nullptr : &g_cells[i]; }
std::string Name(int v) { return std::to_string(v); }
std::string Name(void* v) { return v == nullptr ? "0" : std::to_string(static_cast<char*>(v) - g_cells); }
#define VAL(i) Elem(static_cast<TypeParam*>(nullptr), i)

template <class L>
std::string ShowFlat(const L& l) {
  std::string out = std::to_string(l.Count()) + ":";
  for (int i = 0; i < l.Count(); ++i) out += (i > 0 ? "," : "") + Name(l.GetItem(i));
  return out;
}

template <class L>
class FlatList : public ::testing::Test {};
typedef ::testing::Types<Ka_IntList, Ka_PtrList> BothFlat;
TYPED_TEST_SUITE(FlatList, BothFlat);

TYPED_TEST(FlatList, SetAndDeleteWriteThroughASharedArrayOtherEditsCopyIt) {
  struct Row { std::function<void(TypeParam&)> edit; const char* after; bool through; } rows[] = {
      {[](TypeParam& l) { l.Set(0, VAL(7)); }, "3:7,2,3", true},       // in place, shared or not (deliberate)
      {[](TypeParam& l) { l.Delete(1, 100); }, "1:1", true},           // likewise (deliberate)
      {[](TypeParam& l) { l.Insert(0, VAL(7)); }, "4:7,1,2,3", false},  // a private copy first
      {[](TypeParam& l) { l.Exchange(0, 2); }, "3:3,2,1", false},      //
      {[](TypeParam& l) { l.Move(2, 0); }, "3:3,1,2", false},          //
  };
  for (const Row& r : rows) {
    TypeParam l, other;
    for (int v : {1, 2, 3}) l.Add(VAL(v));
    other = l;
    r.edit(l);
    EXPECT_EQ(ShowFlat(l), r.after);
    EXPECT_EQ(ShowFlat(other), r.through ? r.after : "3:1,2,3") << r.after;
    EXPECT_EQ(l.Validate() + other.Validate(), 2);
  }
}

TYPED_TEST(FlatList, GetBufferKeepsEveryElementAndZeroesNewOnes) {
  TypeParam l;
  for (int v : {1, 2, 3}) l.Add(VAL(v));
  const TypeParam copy(l);
  EXPECT_TRUE(l.GetBuffer(1) != nullptr && l.GetListData() != copy.GetListData()) << "a shared array is copied first";
  ASSERT_NE(l.GetBuffer(5), nullptr);
  EXPECT_EQ(ShowFlat(l), "5:1,2,3,0,0") << "every element kept (fewer were asked for first), the new ones zero";
  EXPECT_EQ(l.GetItem(5), decltype(l.GetItem(5))(VAL(-1))) << "out of range: -1 or null";
  EXPECT_TRUE(l.GetBuffer(TypeParam::kMaxCount + 1) == nullptr && l.Count() == 5) << "beyond the largest array: refused";
}

TYPED_TEST(FlatList, ListsShareOnAssignAndAppendButNeverOnGetSubList) {
  TypeParam a, b, c;
  for (int v : {1, 2}) b.Add(VAL(v));
  c.Add(VAL(3));
  a.AppendList(b);
  EXPECT_EQ(a.GetListData(), b.GetListData()) << "an empty list shares the appended array";
  c.AppendList(b);
  c.AppendList(c);  // one array: nothing
  a.AssignList(c);
  EXPECT_EQ(ShowFlat(c) + " " + ShowFlat(b) + (a.GetListData() == c.GetListData() ? " shared" : ""), "3:3,1,2 2:1,2 shared");
  EXPECT_NE(c.GetSubList(0, 3).GetListData(), c.GetListData()) << "even the whole list is copied";
}

TEST(FlatList, PackDropsNullsInTheSharedArray) {
  Ka_PtrList l, all;
  for (int i : {0, 1, 0, 2}) l.Add(Elem(&l, i));
  all.Add(nullptr);
  const Ka_PtrList copy(l), allCopy(all);
  l.Pack();  // in place (deliberate)
  all.Pack();
  EXPECT_EQ(ShowFlat(copy) + " " + ShowFlat(allCopy), "2:1,2 0:");
  EXPECT_EQ(l.Validate() + all.Validate(), 2);
}

}  // namespace
