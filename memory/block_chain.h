// The block chain behind both kinds of pool (internal to the memory pools).
//
// A chain is the device's list of heap blocks, each a Ka_BlockHeader followed
// by equal units whose first 32-bit word is the unit's reference count (-1
// when free). The observable rules are the device's: Take hands out the
// lowest free unit of the earliest block (in chain order) whose used count is
// below the units per block, adding a block at the end when none has room;
// Give marks a unit free, lowers the used count only when the unit's count
// was exactly 0, and gives an emptied block other than the head back to the
// heap.
//
// The device found those units by walking the chain; here an index beside
// the chain finds them at a cost that stays flat as the pool grows:
//  - each block has a record with a bitmap of its free units, so the lowest
//    free unit is a find-first-set over a few words;
//  - blocks get increasing sequence numbers as they are appended, so chain
//    order is sequence order, and a min-heap of the blocks with room gives
//    the earliest one;
//  - the records are kept sorted by block address, so the block that owns a
//    freed unit is a binary search away.
// Invariants (checked by Validate): bit i of a block is set exactly when unit
// i's count is negative; a block is in the heap exactly when its used count
// is below the units per block; used >= number of units handed out.
#ifndef KALBOR_MEMORY_BLOCK_CHAIN_H
#define KALBOR_MEMORY_BLOCK_CHAIN_H

#include <kalbor/memory.h>
#include <kalbor/util.h>

#include <cstddef>
#include <cstdint>

namespace ka_detail {

// Rounds n up to a multiple of the pointer's alignment.
constexpr size_t RoundToPointer(size_t n) {
  return (n + alignof(void*) - 1) / alignof(void*) * alignof(void*);
}

// A growable array of pointers on the C heap; reports failure instead of
// throwing.
class Ka_PtrArray {
 public:
  Ka_PtrArray() : m_items(nullptr), m_count(0), m_capacity(0) {}
  ~Ka_PtrArray();
  Ka_PtrArray(const Ka_PtrArray&) = delete;
  Ka_PtrArray& operator=(const Ka_PtrArray&) = delete;
  bool Reserve(size_t count);  // false when the heap refuses
  void** Items() const { return m_items; }
  size_t Count() const { return m_count; }
  void SetCount(size_t n) { m_count = n; }
  void Clear();  // frees the storage

 private:
  void** m_items;
  size_t m_count;
  size_t m_capacity;
};

struct Ka_BlockRecord;

class Ka_Chain {
 public:
  // Marks a unit of a fresh, zero-filled block as free.
  typedef void (*MarkFreshFn)(unsigned char* unit, uint32_t capacity);

  // stride: bytes from one unit to the next; capacity: passed to markFresh.
  Ka_Chain(size_t stride, int unitsPerBlock, uint32_t capacity, MarkFreshFn markFresh);
  ~Ka_Chain();
  Ka_Chain(const Ka_Chain&) = delete;
  Ka_Chain& operator=(const Ka_Chain&) = delete;

  // The callers below hold the lock.
  // The unit taken, its count set to 1; null when no unit can be had.
  unsigned char* Take();
  // Frees a unit by the rules above; a pointer that is not the start of one
  // of this chain's units is ignored.
  void Give(unsigned char* unit);
  // Releases every block and empties the chain.
  void ReleaseAll();

  Ka_BlockHeader* Head() const { return m_head; }
  Ka_BlockHeader* Tail() const { return m_tail; }
  Ka_BlockHeader* FirstWithRoom() const;
  int BlockCount() const { return static_cast<int>(m_byAddress.Count()); }
  size_t BlockBytes() const { return m_blockBytes; }
  int Validate() const;  // 1 when every invariant holds

  Ka_ThreadMutex lock;  // guards everything above
  int32_t shares;       // Ka_ChainRef handles sharing this chain (interlocked)

 private:
  Ka_BlockRecord* NewBlock();
  void DestroyBlock(Ka_BlockRecord* rec);
  Ka_BlockRecord* FindOwner(const unsigned char* unit) const;
  void HeapPush(Ka_BlockRecord* rec);
  void HeapRemove(Ka_BlockRecord* rec);
  void HeapSiftUp(size_t pos);
  void HeapSiftDown(size_t pos);
  void HeapPlace(Ka_BlockRecord* rec, size_t pos);

  size_t m_stride;
  int m_unitsPerBlock;
  size_t m_unitCount;  // units in a block: unitsPerBlock, 0 when below 1
  size_t m_bitWords;   // 64-bit words of a block's free bitmap
  uint32_t m_capacity;
  MarkFreshFn m_markFresh;
  size_t m_blockBytes;

  Ka_BlockHeader* m_head;
  Ka_BlockHeader* m_tail;
  uint64_t m_nextSeq;
  Ka_PtrArray m_byAddress;  // Ka_BlockRecord*, sorted by block address
  Ka_PtrArray m_withRoom;   // Ka_BlockRecord*, min-heap by sequence number
};

// The static size-class pool of the given index (0 for 32 bytes .. 8 for
// 8192 bytes); valid while any Ka_MemoryModule lives.
Ka_BufferPool& SizeClassPool(int index);

}  // namespace ka_detail

#endif  // KALBOR_MEMORY_BLOCK_CHAIN_H
