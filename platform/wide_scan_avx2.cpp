// The wide length and pair scan with AVX2: sixteen units per instruction.
// This source alone is compiled for AVX2, and the x86-64 scans call it only
// on a processor that has it.
#include <immintrin.h>

#include "wide_scan_steps.h"

namespace ka_platform {
namespace {

struct Avx2Units {
  typedef __m256i Vector;
  static constexpr unsigned kBytes = 32;
  KA_WHOLE_BLOCK_READS static Vector Load(const char* p) { return _mm256_load_si256(reinterpret_cast<const __m256i*>(p)); }
  // Units 1..15 of x, then unit 0 of y (alignr shifts within 128-bit halves,
  // so its upper operand is x's high half beside y's low half).
  static Vector NextUnits(Vector x, Vector y) {
    return _mm256_alignr_epi8(_mm256_permute2x128_si256(x, y, 0x21), x, 2);
  }
  static Vector Splat(uint16_t u) { return _mm256_set1_epi16(static_cast<short>(u)); }
  static Vector Zero() { return _mm256_setzero_si256(); }
  static Vector Equal(Vector x, Vector y) { return _mm256_cmpeq_epi16(x, y); }
  static Vector And(Vector x, Vector y) { return _mm256_and_si256(x, y); }
  static unsigned Mask(Vector x) { return static_cast<unsigned>(_mm256_movemask_epi8(x)); }
};

}  // namespace

KA_WHOLE_BLOCK_READS size_t WideLengthAvx2(const uint16_t* s) { return LengthIn<Avx2Units>(s); }

KA_WHOLE_BLOCK_READS const uint16_t* WideFindPairAvx2(const uint16_t* s, uint16_t a, uint16_t b) {
  return FindPairIn<Avx2Units>(s, a, b);
}

}  // namespace ka_platform
