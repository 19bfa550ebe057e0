// The conversion tables of the table-based code pages (internal).
//
// The data come from codepage/tables_generated.inc, generated from the
// system's own conversions (see tools/codepage/gen_tables.py, which also
// describes the model these accessors implement). Bytes and units below 0x80 are
// themselves in every page; the accessors take only the rest.
#ifndef KALBOR_CODEPAGE_TABLES_H
#define KALBOR_CODEPAGE_TABLES_H

#include <kalbor/platform.h>

#include <cstdint>

namespace ka_codepage {

// The byte that every table page writes for a unit it cannot hold.
const unsigned char kDefaultByte = 0x3F;

// ---- Single-byte pages ------------------------------------------------------

struct SbcsTable {
  const uint16_t* high;  // units of the bytes 0x80-0xFF
  const uint8_t* top;    // encoder: unit >> 8 -> group
};
// The single-byte table of cp (38598 shares 28598's), or null.
const SbcsTable* FindSbcs(unsigned int cp);
// The encoder's groups and leaves, shared by all single-byte pages.
extern const uint16_t (*const kSbcsGroupTable)[16];
extern const uint8_t (*const kSbcsLeafTable)[16];

inline ka_wchar SbcsDecode(const SbcsTable& t, unsigned char b) {
  return b < 0x80 ? static_cast<ka_wchar>(b) : static_cast<ka_wchar>(t.high[b - 0x80]);
}
inline unsigned char SbcsEncode(const SbcsTable& t, uint16_t u) {
  return kSbcsLeafTable[kSbcsGroupTable[t.top[u >> 8]][(u >> 4) & 15]][u & 15];
}

// ---- Double-byte pages -------------------------------------------------------

// One first byte of a double-byte page: a lead byte takes the next byte as
// its trail; trails first..last index pool + offset, any other trail is the
// page's default unit. A row with first > last holds no character.
struct DbcsRow {
  uint32_t offset;
  uint8_t first, last;
  uint8_t lead;  // 1 for a lead byte
};

struct EncodeFix {
  uint16_t unit, code;
};

// The encoder of a double-byte table, built on first use: index[unit / 64]
// is 0 for a block of unmappable units, else 1 + the leaf that holds the
// block's codes (0: unmappable; below 0x100 a single byte; else lead << 8 |
// trail).
struct DbcsEncoder {
  const uint16_t* index;
  uint16_t (*leaves)[64];
};

struct DbcsTable {
  const uint16_t* single;  // units of the bytes 0x80-0xFF that are not lead bytes (null: none)
  const DbcsRow* rows;     // 256 rows, one per first byte
  const uint16_t* pool;
  uint16_t defaultUnit;    // for invalid and incomplete pairs
};

// The double-byte tables: the four Windows pages, and the JIS X 0212 plane
// used by EUC-JP (rows and trails 0xA1-0xFE, no single bytes).
enum DbcsId { kCp932, kCp936, kCp949, kCp950, kJisX0212, kDbcsCount };
const DbcsTable& Dbcs(DbcsId id);
// The table of cp among 932, 936, 949, 950, or null.
const DbcsTable* FindDbcs(unsigned int cp, DbcsId* id);
// The encoder of a table, built on the first call (thread-safe).
const DbcsEncoder& Encoder(DbcsId id);

inline uint16_t DbcsDecodePair(const DbcsTable& t, unsigned char lead, unsigned char trail) {
  const DbcsRow& r = t.rows[lead];
  return (trail >= r.first && trail <= r.last) ? t.pool[r.offset + (trail - r.first)] : t.defaultUnit;
}
// The code of unit u (u >= 0x80): 0 when the page cannot hold it.
inline uint16_t DbcsEncode(const DbcsEncoder& e, uint16_t u) {
  const uint16_t leaf = e.index[u >> 6];
  return leaf == 0 ? 0 : e.leaves[leaf - 1][u & 63];
}

// ---- Japanese helpers ---------------------------------------------------------

// The full-width form of a half-width katakana unit U+FF61-U+FF9F.
ka_wchar FullwidthKatakana(ka_wchar u);
// For a unit that 932 writes as an IBM extension (lead 0xFA-0xFC, outside
// the JIS X 0208 rows), the NEC-selected code (lead 0xED-0xEE, inside them)
// that 932 decodes to the same unit; c itself when there is none.
uint16_t Cp932InJisRows(uint16_t u, uint16_t c);

// Shift-JIS pair of a JIS X 0208 row/cell pair (both 0x21-0x7E).
inline void JisToSjis(unsigned j1, unsigned j2, unsigned char* s1, unsigned char* s2) {
  *s1 = static_cast<unsigned char>(((j1 + 1) >> 1) + (j1 <= 0x5E ? 0x70 : 0xB0));
  *s2 = static_cast<unsigned char>(j2 + ((j1 & 1) ? (j2 <= 0x5F ? 0x1F : 0x20) : 0x7E));
}
// JIS X 0208 row/cell of a Shift-JIS pair; false when the pair lies outside
// the 94 x 94 rows (lead 0x81-0x9F, 0xE0-0xEF; trail 0x40-0x7E, 0x80-0xFC).
inline bool SjisToJis(unsigned s1, unsigned s2, unsigned char* j1, unsigned char* j2) {
  if (!((s1 >= 0x81 && s1 <= 0x9F) || (s1 >= 0xE0 && s1 <= 0xEF))) return false;
  if (s2 < 0x40 || s2 == 0x7F || s2 > 0xFC) return false;
  unsigned row = (s1 - (s1 <= 0x9F ? 0x70 : 0xB0)) << 1;
  if (s2 < 0x9F) {
    --row;
    *j2 = static_cast<unsigned char>(s2 - (s2 < 0x7F ? 0x1F : 0x20));
  } else {
    *j2 = static_cast<unsigned char>(s2 - 0x7E);
  }
  *j1 = static_cast<unsigned char>(row);
  return true;
}

}  // namespace ka_codepage

#endif  // KALBOR_CODEPAGE_TABLES_H
