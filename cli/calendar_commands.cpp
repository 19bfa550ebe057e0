// The kalbor tool's calendar commands: lunar, solar, workday, days,
// adddays, addmonths, weekday and today.
#include <kalbor/kalbor.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "tool.h"

namespace kalbor_cli {

namespace {

// A date argument: YYYYMMDD, or YYYY-MM-DD turned into it. Only the form is
// checked here.
bool ParseDateText(const char* s, char out[9]) {
  const size_t n = std::strlen(s);
  size_t k = 0;
  for (size_t i = 0; i < n; ++i) {
    const bool dash = n == 10 && (i == 4 || i == 7);
    if (dash ? s[i] != '-' : (s[i] < '0' || s[i] > '9')) return false;
    if (!dash) out[k++] = s[i];
  }
  out[k] = 0;
  return k == 8 && (n == 8 || n == 10);
}

// A Gregorian date argument, valid as the library's ka_is_dateA judges it.
bool ParseDate(const char* s, char out[9]) { return ParseDateText(s, out) && ka_is_dateA(out) != 0; }

int TwoDigits(const char* p) { return (p[0] - '0') * 10 + (p[1] - '0'); }

// The day number of a lunar year and regular month's first day; -1 outside
// the library's lunar table.
int LunarMonthStart(int year, int month) {
  Ka_AString lunar;
  lunar.Format("%04d%02d01", year, month);
  char solar[KA_DATE_TEXT_SIZE];
  return ka_lunar2solarA(lunar, solar) == 0 ? ka_calc_basedaysA(solar) : -1;
}

// The last Gregorian day of the lunar table's last year, lunar 2049-12-29
// (ka_solar2lunarA takes Gregorian years up to 2049 only).
const char kLunarTableEnd[] = "20500122";

// The lunar date of a valid Gregorian date, as YYYYMMDD, and whether it lies
// in a leap month. False outside the lunar table. ka_solar2lunarA's year
// walk deliberately ends in lunar 2004; later dates (the function writes
// month 13 for them) are found from the month starts that ka_lunar2solarA
// gives, which cover the whole table.
bool SolarToLunar(const char* solar, std::string* lunar, bool* leap) {
  char text[KA_LUNAR_TEXT_SIZE];
  const int r = ka_solar2lunarA(solar, text);
  if (r == -2 || std::strcmp(solar, kLunarTableEnd) > 0) return false;
  if (r >= 0 && std::strlen(text) == 8 && TwoDigits(text + 4) <= 12) {
    if (TwoDigits(text + 6) < 1) return false;  // lunar 1920, before the table
    *lunar = text;
    *leap = r == 0;
    return true;
  }
  const int day = ka_calc_basedaysA(solar);
  const int year = (solar[0] - '0') * 1000 + (solar[1] - '0') * 100 + TwoDigits(solar + 2);
  for (int y = year; y >= year - 1; --y) {
    for (int m = 12; m >= 1; --m) {
      const int start = LunarMonthStart(y, m);
      if (start < 0 || start > day) continue;
      const int next = m < 12 ? LunarMonthStart(y, m + 1) : LunarMonthStart(y + 1, 1);
      int d = day - start + 1;
      *leap = false;
      if (next >= 0 && next - start > 30) {
        // A leap month follows month m. ka_lunar2solarA refuses a day beyond
        // the leap month's length, which tells 29 days from 30.
        Ka_AString probe;
        probe.Format("%04d%02d30", y, m);
        char unused[KA_DATE_TEXT_SIZE];
        const int leapLength = ka_lunar2solarA(probe, unused) < 0 ? 29 : 30;
        const int length = next - start - leapLength;
        if (d > length) {
          d -= length;
          *leap = true;
        }
      }
      Ka_AString out;
      out.Format("%04d%02d%02d", y, m, d);
      *lunar = static_cast<const char*>(out);
      return true;
    }
  }
  return false;
}

int BadDate(const Args& a, const char* s) { return UsageError(a.command, "not a valid date: '%s'", s); }

}  // namespace

int RunLunar(const Args& a) {
  if (int e = ExpectCount(a, 1, 1)) return e;
  char date[9];
  if (!ParseDate(a.list[0], date)) return BadDate(a, a.list[0]);
  std::string lunar;
  bool leap = false;
  if (!SolarToLunar(date, &lunar, &leap))
    return Failure("no lunar date for %s: the lunar table covers 1921-02-08 to 2050-01-22", date);
  return Print(leap ? lunar + " leap" : lunar);
}

int RunSolar(const Args& a) {
  if (int e = ExpectCount(a, 1, 1)) return e;
  char date[9];
  if (!ParseDateText(a.list[0], date) || TwoDigits(date + 4) < 1 || TwoDigits(date + 4) > 12 ||
      TwoDigits(date + 6) < 1 || TwoDigits(date + 6) > 30)
    return UsageError(a.command, "not a valid lunar date: '%s'", a.list[0]);
  char solar[KA_DATE_TEXT_SIZE];
  if (ka_lunar2solarA(date, solar) != 0)
    return Failure("no Gregorian date for lunar %s: the lunar table covers the lunar years 1921-2049", date);
  return Print(solar);
}

namespace {

// The fixed lunar holidays of the library's workday test, MMDD: the New
// Year's eve (as 12-29, as the library has it), New Year, Buddha's birthday
// and Chuseok.
const char* const kLunarHolidays[] = {"1229", "0101", "0102", "0408", "0814", "0815", "0816"};

}  // namespace

int RunWorkday(const Args& a) {
  if (int e = ExpectCount(a, 1, 1)) return e;
  char date[9];
  if (!ParseDate(a.list[0], date)) return BadDate(a, a.list[0]);
  bool workday = ka_is_workdayA(date) != 0;
  // ka_is_workdayA finds lunar dates with ka_solar2lunarA, whose walk ends
  // in lunar 2004; the lunar date found here holds for the whole table.
  std::string lunar;
  bool leap = false;
  if (workday && SolarToLunar(date, &lunar, &leap))
    for (const char* holiday : kLunarHolidays)
      if (lunar.compare(4, 4, holiday) == 0) workday = false;
  return Print(workday ? "workday" : "holiday");
}

int RunDays(const Args& a) {
  if (int e = ExpectCount(a, 2, 2)) return e;
  char d1[9], d2[9];
  if (!ParseDate(a.list[0], d1)) return BadDate(a, a.list[0]);
  if (!ParseDate(a.list[1], d2)) return BadDate(a, a.list[1]);
  return Print(std::to_string(ka_calc_daysA(d1, d2)));
}

namespace {

int RunAdd(const Args& a, int (*add)(const char*, int, char*)) {
  if (int e = ExpectCount(a, 2, 2)) return e;
  char date[9];
  if (!ParseDate(a.list[0], date)) return BadDate(a, a.list[0]);
  long long n = 0;
  if (!ParseInteger(a.list[1], INT32_MIN, INT32_MAX, &n))
    return UsageError(a.command, "not a whole number from -2147483648 to 2147483647: '%s'", a.list[1]);
  char out[KA_DATE_TEXT_SIZE];
  add(date, static_cast<int>(n), out);
  return Print(out);
}

}  // namespace

int RunAddDays(const Args& a) { return RunAdd(a, ka_add_daysA); }
int RunAddMonths(const Args& a) { return RunAdd(a, ka_add_monthA); }

int RunWeekday(const Args& a) {
  static const char* const kNames[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
  if (int e = ExpectCount(a, 1, 1)) return e;
  char date[9];
  if (!ParseDate(a.list[0], date)) return BadDate(a, a.list[0]);
  const int w = ka_calc_weekdayA(date);
  return Print(w >= 0 && w <= 6 ? kNames[w] : "?");
}

int RunToday(const Args& a) {
  if (int e = ExpectCount(a, 0, 0)) return e;
  char now[15];
  return Print(ka_todayA(now));
}

}  // namespace kalbor_cli
