// Replacement in a _ka_malloc block that may move.
#include "cstr/widths.h"

#include <random>

template <class W>
class Replace : public ::testing::Test {};
TYPED_TEST_SUITE(Replace, BothWidths);

TYPED_TEST(Replace, NullEmptyAndNoMatchRules) {
  typedef typename TypeParam::Char C;
  const auto x = Txt<C>("X"), y = Txt<C>("Y"), empty = Txt<C>("");
  EXPECT_EQ(TypeParam::replace(nullptr, x.c_str(), y.c_str()), nullptr);
  C* s = static_cast<C*>(_ka_malloc(sizeof(C)));
  s[0] = 0;
  EXPECT_EQ(TypeParam::replace(s, nullptr, nullptr), s);  // both null: even an empty text comes back
  EXPECT_EQ(TypeParam::replace(s, x.c_str(), y.c_str()), nullptr);  // an empty text otherwise gives null
  EXPECT_EQ(TypeParam::replace(s, nullptr, y.c_str()), nullptr);
  ka_free(s);
  s = TypeParam::strdup(Txt<C>("aXb").c_str());
  EXPECT_EQ(TypeParam::replace(s, nullptr, y.c_str()), s);      // null pattern
  EXPECT_EQ(TypeParam::replace(s, empty.c_str(), y.c_str()), s);  // empty pattern
  EXPECT_EQ(TypeParam::replace(s, Txt<C>("Z").c_str(), y.c_str()), s);  // no match
  EXPECT_EQ(Held(s), Txt<C>("aXb"));
  ka_free(s);
}

TYPED_TEST(Replace, ShrinkingAndEqualLengthsKeepTheBlock) {
  typedef typename TypeParam::Char C;
  C* s = TypeParam::strdup(Txt<C>("aXbXc").c_str());
  EXPECT_EQ(TypeParam::replace(s, Txt<C>("X").c_str(), Txt<C>("Z").c_str()), s);
  EXPECT_EQ(Held(s), Txt<C>("aZbZc"));
  EXPECT_EQ(TypeParam::replace(s, Txt<C>("Z").c_str(), nullptr), s);  // a null replacement deletes
  EXPECT_EQ(Held(s), Txt<C>("abc"));
  ka_free(s);
}

TYPED_TEST(Replace, GrowthMovesOnlyWhenTheBlockIsTooSmall) {
  typedef typename TypeParam::Char C;
  C* s = TypeParam::strdup(Txt<C>("aXbXc").c_str());  // a 32-byte block
  s = TypeParam::replace(s, Txt<C>("X").c_str(), Txt<C>("YY").c_str());
  ASSERT_NE(s, nullptr);
  EXPECT_EQ(Held(s), Txt<C>("aYYbYYc"));
  C* const before = s;
  const std::string long_text(40, 'L');
  C* moved = TypeParam::replace(s, Txt<C>("b").c_str(), Txt<C>(long_text.c_str()).c_str());
  ASSERT_NE(moved, nullptr);
  EXPECT_NE(moved, before);  // the old block was released (the sanitizers watch it)
  EXPECT_EQ(Held(moved), Txt<C>(("aYY" + long_text + "YYc").c_str()));
  // the block _ka_realloc would give for the new length
  EXPECT_EQ(Ka_BufferData::FromData(moved)->nAllocLength,
            Ka_BufferPool::GetBufferGroup(static_cast<int>((long_text.size() + 7) * sizeof(C))));
  ka_free(moved);
}

TYPED_TEST(Replace, PatternOrReplacementInsideTheTextIsReadBeforeWriting) {
  typedef typename TypeParam::Char C;
  C* s = TypeParam::strdup(Txt<C>("abab").c_str());
  s = TypeParam::replace(s, s + 2, Txt<C>("x").c_str());  // the pattern is the text's own tail
  ASSERT_NE(s, nullptr);
  EXPECT_EQ(Held(s), Txt<C>("xx"));
  s = TypeParam::replace(s, Txt<C>("x").c_str(), s);  // the replacement is the text itself
  ASSERT_NE(s, nullptr);
  EXPECT_EQ(Held(s), Txt<C>("xxxx"));
  ka_free(s);
}

TYPED_TEST(Replace, MatchesAStringReplaceLoopOnRandomTexts) {
  typedef typename TypeParam::Char C;
  std::mt19937 rng(777);
  const char alphabet[] = "abAB";
  for (int round = 0; round < 1500; ++round) {
    auto random_text = [&](size_t n) {
      std::basic_string<C> t;
      for (size_t i = 0; i < n; ++i) t.push_back(static_cast<C>(alphabet[rng() % 4]));
      return t;
    };
    const std::basic_string<C> text = random_text(1 + rng() % (round % 2 ? 30 : 700));
    const std::basic_string<C> from = random_text(1 + rng() % 6), to = random_text(rng() % 9);
    std::basic_string<C> want = text;
    for (size_t at = want.find(from); at != want.npos; at = want.find(from, at + to.size()))
      want.replace(at, from.size(), to);
    C* s = TypeParam::strdup(text.c_str());
    C* got = TypeParam::replace(s, from.c_str(), to.c_str());
    ASSERT_NE(got, nullptr) << "round " << round;
    ASSERT_EQ(Held(got), want) << "round " << round;
    ka_free(got);
  }
}
