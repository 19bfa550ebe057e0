// Lists in different threads share arrays and items: copies, links, edits,
// hand-offs and releases run at once (under ThreadSanitizer in the tsan
// preset); no list sees another's edit and no item outlives its lists.
#include <mutex>
#include <random>
#include <thread>
#include <vector>

#include "lists/list_support.h"

TEST(ListThreads, SharedArraysAndItemsSurviveCopiesEditsAndHandOffs) {
  CountingHandler h;
  {
    Ka_ObjList seed(&h, 0);
    Fill(seed, "a,b,c,d,e,f,g,h");
    Ka_IntList numbers;
    numbers.Reset(64);
    std::vector<Ka_ObjList> seeds(4, seed);  // one list object per thread, one array
    std::vector<Ka_IntList> numberSeeds(4, numbers);
    std::mutex lock;
    std::vector<std::pair<Ka_ObjList, Ka_IntList>> handOffs(8, {Ka_ObjList(&h, 0), Ka_IntList()});
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
      threads.emplace_back([&, t] {
        std::mt19937 random(unsigned(t) + 1);
        Ka_AString x("X");
        for (int round = 0; round < 1500; ++round) {
          Ka_ObjList copy(seeds[t]), linked(&h, 1);
          Ka_IntList numbersCopy(numberSeeds[t]);
          copy.Set(int(random() % 8), &x, 0);                  // a private array, one new item
          linked.AddLink(seeds[t].GetItem(int(random() % 8)));  // a shared slot
          linked.AppendList(copy);                              // sorted: more shared slots
          static_cast<Ka_AString*>(linked.GetSafeItem(1, 0))->MakeLower();  // copied before written
          numbersCopy.Add(t);
          if (Show(seeds[t]) != "8:a,b,c,d,e,f,g,h" || numberSeeds[t].Count() != 64) ADD_FAILURE() << "a list changed";
          // Left for another thread, which takes the list left before it.
          std::pair<Ka_ObjList, Ka_IntList> letter(random() % 2 ? copy : linked, numbersCopy);
          {
            std::lock_guard<std::mutex> guard(lock);
            std::swap(letter, handOffs[random() % handOffs.size()]);
          }
          if (letter.first.Count() > 0 && Show(letter.first).find('X') == std::string::npos)
            ADD_FAILURE() << "a handed-off list changed";
        }
      });
    }
    for (std::thread& th : threads) th.join();
  }
  EXPECT_EQ(h.live, 0) << "items leaked or freed twice";
}
