// CRC-32 against published check values and against a bit-at-a-time
// reference of the same polynomial, over every length and alignment that
// the 16-byte steps and the byte tail can meet.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <cstring>
#include <random>
#include <vector>

namespace {
// The reflected CRC-32 register one bit at a time, straight from the
// polynomial.
uint32_t BitwiseCrcFrom(uint32_t c, const unsigned char* p, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    c ^= p[i];
    for (int bit = 0; bit < 8; ++bit) c = (c >> 1) ^ (0xEDB88320u & (0u - (c & 1u)));
  }
  return c;
}
unsigned int BitwiseCrc(const unsigned char* p, size_t n) { return ~BitwiseCrcFrom(0xFFFFFFFFu, p, n); }

const unsigned char* Bytes(const char* s) { return reinterpret_cast<const unsigned char*>(s); }
}  // namespace

TEST(Crc32, CheckValuesAndArgumentRules) {
  struct Row {
    unsigned int crc;
    const char* text;
    int len;
    unsigned int expected;
  } rows[] = {
      {0, "", 0, 0},                              // nothing: crc unchanged
      {0x1234, "abc", 0, 0x1234},
      {0x1234, "abc", -5, 0x1234},                // negative length likewise
      {5, nullptr, 10, 0},                        // null buffer: 0
      {0, "123456789", 9, 0xCBF43926},            // the standard check value
      {0, "a", 1, 0xE8B7BE43},
      {0, "The quick brown fox jumps over the lazy dog", 43, 0x414FA339},
      {0xCBF43926, "", 0, 0xCBF43926},
  };
  for (const Row& r : rows)
    EXPECT_EQ(ka_crc32(r.crc, r.text != nullptr ? Bytes(r.text) : nullptr, r.len), r.expected) << r.text;
}

TEST(Crc32, EqualsTheBitwiseReferenceAtEveryLengthAndOffset) {
  std::mt19937 random(7);
  std::vector<unsigned char> data(4096 + 64);
  for (auto& b : data) b = static_cast<unsigned char>(random());
  // Short lengths go through the tables alone, long ones (on processors
  // that multiply without carries) are folded first: both, and the seams.
  for (size_t offset = 0; offset < 16; ++offset)
    for (size_t n = 0; n <= 400; ++n)
      ASSERT_EQ(ka_crc32(0, data.data() + offset, static_cast<int>(n)), BitwiseCrc(data.data() + offset, n))
          << offset << " " << n;
  for (size_t n : {1023u, 1024u, 1025u, 4096u, 4111u})
    EXPECT_EQ(ka_crc32(0x12345678, data.data() + 3, static_cast<int>(n)),
              ~BitwiseCrcFrom(~0x12345678u, data.data() + 3, n)) << n;
}

TEST(Crc32, SplittingTheBufferGivesTheWholeResult) {
  std::vector<unsigned char> data(1000);
  for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<unsigned char>(i * 31 + 7);
  const unsigned int whole = ka_crc32(0, data.data(), 1000);
  for (int cut = 0; cut <= 1000; cut += 37) {
    const unsigned int first = ka_crc32(0, data.data(), cut);
    EXPECT_EQ(ka_crc32(first, data.data() + cut, 1000 - cut), whole) << cut;
  }
}
