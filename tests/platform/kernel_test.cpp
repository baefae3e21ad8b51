// kernel32/advapi32/user32 odds of the host: user name, locale, version, global memory, last
// error, message boxes, debug output.
#include "hosttest.h"

#include <pwd.h>
#include <unistd.h>

#include <thread>

using namespace hosttest;

namespace {

TEST(Kernel, GetUserNameTwoCalls)
{
    host::SetUserName(u"Tester");
    WCHAR buffer[16];
    std::memset(buffer, kFill, sizeof buffer);
    DWORD size = 0;
    SetLastError(kSentinel);
    EXPECT_FALSE(GetUserNameW(nullptr, &size));
    EXPECT_EQ(DWORD(ERROR_INSUFFICIENT_BUFFER), GetLastError());
    EXPECT_EQ(7u, size) << "characters needed, with the NUL";

    size = 6;
    EXPECT_FALSE(GetUserNameW(buffer, &size));
    EXPECT_EQ(7u, size);
    EXPECT_TRUE(AllFill(reinterpret_cast<uint8_t*>(buffer), sizeof buffer));

    SetLastError(kSentinel);
    ASSERT_TRUE(GetUserNameW(buffer, &size));
    EXPECT_EQ(7u, size) << "length + 1 on success";
    EXPECT_EQ(u"Tester", std::u16string(buffer));
    EXPECT_EQ(kSentinel, GetLastError());
    EXPECT_TRUE(AllFill(reinterpret_cast<uint8_t*>(buffer + 7), sizeof buffer - 14));

    EXPECT_FALSE(GetUserNameW(buffer, nullptr));
    EXPECT_EQ(DWORD(ERROR_INVALID_PARAMETER), GetLastError());
}

TEST(Kernel, UserNameDefaultsToTheLogin)
{
    passwd* pw = getpwuid(geteuid());
    ASSERT_NE(nullptr, pw);
    EXPECT_EQ(host::Utf8ToUtf16(pw->pw_name), host::UserName());
    host::SetUserName(u"someone");
    host::SetUserName(u""); // back to the default
    EXPECT_EQ(host::Utf8ToUtf16(pw->pw_name), host::UserName());
}

TEST(Kernel, LocaleMeasurementSystem)
{
    struct Row
    {
        bool metric;
        const char16_t* text;
    } rows[] = {{true, u"0"}, {false, u"1"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.metric ? "metric" : "US");
        host::SetMetric(row.metric);
        WCHAR buffer[4] = {0xCCCC, 0xCCCC, 0xCCCC, 0xCCCC};
        EXPECT_EQ(2, GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_IMEASURE, nullptr, 0));
        SetLastError(kSentinel);
        EXPECT_EQ(0, GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_IMEASURE, buffer, 1));
        EXPECT_EQ(DWORD(ERROR_INSUFFICIENT_BUFFER), GetLastError());
        EXPECT_EQ(0xCCCC, buffer[0]);
        EXPECT_EQ(2, GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_IMEASURE, buffer, 4));
        EXPECT_EQ(std::u16string(row.text), std::u16string(buffer));
        EXPECT_EQ(0xCCCC, buffer[2]);
        DWORD number = kSentinel;
        EXPECT_EQ(2, GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_IMEASURE | LOCALE_RETURN_NUMBER,
                                    reinterpret_cast<WCHAR*>(&number), 2));
        EXPECT_EQ(row.metric ? 0u : 1u, number);
    }
    SetLastError(kSentinel);
    WCHAR buffer[4];
    EXPECT_EQ(0, GetLocaleInfoW(LOCALE_USER_DEFAULT, 0x0E /* LOCALE_SDECIMAL */, buffer, 4));
    EXPECT_EQ(DWORD(ERROR_INVALID_FLAGS), GetLastError());
}

TEST(Kernel, VersionAcceptsOnlyTheTwoStructureSizes)
{
    host::SetSystemVersion(6, 1, 7601);
    struct Row
    {
        DWORD size;
        bool ok;
    } rows[] = {{sizeof(OSVERSIONINFOW), true},
                {sizeof(OSVERSIONINFOEXW), true},
                {0, false},
                {sizeof(OSVERSIONINFOW) - 1, false},
                {sizeof(OSVERSIONINFOEXW) + 4, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE("size " + std::to_string(row.size));
        uint8_t buffer[sizeof(OSVERSIONINFOEXW) + 8];
        std::memset(buffer, kFill, sizeof buffer);
        auto* info = reinterpret_cast<OSVERSIONINFOW*>(buffer);
        info->dwOSVersionInfoSize = row.size;
        SetLastError(kSentinel);
        ASSERT_EQ(row.ok, GetVersionExW(info) != FALSE);
        if (!row.ok) {
            EXPECT_EQ(DWORD(ERROR_INSUFFICIENT_BUFFER), GetLastError());
            EXPECT_TRUE(AllFill(buffer + 4, sizeof buffer - 4));
            continue;
        }
        EXPECT_EQ(6u, info->dwMajorVersion);
        EXPECT_EQ(1u, info->dwMinorVersion);
        EXPECT_EQ(7601u, info->dwBuildNumber);
        EXPECT_EQ(DWORD(VER_PLATFORM_WIN32_NT), info->dwPlatformId);
        EXPECT_EQ(0, info->szCSDVersion[0]);
        EXPECT_TRUE(AllFill(buffer + row.size, sizeof buffer - row.size)) << "wrote past the size";
    }
}

TEST(Kernel, VersionDefault)
{
    OSVERSIONINFOW info{};
    info.dwOSVersionInfoSize = sizeof info;
    ASSERT_TRUE(GetVersionExW(&info));
    EXPECT_EQ(10u, info.dwMajorVersion);
    EXPECT_EQ(0u, info.dwMinorVersion);
    EXPECT_EQ(19045u, info.dwBuildNumber);
}

TEST(Kernel, LastErrorIsPerThread)
{
    SetLastError(11);
    DWORD seen = kSentinel;
    std::thread other([&] {
        seen = GetLastError();
        SetLastError(22);
    });
    other.join();
    EXPECT_EQ(0u, seen);
    EXPECT_EQ(11u, GetLastError());
}

TEST(Kernel, SmallCalls)
{
    SetLastError(kSentinel);
    EXPECT_FALSE(DisableThreadLibraryCalls(nullptr));
    EXPECT_EQ(DWORD(ERROR_INVALID_HANDLE), GetLastError());
    EXPECT_TRUE(DisableThreadLibraryCalls(reinterpret_cast<HMODULE>(uintptr_t(0x10000))));
    EXPECT_EQ(DWORD(getpid()), GetCurrentProcessId());
    EXPECT_EQ(GetDesktopWindow(), GetDesktopWindow());
    EXPECT_NE(nullptr, GetDesktopWindow());
}

TEST(KernelMemory, GlobalBlocks)
{
    HGLOBAL block = GlobalAlloc(GMEM_ZEROINIT, 100);
    ASSERT_NE(nullptr, block);
    EXPECT_EQ(100u, GlobalSize(block));
    auto* bytes = static_cast<uint8_t*>(GlobalLock(block));
    ASSERT_EQ(block, static_cast<HGLOBAL>(bytes)) << "a fixed block is its own address";
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(0, bytes[i]) << "GMEM_ZEROINIT at " << i;
    }
    EXPECT_TRUE(GlobalUnlock(block));
    EXPECT_EQ(nullptr, GlobalFree(block));

    // The same handle again, and a handle never given out, are refused without harm.
    int onStack = 0;
    for (HGLOBAL bad : {block, static_cast<HGLOBAL>(&onStack)}) {
        SetLastError(kSentinel);
        EXPECT_EQ(bad, GlobalFree(bad));
        EXPECT_EQ(DWORD(ERROR_INVALID_HANDLE), GetLastError());
        SetLastError(kSentinel);
        EXPECT_EQ(0u, GlobalSize(bad));
        EXPECT_EQ(DWORD(ERROR_INVALID_HANDLE), GetLastError());
        EXPECT_EQ(nullptr, GlobalLock(bad));
        EXPECT_FALSE(GlobalUnlock(bad));
    }
    EXPECT_EQ(nullptr, GlobalFree(nullptr));

    HGLOBAL empty = GlobalAlloc(GMEM_FIXED, 0);
    ASSERT_NE(nullptr, empty);
    EXPECT_EQ(0u, GlobalSize(empty));
    EXPECT_EQ(nullptr, GlobalFree(empty));

    SetLastError(kSentinel);
    EXPECT_EQ(nullptr, GlobalAlloc(GMEM_FIXED, SIZE_T(-1)));
    EXPECT_EQ(DWORD(ERROR_NOT_ENOUGH_MEMORY), GetLastError());
}

TEST(KernelUser, MessageBoxAnswersItsDefaultButton)
{
    struct Row
    {
        UINT type;
        int expected;
    } rows[] = {
        {MB_OK, IDOK},
        {MB_OKCANCEL | MB_DEFBUTTON2, IDCANCEL},
        {MB_ABORTRETRYIGNORE | MB_ICONHAND | MB_SYSTEMMODAL, IDABORT},
        {MB_ABORTRETRYIGNORE | MB_DEFBUTTON3, IDIGNORE},
        {MB_YESNOCANCEL | MB_DEFBUTTON3, IDCANCEL},
        {MB_YESNO, IDYES},
        {MB_YESNO | MB_DEFBUTTON2, IDNO},
        {MB_YESNO | MB_DEFBUTTON3, IDYES}, // beyond the buttons: the first
        {MB_RETRYCANCEL, IDRETRY},
        {MB_CANCELTRYCONTINUE | MB_DEFBUTTON2, IDTRYAGAIN},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE("type " + std::to_string(row.type));
        EXPECT_EQ(row.expected, MessageBoxW(nullptr, u"text", u"caption", row.type));
    }
    EXPECT_EQ(std::size(rows), host::MessageBoxCalls().size());
}

TEST(KernelUser, MessageBoxTakesQueuedAnswersAndRecordsCalls)
{
    host::QueueMessageBoxAnswer(IDRETRY);
    host::QueueMessageBoxAnswer(IDIGNORE);
    HWND owner = GetDesktopWindow();
    EXPECT_EQ(IDRETRY, MessageBoxW(owner, u"first", u"Assertion Failed!", 4114));
    EXPECT_EQ(IDIGNORE, MessageBoxW(owner, u"second", nullptr, 4114));
    EXPECT_EQ(IDABORT, MessageBoxW(owner, u"third", nullptr, 4114)) << "queue used up";
    SetLastError(kSentinel);
    EXPECT_EQ(0, MessageBoxW(nullptr, u"bad", nullptr, 0x0F));
    EXPECT_EQ(DWORD(ERROR_INVALID_MSGBOX_STYLE), GetLastError());

    auto calls = host::MessageBoxCalls();
    ASSERT_EQ(4u, calls.size());
    EXPECT_EQ(owner, calls[0].owner);
    EXPECT_EQ(u"first", calls[0].text);
    EXPECT_EQ(u"Assertion Failed!", calls[0].caption);
    EXPECT_EQ(4114u, calls[0].type);
    EXPECT_EQ(IDRETRY, calls[0].answer);
    EXPECT_EQ(u"Error", calls[1].caption) << "the system's caption for NULL";
    EXPECT_EQ(0, calls[3].answer);
    host::ClearMessageBoxCalls();
    EXPECT_TRUE(host::MessageBoxCalls().empty());
}

// The open dialog takes queued answers in turn: a path it can accept, Cancel, or a path the
// dialog refuses (missing file), which costs the user another answer.
TEST(KernelUser, OpenDialogTakesQueuedAnswers)
{
    const std::string existing = ::testing::TempDir() + "picked.pjl";
    FILE* f = fopen(existing.c_str(), "w");
    ASSERT_NE(nullptr, f);
    fclose(f);
    const std::u16string path = host::Utf8ToUtf16(existing);

    WCHAR buffer[260];
    OPENFILENAMEW ofn = {};
    ofn.lStructSize = sizeof(ofn);
    ofn.lpstrFile = buffer;
    ofn.nMaxFile = 260;
    ofn.lpstrTitle = u"pick";
    ofn.Flags = OFN_FILEMUSTEXIST;
    host::ClearFilePickerTitles();
    host::QueueFilePickerAnswer(u"/nonexistent/reply.pjl");
    host::QueueFilePickerAnswer(path);
    host::QueueFilePickerAnswer(std::nullopt);
    ASSERT_TRUE(GetOpenFileNameW(&ofn));
    EXPECT_EQ(path, std::u16string(buffer));
    EXPECT_EQ(path.rfind(u'/') + 1, ofn.nFileOffset);
    EXPECT_EQ(path.size() - 3, ofn.nFileExtension);
    EXPECT_FALSE(GetOpenFileNameW(&ofn)) << "Cancel";
    EXPECT_EQ(0u, CommDlgExtendedError());
    EXPECT_FALSE(GetOpenFileNameW(&ofn)) << "nothing queued: Cancel";
    EXPECT_EQ((std::vector<std::u16string>{u"pick", u"pick", u"pick"}), host::FilePickerTitles());

    // Too small a buffer: its first word tells the room needed.
    ofn.nMaxFile = 4;
    host::QueueFilePickerAnswer(path);
    EXPECT_FALSE(GetOpenFileNameW(&ofn));
    EXPECT_EQ(DWORD(FNERR_BUFFERTOOSMALL), CommDlgExtendedError());
    EXPECT_EQ(path.size() + 1, buffer[0]);
    ofn.lStructSize = 12;
    EXPECT_FALSE(GetOpenFileNameW(&ofn));
    EXPECT_EQ(DWORD(CDERR_STRUCTSIZE), CommDlgExtendedError());
    host::ClearFilePickerAnswers();
    remove(existing.c_str());
}

TEST(KernelUser, DebugOutputReachesTheSink)
{
    std::vector<std::u16string> lines;
    host::SetDebugOutputSink([&](const std::u16string& line) { lines.push_back(line); });
    OutputDebugStringW(u"QLMUIDrv: line one\n");
    OutputDebugStringW(nullptr);
    OutputDebugStringW(u"\u00e9t\u00e9");
    host::SetDebugOutputSink(nullptr);
    OutputDebugStringW(u"not captured");
    EXPECT_EQ((std::vector<std::u16string>{u"QLMUIDrv: line one\n", u"\u00e9t\u00e9"}), lines);

    int before = host::DebugBreakCount();
    DebugBreak(); // no debugger attached: counted only
    EXPECT_EQ(before + 1, host::DebugBreakCount());
}

TEST(Kernel, TextConversions)
{
    struct Row
    {
        const char* what;
        std::string utf8;
        std::u16string utf16;
    } rows[] = {
        {"ascii", "abc", u"abc"},
        {"two-byte", "\xc3\xa9", u"\u00e9"},
        {"beyond the BMP", "\xf0\x9f\x96\xa8", u"\U0001F5A8"},
        {"stray continuation byte", "a\x80z", u"a\uFFFDz"},
        {"truncated sequence", "a\xe2\x82", u"a\uFFFD"},
        {"overlong", "\xc0\xaf", u"\uFFFD\uFFFD"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(row.utf16, host::Utf8ToUtf16(row.utf8));
    }
    EXPECT_EQ("\xef\xbf\xbd", host::Utf16ToUtf8(std::u16string(1, char16_t(0xD800))));
    EXPECT_EQ("\xf0\x9f\x96\xa8", host::Utf16ToUtf8(u"\U0001F5A8"));
    EXPECT_EQ("", host::Utf16ToUtf8(static_cast<const WCHAR*>(nullptr)));
}

} // namespace
