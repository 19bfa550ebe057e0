// The flat integer and pointer lists: the edits that copy a shared array
// first, Pack's writing through it (deliberate), GetBuffer, and the sharing
// rules of AssignList, AppendList and GetSubList. Set and Delete writing
// through a shared array (deliberate) are the flat-list example of
// docs/lists.md; results and ranges of every edit are run against
// std::vector by the differential fuzz target; both lists are one template.
#include "lists/list_support.h"

namespace {

char g_cells[16];

// Element i of either list (int i; the address of cell i, null for 0 and
// -1), and back.
int Elem(Ka_IntList*, int i) { return i; }
void* Elem(Ka_PtrList*, int i) { return i <= 0 ? nullptr : &g_cells[i]; }
std::string Name(int v) { return std::to_string(v); }
std::string Name(void* v) { return v == nullptr ? "0" : std::to_string(static_cast<char*>(v) - g_cells); }

// A list of these elements, and "count:element,element,..." of a list.
template <class L>
L Flat(std::initializer_list<int> elements) {
  L l;
  for (int i : elements) l.Add(Elem(&l, i));
  return l;
}
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

TYPED_TEST(FlatList, InsertExchangeAndMoveCopyASharedArrayFirst) {
  TypeParam l = Flat<TypeParam>({1, 2, 3}), a(l), b(l), c(l);  // one array
  a.Insert(0, Elem(&a, 7));
  b.Exchange(0, 2);
  c.Move(2, 0);
  EXPECT_EQ(ShowFlat(l) + " " + ShowFlat(a) + " " + ShowFlat(b) + " " + ShowFlat(c), "3:1,2,3 4:7,1,2,3 3:3,2,1 3:3,1,2");
  EXPECT_EQ(l.Validate() + a.Validate() + b.Validate() + c.Validate(), 4);
}

TYPED_TEST(FlatList, GetBufferKeepsEveryElementAndZeroesNewOnes) {
  TypeParam l = Flat<TypeParam>({1, 2, 3});
  const TypeParam copy(l);
  EXPECT_TRUE(l.GetBuffer(1) != nullptr && l.GetListData() != copy.GetListData()) << "a shared array is copied first";
  ASSERT_NE(l.GetBuffer(5), nullptr);
  EXPECT_EQ(ShowFlat(l), "5:1,2,3,0,0") << "every element kept (fewer were asked for first), the new ones zero";
  EXPECT_TRUE(l.GetBuffer(TypeParam::kMaxCount + 1) == nullptr && l.Count() == 5) << "beyond the largest array: refused";
}

TYPED_TEST(FlatList, ListsShareOnAssignAndAppendButNeverOnGetSubList) {
  TypeParam a, b = Flat<TypeParam>({1, 2}), c = Flat<TypeParam>({3});
  a.AppendList(b);
  EXPECT_EQ(a.GetListData(), b.GetListData()) << "an empty list shares the appended array";
  c.AppendList(b);
  c.AppendList(c);  // one array: nothing
  a.AssignList(c);
  EXPECT_EQ(ShowFlat(c) + " " + ShowFlat(b) + (a.GetListData() == c.GetListData() ? " shared" : ""), "3:3,1,2 2:1,2 shared");
  EXPECT_NE(c.GetSubList(0, 3).GetListData(), c.GetListData()) << "even the whole list is copied";
}

TEST(FlatList, PackDropsNullsInTheSharedArray) {
  Ka_PtrList l = Flat<Ka_PtrList>({0, 1, 0, 2}), all = Flat<Ka_PtrList>({0});
  const Ka_PtrList copy(l), allCopy(all);
  l.Pack();  // in place (deliberate)
  all.Pack();
  EXPECT_EQ(ShowFlat(copy) + " " + ShowFlat(allCopy) + (l.Validate() + all.Validate() == 2 ? "" : " (invalid)"), "2:1,2 0:");
}

}  // namespace
