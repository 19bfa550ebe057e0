// Wide text scans on x86-64 with SSE2 (every x86-64 processor has it):
// eight units compared per instruction; the length and the pair scan use
// AVX2 instead where the processor has it.
//
// The loads are 16-byte aligned. An aligned 16-byte block never crosses a
// page, so a block that holds one unit of the text is wholly readable, even
// where it reaches before the text's first unit or past its terminator; the
// bytes outside the text never decide the result (they are masked off, or
// lie after the zero found). Those reads can still fall outside the
// allocation that holds the text, so these functions are exempt from
// the address and thread sanitizers' instrumentation: the reads are proven
// safe by alignment and never race with a writer of the text itself. Each
// block is read only once the blocks before it held no zero, so that every
// block read holds a unit of the text.
#include <emmintrin.h>

#include "wide_scan_steps.h"
#include "wide_scan.h"

namespace ka_platform {
namespace {

// Bit 2k and 2k + 1 set for each zero unit k of the aligned block.
KA_WHOLE_BLOCK_READS inline unsigned ZeroUnits(const __m128i* block) {
  return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_load_si128(block), _mm_setzero_si128())));
}

// SSE2, which every x86-64 processor has: eight units per instruction.
struct Sse2Units {
  typedef __m128i Vector;
  static constexpr unsigned kBytes = 16;
  KA_WHOLE_BLOCK_READS static Vector Load(const char* p) { return _mm_load_si128(reinterpret_cast<const __m128i*>(p)); }
  // Units 1..7 of x, then unit 0 of y.
  static Vector NextUnits(Vector x, Vector y) { return _mm_or_si128(_mm_srli_si128(x, 2), _mm_slli_si128(y, 14)); }
  static Vector Splat(uint16_t u) { return _mm_set1_epi16(static_cast<short>(u)); }
  static Vector Zero() { return _mm_setzero_si128(); }
  static Vector Equal(Vector x, Vector y) { return _mm_cmpeq_epi16(x, y); }
  static Vector And(Vector x, Vector y) { return _mm_and_si128(x, y); }
  static unsigned Mask(Vector x) { return static_cast<unsigned>(_mm_movemask_epi8(x)); }
};

// Whether the processor has AVX2, asked once for every scan.
bool UseAvx2() {
  static const bool avx2 = [] {
    __builtin_cpu_init();  // the library may run before the runtime's own initialisers
    return __builtin_cpu_supports("avx2") != 0;
  }();
  return avx2;
}

}  // namespace

KA_WHOLE_BLOCK_READS size_t WideLength(const uint16_t* s) {
  if ((reinterpret_cast<uintptr_t>(s) & 1) != 0) {  // not on a unit boundary: the blocks would straddle units
    const uint16_t* p = s;
    while (*p != 0) ++p;
    return static_cast<size_t>(p - s);
  }
  return UseAvx2() ? WideLengthAvx2(s) : LengthIn<Sse2Units>(s);
}

KA_WHOLE_BLOCK_READS size_t WideLengthUpTo(const uint16_t* s, size_t limit) {
  const uintptr_t address = reinterpret_cast<uintptr_t>(s);
  if (limit == 0) return 0;
  if ((address & 1) != 0) {
    size_t n = 0;
    while (n < limit && s[n] != 0) ++n;
    return n;
  }
  const unsigned skip = static_cast<unsigned>(address & 15);
  const __m128i* block = reinterpret_cast<const __m128i*>(address - skip);
  // Blocks are read only while they start before the limit's unit, so each
  // holds at least one unit of the text.
  // (Addresses as integers, the end saturated, so that a limit beyond the
  // address space stays meaningful.)
  const uintptr_t end = limit < (UINTPTR_MAX - address) / 2 ? address + 2 * limit : UINTPTR_MAX;
  unsigned mask = ZeroUnits(block) & (~0u << skip);
  while (mask == 0) {
    ++block;
    if (reinterpret_cast<uintptr_t>(block) >= end) return limit;
    mask = ZeroUnits(block);
  }
  const size_t n = Units(s, reinterpret_cast<const char*>(block) + __builtin_ctz(mask));
  return n < limit ? n : limit;
}

KA_WHOLE_BLOCK_READS const uint16_t* WideFindPair(const uint16_t* s, uint16_t a, uint16_t b) {
  if ((reinterpret_cast<uintptr_t>(s) & 1) != 0) {  // not on a unit boundary: the blocks would straddle units
    for (const uint16_t* p = s; *p != 0; ++p)
      if (p[0] == a && p[1] == b) return p;
    return nullptr;
  }
  return UseAvx2() ? WideFindPairAvx2(s, a, b) : FindPairIn<Sse2Units>(s, a, b);
}

}  // namespace ka_platform
