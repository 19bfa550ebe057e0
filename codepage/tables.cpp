// The generated tables and the encoders built from them on first use.
#include "codepage/tables.h"

#include <mutex>

namespace ka_codepage {
namespace {
#include "codepage/tables_generated.inc"

const SbcsTable kSbcs[kSbcsPageCount] = {
    {kSbcsHigh[0], kSbcsTop[0]},   {kSbcsHigh[1], kSbcsTop[1]},   {kSbcsHigh[2], kSbcsTop[2]},
    {kSbcsHigh[3], kSbcsTop[3]},   {kSbcsHigh[4], kSbcsTop[4]},   {kSbcsHigh[5], kSbcsTop[5]},
    {kSbcsHigh[6], kSbcsTop[6]},   {kSbcsHigh[7], kSbcsTop[7]},   {kSbcsHigh[8], kSbcsTop[8]},
    {kSbcsHigh[9], kSbcsTop[9]},   {kSbcsHigh[10], kSbcsTop[10]}, {kSbcsHigh[11], kSbcsTop[11]},
    {kSbcsHigh[12], kSbcsTop[12]}, {kSbcsHigh[13], kSbcsTop[13]}, {kSbcsHigh[14], kSbcsTop[14]},
    {kSbcsHigh[15], kSbcsTop[15]}, {kSbcsHigh[16], kSbcsTop[16]}, {kSbcsHigh[17], kSbcsTop[17]},
    {kSbcsHigh[18], kSbcsTop[18]}, {kSbcsHigh[19], kSbcsTop[19]}, {kSbcsHigh[20], kSbcsTop[20]},
    {kSbcsHigh[21], kSbcsTop[21]}, {kSbcsHigh[22], kSbcsTop[22]}, {kSbcsHigh[23], kSbcsTop[23]},
    {kSbcsHigh[24], kSbcsTop[24]},
};
static_assert(sizeof(kSbcs) / sizeof(kSbcs[0]) == kSbcsPageCount, "one descriptor per single-byte page");

const DbcsTable kDbcs[kDbcsCount] = {
    {kCp932Single, kCp932Rows, kCp932Pool, kCp932DefaultUnit},
    {kCp936Single, kCp936Rows, kCp936Pool, kCp936DefaultUnit},
    {kCp949Single, kCp949Rows, kCp949Pool, kCp949DefaultUnit},
    {kCp950Single, kCp950Rows, kCp950Pool, kCp950DefaultUnit},
    {nullptr, kJisX0212Rows, kJisX0212Pool, kJisX0212DefaultUnit},
};

// The encoders' leaves: zero-initialised storage, so that a page whose
// encoder is never used costs no memory on systems that commit such pages
// on first touch.
uint16_t g_leaves932[kCp932EncodeLeaves][64];
uint16_t g_leaves936[kCp936EncodeLeaves][64];
uint16_t g_leaves949[kCp949EncodeLeaves][64];
uint16_t g_leaves950[kCp950EncodeLeaves][64];
uint16_t g_leavesJisX0212[kJisX0212EncodeLeaves][64];

struct EncoderSource {
  DbcsEncoder encoder;
  const EncodeFix* fixes;
  int fixCount;
};
const EncoderSource kEncoders[kDbcsCount] = {
    {{kCp932EncodeIndex, g_leaves932}, kCp932Fixes, kCp932FixCount},
    {{kCp936EncodeIndex, g_leaves936}, kCp936Fixes, kCp936FixCount},
    {{kCp949EncodeIndex, g_leaves949}, kCp949Fixes, kCp949FixCount},
    {{kCp950EncodeIndex, g_leaves950}, kCp950Fixes, kCp950FixCount},
    {{kJisX0212EncodeIndex, g_leavesJisX0212}, kJisX0212Fixes, kJisX0212FixCount},
};
std::once_flag g_built[kDbcsCount];

// Every code of the decoder, in ascending order, claims the unit it decodes
// to; then the fixes set the units whose code is another (best-fit mappings,
// preferred duplicates, units that a code decodes to but that encode to
// '?'). tools/codepage/gen_tables.py replays this very procedure against the
// system's encoder, unit by unit, before it writes the fixes.
void Build(DbcsId id) {
  const DbcsTable& t = kDbcs[id];
  const EncoderSource& s = kEncoders[id];
  auto claim = [&](uint16_t unit, uint16_t code) {
    if (unit < 0x80 || unit == t.defaultUnit) return;
    const uint16_t leaf = s.encoder.index[unit >> 6];
    if (leaf != 0) s.encoder.leaves[leaf - 1][unit & 63] = code;
  };
  for (unsigned b = 0x80; b < 0x100; ++b)
    if (t.single != nullptr && t.rows[b].lead == 0) claim(t.single[b - 0x80], static_cast<uint16_t>(b));
  for (unsigned lead = 0; lead < 0x100; ++lead) {
    const DbcsRow& r = t.rows[lead];
    if (r.lead == 0) continue;
    for (unsigned trail = r.first; trail <= r.last; ++trail)
      claim(t.pool[r.offset + (trail - r.first)], static_cast<uint16_t>((lead << 8) | trail));
  }
  for (int i = 0; i < s.fixCount; ++i) {
    const EncodeFix& f = s.fixes[i];
    s.encoder.leaves[s.encoder.index[f.unit >> 6] - 1][f.unit & 63] = f.code;
  }
}

}  // namespace

const uint16_t (*const kSbcsGroupTable)[16] = kSbcsGroups;
const uint8_t (*const kSbcsLeafTable)[16] = kSbcsLeaves;

const SbcsTable* FindSbcs(unsigned int cp) {
  if (cp == 38598) cp = 28598;  // ISO-8859-8 logical order converts as visual order
  for (int i = 0; i < kSbcsPageCount; ++i)
    if (kSbcsPages[i] == cp) return &kSbcs[i];
  return nullptr;
}

const DbcsTable& Dbcs(DbcsId id) { return kDbcs[id]; }

const DbcsTable* FindDbcs(unsigned int cp, DbcsId* id) {
  switch (cp) {
    case 932: *id = kCp932; break;
    case 936: *id = kCp936; break;
    case 949: *id = kCp949; break;
    case 950: *id = kCp950; break;
    default: return nullptr;
  }
  return &kDbcs[*id];
}

const DbcsEncoder& Encoder(DbcsId id) {
  std::call_once(g_built[id], Build, id);
  return kEncoders[id].encoder;
}

ka_wchar FullwidthKatakana(ka_wchar u) { return static_cast<ka_wchar>(kHalfwidthKatakana[u - 0xFF61]); }

uint16_t Cp932InJisRows(uint16_t u, uint16_t c) {
  if (c < 0xFA40 || c > 0xFCFC) return c;
  const DbcsTable& t = kDbcs[kCp932];
  for (unsigned lead = 0xED; lead <= 0xEE; ++lead) {
    const DbcsRow& r = t.rows[lead];
    for (unsigned trail = r.first; trail <= r.last; ++trail)
      if (t.pool[r.offset + (trail - r.first)] == u) return static_cast<uint16_t>((lead << 8) | trail);
  }
  return c;
}

}  // namespace ka_codepage
