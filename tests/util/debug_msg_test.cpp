// Formatted debug messages reach the debug sink whole, one call each.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <string>
#include <vector>

namespace {
std::vector<std::u16string> g_messages;
void Capture(const ka_wchar* text) {
  std::u16string message;
  for (const ka_wchar* p = text; *p != 0; ++p) message += static_cast<char16_t>(*p);
  g_messages.push_back(message);
}

class DebugMessages : public ::testing::Test {
 protected:
  void SetUp() override {
    g_messages.clear();
    m_previous = KaSetDebugSink(Capture);
  }
  void TearDown() override { KaSetDebugSink(m_previous); }
  Ka_DebugSink m_previous = nullptr;
};
}  // namespace

TEST_F(DebugMessages, KaDebugMsgFormatsLikeTheWideEngine) {
  KaDebugMsg(KA_W("x=%d, %s|%hs %.2f\n"), 5, KA_W("wide"), "narrow", 0.25);
  KaDebugMsg(KA_W("%c"), 0xE9);  // the wide engine's sign-extended %c
  KaDebugMsg(KA_W(""));
  KaDebugMsg(nullptr);
  ASSERT_EQ(g_messages.size(), 4u) << "one call per message";
  EXPECT_EQ(g_messages[0], u"x=5, wide|narrow 0.25\n") << "no line end added";
  EXPECT_EQ(g_messages[1], u"\uFFE9");
  EXPECT_EQ(g_messages[2], u"");
  EXPECT_EQ(g_messages[3], u"");
}

TEST_F(DebugMessages, KaDebugMsg2WritesTheSourcePosition) {
  KaDebugMsg2("main", 12);
  KaDebugMsg2(nullptr, -1);
  ASSERT_EQ(g_messages.size(), 2u);
  EXPECT_EQ(g_messages[0], u"main(12): ");
  EXPECT_EQ(g_messages[1], u"(null)(-1): ");
}
