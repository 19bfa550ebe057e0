// Base64: Ka_Buffer's encoder and decoder and the strings' DecodeBase64.
//
// The alphabet is RFC 4648's standard one with "=" padding. The tables are
// built at compile time from it: a table of character pairs turns twelve
// input bits into two output characters at once, and four decoding tables
// hold each character's six bits already shifted to their place in a group,
// so that a group of four characters decodes with four loads and three ORs.
#include <kalbor/buffer.h>
#include <kalbor/strings.h>

#include <cstring>

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr uint32_t kNotAlphabet = 0x80000000u;

struct Base64Tables {
  char pairs[4096][2];  // the two characters of twelve bits
  int32_t value[256];   // a character's six bits, or -1 for any other byte
  uint32_t at0[256];    // the six bits placed as the first character of a group
  uint32_t at1[256];
  uint32_t at2[256];
  uint32_t at3[256];  // placed last: the value itself
};

constexpr Base64Tables MakeTables() {
  Base64Tables t{};
  for (int i = 0; i < 4096; ++i) {
    t.pairs[i][0] = kAlphabet[i >> 6];
    t.pairs[i][1] = kAlphabet[i & 63];
  }
  for (int b = 0; b < 256; ++b) t.value[b] = -1;
  for (int v = 0; v < 64; ++v) t.value[static_cast<unsigned char>(kAlphabet[v])] = v;
  for (int b = 0; b < 256; ++b) {
    // Any other byte sets a bit that no group of alphabet characters has.
    const uint32_t v = t.value[b] < 0 ? kNotAlphabet : static_cast<uint32_t>(t.value[b]);
    t.at0[b] = v << 18 | (v & kNotAlphabet);
    t.at1[b] = v << 12 | (v & kNotAlphabet);
    t.at2[b] = v << 6 | (v & kNotAlphabet);
    t.at3[b] = v;
  }
  return t;
}

constexpr Base64Tables kTables = MakeTables();

inline bool IsAlphabet(unsigned char c) { return kTables.value[c] >= 0; }

// The 24 bits of a group of four characters, with kNotAlphabet set when
// any of them is not an alphabet character.
inline uint32_t Group(const unsigned char* p) {
  return kTables.at0[p[0]] | kTables.at1[p[1]] | kTables.at2[p[2]] | kTables.at3[p[3]];
}

inline void Put3(unsigned char* out, uint32_t bits) {
  out[0] = static_cast<unsigned char>(bits >> 16);
  out[1] = static_cast<unsigned char>(bits >> 8);
  out[2] = static_cast<unsigned char>(bits);
}

// The 24 bits of a and then of b, as six bytes at out, with one store of
// eight: out must have two bytes of room past the six.
inline void Put6(unsigned char* out, uint32_t a, uint32_t b) {
  uint64_t bits = uint64_t(a) << 40 | uint64_t(b) << 16;
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
  bits = __builtin_bswap64(bits);
#endif
  std::memcpy(out, &bits, 8);
}

// Decodes whole groups of the first `known` bytes at p into out while all
// their characters are in the alphabet; returns the groups decoded. out has
// room for 3 x (known / 4) bytes and two more.
size_t DecodeGroups(const unsigned char* p, size_t known, unsigned char* out) {
  const size_t groups = known / 4;
  size_t g = 0;
  for (; g + 2 <= groups; g += 2) {
    const uint32_t a = Group(p + 4 * g), b = Group(p + 4 * g + 4);
    if ((a | b) & kNotAlphabet) break;
    Put6(out + 3 * g, a, b);
  }
  for (; g < groups; ++g) {
    const uint32_t a = Group(p + 4 * g);
    if (a & kNotAlphabet) break;
    Put3(out + 3 * g, a);
  }
  return g;
}

// The length of the run of alphabet characters at p. The first `known`
// bytes may be read in any order (the caller vouches for them); past them
// the run is read one byte at a time and ends at the first other byte, so
// nothing after it is touched.
size_t RunLength(const unsigned char* p, size_t known) {
  size_t i = 0;
  for (; i + 8 <= known; i += 8) {
    const int32_t any = kTables.value[p[i]] | kTables.value[p[i + 1]] | kTables.value[p[i + 2]] |
                        kTables.value[p[i + 3]] | kTables.value[p[i + 4]] | kTables.value[p[i + 5]] |
                        kTables.value[p[i + 6]] | kTables.value[p[i + 7]];
    if (any < 0) break;  // a byte of these eight ends the run
  }
  while (IsAlphabet(p[i])) ++i;
  return i;
}

void Encode(const unsigned char* in, size_t length, char* out) {
  size_t i = 0;
  for (; i + 12 <= length; i += 12, out += 16) {
    for (int k = 0; k < 4; ++k) {
      const uint32_t bits = uint32_t(in[i + 3 * k]) << 16 | uint32_t(in[i + 3 * k + 1]) << 8 | in[i + 3 * k + 2];
      std::memcpy(out + 4 * k, kTables.pairs[bits >> 12], 2);
      std::memcpy(out + 4 * k + 2, kTables.pairs[bits & 0xFFF], 2);
    }
  }
  for (; i + 3 <= length; i += 3, out += 4) {
    const uint32_t bits = uint32_t(in[i]) << 16 | uint32_t(in[i + 1]) << 8 | in[i + 2];
    std::memcpy(out, kTables.pairs[bits >> 12], 2);
    std::memcpy(out + 2, kTables.pairs[bits & 0xFFF], 2);
  }
  if (length - i == 2) {
    const uint32_t bits = uint32_t(in[i]) << 16 | uint32_t(in[i + 1]) << 8;
    std::memcpy(out, kTables.pairs[bits >> 12], 2);
    out[2] = kAlphabet[(bits >> 6) & 63];
    out[3] = '=';
  } else if (length - i == 1) {
    std::memcpy(out, kTables.pairs[uint32_t(in[i]) << 4], 2);
    out[2] = '=';
    out[3] = '=';
  }
}

// Decodes the run of `run` alphabet characters at p into out, which holds
// 3 x ceil(run / 4) bytes; returns the bytes that count. A last group of
// fewer than four characters is read as if zero bits followed it: only the
// bytes it fully determines count, except that a lone character gives one
// byte (its six bits, then two zero bits).
size_t Decode(const unsigned char* p, size_t run, unsigned char* out) {
  const size_t groups = run / 4;
  for (size_t g = 0; g < groups; ++g) Put3(out + 3 * g, Group(p + 4 * g));
  const size_t rest = run % 4;
  if (rest == 0) return 3 * groups;
  unsigned char last[4] = {'A', 'A', 'A', 'A'};  // 'A' is six zero bits
  std::memcpy(last, p + 4 * groups, rest);
  Put3(out + 3 * groups, Group(last));
  // Two bytes are cut when the third character is missing, one otherwise.
  return 3 * groups + 3 - (rest < 3 ? 2 : 1);
}

}  // namespace

Ka_AString Ka_Buffer::EncodeBase64() const {
  Ka_AString text;
  const long length = GetLength();
  if (length == 0) return text;
  const long long size = 4LL * ((length + 2LL) / 3);
  if (size > Ka_AString::Traits::kMaxLength) return text;
  char* const out = text.GetSafeBuffer(static_cast<int>(size));
  if (out != nullptr) Encode(m_pData, static_cast<size_t>(length), out);
  return text;
}

const Ka_Buffer& Ka_Buffer::DecodeBase64(const char* text, long n) {
  if (text == nullptr || n == 0) {
    Release();
    return *this;
  }
  _DecodeBase64(text, n);
  return *this;
}

void Ka_Buffer::_DecodeBase64(const char* text, long n) {
  // text may lie in this buffer's own block: keep that alive while decoding.
  Ka_Buffer keep(*this);
  Release();
  const unsigned char* p = reinterpret_cast<const unsigned char*>(text);
  // The bytes that may be read in any order: the n given, or up to the zero.
  size_t known = n > 0 ? static_cast<size_t>(n) : std::strlen(text);
  while (*p == ' ' || *p == '\t') {
    ++p;
    if (known > 0) --known;
  }
  // Usually the run ends within the known bytes, close to their end: decode
  // straight into a block sized for all of them, checking the characters
  // as they are decoded, and keep it when the run's size falls in the same
  // size group. Otherwise measure the run first and decode it again.
  const size_t most = 3 * ((known + 3) / 4);
  if (most > 0 && most <= static_cast<size_t>(kMaxLength)) {
    unsigned char* const out = GetSafeBuffer(static_cast<long>(most));
    if (out == nullptr) return;
    const size_t groups = DecodeGroups(p, known, out);
    const size_t run = 4 * groups + RunLength(p + 4 * groups, known - 4 * groups);
    const size_t size = 3 * ((run + 3) / 4);
    if (size > 0 && size <= most &&
        Ka_BufferPool::GetBufferGroup(static_cast<int>(size)) == Ka_BufferPool::GetBufferGroup(static_cast<int>(most))) {
      const size_t decoded = 3 * groups + Decode(p + 4 * groups, run - 4 * groups, out + 3 * groups);
      out[decoded] = 0;
      GetData()->nDataLength = static_cast<int32_t>(decoded);
      return;
    }
    Release();
  }
  // Deliberately not bounded by n: the run goes on to the first non-alphabet byte.
  const size_t run = RunLength(p, known);
  const size_t size = 3 * ((run + 3) / 4);
  if (size == 0 || size > static_cast<size_t>(kMaxLength)) return;
  unsigned char* const out = GetSafeBuffer(static_cast<long>(size));
  if (out == nullptr) return;
  const size_t decoded = Decode(p, run, out);
  out[decoded] = 0;
  GetData()->nDataLength = static_cast<int32_t>(decoded);
}

Ka_Buffer Ka_AString::DecodeBase64() const {
  Ka_Buffer bytes;
  if (GetLength() > 0) bytes.DecodeBase64(m_pchData, GetLength());
  return bytes;
}

Ka_Buffer Ka_WString::DecodeBase64(unsigned int codepage) const {
  const Ka_AString narrow(m_pchData, -1, codepage);
  return narrow.DecodeBase64();
}
