// The chain rules both pool kinds share that the random model test does not
// see (the chain links, reused bytes, bad input, copies, FreeAll), and the
// settings in which the kinds differ. Which unit Alloc hands out and the
// used-count rules of odd frees are checked against the model.
#include <gtest/gtest.h>

#include <cstring>

#include "memory/pool_kinds.h"

template <class Kind>
class PoolChain : public ::testing::Test {};
typedef ::testing::Types<BufferPoolKind, ObjPoolKind> PoolKinds;
TYPED_TEST_SUITE(PoolChain, PoolKinds);

TYPED_TEST(PoolChain, BlocksComeOnFirstAllocAndGoWhenEmptiedExceptTheHead) {
  TypeParam k(4);
  EXPECT_EQ(k.Head(), nullptr);  // no block until the first Alloc
  std::vector<void*> u;
  for (int i = 0; i < 9; ++i) u.push_back(k.Alloc());
  EXPECT_EQ(k.Blocks(), 3);  // 4 + 4 + 1
  std::memset(TypeParam::Room(u[1]), 0x5A, 4);
  Release(k, u[1]);
  EXPECT_EQ(k.Alloc(), u[1]);
  EXPECT_EQ(TypeParam::Room(u[1])[3], 0x5A);  // a reused unit is not cleared
  typename TypeParam::Block* head = k.Head();
  typename TypeParam::Block* third = head->next->next;
  for (int i = 4; i < 8; ++i) Release(k, u[i]);  // empties the second block
  EXPECT_EQ(head->next, third);                   // relinked around it
  EXPECT_EQ(third->prev, head);
  for (int i = 0; i < 4; ++i) Release(k, u[i]);  // empties the head: kept
  EXPECT_EQ(k.Blocks(), 2);
  EXPECT_EQ(k.Head(), head);
  EXPECT_TRUE(k.Valid());
}

TYPED_TEST(PoolChain, BadUnitsPerBlockAndForeignPointersChangeNothing) {
  for (int perBlock : {0, -3}) {  // no units: null, and an empty block each call
    TypeParam k(perBlock);
    EXPECT_EQ(k.Alloc(), nullptr);
    EXPECT_EQ(k.Alloc(), nullptr);
    EXPECT_EQ(k.Blocks(), 2) << perBlock;
    EXPECT_TRUE(k.Valid());
  }
  TypeParam k(4), other(4);
  void* mine = k.Alloc();
  void* theirs = other.Alloc();
  k.Free(nullptr);
  k.Free(theirs);                                   // a unit of another pool
  k.Free(static_cast<unsigned char*>(mine) + 4);  // inside a unit, not at its start
  EXPECT_EQ(TypeParam::Count(mine), 1);
  EXPECT_EQ(TypeParam::Count(theirs), 1);
  EXPECT_EQ(k.Head()->used, 1);
  EXPECT_TRUE(k.Valid());
}

TYPED_TEST(PoolChain, CopiesShareOneChainAndFreeAllStartsItAgain) {
  TypeParam k(2);
  void* u = k.Alloc();
  void* v;
  {
    auto copy = k.pool;  // shares the chain
    v = copy.Alloc();
    EXPECT_EQ(k.Head()->used, 2);
  }
  EXPECT_EQ(TypeParam::Count(u), 1);  // the copy's end released nothing
  Release(k, v);
  EXPECT_EQ(k.Head()->used, 1);
  for (int i = 0; i < 4; ++i) k.Alloc();
  k.pool.FreeAll();
  EXPECT_EQ(k.Head(), nullptr);
  EXPECT_EQ(k.pool.GetLastDataBlock(), nullptr);
  EXPECT_EQ(k.pool.GetFreeDataBlock(), nullptr);
  EXPECT_NE(k.Alloc(), nullptr);
  EXPECT_EQ(k.Blocks(), 1);
}

// ---- what differs between the kinds ---------------------------------------

TEST(PoolSettings, SizesAreRoundedToFourAndNamesCut) {
  struct { int given; unsigned int buffer; int object; } cases[] = {
      {0, 64, 32},    // below 1: each kind's default
      {1, 4, 4},      // rounded up
      {32, 32, 32},   // kept
  };
  for (auto& c : cases) {
    EXPECT_EQ(Ka_BufferPool(c.given, 4).GetAllocSize(), c.buffer) << c.given;
    EXPECT_EQ(Ka_ObjBufPool("x", c.given, 8).GetObjectSize(), c.object) << c.given;
  }
  EXPECT_STREQ(Ka_ObjBufPool(nullptr, 4, 8).GetName(), "");
  const char* longName = "abcdefghijklmnopqrstuvwxyz0123456789";
  EXPECT_EQ(std::string(Ka_ObjBufPool(longName, 4, 8).GetName()), std::string(longName, 31));
}

TEST(PoolSettings, FreshUnitsAreReadyForTheirOwners) {
  Ka_BufferPool buffers(100, 4);
  Ka_BufferData* u = buffers.Alloc();
  ASSERT_NE(u, nullptr);
  EXPECT_EQ(u->nAllocLength, 100u);  // capacity set, length zero
  EXPECT_EQ(u->nDataLength, 0);
  EXPECT_EQ(reinterpret_cast<uintptr_t>(u->data()) % alignof(void*), 0u);
  Ka_ObjBufPool slots("p", 16, 8);
  Ka_ObjBufData* s = slots.Alloc();
  ASSERT_NE(s, nullptr);
  const unsigned char* room = static_cast<unsigned char*>(s->object());
  for (int i = 0; i < 16; ++i) EXPECT_EQ(room[i], 0) << i;  // the object room is zeroed
  EXPECT_EQ(s->AddRef(&slots), 2);
  EXPECT_EQ(s->Release(nullptr), 1);
  EXPECT_EQ(s->Release(&slots), 0);  // never frees
  EXPECT_EQ(slots.GetHeadBlock()->used, 1);
}
