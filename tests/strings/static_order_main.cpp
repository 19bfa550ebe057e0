// The strings' static objects serve static objects of the application in
// any order of construction and destruction; the program's clean exit (under
// the sanitizers too) shows that nothing was used after it was destroyed.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

const Ka_AString& EarlyNarrow();
const Ka_WString* EarlyWide();
bool EarlyNullWasEmpty();

TEST(StringStaticOrder, AGlobalOfAnotherUnitMadeStringsBeforeMain) {
  EXPECT_STREQ(static_cast<const char*>(EarlyNarrow()), "made before main");
  ASSERT_NE(EarlyWide(), nullptr);
  EXPECT_EQ(EarlyWide()->Compare(KA_W("wide, before main")), 0);
  EXPECT_TRUE(EarlyNullWasEmpty());
}

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
