// Kalbor400U calendar: date arithmetic on digit strings.
//
// Dates are "YYYYMMDD" (month questions take "YYYYMM", year questions
// "YYYY") in the proleptic Gregorian calendar; day number 1 is 0001-01-01 and
// weekday 0 is Sunday. Dates convert between the Gregorian and the Korean
// lunisolar calendar (lunar years 1921-2049), and a date can be tested
// against Sundays and the fixed Korean solar and lunar holidays. Every
// function has an A form on char text and a W form on ka_wchar text; a W
// form narrows a fixed number of units of its input (8, or 6 for the month
// length, 4 for the leap year), calls the A form and widens 8 characters of a
// date result (12 for ka_todayW): the limits are deliberate. A null input to
// a W form counts as an empty text; a null destination of a W form makes it
// compute and write nothing.
//
// Results are written as "%04d%02d%02d" writes them, by the library's own
// locale-independent code. Fields are read as atoi reads two or four copied
// characters: leading blanks, an optional sign, then digits.
//
// Destinations:
//  - a date result (ka_add_daysA, ka_add_monthA, ka_lunar2solarA) is 8
//    characters and a terminator for years 0 to 9999; for any argument,
//    KA_DATE_TEXT_SIZE bytes hold it (far offsets give years of up to 9
//    digits and a sign);
//  - ka_solar2lunarA writes at most KA_LUNAR_TEXT_SIZE bytes: after the
//    table's walk ends (solar dates from 2005-01-22 on) it writes month 13 and
//    a day of up to 5 digits, and before lunar 1921-01-01 a day of 0 or below;
//  - ka_todayA writes 14 digits and a terminator (15 bytes);
//  - a W form's date result is 8 units and a terminator (9 units); ka_todayW
//    writes 12 units and a terminator (13 units).
#ifndef KALBOR_CALENDAR_H
#define KALBOR_CALENDAR_H

#include <kalbor/platform.h>

#define KA_DATE_TEXT_SIZE 16
#define KA_LUNAR_TEXT_SIZE 12

// 1 when the first four characters are digits of a leap year, else 0 (also
// for null and for fewer than four characters).
KA_API int ka_is_leapyearA(const char* s);
KA_API int ka_is_leapyearW(const ka_wchar* s);

// Days in the month YYYYMM (28-31); 0 for null, fewer than 6 characters or a
// month outside 1-12; -1 when one of the first 6 characters is not a digit.
KA_API int ka_calc_lastdateA(const char* s);
KA_API int ka_calc_lastdateW(const ka_wchar* s);

// The day of month (1-31) of a valid date, else 0. Every character must be a
// digit; deliberately the length is not checked: a 7-digit text takes its
// seventh digit as the day, and digits past the eighth are ignored. Year 0000
// is valid.
KA_API int ka_is_dateA(const char* s);
KA_API int ka_is_dateW(const ka_wchar* s);

// The day number of a valid date (1 for 0001-01-01); -1 when ka_is_dateA
// gives 0. In year 0000 the count's divisions truncate toward zero, so its
// day numbers run one above a true count (0000-12-31 also gives 1), and a
// distance from a date in it to one after it is one short (deliberate).
KA_API int ka_calc_basedaysA(const char* s);
KA_API int ka_calc_basedaysW(const ka_wchar* s);

// Days between two dates, never negative; -1 when either is invalid.
KA_API int ka_calc_daysA(const char* a, const char* b);
KA_API int ka_calc_daysW(const ka_wchar* a, const ka_wchar* b);

// The weekday 0 (Sunday) to 6; -1 for null or an invalid date. Day numbers
// below 1 (dates early in year 0000) are counted on the same seven-day cycle.
KA_API int ka_calc_weekdayA(const char* s);
KA_API int ka_calc_weekdayW(const ka_wchar* s);

// Writes the date n days later (earlier for negative n) and returns its day
// of month, or 0 (deliberately, not the day written) when a step back lands
// on the last day of a month. Null s or dst: 0; fewer than 8 characters: -1.
// A digit string that is no valid date is walked as it stands (deliberate);
// n = 0 copies s unchanged (at most KA_DATE_TEXT_SIZE - 1 characters) and
// returns its day field. Takes constant time for any n.
KA_API int ka_add_daysA(const char* s, int n, char* dst);
KA_API int ka_add_daysW(const ka_wchar* s, int n, ka_wchar* dst);

// Writes the date n months later, its day clamped to the new month's length,
// and returns the new month (1-12). Null s or dst: 0; fewer than 8
// characters: -1; n = 0 copies s as ka_add_daysA does and returns its month
// field. Takes constant
// time for any n.
KA_API int ka_add_monthA(const char* s, int n, char* dst);
KA_API int ka_add_monthW(const ka_wchar* s, int n, ka_wchar* dst);

// Writes the local date and time as YYYYMMDDhhmmss and returns dst (null for
// a null dst). ka_todayW deliberately writes only YYYYMMDDhhmm.
KA_API char* ka_todayA(char* dst);
KA_API ka_wchar* ka_todayW(ka_wchar* dst);

// Writes the Gregorian date of a lunar date (its month always the regular
// month) and returns 0; -1 for a year outside 1921-2049 or a day beyond the
// leap month's length in a leap month (for month 1 the previous year's leap
// month is consulted, deliberately); nothing is written then. Null s or dst: -1.
KA_API int ka_lunar2solarA(const char* lunar, char* dst);
KA_API int ka_lunar2solarW(const ka_wchar* lunar, ka_wchar* dst);

// Writes the lunar date of a Gregorian date, a leap month's dates with the
// number of the regular month before it, and returns 1 in a regular month, 0
// in a leap month; -1 for a year outside 1921-2049, -2 for a day beyond the
// month's length (months outside 1-12 count 0 days); nothing is written then.
// Deliberately the year walk stops in lunar 2004: later dates are written as
// months past the end of that year (month 13, result 0). Null s or dst: -1.
KA_API int ka_solar2lunarA(const char* solar, char* dst);
KA_API int ka_solar2lunarW(const ka_wchar* solar, ka_wchar* dst);

// 1 for a working day, 0 for a Sunday, a fixed solar holiday or a fixed
// lunar holiday (lunar 12-29 deliberately stands for the New Year's eve). A
// date whose text has more than 8 characters never matches the solar table;
// null and invalid dates are working days.
KA_API int ka_is_workdayA(const char* date);
KA_API int ka_is_workdayW(const ka_wchar* date);

#endif  // KALBOR_CALENDAR_H
