// The object list: positional edits and their refusals (each on a private
// list and on lists sharing its array or its items), the sorted list's
// refusals, sharing at both levels, and AppendList and GetSubList.
#include <climits>
#include <functional>
#include <set>
#include <vector>

#include "lists/list_support.h"

namespace {

Ka_AString x("x");
void* const X = &x;

struct EditRow { std::string before; std::function<long(Ka_ObjList&)> edit; std::string after; long result; };
#define EDIT(expr) [](Ka_ObjList & l) -> long { return (expr); }

void RunEdits(int sorted, const std::vector<EditRow>& rows) {
  for (const EditRow& r : rows) {
    OnPrivateAndShared(r.before, sorted, [&r](Ka_ObjList& l) {
      EXPECT_EQ(r.edit(l), r.result) << r.before << " to " << r.after;
      EXPECT_EQ(Show(l), r.after) << r.before;
    });
  }
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
  });
  // Sorted lists refuse positions (their placing by order is run against a
  // model in sorted_test.cpp).
  RunEdits(1, {
      {"a,c,e", EDIT(l.Set(0, X, 1)), "3:a,c,e", -1},          // no positional replacement
      {"a,c,e", EDIT(l.Exchange(0, 2)), "3:a,c,e", 0},         // nothing done
      {"a,c,e", EDIT(l.Move(0, 2)), "3:a,c,e", 0},             // nothing done
      {"a,c,e", EDIT(l.Insert(0, nullptr)), "3:a,c,e", -1},    // null has no place
      {"a,~,e", EDIT(l.Add(X)), "3:a,~,e", -1},                // the search meets an empty position
  });
}

TEST(ObjListShare, ArraysAndItemsAreCopiedOnlyWhenWrittenThrough) {
  CountingHandler h;
  {
    Ka_ObjList a(&h, 0), b(&h, 0);
    Fill(a, "a,b,~");
    b = a;
    EXPECT_EQ(b.Set(2, nullptr, 0), 0);
    EXPECT_EQ(ArrayRefs(a), 2) << "emptying an empty position keeps the array shared";
    EXPECT_EQ(b.Set(0, X, 0), 0);
    EXPECT_EQ(SlotRefs(a, 1), 2) << "a copied array still shares the items";
    Ka_ObjList c(&h, 0);
    EXPECT_EQ(c.AddLink(a.GetItem(0)), 0);
    void* mine = a.GetSafeItem(0, 0);
    *static_cast<Ka_AString*>(mine) = "A";
    EXPECT_EQ(Show(a) + " " + Show(c), "3:A,b,~ 1:a");
    EXPECT_EQ(a.GetSafeItem(0, 0), mine) << "a private item is written in place";
    EXPECT_EQ(a.GetSafeItem(4, 0), nullptr) << "beyond the end without extend";
    EXPECT_NE(a.GetSafeItem(4, 1), nullptr);
    EXPECT_EQ(Show(a), "5:A,b,~,~,");
    Ka_ObjList full(&h, 0);
    Fill(full, "f");
    const Ka_ObjList fullCopy(full);
    full.Pack();
    EXPECT_EQ(ArrayRefs(full), 2) << "a Pack with nothing to remove keeps the array shared";
    // A sorted Add assigns an equal item in place, even when shared (deliberate).
    Ka_ObjList sorted(&h, 1), linker(&h, 1);
    Fill(sorted, "a,b");
    Fill(linker, "b");
    const Ka_ObjList copy(sorted);
    Ka_AString key("b");
    EXPECT_EQ(sorted.Add(&key), 1);
    EXPECT_EQ(ArrayRefs(sorted), 2) << "the array is not copied";
    EXPECT_EQ(static_cast<const Ka_AString*>(copy.GetItem(1))->GetData(), key.GetData());
    EXPECT_EQ(sorted.AddLink(linker.GetItem(0)), 1);
    EXPECT_EQ(sorted.GetItem(1), linker.GetItem(0)) << "AddLink replaces an equal item by the link";
    EXPECT_NE(copy.GetItem(1), linker.GetItem(0)) << "in a private copy of the array";
  }
  EXPECT_EQ(h.live, 0);
}

TEST(ObjListCombine, AppendListSharesOrLinksByTheTwoFlags) {
  struct Row { const char *mine, *other; int mineSorted, otherSorted; const char* result; bool sharesArray; } rows[] = {
      {"", "", 0, 0, "0:", false},                  // both empty
      {"", "b,~,a", 0, 0, "3:b,~,a", true},         // an empty list shares the whole array
      {"", "a,b", 0, 1, "2:a,b", true},             // ... and keeps its unsorted flag
      {"", "c,~,a,c", 1, 0, "2:a,c", false},        // sorted from unsorted: linked by order, merged
      {"x", "b,~,a", 0, 0, "4:x,b,~,a", false},     // positions appended, empty ones too
  };
  for (const Row& r : rows) {
    CountingHandler h;
    Ka_ObjList mine(&h, r.mineSorted), other(&h, r.otherSorted);
    Fill(mine, r.mine);
    Fill(other, r.other);
    std::set<void*> known;  // every slot of both lists before
    for (int i = 0; i < mine.Count() + other.Count(); ++i)
      known.insert(i < mine.Count() ? mine.GetItem(i) : other.GetItem(i - mine.Count()));
    mine.AppendList(other);
    mine.AppendList(mine);  // one array: nothing
    EXPECT_EQ(Show(mine), r.result);
    EXPECT_EQ(mine.IsSorted(), r.mineSorted);
    EXPECT_EQ(mine.GetListData() != nullptr && mine.GetListData() == other.GetListData(), r.sharesArray);
    for (int i = 0; i < mine.Count(); ++i)
      if (known.count(mine.GetItem(i)) == 0) ADD_FAILURE() << r.result << ": item " << i << " copied, not shared";
  }
}

TEST(ObjListCombine, GetSubListSharesTheWholeArrayOrLinksARange) {
  CountingHandler h;
  Ka_ObjList l(&h, 1), target(&h, 0), stranger(nullptr, 0);
  Fill(l, "a,b,c,d");
  EXPECT_EQ(l.GetSubList(target, 0, 4), 4);
  EXPECT_EQ(target.GetListData(), l.GetListData());
  EXPECT_EQ(target.IsSorted(), 1) << "the whole list brings its flag";
  struct Row { int start, count, result; const char* shown; } rows[] = {
      {1, 2, 2, "2:b,c"},   // a range, linked
      {2, 99, 2, "2:c,d"},  // cut to the end
      {-1, 2, 0, "0:"},     // a negative start
  };
  for (const Row& r : rows) {
    Ka_ObjList range(&h, 0);
    EXPECT_EQ(l.GetSubList(range, r.start, r.count), r.result) << r.start << "," << r.count;
    EXPECT_EQ(Show(range), r.shown);
    EXPECT_EQ(range.IsSorted(), 0) << "a range leaves the target's flag alone";
    EXPECT_TRUE(r.result == 0 || range.GetItem(0) == l.GetItem(r.start)) << "items are linked";
  }
  EXPECT_EQ(l.GetSubList(stranger, 0, 4), 0) << "another handler never shares";
  l.AssignList(stranger);
  l.AppendList(stranger);
  EXPECT_EQ(stranger.Add(X), -1) << "no handler, no item";
  EXPECT_EQ(l.GetSubList(l, 1, 2), 2) << "a list may be its own target";
  EXPECT_EQ(Show(l), "2:b,c");
}

}  // namespace
