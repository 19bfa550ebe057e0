// The workday test: Sundays, solar and lunar holidays.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

TEST(Workday, SundaysAndHolidaysAreDaysOff) {
  struct { const char* date; int workday; } cases[] = {
      {nullptr, 1},       // no date: a working day
      {"", 1},
      {"20240303", 0},    // a Sunday
      {"20240302", 1},    // a Saturday that is no holiday
      {"20240301", 0},    // a solar holiday on a Friday
      {"202403010", 1},   // nine characters never match the solar table
      {"20040122", 0},    // lunar 2004-01-01
      {"20040121", 1},    // lunar 2003-12-30, the real eve, works (deliberate)
      {"20040120", 0},    // lunar 2003-12-29 is the fixed eve entry
      {"20240917", 1},    // lunar 2024-08-15 lies past the walk's end: not found (deliberate)
      {"20240230", 1},    // no such date: not a Sunday, no holiday
  };
  for (auto& c : cases) EXPECT_EQ(ka_is_workdayA(c.date), c.workday) << (c.date ? c.date : "(null)");
}
