// The UTF-16 helpers: the formatter, bounded copies, compares, number reading and UTF-8.
#include "driver/foundation/wstr.h"

#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <string>

namespace {

using WString = std::basic_string<WCHAR>;

WString Fmt(const WCHAR* format, ...)
{
    WCHAR buffer[512];
    va_list args;
    va_start(args, format);
    size_t n = WstrVPrintf(buffer, 512, format, args);
    va_end(args);
    EXPECT_EQ(n, WstrLen(buffer)) << "the returned length is the text's";
    return WString(buffer, n);
}

struct FormatRow
{
    const char* name;
    WString actual;
    const WCHAR* expected;
};

TEST(WstrPrintf, Conversions)
{
    const FormatRow rows[] = {
        {"%s is wide", Fmt(TEXT("[%s]"), TEXT("abc")), TEXT("[abc]")},
        {"%S is 8-bit", Fmt(TEXT("[%S]"), "abc"), TEXT("[abc]")},
        {"%hs and %ls", Fmt(TEXT("%hs%ls"), "n", TEXT("w")), TEXT("nw")},
        {"%S reads UTF-8", Fmt(TEXT("%S"), "\xC3\xA9\xF0\x9F\x98\x80"), TEXT("\u00E9\U0001F600")},
        {"%s null", Fmt(TEXT("%s"), static_cast<const WCHAR*>(nullptr)), TEXT("(null)")},
        {"%S null", Fmt(TEXT("%S"), static_cast<const char*>(nullptr)), TEXT("(null)")},
        {"%5s", Fmt(TEXT("%5s|%-5S|"), TEXT("ab"), "cd"), TEXT("   ab|cd   |")},
        {"%.2s", Fmt(TEXT("%.2s %.2S"), TEXT("abcdef"), "ghijk"), TEXT("ab gh")},
        {"%.1s keeps a pair whole", Fmt(TEXT("%.1s|"), TEXT("\U0001F600x")), TEXT("|")},
        {"%*s negative width", Fmt(TEXT("%*s|%*s|"), 3, TEXT("x"), -3, TEXT("y")),
         TEXT("  x|y  |")},
        {"%c %C", Fmt(TEXT("%c%C%c"), TEXT('A'), 'b', static_cast<WCHAR>(0x20AC)),
         TEXT("Ab\u20AC")},
        {"%3c", Fmt(TEXT("%3c|%-3c|"), TEXT('A'), TEXT('B')), TEXT("  A|B  |")},
        {"%%", Fmt(TEXT("100%%")), TEXT("100%")},
        {"unknown conversion reads no argument", Fmt(TEXT("%y%d"), 5), TEXT("%y5")},
        {"%n is not honoured", Fmt(TEXT("a%nb")), TEXT("a%nb")},
        {"format ends inside a conversion", Fmt(TEXT("50%-5")), TEXT("50%-5")},
        {"%d", Fmt(TEXT("%d %i"), 42, -42), TEXT("42 -42")},
        {"%02d", Fmt(TEXT("%02d %02d %02d"), 5, 123, -5), TEXT("05 123 -5")},
        {"%04d pads behind the sign", Fmt(TEXT("%04d"), -5), TEXT("-005")},
        {"%+d and % d", Fmt(TEXT("%+d % d"), 5, 5), TEXT("+5  5")},
        {"%5d and %-5d", Fmt(TEXT("%5d|%-5d|"), -42, -42), TEXT("  -42|-42  |")},
        {"precision ignores the zero flag", Fmt(TEXT("%05.3d"), 7), TEXT("  007")},

        {"%04x and %02x", Fmt(TEXT("%04x %02x"), 0xAB, 0x5), TEXT("00ab 05")},
        {"%X of a negative", Fmt(TEXT("%X"), -1), TEXT("FFFFFFFF")},
        {"%#06x pads behind the prefix", Fmt(TEXT("%#06x"), 255), TEXT("0x00ff")},

        {"%hd %hu %hhd", Fmt(TEXT("%hd %hu %hhd"), 70000, -1, 300), TEXT("4464 65535 44")},
        {"%lld %d", Fmt(TEXT("%lld %d"), -9000000000LL, 2), TEXT("-9000000000 2")},
        {"%I64X", Fmt(TEXT("%I64X"), static_cast<uint64_t>(0xFEDCBA9876ULL)), TEXT("FEDCBA9876")},

        {"%p", Fmt(TEXT("%p"), reinterpret_cast<void*>(0x1234)),
         sizeof(void*) == 8 ? TEXT("0000000000001234") : TEXT("00001234")},
        {"%3.2f", Fmt(TEXT("%3.2f"), 2.5), TEXT("2.50")},
        {"%4.1f", Fmt(TEXT("%4.1f|%4.1f"), 2.5, 297.0), TEXT(" 2.5|297.0")},
        {"%.3f", Fmt(TEXT("%.3f %.3f"), 25.4, -1.25), TEXT("25.400 -1.250")},
        {"%08.2f", Fmt(TEXT("%08.2f"), -3.14159), TEXT("-0003.14")},
        {"%e %G", Fmt(TEXT("%e %G"), 12345.678, 0.00001), TEXT("1.234568e+04 1E-05")},
        {"zeros do not pad infinity", Fmt(TEXT("%05.1f"), HUGE_VAL), TEXT("  inf")},
        {"non-ASCII format text", Fmt(TEXT("\u00E9\U0001F600%d"), 1),
         TEXT("\u00E9\U0001F600") TEXT("1")},
    };
    for (const FormatRow& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.actual, WString(row.expected));
    }

    // %ld reads the platform's long whole: 32 bits on Windows, 64 on the Linux host.
    char narrow[64];
    snprintf(narrow, sizeof(narrow), "%ld %lu", LONG_MIN, ULONG_MAX);
    WCHAR wide[64];
    WstrCopyA(wide, 64, narrow);
    EXPECT_EQ(Fmt(TEXT("%ld %lu"), LONG_MIN, ULONG_MAX), WString(wide));
}

TEST(WstrPrintf, CutsAtTheBufferEndAndTerminates)
{
    struct Row
    {
        const char* name;
        size_t cch;
        const WCHAR* format;
        const WCHAR* expected;
    };
    const Row rows[] = {
        {"fits exactly", 4, TEXT("%s"), TEXT("abc")},
        {"cut in the argument", 3, TEXT("%s"), TEXT("ab")},
        {"cut in the format text", 3, TEXT("xy%s"), TEXT("xy")},
        {"cut in the padding", 3, TEXT("%10s"), TEXT("  ")},
        {"a pair is not split", 3, TEXT("a\U0001F600%s"), TEXT("a")},
        {"one unit", 1, TEXT("%s"), TEXT("")},
        {"zero units write nothing", 0, TEXT("%s"), nullptr},
        {"a huge width", 8, TEXT("%2000000000s"), TEXT("       ")},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        WCHAR buffer[16];
        for (WCHAR& c : buffer)
            c = TEXT('#');
        size_t n = WstrPrintf(buffer, row.cch, row.format, TEXT("abc"));
        EXPECT_EQ(n, WstrLen(row.expected));
        if (row.expected) {
            EXPECT_EQ(WString(buffer), WString(row.expected));
        }
        for (size_t i = row.cch; i < 16; i++)
            EXPECT_EQ(buffer[i], TEXT('#')) << "written behind the buffer at " << i;
    }

    WCHAR buffer[16];
    EXPECT_EQ(WstrPrintf(buffer, 16, TEXT("%.5000f"), 1.0), 15u);
    EXPECT_EQ(WString(buffer), WString(TEXT("1.0000000000000")));
    EXPECT_EQ(WstrPrintf(nullptr, 10, TEXT("%s"), TEXT("abc")), 0u);
    EXPECT_EQ(WstrPrintf(buffer, 16, nullptr), 0u);
    WString longText(1000, TEXT('z'));
    WCHAR big[1200];
    EXPECT_EQ(WstrPrintf(big, 1200, TEXT("%s!"), longText.c_str()), 1001u) << "no inner limit";
}

TEST(WstrCopy, CopyCatAndCopyAStayInTheDestination)
{
    WCHAR buffer[8];
    auto fill = [&] {
        for (WCHAR& c : buffer)
            c = TEXT('#');
    };
    fill();
    EXPECT_EQ(WstrCopy(buffer, 3, TEXT("abc")), 2u);
    EXPECT_EQ(WString(buffer), WString(TEXT("ab")));
    EXPECT_EQ(buffer[3], TEXT('#'));
    EXPECT_EQ(WstrCopy(buffer, 8, nullptr), 0u);
    EXPECT_EQ(buffer[0], 0);
    fill();
    EXPECT_EQ(WstrCopy(buffer, 0, TEXT("abc")), 0u);
    EXPECT_EQ(buffer[0], TEXT('#'));

    WstrCopy(buffer, 6, TEXT("ab"));
    EXPECT_EQ(WstrCat(buffer, 6, TEXT("cdef")), 3u);
    EXPECT_EQ(WString(buffer), WString(TEXT("abcde")));
    EXPECT_EQ(WstrCat(buffer, 6, TEXT("x")), 0u);
    fill();
    EXPECT_EQ(WstrCat(buffer, 4, TEXT("x")), 0u) << "no terminator inside the size";
    EXPECT_EQ(WString(buffer), WString(TEXT("###")));

    EXPECT_EQ(WstrCopyA(buffer, 8, "\xE9t\xE9"), 3u) << "one byte, one unit";
    EXPECT_EQ(WString(buffer), WString(TEXT("\u00E9t\u00E9")));
    EXPECT_EQ(WstrCopyA(buffer, 3, "abcdef"), 2u);
}

int Sign(int v)
{
    return (v > 0) - (v < 0);
}

TEST(WstrCompare, OrdinalAndFolded)
{
    struct Row
    {
        const char* name;
        int (*compare)(const WCHAR*, const WCHAR*);
        const WCHAR* a;
        const WCHAR* b;
        int sign;
    };
    const Row rows[] = {
        {"cmp equal", WstrCmp, TEXT("abc"), TEXT("abc"), 0},
        {"cmp prefix sorts first", WstrCmp, TEXT("ab"), TEXT("abc"), -1},
        {"cmp case matters", WstrCmp, TEXT("a"), TEXT("A"), 1},
        {"cmp code units are unsigned", WstrCmp, TEXT("\u00E9"), TEXT("z"), 1},
        {"cmp null is the empty text", WstrCmp, nullptr, TEXT(""), 0},
        {"icmp equal", WstrICmp, TEXT("Printer 1"), TEXT("PRINTER 1"), 0},
        {"icmp folds to upper case as the registry", WstrICmp, TEXT("a"), TEXT("_"), -1},
        {"icmp folds ASCII only", WstrICmp, TEXT("\u00E9"), TEXT("\u00C9"), 1},
        {"icmp null is the empty text", WstrICmp, TEXT("a"), nullptr, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Sign(row.compare(row.a, row.b)), row.sign);
        EXPECT_EQ(Sign(row.compare(row.b, row.a)), -row.sign);
    }
    EXPECT_EQ(WstrNCmp(TEXT("abcX"), TEXT("abcY"), 3), 0);
    EXPECT_LT(WstrNCmp(TEXT("abcX"), TEXT("abcY"), 4), 0);

    const WCHAR* s = TEXT("aab world");
    EXPECT_EQ(WstrStr(s, TEXT("ab")), s + 1);
    EXPECT_EQ(WstrStr(s, TEXT("")), s);
    EXPECT_EQ(WstrStr(s, TEXT("worlds")), nullptr);
    EXPECT_EQ(WstrChr(s, TEXT('w')), s + 4);
    EXPECT_EQ(WstrChr(s, 0), s + 9) << "the terminator is found, as wcschr does";
    EXPECT_EQ(WstrChr(nullptr, TEXT('a')), nullptr);
}

TEST(WstrNumbers, ValueAndEnd)
{
    struct Row
    {
        const char* name;
        const WCHAR* text;
        double value;
        size_t consumed;
    };
    const Row rows[] = {
        {"blank, digits, unit", TEXT(" 12.5mm"), 12.5, 5},
        {"negative", TEXT("-0.0005"), -0.0005, 7},

        {"exponent", TEXT("1e3x"), 1000.0, 3},
        {"no number", TEXT("abc"), 0.0, 0},

        {"comma is no point in C", TEXT("1,5"), 1.0, 1},
        {"non-ASCII ends the number", TEXT("3.5\u00E9"), 3.5, 3},
        {"non-ASCII digit ends the number", TEXT("1\u0661"), 1.0, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const WCHAR* end = nullptr;
        EXPECT_DOUBLE_EQ(WstrToDouble(row.text, &end), row.value);
        EXPECT_EQ(end, row.text + row.consumed);
    }
    const WCHAR* end = TEXT("x");
    EXPECT_EQ(WstrToDouble(nullptr, &end), 0.0);
    EXPECT_EQ(end, nullptr);
    const WCHAR* number = TEXT(" -42.5");
    EXPECT_EQ(WstrToLong(number, &end), -42);
    EXPECT_EQ(end, number + 4);
    EXPECT_EQ(WstrToLong(TEXT("010")), 10) << "decimal, not octal";
    EXPECT_EQ(WstrToLong(TEXT("99999999999999999999")), LONG_MAX);
}

TEST(WstrUtf8, BothDirections)
{
    struct Row
    {
        const char* name;
        const WCHAR* wide;
        const char* utf8;
        bool roundTrip;
    };
    const Row rows[] = {
        {"ASCII", TEXT("abc"), "abc", true},
        {"two and three bytes", TEXT("\u00E9\u20AC"), "\xC3\xA9\xE2\x82\xAC", true},
        {"surrogate pair", TEXT("\U0001F600"), "\xF0\x9F\x98\x80", true},

        {"lone high", TEXT("a\xD800") TEXT("b"),
         "a\xEF\xBF\xBD"
         "b",
         false},

        {"high at the end", TEXT("x\xD83D"), "x\xEF\xBF\xBD", false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        char bytes[32];
        EXPECT_EQ(WstrToUtf8(bytes, sizeof(bytes), row.wide), strlen(row.utf8));
        EXPECT_STREQ(bytes, row.utf8);
        WCHAR wide[32];
        Utf8ToWstr(wide, 32, row.utf8);
        if (row.roundTrip) {
            EXPECT_EQ(WString(wide), WString(row.wide));
        }
    }

    const FormatRow illFormed[] = {
        {"truncated", Fmt(TEXT("%S"), "a\xC3"), TEXT("a\uFFFD")},
        {"truncated before ASCII",
         Fmt(TEXT("%S"), "\xE2\x82"
                         "A"),
         TEXT("\uFFFD") TEXT("A")},
        {"overlong", Fmt(TEXT("%S"), "\xC0\xAF"), TEXT("\uFFFD\uFFFD")},
        {"encoded surrogate", Fmt(TEXT("%S"), "\xED\xA0\x80"), TEXT("\uFFFD\uFFFD\uFFFD")},
        {"beyond U+10FFFF", Fmt(TEXT("%S"), "\xF4\x90\x80\x80"), TEXT("\uFFFD\uFFFD\uFFFD\uFFFD")},
        {"Latin-1 byte", Fmt(TEXT("%S"), "a\xE9z"), TEXT("a\uFFFDz")},
    };
    for (const FormatRow& row : illFormed) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.actual, WString(row.expected));
    }
}

TEST(WstrUtf8, CutsOnlyBetweenCharacters)
{
    char bytes[8] = "#";
    EXPECT_EQ(WstrToUtf8(bytes, 0, TEXT("a")), 0u);
    EXPECT_EQ(bytes[0], '#');
    EXPECT_EQ(WstrToUtf8(bytes, 3, TEXT("a\u00E9")), 1u);
    EXPECT_STREQ(bytes, "a");
    EXPECT_EQ(WstrToUtf8(bytes, 4, TEXT("a\u00E9")), 3u);

    WCHAR wide[4] = {TEXT('#')};
    EXPECT_EQ(Utf8ToWstr(wide, 0, "a"), 0u);
    EXPECT_EQ(wide[0], TEXT('#'));
    EXPECT_EQ(Utf8ToWstr(wide, 3, "a\xF0\x9F\x98\x80"), 1u);
    EXPECT_EQ(WString(wide), WString(TEXT("a")));
    EXPECT_EQ(Utf8ToWstr(wide, 4, "a\xF0\x9F\x98\x80"), 3u);
}

TEST(WstrNumbers, FollowTheNumericLocaleInForce)
{
    const char* current = setlocale(LC_NUMERIC, nullptr);
    std::string saved = current ? current : "C";
    bool comma = false;
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "de_DE", "German"}) {
        if (setlocale(LC_NUMERIC, name) && localeconv()->decimal_point[0] == ',') {
            comma = true;
            break;
        }
    }
    if (!comma) {
        setlocale(LC_NUMERIC, saved.c_str());
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    }
    WString formatted = Fmt(TEXT("%3.2f"), 2.5);
    const WCHAR* text = TEXT("1,5");
    const WCHAR* end = nullptr;
    double value = WstrToDouble(text, &end);
    setlocale(LC_NUMERIC, saved.c_str());
    EXPECT_EQ(formatted, WString(TEXT("2,50")));
    EXPECT_DOUBLE_EQ(value, 1.5);
    EXPECT_EQ(end, text + 3);
}

} // namespace
