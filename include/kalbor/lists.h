// Kalbor400U lists.
//
// Ka_ObjList is a list of objects it does not know the type of: an item
// handler (Ka_ListObjHandler, kalbor/memory.h) builds, frees, assigns and
// compares the items, each of which lives in its own reference-counted slot
// of the handler's object pool. The list's array of slot pointers lives in a
// size-class pool block. Both levels are shared copy-on-write: copying a list
// shares its array, and linking an item of one list into another shares the
// item's slot. A list is either unsorted (positional) or sorted (kept in the
// handler's order by binary search, equal items merged).
//
// Ka_AStrList, Ka_WStrList and Ka_BuffList are typed lists over the three
// static handlers, with accessors that never give null, a tokenizer (Parse),
// concatenation (MergeAll) and removal of duplicates (RemoveDupList).
// Ka_IntList and Ka_PtrList are flat lists of 32-bit integers and untyped
// pointers in one shared block, without handlers.
//
// Rules shared by every list:
// - Indices are zero-based. Refused edits return -1 and change nothing;
//   out-of-range reads give null, -1 or an empty item as each member says.
//   Nothing is raised or logged. A request for more than kMaxCount
//   positions, or for memory the pools refuse, is refused the same way.
// - One element of an object or pointer array is one pointer wide; integer
//   elements are 32 bits.
// - Reference counts of arrays and slots change atomically, so lists that
//   share arrays or items may live in different threads; a single list object
//   is used by one thread at a time.
// - Lists that share an array or items must have the same handler (the
//   typed lists always do): a list refuses to share with a list of another
//   handler.
#ifndef KALBOR_LISTS_H
#define KALBOR_LISTS_H

#include <kalbor/buffer.h>
#include <kalbor/memory.h>
#include <kalbor/platform.h>
#include <kalbor/strings.h>

#include <cstdint>

namespace ka_detail {
template <class L>
struct Ka_StrListOps;
template <class L>
struct Ka_FlatListOps;
}  // namespace ka_detail

// Ka_ObjList: a list of handler-managed items.
// Invariant: m_items is null, or the data area of a size-class block whose
// header counts the lists sharing the array, holds the length in bytes (a
// multiple of the pointer size, at most the capacity), and whose entries from
// Count() up to the capacity are null; each non-null entry is a slot of the
// handler's pool whose refCount counts the arrays pointing at it.
// A list without handler holds only empty positions: members given a
// non-null item then return -1 (GetSafeItem null). The last step of a binary
// search may hand the handler's _CompareItem a null item for an empty
// position (the library's handlers read it as the empty value).
class KA_API Ka_ObjList {
 public:
  typedef Ka_BufferData Ka_ListData;  // the header in front of the array
  // The most positions an array holds.
  static constexpr int kMaxCount = static_cast<int>(0x7FFFE000u / sizeof(void*));

  // ---- Construction and access ---------------------------------------------

  // An empty list over handler (not owned, must outlive the list); sorted
  // non-zero keeps the handler's order. Allocates nothing.
  Ka_ObjList(Ka_ListObjHandler* handler, int sorted);
  // Copies the handler and the sorted flag and shares other's array.
  Ka_ObjList(const Ka_ObjList& other);
  // Drops this list's reference to its array (ReleaseList).
  ~Ka_ObjList();
  // Drops this list's reference to its array; the list becomes empty.
  void Clear() { ReleaseList(); }
  // The array's header, or null when the list owns no array.
  Ka_ListData* GetListData() const { return m_items != nullptr ? Ka_BufferData::FromData(m_items) : nullptr; }
  // The capacity in positions; 0 without array.
  int GetAllocLength() const {
    return m_items != nullptr ? static_cast<int>(GetListData()->nAllocLength / sizeof(void*)) : 0;
  }
  // The number of positions (empty ones included); 0 without array.
  int Count() const { return m_items != nullptr ? GetListData()->nDataLength / static_cast<int>(sizeof(void*)) : 0; }
  // The object at index; null without array, out of range or for an empty position.
  void* GetItem(int index) const;
  void* operator[](int index) const { return GetItem(index); }
  // AssignList(other).
  const Ka_ObjList& operator=(const Ka_ObjList& other) { return AssignList(other); }
  // Sorts nothing and returns Count(): order is kept on insertion (deliberate).
  int Sort() { return Count(); }
  // Non-zero when the list is kept in the handler's order.
  int IsSorted() const { return m_sorted; }
  // The handler given at construction.
  Ka_ListObjHandler* GetHandler() const { return m_handler; }

  // ---- Editing (items are copied in unless the name says Link) ---------------
  // A linked item must be the object of a slot of this list's handler's pool,
  // such as GetItem of another list of the same handler returns.

  // Where key would be inserted in a sorted list (the first position whose
  // item is not less than key); -1 without handler, without array (even on
  // a sorted list), for a null key, for an unsorted list, or when the search
  // meets an empty position.
  int SearchItem(void* key) const;
  // The index of an item equal to key: a linear scan from 0 on unsorted
  // lists, a binary search on sorted ones; -1 if none, without handler or
  // array, or for a null key.
  int FindItem(void* key) const;
  // Replaces position index by a copy of item (null empties it); beyond the
  // end, extend non-zero first grows the list with empty positions. 0, or -1
  // on a sorted list, for a negative index, or beyond the end without extend.
  long Set(int index, void* item, int extend);
  // As Set, but the position shares item's slot.
  long SetLink(int index, void* item, int extend);
  // Unsorted: AddItem. Sorted: inserts a copy by order; an equal item is
  // assigned in place instead (even when its slot is shared, deliberate).
  // The index where the value now stands, or -1 (null item on a sorted list).
  int Add(void* item);
  // As Add, linking; an equal item of a sorted list is replaced by the link.
  int AddLink(void* item);
  // Appends a copy of item (null appends an empty position); the new last
  // index, or -1 when the array cannot grow.
  int AddItem(void* item);
  // As AddItem, the new position sharing item's slot.
  int AddLinkItem(void* item);
  // Unsorted: InsertItem. Sorted: index ignored, Add (null gives -1).
  int Insert(int index, void* item);
  // As Insert, linking (sorted: AddLink).
  int InsertLink(int index, void* item);
  // Inserts a copy of item at index (null inserts an empty position); at or
  // past the end it appends. The index used, or -1 for a negative index.
  int InsertItem(int index, void* item);
  // As InsertItem, the new position sharing item's slot.
  int InsertLinkItem(int index, void* item);
  // Removes count positions from start (count cut to the end; below 1 removes
  // nothing). 0, or -1 without array or for start outside 0..Count() - 1.
  long Delete(int start, int count);
  // Swaps two positions. 0 (nothing done on a sorted list or for a = b), or
  // -1 for an index out of range.
  long Exchange(int a, int b);
  // Moves position from to to (to past the end means the last position),
  // shifting the positions between. 0 (nothing done on a sorted list or for
  // from = to), or -1 without array, for from out of range or a negative to.
  long Move(int from, int to);
  // Removes every empty position, keeping the order; an array without empty
  // positions is left as it is (not even made private).
  void Pack();
  // Grows the list to count positions (new ones empty); returns Count().
  int AllocItems(int count);
  // A private, writable object at index: a shared item is copied first, an
  // empty position gets a new empty item; beyond the end, extend non-zero
  // grows the list. Null for a negative index, beyond the end without extend,
  // without handler, or when memory is refused. Does not consult the sorted flag.
  void* GetSafeItem(int index, int extend);
  // Copies other's sorted flag and shares its array (the handler stays);
  // nothing when other has another handler. Returns *this.
  const Ka_ObjList& AssignList(const Ka_ObjList& other);
  // Appends other's items, shared: unsorted lists take its positions (empty
  // ones too), sorted ones AddLink each item; an empty list shares other's
  // whole array unless it is sorted and other is not. Nothing when both
  // share one array or other has another handler. Returns *this.
  const Ka_ObjList& AppendList(const Ka_ObjList& other);
  // Empties target, then makes it hold count positions from start, sharing
  // the items; the whole list is shared as by target.AssignList(*this) (the
  // sorted flag with it), any other range leaves target's flag alone.
  // count is cut to the end. Returns target's count: 0 for a negative start,
  // start at or past the end, count below 1 or another handler.
  int GetSubList(Ka_ObjList& target, int start, int count) const;

  // Walks the array and checks the invariant; 1 when it holds. Under the
  // KALBOR_VALIDATE build every editing member checks it on return.
  int Validate() const;

 protected:
  // A new slot (refCount 1) holding a new empty item; null without handler
  // or when the pool refuses.
  Ka_ObjBufData* AllocObjBuffer();
  // Drops one reference of slot; the last frees its item and gives the slot
  // back to the pool. Null is ignored.
  void ReleaseObjBuffer(Ka_ObjBufData* slot);
  // Empties position index, releasing its slot. Nothing out of range.
  void SetNull(int index);
  // Puts a copy of item at index (the array must be private): assigns in
  // place into an unshared slot, else into a new slot; null empties. Nothing
  // out of range; a refused slot leaves the position as it was.
  void SetItem(int index, void* item);
  // Makes position index share item's slot (null empties it). Nothing out of
  // range or without handler.
  void LinkItem(int index, void* item);
  // Attaches a new array of count null positions (capacity: the size class)
  // without releasing the old one; count below 1, above kMaxCount or a
  // refused block leaves no array.
  void AllocListBuffer(int count);
  // Drops this list's reference to its array; the last one releases every
  // item and frees the block.
  void ReleaseList();
  // Drops one reference of data (null ignored) and frees the block with the
  // last one, without touching the items.
  void ReleaseListData(Ka_ListData* data);
  // Makes the array private and at least count positions long (count < 0:
  // the current length); it never shrinks. The array, or null when there is
  // none (no array and count below 1) or memory is refused (nothing changed).
  Ka_ObjBufData** GetSafeList(int count);
  // The first position in low..high whose item is not less than key (high + 1
  // when none); -1 when the search meets an empty position.
  int SearchItemForRange(int low, int high, void* key) const;
  // A position in low..high whose item equals key, or -1.
  int FindItemForRange(int low, int high, void* key) const;

  Ka_ListObjHandler* m_handler;
  int m_sorted;
  Ka_ObjBufData** m_items;

 private:
  template <class L>
  friend struct ka_detail::Ka_StrListOps;
  static Ka_ObjBufData** _NewArray(int count, Ka_ObjBufData* const* from, int copied);
  int _Compare(int index, void* key) const;
  int _AddSorted(void* item, bool link);
  int _InsertAt(int index, void* item, bool link);
  long _SetAt(int index, void* item, int extend, bool link);
  void _DropArray(Ka_ListData* data, int count);
};

// Ka_AStrList: a list of narrow strings (Ka_AString::_KaAStringHandler).
class KA_API Ka_AStrList : public Ka_ObjList {
 public:
  // An empty list; sorted non-zero keeps strings in Compare order, merging equal ones.
  explicit Ka_AStrList(int sorted = 0);
  // Shares other's array.
  Ka_AStrList(const Ka_AStrList& other) : Ka_ObjList(other) {}
  // AssignList(other): shares other's array.
  const Ka_AStrList& operator=(const Ka_AStrList& other) {
    AssignList(other);
    return *this;
  }
  ~Ka_AStrList() {}

  // Ka_ObjList::Add / Insert of a copy of s: the index, or -1.
  int Add(const Ka_AString& s);
  int Insert(int index, const Ka_AString& s);
  // Adds the text up to its zero (null: the null string) at the end of an
  // unsorted list, or by order into a sorted one (equal strings merged);
  // Insert places it at index in an unsorted list (past the end: appends).
  // The index, or -1.
  int Add(const char* text);
  int Insert(int index, const char* text);
  // As above with wide text converted to codePage (0: the locale code page).
  int Add(const ka_wchar* text, unsigned int codePage);
  int Insert(int index, const ka_wchar* text, unsigned int codePage);
  // AppendList(*other) (nothing for null); returns Count().
  int Append(const Ka_AStrList* other);
  // The index of a string equal to text (case-sensitive), or -1.
  int Find(const char* text) const;
  // The string at index, or null.
  const Ka_AString* GetItem(int index) const;
  // The string at index, or a static empty string; never null. The empty
  // string is shared by every list and must not be written through.
  const Ka_AString* GetItemNN(int index) const;
  const Ka_AString& operator[](int index) const { return *GetItemNN(index); }
  // A private, writable string inside the list, or null out of range.
  Ka_AString* GetSafeItem(int index);

  // Replaces the contents by the fields of text; returns Count(). delimiters:
  // the characters that end a field (null: none). escape (0: none): outside
  // quotes it removes itself; inside quotes it is kept (unless stripQuotes)
  // and the next character is copied with r, n, t read as CR, LF, TAB.
  // delimiterMode 1: a run of delimiters ends one field and is dropped;
  // otherwise each delimiter ends a field (an empty one too), a CR is dropped
  // when LF is a delimiter (mode 0), and dropDelimiter 0 starts the next
  // field with the delimiter. quotes: " and ' open a quoted run, copied
  // without its quotes when stripQuotes is non-zero. brackets: (, [ and {
  // open a run copied up to the matching closer (no nesting). A field left
  // at the end is added; an empty one only when the text did not end with a
  // delimiter. An unsorted list keeps the fields' order; a sorted one orders
  // and merges them.
  int Parse(const char* text, const char* delimiters, char escape, int delimiterMode, int quotes, int stripQuotes,
            int dropDelimiter, int brackets);
  // The non-empty items concatenated without separator, first to last
  // (reverse 0) or last to first; the null string when the result would
  // exceed Ka_AString::Traits::kMaxLength.
  Ka_AString MergeAll(int reverse) const;
  // Removes every item equal, ignoring ASCII case (ka_stricmpA), to an
  // earlier one (empty positions count as empty strings); the first of each
  // value stays in place. Returns Count().
  int RemoveDupList();

 private:
  friend struct ka_detail::Ka_StrListOps<Ka_AStrList>;
};

// Ka_WStrList: a list of wide strings (Ka_WString::_KaWStringHandler), with
// Ka_AStrList's members on ka_wchar text. It differs in: items order and
// Find by ka_strcmpW; Parse compares escape as a signed byte widened to 16
// bits, has no lead-byte step, and at the end adds only a non-empty field
// (never an empty last one, deliberate); RemoveDupList uses ka_stricmpW.
class KA_API Ka_WStrList : public Ka_ObjList {
 public:
  // An empty unsorted list, or with sorted non-zero one kept in ka_strcmpW order.
  Ka_WStrList();
  explicit Ka_WStrList(int sorted);
  Ka_WStrList(const Ka_WStrList& other) : Ka_ObjList(other) {}
  const Ka_WStrList& operator=(const Ka_WStrList& other) {
    AssignList(other);
    return *this;
  }
  ~Ka_WStrList() {}

  int Add(const Ka_WString& s);
  int Insert(int index, const Ka_WString& s);
  int Add(const ka_wchar* text);
  int Insert(int index, const ka_wchar* text);
  // Narrow text converted from codePage (0: the locale code page).
  int Add(const char* text, int codePage);
  int Insert(int index, const char* text, int codePage);
  int Append(const Ka_WStrList* other);
  int Find(const ka_wchar* text) const;
  const Ka_WString* GetItem(int index) const;
  const Ka_WString* GetItemNN(int index) const;
  const Ka_WString& operator[](int index) const { return *GetItemNN(index); }
  Ka_WString* GetSafeItem(int index);
  int Parse(const ka_wchar* text, const ka_wchar* delimiters, char escape, int delimiterMode, int quotes,
            int stripQuotes, int dropDelimiter, int brackets);
  Ka_WString MergeAll(int reverse) const;
  int RemoveDupList();

 private:
  friend struct ka_detail::Ka_StrListOps<Ka_WStrList>;
};

// Ka_BuffList: an unsorted list of byte buffers (Ka_Buffer::_KaBufferHandler)
// with long indices; an index outside the int range reads as out of range
// (past the end for Insert, which then appends).
class KA_API Ka_BuffList : public Ka_ObjList {
 public:
  // An empty list; allocates nothing.
  Ka_BuffList();
  // Shares other's array (so does assignment).
  Ka_BuffList(const Ka_BuffList& other) : Ka_ObjList(other) {}
  const Ka_BuffList& operator=(const Ka_BuffList& other) {
    AssignList(other);
    return *this;
  }
  ~Ka_BuffList() {}

  // A copy of b at the end, or at index: the index, or -1.
  long Add(const Ka_Buffer& b);
  long Insert(long index, const Ka_Buffer& b);
  // A new item holding length bytes of data, as Ka_Buffer::Set(data, length).
  long Add(const unsigned char* data, long length);
  long Insert(long index, const unsigned char* data, long length);
  // AppendList(*other) (nothing for null); returns Count().
  long Append(const Ka_BuffList* other);
  // The buffer at index, or null.
  const Ka_Buffer* GetItem(long index) const;
  // The buffer at index, or a static empty buffer (never null, never to be written).
  const Ka_Buffer* GetItemNN(long index) const;
  const Ka_Buffer& operator[](long index) const { return *GetItemNN(index); }
  // A private, writable buffer inside the list, or null out of range.
  Ka_Buffer* GetSafeItem(long index);
};

// Ka_IntList: a list of 32-bit integers in one block shared between copies.
// Invariant: m_pData is null, or the data area of a size-class block whose
// header counts the lists sharing it and holds the element count (at most
// the capacity), with the elements from the count up to the capacity zero.
class KA_API Ka_IntList {
 public:
  typedef Ka_BufferData Ka_ListData;
  static constexpr int kMaxCount = static_cast<int>(0x7FFFE000u / sizeof(int));

  // An empty list; allocates nothing.
  Ka_IntList() : m_pData(nullptr) {}
  // Shares other's array.
  Ka_IntList(const Ka_IntList& other);
  // Takes other's array; other becomes empty.
  Ka_IntList(Ka_IntList&& other) noexcept : m_pData(other.m_pData) { other.m_pData = nullptr; }
  ~Ka_IntList() { Release(); }
  // Drops this list's reference; the list becomes empty.
  void Clear() { Release(); }
  // Shares other's array (nothing when both share one). Returns *this.
  const Ka_IntList& AssignList(const Ka_IntList& other);
  const Ka_IntList& operator=(const Ka_IntList& other) { return AssignList(other); }
  // The header, or null without array.
  Ka_ListData* GetListData() const { return m_pData != nullptr ? Ka_BufferData::FromData(m_pData) : nullptr; }
  // Capacity in elements; 0 without array.
  int GetAllocLength() const;
  // Elements in use; 0 without array.
  int Count() const;
  // The element, or -1 without array or out of range (-1 is also a legal value).
  int GetItem(int index) const;
  // GetItem(index).
  int Items(int index) const { return GetItem(index); }
  // Makes the array private and at least count elements long (new ones 0),
  // never shorter than it was; the array, or null when there is none or
  // memory is refused (nothing changed).
  int* GetBuffer(int count);
  // Writes value at index in the current array, deliberately without making
  // it private: every list sharing the array sees it. 0, or -1 out of range.
  long Set(int index, int value);
  // Appends value; its index, or -1 when the array cannot grow.
  int Add(int value);
  // Inserts value at index (at or past the end: appends); the index, or -1
  // for a negative index.
  int Insert(int index, int value);
  // Removes count elements from start (cut to the end) in the current array,
  // deliberately without making it private. 0 (also for count below 1), or
  // -1 without array or for start outside 0..Count() - 1.
  long Delete(int start, int count);
  // Swaps two elements. 0 (at once for a = b), or -1 out of range.
  long Exchange(int a, int b);
  // Moves the element at from to to, shifting those between. 0 (for from =
  // to as well), or -1 without array or for either index out of range (a
  // destination past the end is refused).
  long Move(int from, int to);
  // The index of the first element equal to value, or -1.
  int IndexOf(int value) const;
  // Makes the first count elements 0, 1, ..., count - 1; elements past
  // count are kept.
  void Reset(int count);
  // Appends other's elements (an empty list shares other's array); nothing
  // when both share one. Returns *this.
  const Ka_IntList& AppendList(const Ka_IntList& other);
  // A new, unshared list of count elements from start (count cut to the
  // end); empty for a negative start or start at or past the end.
  Ka_IntList GetSubList(int start, int count) const;
  // Checks the invariant; 1 when it holds (see Ka_ObjList::Validate).
  int Validate() const;

 protected:
  // Attaches a new zeroed array of count elements without releasing the old
  // one; count below 1, above kMaxCount or a refused block leaves none.
  void AllocBuffer(int count);
  // Returns the block to the pools.
  static void FreeData(Ka_ListData* data);
  // Drops this list's reference, freeing the block with the last one.
  void Release();
  // Drops one reference of data (null ignored), freeing it with the last.
  static void Release(Ka_ListData* data);

  int* m_pData;

 private:
  friend struct ka_detail::Ka_FlatListOps<Ka_IntList>;
};
static_assert(sizeof(int) == 4, "Ka_IntList elements are 32-bit");

// Ka_PtrList: a list of untyped pointers it does not own, with Ka_IntList's
// members and rules on void* elements, except: missing elements read as
// null, Pack removes null elements, and there is no Reset.
class KA_API Ka_PtrList {
 public:
  typedef Ka_BufferData Ka_ListData;
  static constexpr int kMaxCount = static_cast<int>(0x7FFFE000u / sizeof(void*));

  // Construction, sharing and access as Ka_IntList's; allocates nothing.
  Ka_PtrList() : m_pData(nullptr) {}
  Ka_PtrList(const Ka_PtrList& other);
  Ka_PtrList(Ka_PtrList&& other) noexcept : m_pData(other.m_pData) { other.m_pData = nullptr; }
  ~Ka_PtrList() { Release(); }
  void Clear() { Release(); }
  const Ka_PtrList& AssignList(const Ka_PtrList& other);
  const Ka_PtrList& operator=(const Ka_PtrList& other) { return AssignList(other); }
  Ka_ListData* GetListData() const { return m_pData != nullptr ? Ka_BufferData::FromData(m_pData) : nullptr; }
  int GetAllocLength() const;
  int Count() const;
  // The element, or null without array or out of range.
  void* GetItem(int index) const;
  void* Items(int index) const { return GetItem(index); }
  void** GetBuffer(int count);
  // Writes in the current array, shared or not (deliberate).
  long Set(int index, void* value);
  int Add(void* value);
  int Insert(int index, void* value);
  // Works in the current array, shared or not (deliberate).
  long Delete(int start, int count);
  long Exchange(int a, int b);
  long Move(int from, int to);
  // The index of the first element that is the pointer value, or -1.
  int IndexOf(void* value) const;
  // Removes every null element, keeping the order, in the current array
  // even when it is shared (deliberate, as Delete).
  void Pack();
  const Ka_PtrList& AppendList(const Ka_PtrList& other);
  Ka_PtrList GetSubList(int start, int count) const;
  int Validate() const;

 protected:
  void AllocBuffer(int count);
  static void FreeData(Ka_ListData* data);
  void Release();
  static void Release(Ka_ListData* data);

  void** m_pData;

 private:
  friend struct ka_detail::Ka_FlatListOps<Ka_PtrList>;
};

// The lists' static objects (the empty string, wide string and buffer that
// the never-null accessors return) live from before the first static object
// of any translation unit that includes this header until after its last one
// is destroyed, as the pools and the strings' objects do.
class KA_API Ka_ListsModule {
 public:
  Ka_ListsModule();
  ~Ka_ListsModule();
  Ka_ListsModule(const Ka_ListsModule&) = delete;
  Ka_ListsModule& operator=(const Ka_ListsModule&) = delete;
};
static Ka_ListsModule ka_lists_module_instance;

#endif  // KALBOR_LISTS_H
