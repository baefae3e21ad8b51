// Fixed-point distances.
#include "tvofixed.h"

#include "qlmtrace.h"
#include "wstr.h"

#include <cmath>
#include <cstdio>

namespace {

// The text buffer of the module, shared by operator char* (narrow) and toString (wide). One per
// thread, so that no other thread's call overwrites it; callers still copy the text at once.
thread_local WCHAR s_szText[64];

// Wraps at 32 bits without the undefined behaviour of signed overflow.
int32_t Wrap(int64_t value)
{
    return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(value)));
}

int32_t Times1000(int64_t n)
{
    return Wrap(static_cast<int64_t>(static_cast<uint64_t>(n) * 1000u));
}

int32_t Mul32(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}

// The integer part of twice the scaled value plus 1, halved with truncation. Beyond the word's
// range (or NaN) the cast would be undefined: those give the nearest end, or 0.
template <typename F> int32_t HalveIntegerPart(F doubled)
{
    if (std::isnan(doubled))
        return 0;
    if (doubled >= static_cast<F>(4294967296.0))
        return INT32_MAX;
    if (doubled <= static_cast<F>(-4294967296.0))
        return INT32_MIN;
    return static_cast<int32_t>(static_cast<int64_t>(doubled) / 2);
}

} // namespace

TVOFixed::TVOFixed(long n) : m_fixed(Times1000(n)) {}

TVOFixed::TVOFixed(unsigned long n) : m_fixed(Times1000(static_cast<int64_t>(n))) {}

TVOFixed::TVOFixed(int n) : m_fixed(Times1000(n)) {}

TVOFixed::TVOFixed(unsigned short n) : m_fixed(Times1000(n)) {}

TVOFixed::TVOFixed(float f)
{
    // Single precision on purpose: the stored values were made this way.
    float scaled = f * 1000.0f;
    scaled = scaled * 2.0f;
    scaled = scaled + 1.0f;
    m_fixed = HalveIntegerPart(scaled);
}

TVOFixed::TVOFixed(double d)
{
    m_fixed = HalveIntegerPart(d * 1000.0 * 2.0 + 1.0);
}

TVOFixed::TVOFixed(const WCHAR* pszText) : TVOFixed(WstrToDouble(pszText)) {}

TVOFixed TVOFixed::fromThousandths(int32_t thousandths)
{
    TVOFixed value;
    value.m_fixed = thousandths;
    return value;
}

TVOFixed::operator long() const
{
    return static_cast<long>((static_cast<int64_t>(m_fixed) + 500) / 1000);
}

TVOFixed::operator short() const
{
    return static_cast<short>(static_cast<long>(*this));
}

TVOFixed::operator unsigned long() const
{
    return (static_cast<uint32_t>(m_fixed) + 500u) / 1000u;
}

TVOFixed::operator char*() const
{
    QLM_TRACE_SCOPE(TEXT("TVOFixed::operator char*"), g_bTraceTVOFixed);
    char* text = reinterpret_cast<char*>(s_szText);
    // "%.3f" of the value with a full stop, written from the thousandths themselves: the locale
    // is the whole process's, and switching it here would change other threads' numbers.
    const int64_t value = m_fixed;
    const uint64_t magnitude = static_cast<uint64_t>(value < 0 ? -value : value);
    snprintf(text, sizeof(s_szText), "%s%llu.%03llu", value < 0 ? "-" : "",
             static_cast<unsigned long long>(magnitude / 1000),
             static_cast<unsigned long long>(magnitude % 1000));
    return text;
}

TVOFixed TVOFixed::operator*(const TVOFixed& other) const
{
    // A whole-number factor multiplies exactly; only two fractions need the rounding.
    if (m_fixed % 1000 == 0)
        return fromThousandths(Mul32(m_fixed / 1000, other.m_fixed));
    if (other.m_fixed % 1000 == 0)
        return fromThousandths(Mul32(other.m_fixed / 1000, m_fixed));
    return fromThousandths(Wrap(static_cast<int64_t>(Mul32(m_fixed, other.m_fixed)) + 500) / 1000);
}

TVOFixed& TVOFixed::operator*=(long n)
{
    m_fixed = Mul32(m_fixed, static_cast<int32_t>(Wrap(n)));
    return *this;
}

TVOFixed& TVOFixed::operator/=(long n)
{
    ASSERT(n != 0);
    if (n != 0)
        m_fixed = Wrap(static_cast<int64_t>(m_fixed) / static_cast<int64_t>(n));
    return *this;
}

TVOFixed& TVOFixed::operator-=(const TVOFixed& other)
{
    m_fixed = Wrap(static_cast<int64_t>(m_fixed) - other.m_fixed);
    return *this;
}

void TVOFixed::InchestToMM()
{
    m_fixed = Mul32(m_fixed, 254) / 10;
}

void TVOFixed::MMToInches()
{
    m_fixed = Mul32(m_fixed, 10) / 254;
}

WCHAR* TVOFixed::toString(eDistanceUnits eDistanceUnits) const
{
    QLM_TRACE_SCOPE(TEXT("TVOFixed::toString"), g_bTraceTVOFixed);
    const size_t cch = sizeof(s_szText) / sizeof(s_szText[0]);
    float value = static_cast<float>(m_fixed) / 1000.0f;
    if (eDistanceUnits == kFIXED_MM)
        WstrPrintf(s_szText, cch, TEXT("%4.1f"), static_cast<double>(value));
    else if (eDistanceUnits == kFIXED_INCHES)
        WstrPrintf(s_szText, cch, TEXT("%3.2f"), static_cast<double>(value));
    else
        ASSERT(eDistanceUnits == kFIXED_MM || eDistanceUnits == kFIXED_INCHES);
    return s_szText;
}

void TVOFixed::spinDistanceUnits(eDistanceUnits eDistanceUnits, int delta)
{
    QLM_TRACE_SCOPE(TEXT("TVOFixed::spinDistanceUnits"), g_bTraceTVOFixed);
    ASSERT(eDistanceUnits == kFIXED_MM || eDistanceUnits == kFIXED_INCHES);
    ASSERT(delta);
    if (eDistanceUnits != kFIXED_MM && eDistanceUnits != kFIXED_INCHES)
        return;
    // One click is 1 mm or 0.039 in, so that both displays move alike.
    TVOFixed step = fromThousandths(eDistanceUnits == kFIXED_MM ? 1000 : 39);
    *this -= TVOFixed(delta) * step;
}
