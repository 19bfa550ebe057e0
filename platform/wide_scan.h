// Scans of 16-bit zero-terminated text, as fast as the processor allows
// (internal to the library). The C-string functions' wide traits call these
// for every length they need and for the candidates of a substring search.
#ifndef KALBOR_PLATFORM_WIDE_SCAN_H
#define KALBOR_PLATFORM_WIDE_SCAN_H

#include <cstddef>
#include <cstdint>

namespace ka_platform {
// Units before the first zero unit at s (s not null).
size_t WideLength(const uint16_t* s);
// The same, but at most limit: no unit at or past s + limit decides the result.
size_t WideLengthUpTo(const uint16_t* s, size_t limit);
// The first p at or after s, before the first zero unit, with p[0] == a and
// p[1] == b (a and b non-zero); null when the zero unit comes first. Reads
// no unit the answer does not need beyond the pair or the zero.
const uint16_t* WideFindPair(const uint16_t* s, uint16_t a, uint16_t b);
}  // namespace ka_platform

#endif  // KALBOR_PLATFORM_WIDE_SCAN_H
