// The pools' index must hand out exactly the units the plain chain walk
// would: a literal model of that walk runs beside each pool kind through a
// long random mix of allocations, normal frees, second frees and frees at a
// positive count, and every answer is compared. After every step the pool
// must pass its own walk of the chain links and index (Validate), and a
// reused unit must still hold the bytes its last owner left in it.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <iterator>
#include <map>
#include <random>
#include <vector>

#include "memory/pool_kinds.h"

namespace {

// The chain as the walk sees it: blocks in chain order, each with its used
// count and the count word of every unit.
class ChainModel {
 public:
  explicit ChainModel(int perBlock) : m_perBlock(perBlock) {}

  // (block position, unit index) of the unit Alloc takes.
  std::pair<int, int> Alloc() {
    size_t b = 0;
    while (b < m_blocks.size() && m_blocks[b].used >= m_perBlock) ++b;
    if (b == m_blocks.size()) m_blocks.push_back(Block{0, std::vector<int>(m_perBlock, -1)});
    std::vector<int>& counts = m_blocks[b].counts;
    int u = 0;
    while (counts[u] >= 0) ++u;
    counts[u] = 1;
    ++m_blocks[b].used;
    return {static_cast<int>(b), u};
  }

  void Free(int block, int unit) {
    Block& b = m_blocks[block];
    const int old = b.counts[unit];
    b.counts[unit] = -1;
    if (old == 0 && --b.used == 0 && block != 0) m_blocks.erase(m_blocks.begin() + block);
  }

  void SetCount(int block, int unit, int count) { m_blocks[block].counts[unit] = count; }
  int Used(int block) const { return m_blocks[block].used; }
  int Blocks() const { return static_cast<int>(m_blocks.size()); }

 private:
  struct Block {
    int used;
    std::vector<int> counts;
  };
  int m_perBlock;
  std::vector<Block> m_blocks;
};

}  // namespace

template <class Kind>
class PoolMatchesChainWalk : public ::testing::Test {};
typedef ::testing::Types<BufferPoolKind, ObjPoolKind> PoolKinds;
TYPED_TEST_SUITE(PoolMatchesChainWalk, PoolKinds);

TYPED_TEST(PoolMatchesChainWalk, EveryAnswerAgreesThroughARandomMix) {
  for (int perBlock : {1, 3, 8, 64, 70}) {  // one unit, odd, a word, past a word
    TypeParam k(perBlock);
    ChainModel model(perBlock);
    ASSERT_EQ(k.Head(), nullptr) << "no block before the first Alloc";
    const size_t bytes = k.pool.GetBlockBytes();
    const size_t stride = (bytes - sizeof(typename TypeParam::Block)) / static_cast<size_t>(perBlock);
    std::vector<void*> live;   // units the test holds
    std::vector<void*> freed;  // units the test gave back, maybe reused since
    std::map<void*, int> mark;  // the step that last took each unit, as written into it
    std::mt19937 rng(12345u + static_cast<unsigned>(perBlock));

    // Where a unit stands in the chain now (blocks move as others go).
    auto locate = [&](void* u) {
      const int block = BlockOrdinal(k, u, bytes);
      typename TypeParam::Block* b = k.Head();
      for (int i = 0; i < block; ++i) b = b->next;
      const size_t offset = static_cast<unsigned char*>(u) - reinterpret_cast<unsigned char*>(b + 1);
      return std::make_pair(block, static_cast<int>(offset / stride));
    };
    auto freeBoth = [&](void* u, int count) {
      const std::pair<int, int> at = locate(u);
      TypeParam::Count(u) = count;
      model.SetCount(at.first, at.second, count);
      k.Free(u);
      model.Free(at.first, at.second);
    };

    for (int step = 0; step < 4000; ++step) {
      const unsigned roll = rng() % 100;
      // Grow towards a few blocks' worth, then churn around it.
      if (live.empty() || (roll < 55 && live.size() < size_t(perBlock) * 5)) {
        void* u = k.Alloc();
        ASSERT_NE(u, nullptr);
        ASSERT_EQ(locate(u), model.Alloc()) << "step " << step << ", " << perBlock << " per block";
        live.push_back(u);
        for (size_t i = 0; i < freed.size(); ++i)
          if (freed[i] == u) freed.erase(freed.begin() + static_cast<long>(i--));
        // Each owner leaves its step number behind; a reused unit keeps it.
        ASSERT_TRUE(mark.count(u) == 0 || std::memcmp(TypeParam::Room(u), &mark[u], sizeof(int)) == 0) << step;
        std::memcpy(TypeParam::Room(u), &(mark[u] = step), sizeof(int));
      } else if (roll < 95 || freed.empty()) {
        const size_t pick = rng() % live.size();
        void* u = live[pick];
        freeBoth(u, roll < 90 ? 0 : 2);  // the normal free, or one at a positive count
        live.erase(live.begin() + static_cast<long>(pick));
        // A block that went away took its units, and what they held, with it.
        if (BlockOrdinal(k, u, bytes) >= 0) freed.push_back(u);
        for (auto it = mark.begin(); it != mark.end() && BlockOrdinal(k, u, bytes) < 0;)
          it = BlockOrdinal(k, it->first, bytes) < 0 ? mark.erase(it) : std::next(it);
      } else {
        const size_t pick = rng() % freed.size();
        void* u = freed[pick];
        if (BlockOrdinal(k, u, bytes) < 0 || TypeParam::Count(u) != -1) {  // gone, or reused
          freed.erase(freed.begin() + static_cast<long>(pick));
          continue;
        }
        freeBoth(u, -1);  // a second free
      }
      ASSERT_EQ(k.Blocks(), model.Blocks()) << "step " << step;
      ASSERT_EQ(k.Head()->used, model.Used(0)) << "step " << step;
      ASSERT_TRUE(k.Valid()) << "step " << step;
    }
  }
}
