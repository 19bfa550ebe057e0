// Trimming, replacing, removing, inserting, deleting and case changes, each
// made on a private text and on a shared one, over both widths; then the
// substring Replace rule in which the widths differ.
#include <climits>
#include <functional>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "strings/string_support.h"

template <class S>
class Edit : public ::testing::Test {};
TYPED_TEST_SUITE(Edit, BothStrings);

// One edit, its expected text and result (ignored when `result` is INT_MIN).
template <class S>
struct EditRow {
  std::string before;
  std::function<int(S&)> edit;
  std::string after;
  int result;
};

template <class S>
void RunEdits(const std::vector<EditRow<S>>& rows) {
  for (const EditRow<S>& r : rows) {
    SCOPED_TRACE("from \"" + r.before + "\" to \"" + r.after + "\"");
    OnPrivateAndShared<S>(r.before, [&r](S& s) {
      const int result = r.edit(s);
      EXPECT_EQ(Text(s), r.after);
      if (r.result != INT_MIN) {
        EXPECT_EQ(result, r.result);
      }
    });
  }
}

// Wraps a void edit for the table.
template <class S, class F>
std::function<int(S&)> Do(F f) {
  return [f](S& s) {
    f(s);
    return INT_MIN;
  };
}

TYPED_TEST(Edit, TrimmingRemovesExactlyTheFourBlanksOrTheGivenCharacters) {
  typedef TypeParam S;
  typedef CharOf<S> C;
  const auto set = [](const char* t) { return Chars<S>(t); };
  const std::string zeros("\0\0ab", 4);
  RunEdits<S>({
      {"", Do<S>([](S& s) { s.Trim(); }), "", INT_MIN},                             // null: nothing
      {" x\t\n", Do<S>([](S& s) { s.Trim(); }), "x", INT_MIN},                      // the blanks of both ends
      {" \r\n\t", Do<S>([](S& s) { s.Trim(); }), "", INT_MIN},                      // all blank
      {"\vx\f", Do<S>([](S& s) { s.Trim(); }), "\vx\f", INT_MIN},                   // vertical tab, form feed stay
      {"  ab ", Do<S>([](S& s) { s.TrimLeft(); }), "ab ", INT_MIN},                 //
      {"  ab ", Do<S>([](S& s) { s.TrimRight(); }), "  ab", INT_MIN},               //
      {"ab", Do<S>([](S& s) { s.TrimRight(); }), "ab", INT_MIN},                    // nothing to trim
      {std::string("ab \0 c", 6), Do<S>([](S& s) { s.TrimRight(); }), "ab", INT_MIN},            // looks only before the zero
      {std::string("ab\0 ", 4), Do<S>([](S& s) { s.TrimRight(); }), std::string("ab\0 ", 4), INT_MIN},  // no blank before it: kept
      {"xxaxx", Do<S>([](S& s) { s.TrimLeft(C('x')); }), "axx", INT_MIN},           //
      {"xxaxx", Do<S>([](S& s) { s.TrimRight(C('x')); }), "xxa", INT_MIN},          //
      {"xxxx", Do<S>([](S& s) { s.TrimLeft(C('x')); }), "", INT_MIN},               // the whole text
      {zeros, Do<S>([](S& s) { s.TrimLeft(C(0)); }), "ab", INT_MIN},                // leading zeros, bounded
      {std::string(3, '\0'), Do<S>([](S& s) { s.TrimLeft(C(0)); }), "", INT_MIN},   // no further than the length
      {"ab", Do<S>([](S& s) { s.TrimRight(C(0)); }), "ab", INT_MIN},                // 0 never matches on the right
      {"-+a+-", Do<S>([&](S& s) { s.TrimLeft(set("+-").c_str()); }), "a+-", INT_MIN},   //
      {"-+a+-", Do<S>([&](S& s) { s.TrimRight(set("+-").c_str()); }), "-+a", INT_MIN},  //
      {"+-+", Do<S>([&](S& s) { s.TrimLeft(set("+-").c_str()); }), "", INT_MIN},        // a set covering the text
      {"+-+", Do<S>([&](S& s) { s.TrimRight(set("+-").c_str()); }), "", INT_MIN},       //
      {" a ", Do<S>([&](S& s) { s.TrimLeft(set("").c_str()); }), " a ", INT_MIN},       // empty set: nothing
      {" a ", Do<S>([](S& s) { s.TrimLeft(static_cast<const C*>(nullptr)); }), " a ", INT_MIN},   // null set
      {" a ", Do<S>([](S& s) { s.TrimRight(static_cast<const C*>(nullptr)); }), " a ", INT_MIN},  //
      {zeros, Do<S>([&](S& s) { s.TrimLeft(set("x").c_str()); }), zeros, INT_MIN},   // a zero is in no set
  });
}

TYPED_TEST(Edit, TrimBraceTrimsThenStripsOnePairUpToTheFirstZero) {
  typedef TypeParam S;
  RunEdits<S>({
      {"", Do<S>([](S& s) { s.TrimBrace(1); }), "", INT_MIN},                     // null: nothing
      {"  (a b) ", Do<S>([](S& s) { s.TrimBrace(0); }), "a b", INT_MIN},          // brackets
      {" \"a\\tb\" ", Do<S>([](S& s) { s.TrimBrace(1); }), "a\tb", INT_MIN},      // unescaped quotes
      {" \"a\\tb\" ", Do<S>([](S& s) { s.TrimBrace(0); }), "a\\tb", INT_MIN},     // escapes kept
      {"   ", Do<S>([](S& s) { s.TrimBrace(1); }), "", INT_MIN},                  // blank only
      {"plain", Do<S>([](S& s) { s.TrimBrace(1); }), "plain", INT_MIN},           //
  });
}

TYPED_TEST(Edit, CharacterReplaceAndRemoveCoverTheWholeLength) {
  typedef TypeParam S;
  typedef CharOf<S> C;
  RunEdits<S>({
      {"", [](S& s) { return s.Replace(C('a'), C('b')); }, "", 0},                        // null string
      {"banana", [](S& s) { return s.Replace(C('a'), C('o')); }, "bonono", 3},            //
      {"banana", [](S& s) { return s.Replace(C('x'), C('o')); }, "banana", 0},            // absent
      {std::string("a\0a", 3), [](S& s) { return s.Replace(C('a'), C('b')); }, std::string("b\0b", 3), 2},  // past zeros
      {std::string("a\0a", 3), [](S& s) { return s.Replace(C(0), C('-')); }, "a-a", 1},   // zeros themselves
      {"", [](S& s) { return s.Remove(C('a')); }, "", 0},                                 //
      {"banana", [](S& s) { return s.Remove(C('a')); }, "bnn", 3},                        //
      {"aaa", [](S& s) { return s.Remove(C('a')); }, "", 3},                              // everything
      {std::string("a\0b\0", 4), [](S& s) { return s.Remove(C('b')); }, std::string("a\0\0", 3), 1},  // zeros kept
      {std::string("a\0b\0", 4), [](S& s) { return s.Remove(C(0)); }, "ab", 2},           // unless removed
  });
  // Replacing a character by itself changes nothing and keeps the text shared.
  S a = Make<S>("banana"), b(a);
  EXPECT_EQ(b.Replace(C('a'), C('a')), 0);
  EXPECT_EQ(a.GetData(), b.GetData());
}

TYPED_TEST(Edit, InsertAndDeleteClampTheirPositions) {
  typedef TypeParam S;
  typedef CharOf<S> C;
  const auto ab = Chars<S>("AB");
  RunEdits<S>({
      {"", [](S& s) { return s.Insert(0, C('x')); }, "x", 1},                        // the null string gets a block
      {"ab", [](S& s) { return s.Insert(100, C('x')); }, "abx", 3},                  // past the end: appends
      {"ab", [](S& s) { return s.Insert(-1, C('x')); }, "xab", 3},                   // negative: in front
      {"ab", [](S& s) { return s.Insert(1, C(0)); }, std::string("a\0b", 3), 3},     // 0 goes in like any other
      {"ab", [&](S& s) { return s.Insert(-5, ab.c_str()); }, "ABab", 4},            //
      {"ab", [&](S& s) { return s.Insert(1, ab.c_str()); }, "aABb", 4},             //
      {"ab", [&](S& s) { return s.Insert(INT_MAX, ab.c_str()); }, "abAB", 4},       //
      {"ab", [](S& s) { return s.Insert(1, static_cast<const C*>(nullptr)); }, "ab", 2},  // nothing to insert
      {"", [&](S& s) { return s.Insert(0, ab.c_str()); }, "AB", 2},                 //
      {"", [](S& s) { return s.Delete(0, 1); }, "", 0},                              // null string
      {"abcd", [](S& s) { return s.Delete(1, 100); }, "a", 1},                       // to the end
      {"abcd", [](S& s) { return s.Delete(4, 1); }, "abcd", 4},                      // at the end: nothing
      {"abcd", [](S& s) { return s.Delete(-3, 2); }, "cd", 2},                       // negative: from 0
      {"abcd", [](S& s) { return s.Delete(1, 0); }, "abcd", 4},                      // count 0
      {"abcd", [](S& s) { return s.Delete(1, -2); }, "abcd", 4},                     // negative count
      {"abcd", [](S& s) { return s.Delete(1, INT_MAX); }, "a", 1},                   //
      {std::string("a\0bc", 4), [](S& s) { return s.Delete(1, 2); }, "ac", 2},       // zeros count as characters
  });
}

TYPED_TEST(Edit, CaseChangesStopAtTheFirstZero) {
  typedef TypeParam S;
  const std::string mixed("aB1\xE9z\0q", 7);
  RunEdits<S>({
      {"", Do<S>([](S& s) { s.MakeUpper(); }), "", INT_MIN},                            // null string
      {mixed, Do<S>([](S& s) { s.MakeUpper(); }), std::string("AB1\xE9Z\0q", 7), INT_MIN},  // ASCII only
      {mixed, Do<S>([](S& s) { s.MakeLower(); }), std::string("ab1\xE9z\0q", 7), INT_MIN},  //
      // Swaps case and keeps the order, as ka_strrev does (deliberate).
      {mixed, Do<S>([](S& s) { s.MakeReverse(); }), std::string("Ab1\xE9Z\0q", 7), INT_MIN},
  });
  EXPECT_EQ(Make<S>("Abc").CompareNoCase(Chars<S>("aBC").c_str()), 0);
}

// The substring Replace, as the device's loop did it: replace the next
// occurrence while the position after the previous replacement is below the
// new length, and return the occurrences never reached. Written the slow way
// on std::string so that the class's one-pass rewrite is checked against it.
std::pair<std::string, int> ReplaceModel(std::string text, const std::string& from, const std::string& to) {
  if (text.empty() || from.empty()) return {text, 0};
  const size_t limit = text.find('\0') == std::string::npos ? text.size() : text.find('\0');
  int count = 0;
  for (size_t at = text.substr(0, limit).find(from); at != std::string::npos; at = text.substr(0, limit).find(from, at + from.size()))
    ++count;
  if (count == 0) return {text, 0};
  const long newLength = long(text.size()) + long(count) * (long(to.size()) - long(from.size()));
  size_t position = 0;
  while (count > 0 && long(position) < newLength) {
    const size_t zero = text.find('\0', position);
    const size_t at = text.substr(0, zero).find(from, position);
    text.replace(at, from.size(), to);
    position = at + to.size();
    --count;
  }
  text.resize(size_t(newLength));
  return {text, count};
}

TYPED_TEST(Edit, SubstringReplaceReturnsWhatTheLoopLeftUncounted) {
  typedef TypeParam S;
  typedef CharOf<S> C;
  const auto text = [](const char* t) { return Chars<S>(t); };
  struct Row {
    std::string before;
    const char* from;  // null: a null pointer
    const char* to;
    std::string after;
    int result;
  } rows[] = {
      {"", "a", "b", "", 0},                                   // null string
      {"banana", nullptr, "x", "banana", 0},                   // null from
      {"banana", "", "x", "banana", 0},                        // empty from
      {"banana", "q", "x", "banana", 0},                       // no occurrence
      {"banana", "a", "xy", "bxynxynxy", 0},                   // growing: every occurrence reached
      {"banana", "an", "AN", "bANANa", 0},                     // same length
      {"banana", "a", nullptr, "bnn", 0},                      // null to deletes
      {"aaa", "a", "", "", 3},                                 // emptied: the loop never ran
      {"baa", "a", "", "b", 1},                                // the last occurrence lies past the new end
      {"aaaa", "aa", "b", "bb", 0},                            // non-overlapping, left to right
      {std::string("ab\0ab", 5), "ab", "x", std::string("x\0ab", 4), 0},  // stops at the first zero
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.before + " / " + (r.from ? r.from : "(null)") + " / " + (r.to ? r.to : "(null)"));
    const auto from = text(r.from ? r.from : ""), to = text(r.to ? r.to : "");
    for (int shared = 0; shared < 2; ++shared) {
      SCOPED_TRACE(shared ? "on a shared text" : "on a private text");
      S s = Make<S>(r.before), other;
      if (shared) other = s;
      EXPECT_EQ(s.Replace(r.from ? from.c_str() : static_cast<const C*>(nullptr), r.to ? to.c_str() : nullptr), r.result);
      EXPECT_EQ(Text(s), r.after);
      ExpectWellFormed(s);
      // Only the wide class writes through a shared block, and only when the
      // text changes without growing (deliberate).
      const bool writesThrough = !S::Traits::kReplaceUnshares && r.after != r.before && r.after.size() <= r.before.size();
      if (shared) {
        EXPECT_EQ(Text(other), writesThrough ? r.after : r.before);
      }
    }
  }
  // Emptied by the replacement, the string keeps a block of length 0.
  S emptied = Make<S>("aaa");
  EXPECT_EQ(emptied.Replace(text("a").c_str(), text("").c_str()), 3);
  EXPECT_NE(emptied.GetData(), nullptr);
  EXPECT_EQ(emptied.GetLength(), 0);
}

TYPED_TEST(Edit, SubstringReplaceAgreesWithTheStepByStepLoop) {
  typedef TypeParam S;
  std::mt19937 random(20240607);
  const char* froms[] = {"a", "ab", "ba", "aa", "b", "aba"};
  const char* tos[] = {"", "x", "xy", "xyz", "b", "ab"};
  for (int round = 0; round < 3000; ++round) {
    std::string before;
    const int length = int(random() % 40);
    for (int i = 0; i < length; ++i) before.push_back("aab\0"[random() % (random() % 8 == 0 ? 4 : 3)]);
    const std::string from = froms[random() % 6], to = tos[random() % 6];
    const auto expected = ReplaceModel(before, from, to);
    S s = Make<S>(before);
    ASSERT_EQ(s.Replace(Chars<S>(from).c_str(), Chars<S>(to).c_str()), expected.second) << before << "/" << from << "/" << to;
    ASSERT_EQ(Text(s), expected.first) << before << "/" << from << "/" << to;
    ExpectWellFormed(s);
  }
}

TYPED_TEST(Edit, SubstringReplaceMayUseTheStringsOwnText) {
  typedef TypeParam S;
  typedef CharOf<S> C;
  S s = Make<S>("abcab");
  const C* text = s;
  EXPECT_EQ(s.Replace(text + 3, text + 1), 0);  // "ab" by "bcab"
  EXPECT_EQ(Text(s), "bcabcbcab");
}

TEST(EditWidths, NarrowSubstringReplaceAlwaysUnshares) {
  Ka_AString a = Make<Ka_AString>("banana"), b(a);
  EXPECT_EQ(b.Replace("an", "A"), 0);
  EXPECT_EQ(Text(b), "bAAa");
  EXPECT_EQ(Text(a), "banana");
  EXPECT_NE(a.GetData(), b.GetData());
}

TEST(EditWidths, WideSubstringReplaceWritesThroughASharedTextUnlessItGrows) {
  const auto an = Chars<Ka_WString>("an"), A = Chars<Ka_WString>("A"), ANN = Chars<Ka_WString>("ANN");
  Ka_WString a = Make<Ka_WString>("banana"), b(a);
  EXPECT_EQ(b.Replace(an.c_str(), A.c_str()), 0);  // shorter: deliberately in the shared block
  EXPECT_EQ(a.GetData(), b.GetData());
  EXPECT_EQ(Text(a), "bAAa");
  EXPECT_EQ(Text(b), "bAAa");
  ExpectWellFormed(a);
  EXPECT_EQ(b.Replace(A.c_str(), ANN.c_str()), 0);  // longer: made private first
  EXPECT_NE(a.GetData(), b.GetData());
  EXPECT_EQ(Text(a), "bAAa");
  EXPECT_EQ(Text(b), "bANNANNa");
}
