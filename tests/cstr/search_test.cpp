// Character, substring and set search, and counting.
#include "cstr/widths.h"

#include <random>

template <class W>
class Search : public ::testing::Test {};
TYPED_TEST_SUITE(Search, BothWidths);

TYPED_TEST(Search, SubstringFinderNullAndEdgeRules) {
  typedef typename TypeParam::Char C;
  const auto text = Txt<C>("xxABc");
  const C* s = text.c_str();
  EXPECT_EQ(TypeParam::stristr(s, Txt<C>("abC").c_str()), s + 2);
  EXPECT_EQ(TypeParam::stristr(s, Txt<C>("").c_str()), s);  // empty pattern: the text
  EXPECT_EQ(TypeParam::stristr(s, nullptr), s);             // null pattern: the text
  EXPECT_EQ(TypeParam::stristr(nullptr, Txt<C>("a").c_str()), nullptr);
  EXPECT_EQ(TypeParam::stristr(s, Txt<C>("xxABcd").c_str()), nullptr);  // longer than the text
  EXPECT_EQ(TypeParam::stristr(s, Txt<C>("C").c_str()), s + 4);        // one character, other case
}

TYPED_TEST(Search, LastCharacterIncludesTheTerminator) {
  typedef typename TypeParam::Char C;
  const auto text = Txt<C>("abcab");
  const C* s = text.c_str();
  EXPECT_EQ(TypeParam::strrchr(s, 'b'), s + 4);
  EXPECT_EQ(TypeParam::strrchr(s, 0), s + 5);  // the terminator's address
  EXPECT_EQ(TypeParam::strrchr(s, 'z'), nullptr);
  EXPECT_EQ(TypeParam::strrchr(nullptr, 'a'), nullptr);
}

TYPED_TEST(Search, SetSearchAndSpan) {
  typedef typename TypeParam::Char C;
  struct Row {
    const char *s, *set;
    int brk;   // index ka_strpbrk points at, -1 for null
    int span;  // ka_strspn
  } rows[] = {
      {nullptr, "a", -1, -1},  // null text
      {"", "a", -1, 0},        // empty text: no hit, empty run
      {"", nullptr, -1, -1},   // empty text beats a null set for strpbrk
      {"aab", nullptr, 0, -1}, // null set: strpbrk gives the text itself
      {"aab", "", -1, 0},      // empty set matches nothing
      {"aab", "a", 0, 2},      // leading run of the set
      {"xyzb", "ba", 3, 0},    // first character in the set, anywhere in it
      {"abc", "cba", 0, 3},    // the whole text
  };
  for (const Row& r : rows) {
    const auto s = Txt<C>(r.s ? r.s : ""), set = Txt<C>(r.set ? r.set : "");
    const C* ps = r.s ? s.c_str() : nullptr;
    const C* pset = r.set ? set.c_str() : nullptr;
    const C* hit = TypeParam::strpbrk(ps, pset);
    EXPECT_EQ(hit == nullptr ? -1 : hit - ps, r.brk) << (r.s ? r.s : "null") << " / " << (r.set ? r.set : "null");
    EXPECT_EQ(TypeParam::strspn(ps, pset), r.span) << (r.s ? r.s : "null") << " / " << (r.set ? r.set : "null");
  }
}

TYPED_TEST(Search, CountIsNonOverlappingAndFiniteForEmptyPatterns) {
  typedef typename TypeParam::Char C;
  const auto text = Txt<C>("aaaa");
  EXPECT_EQ(TypeParam::countstr(text.c_str(), Txt<C>("aa").c_str()), 2);
  EXPECT_EQ(TypeParam::countstr(text.c_str(), Txt<C>("A").c_str()), 0);  // exact case
  EXPECT_EQ(TypeParam::countstr(nullptr, Txt<C>("a").c_str()), 0);
  EXPECT_EQ(TypeParam::countstr(text.c_str(), Txt<C>("").c_str()), 0);  // would never finish otherwise
  EXPECT_EQ(TypeParam::countstr(text.c_str(), nullptr), 0);
}

// Leftmost match and non-overlapping count by the obvious method, to check
// the fast paths (first-character scan and block filter) against.
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
    // Short and long texts (long ones take the block filter), short and long
    // patterns, from a small alphabet so that near-matches abound.
    const size_t len = round % 3 == 0 ? rng() % 20 : 200 + rng() % 400;
    const size_t m = 1 + rng() % 9;
    std::basic_string<C> s, p;
    for (size_t i = 0; i < len; ++i) s.push_back(alphabet[rng() % alphabet.size()]);
    for (size_t i = 0; i < m; ++i) p.push_back(alphabet[rng() % alphabet.size()]);
    if (len > m && rng() % 2) s.replace(rng() % (len - m), m, p);  // plant one
    const size_t want = NaiveFind(s, p, 0, fold);
    const C* got = find(s.c_str(), p.c_str());
    ASSERT_EQ(got == nullptr ? std::basic_string<C>::npos : static_cast<size_t>(got - s.c_str()), want)
        << "round " << round;
    if (count != nullptr) {
      int n = 0;
      for (size_t at = NaiveFind(s, p, 0, false); at != s.npos; at = NaiveFind(s, p, at + m, false)) ++n;
      ASSERT_EQ(count(s.c_str(), p.c_str()), n) << "round " << round;
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

TEST(SearchWide, FirstUnitNeverFindsTheTerminator) {
  const ka_wchar* s = KA_W("ab\u00E9");
  EXPECT_EQ(ka_strchrW(s, 'b'), s + 1);
  EXPECT_EQ(ka_strchrW(s, 0xE9), s + 2);
  EXPECT_EQ(ka_strchrW(s, 0), nullptr);  // deliberate: unlike strchr
  EXPECT_EQ(ka_strchrW(s, 0x100E9), nullptr);  // beyond any unit
  EXPECT_EQ(ka_strchrW(nullptr, 'a'), nullptr);
  EXPECT_EQ(ka_strstrW(s, KA_W("b\u00E9")), s + 1);
  EXPECT_EQ(ka_strstrW(s, nullptr), s);
}

TEST(SearchNarrow, HighBytesMatchOnlyTheirSignedValue) {
  const char* s = "a\xE9";
  EXPECT_EQ(ka_strrchrA(s, -23), s + 1);
  EXPECT_EQ(ka_strrchrA(s, 0xE9), nullptr);
  const ka_wchar* w = KA_W("a\u00E9");
  EXPECT_EQ(ka_strrchrW(w, 0xE9), w + 1);
}
