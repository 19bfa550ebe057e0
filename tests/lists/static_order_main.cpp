// The lists' static objects serve static objects of the application in any
// order of construction and destruction; the program's clean exit (under the
// sanitizers too) shows that nothing was used after it was destroyed.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

const Ka_AStrList& EarlyWords();
bool EarlyEmptyItems();

TEST(ListStaticOrder, AGlobalOfAnotherUnitMadeListsBeforeMain) {
  EXPECT_STREQ(static_cast<const char*>(EarlyWords()[2]), "main");
  EXPECT_TRUE(EarlyEmptyItems());
}

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
