// Routing of sizes to the nine size-class pools and the heap, and the block
// layout figures of those pools.
#include <gtest/gtest.h>

#include <climits>

#include "memory/block_chain.h"

TEST(SizeClass, GroupOfEverySize) {
  struct { int size; unsigned int group; } cases[] = {
      {0, 0},                  // empty asks for nothing
      {-5, 32},                // negative sizes take the smallest group
      {INT_MIN, 32},           // even the most negative
      {1, 32},       {32, 32},     {33, 64},     {64, 64},     {65, 128},
      {128, 128},    {129, 256},   {256, 256},   {257, 512},   {512, 512},
      {513, 1024},   {1024, 1024}, {1025, 2048}, {2048, 2048}, {2049, 4096},
      {4096, 4096},  {4097, 8192}, {8192, 8192},  // the largest pool
      {8193, 16384},           // heap blocks: multiples of 8192
      {16384, 16384}, {16385, 24576},
      {INT_MAX, 2147483648u},  // rounding up does not overflow
  };
  for (auto& c : cases) EXPECT_EQ(Ka_BufferPool::GetBufferGroup(c.size), c.group) << c.size;
}

TEST(SizeClass, PoolsHaveTheDocumentedShape) {
  // Units per block of each pool, and the bytes of one block on the device's
  // 32-bit layout: a 12-byte block header, each unit a 12-byte header, its
  // capacity and 4 extra bytes.
  struct { unsigned int unit; int perBlock; unsigned int deviceBytes; } pools[] = {
      {32, 256, 12300},  {64, 256, 20492},   {128, 128, 18444},
      {256, 64, 17420},  {512, 64, 33804},   {1024, 32, 33292},
      {2048, 32, 66060}, {4096, 16, 65804},  {8192, 16, 131340},
  };
  for (int i = 0; i < 9; ++i) {
    Ka_BufferPool& pool = ka_detail::SizeClassPool(i);
    EXPECT_EQ(pool.GetAllocSize(), pools[i].unit);
    EXPECT_EQ(pool.GetUnitsPerBlock(), pools[i].perBlock);
    // On 64-bit the block header is 24 bytes, a unit header 16, and each unit
    // is padded so the next unit's data stays 8-byte aligned.
    const unsigned int expected =
        sizeof(void*) == 4 ? pools[i].deviceBytes
                           : 24 + pools[i].perBlock * ((16 + pools[i].unit + 4 + 7) / 8 * 8);
    EXPECT_EQ(pool.GetBlockBytes(), expected) << pools[i].unit;
  }
  EXPECT_EQ(sizeof(Ka_BufferData), sizeof(void*) == 4 ? 12u : 16u);
  EXPECT_EQ(sizeof(Ka_BufferPool::Ka_Plexus), sizeof(void*) == 4 ? 12u : 24u);
}
