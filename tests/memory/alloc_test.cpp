// Routing of sizes to the nine size-class pools and the heap, the block
// layout figures of those pools, the exported allocation functions and the
// byte helpers. Allocation, sharing and release from many threads at once
// are the stress test's (under ThreadSanitizer in the tsan build).
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <tuple>

#include "memory/block_chain.h"

namespace {
Ka_BufferData* Header(void* p) { return Ka_BufferData::FromData(p); }
}  // namespace

TEST(SizeClass, GroupsArePowersOfTwoFrom32To8192ThenMultiplesOf8192) {
  struct { int size; unsigned int group; } cases[] = {
      {0, 0},                  // empty asks for nothing
      {INT_MIN, 32},           // negative sizes take the smallest group
      {INT_MAX, 2147483648u},  // rounding up does not overflow
  };
  for (auto& c : cases) EXPECT_EQ(Ka_BufferPool::GetBufferGroup(c.size), c.group) << c.size;
  // Every size from 1 on: the next power of two from 32 to the largest pool,
  // then the next multiple of 8192 for heap blocks.
  for (int size = 1, group = 32; size <= 40000; ++size) {
    if (size > group) group = group < 8192 ? group * 2 : group + 8192;
    ASSERT_EQ(Ka_BufferPool::GetBufferGroup(size), unsigned(group)) << size;
  }
}

TEST(SizeClass, PoolsHaveTheDocumentedShape) {
  // Units per block of each pool, and the bytes of one block on the device's
  // 32-bit layout: a 12-byte block header, each unit a 12-byte header, its
  // capacity and 4 extra bytes. On 64-bit the block header is 24 bytes, a
  // unit header 16, and each unit is padded so the next unit's data stays
  // 8-byte aligned.
  struct { unsigned int unit; int perBlock; unsigned int deviceBytes; } pools[] = {
      {32, 256, 12300},  {64, 256, 20492},   {128, 128, 18444},
      {256, 64, 17420},  {512, 64, 33804},   {1024, 32, 33292},
      {2048, 32, 66060}, {4096, 16, 65804},  {8192, 16, 131340},
  };
  for (int i = 0; i < 9; ++i) {
    const Ka_BufferPool& pool = ka_detail::SizeClassPool(i);
    const unsigned int bytes = sizeof(void*) == 4 ? pools[i].deviceBytes
                                                  : 24 + pools[i].perBlock * ((16 + pools[i].unit + 4 + 7) / 8 * 8);
    EXPECT_EQ(std::make_tuple(pool.GetAllocSize(), pool.GetUnitsPerBlock(), pool.GetBlockBytes()),
              std::make_tuple(pools[i].unit, pools[i].perBlock, bytes));
  }
}

TEST(KaMalloc, EverySizeGetsABlockOfItsGroup) {
  for (int size : {0, -3, 1, 33, 8192, 8193}) {  // 0 and negative: a 32-byte unit
    void* p = _ka_malloc(size);  // AllocBuffer's data area
    ASSERT_NE(p, nullptr) << size;
    const Ka_BufferData* h = Header(p);
    // Its length as asked, even 0 or negative.
    EXPECT_EQ(std::make_tuple(h->nRefs, h->nAllocLength, h->nDataLength, reinterpret_cast<uintptr_t>(p) % alignof(void*) == 0),
              std::make_tuple(1, size == 0 ? 32u : Ka_BufferPool::GetBufferGroup(size), size, true)) << size;
    ka_free(p);
  }
  ka_free(nullptr);  // ignored
}

TEST(KaMalloc, FreeMarksABlockFreeWhateverItsCount) {
  // That every free gives its unit back is the stress test's count of the
  // pools' units; the used-count rules of odd frees are the model test's.
  void* shared = _ka_malloc(8);
  Header(shared)->AddRef();  // another owner still holds it
  ka_free(shared);           // marked free; as for any free at a positive count, its block goes on counting it
  EXPECT_EQ(Header(shared)->nRefs, -1);
  EXPECT_TRUE(ka_detail::SizeClassPool(0).Validate());
}

TEST(KaRealloc, GrowsKeepsTheWholeCapacityAndNeverShrinks) {
  EXPECT_EQ(_ka_realloc(nullptr, 0), nullptr);
  char* p = static_cast<char*>(_ka_realloc(nullptr, 10));  // null allocates
  ASSERT_NE(p, nullptr);
  std::memset(p, 'x', 32);  // the whole capacity
  EXPECT_EQ(_ka_realloc(p, 32), p);  // fits: unchanged
  EXPECT_EQ(_ka_realloc(p, 1), p);   // never shrinks
  EXPECT_EQ(Header(p)->nDataLength, 10);  // and the length word is left alone
  char* big = static_cast<char*>(_ka_realloc(p, 100000));  // into a heap block
  ASSERT_NE(big, nullptr);
  EXPECT_EQ(std::string(big, 32), std::string(32, 'x')) << "the old capacity came along";
  EXPECT_EQ(_ka_realloc(big, -1), nullptr);  // size below 1 frees
}

TEST(KaMemccpy, StopsBeforeTheStopByteComparedAsSignedChar) {
  const char src[] = {'a', 'b', 0, 'c', static_cast<char>(200), 'd', 'e'};
  struct { int stop; int count; int copied; } cases[] = {
      {'z', 0, 0},     // count 0 copies nothing
      {0, 7, 2},       // up to the first zero byte
      {200, 7, 7},     // 200 never matches a sign-extended byte (deliberate)
      {-56, 7, 4},     // ... while -56 does
      {'z', 5, 5},     // no stop byte: the count ends it
      {'c', -1, 3},    // negative count: no practical limit
  };
  for (auto& c : cases) {
    char dst[16];
    std::memset(dst, '#', sizeof(dst));
    ASSERT_EQ(static_cast<char*>(ka_memccpy(dst, src, c.stop, c.count)) - dst, c.copied) << c.stop << "/" << c.count;
    EXPECT_EQ(std::string(dst, c.copied + 1), std::string(src, c.copied) + '#') << "the stop byte itself is not copied";
  }
  char dst[4];
  EXPECT_EQ(ka_memccpy(nullptr, src, 0, 4), nullptr);
  EXPECT_EQ(ka_memccpy(dst, nullptr, 0, 4), dst);
}

TEST(KaMemnullcmp, ZeroForZeroBytesElseTheFirstOther) {
  const unsigned char bytes[] = {0, 0, 0, 0, 0, 0, 0, 0, 7, 0xFF};
  struct { const void* p; int count; int result; } cases[] = {
      {nullptr, 4, 0},      // null
      {bytes, 8, 0},        // all zero
      {bytes, 9, 7},        // the first non-zero byte
      {bytes + 9, 1, 255},  // read unsigned
  };
  for (auto& c : cases) EXPECT_EQ(ka_memnullcmp(c.p, c.count), c.result) << c.count;
}
