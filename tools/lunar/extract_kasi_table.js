#!/usr/bin/env node
// Writes the text source of the lunar year table, korean_lunar_1921_2050.txt,
// from the Korean lunisolar calendar data of the Korea Astronomy and Space
// Science Institute (KASI) as two independent npm packages carry it:
//   kor-lunar 1.4.0              (LUN_TABLE, lunar years 1890-2050)
//   korean-lunar-calendar 0.4.0  (KOREAN_LUNAR_DATA, lunar years 1000-2050)
// Both must agree on the leap month, its length and every month length of
// every year written, or nothing is written.
//
// Usage: npm pack kor-lunar@1.4.0 korean-lunar-calendar@0.4.0, unpack each
// tarball, then
//   node extract_kasi_table.js <kor-lunar dir> <korean-lunar-calendar dir> > korean_lunar_1921_2050.txt
'use strict';
const fs = require('fs');
const path = require('path');

const FIRST = 1921, LAST = 2050;

// The numbers of the array literal that follows `name` in a bundled file.
function arrayAfter(file, name) {
  const src = fs.readFileSync(file, 'utf8');
  const at = src.indexOf(name);
  if (at < 0) throw new Error(`${name} not found in ${file}`);
  const open = src.indexOf('[', at);
  const close = src.indexOf(']', open);
  const body = src.slice(open + 1, close).replace(/\/\*[\s\S]*?\*\//g, '');
  const values = body.split(',').map((s) => s.trim()).filter((s) => s.length > 0).map(Number);
  if (values.some((v) => !Number.isInteger(v))) throw new Error(`${name}: not a list of integers`);
  return values;
}

// A year as leap month, leap length and the twelve month lengths.
function year(leap, leapBig, bigOf) {
  const months = [];
  for (let m = 1; m <= 12; m++) months.push(bigOf(m) ? 30 : 29);
  return { leap, leapLength: leap === 0 ? 0 : (leapBig ? 30 : 29), months };
}

// kor-lunar: bits 0-11 month 1..12 (month 1 in bit 0), 12-15 leap month,
// 16 leap month is long, 17-25 year length.
function fromKorLunar(dir) {
  const rows = arrayAfter(path.join(dir, 'package/dist/kor-lunar.js'), 'LUN_TABLE = ');
  return (y) => {
    const r = rows[y - 1890];
    return year((r >> 12) & 15, (r >> 16) & 1, (m) => (r >> (m - 1)) & 1);
  };
}

// korean-lunar-calendar: month m in bit 12 - m, 12-15 leap month, 16 leap
// month is long; rows from lunar year 1000.
function fromKoreanLunarCalendar(dir) {
  const file = path.join(dir, 'package/dist/korean-lunar-calendar.js');
  const src = fs.readFileSync(file, 'utf8');
  const base = Number(/KOREAN_LUNAR_BASE_YEAR:\s*([0-9e.]+)/.exec(src)[1]);
  const rows = arrayAfter(file, 'KOREAN_LUNAR_DATA:');
  return (y) => {
    const r = rows[y - base];
    return year((r >> 12) & 15, (r >> 16) & 1, (m) => (r >> (12 - m)) & 1);
  };
}

const a = fromKorLunar(process.argv[2]);
const b = fromKoreanLunarCalendar(process.argv[3]);
const lines = [
  '# The Korean lunisolar calendar, lunar years 1921-2050 (KASI, Korea Astronomy and',
  '# Space Science Institute), as carried by the npm packages kor-lunar 1.4.0 and',
  '# korean-lunar-calendar 0.4.0, which agree on every row. Written by',
  '# tools/lunar/extract_kasi_table.js.',
  '# year, leap month (0: none; the leap month follows this regular month),',
  '# leap month length (0: none), lengths of the regular months 1 to 12',
];
for (let y = FIRST; y <= LAST; y++) {
  const x = a(y), z = b(y);
  if (JSON.stringify(x) !== JSON.stringify(z))
    throw new Error(`the sources disagree on ${y}: ${JSON.stringify(x)} / ${JSON.stringify(z)}`);
  lines.push([y, x.leap, x.leapLength, ...x.months].join(' '));
}
process.stdout.write(lines.join('\n') + '\n');
