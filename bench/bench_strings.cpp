// The string classes beside std::string (std::u16string for 16-bit text) in
// the same run: building a string from a literal, copying and passing a
// 100-character string, appending 10,000 characters one by one, and Find,
// Replace and Trim on a 100 KB text. Each Ka_ figure has its std peer right
// after it, under the same name with Peer in place of Ka.
#include <benchmark/benchmark.h>
#include <kalbor/kalbor.h>

#include <string>

namespace {

// ---- Texts -----------------------------------------------------------------

// About 100 KB of words, "needle" only at the very end, "fox" every ~45
// characters, blanks at both ends.
std::string BigNarrowText() {
  std::string text = "   ";
  const char* words[] = {"the ", "quick ", "brown ", "fox ", "jumps ", "over ", "a ", "lazy ", "dog. "};
  for (int i = 0; text.size() < 100 * 1024; ++i) text += words[i % 9];
  text += "needle   ";
  return text;
}

template <class C>
std::basic_string<C> Widen(const std::string& s) {
  return std::basic_string<C>(s.begin(), s.end());
}

const std::string& BigText() {
  static const std::string text = BigNarrowText();
  return text;
}

template <class C>
struct Peer;  // the std type and the library type of one width
template <>
struct Peer<char> {
  typedef std::string Std;
  typedef Ka_AString Ka;
};
template <>
struct Peer<ka_wchar> {
  typedef std::basic_string<ka_wchar> Std;
  typedef Ka_WString Ka;
};

// ---- Build from a literal ---------------------------------------------------

void BM_Ka_String_FromShortLiteral(benchmark::State& state) {
  for (auto _ : state) {
    Ka_AString s("hello, world");
    benchmark::DoNotOptimize(s);
  }
}
void BM_Peer_String_FromShortLiteral(benchmark::State& state) {
  for (auto _ : state) {
    std::string s("hello, world");
    benchmark::DoNotOptimize(s);
  }
}
// Past std::string's inline buffer: both allocate.
void BM_Ka_String_From40CharLiteral(benchmark::State& state) {
  for (auto _ : state) {
    Ka_AString s("a literal of forty characters, no more!!");
    benchmark::DoNotOptimize(s);
  }
}
void BM_Peer_String_From40CharLiteral(benchmark::State& state) {
  for (auto _ : state) {
    std::string s("a literal of forty characters, no more!!");
    benchmark::DoNotOptimize(s);
  }
}

// ---- Copy and pass by value ---------------------------------------------------

template <class C, class T>
void Copy100(benchmark::State& state) {
  const T source(Widen<C>(std::string(100, 'x')).c_str());
  for (auto _ : state) {
    T copy(source);
    benchmark::DoNotOptimize(copy);
  }
}
void BM_Ka_String_Copy100(benchmark::State& state) { Copy100<char, Ka_AString>(state); }
void BM_Peer_String_Copy100(benchmark::State& state) { Copy100<char, std::string>(state); }
void BM_Ka_String_Copy100W(benchmark::State& state) { Copy100<ka_wchar, Ka_WString>(state); }
void BM_Peer_String_Copy100W(benchmark::State& state) { Copy100<ka_wchar, std::basic_string<ka_wchar>>(state); }

template <class T>
__attribute__((noinline)) int TakeByValue(T s) {
  benchmark::DoNotOptimize(s);
  return static_cast<int>(s[0]);
}
template <class T>
void PassByValue(benchmark::State& state) {
  const T source(std::string(100, 'x').c_str());
  for (auto _ : state) benchmark::DoNotOptimize(TakeByValue<T>(source));
}
void BM_Ka_String_PassByValue100(benchmark::State& state) { PassByValue<Ka_AString>(state); }
void BM_Peer_String_PassByValue100(benchmark::State& state) { PassByValue<std::string>(state); }

// ---- Append one character at a time -------------------------------------------

template <class T, class C>
void Append10000(benchmark::State& state) {
  for (auto _ : state) {
    T s;
    for (int i = 0; i < 10000; ++i) s += static_cast<C>('a' + i % 26);
    benchmark::DoNotOptimize(s);
  }
  state.SetItemsProcessed(state.iterations() * 10000);
}
void BM_Ka_String_Append10000(benchmark::State& state) { Append10000<Ka_AString, char>(state); }
void BM_Peer_String_Append10000(benchmark::State& state) { Append10000<std::string, char>(state); }
void BM_Ka_String_Append10000W(benchmark::State& state) { Append10000<Ka_WString, ka_wchar>(state); }
void BM_Peer_String_Append10000W(benchmark::State& state) { Append10000<std::basic_string<ka_wchar>, ka_wchar>(state); }

// ---- Find, Replace, Trim on 100 KB --------------------------------------------------

template <class C>
void KaFind(benchmark::State& state) {
  const typename Peer<C>::Ka text(Widen<C>(BigText()).c_str());
  const auto needle = Widen<C>("needle");
  for (auto _ : state) benchmark::DoNotOptimize(text.Find(needle.c_str()));
  if (text.Find(needle.c_str()) != static_cast<int>(BigText().find("needle"))) state.SkipWithError("wrong position");
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(BigText().size() * sizeof(C)));
}
template <class C>
void StdFind(benchmark::State& state) {
  const typename Peer<C>::Std text = Widen<C>(BigText());
  const auto needle = Widen<C>("needle");
  for (auto _ : state) benchmark::DoNotOptimize(text.find(needle));
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(BigText().size() * sizeof(C)));
}
void BM_Ka_String_Find100K(benchmark::State& state) { KaFind<char>(state); }
void BM_Peer_String_Find100K(benchmark::State& state) { StdFind<char>(state); }
void BM_Ka_String_Find100KW(benchmark::State& state) { KaFind<ka_wchar>(state); }
void BM_Peer_String_Find100KW(benchmark::State& state) { StdFind<ka_wchar>(state); }

// Every "fox" becomes "wolf" (about 2,300 times), on a fresh copy each time.
template <class C>
typename Peer<C>::Std StdReplaceAll(const typename Peer<C>::Std& text, const typename Peer<C>::Std& from,
                                    const typename Peer<C>::Std& to) {
  typename Peer<C>::Std out;
  out.reserve(text.size() + text.size() / 8);
  size_t done = 0;
  for (size_t at = text.find(from); at != Peer<C>::Std::npos; at = text.find(from, done)) {
    out.append(text, done, at - done).append(to);
    done = at + from.size();
  }
  out.append(text, done, Peer<C>::Std::npos);
  return out;
}
template <class C>
void KaReplace(benchmark::State& state) {
  const typename Peer<C>::Ka text(Widen<C>(BigText()).c_str());
  const auto from = Widen<C>("fox"), to = Widen<C>("wolf");
  for (auto _ : state) {
    typename Peer<C>::Ka s(text);
    s.Replace(from.c_str(), to.c_str());
    benchmark::DoNotOptimize(s);
  }
  typename Peer<C>::Ka check(text);
  check.Replace(from.c_str(), to.c_str());
  if (typename Peer<C>::Std(check, check.GetLength()) != StdReplaceAll<C>(Widen<C>(BigText()), from, to))
    state.SkipWithError("wrong result");
}
template <class C>
void StdReplace(benchmark::State& state) {
  const typename Peer<C>::Std text = Widen<C>(BigText());
  const auto from = Widen<C>("fox"), to = Widen<C>("wolf");
  for (auto _ : state) {
    typename Peer<C>::Std s = StdReplaceAll<C>(text, from, to);
    benchmark::DoNotOptimize(s);
  }
}
void BM_Ka_String_Replace100K(benchmark::State& state) { KaReplace<char>(state); }
void BM_Peer_String_Replace100K(benchmark::State& state) { StdReplace<char>(state); }
void BM_Ka_String_Replace100KW(benchmark::State& state) { KaReplace<ka_wchar>(state); }
void BM_Peer_String_Replace100KW(benchmark::State& state) { StdReplace<ka_wchar>(state); }

// Trim both ends of a fresh copy: the copy is part of both figures.
template <class C>
void KaTrim(benchmark::State& state) {
  const typename Peer<C>::Ka text(Widen<C>(BigText()).c_str());
  for (auto _ : state) {
    typename Peer<C>::Ka s(text);
    s.Trim();
    benchmark::DoNotOptimize(s);
  }
}
template <class C>
void StdTrim(benchmark::State& state) {
  const typename Peer<C>::Std text = Widen<C>(BigText());
  const auto blanks = Widen<C>(" \t\r\n");
  for (auto _ : state) {
    typename Peer<C>::Std s(text);
    s.erase(s.find_last_not_of(blanks) + 1);
    s.erase(0, s.find_first_not_of(blanks));
    benchmark::DoNotOptimize(s);
  }
}
void BM_Ka_String_Trim100K(benchmark::State& state) { KaTrim<char>(state); }
void BM_Peer_String_Trim100K(benchmark::State& state) { StdTrim<char>(state); }
void BM_Ka_String_Trim100KW(benchmark::State& state) { KaTrim<ka_wchar>(state); }
void BM_Peer_String_Trim100KW(benchmark::State& state) { StdTrim<ka_wchar>(state); }

}  // namespace

BENCHMARK(BM_Ka_String_FromShortLiteral);
BENCHMARK(BM_Peer_String_FromShortLiteral);
BENCHMARK(BM_Ka_String_From40CharLiteral);
BENCHMARK(BM_Peer_String_From40CharLiteral);
BENCHMARK(BM_Ka_String_Copy100);
BENCHMARK(BM_Peer_String_Copy100);
BENCHMARK(BM_Ka_String_Copy100W);
BENCHMARK(BM_Peer_String_Copy100W);
BENCHMARK(BM_Ka_String_PassByValue100);
BENCHMARK(BM_Peer_String_PassByValue100);
BENCHMARK(BM_Ka_String_Append10000);
BENCHMARK(BM_Peer_String_Append10000);
BENCHMARK(BM_Ka_String_Append10000W);
BENCHMARK(BM_Peer_String_Append10000W);
BENCHMARK(BM_Ka_String_Find100K);
BENCHMARK(BM_Peer_String_Find100K);
BENCHMARK(BM_Ka_String_Find100KW);
BENCHMARK(BM_Peer_String_Find100KW);
BENCHMARK(BM_Ka_String_Replace100K);
BENCHMARK(BM_Peer_String_Replace100K);
BENCHMARK(BM_Ka_String_Replace100KW);
BENCHMARK(BM_Peer_String_Replace100KW);
BENCHMARK(BM_Ka_String_Trim100K);
BENCHMARK(BM_Peer_String_Trim100K);
BENCHMARK(BM_Ka_String_Trim100KW);
BENCHMARK(BM_Peer_String_Trim100KW);
