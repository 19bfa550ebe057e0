#include "date_text.h"

#include <initializer_list>

namespace ka_calendar {

namespace {
const int kDaysBefore[13] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
// The blanks atoi skips in the C locale.
bool IsAtoiSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// Writes v as "%0*d" does with the given width; returns the end.
char* PutNumber(char* out, int64_t v, int width) {
  const bool negative = v < 0;
  uint64_t magnitude = negative ? 0 - static_cast<uint64_t>(v) : static_cast<uint64_t>(v);
  char digits[20];
  int n = 0;
  do {
    digits[n++] = static_cast<char>('0' + magnitude % 10);
    magnitude /= 10;
  } while (magnitude != 0);
  if (negative) *out++ = '-';
  for (int pad = width - n - (negative ? 1 : 0); pad > 0; --pad) *out++ = '0';
  while (n > 0) *out++ = digits[--n];
  return out;
}
}  // namespace

size_t LengthUpTo(const char* s, size_t limit) {
  size_t n = 0;
  if (s != nullptr)
    while (n < limit && s[n] != 0) ++n;
  return n;
}

int Field(const char* s, int start, int count) {
  const size_t have = LengthUpTo(s, static_cast<size_t>(start + count));
  if (have <= static_cast<size_t>(start)) return 0;
  const char* p = s + start;
  const char* end = s + have;
  while (p != end && IsAtoiSpace(*p)) ++p;
  bool negative = false;
  if (p != end && (*p == '+' || *p == '-')) negative = *p++ == '-';
  int value = 0;
  for (; p != end && IsDigit(*p); ++p) value = value * 10 + (*p - '0');
  return negative ? -value : value;
}

bool DigitsAhead(const char* s, size_t n) {
  if (s == nullptr) return false;
  for (size_t i = 0; i < n; ++i)
    if (!IsDigit(s[i])) return false;  // the terminator is no digit either
  return true;
}

void WriteDate(char* dst, int64_t year, int64_t month, int64_t day) {
  char* p = PutNumber(dst, year, 4);
  p = PutNumber(p, month, 2);
  p = PutNumber(p, day, 2);
  *p = 0;
}

void WriteTimestamp(char* dst, int year, int month, int day, int hour, int minute, int second) {
  char* p = PutNumber(dst, year, 4);
  for (int v : {month, day, hour, minute, second}) p = PutNumber(p, v, 2);
  *p = 0;
}

bool IsLeapYear(int64_t year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int MonthLength(int64_t year, int64_t month) {
  if (month < 1 || month > 12) return 0;
  if (month == 2) return IsLeapYear(year) ? 29 : 28;
  return (month == 4 || month == 6 || month == 9 || month == 11) ? 30 : 31;
}

int DaysBeforeMonth(int month) { return kDaysBefore[month - 1]; }

}  // namespace ka_calendar
