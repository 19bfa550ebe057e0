// Helpers for the string tests: texts of either width written as bytes, a
// reading of what a string holds, the class invariant, and a runner that
// makes an edit on a private text and on a shared one, alone or as table rows.
#ifndef KALBOR_TESTS_STRINGS_STRING_SUPPORT_H
#define KALBOR_TESTS_STRINGS_STRING_SUPPORT_H

#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <climits>
#include <functional>
#include <string>
#include <vector>

typedef ::testing::Types<Ka_AString, Ka_WString> BothStrings;

template <class S>
using CharOf = typename S::Traits::Char;

// Text of S's width, one character per byte.
template <class S>
std::basic_string<CharOf<S>> Chars(const std::string& bytes) {
  std::basic_string<CharOf<S>> out;
  for (unsigned char b : bytes) out.push_back(static_cast<CharOf<S>>(b));
  return out;
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

// The reference count of s's block; 0 for the null string.
template <class S>
int Refs(const S& s) {
  return s.GetData() != nullptr ? ka_interlocked_read(&s.GetData()->nRefs) : 0;
}

// The class invariant: null, or a counted block whose length fits its
// capacity and whose text is followed by a zero.
template <class S>
void ExpectWellFormed(const S& s) {
  const CharOf<S>* p = s;
  if (p == nullptr) {
    EXPECT_EQ(s.GetAllocLength(), 0);
    return;
  }
  EXPECT_GE(Refs(s), 1);
  EXPECT_LE(s.GetLength(), s.GetAllocLength());
  EXPECT_EQ(p[s.GetLength()], 0) << "no terminator after the stored length";
}

// Runs edit(s) on a string that owns `bytes` alone, then on one that shares
// them; the second owner must still hold `bytes` afterwards.
template <class S, class Edit>
void OnPrivateAndShared(const std::string& bytes, Edit edit) {
  for (int shared = 0; shared < 2; ++shared) {
    SCOPED_TRACE(shared ? "on a shared text" : "on a private text");
    S s = Make<S>(bytes), other;
    if (shared) other = s;
    edit(s);
    ExpectWellFormed(s);
    EXPECT_TRUE(!shared || Text(other) == bytes) << "the edit reached another owner: " << Text(other);
  }
}

// One row: the text before, the edit on `s`, the text after and the edit's
// result (not checked for edits that return nothing: DO).
template <class S>
struct EditRow {
  std::string before;
  std::function<int(S&)> edit;
  std::string after;
  int result;
};
#define EDIT(expr) [&](S & s) { return (expr); }
#define DO(statement) [&](S & s) { return (statement), INT_MIN; }

template <class S>
void RunEdits(const std::vector<EditRow<S>>& rows) {
  for (const EditRow<S>& r : rows) {
    SCOPED_TRACE("\"" + r.before + "\" to \"" + r.after + "\"");
    OnPrivateAndShared<S>(r.before, [&r](S& s) {
      const int result = r.edit(s);
      EXPECT_EQ(Text(s), r.after);
      EXPECT_TRUE(result == INT_MIN || result == r.result) << result;
    });
  }
}

#endif  // KALBOR_TESTS_STRINGS_STRING_SUPPORT_H
