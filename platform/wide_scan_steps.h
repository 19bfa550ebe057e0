// The wide text scans' steps, written once over the vector width (internal
// to the x86-64 wide text scans). Each source that includes this header
// instantiates it for the one instruction set it is compiled for, and keeps
// its copy to itself (internal linkage), so that no AVX2 code is ever shared
// with the SSE2 path.
//
// The loads are aligned whole blocks, so they never cross a page; they may
// reach outside the allocation that holds the text, so the scans are exempt
// from the address and thread sanitizers' instrumentation (see
// wide_scan_x86_64.cpp).
#ifndef KALBOR_PLATFORM_WIDE_SCAN_STEPS_H
#define KALBOR_PLATFORM_WIDE_SCAN_STEPS_H

#include <cstddef>
#include <cstdint>

#define KA_WHOLE_BLOCK_READS __attribute__((no_sanitize("address"), no_sanitize("thread")))

namespace ka_platform {

// The AVX2 scans, in their own source compiled for AVX2; called only where
// the processor has it. s is on a unit boundary.
size_t WideLengthAvx2(const uint16_t* s);
const uint16_t* WideFindPairAvx2(const uint16_t* s, uint16_t a, uint16_t b);

namespace {

inline size_t Units(const uint16_t* from, const void* to) {
  return static_cast<size_t>(static_cast<const char*>(to) - reinterpret_cast<const char*>(from)) / 2;
}

// Units before the first zero unit, a block of V::kBytes at a time, two per
// loop. Each block is read only once the blocks before it held no zero, so
// that every block read holds a unit of the text: a block wholly past the
// terminator, though on the same page, lies outside the text's allocation,
// and memory checkers rightly report it. s is on a unit boundary.
template <class V>
KA_WHOLE_BLOCK_READS inline size_t LengthIn(const uint16_t* s) {
  const uintptr_t address = reinterpret_cast<uintptr_t>(s);
  const unsigned skip = static_cast<unsigned>(address & (V::kBytes - 1));
  const char* block = reinterpret_cast<const char*>(address - skip);
  unsigned mask = V::Mask(V::Equal(V::Load(block), V::Zero())) & (~0u << skip);  // the units before s do not count
  while (mask == 0) {
    block += V::kBytes;
    mask = V::Mask(V::Equal(V::Load(block), V::Zero()));
    if (mask != 0) break;
    block += V::kBytes;
    mask = V::Mask(V::Equal(V::Load(block), V::Zero()));
  }
  return Units(s, block + __builtin_ctz(mask));
}

// Per block of V::kBytes: its zero units, and the units equal to a whose next
// unit equals b. The next units are the block shifted down by one unit with
// the following block's first unit on top; that block is read only when this
// one holds no zero (then it holds a unit of the text, the terminator at
// worst). With a zero in the block, only the pairs before it count, and they
// lie wholly inside the block. Every load is an aligned block. s is on a unit
// boundary.
template <class V>
KA_WHOLE_BLOCK_READS inline const uint16_t* FindPairIn(const uint16_t* s, uint16_t a, uint16_t b) {
  const typename V::Vector first = V::Splat(a), second = V::Splat(b);
  const uintptr_t address = reinterpret_cast<uintptr_t>(s);
  const unsigned skip = static_cast<unsigned>(address & (V::kBytes - 1));
  const char* block = reinterpret_cast<const char*>(address - skip);
  unsigned live = ~0u << skip;  // the units before s do not count
  typename V::Vector units = V::Load(block);
  for (;; block += V::kBytes, live = ~0u) {
    const unsigned zeros = V::Mask(V::Equal(units, V::Zero())) & live;
    if (zeros != 0) {
      // The units before the first zero, from the zero's position: units past
      // it may be unset memory, and a memory checker follows that through
      // the position exactly but not through an arithmetic mask.
      const unsigned before = (1u << __builtin_ctz(zeros)) - 1;
      const unsigned hits = V::Mask(V::Equal(units, first)) & (V::Mask(V::Equal(units, second)) >> 2) & before & live;
      return hits != 0 ? reinterpret_cast<const uint16_t*>(block + __builtin_ctz(hits)) : nullptr;
    }
    const typename V::Vector following = V::Load(block + V::kBytes);
    const typename V::Vector next = V::NextUnits(units, following);
    const unsigned hits = V::Mask(V::And(V::Equal(units, first), V::Equal(next, second))) & live;
    if (hits != 0) return reinterpret_cast<const uint16_t*>(block + __builtin_ctz(hits));
    units = following;
  }
}

}  // namespace
}  // namespace ka_platform

#endif  // KALBOR_PLATFORM_WIDE_SCAN_STEPS_H
