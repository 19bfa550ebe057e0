// The object list: positional edits, AppendList and GetSubList and their
// refusals (each on a private list and on lists sharing its array or its
// items), the sorted list's refusals and merges, the arrays AppendList and
// GetSubList share, and the lists they never share with.
#include <climits>

#include "lists/list_support.h"

namespace {

Ka_AString x("x");
void* const X = &x;

// An unsorted list of l's handler holding items ("~": an empty position).
Ka_ObjList Other(const Ka_ObjList& l, const char* items) {
  Ka_ObjList other(l.GetHandler(), 0);
  Fill(other, items);
  return other;
}

TEST(ObjListEdit, PositionalEditsFollowTheirRangesOrRefuseAndSortedListsRefuseThem) {
  RunEdits(0, {
      {"", EDIT(l.Set(0, X, 0)), "0:", -1},                     // nothing to replace, no extend
      {"a,b", EDIT(l.Set(-1, X, 1)), "2:a,b", -1},              // negative index
      {"a,b", EDIT(l.Set(1, nullptr, 0)), "2:a,~", 0},          // null empties a position
      {"a,b", EDIT(l.Set(4, X, 1)), "5:a,b,~,~,x", 0},          // Count() + 2 extends by three (not without extend)
      {"a,b", EDIT(l.Set(INT_MAX, X, 1)), "2:a,b", -1},         // beyond the largest array
      {"a,b", EDIT(l.SetLink(0, l.GetItem(0), 0)), "2:a,b", 0}, // a link to the slot it replaces
      {"a,b", EDIT(l.InsertItem(-1, X)), "2:a,b", -1},          // negative index
      {"a,b", EDIT(l.Insert(1, nullptr)), "3:a,~,b", 1},        // null inserts an empty position
      {"a,b", EDIT(l.InsertItem(12, X)), "3:a,b,x", 2},         // Count() + 10 appends at Count()
      {"a,b", EDIT(l.InsertLinkItem(0, l.GetItem(1))), "3:b,a,b", 0},  // the slot moves up before the link
      {"b,a", EDIT(l.Sort()), "2:b,a", 2},                      // Sort sorts nothing (deliberate)
      {"", EDIT(l.Delete(0, 1)), "0:", -1},                     // no array
      {"a,~,c,d,e", EDIT(l.Delete(1, 100)), "1:a", 0},          // cut to the end; empty positions go too
      {"", EDIT(l.Exchange(5, 5)), "0:", 0},                    // a = b: 0 at once
      {"a,b,c", EDIT(l.Exchange(0, 2)), "3:c,b,a", 0},          // the two slots swap
      {"a,b,c", EDIT(l.Exchange(0, 3)), "3:a,b,c", -1},         // b out of range
      {"a,b,c,d", EDIT(l.Move(3, 1)), "4:a,d,b,c", 0},          // towards the front
      {"a,b,c,d", EDIT(l.Move(1, 10)), "4:a,c,d,b", 0},         // past the end: the last position
      {"a,b,c,d", EDIT(l.Move(1, -1)), "4:a,b,c,d", -1},        // a negative destination
      {"~,a,~,~,b,~", EDIT((l.Pack(), 0)), "2:a,b", 0},         // every empty position goes
      {"a", EDIT(l.AllocItems(3)), "3:a,~,~", 3},               // new positions are empty
      {"a,b", EDIT(l.AllocItems(1)), "2:a,b", 2},               // never shrinks
      {"a,b", EDIT(l.AllocItems(Ka_ObjList::kMaxCount + 1)), "2:a,b", 2},  // beyond the largest array: refused
      {"a", EDIT(l.GetSafeItem(2, 0) != nullptr), "1:a", 0},    // past the end without extend
      {"a", EDIT(l.GetSafeItem(2, 1) != nullptr), "3:a,~,", 1}, // extends with an empty item
      {"a,x", EDIT(l.FindItem(X)), "2:a,x", 1},                 // found by a linear scan
      {"a,x", EDIT(l.SearchItem(X)), "2:a,x", -1},              // no binary search in an unsorted list
      {"a", EDIT(l.FindItem(nullptr)), "1:a", -1},              // no key
      {"x", EDIT((l.AppendList(Other(l, "b,~,a")), 0)), "4:x,b,~,a", 0},  // positions appended, empty ones too
      {"a,b", EDIT((l.AppendList(l), 0)), "2:a,b", 0},          // one array: nothing
      {"a,b,c,d", EDIT(l.GetSubList(l, 1, 2)), "2:b,c", 2},     // a range, into the list itself
      {"a,b,c,d", EDIT(l.GetSubList(l, 2, 99)), "2:c,d", 2},    // cut to the end
      {"a,b", EDIT(l.GetSubList(l, -1, 2)), "0:", 0},           // a negative start empties the target
  });
  // Sorted lists refuse positions (their placing by order is run against a
  // model in sorted_test.cpp).
  RunEdits(1, {
      {"a,c,e", EDIT(l.Set(0, X, 1)), "3:a,c,e", -1},          // no positional replacement
      {"a,c,e", EDIT(l.Exchange(0, 2)), "3:a,c,e", 0},         // nothing done
      {"a,c,e", EDIT(l.Move(0, 2)), "3:a,c,e", 0},             // nothing done
      {"a,c,e", EDIT(l.Insert(0, nullptr)), "3:a,c,e", -1},    // null has no place
      {"a,~,e", EDIT(l.Add(X)), "3:a,~,e", -1},                // the search meets an empty position
      {"", EDIT(l.SearchItem(X)), "0:", -1},                   // no array
      {"", EDIT((l.AppendList(Other(l, "c,~,a,c")), 0)), "2:a,c", 0},  // from an unsorted list: linked by order, merged
  });
}

TEST(ObjListShare, ASortedAddAssignsAnEqualItemInPlaceEvenWhenShared) {
  CountingHandler h;
  {
    Ka_ObjList sorted(&h, 1), linker(&h, 1);
    Fill(sorted, "a,b");
    Fill(linker, "b");
    const Ka_ObjList copy(sorted);
    Ka_AString key("b");
    EXPECT_EQ(sorted.Add(&key), 1);
    EXPECT_EQ(sorted.GetListData()->nRefs, 2) << "the array is not copied";
    EXPECT_EQ(static_cast<const Ka_AString*>(copy.GetItem(1))->GetData(), key.GetData());
    EXPECT_EQ(sorted.AddLink(linker.GetItem(0)), 1);
    EXPECT_EQ(sorted.GetItem(1), linker.GetItem(0)) << "AddLink replaces an equal item by the link";
    EXPECT_NE(copy.GetItem(1), linker.GetItem(0)) << "in a private copy of the array";
    void* const mine = sorted.GetSafeItem(0, 0);  // copied: the copy shares it
    EXPECT_EQ(sorted.GetSafeItem(0, 0), mine) << "a private item is written in place";
  }
  EXPECT_EQ(h.live, 0);
}

TEST(ObjListCombine, WholeArraysAreSharedWithTheirFlagsAndNeverWithAnotherHandler) {
  CountingHandler h;
  Ka_ObjList sorted(&h, 1), empty(&h, 0), whole(&h, 0), stranger(nullptr, 0);
  Fill(sorted, "a,b,c,d");
  const int live = h.live;
  empty.AppendList(sorted);
  EXPECT_TRUE(empty.GetListData() == sorted.GetListData() && empty.IsSorted() == 0) << "an empty list shares, keeps its flag";
  EXPECT_EQ(sorted.GetSubList(whole, 0, 4), 4);
  EXPECT_TRUE(whole.GetListData() == sorted.GetListData() && whole.IsSorted() == 1) << "the whole list brings its flag";
  EXPECT_EQ(sorted.GetSubList(empty, 1, 2), 2);
  EXPECT_TRUE(empty.GetItem(0) == sorted.GetItem(1) && empty.IsSorted() == 0) << "a range is linked, the flag left alone";
  EXPECT_EQ(h.live, live) << "no item was copied";
  EXPECT_EQ(sorted.GetSubList(stranger, 0, 4), 0) << "another handler never shares";
  sorted.AssignList(stranger);
  sorted.AppendList(stranger);
  EXPECT_EQ(stranger.Add(X), -1) << "no handler, no item";
  EXPECT_EQ(Show(sorted) + " " + Show(stranger), "4:a,b,c,d 0:");
}

}  // namespace
