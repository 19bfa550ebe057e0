// Helpers for the string tests: texts of either width written as bytes, a
// reading of what a string holds, and a runner that makes each edit of a
// table on a private text and on a shared one, checking the class invariant.
#ifndef KALBOR_TESTS_STRINGS_STRING_SUPPORT_H
#define KALBOR_TESTS_STRINGS_STRING_SUPPORT_H

#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <climits>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

typedef ::testing::Types<Ka_AString, Ka_WString> BothStrings;

template <class S>
using CharOf = typename S::Traits::Char;

// Text of S's width, one character per byte.
template <class S>
std::basic_string<CharOf<S>> Chars(const std::string& bytes) {
  const unsigned char* b = reinterpret_cast<const unsigned char*>(bytes.data());
  return std::basic_string<CharOf<S>>(b, b + bytes.size());
}

// A string holding exactly these bytes, zeros included ("" gives null).
template <class S>
S Make(const std::string& bytes) {
  const auto text = Chars<S>(bytes);
  return S(text.data(), static_cast<int>(text.size()));
}

// What s holds over its stored length, one byte per character.
template <class S>
std::string Text(const S& s) {
  const CharOf<S>* p = s;
  return p != nullptr ? std::string(p, p + s.GetLength()) : std::string();
}

inline int Sign(int v) { return (v > 0) - (v < 0); }

// The reference count of s's block; 0 for the null string.
template <class S>
int Refs(const S& s) {
  return s.GetData() != nullptr ? ka_interlocked_read(&s.GetData()->nRefs) : 0;
}

// The item handler of S, whose pool also holds S objects made with new.
template <class S>
Ka_ListObjHandler& HandlerOf() {
  return std::is_same<S, Ka_AString>::value ? static_cast<Ka_ListObjHandler&>(Ka_AString::_KaAStringHandler)
                                            : Ka_WString::_KaWStringHandler;
}

// One row: the text before, the edit on `s`, the text after, the edit's
// result (not checked for edits that return nothing: DO), and whether the
// edit writes through a shared block.
template <class S>
struct EditRow { std::string before; std::function<int(S&)> edit; std::string after; int result; bool through = false; };
#define EDIT(expr) [&](S & s) { return (expr); }
#define DO(statement) [&](S & s) { return (statement), INT_MIN; }

// Makes each row's edit on a string that owns its text alone, then on one
// that shares it; the other owner must still hold the text afterwards (or
// the new one, for an edit that writes through).
template <class S>
void RunEdits(const std::vector<EditRow<S>>& rows) {
  for (const EditRow<S>& r : rows) {
    for (int shared = 0; shared < 2; ++shared) {
      SCOPED_TRACE("\"" + r.before + "\" to \"" + r.after + (shared ? "\", shared" : "\", private"));
      S s = Make<S>(r.before), other;
      if (shared) other = s;
      const int result = r.edit(s);
      EXPECT_EQ(Text(s), r.after);
      EXPECT_TRUE(result == INT_MIN || result == r.result) << result;
      // The class invariant: null, or a counted block whose length fits its
      // capacity and whose text is followed by a zero.
      const CharOf<S>* p = s;
      EXPECT_TRUE(p == nullptr ? s.GetAllocLength() == 0
                               : Refs(s) >= 1 && s.GetLength() <= s.GetAllocLength() && p[s.GetLength()] == 0)
          << "broken string: length " << s.GetLength() << ", capacity " << s.GetAllocLength();
      EXPECT_EQ(Text(other), !shared ? "" : r.through ? r.after : r.before) << "the edit and another owner";
    }
  }
}

#endif  // KALBOR_TESTS_STRINGS_STRING_SUPPORT_H
