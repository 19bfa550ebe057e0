// The string members that convert between Ka_AString and Ka_WString through
// a code page: sizes reserved, lengths fixed afterwards, failures, and the
// members that use the locale code page, which is chosen from the platform.
#include <tuple>
#include <vector>

#include "tests/codepage/conversions.h"

namespace {

std::string Bytes(const Ka_AString& s) { return s.GetData() ? std::string(s, static_cast<size_t>(s.GetLength())) : ""; }
WText Units(const Ka_WString& s) { return s.GetData() ? WText(s, static_cast<size_t>(s.GetLength())) : WText(); }

TEST(StringBridge, NarrowFromWideReservesThreeBytesPerCharacterWideFromNarrowOnePerByte) {
  struct Row { WText wide; int n; unsigned cp; std::string text; int capacity; const char* guards; } rows[] = {
      {W(u""), -1, 1252, "", 0, "empty: the null string"},
      {W(u"0123456789"), -1, 1252, "0123456789", 32, "10 characters ask room for 30 bytes"},
      {W(u"\u65E5\u672C"), -1, 65001, "\xE6\x97\xA5\xE6\x9C\xAC", 32, "three UTF-8 bytes a character fit"},
      {W(u"\u65E5"), -1, 50220, "", 32, "escapes need more than 3 bytes: empty text"},
      {W({'a', 0, 'b'}), 3, 1252, "a", 32, "the length ends at the first zero"},
  };
  for (const Row& r : rows) {
    Ka_AString s("previous text");
    s.Set(r.wide.c_str(), r.n, r.cp);
    EXPECT_EQ(std::tuple(Bytes(s), s.GetAllocLength(), Bytes(Ka_AString(r.wide.c_str(), r.n, r.cp))),
              std::tuple(r.text, r.capacity, r.text)) << r.guards << " (the constructor last)";
  }
  // Wide from narrow reserves one character per byte.
  struct WideRow { const char* narrow; int n; unsigned cp; WText text; const char* guards; } wideRows[] = {
      {nullptr, -1, 949, W(u""), "null (as empty): the null string"},
      {"\xB0\xA1\xB3\xAA", 3, 949, W(u"\uAC00?"), "n bounds the input, here inside a character"},
      {"a\xF0\x9F\x98\x80", -1, 65001, W({'a', 0xD83D, 0xDE00}), "a surrogate pair fits in 4"},
      {"abc", -1, 1200, W(u""), "a page that does not convert: empty text"},
  };
  for (const WideRow& r : wideRows) {
    Ka_WString s(W(u"previous").c_str());
    s.Set(r.narrow, r.n, r.cp);
    EXPECT_EQ(std::tuple(Units(s), Units(Ka_WString(r.narrow, r.n, r.cp))), std::tuple(r.text, r.text))
        << r.guards << " (the constructor second)";
  }
}

TEST(StringBridge, ConvertCodePageFromReturnsTheNewLengthOrNAsPassed) {
  Ka_AString s("old");
  EXPECT_EQ(s.ConvertCodePageFrom(65001, "\xB0\xA1\xB3\xAA", -1, 949), 6);
  EXPECT_EQ(Bytes(s), "\xEA\xB0\x80\xEB\x82\x98");
  EXPECT_EQ(s.ConvertCodePageFrom(949, "\xB0\xA1xyz", -1, 949), -1);  // the same page: n as passed (deliberate)
  EXPECT_EQ(Bytes(s), "\xB0\xA1xyz");
  EXPECT_EQ(s.ConvertCodePageFrom(1252, nullptr, 3, 65001), 0);
  EXPECT_EQ(s.GetData(), nullptr);
}

TEST(StringBridge, AppendsAndAssignmentsUseTheLocalePageButWideOnesSignExtendSingleBytes) {
  KaSetLocaleCP(0);
  const unsigned platform = KaGetLocaleCP();  // chosen from the platform
  EXPECT_TRUE(ka_codepage::IsLibraryPage(platform)) << platform;
  EXPECT_EQ(KaSetLocaleCP(949), platform);  // each call returns what was stored
  Ka_AString narrow;
  Ka_WString wide;
  narrow = W(u"\uAC00a").c_str();
  wide = "\xB0\xA1";
  narrow += W(u"\uB098").c_str();
  wide += "x\xB3\xAA";
  narrow += static_cast<ka_wchar>(0xAC00);
  wide += '\xE9';  // not converted: sign-extended (deliberate)
  narrow += static_cast<ka_wchar>(0);  // the character 0 appends nothing, nor does a null (as an empty) text
  wide += '\0';
  narrow += static_cast<const ka_wchar*>(nullptr);
  wide += static_cast<const char*>(nullptr);
  KaSetLocaleCP(50220);
  narrow += W(u"\u65E5").c_str();           // needs 8 bytes, has 4: fails
  narrow += static_cast<ka_wchar>(0x65E5);  // needs 8 bytes, has 3: nothing
  KaSetLocaleCP(1200);
  wide += "abc";  // the conversion fails: the string stays as it was
  EXPECT_EQ((std::vector<unsigned>{KaSetLocaleCP(0), KaSetLocaleCP(0)}), (std::vector<unsigned>{1200, 0}));
  EXPECT_EQ(Bytes(narrow), "\xB0\xA1" "a\xB3\xAA\xB0\xA1");
  EXPECT_EQ(Units(wide), W({0xAC00, 'x', 0xB098, 0xFFE9}));
}

}  // namespace
