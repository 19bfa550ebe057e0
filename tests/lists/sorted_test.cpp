// Sorted object lists: binary search for every size and probe against an
// ordered model, insertion keeping the order and merging equal items, and
// the search's refusals.
#include <algorithm>
#include <random>
#include <set>
#include <string>

#include "lists/list_support.h"

namespace {

TEST(ObjListSorted, SearchAndFindAgreeWithAnOrderedModelForEverySize) {
  CountingHandler h;
  for (int n = 0; n <= 9; ++n) {
    Ka_ObjList l(&h, 1);
    std::vector<std::string> model;  // b, d, f, ...: every other letter
    for (int i = 0; i < n; ++i) model.push_back(std::string(1, char('b' + 2 * i)));
    for (const std::string& text : model) {
      Ka_AString value(text.c_str());
      l.InsertItem(l.Count(), &value);
    }
    if (n == 0) l.AllocItems(0), l.AddItem(nullptr), l.Delete(0, 1);  // an array of no positions
    for (char c = 'a'; c <= 'b' + 2 * n; ++c) {
      Ka_AString key(std::string(1, c).c_str());
      const auto at = std::lower_bound(model.begin(), model.end(), std::string(1, c));
      const bool present = at != model.end() && *at == std::string(1, c);
      EXPECT_EQ(l.SearchItem(&key), at - model.begin()) << n << " items, key " << c;
      EXPECT_EQ(l.FindItem(&key), present ? at - model.begin() : -1) << n << " items, key " << c;
    }
  }
  EXPECT_EQ(h.live, 0);
}

TEST(ObjListSorted, AddAndInsertKeepTheOrderAndMergeEqualItems) {
  CountingHandler h;
  {
    Ka_ObjList l(&h, 1), source(&h, 0);  // source: slots to link
    std::set<std::string> model;
    std::mt19937 random(7);
    for (int i = 0; i < 600; ++i) {
      const std::string text = std::to_string(random() % 300);
      Ka_AString value(text.c_str());
      source.AddItem(&value);
      void* const linked = source.GetItem(source.Count() - 1);
      const int at = i % 3 == 0 ? l.Insert(0, &value) : i % 3 == 1 ? l.Add(&value) : l.AddLink(linked);
      model.insert(text);
      ASSERT_EQ(at, std::distance(model.begin(), model.find(text))) << text;
      ASSERT_EQ(l.Count(), static_cast<int>(model.size()));
    }
    int i = 0;
    for (const std::string& text : model) {
      EXPECT_EQ(static_cast<Ka_AString*>(l.GetItem(i++))->Compare(text.c_str()), 0);
      Ka_AString probe((text + "!").c_str());  // just after text, before any longer number
      EXPECT_EQ(l.FindItem(&probe), -1);
      EXPECT_EQ(l.SearchItem(&probe), i);
    }
  }
  EXPECT_EQ(h.live, 0);
}

TEST(ObjListSorted, SearchItemRefusesWhatIsNoSortedListWithAnArray) {
  CountingHandler h;
  Ka_AString key("k");
  Ka_ObjList unsorted(&h, 0), fresh(&h, 1), emptied(&h, 1);
  Fill(unsorted, "a,k");
  Fill(emptied, "k");
  emptied.Delete(0, 1);
  EXPECT_EQ(unsorted.SearchItem(&key), -1);
  EXPECT_EQ(unsorted.FindItem(&key), 1) << "found by a linear scan";
  EXPECT_EQ(fresh.SearchItem(&key), -1) << "no array";
  EXPECT_EQ(emptied.SearchItem(&key), 0) << "an empty sorted list with its array";
  EXPECT_EQ(emptied.SearchItem(nullptr), -1);
  EXPECT_EQ(emptied.FindItem(nullptr), -1);
}

}  // namespace
