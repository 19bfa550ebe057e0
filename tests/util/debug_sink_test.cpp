// The debug sink and the UTF-8 form of debug text for standard error.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <string>

#include "platform/utf16_to_utf8.h"
#include "util/util_internal.h"

namespace {
std::u16string g_received;
void Capture(const ka_wchar* text) {
  for (const ka_wchar* p = text; *p != 0; ++p) g_received += static_cast<char16_t>(*p);
}
void Other(const ka_wchar*) {}
}  // namespace

TEST(DebugSink, InstalledSinkReceivesTextAndNullRestoresTheDefault) {
  EXPECT_EQ(KaSetDebugSink(Capture), nullptr);  // the default was in place
  g_received.clear();
  ka_detail::EmitDebugText(KA_W("main(12): "));
  EXPECT_EQ(g_received, u"main(12): ");
  EXPECT_EQ(KaSetDebugSink(Other), Capture);  // returns the sink it replaces
  EXPECT_EQ(KaSetDebugSink(nullptr), Other);
  EXPECT_EQ(KaSetDebugSink(nullptr), nullptr);
}

TEST(DebugText, ConvertsToUtf8WithoutSplittingCharacters) {
  struct { const char16_t* text; size_t room; const char* utf8; size_t units; } cases[] = {
      {u"", 16, "", 0},                                         // empty
      {u"abc", 16, "abc", 3},                                   // ASCII
      {u"\u00e9\u3131", 16, "\xc3\xa9\xe3\x84\xb1", 2},         // two- and three-byte forms
      {u"\U0001F600", 16, "\xf0\x9f\x98\x80", 2},               // a surrogate pair
      {u"\xd800x", 16, "\xef\xbf\xbdx", 2},                     // a lone surrogate: U+FFFD
      {u"ab\u3131", 5, "ab", 2},                                // no room for the whole character
  };
  for (auto& c : cases) {
    char out[16];
    size_t units = 99;
    const size_t n = ka_platform::Utf16ToUtf8(reinterpret_cast<const ka_wchar*>(c.text), out, c.room, &units);
    EXPECT_EQ(std::string(out, n), c.utf8);
    EXPECT_EQ(out[n], 0);
    EXPECT_EQ(units, c.units);
  }
}
