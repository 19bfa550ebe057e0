// The kalbor tool's format command: the format engine with each argument
// converted to the type its directive reads.
#include <kalbor/kalbor.h>

#include <charconv>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "tool.h"

namespace kalbor_cli {

namespace {

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

}  // namespace

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

}  // namespace kalbor_cli
