// The format engine shared by Ka_AString and Ka_WString (internal); the
// directive language is described in kalbor/format.h.
//
// The engine collects the text in a sink of its own and stores it in the
// target string once, at the end: every argument and the format are read
// before the string changes, so they may point into it. Storing once gives
// the same block as the one-character growth rule (each character past the
// requested capacity raising it by one and calling GetSafeBuffer again):
// that rule ends in the size group of its last request, max(256, length +
// 1), or in a private block that already held it, and so does one request
// of that size. It also keeps long results linear in time, where growing a
// heap block 8 KB at a time would copy the text over and over.
#ifndef KALBOR_FORMAT_FORMAT_ENGINE_H
#define KALBOR_FORMAT_FORMAT_ENGINE_H

#include <kalbor/format.h>
#include <kalbor/strings.h>

#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "format/conversions.h"
#include "platform/platform.h"

namespace ka_detail {

// A growing run of characters: 4 KB of them inline, then on the heap. It
// refuses to grow past limit characters or when memory is refused; from then
// on it drops everything and Failed() is true.
template <class Char>
class Ka_FormatSink {
 public:
  explicit Ka_FormatSink(int limit) : m_data(m_inline), m_size(0), m_room(kInline), m_limit(limit), m_failed(false) {}
  ~Ka_FormatSink() {
    if (m_data != m_inline) std::free(m_data);
  }
  Ka_FormatSink(const Ka_FormatSink&) = delete;
  Ka_FormatSink& operator=(const Ka_FormatSink&) = delete;

  void Put(Char c) {
    if (m_size < m_room || Reserve(1)) m_data[m_size++] = c;
  }
  void Put(const Char* s, int n) {
    if (n > 0 && Reserve(n)) {
      std::memcpy(m_data + m_size, s, static_cast<size_t>(n) * sizeof(Char));
      m_size += n;
    }
  }
  void Fill(Char c, int n) {
    if (n <= 0 || !Reserve(n)) return;
    for (int i = 0; i < n; ++i) m_data[m_size + i] = c;
    m_size += n;
  }
  // Opens n places at at (moving what follows) and returns them; null when
  // the sink cannot grow.
  Char* Open(int at, int n) {
    if (!Reserve(n)) return nullptr;
    std::memmove(m_data + at + n, m_data + at, static_cast<size_t>(m_size - at) * sizeof(Char));
    m_size += n;
    return m_data + at;
  }
  int Size() const { return m_size; }
  Char At(int i) const { return m_data[i]; }
  void Truncate(int n) { m_size = n; }
  const Char* Data() const { return m_data; }
  bool Failed() const { return m_failed; }

 private:
  static constexpr int kInline = 4096 / sizeof(Char);

  bool Reserve(int n) {
    if (m_failed) return false;
    if (n <= m_room - m_size) return true;
    if (n > m_limit - m_size) return Fail();
    const int needed = m_size + n;
    int room = m_room <= m_limit / 2 ? m_room * 2 : m_limit;
    if (room < needed) room = needed;
    const size_t bytes = static_cast<size_t>(room) * sizeof(Char);
    Char* grown = static_cast<Char*>(m_data == m_inline ? std::malloc(bytes) : std::realloc(m_data, bytes));
    if (grown == nullptr) return Fail();
    if (m_data == m_inline) std::memcpy(grown, m_inline, static_cast<size_t>(m_size) * sizeof(Char));
    m_data = grown;
    m_room = room;
    return true;
  }
  bool Fail() {
    m_failed = true;
    return false;
  }

  Char m_inline[kInline];
  Char* m_data;
  int m_size, m_room, m_limit;
  bool m_failed;
};

// An ASCII view of a sink of wider characters, for the shared conversions.
template <class Char>
struct Ka_AsciiSink {
  Ka_FormatSink<Char>& sink;
  void Put(char c) { sink.Put(static_cast<Char>(c)); }
  void Fill(char c, int n) { sink.Fill(static_cast<Char>(c), n); }
  int Size() const { return sink.Size(); }
  char At(int i) const { return static_cast<char>(sink.At(i)); }
  void Truncate(int n) { sink.Truncate(n); }
};

// One directive after its %: flags, width, precision and size.
struct Ka_Directive {
  enum Size { kQuad = 0, kLong = 1, kShort = 2, kNone = 3 };
  bool left = false, plus = false, space = false, alt = false, zero = false;
  bool widthGiven = false, precisionGiven = false;
  int width = 0, precision = 0;
  int size = kNone;
};

template <class S>
class Ka_FormatEngine {
 public:
  typedef typename S::Traits Tr;
  typedef typename Tr::Char Char;

  // Formats into target and returns its buffer (see kalbor/format.h).
  static const Char* Run(S& target, const Char* format, va_list args) {
    Ka_FormatEngine engine(args);
    if (format != nullptr) engine.Process(format);
    va_end(engine.m_args.ap);
    return engine.Store(target);
  }

 private:
  struct Arguments {
    va_list ap;  // in a struct, so that it can be passed on by reference
  };

  explicit Ka_FormatEngine(va_list args) : m_out(Tr::kMaxLength - 1), m_lastValue(0) { va_copy(m_args.ap, args); }

  // The block rule of the one-character growth (see the top of this file).
  const Char* Store(S& target) {
    if (m_out.Failed()) return target;
    const int length = m_out.Size();
    Char* const buffer = target.GetSafeBuffer(length < 256 ? 256 : length + 1);
    if (buffer == nullptr) return target;
    if (length > 0) std::memcpy(buffer, m_out.Data(), static_cast<size_t>(length) * sizeof(Char));
    buffer[length] = 0;
    target.FreeExtra(-1);  // a zero character from %c ends the text there
    return target;
  }

  void Process(const Char* p) {
    for (;;) {
      const Char* const percent = Tr::FindChar(p, Char('%'));
      const int run = percent != nullptr ? static_cast<int>(percent - p) : Tr::Length(p);
      m_out.Put(p, run);
      if (percent == nullptr) return;
      p = percent + 1;
      Ka_Directive d;
      Parse(p, d);
      const Char conversion = *p;
      if (conversion == 0) return;  // a format ending inside a directive ends the output
      ++p;
      Convert(conversion, d, p);
    }
  }

  static bool IsDigit(Char c) { return c >= Char('0') && c <= Char('9'); }

  // Decimal digits, saturated at the field bound.
  static int Number(const Char*& p) {
    int value = 0;
    for (; IsDigit(*p); ++p)
      if (value < KA_FORMAT_MAX_FIELD) value = value * 10 + static_cast<int>(*p - Char('0'));
    return value < KA_FORMAT_MAX_FIELD ? value : KA_FORMAT_MAX_FIELD;
  }

  static int Bound(unsigned int value) {
    return value < KA_FORMAT_MAX_FIELD ? static_cast<int>(value) : KA_FORMAT_MAX_FIELD;
  }

  void Parse(const Char*& p, Ka_Directive& d) {
    for (;; ++p) {
      if (*p == Char('-'))
        d.left = true;
      else if (*p == Char('+'))
        d.plus = true;
      else if (*p == Char('#'))
        d.alt = true;
      else if (*p == Char(' '))
        d.space = true;
      else if (*p == Char('0'))
        d.zero = true;
      else
        break;
    }
    if (*p == Char('*')) {
      ++p;
      const int w = va_arg(m_args.ap, int);
      if (w < 0) d.left = true;
      d.width = Bound(w < 0 ? 0u - static_cast<unsigned int>(w) : static_cast<unsigned int>(w));
      d.widthGiven = true;
    } else if (IsDigit(*p)) {
      d.width = Number(p);
      d.widthGiven = true;
    }
    if (*p == Char('.')) {
      ++p;
      d.precisionGiven = true;
      if (*p == Char('*')) {
        ++p;
        const int v = va_arg(m_args.ap, int);
        d.precision = v < 0 ? 0 : Bound(static_cast<unsigned int>(v));
      } else {
        d.precision = Number(p);
      }
    }
    if (*p == Char('q'))
      d.size = Ka_Directive::kQuad;
    else if (*p == Char('l'))
      d.size = Ka_Directive::kLong;
    else if (*p == Char('h'))
      d.size = Ka_Directive::kShort;
    if (d.size != Ka_Directive::kNone) ++p;
  }

  void Convert(Char conversion, const Ka_Directive& d, const Char*& p) {
    const int start = m_out.Size();
    switch (conversion) {
      case 'd':
      case 'i':
      case 'u':
      case 'o':
      case 'x':
      case 'X':
        Integer(static_cast<char>(conversion), d, start);
        return;
      case 'c': {
        // Only the low 8 bits, sign-extended (deliberate): the wide engine
        // prints 0xE9 as 0xFFE9 and cannot pass a character above 127.
        int byte = va_arg(m_args.ap, int) & 0xFF;
        if (byte >= 0x80) byte -= 0x100;
        m_out.Put(static_cast<Char>(byte));
        break;
      }
      case 's':
        if (d.size == Ka_Directive::kShort)
          Text(va_arg(m_args.ap, const char*), d);
        else
          Text(va_arg(m_args.ap, const ka_wchar*), d);
        break;
      case 'e':
      case 'E':
      case 'f':
      case 'g':
      case 'G': {
        const double value = va_arg(m_args.ap, double);
        Ka_AsciiSink<Char> ascii{m_out};
        const bool negative =
            FloatText(ascii, value, static_cast<char>(conversion), d.precision, d.precisionGiven, d.alt);
        Pad(start, d, SignOf(negative, d), true);
        return;
      }
      case 'p':
        Pointer(d, p, start);
        return;
      case '%':
        m_out.Put(Char('%'));
        break;
      default:  // copied as it stands
        m_out.Put(Char('%'));
        m_out.Put(conversion);
        break;
    }
    Pad(start, d, 0, false);
  }

  static char SignOf(bool negative, const Ka_Directive& d) {
    return negative ? '-' : d.plus ? '+' : d.space ? ' ' : 0;
  }

  void Integer(char conversion, const Ka_Directive& d, int start) {
    // One word each; the l size reads a long, of which the low 32 bits count.
    // q reads an int and converts exactly as no size (deliberate).
    uint32_t bits = d.size == Ka_Directive::kLong ? static_cast<uint32_t>(va_arg(m_args.ap, long))
                                                  : static_cast<uint32_t>(va_arg(m_args.ap, int));
    const bool isSigned = conversion == 'd' || conversion == 'i';
    if (d.size == Ka_Directive::kShort) {
      bits &= 0xFFFFu;
      if (isSigned && bits >= 0x8000u) bits |= 0xFFFF0000u;  // sign-extended
    }
    // The slot of the #x rule: d, i and u without the q size (which converts
    // like no size but is deliberately not remembered).
    if (d.size != Ka_Directive::kQuad && (isSigned || conversion == 'u')) m_lastValue = bits;

    const bool negative = isSigned && (bits & 0x80000000u) != 0;
    const unsigned base = conversion == 'o' ? 8 : conversion == 'x' || conversion == 'X' ? 16 : 10;
    char buffer[kMaxIntegerDigits];
    char* const end = buffer + kMaxIntegerDigits;
    const char* digits = UnsignedDigits(negative ? Magnitude(bits) : bits, base, conversion == 'X', end);
    const int count = static_cast<int>(end - digits);
    const int zeros = d.precision > count ? d.precision - count : 0;

    Ka_AsciiSink<Char> out{m_out};
    // "0x" only after a nonzero d, i or u in the same call (deliberate).
    if (base == 16 && d.alt && m_lastValue != 0) {
      out.Put('0');
      out.Put(conversion);
    }
    if (base == 8 && d.alt && zeros == 0 && digits[0] != '0') out.Put('0');
    out.Fill('0', zeros);
    for (const char* c = digits; c < end; ++c) out.Put(*c);
    Pad(start, d, isSigned ? SignOf(negative, d) : 0, true);
  }

  // %s and %hs: a text of this width as it is, one of the other width
  // converted through code page 0 into a temporary.
  template <class From>
  void Text(const From* text, const Ka_Directive& d) {
    if (text == nullptr) {
      PutNull(d);
      return;
    }
    S converted;
    const Char* p = Adopt(converted, text);
    int n = 0;
    if (p != nullptr) {
      if (d.precisionGiven)
        while (n < d.precision && p[n] != 0) ++n;
      else
        n = Tr::Length(p);
    }
    m_out.Put(p, n);
  }
  static const Char* Adopt(S&, const Char* text) { return text; }
  template <class Other>
  static const Char* Adopt(S& converted, const Other* text) {
    converted.Set(text, -1, 0);
    return converted;
  }

  void PutNull(const Ka_Directive& d) { PutAscii("(null)", 6, d); }

  // n ASCII characters of text, truncated by the precision.
  void PutAscii(const char* text, int n, const Ka_Directive& d) {
    if (d.precisionGiven && d.precision < n) n = d.precision;
    for (int i = 0; i < n; ++i) m_out.Put(static_cast<Char>(text[i]));
  }

  void Pointer(const Ka_Directive& d, const Char*& p, int start) {
    const void* const pointer = va_arg(m_args.ap, void*);
    const Char kind = *p;
    if (kind != 0) ++p;  // the sub-type is always consumed
    if (kind != Char('A') && kind != Char('I')) {
      // The whole pointer in lower-case hexadecimal, without prefix or padding.
      char buffer[2 * sizeof(uintptr_t)];
      char* const end = buffer + sizeof(buffer);
      char* q = end;
      uintptr_t value = reinterpret_cast<uintptr_t>(pointer);
      do {
        *--q = "0123456789abcdef"[value & 15];
        value >>= 4;
      } while (value != 0);
      for (; q < end; ++q) m_out.Put(static_cast<Char>(*q));
      return;
    }
    if (pointer == nullptr) {
      PutNull(d);
    } else {
      // %pA: a 32-bit address; %pI: {16-bit family, 16-bit port, 32-bit
      // address}; address and port in network order.
      const unsigned char* const record = static_cast<const unsigned char*>(pointer);
      uint32_t address;
      std::memcpy(&address, kind == Char('A') ? record : record + 4, 4);
      address = ka_platform::NetToHost32(address);
      char text[32];
      char* const end = text + sizeof(text);
      char* q = end;
      if (kind == Char('I')) {
        uint16_t port;
        std::memcpy(&port, record + 2, 2);
        q = UnsignedDigits(ka_platform::NetToHost16(port), 10, false, q);
        *--q = ':';
      }
      for (int i = 0; i < 4; ++i) {
        q = UnsignedDigits((address >> (8 * i)) & 0xFF, 10, false, q);
        if (i < 3) *--q = '.';
      }
      PutAscii(q, static_cast<int>(end - q), d);
    }
    Pad(start, d, 0, false);
  }

  // Puts the sign in front of the text written since start and pads it to
  // the width: blanks on the left, or zeros after the sign (numbers with the
  // 0 flag), or the pad character on the right when left-justified, zeros
  // included ("%-05d" of 42 is "42000", deliberate).
  void Pad(int start, const Ka_Directive& d, char sign, bool number) {
    const Char pad = number && d.zero ? Char('0') : Char(' ');
    const int length = m_out.Size() - start + (sign != 0 ? 1 : 0);
    const int fill = d.widthGiven && d.width > length ? d.width - length : 0;
    if (d.left) {
      if (sign != 0) {
        Char* const gap = m_out.Open(start, 1);
        if (gap != nullptr) gap[0] = static_cast<Char>(sign);
      }
      m_out.Fill(pad, fill);
      return;
    }
    const int open = fill + (sign != 0 ? 1 : 0);
    if (open == 0) return;
    Char* const gap = m_out.Open(start, open);
    if (gap == nullptr) return;
    if (pad == Char('0')) {  // the sign goes before zeros, after blanks
      for (int i = 0; i < fill; ++i) gap[open - fill + i] = pad;
      if (sign != 0) gap[0] = static_cast<Char>(sign);
    } else {
      for (int i = 0; i < fill; ++i) gap[i] = pad;
      if (sign != 0) gap[fill] = static_cast<Char>(sign);
    }
  }

  Ka_FormatSink<Char> m_out;
  Arguments m_args;
  uint32_t m_lastValue;  // the latest d, i or u value of this call
};

}  // namespace ka_detail

#endif  // KALBOR_FORMAT_FORMAT_ENGINE_H
