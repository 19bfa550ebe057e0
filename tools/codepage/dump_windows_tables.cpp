// Writes what the system's MultiByteToWideChar and WideCharToMultiByte (flags
// 0, no default character) give for every single byte, every byte pair that
// starts with a lead byte, and every 16-bit unit of the table-based code pages
// that Kalbor400U converts. Built with MinGW-w64 and run under Wine (or on
// Windows); tools/codepage/gen_tables.py turns the output into the library's
// tables. See tools/codepage/regenerate.
//
// Output, one record a line, all numbers in hexadecimal:
//   source <system>              "Wine <version>" or "Windows <version>"
//   page <cp> <sbcs|dbcs> default=<byte> unidefault=<unit> leads=<lo-hi,...>
//   mb <b> <units...>            units of the one byte b alone
//   pair <lead> <units...>       for trails 00..ff: the units of [lead, trail],
//                                '+' joins two units, '.' separates trails
//   wc <first> <codes...>        for 256 units from first: the bytes of each,
//                                as 2 or 4 hex digits
//   end
#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <string>

namespace {

const unsigned kTablePages[] = {874,   1250,  1251,  1252,  1253,  1254,  1255,  1256,  1257,
                                1258,  708,   720,   850,   852,   862,   866,   28592, 28593,
                                28594, 28595, 28596, 28597, 28598, 20866, 21866, 932,   936,
                                949,   950,   20932};

std::string Hex(unsigned v, int digits) {
  char buf[16];
  std::snprintf(buf, sizeof(buf), "%0*x", digits, v);
  return buf;
}

// The units of one multi-byte input, '+'-joined; "!" when the call fails.
std::string Units(unsigned cp, const char* src, int len) {
  WCHAR out[8];
  const int n = MultiByteToWideChar(cp, 0, src, len, out, 8);
  if (n <= 0) return "!";
  std::string s;
  for (int i = 0; i < n; ++i) s += (i ? "+" : "") + Hex(out[i], 4);
  return s;
}

bool DumpPage(unsigned cp) {
  CPINFOEXW info;
  if (!GetCPInfoExW(cp, 0, &info)) {
    std::fprintf(stderr, "code page %u is not available\n", cp);
    return false;
  }
  const bool dbcs = info.MaxCharSize == 2;
  bool lead[256] = {};
  std::string leads;
  for (int i = 0; i < MAX_LEADBYTES && info.LeadByte[i] != 0; i += 2) {
    for (unsigned b = info.LeadByte[i]; b <= info.LeadByte[i + 1]; ++b) lead[b] = true;
    leads += (leads.empty() ? "" : ",") + Hex(info.LeadByte[i], 2) + "-" + Hex(info.LeadByte[i + 1], 2);
  }
  std::printf("page %u %s default=%s unidefault=%s leads=%s\n", cp, dbcs ? "dbcs" : "sbcs",
              Hex(info.DefaultChar[0], 2).c_str(), Hex(info.UnicodeDefaultChar, 4).c_str(),
              leads.empty() ? "none" : leads.c_str());
  for (unsigned b = 0; b < 256; ++b) {
    const char c = static_cast<char>(b);
    std::printf("mb %s %s\n", Hex(b, 2).c_str(), Units(cp, &c, 1).c_str());
  }
  for (unsigned l = 0; l < 256; ++l) {
    if (!lead[l]) continue;
    std::string line = "pair " + Hex(l, 2) + " ";
    for (unsigned t = 0; t < 256; ++t) {
      const char pair[2] = {static_cast<char>(l), static_cast<char>(t)};
      line += (t ? "." : "") + Units(cp, pair, 2);
    }
    std::printf("%s\n", line.c_str());
  }
  for (unsigned first = 0; first < 0x10000; first += 256) {
    std::string line = "wc " + Hex(first, 4);
    for (unsigned u = first; u < first + 256; ++u) {
      const WCHAR w = static_cast<WCHAR>(u);
      unsigned char out[8];
      const int n = WideCharToMultiByte(cp, 0, &w, 1, reinterpret_cast<char*>(out), 8, nullptr, nullptr);
      if (n == 1)
        line += " " + Hex(out[0], 2);
      else if (n == 2)
        line += " " + Hex(out[0], 2) + Hex(out[1], 2);
      else
        line += " !";
    }
    std::printf("%s\n", line.c_str());
  }
  std::printf("end\n");
  return true;
}

// Names the system whose conversions are written.
void PrintSource() {
  typedef const char*(CDECL * WineVersion)();
  const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
  const WineVersion wine =
      ntdll ? reinterpret_cast<WineVersion>(reinterpret_cast<void*>(GetProcAddress(ntdll, "wine_get_version")))
            : nullptr;
  if (wine != nullptr) {
    std::printf("source Wine %s\n", wine());
    return;
  }
  OSVERSIONINFOW v = {};
  v.dwOSVersionInfoSize = sizeof(v);
  GetVersionExW(&v);
  std::printf("source Windows %lu.%lu.%lu\n", v.dwMajorVersion, v.dwMinorVersion, v.dwBuildNumber);
}

}  // namespace

int main() {
  // Binary output: records end in a line feed alone, on Windows too.
  _setmode(_fileno(stdout), _O_BINARY);
  PrintSource();
  bool ok = true;
  for (unsigned cp : kTablePages) ok = DumpPage(cp) && ok;
  return ok ? 0 : 1;
}
