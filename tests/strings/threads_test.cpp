// Strings in different threads share texts: copies, appends, hand-offs and
// releases run at once (under ThreadSanitizer in the tsan preset), and no
// text is lost or changed under another owner.
#include <mutex>
#include <random>
#include <thread>
#include <vector>

#include "strings/string_support.h"

template <class S>
class Threads : public ::testing::Test {};
TYPED_TEST_SUITE(Threads, BothStrings);

TYPED_TEST(Threads, SharedTextsSurviveCopiesAppendsAndHandOffs) {
  typedef TypeParam S;
  std::vector<std::string> texts;  // small and large pool units, and a heap block
  std::vector<S> seeds;
  for (int length : {1, 31, 1000, 9000}) {
    texts.push_back(std::string(size_t(length), char('a' + length % 26)));
    seeds.push_back(Make<S>(texts.back()));
  }
  // Copies left by one thread and taken, extended and released by another.
  std::mutex lock;
  std::vector<std::pair<S, size_t>> handOffs(8, std::make_pair(S(), size_t(0)));
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      std::mt19937 random(unsigned(t) + 1);
      for (int round = 0; round < 2000; ++round) {
        const size_t i = random() % seeds.size();
        S copy(seeds[i]);
        S* object = new S(copy);  // from the shared object pool
        S mine = *object;
        delete object;
        mine += CharOf<S>('A' + t);  // made private
        if (Text(mine) != texts[i] + char('A' + t) || Text(copy) != texts[i]) ADD_FAILURE() << "text changed";
        std::pair<S, size_t> letter(copy, i);
        {
          std::lock_guard<std::mutex> guard(lock);
          std::swap(letter, handOffs[random() % handOffs.size()]);
        }
        const S extended = letter.first + Chars<S>("!").c_str();
        if (letter.first.GetData() != nullptr && Text(extended) != texts[letter.second] + "!")
          ADD_FAILURE() << "handed-off text changed";
      }
    });
  }
  for (std::thread& th : threads) th.join();
  handOffs.clear();
  for (size_t i = 0; i < seeds.size(); ++i) {
    EXPECT_EQ(Text(seeds[i]), texts[i]);
    EXPECT_EQ(Refs(seeds[i]), 1) << "every reference taken was given back";
  }
}
