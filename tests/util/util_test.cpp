// The utilities: CRC-32 against a bit-at-a-time reference, the binary64
// pattern of doubles, the ranged random number, the debug sink and formatted
// debug messages, and the library's lock. The check value, the first random
// numbers, plain doubles, a captured message and a counter guarded by the
// lock are the utilities guide's examples.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <atomic>
#include <chrono>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {
// The reflected CRC-32 register one bit at a time, straight from the polynomial.
unsigned int BitwiseCrc(unsigned int crc, const unsigned char* p, size_t n) {
  uint32_t c = ~crc;
  for (size_t i = 0; i < n; ++i) {
    c ^= p[i];
    for (int bit = 0; bit < 8; ++bit) c = (c >> 1) ^ (0xEDB88320u & (0u - (c & 1u)));
  }
  return ~c;
}
std::vector<std::u16string> g_messages;
void Capture(const ka_wchar* text) { g_messages.emplace_back(text, text + std::char_traits<ka_wchar>::length(text)); }
}  // namespace

TEST(Crc32, EqualsTheBitwiseReferenceAtEveryLengthOffsetAndStartingValue) {
  const unsigned char* abc = reinterpret_cast<const unsigned char*>("abc");
  EXPECT_EQ(ka_crc32(0x1234, abc, 0), 0x1234u) << "nothing: crc unchanged";
  EXPECT_EQ(ka_crc32(0x1234, abc, -5), 0x1234u) << "a negative length likewise";
  EXPECT_EQ(ka_crc32(5, nullptr, 10), 0u) << "a null buffer: 0";
  std::mt19937 random(7);
  std::vector<unsigned char> data(4096 + 64);
  for (auto& b : data) b = static_cast<unsigned char>(random());
  for (size_t offset = 0; offset < 16; ++offset)
    for (size_t n = 0; n <= 400; ++n)
      ASSERT_EQ(ka_crc32(0, data.data() + offset, static_cast<int>(n)), BitwiseCrc(0, data.data() + offset, n))
          << offset << " " << n;
  // Long buffers across the folding seams, continuing a previous result.
  for (size_t n : {1023u, 1024u, 1025u, 4096u, 4111u})
    EXPECT_EQ(ka_crc32(0x12345678, data.data() + 3, static_cast<int>(n)), BitwiseCrc(0x12345678, data.data() + 3, n))
        << n;
}

TEST(Doubles, BytesExponentAndInfinityReadTheBinary64Pattern) {
  const double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
  struct { double value; unsigned char bytes[8]; int exponent, isinf; } rows[] = {
      {-0.0, {0x80, 0, 0, 0, 0, 0, 0, 0}, -1023, 0},                   // zero's field is 0; the sign survives
      {0.1, {0x3F, 0xB9, 0x99, 0x99, 0x99, 0x99, 0x99, 0x9A}, -4, 0},  // the low word matters
      {4.9406564584124654e-324, {0, 0, 0, 0, 0, 0, 0, 1}, -1023, 0},   // the smallest subnormal
      {inf, {0x7F, 0xF0, 0, 0, 0, 0, 0, 0}, 1024, 1},                  //
  };
  for (auto& r : rows) {
    char out[8];
    ka_dtobyte(r.value, out);
    const double back = ka_bytetod(out);
    EXPECT_EQ(std::memcmp(out, r.bytes, 8), 0) << r.value;
    EXPECT_EQ(std::memcmp(&back, &r.value, 8), 0) << r.value;  // bit for bit
    EXPECT_EQ(std::make_pair(ka_dblexponent(r.value), ka_isinf(r.value)), std::make_pair(r.exponent, r.isinf)) << r.value;
  }
  // A NaN counts as an infinity of its sign (deliberate: only the exponent
  // field is read), and survives the bytes.
  EXPECT_EQ(ka_isinf(-nan), -1);
  char nanBytes[8];
  ka_dtobyte(nan, nanBytes);
  EXPECT_TRUE(std::isnan(ka_bytetod(nanBytes)));
  ka_dtobyte(1.0, nullptr);  // a null buffer is harmless
  EXPECT_EQ(ka_bytetod(nullptr), 0.0);
}

TEST(Random, EveryCallStartsAPrivateGeneratorAtSeedZero) {
  // The first number of the generator seeded with 0 is 38 (deliberate: the
  // same arguments always give the same result).
  struct { int lo, hi, expected; } rows[] = {
      {INT_MIN, INT_MAX, INT_MIN},             // hi - lo + 1 wraps to 0: lo
      {10, 0, 12},                             // a reversed range: 38 % |-9|
      {INT_MAX, INT_MAX - 100, INT_MIN + 37},  // lo + 38 wraps around
  };
  std::srand(12345);
  const int first = std::rand();
  std::srand(12345);
  for (const auto& r : rows) EXPECT_EQ(ka_random(r.lo, r.hi), r.expected) << r.lo << ".." << r.hi;
  EXPECT_EQ(std::rand(), first) << "the application's generator is untouched";
}

TEST(DebugMessages, GoToTheInstalledSinkWholeAndNullRestoresTheDefault) {
  EXPECT_EQ(KaSetDebugSink(Capture), nullptr) << "the default was in place";
  g_messages.clear();
  KaDebugMsg(KA_W("%c"), 0xE9);  // the wide engine's sign-extended %c
  KaDebugMsg(nullptr);
  KaDebugMsg2(nullptr, -1);
  EXPECT_EQ(g_messages, (std::vector<std::u16string>{u"\uFFE9", u"", u"(null)(-1): "})) << "no line end is added";
  EXPECT_EQ(KaSetDebugSink(nullptr), Capture) << "returns the sink it replaces";
  EXPECT_EQ(KaSetDebugSink(nullptr), nullptr);
}

TEST(ThreadMutex, IsReentrantTryLockWaitsForAnotherOwnerAndAssignmentKeepsItsOwnLock) {
  Ka_ThreadMutex m, copy;
  std::atomic<int> stage{0};
  m.Lock();
  copy = m;  // copies nothing of the held lock
  EXPECT_EQ(m.TryLock(), 1) << "the owner takes it again at once";
  std::thread other([&] {
    copy.Lock();  // free, while m is held
    copy.Unlock();
    stage = 1;
    EXPECT_EQ(m.TryLock(), 1);  // blocks: it is not a try (deliberate)
    stage = 2;
    m.Unlock();
  });
  while (stage.load() == 0) std::this_thread::yield();
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  m.Unlock();
  EXPECT_EQ(stage.load(), 1) << "still held after one of two unlocks";
  m.Unlock();
  other.join();
  EXPECT_EQ(stage.load(), 2);
}
