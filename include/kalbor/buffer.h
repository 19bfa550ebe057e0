// Kalbor400U byte buffers.
//
// Ka_Buffer is a reference-counted, copy-on-write array of bytes with long
// lengths. It is one pointer: null for the empty buffer, else the first byte
// of a block of the size-class pools behind a Ka_BufferData header, which it
// shares with copies of itself as the string classes do. It encodes its bytes
// as Base64 text and decodes Base64 text into itself (the standard alphabet
// with "=" padding; no line breaks). Ka_BufferHandler lets the object lists
// hold buffers.
//
// Rules shared by every member:
// - A block holds at most kMaxLength bytes. A request for more, or for memory
//   the heap refuses, leaves the buffer unchanged.
// - Writing members make the block private first (GetSafeBuffer), except
//   SetSize, which deliberately changes the length every sharer sees.
// - Nothing is raised or logged. Reference counts change atomically, so
//   buffers in different threads may share a block; a single buffer object is
//   used by one thread at a time.
// - A pointer argument may point into the buffer's own block.
#ifndef KALBOR_BUFFER_H
#define KALBOR_BUFFER_H

#include <kalbor/memory.h>
#include <kalbor/platform.h>
#include <kalbor/strings.h>

#include <cstdint>
#include <type_traits>

class Ka_BufferHandler;

// Ka_Buffer: a reference-counted byte array.
// Invariant: m_pData is null or points just past a Ka_BufferData header whose
// count is the number of buffers sharing the block and whose length is not
// above its capacity; the block has room for capacity + 1 bytes at least.
class KA_API Ka_Buffer {
 public:
  // The largest length a buffer can hold.
  static constexpr long kMaxLength = 0x7FFFE000L;

  // ---- Construction and lifetime -------------------------------------------

  // The empty buffer; owns nothing.
  Ka_Buffer() : m_pData(nullptr) {}
  // n above 0: n bytes copied from p (left as the block held them when p is
  // null) and a 0 after them; otherwise the empty buffer.
  Ka_Buffer(const unsigned char* p, long n);
  // Shares other's block.
  Ka_Buffer(const Ka_Buffer& other) : m_pData(other.m_pData) { _AddRef(); }
  // Takes other's block; other becomes empty.
  Ka_Buffer(Ka_Buffer&& other) noexcept : m_pData(other.m_pData) { other.m_pData = nullptr; }
  // Drops its reference; the last one frees the block.
  ~Ka_Buffer() { Release(); }

  // ---- Assignment and editing -----------------------------------------------

  // Shares other's block (nothing when both already share it); an empty
  // other leaves this buffer empty. Returns *this.
  const Ka_Buffer& Set(const Ka_Buffer& other);
  const Ka_Buffer& operator=(const Ka_Buffer& other) { return Set(other); }
  // Takes other's block; other becomes empty.
  const Ka_Buffer& operator=(Ka_Buffer&& other) noexcept;
  // n below 1: empties. Otherwise the buffer becomes n bytes copied from p
  // (left as they are when p is null) with a 0 after them. Returns *this.
  const Ka_Buffer& Set(const unsigned char* p, long n);
  // n above 0: appends n bytes of p (left as they are when p is null) and
  // writes a 0 after them only when that 0 falls below the capacity
  // (deliberate). Otherwise nothing. Returns *this.
  const Ka_Buffer& Append(const unsigned char* p, long n);
  // Append(s, strlen(s)), without s's terminator; nothing for a null s.
  const Ka_Buffer& AppendStr(const char* s);
  // Appends the whole zero-terminated s converted to codepage (0: the locale
  // code page) as by Ka_AString(s, -1, codepage), without the terminator.
  // n is ignored (deliberate). Nothing for a null or empty s.
  const Ka_Buffer& AppendStr(const ka_wchar* s, long n, unsigned int codepage);
  // n above 0: inserts n bytes of p (left as they are when p is null) at pos,
  // lowered to the length when above it and raised to 0 when negative. The
  // bytes from pos on and the byte after the end move up by n. Returns *this.
  const Ka_Buffer& Insert(long pos, const unsigned char* p, long n);
  // Removes up to n bytes from pos (negative: 0), moving the rest and the
  // byte after the end down. Returns n lowered to length - pos, so a pos past
  // the end returns the negative length - pos, deliberately; 0 for an empty
  // buffer. Nothing changes unless that value is above 0.
  long Delete(long pos, long n);

  // ---- Size -------------------------------------------------------------------

  // Makes the block private with room for n bytes (n < 0: the current
  // length) and sets the length to n; returns the data. It keeps the bytes
  // up to the old length and the one after it, and writes no 0 itself (a
  // new block comes with a 0 after its n bytes, unless a kept byte lands
  // there). Null for n = 0 on an empty or shared buffer (which becomes
  // empty), and null with the buffer unchanged when n is above kMaxLength or
  // memory is refused.
  unsigned char* GetSafeBuffer(long n) {
    if (n < 0) n = GetLength();
    if (!_IsPrivateWithRoom(n)) return _CopyToNewBuffer(n);
    GetData()->nDataLength = static_cast<int32_t>(n);
    return m_pData;
  }
  // When n is 0 to the capacity, the length becomes n in place: no copy, no
  // 0 written, and deliberately not made private, so every buffer sharing
  // the block sees the new length. A negative n or one above the capacity
  // changes nothing (an empty buffer has capacity 0). Returns the length.
  long SetSize(long n);
  // GetSafeBuffer(length + n), so a negative n shortens the buffer (below 0
  // it only makes the block private); a sum above kMaxLength changes
  // nothing. Returns the length afterwards.
  long AddSize(long n);
  // Bytes in use; 0 when empty.
  long GetLength() const { return m_pData != nullptr ? GetData()->nDataLength : 0; }
  // Capacity in bytes (the size group); 0 when empty.
  long GetAllocLength() const { return m_pData != nullptr ? static_cast<long>(GetData()->nAllocLength) : 0; }
  // 1 when empty or of length 0, else 0.
  int IsEmpty() const { return GetLength() == 0 ? 1 : 0; }
  // Drops the block; the buffer becomes empty.
  void Empty() { Release(); }

  // ---- Bytes ------------------------------------------------------------------

  // The byte at i when 0 <= i < length; otherwise 0.
  unsigned char GetAt(long i) const { return i >= 0 && i < GetLength() ? m_pData[i] : 0; }
  // GetAt(i), for any integer type (so that buf[0] is never ambiguous with
  // the built-in subscript of a pointer conversion).
  template <class I, class = typename std::enable_if<std::is_integral<I>::value>::type>
  unsigned char operator[](I i) const {
    const long long at = static_cast<long long>(i);  // indices past LLONG_MAX read as negative
    return at >= 0 && at < GetLength() ? m_pData[at] : 0;
  }
  // When 0 <= i < length: makes the block private and stores b; otherwise
  // does nothing.
  void SetAt(long i, unsigned char b);
  // The data plus i, without a check and without making the block private;
  // i must lie within 0..capacity. Null for an empty buffer.
  const unsigned char* GetPtr(long i) const { return m_pData != nullptr ? m_pData + i : nullptr; }
  // The same, writable; writing through it reaches every sharer.
  unsigned char* GetSafePtr(long i) { return m_pData != nullptr ? m_pData + i : nullptr; }
  // The data; null when empty. There are four of these conversions, so a
  // buffer does not convert to bool: test it with IsEmpty.
  operator const void*() const { return m_pData; }
  operator const unsigned char*() const { return m_pData; }
  operator const char*() const { return reinterpret_cast<const char*>(m_pData); }
  operator const ka_wchar*() const { return reinterpret_cast<const ka_wchar*>(m_pData); }

  // ---- Comparison ---------------------------------------------------------------

  // The order of the buffer lists: -1, 0 or 1. With n the larger of the two
  // lengths, both buffers' first n bytes are compared as unsigned bytes,
  // deliberately reaching past the shorter length into its block's spare
  // room; positions past a block's capacity read as 0, so nothing outside
  // either block is read. An empty key: 1 when this buffer's first byte is
  // not 0, else 0; an empty buffer: -1 when key's first byte is not 0, else 0
  // (deliberate: only one byte decides). Both empty: 0.
  int Compare(const Ka_Buffer& key) const;

  // ---- Base64 -------------------------------------------------------------------

  // The Base64 text of the bytes, "=" padded, without line breaks; empty for
  // an empty buffer, and when the text would exceed Ka_AString::Traits::kMaxLength.
  Ka_AString EncodeBase64() const;
  // Null text or n = 0: empties. Otherwise the buffer becomes the bytes
  // decoded from text: leading spaces and tabs are skipped, then the run of
  // alphabet characters up to the first other byte ("=", a blank, the
  // terminator) is decoded; nothing after it is. A positive n does not bound
  // that run (deliberate), so text must hold a non-alphabet byte, such as
  // its terminator. A last group of one character gives one byte, its six
  // bits followed by two zero bits. Returns *this.
  const Ka_Buffer& DecodeBase64(const char* text, long n);

  // ---- Objects ------------------------------------------------------------------

  // Constructs the empty buffer in place at p; null p is ignored.
  static void InitWithMemory(Ka_Buffer* p);
  // Destroys the buffer at p in place, releasing its block; null p is ignored.
  static void FreeWithMemory(Ka_Buffer* p);
  // The item handler of the buffer lists, usable from any static object's
  // constructor or destructor.
  static Ka_BufferHandler& _KaBufferHandler;

 protected:
  // The header, or null when empty.
  Ka_BufferData* GetData() const { return m_pData != nullptr ? Ka_BufferData::FromData(m_pData) : nullptr; }
  // Attaches a new block for n bytes (count 1, length n, a 0 after them),
  // without releasing the old one; n <= 0, n above kMaxLength or a refused
  // block leaves the buffer empty.
  void AllocBuffer(long n);
  // Drops this buffer's reference, freeing the block with the last one.
  void Release() {
    if (m_pData != nullptr) {
      Ka_BufferData* data = GetData();
      m_pData = nullptr;
      Release(data);
    }
  }
  // Drops one reference of data (null ignored), freeing it with the last.
  static void Release(Ka_BufferData* data) {
    if (data != nullptr && data->Release() < 1) FreeData(data);
  }
  // Returns the block to its pool, or to the heap.
  static void FreeData(Ka_BufferData* data) { Ka_BufferPool::FreeBuffer(data); }
  // The decoder proper of DecodeBase64, for a non-null text: replaces the
  // contents with the decoding.
  void _DecodeBase64(const char* text, long n);

  // GetSafeBuffer's slow path: a new block of n bytes holding the old bytes
  // (see GetSafeBuffer). The only place that copies a buffer's own bytes.
  unsigned char* _CopyToNewBuffer(long n);
  void _AddRef() {
    if (m_pData != nullptr) GetData()->AddRef();
  }
  bool _IsPrivateWithRoom(long n) const {
    return m_pData != nullptr && ka_interlocked_read(&GetData()->nRefs) <= 1 &&
           static_cast<unsigned long>(n) <= GetData()->nAllocLength;
  }

  unsigned char* m_pData;
};

static_assert(sizeof(Ka_Buffer) == sizeof(void*), "a buffer object is one pointer: the object pool holds one per slot");

// The item handler of buffer lists: items are Ka_Buffer objects in slots of
// the pool "Ka_Buffer" (one buffer object each, 64 per block). A null item
// pointer counts as the empty buffer.
class KA_API Ka_BufferHandler : public Ka_ListObjHandler {
 public:
  Ka_BufferHandler();
  // Ka_Buffer::InitWithMemory; returns object.
  void* _InitItem(void* object) override;
  // Ka_Buffer::FreeWithMemory.
  void _FreeItem(void* object) override;
  // target.Set(source); nothing when either is null.
  void _AssignItem(void* target, void* source) override;
  // item.Compare(key).
  int _CompareItem(void* item, void* key) override;
};

// The buffers' static object (the item handler with its pool) lives from
// before the first static object of any translation unit that includes this
// header until after its last one is destroyed, as the pools do.
class KA_API Ka_BufferModule {
 public:
  Ka_BufferModule();
  ~Ka_BufferModule();
  Ka_BufferModule(const Ka_BufferModule&) = delete;
  Ka_BufferModule& operator=(const Ka_BufferModule&) = delete;
};
static Ka_BufferModule ka_buffer_module_instance;

#endif  // KALBOR_BUFFER_H
