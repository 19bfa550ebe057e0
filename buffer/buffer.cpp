// Ka_Buffer's out-of-line members, its item handler and its static object.
//
// Every writing member obtains private storage through GetSafeBuffer, whose
// slow path (_CopyToNewBuffer) is the only code that copies a buffer's own
// bytes to a new block. An argument that points into the buffer's own block
// is kept alive by a second reference (KeepIfInside) while the edit runs,
// which also sends the edit to a new block, so the argument stays unchanged.
#include <kalbor/buffer.h>
#include <kalbor/strings.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace {

size_t Bytes(long n) { return static_cast<size_t>(n); }

// Whether p points into b's block (data, spare room or the byte after it).
bool Inside(const Ka_Buffer& b, const void* p) {
  const unsigned char* const data = b;
  if (data == nullptr || p == nullptr) return false;
  const uintptr_t at = reinterpret_cast<uintptr_t>(p);
  const uintptr_t begin = reinterpret_cast<uintptr_t>(data);
  return at >= begin && at - begin <= static_cast<uintptr_t>(b.GetAllocLength());
}

void KeepIfInside(Ka_Buffer& keep, const Ka_Buffer& b, const void* p) {
  if (Inside(b, p)) keep.Set(b);
}

}  // namespace

Ka_Buffer::Ka_Buffer(const unsigned char* p, long n) : m_pData(nullptr) { Set(p, n); }

const Ka_Buffer& Ka_Buffer::Set(const Ka_Buffer& other) {
  if (m_pData != other.m_pData) {
    Release();
    m_pData = other.m_pData;
    _AddRef();
  }
  return *this;
}

const Ka_Buffer& Ka_Buffer::operator=(Ka_Buffer&& other) noexcept {
  if (this != &other) {
    Release();
    m_pData = other.m_pData;
    other.m_pData = nullptr;
  }
  return *this;
}

const Ka_Buffer& Ka_Buffer::Set(const unsigned char* p, long n) {
  if (n < 1) {
    Release();
    return *this;
  }
  Ka_Buffer keep;
  KeepIfInside(keep, *this, p);
  unsigned char* const data = GetSafeBuffer(n);
  if (data == nullptr) return *this;
  if (p != nullptr) std::memcpy(data, p, Bytes(n));
  data[n] = 0;
  return *this;
}

const Ka_Buffer& Ka_Buffer::Append(const unsigned char* p, long n) {
  const long old = GetLength();
  if (n < 1 || n > kMaxLength - old) return *this;
  Ka_Buffer keep;
  KeepIfInside(keep, *this, p);
  unsigned char* const data = GetSafeBuffer(old + n);
  if (data == nullptr) return *this;
  if (p != nullptr) std::memcpy(data + old, p, Bytes(n));
  // Only below the capacity, although the block always has room for it (deliberate).
  if (old + n < GetAllocLength()) data[old + n] = 0;
  return *this;
}

const Ka_Buffer& Ka_Buffer::AppendStr(const char* s) {
  if (s == nullptr) return *this;
  const size_t n = std::strlen(s);
  if (n > static_cast<size_t>(kMaxLength)) return *this;
  return Append(reinterpret_cast<const unsigned char*>(s), static_cast<long>(n));
}

const Ka_Buffer& Ka_Buffer::AppendStr(const ka_wchar* s, long n, unsigned int codepage) {
  (void)n;  // the whole zero-terminated text is converted, whatever n says (deliberate)
  const Ka_AString narrow(s, -1, codepage);
  return Append(reinterpret_cast<const unsigned char*>(static_cast<const char*>(narrow)), narrow.GetLength());
}

const Ka_Buffer& Ka_Buffer::Insert(long pos, const unsigned char* p, long n) {
  const long old = GetLength();
  if (n < 1 || n > kMaxLength - old) return *this;
  const long at = std::min(std::max(pos, 0L), old);
  Ka_Buffer keep;
  KeepIfInside(keep, *this, p);
  unsigned char* const data = GetSafeBuffer(old + n);
  if (data == nullptr) return *this;
  std::memmove(data + at + n, data + at, Bytes(old - at + 1));  // the byte after the end too
  if (p != nullptr) std::memcpy(data + at, p, Bytes(n));
  return *this;
}

long Ka_Buffer::Delete(long pos, long n) {
  const long length = GetLength();
  if (m_pData == nullptr) return 0;
  if (pos < 0) pos = 0;
  // A pos past the end gives the negative length - pos (deliberate).
  if (n > length - pos) n = length - pos;
  if (n > 0 && pos < length) {
    unsigned char* const data = GetSafeBuffer(-1);
    if (data == nullptr) return n;
    std::memmove(data + pos, data + pos + n, Bytes(length - pos - n + 1));  // the byte after the end too
    GetData()->nDataLength = static_cast<int32_t>(length - n);
  }
  return n;
}

long Ka_Buffer::SetSize(long n) {
  // Deliberately in place: every buffer sharing the block sees the new length.
  if (m_pData != nullptr && n >= 0 && static_cast<unsigned long>(n) <= GetData()->nAllocLength)
    GetData()->nDataLength = static_cast<int32_t>(n);
  return GetLength();
}

long Ka_Buffer::AddSize(long n) {
  const long length = GetLength();
  if (n <= kMaxLength - length) GetSafeBuffer(length + n);
  return GetLength();
}

void Ka_Buffer::SetAt(long i, unsigned char b) {
  if (i < 0 || i >= GetLength()) return;
  unsigned char* const data = GetSafeBuffer(-1);
  if (data != nullptr) data[i] = b;
}

int Ka_Buffer::Compare(const Ka_Buffer& key) const {
  const unsigned char* const a = m_pData;
  const unsigned char* const b = key.m_pData;
  // Only one side's first byte decides when the other owns nothing (deliberate).
  if (a == nullptr) return b == nullptr || b[0] == 0 ? 0 : -1;
  if (b == nullptr) return a[0] == 0 ? 0 : 1;
  // Deliberately the larger length: bytes past the shorter length take part.
  const long n = std::max(GetLength(), key.GetLength());
  const long roomA = std::min(n, GetAllocLength()), roomB = std::min(n, key.GetAllocLength());
  const long both = std::min(roomA, roomB);
  const int common = std::memcmp(a, b, Bytes(both));
  if (common != 0) return common < 0 ? -1 : 1;
  // Past one block's capacity its bytes read as 0: the other side decides
  // with its first non-zero byte.
  for (long i = both; i < roomA; ++i)
    if (a[i] != 0) return 1;
  for (long i = both; i < roomB; ++i)
    if (b[i] != 0) return -1;
  return 0;
}

void Ka_Buffer::InitWithMemory(Ka_Buffer* p) {
  if (p != nullptr) ::new (static_cast<void*>(p)) Ka_Buffer();
}

void Ka_Buffer::FreeWithMemory(Ka_Buffer* p) {
  if (p != nullptr) p->~Ka_Buffer();
}

void Ka_Buffer::AllocBuffer(long n) {
  m_pData = nullptr;
  if (n <= 0 || n > kMaxLength) return;
  Ka_BufferData* const data = Ka_BufferPool::AllocBuffer(static_cast<int>(n));  // count 1, length n
  if (data == nullptr) return;
  m_pData = data->data();
  m_pData[n] = 0;
}

unsigned char* Ka_Buffer::_CopyToNewBuffer(long n) {
  if (n > kMaxLength) return nullptr;
  unsigned char* const old = m_pData;
  if (n == 0) {  // an empty or shared buffer: the result is the empty buffer
    Release();
    return nullptr;
  }
  AllocBuffer(n);
  if (m_pData == nullptr) {  // refused: keep the old block
    m_pData = old;
    return nullptr;
  }
  if (old != nullptr) {
    Ka_BufferData* const oldData = Ka_BufferData::FromData(old);
    // The bytes kept and the one after them (the old terminator when growing).
    std::memcpy(m_pData, old, Bytes(std::min(static_cast<long>(oldData->nDataLength), n) + 1));
    Release(oldData);
  }
  return m_pData;
}

// ---- Item handler ------------------------------------------------------------

Ka_BufferHandler::Ka_BufferHandler() : Ka_ListObjHandler("Ka_Buffer", static_cast<int>(sizeof(Ka_Buffer)), 64) {}

void* Ka_BufferHandler::_InitItem(void* object) {
  Ka_Buffer::InitWithMemory(static_cast<Ka_Buffer*>(object));
  return object;
}

void Ka_BufferHandler::_FreeItem(void* object) { Ka_Buffer::FreeWithMemory(static_cast<Ka_Buffer*>(object)); }

void Ka_BufferHandler::_AssignItem(void* target, void* source) {
  if (target != nullptr && source != nullptr) static_cast<Ka_Buffer*>(target)->Set(*static_cast<Ka_Buffer*>(source));
}

int Ka_BufferHandler::_CompareItem(void* item, void* key) {
  const Ka_Buffer none;  // what a null item pointer stands for
  const Ka_Buffer& a = item != nullptr ? *static_cast<const Ka_Buffer*>(item) : none;
  return a.Compare(key != nullptr ? *static_cast<const Ka_Buffer*>(key) : none);
}

// ---- Static object -------------------------------------------------------------
// The handler lives in static storage that needs no constructor; the
// documented static member is a reference bound to it (an address constant,
// valid before any code runs). The first Ka_BufferModule to be constructed
// builds it, the last to be destroyed destroys it.

namespace {
int32_t g_moduleUsers = 0;
alignas(Ka_BufferHandler) unsigned char g_handler[sizeof(Ka_BufferHandler)];
}  // namespace

Ka_BufferHandler& Ka_Buffer::_KaBufferHandler = reinterpret_cast<Ka_BufferHandler&>(g_handler);

Ka_BufferModule::Ka_BufferModule() {
  if (ka_interlocked_increment(&g_moduleUsers) != 1) return;
  ::new (static_cast<void*>(g_handler)) Ka_BufferHandler();
}

Ka_BufferModule::~Ka_BufferModule() {
  if (ka_interlocked_decrement(&g_moduleUsers) != 0) return;
  Ka_Buffer::_KaBufferHandler.~Ka_BufferHandler();
}
