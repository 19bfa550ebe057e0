// The format engine, the number texts and CRC-32 beside their standard
// peers in the same run: Format beside snprintf into a std::string (a mixed
// "%d %s %.3f" format, a 1 KB literal with a few conversions, results from
// 4 KB to 4 MB to show the time per character stays flat), Set(double) and
// Set(int) beside std::to_chars, and ka_crc32 beside zlib's crc32 on 1 MB.
// Each Ka_ figure has its peer right after it, Peer in place of Ka.
#include <benchmark/benchmark.h>
#include <kalbor/kalbor.h>

#include <charconv>
#include <cstdio>
#include <string>
#include <vector>

#if defined(KALBOR_HAVE_ZLIB)
#include <zlib.h>
#endif

namespace {

// snprintf into a std::string that keeps its capacity between calls, as a
// reused Ka_AString keeps its block.
template <class... A>
void StdFormat(std::string& out, const char* format, A... args) {
  out.resize(out.capacity());
  int n = std::snprintf(&out[0], out.size() + 1, format, args...);
  if (n > static_cast<int>(out.size())) {
    out.resize(static_cast<size_t>(n));
    n = std::snprintf(&out[0], out.size() + 1, format, args...);
  }
  out.resize(static_cast<size_t>(n));
}

// ---- A short mixed format ------------------------------------------------------

void BM_Ka_Format_Mixed(benchmark::State& state) {
  Ka_AString s;
  int i = 0;
  for (auto _ : state) {
    ++i;
    s.Format("%d %hs %.3f", i, "item", 3.14159 * i);
    benchmark::DoNotOptimize(static_cast<const char*>(s));
  }
}
void BM_Peer_Format_Mixed(benchmark::State& state) {
  std::string s;
  int i = 0;
  for (auto _ : state) {
    ++i;
    StdFormat(s, "%d %s %.3f", i, "item", 3.14159 * i);
    benchmark::DoNotOptimize(s.data());
  }
}
// The same through the wide engine (no standard peer writes 16-bit text).
void BM_Ka_Format_MixedWide(benchmark::State& state) {
  Ka_WString s;
  int i = 0;
  for (auto _ : state) {
    ++i;
    s.Format(KA_W("%d %s %.3f"), i, KA_W("item"), 3.14159 * i);
    benchmark::DoNotOptimize(static_cast<const ka_wchar*>(s));
  }
}
// Integers only, where no floating-point digits are made.
void BM_Ka_Format_Integers(benchmark::State& state) {
  Ka_AString s;
  int i = 0;
  for (auto _ : state) {
    ++i;
    s.Format("%d:%05u:%x", i, i * 7u, i * 13u);
    benchmark::DoNotOptimize(static_cast<const char*>(s));
  }
}
void BM_Peer_Format_Integers(benchmark::State& state) {
  std::string s;
  int i = 0;
  for (auto _ : state) {
    ++i;
    StdFormat(s, "%d:%05u:%x", i, i * 7u, i * 13u);
    benchmark::DoNotOptimize(s.data());
  }
}

// ---- A 1 KB literal with a few conversions -------------------------------------------

const std::string& LongFormat() {
  static const std::string format = [] {
    std::string f;
    const char* words = "the quick brown fox jumps over the lazy dog, ";
    while (f.size() < 1000) f += words;
    f.insert(200, "[%d]");
    f.insert(500, "[%s]");
    f += "[%x]";
    return f;
  }();
  return format;
}

void BM_Ka_Format_LongLiteral(benchmark::State& state) {
  std::string format = LongFormat();
  format.replace(format.find("%s"), 2, "%hs");
  Ka_AString s;
  int i = 0;
  for (auto _ : state) {
    ++i;
    s.Format(format.c_str(), i, "name", i);
    benchmark::DoNotOptimize(static_cast<const char*>(s));
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(format.size()));
}
void BM_Peer_Format_LongLiteral(benchmark::State& state) {
  const std::string& format = LongFormat();
  std::string s;
  int i = 0;
  for (auto _ : state) {
    ++i;
    StdFormat(s, format.c_str(), i, "name", i);
    benchmark::DoNotOptimize(s.data());
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(format.size()));
}

// ---- Long results: time per character stays flat -----------------------------------

void BM_Ka_Format_LongResult(benchmark::State& state) {
  const std::string text(static_cast<size_t>(state.range(0)), 'x');
  for (auto _ : state) {
    Ka_AString s;  // a new string each time: the result's block is grown
    s.Format("<%hs|%d>", text.c_str(), 42);
    benchmark::DoNotOptimize(static_cast<const char*>(s));
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * state.range(0));
}
void BM_Peer_Format_LongResult(benchmark::State& state) {
  const std::string text(static_cast<size_t>(state.range(0)), 'x');
  for (auto _ : state) {
    std::string s;
    StdFormat(s, "<%s|%d>", text.c_str(), 42);
    benchmark::DoNotOptimize(s.data());
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * state.range(0));
}

// ---- Number texts -------------------------------------------------------------------

const std::vector<double>& Doubles() {
  static const std::vector<double> values = {0.1, 2.5, -3.0, 1234.5678, 1.0 / 3, 6.02214076e23, 1e-9, 42.0,
                                             -0.015625, 3.14159265358979, 1e30, 65536.125};
  return values;
}

void BM_Ka_Number_SetDouble(benchmark::State& state) {
  Ka_AString s;
  size_t i = 0;
  for (auto _ : state) {
    s.Set(Doubles()[i++ % Doubles().size()]);
    benchmark::DoNotOptimize(static_cast<const char*>(s));
  }
}
void BM_Peer_Number_SetDouble(benchmark::State& state) {
  std::string s;
  size_t i = 0;
  for (auto _ : state) {
    char buffer[32];
    const auto r = std::to_chars(buffer, buffer + sizeof(buffer), Doubles()[i++ % Doubles().size()]);
    s.assign(buffer, r.ptr);
    benchmark::DoNotOptimize(s.data());
  }
}

void BM_Ka_Number_SetInt(benchmark::State& state) {
  Ka_AString s;
  int i = -1000000;
  for (auto _ : state) {
    s.Set(i += 7919);
    benchmark::DoNotOptimize(static_cast<const char*>(s));
  }
}
void BM_Peer_Number_SetInt(benchmark::State& state) {
  std::string s;
  int i = -1000000;
  for (auto _ : state) {
    char buffer[16];
    const auto r = std::to_chars(buffer, buffer + sizeof(buffer), i += 7919);
    s.assign(buffer, r.ptr);
    benchmark::DoNotOptimize(s.data());
  }
}

void BM_Ka_Number_NumFormat(benchmark::State& state) {
  Ka_AString s;
  size_t i = 0;
  for (auto _ : state) {
    s.NumFormat(Doubles()[i++ % Doubles().size()] * 1000, 0, 2);
    benchmark::DoNotOptimize(static_cast<const char*>(s));
  }
}

// ---- CRC-32 of 1 MB ---------------------------------------------------------------

const std::vector<unsigned char>& Megabyte() {
  static const std::vector<unsigned char> data = [] {
    std::vector<unsigned char> d(1 << 20);
    uint32_t x = 12345;
    for (auto& b : d) b = static_cast<unsigned char>((x = x * 1103515245u + 12345u) >> 24);
    return d;
  }();
  return data;
}

void BM_Ka_Crc32_1M(benchmark::State& state) {
  const auto& data = Megabyte();
  for (auto _ : state) benchmark::DoNotOptimize(ka_crc32(0, data.data(), static_cast<int>(data.size())));
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(data.size()));
}
#if defined(KALBOR_HAVE_ZLIB)
void BM_Peer_Crc32_1M(benchmark::State& state) {
  const auto& data = Megabyte();
  if (crc32(0, data.data(), static_cast<uInt>(data.size())) != ka_crc32(0, data.data(), static_cast<int>(data.size()))) {
    state.SkipWithError("zlib and ka_crc32 disagree");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(crc32(0, data.data(), static_cast<uInt>(data.size())));
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(data.size()));
}
#endif

}  // namespace

BENCHMARK(BM_Ka_Format_Mixed);
BENCHMARK(BM_Peer_Format_Mixed);
BENCHMARK(BM_Ka_Format_MixedWide);
BENCHMARK(BM_Ka_Format_Integers);
BENCHMARK(BM_Peer_Format_Integers);
BENCHMARK(BM_Ka_Format_LongLiteral);
BENCHMARK(BM_Peer_Format_LongLiteral);
BENCHMARK(BM_Ka_Format_LongResult)->RangeMultiplier(8)->Range(4 << 10, 4 << 20);
BENCHMARK(BM_Peer_Format_LongResult)->RangeMultiplier(8)->Range(4 << 10, 4 << 20);
BENCHMARK(BM_Ka_Number_SetDouble);
BENCHMARK(BM_Peer_Number_SetDouble);
BENCHMARK(BM_Ka_Number_SetInt);
BENCHMARK(BM_Peer_Number_SetInt);
BENCHMARK(BM_Ka_Number_NumFormat);
BENCHMARK(BM_Ka_Crc32_1M);
#if defined(KALBOR_HAVE_ZLIB)
BENCHMARK(BM_Peer_Crc32_1M);
#endif
