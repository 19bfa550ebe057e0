#include "utf16_to_utf8.h"

namespace ka_platform {

size_t Utf16ToUtf8(const ka_wchar* text, char* out, size_t outSize, size_t* unitsRead) {
  *unitsRead = 0;
  if (out == nullptr || outSize == 0) return 0;
  size_t n = 0;
  for (const ka_wchar* p = text; p != nullptr && *p != 0; ++p) {
    uint32_t cp = static_cast<uint16_t>(*p);
    size_t units = 1;
    if (cp >= 0xD800 && cp <= 0xDBFF && p[1] >= 0xDC00 && p[1] <= 0xDFFF) {
      cp = 0x10000 + ((cp - 0xD800) << 10) + (static_cast<uint16_t>(p[1]) - 0xDC00);
      units = 2;
    } else if (cp >= 0xD800 && cp <= 0xDFFF) {
      cp = 0xFFFD;
    }
    unsigned char b[4];
    size_t len;
    if (cp < 0x80) {
      b[0] = static_cast<unsigned char>(cp);
      len = 1;
    } else if (cp < 0x800) {
      b[0] = static_cast<unsigned char>(0xC0 | (cp >> 6));
      b[1] = static_cast<unsigned char>(0x80 | (cp & 0x3F));
      len = 2;
    } else if (cp < 0x10000) {
      b[0] = static_cast<unsigned char>(0xE0 | (cp >> 12));
      b[1] = static_cast<unsigned char>(0x80 | ((cp >> 6) & 0x3F));
      b[2] = static_cast<unsigned char>(0x80 | (cp & 0x3F));
      len = 3;
    } else {
      b[0] = static_cast<unsigned char>(0xF0 | (cp >> 18));
      b[1] = static_cast<unsigned char>(0x80 | ((cp >> 12) & 0x3F));
      b[2] = static_cast<unsigned char>(0x80 | ((cp >> 6) & 0x3F));
      b[3] = static_cast<unsigned char>(0x80 | (cp & 0x3F));
      len = 4;
    }
    if (n + len > outSize - 1) break;
    for (size_t i = 0; i < len; ++i) out[n++] = static_cast<char>(b[i]);
    *unitsRead += units;
    p += units - 1;
  }
  out[n] = 0;
  return n;
}

}  // namespace ka_platform
