// Kalbor400U string classes.
//
// Ka_AString holds 8-bit char text and Ka_WString 16-bit ka_wchar text. A
// string object is exactly one pointer: null for the empty string (which
// never allocates), else the first character of a text kept in a size-class
// pool block behind a Ka_BufferData header. Copies share the text and count
// its owners; the first change made through one of them gives that string a
// private copy (copy on write). String objects made with new come from the
// object pool of the class's item handler.
//
// Rules shared by every member of both classes:
// - Lengths and positions are int, in characters. A length argument below 0
//   means "up to the terminating zero"; a null text pointer reads as empty.
// - The stored length is authoritative: a text may hold zero characters
//   inside it, and it is always followed by one more zero. Members that work
//   on C strings (searching, trimming, case) stop at the first zero.
// - Nothing is raised or logged. A request for more than Traits::kMaxLength
//   characters, or for memory the heap refuses, leaves the string unchanged.
// - Reference counts change atomically, so strings in different threads may
//   share one text; a single string object is used by one thread at a time.
// - The two classes behave alike. Everything in which Ka_WString differs is
//   in ka_detail::Ka_StringTraits below.
#ifndef KALBOR_STRINGS_H
#define KALBOR_STRINGS_H

#include <kalbor/cstr.h>
#include <kalbor/format.h>
#include <kalbor/memory.h>
#include <kalbor/platform.h>

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstring>

class Ka_AString;
class Ka_WString;
class Ka_AStringHandler;
class Ka_WStringHandler;
class Ka_Buffer;  // kalbor/buffer.h

namespace ka_detail {

// The rules of one text width. Both specialisations have the same members;
// the string classes' shared implementation never asks which width it has.
//   Char             the character type
//   kMaxLength       the longest text (its capacity must still fit an int)
//   Chars(stored)    characters counted by a header's length or capacity word
//   Stored(n)        the header word for n characters
//   Length(s)        characters before the first zero; 0 for null
//   FindChar(s, c)   the first c in the non-null s, or null
//   FindText(s, p)   the first occurrence of p in the non-null s; s for a null
//                    or empty p; null when absent
//   FindTextNoCase   the same with ASCII letters matching either case
//   FindLast(s, c)   the last c in s, the terminator included; null if none
//   FindOneOf(s, t)  the first character of s found in t (as ka_strpbrkA)
//   Compare(s, p)    Compare's result for the string text s against p
//   CompareNoCase    ka_stricmpA / ka_stricmpW
//   Upper, Lower, SwapCase, TrimBrace: the C-string functions of that name
//   kReplaceUnshares whether Replace of a substring makes the text private
//                    even when the result is not longer
template <class C>
struct Ka_StringTraits;

template <>
struct Ka_StringTraits<char> {
  typedef char Char;
  static constexpr int kMaxLength = 0x7FFFE000;
  static int Chars(uint32_t stored) { return static_cast<int>(stored); }
  static int32_t Stored(int n) { return n; }
  static int Length(const Char* s) { return s != nullptr ? static_cast<int>(std::strlen(s)) : 0; }
  // c = 0 finds the terminator.
  static const Char* FindChar(const Char* s, Char c) { return std::strchr(s, c); }
  static const Char* FindText(const Char* s, const Char* p) { return p != nullptr ? std::strstr(s, p) : s; }
  static const Char* FindTextNoCase(const Char* s, const Char* p) { return ka_stristrA(s, p); }
  // ka_strrchrA compares signed values; the cast keeps bytes 0x80-0xFF
  // findable where char is unsigned (ARM).
  static const Char* FindLast(const Char* s, Char c) { return ka_strrchrA(s, static_cast<signed char>(c)); }
  static const Char* FindOneOf(const Char* s, const Char* set) { return ka_strpbrkA(s, set); }
  // Null and empty are told apart on purpose (deliberate asymmetries): a null
  // text is below any non-null p, even an empty one; a text starting with a
  // zero is below everything, null included; otherwise an empty or null p
  // is below the text. The rest is strcmp's result as it comes.
  static int Compare(const Char* s, const Char* p) {
    if (s == nullptr) return p == nullptr ? 0 : -1;
    if (s[0] == 0) return -1;
    if (p == nullptr || p[0] == 0) return 1;
    return std::strcmp(s, p);
  }
  static int CompareNoCase(const Char* s, const Char* p) { return ka_stricmpA(s, p); }
  static void Upper(Char* s) { ka_struprA(s); }
  static void Lower(Char* s) { ka_strlwrA(s); }
  static void SwapCase(Char* s) { ka_strrevA(s); }
  static int TrimBrace(Char* s, int unescape) { return ka_trimbraceA(s, unescape); }
  static constexpr bool kReplaceUnshares = true;
};

template <>
struct Ka_StringTraits<ka_wchar> {
  typedef ka_wchar Char;
  static constexpr int kMaxLength = 0x3FFFF000;
  // The header counts bytes, two per character (deliberate, kept from the
  // device): lengths and capacities are the stored words shifted right.
  static int Chars(uint32_t stored) { return static_cast<int>(stored >> 1); }
  static int32_t Stored(int n) { return n * 2; }
  static int Length(const Char* s) { return ka_strlenW(s); }
  // Unlike the narrow rule, c = 0 finds nothing: ka_strchrW never returns
  // the terminator (deliberate).
  static const Char* FindChar(const Char* s, Char c) { return ka_strchrW(s, c); }
  static const Char* FindText(const Char* s, const Char* p) { return ka_strstrW(s, p); }
  static const Char* FindTextNoCase(const Char* s, const Char* p) { return ka_stristrW(s, p); }
  static const Char* FindLast(const Char* s, Char c) { return ka_strrchrW(s, c); }
  static const Char* FindOneOf(const Char* s, const Char* set) { return ka_strpbrkW(s, set); }
  // Plain ka_strcmpW, without the narrow class's null and empty rules: a null
  // text equals an empty one (deliberate).
  static int Compare(const Char* s, const Char* p) { return ka_strcmpW(s, p); }
  static int CompareNoCase(const Char* s, const Char* p) { return ka_stricmpW(s, p); }
  static void Upper(Char* s) { ka_struprW(s); }
  static void Lower(Char* s) { ka_strlwrW(s); }
  static void SwapCase(Char* s) { ka_strrevW(s); }
  static int TrimBrace(Char* s, int unescape) { return ka_trimbraceW(s, unescape); }
  // A substring Replace that does not lengthen the text writes through the
  // block as it is, shared or not: every sharer sees the change (deliberate).
  static constexpr bool kReplaceUnshares = false;
};

// Appends c in place when text (not null) is private, has room and c is not
// 0; false otherwise, leaving everything as it was. Inline for both classes'
// operator+=(c), the common case of a loop of appends. The text is taken by
// value and its header held in a local, so that writing the character does
// not make the compiler read them again.
template <class Traits>
inline bool Ka_AppendInPlace(typename Traits::Char* text, typename Traits::Char c) {
  if (text == nullptr || c == 0) return false;
  Ka_BufferData* const data = Ka_BufferData::FromData(text);
  const int old = Traits::Chars(static_cast<uint32_t>(data->nDataLength));
  if (old >= Traits::Chars(data->nAllocLength) || old >= Traits::kMaxLength ||
      ka_interlocked_read(&data->nRefs) > 1)
    return false;
  text[old] = c;
  data->nDataLength = Traits::Stored(old + 1);
  text[old + 1] = 0;
  return true;
}

// The implementation both string classes share (strings/string_ops.h).
template <class S>
struct Ka_StringOps;

}  // namespace ka_detail

// Ka_AString: a reference-counted 8-bit string.
// Invariant: m_pchData is null or points just past a Ka_BufferData header
// whose count is the number of strings sharing the text, whose capacity and
// length words count characters (Traits::Chars), with length <= capacity and
// a zero character at index length.
class KA_API Ka_AString {
 public:
  typedef Ka_BufferData Ka_AStringData;  // the header in front of the text
  typedef ka_detail::Ka_StringTraits<char> Traits;

  // ---- Construction and lifetime -------------------------------------------

  // The null string.
  Ka_AString() : m_pchData(nullptr) {}
  // Shares other's text.
  Ka_AString(const Ka_AString& other) : m_pchData(other.m_pchData) { _AddRef(); }
  // Takes other's text without touching its count; other becomes null.
  Ka_AString(Ka_AString&& other) noexcept : m_pchData(other.m_pchData) { other.m_pchData = nullptr; }
  // As Set(s, n).
  Ka_AString(const char* s, int n = -1) : m_pchData(nullptr) { Set(s, n); }
  // n copies of c; the null string when c is 0 or n is below 1.
  Ka_AString(char c, int n);
  // Releases the text.
  ~Ka_AString() { Release(); }

  // ---- Length and characters -------------------------------------------------

  // Length in characters; 0 for the null string.
  int GetLength() const { return m_pchData != nullptr ? Traits::Chars(GetData()->nDataLength) : 0; }
  // Capacity in characters (the size group); 0 for the null string.
  int GetAllocLength() const { return m_pchData != nullptr ? Traits::Chars(GetData()->nAllocLength) : 0; }
  // 1 for the null string or a text whose first character is 0, else 0.
  int IsEmpty() const { return m_pchData == nullptr || m_pchData[0] == 0 ? 1 : 0; }
  // The text; null for the null string.
  operator const char*() const { return m_pchData; }
  // The header, or null for the null string.
  Ka_AStringData* GetData() const { return m_pchData != nullptr ? Ka_BufferData::FromData(m_pchData) : nullptr; }
  // Character i; 0 when i is negative or not below the length.
  char GetAt(int i) const { return i >= 0 && i < GetLength() ? m_pchData[i] : 0; }
  char operator[](int i) const { return GetAt(i); }
  // Stores c at i when 0 <= i < length, making the text private first;
  // otherwise does nothing.
  void SetAt(int i, char c);

  // ---- Assignment and appending ------------------------------------------------

  // Shares other's text (nothing when both already share it).
  const Ka_AString& Set(const Ka_AString& other) {
    if (m_pchData != other.m_pchData) {
      Release();
      m_pchData = other.m_pchData;
      _AddRef();
    }
    return *this;
  }
  // Copies n characters of s, zeros included (n < 0: up to the zero); n = 0
  // empties. A null s with n > 0 leaves n characters that the caller is to
  // write (they are not cleared).
  const Ka_AString& Set(const char* s, int n = -1);
  const Ka_AString& operator=(const Ka_AString& other) { return Set(other); }
  // Takes other's text; other becomes null.
  const Ka_AString& operator=(Ka_AString&& other) noexcept {
    if (this != &other) {
      Release();
      m_pchData = other.m_pchData;
      other.m_pchData = nullptr;
    }
    return *this;
  }
  // Set(s, -1).
  const Ka_AString& operator=(const char* s) { return Set(s, -1); }
  // Set(&c, 1): assigning the character 0 gives a one-character string
  // holding 0 (deliberate; appending 0 does nothing).
  const Ka_AString& operator=(char c) { return Set(&c, 1); }
  // Appends other's text with its length, inner zeros included; nothing for
  // the null string or a text whose first character is 0 (ConcatInPlace).
  const Ka_AString& operator+=(const Ka_AString& other);
  // Appends s up to its zero; nothing for null or empty s.
  const Ka_AString& operator+=(const char* s);
  // Appends c; the character 0 appends nothing.
  const Ka_AString& operator+=(char c) { return ka_detail::Ka_AppendInPlace<Traits>(m_pchData, c) ? *this : _AppendOne(c); }
  // Releases the text; the string becomes null.
  void Empty() { Release(); }

  // ---- Code-page bridging (KaToAscii, kalbor/codepage.h) ---------------------
  // A code page of 0 is the locale code page. Every member that takes none
  // uses 0.

  // As Set(s, n, codePage).
  Ka_AString(const ka_wchar* s, int n, unsigned int codePage) : m_pchData(nullptr) { Set(s, n, codePage); }
  // The n wide characters of s (n < 0: up to the zero) in codePage; n = 0, or
  // a null s with n < 0, empties. Three bytes are reserved per character: the
  // capacity is that of 3 x n, the length that of the result up to its first
  // zero. A conversion that fails, or needs more than 3 x n bytes, leaves an
  // empty text; n above kMaxLength / 3 leaves the string unchanged.
  const Ka_AString& Set(const ka_wchar* s, int n, unsigned int codePage);
  // Set(s, -1, 0).
  const Ka_AString& operator=(const ka_wchar* s) { return Set(s, -1, 0); }
  // Appends s, converted; the length then ends at the first zero. Nothing for
  // a null or empty s, or when the conversion fails.
  const Ka_AString& operator+=(const ka_wchar* s);
  // Appends c converted, when it gives at most 3 bytes; a character that
  // converts to nothing or to a zero byte appends nothing.
  const Ka_AString& operator+=(ka_wchar c);
  // This string = n bytes of s (n < 0: up to the zero) re-encoded from
  // fromCodePage to toCodePage through a wide text; returns the new length. A
  // null s empties and returns 0. Equal code pages copy with Set(s, n) and
  // return n as it was passed, so -1 stays -1 (deliberate).
  int ConvertCodePageFrom(unsigned int toCodePage, const char* s, int n, unsigned int fromCodePage);

  // Makes the text private with room for n characters (n < 0: the current
  // length), sets the length to n with a zero at n, and returns the text:
  // null for n = 0 when the text is shared or null, and null with the string
  // unchanged when n exceeds Traits::kMaxLength or memory is refused. When the
  // text stays in its block, the characters from the old length to n are
  // zero; when it moves, those past the old terminator are not cleared
  // (deliberate: callers write them).
  char* GetSafeBuffer(int n) {
    if (n < 0) n = GetLength();
    return _IsPrivateWithRoom(n) ? _ResizeInPlace(n) : _CopyToNewBuffer(n);
  }
  // Sets the length to n (n < 0: the position of the first zero) and writes
  // a zero there; nothing for the null string or n above the length. Frees
  // nothing, and deliberately does not make the text private: every string
  // sharing it sees the new length.
  void FreeExtra(int n);

  // ---- Comparison ------------------------------------------------------------

  // Both null: 0; this null: -1 (even against ""); this starting with a zero
  // character: -1 whatever s is; s null or empty: 1; else strcmp's value.
  // These asymmetries are deliberate.
  int Compare(const char* s) const;
  // ka_stricmpA on the text (null included).
  int CompareNoCase(const char* s) const;

  // ---- Searching (stops at the first zero) -------------------------------------
  // Every search returns an index or -1. A negative start counts as 0.

  // The first c at or after start; -1 when start is not below the length.
  // The character 0 finds the first zero at or after start.
  int Find(char c, int start = 0) const;
  // The first occurrence of s at or after start; start itself for a null or
  // empty s; -1 when start is above the length or the string is null.
  int Find(const char* s, int start = 0) const;
  // As Find(s, start), with ASCII letters matching either case.
  int Findi(const char* s, int start = 0) const;
  // The last c (the character 0 finds the first zero).
  int ReverseFind(char c) const;
  // The first character found in set; 0 for a null set when the text is not
  // empty (as ka_strpbrkA).
  int FindOneOf(const char* set) const;

  // ---- Slices (new strings; the whole text is returned shared) -------------------

  // count characters from start; negative values count as 0 and the range is
  // clipped to the text; an empty range gives the null string.
  Ka_AString Mid(int start, int count) const;
  // Mid(start, length - start).
  Ka_AString Mid(int start) const;
  // The first n characters (n < 0 counts as 0).
  Ka_AString Left(int n) const;
  // The last n characters (n < 0 counts as 0).
  Ka_AString Right(int n) const;

  // ---- Trimming (nothing for an empty string) ----------------------------------
  // White space is exactly space, tab, line feed and carriage return. Right
  // trims look only before the first zero; left trims skip at most the
  // length. A zero character is never a member of a set.

  // Removes leading white space.
  void TrimLeft();
  // Removes trailing white space.
  void TrimRight();
  // TrimLeft() then TrimRight().
  void Trim();
  // Removes a leading run of c (c = 0 removes leading zero characters).
  void TrimLeft(char c);
  // Removes a trailing run of c; c = 0 removes nothing.
  void TrimRight(char c);
  // Removes a leading run of characters of set; nothing for a null or empty set.
  void TrimLeft(const char* set);
  // Removes a trailing run of characters of set; nothing for a null set.
  void TrimRight(const char* set);
  // Trim(), then strips one outer bracket or quote pair as ka_trimbraceA does
  // with unescape; the length becomes the position of the first zero.
  void TrimBrace(int unescape);

  // ---- Editing -------------------------------------------------------------------

  // Replaces every from over the whole length (zeros included); returns the
  // number replaced; 0 without change when from equals to.
  int Replace(char from, char to);
  // Replaces every non-overlapping occurrence of from (before the first zero),
  // left to right, by to (null: empty). Returns 0 for an empty string, a null
  // or empty from, or no occurrence. Otherwise the result is deliberately not
  // the number replaced: the device's loop went on only while the end of its
  // last replacement lay below the new length, and the result counts the
  // occurrences it did not reach (0 unless the text shrinks; all of them when
  // it shrinks to nothing, which leaves a block of length 0). The text is
  // fully replaced either way. 0 without change when the result would exceed
  // Traits::kMaxLength or memory is refused.
  int Replace(const char* from, const char* to);
  // Removes every c over the whole length; returns the number removed.
  int Remove(char c);
  // Inserts c (the character 0 too) at index clamped to 0..length; returns
  // the new length.
  int Insert(int index, char c);
  // Inserts s up to its zero at index clamped to 0..length; returns the length.
  int Insert(int index, const char* s);
  // Deletes up to count characters from index (negative: 0); returns the length.
  int Delete(int index, int count);
  // Upper-cases ASCII letters up to the first zero.
  void MakeUpper();
  // Lower-cases ASCII letters up to the first zero.
  void MakeLower();
  // Swaps the case of ASCII letters up to the first zero; despite its name it
  // keeps the order of the characters (deliberate, as ka_strrevA).
  void MakeReverse();

  // ---- Numbers -------------------------------------------------------------------

  // The decimal text of value: no leading zeros, "-" for negatives (the most
  // negative int included).
  const Ka_AString& Set(int value);
  // "0" for either zero; for binary exponents -24..64 (2^-24 <= |value| <
  // 2^65) Format's "%.15f" without trailing zeros and a bare point (2.5,
  // 3); otherwise "%.14e" ("1.0000000000000e+30", "1.#INF" for an infinity
  // or a NaN). A "-" for negatives.
  const Ka_AString& Set(double value);
  // Set(value).
  const Ka_AString& operator=(int value) { return Set(value); }
  const Ka_AString& operator=(double value) { return Set(value); }
  // Append the text Set would give.
  const Ka_AString& operator+=(int value);
  const Ka_AString& operator+=(double value);
  // New strings holding Set(value)'s text.
  static Ka_AString FromInteger(int value);
  static Ka_AString FromDouble(double value);
  // 1 for a text of exactly four characters spelling "true" in any case;
  // otherwise the decimal integer after ASCII white space and a sign (no
  // hexadecimal), saturated to the int range; 0 when there is no digit.
  int ToInteger() const;
  // The decimal number after ASCII white space (sign, digits with a point,
  // exponent), read through a wide copy in code page 0, correctly rounded,
  // an infinity beyond the double range; the rest is ignored; 0.0 when there
  // is none ("inf", "nan" and hexadecimal forms are not read).
  double ToDouble() const;
  // 1 when every character before the first zero is a digit or ".", with an
  // optional sign first; deliberately loose: "-", "." and "1.2.3" pass, "1e5"
  // does not. 0 for an empty string.
  int IsNumber() const;
  // 1 when the text starts with a quote whose closer (ka_findbraceA) is its
  // last character, and deliberately also when it has no closer at all.
  int IsString() const;
  // 1 when the text does not start with a digit and each character before
  // the first zero is a letter, a digit, "_" or a byte of 128 or more.
  int IsName() const;

  // ---- Formatting (kalbor/format.h) ------------------------------------------------

  // This string becomes the formatted text; returns its buffer. The format
  // and the arguments may point into this string.
  const char* Format(const char* format, ...);
  // The same with the arguments in args; it reads a copy of args, so the
  // caller's list is left where it was.
  const char* Formatv(const char* format, va_list args);
  // Format under the wide class's name for a narrow format: the same here.
  const char* FormatA(const char* format, ...);
  // This string becomes value with a "," before every group of three
  // integer digits and exactly decimals decimals, correctly rounded; a
  // negative decimals multiplies value by 0.1 that many times and shows no
  // decimals. decimals above KA_FORMAT_MAX_FIELD count as that bound. The
  // second argument is deliberately ignored. Returns the length.
  int NumFormat(double value, int ignored, int decimals);
  // This string becomes a private copy of mask whose "@" characters take
  // value's characters in turn, then blanks; returns the length.
  int MaskStr(Ka_AString value, Ka_AString mask);

  // ---- Escaping ------------------------------------------------------------------
  // Encoders return a new string and share this one's text when nothing needs
  // escaping; they return the null string when the result would exceed
  // Traits::kMaxLength. The decoders that take a text replace this string's
  // contents and return *this: a null text or n = 0 (an empty Ka_AString)
  // empties it, n < 0 reads up to the zero, and a text without the trigger
  // character ("&" or "%") within its n characters is copied as it is. The
  // decoded length ends at the first zero, so "&#0;" and "%00" end the text.

  // The text in quote ("'", or the double quote for any other argument) with
  // a backslash before each quote and backslash; an empty string is
  // returned unchanged, without quotes (deliberate).
  Ka_AString QuoteStr(char quote) const;
  // A text opening with a double quote or "'" without it: a backslash is
  // dropped and the character after it kept, the last character is dropped
  // when it is the opening quote (otherwise kept), and the length ends at the
  // first zero. Any other text is returned unchanged.
  Ka_AString UnQuoteStr() const;
  // < > & double quote ' as &lt; &gt; &amp; &quot; &apos;, and tab, line
  // feed, carriage return and blank as &#9; &#10; &#13; &#32; (deliberate:
  // they survive attribute normalisation). Other bytes are copied.
  Ka_AString EncodeXml() const;
  // The decoding of this string (shared when it holds no "&").
  Ka_AString DecodeXml() const;
  // This string becomes the decoding of text: the five named entities (case
  // sensitive), and "&#" up to the first ";" after it as a 16-bit number
  // converted with KaToAscii in the locale code page (at most 4 bytes).
  // "&#x" takes hex digits 1-8, A-F and ` (9) to f; "0" and "9" end the
  // number (deliberate). Otherwise the decimal number as atoi reads it, low
  // 16 bits. Without a ";" after it, and for any other entity, "&" is text.
  const Ka_AString& DecodeXml(const char* text, int n);
  const Ka_AString& DecodeXml(const Ka_AString& text);
  // Percent-encoding: 0-9 : ; A-Z a-z $ _ . ! * ' ( ) are kept, every other
  // byte becomes "%" and two upper-case hex digits ("-" and "~" too, deliberate).
  Ka_AString EncodeUrl() const;
  // The decoding of this string (shared when it holds no "%").
  Ka_AString DecodeUrl() const;
  // This string becomes the decoding of text: "%" and the two characters
  // after it give the byte high x 16 + low, a digit being its code minus '0'
  // below 'A', else its code without the lower-case bit minus 55, so every
  // pair gives some byte (signed characters). A "%" with fewer than two
  // characters after it is copied as text. "+" stays "+" (deliberate).
  const Ka_AString& DecodeUrl(const char* text, int n);
  const Ka_AString& DecodeUrl(const Ka_AString& text);

  // ---- Base64 (kalbor/buffer.h) --------------------------------------------------

  // The bytes decoded from this string as Ka_Buffer::DecodeBase64 does; an
  // empty string gives an empty buffer.
  Ka_Buffer DecodeBase64() const;

  // ---- Objects -------------------------------------------------------------------

  // One slot of _KaAStringHandler's pool; null when the pool can get no
  // block, or for a size above one string object (a derived class that adds
  // members needs its own operator new).
  static void* operator new(size_t size) noexcept;
  // Gives the slot back to the pool; null is ignored.
  static void operator delete(void* p);
  // Constructs the null string in place at p; null p is ignored.
  static void InitWithMemory(Ka_AString* p);
  // Destroys the string at p in place, releasing its text; null p is ignored.
  static void FreeWithMemory(Ka_AString* p);

  // The library's empty string, usable from any static object's constructor
  // or destructor. Read-only.
  static const Ka_AString& _KaNullString;
  // The narrow item handler of the lists; its pool serves operator new.
  static Ka_AStringHandler& _KaAStringHandler;

 protected:
  // Appends n characters of s (n < 0: up to the zero); nothing when n is 0,
  // s is null or s starts with the character 0.
  void ConcatInPlace(const char* s, int n);
  // Attaches a new block for n characters with a zero at n, without
  // releasing the old text; n <= 0, or a refused block, leaves it null.
  void AllocBuffer(int n);
  // Drops this string's reference, freeing the block with the last one.
  void Release() {
    if (m_pchData != nullptr) {
      Ka_AStringData* data = GetData();
      m_pchData = nullptr;
      Release(data);
    }
  }
  // Drops one reference of data (null ignored), freeing it with the last.
  static void Release(Ka_AStringData* data) {
    if (data != nullptr && data->Release() < 1) FreeData(data);
  }
  // Returns the block to its pool.
  static void FreeData(Ka_AStringData* data) { Ka_BufferPool::FreeBuffer(data); }

  // GetSafeBuffer's slow path: a new block of n characters holding the old
  // text (see GetSafeBuffer). The only place that copies a string's text.
  // The decoders proper of DecodeXml and DecodeUrl, for n >= 1.
  void _DecodeXml(const char* text, int n);
  void _DecodeUrl(const char* text, int n);

  char* _CopyToNewBuffer(int n);
  void _AddRef() {
    if (m_pchData != nullptr) GetData()->AddRef();
  }
  // operator+=(c) when the text is shared, full or null, or c is 0.
  const Ka_AString& _AppendOne(char c);
  bool _IsPrivateWithRoom(int n) const {
    return n <= Traits::kMaxLength && m_pchData != nullptr && ka_interlocked_read(&GetData()->nRefs) <= 1 &&
           n <= GetAllocLength();
  }
  // Sets the length of a private text that has room, zero-filling the growth.
  char* _ResizeInPlace(int n) {
    const int old = GetLength();
    if (n > old) std::memset(m_pchData + old, 0, static_cast<size_t>(n - old) * sizeof(char));
    GetData()->nDataLength = Traits::Stored(n);
    m_pchData[n] = 0;
    return m_pchData;
  }

  char* m_pchData;

 private:
  friend struct ka_detail::Ka_StringOps<Ka_AString>;
};

// New strings: left shared, then right appended as by ConcatInPlace (a
// Ka_AString with its length, a C string up to its zero).
KA_API Ka_AString operator+(const Ka_AString& left, const Ka_AString& right);
KA_API Ka_AString operator+(const Ka_AString& left, const char* right);
KA_API Ka_AString operator+(const char* left, const Ka_AString& right);

// Ka_WString: a reference-counted 16-bit string. Its members are those of
// Ka_AString with ka_wchar for char and the same contracts, except for what
// Ka_StringTraits<ka_wchar> lists: the header counts bytes, Find of the
// character 0 gives -1, Compare is ka_strcmpW, and a substring Replace that
// does not lengthen the text writes through a shared block.
// Invariant: as Ka_AString's, with the header's capacity and length in bytes.
class KA_API Ka_WString {
 public:
  typedef Ka_BufferData Ka_WStringData;
  typedef ka_detail::Ka_StringTraits<ka_wchar> Traits;

  // Construction, as Ka_AString's: the null string, a shared or taken text,
  // Set(s, n), or n copies of c (the null string for c = 0 or n below 1).
  Ka_WString() : m_pchData(nullptr) {}
  Ka_WString(const Ka_WString& other) : m_pchData(other.m_pchData) { _AddRef(); }
  Ka_WString(Ka_WString&& other) noexcept : m_pchData(other.m_pchData) { other.m_pchData = nullptr; }
  Ka_WString(const ka_wchar* s, int n = -1) : m_pchData(nullptr) { Set(s, n); }
  Ka_WString(ka_wchar c, int n);
  ~Ka_WString() { Release(); }

  // Length, capacity and characters, in characters, as Ka_AString's: GetAt
  // gives 0 out of range and SetAt then does nothing.
  int GetLength() const { return m_pchData != nullptr ? Traits::Chars(GetData()->nDataLength) : 0; }
  int GetAllocLength() const { return m_pchData != nullptr ? Traits::Chars(GetData()->nAllocLength) : 0; }
  int IsEmpty() const { return m_pchData == nullptr || m_pchData[0] == 0 ? 1 : 0; }
  operator const ka_wchar*() const { return m_pchData; }
  Ka_WStringData* GetData() const { return m_pchData != nullptr ? Ka_BufferData::FromData(m_pchData) : nullptr; }
  ka_wchar GetAt(int i) const { return i >= 0 && i < GetLength() ? m_pchData[i] : 0; }
  ka_wchar operator[](int i) const { return GetAt(i); }
  void SetAt(int i, ka_wchar c);

  // Assignment and appending, as Ka_AString's: a null text empties; appending
  // a null or empty text or the character 0 does nothing.
  const Ka_WString& Set(const Ka_WString& other) {
    if (m_pchData != other.m_pchData) {
      Release();
      m_pchData = other.m_pchData;
      _AddRef();
    }
    return *this;
  }
  const Ka_WString& Set(const ka_wchar* s, int n = -1);
  const Ka_WString& operator=(const Ka_WString& other) { return Set(other); }
  const Ka_WString& operator=(Ka_WString&& other) noexcept {
    if (this != &other) {
      Release();
      m_pchData = other.m_pchData;
      other.m_pchData = nullptr;
    }
    return *this;
  }
  const Ka_WString& operator=(const ka_wchar* s) { return Set(s, -1); }
  // Assigning the character 0 gives a one-character string (deliberate).
  const Ka_WString& operator=(ka_wchar c) { return Set(&c, 1); }
  const Ka_WString& operator+=(const Ka_WString& other);
  const Ka_WString& operator+=(const ka_wchar* s);
  const Ka_WString& operator+=(ka_wchar c) { return ka_detail::Ka_AppendInPlace<Traits>(m_pchData, c) ? *this : _AppendOne(c); }
  void Empty() { Release(); }

  // ---- Code-page bridging (KaToUnicode, kalbor/codepage.h) -------------------

  // As Set(s, n, codePage).
  Ka_WString(const char* s, int n, unsigned int codePage) : m_pchData(nullptr) { Set(s, n, codePage); }
  // The n bytes of s (n < 0: up to the zero; a null s is empty) in codePage;
  // n = 0 empties. One character is reserved per byte; the length is that of
  // the result up to its first zero. A failed conversion leaves an empty text.
  const Ka_WString& Set(const char* s, int n, unsigned int codePage);
  // Set(s, -1, 0).
  const Ka_WString& operator=(const char* s) { return Set(s, -1, 0); }
  // Appends s, converted; the length then ends at the first zero. Nothing for
  // a null or empty s, or when the conversion fails.
  const Ka_WString& operator+=(const char* s);
  // Appends the byte c as one character, sign-extended and not converted:
  // 0xE9 appends 0xFFE9 (deliberate); 0 appends nothing.
  const Ka_WString& operator+=(char c);

  // As Ka_AString::GetSafeBuffer: the private text of length n (n < 0: the
  // length); null for n = 0 on a shared or null text, or when refused.
  ka_wchar* GetSafeBuffer(int n) {
    if (n < 0) n = GetLength();
    return _IsPrivateWithRoom(n) ? _ResizeInPlace(n) : _CopyToNewBuffer(n);
  }
  // Does not make the text private (deliberate).
  void FreeExtra(int n);

  // ka_strcmpW on the text: a null string equals "" (deliberate).
  int Compare(const ka_wchar* s) const;
  int CompareNoCase(const ka_wchar* s) const;

  // Searches, as Ka_AString's: an index or -1; a negative start counts as 0.
  // Find of the character 0 gives -1 (deliberate).
  int Find(ka_wchar c, int start = 0) const;
  int Find(const ka_wchar* s, int start = 0) const;
  int Findi(const ka_wchar* s, int start = 0) const;
  int ReverseFind(ka_wchar c) const;
  int FindOneOf(const ka_wchar* set) const;

  // Slices, as Ka_AString's: clipped to the text; an empty range gives the
  // null string.
  Ka_WString Mid(int start, int count) const;
  Ka_WString Mid(int start) const;
  Ka_WString Left(int n) const;
  Ka_WString Right(int n) const;

  // Trims, as Ka_AString's: white space is space, tab, line feed and carriage
  // return; nothing for an empty string.
  void TrimLeft();
  void TrimRight();
  void Trim();
  void TrimLeft(ka_wchar c);
  void TrimRight(ka_wchar c);
  void TrimLeft(const ka_wchar* set);
  void TrimRight(const ka_wchar* set);
  void TrimBrace(int unescape);

  // Edits, as Ka_AString's: Replace and Remove return counts, Insert and
  // Delete the new length; indices are clamped to the text.
  int Replace(ka_wchar from, ka_wchar to);
  // When the result is not longer, writes through the block even when it is
  // shared, so every sharer sees the change (deliberate).
  int Replace(const ka_wchar* from, const ka_wchar* to);
  int Remove(ka_wchar c);
  int Insert(int index, ka_wchar c);
  int Insert(int index, const ka_wchar* s);
  int Delete(int index, int count);
  void MakeUpper();
  void MakeLower();
  // Swaps case and keeps the order (deliberate, as ka_strrevW).
  void MakeReverse();

  // Numbers, as Ka_AString's, except: Set(double)'s exponent form has 15
  // decimals ("%.15e", deliberate), ToInteger tests "true" with
  // ka_strnicmpWA and reads the digits from a narrow copy in code page 0,
  // ToDouble reads the text directly, and IsName tests the low 8 bits of the
  // 16-bit character as it stands (0x00E9 passes, 0x4E00 and 0x0141 do not;
  // deliberate).
  const Ka_WString& Set(int value);
  const Ka_WString& Set(double value);
  const Ka_WString& operator=(int value) { return Set(value); }
  const Ka_WString& operator=(double value) { return Set(value); }
  const Ka_WString& operator+=(int value);
  const Ka_WString& operator+=(double value);
  static Ka_WString FromInteger(int value);
  static Ka_WString FromDouble(double value);
  int ToInteger() const;
  double ToDouble() const;
  int IsNumber() const;
  int IsString() const;
  int IsName() const;

  // Formatting, as Ka_AString's (kalbor/format.h): a plain %s takes a wide
  // text here too, %hs a narrow one converted through code page 0.
  const ka_wchar* Format(const ka_wchar* format, ...);
  const ka_wchar* Formatv(const ka_wchar* format, va_list args);
  // Format with a narrow format, converted through code page 0 first.
  const ka_wchar* FormatA(const char* format, ...);
  // As Ka_AString's, but the number is printed by Ka_AString::Format's
  // "%.*lf", with its digits and rounding ("%.0f" truncates: 1234.567 with
  // no decimals is "1,234", deliberate), and the text converted to wide
  // through code page 0.
  int NumFormat(double value, int ignored, int decimals);
  int MaskStr(Ka_WString value, Ka_WString mask);

  // Escaping, as Ka_AString's, on 16-bit characters, except: EncodeUrl, when
  // any character needs escaping, converts the text up to its first zero to
  // the locale code page, encodes those bytes and widens the result; a
  // numeric XML entity is
  // stored as one character, its hex digits being 1-8, A-F and a-f ("0" and
  // "9" end the number here too, deliberate); DecodeUrl stores each decoded
  // byte as one character, and a character's code is unsigned.
  Ka_WString QuoteStr(ka_wchar quote) const;
  Ka_WString UnQuoteStr() const;
  Ka_WString EncodeXml() const;
  Ka_WString DecodeXml() const;
  const Ka_WString& DecodeXml(const ka_wchar* text, int n);
  const Ka_WString& DecodeXml(const Ka_WString& text);
  Ka_WString EncodeUrl() const;
  Ka_WString DecodeUrl() const;
  const Ka_WString& DecodeUrl(const ka_wchar* text, int n);
  const Ka_WString& DecodeUrl(const Ka_WString& text);

  // The text converted to codePage (0: the locale code page) up to its first
  // zero, then decoded as Ka_Buffer::DecodeBase64 does.
  Ka_Buffer DecodeBase64(unsigned int codePage) const;

  // One slot of _KaWStringHandler's pool (see Ka_AString::operator new).
  static void* operator new(size_t size) noexcept;
  static void operator delete(void* p);
  static void InitWithMemory(Ka_WString* p);
  static void FreeWithMemory(Ka_WString* p);

  static const Ka_WString& _KaNullString;
  static Ka_WStringHandler& _KaWStringHandler;

 protected:
  void ConcatInPlace(const ka_wchar* s, int n);
  // Asks the pools for 2 x n bytes.
  void AllocBuffer(int n);
  void Release() {
    if (m_pchData != nullptr) {
      Ka_WStringData* data = GetData();
      m_pchData = nullptr;
      Release(data);
    }
  }
  static void Release(Ka_WStringData* data) {
    if (data != nullptr && data->Release() < 1) FreeData(data);
  }
  static void FreeData(Ka_WStringData* data) { Ka_BufferPool::FreeBuffer(data); }

  void _DecodeXml(const ka_wchar* text, int n);
  void _DecodeUrl(const ka_wchar* text, int n);

  ka_wchar* _CopyToNewBuffer(int n);
  void _AddRef() {
    if (m_pchData != nullptr) GetData()->AddRef();
  }
  // operator+=(c) when the text is shared, full or null, or c is 0.
  const Ka_WString& _AppendOne(ka_wchar c);
  bool _IsPrivateWithRoom(int n) const {
    return n <= Traits::kMaxLength && m_pchData != nullptr && ka_interlocked_read(&GetData()->nRefs) <= 1 &&
           n <= GetAllocLength();
  }
  ka_wchar* _ResizeInPlace(int n) {
    const int old = GetLength();
    if (n > old) std::memset(m_pchData + old, 0, static_cast<size_t>(n - old) * sizeof(ka_wchar));
    GetData()->nDataLength = Traits::Stored(n);
    m_pchData[n] = 0;
    return m_pchData;
  }

  ka_wchar* m_pchData;

 private:
  friend struct ka_detail::Ka_StringOps<Ka_WString>;
};

KA_API Ka_WString operator+(const Ka_WString& left, const Ka_WString& right);
KA_API Ka_WString operator+(const Ka_WString& left, const ka_wchar* right);
KA_API Ka_WString operator+(const ka_wchar* left, const Ka_WString& right);

static_assert(sizeof(Ka_AString) == sizeof(void*) && sizeof(Ka_WString) == sizeof(void*),
              "a string object is one pointer: the object pools hold one per slot");

// The item handler of narrow string lists: items are Ka_AString objects in
// slots of the pool "Ka_AString" (one string object each, 128 per block).
class KA_API Ka_AStringHandler : public Ka_ListObjHandler {
 public:
  Ka_AStringHandler();
  // Constructs the null string at object (null ignored); returns object.
  void* _InitItem(void* object) override;
  // Destroys the string at object (null ignored).
  void _FreeItem(void* object) override;
  // target shares source's text; nothing when either is null.
  void _AssignItem(void* target, void* source) override;
  // item.Compare(key's text); a null pointer counts as the null string.
  int _CompareItem(void* item, void* key) override;
};

// The item handler of wide string lists: pool "Ka_WString", one string object
// per slot, 128 per block; items compare with ka_strcmpW.
class KA_API Ka_WStringHandler : public Ka_ListObjHandler {
 public:
  Ka_WStringHandler();
  void* _InitItem(void* object) override;
  void _FreeItem(void* object) override;
  void _AssignItem(void* target, void* source) override;
  int _CompareItem(void* item, void* key) override;
};

// The strings' static objects (the two empty strings and the two item
// handlers with their pools) live from before the first static object of any
// translation unit that includes this header until after its last one is
// destroyed, as the pools do (see Ka_MemoryModule).
class KA_API Ka_StringsModule {
 public:
  Ka_StringsModule();
  ~Ka_StringsModule();
  Ka_StringsModule(const Ka_StringsModule&) = delete;
  Ka_StringsModule& operator=(const Ka_StringsModule&) = delete;
};
static Ka_StringsModule ka_strings_module_instance;

#endif  // KALBOR_STRINGS_H
