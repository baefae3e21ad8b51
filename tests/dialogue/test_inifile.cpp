// QLMIniFile: the profile semantics finisher files rely on.

#include "driver/dialogue/qlminifile.h"
#include "driver/foundation/wstr.h"

#include "dialogue/decodefixture.h"

#include <gtest/gtest.h>

#include <string>

using decodefixture::Narrow;

namespace {

QLMIniFile FromText(const std::string& text)
{
    QLMIniFile file;
    file.LoadText(text.data(), text.size());
    return file;
}

std::string Get(const QLMIniFile& file, const WCHAR* section, const WCHAR* key, DWORD cch = 64,
                const WCHAR* def = TEXT("<default>"))
{
    WCHAR out[64];
    DWORD n = file.GetString(section, key, def, out, cch);
    std::string text = Narrow(out);
    EXPECT_EQ(text.size(), n) << "the count is of what was copied";
    return text;
}

TEST(IniFile, StringsBySectionAndKey)
{
    QLMIniFile file = FromText("; comment\r\n"
                               "top=outside any section\r\n"
                               "[Finisher]\r\n"
                               "  Model = Folder 1  \r\n"
                               "Quoted=\"  spaced  \"\r\n"
                               "Empty=\r\n"
                               "Model=second\r\n"
                               ";Hidden=1\r\n"
                               "NoEquals\r\n"
                               "[ Other ]\n"
                               "Key=other\n"
                               "[finisher]\n"
                               "Late=not read\n");
    const struct
    {
        const WCHAR* section;
        const WCHAR* key;
        const char* value;
        const char* what;
    } rows[] = {
        {TEXT("Finisher"), TEXT("Model"), "Folder 1", "blanks trimmed, the first key wins"},
        {TEXT("FINISHER"), TEXT("model"), "Folder 1", "names without regard to case"},
        {TEXT("Finisher"), TEXT("Quoted"), "  spaced  ", "one pair of quotes removed"},
        {TEXT("Finisher"), TEXT("Empty"), "", "an empty value is a value"},
        {TEXT("Finisher"), TEXT("Hidden"), "<default>", "a comment"},
        {TEXT("Finisher"), TEXT("NoEquals"), "<default>", "a line without ="},
        {TEXT("Finisher"), TEXT("Late"), "<default>", "only the first section of a name"},
        {TEXT("Other"), TEXT("Key"), "other", "a head's blanks trimmed, LF line ends"},
        {TEXT("Missing"), TEXT("Key"), "<default>", "a missing section"},
        {TEXT("Finisher"), TEXT("top"), "<default>", "keys before any head belong to none"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.value, Get(file, row.section, row.key)) << row.what;

    EXPECT_EQ("Fold", Get(file, TEXT("Finisher"), TEXT("Model"), 5)) << "cut to the buffer";
    EXPECT_EQ("", Get(file, TEXT("Finisher"), TEXT("x"), 64, nullptr)) << "null default";
    WCHAR untouched[2] = {'Z', 0};
    EXPECT_EQ(0u, file.GetString(TEXT("Finisher"), TEXT("Model"), nullptr, untouched, 0));
    EXPECT_EQ('Z', untouched[0]) << "a buffer of 0 characters is not written";
}

TEST(IniFile, Numbers)
{
    QLMIniFile file = FromText("[S]\nA=42\nB= 17 mm\nC=-3\nD=abc\nE=\nF=+8\n");
    const struct
    {
        const WCHAR* key;
        UINT value;
    } rows[] = {
        {TEXT("A"), 42},       {TEXT("B"), 17}, {TEXT("C"), static_cast<UINT>(-3)},
        {TEXT("D"), 0},        {TEXT("E"), 0},  {TEXT("F"), 8},
        {TEXT("Missing"), 99},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.value, file.GetInt(TEXT("S"), row.key, 99)) << Narrow(row.key);
}

TEST(IniFile, FilesThroughThePlatform)
{
    std::string path = std::string(QLM_TEST_SOURCE_DIR) + "/tests/fixtures/finisher/good.ini";
    std::u16string wide(path.begin(), path.end());
    LPCWSTR name = reinterpret_cast<LPCWSTR>(wide.c_str());
    WCHAR out[64];
    EXPECT_EQ(8u,
              QLMGetPrivateProfileString(TEXT("Finisher"), TEXT("Model"), TEXT(""), out, 64, name));
    EXPECT_EQ("Folder 1", Narrow(out));
    EXPECT_EQ(914u, QLMGetPrivateProfileInt(TEXT("endless"), TEXT("width"), 0, name));

    QLMIniFile missing;
    EXPECT_FALSE(missing.Load(TEXT("/nonexistent/finisher.ini")));
    EXPECT_EQ(7u, QLMGetPrivateProfileInt(TEXT("Finisher"), TEXT("Programs"), 7,
                                          TEXT("/nonexistent/finisher.ini")));

    // UTF-16 with its byte order mark, as the platform's editor saves it.
    const char16_t text[] = u"\xFEFF[Finisher]\r\nModel=Wide\r\n";
    std::string bytes;
    for (size_t i = 0; text[i]; i++) {
        bytes += static_cast<char>(text[i] & 0xFF);
        bytes += static_cast<char>(text[i] >> 8);
    }
    QLMIniFile utf16 = FromText(bytes);
    EXPECT_EQ("Wide", Get(utf16, TEXT("Finisher"), TEXT("Model")));
}

} // namespace
