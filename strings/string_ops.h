// The implementation shared by Ka_AString and Ka_WString (internal to the
// string classes).
//
// Ka_StringOps<S> holds every member whose behaviour is the same for both
// widths, written once over S's traits (kalbor/strings.h); the classes'
// members forward here. Nothing in this file asks which width it works on:
// what differs is a traits member.
//
// Two rules run through the editing members:
// - A member changes a text only after GetSafeBuffer has made it private,
//   except FreeExtra and a non-growing wide Replace, which deliberately write
//   through a shared block. GetSafeBuffer's slow path (CopyToNewBuffer) is the
//   only code that copies a string's own text to a new block.
// - An argument may point into the string's own block (s += s). Before the
//   edit moves or rewrites that block, such an argument is kept alive by a
//   second reference to the block (KeepIfInside, which also forces the edit
//   onto a new block), or copied first where the block is rewritten in place.
#ifndef KALBOR_STRINGS_STRING_OPS_H
#define KALBOR_STRINGS_STRING_OPS_H

#include <kalbor/strings.h>

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <cstring>

namespace ka_detail {

// The positions of the occurrences that a substring Replace rewrites: the
// first ones inside the object, the rest in a block of the size-class pools
// that doubles as it fills.
class Ka_Positions {
 public:
  Ka_Positions() = default;
  Ka_Positions(const Ka_Positions&) = delete;
  Ka_Positions& operator=(const Ka_Positions&) = delete;
  ~Ka_Positions() {
    if (m_block != nullptr) Ka_BufferPool::FreeBuffer(m_block);
  }

  int Size() const { return m_size; }
  int operator[](int i) const { return m_at[i]; }

  // Adds one position; false when a larger block cannot be had.
  bool Add(int position) {
    if (m_size == m_room && !Grow()) return false;
    m_at[m_size++] = position;
    return true;
  }

 private:
  bool Grow() {
    if (m_room > (0x7FFFFFFF / 2) / static_cast<int>(sizeof(int))) return false;
    Ka_BufferData* const block = Ka_BufferPool::AllocBuffer(2 * m_room * static_cast<int>(sizeof(int)));
    if (block == nullptr) return false;
    int* const at = reinterpret_cast<int*>(block->data());
    std::memcpy(at, m_at, static_cast<size_t>(m_size) * sizeof(int));
    if (m_block != nullptr) Ka_BufferPool::FreeBuffer(m_block);
    m_block = block;
    m_at = at;
    m_room *= 2;
    return true;
  }

  int m_inline[64];
  int* m_at = m_inline;
  int m_size = 0;
  int m_room = 64;
  Ka_BufferData* m_block = nullptr;
};

template <class S>
struct Ka_StringOps {
  typedef typename S::Traits Tr;
  typedef typename Tr::Char Char;
  typedef Ka_BufferData Data;

  static size_t Bytes(int n) { return static_cast<size_t>(n) * sizeof(Char); }

  // ---- Blocks ----------------------------------------------------------------

  static void AllocBuffer(S& s, int n) {
    s.m_pchData = nullptr;
    if (n <= 0 || n > Tr::kMaxLength) return;
    Data* data = Ka_BufferPool::AllocBuffer(Tr::Stored(n));  // count 1, length n
    if (data == nullptr) return;
    s.m_pchData = reinterpret_cast<Char*>(data->data());
    s.m_pchData[n] = 0;
  }

  static Char* CopyToNewBuffer(S& s, int n) {
    Char* const old = s.m_pchData;
    if (n == 0) {  // a shared or null text: the result is the null string
      s.Release();
      return nullptr;
    }
    s.AllocBuffer(n);
    if (s.m_pchData == nullptr) {  // refused: keep the old text
      s.m_pchData = old;
      return nullptr;
    }
    if (old != nullptr) {
      Data* const oldData = Data::FromData(old);
      const int oldLength = Tr::Chars(oldData->nDataLength);
      // n characters when shortening, else the old text and its terminator.
      // Characters past that are deliberately left as the unit held them.
      std::memcpy(s.m_pchData, old, Bytes(n < oldLength ? n : oldLength + 1));
      s.m_pchData[n] = 0;
      S::Release(oldData);
    }
    return s.m_pchData;
  }

  // Whether p points into s's block (text, spare room or terminator).
  static bool Inside(const S& s, const Char* p) {
    if (s.m_pchData == nullptr || p == nullptr) return false;
    const uintptr_t at = reinterpret_cast<uintptr_t>(p);
    const uintptr_t begin = reinterpret_cast<uintptr_t>(s.m_pchData);
    return at >= begin && at - begin <= Bytes(s.GetAllocLength());
  }

  // Makes keep share s's block when p points into it, so that p stays valid
  // (and unchanged) while s moves to a new block.
  static void KeepIfInside(S& keep, const S& s, const Char* p) {
    if (Inside(s, p)) keep.Set(s);
  }

  // Sets the length of a private text to n <= capacity, with its zero.
  static void SetLength(S& s, int n) {
    s.GetData()->nDataLength = Tr::Stored(n);
    s.m_pchData[n] = 0;
  }

  // ---- Assignment and appending ----------------------------------------------

  static void Set(S& s, const Char* p, int n) {
    if (n < 0) n = Tr::Length(p);
    if (n == 0) {
      s.Release();
      return;
    }
    S keep;
    KeepIfInside(keep, s, p);
    Char* const buffer = s.GetSafeBuffer(n);
    if (buffer != nullptr && p != nullptr) std::memcpy(buffer, p, Bytes(n));
  }

  static void Fill(S& s, Char c, int n) {
    if (c == 0 || n < 1) return;
    Char* const buffer = s.GetSafeBuffer(n);
    if (buffer != nullptr) std::fill(buffer, buffer + n, c);
  }

  static void ConcatInPlace(S& s, const Char* p, int n) {
    if (n == 0 || p == nullptr || p[0] == 0) return;
    if (n < 0) n = Tr::Length(p);
    const int old = s.GetLength();
    if (n > Tr::kMaxLength - old) return;
    if (s._IsPrivateWithRoom(old + n)) {
      // GetSafeBuffer's in-place step, without zero-filling what is written
      // next; the text does not move, so p stays valid wherever it points.
      if (n == 1)
        s.m_pchData[old] = p[0];
      else
        std::memmove(s.m_pchData + old, p, Bytes(n));
      SetLength(s, old + n);
      return;
    }
    S keep;
    KeepIfInside(keep, s, p);
    Char* const buffer = s.GetSafeBuffer(old + n);
    if (buffer != nullptr) std::memcpy(buffer + old, p, Bytes(n));
  }

  static S Concat(const S& left, const Char* right, int n) {
    S result(left);
    ConcatInPlace(result, right, n);
    return result;
  }

  static void FreeExtra(S& s, int n) {
    const int length = s.GetLength();
    if (s.m_pchData == nullptr || n > length) return;
    s.m_pchData[length] = 0;
    if (n < 0) n = Tr::Length(s.m_pchData);
    SetLength(s, n);  // deliberately on the block as it is, shared or not
  }

  static void SetAt(S& s, int i, Char c) {
    if (i < 0 || i >= s.GetLength()) return;
    Char* const buffer = s.GetSafeBuffer(-1);
    if (buffer != nullptr) buffer[i] = c;
  }

  // ---- Searching -------------------------------------------------------------

  static int IndexOf(const S& s, const Char* hit) { return hit != nullptr ? static_cast<int>(hit - s.m_pchData) : -1; }

  static int Find(const S& s, Char c, int start) {
    if (start < 0) start = 0;
    if (start >= s.GetLength()) return -1;
    return IndexOf(s, Tr::FindChar(s.m_pchData + start, c));
  }

  static int Find(const S& s, const Char* p, int start) {
    if (start < 0) start = 0;
    if (start > s.GetLength() || s.m_pchData == nullptr) return -1;
    return IndexOf(s, Tr::FindText(s.m_pchData + start, p));
  }

  static int Findi(const S& s, const Char* p, int start) {
    if (start < 0) start = 0;
    if (start > s.GetLength() || s.m_pchData == nullptr) return -1;
    return IndexOf(s, Tr::FindTextNoCase(s.m_pchData + start, p));
  }

  static int ReverseFind(const S& s, Char c) {
    return s.m_pchData != nullptr ? IndexOf(s, Tr::FindLast(s.m_pchData, c)) : -1;
  }

  static int FindOneOf(const S& s, const Char* set) {
    return s.m_pchData != nullptr ? IndexOf(s, Tr::FindOneOf(s.m_pchData, set)) : -1;
  }

  // ---- Slices ----------------------------------------------------------------

  static S Mid(const S& s, int start, int count) {
    const int length = s.GetLength();
    if (start < 0) start = 0;
    if (count < 0) count = 0;
    if (count > length - start) count = length - start;
    if (start > length) count = 0;
    if (start == 0 && count == length) return s;
    S result;
    if (count > 0) result.Set(s.m_pchData + start, count);
    return result;
  }

  static S Mid(const S& s, int start) {
    if (start < 0) start = 0;
    return Mid(s, start, s.GetLength() - start);
  }

  static S Left(const S& s, int n) {
    if (n < 0) n = 0;
    if (n >= s.GetLength()) return s;
    S result;
    if (n > 0) result.Set(s.m_pchData, n);
    return result;
  }

  static S Right(const S& s, int n) {
    if (n < 0) n = 0;
    const int length = s.GetLength();
    if (n >= length) return s;
    S result;
    if (n > 0) result.Set(s.m_pchData + length - n, n);
    return result;
  }

  // ---- Trimming --------------------------------------------------------------

  static bool IsWhite(Char c) { return c == Char(' ') || c == Char('\t') || c == Char('\r') || c == Char('\n'); }

  // Whether the non-zero c is one of the characters of set before its zero.
  static bool InSet(const Char* set, Char c) {
    for (; *set != 0; ++set)
      if (*set == c) return true;
    return false;
  }

  // Removes the final run of characters that match, looking only before the
  // first zero; nothing changes when there is no such run.
  template <class Match>
  static void TrimRightWhere(S& s, Match match) {
    if (s.GetLength() == 0) return;
    const int end = Tr::Length(s.m_pchData);
    int cut = end;
    while (cut > 0 && match(s.m_pchData[cut - 1])) --cut;
    if (cut == end || s.GetSafeBuffer(-1) == nullptr) return;
    SetLength(s, cut);
  }

  // Removes the leading run of characters that match, at most the length.
  template <class Match>
  static void TrimLeftWhere(S& s, Match match) {
    const int length = s.GetLength();
    int skip = 0;
    while (skip < length && match(s.m_pchData[skip])) ++skip;
    if (skip == 0) return;
    Char* const buffer = s.GetSafeBuffer(-1);
    if (buffer == nullptr) return;
    std::memmove(buffer, buffer + skip, Bytes(length - skip));
    SetLength(s, length - skip);
  }

  static void TrimRight(S& s) { TrimRightWhere(s, IsWhite); }
  static void TrimLeft(S& s) { TrimLeftWhere(s, IsWhite); }
  static void TrimRight(S& s, Char c) {
    TrimRightWhere(s, [c](Char x) { return x == c; });  // x is never 0 here
  }
  static void TrimLeft(S& s, Char c) {
    TrimLeftWhere(s, [c](Char x) { return x == c; });
  }
  static void TrimRight(S& s, const Char* set) {
    if (set == nullptr) return;
    TrimRightWhere(s, [set](Char x) { return InSet(set, x); });
  }
  static void TrimLeft(S& s, const Char* set) {
    if (set == nullptr || set[0] == 0) return;
    TrimLeftWhere(s, [set](Char x) { return x != 0 && InSet(set, x); });
  }

  static void TrimBrace(S& s, int unescape) {
    if (s.GetLength() == 0) return;
    TrimLeft(s);
    TrimRight(s);
    Char* const buffer = s.GetSafeBuffer(-1);
    if (buffer == nullptr) return;
    Tr::TrimBrace(buffer, unescape);
    FreeExtra(s, -1);
  }

  // ---- Editing ---------------------------------------------------------------

  static int Replace(S& s, Char from, Char to) {
    const int length = s.GetLength();
    if (length == 0 || from == to) return 0;
    Char* const buffer = s.GetSafeBuffer(-1);
    if (buffer == nullptr) return 0;
    int count = 0;
    for (int i = 0; i < length; ++i)
      if (buffer[i] == from) {
        buffer[i] = to;
        ++count;
      }
    return count;
  }

  // The result equals replacing every occurrence before the first zero, and
  // the return value is what the device's loop left in its counter: that
  // loop replaced occurrence k only while its write position (the end of the
  // previous replacement, 0 for the first) was below the new length, and
  // returned the occurrences it did not reach. Here the occurrences are found
  // once, their positions kept, and the text is rewritten in one pass over
  // its block: left to right when it does not grow, right to left when it
  // does, so that the rewrite never overtakes what it has still to read.
  static int Replace(S& s, const Char* from, const Char* to) {
    const int length = s.GetLength();
    if (length == 0 || from == nullptr || from[0] == 0) return 0;
    S fromCopy, toCopy;  // patterns inside the block are copied: it is rewritten
    if (Inside(s, from)) {
      fromCopy.Set(from, -1);
      from = fromCopy.m_pchData;
    }
    if (Inside(s, to)) {
      toCopy.Set(to, -1);
      to = toCopy.m_pchData;
    }
    const int fromLength = Tr::Length(from);
    const int toLength = Tr::Length(to);

    Ka_Positions at;
    for (const Char* p = s.m_pchData; (p = Tr::FindText(p, from)) != nullptr; p += fromLength)
      if (!at.Add(static_cast<int>(p - s.m_pchData))) return 0;  // no room to keep them: nothing changes
    const int count = at.Size();
    if (count == 0) return 0;
    const int64_t change = toLength - fromLength;
    const int64_t grown = length + count * change;
    if (grown > Tr::kMaxLength) return 0;
    const int newLength = static_cast<int>(grown);

    Char* buffer = s.m_pchData;
    if (Tr::kReplaceUnshares || newLength > length) buffer = s.GetSafeBuffer(std::max(length, newLength));
    if (buffer == nullptr) return 0;
    if (newLength <= length) {
      int read = 0, write = 0;
      for (int k = 0; k < count; ++k) {
        std::memmove(buffer + write, buffer + read, Bytes(at[k] - read));
        write += at[k] - read;
        if (toLength > 0) std::memcpy(buffer + write, to, Bytes(toLength));  // to may be null
        write += toLength;
        read = at[k] + fromLength;
      }
      std::memmove(buffer + write, buffer + read, Bytes(length - read));
    } else {
      int read = length, write = newLength;  // ends of what is still to move
      for (int k = count - 1; k >= 0; --k) {
        const int tail = read - (at[k] + fromLength);
        write -= tail;
        std::memmove(buffer + write, buffer + at[k] + fromLength, Bytes(tail));
        write -= toLength;
        if (toLength > 0) std::memcpy(buffer + write, to, Bytes(toLength));  // to may be null
        read = at[k];
      }
      assert(read == write);  // the text before the first occurrence stays where it is
    }
    SetLength(s, newLength);
    // Occurrence k's write position: 0, or the end of replacement k - 1 in
    // the new text; these never decrease.
    int unreached = 0;
    for (int k = count - 1; k >= 0 && (k == 0 ? 0 : at[k - 1] + (k - 1) * change + toLength) >= newLength; --k)
      ++unreached;
    return unreached;
  }

  static int Remove(S& s, Char c) {
    const int length = s.GetLength();
    if (length == 0) return 0;
    Char* const buffer = s.GetSafeBuffer(-1);
    if (buffer == nullptr) return 0;
    int kept = 0;
    for (int i = 0; i < length; ++i)
      if (buffer[i] != c) buffer[kept++] = buffer[i];
    SetLength(s, kept);
    return length - kept;
  }

  // Opens a gap of n characters at index (clamped to 0..length) and returns
  // its position, or -1 when the text cannot grow.
  static int OpenGap(S& s, int index, int n) {
    const int length = s.GetLength();
    if (n > Tr::kMaxLength - length) return -1;
    Char* const buffer = s.GetSafeBuffer(length + n);
    if (buffer == nullptr) return -1;
    const int at = std::min(std::max(index, 0), length);
    std::memmove(buffer + at + n, buffer + at, Bytes(length - at));
    return at;
  }

  static int Insert(S& s, int index, Char c) {
    const int at = OpenGap(s, index, 1);
    if (at >= 0) s.m_pchData[at] = c;
    return s.GetLength();
  }

  static int Insert(S& s, int index, const Char* p) {
    const int n = Tr::Length(p);
    if (n == 0) return s.GetLength();
    S keep;
    KeepIfInside(keep, s, p);
    const int at = OpenGap(s, index, n);
    if (at >= 0) std::memcpy(s.m_pchData + at, p, Bytes(n));
    return s.GetLength();
  }

  static int Delete(S& s, int index, int count) {
    const int length = s.GetLength();
    if (length == 0) return 0;
    const int at = index < 0 ? 0 : index;
    if (at >= length) return length;
    const int available = length - at;
    const int n = std::min(available, count);
    if (n < 1) return length;
    Char* const buffer = s.GetSafeBuffer(-1);
    if (buffer == nullptr) return length;
    std::memmove(buffer + at, buffer + at + n, Bytes(available - n));
    SetLength(s, length - n);
    return length - n;
  }

  // ---- Objects ---------------------------------------------------------------

  static void* New(size_t size, Ka_ObjBufPool& pool) {
    if (size > sizeof(S)) return nullptr;
    Ka_ObjBufData* const slot = pool.Alloc();
    return slot != nullptr ? slot->object() : nullptr;
  }

  static void Delete(void* p, Ka_ObjBufPool& pool) {
    if (p == nullptr) return;
    Ka_ObjBufData* const slot = Ka_ObjBufData::FromObject(p);
    // Alloc left the slot at count 1; bringing it to 0 first lets its block
    // count it as given back, so that emptied blocks are found and released.
    slot->Release(&pool);
    pool.Free(slot);
  }

  // ---- Item handler ------------------------------------------------------------

  static const S& Item(void* object) { return object != nullptr ? *static_cast<const S*>(object) : S::_KaNullString; }

  static void* InitItem(void* object) {
    S::InitWithMemory(static_cast<S*>(object));
    return object;
  }
  static void FreeItem(void* object) { S::FreeWithMemory(static_cast<S*>(object)); }
  static void AssignItem(void* target, void* source) {
    if (target != nullptr && source != nullptr) static_cast<S*>(target)->Set(*static_cast<const S*>(source));
  }
  static int CompareItem(void* item, void* key) { return Item(item).Compare(Item(key)); }
};

}  // namespace ka_detail

#endif  // KALBOR_STRINGS_STRING_OPS_H
