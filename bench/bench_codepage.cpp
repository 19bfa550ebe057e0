// Code-page conversion of 1 MB of mixed Korean and ASCII text (1.05 MB in
// CP949, a little over half of it Hangul and a few hanja, the rest ASCII
// words, numbers, punctuation and line breaks; 1.33 MB in UTF-8), each
// direction beside glibc's iconv doing the same conversion in the same run:
//   CP949 -> UTF-16 and back (KaToUnicode / KaToAscii, page 949; iconv
//   "CP949" <-> "UTF-16LE"), and UTF-8 -> UTF-16 and back (page 65001;
//   iconv "UTF-8" <-> "UTF-16LE"). Throughput counts the input bytes (two
//   per unit of UTF-16).
// iconv is opened once per benchmark and reset before each conversion.
#include <benchmark/benchmark.h>
#include <kalbor/kalbor.h>

#include <cstdint>
#include <string>

#if __has_include(<iconv.h>)
#include <iconv.h>
#define KA_BENCH_ICONV 1
#endif

namespace {

typedef std::basic_string<ka_wchar> WideString;

const size_t kTextUnits = 760 * 1024;  // units of the wide text

const WideString& Text() {
  static const WideString text = [] {
    // Words of Hangul syllables from the common KS X 1001 set, English words,
    // numbers and punctuation, picked by a fixed generator.
    const char16_t* const korean[] = {u"한국어", u"문서", u"변환", u"속도", u"측정", u"데이터", u"사용자",
                                      u"프로그램", u"시험", u"결과", u"확인", u"있습니다", u"그리고", u"하지만",
                                      u"대한민국", u"서울", u"회사", u"개발", u"漢字", u"自動"};
    const char* const english[] = {"code", "page", "UTF-8", "buffer", "test", "Kalbor", "value", "the", "of"};
    uint64_t s = 0x9E3779B97F4A7C15ull;
    auto next = [&s] {
      s ^= s << 13;
      s ^= s >> 7;
      s ^= s << 17;
      return s;
    };
    WideString t;
    t.reserve(kTextUnits + 16);
    while (t.size() < kTextUnits) {
      const uint64_t r = next();
      if (r % 10 < 6) {
        for (const char16_t* w = korean[(r >> 8) % 20]; *w != 0; ++w) t.push_back(static_cast<ka_wchar>(*w));
      } else if (r % 10 < 9) {
        for (const char* w = english[(r >> 8) % 9]; *w != 0; ++w) t.push_back(static_cast<ka_wchar>(*w));
      } else {
        for (char c : std::to_string((r >> 8) % 100000)) t.push_back(static_cast<ka_wchar>(c));
      }
      const uint64_t p = (r >> 32) % 16;
      t.push_back(static_cast<ka_wchar>(p == 0 ? '\n' : p == 1 ? ',' : p == 2 ? '.' : ' '));
    }
    return t;
  }();
  return text;
}

// The text in a narrow code page, by the library.
std::string Narrow(unsigned cp) {
  const WideString& w = Text();
  std::string out(w.size() * 3 + 1, '\0');
  const int n = KaToAscii(&out[0], static_cast<int>(w.size() * 3), w.data(), static_cast<int>(w.size()), cp);
  out.resize(static_cast<size_t>(n));
  return out;
}

void ToWide(benchmark::State& state, unsigned cp) {
  const std::string src = Narrow(cp);
  WideString dst(src.size() + 1, 0);
  for (auto _ : state) {
    const int n = KaToUnicode(&dst[0], static_cast<int>(src.size()), src.data(), static_cast<int>(src.size()), cp);
    benchmark::DoNotOptimize(n);
    if (n != static_cast<int>(Text().size())) state.SkipWithError("conversion failed");
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(src.size()));
}

void FromWide(benchmark::State& state, unsigned cp) {
  const WideString& src = Text();
  const size_t expected = Narrow(cp).size();
  std::string dst(src.size() * 3 + 1, '\0');
  for (auto _ : state) {
    const int n = KaToAscii(&dst[0], static_cast<int>(src.size() * 3), src.data(), static_cast<int>(src.size()), cp);
    benchmark::DoNotOptimize(n);
    if (n != static_cast<int>(expected)) state.SkipWithError("conversion failed");
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(src.size() * 2));
}

void BM_Ka_Codepage_Cp949ToUtf16(benchmark::State& state) { ToWide(state, 949); }
void BM_Ka_Codepage_Utf16ToCp949(benchmark::State& state) { FromWide(state, 949); }
void BM_Ka_Codepage_Utf8ToUtf16(benchmark::State& state) { ToWide(state, 65001); }
void BM_Ka_Codepage_Utf16ToUtf8(benchmark::State& state) { FromWide(state, 65001); }
BENCHMARK(BM_Ka_Codepage_Cp949ToUtf16)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Ka_Codepage_Utf16ToCp949)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Ka_Codepage_Utf8ToUtf16)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Ka_Codepage_Utf16ToUtf8)->Unit(benchmark::kMicrosecond);

#ifdef KA_BENCH_ICONV
// iconv from one encoding to another over src, into a buffer of room bytes.
void Iconv(benchmark::State& state, const char* from, const char* to, const std::string& src, size_t room,
           size_t expected) {
  iconv_t cd = iconv_open(to, from);
  if (cd == reinterpret_cast<iconv_t>(-1)) {
    state.SkipWithError("iconv_open failed");
    return;
  }
  std::string dst(room, '\0');
  for (auto _ : state) {
    iconv(cd, nullptr, nullptr, nullptr, nullptr);
    char* in = const_cast<char*>(src.data());
    size_t inLeft = src.size();
    char* out = &dst[0];
    size_t outLeft = dst.size();
    const size_t r = iconv(cd, &in, &inLeft, &out, &outLeft);
    benchmark::DoNotOptimize(r);
    if (r == static_cast<size_t>(-1) || inLeft != 0 || dst.size() - outLeft != expected)
      state.SkipWithError("iconv failed");
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(src.size()));
  iconv_close(cd);
}

std::string Utf16Bytes() {
  const WideString& w = Text();
  std::string b;
  for (ka_wchar c : w) {
    b.push_back(static_cast<char>(static_cast<uint16_t>(c) & 0xFF));
    b.push_back(static_cast<char>(static_cast<uint16_t>(c) >> 8));
  }
  return b;
}

void BM_Peer_Codepage_Cp949ToUtf16(benchmark::State& state) {
  const std::string src = Narrow(949);
  Iconv(state, "CP949", "UTF-16LE", src, src.size() * 2 + 16, Text().size() * 2);
}
void BM_Peer_Codepage_Utf16ToCp949(benchmark::State& state) {
  const size_t expected = Narrow(949).size();
  Iconv(state, "UTF-16LE", "CP949", Utf16Bytes(), expected + 16, expected);
}
void BM_Peer_Codepage_Utf8ToUtf16(benchmark::State& state) {
  const std::string src = Narrow(65001);
  Iconv(state, "UTF-8", "UTF-16LE", src, src.size() * 2 + 16, Text().size() * 2);
}
void BM_Peer_Codepage_Utf16ToUtf8(benchmark::State& state) {
  const size_t expected = Narrow(65001).size();
  Iconv(state, "UTF-16LE", "UTF-8", Utf16Bytes(), expected + 16, expected);
}
BENCHMARK(BM_Peer_Codepage_Cp949ToUtf16)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Peer_Codepage_Utf16ToCp949)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Peer_Codepage_Utf8ToUtf16)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Peer_Codepage_Utf16ToUtf8)->Unit(benchmark::kMicrosecond);
#endif

}  // namespace
