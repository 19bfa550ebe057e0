// Charset names, the device's code-page mapping and the locale code page.
#include <kalbor/codepage.h>
#include <kalbor/cstr.h>

#include <atomic>

#include "platform/platform.h"

namespace {

struct CharsetName {
  const char* name;
  unsigned int cp;
};

// The stored order is kept row for row: ka_findcodepageA searches it as it
// stands, and its order (which puts '_' below the digits) decides which
// names can be found; 30 of them never are (deliberate, see codepage.h).
// Deliberately kept as stored: the keys "chiness", "iso-5022-kr", "euctw"
// (874) and "euc_jp" (932, unlike "euc-jp" and "eucjp").
const CharsetName kNames[] = {
    {"ansi_x3.4-1986", 1252}, {"arabic", 28596},      {"ascii", 1252},          {"asmo-708", 28596},
    {"big5", 950},            {"chiness", 936},       {"cn-gb", 936},           {"cp1250", 1250},
    {"cp1251", 1251},         {"cp1252", 1252},       {"cp1253", 1253},         {"cp1254", 1254},
    {"cp1255", 1255},         {"cp1256", 1256},       {"cp1257", 1257},         {"cp1258", 1258},
    {"cp367", 1252},          {"cp720", 720},         {"cp819", 1252},          {"cp850", 850},
    {"cp852", 852},           {"cp862", 862},         {"cp866", 866},           {"cp874", 874},
    {"cp932", 932},           {"cp949", 949},         {"cyrillic", 28595},      {"dos-720", 720},
    {"dos-862", 862},         {"dos-874", 874},       {"ecma-114", 28596},      {"ecma-118", 28597},
    {"elot_928", 28597},      {"euc-jp", 51932},      {"euc-kr", 949},          {"euc_jp", 932},
    {"euc_kr", 949},          {"eucjp", 51932},       {"euckr", 949},           {"euctw", 874},
    {"gb2312", 936},          {"gb_2312-80", 936},    {"gbk", 936},             {"greek", 28597},
    {"greek8", 28597},        {"hebrew", 28598},      {"hz-gb-2312", 52936},    {"ibm367", 1252},
    {"ibm819", 1252},         {"ibm850", 850},        {"ibm852", 852},          {"ibm866", 866},
    {"iso-2022-cn", 936},     {"iso-2022-jp", 50220}, {"iso-5022-kr", 50225},   {"iso-8859-1", 1252},
    {"iso-8859-11", 874},     {"iso-8859-2", 28592},  {"iso-8859-3", 28593},    {"iso-8859-4", 28594},
    {"iso-8859-5", 28595},    {"iso-8859-6", 28596},  {"iso-8859-7", 28597},    {"iso-8859-8", 28598},
    {"iso-8859-8-i", 38598},  {"iso-8859-9", 1254},   {"iso-ir-100", 1252},     {"iso-ir-101", 28592},
    {"iso-ir-109", 28593},    {"iso-ir-110", 28594},  {"iso-ir-111", 28594},    {"iso-ir-126", 28597},
    {"iso-ir-127", 28596},    {"iso-ir-138", 28598},  {"iso-ir-144", 28595},    {"iso-ir-148", 1254},
    {"iso-ir-149", 949},      {"iso-ir-159", 932},    {"iso-ir-58", 936},       {"iso-ir-6", 1252},
    {"iso_646.irv:1991", 1252}, {"iso_8859-1", 1252}, {"iso_8859-2", 28592},    {"iso_8859-3", 28593},
    {"iso_8859-4", 28594},    {"iso_8859-5", 28595},  {"iso_8859-6", 28596},    {"iso_8859-7", 28597},
    {"iso_8859-8", 28598},    {"iso_8859-9", 1254},   {"iso2022jp", 932},       {"iso2022kr", 949},
    {"iso646-us", 1252},      {"iso8859-1", 1252},    {"iso8859-2", 28592},     {"iso8859-3", 28593},
    {"iso8859-4", 28594},     {"iso8859-5", 28595},   {"iso8859-6", 28596},     {"iso8859-7", 28597},
    {"iso8859-8", 28598},     {"iso8859-9", 1254},    {"iso8859_1", 1252},      {"iso8859_2", 28592},
    {"iso8859_3", 28593},     {"iso8859_4", 28594},   {"iso8859_5", 28595},     {"iso8859_6", 28596},
    {"iso8859_7", 28597},     {"iso8859_8", 28598},   {"iso8859_9", 1254},      {"koi", 20866},
    {"koi8-r", 20866},        {"koi8-ru", 21866},     {"koi8-u", 21866},        {"koi8r", 20866},
    {"koi8u", 21866},         {"korean", 949},        {"ks_c_5601", 949},       {"ks_c_5601-1987", 949},
    {"ks_c_5601-1989", 949},  {"ksc5601", 949},       {"ksc_5601", 949},        {"l1", 1252},
    {"l2", 28592},            {"l3", 28593},          {"l4", 28594},            {"l5", 1254},
    {"latin1", 1252},         {"latin2", 28592},      {"latin3", 28593},        {"latin4", 28594},
    {"latin5", 1254},         {"logical", 1255},      {"ms932", 932},           {"ms_kanji", 932},
    {"shift-jis", 932},       {"shift_jis", 932},     {"sjis", 932},            {"tis-620", 874},
    {"tis620", 874},          {"unicode", 1200},      {"us", 1252},             {"us-ascii", 1252},
    {"utf-16", 1200},         {"utf-8", 65001},       {"utf_16", 1200},         {"utf_8", 65001},
    {"utf16", 1200},          {"utf8", 65001},        {"visual", 28598},        {"windows-1250", 1250},
    {"windows-1251", 1251},   {"windows-1252", 1252}, {"windows-1253", 1253},   {"windows-1254", 1254},
    {"windows-1255", 1255},   {"windows-1256", 1256}, {"windows-1257", 1257},   {"windows-1258", 1258},
    {"windows-31j", 932},     {"windows-874", 874},   {"x0201", 932},           {"x0208", 932},
    {"x0212", 932},
};
const int kNameCount = sizeof(kNames) / sizeof(kNames[0]);
static_assert(kNameCount == 165, "the charset name table has 165 rows");

struct PreferredName {
  unsigned int cp;
  const char* name;
};
const PreferredName kPreferred[] = {
    {51932, "euc-jp"}, {949, "euc-kr"},   {50220, "iso-2022-jp-2"}, {50225, "iso-2022-kr"},
    {1252, "iso-8859-1"}, {932, "shift-jis"}, {65001, "utf-8"},     {0, nullptr},
};
const char kFallbackName[] = "ASCII";

std::atomic<unsigned int> g_localeCp{0};

}  // namespace

unsigned int KaSetLocaleCP(unsigned int cp) { return g_localeCp.exchange(cp, std::memory_order_relaxed); }

unsigned int KaGetLocaleCP() {
  unsigned int cp = g_localeCp.load(std::memory_order_relaxed);
  if (cp == 0) {
    // Two threads that both find it unchosen store the same value.
    cp = ka_platform::AnsiCodePage();
    g_localeCp.store(cp, std::memory_order_relaxed);
  }
  return cp;
}

unsigned int ka_findcodepageA(const char* name) {
  if (name == nullptr) return 0;
  int lo = 0, hi = kNameCount - 1;
  for (;;) {
    const int mid = (lo + hi) / 2;
    if (mid == lo) {
      if (ka_stricmpA(kNames[lo].name, name) == 0) return kNames[lo].cp;
      if (ka_stricmpA(kNames[hi].name, name) == 0) return kNames[hi].cp;
      return 0;
    }
    const int order = ka_stricmpA(kNames[mid].name, name);
    if (order == 0) return kNames[mid].cp;
    if (order > 0)
      hi = mid;
    else
      lo = mid;
    if (lo >= hi) return 0;
  }
}

unsigned int ka_findcodepageW(const ka_wchar* name) {
  if (name == nullptr) return 0;
  char narrow[33];
  ka_wide2ascii(narrow, name, 32);
  return ka_findcodepageA(narrow);
}

const char* ka_findcharset(unsigned int cp) {
  for (const PreferredName* p = kPreferred; p->name != nullptr; ++p)
    if (p->cp == cp) return p->name;
  return kFallbackName;
}

unsigned int ka_activecodepage(unsigned int cp) {
  switch (cp) {
    case 708:
    case 720:
    case 862:
    case 1256:
    case 28596:
      return 1256;
    case 852:
    case 866:
    case 874:
    case 932:
    case 936:
    case 949:
    case 950:
    case 1250:
    case 1251:
    case 1252:
    case 1253:
    case 1254:
    case 1255:
    case 1257:
    case 1258:
    case 65001:
      return cp;
    case 50220:
    case 51932:
      return 932;
    case 52936:
      return 936;
    case 50225:
      return 949;
    case 1200:
      return 65001;
    case 28592:
      return 1250;
    case 20866:
    case 21866:
    case 28595:
      return 1251;
    case 28597:
      return 1253;
    case 28593:
      return 1254;  // deliberately kept as the device had it (ISO-8859-3 is not Turkish)
    case 28594:
      return 1257;  // deliberately kept as the device had it
    case 28598:
    case 38598:
      return 1255;
    default:
      return 1252;  // 0 and 850 included
  }
}
