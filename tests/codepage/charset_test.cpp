// Charset names to code pages and back, and the device's code-page mapping.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <string>
#include <vector>

// (The guide's examples look up EUC-KR and Shift_JIS in mixed case, utf-8,
// an unknown name and iso8859-1, never found.)
TEST(CharsetName, LookupFindsStoredKeysInAnyCaseAndWideNamesByTheirLowBytes) {
  struct Row { const char* name; unsigned cp; const char* guards; } rows[] = {
      {"", 0, "empty name"},
      {"ansi_x3.4-1986", 1252, "first row of the table"},
      {"x0212", 932, "last row"},
      {"iso-8859-11", 874, "longer name sorting before its prefix's neighbours"},
      {"iso_8859-1", 1252, "iso_8859-1 and -2 are found, unlike -3 to -9"},
      {"ks_c_5601-1987", 949, "underscores elsewhere are found"},
      {"iso-5022-kr", 50225, "stored misspelling is the key (deliberate)"},
      {"chiness", 936, "stored misspelling (deliberate)"},
      {"euctw", 874, "kept as stored (deliberate)"},
      {"euc_jp", 932, "kept as stored (deliberate)"},
      {"euc-jp", 51932, "unlike euc_jp"},
      {"\xE9", 0, "a byte above 0x7F"},
  };
  for (const Row& r : rows) EXPECT_EQ(ka_findcodepageA(r.name), r.cp) << r.name << ": " << r.guards;
  // Wide names are narrowed to their low bytes.
  EXPECT_EQ(ka_findcodepageW(KA_W("\u0175tf-8")), 65001u);  // U+0175's low byte is 'u' (deliberate)
  EXPECT_EQ(ka_findcodepageW(KA_W("utf-8\u0100x")), 65001u);  // a unit with low byte 0 ends the name
  EXPECT_EQ(ka_findcodepageW(KA_W("utf-8aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa")), 0u);
  EXPECT_EQ(ka_findcodepageW(KA_W("")) + ka_findcodepageW(nullptr) + ka_findcodepageA(nullptr), 0u);  // narrow too
}

TEST(CharsetName, TheThirtyNamesOrderedAgainstTheComparisonAreNeverFound) {
  // Each pattern of them, at both ends of its digits.
  for (const char* name : {"iso_8859-3", "iso_8859-9", "iso2022jp", "iso2022kr", "iso646-us", "iso8859-1", "iso8859-9",
                           "iso8859_1", "iso8859_9", "utf_16", "utf_8"})
    EXPECT_EQ(ka_findcodepageA(name), 0u) << name;
  // Their neighbours in the table are found, so the search itself works there.
  for (const char* name : {"iso-ir-6", "iso_646.irv:1991", "koi", "utf-16", "utf16", "visual"})
    EXPECT_NE(ka_findcodepageA(name), 0u) << name;
}

// (The guide's examples give euc-kr for 949 and ASCII for 1200.)
TEST(CharsetName, PreferredNamesWithTheAsciiFallbackAndTheDevicesPageForARequestedPage) {
  const std::pair<unsigned, const char*> names[] = {
      {0, "ASCII"},         {51932, "euc-jp"}, {50220, "iso-2022-jp-2"}, {50225, "iso-2022-kr"}, {1252, "iso-8859-1"},
      {932, "shift-jis"}, {65001, "utf-8"},  {0xFFFFFFFFu, "ASCII"}};
  for (const auto& r : names) EXPECT_STREQ(ka_findcharset(r.first), r.second) << r.first;
  // ka_activecodepage: one page of each case group, and the two kept as the device had them.
  const std::pair<unsigned, unsigned> rows[] = {
      {0, 1252},      {850, 1252},   {437, 1252},   {0xFFFFFFFFu, 1252}, {708, 1256},   {28596, 1256},
      {852, 852},     {65001, 65001}, {50220, 932},  {52936, 936},        {50225, 949},  {1200, 65001},
      {28592, 1250},  {20866, 1251},  {28597, 1253}, {28593, 1254},       {28594, 1257}, {38598, 1255}};
  for (const auto& r : rows) EXPECT_EQ(ka_activecodepage(r.first), r.second) << r.first;
}
