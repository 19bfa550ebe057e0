// Formatted debug output: the text goes through the format engine into a
// temporary wide string, then to the debug sink as one message.
#include <kalbor/strings.h>
#include <kalbor/util.h>

#include <cstdarg>

#include "util/util_internal.h"

namespace {
void Emit(const Ka_WString& text) {
  const ka_wchar* const p = text;
  static const ka_wchar kEmpty[1] = {0};
  ka_detail::EmitDebugText(p != nullptr ? p : kEmpty);
}
}  // namespace

void KaDebugMsg(const ka_wchar* fmt, ...) {
  Ka_WString text;
  va_list args;
  va_start(args, fmt);
  text.Formatv(fmt, args);
  va_end(args);
  Emit(text);
}

void KaDebugMsg2(const char* file, int line) {
  Ka_WString text;
  text.Format(KA_W("%hs(%d): "), file, line);
  Emit(text);
}
