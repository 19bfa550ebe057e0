// The kalbor tool's text commands: conv, base64, url, xml and crc32.
#include <kalbor/kalbor.h>

#include <cstring>
#include <string>
#include <vector>

#include "tool.h"

namespace kalbor_cli {

// ---- conv ----------------------------------------------------------------------

namespace {

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

}  // namespace

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

namespace {

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

}  // namespace

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
  // Line breaks and blanks are dropped; anything else outside the alphabet,
  // or text after the "=" padding, is refused. Whole groups of four digits
  // decode on their own, so the bytes come out chunk by chunk too (those
  // before a refused byte included).
  std::vector<char> chunk(kChunk);
  std::string digits;
  size_t decoded = 0;  // digits decoded so far
  size_t padding = 0;
  size_t got = 0;
  auto decodeGroups = [&](size_t n) {
    const std::string group = digits.substr(0, n);  // ends in a zero, which ends the run
    Ka_Buffer bytes;
    bytes.DecodeBase64(group.c_str(), static_cast<long>(n));
    digits.erase(0, n);
    decoded += n;
    return Write(bytes.GetPtr(0), static_cast<size_t>(bytes.GetLength()));
  };
  do {
    if (!in.Read(chunk.data(), chunk.size(), &got)) return CannotRead(in);
    for (size_t i = 0; i < got; ++i) {
      const unsigned char c = static_cast<unsigned char>(chunk[i]);
      const bool alphabet = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                            c == '+' || c == '/';
      if (c == ' ' || c == '\t' || c == '\r' || c == '\n') continue;
      if (c == '=' && ++padding <= 2) continue;
      if (!alphabet || padding > 0) return Failure("invalid Base64 input");
      digits += static_cast<char>(c);
    }
    if (digits.size() >= kChunk && !decodeGroups(digits.size() / 4 * 4)) return kFailed;
  } while (got == chunk.size());
  const size_t total = decoded + digits.size();
  if (total % 4 == 1 || (padding > 0 && (total + padding) % 4 != 0))
    return Failure("invalid Base64 input: incomplete last group");
  return digits.empty() || decodeGroups(digits.size()) ? kDone : kFailed;
}

namespace {

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

}  // namespace

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

}  // namespace kalbor_cli
