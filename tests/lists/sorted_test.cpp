// Sorted object lists: binary search for every size and key against an
// ordered model, and insertion that keeps the order and merges equal items.
#include <algorithm>
#include <random>
#include <set>

#include "lists/list_support.h"

namespace {

TEST(ObjListSorted, SearchAndFindAgreeWithAnOrderedModelForEverySize) {
  CountingHandler h;
  for (int n = 0; n <= 9; ++n) {
    Ka_ObjList l(&h, 1);
    std::vector<std::string> model;  // b, d, f, ...
    for (int i = 0; i < n; ++i) model.push_back(std::string(1, char('b' + 2 * i)));
    Fill(l, n == 0 ? "~" : "");
    l.Delete(0, 1);  // n = 0: an array of no positions
    for (const std::string& text : model) Fill(l, text);
    for (char c = 'a'; c <= 'b' + 2 * n; ++c) {
      Ka_AString key(std::string(1, c).c_str());
      const auto at = std::lower_bound(model.begin(), model.end(), std::string(1, c));
      const bool present = at != model.end() && *at == std::string(1, c);
      EXPECT_EQ(l.SearchItem(&key), at - model.begin()) << n << " items, key " << c;
      EXPECT_EQ(l.FindItem(&key), present ? at - model.begin() : -1) << n << " items, key " << c;
    }
  }
  Ka_ObjList fresh(&h, 1), unsorted(&h, 0);
  Fill(unsorted, "a,k");
  Ka_AString key("k");
  EXPECT_EQ(fresh.SearchItem(&key), -1) << "no array";
  EXPECT_EQ(unsorted.SearchItem(&key), -1) << "unsorted";
  EXPECT_EQ(unsorted.FindItem(&key), 1) << "found by a linear scan";
  EXPECT_EQ(unsorted.FindItem(nullptr), -1);
}

TEST(ObjListSorted, AddInsertAndAddLinkKeepTheOrderAndMergeEqualItems) {
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

}  // namespace
