// Sorted object lists against an ordered model: insertion keeps the order
// and merges equal items, and the binary searches agree with lower_bound for
// every key while the list is small, and for every key and the keys between
// them once it is large.
#include <algorithm>
#include <random>
#include <set>

#include "lists/list_support.h"

namespace {

TEST(ObjListSorted, InsertionsKeepTheOrderAndSearchesAgreeWithAnOrderedModel) {
  CountingHandler h;
  {
    Ka_ObjList l(&h, 1), source(&h, 0);  // source: slots to link
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
      const int at = i % 3 == 0 ? l.Insert(0, &value) : i % 3 == 1 ? l.Add(&value) : l.AddLink(linked);
      model.insert(text);
      ASSERT_EQ(at, std::distance(model.begin(), model.find(text))) << text;
    }
    for (const std::string& text : model) searchesAgree(text), searchesAgree(text + "!");  // found where the model has it
  }
  EXPECT_EQ(h.live, 0);
}

}  // namespace
