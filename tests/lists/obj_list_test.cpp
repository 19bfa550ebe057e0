// The object list: positional edits and their refusals (each on a private
// list and on lists sharing its array or its items), sharing at the array
// and at the item level, growth, and the rules of AssignList, AppendList and
// GetSubList.
#include <climits>
#include <functional>
#include <set>
#include <vector>

#include "lists/list_support.h"

namespace {

Ka_AString x("x");
void* const X = &x;

struct EditRow {
  std::string before;
  std::function<long(Ka_ObjList&)> edit;
  std::string after;
  long result;
};
#define EDIT(expr) [](Ka_ObjList & l) -> long { return (expr); }

void RunEdits(int sorted, const std::vector<EditRow>& rows) {
  for (const EditRow& r : rows) {
    SCOPED_TRACE("\"" + r.before + "\" to \"" + r.after + "\"");
    OnPrivateAndShared(r.before, sorted, [&r](Ka_ObjList& l) {
      EXPECT_EQ(r.edit(l), r.result);
      EXPECT_EQ(Show(l), r.after);
    });
  }
}

TEST(ObjListEdit, SetAndInsertPlaceItemsOrRefuse) {
  RunEdits(0, {
      {"", EDIT(l.Set(0, X, 0)), "0:", -1},                  // nothing to replace, no extend
      {"", EDIT(l.Set(0, X, 1)), "1:x", 0},                  // extend makes the position
      {"a,b", EDIT(l.Set(-1, X, 1)), "2:a,b", -1},           // negative index
      {"a,b", EDIT(l.Set(1, X, 0)), "2:a,x", 0},             //
      {"a,b", EDIT(l.Set(1, nullptr, 0)), "2:a,~", 0},       // null empties the position
      {"a,~", EDIT(l.Set(1, nullptr, 0)), "2:a,~", 0},       // already empty
      {"a,b", EDIT(l.Set(4, X, 1)), "5:a,b,~,~,x", 0},       // Count() + 2: three new positions
      {"a,b", EDIT(l.Set(4, X, 0)), "2:a,b", -1},            // the same without extend
      {"a,b", EDIT(l.Set(INT_MAX, X, 1)), "2:a,b", -1},      // beyond any array
      {"a,b", EDIT(l.SetLink(0, l.GetItem(1), 0)), "2:b,b", 0},  // a link to a slot of the same list
      {"a,b", EDIT(l.SetLink(0, l.GetItem(0), 0)), "2:a,b", 0},  // a link to the slot it replaces
      {"", EDIT(l.InsertItem(0, X)), "1:x", 0},               //
      {"a,b", EDIT(l.InsertItem(-1, X)), "2:a,b", -1},       //
      {"a,b", EDIT(l.InsertItem(0, X)), "3:x,a,b", 0},       //
      {"a,b", EDIT(l.Insert(1, nullptr)), "3:a,~,b", 1},     // null inserts an empty position
      {"a,b", EDIT(l.InsertItem(12, X)), "3:a,b,x", 2},      // Count() + 10 appends at Count()
      {"a,b", EDIT(l.InsertLinkItem(0, l.GetItem(1))), "3:b,a,b", 0},  //
      {"a", EDIT(l.AddItem(nullptr)), "2:a,~", 1},           //
      {"a", EDIT(l.Add(X)), "2:a,x", 1},                     // unsorted Add appends
      {"a", EDIT(l.AddLink(l.GetItem(0))), "2:a,a", 1},      //
      {"b,a", EDIT(l.Sort()), "2:b,a", 2},                   // Sort sorts nothing (deliberate)
  });
}

TEST(ObjListEdit, DeleteExchangeMovePackAndAllocItemsKeepTheirRanges) {
  RunEdits(0, {
      {"", EDIT(l.Delete(0, 1)), "0:", -1},                 //
      {"a,b,c,d,e", EDIT(l.Delete(-1, 1)), "5:a,b,c,d,e", -1},  //
      {"a,b,c,d,e", EDIT(l.Delete(5, 1)), "5:a,b,c,d,e", -1},   // start at the end
      {"a,b,c,d,e", EDIT(l.Delete(1, 0)), "5:a,b,c,d,e", 0},    // nothing to delete
      {"a,b,c,d,e", EDIT(l.Delete(1, -3)), "5:a,b,c,d,e", 0},   //
      {"a,b,c,d,e", EDIT(l.Delete(2, 100)), "2:a,b", 0},        // cut to the end
      {"a,~,c,d,e", EDIT(l.Delete(1, 2)), "3:a,d,e", 0},        // empty positions go too
      {"", EDIT(l.Exchange(5, 5)), "0:", 0},                    // a = b: 0 at once
      {"a,b,c", EDIT(l.Exchange(0, 2)), "3:c,b,a", 0},          //
      {"a,b,c", EDIT(l.Exchange(0, 3)), "3:a,b,c", -1},         //
      {"a,b,c", EDIT(l.Exchange(-1, 0)), "3:a,b,c", -1},        //
      {"", EDIT(l.Move(0, 1)), "0:", -1},                       // no array
      {"a,b,c,d", EDIT(l.Move(0, 2)), "4:b,c,a,d", 0},          //
      {"a,b,c,d", EDIT(l.Move(3, 1)), "4:a,d,b,c", 0},          //
      {"a,b,c,d", EDIT(l.Move(1, 10)), "4:a,c,d,b", 0},         // past the end: the last position
      {"a,b,c,d", EDIT(l.Move(4, 0)), "4:a,b,c,d", -1},         //
      {"a,b,c,d", EDIT(l.Move(1, -1)), "4:a,b,c,d", -1},        // a negative destination is refused
      {"~,a,~,~,b,~", EDIT((l.Pack(), 0)), "2:a,b", 0},         //
      {"~", EDIT((l.Pack(), 0)), "0:", 0},                      //
      {"a", EDIT(l.AllocItems(3)), "3:a,~,~", 3},               //
      {"a,b", EDIT(l.AllocItems(1)), "2:a,b", 2},               // never shrinks
  });
}

TEST(ObjListEdit, SortedListsRefusePositionalEditsAndPlaceByOrder) {
  RunEdits(1, {
      {"a,c,e", EDIT(l.Set(0, X, 1)), "3:a,c,e", -1},         // no positional replacement
      {"a,c,e", EDIT(l.SetLink(9, X, 1)), "3:a,c,e", -1},     //
      {"a,c,e", EDIT(l.Exchange(0, 2)), "3:a,c,e", 0},        // nothing done
      {"a,c,e", EDIT(l.Move(0, 2)), "3:a,c,e", 0},            //
      {"a,c,e", EDIT(l.Insert(5, X)), "4:a,c,e,x", 3},        // the index is ignored
      {"a,c,e", EDIT(l.Insert(0, nullptr)), "3:a,c,e", -1},   //
      {"a,c,e", EDIT(l.Add(nullptr)), "3:a,c,e", -1},         //
      {"a,c,e", EDIT(l.Add(l.GetItem(1))), "3:a,c,e", 1},     // equal: merged, not duplicated
      {"a,c,e", EDIT(l.AddLink(l.GetItem(2))), "3:a,c,e", 2}, //
      {"", EDIT(l.Add(X)), "1:x", 0},                         //
      {"a,~,e", EDIT(l.Add(X)), "3:a,~,e", -1},               // the search meets an empty position
  });
}

TEST(ObjListShare, CopiesShareTheArrayUntilOneOfThemChanges) {
  CountingHandler h;
  {
    Ka_ObjList a(&h, 0);
    Fill(a, "a,b,~");
    Ka_ObjList b(a);
    EXPECT_EQ(ArrayRefs(a), 2);
    EXPECT_EQ(b.Set(2, nullptr, 0), 0);
    Ka_ObjList c(&h, 0);
    c = a;
    EXPECT_EQ(ArrayRefs(a), 3) << "emptying an empty position keeps the array shared";
    Ka_ObjList full(&h, 0);
    Fill(full, "f");
    const Ka_ObjList fullCopy(full);
    full.Pack();
    EXPECT_EQ(ArrayRefs(full), 2) << "a Pack with nothing to remove keeps the array shared";
    EXPECT_EQ(b.Set(0, X, 0), 0);
    EXPECT_EQ(Show(a), "3:a,b,~");
    EXPECT_EQ(Show(b), "3:x,b,~");
    EXPECT_EQ(ArrayRefs(a), 2);
    EXPECT_EQ(SlotRefs(a, 1), 2) << "the items stay shared with the copied array";
    EXPECT_EQ(h.live, 4);
  }
  EXPECT_EQ(h.live, 0);
}

TEST(ObjListShare, ALinkedItemIsCopiedOnlyWhenWrittenThroughOneList) {
  CountingHandler h;
  {
    Ka_ObjList a(&h, 0), b(&h, 0);
    Fill(a, "a");
    EXPECT_EQ(b.AddLink(a.GetItem(0)), 0);
    EXPECT_EQ(b.GetItem(0), a.GetItem(0)) << "the very same slot";
    EXPECT_EQ(SlotRefs(a, 0), 2);
    Ka_AString* mine = static_cast<Ka_AString*>(a.GetSafeItem(0, 0));
    ASSERT_NE(mine, nullptr);
    *mine = "A";
    EXPECT_EQ(Show(a), "1:A");
    EXPECT_EQ(Show(b), "1:a");
    EXPECT_EQ(a.GetSafeItem(0, 0), mine) << "a private item is written in place";
    void* before = b.GetItem(0);
    EXPECT_EQ(b.Set(0, X, 0), 0);
    EXPECT_EQ(b.GetItem(0), before) << "Set assigns into an unshared slot in place";
    EXPECT_EQ(a.GetSafeItem(-1, 1), nullptr);
    EXPECT_EQ(a.GetSafeItem(3, 0), nullptr);
    EXPECT_NE(a.GetSafeItem(3, 1), nullptr);
    EXPECT_EQ(Show(a), "4:A,~,~,");
  }
  EXPECT_EQ(h.live, 0);
}

TEST(ObjListShare, ASortedAddWritesAnEqualItemInPlaceEvenWhenShared) {
  CountingHandler h;
  Ka_ObjList a(&h, 1);
  Fill(a, "a,b");
  const Ka_ObjList copy(a);
  Ka_AString key("b");
  EXPECT_EQ(a.Add(&key), 1);
  EXPECT_EQ(ArrayRefs(a), 2) << "the array is not copied";
  // The shared item now holds key's very text: written in place (deliberate).
  EXPECT_EQ(static_cast<const Ka_AString*>(copy.GetItem(1))->GetData(), key.GetData());
  Ka_ObjList linker(&h, 1);
  Fill(linker, "b");
  EXPECT_EQ(a.AddLink(linker.GetItem(0)), 1);
  EXPECT_EQ(a.GetItem(1), linker.GetItem(0)) << "AddLink replaces an equal item by the link";
  EXPECT_NE(copy.GetItem(1), linker.GetItem(0)) << "in a private copy of the array";
}

TEST(ObjListGrowth, ArraysGrowExactlyWithinTheSizeClasses) {
  CountingHandler h;
  Ka_ObjList l(&h, 0);
  const int ptr = static_cast<int>(sizeof(void*));
  for (int n = 1; n <= 2100; ++n) {
    l.AddItem(nullptr);
    const int capacity = static_cast<int>(Ka_BufferPool::GetBufferGroup(n * ptr)) / ptr;
    if (l.GetAllocLength() != capacity) ADD_FAILURE() << n << " positions: capacity " << l.GetAllocLength();
  }
  EXPECT_EQ(l.Count(), 2100);
  EXPECT_EQ(l.Validate(), 1);
  EXPECT_EQ(l.AllocItems(Ka_ObjList::kMaxCount + 1), 2100) << "beyond the largest array: refused";
  EXPECT_EQ(l.Set(Ka_ObjList::kMaxCount, X, 1), -1);
}

// One row: this list, its flag, the other list, its flag, the result, and
// whether this list ends sharing the other's array.
TEST(ObjListCombine, AppendListSharesOrLinksByTheTwoFlags) {
  struct Row {
    const char* mine;
    int mineSorted;
    const char* other;
    int otherSorted;
    const char* result;
    bool sharesArray;
  } rows[] = {
      {"", 0, "", 0, "0:", false},                  // both empty
      {"", 0, "b,~,a", 0, "3:b,~,a", true},         // an empty list shares the whole array
      {"", 1, "a,b", 1, "2:a,b", true},             //
      {"", 0, "a,b", 1, "2:a,b", true},             // the unsorted flag is kept
      {"", 1, "c,~,a,c", 0, "2:a,c", false},        // sorted from unsorted: linked by order, merged
      {"x", 0, "", 0, "1:x", false},                //
      {"x", 0, "b,~,a", 0, "4:x,b,~,a", false},     // positions appended, empty ones too
      {"b,x", 1, "c,~,a,b", 0, "4:a,b,c,x", false}, // linked by order
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(std::string(r.mine) + " + " + r.other);
    CountingHandler h;
    {
      Ka_ObjList mine(&h, r.mineSorted), other(&h, r.otherSorted);
      Fill(mine, r.mine);
      Fill(other, r.other);
      std::set<void*> known;  // the slots of both lists before
      for (const Ka_ObjList* l : {&mine, &other})
        for (int i = 0; i < l->Count(); ++i) known.insert(l->GetItem(i));
      mine.AppendList(other);
      EXPECT_EQ(Show(mine), r.result);
      EXPECT_EQ(mine.IsSorted(), r.mineSorted);
      EXPECT_EQ(mine.GetListData() != nullptr && mine.GetListData() == other.GetListData(), r.sharesArray);
      for (int i = 0; i < mine.Count(); ++i)
        if (known.count(mine.GetItem(i)) == 0) ADD_FAILURE() << "item " << i << " was copied, not shared";
      mine.AppendList(mine);  // one array: nothing
      EXPECT_EQ(Show(mine), r.result);
    }
    EXPECT_EQ(h.live, 0);
  }
}

TEST(ObjListCombine, GetSubListSharesTheWholeArrayOrLinksARange) {
  CountingHandler h;
  Ka_ObjList l(&h, 1), target(&h, 0);
  Fill(l, "a,b,c,d");
  EXPECT_EQ(l.GetSubList(target, 0, 4), 4);
  EXPECT_EQ(target.GetListData(), l.GetListData());
  EXPECT_EQ(target.IsSorted(), 1) << "the whole list brings its flag";
  Ka_ObjList range(&h, 0);
  Fill(range, "old");
  struct Row {
    int start, count, result;
    const char* shown;
  } rows[] = {
      {1, 2, 2, "2:b,c"},  //
      {2, 99, 2, "2:c,d"}, // cut to the end
      {4, 1, 0, "0:"},     // start at the end
      {-1, 2, 0, "0:"},    // a negative start
      {1, 0, 0, "0:"},     //
  };
  for (const Row& r : rows) {
    EXPECT_EQ(l.GetSubList(range, r.start, r.count), r.result) << r.start << "," << r.count;
    EXPECT_EQ(Show(range), r.shown);
    EXPECT_EQ(range.IsSorted(), 0) << "a range leaves the target's flag alone";
  }
  l.GetSubList(range, 1, 2);
  EXPECT_EQ(range.GetItem(0), l.GetItem(1)) << "items are linked";
  EXPECT_EQ(l.GetSubList(l, 1, 2), 2) << "a list may be its own target";
  EXPECT_EQ(Show(l), "2:b,c");
  range.Clear();
  target.Clear();
  l.Clear();
  EXPECT_EQ(h.live, 0);
}

TEST(ObjListCombine, ListsOfAnotherHandlerOrNoneNeverShare) {
  CountingHandler h, other;
  Ka_ObjList l(&h, 0), stranger(&other, 1), none(nullptr, 0);
  Fill(l, "a");
  Fill(stranger, "s");
  l.AssignList(stranger);
  l.AppendList(stranger);
  EXPECT_EQ(Show(l), "1:a");
  EXPECT_EQ(l.IsSorted(), 0);
  Ka_ObjList target(&other, 0);
  EXPECT_EQ(l.GetSubList(target, 0, 1), 0);
  EXPECT_EQ(none.Add(X), -1);
  EXPECT_EQ(none.Set(0, X, 1), -1);
  EXPECT_EQ(none.SetLink(0, l.GetItem(0), 1), -1);
  EXPECT_EQ(none.GetSafeItem(0, 1), nullptr);
  EXPECT_EQ(none.AddItem(nullptr), 0) << "empty positions need no handler";
  EXPECT_EQ(none.SearchItem(X), -1);
  EXPECT_EQ(none.FindItem(X), -1);
  EXPECT_EQ(SlotRefs(l, 0), 1);
}

}  // namespace
