// What each kind of page makes of particular bytes and units: best-fit and
// private-use mappings, default characters, invalid and truncated
// sequences, and the escape handling of the stateful pages beyond what the
// mixed texts of crosscheck_test.cpp show.
#include "tests/codepage/conversions.h"

namespace {

TEST(PageDecoding, BytesGiveTheSystemsUnits) {
  const struct { unsigned cp; std::string bytes; WText units; const char* guards; } rows[] = {
      {1252, "", WText(), "empty input converts nothing"},
      {1252, "\x80\x81", W({0x20AC, 0x0081}), "0x80 is the euro; undefined 0x81 is the C1 control"},
      {874, "\xDB\xFC", W({0xF8C1, 0xF8C5}), "undefined Thai bytes are private-use units"},
      {38598, "\xE0\xFA", W({0x05D0, 0x05EA}), "38598 converts as 28598"},
      {949, std::string("\xB0\xA1\x81\x41", 4), W({0xAC00, 0xAC02}), "KS X 1001 and the UHC extension"},
      {949, "\x81", W({0x3F}), "a lead byte at the end is the default unit"},
      {949, std::string("\x81\0A", 3), W({0x3F, 0, 'A'}), "a lead byte before a zero leaves the zero"},
      {949, "\x81\x20\x41", W({0x3F, 'A'}), "an invalid trail is swallowed with its lead"},
      {949, "\x80\xFF", W({0x0080, 0xF8F7}), "single bytes that are not lead bytes"},
      {932, "\x82\xA0\xA0\xB1", W({0x3042, 0xF8F0, 0xFF71}), "hiragana, private use, half-width katakana"},
      {932, "\x81\x7F\x81", W({0x30FB, 0x30FB}), "932's default unit is U+30FB"},
      {936, "\x81\x40\x80", W({0x4E02, 0x20AC}), "GBK extension and the one-byte euro"},
      {950, "\xA4\x40", W({0x4E00}), "Big5"},
      // UTF-8: one U+FFFD per maximal subpart.
      {65001, "\xF0\x9F\x98\x80", W({0xD83D, 0xDE00}), "a supplementary character is a surrogate pair"},
      {65001, "\xE3\x81\x41", W({0xFFFD, 'A'}), "a cut-off sequence is one U+FFFD, the next byte is kept"},
      {65001, "\xE3\x81", W({0xFFFD}), "... also at the end of the input"},
      {65001, "\xE3\x41", W({0xFFFD, 'A'}), "... also when only its lead byte came"},
      {65001, "\xE0\x80\x80", W({0xFFFD, 0xFFFD, 0xFFFD}), "E0 cannot take 80: three subparts"},
      {65001, "\xED\xA0\x80", W({0xFFFD, 0xFFFD, 0xFFFD}), "encoded surrogates are three subparts"},
      {65001, "\xF4\x90\x80\x80", W({0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD}), "above U+10FFFF"},
      {65001, "\xC0\xAF\xF5\x80", W({0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD}), "bytes that never start a character"},
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
  for (const auto& r : rows) EXPECT_EQ(Hex(ToWide(r.cp, r.bytes)), Hex(r.units)) << r.cp << ": " << r.guards;
}

TEST(PageEncoding, UnitsGiveTheSystemsBytes) {
  const struct { unsigned cp; WText units; std::string bytes; const char* guards; } rows[] = {
      {1252, WText(), "", "empty input converts nothing"},
      {1252, W({0x20AC, 0x0100, 0xFF21, 0x3000}), "\x80" "AA ", "euro, then best fits"},
      {1252, W({0x4E00, 0xD83D, 0xDE00}), "???", "unmappable units, a surrogate pair unit by unit"},
      {949, W({0xAC00, 0xAC02, 0x00B7, 0x4E00}), "\xB0\xA1\x81\x41\xA1\xA4\xEC\xE9", "Hangul, UHC, symbol, hanja"},
      {932, W({0xFF5E, 0x301C, 0x2170, 0x00A5}), "\x81\x60?\xFA\x40\x5C", "932's own choices and best fit"},
      {932, W({0x30FB}), "\x81\x45", "the default unit itself maps to its code"},
      {65001, W({0xD800, 'a', 0xDC00}), "\xEF\xBF\xBD" "a\xEF\xBF\xBD", "lone surrogates become U+FFFD"},
      {65001, W({0xD83D, 0xDE00, 0xFFFF}), "\xF0\x9F\x98\x80\xEF\xBF\xBF", "a pair is one character"},
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
  for (const auto& r : rows) EXPECT_EQ(Hex(ToNarrow(r.cp, r.units)), Hex(r.bytes)) << r.cp << ": " << r.guards;
}

}  // namespace
