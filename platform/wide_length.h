// Length of 16-bit zero-terminated text, measured as fast as the processor
// allows (internal to the library). The C-string functions' wide traits call
// these for every length they need.
#ifndef KALBOR_PLATFORM_WIDE_LENGTH_H
#define KALBOR_PLATFORM_WIDE_LENGTH_H

#include <cstddef>
#include <cstdint>

namespace ka_platform {
// Units before the first zero unit at s (s not null).
size_t WideLength(const uint16_t* s);
// The same, but at most limit: no unit at or past s + limit decides the result.
size_t WideLengthUpTo(const uint16_t* s, size_t limit);
}  // namespace ka_platform

#endif  // KALBOR_PLATFORM_WIDE_LENGTH_H
