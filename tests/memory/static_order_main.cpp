// The pools serve static objects of the application in any order of
// construction and destruction; the program's clean exit (under the
// sanitizers too) shows that no pool was used after it was released.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

const char* EarlyUserText();

TEST(StaticOrder, AGlobalOfAnotherUnitGotABlockBeforeMain) {
  ASSERT_NE(EarlyUserText(), nullptr);
  EXPECT_STREQ(EarlyUserText(), "made before main");
}

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
