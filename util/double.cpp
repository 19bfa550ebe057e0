// Byte serialisation and inspection of doubles: the IEEE 754 binary64
// pattern, high word first in network byte order.
#include <kalbor/util.h>

#include <cstring>

#include "platform/platform.h"

namespace {
// The high word holds the sign, the 11-bit exponent and the top 20 mantissa
// bits; the low word the remaining 32 mantissa bits.
inline uint32_t HighWord(double d) {
  uint64_t bits;
  std::memcpy(&bits, &d, 8);
  return static_cast<uint32_t>(bits >> 32);
}
}  // namespace

void ka_dtobyte(double d, char* const out) {
  if (out == nullptr) return;
  uint64_t bits;
  std::memcpy(&bits, &d, 8);
  const uint32_t hi = ka_platform::HostToNet32(static_cast<uint32_t>(bits >> 32));
  const uint32_t lo = ka_platform::HostToNet32(static_cast<uint32_t>(bits));
  std::memcpy(out, &hi, 4);
  std::memcpy(out + 4, &lo, 4);
}

double ka_bytetod(char* const in) {
  if (in == nullptr) return 0.0;
  uint32_t hi, lo;
  std::memcpy(&hi, in, 4);
  std::memcpy(&lo, in + 4, 4);
  const uint64_t bits = (uint64_t(ka_platform::NetToHost32(hi)) << 32) | ka_platform::NetToHost32(lo);
  double d;
  std::memcpy(&d, &bits, 8);
  return d;
}

int ka_dblexponent(double d) { return static_cast<int>((HighWord(d) >> 20) & 0x7FF) - 1023; }

int ka_isinf(double d) {
  const uint32_t hi = HighWord(d);
  if (((hi >> 20) & 0x7FF) != 0x7FF) return 0;
  return (hi & 0x80000000u) != 0 ? -1 : 1;  // a NaN counts too (deliberate)
}
