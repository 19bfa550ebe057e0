// The members that move text between Ka_AString (bytes in a code page) and
// Ka_WString (16-bit characters): they size the buffers, call KaToAscii and
// KaToUnicode (kalbor/codepage.h) and fix the lengths afterwards.
#include <kalbor/codepage.h>
#include <kalbor/strings.h>

#include <cstring>

// ---- Ka_AString ---------------------------------------------------------------

const Ka_AString& Ka_AString::Set(const ka_wchar* s, int n, unsigned int codePage) {
  if (n < 0) n = ka_strlenW(s);
  if (n == 0) {
    Empty();
    return *this;
  }
  if (n > Traits::kMaxLength / 3) return *this;
  char* text = GetSafeBuffer(3 * n);
  if (text == nullptr) return *this;
  // KaToAscii stores its terminator at text[result], at most 3 x n + 1: the
  // block holds 4 bytes past its capacity (Ka_BufferData). A failed
  // conversion leaves an empty text, not earlier bytes or part of a result.
  if (KaToAscii(text, 3 * n + 1, s, n, codePage) <= 0) text[0] = 0;
  FreeExtra(-1);
  return *this;
}

const Ka_AString& Ka_AString::operator+=(const ka_wchar* s) {
  const int m = ka_strlenW(s);
  const int old = GetLength();
  if (m < 1 || m > (Traits::kMaxLength - old) / 3) return *this;
  char* text = GetSafeBuffer(old + 3 * m);
  if (text == nullptr) return *this;
  const int r = KaToAscii(text + old, 3 * m + 1, s, m, 0);
  text[old + (r > 0 ? r : 0)] = 0;  // a failed append ends where the text did
  FreeExtra(-1);
  return *this;
}

const Ka_AString& Ka_AString::operator+=(ka_wchar c) {
  char scratch[4];
  const int r = KaToAscii(scratch, 3, &c, 1, 0);
  scratch[r > 0 ? r : 0] = 0;
  ConcatInPlace(scratch, -1);
  return *this;
}

int Ka_AString::ConvertCodePageFrom(unsigned int toCodePage, const char* s, int n, unsigned int fromCodePage) {
  if (s == nullptr) {
    Empty();
    return 0;
  }
  if (fromCodePage == toCodePage) {
    Set(s, n);
    return n;  // as passed, -1 included (deliberate)
  }
  const Ka_WString wide(s, n, fromCodePage);
  Set(wide, -1, toCodePage);
  return GetLength();
}

// ---- Ka_WString ---------------------------------------------------------------

const Ka_WString& Ka_WString::Set(const char* s, int n, unsigned int codePage) {
  if (n < 0) n = s != nullptr ? static_cast<int>(std::strlen(s)) : 0;
  if (n == 0) {
    Empty();
    return *this;
  }
  ka_wchar* text = GetSafeBuffer(n);
  if (text == nullptr) return *this;
  if (KaToUnicode(text, n, s, n, codePage) <= 0) text[0] = 0;  // a failure leaves an empty text
  FreeExtra(-1);
  return *this;
}

const Ka_WString& Ka_WString::operator+=(const char* s) {
  const size_t length = s != nullptr ? std::strlen(s) : 0;
  const int old = GetLength();
  if (length < 1 || length > static_cast<size_t>(Traits::kMaxLength - old)) return *this;
  const int m = static_cast<int>(length);
  ka_wchar* text = GetSafeBuffer(old + m);
  if (text == nullptr) return *this;
  const int r = KaToUnicode(text + old, m + 1, s, m, 0);
  text[old + (r > 0 ? r : 0)] = 0;
  FreeExtra(-1);
  return *this;
}

const Ka_WString& Ka_WString::operator+=(char c) {
  // Sign-extended, not converted (deliberate): 0x80-0xFF become 0xFF80-0xFFFF.
  const ka_wchar w = static_cast<ka_wchar>(static_cast<uint16_t>(static_cast<int16_t>(static_cast<signed char>(c))));
  if (w != 0) ConcatInPlace(&w, 1);
  return *this;
}
