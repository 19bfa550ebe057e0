// Substring search and replacement on a 1 MB text, each beside the C
// runtime or standard library routine that does the same job: ka_strstrW
// (wide) against strstr (the same text, narrow), ka_stristrA against
// strcasestr, and ka_replaceA against a std::string find-and-append loop.
// The text is words of common letters, so that first characters recur
// everywhere and a naive scan has many false starts; the pattern sought
// occurs only at the very end.
#include <benchmark/benchmark.h>
#include <kalbor/kalbor.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>

namespace {

const size_t kTextBytes = 1 << 20;
const char kNeedle[] = "listener";       // made of the text's letters, planted at the end
const char kNeedleCase[] = "LiStEnEr";   // the same for the case-insensitive search
const char kFrom[] = "ent";              // recurs about every 2 KB
const char kTo[] = "[ENT]";

const std::string& Text() {
  static const std::string text = [] {
    uint64_t s = 0x9E3779B97F4A7C15ull;
    auto next = [&s] {
      s ^= s << 13;
      s ^= s >> 7;
      s ^= s << 17;
      return s;
    };
    const char letters[] = "etaoinshrdlu";
    std::string t;
    t.reserve(kTextBytes + 1);
    while (t.size() < kTextBytes - sizeof(kNeedle) - 16) {
      for (uint64_t n = 2 + next() % 8; n > 0; --n) t.push_back(letters[next() % 12]);
      t.push_back(' ');
    }
    return t + kNeedle;
  }();
  return text;
}

const std::basic_string<ka_wchar>& WideText() {
  static const std::basic_string<ka_wchar> wide(Text().begin(), Text().end());
  return wide;
}

// The C runtime's strcasestr where it has one (glibc, the BSDs). The name is
// looked up when the template is used, so a runtime without it (Microsoft's)
// selects the second form, whose result type says that it is missing.
template <class C>
auto CrtCaseFind(const C* s, const C* p, int) -> decltype(strcasestr(s, p)) {
  return strcasestr(s, p);
}
template <class C>
std::nullptr_t CrtCaseFind(const C*, const C*, long) {
  return nullptr;
}
const bool kHaveStrcasestr =
    !std::is_same<decltype(CrtCaseFind(static_cast<const char*>(nullptr), "", 0)), std::nullptr_t>::value;

template <class C>
void ExpectAtEnd(benchmark::State& state, const C* found, const C* text, size_t len) {
  if (found != text + len - (sizeof(kNeedle) - 1)) state.SkipWithError("the needle was not found at the end");
}

void BM_Ka_Cstr_StrstrW(benchmark::State& state) {
  const auto& text = WideText();
  const std::basic_string<ka_wchar> needle(kNeedle, kNeedle + sizeof(kNeedle) - 1);
  const ka_wchar* found = nullptr;
  for (auto _ : state) {
    found = ka_strstrW(text.c_str(), needle.c_str());
    benchmark::DoNotOptimize(found);
  }
  ExpectAtEnd(state, found, text.c_str(), text.size());
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size() * sizeof(ka_wchar)));
}

void BM_Peer_Cstr_StrstrW(benchmark::State& state) {
  const auto& text = Text();
  const char* found = nullptr;
  for (auto _ : state) {
    found = std::strstr(text.c_str(), kNeedle);
    benchmark::DoNotOptimize(found);
  }
  ExpectAtEnd(state, found, text.c_str(), text.size());
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void BM_Ka_Cstr_StristrA(benchmark::State& state) {
  const auto& text = Text();
  const char* found = nullptr;
  for (auto _ : state) {
    found = ka_stristrA(text.c_str(), kNeedleCase);
    benchmark::DoNotOptimize(found);
  }
  ExpectAtEnd(state, found, text.c_str(), text.size());
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void BM_Peer_Cstr_StristrA(benchmark::State& state) {
  const auto& text = Text();
  if (!kHaveStrcasestr) {
    state.SkipWithError("this C runtime has no strcasestr");
    return;
  }
  const char* found = nullptr;
  for (auto _ : state) {
    found = CrtCaseFind(text.c_str(), kNeedleCase, 0);
    benchmark::DoNotOptimize(found);
  }
  ExpectAtEnd(state, found, text.c_str(), text.size());
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

// The usual std::string replacement: find, append the piece before and the
// replacement, go on after the match.
std::string StdReplace(const std::string& text, const std::string& from, const std::string& to) {
  std::string out;
  out.reserve(text.size());
  size_t pos = 0;
  for (size_t hit; (hit = text.find(from, pos)) != std::string::npos; pos = hit + from.size()) {
    out.append(text, pos, hit - pos);
    out.append(to);
  }
  out.append(text, pos, std::string::npos);
  return out;
}

// Both sides start from their own copy of the text, as each must.
void BM_Ka_Cstr_ReplaceA(benchmark::State& state) {
  const auto& text = Text();
  std::string result;
  for (auto _ : state) {
    char* s = _ka_strdupA(text.c_str());
    s = ka_replaceA(s, kFrom, kTo);
    benchmark::DoNotOptimize(s);
    state.PauseTiming();
    if (result.empty() && s != nullptr) result = s;
    state.ResumeTiming();
    ka_free(s);
  }
  if (result != StdReplace(text, kFrom, kTo)) state.SkipWithError("ka_replaceA differs from the std::string loop");
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void BM_Peer_Cstr_ReplaceA(benchmark::State& state) {
  const auto& text = Text();
  for (auto _ : state) {
    std::string copy = text;
    std::string out = StdReplace(copy, kFrom, kTo);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

}  // namespace

BENCHMARK(BM_Ka_Cstr_StrstrW)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Peer_Cstr_StrstrW)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Ka_Cstr_StristrA)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Peer_Cstr_StristrA)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Ka_Cstr_ReplaceA)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Peer_Cstr_ReplaceA)->Unit(benchmark::kMicrosecond);
