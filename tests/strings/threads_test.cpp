// Strings in different threads share texts: copies, appends, hand-offs and
// releases run at once (under ThreadSanitizer in the tsan preset), and no
// text is lost or changed under another owner.
#include <deque>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "strings/string_support.h"

template <class S>
class Threads : public ::testing::Test {};
TYPED_TEST_SUITE(Threads, BothStrings);

TYPED_TEST(Threads, SharedTextsSurviveCopiesAppendsAndHandOffs) {
  typedef TypeParam S;
  typedef CharOf<S> C;
  const int kThreads = 4, kRounds = 2000;
  // Seeds of every kind of block: small pool units, large units, heap blocks.
  std::vector<std::string> texts;
  for (int length : {1, 5, 31, 100, 1000, 5000, 9000}) texts.push_back(std::string(size_t(length), char('a' + length % 26)));
  std::vector<S> seeds;
  for (const std::string& t : texts) seeds.push_back(Make<S>(t));

  // Each thread posts shared copies to the next one, which extends and drops them.
  struct Mailbox {
    std::mutex lock;
    std::deque<std::pair<S, size_t>> letters;  // a copy and the seed it came from
  };
  std::vector<Mailbox> boxes(kThreads);
  std::vector<int> checked(kThreads, 0);

  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      std::mt19937 random(unsigned(t) + 1);
      std::vector<S> held;
      for (int round = 0; round < kRounds; ++round) {
        const size_t i = random() % seeds.size();
        S copy(seeds[i]);  // another reference on a block other threads use
        S* made = new S(copy);
        S mine = *made;
        delete made;
        mine += C('A' + t);  // becomes private
        if (Text(mine) != texts[i] + char('A' + t) || Text(copy) != texts[i]) ADD_FAILURE() << "text changed";
        if (random() % 2 == 0) held.push_back(copy);
        if (held.size() > 32) held.erase(held.begin() + std::ptrdiff_t(random() % held.size()));
        {
          std::lock_guard<std::mutex> guard(boxes[(t + 1) % kThreads].lock);
          boxes[(t + 1) % kThreads].letters.emplace_back(copy, i);
        }
        std::pair<S, size_t> letter;
        {
          std::lock_guard<std::mutex> guard(boxes[t].lock);
          if (boxes[t].letters.empty()) continue;
          letter = std::move(boxes[t].letters.front());
          boxes[t].letters.pop_front();
        }
        S extended = letter.first + Chars<S>("!").c_str();
        letter.first.Empty();
        if (Text(extended) != texts[letter.second] + "!") ADD_FAILURE() << "handed-off text changed";
        ++checked[t];
      }
    });
  }
  for (std::thread& th : threads) th.join();
  for (Mailbox& box : boxes) box.letters.clear();

  for (size_t i = 0; i < seeds.size(); ++i) {
    EXPECT_EQ(Text(seeds[i]), texts[i]);
    EXPECT_EQ(Refs(seeds[i]), 1) << "every reference taken was given back";
  }
  for (int t = 0; t < kThreads; ++t) EXPECT_GT(checked[t], 0) << "thread " << t << " received nothing";
  Ka_ObjBufPool& pool = std::is_same<S, Ka_AString>::value ? Ka_AString::_KaAStringHandler.GetPool()
                                                            : Ka_WString::_KaWStringHandler.GetPool();
  EXPECT_EQ(pool.Validate(), 1);
}
