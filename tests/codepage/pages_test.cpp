// What the pages that Windows (or Wine) does not convert, or converts
// otherwise, make of particular bytes and units: the escape handling of the
// stateful pages beyond what the mixed texts of crosscheck_test.cpp show,
// EUC-JP's invalid sequences, 38598, and the UTF-8 sequences where Wine's
// decoder takes more than the maximal subpart. Every byte, byte pair and unit
// of the other pages is compared with the system's in
// windows_compare_test.cpp (the mingw CI target).
#include "tests/codepage/conversions.h"

TEST(PageDecoding, BytesGiveTheSystemsUnits) {
  const struct { unsigned cp; std::string bytes; WText units; const char* guards; } rows[] = {
      {38598, "\xE0\xFA", W({0x05D0, 0x05EA}), "38598 converts as 28598"},
      // UTF-8: one U+FFFD per maximal subpart, where Wine's decoder takes
      // more (so the Windows comparison tolerates it).
      {65001, "\xE3\x81", W({0xFFFD}), "a sequence cut off by the end of the input is one U+FFFD"},
      {65001, "\xE3\x41", W({0xFFFD, 'A'}), "... and by a byte after its lead, which is kept"},
      {65001, "\xE0\x80\x80", W({0xFFFD, 0xFFFD, 0xFFFD}), "E0 cannot take 80: three subparts"},
      {65001, "\xED\xA0\x80", W({0xFFFD, 0xFFFD, 0xFFFD}), "encoded surrogates are three subparts"},
      {65001, "\xF4\x90\x80\x80", W({0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD}), "above U+10FFFF"},
      // ISO-2022-JP
      {50220, "\x1B$@F|\x1B(J\\", W({0x65E5, '\\'}), "ESC $ @ and JIS Roman read as ASCII"},
      {50220, "\x1B(I1\x0E\x32\x0F\x33", W({0xFF71, 0xFF72, 0xFF73}), "katakana by ESC ( I and by SO"},
      {50220, "\x1B$BF \x1B(B", W({0x30FB, ' '}), "an incomplete pair is the default unit"},
      {50220, "\x1B$Xa\xA4", W({0x1B, '$', 'X', 'a', 0x30FB}), "unknown escapes pass; 8-bit bytes are invalid"},
      // ISO-2022-KR
      {50225, "\x1B$)C\x0E\x30\x21 \x30\x21\x0F" "a", W({0xAC00, ' ', 0xAC00, 'a'}), "space is itself in SO mode"},
      {50225, "\x0E\x30\x21\x1B$)C\x30\x22", W({0xAC00, 0xAC01}), "SO needs no designation"},
      {50225, "\x0E\x30", W({0x3F}), "a cut-off pair is '?'"},
      // HZ-GB-2312
      {52936, "a~\nb~x", W({'a', 'b', '~', 'x'}), "~ newline joins lines; any other ~ is itself"},
      {52936, "~{VP\nVP", W({0x4E2D, '\n', 0x4E2D}), "controls are themselves in GB mode"},
      // EUC-JP
      {51932, "\x8F\xB0", W({0x30FB, 0x30FB}), "a 0x8F without two bytes is invalid, alone"},
      {51932, "\x8E\x41\xA0", W({0x30FB, 0x30FB}), "a pair without a character; a byte outside EUC"},
  };
  for (const auto& r : rows) EXPECT_EQ(ToWide(r.cp, r.bytes), r.units) << r.cp << ": " << r.guards;
}

TEST(PageEncoding, UnitsGiveTheSystemsBytes) {
  const struct { unsigned cp; WText units; std::string bytes; const char* guards; } rows[] = {
      // ISO-2022-JP
      {50220, W({0xFF71, 0xFF9E}), "\x1B$B%\"!+\x1B(B", "half-width katakana go out full-width"},
      {50220, W({0x00A5, 0xAC00}), "\\?", "best fit to ASCII; Hangul is not in 932"},
      {50220, W({0x2170}), "\x1B$B|q\x1B(B", "IBM extensions go out NEC-selected, in row 92"},
      // ISO-2022-KR
      {50225, W({0xAC02, 0x4E00}), "?\x1B$)C\x0E\x6C\x69\x0F", "UHC-only Hangul is '?'"},
      // HZ-GB-2312
      {52936, W({0x4E02}), "?", "GBK-only characters are '?'"},
      // EUC-JP
      {51932, W({0xFF5E, 0x301C, 0x2170}), "\xA1\xC1?\xFC\xF1", "932's tilde, not the wave dash; NEC-selected"},
  };
  for (const auto& r : rows) EXPECT_EQ(ToNarrow(r.cp, r.units), r.bytes) << r.cp << ": " << r.guards;
}
