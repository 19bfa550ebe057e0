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
  uint64_t bits[1];  // free units, one bit each; really m_bitWords words
};

namespace {
const size_t kNotInHeap = ~static_cast<size_t>(0);

int32_t* CountOf(unsigned char* unit) { return reinterpret_cast<int32_t*>(unit); }
}  // namespace

// ---- Ka_PtrArray -------------------------------------------------------

Ka_PtrArray::~Ka_PtrArray() { Clear(); }

bool Ka_PtrArray::Reserve(size_t count) {
  if (count <= m_capacity) return true;
  size_t grown = m_capacity < 16 ? 16 : m_capacity * 2;
  if (grown < count) grown = count;
  void* p = std::realloc(m_items, grown * sizeof(void*));
  if (p == nullptr) return false;
  m_items = static_cast<void**>(p);
  m_capacity = grown;
  return true;
}

void Ka_PtrArray::Clear() {
  std::free(m_items);
  m_items = nullptr;
  m_count = 0;
  m_capacity = 0;
}

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
  if (m_withRoom.Count() == 0) return nullptr;
  return static_cast<Ka_BlockRecord*>(m_withRoom.Items()[0])->block;
}

Ka_BlockRecord* Ka_Chain::NewBlock() {
  if (m_blockBytes == 0) return nullptr;
  // Room in both index arrays first, so that a refusal leaves nothing behind.
  // The heap is sized for every block, since each may come to have room.
  const size_t blocks = m_byAddress.Count() + 1;
  if (!m_byAddress.Reserve(blocks) || !m_withRoom.Reserve(blocks)) return nullptr;
  size_t recBytes = sizeof(Ka_BlockRecord) + (m_bitWords > 0 ? m_bitWords - 1 : 0) * sizeof(uint64_t);
  Ka_BlockRecord* rec = static_cast<Ka_BlockRecord*>(std::malloc(recBytes));
  if (rec == nullptr) return nullptr;
  unsigned char* raw = static_cast<unsigned char*>(std::calloc(1, m_blockBytes));
  if (raw == nullptr) {
    std::free(rec);
    return nullptr;
  }
  Ka_BlockHeader* block = reinterpret_cast<Ka_BlockHeader*>(raw);
  rec->block = block;
  rec->firstUnit = raw + sizeof(Ka_BlockHeader);
  rec->seq = m_nextSeq++;
  rec->heapPos = kNotInHeap;
  std::memset(rec->bits, 0, (m_bitWords > 0 ? m_bitWords : 1) * sizeof(uint64_t));
  for (size_t i = 0; i < m_unitCount; ++i) {
    m_markFresh(rec->firstUnit + i * m_stride, m_capacity);
    rec->bits[i / 64] |= uint64_t(1) << (i % 64);
  }

  // Link at the end of the chain.
  block->prev = m_tail;
  block->next = nullptr;
  if (m_tail != nullptr) m_tail->next = block; else m_head = block;
  m_tail = block;

  // Insert into the address order.
  void** items = m_byAddress.Items();
  size_t lo = 0, hi = m_byAddress.Count();
  while (lo < hi) {
    size_t mid = (lo + hi) / 2;
    if (static_cast<Ka_BlockRecord*>(items[mid])->block < block) lo = mid + 1; else hi = mid;
  }
  std::memmove(items + lo + 1, items + lo, (m_byAddress.Count() - lo) * sizeof(void*));
  items[lo] = rec;
  m_byAddress.SetCount(m_byAddress.Count() + 1);

  if (m_unitCount > 0) HeapPush(rec);
  return rec;
}

void Ka_Chain::DestroyBlock(Ka_BlockRecord* rec) {
  Ka_BlockHeader* block = rec->block;
  if (block->prev != nullptr) block->prev->next = block->next; else m_head = block->next;
  if (block->next != nullptr) block->next->prev = block->prev; else m_tail = block->prev;
  if (rec->heapPos != kNotInHeap) HeapRemove(rec);

  void** items = m_byAddress.Items();
  size_t lo = 0, hi = m_byAddress.Count();
  while (lo < hi) {
    size_t mid = (lo + hi) / 2;
    if (static_cast<Ka_BlockRecord*>(items[mid])->block < block) lo = mid + 1; else hi = mid;
  }
  std::memmove(items + lo, items + lo + 1, (m_byAddress.Count() - lo - 1) * sizeof(void*));
  m_byAddress.SetCount(m_byAddress.Count() - 1);

  std::free(block);
  std::free(rec);
}

Ka_BlockRecord* Ka_Chain::FindOwner(const unsigned char* unit) const {
  // The last block starting at or below the unit, if the unit is one of its
  // unit starts.
  void** items = m_byAddress.Items();
  size_t lo = 0, hi = m_byAddress.Count();
  const uintptr_t at = reinterpret_cast<uintptr_t>(unit);
  while (lo < hi) {
    size_t mid = (lo + hi) / 2;
    if (reinterpret_cast<uintptr_t>(static_cast<Ka_BlockRecord*>(items[mid])->block) <= at) lo = mid + 1;
    else hi = mid;
  }
  if (lo == 0) return nullptr;
  Ka_BlockRecord* rec = static_cast<Ka_BlockRecord*>(items[lo - 1]);
  const uintptr_t first = reinterpret_cast<uintptr_t>(rec->firstUnit);
  if (at < first) return nullptr;
  const uintptr_t offset = at - first;
  if (offset % m_stride != 0 || offset / m_stride >= m_unitCount) return nullptr;
  return rec;
}

unsigned char* Ka_Chain::Take() {
  Ka_BlockRecord* rec = m_withRoom.Count() > 0 ? static_cast<Ka_BlockRecord*>(m_withRoom.Items()[0])
                                               : NewBlock();
  if (rec == nullptr || m_unitCount == 0) return nullptr;
  size_t word = 0;
  while (rec->bits[word] == 0) ++word;  // a block with room has a free unit
  const size_t index = word * 64 + ka_lowest_bit64(rec->bits[word]);
  rec->bits[word] &= rec->bits[word] - 1;
  if (++rec->block->used >= m_unitsPerBlock) HeapRemove(rec);
  unsigned char* unit = rec->firstUnit + index * m_stride;
  ka_interlocked_write(CountOf(unit), 1);
  return unit;
}

void Ka_Chain::Give(unsigned char* unit) {
  Ka_BlockRecord* rec = FindOwner(unit);
  if (rec == nullptr) return;  // not a unit of this chain: ignored
  const size_t index = static_cast<size_t>(unit - rec->firstUnit) / m_stride;
  const int32_t old = ka_interlocked_read(CountOf(unit));
  ka_interlocked_write(CountOf(unit), -1);
  rec->bits[index / 64] |= uint64_t(1) << (index % 64);
  if (old != 0) return;  // a second free, or a free at a positive count (deliberate)
  Ka_BlockHeader* block = rec->block;
  if (block->used-- == m_unitsPerBlock) HeapPush(rec);
  if (block->used == 0 && block != m_head) DestroyBlock(rec);
}

void Ka_Chain::ReleaseAll() {
  void** items = m_byAddress.Items();
  for (size_t i = 0; i < m_byAddress.Count(); ++i) {
    Ka_BlockRecord* rec = static_cast<Ka_BlockRecord*>(items[i]);
    std::free(rec->block);
    std::free(rec);
  }
  m_byAddress.Clear();
  m_withRoom.Clear();
  m_head = nullptr;
  m_tail = nullptr;
}

// ---- the heap of blocks with room, ordered by sequence number ------------

void Ka_Chain::HeapPlace(Ka_BlockRecord* rec, size_t pos) {
  m_withRoom.Items()[pos] = rec;
  rec->heapPos = pos;
}

void Ka_Chain::HeapSiftUp(size_t pos) {
  void** h = m_withRoom.Items();
  Ka_BlockRecord* rec = static_cast<Ka_BlockRecord*>(h[pos]);
  while (pos > 0) {
    size_t parent = (pos - 1) / 2;
    Ka_BlockRecord* p = static_cast<Ka_BlockRecord*>(h[parent]);
    if (p->seq <= rec->seq) break;
    HeapPlace(p, pos);
    pos = parent;
  }
  HeapPlace(rec, pos);
}

void Ka_Chain::HeapSiftDown(size_t pos) {
  void** h = m_withRoom.Items();
  const size_t n = m_withRoom.Count();
  Ka_BlockRecord* rec = static_cast<Ka_BlockRecord*>(h[pos]);
  for (;;) {
    size_t child = 2 * pos + 1;
    if (child >= n) break;
    Ka_BlockRecord* c = static_cast<Ka_BlockRecord*>(h[child]);
    if (child + 1 < n) {
      Ka_BlockRecord* c2 = static_cast<Ka_BlockRecord*>(h[child + 1]);
      if (c2->seq < c->seq) {
        c = c2;
        ++child;
      }
    }
    if (rec->seq <= c->seq) break;
    HeapPlace(c, pos);
    pos = child;
  }
  HeapPlace(rec, pos);
}

void Ka_Chain::HeapPush(Ka_BlockRecord* rec) {
  // NewBlock reserved a heap place for every block, so this cannot fail.
  const size_t pos = m_withRoom.Count();
  m_withRoom.SetCount(pos + 1);
  HeapPlace(rec, pos);
  HeapSiftUp(pos);
}

void Ka_Chain::HeapRemove(Ka_BlockRecord* rec) {
  const size_t pos = rec->heapPos;
  const size_t last = m_withRoom.Count() - 1;
  rec->heapPos = kNotInHeap;
  m_withRoom.SetCount(last);
  if (pos == last) return;
  Ka_BlockRecord* moved = static_cast<Ka_BlockRecord*>(m_withRoom.Items()[last]);
  HeapPlace(moved, pos);
  HeapSiftUp(pos);
  HeapSiftDown(moved->heapPos);
}

// ---- the validating walker ----------------------------------------------

int Ka_Chain::Validate() const {
  // Chain links and sequence order.
  size_t blocks = 0;
  const Ka_BlockHeader* prev = nullptr;
  for (const Ka_BlockHeader* b = m_head; b != nullptr; b = b->next) {
    if (b->prev != prev) return 0;
    prev = b;
    if (++blocks > m_byAddress.Count()) return 0;
  }
  if (prev != m_tail || blocks != m_byAddress.Count()) return 0;

  void** items = m_byAddress.Items();
  size_t withRoom = 0;
  for (size_t i = 0; i < m_byAddress.Count(); ++i) {
    const Ka_BlockRecord* rec = static_cast<const Ka_BlockRecord*>(items[i]);
    if (i > 0 && !(static_cast<const Ka_BlockRecord*>(items[i - 1])->block < rec->block)) return 0;
    if (rec->block->next != nullptr) {
      // The successor's record has a larger sequence number.
      const Ka_BlockRecord* next = FindOwner(reinterpret_cast<unsigned char*>(rec->block->next) +
                                             sizeof(Ka_BlockHeader));
      if (m_unitCount > 0 && (next == nullptr || next->seq <= rec->seq)) return 0;
    }
    int32_t taken = 0;
    for (size_t u = 0; u < m_unitCount; ++u) {
      const int32_t count = *reinterpret_cast<const int32_t*>(rec->firstUnit + u * m_stride);
      const bool freeBit = (rec->bits[u / 64] >> (u % 64)) & 1;
      if (freeBit != (count < 0)) return 0;
      if (count >= 0) ++taken;
    }
    if (rec->block->used < taken) return 0;
    const bool hasRoom = rec->block->used < m_unitsPerBlock;
    if (hasRoom != (rec->heapPos != kNotInHeap)) return 0;
    if (hasRoom) {
      ++withRoom;
      if (rec->heapPos >= m_withRoom.Count() || m_withRoom.Items()[rec->heapPos] != rec) return 0;
      if (rec->heapPos > 0) {
        const Ka_BlockRecord* parent =
            static_cast<const Ka_BlockRecord*>(m_withRoom.Items()[(rec->heapPos - 1) / 2]);
        if (parent->seq > rec->seq) return 0;
      }
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
int Ka_ChainRef::Validate() const {
  if (m_chain == nullptr) return 1;
  ChainLock hold(m_chain);
  return m_chain->Validate();
}

}  // namespace ka_detail
