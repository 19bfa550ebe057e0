// The format engine over both widths: parsing, integers, characters, texts,
// pointers, padding, the target's block and hostile formats. Floating point
// is in float_test.cpp.
#include <climits>

#include "format/format_support.h"

template <class S>
class Format : public ::testing::Test {};
TYPED_TEST_SUITE(Format, BothStrings);

TYPED_TEST(Format, IntegersFlagsWidthsPrecisionsSizesAndLiterals) {
  const IntRow rows[] = {
      {"", 0, 0, 0, ""},                                 // empty format
      {"%% %5% %z %+3z", 0, 0, 0, "%     % %z  %z"},     // literals and unknown conversions ("%lld" too), padded
      {"ab%-5", 0, 0, 0, "ab"},                          // a format ending inside a directive ends
      {"%d|%i|%d", 0, INT_MIN, INT_MAX, "0|-2147483648|2147483647"},
      {"%u %o %X", -1, 8, 255, "4294967295 10 FF"},
      {"%#o %#o %#.3o", 8, 0, 8, "010 0 010"},           // no second leading zero
      {"%.5d|%.5d|%.0d", 42, -42, 0, "00042|-00042|0"},  // precision: minimum digits
      {"%+d %+d % d", 5, -5, 5, "+5 -5  5"},
      {"%+ d|%+u", 5, 5, 0, "+5|5"},                     // plus wins; unsigned takes no sign
      {"%+05d|%5d", 42, -42, 0, "+0042|  -42"},          // zeros after the sign
      {"%-05d|%-+06d", 42, 42, 0, "42000|+42000"},       // zeros on the right (deliberate)
      {"%hd %hu %hx", 0x18000, -1, 0x12345, "-32768 65535 2345"},  // low 16 bits, sign-extended for d
      {"%qd %qu", -7, -1, 0, "-7 4294967295"},           // q reads one int, as no size
      {"%3d", 12345, 0, 0, "12345"},                     // width never truncates
  };
  for (const IntRow& r : rows) EXPECT_EQ(Formatted<TypeParam>(r.format, r.a, r.b, r.c), r.expected) << r.format;
  EXPECT_EQ(Formatted<TypeParam>("%*d|%*d|", 5, 42, -5, 42), "   42|42   |") << "* width; negative: left";
  EXPECT_EQ(Formatted<TypeParam>("%.*d|%.*d", 3, 7, -1, 7), "007|7") << "* precision; negative is 0";
  EXPECT_EQ(Formatted<TypeParam>("%ld %lx", -5L, -1L), "-5 ffffffff");
  if (sizeof(long) > 4) {
    EXPECT_EQ(Formatted<TypeParam>("%ld", static_cast<long>(0x100000005LL)), "5") << "low 32 bits";
  }
  TypeParam s(Widen<TypeParam>("old").c_str());
  s.Format(nullptr);
  EXPECT_EQ(s.GetLength(), 0) << "a null format is empty";
}

TYPED_TEST(Format, AlternateHexPrefixFollowsTheLatestDecimalOfTheCall) {
  // "0x" only after a nonzero %d, %i or %u of the same call, remembered
  // with the l, h or no size but not with q (deliberate).
  const IntRow rows[] = {
      {"%#x", 255, 0, 0, "ff"},                   // on its own: no prefix
      {"%d %#x", 1, 255, 0, "1 0xff"},
      {"%u %#X", 3, 171, 0, "3 0XAB"},            // the letter's case
      {"%#x %d", 255, 1, 0, "ff 1"},              // only from then on
      {"%qd %#x", 1, 255, 0, "1 ff"},             // q is not remembered
      {"%hd %#x", 0x10000, 255, 0, "0 ff"},       // the value after h
      {"%d %d %#x", 1, 0, 255, "1 0 ff"},         // the latest counts, a zero value too
      {"%d %#6x|%#06x", 1, 255, 255, "1   0xff|000xff"},  // zeros go before the prefix
  };
  for (const IntRow& r : rows) EXPECT_EQ(Formatted<TypeParam>(r.format, r.a, r.b, r.c), r.expected) << r.format;
  TypeParam s;
  s.Format(Widen<TypeParam>("%d").c_str(), 1);
  s.Format(Widen<TypeParam>("%#x").c_str(), 255);
  EXPECT_EQ(Bytes(s), "ff") << "each call starts with 0";
}

TYPED_TEST(Format, CharactersTextsAndPointersPadWithBlanks) {
  const unsigned char address[4] = {192, 168, 1, 20};                // network order
  const unsigned char socket[8] = {2, 0, 0x1F, 0x90, 10, 0, 0, 1};  // family, port 8080, 10.0.0.1
  const std::basic_string<ka_wchar> wide = Widen<Ka_WString>("abcdef");
  EXPECT_EQ(Formatted<TypeParam>("%c|%3c|%-3c|%03c|%+c", 'A', 0x178, 'x', 'y', 'z'), "A|  x|x  |  y|z")
      << "the low 8 bits; blanks whatever the flags; no sign";
  EXPECT_EQ(Formatted<TypeParam>("ab%ccd", 0), "ab") << "a zero character ends the text";
  EXPECT_EQ(Formatted<TypeParam>("%5.2s|%-4.3s|%04.0s|%+s", wide.c_str(), wide.c_str(), wide.c_str(), wide.c_str()),
            "   ab|abc |    |abcdef") << "precision truncates, width pads";
  const char* const null = nullptr;
  const ka_wchar* const wideNull = nullptr;
  EXPECT_EQ(Formatted<TypeParam>("[%hs]%.3hs|%8ls", "", null, wideNull), "[](nu|  (null)");
  EXPECT_EQ(Formatted<TypeParam>("%pA|%16pA|%-14pA|", address, address, address), "192.168.1.20|    192.168.1.20|192.168.1.20  |");
  EXPECT_EQ(Formatted<TypeParam>("%pI|%.7pI|%pA", socket, socket, nullptr), "10.0.0.1:8080|10.0.0.|(null)");
  EXPECT_EQ(Formatted<TypeParam>("%p;%09pp|%pX", reinterpret_cast<void*>(0x1234), reinterpret_cast<void*>(0xbeef), nullptr),
            "1234beef|0") << "the sub-type is consumed; no padding for a value";
  EXPECT_EQ(Formatted<TypeParam>("%p", reinterpret_cast<void*>(0xabc)), "abc") << "ending right after p";
  if (sizeof(void*) == 8) {
    EXPECT_EQ(Formatted<TypeParam>("%p.", reinterpret_cast<void*>(uintptr_t(0x123456789abcdef0ULL))), "123456789abcdef0");
  }
}

TYPED_TEST(Format, ResultGetsTheBlockOfTheOneCharacterGrowthRule) {
  // 256 characters at least, else the size group of length + 1; the wide
  // header counts bytes, so its groups are those of twice as many.
  struct Row { int length, narrowCapacity, wideCapacity; } rows[] = {
      {0, 256, 256},         // even an empty result
      {255, 256, 256},       // the terminator still fits
      {256, 512, 512},       // one more for the terminator
      {8192, 16384, 12288},  // heap blocks: multiples of 8192 bytes
  };
  for (const Row& r : rows) {
    TypeParam s;
    s.Format(Widen<TypeParam>(Own<TypeParam>("%S")).c_str(), Widen<TypeParam>(std::string(r.length, 'x')).c_str());
    EXPECT_EQ(s.GetLength(), r.length);
    EXPECT_EQ(s.GetAllocLength(), sizeof(CharOf<TypeParam>) == 1 ? r.narrowCapacity : r.wideCapacity) << r.length;
  }
  TypeParam big(Widen<TypeParam>(std::string(1000, 'b')).c_str());  // a private block with room is kept
  const Ka_BufferData* block = big.GetData();
  big.Format(Widen<TypeParam>("%d").c_str(), 7);
  EXPECT_EQ(big.GetData(), block);
  TypeParam shared(Widen<TypeParam>("keep").c_str()), other(shared);  // a shared one is left alone
  shared.Format(Widen<TypeParam>("new").c_str());
  EXPECT_EQ(Bytes(shared) + Bytes(other), "newkeep");
}

TYPED_TEST(Format, LongFormatsAndArgumentsInsideTheTarget) {
  const std::string head(600, 'y'), big(1 << 20, 'z');
  EXPECT_EQ(Formatted<TypeParam>(head + "%d|%hs|%d", 1, "mid", 2), head + "1|mid|2");
  EXPECT_EQ(Formatted<TypeParam>("<%s>", Widen<Ka_WString>(big).c_str()), "<" + big + ">");
  TypeParam s(Widen<TypeParam>("hello").c_str());  // (the fuzz target puts the format inside the target)
  const CharOf<TypeParam>* inside = s;
  s.Format(Widen<TypeParam>(Own<TypeParam>(head + "%S][%S")).c_str(), inside, inside);
  EXPECT_EQ(Bytes(s), head + "hello][hello") << "read as before the call, even when the result moves";
}

TYPED_TEST(Format, HugeWidthsAndPrecisionsAreBounded) {
  const IntRow rows[] = {
      {"%2147483648d", 'x', 0, 0, ""},  // digits beyond the int range
      {"%*d", INT_MIN, 'x', 0, ""},     // the most negative * width: left-justified
      {"%.*d", INT_MAX, 'x', 0, ""},    // zeros up to the bound
      {"%*c", KA_FORMAT_MAX_FIELD + 1, 'x', 0, ""},
  };
  for (const IntRow& r : rows) {
    TypeParam s;
    s.Format(Widen<TypeParam>(r.format).c_str(), r.a, r.b);
    EXPECT_EQ(s.GetLength(), KA_FORMAT_MAX_FIELD) << r.format;
  }
  EXPECT_EQ(Formatted<TypeParam>("%*d|", INT_MIN, 5).substr(0, 2), "5 ");
}

// ---- What differs between the two engines ------------------------------------

TEST(FormatWidths, WideCharactersSignExtendAndOtherWidthTextsUseTheLocaleCodePage) {
  EXPECT_EQ(Formatted<Ka_AString>("%c", 0xE9), "\xE9");
  EXPECT_EQ(Formatted<Ka_WString>("%c%c", 0xE9, 0x7F), "<FFE9>\x7F");  // deliberate
  const unsigned int saved = KaSetLocaleCP(65001);
  EXPECT_EQ(Formatted<Ka_AString>("%s|%.1s", KA_W("\u00e9"), KA_W("\u00e9")), "\xC3\xA9|\xC3") << "truncated in bytes";
  EXPECT_EQ(Formatted<Ka_WString>("%hs", "\xC3\xA9\xE2\x82\xAC"), "\xE9<20AC>");
  KaSetLocaleCP(1252);
  EXPECT_EQ(Formatted<Ka_AString>("%s", KA_W("\u00e9\u20ac")), "\xE9\x80");
  KaSetLocaleCP(saved);
  Ka_WString s;
  const ka_wchar* const text = s.FormatA("%d %s %hs", 42, KA_W("wide"), "narrow");
  EXPECT_EQ(text, static_cast<const ka_wchar*>(s));
  EXPECT_EQ(Bytes(s), "42 wide narrow") << "FormatA takes a narrow format";
  Ka_AString n;
  n.FormatA("%d %s", 42, KA_W("wide"));
  EXPECT_EQ(Bytes(n), "42 wide");
}
