// Base64: the encoder against a bit-by-bit reading of RFC 4648, and the
// decoder's rules (blanks, the end of the run, short last groups, n, the size
// of its block) against a model of the run it reads, both on random text,
// decoded from memory of exactly its size so that a read past the text is a
// heap overflow. The decode fuzz target runs round trips of any input.
#include <bitset>
#include <random>
#include <string>

#include "buffer/buffer_support.h"

namespace {

const char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// RFC 4648 read literally: the bits in a row, six at a time, zero-filled,
// then "=" up to a multiple of four characters.
std::string ReferenceEncode(const std::string& bytes) {
  std::string bits, out;
  for (char b : bytes) bits += std::bitset<8>(static_cast<unsigned char>(b)).to_string();
  bits.resize((bits.size() + 5) / 6 * 6, '0');
  for (size_t i = 0; i < bits.size(); i += 6) out.push_back(kAlphabet[std::stoi(bits.substr(i, 6), nullptr, 2)]);
  out.resize((out.size() + 3) / 4 * 4, '=');
  return out;
}

std::string Encode(const std::string& bytes) { return Text(MakeBuffer(bytes).EncodeBase64()); }

// Decodes text held in memory of exactly its size, terminator included, over
// other contents. The bytes come with a zero after them, in a block sized by
// them, not by the text.
std::string Decode(const std::string& text, long n = -1) {
  const auto exact = Exact(text + '\0');
  Ka_Buffer b = MakeBuffer("previous contents");
  b.DecodeBase64(exact.get(), n);
  ExpectWellFormed(b);
  EXPECT_TRUE(b.IsEmpty() || (b.GetPtr(0)[b.GetLength()] == 0 &&
                              b.GetAllocLength() <= long(Ka_BufferPool::GetBufferGroup(int(b.GetLength()) + 2))))
      << text;
  return Text(b);
}

TEST(Base64, DecodingFollowsTheRunOfAlphabetCharactersOnlyInBuffersAndStrings) {
  EXPECT_EQ(Ka_Buffer().EncodeBase64().GetData(), nullptr) << "an empty buffer encodes as the null string";
  EXPECT_EQ(Encode(std::string(4, '\0')), "AAAAAA==") << "zeros are bytes";
  struct { std::string text; long n; std::string bytes; } rows[] = {
      {"Zm9v", 0, ""},                                // n = 0 empties, even for valid text
      {"Z", -1, "d"},                                 // a lone character: its six bits, then two zero bits
      {"Zm9vYmFy", 1, "foobar"},                      // a positive n does not bound the run (deliberate)
      {"Zm9v" + std::string(300, '='), 304, "foo"},  // junk after the run: sized by the run, not by n
  };
  for (const auto& r : rows) EXPECT_EQ(Decode(r.text, r.n), r.bytes) << r.text << " with n " << r.n;
  EXPECT_EQ(MakeBuffer("kept").DecodeBase64(nullptr, 4).IsEmpty(), 1) << "a null text empties";
  // Decoding replaces the contents of a shared buffer privately, and may
  // read from the buffer's own bytes.
  OnPrivateAndShared<Ka_Buffer>("Zm9vYmFy", [](Ka_Buffer& s) {
    s.DecodeBase64(s, s.GetLength());
    EXPECT_EQ(Text(s), "foobar");
  });
  // Strings decode their text (the narrow one is the buffer guide's example),
  // wide ones through the code page given; a character outside it becomes
  // "?", which ends the run.
  EXPECT_EQ(Ka_AString().DecodeBase64().IsEmpty(), 1);
  EXPECT_EQ(Text(Ka_WString(KA_W(" Zm9v")).DecodeBase64(65001)), "foo");
  EXPECT_EQ(Text(Ka_WString(KA_W("Zm9v\uAC00YmFy")).DecodeBase64(1252)), "foo");
}

TEST(Base64, AnyBytesEncodeAsReadBitByBitAndAnyTextDecodesItsRunAloneWithoutReadingPastIt) {
  std::mt19937 random(5);
  const std::string pool = std::string(kAlphabet) + "= \t\n\x80\xFF-_";
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    for (size_t i = random() % (round % 4 == 0 ? 200 : 24); i > 0; --i)
      text.push_back(round % 2 ? static_cast<char>(random()) : pool[random() % pool.size()]);
    ASSERT_EQ(Encode(text), ReferenceEncode(text)) << text;
    ASSERT_EQ(Decode(Encode(text)), text) << text;
    // Decoding gives the same bytes as decoding only the run after the
    // blanks, up to the first byte outside the alphabet (a zero too), alone.
    const std::string bytes = Decode(text, static_cast<long>(text.size()));
    const size_t start = text.find_first_not_of(" \t");
    const std::string run = start == std::string::npos ? "" : text.substr(start, text.find_first_not_of(kAlphabet, start) - start);
    ASSERT_EQ(bytes, Decode(run)) << text;
    ASSERT_EQ(bytes.size(), run.size() / 4 * 3 + (run.size() % 4 == 0 ? 0 : run.size() % 4 == 3 ? 2 : 1)) << text;
    // Text of exactly n bytes, without a terminator, that ends in a non-alphabet byte.
    ASSERT_EQ(Text(Ka_Buffer().DecodeBase64(Exact(run + "=").get(), static_cast<long>(run.size() + 1))), bytes) << text;
  }
}

}  // namespace
