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
}  // namespace

TEST(DebugMessages, FormattedTextAndSourcePositionGoToTheSinkOneCallEach) {
  g_messages.clear();
  const Ka_DebugSink previous = KaSetDebugSink(Capture);
  KaDebugMsg(KA_W("x=%d, %s|%hs %.2f\n"), 5, KA_W("wide"), "narrow", 0.25);
  KaDebugMsg(KA_W("%c"), 0xE9);  // the wide engine's sign-extended %c
  KaDebugMsg(nullptr);
  KaDebugMsg2("main", 12);
  KaDebugMsg2(nullptr, -1);
  KaSetDebugSink(previous);
  const std::vector<std::u16string> expected = {u"x=5, wide|narrow 0.25\n", u"\uFFE9", u"", u"main(12): ",
                                                u"(null)(-1): "};
  EXPECT_EQ(g_messages, expected) << "no line end is added";
}
