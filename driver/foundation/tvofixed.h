// TVOFixed: a distance as a count of thousandths. A scaled integer with one rounding rule does
// not drift when a value is shown in millimetres, edited, and shown in inches again. The unit is
// the owner's: inches, millimetres or tenths of a millimetre.
#pragma once

#include "../../platform/win32.h"

#include <cstdint>
#include <type_traits>

// Units of the conversion and display operations.
enum eDistanceUnits
{
    kFIXED_INCHES = 0,
    kFIXED_MM = 1,
};

// The display units of the record's dmxUnits; the same numbers as eDistanceUnits.
constexpr int kDISTANCE_INCHES = kFIXED_INCHES;
constexpr int kDISTANCE_MM = kFIXED_MM;

// Lies inside the persisted settings record: one 32-bit word, no virtual functions, copied as
// raw bytes.
class TVOFixed
{
public:
    TVOFixed() = default;
    // n times 1000 in 32-bit arithmetic (wrapping beyond about two million units).
    TVOFixed(long n);
    TVOFixed(unsigned long n);
    TVOFixed(int n);
    TVOFixed(unsigned short n);
    // To the nearest thousandth, halves up; a negative value moves toward zero first, so
    // -0.0005 gives 0. NaN gives 0, and a value beyond the word's range its nearest end.
    TVOFixed(float f);
    TVOFixed(double d);
    // Read as a double (WstrToDouble); text that does not begin with a number gives 0.
    TVOFixed(const WCHAR* pszText);

    // The raw word, for code that stores or builds thousandths directly.
    static TVOFixed fromThousandths(int32_t thousandths);
    int32_t getThousandths() const { return m_fixed; }

    // (thousandths + 500) / 1000, truncating toward zero.
    operator long() const;
    // The same, cut to 16 bits.
    operator short() const;
    // The same in unsigned 32-bit arithmetic on both platforms: a negative value gives a large
    // number, as the 32-bit original does.
    operator unsigned long() const;
    // "%.3f" with a full stop whatever the user's locale, into the module buffer.
    operator char*() const;

    // If one side is a whole number, that number times the other's thousandths; otherwise
    // (a * b + 500) / 1000 of the thousandths, wrapping at 32 bits.
    TVOFixed operator*(const TVOFixed& other) const;
    TVOFixed& operator*=(long n);
    // Truncating toward zero. Dividing by 0 asserts and leaves the value alone.
    TVOFixed& operator/=(long n);
    TVOFixed& operator-=(const TVOFixed& other);
    bool operator<(const TVOFixed& other) const { return m_fixed < other.m_fixed; }
    bool operator>(const TVOFixed& other) const { return m_fixed > other.m_fixed; }

    // In place, truncating: a round trip can lose a thousandth.
    void InchestToMM();
    void MMToInches();

    // Display text in the module buffer: "%4.1f" for millimetres, "%3.2f" for inches, with the
    // decimal separator of the C locale in force. Another unit asserts and returns the buffer
    // as it is. The buffer is shared with operator char*: copy the text before the next call.
    WCHAR* toString(eDistanceUnits eDistanceUnits) const;

    // One click of a spin control: 1 mm or 0.039 in per unit of delta. The platform's delta is
    // positive for a click down, so it is subtracted. An unknown unit asserts and changes
    // nothing.
    void spinDistanceUnits(eDistanceUnits eDistanceUnits, int delta);

private:
    int32_t m_fixed = 0;
};

static_assert(sizeof(TVOFixed) == 4, "TVOFixed is one 32-bit word of the settings record");
static_assert(std::is_standard_layout_v<TVOFixed>, "TVOFixed lies in a persisted record");
static_assert(std::is_trivially_copyable_v<TVOFixed>, "records are copied as raw bytes");
