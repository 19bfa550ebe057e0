// Kalbor400U code pages.
//
// Charset names as mail, web and document headers spell them, mapped to
// Windows code page numbers and back; the process-wide locale code page; and
// conversion between narrow text in a code page and 16-bit wide text.
//
// The conversions give, on every platform, what Windows' MultiByteToWideChar
// and WideCharToMultiByte give with flags 0 and no default character (on
// Windows they are those calls, with the library's own converter for a page
// the system does not convert): best-fit mappings, private-use units for
// undefined bytes, '?' for a unit a page cannot hold, the page's default
// unit for an invalid byte sequence (U+30FB in the Japanese pages, '?' in the
// other double-byte ones, U+FFFD once per maximal ill-formed subpart in
// UTF-8), and 0 when the destination is too small. The code pages converted
// are those the charset tables name or produce: 874, 1250-1258, 708, 720,
// 850, 852, 862, 866, 28592-28598, 38598 (as 28598), 20866, 21866, 932, 936,
// 949, 950, 51932 (EUC-JP), 50220 (ISO-2022-JP), 50225 (ISO-2022-KR), 52936
// (HZ-GB-2312) and 65001 (UTF-8). Any other page converts nothing and gives 0,
// 1200 (UTF-16) included, as on Windows.
#ifndef KALBOR_CODEPAGE_H
#define KALBOR_CODEPAGE_H

#include <kalbor/platform.h>

// ---- Locale code page ---------------------------------------------------------
// One process-wide code page that every conversion uses when its code page
// argument is 0. It starts unchosen; the first KaGetLocaleCP takes the
// platform's ANSI code page (GetACP on Windows, 65001 elsewhere). Reads and
// writes are atomic but unordered: set it at start-up, before threads convert.

// Stores cp (0 makes the next KaGetLocaleCP ask the platform again); returns
// the value stored before, 0 when none was chosen yet.
KA_API unsigned int KaSetLocaleCP(unsigned int cp);
// The locale code page, chosen from the platform on first use.
KA_API unsigned int KaGetLocaleCP();

// ---- Charset names --------------------------------------------------------------

// The code page of a charset name, in any mix of case; 0 for an unknown, empty
// or null name. The lookup is a binary search over a table whose order puts
// '_' below the digits while the comparison puts it above them, so 30 of its
// names are deliberately never found: "iso_8859-3" to "iso_8859-9",
// "iso2022jp", "iso2022kr", "iso646-us", "iso8859-1" to "iso8859-9",
// "iso8859_1" to "iso8859_9", "utf_16" and "utf_8" all give 0. Some keys are
// kept as they were spelt, deliberately: "iso-5022-kr" (50225), "chiness"
// (936), "euctw" (874), "euc_jp" (932, while "euc-jp" and "eucjp" give 51932).
KA_API unsigned int ka_findcodepageA(const char* name);
// The same for a wide name: its first 32 units are narrowed to their low
// bytes first (deliberately no code page: U+0175 reads as 'u'), stopping at a
// unit whose low byte is 0.
KA_API unsigned int ka_findcodepageW(const ka_wchar* name);
// The preferred charset name of cp: "euc-jp" (51932), "euc-kr" (949),
// "iso-2022-jp-2" (50220), "iso-2022-kr" (50225), "iso-8859-1" (1252),
// "shift-jis" (932), "utf-8" (65001), else "ASCII". Constant storage, never
// freed.
KA_API const char* ka_findcharset(unsigned int cp);
// The narrow code page that conversion used on the device for a requested
// cp: 708, 720, 862, 28596 -> 1256; 50220, 51932 -> 932; 52936 -> 936;
// 50225 -> 949; 1200 -> 65001; 28592 -> 1250; 20866, 21866, 28595 -> 1251;
// 28597 -> 1253; 28593 -> 1254 and 28594 -> 1257 (both deliberately kept as
// the device had them); 28598, 38598 -> 1255; 852, 866, 874, 932, 936, 949,
// 950, 1250-1258 and 65001 -> themselves; every other page, 0 and 850
// included, -> 1252.
KA_API unsigned int ka_activecodepage(unsigned int cp);

// ---- Conversion ----------------------------------------------------------------
// A code page argument of 0 means the locale code page. srcLen counts bytes
// or units; a negative srcLen converts through the terminator, which is then
// part of the result. src and dst must not overlap.

// Converts srcLen bytes of src from code page cp into dst and returns the
// units written, then stores a terminator at dst[result] (so dst holds
// dstSize + 1 units). 0, with nothing stored, when dstSize is 0 and dst is
// not null, when src is null or srcLen is 0, for a page the library does not
// convert, or when the result needs more than dstSize units (dst may then hold
// part of it, unterminated). A null dst with dstSize 0 returns the units the
// conversion needs and writes nothing.
KA_API int KaToUnicode(ka_wchar* dst, int dstSize, const char* src, int srcLen, unsigned int cp);
// The same from srcLen units of src to bytes of code page cp, with a
// terminating byte at dst[result].
KA_API int KaToAscii(char* dst, int dstSize, const ka_wchar* src, int srcLen, unsigned int cp);
// Re-encodes srcLen bytes of src (srcLen < 0: up to its terminator) from
// fromCp to toCp through a temporary wide text, into dst, which must hold
// srcLen + srcLen / 2 + 2 bytes; returns the bytes written before the
// terminator. 0 for a null src or dst (nothing written), and 0 with dst
// emptied when src is empty, when either conversion fails or the result does
// not fit, or when memory for the wide text is exhausted.
KA_API long Ka_ConvCodePage(char* dst, const char* src, int srcLen, unsigned int fromCp, unsigned int toCp);

#endif  // KALBOR_CODEPAGE_H
