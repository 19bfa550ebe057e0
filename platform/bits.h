// Bit scanning for the pools' free-unit maps and the digit generator
// (internal to the library).
#ifndef KALBOR_PLATFORM_BITS_H
#define KALBOR_PLATFORM_BITS_H

#include <cstddef>
#include <cstdint>

// Index of the lowest set bit of a non-zero word.
inline size_t ka_lowest_bit64(uint64_t w) { return static_cast<size_t>(__builtin_ctzll(w)); }

// Bits needed to write a non-zero value: 1 for 1, 6 for 32..63.
inline int ka_bit_width32(uint32_t v) { return 32 - __builtin_clz(v); }
inline int ka_bit_width64(uint64_t v) { return 64 - __builtin_clzll(v); }

#endif  // KALBOR_PLATFORM_BITS_H
