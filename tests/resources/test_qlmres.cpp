// The built resource library, loaded the way the driver loads it: from the "3" subdirectory of
// the printer driver directory, where the test set-up installed it.
#include "platform/host/host.h"
#include "platform/host/modules.h"
#include "resources/qlmres.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

namespace {

const std::u16string kLibrary = u"QLMRes.DLL";

class QlmRes : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(std::filesystem::is_regular_file(host::InstalledDriverFilePath(kLibrary, 3)))
            << "the build's QLMRes.DLL was not installed into the driver directory";
        module_ = LoadLibraryW((host::DriverDirectory() + u"\\3\\" + kLibrary).c_str());
        ASSERT_NE(module_, nullptr) << host::detail::LastLoadError();
    }
    void TearDown() override
    {
        if (module_) {
            EXPECT_TRUE(FreeLibrary(module_));
        }
    }

    std::u16string String(UINT id) const
    {
        WCHAR buffer[256];
        int n = LoadStringW(module_, id, buffer, 256);
        return std::u16string(buffer, size_t(n > 0 ? n : 0));
    }

    HMODULE module_ = nullptr;
};

TEST_F(QlmRes, HasTheUnitAndPaperStrings)
{
    const struct
    {
        UINT id;
        std::u16string text;
    } strings[] = {
        {IDS_UNITS_INCHES, u"in"},
        {IDS_UNITS_MM, u"mm"},
        {IDS_PAPER_CUSTOM, u"Custom"},
    };
    static_assert(IDS_UNITS_INCHES == 5302 && IDS_UNITS_MM == 5304 && IDS_PAPER_CUSTOM == 5728);
    for (const auto& s : strings) {
        EXPECT_EQ(String(s.id), s.text) << s.id;
    }
}

// The version resource is a VS_VERSIONINFO: its key, then the fixed file information.
TEST_F(QlmRes, HasAVersionResource)
{
    const uint8_t* data = nullptr;
    DWORD size = 0;
    // Resource 1 (VS_VERSION_INFO) is where the system's version functions look; a version
    // resource named by the text "VS_VERSION_INFO" (the script did not define it) is missed.
    ASSERT_TRUE(host::detail::FindResourceData(module_, RT_VERSION, MAKEINTRESOURCEW(1),
                                               host::detail::kAnyLanguage, &data, &size))
        << (host::detail::FindResourceData(module_, RT_VERSION, u"VS_VERSION_INFO",
                                           host::detail::kAnyLanguage, &data, &size)
                ? "the version resource is named \"VS_VERSION_INFO\" instead of numbered 1"
                : "no version resource");
    const std::u16string key = u"VS_VERSION_INFO";
    const size_t fixedInfo = (6 + (key.size() + 1) * 2 + 3) / 4 * 4;
    ASSERT_GE(size, fixedInfo + 52);
    uint16_t length = 0;
    std::memcpy(&length, data, 2);
    EXPECT_LE(length, size);
    EXPECT_EQ(std::memcmp(data + 6, key.c_str(), (key.size() + 1) * 2), 0);
    uint32_t signature = 0;
    std::memcpy(&signature, data + fixedInfo, 4);
    EXPECT_EQ(signature, 0xfeef04bdu);
}

} // namespace
