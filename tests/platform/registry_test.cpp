// The host's registry against the behaviour of advapi32 (the cases follow Wine's tests).
#include "hosttest.h"

using namespace hosttest;

namespace {

const WCHAR* const kBase = u"Software\\Tarvo\\Test";

class Registry : public ::testing::Test
{
protected:
    void SetUp() override
    {
        host::SetUserName(u"alice");
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, kBase, 0, nullptr, 0,
                                                 KEY_ALL_ACCESS, nullptr, &key_, nullptr));
    }
    void TearDown() override
    {
        if (key_) {
            RegCloseKey(key_);
        }
    }
    void SetString(const WCHAR* name, const std::u16string& text, bool withNul = true)
    {
        DWORD size = DWORD((text.size() + (withNul ? 1 : 0)) * sizeof(WCHAR));
        ASSERT_EQ(ERROR_SUCCESS, RegSetValueExW(key_, name, 0, REG_SZ,
                                                reinterpret_cast<const BYTE*>(text.c_str()), size));
    }
    void SetDword(const WCHAR* name, DWORD value)
    {
        ASSERT_EQ(ERROR_SUCCESS, RegSetValueExW(key_, name, 0, REG_DWORD,
                                                reinterpret_cast<const BYTE*>(&value), 4));
    }
    HKEY key_ = nullptr;
};

TEST_F(Registry, CreateMakesIntermediateKeysAndReportsDisposition)
{
    HKEY key = nullptr;
    DWORD disposition = kSentinel;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(key_, u"One\\Two\\Three", 0, nullptr, 0,
                                             KEY_ALL_ACCESS, nullptr, &key, &disposition));
    EXPECT_EQ(DWORD(REG_CREATED_NEW_KEY), disposition);
    EXPECT_TRUE(host::RegistryKeyExists("HKCU\\Software\\Tarvo\\Test\\One\\Two"));
    EXPECT_TRUE(
        host::RegistryKeyExists("HKEY_CURRENT_USER\\software\\tarvo\\test\\one\\two\\three"));
    RegCloseKey(key);

    // Another case opens the same key; the stored name keeps the case of its creation.
    disposition = kSentinel;
    ASSERT_EQ(ERROR_SUCCESS,
              RegCreateKeyExW(HKEY_CURRENT_USER, u"SOFTWARE\\TARVO\\TEST\\ONE\\", 0, nullptr, 0,
                              KEY_ALL_ACCESS, nullptr, &key, &disposition));
    EXPECT_EQ(DWORD(REG_OPENED_EXISTING_KEY), disposition);
    RegCloseKey(key);
    EXPECT_EQ(std::vector<std::u16string>{u"One"},
              host::RegistrySubKeys("HKCU\\Software\\Tarvo\\Test"));
}

TEST_F(Registry, CreateRejectsBadArguments)
{
    const HKEY bogus = reinterpret_cast<HKEY>(uintptr_t(0x12345678));
    struct Row
    {
        const char* what;
        HKEY parent;
        const WCHAR* subKey;
        DWORD reserved;
        bool nullResult;
        LSTATUS expected;
    } rows[] = {
        {"leading backslash", HKEY_CURRENT_USER, u"\\Software\\Bad", 0, false, ERROR_BAD_PATHNAME},
        {"null result pointer", HKEY_CURRENT_USER, u"Software\\Bad", 0, true, ERROR_BADKEY},
        {"reserved not zero", HKEY_CURRENT_USER, u"Software\\Bad", 1, false,
         ERROR_INVALID_PARAMETER},
        {"null parent", nullptr, u"Software\\Bad", 0, false, ERROR_INVALID_HANDLE},
        {"made-up parent", bogus, u"Software\\Bad", 0, false, ERROR_INVALID_HANDLE},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        HKEY key = reinterpret_cast<HKEY>(uintptr_t(kSentinel));
        DWORD disposition = kSentinel;
        SetLastError(kSentinel);
        EXPECT_EQ(row.expected,
                  RegCreateKeyExW(row.parent, row.subKey, row.reserved, nullptr, 0, KEY_ALL_ACCESS,
                                  nullptr, row.nullResult ? nullptr : &key, &disposition));
        EXPECT_EQ(kSentinel, GetLastError()) << "the registry reports through its result only";
        EXPECT_EQ(kSentinel, disposition);
        if (!row.nullResult && row.expected != ERROR_INVALID_PARAMETER) {
            EXPECT_EQ(nullptr, key);
        }
        EXPECT_FALSE(host::RegistryKeyExists("HKCU\\Software\\Bad"));
    }
}

TEST_F(Registry, OpenFindsKeysAndReopensItself)
{
    HKEY key = reinterpret_cast<HKEY>(uintptr_t(kSentinel));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND,
              RegOpenKeyExW(HKEY_CURRENT_USER, u"Software\\Tarvo\\Absent", 0, KEY_READ, &key));
    EXPECT_EQ(nullptr, key);
    EXPECT_EQ(ERROR_BAD_PATHNAME,
              RegOpenKeyExW(HKEY_CURRENT_USER, u"\\Software\\Tarvo", 0, KEY_READ, &key));
    EXPECT_EQ(ERROR_INVALID_PARAMETER,
              RegOpenKeyExW(HKEY_CURRENT_USER, u"Software", 0, KEY_READ, nullptr));

    // A predefined key opened with no subkey is itself; an opened key gives a new handle.
    for (const WCHAR* empty : {static_cast<const WCHAR*>(nullptr), u""}) {
        SCOPED_TRACE(empty ? "empty subkey" : "null subkey");
        ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_CURRENT_USER, empty, 0, KEY_READ, &key));
        EXPECT_EQ(HKEY_CURRENT_USER, key);
        ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(key_, empty, 0, KEY_READ, &key));
        EXPECT_NE(key_, key);
        SetDword(u"Seen", 7);
        DWORD value = 0, size = sizeof value;
        EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(key, u"seen", nullptr, nullptr,
                                                  reinterpret_cast<BYTE*>(&value), &size));
        EXPECT_EQ(7u, value);
        EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(key));
    }
}

TEST_F(Registry, QueryFollowsTheTwoCallPattern)
{
    SetString(u"Text", u"abc"); // 8 bytes with its NUL
    DWORD type = kSentinel, size = kSentinel;
    ASSERT_EQ(ERROR_SUCCESS, RegQueryValueExW(key_, u"TEXT", nullptr, &type, nullptr, &size));
    EXPECT_EQ(DWORD(REG_SZ), type);
    EXPECT_EQ(8u, size);

    uint8_t buffer[16];
    std::memset(buffer, kFill, sizeof buffer);
    size = 7;
    type = kSentinel;
    EXPECT_EQ(ERROR_MORE_DATA, RegQueryValueExW(key_, u"Text", nullptr, &type, buffer, &size));
    EXPECT_EQ(8u, size);
    EXPECT_EQ(DWORD(REG_SZ), type);
    EXPECT_TRUE(AllFill(buffer, sizeof buffer)) << "a failed query writes nothing";

    size = 8;
    ASSERT_EQ(ERROR_SUCCESS, RegQueryValueExW(key_, u"Text", nullptr, nullptr, buffer, &size));
    EXPECT_EQ(0, std::memcmp(buffer, u"abc", 8));
    EXPECT_TRUE(AllFill(buffer + 8, sizeof buffer - 8));

    EXPECT_EQ(ERROR_INVALID_PARAMETER,
              RegQueryValueExW(key_, u"Text", nullptr, nullptr, buffer, nullptr));
    DWORD reserved = 0;
    EXPECT_EQ(ERROR_INVALID_PARAMETER,
              RegQueryValueExW(key_, u"Text", &reserved, nullptr, nullptr, nullptr));
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(key_, u"Text", nullptr, nullptr, nullptr, nullptr));
}

TEST_F(Registry, QueryOfAbsentValue)
{
    // Without a buffer the size is cleared; with one it stays as the caller set it.
    DWORD size = kSentinel, type = kSentinel;
    EXPECT_EQ(ERROR_FILE_NOT_FOUND,
              RegQueryValueExW(key_, u"Absent", nullptr, &type, nullptr, &size));
    EXPECT_EQ(0u, size);
    EXPECT_EQ(kSentinel, type);
    uint8_t buffer[4];
    size = sizeof buffer;
    EXPECT_EQ(ERROR_FILE_NOT_FOUND,
              RegQueryValueExW(key_, u"Absent", nullptr, &type, buffer, &size));
    EXPECT_EQ(sizeof buffer, size);
}

TEST_F(Registry, StringWithoutNulGetsOneOnlyWhenThereIsRoom)
{
    SetString(u"Bare", u"ab", false); // 4 bytes, no NUL
    uint8_t buffer[8];
    struct Row
    {
        DWORD room;
        bool terminated;
    } rows[] = {{4, false}, {5, false}, {6, true}, {8, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE("room " + std::to_string(row.room));
        std::memset(buffer, kFill, sizeof buffer);
        DWORD size = row.room;
        ASSERT_EQ(ERROR_SUCCESS, RegQueryValueExW(key_, u"Bare", nullptr, nullptr, buffer, &size));
        EXPECT_EQ(4u, size) << "the size stays that of the data";
        EXPECT_EQ(0, std::memcmp(buffer, u"ab", 4));
        if (row.terminated) {
            EXPECT_EQ(0, buffer[4] | buffer[5]);
            EXPECT_TRUE(AllFill(buffer + 6, sizeof buffer - 6));
        } else {
            EXPECT_TRUE(AllFill(buffer + 4, sizeof buffer - 4));
        }
    }
}

TEST_F(Registry, SetKeepsDataAsGiven)
{
    const BYTE three[] = {1, 2, 3};
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExW(key_, u"Odd", 0, REG_DWORD, three, 3));
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExW(key_, u"Empty", 0, REG_BINARY, nullptr, 0));
    EXPECT_EQ(ERROR_NOACCESS, RegSetValueExW(key_, u"Bad", 0, REG_BINARY, nullptr, 4));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegSetValueExW(key_, u"Bad", 1, REG_BINARY, three, 3));
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExW(key_, nullptr, 0, REG_BINARY, three, 2));

    struct Row
    {
        const WCHAR* name;
        DWORD type;
        std::vector<uint8_t> data;
    } rows[] = {
        {u"Odd", REG_DWORD, {1, 2, 3}},
        {u"Empty", REG_BINARY, {}},
        {u"", REG_BINARY, {1, 2}}, // the default value: NULL and "" name it alike
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(host::Utf16ToUtf8(row.name));
        uint8_t buffer[8];
        std::memset(buffer, kFill, sizeof buffer);
        DWORD type = kSentinel, size = sizeof buffer;
        ASSERT_EQ(ERROR_SUCCESS, RegQueryValueExW(key_, row.name, nullptr, &type, buffer, &size));
        EXPECT_EQ(row.type, type);
        EXPECT_EQ(row.data, Bytes(buffer, size));
    }
    EXPECT_EQ(ERROR_FILE_NOT_FOUND,
              RegQueryValueExW(key_, u"Bad", nullptr, nullptr, nullptr, nullptr));
}

TEST_F(Registry, EnumerationKeepsInsertionOrder)
{
    SetDword(u"Alpha", 1);
    SetDword(u"Bravo", 2);
    SetDword(u"Charlie", 3);
    SetDword(u"ALPHA", 10); // an overwrite keeps the place and the name's first case
    ASSERT_EQ(ERROR_SUCCESS, RegDeleteValueW(key_, u"bravo"));
    SetDword(u"Delta", 4);
    EXPECT_EQ((std::vector<std::u16string>{u"Alpha", u"Charlie", u"Delta"}), ValueNames(key_));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, RegDeleteValueW(key_, u"Bravo"));

    DWORD value = 0, size = sizeof value;
    ASSERT_EQ(ERROR_SUCCESS, RegQueryValueExW(key_, u"alpha", nullptr, nullptr,
                                              reinterpret_cast<BYTE*>(&value), &size));
    EXPECT_EQ(10u, value);
}

TEST_F(Registry, EnumerationOverflowsLikeWindows)
{
    SetString(u"Test", u"foobar"); // 14 bytes
    struct Row
    {
        const char* what;
        DWORD nameRoom, dataRoom;
        LSTATUS expected;
        bool nameWritten, dataWritten;
    } rows[] = {
        {"name and data too small", 2, 2, ERROR_MORE_DATA, false, false},
        {"name too small (no room for the NUL)", 4, 20, ERROR_MORE_DATA, false, false},
        {"data too small", 20, 13, ERROR_MORE_DATA, true, false},
        {"both fit", 5, 14, ERROR_SUCCESS, true, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        WCHAR name[20];
        uint8_t data[20];
        std::memset(name, kFill, sizeof name);
        std::memset(data, kFill, sizeof data);
        DWORD cch = row.nameRoom, size = row.dataRoom, type = kSentinel;
        EXPECT_EQ(row.expected, RegEnumValueW(key_, 0, name, &cch, nullptr, &type, data, &size));
        EXPECT_EQ(DWORD(REG_SZ), type);
        EXPECT_EQ(14u, size);
        if (row.nameWritten) {
            EXPECT_EQ(4u, cch);
            EXPECT_EQ(u"Test", std::u16string(name));
        } else {
            EXPECT_EQ(row.nameRoom, cch);
            EXPECT_TRUE(AllFill(reinterpret_cast<uint8_t*>(name), sizeof name));
        }
        if (row.dataWritten) {
            EXPECT_EQ(0, std::memcmp(data, u"foobar", 14));
        } else {
            EXPECT_TRUE(AllFill(data, sizeof data));
        }
    }
    WCHAR name[8];
    DWORD cch = 8;
    EXPECT_EQ(ERROR_NO_MORE_ITEMS,
              RegEnumValueW(key_, 1, name, &cch, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(ERROR_INVALID_PARAMETER,
              RegEnumValueW(key_, 0, nullptr, &cch, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(ERROR_INVALID_PARAMETER,
              RegEnumValueW(key_, 0, name, nullptr, nullptr, nullptr, nullptr, nullptr));
}

TEST_F(Registry, DeleteKeyRules)
{
    HKEY child = nullptr, grandchild = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(key_, u"Child", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                             &child, nullptr));
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(child, u"Grandchild", 0, nullptr, 0, KEY_ALL_ACCESS,
                                             nullptr, &grandchild, nullptr));
    EXPECT_EQ(ERROR_ACCESS_DENIED, RegDeleteKeyW(key_, u"Child"));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, RegDeleteKeyW(key_, u"Absent"));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegDeleteKeyW(key_, nullptr));
    EXPECT_EQ(ERROR_ACCESS_DENIED, RegDeleteKeyW(HKEY_CURRENT_USER, u""));

    const DWORD one = 1;
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExW(grandchild, u"V", 0, REG_DWORD,
                                            reinterpret_cast<const BYTE*>(&one), 4));
    ASSERT_EQ(ERROR_SUCCESS, RegDeleteKeyW(key_, u"CHILD\\grandchild"));
    EXPECT_FALSE(host::RegistryKeyExists("HKCU\\Software\\Tarvo\\Test\\Child\\Grandchild"));

    // The handle on the deleted key lives on, but everything through it meets a deleted key.
    DWORD size = 4;
    HKEY sub = nullptr;
    WCHAR name[4];
    DWORD cch = 4;
    EXPECT_EQ(ERROR_KEY_DELETED,
              RegQueryValueExW(grandchild, u"V", nullptr, nullptr, nullptr, &size));
    EXPECT_EQ(ERROR_KEY_DELETED, RegSetValueExW(grandchild, u"V", 0, REG_DWORD,
                                                reinterpret_cast<const BYTE*>(&one), 4));
    EXPECT_EQ(ERROR_KEY_DELETED,
              RegEnumValueW(grandchild, 0, name, &cch, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(ERROR_KEY_DELETED, RegCreateKeyExW(grandchild, u"X", 0, nullptr, 0, KEY_ALL_ACCESS,
                                                 nullptr, &sub, nullptr));
    EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(grandchild));

    // A re-created key of the same name is a new key: its values are gone.
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(child, u"Grandchild", 0, nullptr, 0, KEY_ALL_ACCESS,
                                             nullptr, &grandchild, nullptr));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND,
              RegQueryValueExW(grandchild, u"V", nullptr, nullptr, nullptr, nullptr));
    RegCloseKey(grandchild);
    RegCloseKey(child);
}

TEST_F(Registry, CloseKeyAcceptsOnlyOpenKeys)
{
    EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(HKEY_CURRENT_USER));
    EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(HKEY_LOCAL_MACHINE));
    EXPECT_EQ(ERROR_INVALID_HANDLE, RegCloseKey(nullptr));
    HANDLE file = CreateFileW(u"C:\\regclose.txt", GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, file);
    EXPECT_EQ(ERROR_INVALID_HANDLE, RegCloseKey(static_cast<HKEY>(file)));
    EXPECT_TRUE(CloseHandle(file)) << "the file handle survived the wrong close";

    ASSERT_EQ(ERROR_SUCCESS, RegCloseKey(key_));
    EXPECT_EQ(ERROR_INVALID_HANDLE, RegCloseKey(key_));
    EXPECT_EQ(ERROR_INVALID_HANDLE, RegSetValueExW(key_, u"X", 0, REG_NONE, nullptr, 0));
    key_ = nullptr;
}

TEST_F(Registry, CurrentUserFollowsTheUserName)
{
    SetDword(u"Owner", 1);
    EXPECT_TRUE(host::RegistryKeyExists("HKCU\\Software\\Tarvo\\Test"));
    HKEY machine = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_LOCAL_MACHINE, u"Software\\Shared", 0, nullptr, 0,
                                             KEY_ALL_ACCESS, nullptr, &machine, nullptr));
    RegCloseKey(machine);

    host::SetUserName(u"bob");
    HKEY key = nullptr;
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, RegOpenKeyExW(HKEY_CURRENT_USER, kBase, 0, KEY_READ, &key));
    EXPECT_FALSE(host::RegistryKeyExists("HKCU\\Software\\Tarvo\\Test"));
    EXPECT_TRUE(host::RegistryKeyExists("HKLM\\Software\\Shared"));
    // A handle opened for alice still names alice's key.
    DWORD size = 0;
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(key_, u"Owner", nullptr, nullptr, nullptr, &size));

    host::SetUserName(u"ALICE"); // user names compare without case, as logons do
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_CURRENT_USER, kBase, 0, KEY_READ, &key));
    RegCloseKey(key);
}

} // namespace
