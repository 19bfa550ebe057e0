// Steady-state pool traffic: N units stay live while a random one is freed
// and a new one allocated, for N from a thousand to a million. The per-call
// cost must stay flat as N grows; malloc/free of the same sizes runs beside.
#include <benchmark/benchmark.h>
#include <kalbor/kalbor.h>

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

// A cheap generator, so that the measured loop is the allocator's.
struct XorShift {
  uint64_t s = 0x9E3779B97F4A7C15ull;
  uint64_t Next() {
    s ^= s << 13;
    s ^= s >> 7;
    s ^= s << 17;
    return s;
  }
};

template <class Alloc, class Free>
void SteadyState(benchmark::State& state, Alloc alloc, Free release) {
  const size_t n = static_cast<size_t>(state.range(0));
  std::vector<void*> live(n);
  for (auto& p : live) p = alloc();
  XorShift rng;
  for (auto _ : state) {
    const size_t i = rng.Next() % n;
    release(live[i]);
    live[i] = alloc();
    benchmark::DoNotOptimize(live[i]);
  }
  for (void* p : live) release(p);
  state.SetItemsProcessed(state.iterations());
}

void BM_BufferPool(benchmark::State& state) {
  Ka_BufferPool pool(32, 256);
  SteadyState(
      state, [&] { return static_cast<void*>(pool.Alloc()); },
      [&](void* p) {
        Ka_BufferData* d = static_cast<Ka_BufferData*>(p);
        d->nRefs = 0;  // the last owner's release has brought it to 0
        pool.Free(d);
      });
}

void BM_ObjBufPool(benchmark::State& state) {
  Ka_ObjBufPool pool("bench", sizeof(void*), 128);
  SteadyState(
      state, [&] { return static_cast<void*>(pool.Alloc()); },
      [&](void* p) {
        Ka_ObjBufData* s = static_cast<Ka_ObjBufData*>(p);
        s->refCount = 0;
        pool.Free(s);
      });
}

void BM_Malloc32(benchmark::State& state) {
  SteadyState(state, [] { return std::malloc(32); }, [](void* p) { std::free(p); });
}

void BM_Malloc8(benchmark::State& state) {
  SteadyState(state, [] { return std::malloc(sizeof(void*)); }, [](void* p) { std::free(p); });
}

void BM_KaMallocFree(benchmark::State& state) {
  SteadyState(state, [] { return _ka_malloc(20); }, [](void* p) { ka_free(p); });
}

}  // namespace

BENCHMARK(BM_BufferPool)->RangeMultiplier(10)->Range(1000, 1000000);
BENCHMARK(BM_Malloc32)->RangeMultiplier(10)->Range(1000, 1000000);
BENCHMARK(BM_ObjBufPool)->RangeMultiplier(10)->Range(1000, 1000000);
BENCHMARK(BM_Malloc8)->RangeMultiplier(10)->Range(1000, 1000000);
BENCHMARK(BM_KaMallocFree)->RangeMultiplier(10)->Range(1000, 1000000);
