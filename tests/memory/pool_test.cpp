// The chain rules both pool kinds share that the random model test does not
// see (bad input, copies, FreeAll), and the settings in which the kinds
// differ. Which unit Alloc hands out, the blocks that come and go, the links
// (by Validate), the bytes a reused unit keeps and the used-count rules of
// odd frees are checked against the model.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "memory/pool_kinds.h"

template <class Kind>
class PoolChain : public ::testing::Test {};
typedef ::testing::Types<BufferPoolKind, ObjPoolKind> PoolKinds;
TYPED_TEST_SUITE(PoolChain, PoolKinds);

TYPED_TEST(PoolChain, BadUnitsPerBlockAndForeignPointersChangeNothing) {
  for (int perBlock : {0, -3}) {  // no units: null, and an empty block each call
    TypeParam k(perBlock);
    EXPECT_TRUE(k.Alloc() == nullptr && k.Alloc() == nullptr && k.GetBlockCount() == 2 && k.Validate()) << perBlock;
  }
  TypeParam k(4), other(4);
  typename TypeParam::Unit *mine = k.Alloc(), *theirs = other.Alloc();
  k.Free(nullptr);
  k.Free(theirs);  // a unit of another pool
  k.Free(reinterpret_cast<typename TypeParam::Unit*>(TypeParam::Room(mine)));  // inside a unit, not at its start
  EXPECT_EQ(TypeParam::Count(mine) + TypeParam::Count(theirs), 2) << "both still taken";
  EXPECT_TRUE(k.GetHeadBlock()->used == 1 && k.Validate());
}

TYPED_TEST(PoolChain, CopiesShareOneChainAndFreeAllStartsItAgain) {
  TypeParam k(2);
  typename TypeParam::Unit *u = k.Alloc(), *v;
  {
    typename TypeParam::Pool copy(k);  // shares the chain
    v = copy.Alloc();
    EXPECT_EQ(k.GetHeadBlock()->used, 2);
  }
  EXPECT_EQ(TypeParam::Count(u), 1);  // the copy's end released nothing
  TypeParam::Count(v) = 0;  // the last owner gives it back
  k.Free(v);
  EXPECT_EQ(k.GetHeadBlock()->used, 1);
  for (int i = 0; i < 4; ++i) k.Alloc();
  k.FreeAll();
  EXPECT_TRUE(k.GetHeadBlock() == nullptr && k.GetBlockCount() == 0 && k.Validate()) << "no block left, the head too";
  EXPECT_TRUE(k.Alloc() != nullptr && k.GetBlockCount() == 1);
}

// ---- what differs between the kinds ---------------------------------------

TEST(PoolSettings, SizesAreRoundedToFourAndNamesCut) {
  struct { int given; unsigned int buffer; int object; } cases[] = {
      {0, 64, 32},    // below 1: each kind's default
      {1, 4, 4},      // rounded up
      {32, 32, 32},   // kept
  };
  for (auto& c : cases)
    EXPECT_EQ(std::make_pair(Ka_BufferPool(c.given, 4).GetAllocSize(), Ka_ObjBufPool("x", c.given, 8).GetObjectSize()),
              std::make_pair(c.buffer, c.object)) << c.given;
  const char* longName = "abcdefghijklmnopqrstuvwxyz0123456789";
  EXPECT_EQ(std::string(Ka_ObjBufPool(longName, 4, 8).GetName()) + "|" + Ka_ObjBufPool(nullptr, 4, 8).GetName(),
            std::string(longName, 31) + "|");
}

TEST(PoolSettings, FreshUnitsAreReadyForTheirOwners) {
  Ka_BufferPool buffers(100, 4);  // a unit size that is no multiple of 8
  Ka_BufferData* u = buffers.Alloc();
  ASSERT_NE(u, nullptr);
  EXPECT_TRUE(u->nAllocLength == 100u && u->nDataLength == 0) << "capacity set, length zero";
  EXPECT_EQ(reinterpret_cast<uintptr_t>(u->data()) % alignof(void*), 0u);
  Ka_ObjBufPool slots("p", 16, 8);
  Ka_ObjBufData* s = slots.Alloc();
  ASSERT_NE(s, nullptr);
  EXPECT_EQ(std::string(static_cast<char*>(s->object()), 16), std::string(16, '\0')) << "the object room is zeroed";
  // The counts never free, whatever pool they name.
  EXPECT_EQ((std::vector<int>{s->AddRef(&slots), s->Release(nullptr), s->Release(&slots), slots.GetHeadBlock()->used}),
            (std::vector<int>{2, 1, 0, 1}));
}
