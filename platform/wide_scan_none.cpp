// Wide text scans on processors without vector code the library uses: one
// unit after another, never reading past the terminator or the limit.
#include "wide_scan.h"

namespace ka_platform {

// Unrolled so that the common case tests four units per loop; each unit is
// read only once the ones before it were found non-zero.
size_t WideLength(const uint16_t* s) {
  const uint16_t* p = s;
  for (;; p += 4) {
    if (p[0] == 0) break;
    if (p[1] == 0) return static_cast<size_t>(p + 1 - s);
    if (p[2] == 0) return static_cast<size_t>(p + 2 - s);
    if (p[3] == 0) return static_cast<size_t>(p + 3 - s);
  }
  return static_cast<size_t>(p - s);
}

size_t WideLengthUpTo(const uint16_t* s, size_t limit) {
  size_t n = 0;
  while (n < limit && s[n] != 0) ++n;
  return n;
}

}  // namespace ka_platform

namespace ka_platform {

const uint16_t* WideFindPair(const uint16_t* s, uint16_t a, uint16_t b) {
  for (const uint16_t* p = s; *p != 0; ++p)
    if (p[0] == a && p[1] == b) return p;  // p[1] is the terminator at worst
  return nullptr;
}

}  // namespace ka_platform
