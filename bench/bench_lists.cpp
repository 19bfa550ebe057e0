// The string lists beside std::vector<std::string> and std::set<std::string>
// in the same run: adding 100,000 strings to an unsorted and to a sorted
// list, finding them, copying a whole list, and Parse of a 1 MB
// comma-separated text against a split into a vector. Each Ka_ figure has its
// std peer right after it, under the same name with Peer in place of Ka.
#include <benchmark/benchmark.h>
#include <kalbor/kalbor.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

const int kCount = 100000;

// kCount distinct texts of 8 to 16 characters, in random order.
const std::vector<std::string>& Texts() {
  static const std::vector<std::string> texts = [] {
    std::vector<std::string> out;
    std::mt19937 random(42);
    for (int i = 0; i < kCount; ++i)
      out.push_back("key" + std::to_string(i) + std::string(random() % 6, char('a' + random() % 26)));
    std::shuffle(out.begin(), out.end(), random);
    return out;
  }();
  return texts;
}

Ka_AStrList FilledList(int sorted) {
  Ka_AStrList l(sorted);
  for (const std::string& t : Texts()) l.Add(t.c_str());
  return l;
}

// ---- Adding 100,000 strings -------------------------------------------------

void BM_Ka_Lists_AddUnsorted(benchmark::State& state) {
  for (auto _ : state) {
    Ka_AStrList l;
    for (const std::string& t : Texts()) l.Add(t.c_str());
    benchmark::DoNotOptimize(l.Count());
  }
}
void BM_Peer_Lists_AddUnsorted(benchmark::State& state) {
  for (auto _ : state) {
    std::vector<std::string> v;
    for (const std::string& t : Texts()) v.emplace_back(t.c_str());
    benchmark::DoNotOptimize(v.size());
  }
}

// A binary search and one move of pointers per string.
void BM_Ka_Lists_AddSorted(benchmark::State& state) {
  for (auto _ : state) {
    Ka_AStrList l(1);
    for (const std::string& t : Texts()) l.Add(t.c_str());
    benchmark::DoNotOptimize(l.Count());
  }
}
void BM_Peer_Lists_AddSorted(benchmark::State& state) {
  for (auto _ : state) {
    std::set<std::string> s;
    for (const std::string& t : Texts()) s.emplace(t.c_str());
    benchmark::DoNotOptimize(s.size());
  }
}

// ---- Finding ----------------------------------------------------------------------

// Every one of the 100,000 strings, by binary search.
void BM_Ka_Lists_FindSorted(benchmark::State& state) {
  const Ka_AStrList l = FilledList(1);
  for (auto _ : state)
    for (const std::string& t : Texts()) benchmark::DoNotOptimize(l.Find(t.c_str()));
}
void BM_Peer_Lists_FindSorted(benchmark::State& state) {
  const std::set<std::string> s(Texts().begin(), Texts().end());
  for (auto _ : state)
    for (const std::string& t : Texts()) benchmark::DoNotOptimize(s.find(t));
}

// A linear scan per string: 1,000 of the strings, spread over the list.
void BM_Ka_Lists_FindUnsorted(benchmark::State& state) {
  const Ka_AStrList l = FilledList(0);
  for (auto _ : state)
    for (int i = 0; i < kCount; i += kCount / 1000)
      benchmark::DoNotOptimize(l.Find(Texts()[size_t(i)].c_str()));
}
void BM_Peer_Lists_FindUnsorted(benchmark::State& state) {
  const std::vector<std::string> v(Texts().begin(), Texts().end());
  for (auto _ : state)
    for (int i = 0; i < kCount; i += kCount / 1000)
      benchmark::DoNotOptimize(std::find(v.begin(), v.end(), Texts()[size_t(i)]));
}

// ---- Copying a whole list ----------------------------------------------------------

void BM_Ka_Lists_CopyList(benchmark::State& state) {
  const Ka_AStrList l = FilledList(0);
  for (auto _ : state) {
    Ka_AStrList copy(l);
    benchmark::DoNotOptimize(copy.Count());
  }
}
void BM_Peer_Lists_CopyList(benchmark::State& state) {
  const std::vector<std::string> v(Texts().begin(), Texts().end());
  for (auto _ : state) {
    std::vector<std::string> copy(v);
    benchmark::DoNotOptimize(copy.size());
  }
}
void BM_Set_Lists_CopyList(benchmark::State& state) {
  const std::set<std::string> s(Texts().begin(), Texts().end());
  for (auto _ : state) {
    std::set<std::string> copy(s);
    benchmark::DoNotOptimize(copy.size());
  }
}
// The copy made private: its pointer array copied, the strings still shared.
void BM_Ka_Lists_CopyListAndEdit(benchmark::State& state) {
  const Ka_AStrList l = FilledList(0);
  for (auto _ : state) {
    Ka_AStrList copy(l);
    copy.Exchange(0, 1);
    benchmark::DoNotOptimize(copy.Count());
  }
}

// ---- Parse of 1 MB -----------------------------------------------------------------

const std::string& CommaText() {
  static const std::string text = [] {
    std::string out;
    for (size_t i = 0; out.size() < 1024 * 1024; i = (i + 1) % Texts().size()) out += Texts()[i] + ",";
    return out;
  }();
  return text;
}

void BM_Ka_Lists_Parse1MB(benchmark::State& state) {
  Ka_AStrList l;
  for (auto _ : state) benchmark::DoNotOptimize(l.Parse(CommaText().c_str(), ",", 0, 0, 0, 0, 1, 0));
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(CommaText().size()));
}
void BM_Peer_Lists_Parse1MB(benchmark::State& state) {
  for (auto _ : state) {
    std::vector<std::string> fields;
    const std::string& text = CommaText();
    size_t start = 0;
    for (size_t comma; (comma = text.find(',', start)) != std::string::npos; start = comma + 1)
      fields.emplace_back(text, start, comma - start);
    if (start < text.size()) fields.emplace_back(text, start);
    benchmark::DoNotOptimize(fields.size());
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(CommaText().size()));
}

}  // namespace

BENCHMARK(BM_Ka_Lists_AddUnsorted)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Peer_Lists_AddUnsorted)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Ka_Lists_AddSorted)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Peer_Lists_AddSorted)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Ka_Lists_FindSorted)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Peer_Lists_FindSorted)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Ka_Lists_FindUnsorted)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Peer_Lists_FindUnsorted)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Ka_Lists_CopyList)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Peer_Lists_CopyList)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Set_Lists_CopyList)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Ka_Lists_CopyListAndEdit)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Ka_Lists_Parse1MB)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Peer_Lists_Parse1MB)->Unit(benchmark::kMillisecond);
