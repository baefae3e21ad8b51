// UTF-16 text helpers. Nothing here allocates: the trace layer formats through WstrPrintf and
// must stay usable where the heap is not.
#include "wstr.h"

#include "wstr_codec.h"

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace wstrcodec;

namespace {

const WCHAR kEMPTY[] = {0};

int Fold(WCHAR c)
{
    // Upper case, as the registry folds names.
    return (c >= 'a' && c <= 'z') ? c - ('a' - 'A') : static_cast<int>(c);
}

// Gives the ASCII prefix of s to a narrow reader (strtod, strtol) and maps its end back. Text
// longer than the buffer is cut there: no number of the driver comes near that length.
template <typename T, typename Reader> T ReadAscii(const WCHAR* s, const WCHAR** pEnd, Reader read)
{
    if (pEnd)
        *pEnd = s;
    if (!s)
        return T();
    char ascii[512];
    size_t n = 0;
    while (n + 1 < sizeof(ascii) && s[n] != 0 && static_cast<char16_t>(s[n]) < 0x80) {
        ascii[n] = static_cast<char>(s[n]);
        n++;
    }
    ascii[n] = 0;
    char* end = ascii;
    T value = read(ascii, &end);
    if (pEnd)
        *pEnd = s + (end - ascii);
    return value;
}

} // namespace

size_t WstrLen(const WCHAR* s)
{
    if (!s)
        return 0;
    size_t n = 0;
    while (s[n] != 0)
        n++;
    return n;
}

size_t WstrCopy(WCHAR* dst, size_t cchDst, const WCHAR* src)
{
    if (!dst || cchDst == 0)
        return 0;
    if (!src)
        src = kEMPTY;
    size_t n = 0;
    while (n + 1 < cchDst && src[n] != 0) {
        dst[n] = src[n];
        n++;
    }
    dst[n] = 0;
    return n;
}

size_t WstrCat(WCHAR* dst, size_t cchDst, const WCHAR* src)
{
    if (!dst || cchDst == 0)
        return 0;
    size_t len = 0;
    while (len < cchDst && dst[len] != 0)
        len++;
    if (len == cchDst) {
        // Not terminated within its size: terminate it, nothing fits behind.
        dst[cchDst - 1] = 0;
        return 0;
    }
    return WstrCopy(dst + len, cchDst - len, src);
}

void WstrNCopy(WCHAR* dst, const WCHAR* src, size_t n)
{
    if (!dst)
        return;
    size_t i = 0;
    for (; src && i < n && src[i] != 0; i++)
        dst[i] = src[i];
    for (; i < n; i++)
        dst[i] = 0;
}

size_t WstrCopyA(WCHAR* dst, size_t cchDst, const char* src)
{
    if (!dst || cchDst == 0)
        return 0;
    if (!src)
        src = "";
    size_t n = 0;
    while (n + 1 < cchDst && src[n] != 0) {
        dst[n] = static_cast<WCHAR>(static_cast<unsigned char>(src[n]));
        n++;
    }
    dst[n] = 0;
    return n;
}

int WstrCmp(const WCHAR* a, const WCHAR* b)
{
    return WstrNCmp(a, b, SIZE_MAX);
}

int WstrICmp(const WCHAR* a, const WCHAR* b)
{
    if (!a)
        a = kEMPTY;
    if (!b)
        b = kEMPTY;
    for (;; a++, b++) {
        int d = Fold(*a) - Fold(*b);
        if (d != 0 || *a == 0)
            return d;
    }
}

int WstrNCmp(const WCHAR* a, const WCHAR* b, size_t n)
{
    if (!a)
        a = kEMPTY;
    if (!b)
        b = kEMPTY;
    for (size_t i = 0; i < n; i++) {
        int d = static_cast<int>(static_cast<char16_t>(a[i])) -
                static_cast<int>(static_cast<char16_t>(b[i]));
        if (d != 0 || a[i] == 0)
            return d;
    }
    return 0;
}

const WCHAR* WstrStr(const WCHAR* s, const WCHAR* needle)
{
    if (!s)
        return nullptr;
    size_t n = WstrLen(needle);
    if (n == 0)
        return s;
    for (; *s != 0; s++) {
        if (WstrNCmp(s, needle, n) == 0)
            return s;
    }
    return nullptr;
}

const WCHAR* WstrChr(const WCHAR* s, WCHAR c)
{
    if (!s)
        return nullptr;
    for (;; s++) {
        if (*s == c)
            return s;
        if (*s == 0)
            return nullptr;
    }
}

double WstrToDouble(const WCHAR* s, const WCHAR** pEnd)
{
    return ReadAscii<double>(s, pEnd, [](const char* a, char** end) { return strtod(a, end); });
}

// The platform's long: 32 bits on Windows, 64 on the Linux host; an out-of-range number gives
// LONG_MIN or LONG_MAX of that width, as strtol does.
long WstrToLong(const WCHAR* s, const WCHAR** pEnd)
{
    return ReadAscii<long>(s, pEnd, [](const char* a, char** end) { return strtol(a, end, 10); });
}

size_t WstrToUtf8(char* dst, size_t cbDst, const WCHAR* src)
{
    if (!dst || cbDst == 0)
        return 0;
    if (!src)
        src = kEMPTY;
    size_t n = 0;
    size_t i = 0;
    while (src[i] != 0) {
        char bytes[4];
        size_t cb = EncodeUtf8(NextUtf16(src, i), bytes);
        if (n + cb >= cbDst)
            break; // a character goes in whole or not at all
        memcpy(dst + n, bytes, cb);
        n += cb;
    }
    dst[n] = 0;
    return n;
}

size_t Utf8ToWstr(WCHAR* dst, size_t cchDst, const char* src)
{
    if (!dst || cchDst == 0)
        return 0;
    if (!src)
        src = "";
    const unsigned char* p = reinterpret_cast<const unsigned char*>(src);
    size_t n = 0;
    while (*p != 0) {
        WCHAR units[2];
        size_t cch = EncodeUtf16(NextUtf8(p), units);
        if (n + cch >= cchDst)
            break;
        for (size_t k = 0; k < cch; k++)
            dst[n++] = units[k];
    }
    dst[n] = 0;
    return n;
}
