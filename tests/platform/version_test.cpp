// Version resources: the version of the built QLMRes.DLL read the way the about dialog reads
// it, files without one, and queries on damaged copies of the real block, which must fail
// without reading outside it (the sanitizer builds see any such read).
#include "hosttest.h"

#include "resources/qlmversion.h"

#include <filesystem>
#include <fstream>
#include <functional>

using namespace hosttest;

namespace {

// The Windows path of the installed resource library, as the driver builds it.
std::u16string InstalledResourceLibrary()
{
    return host::DriverDirectory() + u"\\3\\QLMRes.DLL";
}

std::vector<uint8_t> VersionBlock(const std::u16string& path)
{
    DWORD handle = kSentinel;
    DWORD size = GetFileVersionInfoSizeW(path.c_str(), &handle);
    EXPECT_EQ(0u, handle);
    std::vector<uint8_t> block(size);
    if (size) {
        EXPECT_TRUE(GetFileVersionInfoW(path.c_str(), 0, size, block.data()));
    }
    return block;
}

std::u16string Text(const void* value, UINT length)
{
    return length ? std::u16string(static_cast<const char16_t*>(value), length - 1) : u"";
}

// The offset of the node whose key is key: its header lies just before the key's text.
size_t NodeOffset(const std::vector<uint8_t>& block, const std::u16string& key)
{
    const auto* bytes = reinterpret_cast<const uint8_t*>(key.c_str());
    auto it = std::search(block.begin(), block.end(), bytes, bytes + (key.size() + 1) * 2);
    EXPECT_NE(block.end(), it) << host::Utf16ToUtf8(key);
    return size_t(it - block.begin()) - 6;
}

void Put16(std::vector<uint8_t>& block, size_t at, uint16_t value)
{
    std::memcpy(block.data() + at, &value, sizeof value);
}

// The installed block cut to its root's length.
std::vector<uint8_t> RealBlock()
{
    std::vector<uint8_t> whole = VersionBlock(InstalledResourceLibrary());
    EXPECT_GE(whole.size(), 2u);
    whole.resize(whole.size() < 2 ? 0 : std::min<size_t>(whole.size(), whole[0] | whole[1] << 8));
    return whole;
}

const char16_t* const kProductVersion = u"\\StringFileInfo\\040904B0\\ProductVersion";

TEST(Version, AboutDialogReadsTheInstalledResourceLibrary)
{
    const std::u16string path = InstalledResourceLibrary();
    ASSERT_TRUE(std::filesystem::is_regular_file(host::MapWindowsPath(path)))
        << "QLMRes.DLL not installed";

    // The size is that of the resource twice over and four bytes, as Windows gives it.
    HMODULE module = LoadLibraryW(path.c_str());
    ASSERT_NE(nullptr, module);
    HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION);
    ASSERT_NE(nullptr, resource);
    const DWORD resourceSize = SizeofResource(module, resource);
    FreeLibrary(module);
    EXPECT_EQ(resourceSize * 2 + 4, GetFileVersionInfoSizeW(path.c_str(), nullptr));

    std::vector<uint8_t> block = VersionBlock(path);
    ASSERT_FALSE(block.empty());
    LPVOID value = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueW(block.data(), u"\\", &value, &length));
    ASSERT_EQ(sizeof(VS_FIXEDFILEINFO), length);
    VS_FIXEDFILEINFO fixed;
    std::memcpy(&fixed, value, sizeof fixed);
    EXPECT_EQ(DWORD(VS_FFI_SIGNATURE), fixed.dwSignature);
    EXPECT_EQ(DWORD(QLM_VERSION_MAJOR << 16 | QLM_VERSION_MINOR), fixed.dwFileVersionMS);
    EXPECT_EQ(DWORD(QLM_VERSION_BUILD << 16 | QLM_VERSION_REVISION), fixed.dwProductVersionLS);
    EXPECT_EQ(DWORD(VOS_NT_WINDOWS32), fixed.dwFileOS);
    EXPECT_EQ(DWORD(VFT_DLL), fixed.dwFileType);

    ASSERT_TRUE(VerQueryValueW(block.data(), u"\\VarFileInfo\\Translation", &value, &length));
    ASSERT_EQ(4u, length) << "one language and code page pair, in bytes";
    WORD pair[2];
    std::memcpy(pair, value, sizeof pair);
    EXPECT_EQ(0x0409, pair[0]);
    EXPECT_EQ(1200, pair[1]);

    // The key as the dialog formats it from the pair.
    ASSERT_TRUE(VerQueryValueW(block.data(), kProductVersion, &value, &length));
    EXPECT_EQ(u"" QLM_VERSION_TEXT, Text(value, length));
    EXPECT_EQ(std::char_traits<char16_t>::length(u"" QLM_VERSION_TEXT) + 1, length)
        << "characters, the terminator counted";
    EXPECT_EQ(0, static_cast<const char16_t*>(value)[length - 1]);

    LPVOID folded = nullptr;
    EXPECT_TRUE(VerQueryValueW(block.data(), u"\\stringfileinfo\\040904b0\\PRODUCTVERSION", &folded,
                               &length))
        << "keys are compared without case";
    EXPECT_EQ(value, folded);
    ASSERT_TRUE(
        VerQueryValueW(block.data(), u"\\StringFileInfo\\040904B0\\CompanyName", &value, &length));
    EXPECT_EQ(u"" QLM_COMPANY_TEXT, Text(value, length));
}

TEST(Version, MissingValuesAreFalse)
{
    std::vector<uint8_t> block = VersionBlock(InstalledResourceLibrary());
    ASSERT_FALSE(block.empty());
    for (const char16_t* path :
         {u"\\StringFileInfo\\040904B0\\Nothing", u"\\StringFileInfo\\040704B0\\ProductVersion",
          u"\\VarFileInfo\\Translation\\More", u"\\Nothing"}) {
        SCOPED_TRACE(host::Utf16ToUtf8(path));
        LPVOID value = &block;
        UINT length = 7;
        SetLastError(kSentinel);
        EXPECT_FALSE(VerQueryValueW(block.data(), path, &value, &length));
        EXPECT_EQ(nullptr, value);
        EXPECT_EQ(0u, length);
        EXPECT_EQ(DWORD(ERROR_RESOURCE_TYPE_NOT_FOUND), GetLastError());
    }
}

TEST(Version, FilesWithoutVersionInformation)
{
    const std::string text = HomeFile("notes.txt");
    std::ofstream(text) << "not a module";
    struct Row
    {
        const char* what;
        std::u16string path;
        DWORD error;
    } rows[] = {
        {"a module without one", host::Utf8ToUtf16(QLM_TEST_IMAGES_DLL),
         ERROR_RESOURCE_TYPE_NOT_FOUND},
        {"no such file", u"C:\\nothing\\here.dll", ERROR_PATH_NOT_FOUND},
        {"no such file in a folder", u"C:\\here.dll", ERROR_FILE_NOT_FOUND},
        {"not a module", u"C:\\notes.txt", ERROR_BAD_EXE_FORMAT},
        {"an empty path", u"", ERROR_INVALID_PARAMETER},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        DWORD handle = kSentinel;
        SetLastError(kSentinel);
        EXPECT_EQ(0u, GetFileVersionInfoSizeW(row.path.c_str(), &handle));
        EXPECT_EQ(row.error, GetLastError());
        EXPECT_EQ(0u, handle);
        uint8_t buffer[64];
        SetLastError(kSentinel);
        EXPECT_FALSE(GetFileVersionInfoW(row.path.c_str(), 0, sizeof buffer, buffer));
        EXPECT_EQ(row.error, GetLastError());
    }
}

TEST(Version, CopyIntoAShortBufferIsCutToIt)
{
    const std::u16string path = InstalledResourceLibrary();
    std::vector<uint8_t> whole = VersionBlock(path);
    ASSERT_GT(whole.size(), 200u);
    std::vector<uint8_t> block(120);
    ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, DWORD(block.size()), block.data()));
    EXPECT_EQ(120, block[0] | block[1] << 8) << "the root's length cut to the copy";
    LPVOID value = nullptr;
    UINT length = 0;
    EXPECT_TRUE(VerQueryValueW(block.data(), u"\\", &value, &length))
        << "the fixed record was copied";
    EXPECT_FALSE(VerQueryValueW(block.data(), kProductVersion, &value, &length));
    EXPECT_FALSE(GetFileVersionInfoW(path.c_str(), 0, 5, block.data()));
    EXPECT_EQ(DWORD(ERROR_INSUFFICIENT_BUFFER), GetLastError());
}

// Each damage to a real block, in a buffer of exactly the block's size.
TEST(Version, DamagedBlocksGiveFalse)
{
    const std::vector<uint8_t> real = RealBlock();
    ASSERT_FALSE(real.empty());
    const size_t strings = NodeOffset(real, u"StringFileInfo");
    const size_t product = NodeOffset(real, u"ProductVersion");
    const size_t translation = NodeOffset(real, u"Translation");
    struct Row
    {
        const char* what;
        std::function<void(std::vector<uint8_t>&)> damage;
        const char16_t* path;
    } rows[] = {
        {"root cut before its record", [](auto& b) { Put16(b, 0, 60); }, u"\\"},
        {"child longer than its parent", [&](auto& b) { Put16(b, strings, 0xffff); },
         kProductVersion},
        {"child shorter than a header", [&](auto& b) { Put16(b, strings, 2); }, kProductVersion},
        {"text longer than its node", [&](auto& b) { Put16(b, product + 2, 0x7fff); },
         kProductVersion},
        {"unknown value type", [&](auto& b) { Put16(b, product + 4, 7); }, kProductVersion},
        {"binary longer than its node", [&](auto& b) { Put16(b, translation + 2, 200); },
         u"\\VarFileInfo\\Translation"},
        {"key without a terminator",
         [&](auto& b) {
             std::fill(b.begin() + product + 6,
                       b.begin() + product + (b[product] | b[product + 1] << 8), 'A');
         },
         kProductVersion},
        {"signature garbled", [](auto& b) { b[40] ^= 0xff; }, u"\\"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        std::vector<uint8_t> block = real;
        row.damage(block);
        LPVOID value = nullptr;
        UINT length = 0;
        SetLastError(kSentinel);
        EXPECT_FALSE(VerQueryValueW(block.data(), row.path, &value, &length));
        EXPECT_EQ(DWORD(ERROR_INVALID_DATA), GetLastError());
    }
}

// Every cut and every garbled length: no query reads outside the block, whatever it answers.
TEST(Version, NoDamageReadsOutsideTheBlock)
{
    const std::vector<uint8_t> whole = RealBlock();
    ASSERT_FALSE(whole.empty());
    const size_t rootLength = whole.size();
    const char16_t* paths[] = {u"\\", u"\\VarFileInfo\\Translation", kProductVersion};
    auto queryAll = [&](std::vector<uint8_t>& block) {
        for (const char16_t* path : paths) {
            LPVOID value = nullptr;
            UINT length = 0;
            if (VerQueryValueW(block.data(), path, &value, &length)) {
                const auto* at = static_cast<const uint8_t*>(value);
                EXPECT_GE(at, block.data());
                const size_t bytes = path == kProductVersion ? length * sizeof(WCHAR) : length;
                EXPECT_LE(at + bytes, block.data() + block.size());
            }
        }
    };
    for (size_t cut = 6; cut < rootLength; ++cut) {
        std::vector<uint8_t> block(whole.begin(), whole.begin() + cut);
        Put16(block, 0, uint16_t(cut));
        queryAll(block);
    }
    for (size_t at = 0; at + 2 <= rootLength; at += 2) {
        for (uint16_t garbage : {0, 1, 5, 0x7fff, 0xffff}) {
            std::vector<uint8_t> block = whole;
            Put16(block, at, at == 0 ? uint16_t(std::min<size_t>(garbage, rootLength)) : garbage);
            queryAll(block);
        }
    }
}

} // namespace
