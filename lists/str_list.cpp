// Ka_AStrList, Ka_WStrList and Ka_BuffList: typed lists over the three
// static item handlers.
//
// The two string lists share one implementation (Ka_StrListOps), written
// over the traits of their width; the tokenizer behind Parse (Scan) is one
// function for both widths, its differences being options.
#include <kalbor/codepage.h>
#include <kalbor/lists.h>

#include <algorithm>
#include <climits>
#include <cstring>

#include "lists/empty_items.h"
#include "lists/list_check.h"

namespace {

typedef ka_detail::ListCheck<Ka_ObjList> Check;

// A new item set by set(item): appended to (or, with insert, inserted at
// index into) an unsorted list as an empty position that is then filled; a
// sorted list takes a copy by order instead (index ignored, equal items
// merged). The index, or -1.
template <class S, class SetFn>
int AddNew(Ka_ObjList& list, int index, bool insert, SetFn set) {
  if (list.IsSorted() != 0) {
    S value;
    set(value);
    return list.Add(&value);
  }
  const int at = insert ? list.InsertItem(index, nullptr) : list.AddItem(nullptr);
  if (at < 0) return -1;
  S* const item = static_cast<S*>(list.GetSafeItem(at, 0));
  if (item != nullptr) set(*item);
  return at;
}

// ---- The tokenizer -------------------------------------------------------------

// The double-byte code pages of the narrow lead-byte step, each with up to
// two lead-byte ranges; a code page of 0 ends the table.
struct LeadByteRange {
  uint16_t first, last;
};
struct LeadBytePage {
  unsigned int codePage;
  LeadByteRange ranges[2];
};
const LeadBytePage kLeadBytePages[5] = {
    {932, {{0x81, 0x9F}, {0xE0, 0xFC}}},
    {936, {{0x81, 0xFE}, {0, 0}}},
    {949, {{0x81, 0xFE}, {0, 0}}},
    {950, {{0x81, 0xFE}, {0, 0}}},
    {0, {{0, 0}, {0, 0}}},
};

const LeadBytePage* FindLeadBytePage(unsigned int codePage) {
  for (const LeadBytePage* page = kLeadBytePages; page->codePage != 0; ++page)
    if (page->codePage == codePage) return page;
  return nullptr;
}

// The byte is widened as a signed value first, so 0x81 reads as 0xFF81 and no
// byte ever falls in a range: every byte is copied singly (deliberate).
bool IsLeadByte(const LeadBytePage* page, char c) {
  const uint16_t unit = static_cast<uint16_t>(static_cast<int16_t>(static_cast<signed char>(c)));
  for (const LeadByteRange& range : page->ranges)
    if (range.first != 0 && unit >= range.first && unit <= range.last) return true;
  return false;
}
bool IsLeadByte(const LeadBytePage*, ka_wchar) { return false; }

bool HasHighUnit(const char*, char) { return false; }
bool HasHighUnit(const ka_wchar* set, ka_wchar c) { return ka_strchrW(set, c) != nullptr; }

// A set of characters: a table for units below 256; above, the units of a
// zero-terminated set and one more unit.
template <class Char>
class CharSet {
 public:
  explicit CharSet(const Char* set) : m_set(set), m_high(false), m_extra(0) {
    std::memset(m_low, 0, sizeof(m_low));
    for (const Char* p = set; p != nullptr && *p != 0; ++p) {
      if (Unit(*p) < 256)
        m_low[Unit(*p)] = true;
      else
        m_high = true;
    }
  }
  void Add(Char c) {
    if (Unit(c) < 256)
      m_low[Unit(c)] = true;
    else
      m_extra = c;
  }
  bool Has(Char c) const {
    const unsigned int unit = Unit(c);
    return unit < 256 ? m_low[unit] : c == m_extra || (m_high && HasHighUnit(m_set, c));
  }

 private:
  static unsigned int Unit(Char c) {
    return sizeof(Char) == 1 ? static_cast<unsigned char>(c) : static_cast<unsigned int>(static_cast<uint16_t>(c));
  }
  const Char* m_set;
  bool m_high;
  Char m_extra;
  bool m_low[256];
};

template <class Char>
struct ParseOptions {
  CharSet<Char> delimiters;
  Char escape;                // 0: none
  int delimiterMode;          // 1: a run of delimiters counts as one
  bool quotes, stripQuotes, dropDelimiter, brackets;
  bool dropCr;                // mode 0 and LF among the delimiters
  bool emptyLastField;        // the narrow end rule
  const LeadBytePage* leads;  // the narrow lead-byte step's page, or null
  CharSet<Char> special;      // what plain mode does not simply copy, the terminator included
};

template <class Char>
Char Translate(Char c) {
  return c == 'r' ? Char(13) : c == 'n' ? Char(10) : c == 't' ? Char(9) : c;
}

// Splits the non-empty text into fields, calling sink(field, length) for
// each in order. field must hold as many characters as text.
template <class Char, class Sink>
void Scan(const Char* p, const ParseOptions<Char>& o, Char* field, Sink& sink) {
  enum { kPlain, kQuoted, kGroup } mode = kPlain;
  Char close = 0;  // what ends the quoted run or the group
  int n = 0;
  bool afterDelimiter = false;
  for (;;) {
    if (mode == kPlain) {  // a run of ordinary characters is copied at once
      const Char* const run = p;
      while (!o.special.Has(*p)) ++p;
      if (p != run) {
        std::memcpy(field + n, run, static_cast<size_t>(p - run) * sizeof(Char));
        n += static_cast<int>(p - run);
        afterDelimiter = false;
      }
    }
    if (*p == 0) break;
    const Char c = *p++;
    afterDelimiter = false;
    if (mode == kGroup) {  // copied as it is up to the closer; no nesting
      field[n++] = c;
      if (c == close) mode = kPlain;
      continue;
    }
    if (mode == kQuoted) {
      if (o.escape != 0 && c == o.escape) {
        // Without stripping, the escape stays in front of the translated
        // character (deliberate).
        if (!o.stripQuotes) field[n++] = c;
        if (*p == 0) break;  // nothing follows to translate
        field[n++] = Translate(*p++);
        continue;
      }
      if (c == close) {
        if (!o.stripQuotes) field[n++] = c;
        mode = kPlain;
        continue;
      }
      if (o.leads != nullptr && IsLeadByte(o.leads, c)) {
        field[n++] = c;
        if (*p == 0) break;
        field[n++] = *p++;
        continue;
      }
      field[n++] = c;
      continue;
    }
    if (o.escape != 0 && c == o.escape) continue;  // outside quotes an escape only removes itself
    if (o.quotes && (c == '"' || c == '\'')) {
      if (!o.stripQuotes) field[n++] = c;
      close = c;
      mode = kQuoted;
      continue;
    }
    if (o.brackets && (c == '(' || c == '[' || c == '{')) {
      field[n++] = c;
      close = c == '(' ? Char(')') : c == '[' ? Char(']') : Char('}');
      mode = kGroup;
      continue;
    }
    if (o.delimiters.Has(c)) {
      sink(field, n);
      n = 0;
      afterDelimiter = true;
      if (o.delimiterMode == 1) {
        while (*p != 0 && o.delimiters.Has(*p)) ++p;
      } else if (!o.dropDelimiter) {
        field[n++] = c;
      }
      continue;
    }
    if (c == '\r' && o.dropCr) continue;
    field[n++] = c;
  }
  if (n > 0)
    sink(field, n);
  else if (o.emptyLastField && !afterDelimiter)
    sink(field, 0);
}

}  // namespace

namespace ka_detail {

template <class L>
struct Ka_StrListTraits;

template <>
struct Ka_StrListTraits<Ka_AStrList> {
  typedef Ka_AString S;
  typedef char Char;
  static const S& Empty() { return EmptyNarrowItem(); }
  static Char Escape(char e) { return e; }
  static int CompareNoCase(const Char* a, const Char* b) { return ka_stricmpA(a, b); }
  static constexpr bool kEmptyLastField = true;
  static const LeadBytePage* Leads() { return FindLeadBytePage(KaGetLocaleCP()); }
};

template <>
struct Ka_StrListTraits<Ka_WStrList> {
  typedef Ka_WString S;
  typedef ka_wchar Char;
  static const S& Empty() { return EmptyWideItem(); }
  // A signed byte widened to 16 bits: 0xE9 matches only the unit 0xFFE9.
  static Char Escape(char e) { return static_cast<Char>(static_cast<int16_t>(static_cast<signed char>(e))); }
  static int CompareNoCase(const Char* a, const Char* b) { return ka_stricmpW(a, b); }
  // The wide tokenizer never adds an empty last field (deliberate).
  static constexpr bool kEmptyLastField = false;
  static const LeadBytePage* Leads() { return nullptr; }
};

template <class L>
struct Ka_StrListOps {
  typedef Ka_StrListTraits<L> Tr;
  typedef typename Tr::S S;
  typedef typename Tr::Char Char;

  static const S* Item(const L& l, int index) { return static_cast<const S*>(l.Ka_ObjList::GetItem(index)); }

  static const S* ItemNN(const L& l, int index) {
    const S* const item = Item(l, index);
    return item != nullptr ? item : &Tr::Empty();
  }

  // FindItem of a string made from text. The linear scan of an unsorted list
  // compares with the handler's own rule, without a call per item.
  static int Find(const L& l, const Char* text) {
    S key(text);
    if (l.m_sorted != 0) return l.FindItem(&key);
    const Char* const k = key;
    const int count = l.Count();
    for (int i = 0; i < count; ++i) {
      const Ka_ObjBufData* const slot = l.m_items[i];
      if (slot == nullptr) continue;
      const Char* const t = *static_cast<const S*>(const_cast<Ka_ObjBufData*>(slot)->object());
      if (t != nullptr && k != nullptr && t[0] != k[0]) continue;  // equal texts start alike
      if (S::Traits::Compare(t, k) == 0) return i;
    }
    return -1;
  }

  static int Parse(L& l, const Char* text, const Char* delimiters, char escape, int delimiterMode, int quotes,
                   int stripQuotes, int dropDelimiter, int brackets) {
    Check check(l);
    l.ReleaseList();
    const int length = S::Traits::Length(text);
    if (length == 0) return 0;
    S scratch;  // the field being built
    Char* const field = scratch.GetSafeBuffer(length);
    if (field == nullptr) return 0;
    const CharSet<Char> set(delimiters);
    const bool dropCr = delimiterMode == 0 && set.Has(Char('\n'));
    CharSet<Char> special(delimiters);
    special.Add(Char(0));
    if (quotes != 0) special.Add(Char('"')), special.Add(Char('\''));
    if (brackets != 0) special.Add(Char('(')), special.Add(Char('[')), special.Add(Char('{'));
    if (dropCr) special.Add(Char('\r'));
    if (escape != 0) special.Add(Tr::Escape(escape));
    const ParseOptions<Char> o = {set,        Tr::Escape(escape), delimiterMode,       quotes != 0,
                                  stripQuotes != 0, dropDelimiter != 0, brackets != 0, dropCr,
                                  Tr::kEmptyLastField, Tr::Leads(), special};
    if (l.m_sorted != 0) {  // each field by order, equal ones merged
      auto add = [&l](Char* f, int n) {
        f[n] = 0;
        l.Add(static_cast<const Char*>(f));
      };
      Scan(text, o, field, add);
      return l.Count();
    }
    // Counted first, so that the array is allocated once at its final size
    // (the size appending the fields one by one would leave).
    int fields = 0;
    auto count = [&fields](const Char*, int) { ++fields; };
    Scan(text, o, field, count);
    l.AllocListBuffer(std::min(fields, Ka_ObjList::kMaxCount));
    const int room = l.Count();
    int at = 0;
    auto store = [&l, &at, room](const Char* f, int n) {
      if (at >= room) return;
      Ka_ObjBufData* const slot = l.AllocObjBuffer();
      l.m_items[at++] = slot;
      if (slot != nullptr) static_cast<S*>(slot->object())->Set(f, n);
    };
    Scan(text, o, field, store);
    return l.Count();
  }

  static S MergeAll(const L& l, int reverse) {
    const int count = l.Count();
    long long total = 0;
    for (int i = 0; i < count; ++i) {
      const S* const item = Item(l, i);
      if (item != nullptr && item->IsEmpty() == 0) total += item->GetLength();
    }
    S merged;
    if (total == 0 || total > S::Traits::kMaxLength) return merged;
    Char* out = merged.GetSafeBuffer(static_cast<int>(total));
    if (out == nullptr) return merged;
    for (int k = 0; k < count; ++k) {
      const S* const item = Item(l, reverse != 0 ? count - 1 - k : k);
      if (item == nullptr || item->IsEmpty() != 0) continue;
      const int n = item->GetLength();
      std::memcpy(out, static_cast<const Char*>(*item), static_cast<size_t>(n) * sizeof(Char));
      out += n;
    }
    return merged;
  }

  // The text RemoveDupList compares for position i: empty positions and
  // null strings read as "".
  static const Char* DupText(const L& l, int i) {
    static const Char kNone[1] = {0};
    const S* const item = Item(l, i);
    const Char* const text = item != nullptr ? static_cast<const Char*>(*item) : nullptr;
    return text != nullptr ? text : kNone;
  }

  static int RemoveDupList(L& l) {
    Check check(l);
    const int count = l.Count();
    if (count < 2) return count;
    // Position p goes when an earlier position equals it without regard to
    // case; that does not depend on which earlier ones went, so sorting the
    // positions by (text, position) finds every duplicate at once: all but
    // the first of each run of equal texts.
    int* const order = static_cast<int*>(_ka_malloc(count * static_cast<int>(sizeof(int))));
    unsigned char* const drop = static_cast<unsigned char*>(_ka_malloc(count));
    if (order == nullptr || drop == nullptr) {
      ka_free(order);
      ka_free(drop);
      return RemoveDupListInPlace(l);
    }
    for (int i = 0; i < count; ++i) {
      order[i] = i;
      drop[i] = 0;
    }
    std::sort(order, order + count, [&l](int a, int b) {
      const int c = Tr::CompareNoCase(DupText(l, a), DupText(l, b));
      return c != 0 ? c < 0 : a < b;
    });
    bool any = false;
    for (int i = 1; i < count; ++i) {
      if (Tr::CompareNoCase(DupText(l, order[i]), DupText(l, order[i - 1])) == 0) {
        drop[order[i]] = 1;
        any = true;
      }
    }
    if (any && l.GetSafeList(-1) != nullptr) {
      int kept = 0;
      for (int i = 0; i < count; ++i) {
        if (drop[i] != 0)
          l.SetNull(i);
        else
          l.m_items[kept++] = l.m_items[i];
      }
      std::memset(l.m_items + kept, 0, static_cast<size_t>(count - kept) * sizeof(void*));
      l.GetListData()->nDataLength = kept * static_cast<int>(sizeof(void*));
    }
    ka_free(order);
    ka_free(drop);
    return l.Count();
  }

  // The same, comparing each position with every earlier one: for when the
  // work arrays cannot be had.
  static int RemoveDupListInPlace(L& l) {
    for (int p = l.Count() - 1; p >= 1; --p) {
      for (int q = p - 1; q >= 0; --q) {
        if (Tr::CompareNoCase(DupText(l, p), DupText(l, q)) == 0) {
          l.Delete(p, 1);
          break;
        }
      }
    }
    return l.Count();
  }
};

}  // namespace ka_detail

namespace {
typedef ka_detail::Ka_StrListOps<Ka_AStrList> NarrowOps;
typedef ka_detail::Ka_StrListOps<Ka_WStrList> WideOps;

// A long index as an int: values outside the int range read as its ends.
int ToIndex(long index) {
  return static_cast<int>(std::max<long long>(INT_MIN, std::min<long long>(INT_MAX, index)));
}
}  // namespace

// ---- Ka_AStrList -----------------------------------------------------------------

Ka_AStrList::Ka_AStrList(int sorted) : Ka_ObjList(&Ka_AString::_KaAStringHandler, sorted) {}

int Ka_AStrList::Add(const Ka_AString& s) { return Ka_ObjList::Add(const_cast<Ka_AString*>(&s)); }
int Ka_AStrList::Insert(int index, const Ka_AString& s) { return Ka_ObjList::Insert(index, const_cast<Ka_AString*>(&s)); }
int Ka_AStrList::Add(const char* text) {
  return AddNew<Ka_AString>(*this, 0, false, [text](Ka_AString& s) { s.Set(text, -1); });
}
int Ka_AStrList::Insert(int index, const char* text) {
  return AddNew<Ka_AString>(*this, index, true, [text](Ka_AString& s) { s.Set(text, -1); });
}
int Ka_AStrList::Add(const ka_wchar* text, unsigned int codePage) {
  return AddNew<Ka_AString>(*this, 0, false, [=](Ka_AString& s) { s.Set(text, -1, codePage); });
}
int Ka_AStrList::Insert(int index, const ka_wchar* text, unsigned int codePage) {
  return AddNew<Ka_AString>(*this, index, true, [=](Ka_AString& s) { s.Set(text, -1, codePage); });
}
int Ka_AStrList::Append(const Ka_AStrList* other) {
  if (other != nullptr) AppendList(*other);
  return Count();
}
int Ka_AStrList::Find(const char* text) const { return NarrowOps::Find(*this, text); }
const Ka_AString* Ka_AStrList::GetItem(int index) const { return NarrowOps::Item(*this, index); }
const Ka_AString* Ka_AStrList::GetItemNN(int index) const { return NarrowOps::ItemNN(*this, index); }
Ka_AString* Ka_AStrList::GetSafeItem(int index) { return static_cast<Ka_AString*>(Ka_ObjList::GetSafeItem(index, 0)); }
int Ka_AStrList::Parse(const char* text, const char* delimiters, char escape, int delimiterMode, int quotes,
                       int stripQuotes, int dropDelimiter, int brackets) {
  return NarrowOps::Parse(*this, text, delimiters, escape, delimiterMode, quotes, stripQuotes, dropDelimiter,
                          brackets);
}
Ka_AString Ka_AStrList::MergeAll(int reverse) const { return NarrowOps::MergeAll(*this, reverse); }
int Ka_AStrList::RemoveDupList() { return NarrowOps::RemoveDupList(*this); }

// ---- Ka_WStrList -----------------------------------------------------------------

Ka_WStrList::Ka_WStrList() : Ka_ObjList(&Ka_WString::_KaWStringHandler, 0) {}
Ka_WStrList::Ka_WStrList(int sorted) : Ka_ObjList(&Ka_WString::_KaWStringHandler, sorted) {}

int Ka_WStrList::Add(const Ka_WString& s) { return Ka_ObjList::Add(const_cast<Ka_WString*>(&s)); }
int Ka_WStrList::Insert(int index, const Ka_WString& s) { return Ka_ObjList::Insert(index, const_cast<Ka_WString*>(&s)); }
int Ka_WStrList::Add(const ka_wchar* text) {
  return AddNew<Ka_WString>(*this, 0, false, [text](Ka_WString& s) { s.Set(text, -1); });
}
int Ka_WStrList::Insert(int index, const ka_wchar* text) {
  return AddNew<Ka_WString>(*this, index, true, [text](Ka_WString& s) { s.Set(text, -1); });
}
int Ka_WStrList::Add(const char* text, int codePage) {
  return AddNew<Ka_WString>(*this, 0, false,
                            [=](Ka_WString& s) { s.Set(text, -1, static_cast<unsigned int>(codePage)); });
}
int Ka_WStrList::Insert(int index, const char* text, int codePage) {
  return AddNew<Ka_WString>(*this, index, true,
                            [=](Ka_WString& s) { s.Set(text, -1, static_cast<unsigned int>(codePage)); });
}
int Ka_WStrList::Append(const Ka_WStrList* other) {
  if (other != nullptr) AppendList(*other);
  return Count();
}
int Ka_WStrList::Find(const ka_wchar* text) const { return WideOps::Find(*this, text); }
const Ka_WString* Ka_WStrList::GetItem(int index) const { return WideOps::Item(*this, index); }
const Ka_WString* Ka_WStrList::GetItemNN(int index) const { return WideOps::ItemNN(*this, index); }
Ka_WString* Ka_WStrList::GetSafeItem(int index) { return static_cast<Ka_WString*>(Ka_ObjList::GetSafeItem(index, 0)); }
int Ka_WStrList::Parse(const ka_wchar* text, const ka_wchar* delimiters, char escape, int delimiterMode, int quotes,
                       int stripQuotes, int dropDelimiter, int brackets) {
  return WideOps::Parse(*this, text, delimiters, escape, delimiterMode, quotes, stripQuotes, dropDelimiter, brackets);
}
Ka_WString Ka_WStrList::MergeAll(int reverse) const { return WideOps::MergeAll(*this, reverse); }
int Ka_WStrList::RemoveDupList() { return WideOps::RemoveDupList(*this); }

// ---- Ka_BuffList -----------------------------------------------------------------

Ka_BuffList::Ka_BuffList() : Ka_ObjList(&Ka_Buffer::_KaBufferHandler, 0) {}

long Ka_BuffList::Add(const Ka_Buffer& b) { return Ka_ObjList::Add(const_cast<Ka_Buffer*>(&b)); }
long Ka_BuffList::Insert(long index, const Ka_Buffer& b) {
  return Ka_ObjList::Insert(ToIndex(index), const_cast<Ka_Buffer*>(&b));
}
long Ka_BuffList::Add(const unsigned char* data, long length) {
  return AddNew<Ka_Buffer>(*this, 0, false, [=](Ka_Buffer& b) { b.Set(data, length); });
}
long Ka_BuffList::Insert(long index, const unsigned char* data, long length) {
  return AddNew<Ka_Buffer>(*this, ToIndex(index), true, [=](Ka_Buffer& b) { b.Set(data, length); });
}
long Ka_BuffList::Append(const Ka_BuffList* other) {
  if (other != nullptr) AppendList(*other);
  return Count();
}
const Ka_Buffer* Ka_BuffList::GetItem(long index) const {
  return static_cast<const Ka_Buffer*>(Ka_ObjList::GetItem(ToIndex(index)));
}
const Ka_Buffer* Ka_BuffList::GetItemNN(long index) const {
  const Ka_Buffer* const item = GetItem(index);
  return item != nullptr ? item : &ka_detail::EmptyBufferItem();
}
Ka_Buffer* Ka_BuffList::GetSafeItem(long index) {
  return static_cast<Ka_Buffer*>(Ka_ObjList::GetSafeItem(ToIndex(index), 0));
}
