// The buffers' static object serves static objects of the application in
// any order of construction and destruction; the program's clean exit (under
// the sanitizers too) shows that nothing was used after it was destroyed.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

bool EarlyBuffersWorked();

TEST(BufferStaticOrder, AGlobalOfAnotherUnitMadeBuffersBeforeMain) { EXPECT_TRUE(EarlyBuffersWorked()); }

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
