// Processor-specific acceleration of CRC-32 (internal to the library).
#ifndef KALBOR_PLATFORM_CRC32_FOLD_H
#define KALBOR_PLATFORM_CRC32_FOLD_H

#include <cstddef>
#include <cstdint>

namespace ka_platform {
// Folds the n bytes at p (n a multiple of 16, at least 64), after the
// reflected CRC-32 register c (already inverted), into 16 bytes whose CRC-32
// register from 0 equals the register after the n bytes. Returns false, and
// writes nothing, where the processor lacks the instructions.
bool CrcFold128(uint32_t c, const unsigned char* p, size_t n, unsigned char out[16]);
}  // namespace ka_platform

#endif  // KALBOR_PLATFORM_CRC32_FOLD_H
