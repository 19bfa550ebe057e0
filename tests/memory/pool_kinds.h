// The two pool kinds behind one face, so that the behaviour they share (the
// chain rules) is tested once over both.
#ifndef KALBOR_TESTS_MEMORY_POOL_KINDS_H
#define KALBOR_TESTS_MEMORY_POOL_KINDS_H

#include <kalbor/kalbor.h>

// A Ka_BufferPool of 32-byte units.
struct BufferPoolKind {
  typedef Ka_BufferPool::Ka_Plexus Block;
  Ka_BufferPool pool;
  explicit BufferPoolKind(int perBlock) : pool(32, perBlock) {}
  void* Alloc() { return pool.Alloc(); }
  void Free(void* u) { pool.Free(static_cast<Ka_BufferData*>(u)); }
  static int32_t& Count(void* u) { return static_cast<Ka_BufferData*>(u)->nRefs; }
  static unsigned char* Room(void* u) { return static_cast<Ka_BufferData*>(u)->data(); }
  Block* Head() { return pool.GetHeadBlock(); }
  int Blocks() { return pool.GetBlockCount(); }
  int Valid() { return pool.Validate(); }
};

// A Ka_ObjBufPool of pointer-sized objects, like the item handlers' pools.
struct ObjPoolKind {
  typedef Ka_ObjBufPool::Ka_ObjPlexus Block;
  Ka_ObjBufPool pool;
  explicit ObjPoolKind(int perBlock) : pool("test", static_cast<int>(sizeof(void*)), perBlock) {}
  void* Alloc() { return pool.Alloc(); }
  void Free(void* u) { pool.Free(static_cast<Ka_ObjBufData*>(u)); }
  static int32_t& Count(void* u) { return static_cast<Ka_ObjBufData*>(u)->refCount; }
  static unsigned char* Room(void* u) { return static_cast<unsigned char*>(static_cast<Ka_ObjBufData*>(u)->object()); }
  Block* Head() { return pool.GetHeadBlock(); }
  int Blocks() { return pool.GetBlockCount(); }
  int Valid() { return pool.Validate(); }
};

// The chain position (0 = head) of the block holding unit u, or -1.
template <class Kind>
int BlockOrdinal(Kind& k, void* u, size_t blockBytes) {
  int ordinal = 0;
  for (typename Kind::Block* b = k.Head(); b != nullptr; b = b->next, ++ordinal) {
    const unsigned char* start = reinterpret_cast<const unsigned char*>(b);
    const unsigned char* at = static_cast<const unsigned char*>(u);
    if (at >= start && at < start + blockBytes) return ordinal;
  }
  return -1;
}

#endif  // KALBOR_TESTS_MEMORY_POOL_KINDS_H
