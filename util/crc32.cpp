// CRC-32 (reflected, polynomial 0xEDB88320). Everywhere: 16 bytes per step
// through 16 tables derived from the standard byte table. On x86-64
// processors with carry-less multiplication (PCLMULQDQ), long buffers are
// first folded 64 bytes at a time into 128 bits, which the tables then
// finish. Both give the byte-at-a-time table algorithm's result for every
// input.
#include <kalbor/util.h>

#include <cstddef>
#include <cstdint>

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#define KALBOR_CRC_CLMUL 1
#include <immintrin.h>
#endif

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

#if defined(KALBOR_CRC_CLMUL)

// x^e mod P in the reflected form of the register (bit i is x^(31 - i)).
constexpr uint32_t PowerOfX(int e) {
  uint32_t r = 0x80000000u;  // x^0
  for (int i = 0; i < e; ++i) r = (r & 1) != 0 ? (r >> 1) ^ kPolynomial : r >> 1;
  return r;
}

// A 128-bit register holding 16 message bytes as loaded reads bit m as
// x^(127 - m). Its low half h (the first 8 bytes) and high half l are 64-bit
// polynomials, the register being h x^64 + l. A carry-less product of two
// such 64-bit halves, read the same way, comes out multiplied by x, so the
// register moved D bits further on is h * K(D + 63) + l * K(D - 1) + the
// register there, with K(e) = x^e mod P placed in the top 32 bits of a word.
constexpr uint64_t FoldConstant(int e) { return uint64_t(PowerOfX(e)) << 32; }
// Across 64 bytes (four registers side by side) and across 16.
constexpr uint64_t kBy64High = FoldConstant(512 + 63), kBy64Low = FoldConstant(512 - 1);
constexpr uint64_t kBy16High = FoldConstant(128 + 63), kBy16Low = FoldConstant(128 - 1);

__attribute__((target("pclmul,sse2"))) inline __m128i Fold(__m128i x, __m128i k) {
  return _mm_xor_si128(_mm_clmulepi64_si128(x, k, 0x00), _mm_clmulepi64_si128(x, k, 0x11));
}

// Folds the n >= 64 bytes at p (a multiple of 16 of them) into 128 bits
// and returns the register c after them.
__attribute__((target("pclmul,sse2"))) uint32_t Folded(uint32_t c, const unsigned char* p, size_t n) {
  const __m128i by64 = _mm_set_epi64x(static_cast<long long>(kBy64Low), static_cast<long long>(kBy64High));
  const __m128i by16 = _mm_set_epi64x(static_cast<long long>(kBy16Low), static_cast<long long>(kBy16High));
  const __m128i* q = reinterpret_cast<const __m128i*>(p);
  // The register c goes into the first four bytes.
  __m128i x0 = _mm_xor_si128(_mm_loadu_si128(q), _mm_cvtsi32_si128(static_cast<int>(c)));
  __m128i x1 = _mm_loadu_si128(q + 1), x2 = _mm_loadu_si128(q + 2), x3 = _mm_loadu_si128(q + 3);
  q += 4;
  n -= 64;
  for (; n >= 64; n -= 64, q += 4) {
    x0 = _mm_xor_si128(Fold(x0, by64), _mm_loadu_si128(q));
    x1 = _mm_xor_si128(Fold(x1, by64), _mm_loadu_si128(q + 1));
    x2 = _mm_xor_si128(Fold(x2, by64), _mm_loadu_si128(q + 2));
    x3 = _mm_xor_si128(Fold(x3, by64), _mm_loadu_si128(q + 3));
  }
  __m128i x = _mm_xor_si128(Fold(x0, by16), x1);
  x = _mm_xor_si128(Fold(x, by16), x2);
  x = _mm_xor_si128(Fold(x, by16), x3);
  for (; n >= 16; n -= 16, ++q) x = _mm_xor_si128(Fold(x, by16), _mm_loadu_si128(q));
  // The register after the folded bytes is the CRC of the 128 bits from 0.
  unsigned char bytes[16];
  _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), x);
  return Slices(0, bytes, 16);
}

bool HasClmul() {
  static const bool has = [] {
    __builtin_cpu_init();
    return __builtin_cpu_supports("pclmul") != 0;
  }();
  return has;
}

// Below this many bytes the tables alone are as fast.
constexpr size_t kFoldFrom = 256;

#endif  // KALBOR_CRC_CLMUL

}  // namespace

unsigned int ka_crc32(unsigned int crc, const unsigned char* buf, int len) {
  if (buf == nullptr) return 0;
  if (len < 1) return crc;
  uint32_t c = ~static_cast<uint32_t>(crc);
  const unsigned char* p = buf;
  size_t n = static_cast<size_t>(len);
#if defined(KALBOR_CRC_CLMUL)
  if (n >= kFoldFrom && HasClmul()) {
    const size_t folded = n & ~size_t(15);
    c = Folded(c, p, folded);
    p += folded;
    n -= folded;
  }
#endif
  return ~Slices(c, p, n);
}
