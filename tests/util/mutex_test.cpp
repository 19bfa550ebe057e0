// The library's lock and the inert stopwatch.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <thread>

TEST(ThreadMutex, TryLockWaitsForAnotherThreadAndThenSucceeds) {
  Ka_ThreadMutex m;
  std::atomic<int> stage{0};
  m.Lock();
  std::thread other([&] {
    stage = 1;
    EXPECT_EQ(m.TryLock(), 1);  // blocks: it is not a try (deliberate)
    stage = 2;
    m.Unlock();
  });
  while (stage.load() != 1) std::this_thread::yield();
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_EQ(stage.load(), 1);  // still waiting while we hold the lock
  m.Unlock();
  other.join();
  EXPECT_EQ(stage.load(), 2);
}

TEST(ThreadMutex, IsReentrantForItsOwner) {
  Ka_ThreadMutex m;
  m.Lock();
  EXPECT_EQ(m.TryLock(), 1);  // at once
  m.Unlock();
  m.Unlock();
  // Fully released: another thread can take it.
  std::thread other([&] {
    m.Lock();
    m.Unlock();
  });
  other.join();
}

TEST(ThreadMutex, GuardsACounterAcrossThreads) {
  Ka_ThreadMutex m;
  long counter = 0;
  std::thread a([&] {
    for (int i = 0; i < 50000; ++i) { m.Lock(); ++counter; m.Unlock(); }
  });
  std::thread b([&] {
    for (int i = 0; i < 50000; ++i) { m.Lock(); ++counter; m.Unlock(); }
  });
  a.join();
  b.join();
  EXPECT_EQ(counter, 100000);
}

TEST(ThreadMutex, AssignmentKeepsItsOwnLock) {
  Ka_ThreadMutex a, b;
  a.Lock();
  b = a;  // copies nothing of the held lock
  std::thread other([&] {
    b.Lock();  // must not block on a's owner
    b.Unlock();
  });
  other.join();
  a.Unlock();
}

TEST(ElapsedTime, IsAlwaysPositiveZero) {
  Ka_ElapsedTime t;
  EXPECT_EQ(t.GetElapsedTime(), 0.0);
  t.SetStartTime();
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  const double e = t.GetElapsedTime();
  EXPECT_EQ(e, 0.0);
  EXPECT_FALSE(std::signbit(e));
  Ka_ElapsedTime u;
  u = t;
  EXPECT_EQ(u.GetElapsedTime(), 0.0);
}
