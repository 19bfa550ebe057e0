// Number conversion and classification members of Ka_AString and
// Ka_WString (strings/number_ops.h), and the library's own atol and wcstod.
#include <kalbor/strings.h>

#include <charconv>
#include <cstdlib>
#include <limits>
#include <system_error>

#include "strings/number_ops.h"

namespace ka_detail {

namespace {

template <class C>
bool IsSpace(C c) {
  return c == C(' ') || (c >= C('\t') && c <= C('\r'));  // blank, \t \n \v \f \r
}

template <class C>
bool IsDigit(C c) {
  return c >= C('0') && c <= C('9');
}

}  // namespace

int ParseLong(const char* s) {
  if (s == nullptr) return 0;
  while (IsSpace(*s)) ++s;
  bool negative = false;
  if (*s == '+' || *s == '-') negative = *s++ == '-';
  int64_t value = 0;
  for (; IsDigit(*s); ++s)
    if (value <= int64_t(std::numeric_limits<int>::max()) + 1) value = value * 10 + (*s - '0');
  if (negative) value = -value;
  if (value > std::numeric_limits<int>::max()) return std::numeric_limits<int>::max();
  if (value < std::numeric_limits<int>::min()) return std::numeric_limits<int>::min();
  return static_cast<int>(value);
}

double ParseDouble(const ka_wchar* s) {
  if (s == nullptr) return 0.0;
  while (IsSpace(*s)) ++s;
  bool negative = false;
  if (*s == '+' || *s == '-') negative = *s++ == '-';

  // The longest subject: digits, an optional point and digits, at least one
  // digit in all; then an exponent only when a digit follows its letter.
  // Along the way, the power of ten of the first nonzero digit, which tells
  // an overflow from an underflow.
  const ka_wchar* const start = s;
  int64_t lead = 0;  // power of ten of the first nonzero digit, so far
  bool nonzero = false;
  int digits = 0;
  for (; IsDigit(*s); ++s, ++digits) {
    if (nonzero) ++lead;
    if (*s != '0' && !nonzero) nonzero = true;
  }
  if (*s == '.') {
    ++s;
    for (; IsDigit(*s); ++s, ++digits) {
      if (!nonzero) --lead;
      if (*s != '0' && !nonzero) nonzero = true;
    }
  }
  if (digits == 0) return 0.0;
  int64_t exponent = 0;
  if (*s == 'e' || *s == 'E') {
    const ka_wchar* e = s + 1;
    bool negativeExponent = false;
    if (*e == '+' || *e == '-') negativeExponent = *e++ == '-';
    if (IsDigit(*e)) {
      for (; IsDigit(*e); ++e)
        if (exponent < 100000000) exponent = exponent * 10 + (*e - '0');
      if (negativeExponent) exponent = -exponent;
      s = e;
    }
  }

  // The subject in ASCII, for std::from_chars (correctly rounded).
  const size_t n = static_cast<size_t>(s - start);
  char local[128] = {};
  char* const text = n <= sizeof(local) ? local : static_cast<char*>(std::malloc(n));
  if (text == nullptr) return 0.0;
  for (size_t i = 0; i < n; ++i) text[i] = static_cast<char>(start[i]);
  double value = 0.0;
  const std::from_chars_result r = std::from_chars(text, text + n, value, std::chars_format::general);
  if (text != local) std::free(text);
  if (r.ec == std::errc::result_out_of_range)
    value = lead + exponent >= 0 ? std::numeric_limits<double>::infinity() : 0.0;
  return negative ? -value : value;
}

}  // namespace ka_detail

namespace {
typedef ka_detail::Ka_NumberText Text;

template <class S>
const S& SetInteger(S& s, int value) {
  Text text;
  ka_detail::Ka_NumberOps<S>::IntegerText(value, text);
  ka_detail::Ka_NumberOps<S>::Store(s, text);
  return s;
}

template <class S>
const S& SetDouble(S& s, double value) {
  Text text;
  ka_detail::Ka_NumberOps<S>::DoubleText(value, text);
  ka_detail::Ka_NumberOps<S>::Store(s, text);
  return s;
}

template <class S>
const S& AppendInteger(S& s, int value) {
  Text text;
  ka_detail::Ka_NumberOps<S>::IntegerText(value, text);
  ka_detail::Ka_NumberOps<S>::Append(s, text);
  return s;
}

template <class S>
const S& AppendDouble(S& s, double value) {
  Text text;
  ka_detail::Ka_NumberOps<S>::DoubleText(value, text);
  ka_detail::Ka_NumberOps<S>::Append(s, text);
  return s;
}
}  // namespace

// ---- Ka_AString -------------------------------------------------------------

const Ka_AString& Ka_AString::Set(int value) { return SetInteger(*this, value); }
const Ka_AString& Ka_AString::Set(double value) { return SetDouble(*this, value); }
const Ka_AString& Ka_AString::operator+=(int value) { return AppendInteger(*this, value); }
const Ka_AString& Ka_AString::operator+=(double value) { return AppendDouble(*this, value); }
Ka_AString Ka_AString::FromInteger(int value) {
  Ka_AString s;
  s.Set(value);
  return s;
}
Ka_AString Ka_AString::FromDouble(double value) {
  Ka_AString s;
  s.Set(value);
  return s;
}
int Ka_AString::ToInteger() const { return ka_detail::Ka_NumberOps<Ka_AString>::ToInteger(*this); }
double Ka_AString::ToDouble() const { return ka_detail::Ka_NumberOps<Ka_AString>::ToDouble(*this); }
int Ka_AString::IsNumber() const { return ka_detail::Ka_NumberOps<Ka_AString>::IsNumber(*this); }
int Ka_AString::IsString() const { return ka_detail::Ka_NumberOps<Ka_AString>::IsString(*this); }
int Ka_AString::IsName() const { return ka_detail::Ka_NumberOps<Ka_AString>::IsName(*this); }

// ---- Ka_WString -------------------------------------------------------------

const Ka_WString& Ka_WString::Set(int value) { return SetInteger(*this, value); }
const Ka_WString& Ka_WString::Set(double value) { return SetDouble(*this, value); }
const Ka_WString& Ka_WString::operator+=(int value) { return AppendInteger(*this, value); }
const Ka_WString& Ka_WString::operator+=(double value) { return AppendDouble(*this, value); }
Ka_WString Ka_WString::FromInteger(int value) {
  Ka_WString s;
  s.Set(value);
  return s;
}
Ka_WString Ka_WString::FromDouble(double value) {
  Ka_WString s;
  s.Set(value);
  return s;
}
int Ka_WString::ToInteger() const { return ka_detail::Ka_NumberOps<Ka_WString>::ToInteger(*this); }
double Ka_WString::ToDouble() const { return ka_detail::Ka_NumberOps<Ka_WString>::ToDouble(*this); }
int Ka_WString::IsNumber() const { return ka_detail::Ka_NumberOps<Ka_WString>::IsNumber(*this); }
int Ka_WString::IsString() const { return ka_detail::Ka_NumberOps<Ka_WString>::IsString(*this); }
int Ka_WString::IsName() const { return ka_detail::Ka_NumberOps<Ka_WString>::IsName(*this); }
