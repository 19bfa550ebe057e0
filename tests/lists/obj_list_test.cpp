// The object list: positional edits, AppendList and GetSubList and their
// refusals (each on a private list and on lists sharing its array or its
// items), the sorted list's refusals, the arrays AppendList and GetSubList
// share, and the lists they never share with; then sorted lists against an
// ordered model: insertion keeps the order and merges equal items (Add
// assigns in place, even in a shared array and slot; AddLink links the new
// slot in a private array), and the binary searches agree with lower_bound
// for every key while the list is small, and for every key and the keys
// between them once it is large.
#include <algorithm>
#include <climits>
#include <random>
#include <set>

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
      {"", EDIT(l.Set(0, X, 0) + l.Delete(0, 1)), "0:", -2},   // nothing to replace without extend, no array to delete from
      // Negative indices; beyond the largest array.
      {"a,b", EDIT(l.Set(-1, X, 1) + l.InsertItem(-1, X) + l.Set(INT_MAX, X, 1)), "2:a,b", -3},
      {"a,b", EDIT(l.Set(1, nullptr, 0)), "2:a,~", 0},          // null empties a position
      {"a,b", EDIT(l.Set(4, X, 1)), "5:a,b,~,~,x", 0},          // Count() + 2 extends by three (not without extend)
      {"a,b", EDIT(l.SetLink(0, l.GetItem(0), 0)), "2:a,b", 0}, // a link to the slot it replaces
      {"a,b", EDIT(l.Insert(1, nullptr)), "3:a,~,b", 1},        // null inserts an empty position
      {"a,b", EDIT(l.InsertLinkItem(0, l.GetItem(1))), "3:b,a,b", 0},  // the slot moves up before the link
      {"b,a", EDIT(l.Sort()), "2:b,a", 2},                      // Sort sorts nothing (deliberate)
      {"a,~,c,d,e", EDIT(l.Delete(1, 100)), "1:a", 0},          // cut to the end; empty positions go too
      {"", EDIT(l.Exchange(5, 5)), "0:", 0},                    // a = b: 0 at once
      {"a,b,c", EDIT(l.Exchange(0, 2)), "3:c,b,a", 0},          // the two slots swap
      {"a,b,c,d", EDIT(l.Move(3, 1)), "4:a,d,b,c", 0},          // towards the front
      {"a,b,c,d", EDIT(l.Move(1, 10)), "4:a,c,d,b", 0},         // past the end: the last position
      {"a,b,c,d", EDIT(l.Exchange(0, 4) + l.Move(1, -1)), "4:a,b,c,d", -2},  // b out of range; a negative destination
      {"~,a,~,~,b,~", EDIT((l.Pack(), 0)), "2:a,b", 0},         // every empty position goes
      {"a", EDIT(l.AllocItems(3)), "3:a,~,~", 3},               // new positions are empty
      // AllocItems never shrinks, and refuses beyond the largest array.
      {"a,b", EDIT(l.AllocItems(1) + l.AllocItems(Ka_ObjList::kMaxCount + 1)), "2:a,b", 4},
      // Past the end without extend: null; no key: -1.
      {"a", EDIT((l.GetSafeItem(2, 0) != nullptr) + l.FindItem(nullptr)), "1:a", -1},
      {"a", EDIT(l.GetSafeItem(2, 1) != nullptr), "3:a,~,", 1}, // extends with an empty item
      {"a,x", EDIT(l.FindItem(X)), "2:a,x", 1},                 // found by a linear scan
      {"a,x", EDIT(l.SearchItem(X)), "2:a,x", -1},              // no binary search in an unsorted list
      {"x", EDIT((l.AppendList(Other(l, "b,~,a")), 0)), "4:x,b,~,a", 0},  // positions appended, empty ones too
      {"a,b", EDIT((l.AppendList(l), 0)), "2:a,b", 0},          // one array: nothing
      {"a,b,c,d", EDIT(l.GetSubList(l, 1, 2)), "2:b,c", 2},     // a range, into the list itself
      {"a,b,c,d", EDIT(l.GetSubList(l, 2, 99)), "2:c,d", 2},    // cut to the end
      {"a,b", EDIT(l.GetSubList(l, -1, 2)), "0:", 0},           // a negative start empties the target
  });
  // Sorted lists refuse positions (their placing by order is run against the
  // model below).
  RunEdits(1, {
      {"a,c,e", EDIT(l.Set(0, X, 1) + l.Insert(0, nullptr)), "3:a,c,e", -2},  // no positional replacement; null has no place
      {"a,c,e", EDIT(l.Exchange(0, 2) + l.Move(0, 2)), "3:a,c,e", 0},        // nothing done, nothing refused
      {"a,~,e", EDIT(l.Add(X)), "3:a,~,e", -1},                // the search meets an empty position
      {"", EDIT(l.SearchItem(X)), "0:", -1},                   // no array
      {"", EDIT((l.AppendList(Other(l, "c,~,a,c")), 0)), "2:a,c", 0},  // from an unsorted list: linked by order, merged
  });
}

TEST(ObjListCombine, WholeArraysAreSharedWithTheirFlagsAndNeverWithAnotherHandler) {
  CountingHandler h;
  Ka_ObjList sorted(&h, 1), empty(&h, 0), whole(&h, 0), stranger(nullptr, 0);
  Fill(sorted, "a,b,c,d");
  const int live = h.live;
  empty.AppendList(sorted);
  EXPECT_TRUE(empty.GetListData() == sorted.GetListData() && empty.IsSorted() == 0) << "an empty list shares, keeps its flag";
  EXPECT_TRUE(sorted.GetSubList(whole, 0, 4) == 4 && whole.GetListData() == sorted.GetListData() && whole.IsSorted() == 1)
      << "the whole list brings its flag";
  EXPECT_TRUE(sorted.GetSubList(empty, 1, 2) == 2 && empty.GetItem(0) == sorted.GetItem(1) && empty.IsSorted() == 0 &&
              h.live == live) << "a range is linked, no item copied, the flag left alone";
  // Another handler never shares; no handler, no item.
  sorted.AssignList(stranger);
  sorted.AppendList(stranger);
  EXPECT_TRUE(sorted.GetSubList(stranger, 0, 4) == 0 && stranger.Add(X) == -1);
  EXPECT_EQ(Show(sorted) + " " + Show(stranger), "4:a,b,c,d 0:");
}

TEST(ObjListSorted, InsertionsKeepTheOrderMergeEqualItemsAndSearchesAgreeWithAnOrderedModel) {
  CountingHandler h;
  {
    Ka_ObjList l(&h, 1), source(&h, 0), copy(&h, 1);  // source: slots to link; copy: shares l's array at times
    Fill(l, "~");
    l.Delete(0, 1);  // an array of no positions
    std::set<std::string> model;
    std::mt19937 random(7);
    // Every key, present or not (text + "!" lies just after text, before any longer number).
    auto searchesAgree = [&](const std::string& text) {
      Ka_AString key(text.c_str());
      const auto at = model.lower_bound(text);
      const int index = int(std::distance(model.begin(), at));
      EXPECT_EQ(l.SearchItem(&key), index) << model.size() << " items, key " << text;
      EXPECT_EQ(l.FindItem(&key), at != model.end() && *at == text ? index : -1) << model.size() << " items, key " << text;
    };
    for (int i = 0; i < 600; ++i) {
      for (int k = 0; model.size() <= 9 && k < 300; ++k) searchesAgree(std::to_string(k));
      const std::string text = std::to_string(random() % 300);
      Ka_AString value(text.c_str());
      void* const linked = source.GetItem(source.AddItem(&value));
      if (i % 7 == 0) copy = l;
      const int index = int(std::distance(model.begin(), model.lower_bound(text)));
      const bool equal = model.count(text) != 0;
      void* const slot = l.GetItem(index);
      const Ka_ObjList::Ka_ListData* const array = l.GetListData();
      const int at = i % 3 == 0 ? l.Insert(0, &value) : i % 3 == 1 ? l.Add(&value) : l.AddLink(linked);
      model.insert(text);
      ASSERT_EQ(at, index) << text;
      // AddLink puts its slot there, in a private array; Add of an equal item
      // assigns it in place, even into a shared array and slot (deliberate).
      ASSERT_TRUE(i % 3 == 2 ? l.GetItem(at) == linked && copy.GetItem(at) != linked
                             : !equal || (l.GetListData() == array && l.GetItem(at) == slot)) << text;
    }
    for (const std::string& text : model) searchesAgree(text), searchesAgree(text + "!");  // found where the model has it
  }
  EXPECT_EQ(h.live, 0);
}

}  // namespace
