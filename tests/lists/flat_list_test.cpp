// The flat integer and pointer lists: their edits on a private and on a
// shared array (Set, Delete and Pack deliberately write through a shared
// one, the others copy it first), GetBuffer and growth, and the sharing rules
// of AssignList, AppendList and GetSubList.
#include <functional>
#include <vector>

#include "lists/list_support.h"

namespace {

char g_cells[16];

// Element i of either list (int i; the address of cell i, null for -1), and
// back.
int Elem(Ka_IntList*, int i) { return i; }
void* Elem(Ka_PtrList*, int i) { return i < 0 ? nullptr : &g_cells[i]; }
std::string Name(int v) { return std::to_string(v); }
std::string Name(void* v) { return v == nullptr ? "~" : std::to_string(static_cast<char*>(v) - g_cells); }
#define VAL(i) Elem(static_cast<TypeParam*>(nullptr), i)

template <class L>
std::string ShowFlat(const L& l) {
  std::string out = std::to_string(l.Count()) + ":";
  for (int i = 0; i < l.Count(); ++i) out += (i > 0 ? "," : "") + Name(l.GetItem(i));
  return out;
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
      L l, other;
      for (int v : r.before) l.Add(Elem(&l, v));
      if (shared) other = l;
      const std::string before = ShowFlat(l);
      EXPECT_EQ(r.edit(l), r.result) << before << " to " << r.after;
      EXPECT_EQ(ShowFlat(l), r.after) << before;
      EXPECT_EQ(l.Validate(), 1);
      EXPECT_EQ(ShowFlat(other), !shared ? "0:" : r.throughShared ? r.after : before) << before << " to " << r.after;
    }
  }
}

template <class L>
class FlatList : public ::testing::Test {};
typedef ::testing::Types<Ka_IntList, Ka_PtrList> BothFlat;
TYPED_TEST_SUITE(FlatList, BothFlat);
#define E(expr) [](TypeParam & l) -> long { return (expr); }

TYPED_TEST(FlatList, EditsCopyASharedArrayExceptSetAndDelete) {
  RunFlatEdits<TypeParam>({
      {{}, E(l.Set(0, VAL(7))), "0:", -1, false},                    // no array
      {{1, 2, 3}, E(l.Set(3, VAL(7))), "3:1,2,3", -1, false},        // past the end
      {{1, 2, 3}, E(l.Set(0, VAL(7))), "3:7,2,3", 0, true},          // in place, shared or not (deliberate)
      {{1, 2, 3}, E(l.Add(VAL(7))), "4:1,2,3,7", 3, false},          // copies a shared array first
      {{1, 2, 3}, E(l.Insert(100, VAL(7))), "4:1,2,3,7", 3, false},  // past the end appends
      {{1, 2, 3}, E(l.Insert(0, VAL(7))), "4:7,1,2,3", 0, false},    // elements move up
      {{1, 2, 3}, E(l.Insert(-1, VAL(7))), "3:1,2,3", -1, false},    // negative index
      {{}, E(l.Delete(0, 1)), "0:", -1, false},                      // no array
      {{1, 2, 3, 4, 5}, E(l.Delete(5, 1)), "5:1,2,3,4,5", -1, false},  // start at the end
      {{1, 2, 3, 4, 5}, E(l.Delete(1, 0)), "5:1,2,3,4,5", 0, false},   // nothing to remove
      {{1, 2, 3, 4, 5}, E(l.Delete(1, 100)), "1:1", 0, true},          // cut to the end; in place (deliberate)
      {{}, E(l.Exchange(4, 4)), "0:", 0, false},                       // a = b: 0 at once
      {{1, 2, 3}, E(l.Exchange(0, 2)), "3:3,2,1", 0, false},           // copies a shared array first
      {{1, 2, 3}, E(l.Exchange(0, 3)), "3:1,2,3", -1, false},          // b out of range
      {{}, E(l.Move(0, 0)), "0:", -1, false},                          // no array, even for from = to
      {{1, 2, 3}, E(l.Move(0, 10)), "3:1,2,3", -1, false},             // past the end: refused, not clamped
      {{1, 2, 3}, E(l.Move(2, 0)), "3:3,1,2", 0, false},               // the others shift towards from
      {{1, 2, 2}, E(l.IndexOf(VAL(2))), "3:1,2,2", 1, false},          // the first equal element
  });
}

TYPED_TEST(FlatList, GetBufferKeepsEveryElementAndGrowsExactly) {
  TypeParam l, grown;
  for (int v : {1, 2, 3}) l.Add(VAL(v));
  const TypeParam copy(l);
  ASSERT_NE(l.GetBuffer(1), nullptr);
  EXPECT_EQ(ShowFlat(l), "3:1,2,3") << "a shared array asked for fewer elements keeps them all";
  EXPECT_NE(l.GetListData(), copy.GetListData());
  ASSERT_NE(l.GetBuffer(5), nullptr);
  EXPECT_EQ(l.GetItem(4), decltype(l.GetItem(4))()) << "new elements are zero";
  EXPECT_EQ(l.GetItem(5), decltype(l.GetItem(5))(VAL(-1))) << "out of range: -1 or null";
  const int size = static_cast<int>(sizeof(VAL(0)));
  for (int n = 1; n <= 2100; ++n) grown.Add(VAL(1));
  EXPECT_EQ(grown.GetAllocLength() * size, int(Ka_BufferPool::GetBufferGroup(2100 * size))) << "exactly the request's class";
  EXPECT_EQ(grown.GetBuffer(TypeParam::kMaxCount + 1), nullptr) << "beyond the largest array: refused";
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
  EXPECT_EQ(ShowFlat(c) + " " + ShowFlat(b), "3:3,1,2 2:1,2");
  EXPECT_EQ(a.GetListData(), c.GetListData());
  struct Row {
    int start, count;
    const char* shown;
  } rows[] = {
      {0, 3, "3:3,1,2"},  // the whole list, copied
      {1, 5, "2:1,2"},    // cut to the end
      {3, 1, "0:"},       // start at the end
      {-1, 2, "0:"},      // a negative start
  };
  for (const Row& r : rows) {
    const TypeParam sub = c.GetSubList(r.start, r.count);
    EXPECT_EQ(ShowFlat(sub), r.shown) << r.start << "," << r.count;
    EXPECT_NE(sub.GetListData(), c.GetListData()) << "never shared";
  }
}

TEST(FlatList, ResetCountsUpAndPackDropsNulls) {
  RunFlatEdits<Ka_IntList>({
      {{}, [](Ka_IntList& l) { return l.Reset(4), 0L; }, "4:0,1,2,3", 0, false},            // from nothing
      {{9, 9, 9, 9}, [](Ka_IntList& l) { return l.Reset(2), 0L; }, "4:0,1,9,9", 0, false},  // further elements kept
  });
  RunFlatEdits<Ka_PtrList>({
      {{-1, 1, -1, 2}, [](Ka_PtrList& l) { return l.Pack(), 0L; }, "2:1,2", 0, true},  // in place (deliberate)
      {{-1}, [](Ka_PtrList& l) { return l.Pack(), 0L; }, "0:", 0, true},              // every element null
  });
}

}  // namespace
