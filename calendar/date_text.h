// Reading and writing the calendar's digit strings (internal to the
// calendar). Locale-independent: fields are read as atoi reads the copied
// characters, and numbers are written as "%0Nd" writes them.
#ifndef KALBOR_CALENDAR_DATE_TEXT_H
#define KALBOR_CALENDAR_DATE_TEXT_H

#include <cstddef>
#include <cstdint>

namespace ka_calendar {

// Characters of s before its terminator, looking no further than limit.
size_t LengthUpTo(const char* s, size_t limit);

// atoi of the count characters of s from start (fewer when s ends first):
// leading blanks, an optional sign, then digits; 0 when there are none.
int Field(const char* s, int start, int count);

// Whether the first n characters of s are all digits 0-9 (false when s has
// fewer).
bool DigitsAhead(const char* s, size_t n);

// "%04d%02d%02d" of the three values into dst, with its terminator.
void WriteDate(char* dst, int64_t year, int64_t month, int64_t day);
// "%04d%02d%02d%02d%02d%02d" of a date and a time of day.
void WriteTimestamp(char* dst, int year, int month, int day, int hour, int minute, int second);

// Gregorian rules, for any year (C's truncating division for negative ones).
bool IsLeapYear(int64_t year);
// Days in month m of year y; 0 for a month outside 1-12.
int MonthLength(int64_t year, int64_t month);
// Days before the first of month m (1-12) in a common year.
int DaysBeforeMonth(int month);

}  // namespace ka_calendar

#endif  // KALBOR_CALENDAR_DATE_TEXT_H
