// The two pool kinds behind one face, so that the behaviour they share (the
// chain rules) is tested once over both: each kind is its pool, with its
// unit type and the unit's count word and room.
#ifndef KALBOR_TESTS_MEMORY_POOL_KINDS_H
#define KALBOR_TESTS_MEMORY_POOL_KINDS_H

#include <kalbor/kalbor.h>

// A Ka_BufferPool of 32-byte units.
struct BufferPoolKind : Ka_BufferPool {
  typedef Ka_BufferPool Pool;
  typedef Ka_BufferData Unit;
  explicit BufferPoolKind(int perBlock) : Ka_BufferPool(32, perBlock) {}
  static int32_t& Count(Unit* u) { return u->nRefs; }
  static unsigned char* Room(Unit* u) { return u->data(); }
};

// A Ka_ObjBufPool of pointer-sized objects, like the item handlers' pools.
struct ObjPoolKind : Ka_ObjBufPool {
  typedef Ka_ObjBufPool Pool;
  typedef Ka_ObjBufData Unit;
  explicit ObjPoolKind(int perBlock) : Ka_ObjBufPool("test", static_cast<int>(sizeof(void*)), perBlock) {}
  static int32_t& Count(Unit* u) { return u->refCount; }
  static unsigned char* Room(Unit* u) { return static_cast<unsigned char*>(u->object()); }
};

#endif  // KALBOR_TESTS_MEMORY_POOL_KINDS_H
