// Ka_ObjBufPool: fixed-size reference-counted object slots for list items and
// string objects.
#include <kalbor/memory.h>

#include <cstring>

#include "block_chain.h"

namespace {

void MarkFreshSlot(unsigned char* slot, uint32_t) { reinterpret_cast<Ka_ObjBufData*>(slot)->refCount = -1; }

int RoundObjectSize(int objectSize) {
  return objectSize < 1 ? 32 : static_cast<int>((static_cast<unsigned int>(objectSize) + 3u) & ~3u);
}

// Bytes one slot occupies: its header and the object room, padded so that
// the next slot's object is pointer aligned.
inline size_t SlotStride(int objectSize) {
  return ka_detail::RoundToPointer(sizeof(Ka_ObjBufData) + static_cast<size_t>(objectSize));
}

}  // namespace

Ka_ObjBufPool::Ka_ObjBufPool(const char* name, int objectSize, int countPerBlock)
    : m_objectSize(RoundObjectSize(objectSize)),
      m_countPerBlock(countPerBlock),
      m_chain(SlotStride(m_objectSize), countPerBlock, 0, MarkFreshSlot) {
  size_t n = 0;
  if (name != nullptr)
    while (n < sizeof(m_name) - 1 && name[n] != 0) ++n;
  if (n > 0) std::memcpy(m_name, name, n);
  m_name[n] = 0;
}

Ka_ObjBufData* Ka_ObjBufPool::Alloc() { return reinterpret_cast<Ka_ObjBufData*>(m_chain.Take()); }

void Ka_ObjBufPool::Free(Ka_ObjBufData* slot) { m_chain.Give(reinterpret_cast<unsigned char*>(slot)); }
