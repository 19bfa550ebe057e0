// Base64: the encoder against a bit-by-bit reading of RFC 4648, the
// decoder's rules (blanks, the end of the run, short last groups, n) against
// a model of the run it reads, and decoding of arbitrary bytes held in
// memory of exactly their size, so that a read past the text is a heap
// overflow. Round trips of arbitrary bytes are the decode fuzz target's.
#include <random>
#include <string>

#include "buffer/buffer_support.h"

namespace {

const char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// RFC 4648 read literally: the bits in a row, six at a time, zero-filled,
// then "=" up to a multiple of four characters.
std::string ReferenceEncode(const std::string& bytes) {
  std::string bits;
  for (unsigned char b : bytes)
    for (int k = 7; k >= 0; --k) bits.push_back(static_cast<char>('0' + ((b >> k) & 1)));
  while (bits.size() % 6 != 0) bits.push_back('0');
  std::string out;
  for (size_t i = 0; i < bits.size(); i += 6) out.push_back(kAlphabet[std::stoi(bits.substr(i, 6), nullptr, 2)]);
  while (out.size() % 4 != 0) out.push_back('=');
  return out;
}

std::string Encode(const std::string& bytes) { return Text(MakeBuffer(bytes).EncodeBase64()); }

// Decodes text held in memory of exactly its size, terminator included.
std::string Decode(const std::string& text, long n = -1) {
  const auto exact = Exact(text + '\0');
  Ka_Buffer b = MakeBuffer("previous contents");
  b.DecodeBase64(exact.get(), n);
  ExpectWellFormed(b);
  return Text(b);
}

TEST(Base64Encode, MatchesTheBitByBitReading) {
  EXPECT_EQ(Ka_Buffer().EncodeBase64().GetData(), nullptr) << "an empty buffer gives the null string";
  EXPECT_EQ(Encode(std::string(4, '\0')), "AAAAAA==") << "zeros are bytes";
  std::mt19937 random(7);
  for (size_t length = 0; length < 200; ++length) {
    std::string bytes;
    for (size_t i = 0; i < length; ++i) bytes.push_back(static_cast<char>(random()));
    ASSERT_EQ(Encode(bytes), ReferenceEncode(bytes)) << length;
    ASSERT_EQ(Decode(Encode(bytes)), bytes) << length;
  }
}

TEST(Base64Decode, FollowsTheRunOfAlphabetCharactersOnlyAndIsSizedByIt) {
  struct { std::string text; long n; std::string bytes; } rows[] = {
      {"", -1, ""},                              // empty text
      {"Zm9v", 0, ""},                           // n = 0 empties, even for valid text
      {"Z", -1, "d"},                            // a lone character: its six bits, then two zero bits
      {"  Zm8", -1, "fo"},                       // blanks skipped, padding not needed
      {"Zm9vYmFy", 1, "foobar"},                 // a positive n does not bound the run (deliberate)
      {std::string("Zm9v\0YmFy", 9), 9, "foo"},  // a zero ends it
  };
  for (const auto& r : rows) EXPECT_EQ(Decode(r.text, r.n), r.bytes) << r.text << " with n " << r.n;
  Ka_Buffer b = MakeBuffer("kept");
  b.DecodeBase64(nullptr, 4);
  EXPECT_EQ(b.IsEmpty(), 1) << "a null text empties";
  // The output is sized by the run, not by the text.
  b.DecodeBase64(std::string(44, 'A').c_str(), -1);  // 11 groups: 33 bytes
  EXPECT_EQ(b.GetLength(), 33);
  EXPECT_EQ(b.GetAllocLength(), 64);
  EXPECT_EQ(b.GetPtr(0)[33], 0) << "a zero after the bytes";
  const std::string padded = "Zm9v" + std::string(300, '=');
  b.DecodeBase64(padded.c_str(), static_cast<long>(padded.size()));
  EXPECT_EQ(Text(b), "foo");
  EXPECT_EQ(b.GetAllocLength(), 32) << "sized by the run, not by the text";
  // Decoding replaces the contents of a shared buffer privately, and may
  // read from the buffer's own bytes.
  OnPrivateAndShared<Ka_Buffer>("Zm9vYmFy", [](Ka_Buffer& s) {
    s.DecodeBase64(s, s.GetLength());
    EXPECT_EQ(Text(s), "foobar");
  });
}

TEST(Base64Decode, AnyTextDecodesItsRunAloneWithoutReadingPastIt) {
  std::mt19937 random(5);
  const std::string pool = std::string(kAlphabet) + "= \t\n\x80\xFF-_";
  for (int round = 0; round < 3000; ++round) {
    const size_t length = random() % (round % 4 == 0 ? 200 : 24);
    std::string text;
    for (size_t i = 0; i < length; ++i)
      text.push_back(round % 2 ? static_cast<char>(random()) : pool[random() % pool.size()]);
    if (text.find('\0') != std::string::npos) text.resize(text.find('\0'));
    const std::string bytes = Decode(text);
    // The same bytes as decoding only the run after the blanks, alone.
    const size_t start = text.find_first_not_of(" \t");
    const std::string run = start == std::string::npos ? "" : text.substr(start, text.find_first_not_of(kAlphabet, start) - start);
    ASSERT_EQ(bytes, Decode(run)) << text;
    ASSERT_EQ(bytes.size(), run.size() / 4 * 3 + (run.size() % 4 == 0 ? 0 : run.size() % 4 == 3 ? 2 : 1)) << text;
    // Text of exactly n bytes, without a terminator, that ends in a non-alphabet byte.
    const auto unterminated = Exact(run + "=");
    Ka_Buffer b;
    b.DecodeBase64(unterminated.get(), static_cast<long>(run.size() + 1));
    ASSERT_EQ(Text(b), bytes);
  }
}

TEST(Base64Decode, StringsDecodeTheirTextWideOnesThroughTheCodePage) {
  EXPECT_EQ(Text(Ka_AString("Zm9vYmFy").DecodeBase64()), "foobar");
  EXPECT_EQ(Ka_AString().DecodeBase64().IsEmpty(), 1);
  EXPECT_EQ(Text(Ka_WString(KA_W(" Zm9v")).DecodeBase64(65001)), "foo");
  // A character outside the code page becomes "?", which ends the run.
  EXPECT_EQ(Text(Ka_WString(KA_W("Zm9v\uAC00YmFy")).DecodeBase64(1252)), "foo");
}

}  // namespace
