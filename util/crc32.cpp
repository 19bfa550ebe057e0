// CRC-32 (reflected, polynomial 0xEDB88320). Everywhere: 16 bytes per step
// through 16 tables derived from the standard byte table. On x86-64
// processors with carry-less multiplication (PCLMULQDQ), long buffers are
// first folded 64 bytes at a time into 128 bits, which the tables then
// finish (platform/crc32_fold_*.cpp). Both give the byte-at-a-time table algorithm's result for every
// input.
#include <kalbor/util.h>

#include <cstddef>
#include <cstdint>

#include "platform/crc32_fold.h"

namespace {

constexpr uint32_t kPolynomial = 0xEDB88320u;
constexpr int kSlices = 16;

// tables[0] is the standard table (entry 1 is 0x77073096, entry 255
// 0x2D02EF8D); tables[k][b] is the CRC of byte b followed by k zero bytes.
struct Ka_CrcTables {
  uint32_t tables[kSlices][256];
  constexpr Ka_CrcTables() : tables() {
    for (uint32_t b = 0; b < 256; ++b) {
      uint32_t c = b;
      for (int bit = 0; bit < 8; ++bit) c = (c & 1) != 0 ? kPolynomial ^ (c >> 1) : c >> 1;
      tables[0][b] = c;
    }
    for (int k = 1; k < kSlices; ++k)
      for (int b = 0; b < 256; ++b) tables[k][b] = (tables[k - 1][b] >> 8) ^ tables[0][tables[k - 1][b] & 0xFF];
  }
};
constexpr Ka_CrcTables kCrc;

// Four bytes as a little-endian word, whatever the processor's order.
inline uint32_t Load32(const unsigned char* p) {
  return uint32_t(p[0]) | (uint32_t(p[1]) << 8) | (uint32_t(p[2]) << 16) | (uint32_t(p[3]) << 24);
}

// The table algorithm on the register c (already inverted), 16 bytes per step.
uint32_t Slices(uint32_t c, const unsigned char* p, size_t n) {
  const uint32_t(&t)[kSlices][256] = kCrc.tables;
  for (; n >= kSlices; n -= kSlices, p += kSlices) {
    const uint32_t w0 = c ^ Load32(p), w1 = Load32(p + 4), w2 = Load32(p + 8), w3 = Load32(p + 12);
    c = t[15][w0 & 0xFF] ^ t[14][(w0 >> 8) & 0xFF] ^ t[13][(w0 >> 16) & 0xFF] ^ t[12][w0 >> 24] ^
        t[11][w1 & 0xFF] ^ t[10][(w1 >> 8) & 0xFF] ^ t[9][(w1 >> 16) & 0xFF] ^ t[8][w1 >> 24] ^
        t[7][w2 & 0xFF] ^ t[6][(w2 >> 8) & 0xFF] ^ t[5][(w2 >> 16) & 0xFF] ^ t[4][w2 >> 24] ^
        t[3][w3 & 0xFF] ^ t[2][(w3 >> 8) & 0xFF] ^ t[1][(w3 >> 16) & 0xFF] ^ t[0][w3 >> 24];
  }
  for (; n > 0; --n, ++p) c = t[0][(c ^ *p) & 0xFF] ^ (c >> 8);
  return c;
}


// Below this many bytes the tables alone are as fast as folding.
constexpr size_t kFoldFrom = 256;

}  // namespace

unsigned int ka_crc32(unsigned int crc, const unsigned char* buf, int len) {
  if (buf == nullptr) return 0;
  if (len < 1) return crc;
  uint32_t c = ~static_cast<uint32_t>(crc);
  const unsigned char* p = buf;
  size_t n = static_cast<size_t>(len);
  unsigned char rest[16];
  const size_t folded = n & ~size_t(15);
  if (n >= kFoldFrom && ka_platform::CrcFold128(c, p, folded, rest)) {
    c = Slices(0, rest, 16);  // the register after the folded bytes
    p += folded;
    n -= folded;
  }
  return ~Slices(c, p, n);
}
