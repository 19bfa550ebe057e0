// Ka_ObjList: the handler-managed object list.
//
// Two levels of sharing run through every member. The array of slot
// pointers is shared between copies of a list and made private by
// GetSafeList before any change to it; each slot counts the arrays that
// point at it, and SetItem and GetSafeItem copy a shared item before writing
// it. The one place that writes a shared slot is Add's merge of an equal item
// into a sorted list (deliberate).
#include <kalbor/lists.h>

#include <cstring>

#include "lists/list_check.h"

namespace {

const int kPtr = static_cast<int>(sizeof(void*));
typedef ka_detail::ListCheck<Ka_ObjList> Check;

size_t Bytes(int count) { return static_cast<size_t>(count) * sizeof(void*); }
int Refs(Ka_ObjBufData* slot) { return ka_interlocked_read(&slot->refCount); }

}  // namespace

// ---- Construction and access ---------------------------------------------------

Ka_ObjList::Ka_ObjList(Ka_ListObjHandler* handler, int sorted)
    : m_handler(handler), m_sorted(sorted), m_items(nullptr) {}

Ka_ObjList::Ka_ObjList(const Ka_ObjList& other)
    : m_handler(other.m_handler), m_sorted(other.m_sorted), m_items(other.m_items) {
  if (m_items != nullptr) GetListData()->AddRef();
}

Ka_ObjList::~Ka_ObjList() { ReleaseList(); }

void* Ka_ObjList::GetItem(int index) const {
  if (index < 0 || index >= Count()) return nullptr;
  Ka_ObjBufData* const slot = m_items[index];
  return slot != nullptr ? slot->object() : nullptr;
}

// ---- Slots -------------------------------------------------------------------------

Ka_ObjBufData* Ka_ObjList::AllocObjBuffer() {
  if (m_handler == nullptr) return nullptr;
  Ka_ObjBufData* const slot = m_handler->GetPool().Alloc();
  if (slot != nullptr) m_handler->_InitItem(slot->object());
  return slot;
}

void Ka_ObjList::ReleaseObjBuffer(Ka_ObjBufData* slot) {
  // A list without handler never holds a slot (nothing can put one there).
  if (slot == nullptr || m_handler == nullptr) return;
  Ka_ObjBufPool& pool = m_handler->GetPool();
  if (slot->Release(&pool) < 1) {
    m_handler->_FreeItem(slot->object());
    pool.Free(slot);
  }
}

void Ka_ObjList::SetNull(int index) {
  if (index < 0 || index >= Count()) return;
  Ka_ObjBufData* const slot = m_items[index];
  if (slot == nullptr) return;
  m_items[index] = nullptr;
  ReleaseObjBuffer(slot);
}

void Ka_ObjList::SetItem(int index, void* item) {
  if (index < 0 || index >= Count()) return;
  if (item == nullptr) {
    SetNull(index);
    return;
  }
  Ka_ObjBufData* const old = m_items[index];
  if (old != nullptr && Refs(old) < 2) {  // this array is its only holder
    m_handler->_AssignItem(old->object(), item);
    return;
  }
  Ka_ObjBufData* const fresh = AllocObjBuffer();
  if (fresh == nullptr) return;
  m_handler->_AssignItem(fresh->object(), item);
  m_items[index] = fresh;
  ReleaseObjBuffer(old);  // other holders keep the old value
}

void Ka_ObjList::LinkItem(int index, void* item) {
  if (index < 0 || index >= Count()) return;
  if (item != nullptr && m_handler == nullptr) return;
  Ka_ObjBufData* linked = nullptr;
  if (item != nullptr) {
    // Counted before the old slot goes: item may be the object at index itself.
    linked = Ka_ObjBufData::FromObject(item);
    linked->AddRef(&m_handler->GetPool());
  }
  Ka_ObjBufData* const old = m_items[index];
  m_items[index] = linked;
  ReleaseObjBuffer(old);
}

// ---- Arrays -------------------------------------------------------------------------

// A new array of count positions (capacity: the size class) whose first
// copied entries come from `from` (no reference changes) and whose other
// entries, up to the capacity, are null; null when refused.
Ka_ObjBufData** Ka_ObjList::_NewArray(int count, Ka_ObjBufData* const* from, int copied) {
  if (count < 1 || count > kMaxCount) return nullptr;
  Ka_ListData* const data = Ka_BufferPool::AllocBuffer(count * kPtr);  // length count x pointer
  if (data == nullptr) return nullptr;
  Ka_ObjBufData** const items = reinterpret_cast<Ka_ObjBufData**>(data->data());
  if (copied > 0) std::memcpy(items, from, Bytes(copied));
  // Up to the capacity, not only the count: a reused pool unit keeps the
  // bytes it held, and the entries past the count must be null.
  std::memset(items + copied, 0, data->nAllocLength - Bytes(copied));
  return items;
}

void Ka_ObjList::AllocListBuffer(int count) { m_items = _NewArray(count, nullptr, 0); }

void Ka_ObjList::ReleaseList() {
  if (m_items == nullptr) return;
  Ka_ListData* const data = GetListData();
  const int count = Count();
  m_items = nullptr;
  _DropArray(data, count);
}

void Ka_ObjList::ReleaseListData(Ka_ListData* data) {
  if (data != nullptr && data->Release() < 1) Ka_BufferPool::FreeBuffer(data);
}

// Drops one reference of an array of count positions; the last one releases
// the items and frees the block.
void Ka_ObjList::_DropArray(Ka_ListData* data, int count) {
  if (data->Release() > 0) return;  // another list still shares the array
  Ka_ObjBufData** const items = reinterpret_cast<Ka_ObjBufData**>(data->data());
  for (int i = 0; i < count; ++i) {
    Ka_ObjBufData* const slot = items[i];
    if (slot == nullptr) continue;
    items[i] = nullptr;
    ReleaseObjBuffer(slot);
  }
  Ka_BufferPool::FreeBuffer(data);
}

Ka_ObjBufData** Ka_ObjList::GetSafeList(int count) {
  Ka_ListData* const old = GetListData();
  if (old == nullptr) {
    if (count < 1) return nullptr;
    AllocListBuffer(count);
    return m_items;
  }
  const int have = Count();
  Ka_ObjBufData** const from = m_items;
  if (ka_interlocked_read(&old->nRefs) > 1) {
    // Shared: a private copy that never has fewer positions than the old array.
    const int length = count > have ? count : have;
    m_items = _NewArray(length, from, have);
    if (m_items == nullptr && length > 0) {
      m_items = from;
      return nullptr;
    }
    for (int i = 0; i < have; ++i)
      if (from[i] != nullptr) from[i]->AddRef(m_handler != nullptr ? &m_handler->GetPool() : nullptr);
    // The copy holds its own references. Should the other holders have let
    // go meanwhile, this was the last reference, and the old array's item
    // references go with it.
    _DropArray(old, have);
    return m_items;
  }
  if (count <= have) return m_items;
  if (count > GetAllocLength()) {
    m_items = _NewArray(count, from, have);  // the references move with the pointers
    if (m_items == nullptr) {
      m_items = from;
      return nullptr;
    }
    ReleaseListData(old);
    return m_items;
  }
  old->nDataLength = count * kPtr;  // the new positions are already null
  return m_items;
}

// ---- Searching -------------------------------------------------------------------

int Ka_ObjList::_Compare(int index, void* key) const {
  return m_handler != nullptr ? m_handler->_CompareItem(GetItem(index), key) : 0;
}

int Ka_ObjList::SearchItemForRange(int low, int high, void* key) const {
  if (high >= low && (low < 0 || high >= Count())) return -1;
  for (;;) {
    if (high < low) return low;
    const int mid = (low + high) / 2;
    if (mid == low) break;
    if (m_items[mid] == nullptr) return -1;
    if (_Compare(mid, key) < 0)
      low = mid + 1;
    else
      high = mid;
  }
  // At most two candidates are left: low, and high = low or low + 1.
  const bool lowEmpty = m_items[low] == nullptr, highEmpty = m_items[high] == nullptr;
  if (lowEmpty && highEmpty) return low;
  if (_Compare(low, key) >= 0) return low;
  if (low == high) return high + 1;
  if (highEmpty) return high;
  return _Compare(high, key) < 0 ? high + 1 : high;
}

int Ka_ObjList::FindItemForRange(int low, int high, void* key) const {
  if (high >= low && (low < 0 || high >= Count())) return -1;
  for (;;) {
    if (high < low) return -1;
    const int mid = (low + high) / 2;
    if (mid == low) break;
    if (m_items[mid] == nullptr) return -1;
    const int order = _Compare(mid, key);
    if (order == 0) return mid;
    if (order > 0)
      high = mid - 1;
    else
      low = mid + 1;
  }
  const bool lowEmpty = m_items[low] == nullptr, highEmpty = m_items[high] == nullptr;
  if (lowEmpty && highEmpty) return -1;
  if (_Compare(low, key) == 0) return low;
  if (low == high || highEmpty) return -1;
  return _Compare(high, key) == 0 ? high : -1;
}

int Ka_ObjList::SearchItem(void* key) const {
  if (m_handler == nullptr || m_items == nullptr || key == nullptr || m_sorted == 0) return -1;
  return SearchItemForRange(0, Count() - 1, key);
}

int Ka_ObjList::FindItem(void* key) const {
  if (m_handler == nullptr || m_items == nullptr || key == nullptr) return -1;
  const int count = Count();
  if (m_sorted != 0) return FindItemForRange(0, count - 1, key);
  for (int i = 0; i < count; ++i)
    if (m_items[i] != nullptr && m_handler->_CompareItem(m_items[i]->object(), key) == 0) return i;
  return -1;
}

// ---- Editing -------------------------------------------------------------------------

long Ka_ObjList::_SetAt(int index, void* item, int extend, bool link) {
  Check check(*this);
  if (m_sorted != 0 || index < 0) return -1;  // no positional replacement in a sorted list
  if (item != nullptr && m_handler == nullptr) return -1;
  if (index < Count()) {
    if (item == nullptr && m_items[index] == nullptr) return 0;
    if (GetSafeList(-1) == nullptr) return -1;
  } else {
    if (extend == 0 || index >= kMaxCount) return -1;
    if (GetSafeList(index + 1) == nullptr) return -1;
  }
  if (link)
    LinkItem(index, item);
  else
    SetItem(index, item);
  return 0;
}

long Ka_ObjList::Set(int index, void* item, int extend) { return _SetAt(index, item, extend, false); }
long Ka_ObjList::SetLink(int index, void* item, int extend) { return _SetAt(index, item, extend, true); }

int Ka_ObjList::_AddSorted(void* item, bool link) {
  if (item == nullptr || m_handler == nullptr) return -1;
  const int count = Count();
  const int pos = SearchItemForRange(0, count - 1, item);
  if (pos < 0) return -1;  // the search met an empty position
  if (pos >= count) return link ? AddLinkItem(item) : AddItem(item);
  if (m_items[pos] == nullptr || _Compare(pos, item) != 0) return _InsertAt(pos, item, link);
  // An equal item: merged, never duplicated.
  if (link) {
    Check check(*this);
    if (GetSafeList(-1) == nullptr) return -1;
    LinkItem(pos, item);
  } else {
    // Written in place even when other lists share the slot (deliberate).
    m_handler->_AssignItem(m_items[pos]->object(), item);
  }
  return pos;
}

int Ka_ObjList::Add(void* item) { return m_sorted != 0 ? _AddSorted(item, false) : AddItem(item); }
int Ka_ObjList::AddLink(void* item) { return m_sorted != 0 ? _AddSorted(item, true) : AddLinkItem(item); }

int Ka_ObjList::AddItem(void* item) { return _InsertAt(Count(), item, false); }
int Ka_ObjList::AddLinkItem(void* item) { return _InsertAt(Count(), item, true); }

int Ka_ObjList::_InsertAt(int index, void* item, bool link) {
  Check check(*this);
  if (index < 0) return -1;
  if (item != nullptr && m_handler == nullptr) return -1;
  const int count = Count();
  if (count >= kMaxCount) return -1;
  if (index > count) index = count;  // at or past the end: appends
  if (GetSafeList(count + 1) == nullptr) return -1;
  if (index < count) {
    std::memmove(m_items + index + 1, m_items + index, Bytes(count - index));
    m_items[index] = nullptr;
  }
  if (item != nullptr) {
    if (link)
      LinkItem(index, item);
    else
      SetItem(index, item);
  }
  return index;
}

int Ka_ObjList::InsertItem(int index, void* item) { return _InsertAt(index, item, false); }
int Ka_ObjList::InsertLinkItem(int index, void* item) { return _InsertAt(index, item, true); }

int Ka_ObjList::Insert(int index, void* item) {
  return m_sorted != 0 ? _AddSorted(item, false) : _InsertAt(index, item, false);  // sorted: index ignored
}
int Ka_ObjList::InsertLink(int index, void* item) {
  return m_sorted != 0 ? _AddSorted(item, true) : _InsertAt(index, item, true);
}

long Ka_ObjList::Delete(int start, int count) {
  Check check(*this);
  const int have = Count();
  if (m_items == nullptr || start < 0 || start >= have) return -1;
  if (count > have - start) count = have - start;
  if (count < 1) return 0;
  if (GetSafeList(-1) == nullptr) return -1;
  for (int i = start; i < start + count; ++i) SetNull(i);
  std::memmove(m_items + start, m_items + start + count, Bytes(have - start - count));
  std::memset(m_items + have - count, 0, Bytes(count));
  GetListData()->nDataLength = (have - count) * kPtr;
  return 0;
}

long Ka_ObjList::Exchange(int a, int b) {
  Check check(*this);
  if (m_sorted != 0 || a == b) return 0;
  const int count = Count();
  if (a < 0 || a >= count || b < 0 || b >= count) return -1;
  if (GetSafeList(-1) == nullptr) return -1;
  Ka_ObjBufData* const slot = m_items[a];
  m_items[a] = m_items[b];
  m_items[b] = slot;
  return 0;
}

long Ka_ObjList::Move(int from, int to) {
  Check check(*this);
  if (m_sorted != 0 || from == to) return 0;
  const int count = Count();
  if (m_items == nullptr || from < 0 || from >= count || to < 0) return -1;
  if (to >= count) to = count - 1;
  if (GetSafeList(-1) == nullptr) return -1;
  Ka_ObjBufData* const slot = m_items[from];
  if (from < to)
    std::memmove(m_items + from, m_items + from + 1, Bytes(to - from));
  else
    std::memmove(m_items + to + 1, m_items + to, Bytes(from - to));
  m_items[to] = slot;
  return 0;
}

void Ka_ObjList::Pack() {
  Check check(*this);
  const int count = Count();
  int last = count - 1;
  while (last >= 0 && m_items[last] != nullptr) --last;
  if (last < 0) return;  // nothing to remove: the array stays as it is
  if (GetSafeList(-1) == nullptr) return;
  // One pass keeps the order that deleting each empty position from the end
  // down would leave; empty positions hold no slot to release.
  int kept = 0;
  for (int i = 0; i < count; ++i)
    if (m_items[i] != nullptr) m_items[kept++] = m_items[i];
  std::memset(m_items + kept, 0, Bytes(count - kept));
  GetListData()->nDataLength = kept * kPtr;
}

int Ka_ObjList::AllocItems(int count) {
  Check check(*this);
  if (Count() >= count) return Count();
  return GetSafeList(count) != nullptr ? count : Count();
}

void* Ka_ObjList::GetSafeItem(int index, int extend) {
  Check check(*this);
  if (index < 0 || m_handler == nullptr) return nullptr;
  if (index < Count()) {
    if (GetSafeList(-1) == nullptr) return nullptr;
  } else {
    if (extend == 0 || index >= kMaxCount) return nullptr;
    if (GetSafeList(index + 1) == nullptr) return nullptr;
  }
  Ka_ObjBufData* slot = m_items[index];
  if (slot == nullptr) {
    slot = AllocObjBuffer();
    if (slot == nullptr) return nullptr;
    m_items[index] = slot;
  } else if (Refs(slot) > 1) {  // copy on write of the single item
    Ka_ObjBufData* const fresh = AllocObjBuffer();
    if (fresh == nullptr) return nullptr;
    m_handler->_AssignItem(fresh->object(), slot->object());
    m_items[index] = fresh;
    ReleaseObjBuffer(slot);
    slot = fresh;
  }
  return slot->object();
}

const Ka_ObjList& Ka_ObjList::AssignList(const Ka_ObjList& other) {
  Check check(*this);
  if (other.m_handler != m_handler) return *this;
  m_sorted = other.m_sorted;
  if (m_items == other.m_items) return *this;
  Ka_ListData* const data = other.GetListData();
  if (data != nullptr) data->AddRef();
  ReleaseList();
  m_items = other.m_items;
  return *this;
}

const Ka_ObjList& Ka_ObjList::AppendList(const Ka_ObjList& other) {
  Check check(*this);
  if (other.m_handler != m_handler || m_items == other.m_items) return *this;
  const int count = Count(), added = other.Count();
  if (count == 0) {
    ReleaseList();
    if (added == 0) return *this;
    if (m_sorted == 0 || other.m_sorted != 0) {  // share the whole array; this list's flag stays
      other.GetListData()->AddRef();
      m_items = other.m_items;
      return *this;
    }
  } else if (added == 0) {
    return *this;
  } else if (m_sorted == 0) {
    if (added > kMaxCount - count || GetSafeList(count + added) == nullptr) return *this;
    for (int i = 0; i < added; ++i) {
      Ka_ObjBufData* const slot = other.m_items[i];
      if (slot == nullptr) continue;  // empty positions are carried over
      slot->AddRef(&m_handler->GetPool());
      m_items[count + i] = slot;
    }
    return *this;
  }
  for (int i = 0; i < added; ++i)
    if (other.m_items[i] != nullptr) AddLink(other.m_items[i]->object());
  return *this;
}

int Ka_ObjList::GetSubList(Ka_ObjList& target, int start, int count) const {
  Check check(target);
  const Ka_ObjList source(*this);  // keeps the array when target is this list
  target.ReleaseList();
  if (target.m_handler != m_handler) return 0;
  const int have = source.Count();
  if (start < 0 || start >= have) return 0;
  if (count > have - start) count = have - start;
  if (count < 1) return 0;
  if (start == 0 && count == have) {
    target.AssignList(source);
    return target.Count();
  }
  if (target.GetSafeList(count) == nullptr) return 0;
  for (int i = 0; i < count; ++i) {
    Ka_ObjBufData* const slot = source.m_items[start + i];
    if (slot == nullptr) continue;
    slot->AddRef(&m_handler->GetPool());
    target.m_items[i] = slot;
  }
  return target.Count();
}

// ---- Checking -----------------------------------------------------------------------

int Ka_ObjList::Validate() const {
  if (m_items == nullptr) return 1;
  Ka_ListData* const data = GetListData();
  const int32_t length = data->nDataLength;
  const uint32_t capacity = data->nAllocLength;
  if (ka_interlocked_read(&data->nRefs) < 1) return 0;
  if (length < 0 || length % kPtr != 0 || static_cast<uint32_t>(length) > capacity || capacity % kPtr != 0) return 0;
  const int count = length / kPtr, room = static_cast<int>(capacity / sizeof(void*));
  for (int i = 0; i < count; ++i) {
    Ka_ObjBufData* const slot = m_items[i];
    if (slot != nullptr && (m_handler == nullptr || Refs(slot) < 1)) return 0;
  }
  for (int i = count; i < room; ++i)
    if (m_items[i] != nullptr) return 0;
  return 1;
}
