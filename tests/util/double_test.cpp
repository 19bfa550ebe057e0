// Serialised doubles, their exponent and the infinity test.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>

namespace {
const double kInf = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();
}  // namespace

TEST(DoubleBytes, WritesTheBinary64PatternMostSignificantFirst) {
  struct { double value; unsigned char bytes[8]; } cases[] = {
      {0.0, {0, 0, 0, 0, 0, 0, 0, 0}},
      {-0.0, {0x80, 0, 0, 0, 0, 0, 0, 0}},                           // the sign survives
      {1.0, {0x3F, 0xF0, 0, 0, 0, 0, 0, 0}},
      {-2.0, {0xC0, 0, 0, 0, 0, 0, 0, 0}},
      {0.1, {0x3F, 0xB9, 0x99, 0x99, 0x99, 0x99, 0x99, 0x9A}},       // low word matters
      {DBL_MAX, {0x7F, 0xEF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}},
      {4.9406564584124654e-324, {0, 0, 0, 0, 0, 0, 0, 1}},           // smallest subnormal
      {kInf, {0x7F, 0xF0, 0, 0, 0, 0, 0, 0}},
  };
  for (auto& c : cases) {
    char out[8];
    ka_dtobyte(c.value, out);
    EXPECT_EQ(std::memcmp(out, c.bytes, 8), 0) << c.value;
    const double back = ka_bytetod(out);
    EXPECT_EQ(std::memcmp(&back, &c.value, 8), 0) << c.value;  // bit for bit
  }
  char nanBytes[8];
  ka_dtobyte(kNaN, nanBytes);
  EXPECT_TRUE(std::isnan(ka_bytetod(nanBytes)));
}

TEST(DoubleBytes, NullBuffersAreHarmless) {
  ka_dtobyte(1.0, nullptr);
  EXPECT_EQ(ka_bytetod(nullptr), 0.0);
}

TEST(DoubleExponent, IsTheUnbiasedExponentField) {
  struct { double value; int exponent; } cases[] = {
      {1.0, 0}, {8.0, 3}, {0.5, -1}, {-8.0, 3},   // the sign is ignored
      {0.0, -1023},                                // zero's field is 0
      {4.9406564584124654e-324, -1023},            // so is a subnormal's
      {DBL_MAX, 1023}, {kInf, 1024}, {kNaN, 1024},
  };
  for (auto& c : cases) EXPECT_EQ(ka_dblexponent(c.value), c.exponent) << c.value;
}

TEST(DoubleInfinity, CountsNaNsAsInfinitiesOfTheirSign) {
  struct { double value; int result; } cases[] = {
      {kInf, 1}, {-kInf, -1},
      {kNaN, 1}, {-kNaN, -1},  // deliberate: only the exponent field is read
      {DBL_MAX, 0}, {0.0, 0}, {-1.0, 0},
  };
  for (auto& c : cases) EXPECT_EQ(ka_isinf(c.value), c.result) << c.value;
}
