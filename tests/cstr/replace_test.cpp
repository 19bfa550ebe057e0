// Replacement in a _ka_malloc block that may move.
#include <random>

#include "cstr/widths.h"

KA_BOTH_WIDTHS(Replace);

template <class W>
typename W::Char* Dup(const char* s) {
  return W::strdup(Txt<typename W::Char>(s).c_str());
}

TYPED_TEST(Replace, NullEmptyAndNoMatchRulesAndInPlaceShrinking) {
  typedef typename TypeParam::Char C;
  Arg<C> x("X"), y("Y");
  EXPECT_EQ(TypeParam::replace(nullptr, x.p(), y.p()), nullptr);
  C* s = static_cast<C*>(_ka_malloc(sizeof(C)));
  s[0] = 0;
  EXPECT_EQ(TypeParam::replace(s, nullptr, nullptr), s);    // both null: even an empty text comes back
  EXPECT_EQ(TypeParam::replace(s, x.p(), y.p()), nullptr);  // an empty text otherwise gives null
  ka_free(s);
  s = Dup<TypeParam>("aXb");
  EXPECT_EQ(TypeParam::replace(s, nullptr, y.p()), s);          // null pattern
  EXPECT_EQ(TypeParam::replace(s, Arg<C>("").p(), y.p()), s);   // empty pattern
  EXPECT_EQ(TypeParam::replace(s, Arg<C>("Z").p(), y.p()), s);  // no match
  EXPECT_EQ(TypeParam::replace(s, x.p(), y.p()), s);            // equal lengths keep the block
  EXPECT_EQ(TypeParam::replace(s, y.p(), nullptr), s);          // a null replacement deletes
  EXPECT_EQ(std::basic_string<C>(s), Txt<C>("ab"));
  ka_free(s);
}

TYPED_TEST(Replace, GrowthMovesOnlyWhenTheBlockIsTooSmallAndReadsTheTextFirst) {
  typedef typename TypeParam::Char C;
  C* s = Dup<TypeParam>("aXbXc");  // a 32-byte block
  EXPECT_EQ(TypeParam::replace(s, Arg<C>("X").p(), Arg<C>("YY").p()), s);
  EXPECT_EQ(std::basic_string<C>(s), Txt<C>("aYYbYYc"));
  const std::string longer(40, 'L');
  C* moved = TypeParam::replace(s, Arg<C>("b").p(), Arg<C>(longer.c_str()).p());
  ASSERT_NE(moved, nullptr);
  EXPECT_NE(moved, s);  // the old block was released (the sanitizers watch it)
  EXPECT_EQ(std::basic_string<C>(moved), Txt<C>(("aYY" + longer + "YYc").c_str()));
  // the block _ka_realloc would give for the new length
  EXPECT_EQ(Ka_BufferData::FromData(moved)->nAllocLength,
            Ka_BufferPool::GetBufferGroup(static_cast<int>((longer.size() + 7) * sizeof(C))));
  ka_free(moved);
  s = Dup<TypeParam>("abab");
  s = TypeParam::replace(s, s + 2, Arg<C>("x").p());  // the pattern is the text's own tail
  EXPECT_EQ(std::basic_string<C>(s), Txt<C>("xx"));
  s = TypeParam::replace(s, Arg<C>("x").p(), s);  // the replacement is the text itself
  EXPECT_EQ(std::basic_string<C>(s), Txt<C>("xxxx"));
  ka_free(s);
}

TYPED_TEST(Replace, MatchesAStringReplaceLoopOnRandomTexts) {
  typedef typename TypeParam::Char C;
  std::mt19937 rng(777);
  auto random_text = [&rng](size_t n) {
    std::basic_string<C> t;
    while (t.size() < n) t.push_back(static_cast<C>("abAB"[rng() % 4]));
    return t;
  };
  for (int round = 0; round < 1500; ++round) {
    const auto text = random_text(1 + rng() % (round % 2 ? 30 : 700));
    const auto from = random_text(1 + rng() % 6), to = random_text(rng() % 9);
    std::basic_string<C> want = text;
    for (size_t at = want.find(from); at != want.npos; at = want.find(from, at + to.size()))
      want.replace(at, from.size(), to);
    C* got = TypeParam::replace(TypeParam::strdup(text.c_str()), from.c_str(), to.c_str());
    ASSERT_NE(got, nullptr) << round;
    ASSERT_EQ(std::basic_string<C>(got), want) << round;
    ka_free(got);
  }
}
