// The pools' index must hand out exactly the units the plain chain walk
// would: a literal model of that walk runs beside each pool kind through a
// long random mix of allocations, normal frees, second frees and frees at a
// positive count, and every answer is compared. After every step the pool
// must pass its own walk of the chain links and index (Validate), and a
// reused unit must still hold the bytes its last owner left in it.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "memory/pool_kinds.h"

namespace {
// A block as the walk sees it: its used count, and the count word and the
// last owner's mark (-1: none yet) of every unit.
struct ModelBlock {
  int used;
  std::vector<int> counts, marks;
};
}  // namespace

template <class Kind>
class PoolMatchesChainWalk : public ::testing::Test {};
typedef ::testing::Types<BufferPoolKind, ObjPoolKind> PoolKinds;
TYPED_TEST_SUITE(PoolMatchesChainWalk, PoolKinds);

TYPED_TEST(PoolMatchesChainWalk, EveryAnswerAgreesThroughARandomMix) {
  typedef typename TypeParam::Unit Unit;
  for (int perBlock : {1, 3, 8, 64, 70}) {  // one unit, odd, a word, past a word
    TypeParam k(perBlock);
    std::vector<ModelBlock> model;  // in chain order
    ASSERT_EQ(k.GetHeadBlock(), nullptr) << "no block before the first Alloc";
    const size_t stride = (k.GetBlockBytes() - sizeof(ka_detail::Ka_BlockHeader)) / size_t(perBlock);
    std::vector<Unit*> live;   // units the test holds
    std::vector<Unit*> freed;  // units the test gave back, maybe gone or reused since
    std::mt19937 rng(12345u + static_cast<unsigned>(perBlock));

    // Where a unit stands in the chain now (blocks move as others go): its
    // block's position, -1 when that block is gone, and its index.
    auto locate = [&](Unit* u) {
      int block = 0;
      for (ka_detail::Ka_BlockHeader* b = k.GetHeadBlock(); b != nullptr; b = b->next, ++block) {
        const uintptr_t offset = reinterpret_cast<uintptr_t>(u) - reinterpret_cast<uintptr_t>(b + 1);
        if (offset < perBlock * stride) return std::make_pair(block, static_cast<int>(offset / stride));
      }
      return std::make_pair(-1, 0);
    };
    // The walk: the lowest free unit of the earliest block with room.
    auto modelAlloc = [&] {
      size_t b = 0;
      while (b < model.size() && model[b].used == perBlock) ++b;
      const std::vector<int> none(perBlock, -1);
      if (b == model.size()) model.push_back(ModelBlock{0, none, none});
      int u = 0;
      while (model[b].counts[u] >= 0) ++u;
      model[b].counts[u] = 1;
      ++model[b].used;
      return std::make_pair(static_cast<int>(b), u);
    };
    // Only a free at count 0 lowers the used count; an empty block but the head goes.
    auto freeBoth = [&](Unit* u, int count) {
      const std::pair<int, int> at = locate(u);
      TypeParam::Count(u) = count;
      k.Free(u);
      model[at.first].counts[at.second] = -1;
      if (count == 0 && --model[at.first].used == 0 && at.first != 0) model.erase(model.begin() + at.first);
    };

    for (int step = 0; step < 4000; ++step) {
      const unsigned roll = rng() % 100;
      // Grow towards a few blocks' worth, then churn around it.
      if (live.empty() || (roll < 55 && live.size() < size_t(perBlock) * 5)) {
        Unit* u = k.Alloc();
        ASSERT_NE(u, nullptr);
        const std::pair<int, int> at = modelAlloc();
        ASSERT_EQ(locate(u), at) << "step " << step << ", " << perBlock << " per block";
        live.push_back(u);
        // Each owner leaves its step number behind; a reused unit keeps it.
        int& mark = model[at.first].marks[at.second];
        ASSERT_TRUE(mark < 0 || std::memcmp(TypeParam::Room(u), &mark, sizeof(int)) == 0) << step;
        std::memcpy(TypeParam::Room(u), &(mark = step), sizeof(int));
      } else if (roll < 95 || freed.empty()) {
        const size_t pick = rng() % live.size();
        freed.push_back(live[pick]);
        live.erase(live.begin() + static_cast<long>(pick));
        freeBoth(freed.back(), roll < 90 ? 0 : 2);  // the normal free, or one at a positive count
      } else {
        const size_t pick = rng() % freed.size();
        Unit* u = freed[pick];
        freed.erase(freed.begin() + static_cast<long>(pick));
        if (locate(u).first >= 0 && TypeParam::Count(u) == -1) freeBoth(u, -1);  // a second free, if not gone or reused
      }
      std::vector<int> used, modelUsed;  // each block's used count, in chain order
      for (ka_detail::Ka_BlockHeader* b = k.GetHeadBlock(); b != nullptr; b = b->next) used.push_back(b->used);
      for (const ModelBlock& b : model) modelUsed.push_back(b.used);
      ASSERT_EQ(std::make_pair(used, k.Validate()), std::make_pair(modelUsed, 1)) << "step " << step;
    }
  }
}
