// UTF-16 text helpers that behave the same on Windows (wchar_t) and on the Linux host
// (char16_t). The driver never uses the C library's wcs* or swprintf on WCHAR text.
#pragma once

#include "../../platform/win32.h"

#include <cstdarg>
#include <cstddef>

// Length in code units, without the terminator. A null pointer has length 0.
size_t WstrLen(const WCHAR* s);

// Copies src into dst of cchDst code units, cutting so that dst is always terminated.
// Returns the number of code units copied (without the terminator). cchDst 0 writes nothing.
size_t WstrCopy(WCHAR* dst, size_t cchDst, const WCHAR* src);
// Copies as wcsncpy does: at most n code units, the rest of the n filled with NULs; a src of n
// units or more leaves dst unterminated. Reads src no further than n units.
void WstrNCopy(WCHAR* dst, const WCHAR* src, size_t n);
// Appends src to the text in dst under the same rule.
size_t WstrCat(WCHAR* dst, size_t cchDst, const WCHAR* src);
// Copies 8-bit text (each byte one code unit, as the PJL wire gives it), bounded likewise.
size_t WstrCopyA(WCHAR* dst, size_t cchDst, const char* src);

// Ordinal compare; and compare with ASCII letters folded, as the registry and the spooler
// compare names. A null pointer sorts as the empty text.
int WstrCmp(const WCHAR* a, const WCHAR* b);
int WstrICmp(const WCHAR* a, const WCHAR* b);
int WstrNCmp(const WCHAR* a, const WCHAR* b, size_t n);
// First occurrence of needle in s, or null.
const WCHAR* WstrStr(const WCHAR* s, const WCHAR* needle);
const WCHAR* WstrChr(const WCHAR* s, WCHAR c);

// Reads a double as wcstod does: leading white space, sign, digits, the decimal point of the
// C locale in force, exponent. *pEnd (if given) points behind what was read, or at s when no
// number was read (then the result is 0).
double WstrToDouble(const WCHAR* s, const WCHAR** pEnd = nullptr);
// Reads a signed decimal integer as wcstol with base 10 does.
long WstrToLong(const WCHAR* s, const WCHAR** pEnd = nullptr);

// UTF-16 to UTF-8 and back, bounded by the destination (always terminated when cch > 0).
// Unpaired surrogates become U+FFFD. Return the units written without the terminator.
size_t WstrToUtf8(char* dst, size_t cbDst, const WCHAR* src);
size_t Utf8ToWstr(WCHAR* dst, size_t cchDst, const char* src);

// printf-style formatting into dst of cchDst code units, cut to fit and always terminated.
// The Windows wide conventions: %s is WCHAR text, %S is 8-bit text, %c a WCHAR, %C a char.
// Flags - + 0 blank #, width and precision (also *), length h l ll I64 z; conversions
// d i u x X o c C s S f F e E g G p %. Returns the length of the text written (as cut).
size_t WstrPrintf(WCHAR* dst, size_t cchDst, const WCHAR* format, ...);
// Whether a format takes exactly count texts (%s) and no other argument ("%%" aside): a format
// from the resource library is checked so before the texts are given to it.
bool WstrFormatTakesTexts(const WCHAR* format, int count);
size_t WstrVPrintf(WCHAR* dst, size_t cchDst, const WCHAR* format, va_list args);
