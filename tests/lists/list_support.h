// Helpers for the list tests: a string item handler that counts live items
// (so that a leaked or twice-freed item fails the test), lists written and
// read as short texts, and a runner that edits a private list, one whose
// array another list shares and one whose items another list links.
#ifndef KALBOR_TESTS_LISTS_LIST_SUPPORT_H
#define KALBOR_TESTS_LISTS_LIST_SUPPORT_H

#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <atomic>
#include <string>

// Narrow string items, counted; small pool blocks, so that chains grow.
class CountingHandler : public Ka_ListObjHandler {
 public:
  CountingHandler() : Ka_ListObjHandler("counted", static_cast<int>(sizeof(Ka_AString)), 4) {}
  void* _InitItem(void* object) override { return ++live, Strings()._InitItem(object); }
  void _FreeItem(void* object) override { --live, Strings()._FreeItem(object); }
  void _AssignItem(void* target, void* source) override { Strings()._AssignItem(target, source); }
  int _CompareItem(void* item, void* key) override { return Strings()._CompareItem(item, key); }
  std::atomic<int> live{0};

 private:
  static Ka_ListObjHandler& Strings() { return Ka_AString::_KaAStringHandler; }
};

// "count:item,item,..." ("~": an empty position), one byte per character.
template <class Item = Ka_AString>
std::string Show(const Ka_ObjList& l, char separator = ',') {
  std::string out = std::to_string(l.Count()) + ":";
  for (int i = 0; i < l.Count(); ++i) {
    const Item* item = static_cast<const Item*>(l.GetItem(i));
    if (i > 0) out += separator;
    if (item == nullptr) out += "~";
    for (int k = 0; item != nullptr && k < item->GetLength(); ++k) out += static_cast<char>(item->GetAt(k));
  }
  return out;
}
inline std::string Show(const Ka_WStrList& l, char separator = ',') { return Show<Ka_WString>(l, separator); }

// Appends "a,~,b" ("~": an empty position; "": nothing) by position, sorted
// list or not.
inline void Fill(Ka_ObjList& l, const std::string& items) {
  for (size_t at = 0; !items.empty() && at <= items.size();) {
    const size_t end = std::min(items.find(',', at), items.size());
    Ka_AString value(items.substr(at, end - at).c_str());
    l.InsertItem(l.Count(), value.Compare("~") == 0 ? nullptr : &value);
    at = end + 1;
  }
}

inline int ArrayRefs(const Ka_ObjList& l) { return l.GetListData() != nullptr ? l.GetListData()->nRefs : 0; }
inline int SlotRefs(const Ka_ObjList& l, int i) { return Ka_ObjBufData::FromObject(l.GetItem(i))->refCount; }

// Runs edit(l) on a counted list holding `items` alone, then sharing its
// array with another list, then sharing its items; the other list must not
// change, and no item may outlive the lists.
template <class Edit>
void OnPrivateAndShared(const std::string& items, int sorted, Edit edit) {
  for (int how = 0; how < 3; ++how) {
    SCOPED_TRACE(how == 0 ? "private" : how == 1 ? "array shared" : "items shared");
    CountingHandler handler;
    {
      Ka_ObjList l(&handler, sorted), other(&handler, 0);
      Fill(l, items);
      if (how == 1) other = l;
      for (int i = 0; how == 2 && i < l.Count(); ++i) other.AddLinkItem(l.GetItem(i));
      const std::string before = Show(other);
      edit(l);
      EXPECT_EQ(l.Validate(), 1);
      EXPECT_EQ(Show(other), before) << "the edit reached the other list";
    }
    EXPECT_EQ(handler.live, 0) << "items leaked or freed twice";
  }
}

#endif  // KALBOR_TESTS_LISTS_LIST_SUPPORT_H
