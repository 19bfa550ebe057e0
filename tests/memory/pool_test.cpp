// The chain rules both pool kinds share: which unit Alloc hands out, when
// blocks come and go, and the deliberate used-count rules of odd frees.
#include <gtest/gtest.h>

#include <cstring>

#include "memory/pool_kinds.h"

template <class Kind>
class PoolChain : public ::testing::Test {};
typedef ::testing::Types<BufferPoolKind, ObjPoolKind> PoolKinds;
TYPED_TEST_SUITE(PoolChain, PoolKinds);

TYPED_TEST(PoolChain, NewPoolHoldsNoBlockUntilFirstAlloc) {
  TypeParam k(4);
  EXPECT_EQ(k.Head(), nullptr);
  EXPECT_EQ(k.Blocks(), 0);
  void* u = k.Alloc();
  ASSERT_NE(u, nullptr);
  EXPECT_EQ(TypeParam::Count(u), 1);
  EXPECT_EQ(k.Blocks(), 1);
  EXPECT_EQ(k.Head()->used, 1);
}

TYPED_TEST(PoolChain, LowestFreeUnitIsReusedAndKeepsItsBytes) {
  TypeParam k(4);
  void* a = k.Alloc();
  void* b = k.Alloc();
  void* c = k.Alloc();
  EXPECT_LT(a, b);
  EXPECT_LT(b, c);
  std::memset(TypeParam::Room(b), 0x5A, 4);
  Release(k, b);
  void* again = k.Alloc();
  EXPECT_EQ(again, b);                    // lowest free unit first
  EXPECT_EQ(TypeParam::Room(again)[3], 0x5A);  // a reused unit is not cleared
  EXPECT_EQ(k.Head()->used, 3);
}

TYPED_TEST(PoolChain, FullBlockAddsOneAndEmptiedBlocksGoExceptTheHead) {
  TypeParam k(4);
  std::vector<void*> u;
  for (int i = 0; i < 9; ++i) u.push_back(k.Alloc());
  EXPECT_EQ(k.Blocks(), 3);  // 4 + 4 + 1
  typename TypeParam::Block* head = k.Head();
  typename TypeParam::Block* third = head->next->next;
  for (int i = 4; i < 8; ++i) Release(k, u[i]);  // empties the second block
  EXPECT_EQ(k.Blocks(), 2);
  EXPECT_EQ(head->next, third);  // relinked around the freed block
  EXPECT_EQ(third->prev, head);
  for (int i = 0; i < 4; ++i) Release(k, u[i]);  // empties the head: kept
  EXPECT_EQ(k.Blocks(), 2);
  EXPECT_EQ(k.Head(), head);
  EXPECT_EQ(head->used, 0);
  EXPECT_TRUE(k.Valid());
}

TYPED_TEST(PoolChain, AllocTakesTheEarliestBlockWithRoom) {
  TypeParam k(2);
  std::vector<void*> u;
  for (int i = 0; i < 6; ++i) u.push_back(k.Alloc());  // three full blocks
  Release(k, u[5]);                                     // room in the third
  Release(k, u[3]);                                     // then in the second
  const size_t bytes = k.pool.GetBlockBytes();
  void* first = k.Alloc();
  void* second = k.Alloc();
  EXPECT_EQ(BlockOrdinal(k, first, bytes), 1);
  EXPECT_EQ(BlockOrdinal(k, second, bytes), 2);
  EXPECT_EQ(k.Blocks(), 3);
}

TYPED_TEST(PoolChain, SecondFreeAndFreeAtPositiveCountLeaveUsedCount) {
  TypeParam k(4);
  void* a = k.Alloc();
  void* b = k.Alloc();
  Release(k, a);
  EXPECT_EQ(k.Head()->used, 1);
  k.Free(a);  // a second free: marked free again, count untouched
  EXPECT_EQ(k.Head()->used, 1);
  EXPECT_EQ(TypeParam::Count(a), -1);
  TypeParam::Count(b) = 2;  // still owned twice
  k.Free(b);                // marked free, yet its block goes on counting it
  EXPECT_EQ(TypeParam::Count(b), -1);
  EXPECT_EQ(k.Head()->used, 1);
  EXPECT_TRUE(k.Valid());
}

TYPED_TEST(PoolChain, ForeignAndNullPointersAreIgnored) {
  TypeParam k(4);
  TypeParam other(4);
  void* mine = k.Alloc();
  void* theirs = other.Alloc();
  k.Free(nullptr);
  k.Free(theirs);  // a unit of another pool
  unsigned char* inside = static_cast<unsigned char*>(mine) + 4;
  k.Free(inside);  // inside a unit, not at its start
  EXPECT_EQ(TypeParam::Count(mine), 1);
  EXPECT_EQ(TypeParam::Count(theirs), 1);
  EXPECT_EQ(k.Head()->used, 1);
  EXPECT_TRUE(k.Valid());
}

TYPED_TEST(PoolChain, NoUnitsPerBlockGivesNullAndAnEmptyBlockEachCall) {
  for (int perBlock : {0, -3}) {
    TypeParam k(perBlock);
    EXPECT_EQ(k.Alloc(), nullptr);
    EXPECT_EQ(k.Alloc(), nullptr);
    EXPECT_EQ(k.Blocks(), 2) << perBlock;
    EXPECT_TRUE(k.Valid());
  }
}

TYPED_TEST(PoolChain, CopiesShareOneChainThatOutlivesTheOriginal) {
  TypeParam k(4);
  void* u = k.Alloc();
  void* v;
  {
    auto copy = k.pool;  // shares the chain
    v = copy.Alloc();
    EXPECT_EQ(k.Blocks(), 1);
    EXPECT_EQ(k.Head()->used, 2);
  }
  EXPECT_EQ(TypeParam::Count(u), 1);  // the copy's end released nothing
  Release(k, v);
  EXPECT_EQ(k.Head()->used, 1);
}

TYPED_TEST(PoolChain, FreeAllReleasesEveryBlockAndThePoolStartsAgain) {
  TypeParam k(2);
  for (int i = 0; i < 5; ++i) k.Alloc();
  k.pool.FreeAll();
  EXPECT_EQ(k.Blocks(), 0);
  EXPECT_EQ(k.Head(), nullptr);
  EXPECT_EQ(k.pool.GetLastDataBlock(), nullptr);
  EXPECT_EQ(k.pool.GetFreeDataBlock(), nullptr);
  EXPECT_NE(k.Alloc(), nullptr);
  EXPECT_EQ(k.Blocks(), 1);
}

// ---- what differs between the kinds ---------------------------------------

TEST(BufferPool, UnitSizeIsRoundedUpToFourAndDefaultsTo64) {
  struct { int given; unsigned int kept; } cases[] = {
      {0, 64},    // below 1: 64
      {-7, 64},   // negative: 64
      {1, 4},     // rounded up
      {5, 8},     // rounded up
      {32, 32},   // kept
  };
  for (auto& c : cases) EXPECT_EQ(Ka_BufferPool(c.given, 4).GetAllocSize(), c.kept) << c.given;
}

TEST(BufferPool, FreshUnitHasCapacityAndZeroLength) {
  Ka_BufferPool pool(100, 4);
  Ka_BufferData* u = pool.Alloc();
  ASSERT_NE(u, nullptr);
  EXPECT_EQ(u->nAllocLength, 100u);
  EXPECT_EQ(u->nDataLength, 0);
  EXPECT_EQ(reinterpret_cast<uintptr_t>(u->data()) % alignof(void*), 0u);
}

TEST(ObjBufPool, SettingsAreRoundedAndNamesCut) {
  struct { int given; int kept; } sizes[] = {{0, 32}, {-1, 32}, {4, 4}, {5, 8}};
  for (auto& c : sizes) EXPECT_EQ(Ka_ObjBufPool("x", c.given, 8).GetObjectSize(), c.kept) << c.given;
  EXPECT_STREQ(Ka_ObjBufPool(nullptr, 4, 8).GetName(), "");
  const char* longName = "abcdefghijklmnopqrstuvwxyz0123456789";
  EXPECT_EQ(std::string(Ka_ObjBufPool(longName, 4, 8).GetName()), std::string(longName, 31));
}

TEST(ObjBufPool, FirstSlotIsZeroedAndCountsChangeAtomically) {
  Ka_ObjBufPool pool("p", 16, 8);
  Ka_ObjBufData* s = pool.Alloc();
  ASSERT_NE(s, nullptr);
  const unsigned char* room = static_cast<unsigned char*>(s->object());
  for (int i = 0; i < 16; ++i) EXPECT_EQ(room[i], 0) << i;
  EXPECT_EQ(s->AddRef(&pool), 2);
  EXPECT_EQ(s->Release(nullptr), 1);
  EXPECT_EQ(s->Release(&pool), 0);  // never frees
  EXPECT_EQ(pool.GetHeadBlock()->used, 1);
}
