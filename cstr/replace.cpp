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
// replaced by to (t characters) to out, terminated; returns the length
// written. out may be text itself when t <= f: the write position then never
// passes the read position.
template <class T>
size_t Substitute(typename T::Char* out, const typename T::Char* text, size_t len,
                  Searcher<T, false>& searcher, size_t f, const typename T::Char* to, size_t t) {
  typedef typename T::Char Char;
  const Char* const end = text + len;
  Char* const start = out;
  const Char* in = text;
  for (const Char* hit; (hit = searcher.Find(in, static_cast<size_t>(end - in))) != nullptr; in = hit + f) {
    const size_t before = static_cast<size_t>(hit - in);
    std::memmove(out, in, before * sizeof(Char));
    out += before;
    if (t > 0) std::memmove(out, to, t * sizeof(Char));  // to may be null when t is 0
    out += t;
  }
  CopyTerminated(out, in, static_cast<size_t>(end - in));
  return static_cast<size_t>(out - start) + static_cast<size_t>(end - in);
}

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

  Searcher<T, false> searcher(from, f);
  const Char* first = searcher.Find(s, len);
  if (first == nullptr) return s;  // nothing matches: the same block, untouched

  // A replacement no longer than the pattern can be written over the text
  // itself, unless the pattern or the replacement lies inside the text. An
  // equal length deliberately counts as growth, which finds the block big
  // enough and keeps it, so in place is right for it too.
  if (t <= f && !Overlaps(from, f, s, len) && !(t > 0 && Overlaps(to, t, s, len))) {
    Substitute<T>(s, s, len, searcher, f, to, t);
    return s;
  }

  // Otherwise the result is built in a work block of exactly its size (the
  // text is read unchanged throughout), then copied back when the block of
  // s is big enough, or else replaces s as _ka_realloc would. The device
  // cleared only part of its wide work block; this one is written unit by
  // unit and terminated, so nothing depends on clearing in either width.
  size_t count = 0;
  for (const Char* p = first; p != nullptr; p = searcher.Find(p + f, static_cast<size_t>(s + len - (p + f)))) ++count;
  size_t newLen = len;
  if (t >= f) {
    if (count > (SIZE_MAX / 2 - len) / (t - f + 1)) return nullptr;  // beyond any block
    newLen += count * (t - f);
  } else {
    newLen -= count * (f - t);
  }
  if (newLen >= static_cast<size_t>(INT_MAX) / sizeof(Char)) return nullptr;
  const size_t bytes = (newLen + 1) * sizeof(Char);
  Char* work = static_cast<Char*>(_ka_malloc(static_cast<int>(bytes)));
  if (work == nullptr) return nullptr;  // s is untouched
  Substitute<T>(work, s, len, searcher, f, to, t);
  if (Ka_BufferData::FromData(s)->nAllocLength >= bytes) {
    CopyTerminated(s, work, newLen);
    ka_free(work);
    return s;
  }
  ka_free(s);
  return work;
}

}  // namespace
}  // namespace ka_cstr

char* ka_replaceA(char* s, const char* from, const char* to) { return ka_cstr::Replace<ka_cstr::NarrowText>(s, from, to); }
ka_wchar* ka_replaceW(ka_wchar* s, const ka_wchar* from, const ka_wchar* to) {
  return ka_cstr::Replace<ka_cstr::WideText>(s, from, to);
}
