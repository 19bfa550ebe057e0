// In-place editing of zero-terminated text: skipping and trimming blanks,
// padding, packing, and bracket and quote handling.
#include <kalbor/cstr.h>

#include <cstdint>

#include "cstr/text.h"

namespace ka_cstr {
namespace {

// Leading blanks among the first limit characters; the terminator, not being
// a blank, ends the walk.
template <class Char>
size_t LeadingBlanks(const Char* s, size_t limit) {
  size_t i = 0;
  while (i < limit && IsBlank(s[i])) ++i;
  return i;
}

size_t Limit(int n) { return n > 0 ? static_cast<size_t>(n) : 0; }

template <class T>
typename T::Char* SkipSpace(const typename T::Char* s, int n) {
  if (s == nullptr) return nullptr;
  return const_cast<typename T::Char*>(s + LeadingBlanks(s, Limit(n)));
}

template <class T>
int FindSkip(const typename T::Char* s, int n) {
  if (s == nullptr) return 0;
  return static_cast<int>(LeadingBlanks(s, Limit(n)));
}

// Trailing blanks among the first n characters. An n beyond the terminator
// is cut to the text, so nothing past the terminator is ever read.
template <class T>
int FindRSkip(const typename T::Char* s, int n) {
  if (s == nullptr || n < 1) return 0;
  const typename T::Char* zero = T::Find(s, static_cast<size_t>(n), 0);
  size_t end = zero != nullptr ? static_cast<size_t>(zero - s) : static_cast<size_t>(n);
  size_t count = 0;
  while (end > 0 && IsBlank(s[end - 1])) {
    --end;
    ++count;
  }
  return static_cast<int>(count);
}

// Returns minus the number of blanks removed (deliberately not a length).
template <class T>
int LeftTrim(typename T::Char* s) {
  if (s == nullptr) return 0;
  const size_t k = LeadingBlanks(s, SIZE_MAX);
  if (k == 0) return 0;
  CopyTerminated(s, s + k, T::Length(s + k));
  return -static_cast<int>(k);
}

// Overwrites trailing blanks with terminators; returns the new length.
template <class T>
int RightTrim(typename T::Char* s) {
  if (s == nullptr) return 0;
  size_t len = T::Length(s);
  while (len > 0 && IsBlank(s[len - 1])) s[--len] = 0;
  return static_cast<int>(len);
}

template <class T>
int Trim(typename T::Char* s) {
  LeftTrim<T>(s);
  return RightTrim<T>(s);
}

template <class T>
int LeftPad(typename T::Char* s, typename T::Char c, int width) {
  if (s == nullptr) return 0;
  const size_t len = T::Length(s);
  if (width <= 0 || len >= static_cast<size_t>(width)) return static_cast<int>(len);
  const size_t fill = static_cast<size_t>(width) - len;
  CopyTerminated(s + fill, s, len);
  for (size_t i = 0; i < fill; ++i) s[i] = c;
  return width;
}

template <class T>
int RightPad(typename T::Char* s, typename T::Char c, int width) {
  if (s == nullptr) return 0;
  const size_t len = T::Length(s);
  if (width <= 0 || len >= static_cast<size_t>(width)) return static_cast<int>(len);
  for (size_t i = len; i < static_cast<size_t>(width); ++i) s[i] = c;
  s[width] = 0;
  return width;
}

// Keeps every character that is neither a blank nor in remove.
template <class T>
int Pack(typename T::Char* s, const typename T::Char* remove) {
  if (s == nullptr) return 0;
  typename T::Char* out = s;
  for (const typename T::Char* in = s; *in != 0; ++in)
    if (!IsBlank(*in) && (remove == nullptr || !InSet(remove, *in))) *out++ = *in;
  *out = 0;
  return static_cast<int>(out - s);
}

template <class Char>
Char CloserOf(Char open) {
  switch (static_cast<int>(open)) {
    case '(': return Char(')');
    case '{': return Char('}');
    case '[': return Char(']');
    case '"': return Char('"');
    case '\'': return Char('\'');
    default: return Char(0);
  }
}

template <class Char>
bool IsQuote(Char c) {
  return c == Char('"') || c == Char('\'');
}

// The index of the character that closes the bracket or quote at s[pos].
template <class T>
int FindBrace(const typename T::Char* s, int pos) {
  typedef typename T::Char Char;
  if (s == nullptr || pos < 0) return -1;
  // A pos past the terminator would read outside the text: it opens nothing.
  if (T::Find(s, static_cast<size_t>(pos), 0) != nullptr) return -1;
  const Char open = s[pos];
  const Char close = CloserOf(open);
  if (close == 0) return -1;
  const bool quoted = IsQuote(open);
  int depth = 0;
  Char inner = 0;  // the quote of an open quoted run inside brackets, or 0
  for (int i = pos + 1; s[i] != 0; ++i) {
    const Char c = s[i];
    if (quoted || inner != 0) {
      if (c == Char('\\')) {
        if (s[i + 1] == 0) return -1;
        ++i;
      } else if (quoted && c == close) {
        return i;
      } else if (!quoted && c == inner) {
        inner = 0;
      }
    } else if (c == open) {
      ++depth;
    } else if (c == close) {
      if (depth == 0) return i;
      --depth;
    } else if (IsQuote(c)) {
      inner = c;
    }
  }
  return -1;
}

// The character an escape pair stands for: \n and \r both a line feed
// (deliberate), \t a tab, any other character itself.
template <class Char>
Char Unescaped(Char c) {
  if (c == Char('n') || c == Char('r')) return Char('\n');
  if (c == Char('t')) return Char('\t');
  return c;
}

template <class T>
int TrimBrace(typename T::Char* s, int unescape) {
  typedef typename T::Char Char;
  const int len = Trim<T>(s);
  if (len == 0) return 0;
  const Char first = s[0];
  if (IsQuote(first)) {
    size_t out = 0;
    for (size_t in = 1; s[in] != 0 && s[in] != first; ++in) {
      // A backslash before the terminator has nothing to escape: it is kept.
      if (unescape != 0 && s[in] == Char('\\') && s[in + 1] != 0) s[out++] = Unescaped(s[++in]);
      else s[out++] = s[in];
    }
    s[out] = 0;
    return static_cast<int>(out);
  }
  if (CloserOf(first) == 0) return len;
  const int close = FindBrace<T>(s, 0);
  if (close >= 0) {
    CopyTerminated(s, s + 1, static_cast<size_t>(close - 1));
    return close - 1;
  }
  CopyTerminated(s, s + 1, static_cast<size_t>(len - 1));  // no closer: only the opener goes
  return len - 1;
}

}  // namespace
}  // namespace ka_cstr

using namespace ka_cstr;

char* ka_skipspaceA(const char* s, int n) { return SkipSpace<NarrowText>(s, n); }
ka_wchar* ka_skipspaceW(const ka_wchar* s, int n) { return SkipSpace<WideText>(s, n); }
int ka_findskipA(const char* s, int n) { return FindSkip<NarrowText>(s, n); }
int ka_findskipW(const ka_wchar* s, int n) { return FindSkip<WideText>(s, n); }
int ka_findrskipA(const char* s, int n) { return FindRSkip<NarrowText>(s, n); }
int ka_findrskipW(const ka_wchar* s, int n) { return FindRSkip<WideText>(s, n); }

int ka_ltrimA(char* s) { return LeftTrim<NarrowText>(s); }
int ka_ltrimW(ka_wchar* s) { return LeftTrim<WideText>(s); }
int ka_rtrimA(char* s) { return RightTrim<NarrowText>(s); }
int ka_rtrimW(ka_wchar* s) { return RightTrim<WideText>(s); }
int ka_trimA(char* s) { return Trim<NarrowText>(s); }
int ka_trimW(ka_wchar* s) { return Trim<WideText>(s); }

int ka_lpadA(char* s, char c, int width) { return LeftPad<NarrowText>(s, c, width); }
int ka_lpadW(ka_wchar* s, ka_wchar c, int width) { return LeftPad<WideText>(s, c, width); }
int ka_rpadA(char* s, char c, int width) { return RightPad<NarrowText>(s, c, width); }
int ka_rpadW(ka_wchar* s, ka_wchar c, int width) { return RightPad<WideText>(s, c, width); }
int ka_packstrA(char* s, const char* remove) { return Pack<NarrowText>(s, remove); }
int ka_packstrW(ka_wchar* s, const ka_wchar* remove) { return Pack<WideText>(s, remove); }

int ka_findbraceA(const char* s, int pos) { return FindBrace<NarrowText>(s, pos); }
int ka_findbraceW(const ka_wchar* s, int pos) { return FindBrace<WideText>(s, pos); }
int ka_trimbraceA(char* s, int unescape) { return TrimBrace<NarrowText>(s, unescape); }
int ka_trimbraceW(ka_wchar* s, int unescape) { return TrimBrace<WideText>(s, unescape); }
