// Helpers for the list tests: a string item handler that counts live items
// (so that every test sees leaks and double frees at the item level), lists
// written and read as short texts, and a runner that makes an edit on a
// private list, on one sharing its array and on one sharing its items.
#ifndef KALBOR_TESTS_LISTS_LIST_SUPPORT_H
#define KALBOR_TESTS_LISTS_LIST_SUPPORT_H

#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <atomic>
#include <string>

// Narrow string items, counted; small pool blocks so that chains grow.
class CountingHandler : public Ka_ListObjHandler {
 public:
  CountingHandler() : Ka_ListObjHandler("counted", static_cast<int>(sizeof(Ka_AString)), 4) {}
  void* _InitItem(void* object) override {
    ++live;
    return Strings()._InitItem(object);
  }
  void _FreeItem(void* object) override {
    --live;
    Strings()._FreeItem(object);
  }
  void _AssignItem(void* target, void* source) override { Strings()._AssignItem(target, source); }
  int _CompareItem(void* item, void* key) override { return Strings()._CompareItem(item, key); }
  std::atomic<int> live{0};

 private:
  static Ka_ListObjHandler& Strings() { return Ka_AString::_KaAStringHandler; }
};

// The list as "count:item,item,...", "~" for an empty position.
inline std::string Show(const Ka_ObjList& l) {
  std::string out = std::to_string(l.Count()) + ":";
  for (int i = 0; i < l.Count(); ++i) {
    const Ka_AString* item = static_cast<const Ka_AString*>(l.GetItem(i));
    if (i > 0) out += ",";
    out += item == nullptr ? "~" : item->GetLength() == 0 ? "" : static_cast<const char*>(*item);
  }
  return out;
}
inline std::string Show(const Ka_WStrList& l) {
  std::string out = std::to_string(l.Count()) + ":";
  for (int i = 0; i < l.Count(); ++i) {
    if (i > 0) out += ",";
    const Ka_WString* item = l.GetItem(i);
    if (item == nullptr) out += "~";
    for (int k = 0; item != nullptr && k < item->GetLength(); ++k) out += static_cast<char>(item->GetAt(k));
  }
  return out;
}

// Fills l from "a,~,b" ("~": an empty position; "": nothing), in that order
// whatever its sorted flag.
inline void Fill(Ka_ObjList& l, const std::string& items) {
  for (size_t at = 0; !items.empty() && at <= items.size();) {
    size_t end = items.find(',', at);
    if (end == std::string::npos) end = items.size();
    const std::string item = items.substr(at, end - at);
    Ka_AString value(item.c_str());
    l.InsertItem(l.Count(), item == "~" ? nullptr : &value);
    at = end + 1;
  }
}

// The array's and one slot's reference counts.
inline int ArrayRefs(const Ka_ObjList& l) {
  return l.GetListData() != nullptr ? ka_interlocked_read(&l.GetListData()->nRefs) : 0;
}
inline int SlotRefs(const Ka_ObjList& l, int i) {
  return l.GetItem(i) != nullptr ? ka_interlocked_read(&Ka_ObjBufData::FromObject(l.GetItem(i))->refCount) : 0;
}

// Runs edit(l) on a counted list holding `items` alone, then on one whose
// array another list shares, then on one whose items another list links;
// the other list must be unchanged, and no item may outlive both lists.
template <class Edit>
void OnPrivateAndShared(const std::string& items, int sorted, Edit edit) {
  static const char* const kHow[] = {"private", "array shared", "items shared"};
  for (int how = 0; how < 3; ++how) {
    SCOPED_TRACE(kHow[how]);
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
