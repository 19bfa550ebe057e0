// The buffers' static object serves static objects of the application in
// any order of construction and destruction; the program's clean exit (under
// the sanitizers too) shows that nothing was used after it was destroyed.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

const Ka_Buffer& EarlyBytes();
bool EarlySlotTaken();

TEST(BufferStaticOrder, AGlobalOfAnotherUnitMadeBuffersBeforeMain) {
  EXPECT_STREQ(static_cast<const char*>(EarlyBytes()), "before main");
  EXPECT_TRUE(EarlySlotTaken());
}

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
