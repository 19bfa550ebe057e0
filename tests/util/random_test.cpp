// The ranged random number, the tick count and the last error code.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <thread>

#if defined(_WIN32)
#include <windows.h>
#endif

TEST(Random, EveryCallStartsTheGeneratorAtSeedZero) {
  // The first number of the generator seeded with 0 is 38 (deliberate: the
  // same arguments always give the same result).
  struct Row {
    int lo, hi, expected;
  } rows[] = {
      {1, 6, 3},                         // 1 + 38 % 6
      {0, 37, 0},                        // 38 % 38
      {10, 10, 10},                      // a one-number range
      {INT_MIN, INT_MAX, INT_MIN},       // hi - lo + 1 wraps to 0: lo
      {5, 4, 5},                         // hi = lo - 1 likewise
      {10, 0, 12},                       // a reversed range: 38 % |-9|
      {INT_MAX - 3, INT_MAX, INT_MAX - 3 + 2},
      {INT_MAX, INT_MAX - 100, INT_MIN + 37},  // lo + 38 wraps around
  };
  for (const Row& r : rows) {
    EXPECT_EQ(ka_random(r.lo, r.hi), r.expected) << r.lo << ".." << r.hi;
    EXPECT_EQ(ka_random(r.lo, r.hi), r.expected) << "again";
  }
}

TEST(Random, LeavesTheApplicationsGeneratorAlone) {
  std::srand(12345);
  const int first = std::rand();
  std::srand(12345);
  ka_random(1, 6);
  EXPECT_EQ(std::rand(), first);
}

TEST(Clock, TickCountAdvancesInMilliseconds) {
  const unsigned int before = ka_getcursec();
  std::this_thread::sleep_for(std::chrono::milliseconds(60));
  const unsigned int elapsed = ka_getcursec() - before;  // wraps like GetTickCount
  EXPECT_GE(elapsed, 50u);
  EXPECT_LT(elapsed, 600000u) << "milliseconds, not a finer unit";
}

TEST(LastError, ReportsTheThreadsLastErrorCode) {
#if defined(_WIN32)
  SetLastError(ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(ka_getlasterror(), static_cast<unsigned int>(ERROR_FILE_NOT_FOUND));
#else
  errno = ENOENT;
  EXPECT_EQ(ka_getlasterror(), static_cast<unsigned int>(ENOENT));
#endif
}
