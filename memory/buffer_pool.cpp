// Ka_BufferPool: the size-class pools behind strings, buffers and list
// arrays, the routing of a size to its pool, and the nine static pools.
#include <kalbor/memory.h>

#include <cstdlib>
#include <new>

#include "block_chain.h"
#include "platform/bits.h"

namespace {

const int kPoolCount = 9;
const int kLargestGroup = 8192;
// Units per block of the nine pools, smallest unit size (32) first.
const int kUnitsPerBlock[kPoolCount] = {256, 256, 128, 64, 64, 32, 32, 16, 16};

// The pool a size goes to: 0 for sizes up to 32 (0 and negative included),
// then one pool per power of two up to 8 for 8192.
inline int PoolIndex(int size) {
  return size <= 32 ? 0 : ka_bit_width32(static_cast<uint32_t>(size - 1)) - 5;
}
inline unsigned int PoolGroup(int index) { return 32u << index; }

void MarkFreshUnit(unsigned char* unit, uint32_t capacity) {
  Ka_BufferData* d = reinterpret_cast<Ka_BufferData*>(unit);
  d->nRefs = -1;
  d->nAllocLength = capacity;
}

// Bytes one unit occupies: its header, the capacity and the 4 extra bytes,
// padded so that the next unit's data is pointer aligned.
inline size_t UnitStride(unsigned int unitSize) {
  return ka_detail::RoundToPointer(sizeof(Ka_BufferData) + size_t(unitSize) + 4);
}

// The nine static pools, built and released by Ka_MemoryModule.
int32_t g_moduleUsers = 0;
alignas(Ka_BufferPool) unsigned char g_pools[kPoolCount][sizeof(Ka_BufferPool)];

}  // namespace

namespace ka_detail {
Ka_BufferPool& SizeClassPool(int index) {
  return *std::launder(reinterpret_cast<Ka_BufferPool*>(g_pools[index]));
}
}  // namespace ka_detail

Ka_MemoryModule::Ka_MemoryModule() {
  if (ka_interlocked_increment(&g_moduleUsers) != 1) return;
  for (int i = 0; i < kPoolCount; ++i)
    new (g_pools[i]) Ka_BufferPool(static_cast<int>(PoolGroup(i)), kUnitsPerBlock[i]);
}

Ka_MemoryModule::~Ka_MemoryModule() {
  if (ka_interlocked_decrement(&g_moduleUsers) != 0) return;
  for (int i = kPoolCount - 1; i >= 0; --i) ka_detail::SizeClassPool(i).~Ka_BufferPool();
}

// ---- one pool ------------------------------------------------------------

Ka_BufferPool::Ka_BufferPool(int unitSize, int unitsPerBlock)
    : m_unitSize(unitSize < 1 ? 64u : (static_cast<unsigned int>(unitSize) + 3u) & ~3u),
      m_unitsPerBlock(unitsPerBlock),
      m_chain(UnitStride(m_unitSize), unitsPerBlock, m_unitSize, MarkFreshUnit) {}

Ka_BufferData* Ka_BufferPool::Alloc() {
  Ka_BufferData* unit = reinterpret_cast<Ka_BufferData*>(m_chain.Take());
  if (unit != nullptr) {
    // The unit is this caller's alone from here: nobody else writes its header.
    unit->nAllocLength = m_unitSize;
    unit->nDataLength = 0;
  }
  return unit;
}

void Ka_BufferPool::Free(Ka_BufferData* unit) { m_chain.Give(reinterpret_cast<unsigned char*>(unit)); }

// ---- routing -------------------------------------------------------------

unsigned int Ka_BufferPool::GetBufferGroup(int size) {
  if (size == 0) return 0;
  if (size <= kLargestGroup) return PoolGroup(PoolIndex(size));
  return static_cast<unsigned int>((static_cast<uint64_t>(size) + 8191) / 8192 * 8192);
}

Ka_BufferData* Ka_BufferPool::AllocBuffer(int size) {
  if (size <= kLargestGroup) {
    const int index = PoolIndex(size);
    Ka_BufferData* d = ka_detail::SizeClassPool(index).Alloc();
    if (d == nullptr) return nullptr;
    d->nAllocLength = PoolGroup(index);
    d->nDataLength = size;
    return d;
  }
  const unsigned int capacity = GetBufferGroup(size);
  const uint64_t bytes = uint64_t(sizeof(Ka_BufferData)) + capacity + 4;
  if (bytes > SIZE_MAX) return nullptr;
  Ka_BufferData* d = static_cast<Ka_BufferData*>(std::malloc(static_cast<size_t>(bytes)));
  if (d == nullptr) return nullptr;
  d->nRefs = 1;
  d->nAllocLength = capacity;
  d->nDataLength = size;
  return d;
}

void Ka_BufferPool::FreeBuffer(Ka_BufferData* data) {
  if (data == nullptr) return;
  data->nDataLength = 0;
  const uint32_t size = data->nAllocLength;
  // Exactly one of the nine groups goes to its pool; anything else is a heap block.
  if (size >= 32 && size <= uint32_t(kLargestGroup) && (size & (size - 1)) == 0)
    ka_detail::SizeClassPool(PoolIndex(static_cast<int>(size))).Free(data);
  else
    std::free(data);
}
