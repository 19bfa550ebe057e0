// The block chain engine of the pools: see block_chain.h for the rules and
// the index that keeps them cheap.
#include "block_chain.h"

#include <cassert>
#include <cstdlib>
#include <cstring>
#include <new>

#include "platform/bits.h"

namespace ka_detail {

// The index record of one block: where it is, where it stands in the chain
// and in the heap of blocks with room, and which of its units are free.
struct Ka_BlockRecord {
  Ka_BlockHeader* block;
  unsigned char* firstUnit;
  uint64_t seq;      // chain order: later blocks have larger numbers
  size_t heapPos;    // position in the heap of blocks with room, kNotInHeap if full
  // The free units, one bit each: the m_bitWords words right after the record.
  uint64_t* Bits() { return reinterpret_cast<uint64_t*>(this + 1); }
  const uint64_t* Bits() const { return reinterpret_cast<const uint64_t*>(this + 1); }
};
static_assert(sizeof(Ka_BlockRecord) % sizeof(uint64_t) == 0, "the bitmap after a record is aligned");

namespace {
const size_t kNotInHeap = ~static_cast<size_t>(0);

int32_t* CountOf(unsigned char* unit) { return reinterpret_cast<int32_t*>(unit); }
}  // namespace

// ---- Ka_Chain ----------------------------------------------------------

Ka_Chain::Ka_Chain(size_t stride, int unitsPerBlock, uint32_t capacity, MarkFreshFn markFresh)
    : shares(1),
      m_stride(stride),
      m_unitsPerBlock(unitsPerBlock),
      m_unitCount(unitsPerBlock > 0 ? static_cast<size_t>(unitsPerBlock) : 0),
      m_bitWords((m_unitCount + 63) / 64),
      m_capacity(capacity),
      m_markFresh(markFresh),
      // 0 marks a block too large to address, which no request can obtain.
      m_blockBytes(m_unitCount > (SIZE_MAX - sizeof(Ka_BlockHeader)) / stride
                       ? 0
                       : sizeof(Ka_BlockHeader) + stride * m_unitCount),
      m_head(nullptr),
      m_tail(nullptr),
      m_nextSeq(0) {}

Ka_Chain::~Ka_Chain() { ReleaseAll(); }

Ka_BlockHeader* Ka_Chain::FirstWithRoom() const {
  return m_withRoom.Count() > 0 ? m_withRoom.Items()[0].rec->block : nullptr;
}

size_t Ka_Chain::AddressSlot(uintptr_t at) const {
  const Ka_AddressEntry* items = m_byAddress.Items();
  size_t lo = 0, hi = m_byAddress.Count();
  while (lo < hi) {
    const size_t mid = (lo + hi) / 2;
    if (items[mid].start <= at) lo = mid + 1; else hi = mid;
  }
  return lo;
}

Ka_BlockRecord* Ka_Chain::NewBlock() {
  if (m_blockBytes == 0) return nullptr;
  // Room in both index arrays first, so that a refusal leaves nothing
  // behind; the heap is sized for every block, since each may come to have room.
  const size_t blocks = m_byAddress.Count() + 1;
  if (!m_byAddress.Reserve(blocks) || !m_withRoom.Reserve(blocks)) return nullptr;
  // One heap allocation holds the record and, right after it, the block
  // itself, so that the record and the block header share neighbouring cache
  // lines. The block's own bytes are exactly m_blockBytes.
  const size_t recBytes = RoundToPointer(sizeof(Ka_BlockRecord) + m_bitWords * sizeof(uint64_t));
  if (m_blockBytes > SIZE_MAX - recBytes) return nullptr;
  unsigned char* raw = static_cast<unsigned char*>(std::calloc(1, recBytes + m_blockBytes));
  if (raw == nullptr) return nullptr;
  Ka_BlockRecord* rec = reinterpret_cast<Ka_BlockRecord*>(raw);
  Ka_BlockHeader* block = reinterpret_cast<Ka_BlockHeader*>(raw + recBytes);
  rec->block = block;
  rec->firstUnit = raw + recBytes + sizeof(Ka_BlockHeader);
  rec->seq = m_nextSeq++;
  rec->heapPos = kNotInHeap;
  for (size_t i = 0; i < m_unitCount; ++i) {
    m_markFresh(rec->firstUnit + i * m_stride, m_capacity);
    rec->Bits()[i / 64] |= uint64_t(1) << (i % 64);
  }

  // Link at the end of the chain.
  block->prev = m_tail;
  block->next = nullptr;
  if (m_tail != nullptr) m_tail->next = block; else m_head = block;
  m_tail = block;

  // Insert into the address order.
  const uintptr_t start = reinterpret_cast<uintptr_t>(block);
  const size_t slot = AddressSlot(start);
  Ka_AddressEntry* items = m_byAddress.Items();
  std::memmove(items + slot + 1, items + slot, (m_byAddress.Count() - slot) * sizeof(Ka_AddressEntry));
  items[slot] = Ka_AddressEntry{start, rec};
  m_byAddress.SetCount(m_byAddress.Count() + 1);

  if (m_unitCount > 0) HeapPush(rec);
  return rec;
}

void Ka_Chain::DestroyBlock(Ka_BlockRecord* rec) {
  Ka_BlockHeader* block = rec->block;
  if (block->prev != nullptr) block->prev->next = block->next; else m_head = block->next;
  if (block->next != nullptr) block->next->prev = block->prev; else m_tail = block->prev;
  if (rec->heapPos != kNotInHeap) HeapRemove(rec);

  const size_t slot = AddressSlot(reinterpret_cast<uintptr_t>(block)) - 1;  // the block's own entry
  Ka_AddressEntry* items = m_byAddress.Items();
  std::memmove(items + slot, items + slot + 1, (m_byAddress.Count() - slot - 1) * sizeof(Ka_AddressEntry));
  m_byAddress.SetCount(m_byAddress.Count() - 1);

  std::free(rec);  // the block goes with it
}

Ka_BlockRecord* Ka_Chain::FindOwner(const unsigned char* unit, size_t* index) const {
  // The last block starting at or below the unit, if the unit is one of its
  // unit starts.
  const uintptr_t at = reinterpret_cast<uintptr_t>(unit);
  const size_t slot = AddressSlot(at);
  if (slot == 0) return nullptr;
  const uintptr_t first = m_byAddress.Items()[slot - 1].start + sizeof(Ka_BlockHeader);
  if (at < first) return nullptr;
  const uintptr_t offset = at - first;
  const uintptr_t i = offset / m_stride;
  if (i * m_stride != offset || i >= m_unitCount) return nullptr;
  *index = static_cast<size_t>(i);
  return m_byAddress.Items()[slot - 1].rec;
}

unsigned char* Ka_Chain::Take() {
  Ka_BlockRecord* rec = m_withRoom.Count() > 0 ? m_withRoom.Items()[0].rec : NewBlock();
  if (rec == nullptr || m_unitCount == 0) return nullptr;
  size_t word = 0;
  while (rec->Bits()[word] == 0) ++word;  // a block with room has a free unit
  const size_t index = word * 64 + ka_lowest_bit64(rec->Bits()[word]);
  rec->Bits()[word] &= rec->Bits()[word] - 1;
  if (++rec->block->used >= m_unitsPerBlock) HeapRemove(rec);
  unsigned char* unit = rec->firstUnit + index * m_stride;
  ka_interlocked_write(CountOf(unit), 1);
  return unit;
}

void Ka_Chain::Give(unsigned char* unit) {
  size_t index;
  Ka_BlockRecord* rec = FindOwner(unit, &index);
  if (rec == nullptr) return;  // not a unit of this chain: ignored
  const int32_t old = ka_interlocked_read(CountOf(unit));
  ka_interlocked_write(CountOf(unit), -1);
  rec->Bits()[index / 64] |= uint64_t(1) << (index % 64);
  if (old != 0) return;  // a second free, or a free at a positive count (deliberate)
  Ka_BlockHeader* block = rec->block;
  if (block->used-- == m_unitsPerBlock) HeapPush(rec);
  if (block->used == 0 && block != m_head) DestroyBlock(rec);
}

void Ka_Chain::ReleaseAll() {
  const Ka_AddressEntry* items = m_byAddress.Items();
  for (size_t i = 0; i < m_byAddress.Count(); ++i) {
    std::free(items[i].rec);  // the block goes with it
  }
  m_byAddress.Clear();
  m_withRoom.Clear();
  m_head = nullptr;
  m_tail = nullptr;
}

// ---- the heap of blocks with room, ordered by sequence number ------------

void Ka_Chain::HeapPlace(const Ka_HeapEntry& e, size_t pos) {
  m_withRoom.Items()[pos] = e;
  e.rec->heapPos = pos;
}

void Ka_Chain::HeapSiftUp(size_t pos, Ka_HeapEntry e) {
  const Ka_HeapEntry* h = m_withRoom.Items();
  while (pos > 0) {
    const size_t parent = (pos - 1) / 2;
    if (h[parent].seq <= e.seq) break;
    HeapPlace(h[parent], pos);
    pos = parent;
  }
  HeapPlace(e, pos);
}

void Ka_Chain::HeapSiftDown(size_t pos, Ka_HeapEntry e) {
  const Ka_HeapEntry* h = m_withRoom.Items();
  const size_t n = m_withRoom.Count();
  for (;;) {
    size_t child = 2 * pos + 1;
    if (child >= n) break;
    if (child + 1 < n && h[child + 1].seq < h[child].seq) ++child;
    if (e.seq <= h[child].seq) break;
    HeapPlace(h[child], pos);
    pos = child;
  }
  HeapPlace(e, pos);
}

void Ka_Chain::HeapPush(Ka_BlockRecord* rec) {
  // NewBlock reserved a heap place for every block, so this cannot fail.
  const size_t pos = m_withRoom.Count();
  m_withRoom.SetCount(pos + 1);
  HeapSiftUp(pos, Ka_HeapEntry{rec->seq, rec});
}

void Ka_Chain::HeapRemove(Ka_BlockRecord* rec) {
  const size_t pos = rec->heapPos;
  const size_t last = m_withRoom.Count() - 1;
  rec->heapPos = kNotInHeap;
  const Ka_HeapEntry moved = m_withRoom.Items()[last];
  m_withRoom.SetCount(last);
  if (pos == last) return;
  // The last entry fills the hole and moves whichever way its number says.
  if (pos > 0 && m_withRoom.Items()[(pos - 1) / 2].seq > moved.seq) HeapSiftUp(pos, moved);
  else HeapSiftDown(pos, moved);
}

// ---- the validating walker ----------------------------------------------

int Ka_Chain::Validate() const {
  // Chain links.
  size_t blocks = 0;
  const Ka_BlockHeader* prev = nullptr;
  for (const Ka_BlockHeader* b = m_head; b != nullptr; b = b->next) {
    if (b->prev != prev) return 0;
    prev = b;
    if (++blocks > m_byAddress.Count()) return 0;
  }
  if (prev != m_tail || blocks != m_byAddress.Count()) return 0;

  // Chain order is sequence order.
  uint64_t lastSeq = 0;
  for (const Ka_BlockHeader* b = m_head; b != nullptr; b = b->next) {
    const size_t slot = AddressSlot(reinterpret_cast<uintptr_t>(b));
    if (slot == 0 || m_byAddress.Items()[slot - 1].rec->block != b) return 0;
    const uint64_t seq = m_byAddress.Items()[slot - 1].rec->seq;
    if (b != m_head && seq <= lastSeq) return 0;
    lastSeq = seq;
  }

  const Ka_AddressEntry* items = m_byAddress.Items();
  size_t withRoom = 0;
  for (size_t i = 0; i < m_byAddress.Count(); ++i) {
    const Ka_BlockRecord* rec = items[i].rec;
    if (items[i].start != reinterpret_cast<uintptr_t>(rec->block)) return 0;
    if (i > 0 && !(items[i - 1].start < items[i].start)) return 0;
    int32_t taken = 0;
    for (size_t u = 0; u < m_unitCount; ++u) {
      const int32_t count = *reinterpret_cast<const int32_t*>(rec->firstUnit + u * m_stride);
      const bool freeBit = (rec->Bits()[u / 64] >> (u % 64)) & 1;
      if (freeBit != (count < 0)) return 0;
      if (count >= 0) ++taken;
    }
    if (rec->block->used < taken) return 0;
    const bool hasRoom = rec->block->used < m_unitsPerBlock;
    if (hasRoom != (rec->heapPos != kNotInHeap)) return 0;
    if (hasRoom) {
      ++withRoom;
      const Ka_HeapEntry* h = m_withRoom.Items();
      if (rec->heapPos >= m_withRoom.Count() || h[rec->heapPos].rec != rec || h[rec->heapPos].seq != rec->seq)
        return 0;
      if (rec->heapPos > 0 && h[(rec->heapPos - 1) / 2].seq > rec->seq) return 0;
    }
  }
  return withRoom == m_withRoom.Count() ? 1 : 0;
}

// ---- Ka_ChainRef: the pools' shared handle -------------------------------

namespace {
// Holds a chain's lock for a scope.
class ChainLock {
 public:
  explicit ChainLock(Ka_Chain* c) : m_chain(c) { m_chain->lock.Lock(); }
  ~ChainLock() { m_chain->lock.Unlock(); }
  ChainLock(const ChainLock&) = delete;
  ChainLock& operator=(const ChainLock&) = delete;

 private:
  Ka_Chain* m_chain;
};

void DropShare(Ka_Chain* chain) {
  if (chain != nullptr && ka_interlocked_decrement(&chain->shares) == 0) delete chain;
}

// Under the validating build, every change to a chain is followed by a full
// walk of its invariants.
inline void CheckChain(const Ka_Chain& chain) {
#if defined(KALBOR_VALIDATE)
  assert(chain.Validate());
#else
  (void)chain;
#endif
}
}  // namespace

Ka_ChainRef::Ka_ChainRef(size_t stride, int unitsPerBlock, uint32_t capacity, MarkFreshFn markFresh)
    : m_chain(new (std::nothrow) Ka_Chain(stride, unitsPerBlock, capacity, markFresh)) {}

Ka_ChainRef::Ka_ChainRef(const Ka_ChainRef& other) : m_chain(other.m_chain) {
  if (m_chain != nullptr) ka_interlocked_increment(&m_chain->shares);
}

Ka_ChainRef& Ka_ChainRef::operator=(const Ka_ChainRef& other) {
  if (m_chain == other.m_chain) return *this;
  if (other.m_chain != nullptr) ka_interlocked_increment(&other.m_chain->shares);
  DropShare(m_chain);
  m_chain = other.m_chain;
  return *this;
}

Ka_ChainRef::~Ka_ChainRef() { DropShare(m_chain); }

unsigned char* Ka_ChainRef::Take() {
  if (m_chain == nullptr) return nullptr;
  ChainLock hold(m_chain);
  unsigned char* unit = m_chain->Take();
  CheckChain(*m_chain);
  return unit;
}

void Ka_ChainRef::Give(unsigned char* unit) {
  if (m_chain == nullptr || unit == nullptr) return;
  ChainLock hold(m_chain);
  m_chain->Give(unit);
  CheckChain(*m_chain);
}

void Ka_ChainRef::ReleaseAll() {
  if (m_chain == nullptr) return;
  ChainLock hold(m_chain);
  m_chain->ReleaseAll();
}

void Ka_ChainRef::ReleaseAllUnlocked() {
  if (m_chain != nullptr) m_chain->ReleaseAll();
}

Ka_BlockHeader* Ka_ChainRef::Head() const { return m_chain != nullptr ? m_chain->Head() : nullptr; }
Ka_BlockHeader* Ka_ChainRef::Tail() const { return m_chain != nullptr ? m_chain->Tail() : nullptr; }
Ka_BlockHeader* Ka_ChainRef::FirstWithRoom() const {
  return m_chain != nullptr ? m_chain->FirstWithRoom() : nullptr;
}
unsigned int Ka_ChainRef::BlockBytes() const {
  return m_chain != nullptr ? static_cast<unsigned int>(m_chain->BlockBytes()) : 0;
}
int Ka_ChainRef::BlockCount() const {
  if (m_chain == nullptr) return 0;
  ChainLock hold(m_chain);
  return m_chain->BlockCount();
}
int Ka_ChainRef::UsedCount() const {
  if (m_chain == nullptr) return 0;
  ChainLock hold(m_chain);
  int used = 0;
  for (const Ka_BlockHeader* b = m_chain->Head(); b != nullptr; b = b->next) used += b->used;
  return used;
}
int Ka_ChainRef::Validate() const {
  if (m_chain == nullptr) return 1;
  ChainLock hold(m_chain);
  return m_chain->Validate();
}

}  // namespace ka_detail
