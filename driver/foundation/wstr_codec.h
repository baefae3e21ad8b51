// The UTF-8 and UTF-16 codecs that the text helpers and their formatter share. Unpaired
// surrogates and broken UTF-8 read as U+FFFD.
#pragma once

#include "../../platform/win32.h"

#include <cstddef>

namespace wstrcodec {

inline constexpr char32_t kREPLACEMENT = 0xFFFD;

inline bool IsHighSurrogate(char32_t c)
{
    return c >= 0xD800 && c <= 0xDBFF;
}

inline bool IsLowSurrogate(char32_t c)
{
    return c >= 0xDC00 && c <= 0xDFFF;
}

// Reads one code point at s[i] (i advanced past it). An unpaired surrogate reads as U+FFFD.
inline char32_t NextUtf16(const WCHAR* s, size_t& i)
{
    char32_t c = static_cast<char16_t>(s[i++]);
    if (IsHighSurrogate(c)) {
        char32_t low = static_cast<char16_t>(s[i]);
        if (IsLowSurrogate(low)) {
            i++;
            return 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
        }
        return kREPLACEMENT;
    }
    return IsLowSurrogate(c) ? kREPLACEMENT : c;
}

// Reads one code point of UTF-8 at s (advanced past it). Ill-formed input gives U+FFFD for each
// maximal well-formed prefix, as Unicode recommends, and never reads past a terminator.
inline char32_t NextUtf8(const unsigned char*& s)
{
    unsigned char b = *s++;
    if (b < 0x80)
        return b;
    int more;
    char32_t c;
    unsigned char lo = 0x80, hi = 0xBF; // bounds of the second byte
    if (b >= 0xC2 && b <= 0xDF) {
        more = 1;
        c = b & 0x1F;
    } else if (b >= 0xE0 && b <= 0xEF) {
        more = 2;
        c = b & 0x0F;
        if (b == 0xE0)
            lo = 0xA0; // overlong
        if (b == 0xED)
            hi = 0x9F; // surrogates
    } else if (b >= 0xF0 && b <= 0xF4) {
        more = 3;
        c = b & 0x07;
        if (b == 0xF0)
            lo = 0x90; // overlong
        if (b == 0xF4)
            hi = 0x8F; // beyond U+10FFFF
    } else {
        return kREPLACEMENT;
    }
    for (int k = 0; k < more; k++) {
        unsigned char t = *s;
        if (t < lo || t > hi)
            return kREPLACEMENT; // t is not consumed; a terminator fails here too
        c = (c << 6) | (t & 0x3F);
        s++;
        lo = 0x80;
        hi = 0xBF;
    }
    return c;
}

// Writes code point c as UTF-8 into buf (at least 4 bytes); returns the byte count.
inline size_t EncodeUtf8(char32_t c, char* buf)
{
    if (c < 0x80) {
        buf[0] = static_cast<char>(c);
        return 1;
    }
    if (c < 0x800) {
        buf[0] = static_cast<char>(0xC0 | (c >> 6));
        buf[1] = static_cast<char>(0x80 | (c & 0x3F));
        return 2;
    }
    if (c < 0x10000) {
        buf[0] = static_cast<char>(0xE0 | (c >> 12));
        buf[1] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        buf[2] = static_cast<char>(0x80 | (c & 0x3F));
        return 3;
    }
    buf[0] = static_cast<char>(0xF0 | (c >> 18));
    buf[1] = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    buf[2] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    buf[3] = static_cast<char>(0x80 | (c & 0x3F));
    return 4;
}

// Writes code point c as UTF-16 into buf (at least 2 units); returns the unit count.
inline size_t EncodeUtf16(char32_t c, WCHAR* buf)
{
    if (c < 0x10000) {
        buf[0] = static_cast<WCHAR>(c);
        return 1;
    }
    c -= 0x10000;
    buf[0] = static_cast<WCHAR>(0xD800 + (c >> 10));
    buf[1] = static_cast<WCHAR>(0xDC00 + (c & 0x3FF));
    return 2;
}

} // namespace wstrcodec
