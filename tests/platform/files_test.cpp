// Files: the mapping of Windows paths into the host's home, dispositions with their Windows
// codes, appending, and handles that are not files.
#include "hosttest.h"

#include <filesystem>
#include <fstream>
#include <sstream>

using namespace hosttest;

namespace {

std::string ReadAll(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

void WriteAll(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

HANDLE Create(const WCHAR* path, DWORD access, DWORD disposition)
{
    return CreateFileW(path, access, FILE_SHARE_READ, nullptr, disposition, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
}

class Files : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::filesystem::remove_all(HomeFile("files"));
        std::filesystem::create_directories(HomeFile("files"));
    }
};

TEST_F(Files, WindowsPathsMapIntoTheHome)
{
    const std::string home = host::HomeDirectory();
    struct Row
    {
        std::u16string windows;
        std::string host;
    } rows[] = {
        {u"C:\\QLM_DEBUG.TXT", home + "/QLM_DEBUG.TXT"},
        {u"c:\\a\\b.txt", home + "/a/b.txt"},
        {u"C:/a/b", home + "/a/b"},
        {u"C:\\", home},
        {u"C:\\a\\.\\..\\..\\b", home + "/b"}, // never above the drive's root
        {u"relative\\x.txt", "relative/x.txt"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(host::Utf16ToUtf8(row.windows));
        EXPECT_EQ(row.host, host::MapWindowsPath(row.windows));
    }
    EXPECT_FALSE(std::filesystem::exists(home + "/a")) << "mapping creates no directories";
}

TEST_F(Files, DispositionsAndTheirCodes)
{
    WriteAll(HomeFile("files/old.txt"), "old content");
    struct Row
    {
        const char* what;
        const WCHAR* path;
        DWORD disposition;
        DWORD error; // the last error after the call, success or not
        bool ok;
        const char* contentAfter; // of the file, when ok
    } rows[] = {
        {"new file, existing", u"C:\\files\\old.txt", CREATE_NEW, ERROR_FILE_EXISTS, false,
         nullptr},
        {"existing file, missing", u"C:\\files\\none.txt", OPEN_EXISTING, ERROR_FILE_NOT_FOUND,
         false, nullptr},
        {"missing directory", u"C:\\nodir\\x.txt", CREATE_ALWAYS, ERROR_PATH_NOT_FOUND, false,
         nullptr},
        {"truncate, missing", u"C:\\files\\none.txt", TRUNCATE_EXISTING, ERROR_FILE_NOT_FOUND,
         false, nullptr},
        {"bad disposition", u"C:\\files\\old.txt", 9, ERROR_INVALID_PARAMETER, false, nullptr},
        {"empty path", u"", OPEN_EXISTING, ERROR_PATH_NOT_FOUND, false, nullptr},
        {"a directory", u"C:\\files", OPEN_EXISTING, ERROR_ACCESS_DENIED, false, nullptr},
        {"open always, existing", u"C:\\files\\old.txt", OPEN_ALWAYS, ERROR_ALREADY_EXISTS, true,
         "old content"},
        {"open always, new", u"C:\\files\\new1.txt", OPEN_ALWAYS, ERROR_SUCCESS, true, ""},
        {"create always, existing", u"C:\\files\\old.txt", CREATE_ALWAYS, ERROR_ALREADY_EXISTS,
         true, ""},
        {"create new, new", u"C:\\files\\new2.txt", CREATE_NEW, ERROR_SUCCESS, true, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        SetLastError(kSentinel);
        HANDLE file = Create(row.path, GENERIC_READ | GENERIC_WRITE, row.disposition);
        EXPECT_EQ(row.error, GetLastError());
        if (!row.ok) {
            EXPECT_EQ(INVALID_HANDLE_VALUE, file);
            continue;
        }
        ASSERT_NE(INVALID_HANDLE_VALUE, file);
        EXPECT_TRUE(CloseHandle(file));
        EXPECT_EQ(row.contentAfter, ReadAll(host::MapWindowsPath(row.path)));
    }
    EXPECT_FALSE(std::filesystem::exists(HomeFile("nodir"))) << "no directories are made";
}

TEST_F(Files, AppendAccessAppendsThroughEveryHandle)
{
    // The trace log's pattern: open for appending, write one line, close; two writers.
    WriteAll(HomeFile("files/log.txt"), "start\n");
    HANDLE a = Create(u"C:\\files\\log.txt", FILE_APPEND_DATA, OPEN_ALWAYS);
    HANDLE b = Create(u"C:\\files\\log.txt", FILE_APPEND_DATA, OPEN_ALWAYS);
    ASSERT_NE(INVALID_HANDLE_VALUE, a);
    ASSERT_NE(INVALID_HANDLE_VALUE, b);
    DWORD written = kSentinel;
    ASSERT_TRUE(WriteFile(a, "one\n", 4, &written, nullptr));
    EXPECT_EQ(4u, written);
    ASSERT_TRUE(WriteFile(b, "two\n", 4, &written, nullptr));
    ASSERT_TRUE(WriteFile(a, "three\n", 6, &written, nullptr));
    EXPECT_EQ(20u, GetFileSize(a, nullptr));

    char buffer[8];
    DWORD read = kSentinel;
    SetLastError(kSentinel);
    EXPECT_FALSE(ReadFile(a, buffer, sizeof buffer, &read, nullptr));
    EXPECT_EQ(DWORD(ERROR_ACCESS_DENIED), GetLastError());
    EXPECT_EQ(0u, read);
    EXPECT_TRUE(CloseHandle(a));
    EXPECT_TRUE(CloseHandle(b));
    EXPECT_EQ("start\none\ntwo\nthree\n", ReadAll(HomeFile("files/log.txt")));

    // With FILE_WRITE_DATA as well, writes go where the file pointer is: the start.
    HANDLE c = Create(u"C:\\files\\log.txt", FILE_WRITE_DATA | FILE_APPEND_DATA, OPEN_EXISTING);
    ASSERT_NE(INVALID_HANDLE_VALUE, c);
    ASSERT_TRUE(WriteFile(c, "START", 5, &written, nullptr));
    EXPECT_TRUE(CloseHandle(c));
    EXPECT_EQ("START\none\ntwo\nthree\n", ReadAll(HomeFile("files/log.txt")));
}

TEST_F(Files, ReadWriteAndSize)
{
    HANDLE file = Create(u"C:\\files\\data.bin", GENERIC_READ | GENERIC_WRITE, CREATE_ALWAYS);
    ASSERT_NE(INVALID_HANDLE_VALUE, file);
    DWORD written = 0;
    ASSERT_TRUE(WriteFile(file, "0123456789", 10, &written, nullptr));
    SetLastError(kSentinel);
    EXPECT_FALSE(WriteFile(file, nullptr, 4, &written, nullptr));
    EXPECT_EQ(DWORD(ERROR_NOACCESS), GetLastError());
    DWORD high = kSentinel;
    EXPECT_EQ(10u, GetFileSize(file, &high));
    EXPECT_EQ(0u, high);
    EXPECT_TRUE(CloseHandle(file));

    HANDLE reader = Create(u"C:\\files\\data.bin", GENERIC_READ, OPEN_EXISTING);
    ASSERT_NE(INVALID_HANDLE_VALUE, reader);
    char buffer[16];
    std::memset(buffer, kFill, sizeof buffer);
    DWORD read = 0;
    ASSERT_TRUE(ReadFile(reader, buffer, sizeof buffer, &read, nullptr));
    EXPECT_EQ(10u, read);
    EXPECT_EQ("0123456789", std::string(buffer, read));
    ASSERT_TRUE(ReadFile(reader, buffer, sizeof buffer, &read, nullptr)) << "end of file";
    EXPECT_EQ(0u, read);
    SetLastError(kSentinel);
    EXPECT_FALSE(WriteFile(reader, "x", 1, &written, nullptr));
    EXPECT_EQ(DWORD(ERROR_ACCESS_DENIED), GetLastError());
    EXPECT_TRUE(CloseHandle(reader));
}

TEST_F(Files, CloseHandleRefusesWhatIsNoFile)
{
    ASSERT_TRUE(host::AddPrinter(Printer(u"P")));
    HANDLE printer = nullptr;
    ASSERT_TRUE(OpenPrinterW(const_cast<WCHAR*>(u"P"), &printer, nullptr));
    HANDLE file = Create(u"C:\\files\\c.txt", GENERIC_WRITE, CREATE_ALWAYS);
    ASSERT_NE(INVALID_HANDLE_VALUE, file);
    for (HANDLE bad : {static_cast<HANDLE>(nullptr), INVALID_HANDLE_VALUE, printer,
                       static_cast<HANDLE>(HKEY_CURRENT_USER)}) {
        SetLastError(kSentinel);
        EXPECT_FALSE(CloseHandle(bad));
        EXPECT_EQ(DWORD(ERROR_INVALID_HANDLE), GetLastError());
    }
    EXPECT_FALSE(ClosePrinter(file));
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_FALSE(CloseHandle(file)) << "closed twice";
    DWORD written = 0;
    EXPECT_FALSE(WriteFile(file, "x", 1, &written, nullptr));
    EXPECT_EQ(DWORD(ERROR_INVALID_HANDLE), GetLastError());
    EXPECT_EQ(INVALID_FILE_SIZE, GetFileSize(file, nullptr));
    EXPECT_TRUE(ClosePrinter(printer));
}

} // namespace
