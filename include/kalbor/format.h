// Kalbor400U formatting: the directive language of Ka_AString::Format,
// Ka_AString::Formatv, Ka_WString::Format, Ka_WString::Formatv and
// Ka_WString::FormatA (declared with the string classes in kalbor/strings.h).
//
// The engine is the library's own: it calls no platform formatting routine
// and does not depend on the C locale. Both string widths share it and
// produce the same characters, except where noted.
//
// A directive is  % [flags] [width] [.precision] [size] conversion
//   flags      any of - + # blank 0, in any order and repeated; 0 makes the
//              pad character "0" for numbers
//   width      decimal digits, or * taking an int (negative: left-justify,
//              with its magnitude)
//   precision  . followed by digits or *; a lone . or a negative * gives 0
//   size       one of q, l, h (q and none read an int, l a long of which the
//              low 32 bits count, h an int of which the low 16 bits count)
//   conversion
//     d i      signed decimal; precision = minimum digit count
//     u o x X  unsigned decimal, octal, hexadecimal. %#o prefixes "0"; %#x
//              prefixes "0x" only when the latest %d, %i or %u of the same
//              call (with size l, h or none) printed a nonzero value:
//              "%#x" on its own gives no prefix (deliberate)
//     c        an int's low 8 bits, sign-extended in the wide engine (so
//              0xE9 prints as 0xFFE9 there; deliberate)
//     s        a const ka_wchar* text; %hs a const char* text. The engine of
//              the other width converts it through code page 0. Null prints
//              "(null)"; the precision truncates
//     e E f g G  a double; precision 15 when not given (see below)
//     p        a pointer; the next character is always consumed: %pA takes a
//              pointer to a 32-bit IPv4 address in network order and prints
//              it dotted; %pI a pointer to {16-bit family, 16-bit port and
//              32-bit address, both in network order} and prints
//              "a.b.c.d:port"; any other character prints the pointer in
//              lower-case hexadecimal without prefix or padding
//     %        "%"; any other character prints "%" and that character
// Flags + and blank give a sign to d, i, e, E, f, g and G only. A width pads
// with blanks on the left, or on the right after -; the 0 flag pads numbers
// with zeros, after the sign, also on the right: "%-05d" of 42 is "42000"
// (deliberate). Zero padding goes before a "0x" prefix.
//
// Floating point: digits come from a decimal digit generator working on the
// value's binary64 arithmetic, at most 15 significant digits for f, 14 for
// e/E and the precision (at most 30) for g/G; the results are the same on
// every platform. The layouts keep the library's own forms (all deliberate):
//   %f  without a precision drops trailing zeros and the point ("%f" of 2.0
//       is "2"); "%.0f" truncates; below 0.1 one digit fewer follows the
//       leading zeros ("%.3f" of 0.005 is "0.0050")
//   %e  shows only the digits that the precision leaves in fixed-point form,
//       never padded ("%.2e" of 12345.0 is "1.2345e+04"); at least one
//       digit, and two exponent digits at least ("e+00", "e-05", "e+123")
//   %g  has no leading zero (".25"), keeps a "." before a short exponent
//       ("1.e+8") and uses the exponent form below 0.0001 or when more than
//       four zeros would end the integer part
// Infinity prints through the digit string "1#INF" ("1.#INF" for %e, or
// ".1#INF" for %g); a NaN prints as the infinity of its sign bit. Zero prints
// "0", "0.e+00" for %e. A value whose integer part has more digits than the
// generator keeps prints zeros after them.
//
// Bad input never reads or writes outside what the call was given: a format
// ending inside a directive ends the output there, unknown conversions are
// copied, a null format counts as empty. Every argument the format names
// must be passed, of the type named above.
//
// Growth: the text is collected first and stored once: a result shorter than
// 256 characters gets a block of 256 characters, a longer one the size group
// of its length + 1 (a private block that is already large enough is kept).
// The format and the arguments may point into the target string itself; they
// are read as they were before the call. A result longer than the string can
// hold, or one for which memory is refused, leaves the string unchanged.
#ifndef KALBOR_FORMAT_H
#define KALBOR_FORMAT_H

// The largest width or precision a directive can ask for: larger ones,
// written as digits or passed through *, count as this many characters.
#define KA_FORMAT_MAX_FIELD 1048576

#endif  // KALBOR_FORMAT_H
