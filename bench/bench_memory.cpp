// The memory a million live short strings take, Ka_AString beside
// std::string, each held in a std::vector of its type. Two lengths: 11
// characters (inside std::string's own buffer) and 40 (past it, so both
// allocate). Counters, per string:
//  - heap_bytes: growth of the C heap while the strings live (glibc's
//    mallinfo2: bytes in use plus mapped blocks), the vector's array and
//    the size-class pools' blocks included;
//  - pool_bytes: the size-class pools' own growth, blocks times block size.
// The time is that of building and destroying the million strings.
#include <benchmark/benchmark.h>
#include <kalbor/kalbor.h>

#include <cstdio>
#include <string>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "memory/block_chain.h"

namespace {

const int kStrings = 1000000;

double HeapInUse() {
#if defined(__GLIBC__) && (__GLIBC__ > 2 || __GLIBC_MINOR__ >= 33)
  const struct mallinfo2 m = mallinfo2();
  return static_cast<double>(m.uordblks) + static_cast<double>(m.hblkhd);
#else
  return 0;  // no portable measure: the counter reads 0
#endif
}

double PoolBytes() {
  double bytes = 0;
  for (int i = 0; i < 9; ++i) {
    const Ka_BufferPool& pool = ka_detail::SizeClassPool(i);
    bytes += static_cast<double>(pool.GetBlockCount()) * pool.GetBlockBytes();
  }
  return bytes;
}

// Distinct texts of the given length: a number padded with letters.
void Text(char* out, int length, int i) {
  const int n = std::snprintf(out, 16, "%d", i);
  for (int k = n; k < length; ++k) out[k] = static_cast<char>('a' + k % 26);
  out[length] = 0;
}

template <class S>
void MillionStrings(benchmark::State& state) {
  const int length = static_cast<int>(state.range(0));
  double heap = 0, pool = 0;
  char text[64];
  for (auto _ : state) {
    const double heap0 = HeapInUse(), pool0 = PoolBytes();
    {
      std::vector<S> strings;
      strings.reserve(kStrings);
      for (int i = 0; i < kStrings; ++i) {
        Text(text, length, i);
        strings.emplace_back(text);
      }
      heap = HeapInUse() - heap0;
      pool = PoolBytes() - pool0;
      benchmark::DoNotOptimize(strings.data());
    }
  }
  state.counters["heap_bytes"] = heap / kStrings;
  state.counters["pool_bytes"] = pool / kStrings;
  state.SetItemsProcessed(state.iterations() * kStrings);
}

void BM_Ka_Memory_MillionStrings(benchmark::State& state) { MillionStrings<Ka_AString>(state); }
void BM_Peer_Memory_MillionStrings(benchmark::State& state) { MillionStrings<std::string>(state); }

}  // namespace

BENCHMARK(BM_Ka_Memory_MillionStrings)->ArgName("chars")->Arg(11)->Arg(40)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Peer_Memory_MillionStrings)->ArgName("chars")->Arg(11)->Arg(40)->Unit(benchmark::kMillisecond);
