// Byte buffers and escaping beside plain references in the same run: Base64
// encoding and decoding of 1 MB (beside a straightforward scalar codec and,
// when the build found it, the stringencoders library's modp_b64), XML and
// URL encoding and decoding of 1 MB of mixed text (beside straightforward
// std::string loops), and DecodeXml at three sizes, on mixed text and on its
// worst case for the ";" search. Each Ka_ figure has its peers right after
// it, under the same name with Peer (the scalar std::string codec or loop)
// or Modp in place of Ka. Throughput counts the bytes or text before
// encoding, for decoders too.
#include <benchmark/benchmark.h>
#include <kalbor/kalbor.h>

#include <random>
#include <string>

#if defined(KALBOR_HAVE_MODP_B64)
#include <modp_b64.h>
#endif

namespace {

const size_t kSize = 1 << 20;

const std::string& RandomBytes() {
  static const std::string bytes = [] {
    std::mt19937 random(1);
    std::string b(kSize, '\0');
    for (char& c : b) c = static_cast<char>(random());
    return b;
  }();
  return bytes;
}

// Words, blanks, line breaks, markup and a few bytes above 127: about one
// character in six needs an XML or URL escape.
const std::string& MixedText() {
  static const std::string text = [] {
    const char* pieces[] = {"the ", "quick ", "<b>", "brown</b> ", "fox & ", "\"jumps\" ", "over ",
                            "the 'lazy' ", "dog.\n", "caf\xC3\xA9 ", "a-b_c.d ", "100% ", "x=1;y=2 "};
    std::string t;
    for (int i = 0; t.size() < kSize; i = (i * 7 + 3) % 13) t += pieces[i];
    t.resize(kSize);
    return t;
  }();
  return text;
}

// ---- Base64 references ----------------------------------------------------------

const char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string RefEncode(const std::string& in) {
  std::string out;
  out.reserve((in.size() + 2) / 3 * 4);
  size_t i = 0;
  for (; i + 3 <= in.size(); i += 3) {
    const unsigned b0 = static_cast<unsigned char>(in[i]), b1 = static_cast<unsigned char>(in[i + 1]),
                   b2 = static_cast<unsigned char>(in[i + 2]);
    out += kAlphabet[b0 >> 2];
    out += kAlphabet[((b0 & 3) << 4) | (b1 >> 4)];
    out += kAlphabet[((b1 & 15) << 2) | (b2 >> 6)];
    out += kAlphabet[b2 & 63];
  }
  if (in.size() - i == 2) {
    const unsigned b0 = static_cast<unsigned char>(in[i]), b1 = static_cast<unsigned char>(in[i + 1]);
    out += kAlphabet[b0 >> 2];
    out += kAlphabet[((b0 & 3) << 4) | (b1 >> 4)];
    out += kAlphabet[(b1 & 15) << 2];
    out += '=';
  } else if (in.size() - i == 1) {
    const unsigned b0 = static_cast<unsigned char>(in[i]);
    out += kAlphabet[b0 >> 2];
    out += kAlphabet[(b0 & 3) << 4];
    out += "==";
  }
  return out;
}

std::string RefDecode(const std::string& text) {
  int value[256];
  for (int& v : value) v = -1;
  for (int i = 0; i < 64; ++i) value[static_cast<unsigned char>(kAlphabet[i])] = i;
  std::string out;
  out.reserve(text.size() / 4 * 3);
  unsigned bits = 0;
  int count = 0;
  for (unsigned char c : text) {
    if (value[c] < 0) break;
    bits = bits << 6 | static_cast<unsigned>(value[c]);
    count += 6;
    if (count >= 8) {
      count -= 8;
      out += static_cast<char>(bits >> count);
    }
  }
  return out;
}

const std::string& EncodedBytes() {
  static const std::string text = RefEncode(RandomBytes());
  return text;
}

void BM_Ka_Base64_Encode1M(benchmark::State& state) {
  const Ka_Buffer bytes(reinterpret_cast<const unsigned char*>(RandomBytes().data()), kSize);
  for (auto _ : state) {
    Ka_AString text = bytes.EncodeBase64();
    benchmark::DoNotOptimize(text);
  }
  if (std::string(bytes.EncodeBase64()) != EncodedBytes()) state.SkipWithError("wrong text");
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kSize));
}
void BM_Peer_Base64_Encode1M(benchmark::State& state) {
  for (auto _ : state) {
    std::string text = RefEncode(RandomBytes());
    benchmark::DoNotOptimize(text);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kSize));
}

void BM_Ka_Base64_Decode1M(benchmark::State& state) {
  const Ka_AString text(EncodedBytes().c_str());
  Ka_Buffer bytes;
  for (auto _ : state) {
    bytes.DecodeBase64(text, text.GetLength());
    benchmark::DoNotOptimize(bytes);
  }
  if (std::string(static_cast<const char*>(bytes), static_cast<size_t>(bytes.GetLength())) != RandomBytes())
    state.SkipWithError("wrong bytes");
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kSize));
}
void BM_Peer_Base64_Decode1M(benchmark::State& state) {
  for (auto _ : state) {
    std::string bytes = RefDecode(EncodedBytes());
    benchmark::DoNotOptimize(bytes);
  }
  if (RefDecode(EncodedBytes()) != RandomBytes()) state.SkipWithError("wrong bytes");
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kSize));
}

#if defined(KALBOR_HAVE_MODP_B64)
void BM_Modp_Base64_Encode1M(benchmark::State& state) {
  std::string text(modp_b64_encode_len(kSize), '\0');
  for (auto _ : state) {
    const size_t n = modp_b64_encode(&text[0], RandomBytes().data(), kSize);
    benchmark::DoNotOptimize(n);
    benchmark::DoNotOptimize(text);
  }
  if (text.compare(0, EncodedBytes().size(), EncodedBytes()) != 0) state.SkipWithError("wrong text");
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kSize));
}
void BM_Modp_Base64_Decode1M(benchmark::State& state) {
  std::string bytes(modp_b64_decode_len(EncodedBytes().size()), '\0');
  size_t n = 0;
  for (auto _ : state) {
    n = modp_b64_decode(&bytes[0], EncodedBytes().data(), EncodedBytes().size());
    benchmark::DoNotOptimize(bytes);
  }
  if (n != kSize || bytes.compare(0, kSize, RandomBytes()) != 0) state.SkipWithError("wrong bytes");
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kSize));
}
#endif

// ---- XML ------------------------------------------------------------------------

std::string RefEncodeXml(const std::string& in) {
  std::string out;
  out.reserve(in.size() + in.size() / 4);
  for (char c : in) {
    switch (c) {
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '&': out += "&amp;"; break;
      case '"': out += "&quot;"; break;
      case '\'': out += "&apos;"; break;
      case '\t': out += "&#9;"; break;
      case '\n': out += "&#10;"; break;
      case '\r': out += "&#13;"; break;
      case ' ': out += "&#32;"; break;
      default: out += c;
    }
  }
  return out;
}

// The five names and decimal or hex references below 128, the rest as text.
std::string RefDecodeXml(const std::string& in) {
  static const std::pair<std::string, char> names[] = {
      {"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&apos;", '\''}};
  std::string out;
  out.reserve(in.size());
  for (size_t i = 0; i < in.size();) {
    if (in[i] != '&') {
      out += in[i++];
      continue;
    }
    bool named = false;
    for (const auto& n : names)
      if (in.compare(i, n.first.size(), n.first) == 0) {
        out += n.second;
        i += n.first.size();
        named = true;
        break;
      }
    if (named) continue;
    const size_t semicolon = in.find(';', i);
    if (i + 1 < in.size() && in[i + 1] == '#' && semicolon != std::string::npos) {
      const bool hex = in[i + 2] == 'x' || in[i + 2] == 'X';
      out += static_cast<char>(std::stoi(in.substr(i + (hex ? 3 : 2), semicolon - i), nullptr, hex ? 16 : 10));
      i = semicolon + 1;
    } else {
      out += in[i++];
    }
  }
  return out;
}

const std::string& EncodedXml() {
  static const std::string text = RefEncodeXml(MixedText());
  return text;
}

void BM_Ka_Escape_EncodeXml1M(benchmark::State& state) {
  const Ka_AString text(MixedText().c_str());
  for (auto _ : state) {
    Ka_AString encoded = text.EncodeXml();
    benchmark::DoNotOptimize(encoded);
  }
  if (std::string(text.EncodeXml()) != EncodedXml()) state.SkipWithError("wrong text");
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kSize));
}
void BM_Peer_Escape_EncodeXml1M(benchmark::State& state) {
  for (auto _ : state) {
    std::string encoded = RefEncodeXml(MixedText());
    benchmark::DoNotOptimize(encoded);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kSize));
}

void BM_Ka_Escape_DecodeXml1M(benchmark::State& state) {
  const Ka_AString encoded(EncodedXml().c_str());
  for (auto _ : state) {
    Ka_AString text = encoded.DecodeXml();
    benchmark::DoNotOptimize(text);
  }
  if (std::string(encoded.DecodeXml()) != MixedText()) state.SkipWithError("wrong text");
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kSize));
}
void BM_Peer_Escape_DecodeXml1M(benchmark::State& state) {
  for (auto _ : state) {
    std::string text = RefDecodeXml(EncodedXml());
    benchmark::DoNotOptimize(text);
  }
  if (RefDecodeXml(EncodedXml()) != MixedText()) state.SkipWithError("wrong text");
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kSize));
}

// ---- URL ------------------------------------------------------------------------

bool UrlKept(unsigned char c) {
  return (c >= '0' && c <= ';') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
         std::string("$_.!*'()").find(static_cast<char>(c)) != std::string::npos;
}

std::string RefEncodeUrl(const std::string& in) {
  static const char hex[] = "0123456789ABCDEF";
  std::string out;
  out.reserve(in.size() + in.size() / 2);
  for (char c : in) {
    const unsigned char b = static_cast<unsigned char>(c);
    if (UrlKept(b)) {
      out += c;
    } else {
      out += '%';
      out += hex[b >> 4];
      out += hex[b & 15];
    }
  }
  return out;
}

std::string RefDecodeUrl(const std::string& in) {
  std::string out;
  out.reserve(in.size());
  for (size_t i = 0; i < in.size();) {
    if (in[i] == '%' && i + 2 < in.size()) {
      out += static_cast<char>(std::stoi(in.substr(i + 1, 2), nullptr, 16));
      i += 3;
    } else {
      out += in[i++];
    }
  }
  return out;
}

const std::string& EncodedUrl() {
  static const std::string text = RefEncodeUrl(MixedText());
  return text;
}

void BM_Ka_Escape_EncodeUrl1M(benchmark::State& state) {
  const Ka_AString text(MixedText().c_str());
  for (auto _ : state) {
    Ka_AString encoded = text.EncodeUrl();
    benchmark::DoNotOptimize(encoded);
  }
  if (std::string(text.EncodeUrl()) != EncodedUrl()) state.SkipWithError("wrong text");
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kSize));
}
void BM_Peer_Escape_EncodeUrl1M(benchmark::State& state) {
  for (auto _ : state) {
    std::string encoded = RefEncodeUrl(MixedText());
    benchmark::DoNotOptimize(encoded);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kSize));
}

void BM_Ka_Escape_DecodeUrl1M(benchmark::State& state) {
  const Ka_AString encoded(EncodedUrl().c_str());
  for (auto _ : state) {
    Ka_AString text = encoded.DecodeUrl();
    benchmark::DoNotOptimize(text);
  }
  if (std::string(encoded.DecodeUrl()) != MixedText()) state.SkipWithError("wrong text");
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kSize));
}
void BM_Peer_Escape_DecodeUrl1M(benchmark::State& state) {
  for (auto _ : state) {
    std::string text = RefDecodeUrl(EncodedUrl());
    benchmark::DoNotOptimize(text);
  }
  if (RefDecodeUrl(EncodedUrl()) != MixedText()) state.SkipWithError("wrong text");
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kSize));
}

// Escaping is linear: 64 KB, 256 KB and 1 MB of the same text.
void BM_Ka_Escape_DecodeXmlBySize(benchmark::State& state) {
  const std::string encoded = RefEncodeXml(MixedText().substr(0, static_cast<size_t>(state.range(0))));
  const Ka_AString text(encoded.c_str());
  for (auto _ : state) {
    Ka_AString decoded = text.DecodeXml();
    benchmark::DoNotOptimize(decoded);
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

// The worst case of the ";" search: "&#" over and over with no ";" at all.
void BM_Ka_Escape_DecodeXmlNoSemicolonBySize(benchmark::State& state) {
  std::string hashes;
  while (hashes.size() < static_cast<size_t>(state.range(0))) hashes += "&#1";
  const Ka_AString text(hashes.c_str());
  for (auto _ : state) {
    Ka_AString decoded = text.DecodeXml();
    benchmark::DoNotOptimize(decoded);
  }
  if (std::string(text.DecodeXml()) != hashes) state.SkipWithError("wrong text");
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

}  // namespace

BENCHMARK(BM_Ka_Base64_Encode1M);
BENCHMARK(BM_Peer_Base64_Encode1M);
#if defined(KALBOR_HAVE_MODP_B64)
BENCHMARK(BM_Modp_Base64_Encode1M);
#endif
BENCHMARK(BM_Ka_Base64_Decode1M);
BENCHMARK(BM_Peer_Base64_Decode1M);
#if defined(KALBOR_HAVE_MODP_B64)
BENCHMARK(BM_Modp_Base64_Decode1M);
#endif
BENCHMARK(BM_Ka_Escape_EncodeXml1M);
BENCHMARK(BM_Peer_Escape_EncodeXml1M);
BENCHMARK(BM_Ka_Escape_DecodeXml1M);
BENCHMARK(BM_Peer_Escape_DecodeXml1M);
BENCHMARK(BM_Ka_Escape_EncodeUrl1M);
BENCHMARK(BM_Peer_Escape_EncodeUrl1M);
BENCHMARK(BM_Ka_Escape_DecodeUrl1M);
BENCHMARK(BM_Peer_Escape_DecodeUrl1M);
BENCHMARK(BM_Ka_Escape_DecodeXmlBySize)->Arg(64 << 10)->Arg(256 << 10)->Arg(1 << 20);
BENCHMARK(BM_Ka_Escape_DecodeXmlNoSemicolonBySize)->Arg(64 << 10)->Arg(256 << 10)->Arg(1 << 20);
