// CRC-32 folding on x86-64 with carry-less multiplication (PCLMULQDQ),
// used where the processor has it.
#include <immintrin.h>

#include "crc32_fold.h"

namespace ka_platform {
namespace {

constexpr uint32_t kPolynomial = 0xEDB88320u;

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

// Folds the n >= 64 bytes at p (a multiple of 16 of them) into 128 bits.
__attribute__((target("pclmul,sse2"))) void Folded(uint32_t c, const unsigned char* p, size_t n,
                                                    unsigned char out[16]) {
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
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), x);
}

bool HasClmul() {
  static const bool has = [] {
    __builtin_cpu_init();
    return __builtin_cpu_supports("pclmul") != 0;
  }();
  return has;
}

}  // namespace

bool CrcFold128(uint32_t c, const unsigned char* p, size_t n, unsigned char out[16]) {
  if (n < 64 || n % 16 != 0 || !HasClmul()) return false;
  Folded(c, p, n, out);
  return true;
}

}  // namespace ka_platform
