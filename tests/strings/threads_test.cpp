// Strings in different threads share texts: copies, appends, hand-offs and
// releases run at once (under ThreadSanitizer in the tsan preset), and no
// text is lost or changed under another owner.
#include <atomic>
#include <deque>
#include <mutex>
#include <random>
#include <thread>
#include <type_traits>
#include <vector>

#include "strings/string_support.h"

template <class S>
class Threads : public ::testing::Test {};
TYPED_TEST_SUITE(Threads, BothStrings);

TYPED_TEST(Threads, SharedTextsSurviveCopiesAppendsAndHandOffs) {
  typedef TypeParam S;
  const int kThreads = 4, kRounds = 2000;
  std::vector<std::string> texts;  // small and large pool units, and a heap block
  std::vector<S> seeds;
  for (int length : {1, 31, 1000, 9000}) {
    texts.push_back(std::string(size_t(length), char('a' + length % 26)));
    seeds.push_back(Make<S>(texts.back()));
  }
  struct Mailbox {  // shared copies posted by the previous thread
    std::mutex lock;
    std::deque<std::pair<S, size_t>> letters;
  };
  std::vector<Mailbox> boxes(kThreads);
  std::vector<int> received(kThreads, 0);
  std::atomic<int> donePosting(0);
  // Takes one letter of thread t's box, extends and checks it. Returns
  // whether to go on waiting: false once the box is empty and `last` says
  // that every thread has posted all it will.
  auto Receive = [&](int t, bool last) {
    std::pair<S, size_t> letter;
    {
      std::lock_guard<std::mutex> guard(boxes[t].lock);
      if (boxes[t].letters.empty()) {
        if (!last) std::this_thread::yield();
        return !last;
      }
      letter = std::move(boxes[t].letters.front());
      boxes[t].letters.pop_front();
    }
    const S extended = letter.first + Chars<S>("!").c_str();
    letter.first.Empty();
    if (Text(extended) != texts[letter.second] + "!") ADD_FAILURE() << "handed-off text changed";
    ++received[t];
    return true;
  };
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      std::mt19937 random(unsigned(t) + 1);
      std::vector<S> held;
      for (int round = 0; round < kRounds; ++round) {
        const size_t i = random() % seeds.size();
        S copy(seeds[i]);
        S* object = new S(copy);  // from the shared object pool
        S mine = *object;
        delete object;
        mine += CharOf<S>('A' + t);  // made private
        if (Text(mine) != texts[i] + char('A' + t) || Text(copy) != texts[i]) ADD_FAILURE() << "text changed";
        held.push_back(copy);
        if (held.size() > 16) held.erase(held.begin() + std::ptrdiff_t(random() % held.size()));
        {
          std::lock_guard<std::mutex> guard(boxes[(t + 1) % kThreads].lock);
          boxes[(t + 1) % kThreads].letters.emplace_back(copy, i);
        }
        Receive(t, false);
      }
      ++donePosting;
      while (Receive(t, donePosting == kThreads)) {
      }
    });
  }
  for (std::thread& th : threads) th.join();
  for (size_t i = 0; i < seeds.size(); ++i) {
    EXPECT_EQ(Text(seeds[i]), texts[i]);
    EXPECT_EQ(Refs(seeds[i]), 1) << "every reference taken was given back";
  }
  for (int t = 0; t < kThreads; ++t) EXPECT_EQ(received[t], kRounds) << "every letter arrives";
  Ka_ObjBufPool& pool = std::is_same<S, Ka_AString>::value ? Ka_AString::_KaAStringHandler.GetPool()
                                                            : Ka_WString::_KaWStringHandler.GetPool();
  EXPECT_EQ(pool.Validate(), 1);
}
