// Steady-state pool traffic with N units live, for N from a thousand to a
// million, beside malloc/free of the same sizes. Two workloads:
//  - Random: a random one of the N live units is freed and a new one
//    allocated. At large N every call misses the caches on the victim's
//    memory, for the pools and for malloc alike.
//  - HotSet: the same, but the victims are a fixed set of 256 units spread
//    evenly over all N, so the memory touched stays in the caches while the
//    pool's chain grows with N. A walk of the chain would cost time in
//    proportion to N here; the pools' cost must stay flat.
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

const size_t kHotSet = 256;

template <class Alloc, class Free>
void SteadyState(benchmark::State& state, Alloc alloc, Free release, bool hotSet = false) {
  const size_t n = static_cast<size_t>(state.range(0));
  std::vector<void*> live(n);
  for (auto& p : live) p = alloc();
  // The victims' positions in live: all of them, or every (n / 256)th.
  const size_t choices = hotSet ? kHotSet : n;
  const size_t spacing = hotSet ? n / kHotSet : 1;
  XorShift rng;
  for (auto _ : state) {
    const size_t i = (rng.Next() % choices) * spacing;
    release(live[i]);
    live[i] = alloc();
    benchmark::DoNotOptimize(live[i]);
  }
  for (void* p : live) release(p);
  state.SetItemsProcessed(state.iterations());
}

void BM_Ka_Pool_Unit32(benchmark::State& state) {
  Ka_BufferPool pool(32, 256);
  SteadyState(
      state, [&] { return static_cast<void*>(pool.Alloc()); },
      [&](void* p) {
        Ka_BufferData* d = static_cast<Ka_BufferData*>(p);
        d->nRefs = 0;  // the last owner's release has brought it to 0
        pool.Free(d);
      },
      state.range(1) != 0);
}

void BM_Ka_Pool_Unit8(benchmark::State& state) {
  Ka_ObjBufPool pool("bench", sizeof(void*), 128);
  SteadyState(
      state, [&] { return static_cast<void*>(pool.Alloc()); },
      [&](void* p) {
        Ka_ObjBufData* s = static_cast<Ka_ObjBufData*>(p);
        s->refCount = 0;
        pool.Free(s);
      },
      state.range(1) != 0);
}

void BM_Peer_Pool_Unit32(benchmark::State& state) {
  SteadyState(state, [] { return std::malloc(32); }, [](void* p) { std::free(p); }, state.range(1) != 0);
}

void BM_Peer_Pool_Unit8(benchmark::State& state) {
  SteadyState(
      state, [] { return std::malloc(sizeof(void*)); }, [](void* p) { std::free(p); }, state.range(1) != 0);
}

// The memory traffic any allocator must do in this workload, and nothing
// else: read the victim's pointer and write its header word, then hand the
// same unit straight back. At a million live units this alone misses the
// caches twice per call; the pools' own cost is their figure minus this one.
void BM_Touch_Pool_Unit32(benchmark::State& state) {
  std::vector<Ka_BufferData> units(static_cast<size_t>(state.range(0)));
  size_t next = 0;
  Ka_BufferData* last = nullptr;  // the unit freed last, handed out next
  SteadyState(
      state,
      [&] {
        Ka_BufferData* d = last != nullptr ? last : &units[next++];
        last = nullptr;
        d->nRefs = 1;
        return static_cast<void*>(d);
      },
      [&](void* p) {
        last = static_cast<Ka_BufferData*>(p);
        last->nRefs = 0;
      },
      state.range(1) != 0);
}

void BM_Ka_Pool_Malloc20(benchmark::State& state) {
  SteadyState(state, [] { return _ka_malloc(20); }, [](void* p) { ka_free(p); }, state.range(1) != 0);
}

void BM_Peer_Pool_Malloc20(benchmark::State& state) {
  SteadyState(state, [] { return std::malloc(20); }, [](void* p) { std::free(p); }, state.range(1) != 0);
}

}  // namespace

// Arguments: live units, and 0 for random victims or 1 for the hot set.
void LiveUnits(benchmark::internal::Benchmark* b) {
  b->ArgNames({"live", "hot"});
  for (int hot : {0, 1})
    for (int n : {1000, 10000, 100000, 1000000}) b->Args({n, hot});
}

BENCHMARK(BM_Ka_Pool_Unit32)->Apply(LiveUnits);
BENCHMARK(BM_Peer_Pool_Unit32)->Apply(LiveUnits);
BENCHMARK(BM_Ka_Pool_Unit8)->Apply(LiveUnits);
BENCHMARK(BM_Peer_Pool_Unit8)->Apply(LiveUnits);
BENCHMARK(BM_Touch_Pool_Unit32)->Apply(LiveUnits);
BENCHMARK(BM_Ka_Pool_Malloc20)->Apply(LiveUnits);
BENCHMARK(BM_Peer_Pool_Malloc20)->Apply(LiveUnits);
