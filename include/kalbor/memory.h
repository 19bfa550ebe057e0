// Kalbor400U memory pools.
//
// Every string text, byte block and list array lives in a block that starts
// with a Ka_BufferData header and comes from one of nine process-wide
// size-class pools (unit sizes 32 to 8192 bytes), or from the heap when it is
// larger. Ka_ObjBufPool hands out fixed-size reference-counted object slots
// for list items and string objects. The allocation functions (_ka_malloc,
// ka_free, _ka_realloc) give callers outside the classes the same blocks.
//
// Both pools hand out the lowest free unit of the earliest block in the chain
// that has room, keep their first block for their whole life and give every
// other block back to the heap as soon as it is empty. Finding that unit and
// the block that owns a freed unit costs the same whatever the pool's size.
#ifndef KALBOR_MEMORY_H
#define KALBOR_MEMORY_H

#include <kalbor/platform.h>

namespace ka_detail {
class Ka_Chain;
// The first words of every pool block: the chain links and the count of
// units handed out. The units follow, aligned for a pointer.
struct Ka_BlockHeader {
  Ka_BlockHeader* prev;  // previous block in the chain, null for the head
  Ka_BlockHeader* next;  // next block, null for the last
  int32_t used;          // units handed out (see the free rules below)
};

// A pool's handle on its chain of blocks, its index and its lock. Copies
// share one chain; the last copy to go releases its blocks. Every member
// copes with a chain that could not be allocated (it holds no units).
class KA_API Ka_ChainRef {
 public:
  typedef void (*MarkFreshFn)(unsigned char* unit, uint32_t capacity);
  // stride: bytes from one unit to the next; markFresh(unit, capacity)
  // marks each unit of a new zero-filled block as free.
  Ka_ChainRef(size_t stride, int unitsPerBlock, uint32_t capacity, MarkFreshFn markFresh);
  Ka_ChainRef(const Ka_ChainRef& other);
  Ka_ChainRef& operator=(const Ka_ChainRef& other);
  ~Ka_ChainRef();

  unsigned char* Take();           // locked: the lowest free unit of the earliest block with room
  void Give(unsigned char* unit);  // locked: frees a unit; foreign pointers are ignored
  void ReleaseAll();               // locked: releases every block
  void ReleaseAllUnlocked();       // the same for a caller that holds the lock
  Ka_BlockHeader* Head() const;           // the first block, or null
  Ka_BlockHeader* Tail() const;           // the last block, or null
  Ka_BlockHeader* FirstWithRoom() const;  // the earliest block with a free unit, or null
  unsigned int BlockBytes() const;  // 0 when one block would not fit in memory
  int BlockCount() const;           // locked
  int UsedCount() const;            // locked: the blocks' used counts, summed
  int Validate() const;             // locked: 1 when every invariant holds

 private:
  Ka_Chain* m_chain;
};
}  // namespace ka_detail

// Ka_BufferData: the header in front of every pooled text, byte block and
// list array. Invariant: the data area starts right after the header and is
// aligned for a pointer; the block provides 4 more bytes past the capacity.
struct alignas(void*) Ka_BufferData {
  int32_t nRefs;          // owners; 1 after allocation, -1 marks a free unit
  uint32_t nAllocLength;  // capacity in bytes: the size group, or a multiple of 8192
  int32_t nDataLength;    // the owner's used length; 0 once freed

  // The first data byte, just past the header.
  unsigned char* data() { return reinterpret_cast<unsigned char*>(this + 1); }
  // Interlocked increment; returns the new count.
  int AddRef() { return ka_interlocked_increment(&nRefs); }
  // Interlocked decrement; returns the new count. Never frees: the owner that
  // sees 0 calls Ka_BufferPool::FreeBuffer.
  int Release() { return ka_interlocked_decrement(&nRefs); }
  // The header of the block whose data area starts at p.
  static Ka_BufferData* FromData(const void* p) {
    return reinterpret_cast<Ka_BufferData*>(
               const_cast<unsigned char*>(static_cast<const unsigned char*>(p))) - 1;
  }
};
static_assert(sizeof(Ka_BufferData) == (sizeof(void*) == 4 ? 12 : 16),
              "Ka_BufferData is three 32-bit words, padded to pointer alignment");

// Ka_BufferPool: one pool of equal units of a size class, with its own lock.
// Copies of a pool share one chain of blocks and one lock.
class KA_API Ka_BufferPool {
 public:
  typedef ka_detail::Ka_BlockHeader Ka_Plexus;

  // unitSize is rounded up to a multiple of 4 (64 when below 1); allocates nothing.
  Ka_BufferPool(int unitSize, int unitsPerBlock);
  // Copies share one chain of blocks under one lock (the device's
  // member-wise copy, made safe). The blocks are released when the last
  // sharing pool is destroyed: for a pool that was never copied, that is
  // FreeAll at destruction.
  Ka_BufferPool(const Ka_BufferPool& other) = default;
  Ka_BufferPool& operator=(const Ka_BufferPool& other) = default;
  ~Ka_BufferPool() = default;

  // One unit: count 1, allocated size = unit size, data length 0. A reused
  // unit keeps the bytes it held. Null when the heap refuses a new block or
  // units per block is below 1 (each such call still adds an empty block).
  Ka_BufferData* Alloc();
  // Returns a unit to this pool; null and pointers that are not a unit of
  // this pool are ignored. Only a unit at count 0 lowers its block's used
  // count: a second free, or a free at a positive count, marks the unit free
  // and leaves the count as it was (deliberate).
  void Free(Ka_BufferData* unit);
  // Releases every block, the head included.
  void FreeAll() { m_chain.ReleaseAll(); }
  // The unit size.
  unsigned int GetAllocSize() const { return m_unitSize; }
  // Units per block, as given to the constructor.
  int GetUnitsPerBlock() const { return m_unitsPerBlock; }
  // Bytes of one block: the block header plus units per block units (each a
  // header, the unit size and 4 extra bytes, padded to pointer alignment).
  unsigned int GetBlockBytes() const { return m_chain.BlockBytes(); }
  // Blocks in the chain.
  int GetBlockCount() const { return m_chain.BlockCount(); }
  // Units counted as used, summed over the blocks (see Free); 0 without blocks.
  int GetUsedCount() const { return m_chain.UsedCount(); }
  // Walks the chain and its index and checks every invariant; 1 when sound.
  int Validate() const { return m_chain.Validate(); }
  // The first block of the chain, or null.
  Ka_Plexus* GetHeadBlock() const { return m_chain.Head(); }

  // A block of at least size bytes from the matching pool, or from the heap
  // above 8192 bytes; count 1, data length = size (0 and negative sizes go to
  // the 32 pool). Null when no memory can be had.
  static Ka_BufferData* AllocBuffer(int size);
  // Gives a block back to the pool its allocated size names, or to the heap;
  // ignores the reference count. Null is ignored.
  static void FreeBuffer(Ka_BufferData* data);
  // The capacity AllocBuffer(size) gives: 0 for 0, 32 for 1..32 and for
  // negative sizes, then powers of two to 8192, then multiples of 8192.
  static unsigned int GetBufferGroup(int size);

 protected:
  // Releases every block; the caller holds the lock. Deliberately also
  // empties the chain, so that no dangling head is left behind.
  void FreeDataChain() { m_chain.ReleaseAllUnlocked(); }
  // The earliest block whose used count is below units per block, or null.
  Ka_Plexus* GetFreeDataBlock() const { return m_chain.FirstWithRoom(); }
  // The block whose next is null, or null when there is no chain.
  Ka_Plexus* GetLastDataBlock() const { return m_chain.Tail(); }

 private:
  unsigned int m_unitSize;
  int m_unitsPerBlock;
  ka_detail::Ka_ChainRef m_chain;
};

// Ka_ObjBufData: the header of one object slot; the object room follows.
struct alignas(void*) Ka_ObjBufData {
  int32_t refCount;  // -1 free, 0 taken and unreferenced, 1.. references

  // Address of the object room, just past the header.
  void* object() { return this + 1; }
  // The slot whose object room starts at p.
  static Ka_ObjBufData* FromObject(void* p) { return static_cast<Ka_ObjBufData*>(p) - 1; }
  // Interlocked increment; returns the new count; pool is deliberately unused.
  int AddRef(class Ka_ObjBufPool* pool) {
    (void)pool;
    return ka_interlocked_increment(&refCount);
  }
  // Interlocked decrement; returns the new count; never frees (the caller
  // frees the slot when the result is below 1); pool is deliberately unused.
  int Release(class Ka_ObjBufPool* pool) {
    (void)pool;
    return ka_interlocked_decrement(&refCount);
  }
  // Copies the count word only.
  Ka_ObjBufData& operator=(const Ka_ObjBufData& o) {
    refCount = o.refCount;
    return *this;
  }
};
static_assert(sizeof(Ka_ObjBufData) == sizeof(void*), "a slot header is one word, pointer aligned");

// Ka_ObjBufPool: fixed-size reference-counted object slots, carved out of
// heap blocks; it neither constructs nor destroys the objects it holds.
// Copies of a pool share one chain of blocks and one lock.
class KA_API Ka_ObjBufPool {
 public:
  typedef ka_detail::Ka_BlockHeader Ka_ObjPlexus;

  // name: at most 31 characters are kept, null gives "". objectSize is
  // rounded up to a multiple of 4 (32 when below 1). Allocates nothing.
  Ka_ObjBufPool(const char* name, int objectSize, int countPerBlock);
  // Copies share one chain of blocks under one lock; the blocks are
  // released with the last sharing pool (FreeAll for a pool never copied).
  Ka_ObjBufPool(const Ka_ObjBufPool& other) = default;
  Ka_ObjBufPool& operator=(const Ka_ObjBufPool& other) = default;
  ~Ka_ObjBufPool() = default;

  // A slot with refCount 1; a fresh block's object room is zero, a reused
  // slot keeps what it held. Null when countPerBlock is below 1 (each such
  // call still adds an empty block) or the heap refuses a block.
  Ka_ObjBufData* Alloc();
  // Returns a slot; null and slots not of this pool are ignored. Only a slot
  // at refCount 0 lowers its block's used count (deliberate, as for units).
  void Free(Ka_ObjBufData* slot);
  // Releases every block without finalising the objects in them.
  void FreeAll() { m_chain.ReleaseAll(); }
  // Releases every block; the caller holds the lock. Also empties the chain.
  void FreeDataChain() { m_chain.ReleaseAllUnlocked(); }
  // The earliest block with a used count below countPerBlock, or null.
  Ka_ObjPlexus* GetFreeDataBlock() const { return m_chain.FirstWithRoom(); }
  // The last block of the chain, or null.
  Ka_ObjPlexus* GetLastDataBlock() const { return m_chain.Tail(); }
  // The first block of the chain, or null.
  Ka_ObjPlexus* GetHeadBlock() const { return m_chain.Head(); }
  // The rounded object size.
  int GetObjectSize() const { return m_objectSize; }
  // Slots per block, as given.
  int GetCountPerBlock() const { return m_countPerBlock; }
  // The pool's name; read by no operation of the library.
  const char* GetName() const { return m_name; }
  // Bytes of one block: the block header plus the slots.
  unsigned int GetBlockBytes() const { return m_chain.BlockBytes(); }
  // Blocks in the chain.
  int GetBlockCount() const { return m_chain.BlockCount(); }
  // Slots counted as used, summed over the blocks (see Free); 0 without blocks.
  int GetUsedCount() const { return m_chain.UsedCount(); }
  // Walks the chain and its index and checks every invariant; 1 when sound.
  int Validate() const { return m_chain.Validate(); }

 private:
  char m_name[32];
  int m_objectSize;
  int m_countPerBlock;
  ka_detail::Ka_ChainRef m_chain;
};

// Ka_ListObjHandler: the abstract item handler of the object lists. It owns
// the object pool that item slots (and string objects made with new) come
// from, and creates, destroys, assigns and compares the items in them.
// Copies share one pool (see Ka_ObjBufPool); the pool's blocks go with the
// last handler that shares them.
class KA_API Ka_ListObjHandler {
 public:
  // The pool is constructed with these three values; allocates nothing.
  Ka_ListObjHandler(const char* name, int objectSize, int countPerBlock)
      : m_pool(name, objectSize, countPerBlock) {}

  // The four item operations, in this slot order.
  // Constructs an empty item in the given object room; returns the object.
  virtual void* _InitItem(void* object) = 0;
  // Destroys the item in place (the room goes back to the pool afterwards).
  virtual void _FreeItem(void* object) = 0;
  // Gives the existing item target the value of the item source.
  virtual void _AssignItem(void* target, void* source) = 0;
  // Negative, zero or positive as item orders before, equal to or after key.
  virtual int _CompareItem(void* item, void* key) = 0;

  virtual ~Ka_ListObjHandler() {}
  // The pool of item slots.
  Ka_ObjBufPool& GetPool() { return m_pool; }

 protected:
  Ka_ObjBufPool m_pool;
};

// The data pointer of AllocBuffer(size): at least size bytes, a 32-byte unit
// for 0 and negative sizes; null only when no memory can be had.
KA_API void* _ka_malloc(int size);
// Frees a block of _ka_malloc/_ka_realloc/_ka_strdup whatever its reference
// count; null is ignored. A pointer from elsewhere must not be passed.
KA_API void ka_free(void* p);
// Grows p to at least size bytes, keeping its bytes; never shrinks (returns
// p when it is big enough); size <= 0 frees p and returns null; a null p
// allocates. A failed growth frees p and returns null (deliberate).
KA_API void* _ka_realloc(void* p, int size);
// Copies up to count bytes, stopping before a byte equal to c (compared as
// a signed char, so 128..255 never match: pass -128..-1). Returns the end of
// what was written; null for a null dst, dst for a null src.
KA_API void* ka_memccpy(void* dst, const void* src, int c, int count);
// 0 when p is null, count <= 0 or all count bytes are zero; else the first
// non-zero byte (1..255).
KA_API int ka_memnullcmp(const void* p, int count);

// The nine size-class pools live from before the first static object of any
// translation unit that includes this header until after its last one is
// destroyed: every such unit holds one Ka_MemoryModule, and the first to be
// constructed builds the pools, the last to be destroyed releases them.
class KA_API Ka_MemoryModule {
 public:
  Ka_MemoryModule();
  ~Ka_MemoryModule();
  Ka_MemoryModule(const Ka_MemoryModule&) = delete;
  Ka_MemoryModule& operator=(const Ka_MemoryModule&) = delete;
};
static Ka_MemoryModule ka_memory_module_instance;

#endif  // KALBOR_MEMORY_H
