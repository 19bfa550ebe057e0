// kalbor: the library's command-line tool. Each command is a thin layer over
// the public interface: charset names and the converters, the calendar,
// Base64, URL and XML escaping, CRC-32 and the format engine.
//
// Exit status: 0 when the job is done, 1 when it failed (an unreadable file,
// input a decoder refuses, a date outside the lunar table), 2 for bad usage.
// Messages go to standard error, prefixed "kalbor: ". Input and output are
// bytes: standard streams are put in binary mode first.
#include <kalbor/kalbor.h>

#include <charconv>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

enum Status { kDone = 0, kFailed = 1, kUsage = 2 };

// The code page of the command line's text: the platform's ANSI code page
// (UTF-8 except on Windows), read before the tool sets its own.
unsigned int g_argumentCodePage = 65001;

// conv reads its input this many bytes at a time.
constexpr size_t kChunk = 65536;

const char kHelp[] =
    "Usage: kalbor COMMAND [ARG...]\n"
    "\n"
    "Text:\n"
    "  conv --from NAME --to NAME [FILE]  re-encode text between two charsets\n"
    "  base64 [-d] [FILE]                 Base64-encode (-d: decode)\n"
    "  url [-d] [FILE]                    percent-encode (-d: decode)\n"
    "  xml [-d] [FILE]                    XML-escape (-d: unescape)\n"
    "  crc32 [FILE...]                    the CRC-32 of each file\n"
    "  format FORMAT [ARG...]             the library's format engine\n"
    "Calendar:\n"
    "  lunar DATE                         the Korean lunar date of a Gregorian date\n"
    "  solar DATE                         the Gregorian date of a lunar date\n"
    "  workday DATE                       \"workday\" or \"holiday\"\n"
    "  days DATE1 DATE2                   the days between two dates\n"
    "  adddays DATE N                     the date N days later (N < 0: earlier)\n"
    "  addmonths DATE N                   the date N months later\n"
    "  weekday DATE                       the day of the week\n"
    "  today                              the local date and time, YYYYMMDDhhmmss\n"
    "\n"
    "A DATE is YYYYMMDD, the library's own form, or YYYY-MM-DD; dates are\n"
    "written YYYYMMDD. Without a FILE, standard input is read.\n"
    "Run 'kalbor COMMAND --help' for one command's details.\n"
    "Exit status: 0 done, 1 failed, 2 bad usage.\n";

// ---- Messages ---------------------------------------------------------------------

void Message(const char* format, va_list args) {
  std::fputs("kalbor: ", stderr);
  std::vfprintf(stderr, format, args);
  std::fputc('\n', stderr);
}

// Reports bad usage of command (null: of the tool) and returns kUsage.
int UsageError(const char* command, const char* format, ...) {
  va_list args;
  va_start(args, format);
  Message(format, args);
  va_end(args);
  if (command != nullptr)
    std::fprintf(stderr, "Try 'kalbor %s --help'.\n", command);
  else
    std::fputs("Try 'kalbor --help'.\n", stderr);
  return kUsage;
}

// Reports a failed job and returns kFailed.
int Failure(const char* format, ...) {
  va_list args;
  va_start(args, format);
  Message(format, args);
  va_end(args);
  return kFailed;
}

// ---- Input and output ---------------------------------------------------------------

bool Write(const void* p, size_t n) { return n == 0 || std::fwrite(p, 1, n, stdout) == n; }
bool Write(const std::string& s) { return Write(s.data(), s.size()); }
bool Write(const char* s) { return Write(s, std::strlen(s)); }

// An input: a named file, or standard input for no name or "-".
class Input {
 public:
  explicit Input(const char* path) : m_path(path != nullptr ? path : "-") {
    m_file = m_path == "-" ? stdin : std::fopen(m_path.c_str(), "rb");
  }
  ~Input() {
    if (m_file != nullptr && m_file != stdin) std::fclose(m_file);
  }
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;

  bool IsOpen() const { return m_file != nullptr; }
  const std::string& Path() const { return m_path; }
  // Reads up to n bytes, fewer only at the end; false on a read error.
  bool Read(char* p, size_t n, size_t* got) {
    *got = std::fread(p, 1, n, m_file);
    return !std::ferror(m_file);
  }
  // Appends the rest of the input to out; false on a read error.
  bool ReadAll(std::string* out) {
    std::vector<char> chunk(kChunk);
    size_t got = 0;
    do {
      if (!Read(chunk.data(), chunk.size(), &got)) return false;
      out->append(chunk.data(), got);
    } while (got == chunk.size());
    return true;
  }

 private:
  std::string m_path;
  std::FILE* m_file;
};

int CannotOpen(const Input& in) { return Failure("cannot open '%s'", in.Path().c_str()); }
int CannotRead(const Input& in) { return Failure("cannot read '%s'", in.Path().c_str()); }

// ---- Arguments --------------------------------------------------------------------

struct Args {
  const char* command;
  std::vector<const char*> list;  // the arguments after the command
};

// Reads a decimal integer (an optional sign, then digits, nothing else)
// within lo..hi.
bool ParseInteger(const char* s, long long lo, long long hi, long long* out) {
  const char* end = s + std::strlen(s);
  if (*s == '+' && s[1] != '-') ++s;
  long long v = 0;
  const auto r = std::from_chars(s, end, v);
  if (r.ec != std::errc() || r.ptr != end || v < lo || v > hi) return false;
  *out = v;
  return true;
}

// A date argument: YYYYMMDD, or YYYY-MM-DD turned into it. Only the form is
// checked here.
bool ParseDateText(const char* s, char out[9]) {
  const size_t n = std::strlen(s);
  size_t k = 0;
  for (size_t i = 0; i < n; ++i) {
    const bool dash = n == 10 && (i == 4 || i == 7);
    if (dash ? s[i] != '-' : (s[i] < '0' || s[i] > '9')) return false;
    if (!dash) out[k++] = s[i];
  }
  out[k] = 0;
  return k == 8 && (n == 8 || n == 10);
}

// A Gregorian date argument, valid as the library's ka_is_dateA judges it.
bool ParseDate(const char* s, char out[9]) { return ParseDateText(s, out) && ka_is_dateA(out) != 0; }

int TwoDigits(const char* p) { return (p[0] - '0') * 10 + (p[1] - '0'); }

// The day number of a lunar year and regular month's first day; -1 outside
// the library's lunar table.
int LunarMonthStart(int year, int month) {
  Ka_AString lunar;
  lunar.Format("%04d%02d01", year, month);
  char solar[KA_DATE_TEXT_SIZE];
  return ka_lunar2solarA(lunar, solar) == 0 ? ka_calc_basedaysA(solar) : -1;
}

// The last Gregorian day of the lunar table's last year, lunar 2049-12-29
// (ka_solar2lunarA takes Gregorian years up to 2049 only).
const char kLunarTableEnd[] = "20500122";

// The lunar date of a valid Gregorian date, as YYYYMMDD, and whether it lies
// in a leap month. False outside the lunar table. ka_solar2lunarA's year
// walk deliberately ends in lunar 2004; later dates (the function writes
// month 13 for them) are found from the month starts that ka_lunar2solarA
// gives, which cover the whole table.
bool SolarToLunar(const char* solar, std::string* lunar, bool* leap) {
  char text[KA_LUNAR_TEXT_SIZE];
  const int r = ka_solar2lunarA(solar, text);
  if (r == -2 || std::strcmp(solar, kLunarTableEnd) > 0) return false;
  if (r >= 0 && std::strlen(text) == 8 && TwoDigits(text + 4) <= 12) {
    if (TwoDigits(text + 6) < 1) return false;  // lunar 1920, before the table
    *lunar = text;
    *leap = r == 0;
    return true;
  }
  const int day = ka_calc_basedaysA(solar);
  const int year = (solar[0] - '0') * 1000 + (solar[1] - '0') * 100 + TwoDigits(solar + 2);
  for (int y = year; y >= year - 1; --y) {
    for (int m = 12; m >= 1; --m) {
      const int start = LunarMonthStart(y, m);
      if (start < 0 || start > day) continue;
      const int next = m < 12 ? LunarMonthStart(y, m + 1) : LunarMonthStart(y + 1, 1);
      int d = day - start + 1;
      *leap = false;
      if (next >= 0 && next - start > 30) {
        // A leap month follows month m. ka_lunar2solarA refuses a day beyond
        // the leap month's length, which tells 29 days from 30.
        Ka_AString probe;
        probe.Format("%04d%02d30", y, m);
        char unused[KA_DATE_TEXT_SIZE];
        const int leapLength = ka_lunar2solarA(probe, unused) < 0 ? 29 : 30;
        const int length = next - start - leapLength;
        if (d > length) {
          d -= length;
          *leap = true;
        }
      }
      Ka_AString out;
      out.Format("%04d%02d%02d", y, m, d);
      *lunar = static_cast<const char*>(out);
      return true;
    }
  }
  return false;
}

// ---- Commands -------------------------------------------------------------------

struct Command {
  const char* name;
  int (*run)(const Args&);
  const char* help;  // usage line and explanation
};

int ExpectCount(const Args& a, size_t lo, size_t hi) {
  if (a.list.size() < lo) return UsageError(a.command, "missing argument");
  if (a.list.size() > hi) return UsageError(a.command, "too many arguments");
  return kDone;
}

int BadDate(const Args& a, const char* s) { return UsageError(a.command, "not a valid date: '%s'", s); }

int Print(const std::string& line) { return Write(line + "\n") ? kDone : kFailed; }

int RunLunar(const Args& a) {
  if (int e = ExpectCount(a, 1, 1)) return e;
  char date[9];
  if (!ParseDate(a.list[0], date)) return BadDate(a, a.list[0]);
  std::string lunar;
  bool leap = false;
  if (!SolarToLunar(date, &lunar, &leap))
    return Failure("no lunar date for %s: the lunar table covers 1921-02-08 to 2050-01-22", date);
  return Print(leap ? lunar + " leap" : lunar);
}

int RunSolar(const Args& a) {
  if (int e = ExpectCount(a, 1, 1)) return e;
  char date[9];
  if (!ParseDateText(a.list[0], date) || TwoDigits(date + 4) < 1 || TwoDigits(date + 4) > 12 ||
      TwoDigits(date + 6) < 1 || TwoDigits(date + 6) > 30)
    return UsageError(a.command, "not a valid lunar date: '%s'", a.list[0]);
  char solar[KA_DATE_TEXT_SIZE];
  if (ka_lunar2solarA(date, solar) != 0)
    return Failure("no Gregorian date for lunar %s: the lunar table covers the lunar years 1921-2049", date);
  return Print(solar);
}

// The fixed lunar holidays of the library's workday test, MMDD: the New
// Year's eve (as 12-29, as the library has it), New Year, Buddha's birthday
// and Chuseok.
const char* const kLunarHolidays[] = {"1229", "0101", "0102", "0408", "0814", "0815", "0816"};

int RunWorkday(const Args& a) {
  if (int e = ExpectCount(a, 1, 1)) return e;
  char date[9];
  if (!ParseDate(a.list[0], date)) return BadDate(a, a.list[0]);
  bool workday = ka_is_workdayA(date) != 0;
  // ka_is_workdayA finds lunar dates with ka_solar2lunarA, whose walk ends
  // in lunar 2004; the lunar date found here holds for the whole table.
  std::string lunar;
  bool leap = false;
  if (workday && SolarToLunar(date, &lunar, &leap))
    for (const char* holiday : kLunarHolidays)
      if (lunar.compare(4, 4, holiday) == 0) workday = false;
  return Print(workday ? "workday" : "holiday");
}

int RunDays(const Args& a) {
  if (int e = ExpectCount(a, 2, 2)) return e;
  char d1[9], d2[9];
  if (!ParseDate(a.list[0], d1)) return BadDate(a, a.list[0]);
  if (!ParseDate(a.list[1], d2)) return BadDate(a, a.list[1]);
  return Print(std::to_string(ka_calc_daysA(d1, d2)));
}

int RunAdd(const Args& a, int (*add)(const char*, int, char*)) {
  if (int e = ExpectCount(a, 2, 2)) return e;
  char date[9];
  if (!ParseDate(a.list[0], date)) return BadDate(a, a.list[0]);
  long long n = 0;
  if (!ParseInteger(a.list[1], INT32_MIN, INT32_MAX, &n))
    return UsageError(a.command, "not a whole number from -2147483648 to 2147483647: '%s'", a.list[1]);
  char out[KA_DATE_TEXT_SIZE];
  add(date, static_cast<int>(n), out);
  return Print(out);
}
int RunAddDays(const Args& a) { return RunAdd(a, ka_add_daysA); }
int RunAddMonths(const Args& a) { return RunAdd(a, ka_add_monthA); }

int RunWeekday(const Args& a) {
  static const char* const kNames[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
  if (int e = ExpectCount(a, 1, 1)) return e;
  char date[9];
  if (!ParseDate(a.list[0], date)) return BadDate(a, a.list[0]);
  const int w = ka_calc_weekdayA(date);
  return Print(w >= 0 && w <= 6 ? kNames[w] : "?");
}

int RunToday(const Args& a) {
  if (int e = ExpectCount(a, 0, 0)) return e;
  char now[15];
  return Print(ka_todayA(now));
}

// ---- conv ----------------------------------------------------------------------

// How many of the n bytes of text in code page cp can be converted now
// without cutting a character in two; the rest waits for more input. For
// the pages that switch state with escape sequences (ISO-2022, HZ), whose
// lines end in their ASCII state, that is up to the last line feed.
size_t CompletePrefix(unsigned int cp, const unsigned char* p, size_t n) {
  switch (cp) {
    case 65001: {
      // Back over continuation bytes to the last lead byte; keep its
      // character back unless all of its bytes are here.
      size_t i = n;
      while (i > 0 && n - i < 4 && (p[i - 1] & 0xC0) == 0x80) --i;
      if (i == 0) return n;  // no lead byte near the end: nothing to wait for
      const unsigned char lead = p[i - 1];
      const size_t need = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
      return n - (i - 1) >= need ? n : i - 1;
    }
    case 932: case 936: case 949: case 950: case 51932: {
      // Walk the characters from the start: a lead byte takes one more byte
      // (two more for EUC-JP's 0x8F).
      size_t i = 0;
      while (i < n) {
        const unsigned char b = p[i];
        size_t len = 1;
        if (cp == 932)
          len = (b >= 0x81 && b <= 0x9F) || (b >= 0xE0 && b <= 0xFC) ? 2 : 1;
        else if (cp == 51932)
          len = b == 0x8F ? 3 : (b == 0x8E || (b >= 0xA1 && b <= 0xFE)) ? 2 : 1;
        else
          len = b >= 0x81 && b <= 0xFE ? 2 : 1;
        if (i + len > n) return i;
        i += len;
      }
      return n;
    }
    case 50220: case 50225: case 52936: {
      size_t i = n;
      while (i > 0 && p[i - 1] != '\n') --i;
      return i;
    }
    default:
      return n;  // single-byte pages
  }
}

// Converts n bytes (n > 0) of page from into page to and writes them.
bool ConvertAndWrite(const char* p, size_t n, unsigned int from, unsigned int to, std::vector<ka_wchar>* wide,
                     std::vector<char>* narrow) {
  const int len = static_cast<int>(n);
  const int units = KaToUnicode(nullptr, 0, p, len, from);
  if (units == 0) return true;  // only shifts of state
  wide->resize(static_cast<size_t>(units) + 1);
  KaToUnicode(wide->data(), units, p, len, from);
  const int bytes = KaToAscii(nullptr, 0, wide->data(), units, to);
  narrow->resize(static_cast<size_t>(bytes) + 1);
  KaToAscii(narrow->data(), bytes, wide->data(), units, to);
  return Write(narrow->data(), static_cast<size_t>(bytes));
}

// A charset name's code page that the library converts; 0 after reporting
// why not.
unsigned int ConvPage(const Args& a, const char* option, const char* name) {
  const unsigned int cp = ka_findcodepageA(name);
  if (cp == 0) {
    UsageError(a.command, "unknown charset name for %s: '%s'", option, name);
    return 0;
  }
  const ka_wchar probe[] = {'a', 0};
  if (KaToUnicode(nullptr, 0, "a", 1, cp) == 0 || KaToAscii(nullptr, 0, probe, 1, cp) == 0) {
    UsageError(a.command, "charset '%s' (code page %u) is not one the library converts", name, cp);
    return 0;
  }
  return cp;
}

int RunConv(const Args& a) {
  const char* fromName = nullptr;
  const char* toName = nullptr;
  const char* path = nullptr;
  for (size_t i = 0; i < a.list.size(); ++i) {
    const char* s = a.list[i];
    const bool from = std::strcmp(s, "--from") == 0;
    if (from || std::strcmp(s, "--to") == 0) {
      if (i + 1 == a.list.size()) return UsageError(a.command, "%s needs a charset name", s);
      (from ? fromName : toName) = a.list[++i];
    } else if (s[0] == '-' && s[1] != 0) {
      return UsageError(a.command, "unknown option '%s'", s);
    } else if (path != nullptr) {
      return UsageError(a.command, "too many arguments");
    } else {
      path = s;
    }
  }
  if (fromName == nullptr || toName == nullptr) return UsageError(a.command, "both --from and --to are needed");
  const unsigned int from = ConvPage(a, "--from", fromName);
  if (from == 0) return kUsage;
  const unsigned int to = ConvPage(a, "--to", toName);
  if (to == 0) return kUsage;

  Input in(path);
  if (!in.IsOpen()) return CannotOpen(in);
  // The buffer holds the tail kept back from the last chunk, then a new
  // chunk. A stateful page's line longer than three chunks is cut there.
  std::vector<char> buf(4 * kChunk);
  std::vector<ka_wchar> wide;
  std::vector<char> narrow;
  size_t kept = 0;
  for (;;) {
    size_t got = 0;
    if (!in.Read(buf.data() + kept, kChunk, &got)) return CannotRead(in);
    const size_t n = kept + got;
    const bool end = got < kChunk;
    size_t ready = end ? n : CompletePrefix(from, reinterpret_cast<const unsigned char*>(buf.data()), n);
    if (n - ready > 3 * kChunk) ready = n;
    if (ready > 0 && !ConvertAndWrite(buf.data(), ready, from, to, &wide, &narrow)) return kFailed;
    if (end) return kDone;
    kept = n - ready;
    std::memmove(buf.data(), buf.data() + ready, kept);
  }
}

// ---- base64, url, xml, crc32 -------------------------------------------------------

// Parses [-d] [FILE] into *decode and *path.
int CodecArgs(const Args& a, bool* decode, const char** path) {
  *decode = false;
  *path = nullptr;
  for (const char* s : a.list) {
    if (std::strcmp(s, "-d") == 0 || std::strcmp(s, "--decode") == 0)
      *decode = true;
    else if (s[0] == '-' && s[1] != 0)
      return UsageError(a.command, "unknown option '%s'", s);
    else if (*path != nullptr)
      return UsageError(a.command, "too many arguments");
    else
      *path = s;
  }
  return kDone;
}

int RunBase64(const Args& a) {
  bool decode = false;
  const char* path = nullptr;
  if (int e = CodecArgs(a, &decode, &path)) return e;
  Input in(path);
  if (!in.IsOpen()) return CannotOpen(in);
  if (!decode) {
    // Whole groups of three bytes encode on their own, so the text comes out
    // chunk by chunk.
    std::vector<char> chunk(3 * 21846);
    bool any = false;
    size_t got = 0;
    do {
      if (!in.Read(chunk.data(), chunk.size(), &got)) return CannotRead(in);
      if (got == 0) break;
      const Ka_AString text = Ka_Buffer(reinterpret_cast<const unsigned char*>(chunk.data()), static_cast<long>(got))
                                  .EncodeBase64();
      if (!Write(text, static_cast<size_t>(text.GetLength()))) return kFailed;
      any = true;
    } while (got == chunk.size());
    return !any || Write("\n") ? kDone : kFailed;
  }
  std::string text;
  if (!in.ReadAll(&text)) return CannotRead(in);
  // Line breaks and blanks are dropped; anything else outside the alphabet,
  // or text after the "=" padding, is refused.
  std::string digits;
  size_t padding = 0;
  for (const unsigned char c : text) {
    const bool alphabet = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' ||
                          c == '/';
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n') continue;
    if (c == '=' && ++padding <= 2) continue;
    if (!alphabet || padding > 0) return Failure("invalid Base64 input");
    digits += static_cast<char>(c);
  }
  if (digits.size() % 4 == 1 || (padding > 0 && (digits.size() + padding) % 4 != 0))
    return Failure("invalid Base64 input: incomplete last group");
  if (digits.empty()) return kDone;
  Ka_Buffer bytes;
  bytes.DecodeBase64(digits.c_str(), static_cast<long>(digits.size()));
  return Write(bytes.GetPtr(0), static_cast<size_t>(bytes.GetLength())) ? kDone : kFailed;
}

// The string classes measure their decoded text to its first zero byte, so
// the escaping commands work between zero bytes, which they pass through
// (url's encoder writes one as "%00", url's decoder reads "%00" as one).
template <class Piece>
bool EachPiece(const std::string& text, const char* zero, Piece piece) {
  const size_t zeroLength = std::strlen(zero);
  size_t at = 0;
  for (;;) {
    size_t next = zeroLength == 0 ? text.find('\0', at) : text.find(zero, at, zeroLength);
    if (!piece(text.data() + at, (next == std::string::npos ? text.size() : next) - at)) return false;
    if (next == std::string::npos) return true;
    at = next + (zeroLength == 0 ? 1 : zeroLength);
  }
}

int RunEscape(const Args& a, bool url) {
  bool decode = false;
  const char* path = nullptr;
  if (int e = CodecArgs(a, &decode, &path)) return e;
  Input in(path);
  if (!in.IsOpen()) return CannotOpen(in);
  std::string text;
  if (!in.ReadAll(&text)) return CannotRead(in);
  if (text.size() > 0x7FFFE000u / 3) return Failure("input too long");
  std::string out;
  const char* zeroIn = decode && url ? "%00" : "";
  const char* zeroOut = !decode && url ? "%00" : "";
  bool first = true;
  EachPiece(text, zeroIn, [&](const char* p, size_t n) {
    if (!first) out.append(*zeroOut ? zeroOut : std::string(1, '\0'));
    first = false;
    const Ka_AString piece(p, static_cast<int>(n));
    Ka_AString done;
    if (decode)
      done = url ? piece.DecodeUrl() : piece.DecodeXml();
    else
      done = url ? piece.EncodeUrl() : piece.EncodeXml();
    out.append(static_cast<const char*>(done) != nullptr ? static_cast<const char*>(done) : "",
               static_cast<size_t>(done.GetLength()));
    return true;
  });
  return Write(out) ? kDone : kFailed;
}
int RunUrl(const Args& a) { return RunEscape(a, true); }
int RunXml(const Args& a) { return RunEscape(a, false); }

int RunCrc32(const Args& a) {
  for (const char* s : a.list)
    if (s[0] == '-' && s[1] != 0) return UsageError(a.command, "unknown option '%s'", s);
  std::vector<const char*> paths = a.list;
  if (paths.empty()) paths.push_back(nullptr);
  int status = kDone;
  std::vector<char> chunk(kChunk);
  for (const char* path : paths) {
    Input in(path);
    if (!in.IsOpen()) {
      status = CannotOpen(in);
      continue;
    }
    unsigned int crc = 0;
    size_t got = 0;
    bool ok = true;
    do {
      if (!in.Read(chunk.data(), chunk.size(), &got)) {
        ok = false;
        break;
      }
      crc = ka_crc32(crc, reinterpret_cast<const unsigned char*>(chunk.data()), static_cast<int>(got));
    } while (got == chunk.size());
    if (!ok) {
      status = CannotRead(in);
      continue;
    }
    Ka_AString line;
    if (path != nullptr)
      line.Format("%08x  %hs", crc, path);
    else
      line.Format("%08x", crc);
    if (Print(static_cast<const char*>(line)) != kDone) return kFailed;
  }
  return status;
}

// ---- format ------------------------------------------------------------------------

// One directive of a format, or the literal text before the next one.
struct Directive {
  std::string text;       // the directive as written, with the literal text before it
  bool starWidth = false;  // * width: an int argument first
  bool starPrecision = false;
  char size = 0;          // q, l, h or 0
  char conversion = 0;    // 0: literal text only (or a directive taking nothing)
  char subtype = 0;       // the character after p
};

// Splits a format into pieces that each hold at most one directive taking
// arguments, parsed as the format engine parses it.
std::vector<Directive> SplitFormat(const char* f) {
  std::vector<Directive> out;
  Directive d;
  while (*f != 0) {
    if (*f != '%') {
      d.text += *f++;
      continue;
    }
    const char* start = f++;
    if (!(*f >= 'a' && *f <= 'z')) {
      while (*f == '-' || *f == '+' || *f == '#' || *f == ' ' || *f == '0') ++f;
      if (*f == '*') {
        d.starWidth = true;
        ++f;
      } else {
        while (*f >= '0' && *f <= '9') ++f;
      }
      if (*f == '.') {
        ++f;
        if (*f == '*') {
          d.starPrecision = true;
          ++f;
        } else {
          while (*f >= '0' && *f <= '9') ++f;
        }
      }
    }
    if (*f == 'q' || *f == 'l' || *f == 'h') d.size = *f++;
    const char c = *f;
    if (c != 0) ++f;
    if (c == 'p' && *f != 0) d.subtype = *f++;
    d.text.append(start, f);
    if (c != 0 && std::strchr("diuoxXceEfgGsp", c) != nullptr) {
      d.conversion = c;
      out.push_back(d);
      d = Directive();
    } else if (d.starWidth || d.starPrecision) {
      d.conversion = '%';  // takes only its * arguments
      out.push_back(d);
      d = Directive();
    }
    if (c == 0) break;
  }
  if (!d.text.empty()) out.push_back(d);
  return out;
}

struct SocketRecord {  // what %pI reads: family, port and address, in network order
  uint16_t family;
  unsigned char port[2];
  unsigned char address[4];
};

bool ParseAddress(const char* s, unsigned char out[4], const char** rest) {
  for (int i = 0; i < 4; ++i) {
    unsigned v = 0;
    const auto r = std::from_chars(s, s + std::strlen(s), v);
    if (r.ec != std::errc() || r.ptr == s || v > 255) return false;
    out[i] = static_cast<unsigned char>(v);
    s = r.ptr;
    if (i < 3 && *s++ != '.') return false;
  }
  *rest = s;
  return true;
}

// A format argument of a directive taking a number: decimal, or hexadecimal
// after "0x"; within what the directive's type holds.
bool ParseNumber(const char* s, char size, char conversion, long long* out) {
  const bool isUnsigned = std::strchr("uoxX", conversion) != nullptr;
  const long long lo = size == 'l' && sizeof(long) == 8 ? INT64_MIN : INT32_MIN;
  const long long hi = size == 'l' && sizeof(long) == 8 ? INT64_MAX : isUnsigned ? UINT32_MAX : INT32_MAX;
  const char* p = s;
  const bool negative = *p == '-';
  if (*p == '-' || *p == '+') ++p;
  if (p[0] == '0' && (p[1] == 'x' || p[1] == 'X')) {
    unsigned long long v = 0;
    const char* end = p + std::strlen(p);
    const auto r = std::from_chars(p + 2, end, v, 16);
    if (r.ec != std::errc() || r.ptr != end || p + 2 == end || v > static_cast<unsigned long long>(hi) + negative)
      return false;
    *out = negative ? static_cast<long long>(0 - v) : static_cast<long long>(v);
    return *out >= lo;
  }
  return ParseInteger(s, lo, hi, out);
}

int RunFormat(const Args& a) {
  if (a.list.empty()) return UsageError(a.command, "missing FORMAT");
  const std::vector<Directive> pieces = SplitFormat(a.list[0]);
  size_t next = 1;
  std::string out;
  // The engine prefixes %#x with "0x" only after a nonzero %d, %i or %u of
  // the same call; a piece formatted alone gets that value first, and its
  // text is taken off again.
  bool nonzeroDecimal = false;
  bool ended = false;  // a %c of an empty argument (0) ends the engine's text
  for (const Directive& d : pieces) {
    auto argument = [&](const char* what, const char** s) {
      if (next >= a.list.size()) return UsageError(a.command, "missing argument for %s in '%s'", what, d.text.c_str());
      *s = a.list[next++];
      return static_cast<int>(kDone);
    };
    auto badNumber = [&](const char* s) {
      return UsageError(a.command, "not a number for '%s': '%s'", d.text.c_str(), s);
    };
    int stars[2] = {0, 0};
    int starCount = 0;
    for (bool star : {d.starWidth, d.starPrecision}) {
      if (!star) continue;
      const char* s = nullptr;
      if (int e = argument("*", &s)) return e;
      long long v = 0;
      if (!ParseInteger(s, INT32_MIN, INT32_MAX, &v)) return badNumber(s);
      stars[starCount++] = static_cast<int>(v);
    }
    std::string text = d.text;
    Ka_AString piece;
    // Formats the piece with the star arguments, then value.
    auto format = [&](auto value) {
      if (starCount == 2)
        piece.Format(text.c_str(), stars[0], stars[1], value);
      else if (starCount == 1)
        piece.Format(text.c_str(), stars[0], value);
      else
        piece.Format(text.c_str(), value);
    };
    const char c = d.conversion;
    const char* s = nullptr;
    if (c != 0 && c != '%' && argument("the directive", &s) != kDone) return kUsage;
    bool prefixed = false;
    if (c == 0 || c == '%') {
      format(0);
    } else if (std::strchr("diuoxX", c) != nullptr) {
      long long v = 0;
      if (!ParseNumber(s, d.size, c, &v)) return badNumber(s);
      if ((c == 'x' || c == 'X') && nonzeroDecimal && d.text.find('#') != std::string::npos) {
        text = "%d" + text;
        prefixed = true;
        if (starCount == 2)
          piece.Format(text.c_str(), 1, stars[0], stars[1], static_cast<int>(v));
        else if (starCount == 1)
          piece.Format(text.c_str(), 1, stars[0], static_cast<int>(v));
        else
          piece.Format(text.c_str(), 1, static_cast<int>(v));
      } else if (d.size == 'l') {
        format(static_cast<long>(v));
      } else {
        format(static_cast<int>(v));
      }
      if ((c == 'd' || c == 'i' || c == 'u') && d.size != 'q')
        nonzeroDecimal = (d.size == 'h' ? (v & 0xFFFF) : static_cast<uint32_t>(v)) != 0;
    } else if (c == 'c') {
      format(static_cast<int>(static_cast<unsigned char>(s[0])));
    } else if (std::strchr("eEfgG", c) != nullptr) {
      double v = 0;
      const char* end = s + std::strlen(s);
      const auto r = std::from_chars(*s == '+' ? s + 1 : s, end, v);
      if (r.ec != std::errc() || r.ptr != end || *s == 0) return badNumber(s);
      format(v);
    } else if (c == 's' && d.size == 'h') {
      format(s);
    } else if (c == 's') {
      const Ka_WString wide(s, -1, g_argumentCodePage);
      format(static_cast<const ka_wchar*>(wide) != nullptr ? static_cast<const ka_wchar*>(wide) : KA_W(""));
    } else if (d.subtype == 'A' || d.subtype == 'I') {
      SocketRecord record = {2, {0, 0}, {0, 0, 0, 0}};
      const char* rest = nullptr;
      long long port = 0;
      const bool withPort = d.subtype == 'I';
      if (!ParseAddress(s, record.address, &rest) ||
          (withPort ? *rest != ':' || !ParseInteger(rest + 1, 0, 65535, &port) : *rest != 0))
        return UsageError(a.command, "not an IPv4 address%s for '%s': '%s'", withPort ? " and port" : "",
                          d.text.c_str(), s);
      record.port[0] = static_cast<unsigned char>(port >> 8);
      record.port[1] = static_cast<unsigned char>(port);
      format(withPort ? static_cast<const void*>(&record) : static_cast<const void*>(record.address));
    } else {  // %p: the argument is the pointer's value, in hexadecimal
      const char* digits = s[0] == '0' && (s[1] == 'x' || s[1] == 'X') ? s + 2 : s;
      const char* end = digits + std::strlen(digits);
      uintptr_t v = 0;
      const auto r = std::from_chars(digits, end, v, 16);
      if (r.ec != std::errc() || r.ptr != end || digits == end) return badNumber(s);
      format(reinterpret_cast<const void*>(v));
    }
    if (ended) continue;  // the arguments after it are still checked
    const char* t = piece;
    std::string result = t != nullptr ? t : "";
    if (prefixed) result.erase(0, 1);
    out += result;
    ended = c == 'c' && s[0] == 0;
  }
  if (next < a.list.size()) return UsageError(a.command, "too many arguments for the format");
  return Print(out);
}

// ---- The command table ---------------------------------------------------------------

const Command kCommands[] = {
    {"conv", RunConv,
     "Usage: kalbor conv --from NAME --to NAME [FILE]\n"
     "Re-encodes text from one charset to another, through 16-bit text, as the\n"
     "library's converters do (best-fit mappings, '?' for a character the target\n"
     "cannot hold). NAME is any charset name the library knows, in any case:\n"
     "utf-8, euc-kr, ks_c_5601-1987, shift_jis, iso-2022-jp, windows-1252, ...\n"
     "The input is read in chunks of 64 KiB; a character is never cut between two.\n"},
    {"lunar", RunLunar,
     "Usage: kalbor lunar DATE\n"
     "The Korean lunar date of a Gregorian DATE (1921-02-08 to 2050-01-22), as\n"
     "YYYYMMDD, followed by \" leap\" in a leap month.\n"},
    {"solar", RunSolar,
     "Usage: kalbor solar DATE\n"
     "The Gregorian date of a lunar DATE (lunar years 1921-2049, months 1-12,\n"
     "days 1-30) in its regular month, as YYYYMMDD.\n"},
    {"workday", RunWorkday,
     "Usage: kalbor workday DATE\n"
     "\"holiday\" for a Sunday or a fixed Korean holiday (solar: 01-01, 03-01,\n"
     "04-05, 05-05, 06-06, 07-17, 08-15, 10-03, 12-25; lunar: 12-29, 01-01, 01-02,\n"
     "04-08, 08-14 to 08-16), else \"workday\". Saturdays are working days.\n"},
    {"days", RunDays,
     "Usage: kalbor days DATE1 DATE2\n"
     "The number of days between the two dates, never negative.\n"},
    {"adddays", RunAddDays,
     "Usage: kalbor adddays DATE N\n"
     "The date N days after DATE (before it for a negative N), as YYYYMMDD.\n"},
    {"addmonths", RunAddMonths,
     "Usage: kalbor addmonths DATE N\n"
     "The date N months after DATE (before it for a negative N), its day\n"
     "lowered to the new month's length, as YYYYMMDD.\n"},
    {"weekday", RunWeekday,
     "Usage: kalbor weekday DATE\n"
     "The day of the week of DATE, in English.\n"},
    {"today", RunToday,
     "Usage: kalbor today\n"
     "The local date and time as YYYYMMDDhhmmss.\n"},
    {"base64", RunBase64,
     "Usage: kalbor base64 [-d] [FILE]\n"
     "Writes the Base64 text of the input (\"=\" padded, one line), or with -d\n"
     "the bytes of Base64 text; line breaks and blanks in it are skipped, any\n"
     "other byte outside the alphabet fails.\n"},
    {"url", RunUrl,
     "Usage: kalbor url [-d] [FILE]\n"
     "Percent-encodes the input (letters, digits and $ _ . ! * ' ( ) : ; are\n"
     "kept; every other byte becomes %XX), or with -d decodes %XX (\"+\" stays\n"
     "\"+\"). No line end is added.\n"},
    {"xml", RunXml,
     "Usage: kalbor xml [-d] [FILE]\n"
     "Escapes < > & \" ' and tab, line feed, carriage return and blank as XML\n"
     "entities, or with -d decodes the five named entities and &#N; / &#xN;\n"
     "(written as UTF-8). No line end is added.\n"},
    {"crc32", RunCrc32,
     "Usage: kalbor crc32 [FILE...]\n"
     "The CRC-32 (as zlib and PNG compute it) of each FILE, in hexadecimal,\n"
     "followed by two blanks and its name; of standard input when no FILE\n"
     "is given, without a name.\n"},
    {"format", RunFormat,
     "Usage: kalbor format FORMAT [ARG...]\n"
     "Writes FORMAT as the library's format engine fills it, and a line end.\n"
     "Each directive takes the next ARG as its type: a whole number for\n"
     "d i u o x X (decimal, or hexadecimal after 0x) and for a * width or\n"
     "precision, a number for e E f g G, a text for s and hs (s: converted\n"
     "through 16-bit text), one byte for c, an address a.b.c.d for %pA,\n"
     "a.b.c.d:port for %pI and a hexadecimal number for other %p.\n"},
};

const Command* FindCommand(const char* name) {
  for (const Command& c : kCommands)
    if (std::strcmp(c.name, name) == 0) return &c;
  return nullptr;
}

bool IsHelp(const char* s) { return std::strcmp(s, "--help") == 0 || std::strcmp(s, "-h") == 0; }

}  // namespace

int main(int argc, char** argv) {
  ka_binarystdio();
  g_argumentCodePage = KaGetLocaleCP();
  // Text the library converts through code page 0 (decoded XML character
  // references, the format engine's %s) is UTF-8 on every platform.
  KaSetLocaleCP(65001);
  if (argc < 2) return UsageError(nullptr, "missing command");
  if (IsHelp(argv[1]) || std::strcmp(argv[1], "help") == 0) {
    const Command* c = argc > 2 ? FindCommand(argv[2]) : nullptr;
    return Write(c != nullptr ? c->help : kHelp) ? kDone : kFailed;
  }
  const Command* command = FindCommand(argv[1]);
  if (command == nullptr) return UsageError(nullptr, "unknown command '%s'", argv[1]);
  Args args{command->name, {}};
  for (int i = 2; i < argc; ++i) {
    if (IsHelp(argv[i])) return Write(command->help) ? kDone : kFailed;
    args.list.push_back(argv[i]);
  }
  int status = command->run(args);
  if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
    Failure("write error");
    status = kFailed;
  }
  return status;
}
