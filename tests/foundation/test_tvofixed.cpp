// Fixed-point distances: rounding on the way in and out, arithmetic, units and display text.
#include "support/tracecapture.h"

#include "driver/foundation/tvofixed.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <string>

namespace {

using WString = std::basic_string<WCHAR>;

TVOFixed Raw(int32_t thousandths)
{
    return TVOFixed::fromThousandths(thousandths);
}

TEST(TVOFixed, Construction)
{
    struct Row
    {
        const char* name;
        TVOFixed value;
        int32_t expected;
    };
    const Row rows[] = {
        {"default", TVOFixed(), 0},
        {"float 0.2f", TVOFixed(0.2f), 200},
        {"double 0.0", TVOFixed(0.0), 0},
        {"int", TVOFixed(2794), 2794000},
        {"long", TVOFixed(-2794L), -2794000},
        {"unsigned short", TVOFixed(static_cast<unsigned short>(65535)), 65535000},
        {"integers wrap at 32 bits", TVOFixed(2147484), static_cast<int32_t>(2147484000u)},
        {"half rounds up", TVOFixed(0.0005), 1},
        {"-0.0005 moves to zero", TVOFixed(-0.0005), 0},
        {"-0.0015 moves toward zero", TVOFixed(-0.0015), -1},
        {"a negative exact value loses a thousandth", TVOFixed(-25.4), -25399},
        // 0.0025f holds 0.00249999994, which reaches the half only in single precision.
        {"float scales in single precision", TVOFixed(0.0025f), 3},
        {"the same number as double", TVOFixed(static_cast<double>(0.0025f)), 2},
        {"NaN", TVOFixed(std::nan("")), 0},
        {"too large", TVOFixed(1e10), INT32_MAX},
        {"too small", TVOFixed(-1e10f), INT32_MIN},
        {"text", TVOFixed(TEXT(" 0.039 in")), 39},
        {"text without a number", TVOFixed(TEXT("abc")), 0},
        {"null text", TVOFixed(static_cast<const WCHAR*>(nullptr)), 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.value.getThousandths(), row.expected);
    }
}

TEST(TVOFixed, ToIntegers)
{
    struct Row
    {
        int32_t thousandths;
        long asLong;
        short asShort;
        unsigned long asUnsigned;
    };
    const Row rows[] = {
        {2794000, 2794, 2794, 2794}, {1500, 2, 2, 2}, {-1500, -1, -1, 4294966},
        {-1499, 0, 0, 4294966},      {499, 0, 0, 0},  {40000000, 40000, -25536, 40000},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.thousandths);
        TVOFixed value = Raw(row.thousandths);
        EXPECT_EQ(static_cast<long>(value), row.asLong);
        EXPECT_EQ(static_cast<short>(value), row.asShort);
        EXPECT_EQ(static_cast<unsigned long>(value), row.asUnsigned) << "32-bit unsigned";
    }
}

TEST(TVOFixed, Arithmetic)
{
    struct Row
    {
        const char* name;
        int32_t a, b, product;
    };
    const Row rows[] = {
        {"whole times fraction", 2000, 1234, 2468},
        {"fraction times whole", 1234, 3000, 3702},
        {"two fractions round half up", 1001, 1001, 1002},
        {"negative fractions truncate toward zero", -1500, 1500, -2249},
        {"two fractions wrap at 32 bits", 50500, 50500, -1744716},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ((Raw(row.a) * Raw(row.b)).getThousandths(), row.product);
    }

    TVOFixed v = Raw(1234);
    v *= 3L;
    EXPECT_EQ(v.getThousandths(), 3702);
    v = Raw(-1239);
    v /= 10L;
    EXPECT_EQ(v.getThousandths(), -123) << "truncates toward zero";
    v = Raw(INT32_MIN);
    v /= -1L;
    EXPECT_EQ(v.getThousandths(), INT32_MIN) << "wraps instead of trapping";
    v = Raw(1000);
    v -= Raw(1250);
    EXPECT_EQ(v.getThousandths(), -250);
    EXPECT_TRUE(Raw(-1000) < Raw(500)) << "signed";
    EXPECT_TRUE(Raw(500) > Raw(-1000));
}

TEST(TVOFixed, UnitConversionsTruncate)
{
    struct Row
    {
        const char* name;
        int32_t inches, mm, back;
    };
    const Row rows[] = {
        {"one inch", 1000, 25400, 1000},
        {"one spin step loses a thousandth", 39, 990, 38},
        {"A4 long side", 11693, 297002, 11692},
        {"negative truncates toward zero", -1, -25, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        TVOFixed v = Raw(row.inches);
        v.InchestToMM();
        EXPECT_EQ(v.getThousandths(), row.mm);
        v.MMToInches();
        EXPECT_EQ(v.getThousandths(), row.back);
    }
}

TEST(TVOFixed, SpinSteps)
{
    struct Row
    {
        eDistanceUnits units;
        int32_t start;
        int delta;
        int32_t expected;
    };
    const Row rows[] = {
        {kFIXED_INCHES, 1000, 1, 961},
        {kFIXED_INCHES, 1000, -3, 1117},
        {kFIXED_MM, 10000, -2, 12000},
        {kFIXED_MM, 500, 1, -500},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << "unit " << row.units << " delta " << row.delta);
        TVOFixed v = Raw(row.start);
        v.spinDistanceUnits(row.units, row.delta);
        EXPECT_EQ(v.getThousandths(), row.expected);
    }
}

TEST(TVOFixed, Text)
{
    struct Row
    {
        const char* name;
        eDistanceUnits units;
        int32_t thousandths;
        const WCHAR* expected;
    };
    const Row rows[] = {
        {"mm, field width four", kFIXED_MM, 2500, TEXT(" 2.5")},
        {"inches, two decimals", kFIXED_INCHES, 2500, TEXT("2.50")},
        {"mm, wider than the field", kFIXED_MM, 297000, TEXT("297.0")},
        {"inches, negative", kFIXED_INCHES, -1500, TEXT("-1.50")},
        // Single precision decides: 0.045f lies above 0.045, 0.005f below 0.005.
        {"inches, single precision up", kFIXED_INCHES, 45, TEXT("0.05")},
        {"inches, single precision down", kFIXED_INCHES, 5, TEXT("0.00")},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(WString(Raw(row.thousandths).toString(row.units)), WString(row.expected));
    }

    EXPECT_STREQ(static_cast<char*>(Raw(25400)), "25.400");
    EXPECT_STREQ(static_cast<char*>(Raw(-1)), "-0.001");
    EXPECT_STREQ(static_cast<char*>(Raw(INT32_MIN)), "-2147483.648");
}

// Switches LC_NUMERIC to the first of the names that has the wanted decimal point, and back.
class NumericLocale
{
public:
    NumericLocale(std::initializer_list<const char*> names, char decimalPoint)
    {
        const char* current = setlocale(LC_NUMERIC, nullptr);
        m_saved = current ? current : "C";
        for (const char* name : names) {
            if (setlocale(LC_NUMERIC, name) && localeconv()->decimal_point[0] == decimalPoint) {
                m_name = setlocale(LC_NUMERIC, nullptr);
                return;
            }
        }
        setlocale(LC_NUMERIC, m_saved.c_str());
    }
    ~NumericLocale() { setlocale(LC_NUMERIC, m_saved.c_str()); }
    // Empty when none of the names is installed.
    const std::string& name() const { return m_name; }

private:
    std::string m_saved;
    std::string m_name;
};

TEST(TVOFixed, NarrowTextRestoresTheNumericLocale)
{
    NumericLocale locale({"C.UTF-8", "C.utf8", "en_US.UTF-8"}, '.');
    if (locale.name().empty())
        GTEST_SKIP() << "no second locale with a full stop to switch to";
    EXPECT_STREQ(static_cast<char*>(Raw(1500)), "1.500");
    EXPECT_EQ(std::string(setlocale(LC_NUMERIC, nullptr)), locale.name());
}

TEST(TVOFixed, CommaLocale)
{
    NumericLocale locale({"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "de_DE", "German"}, ',');
    if (locale.name().empty())
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    EXPECT_STREQ(static_cast<char*>(Raw(1500)), "1.500") << "always a full stop";
    EXPECT_EQ(std::string(setlocale(LC_NUMERIC, nullptr)), locale.name()) << "restored";
    EXPECT_EQ(WString(Raw(2500).toString(kFIXED_MM)), WString(TEXT(" 2,5")))
        << "the display follows the locale in force";
    EXPECT_EQ(TVOFixed(TEXT("1,5")).getThousandths(), 1500) << "and so does the reading";
}

// Assertions report through the trace and return; the value must come through unharmed.
class TVOFixedAssert : public ::testing::Test
{
protected:
    void SetUp() override
    {
        g_bTraceASSERT = TRUE;
        g_bAssertMsgBox = FALSE;
    }
    int Asserted(const std::string& expression) const
    {
        std::string needle = "***ASSERT***(" + expression + ") failed";
        int count = 0;
        for (const std::string& line : m_capture.lines())
            count += line.find(needle) != std::string::npos;
        return count;
    }

    SwitchGuard m_guard;
    TraceCapture m_capture;
};

const char kUNITS[] = "eDistanceUnits == kFIXED_MM || eDistanceUnits == kFIXED_INCHES";

TEST_F(TVOFixedAssert, UnknownUnit)
{
    WString before = Raw(2500).toString(kFIXED_INCHES);
    EXPECT_EQ(WString(Raw(9999).toString(static_cast<eDistanceUnits>(7))), before)
        << "the buffer comes back unchanged";
    TVOFixed v = Raw(1000);
    v.spinDistanceUnits(static_cast<eDistanceUnits>(2), 1);
    EXPECT_EQ(v.getThousandths(), 1000);
    EXPECT_EQ(Asserted(kUNITS), 2);
}

TEST_F(TVOFixedAssert, ZeroDeltaAndZeroDivisor)
{
    TVOFixed v = Raw(1234);
    v.spinDistanceUnits(kFIXED_MM, 0);
    v /= 0L;
    EXPECT_EQ(v.getThousandths(), 1234);
    EXPECT_EQ(Asserted("delta"), 1);
    EXPECT_EQ(Asserted("n != 0"), 1);
    v.spinDistanceUnits(kFIXED_MM, 1);
    EXPECT_EQ(m_capture.lines().size(), 2u) << "a good call asserts nothing";
}

} // namespace
