// The library's own code-page converters (internal).
//
// ToWide and ToNarrow have the contract of Windows' MultiByteToWideChar and
// WideCharToMultiByte called with flags 0 and no default character, and give
// the same units, bytes and results for every input in every code page the
// library converts. codepage/convert.cpp calls them wherever the system does
// not convert a page itself; the tests call them directly.
#ifndef KALBOR_CODEPAGE_CONVERTERS_H
#define KALBOR_CODEPAGE_CONVERTERS_H

#include <kalbor/platform.h>

#include <climits>
#include <cstddef>
#include <cstdint>

namespace ka_codepage {

// Whether the library converts cp: the table pages (874, 1250-1258, 708,
// 720, 850, 852, 862, 866, 28592-28598, 38598, 20866, 21866, 932, 936, 949,
// 950), 51932, 50220, 50225, 52936 and 65001.
bool IsLibraryPage(unsigned int cp);

// Converts srcLen bytes of src (srcLen < 0: through its terminator, which is
// converted too) into dst, which holds dstSize units; with dstSize 0 only
// counts (dst may then be null). Returns the units written or needed. 0 for
// a null src, srcLen 0, dstSize < 0, a null dst with dstSize > 0, a page the
// library does not convert, or a destination too small (dst then holds the
// whole characters that fitted).
int ToWide(unsigned int cp, const char* src, int srcLen, ka_wchar* dst, int dstSize);
// The same from srcLen units to bytes.
int ToNarrow(unsigned int cp, const ka_wchar* src, int srcLen, char* dst, int dstSize);

// The converters behind them, one pair per kind of page, on n > 0 input
// units, with dstSize 0 for counting.
int Utf8ToWide(const unsigned char* src, size_t n, ka_wchar* dst, int dstSize);
int WideToUtf8(const ka_wchar* src, size_t n, char* dst, int dstSize);
int Iso2022JpToWide(const unsigned char* src, size_t n, ka_wchar* dst, int dstSize);
int WideToIso2022Jp(const ka_wchar* src, size_t n, char* dst, int dstSize);
int Iso2022KrToWide(const unsigned char* src, size_t n, ka_wchar* dst, int dstSize);
int WideToIso2022Kr(const ka_wchar* src, size_t n, char* dst, int dstSize);
int HzToWide(const unsigned char* src, size_t n, ka_wchar* dst, int dstSize);
int WideToHz(const ka_wchar* src, size_t n, char* dst, int dstSize);
int EucJpToWide(const unsigned char* src, size_t n, ka_wchar* dst, int dstSize);
int WideToEucJp(const ka_wchar* src, size_t n, char* dst, int dstSize);

// Where a converter writes: dst of size units, or, for size 0, nowhere but a
// count. Each character goes in whole or not at all; once one does not fit
// the sink is full, and its result is 0.
template <class T>
class Sink {
 public:
  Sink(T* dst, int size) : m_out(size > 0 ? dst : nullptr), m_room(size > 0 ? size : 0) {}

  // Appends one character of n units (n <= 8); false when it does not fit.
  bool Put(const T* v, int n) {
    if (m_out != nullptr) {
      if (m_room - m_count < n) {
        m_full = true;
        return false;
      }
      for (int i = 0; i < n; ++i) m_out[m_count + i] = v[i];
    }
    m_count += n;
    return true;
  }
  bool Put(T a) { return Put(&a, 1); }
  bool Put(T a, T b) {
    const T v[2] = {a, b};
    return Put(v, 2);
  }
  bool Put(T a, T b, T c) {
    const T v[3] = {a, b, c};
    return Put(v, 3);
  }
  // The units written or counted; 0 when the destination was too small or
  // the count passed INT_MAX.
  int Result() const { return (m_full || m_count > INT_MAX) ? 0 : static_cast<int>(m_count); }

 private:
  T* m_out;
  int64_t m_room;
  int64_t m_count = 0;
  bool m_full = false;
};

// A unit as the value it names, whatever the width of ka_wchar's sign.
inline uint16_t Unit(ka_wchar c) { return static_cast<uint16_t>(c); }
inline ka_wchar Wide(unsigned v) { return static_cast<ka_wchar>(v); }
inline char Byte(unsigned v) { return static_cast<char>(static_cast<unsigned char>(v)); }

}  // namespace ka_codepage

#endif  // KALBOR_CODEPAGE_CONVERTERS_H
