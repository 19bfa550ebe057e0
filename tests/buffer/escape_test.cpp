// Quoting, XML and URL escaping of both string widths: the mappings, the
// deliberate oddities, sharing of unchanged text, and the decoders on random
// malformed text held in memory of exactly its size, cut at every n (round
// trips of arbitrary text are the decode fuzz target's). The rules in which
// the widths differ come last.
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "buffer/buffer_support.h"

namespace {

template <class S>
class Escape : public ::testing::Test {};
TYPED_TEST_SUITE(Escape, BothWidths);


// DecodeUrl of S's width read from its contract: "%" and the two characters
// after it give the byte high x 16 + low, a digit being its code minus '0'
// below 'A', else its code without the lower-case bit minus 55, narrow
// characters being signed (so no pair is rejected, deliberately); a "%" with
// fewer than two characters after it is text, and so is "+" (deliberate).
// The result ends at the first zero; a text without "%" is copied whole.
template <class S>
std::string UrlModel(const std::string& text) {
  const auto digit = [](char c) -> long {
    const long code = sizeof(CharOf<S>) == 1 ? static_cast<signed char>(c) : static_cast<unsigned char>(c);
    return code < 'A' ? code - '0' : (code & ~0x20L) - 55;
  };
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool pair = text[i] == '%' && i + 2 < text.size();
    out.push_back(pair ? static_cast<char>(digit(text[i + 1]) * 16 + digit(text[i + 2])) : text[i]);
    i += pair ? 2 : 0;
  }
  return text.find('%') == std::string::npos ? text : out.substr(0, out.find('\0'));
}

// QuoteStr and UnQuoteStr read from their contracts. Quoting: a backslash
// before each quote and backslash, in "'" or, for any other argument, the
// double quote; an empty text gets no quotes (deliberate). Unquoting a text
// that opens with either quote: the quote goes, a backslash keeps the
// character after it as it is (a final one goes), a last character equal to
// the opening quote goes, and the result ends at the first zero. Any other
// text is returned unchanged.
std::string QuoteModel(const std::string& text, char quote) {
  const char q = quote == '\'' ? quote : '"';
  std::string out(1, q);
  for (char c : text) out.append(c == q || c == '\\' ? 1 : 0, '\\').push_back(c);
  return text.empty() ? text : out + q;
}
std::string UnquoteModel(const std::string& text) {
  if (text.empty() || (text[0] != '"' && text[0] != '\'')) return text;
  std::string out;
  for (size_t i = 1; i < text.size(); ++i)
    if (text[i] == '\\' ? ++i < text.size() : i + 1 < text.size() || text[i] != text[0]) out.push_back(text[i]);
  return out.substr(0, out.find('\0'));
}

TYPED_TEST(Escape, QuotingAndUnquotingFollowTheirRulesOnEveryShortText) {
  typedef TypeParam S;
  std::vector<std::string> texts = {""};  // every text of up to five of these characters
  for (size_t i = 0; texts[i].size() < 5; ++i)
    for (char c : std::string("\"'\\a\0", 5)) texts.push_back(texts[i] + c);
  for (const std::string& t : texts) {
    for (char q : {'"', '\'', 'x'}) ASSERT_EQ(Text(Make<S>(t).QuoteStr(CharOf<S>(q))), QuoteModel(t, q)) << t;
    ASSERT_EQ(Text(Make<S>(t).UnQuoteStr()), UnquoteModel(t)) << t;
  }
}

TYPED_TEST(Escape, XmlDecodingReadsEntities) {
  typedef TypeParam S;
  // The five names decode back from the encoder's output in the decode fuzz target.
  const struct { std::string text, result; } decodings[] = {
      {"&LT;&Amp;|&#65|&", "&LT;&Amp;|&#65|&"},  // case sensitive: unknown entities, "&#" without ";" and a last "&" are text
      {"&amp;lt;", "&lt;"},                      // decoded once
      {"&#65;&#X4a;&#x30;&#x19;", "AJ\x03\x01"},  // decimal and hex, where "0" and "9" end the number (deliberate)
      {"&#65 and;b", "Ab"},                      // digits up to another character; the first ";" ends the entity
      {"&# +66;&#4294967361;", "BA"},            // leading blanks and a sign, as atoi reads; the low 16 bits (2^32 + 65)
      {"x&#;y", "x"},                      // no digits: 0, which ends the text
      {std::string("a\0&lt;", 6), "a"},    // a zero in the text ends the result
  };
  for (const auto& r : decodings) EXPECT_EQ(Text(Make<S>(r.text).DecodeXml()), r.result) << r.text;
}

TYPED_TEST(Escape, EncodersKeepTheirSetsAndEveryMemberSharesUnchangedText) {
  typedef TypeParam S;
  EXPECT_TRUE(S().EncodeUrl().GetData() == nullptr && S().EncodeXml().GetData() == nullptr);
  const S plain = Make<S>("kept.as(is)");  // nothing to quote, escape or decode: every member shares it
  const std::vector<const void*> results = {plain.UnQuoteStr().GetData(), plain.EncodeXml().GetData(),
                                            plain.DecodeXml().GetData(), plain.EncodeUrl().GetData(),
                                            plain.DecodeUrl().GetData()};
  EXPECT_EQ(results, std::vector<const void*>(5, plain.GetData()));
  // Every ASCII character alone. URL: kept, or "%" and its code ("-" and "~"
  // too, deliberately; "<" and ">" lie just past the kept run "0" to ";").
  // XML: markup, and blanks, tabs and line ends too (deliberate), as
  // entities; other characters copied, a zero inside the text too.
  const std::string kept = "0123456789:;ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz$_.!*'()";
  const std::map<char, std::string> entities = {{'<', "&lt;"},  {'&', "&amp;"}, {'>', "&gt;"},  {'"', "&quot;"}, {'\'', "&apos;"},
                                                {' ', "&#32;"}, {'\t', "&#9;"}, {'\n', "&#10;"}, {'\r', "&#13;"}};
  for (int c = 1; c < 128; ++c) {
    char escaped[4];
    std::snprintf(escaped, sizeof escaped, "%%%02X", c);
    const std::string one(1, static_cast<char>(c));
    EXPECT_EQ(Text(Make<S>(one).EncodeUrl()), kept.find(one) != std::string::npos ? one : escaped) << c;
    EXPECT_EQ(Text(Make<S>(one).EncodeXml()), entities.count(one[0]) != 0 ? entities.at(one[0]) : one) << c;
  }
  EXPECT_EQ(Text(Make<S>(std::string("x\0<", 3)).EncodeXml()), std::string("x\0&lt;", 6));
}

TYPED_TEST(Escape, DecodersReadAtMostNCharactersAndUrlPairsFollowTheirRule) {
  typedef TypeParam S;
  std::mt19937 random(9);
  const std::string pool = "&#x;%0123456789aAfFgGzZ+`lt;amp; \t";
  for (int round = 0; round < 2000; ++round) {
    std::string text;
    for (size_t i = random() % 16; i > 0; --i)
      text.push_back(round % 3 == 0 ? static_cast<char>(random()) : pool[random() % pool.size()]);
    const auto exact = Exact(Chars<S>(text));
    for (size_t n = 0; n <= text.size(); ++n) {  // the text cut at n, held in a string, decodes alike
      const std::string cut = text.substr(0, n);
      ASSERT_EQ(Text(S().DecodeXml(exact.get(), static_cast<int>(n))), Text(S().DecodeXml(Make<S>(cut)))) << text << " cut at " << n;
      ASSERT_EQ(Text(S().DecodeUrl(exact.get(), static_cast<int>(n))), UrlModel<S>(cut)) << text << " cut at " << n;
    }
    // n < 0: up to the first zero.
    ASSERT_EQ(Text(S().DecodeUrl(Chars<S>(text).c_str(), -1)), UrlModel<S>(text.substr(0, text.find('\0')))) << text;
  }
  // Decoders may read the string's own text, shared or not.
  OnPrivateAndShared<S>("%41&lt;", [](S& s) {
    s.DecodeXml(s);
    s.DecodeUrl(static_cast<const CharOf<S>*>(s), s.GetLength());
    EXPECT_EQ(Text(s), "A<");
  });
}

// ---- Where the widths differ ------------------------------------------------------

TEST(EscapeWidths, NumericEntitiesAndWideUrlTextGoThroughTheLocaleCodePage) {
  // Narrow: the backquote is the hex digit 9 (deliberate), -191 is U+FF41.
  // Wide: one unit each, and no backquote digit, so 0 ends the text.
  // EncodeUrl of wide text converts it up to its first zero.
  const unsigned int previous = KaSetLocaleCP(65001);
  EXPECT_EQ(Text(Ka_AString("&#233;&#44032;&#x`;&#-191;").DecodeXml()), "\xC3\xA9\xEA\xB0\x80\t\xEF\xBD\x81");
  EXPECT_EQ(Ka_WString(KA_W("&#233;&#44032;&#-191;&#xACef;&#x`;z")).DecodeXml().Compare(KA_W("\u00E9\uAC00\uFF41\uACEF")), 0);
  EXPECT_EQ(Text(Ka_WString(KA_W("\u00E9 \uAC00\0b"), 5).EncodeUrl()), "%C3%A9%20%EA%B0%80");
  KaSetLocaleCP(1252);
  EXPECT_EQ(Text(Ka_WString(KA_W("\u00E9-")).EncodeUrl()), "%E9%2D");
  KaSetLocaleCP(previous);
}

}  // namespace
