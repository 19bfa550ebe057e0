// Kalbor400U C-string functions.
//
// Free functions on zero-terminated text, each in an A form (8-bit char) and
// a W form (16-bit ka_wchar units, unsigned, no surrogate handling); the WA
// forms compare a wide text (always the first argument) with a narrow one.
// Where the C runtime already has a narrow function (strlen, strcpy, strcat,
// strchr, strstr, strcmp) only the W form exists here.
//
// Rules shared by the whole family:
// - A null text reads as empty; a null destination makes the function return
//   null (or 0) without writing. Destination sizes are the caller's business
//   (n + 1 characters for the n forms, width + 1 for padding).
// - Comparisons return the raw difference of the first differing characters
//   (not -1/0/1), except when an argument is null, which gives exactly -1, 0
//   or 1. Narrow characters compare and subtract as signed 8-bit values;
//   wide units as unsigned 16-bit values.
// - Case changes and case-insensitive comparison and search fold ASCII
//   letters only (A-Z, a-z); every other byte and unit is its own case, on
//   every platform and whatever the process locale.
// - Blanks are exactly space, tab, line feed and carriage return.
// - Lengths, counts and indexes are int, in characters. Only _ka_strdupA/W
//   and ka_replaceA/W allocate; their blocks are released with ka_free.
// - Search functions take const text and return a non-const pointer into it,
//   as the C runtime's strchr and strstr do.
#ifndef KALBOR_CSTR_H
#define KALBOR_CSTR_H

#include <kalbor/platform.h>

// ---- Copy and length -------------------------------------------------------

// Units before the terminator; 0 for null.
KA_API int ka_strlenW(const ka_wchar* s);
// Copies src with its terminator; a null src empties dst; returns dst (null
// for a null dst, nothing written).
KA_API ka_wchar* ka_strcpyW(ka_wchar* dst, const ka_wchar* src);
// Copies at most n units of src, stopping after its terminator, then stores
// one more terminator (dst holds n + 1 units); n <= 0 or a null src empties
// dst; returns dst (null for a null dst).
KA_API ka_wchar* ka_strncpyW(ka_wchar* dst, const ka_wchar* src, int n);
// Appends src to dst; a null src leaves dst unchanged; returns dst (null for
// a null dst).
KA_API ka_wchar* ka_strcatW(ka_wchar* dst, const ka_wchar* src);
// Appends at most n characters of src and a terminator; a null src or
// n <= 0 leaves dst untouched; returns dst (null for a null dst).
KA_API char* ka_strncatA(char* dst, const char* src, int n);
KA_API ka_wchar* ka_strncatW(ka_wchar* dst, const ka_wchar* src, int n);
// A new _ka_malloc copy of s; null for a null or empty s (deliberately no
// empty copy) or when memory is exhausted.
KA_API char* _ka_strdupA(const char* s);
KA_API ka_wchar* _ka_strdupW(const ka_wchar* s);
// Widens at most n bytes of src, each zero-extended (0xE9 -> 0x00E9, no code
// page), with the terminator rules of ka_strncpyW; returns dst (null for a
// null dst).
KA_API ka_wchar* ka_ascii2wide(ka_wchar* dst, const char* src, int n);
// Narrows at most n units of src to their low 8 bits, with the terminator
// rules of ka_strncpyW; a unit whose low byte is 0 (0x0100) ends the copy
// (deliberate truncation: code pages convert properly); returns dst (null for
// a null dst).
KA_API char* ka_wide2ascii(char* dst, const ka_wchar* src, int n);
// Copies count characters of src from start into dst (fewer when src ends
// first); dst becomes empty when start is at or past the end or count <= 0;
// a negative start counts as 0; returns dst (null for a null dst).
KA_API char* ka_substrA(const char* src, int start, int count, char* dst);
KA_API ka_wchar* ka_substrW(const ka_wchar* src, int start, int count, ka_wchar* dst);
// Copies the last n characters of src (all of it when shorter) into dst;
// n <= 0 or a null src empties dst; returns dst (null for a null dst).
KA_API char* ka_rightA(const char* src, int n, char* dst);
KA_API ka_wchar* ka_rightW(const ka_wchar* src, int n, ka_wchar* dst);

// ---- Compare ---------------------------------------------------------------
// Each returns first minus second at the first difference (0 when equal);
// a null a gives -1 against a non-empty b, else 0; a null b gives 1 against a
// non-empty a, else 0. The n forms compare at most n characters and return 0
// for n <= 0. The i forms compare ASCII-lower-cased characters and return the
// difference of the lower-cased pair.
// In a WA form the narrow character is a signed 8-bit value, so bytes
// 0x80-0xFF never equal a wide unit; in the returned difference it counts as
// its 16-bit sign extension (0xE9 as 0xFFE9), deliberately, so the wide unit
// 0xFFE9 against the byte 0xE9 stops the walk and yet returns 0.

KA_API int ka_strcmpW(const ka_wchar* a, const ka_wchar* b);
KA_API int ka_strcmpWA(const ka_wchar* a, const char* b);
KA_API int ka_strncmpA(const char* a, const char* b, int n);
KA_API int ka_strncmpW(const ka_wchar* a, const ka_wchar* b, int n);
KA_API int ka_strncmpWA(const ka_wchar* a, const char* b, int n);
KA_API int ka_stricmpA(const char* a, const char* b);
KA_API int ka_stricmpW(const ka_wchar* a, const ka_wchar* b);
KA_API int ka_stricmpWA(const ka_wchar* a, const char* b);
KA_API int ka_strnicmpA(const char* a, const char* b, int n);
KA_API int ka_strnicmpW(const ka_wchar* a, const ka_wchar* b, int n);
KA_API int ka_strnicmpWA(const ka_wchar* a, const char* b, int n);

// ---- Search ----------------------------------------------------------------

// The first unit equal to c; null if none, for a null s, or when c is 0
// (deliberately: the terminator is not found) or outside 1..0xFFFF.
KA_API ka_wchar* ka_strchrW(const ka_wchar* s, int c);
// The last character equal to c, the terminator included (c = 0 gives its
// address); null if none or s is null. Narrow characters compare as signed
// values: byte 0xE9 matches c = -23, not 233.
KA_API char* ka_strrchrA(const char* s, int c);
KA_API ka_wchar* ka_strrchrW(const ka_wchar* s, int c);
// The leftmost occurrence of pat in s; s itself for a null or empty pat (a
// null s then gives null); null if none.
KA_API ka_wchar* ka_strstrW(const ka_wchar* s, const ka_wchar* pat);
// As ka_strstrW, with ASCII letters matching either case.
KA_API char* ka_stristrA(const char* s, const char* pat);
KA_API ka_wchar* ka_stristrW(const ka_wchar* s, const ka_wchar* pat);
// The first character of s that occurs in set; s itself for a null set; null
// for a null or empty s or when nothing matches.
KA_API char* ka_strpbrkA(const char* s, const char* set);
KA_API ka_wchar* ka_strpbrkW(const ka_wchar* s, const ka_wchar* set);
// Length of the leading run of s made of characters in set; -1 if either is
// null; 0 for an empty s.
KA_API int ka_strspnA(const char* s, const char* set);
KA_API int ka_strspnW(const ka_wchar* s, const ka_wchar* set);
// Non-overlapping occurrences of pat in s, left to right (aa is in aaaa
// twice); 0 for a null s and, rather than never finishing, for a null or
// empty pat.
KA_API int ka_countstrA(const char* s, const char* pat);
KA_API int ka_countstrW(const ka_wchar* s, const ka_wchar* pat);

// ---- Case, in place (a null s is ignored) -----------------------------------

// Lower-cases A-Z; every other character is kept.
KA_API void ka_strlwrA(char* s);
KA_API void ka_strlwrW(ka_wchar* s);
// Upper-cases a-z; every other character is kept.
KA_API void ka_struprA(char* s);
KA_API void ka_struprW(ka_wchar* s);
// Swaps the case of ASCII letters and keeps the order of the characters:
// despite the name it does not reverse the text (deliberate).
KA_API void ka_strrevA(char* s);
KA_API void ka_strrevW(ka_wchar* s);

// ---- Skip and trim ---------------------------------------------------------

// The first non-blank among the first n characters (the terminator stops the
// walk), or s + n when all n are blank; s for n <= 0; null for a null s.
KA_API char* ka_skipspaceA(const char* s, int n);
KA_API ka_wchar* ka_skipspaceW(const ka_wchar* s, int n);
// Leading blanks among the first n characters; 0 for a null s or n <= 0.
KA_API int ka_findskipA(const char* s, int n);
KA_API int ka_findskipW(const ka_wchar* s, int n);
// Trailing blanks among the first n characters (0 when s[n-1] is not blank,
// n when all are); an n past the terminator counts only up to it; 0 for a
// null s or n < 1.
KA_API int ka_findrskipA(const char* s, int n);
KA_API int ka_findrskipW(const ka_wchar* s, int n);
// Removes leading blanks in place; returns 0 when none were removed (or s is
// null), else minus the number removed (deliberately negative, unlike the
// rest of the family, which returns lengths).
KA_API int ka_ltrimA(char* s);
KA_API int ka_ltrimW(ka_wchar* s);
// Removes trailing blanks in place; returns the new length (0 for null).
KA_API int ka_rtrimA(char* s);
KA_API int ka_rtrimW(ka_wchar* s);
// Removes leading and trailing blanks in place; returns the new length (0
// for null).
KA_API int ka_trimA(char* s);
KA_API int ka_trimW(ka_wchar* s);

// ---- Pad and pack ----------------------------------------------------------

// Pads s on the left with c to width characters (s holds width + 1); never
// shortens; returns the new length (0 for a null s).
KA_API int ka_lpadA(char* s, char c, int width);
KA_API int ka_lpadW(ka_wchar* s, ka_wchar c, int width);
// Pads s on the right with c to width characters (s holds width + 1); never
// shortens; returns the new length (0 for a null s).
KA_API int ka_rpadA(char* s, char c, int width);
KA_API int ka_rpadW(ka_wchar* s, ka_wchar c, int width);
// Deletes in place every blank and every character found in remove (when not
// null); returns the new length (0 for a null s).
KA_API int ka_packstrA(char* s, const char* remove);
KA_API int ka_packstrW(ka_wchar* s, const ka_wchar* remove);

// ---- Brackets and quotes ---------------------------------------------------

// Index (from s, not from pos) of the character closing the bracket ( { [ or
// quote " ' at s[pos]: same-kind brackets nest, other kinds are ordinary,
// quoted runs inside brackets are skipped, a backslash escapes inside quotes
// only. -1 for a null s, a pos that is negative or at or past the
// terminator, a character there that opens nothing, or no closer.
KA_API int ka_findbraceA(const char* s, int pos);
KA_API int ka_findbraceW(const ka_wchar* s, int pos);
// Trims s, then strips one outer quote pair (keeping the text up to the first
// unescaped closing quote and dropping the rest) or bracket pair (keeping what
// lies between them; without a closer only the opener goes). With unescape
// non-zero a backslash pair in quotes becomes one character: \n and \r both a
// line feed (deliberate), \t a tab, any other the character itself (a
// backslash just before the end is kept). Returns the new length (0 for a
// null s).
KA_API int ka_trimbraceA(char* s, int unescape);
KA_API int ka_trimbraceW(ka_wchar* s, int unescape);

// ---- Replace ---------------------------------------------------------------

// Replaces every non-overlapping occurrence of from, left to right, by to (a
// null to deletes) in s, a _ka_malloc block that may be reallocated. Returns
// s or its new address (the old block is then released); null for a null s;
// s unchanged when from and to are both null, from is null or empty, or
// nothing matches; otherwise null for an empty s, and null when memory is
// exhausted (s is then untouched).
KA_API char* ka_replaceA(char* s, const char* from, const char* to);
KA_API ka_wchar* ka_replaceW(ka_wchar* s, const ka_wchar* from, const ka_wchar* to);

#endif  // KALBOR_CSTR_H
