// The ranged random number, the tick count, the last error code and the
// binary standard streams.
#include <kalbor/util.h>

#include <cstdint>

#include "platform/platform.h"

namespace {
// Microsoft's C runtime generator, on a state of the caller's.
int MsRand(uint32_t& state) {
  state = state * 214013u + 2531011u;
  return static_cast<int>((state >> 16) & 0x7FFF);
}
}  // namespace

int ka_random(int lo, int hi) {
  uint32_t state = 0;  // reseeded with 0 on every call (deliberate)
  const int value = MsRand(state);
  const uint32_t span = static_cast<uint32_t>(hi) - static_cast<uint32_t>(lo) + 1u;
  if (span == 0) return lo;  // where the device divided by zero
  // value % (hi - lo + 1) with the span as a signed 32-bit number: the
  // remainder takes the dividend's sign, so only the magnitude counts.
  const uint32_t magnitude = span <= 0x7FFFFFFFu ? span : 0u - span;
  const uint32_t sum = static_cast<uint32_t>(lo) + static_cast<uint32_t>(value) % magnitude;
  return sum <= 0x7FFFFFFFu ? static_cast<int>(sum) : static_cast<int>(sum - 0x80000000u) - 0x7FFFFFFF - 1;
}

unsigned int ka_getcursec() { return ka_platform::TickCount(); }

unsigned int ka_getlasterror() { return static_cast<unsigned int>(ka_platform::LastError()); }

void ka_binarystdio() { ka_platform::SetBinaryStdio(); }
