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
#include <cstdlib>

namespace ka_detail {

// Rounds n up to a multiple of the pointer's alignment.
constexpr size_t RoundToPointer(size_t n) {
  return (n + alignof(void*) - 1) / alignof(void*) * alignof(void*);
}

// A growable array of plain records on the C heap; reports failure instead
// of throwing.
template <class T>
class Ka_PodArray {
 public:
  Ka_PodArray() : m_items(nullptr), m_count(0), m_capacity(0) {}
  ~Ka_PodArray() { Clear(); }
  Ka_PodArray(const Ka_PodArray&) = delete;
  Ka_PodArray& operator=(const Ka_PodArray&) = delete;
  bool Reserve(size_t count);  // false when the heap refuses
  T* Items() const { return m_items; }
  size_t Count() const { return m_count; }
  void SetCount(size_t n) { m_count = n; }
  void Clear() {
    std::free(m_items);
    m_items = nullptr;
    m_count = 0;
    m_capacity = 0;
  }

 private:
  T* m_items;
  size_t m_count;
  size_t m_capacity;
};

template <class T>
bool Ka_PodArray<T>::Reserve(size_t count) {
  if (count <= m_capacity) return true;
  size_t grown = m_capacity < 16 ? 16 : m_capacity * 2;
  if (grown < count) grown = count;
  void* p = std::realloc(static_cast<void*>(m_items), grown * sizeof(T));
  if (p == nullptr) return false;
  m_items = static_cast<T*>(p);
  m_capacity = grown;
  return true;
}

struct Ka_BlockRecord;

// The address index: block starts in ascending order, each with its record.
// The keys sit in the array itself, so a search touches no record.
struct Ka_AddressEntry {
  uintptr_t start;
  Ka_BlockRecord* rec;
};
// The heap of blocks with room: the sequence number sits beside the record
// for the same reason.
struct Ka_HeapEntry {
  uint64_t seq;
  Ka_BlockRecord* rec;
};


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
  size_t AddressSlot(uintptr_t at) const;  // entries starting at or below at
  // The record of the block whose unit index *index starts at unit, or null.
  Ka_BlockRecord* FindOwner(const unsigned char* unit, size_t* index) const;
  void HeapPush(Ka_BlockRecord* rec);
  void HeapRemove(Ka_BlockRecord* rec);
  void HeapSiftUp(size_t pos, Ka_HeapEntry e);
  void HeapSiftDown(size_t pos, Ka_HeapEntry e);
  void HeapPlace(const Ka_HeapEntry& e, size_t pos);

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
  Ka_PodArray<Ka_AddressEntry> m_byAddress;  // every block, by address
  Ka_PodArray<Ka_HeapEntry> m_withRoom;      // blocks with room, min-heap by sequence
};

// The static size-class pool of the given index (0 for 32 bytes .. 8 for
// 8192 bytes); valid while any Ka_MemoryModule lives.
Ka_BufferPool& SizeClassPool(int index);

}  // namespace ka_detail

#endif  // KALBOR_MEMORY_BLOCK_CHAIN_H
