// Lists in different threads share arrays and items: copies, links, edits,
// hand-offs and releases run at once (under ThreadSanitizer in the tsan
// preset); no list sees another's edit and no item outlives its lists.
#include <deque>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

#include "lists/list_support.h"

namespace {

TEST(ListThreads, SharedArraysAndItemsSurviveCopiesEditsAndHandOffs) {
  const int kThreads = 4, kRounds = 1500;
  CountingHandler h;
  {
    Ka_ObjList seed(&h, 0);
    Fill(seed, "a,b,c,d,e,f,g,h");
    const std::string seedShown = Show(seed);
    Ka_IntList numbers;
    numbers.Reset(64);
    struct Mailbox {  // lists posted by the previous thread, with what they should show
      std::mutex lock;
      std::deque<std::pair<Ka_ObjList, std::string>> lists;
      std::deque<Ka_IntList> numbers;
    };
    std::vector<Mailbox> boxes(kThreads);
    std::vector<Ka_ObjList> seeds(kThreads, seed);  // one list object per thread, one shared array
    std::vector<Ka_IntList> numberSeeds(kThreads, numbers);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&, t] {
        std::mt19937 random(unsigned(t) + 1);
        Ka_ObjList& mine = seeds[t];
        Ka_AString x(std::string(1, char('A' + t)).c_str());
        for (int round = 0; round < kRounds; ++round) {
          Ka_ObjList copy(mine), linked(&h, 1);
          const int i = int(random() % 8);
          copy.Set(i, &x, 0);                           // a private array, one new item
          linked.AddLink(mine.GetItem(int(random() % 8)));  // a shared slot
          linked.AppendList(copy);                          // sorted: more shared slots
          static_cast<Ka_AString*>(linked.GetSafeItem(0, 0))->MakeUpper();  // copied before written
          Ka_IntList numbersCopy(numberSeeds[t]);
          numbersCopy.Add(t);
          if (Show(mine) != seedShown || numbersCopy.GetItem(63) != 63) ADD_FAILURE() << "a shared list changed";
          {
            const Ka_ObjList& posted = random() % 2 ? copy : linked;
            Mailbox& next = boxes[(t + 1) % kThreads];
            std::lock_guard<std::mutex> guard(next.lock);
            next.lists.emplace_back(posted, Show(posted));
            next.numbers.push_back(numbersCopy);
          }
          std::lock_guard<std::mutex> guard(boxes[t].lock);
          while (boxes[t].lists.size() > 8) {
            if (Show(boxes[t].lists.front().first) != boxes[t].lists.front().second) ADD_FAILURE() << "a handed-off list changed";
            boxes[t].lists.pop_front();
            boxes[t].numbers.pop_front();
          }
        }
      });
    }
    for (std::thread& th : threads) th.join();
    EXPECT_EQ(Show(seed), seedShown);
  }
  EXPECT_EQ(h.live, 0) << "items leaked or freed twice";
}

}  // namespace
