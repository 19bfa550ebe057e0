// The workday test: Sundays and the fixed Korean solar and lunar holidays.
#include <kalbor/calendar.h>

#include <cstring>

#include "date_text.h"

namespace {

const char* const kSolarHolidays[] = {"0101", "0301", "0405", "0505", "0606", "0717", "0815", "1003", "1225"};
// Lunar 12-29 stands for the New Year's eve even when month 12 has 30 days
// (deliberate: the entry is fixed, not taken from the month lengths).
const char* const kLunarHolidays[] = {"1229", "0101", "0102", "0408", "0814", "0815", "0816"};

// The text from the fifth character on; empty when there is none.
const char* MonthAndDay(const char* date) {
  return ka_calendar::LengthUpTo(date, 4) < 4 ? "" : date + 4;
}

template <size_t N>
bool Listed(const char* monthDay, const char* const (&table)[N]) {
  for (const char* entry : table)
    if (std::strcmp(monthDay, entry) == 0) return true;
  return false;
}

}  // namespace

int ka_is_workdayA(const char* date) {
  if (ka_calc_weekdayA(date) == 0) return 0;  // an invalid date (-1) is no Sunday
  if (Listed(MonthAndDay(date), kSolarHolidays)) return 0;
  // Whatever the conversion answers, its text is compared: a leap month's day
  // matches the entry of the month number it carries.
  char lunar[KA_LUNAR_TEXT_SIZE] = "";
  if (date != nullptr) ka_solar2lunarA(date, lunar);
  return Listed(MonthAndDay(lunar), kLunarHolidays) ? 0 : 1;
}
