// Several threads allocate, share and free from the same pools at once (run
// under ThreadSanitizer by the tsan preset).
#include <gtest/gtest.h>

#include <random>
#include <thread>
#include <vector>

#include "memory/block_chain.h"

TEST(PoolThreads, ConcurrentAllocAndFreeLeaveSoundPools) {
  Ka_ObjBufPool slots("threads", sizeof(void*), 16);
  const int kThreads = 4, kRounds = 20000;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&slots, t] {
      std::mt19937 rng(static_cast<unsigned>(t));
      std::vector<Ka_BufferData*> blocks;
      std::vector<Ka_ObjBufData*> held;
      for (int i = 0; i < kRounds; ++i) {
        if (blocks.size() < 64 && rng() % 2 == 0) {
          Ka_BufferData* d = Ka_BufferPool::AllocBuffer(static_cast<int>(rng() % 3000));
          ASSERT_NE(d, nullptr);
          d->data()[0] = static_cast<unsigned char>(t);  // the block is this thread's alone
          blocks.push_back(d);
          held.push_back(slots.Alloc());
        } else if (!blocks.empty()) {
          Ka_BufferData* d = blocks.back();
          EXPECT_EQ(d->data()[0], static_cast<unsigned char>(t));
          blocks.pop_back();
          if (d->Release() == 0) Ka_BufferPool::FreeBuffer(d);
          Ka_ObjBufData* s = held.back();
          held.pop_back();
          if (s->Release(&slots) == 0) slots.Free(s);
        }
      }
      for (Ka_BufferData* d : blocks)
        if (d->Release() == 0) Ka_BufferPool::FreeBuffer(d);
      for (Ka_ObjBufData* s : held)
        if (s->Release(&slots) == 0) slots.Free(s);
    });
  }
  for (auto& th : threads) th.join();
  EXPECT_TRUE(slots.Validate());
  EXPECT_EQ(slots.GetBlockCount(), 1);  // only the head is kept
  EXPECT_EQ(slots.GetHeadBlock()->used, 0);
  for (int i = 0; i < 9; ++i) EXPECT_TRUE(ka_detail::SizeClassPool(i).Validate()) << i;
}

TEST(PoolThreads, SharedBlockIsFreedOnceByItsLastOwner) {
  const int kThreads = 4, kCopies = 10000;
  for (int round = 0; round < 20; ++round) {
    Ka_BufferData* d = Ka_BufferPool::AllocBuffer(16);
    d->nRefs = 1 + kThreads * kCopies;  // one reference per future release, plus ours
    std::vector<std::thread> threads;
    int frees[kThreads] = {};
    for (int t = 0; t < kThreads; ++t)
      threads.emplace_back([d, t, &frees] {
        for (int i = 0; i < kCopies; ++i) {
          d->AddRef();
          if (d->Release() == 0) ++frees[t];
          if (d->Release() == 0) ++frees[t];
        }
      });
    for (auto& th : threads) th.join();
    EXPECT_EQ(frees[0] + frees[1] + frees[2] + frees[3], 0);
    EXPECT_EQ(d->Release(), 0);  // ours was the last
    Ka_BufferPool::FreeBuffer(d);
  }
}
