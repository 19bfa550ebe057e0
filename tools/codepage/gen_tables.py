#!/usr/bin/env python3
"""Builds codepage/tables_generated.inc, the conversion tables of Kalbor400U's
table-based code pages, from the output of
tools/codepage/dump_windows_tables.cpp (the system's MultiByteToWideChar and
WideCharToMultiByte, flags 0, for every byte, lead-byte pair and 16-bit
unit), and the half-width katakana table from
the Unicode Character Database (<narrow> decompositions, Python's
unicodedata).

    gen_tables.py DUMP OUTPUT

The pages the system does not convert are built on these tables by the
library's code, after the published standards: 50220, ISO-2022-JP (RFC
1468), on the JIS X 0208 rows of 932; 50225, ISO-2022-KR (RFC 1557), on the
KS X 1001 part of 949; 52936, HZ-GB-2312 (RFC 1843), on the GB 2312 part of
936; 51932, EUC-JP, on the JIS X 0208 rows of 932, the half-width katakana
and the JIS X 0212 plane of 20932 written here; 38598 uses 28598's table.
tools/codepage/gen_crosscheck.py records what Python's codecs make of them,
for the tests to compare.

The generator is strict: it checks that the dump fits the model that the
library's converters implement (see codepage/tables.cpp) and fails on the
first thing that does not, then replays every lookup the library will make
against the dump before it writes anything.

Model:
- Bytes and units 0x00-0x7F map to themselves in every page.
- Single-byte pages: one unit per byte; unmappable units give 0x3F.
- Double-byte pages: a lead byte followed by a non-zero byte is one
  character; outside the lead row's trail range it is the page's default
  unit; a lead byte at the end of the input, or before a zero byte, is the
  default unit alone. Unmappable units give 0x3F.
- The encoder of a double-byte page is built on first use: every code of the
  decoder, in ascending order, claims the unit it decodes to (later codes
  overwrite earlier ones; units below 0x80 and the default unit are
  skipped), then a generated list of fixes sets the units whose code differs
  (best-fit mappings, preferred duplicates, one-way decodings). The
  generator replays exactly this and checks the result unit by unit.
"""

import sys
import unicodedata

SBCS_PAGES = [874, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258, 708, 720, 850, 852, 862,
              866, 28592, 28593, 28594, 28595, 28596, 28597, 28598, 20866, 21866]
DBCS_PAGES = [932, 936, 949, 950]
JIS_PAGE = 20932  # source of the JIS X 0212 plane only
DEFAULT_BYTE = 0x3F
LEAF = 64  # units per encoder leaf of a double-byte page


def fail(msg):
    sys.exit('gen_tables: ' + msg)


def parse(path):
    pages, cur, source = {}, None, None
    with open(path, encoding='ascii') as f:
        for n, line in enumerate(f, 1):
            fld = line.split()
            if not fld:
                fail(f'{path}:{n}: empty line')
            tag = fld[0]
            if tag == 'source':
                source = ' '.join(fld[1:])
            elif tag == 'page':
                cur = {'cp': int(fld[1]), 'kind': fld[2], 'mb': {}, 'pair': {}, 'wc': {}, 'done': False}
                for kv in fld[3:]:
                    k, v = kv.split('=')
                    cur[k] = v
                pages[cur['cp']] = cur
            elif cur is None or cur['done']:
                fail(f'{path}:{n}: record outside a page')
            elif tag == 'mb':
                cur['mb'][int(fld[1], 16)] = [int(u, 16) for u in fld[2].split('+')]
            elif tag == 'pair':
                cur['pair'][int(fld[1], 16)] = [[int(u, 16) for u in t.split('+')] for t in fld[2].split('.')]
            elif tag == 'wc':
                first = int(fld[1], 16)
                for i, c in enumerate(fld[2:]):
                    if c == '!':
                        fail(f'{path}:{n}: unit {first + i:04x} did not convert')
                    cur['wc'][first + i] = int(c, 16) if len(c) == 2 else int(c, 16) | 0x10000
            elif tag == 'end':
                cur['done'] = True
            else:
                fail(f'{path}:{n}: unknown record {tag}')
    if source is None:
        fail('the dump does not name its source')
    for cp, p in pages.items():
        if not p['done'] or len(p['mb']) != 256 or len(p['wc']) != 0x10000:
            fail(f'page {cp} is incomplete')
    return source, pages


def code_of(c):
    """A dump code (single byte, or pair marked with bit 16) as the library stores it."""
    return c & 0xFFFF


def is_pair(c):
    return c >= 0x10000


def check_ascii(p):
    cp = p['cp']
    for b in range(0x80):
        if p['mb'][b] != [b]:
            fail(f'{cp}: byte {b:02x} does not decode to itself')
        if p['wc'][b] != b:
            fail(f'{cp}: unit {b:04x} does not encode to itself')
    if int(p['default'], 16) != DEFAULT_BYTE:
        fail(f'{cp}: default byte is not 3f')


def build_sbcs(pages):
    high, tops, mids, leaves = [], [], {(0,) * 16: 0}, {(DEFAULT_BYTE,) * 16: 0}
    for cp in SBCS_PAGES:
        p = pages[cp]
        if p['kind'] != 'sbcs' or p['leads'] != 'none':
            fail(f'{cp}: not a single-byte page')
        check_ascii(p)
        row = []
        for b in range(0x80, 0x100):
            if len(p['mb'][b]) != 1:
                fail(f'{cp}: byte {b:02x} gives {len(p["mb"][b])} units')
            row.append(p['mb'][b][0])
        high.append(row)
        top = []
        for hi in range(256):
            block = [p['wc'][(hi << 8) | lo] for lo in range(256)]
            if any(is_pair(c) for c in block):
                fail(f'{cp}: a unit encodes to two bytes')
            mid = []
            for k in range(16):
                leaf = tuple(block[k * 16:(k + 1) * 16])
                mid.append(leaves.setdefault(leaf, len(leaves)))
            top.append(mids.setdefault(tuple(mid), len(mids)))
        tops.append(top)
    if len(mids) > 256:
        fail('too many encoder groups for an 8-bit index')
    mid_list = sorted(mids, key=mids.get)
    leaf_list = sorted(leaves, key=leaves.get)
    # Replay the three-level lookup for every unit of every page.
    for i, cp in enumerate(SBCS_PAGES):
        for u in range(0x10000):
            got = leaf_list[mid_list[tops[i][u >> 8]][(u >> 4) & 15]][u & 15]
            if got != pages[cp]['wc'][u]:
                fail(f'{cp}: replay of unit {u:04x} gives {got:02x}')
    return high, tops, mid_list, leaf_list


def rows_of(single, pairs, leads, default):
    """Trail ranges and pool of a double-byte decoder; pairs[lead][trail] = unit or None."""
    rows, pool = [], []
    for lead in range(256):
        if lead not in leads:
            rows.append((0, 1, 0, 0))
            continue
        valid = [t for t in range(1, 256) if pairs[lead][t] is not None and pairs[lead][t] != default]
        if not valid:
            rows.append((len(pool), 1, 0, 1))
            continue
        lo, hi = min(valid), max(valid)
        rows.append((len(pool), lo, hi, 1))
        for t in range(lo, hi + 1):
            u = pairs[lead][t]
            pool.append(default if u is None else u)
    return rows, pool


def decode_pair(rows, pool, default, lead, trail):
    off, lo, hi, _ = rows[lead]
    return pool[off + trail - lo] if lo <= trail <= hi else default


def replay_encoder(single, rows, pool, default, target):
    """Builds the encoder as the library does and returns (index, leaf count, fixes)."""
    index, count = [0] * (0x10000 // LEAF), 0
    for blk in range(0x10000 // LEAF):
        if any(target[u] != 0 for u in range(blk * LEAF, (blk + 1) * LEAF) if u >= 0x80):
            count += 1
            index[blk] = count
    built = {}

    def claim(u, code):
        if u < 0x80 or u == default or index[u // LEAF] == 0:
            return
        built[u] = code

    for b in range(0x80, 0x100):
        if single is not None and rows[b][3] == 0:
            claim(single[b - 0x80], b)
    for lead in range(256):
        off, lo, hi, is_lead = rows[lead]
        if is_lead:
            for t in range(lo, hi + 1):
                claim(pool[off + t - lo], (lead << 8) | t)
    fixes = []
    for u in range(0x80, 0x10000):
        want = target[u]
        if built.get(u, 0) != want:
            if index[u // LEAF] == 0:
                fail(f'unit {u:04x} needs a fix outside every leaf')
            fixes.append((u, want))
            built[u] = want
    # Replay the lookup itself.
    for u in range(0x80, 0x10000):
        got = built.get(u, 0) if index[u // LEAF] else 0
        if got != target[u]:
            fail(f'replay of unit {u:04x}')
    return index, count, fixes


def build_dbcs(p):
    cp = p['cp']
    if p['kind'] != 'dbcs':
        fail(f'{cp}: not a double-byte page')
    check_ascii(p)
    default = int(p['unidefault'], 16)
    leads = set()
    for rng in p['leads'].split(','):
        lo, hi = (int(x, 16) for x in rng.split('-'))
        leads.update(range(lo, hi + 1))
    if set(p['pair']) != leads:
        fail(f'{cp}: pair rows do not match the lead bytes')
    single = []
    for b in range(0x80, 0x100):
        units = p['mb'][b]
        if len(units) != 1:
            fail(f'{cp}: byte {b:02x} alone gives {len(units)} units')
        if b in leads and units[0] != default:
            fail(f'{cp}: lead byte {b:02x} alone is not the default unit')
        single.append(units[0])
    pairs = {}
    for lead in leads:
        row = p['pair'][lead]
        if row[0] != [default, 0]:
            fail(f'{cp}: lead {lead:02x} before a zero byte is not the default unit and the zero')
        pairs[lead] = [None] + [None] * 255
        for t in range(1, 256):
            if len(row[t]) != 1:
                fail(f'{cp}: pair {lead:02x}{t:02x} gives {len(row[t])} units')
            pairs[lead][t] = row[t][0]
    rows, pool = rows_of(single, pairs, leads, default)
    for lead in leads:
        for t in range(1, 256):
            if decode_pair(rows, pool, default, lead, t) != pairs[lead][t]:
                fail(f'{cp}: replay of pair {lead:02x}{t:02x}')
    target = [0] * 0x10000
    for u in range(0x80, 0x10000):
        c = p['wc'][u]
        if is_pair(c):
            if (code_of(c) >> 8) not in leads:
                fail(f'{cp}: unit {u:04x} encodes to a pair without a lead byte')
        elif c in leads:
            fail(f'{cp}: unit {u:04x} encodes to a lone lead byte')
        if c == 0:
            fail(f'{cp}: unit {u:04x} encodes to a zero byte')
        target[u] = 0 if c == DEFAULT_BYTE else code_of(c)
    index, count, fixes = replay_encoder(single, rows, pool, default, target)
    return {'cp': cp, 'default': default, 'single': single, 'rows': rows, 'pool': pool,
            'index': index, 'leaves': count, 'fixes': fixes}


def build_jisx0212(p):
    """The JIS X 0212 plane of 20932 (lead A1-FE, trail 21-7E), in EUC form
    (trail | 0x80), without its user-defined (private-use) rows."""
    if p['cp'] != JIS_PAGE:
        fail('not 20932')
    default = int(p['unidefault'], 16)
    leads = set(range(0xA1, 0xFF))
    pairs = {}
    for lead in leads:
        pairs[lead] = [None] * 256
        for t in range(0x21, 0x7F):
            units = p['pair'][lead][t]
            if len(units) != 1:
                fail(f'20932: pair {lead:02x}{t:02x} gives {len(units)} units')
            u = units[0]
            if 0xE000 <= u <= 0xF8FF:
                continue
            pairs[lead][t | 0x80] = u
    rows, pool = rows_of(None, pairs, leads, default)
    target = [0] * 0x10000
    seen = {}
    for lead in leads:
        for t in range(0xA1, 0xFF):
            u = pairs[lead][t]
            if u is not None and u != default:
                if u in seen:
                    fail(f'20932: unit {u:04x} twice in the JIS X 0212 plane')
                seen[u] = (lead << 8) | t
    for u in range(0x80, 0x10000):
        c = p['wc'][u]
        if is_pair(c) and (c & 0xFF) < 0x80 and not 0xE000 <= u <= 0xF8FF:
            code = code_of(c) | 0x80
            if seen.get(u) != code:
                fail(f'20932: unit {u:04x} encodes outside its decoding')
            target[u] = code
    index, count, fixes = replay_encoder(None, rows, pool, default, target)
    return {'cp': 'JisX0212', 'default': default, 'single': None, 'rows': rows, 'pool': pool,
            'index': index, 'leaves': count, 'fixes': fixes}


def halfwidth_katakana():
    """The <narrow> decompositions of U+FF61-U+FF9F, except that the voiced
    and semi-voiced sound marks U+FF9E and U+FF9F decompose to the combining
    marks U+3099 and U+309A, where JIS X 0208 holds the spacing ones, U+309B
    and U+309C."""
    out = []
    for u in range(0xFF61, 0xFFA0):
        d = unicodedata.decomposition(chr(u)).split()
        if len(d) != 2 or d[0] != '<narrow>':
            fail(f'U+{u:04X} has no <narrow> decomposition')
        full = int(d[1], 16)
        out.append({0x3099: 0x309B, 0x309A: 0x309C}.get(full, full))
    return out


def fmt(values, width, per_line=16, indent='    '):
    lines = []
    for i in range(0, len(values), per_line):
        lines.append(indent + ', '.join(f'0x{v:0{width}x}' for v in values[i:i + per_line]) + ',')
    return '\n'.join(lines)


def emit_dbcs(out, t, name, sizes):
    pool, rows, fixes = t['pool'], t['rows'], t['fixes']
    if t['single'] is not None:
        out.append(f'// {name}: single bytes 0x80-0xFF (a lead byte alone is the default unit).')
        out.append(f'const uint16_t k{name}Single[] = {{\n{fmt(t["single"], 4)}\n}};')
        out.append(f'static_assert(sizeof(k{name}Single) / sizeof(k{name}Single[0]) == 128, "{name} single bytes");')
        sizes['decode'] += 256
    out.append(f'// {name}: per first byte: offset in the pool, first and last trail, lead flag.')
    out.append(f'const DbcsRow k{name}Rows[] = {{')
    for i in range(0, 256, 4):
        out.append('    ' + ' '.join(f'{{{o}, 0x{lo:02x}, 0x{hi:02x}, {ld}}},' for o, lo, hi, ld in rows[i:i + 4]))
    out.append('};')
    out.append(f'static_assert(sizeof(k{name}Rows) / sizeof(k{name}Rows[0]) == 256, "{name} rows");')
    out.append(f'// {name}: the units of each row\'s trails, rows in byte order.')
    out.append(f'const uint16_t k{name}Pool[] = {{\n{fmt(pool, 4)}\n}};')
    out.append(f'static_assert(sizeof(k{name}Pool) / sizeof(k{name}Pool[0]) == {len(pool)}, "{name} pool");')
    out.append(f'// {name}: unit / {LEAF} -> encoder leaf number + 1 (0: every unit of the block is unmappable).')
    out.append(f'const uint16_t k{name}EncodeIndex[] = {{\n{fmt(t["index"], 4)}\n}};')
    out.append(f'static_assert(sizeof(k{name}EncodeIndex) / sizeof(k{name}EncodeIndex[0]) == {0x10000 // LEAF}, '
               f'"{name} encoder index");')
    out.append(f'constexpr int k{name}EncodeLeaves = {t["leaves"]};')
    out.append(f'// {name}: units whose code is not the last code that decodes to them (0: unmappable).')
    out.append(f'const EncodeFix k{name}Fixes[] = {{')
    for i in range(0, len(fixes), 6):
        out.append('    ' + ' '.join(f'{{0x{u:04x}, 0x{c:04x}}},' for u, c in fixes[i:i + 6]))
    if not fixes:
        out.append('    {0, 0},')
    out.append('};')
    out.append(f'static_assert(sizeof(k{name}Fixes) / sizeof(k{name}Fixes[0]) == {max(1, len(fixes))}, "{name} fixes");')
    out.append(f'constexpr int k{name}FixCount = {len(fixes)};')
    out.append(f'constexpr uint16_t k{name}DefaultUnit = 0x{t["default"]:04x};')
    out.append('')
    sizes['decode'] += 256 * 8 + 2 * len(pool)
    sizes['encode'] += 2 * len(t['index']) + 4 * len(fixes)
    sizes['bss'] += 2 * LEAF * t['leaves']


def main():
    if len(sys.argv) != 3:
        sys.exit('usage: gen_tables.py DUMP OUTPUT')
    source, pages = parse(sys.argv[1])
    for cp in SBCS_PAGES + DBCS_PAGES + [JIS_PAGE]:
        if cp not in pages:
            fail(f'the dump lacks code page {cp}')
    high, tops, mids, leaves = build_sbcs(pages)
    dbcs = [build_dbcs(pages[cp]) for cp in DBCS_PAGES]
    jis = build_jisx0212(pages[JIS_PAGE])
    kana = halfwidth_katakana()

    sizes = {'decode': 0, 'encode': 0, 'bss': 0}
    out = [f'// Generated by tools/codepage/gen_tables.py from the conversions of {source}',
           '// (tools/codepage/dump_windows_tables.cpp: MultiByteToWideChar and WideCharToMultiByte,',
           '// flags 0, for every byte, lead-byte pair and unit) and the Unicode Character Database',
           f'// (Unicode {unicodedata.unidata_version}); do not edit. Rebuild with tools/codepage/regenerate.',
           '// Included by codepage/tables.cpp only.',
           '']
    out.append(f'constexpr int kSbcsPageCount = {len(SBCS_PAGES)};')
    out.append('// The single-byte pages, in the order of the tables below.')
    out.append('const unsigned kSbcsPages[] = {' + ', '.join(map(str, SBCS_PAGES)) + '};')
    out.append('static_assert(sizeof(kSbcsPages) / sizeof(kSbcsPages[0]) == kSbcsPageCount, "single-byte pages");')
    out.append('// Units of the bytes 0x80-0xFF (bytes below 0x80 are themselves).')
    out.append('const uint16_t kSbcsHigh[][128] = {')
    for cp, row in zip(SBCS_PAGES, high):
        out.append(f'  {{  // {cp}\n{fmt(row, 4)}\n  }},')
    out.append('};')
    out.append('static_assert(sizeof(kSbcsHigh) / sizeof(kSbcsHigh[0]) == kSbcsPageCount, "single-byte decoders");')
    out.append('// Encoder, three levels: unit >> 8 -> group (per page), (unit >> 4) & 15 -> leaf,')
    out.append('// unit & 15 -> byte. Group 0 and leaf 0 are all 0x3F.')
    out.append('const uint8_t kSbcsTop[][256] = {')
    for cp, top in zip(SBCS_PAGES, tops):
        out.append(f'  {{  // {cp}\n{fmt(top, 2)}\n  }},')
    out.append('};')
    out.append('static_assert(sizeof(kSbcsTop) / sizeof(kSbcsTop[0]) == kSbcsPageCount, "single-byte encoders");')
    out.append('const uint16_t kSbcsGroups[][16] = {')
    for m in mids:
        out.append('    {' + ', '.join(str(x) for x in m) + '},')
    out.append('};')
    out.append(f'static_assert(sizeof(kSbcsGroups) / sizeof(kSbcsGroups[0]) == {len(mids)}, "single-byte groups");')
    out.append('const uint8_t kSbcsLeaves[][16] = {')
    for leaf in leaves:
        out.append('    {' + ', '.join(f'0x{x:02x}' for x in leaf) + '},')
    out.append('};')
    out.append(f'static_assert(sizeof(kSbcsLeaves) / sizeof(kSbcsLeaves[0]) == {len(leaves)}, "single-byte leaves");')
    out.append('')
    sizes['decode'] += 256 * len(SBCS_PAGES)
    sizes['encode'] += 256 * len(SBCS_PAGES) + 32 * len(mids) + 16 * len(leaves)

    for t in dbcs:
        emit_dbcs(out, t, f'Cp{t["cp"]}', sizes)
    emit_dbcs(out, jis, 'JisX0212', sizes)

    out.append('// U+FF61-U+FF9F (half-width katakana) -> their full-width forms (the sound marks spacing).')
    out.append(f'const uint16_t kHalfwidthKatakana[] = {{\n{fmt(kana, 4)}\n}};')
    out.append('static_assert(sizeof(kHalfwidthKatakana) / sizeof(kHalfwidthKatakana[0]) == 63, "half-width katakana");')
    sizes['decode'] += 126
    out.append('')
    out.append(f'// Sizes: decoders {sizes["decode"]} bytes, encoders {sizes["encode"]} bytes of constants and '
               f'{sizes["bss"]} bytes')
    out.append('// of zero-initialised storage that each double-byte encoder fills on first use.')
    with open(sys.argv[2], 'w', encoding='ascii', newline='\n') as f:
        f.write('\n'.join(out) + '\n')
    print(f'gen_tables: {sys.argv[2]}: decoders {sizes["decode"]} B, encoders {sizes["encode"]} B, '
          f'built on use {sizes["bss"]} B')


if __name__ == '__main__':
    main()
