// The kalbor tool's messages, input and output, and argument parsing.
#include "tool.h"

#include <charconv>
#include <cstdarg>
#include <cstring>

namespace kalbor_cli {

unsigned int g_argumentCodePage = 65001;

namespace {

void Message(const char* format, va_list args) {
  std::fputs("kalbor: ", stderr);
  std::vfprintf(stderr, format, args);
  std::fputc('\n', stderr);
}

}  // namespace

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

int Failure(const char* format, ...) {
  va_list args;
  va_start(args, format);
  Message(format, args);
  va_end(args);
  return kFailed;
}

bool Write(const void* p, size_t n) { return n == 0 || std::fwrite(p, 1, n, stdout) == n; }
bool Write(const char* s) { return Write(s, std::strlen(s)); }
int Print(const std::string& line) { return Write(line + "\n") ? kDone : kFailed; }

Input::Input(const char* path) : m_path(path != nullptr ? path : "-") {
  m_file = m_path == "-" ? stdin : std::fopen(m_path.c_str(), "rb");
}

Input::~Input() {
  if (m_file != nullptr && m_file != stdin) std::fclose(m_file);
}

bool Input::Read(char* p, size_t n, size_t* got) {
  *got = std::fread(p, 1, n, m_file);
  return !std::ferror(m_file);
}

bool Input::ReadAll(std::string* out) {
  std::vector<char> chunk(kChunk);
  size_t got = 0;
  do {
    if (!Read(chunk.data(), chunk.size(), &got)) return false;
    out->append(chunk.data(), got);
  } while (got == chunk.size());
  return true;
}

int CannotOpen(const Input& in) { return Failure("cannot open '%s'", in.Path().c_str()); }
int CannotRead(const Input& in) { return Failure("cannot read '%s'", in.Path().c_str()); }

int ExpectCount(const Args& a, size_t lo, size_t hi) {
  if (a.list.size() < lo) return UsageError(a.command, "missing argument");
  if (a.list.size() > hi) return UsageError(a.command, "too many arguments");
  return kDone;
}

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

}  // namespace kalbor_cli
