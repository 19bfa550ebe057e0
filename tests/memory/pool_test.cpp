// The chain rules both pool kinds share that the random model test does not
// see (bad input, copies, FreeAll), and the settings in which the kinds
// differ. Which unit Alloc hands out, the blocks that come and go, the links
// (by Validate), the bytes a reused unit keeps and the used-count rules of
// odd frees are checked against the model.
#include <gtest/gtest.h>

#include <string>

#include "memory/pool_kinds.h"

template <class Kind>
class PoolChain : public ::testing::Test {};
typedef ::testing::Types<BufferPoolKind, ObjPoolKind> PoolKinds;
TYPED_TEST_SUITE(PoolChain, PoolKinds);

TYPED_TEST(PoolChain, BadUnitsPerBlockAndForeignPointersChangeNothing) {
  for (int perBlock : {0, -3}) {  // no units: null, and an empty block each call
    TypeParam k(perBlock);
    EXPECT_EQ(k.Alloc(), nullptr);
    EXPECT_EQ(k.Alloc(), nullptr);
    EXPECT_TRUE(k.Blocks() == 2 && k.Valid()) << perBlock;
  }
  TypeParam k(4), other(4);
  void* mine = k.Alloc();
  void* theirs = other.Alloc();
  k.Free(nullptr);
  k.Free(theirs);                                   // a unit of another pool
  k.Free(static_cast<unsigned char*>(mine) + 4);  // inside a unit, not at its start
  EXPECT_EQ(TypeParam::Count(mine) + TypeParam::Count(theirs), 2) << "both still taken";
  EXPECT_TRUE(k.Head()->used == 1 && k.Valid());
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
  TypeParam::Count(v) = 0;  // the last owner gives it back
  k.Free(v);
  EXPECT_EQ(k.Head()->used, 1);
  for (int i = 0; i < 4; ++i) k.Alloc();
  k.pool.FreeAll();
  EXPECT_TRUE(k.Head() == nullptr && k.Blocks() == 0 && k.Valid()) << "no block left, the head included";
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
  EXPECT_TRUE(u->nAllocLength == 100u && u->nDataLength == 0) << "capacity set, length zero";
  EXPECT_EQ(reinterpret_cast<uintptr_t>(u->data()) % alignof(void*), 0u) << "a unit size that is no multiple of 8";
  Ka_ObjBufPool slots("p", 16, 8);
  Ka_ObjBufData* s = slots.Alloc();
  ASSERT_NE(s, nullptr);
  EXPECT_EQ(std::string(static_cast<char*>(s->object()), 16), std::string(16, '\0')) << "the object room is zeroed";
  EXPECT_EQ(s->AddRef(&slots), 2);
  EXPECT_EQ(s->Release(nullptr), 1);
  EXPECT_EQ(s->Release(&slots), 0);  // never frees
  EXPECT_EQ(slots.GetHeadBlock()->used, 1);
}
