// UTF-16 to UTF-8 for the default debug sink (internal to the platform layer).
#ifndef KALBOR_PLATFORM_UTF16_TO_UTF8_H
#define KALBOR_PLATFORM_UTF16_TO_UTF8_H

#include <kalbor/platform.h>

#include <cstddef>

namespace ka_platform {
// Writes the UTF-8 form of text (zero-terminated) to out, at most outSize - 1
// bytes and a terminating zero, never splitting a character; a lone
// surrogate becomes U+FFFD. Returns the bytes written before the zero and
// stores in *unitsRead how many units of text they came from.
size_t Utf16ToUtf8(const ka_wchar* text, char* out, size_t outSize, size_t* unitsRead);
}  // namespace ka_platform

#endif  // KALBOR_PLATFORM_UTF16_TO_UTF8_H
