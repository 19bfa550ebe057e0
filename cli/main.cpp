// kalbor: the library's command-line tool. Each command is a thin layer over
// the public interface: charset names and the converters, the calendar,
// Base64, URL and XML escaping, CRC-32 and the format engine.
//
// Exit status: 0 when the job is done, 1 when it failed (an unreadable file,
// input a decoder refuses, a date outside the lunar table), 2 for bad usage.
// Messages go to standard error, prefixed "kalbor: ". Input and output are
// bytes: standard streams are put in binary mode first.
#include <kalbor/kalbor.h>

#include <cstring>

#include "tool.h"

namespace kalbor_cli {
namespace {

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

struct Command {
  const char* name;
  int (*run)(const Args&);
  const char* help;  // usage line and explanation
};

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
}  // namespace kalbor_cli

using namespace kalbor_cli;

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
