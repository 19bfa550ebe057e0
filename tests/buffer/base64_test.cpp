// Base64: the encoder against a bit-by-bit reading of RFC 4648, the
// decoder's rules (blanks, the end of the run, short last groups, n), round
// trips, and decoding of arbitrary bytes held in memory of exactly their
// size, so that a read past the text is a heap overflow.
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

std::string Encode(const std::string& bytes) {
  const Ka_AString text = MakeBuffer(bytes).EncodeBase64();
  return text.GetLength() > 0 ? std::string(static_cast<const char*>(text), static_cast<size_t>(text.GetLength())) : "";
}

// Decodes text held in memory of exactly its size, terminator included.
std::string Decode(const std::string& text, long n = -1) {
  const ExactText<char> exact(text + '\0');
  Ka_Buffer b = MakeBuffer("previous contents");
  b.DecodeBase64(exact.get(), n);
  ExpectWellFormed(b);
  return Text(b);
}

TEST(Base64Encode, MatchesTheBitByBitReading) {
  const struct {
    std::string bytes, text;
  } rows[] = {
      {"", ""},                                 // empty
      {"f", "Zg=="},                            // a last group of one byte
      {"fo", "Zm8="},                           // of two
      {"foobar", "Zm9vYmFy"},                   //
      {std::string(4, '\0'), "AAAAAA=="},       // zeros are bytes
  };
  for (const auto& r : rows) EXPECT_EQ(Encode(r.bytes), r.text) << r.text;
  EXPECT_EQ(Ka_Buffer().EncodeBase64().GetData(), nullptr) << "an empty buffer gives the null string";
  std::mt19937 random(7);
  for (size_t length = 0; length < 200; ++length) {
    std::string bytes;
    for (size_t i = 0; i < length; ++i) bytes.push_back(static_cast<char>(random()));
    ASSERT_EQ(Encode(bytes), ReferenceEncode(bytes)) << length;
  }
}

TEST(Base64Decode, FollowsTheRunOfAlphabetCharactersOnlyAndIsSizedByIt) {
  struct Row {
    std::string text;
    long n;
    std::string bytes;
  } rows[] = {
      {"", -1, ""},                          // empty text
      {"Zm9v", 0, ""},                       // n = 0 empties, even for valid text
      {"Zm9v", -1, "foo"},                   //
      {"  Zm8", -1, "fo"},                   // blanks skipped, padding not needed (the random texts below cover the rest)
      {"Z", -1, "d"},                        // a lone character: its six bits, then two zero bits
      {"Zm9vYmFy", 1, "foobar"},             // a positive n does not bound the run (deliberate)
      {std::string("Zm9v\0YmFy", 9), 9, "foo"},  // a zero ends it
  };
  for (const Row& r : rows) EXPECT_EQ(Decode(r.text, r.n), r.bytes) << r.text << " with n " << r.n;
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
}

TEST(Base64Decode, RandomBytesRoundTripAndAnyTextDecodesWithoutReadingPastIt) {
  std::mt19937 random(11);
  for (size_t length = 0; length < 300; ++length) {
    std::string bytes;
    for (size_t i = 0; i < length; ++i) bytes.push_back(static_cast<char>(random()));
    const std::string text = Encode(bytes);
    ASSERT_EQ(Decode(text), bytes) << length;
    if (length % 3 != 0) {
      ASSERT_EQ(Decode(text.substr(0, text.find('='))), bytes) << "unpadded, " << length;
    }
  }
  // Decoding replaces the contents of a shared buffer privately, and may
  // read from the buffer's own bytes.
  OnPrivateAndShared<Ka_Buffer>("Zm9vYmFy", [](Ka_Buffer& b) {
    b.DecodeBase64(b, b.GetLength());
    EXPECT_EQ(Text(b), "foobar");
  });
  // Any bytes decode without reading past the text.
  random.seed(5);
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
    const ExactText<char> unterminated(run + "=");
    Ka_Buffer b;
    b.DecodeBase64(unterminated.get(), unterminated.size());
    ASSERT_EQ(Text(b), bytes);
  }
}

TEST(Base64Decode, StringsDecodeTheirText) {
  EXPECT_EQ(Text(Ka_AString("Zm9vYmFy").DecodeBase64()), "foobar");
  EXPECT_EQ(Ka_AString().DecodeBase64().IsEmpty(), 1);
  EXPECT_EQ(Text(Ka_AString(std::string("Zm9v\0YmFy", 9).c_str(), 9).DecodeBase64()), "foo");
  EXPECT_EQ(Text(Ka_WString(KA_W(" Zm9v")).DecodeBase64(65001)), "foo");
  // A character outside the code page becomes "?", which ends the run.
  EXPECT_EQ(Text(Ka_WString(KA_W("Zm9v\uAC00YmFy")).DecodeBase64(1252)), "foo");
  EXPECT_EQ(Ka_WString().DecodeBase64(0).IsEmpty(), 1);
}

}  // namespace
