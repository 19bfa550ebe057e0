// The kalbor tool's shared pieces: exit statuses, messages, input and
// output, argument parsing, and the commands the command table runs.
#ifndef KALBOR_CLI_TOOL_H
#define KALBOR_CLI_TOOL_H

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace kalbor_cli {

enum Status { kDone = 0, kFailed = 1, kUsage = 2 };

// The code page of the command line's text: the platform's ANSI code page
// (UTF-8 except on Windows), read before the tool sets its own.
extern unsigned int g_argumentCodePage;

// Inputs are read this many bytes at a time.
constexpr size_t kChunk = 65536;

// ---- Messages ----------------------------------------------------------------------

// Writes "kalbor: " and the message to standard error, then a pointer to
// the help of command (null: of the tool); returns kUsage.
int UsageError(const char* command, const char* format, ...);
// Writes "kalbor: " and the message to standard error; returns kFailed.
int Failure(const char* format, ...);

// ---- Input and output -------------------------------------------------------------

// Writes bytes to standard output; false when it refuses them.
bool Write(const void* p, size_t n);
inline bool Write(const std::string& s) { return Write(s.data(), s.size()); }
bool Write(const char* s);
// Writes line and a line feed: kDone, or kFailed when output fails.
int Print(const std::string& line);

// An input: a named file, or standard input for no name or "-".
class Input {
 public:
  explicit Input(const char* path);
  ~Input();
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;

  bool IsOpen() const { return m_file != nullptr; }
  const std::string& Path() const { return m_path; }
  // Reads up to n bytes, fewer only at the end; false on a read error.
  bool Read(char* p, size_t n, size_t* got);
  // Appends the rest of the input to out; false on a read error.
  bool ReadAll(std::string* out);

 private:
  std::string m_path;
  std::FILE* m_file;
};

// Report an input that cannot be opened or read; both return kFailed.
int CannotOpen(const Input& in);
int CannotRead(const Input& in);

// ---- Arguments --------------------------------------------------------------------

struct Args {
  const char* command;
  std::vector<const char*> list;  // the arguments after the command
};

// kDone when a has lo to hi arguments; otherwise reports it and returns kUsage.
int ExpectCount(const Args& a, size_t lo, size_t hi);
// Reads a decimal integer (an optional sign, then digits, nothing else)
// within lo..hi.
bool ParseInteger(const char* s, long long lo, long long hi, long long* out);

// ---- Commands: each returns the exit status ------------------------------------------

int RunConv(const Args& a);
int RunBase64(const Args& a);
int RunUrl(const Args& a);
int RunXml(const Args& a);
int RunCrc32(const Args& a);
int RunFormat(const Args& a);
int RunLunar(const Args& a);
int RunSolar(const Args& a);
int RunWorkday(const Args& a);
int RunDays(const Args& a);
int RunAddDays(const Args& a);
int RunAddMonths(const Args& a);
int RunWeekday(const Args& a);
int RunToday(const Args& a);

}  // namespace kalbor_cli

#endif  // KALBOR_CLI_TOOL_H
