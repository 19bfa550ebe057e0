// KaToUnicode, KaToAscii and Ka_ConvCodePage: the system's conversion where
// it converts the page itself, the library's own converter elsewhere.
#include <kalbor/codepage.h>
#include <kalbor/memory.h>

#include <climits>
#include <cstring>

#include "codepage/converters.h"
#include "platform/platform.h"

namespace {

int ConvertToWide(unsigned int cp, const char* src, int srcLen, ka_wchar* dst, int dstSize) {
  // Pages outside the library's set give 0 on every platform, so that a
  // program converts alike everywhere.
  if (!ka_codepage::IsLibraryPage(cp)) return 0;
  int result;
  if (ka_platform::SystemToWide(cp, src, srcLen, dst, dstSize, &result)) return result;
  return ka_codepage::ToWide(cp, src, srcLen, dst, dstSize);
}

int ConvertToNarrow(unsigned int cp, const ka_wchar* src, int srcLen, char* dst, int dstSize) {
  if (!ka_codepage::IsLibraryPage(cp)) return 0;
  int result;
  if (ka_platform::SystemToNarrow(cp, src, srcLen, dst, dstSize, &result)) return result;
  return ka_codepage::ToNarrow(cp, src, srcLen, dst, dstSize);
}

}  // namespace

int KaToUnicode(ka_wchar* dst, int dstSize, const char* src, int srcLen, unsigned int cp) {
  if (dstSize == 0 && dst != nullptr) return 0;
  if (cp == 0) cp = KaGetLocaleCP();
  const int n = ConvertToWide(cp, src, srcLen, dst, dstSize);
  if (n > 0 && dst != nullptr) dst[n] = 0;
  return n;
}

int KaToAscii(char* dst, int dstSize, const ka_wchar* src, int srcLen, unsigned int cp) {
  if (dstSize == 0 && dst != nullptr) return 0;
  if (cp == 0) cp = KaGetLocaleCP();
  const int n = ConvertToNarrow(cp, src, srcLen, dst, dstSize);
  if (n > 0 && dst != nullptr) dst[n] = 0;
  return n;
}

long Ka_ConvCodePage(char* dst, const char* src, int srcLen, unsigned int fromCp, unsigned int toCp) {
  if (src == nullptr || dst == nullptr) return 0;
  const size_t length = srcLen < 0 ? std::strlen(src) : static_cast<size_t>(srcLen);
  // The wide text takes (L + 1) units from _ka_malloc, and the destination
  // L + L / 2 + 2 bytes: both sizes must fit an int.
  const size_t kMaxLength = (INT_MAX / 2) - 1;
  dst[0] = 0;
  if (length == 0 || length > kMaxLength) return 0;
  const int L = static_cast<int>(length);
  ka_wchar* wide = static_cast<ka_wchar*>(_ka_malloc((L + 1) * static_cast<int>(sizeof(ka_wchar))));
  if (wide == nullptr) return 0;
  long result = 0;
  const int n = KaToUnicode(wide, L, src, L, fromCp);
  if (n >= 1) result = KaToAscii(dst, L + L / 2 + 1, wide, n, toCp);
  if (result <= 0) {
    dst[0] = 0;  // a failed step leaves dst empty rather than holding part of a result
    result = 0;
  }
  ka_free(wide);
  return result;
}
