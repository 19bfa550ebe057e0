// Character, substring and set search, and counting.
#include <random>
#include <vector>

#include "cstr/widths.h"

KA_BOTH_WIDTHS(Search);

TYPED_TEST(Search, FindersFollowTheNullAndEdgeRules) {
  typedef typename TypeParam::Char C;
  Arg<C> text("xxABcb");
  C* s = text.p();
  EXPECT_EQ(TypeParam::stristr(s, Arg<C>("abC").p()), s + 2);
  EXPECT_EQ(TypeParam::stristr(s, Arg<C>("").p()), s);    // empty pattern: the text
  EXPECT_EQ(TypeParam::stristr(s, nullptr), s);           // null pattern: the text
  EXPECT_EQ(TypeParam::stristr(nullptr, Arg<C>("a").p()), nullptr);
  EXPECT_EQ(TypeParam::stristr(s, Arg<C>("xxABcbx").p()), nullptr);  // longer than the text
  EXPECT_EQ(TypeParam::strrchr(s, 'b'), s + 5);
  EXPECT_EQ(TypeParam::strrchr(s, 0), s + 6);  // the terminator's address
  EXPECT_EQ(TypeParam::strrchr(nullptr, 'a'), nullptr);
  EXPECT_EQ(TypeParam::countstr(Arg<C>("aaaa").p(), Arg<C>("aa").p()), 2);  // no overlaps
  EXPECT_EQ(TypeParam::countstr(Arg<C>("aaaa").p(), Arg<C>("A").p()), 0);   // exact case
  EXPECT_EQ(TypeParam::countstr(nullptr, Arg<C>("a").p()), 0);
  EXPECT_EQ(TypeParam::countstr(s, Arg<C>("").p()), 0);  // would never finish otherwise
}

TYPED_TEST(Search, SetSearchAndSpan) {
  typedef typename TypeParam::Char C;
  struct { const char *s, *set; int brk; int span; } rows[] = {  // index ka_strpbrk points at, -1 for null; ka_strspn
      {nullptr, "a", -1, -1},   // null text
      {"", "a", -1, 0},         // empty text: no hit, empty run
      {"", nullptr, -1, -1},    // empty text beats a null set for strpbrk
      {"aab", nullptr, 0, -1},  // null set: strpbrk gives the text itself
      {"aab", "", -1, 0},       // empty set matches nothing
      {"aab", "a", 0, 2},       // leading run of the set
      {"xyzb", "ba", 3, 0},     // first character in the set, anywhere in it
  };
  for (auto& r : rows) {
    Arg<C> s(r.s), set(r.set);
    const C* hit = TypeParam::strpbrk(s.p(), set.p());
    EXPECT_EQ(hit == nullptr ? -1 : hit - s.p(), r.brk) << (r.s ? r.s : "null") << " / " << (r.set ? r.set : "null");
    EXPECT_EQ(TypeParam::strspn(s.p(), set.p()), r.span) << (r.s ? r.s : "null") << " / " << (r.set ? r.set : "null");
  }
}

TYPED_TEST(Search, MatchesAroundEveryMeasuringStepAreFound) {
  // A long text is measured a step at a time as the search goes (steps of
  // 256, 512, ... 65536 starts); a match just before, across or just after
  // each step's end, or only near the text's end, must be found the same.
  typedef typename TypeParam::Char C;
  const size_t length = 140000;
  std::vector<size_t> at;
  for (size_t end = 256, step = 512; end < length; end += step, step = step < 65536 ? step * 2 : step)
    for (size_t back : {4, 2, 1, 0}) at.push_back(end - back);
  at.push_back(length - 3);  // the last place a three-character match fits
  Arg<C> pat("aBc");
  for (size_t pos : at) {
    std::basic_string<C> text(length, static_cast<C>('x'));
    for (size_t i = 0; i < 3; ++i) text[pos + i] = static_cast<C>("abc"[i]);
    const C* hit = TypeParam::stristr(text.c_str(), pat.p());
    ASSERT_EQ(hit == nullptr ? -1 : hit - text.c_str(), static_cast<long>(pos));
  }
  const std::basic_string<C> none(length, static_cast<C>('x'));
  EXPECT_EQ(TypeParam::stristr(none.c_str(), pat.p()), nullptr);  // absent: the whole text read
}

// Leftmost match from `from` by the obvious method, to check the fast paths
// (first-character scan and block filter) against.
template <class C>
size_t NaiveFind(const std::basic_string<C>& s, const std::basic_string<C>& p, size_t from, bool fold) {
  auto key = [fold](C c) { return fold && c >= 'A' && c <= 'Z' ? c + 32 : static_cast<int>(c); };
  for (size_t i = from; i + p.size() <= s.size(); ++i) {
    size_t j = 0;
    while (j < p.size() && key(s[i + j]) == key(p[j])) ++j;
    if (j == p.size()) return i;
  }
  return std::basic_string<C>::npos;
}

template <class C>
void CheckAgainstNaive(const std::vector<C>& alphabet, C* (*find)(const C*, const C*), bool fold,
                       int (*count)(const C*, const C*)) {
  std::mt19937 rng(12345);
  for (int round = 0; round < 3000; ++round) {
    // Short and long texts (long ones take the block filter) from a small
    // alphabet, so that near-matches abound; half hold a planted pattern.
    const size_t len = round % 3 == 0 ? rng() % 20 : 200 + rng() % 400, m = 1 + rng() % 9;
    std::basic_string<C> s, p;
    for (size_t i = 0; i < len; ++i) s.push_back(alphabet[rng() % alphabet.size()]);
    for (size_t i = 0; i < m; ++i) p.push_back(alphabet[rng() % alphabet.size()]);
    if (len > m && rng() % 2) s.replace(rng() % (len - m), m, p);
    const C* got = find(s.c_str(), p.c_str());
    ASSERT_EQ(got == nullptr ? s.npos : static_cast<size_t>(got - s.c_str()), NaiveFind(s, p, 0, fold)) << round;
    int n = 0;
    for (size_t at = NaiveFind(s, p, 0, false); at != s.npos; at = NaiveFind(s, p, at + m, false)) ++n;
    if (count != nullptr) {
      ASSERT_EQ(count(s.c_str(), p.c_str()), n) << round;
    }
  }
}

TEST(SearchModel, NarrowCaseInsensitiveAndCountMatchTheObviousMethod) {
  // 0xC1 and 0xE1 are a letter pair only in Latin-1: they must stay apart.
  CheckAgainstNaive<char>({'a', 'A', 'b', 'B', '[', '\xC1', '\xE1'}, ka_stristrA, true, ka_countstrA);
}

TEST(SearchModel, WideExactAndCaseInsensitiveMatchTheObviousMethod) {
  // 0x0161 and 0x4141 share low bytes with a and A: they must never match them.
  const std::vector<ka_wchar> alphabet = {'a', 'A', 'b', 0x0161, 0x4141};
  CheckAgainstNaive<ka_wchar>(alphabet, ka_strstrW, false, ka_countstrW);
  CheckAgainstNaive<ka_wchar>(alphabet, ka_stristrW, true, nullptr);
}

TEST(SearchWidths, CharacterSearchRulesOfEachWidth) {
  const ka_wchar* w = KA_W("ab\u00E9");
  EXPECT_EQ(ka_strchrW(w, 'b'), w + 1);
  EXPECT_EQ(ka_strchrW(w, 0xE9), w + 2);
  EXPECT_EQ(ka_strchrW(w, 0), nullptr);        // deliberate: unlike strchr
  EXPECT_EQ(ka_strchrW(w, 0x100E9), nullptr);  // beyond any unit
  EXPECT_EQ(ka_strrchrW(w, 0xE9), w + 2);
  const char* s = "a\xE9";
  EXPECT_EQ(ka_strrchrA(s, -23), s + 1);       // narrow bytes match their signed value
  EXPECT_EQ(ka_strrchrA(s, 0xE9), nullptr);
}
