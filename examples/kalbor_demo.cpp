// A tour of the library: what it offers, shown on its own output.
#include <kalbor/kalbor.h>

#include <cstdio>
#include <cstring>
#include <initializer_list>

namespace {

void ShowSizeClasses() {
  std::printf("Size classes: a request goes to the smallest group that holds it\n");
  for (int size : {1, 32, 33, 700, 8192, 8193, 20000})
    std::printf("  %6d bytes -> group %6u%s\n", size, Ka_BufferPool::GetBufferGroup(size),
                size > 8192 ? " (heap block)" : "");
}

void ShowAllocation() {
  std::printf("\nAllocation functions: blocks with a reference-counted header\n");
  char* text = static_cast<char*>(_ka_malloc(12));
  std::strcpy(text, "hello pools");
  Ka_BufferData* header = Ka_BufferData::FromData(text);
  std::printf("  \"%s\": capacity %u, length %d, owners %d\n", text, header->nAllocLength,
              header->nDataLength, header->nRefs);
  text = static_cast<char*>(_ka_realloc(text, 100));
  std::printf("  grown to 100 bytes: capacity %u, text kept: \"%s\"\n",
              Ka_BufferData::FromData(text)->nAllocLength, text);
  ka_free(text);
}

void ShowPoolLifecycle() {
  std::printf("\nA pool of 32-byte units, 4 to a block\n");
  Ka_BufferPool pool(32, 4);
  Ka_BufferData* units[9];
  for (auto& u : units) u = pool.Alloc();
  std::printf("  9 units live: %d blocks of %u bytes\n", pool.GetBlockCount(), pool.GetBlockBytes());
  for (int i = 4; i < 8; ++i) {
    units[i]->nRefs = 0;
    pool.Free(units[i]);
  }
  std::printf("  the second block emptied: %d blocks (it went back to the heap)\n", pool.GetBlockCount());
  units[1]->nRefs = 0;
  pool.Free(units[1]);
  Ka_BufferData* again = pool.Alloc();
  std::printf("  a unit freed in the head is the next one handed out: %s\n",
              again == units[1] ? "yes" : "no");
}

void ShowStrings() {
  std::printf("\nStrings share their text until one of them changes it\n");
  Ka_AString greeting("hello, world", -1);
  Ka_AString copy = greeting;
  std::printf("  two strings, one text: %s\n", greeting.GetData() == copy.GetData() ? "yes" : "no");
  copy.MakeUpper();
  std::printf("  after MakeUpper on the copy: \"%s\" and \"%s\"\n", static_cast<const char*>(greeting),
              static_cast<const char*>(copy));
  Ka_AString formatted;
  formatted.Format("%-6hs|%5d|%.3f|%#x", "left", 42, 3.14159, 255);
  std::printf("  the format engine: \"%s\"\n", static_cast<const char*>(formatted));
  Ka_AString number;
  number.NumFormat(1234567.891, 0, 2);
  std::printf("  NumFormat(1234567.891, 0, 2): %s\n", static_cast<const char*>(number));
}

void ShowCodePages() {
  std::printf("\nCode pages: charset names and conversions\n");
  const unsigned int cp949 = ka_findcodepageA("KS_C_5601-1987");
  std::printf("  \"KS_C_5601-1987\" is code page %u, written back as \"%s\"\n", cp949, ka_findcharset(cp949));
  const char hangul949[] = "\xC7\xD1\xB1\xDB";  // two Hangul syllables in CP949
  Ka_WString wide(hangul949, -1, cp949);
  Ka_AString utf8(wide, -1, 65001);
  std::printf("  CP949 C7 D1 B1 DB -> %d UTF-16 units -> UTF-8 \"%s\"\n", wide.GetLength(),
              static_cast<const char*>(utf8));
}

void ShowCalendar() {
  std::printf("\nDates as digit strings, and the Korean lunar calendar\n");
  static const char* const kWeekdays[] = {"Sunday", "Monday", "Tuesday", "Wednesday",
                                          "Thursday", "Friday", "Saturday"};
  char out[KA_DATE_TEXT_SIZE];
  ka_add_daysA("20241231", 1, out);
  std::printf("  20241231 plus one day: %s, a %s\n", out, kWeekdays[ka_calc_weekdayA(out)]);
  ka_solar2lunarA("20040122", out);
  std::printf("  solar 20040122 is lunar %s; a workday? %s\n", out, ka_is_workdayA("20040122") ? "yes" : "no");
}

void ShowListsAndBuffers() {
  std::printf("\nLists and byte buffers\n");
  Ka_AStrList sorted(1);
  sorted.Parse("pear,apple,fig,apple", ",", 0, 0, 0, 0, 1, 0);
  std::printf("  a sorted list parsed from \"pear,apple,fig,apple\":");
  for (int i = 0; i < sorted.Count(); ++i) std::printf(" %s", static_cast<const char*>(sorted[i]));
  std::printf(" (equal items merged)\n");
  const unsigned char bytes[] = {0x00, 0xFF, 'K', 'a'};
  Ka_Buffer buffer(bytes, sizeof(bytes));
  std::printf("  Base64 of 00 FF 4B 61: %s; CRC-32 of \"123456789\": %08X\n",
              static_cast<const char*>(buffer.EncodeBase64()),
              ka_crc32(0, reinterpret_cast<const unsigned char*>("123456789"), 9));
}

void ShowDoubles() {
  std::printf("\nDoubles as 8 bytes, most significant first\n");
  char bytes[8];
  ka_dtobyte(1.0, bytes);
  std::printf("  1.0 ->");
  for (char b : bytes) std::printf(" %02X", static_cast<unsigned char>(b));
  std::printf("  (exponent %d)\n", ka_dblexponent(1.0));
}

}  // namespace

int main() {
  std::printf("Kalbor400U demo\n\n");
  ShowSizeClasses();
  ShowAllocation();
  ShowPoolLifecycle();
  ShowStrings();
  ShowCodePages();
  ShowCalendar();
  ShowListsAndBuffers();
  ShowDoubles();
  return 0;
}
