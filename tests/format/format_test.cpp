// The format engine over both widths: literals and directive parsing,
// integers, characters, texts, pointers and addresses, padding, growth of
// the target and bounds on hostile formats. Floating point is in
// float_test.cpp.
#include <climits>
#include <cstring>

#include "format/format_support.h"

template <class S>
class Format : public ::testing::Test {};
TYPED_TEST_SUITE(Format, BothStrings);

TYPED_TEST(Format, LiteralsUnknownConversionsAndTruncatedDirectives) {
  struct Row {
    const char* format;
    const char* expected;
  } rows[] = {
      {"", ""},                  // empty format
      {"plain text", "plain text"},
      {"%%", "%"},               // a literal percent
      {"%5%", "    %"},          // literals are padded, with blanks
      {"%-05%|", "%    |"},      // ... whatever the flags
      {"%z", "%z"},              // an unknown conversion is copied
      {"%+3z", " %z"},           // without its flags, padded
      {"%lld", "%ld"},           // a second l is the conversion
      {"ab%", "ab"},             // ending after % ends the output
      {"ab%-5", "ab"},           // ... or inside the flags and width
      {"ab%.", "ab"},            // ... or after the point
      {"ab%h", "ab"},            // ... or after the size
  };
  for (const Row& r : rows) EXPECT_EQ(Formatted<TypeParam>(r.format), r.expected) << r.format;
}

TYPED_TEST(Format, IntegersWithFlagsWidthsPrecisionsAndSizes) {
  struct Row {
    const char* format;
    int a, b, c;  // as many as the format reads; the rest are ignored
    const char* expected;
  } rows[] = {
      {"%d", 0, 0, 0, "0"},
      {"%d", INT_MIN, 0, 0, "-2147483648"},    // the most negative int
      {"%i|%d", INT_MAX, -1, 0, "2147483647|-1"},
      {"%u", -1, 0, 0, "4294967295"},
      {"%o %x %X", 8, 255, 255, "10 ff FF"},
      {"%#o %#o %#.3o", 8, 0, 8, "010 0 010"},  // no second "0" before a leading zero
      {"%.5d|%.5d", 42, -42, 0, "00042|-00042"},  // precision: minimum digits
      {"%.0d", 0, 0, 0, "0"},                  // zero still shows one digit
      {"%+d %+d % d", 5, -5, 5, "+5 -5  5"},
      {"%+ d", 5, 0, 0, "+5"},                  // plus wins over blank
      {"%+u %+x", 5, 5, 0, "5 5"},             // unsigned conversions take no sign
      {"%+05d", 42, 0, 0, "+0042"},            // zeros after the sign
      {"%05d|%5d", -42, -42, 0, "-0042|  -42"},
      {"%-5d|", 7, 0, 0, "7    |"},
      {"%-05d", 42, 0, 0, "42000"},            // zeros on the right (deliberate)
      {"%-+06d", 42, 0, 0, "+42000"},
      {"%#06x", 255, 0, 0, "0000ff"},          // zeros before a prefix would be
      {"%hd %hu %hx", 65535, -1, 0x12345, "-1 65535 2345"},  // low 16 bits
      {"%hd", 0x18000, 0, 0, "-32768"},        // sign-extended from bit 15
      {"%qd %qu %qx", -7, -1, 255, "-7 4294967295 ff"},  // q reads one int, as no size
      {"%*d|", 5, 42, 0, "   42|"},           // * width
      {"%*d|", -5, 42, 0, "42   |"},           // negative: left-justified
      {"%.*d", 3, 7, 0, "007"},                // * precision
      {"%.*d", -1, 7, 0, "7"},                 // negative precision is 0
      {"%*.*d", 6, 4, 42, "  0042"},
      {"%3d|%1d", 12345, 12345, 0, "12345|12345"},  // width never truncates
  };
  for (const Row& r : rows) EXPECT_EQ(Formatted<TypeParam>(r.format, r.a, r.b, r.c), r.expected) << r.format;
  EXPECT_EQ(Formatted<TypeParam>("%ld %lx %lu", -5L, -1L, 7L), "-5 ffffffff 7");
  if (sizeof(long) > 4) {  // only the low 32 bits of a long count
    const long wide = static_cast<long>(0x100000005LL);
    EXPECT_EQ(Formatted<TypeParam>("%ld %lx", wide, LONG_MIN), "5 0");
  }
}

TYPED_TEST(Format, AlternateHexPrefixFollowsTheLatestDecimalOfTheCall) {
  // The "0x" prefix appears only after a nonzero %d, %i or %u of the same
  // call, remembered with the l, h or no size but not with q (deliberate).
  struct Row {
    const char* format;
    int a, b;
    const char* expected;
  } rows[] = {
      {"%#x", 255, 0, "ff"},                // on its own: no prefix
      {"%d %#x", 1, 255, "1 0xff"},
      {"%i %#X", 2, 171, "2 0XAB"},         // the conversion letter's case
      {"%u %#x", 3, 0, "3 0x0"},            // even for a zero value
      {"%d %#x", 0, 255, "0 ff"},           // the remembered value is zero
      {"%#x %d", 255, 1, "ff 1"},           // remembered only from then on
      {"%qd %#x", 1, 255, "1 ff"},          // q is not remembered
      {"%hd %#x", 0x10000, 255, "0 ff"},    // the value after the h size
      {"%d %#8x", 1, 255, "1     0xff"},    // the prefix is part of the padded text
  };
  for (const Row& r : rows) EXPECT_EQ(Formatted<TypeParam>(r.format, r.a, r.b), r.expected) << r.format;
  EXPECT_EQ(Formatted<TypeParam>("%d %o %#x", 5, 0, 255), "5 0 0xff") << "other conversions keep the slot";
  EXPECT_EQ(Formatted<TypeParam>("%d %d %#x", 1, 0, 255), "1 0 ff") << "the latest value counts";
  TypeParam s;
  s.Format(Widen<TypeParam>("%d").c_str(), 1);
  s.Format(Widen<TypeParam>("%#x").c_str(), 255);
  EXPECT_EQ(Bytes(s), "ff") << "a new call starts with 0";
}

TYPED_TEST(Format, CharactersTakeTheLowByteAndPadWithBlanks) {
  struct Row {
    const char* format;
    int value;
    const char* expected;
  } rows[] = {
      {"%c", 'A', "A"},
      {"%c", 0x141, "A"},          // only the low 8 bits
      {"%3c|", 'x', "  x|"},       // padded
      {"%-3c|", 'x', "x  |"},
      {"%03c", 'x', "  x"},        // with blanks whatever the flags
      {"%+c", 'x', "x"},           // no sign
  };
  for (const Row& r : rows) EXPECT_EQ(Formatted<TypeParam>(r.format, r.value), r.expected) << r.format;
  const TypeParam s = [] {
    TypeParam t;
    t.Format(Widen<TypeParam>("ab%ccd").c_str(), 0);
    return t;
  }();
  EXPECT_EQ(Bytes(s), "ab") << "a zero character ends the text";
}

TYPED_TEST(Format, TextsOfEitherWidthTruncateAndPad) {
  // Every row runs as %s with a wide text and as %hs with a narrow one.
  struct Row {
    const char* format;
    const char* text;
    const char* expected;
  } rows[] = {
      {"[%s]", "", "[]"},               // empty text
      {"%5.2s", "abcdef", "   ab"},     // precision truncates, width pads
      {"%.0s|", "abc", "|"},
      {"%.9s", "abc", "abc"},           // precision beyond the text
      {"%-4s|", "ab", "ab  |"},
      {"%04s", "ab", "  ab"},           // blanks, never zeros
      {"%+s", "ab", "ab"},              // no sign
      {"%.3s", nullptr, "(nu"},         // null, truncated too
      {"%8s", nullptr, "  (null)"},
  };
  for (const Row& r : rows) {
    const std::basic_string<ka_wchar> wide = r.text != nullptr ? Widen<Ka_WString>(r.text) : std::basic_string<ka_wchar>();
    EXPECT_EQ(Formatted<TypeParam>(r.format, r.text != nullptr ? wide.c_str() : nullptr), r.expected) << r.format;
    std::string narrowFormat = r.format;
    narrowFormat.insert(narrowFormat.find('s'), "h");
    EXPECT_EQ(Formatted<TypeParam>(narrowFormat, r.text), r.expected) << narrowFormat;
  }
  const char* const l = "%ls";  // the l size reads a wide text too
  EXPECT_EQ(Formatted<TypeParam>(l, KA_W("wide")), "wide");
}

TYPED_TEST(Format, PointersAndNetworkAddresses) {
  const unsigned char address[4] = {192, 168, 1, 20};  // network order
  const unsigned char socket[8] = {2, 0, 0x1F, 0x90, 10, 0, 0, 1};  // family, port 8080, 10.0.0.1
  const unsigned char zero[8] = {0, 0, 0, 0, 0, 0, 0, 0};
  struct Row {
    const char* format;
    const void* pointer;
    const char* expected;
  } rows[] = {
      {"%pA", address, "192.168.1.20"},
      {"%pI", socket, "10.0.0.1:8080"},
      {"%pI", zero, "0.0.0.0:0"},
      {"%16pA|", address, "    192.168.1.20|"},  // padded with blanks
      {"%-014pA|", address, "192.168.1.20  |"},
      {"%.7pI", socket, "10.0.0."},                // precision truncates
      {"%pA|%pI", nullptr, "(null)|(null)"},       // null address records
      {"%p;", reinterpret_cast<const void*>(0x1234), "1234"},  // the sub-type is consumed
      {"%09pp", reinterpret_cast<const void*>(0xbeef), "beef"},  // no padding for the value
      {"%pX", nullptr, "0"},
      {"%p", reinterpret_cast<const void*>(0xabc), "abc"},  // ending right after p
  };
  for (const Row& r : rows) EXPECT_EQ(Formatted<TypeParam>(r.format, r.pointer, nullptr), r.expected) << r.format;
  if (sizeof(void*) == 8) {  // the whole pointer, not its low word
    const void* high = reinterpret_cast<const void*>(static_cast<uintptr_t>(0x123456789abcdef0ULL));
    EXPECT_EQ(Formatted<TypeParam>("%p.", high), "123456789abcdef0");
  }
}

TYPED_TEST(Format, ResultGetsTheBlockOfTheOneCharacterGrowthRule) {
  // 256 characters at least, else the size group of length + 1; the wide
  // header counts bytes, so its groups are those of twice as many.
  struct Row {
    int length;
    int narrowCapacity, wideCapacity;
  } rows[] = {
      {0, 256, 256},        // even an empty result
      {255, 256, 256},      // the terminator still fits
      {256, 512, 512},      // one more for the terminator
      {8191, 8192, 8192},   // the largest pool
      {8192, 16384, 12288}, // heap blocks: multiples of 8192 bytes
  };
  for (const Row& r : rows) {
    TypeParam s;
    const auto text = Widen<TypeParam>(std::string(static_cast<size_t>(r.length), 'x'));
    s.Format(Widen<TypeParam>(Own<TypeParam>("%S")).c_str(), text.c_str());
    EXPECT_EQ(s.GetLength(), r.length);
    EXPECT_EQ(s.GetAllocLength(), sizeof(CharOf<TypeParam>) == 1 ? r.narrowCapacity : r.wideCapacity) << r.length;
  }
  // A private block that already has room is kept; a shared one is left to
  // its other owners.
  TypeParam big(Widen<TypeParam>(std::string(1000, 'b')).c_str());
  const Ka_BufferData* block = big.GetData();
  big.Format(Widen<TypeParam>("%d").c_str(), 7);
  EXPECT_EQ(big.GetData(), block);
  EXPECT_EQ(Bytes(big), "7");
  TypeParam shared(Widen<TypeParam>("keep").c_str()), other(shared);
  shared.Format(Widen<TypeParam>("new").c_str());
  EXPECT_EQ(Bytes(shared), "new");
  EXPECT_EQ(Bytes(other), "keep");
}

TYPED_TEST(Format, LongFormatsAndResultsLoseNothing) {
  const std::string head(600, 'y');  // past the first 256 characters
  EXPECT_EQ(Formatted<TypeParam>(head + "%d|%hs|%d", 1, "mid", 2), head + "1|mid|2");
  const std::string big(1 << 20, 'z');
  const auto wide = Widen<Ka_WString>(big);
  EXPECT_EQ(Formatted<TypeParam>("<%s>", wide.c_str()), "<" + big + ">");
}

TYPED_TEST(Format, FormatAndArgumentsMayPointIntoTheTarget) {
  TypeParam s(Widen<TypeParam>("%d-%d").c_str());
  s.Format(s, 1, 2);
  EXPECT_EQ(Bytes(s), "1-2");
  // An argument inside the target is read as it was before the call, even
  // when the result outgrows the block.
  s = TypeParam(Widen<TypeParam>("hello").c_str());
  const std::string dots(400, '.');
  s.Format(Widen<TypeParam>(Own<TypeParam>("[" + dots + "%S][%S]")).c_str(), static_cast<const CharOf<TypeParam>*>(s),
           static_cast<const CharOf<TypeParam>*>(s));
  EXPECT_EQ(Bytes(s), "[" + dots + "hello][hello]");
}

TYPED_TEST(Format, HugeWidthsAndPrecisionsAreBounded) {
  struct Row {
    const char* format;
    int star;
    int length;
  } rows[] = {
      {"%2147483648d", 0, KA_FORMAT_MAX_FIELD},            // digits beyond the int range
      {"%99999999999999999999d", 0, KA_FORMAT_MAX_FIELD},
      {"%*d", INT_MIN, KA_FORMAT_MAX_FIELD},               // the most negative * width
      {"%*d", INT_MAX, KA_FORMAT_MAX_FIELD},
      {"%.*d", INT_MAX, KA_FORMAT_MAX_FIELD},               // zeros up to the bound
      {"%.2147483647d", 0, KA_FORMAT_MAX_FIELD},
      {"%*c", KA_FORMAT_MAX_FIELD + 1, KA_FORMAT_MAX_FIELD},  // (the character is 'x')
  };
  for (const Row& r : rows) {
    TypeParam s;
    s.Format(Widen<TypeParam>(r.format).c_str(), r.star, 'x');
    EXPECT_EQ(s.GetLength(), r.length) << r.format;
  }
  TypeParam s;
  s.Format(Widen<TypeParam>("%*d|").c_str(), INT_MIN, 5);
  const CharOf<TypeParam>* text = s;
  EXPECT_EQ(text[0], CharOf<TypeParam>('5')) << "left-justified";
  EXPECT_EQ(text[KA_FORMAT_MAX_FIELD], CharOf<TypeParam>('|'));
}

TYPED_TEST(Format, NullFormatGivesAnEmptyText) {
  TypeParam s(Widen<TypeParam>("old").c_str());
  s.Format(nullptr);
  EXPECT_EQ(s.GetLength(), 0);
  EXPECT_EQ(s.IsEmpty(), 1);
}

// ---- What differs between the two engines ------------------------------------

TEST(FormatWidths, CharacterAbove127IsSignExtendedInTheWideEngine) {
  // Deliberate: no character above 127 passes through the wide %c.
  EXPECT_EQ(Formatted<Ka_AString>("%c", 0xE9), "\xE9");
  EXPECT_EQ(Formatted<Ka_WString>("%c%c", 0xE9, 0x7F), "<FFE9>\x7F");
}

TEST(FormatWidths, TextsOfTheOtherWidthConvertThroughTheLocaleCodePage) {
  const unsigned int saved = KaSetLocaleCP(65001);
  EXPECT_EQ(Formatted<Ka_AString>("%s|%.1s", KA_W("\u00e9"), KA_W("\u00e9")), "\xC3\xA9|\xC3")
      << "converted first, then truncated by bytes";
  EXPECT_EQ(Formatted<Ka_WString>("%hs", "\xC3\xA9\xE2\x82\xAC"), "\xE9<20AC>");
  EXPECT_EQ(Formatted<Ka_AString>("%hs", "\xC3\xA9"), "\xC3\xA9") << "the own width is copied as it is";
  KaSetLocaleCP(1252);
  EXPECT_EQ(Formatted<Ka_AString>("%s", KA_W("\u00e9\u20ac")), "\xE9\x80");
  KaSetLocaleCP(saved);
}

TEST(FormatWidths, FormatATakesANarrowFormat) {
  Ka_WString s;
  const ka_wchar* text = s.FormatA("%d %s %hs", 42, KA_W("wide"), "narrow");
  EXPECT_EQ(text, static_cast<const ka_wchar*>(s));
  EXPECT_EQ(Bytes(s), "42 wide narrow");
  s.FormatA(nullptr);
  EXPECT_EQ(s.GetLength(), 0);
}
