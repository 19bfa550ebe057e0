// Ka_IntList and Ka_PtrList: flat lists of values in one shared block.
//
// Both classes are one design over two element types; Ka_FlatListOps holds
// every member once and the classes forward to it. The block header's length
// word counts elements here (not bytes as in Ka_ObjList). Set, Delete and
// Pack write into the current array even when other lists share it
// (deliberate); every other change goes through GetBuffer, which makes the
// array private first.
#include <kalbor/lists.h>

#include <cstring>
#include <type_traits>

#include "lists/list_check.h"

namespace ka_detail {

template <class L>
struct Ka_FlatListOps {
  typedef typename std::remove_pointer<decltype(L::m_pData)>::type T;
  typedef Ka_BufferData Data;
  typedef ListCheck<L> Check;

  static size_t Bytes(int count) { return static_cast<size_t>(count) * sizeof(T); }
  static Data* Header(const L& l) { return l.m_pData != nullptr ? Data::FromData(l.m_pData) : nullptr; }

  static void Share(L& l, const L& other) {
    l.m_pData = other.m_pData;
    if (l.m_pData != nullptr) Header(l)->AddRef();
  }

  static int AllocLength(const L& l) {
    return l.m_pData != nullptr ? static_cast<int>(Header(l)->nAllocLength / sizeof(T)) : 0;
  }
  static int Count(const L& l) { return l.m_pData != nullptr ? Header(l)->nDataLength : 0; }
  static bool Inside(const L& l, int index) { return index >= 0 && index < Count(l); }

  // A new array of count elements whose first copied ones come from `from`
  // and whose others, up to the capacity, are zero; null when refused.
  static T* NewArray(int count, const T* from, int copied) {
    if (count < 1 || count > L::kMaxCount) return nullptr;
    Data* const data = Ka_BufferPool::AllocBuffer(static_cast<int>(Bytes(count)));
    if (data == nullptr) return nullptr;
    T* const items = reinterpret_cast<T*>(data->data());
    if (copied > 0) std::memcpy(items, from, Bytes(copied));
    // Up to the capacity: a reused pool unit keeps the bytes it held, and the
    // elements past the count must be zero.
    std::memset(items + copied, 0, data->nAllocLength - Bytes(copied));
    data->nDataLength = count;
    return items;
  }
  static void AllocBuffer(L& l, int count) { l.m_pData = NewArray(count, nullptr, 0); }

  static void Release(Data* data) {
    if (data != nullptr && data->Release() < 1) Ka_BufferPool::FreeBuffer(data);
  }
  static void Release(L& l) {
    Data* const data = Header(l);
    l.m_pData = nullptr;
    Release(data);
  }

  static T* GetBuffer(L& l, int count) {
    Data* const old = Header(l);
    if (old == nullptr) {
      if (count < 1) return nullptr;
      AllocBuffer(l, count);
      return l.m_pData;
    }
    const int have = old->nDataLength;
    if (ka_interlocked_read(&old->nRefs) < 2 && count <= AllocLength(l)) {
      if (count > have) {
        std::memset(l.m_pData + have, 0, Bytes(count - have));
        old->nDataLength = count;
      }
      return l.m_pData;
    }
    // Shared, or too small: a new array that keeps every old element, even
    // when the caller asks for fewer.
    T* const from = l.m_pData;
    const int length = count > have ? count : have;
    l.m_pData = NewArray(length, from, have);
    if (l.m_pData == nullptr && length > 0) {
      l.m_pData = from;  // refused: nothing changes
      return nullptr;
    }
    Release(old);
    return l.m_pData;
  }

  static long Set(L& l, int index, T value) {
    if (!Inside(l, index)) return -1;
    l.m_pData[index] = value;  // in the array as it is, shared or not (deliberate)
    return 0;
  }

  static int Insert(L& l, int index, T value) {
    Check check(l);
    if (index < 0) return -1;
    const int count = Count(l);
    if (count >= L::kMaxCount) return -1;
    if (index > count) index = count;  // at or past the end: appends
    if (GetBuffer(l, count + 1) == nullptr) return -1;
    std::memmove(l.m_pData + index + 1, l.m_pData + index, Bytes(count - index));
    l.m_pData[index] = value;
    return index;
  }

  static long Delete(L& l, int start, int count) {
    Check check(l);
    const int have = Count(l);
    if (!Inside(l, start)) return -1;
    if (count > have - start) count = have - start;
    if (count < 1) return 0;
    // In the array as it is, shared or not (deliberate).
    std::memmove(l.m_pData + start, l.m_pData + start + count, Bytes(have - start - count));
    std::memset(l.m_pData + have - count, 0, Bytes(count));
    Header(l)->nDataLength = have - count;
    return 0;
  }

  static long Exchange(L& l, int a, int b) {
    Check check(l);
    if (a == b) return 0;
    if (!Inside(l, a) || !Inside(l, b)) return -1;
    if (GetBuffer(l, Count(l)) == nullptr) return -1;
    const T value = l.m_pData[a];
    l.m_pData[a] = l.m_pData[b];
    l.m_pData[b] = value;
    return 0;
  }

  static long Move(L& l, int from, int to) {
    Check check(l);
    if (!Inside(l, from) || !Inside(l, to)) return -1;  // a destination past the end is refused
    if (from == to) return 0;
    if (GetBuffer(l, Count(l)) == nullptr) return -1;
    const T value = l.m_pData[from];
    if (from < to)
      std::memmove(l.m_pData + from, l.m_pData + from + 1, Bytes(to - from));
    else
      std::memmove(l.m_pData + to + 1, l.m_pData + to, Bytes(from - to));
    l.m_pData[to] = value;
    return 0;
  }

  static int IndexOf(const L& l, T value) {
    const int count = Count(l);
    for (int i = 0; i < count; ++i)
      if (l.m_pData[i] == value) return i;
    return -1;
  }

  static void AssignList(L& l, const L& other) {
    Check check(l);
    if (l.m_pData == other.m_pData) return;
    Data* const data = Header(other);
    if (data != nullptr) data->AddRef();
    Release(l);
    l.m_pData = other.m_pData;
  }

  static void AppendList(L& l, const L& other) {
    Check check(l);
    if (l.m_pData == other.m_pData) return;
    const int added = Count(other);
    if (added == 0) return;
    if (l.m_pData == nullptr) {
      Share(l, other);
      return;
    }
    const int count = Count(l);
    if (added > L::kMaxCount - count || GetBuffer(l, count + added) == nullptr) return;
    std::memcpy(l.m_pData + count, other.m_pData, Bytes(added));
  }

  static void GetSubList(const L& l, L& target, int start, int count) {
    const int have = Count(l);
    if (start < 0 || start >= have) return;
    if (count > have - start) count = have - start;
    if (count < 1) return;
    // The same array that appending the elements one by one would leave.
    if (GetBuffer(target, count) != nullptr) std::memcpy(target.m_pData, l.m_pData + start, Bytes(count));
  }

  static void Pack(L& l) {
    Check check(l);
    const int count = Count(l);
    int kept = 0;
    for (int i = 0; i < count; ++i)
      if (l.m_pData[i] != T()) l.m_pData[kept++] = l.m_pData[i];
    if (kept == count) return;
    // In the array as it is, shared or not (deliberate, as Delete).
    std::memset(l.m_pData + kept, 0, Bytes(count - kept));
    Header(l)->nDataLength = kept;
  }

  static int Validate(const L& l) {
    Data* const data = Header(l);
    if (data == nullptr) return 1;
    if (ka_interlocked_read(&data->nRefs) < 1) return 0;
    const int count = data->nDataLength, room = AllocLength(l);
    if (count < 0 || count > room) return 0;
    for (int i = count; i < room; ++i)
      if (l.m_pData[i] != T()) return 0;
    return 1;
  }
};

}  // namespace ka_detail

namespace {
typedef ka_detail::Ka_FlatListOps<Ka_IntList> IntOps;
typedef ka_detail::Ka_FlatListOps<Ka_PtrList> PtrOps;
}  // namespace

// ---- Ka_IntList -----------------------------------------------------------------

Ka_IntList::Ka_IntList(const Ka_IntList& other) : m_pData(nullptr) { IntOps::Share(*this, other); }
const Ka_IntList& Ka_IntList::AssignList(const Ka_IntList& other) {
  IntOps::AssignList(*this, other);
  return *this;
}
int Ka_IntList::GetAllocLength() const { return IntOps::AllocLength(*this); }
int Ka_IntList::Count() const { return IntOps::Count(*this); }
int Ka_IntList::GetItem(int index) const { return IntOps::Inside(*this, index) ? m_pData[index] : -1; }
int* Ka_IntList::GetBuffer(int count) {
  ka_detail::ListCheck<Ka_IntList> check(*this);
  return IntOps::GetBuffer(*this, count);
}
long Ka_IntList::Set(int index, int value) { return IntOps::Set(*this, index, value); }
int Ka_IntList::Add(int value) { return IntOps::Insert(*this, Count(), value); }
int Ka_IntList::Insert(int index, int value) { return IntOps::Insert(*this, index, value); }
long Ka_IntList::Delete(int start, int count) { return IntOps::Delete(*this, start, count); }
long Ka_IntList::Exchange(int a, int b) { return IntOps::Exchange(*this, a, b); }
long Ka_IntList::Move(int from, int to) { return IntOps::Move(*this, from, to); }
int Ka_IntList::IndexOf(int value) const { return IntOps::IndexOf(*this, value); }
void Ka_IntList::Reset(int count) {
  ka_detail::ListCheck<Ka_IntList> check(*this);
  int* const data = IntOps::GetBuffer(*this, count);
  if (data == nullptr) return;
  for (int i = 0; i < count; ++i) data[i] = i;
}
const Ka_IntList& Ka_IntList::AppendList(const Ka_IntList& other) {
  IntOps::AppendList(*this, other);
  return *this;
}
Ka_IntList Ka_IntList::GetSubList(int start, int count) const {
  Ka_IntList sub;
  IntOps::GetSubList(*this, sub, start, count);
  return sub;
}
int Ka_IntList::Validate() const { return IntOps::Validate(*this); }
void Ka_IntList::AllocBuffer(int count) { IntOps::AllocBuffer(*this, count); }
void Ka_IntList::FreeData(Ka_ListData* data) { Ka_BufferPool::FreeBuffer(data); }
void Ka_IntList::Release() { IntOps::Release(*this); }
void Ka_IntList::Release(Ka_ListData* data) { IntOps::Release(data); }

// ---- Ka_PtrList -----------------------------------------------------------------

Ka_PtrList::Ka_PtrList(const Ka_PtrList& other) : m_pData(nullptr) { PtrOps::Share(*this, other); }
const Ka_PtrList& Ka_PtrList::AssignList(const Ka_PtrList& other) {
  PtrOps::AssignList(*this, other);
  return *this;
}
int Ka_PtrList::GetAllocLength() const { return PtrOps::AllocLength(*this); }
int Ka_PtrList::Count() const { return PtrOps::Count(*this); }
void* Ka_PtrList::GetItem(int index) const { return PtrOps::Inside(*this, index) ? m_pData[index] : nullptr; }
void** Ka_PtrList::GetBuffer(int count) {
  ka_detail::ListCheck<Ka_PtrList> check(*this);
  return PtrOps::GetBuffer(*this, count);
}
long Ka_PtrList::Set(int index, void* value) { return PtrOps::Set(*this, index, value); }
int Ka_PtrList::Add(void* value) { return PtrOps::Insert(*this, Count(), value); }
int Ka_PtrList::Insert(int index, void* value) { return PtrOps::Insert(*this, index, value); }
long Ka_PtrList::Delete(int start, int count) { return PtrOps::Delete(*this, start, count); }
long Ka_PtrList::Exchange(int a, int b) { return PtrOps::Exchange(*this, a, b); }
long Ka_PtrList::Move(int from, int to) { return PtrOps::Move(*this, from, to); }
int Ka_PtrList::IndexOf(void* value) const { return PtrOps::IndexOf(*this, value); }
void Ka_PtrList::Pack() { PtrOps::Pack(*this); }
const Ka_PtrList& Ka_PtrList::AppendList(const Ka_PtrList& other) {
  PtrOps::AppendList(*this, other);
  return *this;
}
Ka_PtrList Ka_PtrList::GetSubList(int start, int count) const {
  Ka_PtrList sub;
  PtrOps::GetSubList(*this, sub, start, count);
  return sub;
}
int Ka_PtrList::Validate() const { return PtrOps::Validate(*this); }
void Ka_PtrList::AllocBuffer(int count) { PtrOps::AllocBuffer(*this, count); }
void Ka_PtrList::FreeData(Ka_ListData* data) { Ka_BufferPool::FreeBuffer(data); }
void Ka_PtrList::Release() { PtrOps::Release(*this); }
void Ka_PtrList::Release(Ka_ListData* data) { PtrOps::Release(data); }
