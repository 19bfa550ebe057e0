// Replacement of every occurrence of one text by another in a _ka_malloc
// block, which may move to a larger block.
#include <kalbor/cstr.h>
#include <kalbor/memory.h>

#include <climits>
#include <cstdint>

#include "cstr/search.h"
#include "cstr/text.h"

namespace ka_cstr {
namespace {

template <class Char>
bool Overlaps(const Char* p, size_t n, const Char* s, size_t len) {
  const uintptr_t a = reinterpret_cast<uintptr_t>(p), b = reinterpret_cast<uintptr_t>(s);
  return a < b + (len + 1) * sizeof(Char) && b < a + (n + 1) * sizeof(Char);
}

// Writes text with each occurrence of from (f characters, found by searcher)
// replaced by to (t <= f characters) over text itself, terminated; the write
// position never passes the read position. Returns the new length.
template <class T>
size_t SubstituteInPlace(typename T::Char* text, size_t len, const Searcher<T, false>& searcher, size_t f,
                         const typename T::Char* to, size_t t) {
  typedef typename T::Char Char;
  const Char* const end = text + len;
  Char* out = text;
  const Char* in = text;
  for (const Char* hit; (hit = searcher.Find(in, static_cast<size_t>(end - in))) != nullptr; in = hit + f) {
    const size_t before = static_cast<size_t>(hit - in);
    std::memmove(out, in, before * sizeof(Char));
    out += before;
    if (t > 0) std::memmove(out, to, t * sizeof(Char));  // to may be null when t is 0
    out += t;
  }
  const size_t tail = static_cast<size_t>(end - in);
  CopyTerminated(out, in, tail);
  return static_cast<size_t>(out - text) + tail;
}

// A result built in a _ka_malloc block that doubles as it fills.
template <class Char>
class Builder {
 public:
  explicit Builder(size_t guess) : m_buf(nullptr), m_cap(0), m_len(0) { Reserve(guess); }
  ~Builder() { ka_free(m_buf); }
  Builder(const Builder&) = delete;
  Builder& operator=(const Builder&) = delete;

  // False once memory ran out; everything written so far is then gone.
  bool Append(const Char* p, size_t n) {
    if (m_buf == nullptr || (m_cap - m_len <= n && !Reserve(m_len + n + 1 + (m_len + n) / 2))) return false;
    if (n > 0) std::memcpy(m_buf + m_len, p, n * sizeof(Char));
    m_len += n;
    return true;
  }
  size_t Length() const { return m_len; }
  // The terminated result; the builder lets go of it.
  Char* Take() {
    m_buf[m_len] = 0;
    Char* p = m_buf;
    m_buf = nullptr;
    return p;
  }

 private:
  bool Reserve(size_t chars) {
    if (chars >= static_cast<size_t>(INT_MAX) / sizeof(Char)) {  // beyond any block
      ka_free(m_buf);
      m_buf = nullptr;
      return false;
    }
    m_buf = static_cast<Char*>(_ka_realloc(m_buf, static_cast<int>(chars * sizeof(Char))));  // frees on failure
    m_cap = chars;
    return m_buf != nullptr;
  }

  Char* m_buf;
  size_t m_cap;  // characters, the terminator's place included
  size_t m_len;
};

template <class T>
typename T::Char* Replace(typename T::Char* s, const typename T::Char* from, const typename T::Char* to) {
  typedef typename T::Char Char;
  if (s == nullptr) return nullptr;
  if (from == nullptr && to == nullptr) return s;
  if (*s == 0) return nullptr;
  const size_t f = LengthOrZero<T>(from);
  if (f == 0) return s;
  const size_t t = LengthOrZero<T>(to);
  const size_t len = T::Length(s);

  const Searcher<T, false> searcher(from, f);
  const Char* hit = searcher.Find(s, len);
  if (hit == nullptr) return s;  // nothing matches: the same block, untouched

  // A replacement no longer than the pattern is written over the text
  // itself, unless the pattern or the replacement lies inside the text. An
  // equal length deliberately counts as growth, which finds the block big
  // enough and keeps it, so in place is right for it too.
  if (t <= f && !Overlaps(from, f, s, len) && !(t > 0 && Overlaps(to, t, s, len))) {
    SubstituteInPlace<T>(s, len, searcher, f, to, t);
    return s;
  }

  // Otherwise the result is built in a separate block in one pass (the text
  // is read unchanged throughout), then copied back when the block of s is
  // big enough, or else takes the place of s in a block of the size
  // _ka_realloc would give. The device cleared only part of its wide work
  // block; this one is written unit by unit and terminated, so nothing
  // depends on clearing in either width.
  Builder<Char> out(len + (t > f ? 8 * (t - f) : 0) + 1);
  const Char* const end = s + len;
  const Char* in = s;
  for (; hit != nullptr; in = hit + f, hit = searcher.Find(in, static_cast<size_t>(end - in)))
    if (!out.Append(in, static_cast<size_t>(hit - in)) || !out.Append(to, t)) return nullptr;  // s is untouched
  if (!out.Append(in, static_cast<size_t>(end - in))) return nullptr;
  const size_t newLen = out.Length();
  const size_t bytes = (newLen + 1) * sizeof(Char);
  Char* built = out.Take();
  if (Ka_BufferData::FromData(s)->nAllocLength >= bytes) {
    CopyTerminated(s, built, newLen);
    ka_free(built);
    return s;
  }
  if (Ka_BufferData::FromData(built)->nAllocLength != Ka_BufferPool::GetBufferGroup(static_cast<int>(bytes))) {
    Char* exact = static_cast<Char*>(_ka_malloc(static_cast<int>(bytes)));
    if (exact != nullptr) {  // else the bigger block serves as well
      CopyTerminated(exact, built, newLen);
      ka_free(built);
      built = exact;
    }
  }
  ka_free(s);
  return built;
}

}  // namespace
}  // namespace ka_cstr

char* ka_replaceA(char* s, const char* from, const char* to) { return ka_cstr::Replace<ka_cstr::NarrowText>(s, from, to); }
ka_wchar* ka_replaceW(ka_wchar* s, const ka_wchar* from, const ka_wchar* to) {
  return ka_cstr::Replace<ka_cstr::WideText>(s, from, to);
}
