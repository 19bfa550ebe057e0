// Helpers for the list tests: a string item handler that counts live items
// (so that a leaked or twice-freed item fails the test), lists written and
// read as short texts, and a runner that makes each edit of a table on a
// private list, one whose array another list shares and one whose items
// another list links.
#ifndef KALBOR_TESTS_LISTS_LIST_SUPPORT_H
#define KALBOR_TESTS_LISTS_LIST_SUPPORT_H

#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <functional>
#include <string>
#include <vector>

// Narrow string items, counted; small pool blocks, so that chains grow.
class CountingHandler : public Ka_ListObjHandler {
 public:
  CountingHandler() : Ka_ListObjHandler("counted", static_cast<int>(sizeof(Ka_AString)), 4) {}
  void* _InitItem(void* object) override { return ++live, Ka_AString::_KaAStringHandler._InitItem(object); }
  void _FreeItem(void* object) override { --live, Ka_AString::_KaAStringHandler._FreeItem(object); }
  void _AssignItem(void* target, void* source) override { Ka_AString::_KaAStringHandler._AssignItem(target, source); }
  int _CompareItem(void* item, void* key) override { return Ka_AString::_KaAStringHandler._CompareItem(item, key); }
  int live = 0;
};

// Text of the width of the string class S, one character per byte.
template <class S>
std::basic_string<typename S::Traits::Char> Chars(const std::string& bytes) {
  const unsigned char* b = reinterpret_cast<const unsigned char*>(bytes.data());
  return std::basic_string<typename S::Traits::Char>(b, b + bytes.size());
}

// "count:item,item,..." ("~": an empty position), one byte per character.
template <class Item = Ka_AString>
std::string Show(const Ka_ObjList& l, char separator = ',') {
  std::string out = std::to_string(l.Count()) + ":";
  for (int i = 0; i < l.Count(); ++i) {
    const Item* item = static_cast<const Item*>(l.GetItem(i));
    out += (i > 0 ? std::string(1, separator) : "") + (item == nullptr ? "~" : "");
    for (int k = 0; item != nullptr && k < item->GetLength(); ++k) out += static_cast<char>(item->GetAt(k));
  }
  return out;
}
inline std::string Show(const Ka_WStrList& l, char separator = ',') { return Show<Ka_WString>(l, separator); }

// Appends the Item strings "a,~,b" ("~": an empty position; "": nothing) by
// position, sorted list or not.
template <class Item = Ka_AString>
void Fill(Ka_ObjList& l, const std::string& items) {
  for (size_t at = 0, end = 0; !items.empty() && end != std::string::npos; at = end + 1) {
    end = items.find(',', at);
    Item value(Chars<Item>(items.substr(at, end - at)).c_str());
    l.InsertItem(l.Count(), items.compare(at, end - at, "~") == 0 ? nullptr : &value);
  }
}

// One row: the items before, the edit of `l`, the items after and the
// edit's result.
struct EditRow { std::string before; std::function<long(Ka_ObjList&)> edit; std::string after; long result; };
#define EDIT(expr) [](Ka_ObjList & l) -> long { return (expr); }

// Makes each row's edit on a counted list holding its items alone, then
// sharing its array with another list, then sharing its items; the other
// list must not change, and no item may outlive the lists.
inline void RunEdits(int sorted, const std::vector<EditRow>& rows) {
  for (const EditRow& r : rows) {
    for (int how = 0; how < 3; ++how) {
      SCOPED_TRACE(r.before + " to " + r.after + (how == 0 ? ", private" : how == 1 ? ", array shared" : ", items shared"));
      CountingHandler handler;
      {
        Ka_ObjList l(&handler, sorted), other(&handler, 0);
        Fill(l, r.before);
        if (how == 1) other = l;
        for (int i = 0; how == 2 && i < l.Count(); ++i) other.AddLinkItem(l.GetItem(i));
        const std::string before = Show(other);
        const long result = r.edit(l);
        EXPECT_EQ(std::to_string(result) + " " + Show(l) + (l.Validate() == 1 ? "" : " (invalid)"),
                  std::to_string(r.result) + " " + r.after);
        EXPECT_EQ(Show(other), before) << "the edit reached the other list";
      }
      EXPECT_EQ(handler.live, 0) << "items leaked or freed twice";
    }
  }
}

#endif  // KALBOR_TESTS_LISTS_LIST_SUPPORT_H
