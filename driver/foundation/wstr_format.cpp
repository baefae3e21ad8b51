// The formatter behind WstrPrintf: the printf formats the system uses, the same on both
// platforms. It never allocates.
#include "wstr.h"

#include "wstr_codec.h"

#include <climits>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace wstrcodec;

namespace {

// The destination of one formatting call: keeps the text cut and terminated at every step.
class Output
{
public:
    Output(WCHAR* dst, size_t cch) : m_dst(dst), m_cap(dst ? cch : 0) { terminate(); }

    bool full() const { return m_full; }
    size_t length() const { return m_len; }

    void put(WCHAR c)
    {
        if (m_len + 1 < m_cap) {
            m_dst[m_len++] = c;
            m_dst[m_len] = 0;
        } else {
            m_full = true;
        }
    }
    // Units that go in together or not at all: the two halves of a pair.
    void putUnits(const WCHAR* units, size_t n)
    {
        if (m_len + n < m_cap) {
            for (size_t i = 0; i < n; i++)
                m_dst[m_len++] = units[i];
            m_dst[m_len] = 0;
        } else {
            m_full = true;
        }
    }
    void putCodePoint(char32_t c)
    {
        WCHAR units[2];
        putUnits(units, EncodeUtf16(c, units));
    }
    void pad(WCHAR c, long long count)
    {
        for (; count > 0 && !m_full; count--)
            put(c);
    }

private:
    void terminate()
    {
        if (m_cap > 0)
            m_dst[0] = 0;
    }

    WCHAR* m_dst;
    size_t m_cap;
    size_t m_len = 0;
    bool m_full = false;
};

// The flags, width and precision of one conversion.
struct Field
{
    bool left = false;  // -
    bool plus = false;  // +
    bool blank = false; // ' '
    bool zero = false;  // 0
    bool alt = false;   // #
    int width = 0;
    int precision = -1; // -1: none
};

enum class Length
{
    None,
    Char,
    Short,
    Long,
    LongLong,
    Int64,
    Int32,
    Size,
    IntMax,
    PtrDiff
};

// C's rules give every digit of a double within about 1100 places; beyond that only zeros
// follow, so a larger precision is cut to this and the narrow buffer below always holds a
// conversion.
constexpr int kMAX_PRECISION = 1100;
constexpr size_t kNARROW = kMAX_PRECISION + 400;

int ReadNumber(const WCHAR*& p)
{
    int n = 0;
    while (*p >= '0' && *p <= '9') {
        int digit = *p - '0';
        n = n > (INT_MAX - digit) / 10 ? INT_MAX : n * 10 + digit;
        p++;
    }
    return n;
}

// 2 at the start of a surrogate pair, else 1: the units that must stay together.
size_t UnitsAt(const WCHAR* s)
{
    return IsHighSurrogate(static_cast<char16_t>(s[0])) &&
                   IsLowSurrogate(static_cast<char16_t>(s[1]))
               ? 2
               : 1;
}

// Wide text goes out unit for unit, unpaired surrogates too; the precision counts units and
// does not split a pair.
void EmitWide(Output& out, const Field& field, const WCHAR* s)
{
    if (!s)
        s = TEXT("(null)");
    size_t units = 0;
    while (s[units] != 0) {
        size_t n = UnitsAt(s + units);
        if (field.precision >= 0 && units + n > static_cast<size_t>(field.precision))
            break;
        units += n;
    }
    long long fill = field.width - static_cast<long long>(units);
    if (!field.left)
        out.pad(' ', fill);
    for (size_t i = 0; i < units && !out.full();) {
        size_t n = UnitsAt(s + i);
        out.putUnits(s + i, n);
        i += n;
    }
    if (field.left)
        out.pad(' ', fill);
}

// 8-bit text is read as UTF-8; ASCII, which is all the wire and the C library give, is the
// same in any reading.
void EmitNarrow(Output& out, const Field& field, const char* s)
{
    if (!s)
        s = "(null)";
    // Count first, for the width.
    const unsigned char* p = reinterpret_cast<const unsigned char*>(s);
    long long units = 0;
    size_t points = 0;
    while (*p != 0) {
        long long n = NextUtf8(p) >= 0x10000 ? 2 : 1;
        if (field.precision >= 0 && units + n > field.precision)
            break;
        units += n;
        points++;
    }
    p = reinterpret_cast<const unsigned char*>(s);
    if (!field.left)
        out.pad(' ', field.width - units);
    for (size_t k = 0; k < points && !out.full(); k++)
        out.putCodePoint(NextUtf8(p));
    if (field.left)
        out.pad(' ', field.width - units);
}

void EmitChar(Output& out, const Field& field, char32_t c)
{
    if (!field.left)
        out.pad(' ', field.width - 1LL);
    out.putCodePoint(c);
    if (field.left)
        out.pad(' ', field.width - 1LL);
}

// Emits a number that snprintf formatted without width, padding to the width: with zeros
// behind the sign and a 0x prefix when zeroPad, else with blanks.
void EmitNumber(Output& out, const Field& field, const char* text, bool zeroPad)
{
    size_t len = strlen(text);
    long long fill = field.width - static_cast<long long>(len);
    const char* p = text;
    if (!field.left && fill > 0 && zeroPad) {
        size_t prefix = 0;
        if (*p == '-' || *p == '+' || *p == ' ')
            prefix = 1;
        if (p[prefix] == '0' && (p[prefix + 1] == 'x' || p[prefix + 1] == 'X'))
            prefix += 2;
        for (size_t i = 0; i < prefix; i++)
            out.put(static_cast<WCHAR>(p[i]));
        p += prefix;
        out.pad('0', fill);
        fill = 0;
    }
    if (!field.left)
        out.pad(' ', fill);
    // The decimal point of a locale may be more than one byte.
    const unsigned char* u = reinterpret_cast<const unsigned char*>(p);
    while (*u != 0 && !out.full())
        out.putCodePoint(NextUtf8(u));
    if (field.left)
        out.pad(' ', fill);
}

// The narrow format of one numeric conversion without width, e.g. "%+.*lld".
void BuildNarrowFormat(char* fmt, const Field& field, const char* length, char conversion)
{
    size_t n = 0;
    fmt[n++] = '%';
    if (field.plus)
        fmt[n++] = '+';
    if (field.blank)
        fmt[n++] = ' ';
    if (field.alt)
        fmt[n++] = '#';
    if (field.precision >= 0) {
        fmt[n++] = '.';
        fmt[n++] = '*';
    }
    for (; *length; length++)
        fmt[n++] = *length;
    fmt[n++] = conversion;
    fmt[n] = 0;
}

long long ReadSigned(va_list& args, Length length)
{
    switch (length) {
    case Length::Char:
        return static_cast<signed char>(va_arg(args, int));
    case Length::Short:
        return static_cast<short>(va_arg(args, int));
    case Length::Long:
        return va_arg(args, long);
    case Length::LongLong:
        return va_arg(args, long long);
    case Length::Int64:
        return va_arg(args, int64_t);
    case Length::Size:
    case Length::PtrDiff:
        return va_arg(args, ptrdiff_t);
    case Length::IntMax:
        return va_arg(args, intmax_t);
    case Length::Int32:
    case Length::None:
        break;
    }
    return va_arg(args, int);
}

unsigned long long ReadUnsigned(va_list& args, Length length)
{
    switch (length) {
    case Length::Char:
        return static_cast<unsigned char>(va_arg(args, unsigned int));
    case Length::Short:
        return static_cast<unsigned short>(va_arg(args, unsigned int));
    case Length::Long:
        return va_arg(args, unsigned long);
    case Length::LongLong:
        return va_arg(args, unsigned long long);
    case Length::Int64:
        return va_arg(args, uint64_t);
    case Length::Size:
    case Length::PtrDiff:
        return va_arg(args, size_t);
    case Length::IntMax:
        return va_arg(args, uintmax_t);
    case Length::Int32:
    case Length::None:
        break;
    }
    return va_arg(args, unsigned int);
}

// Formats one conversion starting behind its '%'; returns the position behind it. A
// conversion that is not known, or a format that ends inside one, is emitted as written.
const WCHAR* FormatOne(Output& out, const WCHAR* start, va_list& args)
{
    const WCHAR* p = start + 1;
    Field field;
    for (;; p++) {
        if (*p == '-')
            field.left = true;
        else if (*p == '+')
            field.plus = true;
        else if (*p == ' ')
            field.blank = true;
        else if (*p == '0')
            field.zero = true;
        else if (*p == '#')
            field.alt = true;
        else
            break;
    }
    if (*p == '*') {
        int w = va_arg(args, int);
        if (w < 0) {
            field.left = true;
            w = w == INT_MIN ? INT_MAX : -w;
        }
        field.width = w;
        p++;
    } else {
        field.width = ReadNumber(p);
    }
    if (*p == '.') {
        p++;
        if (*p == '*') {
            int prec = va_arg(args, int);
            field.precision = prec < 0 ? -1 : prec;
            p++;
        } else {
            field.precision = ReadNumber(p);
        }
    }

    Length length = Length::None;
    bool narrowText = false, wideText = false;
    if (*p == 'h') {
        p++;
        length = Length::Short;
        narrowText = true;
        if (*p == 'h') {
            p++;
            length = Length::Char;
        }
    } else if (*p == 'l') {
        p++;
        length = Length::Long;
        wideText = true;
        if (*p == 'l') {
            p++;
            length = Length::LongLong;
        }
    } else if (*p == 'w') {
        p++;
        wideText = true;
    } else if (*p == 'z') {
        p++;
        length = Length::Size;
    } else if (*p == 'j') {
        p++;
        length = Length::IntMax;
    } else if (*p == 't') {
        p++;
        length = Length::PtrDiff;
    } else if (*p == 'I') {
        if (p[1] == '6' && p[2] == '4') {
            p += 3;
            length = Length::Int64;
        } else if (p[1] == '3' && p[2] == '2') {
            p += 3;
            length = Length::Int32;
        } else {
            p++;
            length = Length::Size;
        }
    }

    char narrow[kNARROW];
    char fmt[16];
    int precision = field.precision > kMAX_PRECISION ? kMAX_PRECISION : field.precision;
    WCHAR conversion = *p;
    switch (conversion) {
    case '%':
        out.put('%');
        return p + 1;
    case 'c':
    case 'C': {
        int value = va_arg(args, int);
        bool wide = conversion == 'c' ? !narrowText : wideText;
        EmitChar(out, field,
                 wide ? static_cast<char16_t>(value)
                      : static_cast<char32_t>(static_cast<unsigned char>(value)));
        return p + 1;
    }
    case 's':
    case 'S': {
        bool wide = conversion == 's' ? !narrowText : wideText;
        if (wide)
            EmitWide(out, field, va_arg(args, const WCHAR*));
        else
            EmitNarrow(out, field, va_arg(args, const char*));
        return p + 1;
    }
    case 'd':
    case 'i': {
        long long value = ReadSigned(args, length);
        BuildNarrowFormat(fmt, field, "ll", 'd');
        if (field.precision >= 0)
            snprintf(narrow, sizeof(narrow), fmt, precision, value);
        else
            snprintf(narrow, sizeof(narrow), fmt, value);
        EmitNumber(out, field, narrow, field.zero && field.precision < 0);
        return p + 1;
    }
    case 'u':
    case 'x':
    case 'X':
    case 'o': {
        unsigned long long value = ReadUnsigned(args, length);
        field.plus = field.blank = false;
        BuildNarrowFormat(fmt, field, "ll", static_cast<char>(conversion));
        if (field.precision >= 0)
            snprintf(narrow, sizeof(narrow), fmt, precision, value);
        else
            snprintf(narrow, sizeof(narrow), fmt, value);
        EmitNumber(out, field, narrow, field.zero && field.precision < 0);
        return p + 1;
    }
    case 'p': {
        // As Windows prints a pointer: all its hex digits, upper case, no prefix.
        unsigned long long value = reinterpret_cast<uintptr_t>(va_arg(args, void*));
        snprintf(narrow, sizeof(narrow), "%0*llX", static_cast<int>(2 * sizeof(void*)), value);
        EmitNumber(out, field, narrow, false);
        return p + 1;
    }
    case 'f':
    case 'F':
    case 'e':
    case 'E':
    case 'g':
    case 'G': {
        // The C library rounds, and the numeric locale in force gives the decimal point.
        double value = va_arg(args, double);
        BuildNarrowFormat(fmt, field, "", static_cast<char>(conversion));
        if (field.precision >= 0)
            snprintf(narrow, sizeof(narrow), fmt, precision, value);
        else
            snprintf(narrow, sizeof(narrow), fmt, value);
        const char* digits = narrow + (narrow[0] == '-' || narrow[0] == '+' || narrow[0] == ' ');
        bool finite = *digits >= '0' && *digits <= '9';
        EmitNumber(out, field, narrow, field.zero && finite);
        return p + 1;
    }
    default:
        break;
    }
    // Not a conversion of ours: the text as it stands, up to and including the character that
    // ended it (nothing is read from the arguments).
    const WCHAR* end = *p ? p + 1 : p;
    for (const WCHAR* q = start; q < end; q++)
        out.put(*q);
    return end;
}

} // namespace

size_t WstrPrintf(WCHAR* dst, size_t cchDst, const WCHAR* format, ...)
{
    va_list args;
    va_start(args, format);
    size_t n = WstrVPrintf(dst, cchDst, format, args);
    va_end(args);
    return n;
}

size_t WstrVPrintf(WCHAR* dst, size_t cchDst, const WCHAR* format, va_list args)
{
    Output out(dst, cchDst);
    if (!format)
        return 0;
    // A copy, so that the helpers can take the list by reference on every ABI.
    va_list ap;
    va_copy(ap, args);
    const WCHAR* p = format;
    while (*p != 0 && !out.full()) {
        if (*p != '%') {
            // Copied as it stands, unpaired surrogates too; a pair is not split at the cut.
            size_t n = UnitsAt(p);
            out.putUnits(p, n);
            p += n;
            continue;
        }
        p = FormatOne(out, p, ap);
    }
    va_end(ap);
    return out.length();
}

bool WstrFormatTakesTexts(const WCHAR* format, int count)
{
    int texts = 0;
    for (const WCHAR* p = format; p && *p; ++p) {
        if (*p != '%')
            continue;
        if (p[1] == '%') {
            ++p;
            continue;
        }
        if (p[1] != 's')
            return false;
        ++texts;
        ++p;
    }
    return texts == count;
}
