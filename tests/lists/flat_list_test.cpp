// The flat integer and pointer lists: the edits of both on a private and on
// a shared array (Set, Delete and Pack deliberately write through a shared
// one, the others copy it first), GetBuffer, Reset, growth, and the rules of
// AssignList, AppendList and GetSubList.
#include <functional>
#include <vector>

#include "lists/list_support.h"

namespace {

char g_cells[16];

template <class L>
struct Flat;
template <>
struct Flat<Ka_IntList> {
  typedef int T;
  static T V(int i) { return i; }  // the element standing for i
  static std::string Name(T v) { return std::to_string(v); }
};
template <>
struct Flat<Ka_PtrList> {
  typedef void* T;
  static T V(int i) { return i < 0 ? nullptr : &g_cells[i]; }
  static std::string Name(T v) { return v == nullptr ? "~" : std::to_string(static_cast<char*>(v) - g_cells); }
};

template <class L>
std::string Show(const L& l) {
  std::string out = std::to_string(l.Count()) + ":";
  for (int i = 0; i < l.Count(); ++i) out += (i > 0 ? "," : "") + Flat<L>::Name(static_cast<typename Flat<L>::T>(l.GetItem(i)));
  return out;
}
template <class L>
L Make(const std::vector<int>& values) {
  L l;
  for (int v : values) l.Add(Flat<L>::V(v));
  return l;
}

template <class L>
struct FlatRow {
  std::vector<int> before;
  std::function<long(L&)> edit;
  std::string after;
  long result;
  bool throughShared;  // the edit deliberately reaches a list sharing the array
};

template <class L>
void RunFlatEdits(const std::vector<FlatRow<L>>& rows) {
  for (const FlatRow<L>& r : rows) {
    for (int shared = 0; shared < 2; ++shared) {
      L l = Make<L>(r.before), other;
      if (shared) other = l;
      const std::string before = Show(l);
      EXPECT_EQ(r.edit(l), r.result) << before << " to " << r.after;
      EXPECT_EQ(Show(l), r.after) << before;
      EXPECT_EQ(l.Validate(), 1);
      if (shared) {
        EXPECT_EQ(Show(other), r.throughShared ? r.after : before) << before << " to " << r.after;
      }
    }
  }
}

template <class L>
class FlatList : public ::testing::Test {};
typedef ::testing::Types<Ka_IntList, Ka_PtrList> BothFlat;
TYPED_TEST_SUITE(FlatList, BothFlat);

#define E(expr) [](TypeParam & l) -> long { return (expr); }
#define VAL(i) Flat<TypeParam>::V(i)

TYPED_TEST(FlatList, EditsCopyASharedArrayExceptSetAndDelete) {
  RunFlatEdits<TypeParam>({
      {{}, E(l.Set(0, VAL(7))), "0:", -1, false},                // no array
      {{1, 2, 3}, E(l.Set(3, VAL(7))), "3:1,2,3", -1, false},    //
      {{1, 2, 3}, E(l.Set(-1, VAL(7))), "3:1,2,3", -1, false},   //
      {{1, 2, 3}, E(l.Set(0, VAL(7))), "3:7,2,3", 0, true},      // in place, shared or not (deliberate)
      {{}, E(l.Add(VAL(7))), "1:7", 0, false},                   //
      {{1, 2, 3}, E(l.Add(VAL(7))), "4:1,2,3,7", 3, false},      //
      {{1, 2, 3}, E(l.Insert(100, VAL(7))), "4:1,2,3,7", 3, false},  // past the end appends
      {{1, 2, 3}, E(l.Insert(0, VAL(7))), "4:7,1,2,3", 0, false},    //
      {{1, 2, 3}, E(l.Insert(-1, VAL(7))), "3:1,2,3", -1, false},    //
      {{}, E(l.Delete(0, 1)), "0:", -1, false},                    //
      {{1, 2, 3, 4, 5}, E(l.Delete(5, 1)), "5:1,2,3,4,5", -1, false},  //
      {{1, 2, 3, 4, 5}, E(l.Delete(1, 0)), "5:1,2,3,4,5", 0, false},   // nothing to remove
      {{1, 2, 3, 4, 5}, E(l.Delete(1, 100)), "1:1", 0, true},          // cut to the end; in place (deliberate)
      {{1, 2, 3, 4, 5}, E(l.Delete(1, 2)), "3:1,4,5", 0, true},        //
      {{}, E(l.Exchange(4, 4)), "0:", 0, false},                       // a = b: 0 at once
      {{1, 2, 3}, E(l.Exchange(0, 2)), "3:3,2,1", 0, false},           //
      {{1, 2, 3}, E(l.Exchange(0, 3)), "3:1,2,3", -1, false},          //
      {{}, E(l.Move(0, 0)), "0:", -1, false},                          // no array
      {{1, 2, 3}, E(l.Move(0, 10)), "3:1,2,3", -1, false},             // a destination past the end is refused
      {{1, 2, 3}, E(l.Move(0, 2)), "3:2,3,1", 0, false},               //
      {{1, 2, 3}, E(l.Move(2, 0)), "3:3,1,2", 0, false},               //
      {{1, 2, 3}, E(l.Move(1, 1)), "3:1,2,3", 0, false},               //
      {{1, 2, 2}, E(l.IndexOf(VAL(2))), "3:1,2,2", 1, false},            // the first equal element
      {{1, 2, 2}, E(l.IndexOf(VAL(9))), "3:1,2,2", -1, false},           //
  });
}

TYPED_TEST(FlatList, GetBufferKeepsEveryElementAndGrowsExactly) {
  TypeParam l = Make<TypeParam>({1, 2, 3});
  const TypeParam copy(l);
  ASSERT_NE(l.GetBuffer(1), nullptr);
  EXPECT_EQ(Show(l), "3:1,2,3") << "a shared array asked for fewer elements keeps them all";
  EXPECT_NE(l.GetListData(), copy.GetListData());
  ASSERT_NE(l.GetBuffer(5), nullptr);
  EXPECT_EQ(Show(l).substr(0, 8), "5:1,2,3,");
  EXPECT_EQ(l.GetItem(4), typename Flat<TypeParam>::T()) << "new elements are zero";
  EXPECT_EQ(TypeParam().GetBuffer(0), nullptr);
  TypeParam grown;
  const int size = static_cast<int>(sizeof(typename Flat<TypeParam>::T));
  for (int n = 1; n <= 3000; ++n) {
    grown.Add(VAL(1));
    if (grown.GetAllocLength() != static_cast<int>(Ka_BufferPool::GetBufferGroup(n * size)) / size)
      ADD_FAILURE() << n << " elements: capacity " << grown.GetAllocLength();
  }
  EXPECT_EQ(grown.GetBuffer(TypeParam::kMaxCount + 1), nullptr);
  EXPECT_EQ(grown.Count(), 3000);
}

TYPED_TEST(FlatList, ListsShareOnAssignAndAppendButNeverOnGetSubList) {
  TypeParam a, b = Make<TypeParam>({1, 2}), c = Make<TypeParam>({3});
  a.AppendList(b);
  EXPECT_EQ(a.GetListData(), b.GetListData()) << "an empty list shares the appended array";
  c.AppendList(b);
  c.AppendList(c);  // one array: nothing
  EXPECT_EQ(Show(c), "3:3,1,2");
  EXPECT_EQ(Show(b), "2:1,2");
  a.AssignList(c);
  EXPECT_EQ(a.GetListData(), c.GetListData());
  EXPECT_EQ(Show(b), "2:1,2");
  struct Row {
    int start, count;
    const char* shown;
  } rows[] = {{0, 3, "3:3,1,2"}, {1, 5, "2:1,2"}, {3, 1, "0:"}, {-1, 2, "0:"}, {1, 0, "0:"}};
  for (const Row& r : rows) {
    const TypeParam sub = c.GetSubList(r.start, r.count);
    EXPECT_EQ(Show(sub), r.shown) << r.start << "," << r.count;
    EXPECT_TRUE(sub.GetListData() == nullptr || sub.GetListData() != c.GetListData()) << "never shared";
  }
  a.Clear();
  EXPECT_EQ(a.Count(), 0);
}

TEST(IntList, MissingElementsReadAsMinusOneAndResetCountsUp) {
  Ka_IntList l = Make<Ka_IntList>({5, 6, 7});
  EXPECT_EQ(l.GetItem(5), -1);
  EXPECT_EQ(l.Items(-1), -1);
  RunFlatEdits<Ka_IntList>({
      {{}, [](Ka_IntList& x) { return x.Reset(4), 0L; }, "4:0,1,2,3", 0, false},            //
      {{9, 9, 9, 9}, [](Ka_IntList& x) { return x.Reset(2), 0L; }, "4:0,1,9,9", 0, false},  // further elements kept
      {{9}, [](Ka_IntList& x) { return x.Reset(0), 0L; }, "1:9", 0, false},                  //
  });
}

TEST(PtrList, MissingElementsReadAsNullAndPackDropsNulls) {
  Ka_PtrList l = Make<Ka_PtrList>({1, 2, 3});
  EXPECT_EQ(l.GetItem(5), nullptr);
  RunFlatEdits<Ka_PtrList>({
      {{-1, 1, -1, 2}, [](Ka_PtrList& x) { return x.Pack(), 0L; }, "2:1,2", 0, true},  // in place (deliberate)
      {{1, 2}, [](Ka_PtrList& x) { return x.Pack(), 0L; }, "2:1,2", 0, false},        //
      {{-1}, [](Ka_PtrList& x) { return x.Pack(), 0L; }, "0:", 0, true},              //
  });
}

}  // namespace
