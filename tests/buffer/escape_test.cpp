// Quoting, XML and URL escaping of both string widths: the mappings, the
// deliberate oddities, sharing of unchanged text, and decoding of malformed
// and arbitrary text held in memory of exactly its size (round trips of
// arbitrary text are the decode fuzz target's). The rules in which the
// widths differ come last.
#include <cstdio>
#include <random>
#include <string>

#include "buffer/buffer_support.h"

namespace {

template <class S>
class Escape : public ::testing::Test {
 protected:
  // Numeric entities and the wide EncodeUrl use the locale code page.
  LocaleCodePage utf8{65001};
};
TYPED_TEST_SUITE(Escape, BothWidths);

// A text and what a member makes of it.
struct TextRow {
  std::string text, result;
};

// Decodes text (member 0: DecodeXml, 1: DecodeUrl) held in memory of exactly
// its size into a private and a shared string; with n = -2 (the default) n
// is that size and the string form must agree; n = -1 adds a terminator.
template <class S>
void ExpectDecodes(int member, const std::string& text, const std::string& expected, int n = -2) {
  SCOPED_TRACE("\"" + text + "\"");
  const auto chars = n == -1 ? Chars<S>(text) + CharOf<S>(0) : Chars<S>(text);
  const auto exact = Exact(chars);
  const int size = n == -2 ? static_cast<int>(chars.size()) : n;
  OnPrivateAndShared<S>("previous", [&](S& s) {
    member == 0 ? s.DecodeXml(exact.get(), size) : s.DecodeUrl(exact.get(), size);
    EXPECT_EQ(Text(s), expected);
  });
  if (n != -2) return;
  S s;
  member == 0 ? s.DecodeXml(Make<S>(text)) : s.DecodeUrl(Make<S>(text));
  EXPECT_EQ(Text(s), expected) << "from a string";
}

TYPED_TEST(Escape, QuotingEscapesTheQuoteAndBackslashOnlyAndUnquotingDropsEscapesAndTheClosingQuote) {
  typedef TypeParam S;
  struct { std::string text; char quote; std::string quoted; } rows[] = {
      {"", '"', ""},                                              // empty: no quotes (deliberate)
      {"a\"b\\c", '"', "\"a\\\"b\\\\c\""},                        // a backslash before each quote and backslash
      {"it's \"x\"", '\'', "'it\\'s \"x\"'"},                     // the other quote is not escaped
      {"it's", 'x', "\"it's\""},                                  // any other argument: the double quote
      {std::string("a\0b", 3), '"', std::string("\"a\0b\"", 5)},  // zeros are text
  };
  for (const auto& r : rows) EXPECT_EQ(Text(Make<S>(r.text).QuoteStr(CharOf<S>(r.quote))), r.quoted) << r.text;
  const TextRow unquotings[] = {
      {"", ""},                           // empty
      {"abc", "abc"},                     // no opening quote: unchanged
      {"\"", ""},                         // a quote alone
      {"'a\\'b\\\\c\\n'", "a'b\\cn"},     // any escaped character is itself
      {"\"abc", "abc"},                   // no closing quote: the last character stays
      {"'abc\"", "abc\""},                // a different closing quote is text
      {"\"a\"b\"", "a\"b"},               // an unescaped inner quote is text
      {"\"ab\\\"", "ab\""},               // an escaped last quote is kept
      {"\"ab\\", "ab"},                   // a final backslash goes
      {std::string("\"a\0b\"", 5), "a"},  // the length ends at the first zero
  };
  for (const TextRow& r : unquotings) EXPECT_EQ(Text(Make<S>(r.text).UnQuoteStr()), r.result) << r.text;
  const S plain = Make<S>("abc");
  EXPECT_EQ(plain.UnQuoteStr().GetData(), plain.GetData()) << "unchanged text is shared";
}

TYPED_TEST(Escape, XmlEncodingEscapesMarkupBlanksAndLineEndsAndDecodingReadsEntities) {
  typedef TypeParam S;
  const TextRow rows[] = {
      {"", ""},                                                 //
      {"<&>\"'", "&lt;&amp;&gt;&quot;&apos;"},                  //
      {" \t\n\r", "&#32;&#9;&#10;&#13;"},                       // blanks, tabs and line ends too (deliberate)
      {std::string("x\0\x7F", 3), std::string("x\0\x7F", 3)},  // other characters are copied
  };
  for (const TextRow& r : rows) EXPECT_EQ(Text(Make<S>(r.text).EncodeXml()), r.result) << r.text;
  const S plain = Make<S>("plain.text");
  EXPECT_EQ(plain.EncodeXml().GetData(), plain.GetData()) << "nothing to escape: shared";
  EXPECT_EQ(plain.DecodeXml().GetData(), plain.GetData()) << "nothing to decode: shared";
  const TextRow decodings[] = {
      {"", ""},                                // empty text
      {"&lt;&gt;&amp;&quot;&apos;", "<>&\"'"},  // the five names
      {"&LT;&Amp;", "&LT;&Amp;"},              // case sensitive: unknown entities are text
      {"&amp;lt;", "&lt;"},                    // decoded once
      {"&", "&"},                              // "&" at the end
      {"&#", "&#"},                            // a lone "&#"
      {"&#65", "&#65"},                        // no ";" after it: text
      {"&#65;&#X4a;", "AJ"},                   // decimal and hex
      {"&#x30;", "\x03"},                      // "0" ends the number (deliberate)
      {"&#x19;", "\x01"},                      // "9" ends it too (deliberate)
      {"&#65 and;b", "Ab"},                    // digits up to another character; the first ";" ends the entity
      {"&# +66;", "B"},                        // leading blanks and a sign, as atoi reads
      {"&#4294967361;", "A"},                  // the low 16 bits, however large (2^32 + 65)
      {"x&#;y", "x"},                          // no digits: 0, which ends the text
      {std::string("a\0&lt;", 6), "a"},        // a zero in the text ends the result
  };
  for (const TextRow& r : decodings) ExpectDecodes<S>(0, r.text, r.result);
  ExpectDecodes<S>(0, "&lt;xx", "&lt", 3);  // n bounds the text: the name is cut short
  ExpectDecodes<S>(0, "&#65;", "&#6", 3);   // and so is the ";"
  ExpectDecodes<S>(0, "abc", "", 0);        // n = 0 empties
  ExpectDecodes<S>(0, "a&lt;", "a<", -1);   // n < 0: up to the terminator
  OnPrivateAndShared<S>("a&lt;b", [](S& s) {
    s.DecodeXml(s);  // its own text
    EXPECT_EQ(Text(s), "a<b");
  });
}

TYPED_TEST(Escape, UrlEncodingKeepsItsSetAndDecodingTurnsEveryPairIntoAByte) {
  typedef TypeParam S;
  EXPECT_EQ(S().EncodeUrl().GetData(), nullptr);
  const S plain = Make<S>("kept.as(is)");
  EXPECT_EQ(plain.EncodeUrl().GetData(), plain.GetData()) << "nothing to escape: shared";
  EXPECT_EQ(plain.DecodeUrl().GetData(), plain.GetData()) << "nothing to decode: shared";
  // Every ASCII character alone: kept, or "%" and its code ("-" and "~" too,
  // deliberately; "<" and ">" lie just past the kept run "0" to ";").
  const std::string kept = "0123456789:;ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz$_.!*'()";
  for (int c = 1; c < 128; ++c) {
    char escaped[4];
    std::snprintf(escaped, sizeof escaped, "%%%02X", c);
    const std::string one(1, static_cast<char>(c));
    EXPECT_EQ(Text(Make<S>(one).EncodeUrl()), kept.find(one) != std::string::npos ? one : escaped) << c;
  }
  const TextRow decodings[] = {
      {"", ""},                // empty text
      {"a+b%41", "a+bA"},      // "+" stays (deliberate)
      {"%2d%2D", "--"},        // either case
      {"%zz", "S"},            // no pair is rejected: 35 x 16 + 35 = 0x253
      {"%H1", "\x11"},         // 17 x 16 + 1, truncated to 8 bits
      {"%00x", ""},            // "%00" ends the text
      {"100%", "100%"},        // "%" at the end is text
      {"%4", "%4"},            // and with one character after it
  };
  for (const TextRow& r : decodings) ExpectDecodes<S>(1, r.text, r.result);
  ExpectDecodes<S>(1, "%41", "%4", 2);  // n bounds the pair
  OnPrivateAndShared<S>("%41%42", [](S& s) {
    s.DecodeUrl(static_cast<const CharOf<S>*>(s), s.GetLength());  // its own text
    EXPECT_EQ(Text(s), "AB");
  });
}

TYPED_TEST(Escape, MalformedTextsDecodeWithinTheirBounds) {
  typedef TypeParam S;
  std::mt19937 random(9);
  const std::string pool = "&#x;%0123456789aAfFgG`lt;amp;quot; \t";
  for (int round = 0; round < 3000; ++round) {
    const size_t length = random() % 16;
    std::string text;
    for (size_t i = 0; i < length; ++i) text.push_back(round % 3 == 0 ? static_cast<char>(random()) : pool[random() % pool.size()]);
    const auto exact = Exact(Chars<S>(text));
    S xml, url;
    xml.DecodeXml(exact.get(), static_cast<int>(length));
    url.DecodeUrl(exact.get(), static_cast<int>(length));
    ASSERT_LE(xml.GetLength(), static_cast<int>(length)) << text;
    ASSERT_LE(url.GetLength(), static_cast<int>(length)) << text;
  }
}

// ---- Where the widths differ ------------------------------------------------------

class EscapeWidths : public ::testing::Test {
 protected:
  LocaleCodePage utf8{65001};
};

TEST_F(EscapeWidths, NumericEntitiesAreNarrowTextInTheLocaleCodePageOrOneWideCharacter) {
  EXPECT_EQ(Text(Ka_AString("&#233;&#44032;").DecodeXml()), "\xC3\xA9\xEA\xB0\x80");
  EXPECT_EQ(Text(Ka_AString("&#x`;").DecodeXml()), "\t") << "the backquote is 9 (deliberate)";
  EXPECT_EQ(Text(Ka_AString("&#-191;").DecodeXml()), "\xEF\xBD\x81") << "-191 is U+FF41";
  EXPECT_EQ(Ka_WString(KA_W("&#233;&#44032;&#-191;&#xACef;")).DecodeXml().Compare(KA_W("\u00E9\uAC00\uFF41\uACEF")), 0);
  EXPECT_EQ(Ka_WString(KA_W("&#x`;")).DecodeXml().GetLength(), 0) << "no backquote digit: 0 ends the text";
  KaSetLocaleCP(1252);
  EXPECT_EQ(Text(Ka_AString("&#233;&#8364;").DecodeXml()), "\xE9\x80");
}

TEST_F(EscapeWidths, WideUrlTextGoesThroughTheLocaleCodePageAndDigitsFollowEachWidthsCode) {
  EXPECT_EQ(Text(Ka_WString(KA_W("\u00E9 \uAC00")).EncodeUrl()), "%C3%A9%20%EA%B0%80");
  EXPECT_EQ(Text(Make<Ka_AString>(std::string("\xC3\xA9\0", 3)).EncodeUrl()), "%C3%A9%00") << "narrow bytes as they are";
  EXPECT_EQ(Text(Make<Ka_WString>(std::string("a\0b", 3)).EncodeUrl()), "a") << "converted up to the zero";
  const Ka_WString wide(KA_W("\u00E9\uAC00"));
  EXPECT_EQ(wide.EncodeXml().GetData(), wide.GetData()) << "XML leaves them alone";
  // Narrow characters are signed: 0xE9 is -23, below "A": -23 - 48 = -71,
  // and -71 x 16 - 71 = -1207 gives 0x49. A wide 0xE9 is 233: 0xC9 - 55 = 146,
  // and 146 x 17 = 2482 gives 0xB2; a decoded byte is one character.
  EXPECT_EQ(Text(Ka_AString("%\xE9\xE9").DecodeUrl()), "I");
  EXPECT_EQ(Ka_WString(KA_W("%\u00E9\u00E9%FF")).DecodeUrl().Compare(KA_W("\u00B2\u00FF")), 0);
  KaSetLocaleCP(1252);
  EXPECT_EQ(Text(Ka_WString(KA_W("\u00E9-")).EncodeUrl()), "%E9%2D");
}

}  // namespace
