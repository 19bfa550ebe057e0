// The exported allocation functions: the size-class blocks handed to callers
// outside the classes, and two byte helpers.
#include <kalbor/memory.h>

#include <cstring>

void* _ka_malloc(int size) {
  Ka_BufferData* d = Ka_BufferPool::AllocBuffer(size);
  return d != nullptr ? d->data() : nullptr;
}

void ka_free(void* p) {
  if (p == nullptr) return;
  Ka_BufferData* d = Ka_BufferData::FromData(p);
  // The sole owner's count goes to 0 before the unit goes back, so that its
  // block stops counting it as used. A unit already free (count -1) or still
  // held by other owners keeps the pool's rules for those cases.
  if (ka_interlocked_read(&d->nRefs) == 1) ka_interlocked_write(&d->nRefs, 0);
  Ka_BufferPool::FreeBuffer(d);
}

void* _ka_realloc(void* p, int size) {
  if (size <= 0) {
    ka_free(p);
    return nullptr;
  }
  if (p == nullptr) return _ka_malloc(size);
  Ka_BufferData* old = Ka_BufferData::FromData(p);
  if (old->nAllocLength >= static_cast<uint32_t>(size)) return p;
  Ka_BufferData* grown = Ka_BufferPool::AllocBuffer(size);
  // The whole old capacity is copied, not just its data length.
  if (grown != nullptr) std::memcpy(grown->data(), p, old->nAllocLength);
  ka_free(p);  // deliberately also when the growth failed
  return grown != nullptr ? grown->data() : nullptr;
}

void* ka_memccpy(void* dst, const void* src, int c, int count) {
  if (dst == nullptr) return nullptr;
  if (src == nullptr) return dst;
  unsigned char* out = static_cast<unsigned char*>(dst);
  const signed char* in = static_cast<const signed char*>(src);
  if (count < 0) {
    // No practical limit: copy until the stop byte.
    while (*in != c) *out++ = static_cast<unsigned char>(*in++);
    return out;
  }
  size_t n = static_cast<size_t>(count);
  // Bytes are read as signed chars, so only -128..127 can ever match.
  if (c >= -128 && c <= 127) {
    const void* stop = std::memchr(src, c & 0xFF, n);
    if (stop != nullptr)
      n = static_cast<size_t>(static_cast<const unsigned char*>(stop) - static_cast<const unsigned char*>(src));
  }
  std::memmove(out, in, n);  // overlapping ranges stay defined
  return out + n;
}

int ka_memnullcmp(const void* p, int count) {
  if (p == nullptr || count <= 0) return 0;
  const unsigned char* b = static_cast<const unsigned char*>(p);
  for (int i = 0; i < count; ++i)
    if (b[i] != 0) return b[i];
  return 0;
}
