// The stateful and EUC pages beside an independent implementation: every
// character of JIS X 0208, JIS X 0212, KS X 1001 and GB 2312 as Python's
// codecs decode and encode it (tests/codepage/crosscheck_table_generated.inc,
// written by tools/codepage/gen_crosscheck.py), and mixed texts in both
// directions.
// Where the library follows the repertoire of a Windows page and Python the
// national standard's own mapping, the difference is listed here, with its
// reason; any other difference fails.
#include <cstdint>
#include <map>
#include <tuple>

#include "tests/codepage/conversions.h"

namespace {

struct CrossSample { const char16_t* text; const char* bytes; int length; };
#include "tests/codepage/crosscheck_table_generated.inc"

typedef std::string (*Wrap)(unsigned j1, unsigned j2);
std::string Jis(unsigned a, unsigned b) { return std::string("\x1B$B") + char(a) + char(b) + "\x1B(B"; }
std::string Euc(unsigned a, unsigned b) { return {char(a | 0x80), char(b | 0x80)}; }
std::string Euc0212(unsigned a, unsigned b) { return {'\x8F', char(a | 0x80), char(b | 0x80)}; }
std::string Ksc(unsigned a, unsigned b) { return std::string("\x1B$)C\x0E") + char(a) + char(b) + "\x0F"; }
std::string Hz(unsigned a, unsigned b) { return std::string("~{") + char(a) + char(b) + "~}"; }

// Row/cell pairs where the library decodes another unit than Python (and so
// cannot encode Python's unit to that pair either).
typedef std::map<unsigned, unsigned> Differences;

// 932 maps these JIS X 0208 cells to full-width forms and other symbols where
// the JIS mapping that Python follows has the plain ones.
const Differences kJisX0208ByWindows = {
    {0x2141, 0xFF5E},  // WAVE DASH U+301C: 932 has FULLWIDTH TILDE
    {0x2142, 0x2225},  // DOUBLE VERTICAL LINE U+2016: 932 has PARALLEL TO
    {0x215D, 0xFF0D},  // MINUS SIGN U+2212: 932 has FULLWIDTH HYPHEN-MINUS
    {0x2171, 0xFFE0},  // CENT SIGN U+00A2: 932 has the full-width cent
    {0x2172, 0xFFE1},  // POUND SIGN U+00A3: 932 has the full-width pound
    {0x224C, 0xFFE2},  // NOT SIGN U+00AC: 932 has the full-width not sign
};
// 936 keeps two GB 2312 punctuation marks where Python's table has others.
const Differences kGb2312ByWindows = {
    {0x2124, 0x00B7},  // KATAKANA MIDDLE DOT U+30FB: 936 has MIDDLE DOT
    {0x212A, 0x2014},  // HORIZONTAL BAR U+2015: 936 has EM DASH
};

void ComparePlane(const char* what, unsigned cp, const char16_t* const plane[94], const uint16_t* oneWay, Wrap wrap,
                  const Differences& known) {
  Differences decoded, encoded;  // cells decoded otherwise; Python's units (by cell) encoded otherwise
  int compared = 0;
  for (unsigned j1 = 0x21; j1 <= 0x7E; ++j1)
    for (unsigned j2 = 0x21; plane[j1 - 0x21] != nullptr && j2 <= 0x7E; ++j2) {
      const unsigned code = (j1 << 8) | j2, python = plane[j1 - 0x21][j2 - 0x21];
      if (python == 0xFFFF) continue;
      ++compared;
      const WText ours = ToWide(cp, wrap(j1, j2));
      if (ours != W({python})) decoded[code] = ours.size() == 1 ? static_cast<uint16_t>(ours[0]) : 0xFFFFFFFFu;
      if (ToNarrow(cp, W({python})) != wrap(j1, j2) && known.count(code) == 0) encoded[code] = python;
    }
  for (const uint16_t* p = oneWay; *p != 0; ++p) encoded.erase(*p);  // Python only decodes these
  EXPECT_GT(compared, 6000) << what;
  EXPECT_EQ(decoded, known) << what << ": cells decoded otherwise than by Python";
  EXPECT_EQ(encoded, Differences()) << what << ": Python's units encoded to another cell";
}

TEST(CrossCheck, EveryCellOfEachPlaneAndMixedTextsAsInPythonApartFromWindowsRepertoire) {
  ComparePlane("ISO-2022-JP", 50220, kPythonJisX0208, kPythonJisX0208OneWay, Jis, kJisX0208ByWindows);
  ComparePlane("EUC-JP", 51932, kPythonJisX0208, kPythonJisX0208OneWay, Euc, kJisX0208ByWindows);
  ComparePlane("EUC-JP 0x8F", 51932, kPythonJisX0212, kPythonJisX0212OneWay, Euc0212, Differences());
  ComparePlane("ISO-2022-KR", 50225, kPythonKsX1001, kPythonKsX1001OneWay, Ksc, Differences());
  ComparePlane("HZ-GB-2312", 52936, kPythonGb2312, kPythonGb2312OneWay, Hz, kGb2312ByWindows);
  // Mixed texts encode to Python's bytes and back.
  auto compare = [](unsigned cp, const auto& samples) {
    for (const CrossSample& sample : samples) {
      const std::string bytes(sample.bytes, static_cast<size_t>(sample.length));
      EXPECT_EQ(std::tuple(ToNarrow(cp, W(sample.text)), ToWide(cp, bytes)), std::tuple(bytes, W(sample.text)))
          << cp << " sample " << &sample - samples << ": encoded, decoded";
    }
  };
  compare(50220, kIso2022JpSamples);
  compare(50225, kIso2022KrSamples);
  compare(52936, kHzSamples);
  compare(51932, kEucJpSamples);
}

}  // namespace
