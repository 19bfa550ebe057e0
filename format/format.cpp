// The formatting members of Ka_AString and Ka_WString: each runs the engine
// of its width (format/format_engine.h).
#include <kalbor/strings.h>

#include <cstdarg>

#include "format/format_engine.h"

const char* Ka_AString::Formatv(const char* format, va_list args) {
  return ka_detail::Ka_FormatEngine<Ka_AString>::Run(*this, format, args);
}

const char* Ka_AString::Format(const char* format, ...) {
  va_list args;
  va_start(args, format);
  const char* const text = Formatv(format, args);
  va_end(args);
  return text;
}

const char* Ka_AString::FormatA(const char* format, ...) {
  va_list args;
  va_start(args, format);
  const char* const text = Formatv(format, args);
  va_end(args);
  return text;
}

const ka_wchar* Ka_WString::Formatv(const ka_wchar* format, va_list args) {
  return ka_detail::Ka_FormatEngine<Ka_WString>::Run(*this, format, args);
}

const ka_wchar* Ka_WString::Format(const ka_wchar* format, ...) {
  va_list args;
  va_start(args, format);
  const ka_wchar* const text = Formatv(format, args);
  va_end(args);
  return text;
}

const ka_wchar* Ka_WString::FormatA(const char* format, ...) {
  const Ka_WString wideFormat(format, -1, 0);
  va_list args;
  va_start(args, format);
  const ka_wchar* const text = Formatv(wideFormat, args);
  va_end(args);
  return text;
}
