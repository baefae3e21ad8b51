// Queue names and the per-user store.
#include "support/hostprinter.h"
#include "support/tracecapture.h"

#include "driver/foundation/qlmutils.h"

#include <gtest/gtest.h>

namespace {

std::string Text(const WCHAR* s)
{
    return s ? host::Utf16ToUtf8(s) : std::string("(null)");
}

const std::string kUserRoot = "HKCU\\Software\\Tarvo\\Wide Format\\";

} // namespace

TEST(QLMNames, PrinterNameFitForAKey)
{
    struct Row
    {
        std::u16string queue;
        std::string expected;
    } kRows[] = {
        {u"Plotter", "Plotter"},
        {u"\\\\host\\queue", "host-queue"},
        {u"\\\\host\\queue\\extra", "host-queue\\extra"},
        {u"\\\\host", "host"},
        {u"Plan 2440 (copy 1)", "Plan 2440 (copy 1)"},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.expected);
        HostPrinter printer(row.queue);
        EXPECT_EQ(Text(QLMGetPrinterName(printer.handle())), row.expected);
    }
}

TEST(QLMNames, DriverNameIsTakenAsItIs)
{
    HostPrinter printer(u"\\\\host\\queue", u"Tarvo Plan Output System 3320A");
    EXPECT_EQ(Text(QLMGetDriverName(printer.handle())), "Tarvo Plan Output System 3320A");
}

TEST(QLMNames, NullOrStaleHandleGivesNullAndAnAssertion)
{
    SwitchGuard guard;
    TraceCapture capture;
    g_bTraceASSERT = TRUE;
    EXPECT_EQ(QLMGetPrinterName(nullptr), nullptr);
    EXPECT_TRUE(capture.contains("***ASSERT***(hPrinter) failed"));

    HANDLE hPrinter = nullptr;
    {
        HostPrinter printer(u"Gone");
        ASSERT_TRUE(OpenPrinterW(const_cast<LPWSTR>(TEXT("Gone")), &hPrinter, nullptr));
    }
    ASSERT_TRUE(host::RemovePrinter(u"Gone"));
    capture.clear();
    EXPECT_EQ(QLMGetDriverName(hPrinter), nullptr);
    EXPECT_TRUE(capture.contains("***ASSERT***(pPrinterInfo) failed"));
    ClosePrinter(hPrinter);
}

TEST(QLMNames, NameBufferIsCutToItsRoom)
{
    std::u16string longName(400, u'q');
    HostPrinter printer(longName);
    LPWSTR name = QLMGetPrinterName(printer.handle());
    ASSERT_NE(name, nullptr);
    EXPECT_EQ(Text(name), std::string(kQLM_NAME_CCH - 1, 'q'));
}

TEST(QLMUserStore, ValuesLieUnderTheQueuesKey)
{
    HostPrinter printer(u"\\\\host\\queue");
    DWORD value = 0x12345678;
    EXPECT_EQ(QLMSetUserDWORD(printer.handle(), TEXT("Count"), &value), ERROR_SUCCESS);
    const BYTE blob[3] = {1, 2, 3};
    EXPECT_EQ(QLMSetUserBINARY(printer.handle(), TEXT("Blob"), blob, sizeof(blob)), ERROR_SUCCESS);
    EXPECT_TRUE(host::RegistryKeyExists(kUserRoot + "host-queue"));

    HKEY hKey = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, TEXT("Software\\Tarvo\\Wide Format\\host-queue"), 0,
                            KEY_READ, &hKey),
              ERROR_SUCCESS);
    DWORD type = 0, stored = 0, cb = sizeof(stored);
    EXPECT_EQ(RegQueryValueExW(hKey, TEXT("Count"), nullptr, &type, (LPBYTE)&stored, &cb),
              ERROR_SUCCESS);
    EXPECT_EQ(type, (DWORD)REG_DWORD);
    EXPECT_EQ(stored, 0x12345678u);
    cb = 0;
    EXPECT_EQ(RegQueryValueExW(hKey, TEXT("Blob"), nullptr, &type, nullptr, &cb), ERROR_SUCCESS);
    EXPECT_EQ(type, (DWORD)REG_BINARY);
    EXPECT_EQ(cb, 3u);
    RegCloseKey(hKey);

    DWORD read = 0;
    EXPECT_EQ(QLMGetUserDWORD(printer.handle(), TEXT("Count"), &read), ERROR_SUCCESS);
    EXPECT_EQ(read, 0x12345678u);
}

TEST(QLMUserStore, GetBinaryTakesTheNameAndFormsItsKeyItsOwnWay)
{
    HostPrinter printer(u"\\\\host\\queue");
    const BYTE blob[4] = {9, 8, 7, 6};
    ASSERT_EQ(QLMSetUserBINARY(printer.handle(), TEXT("Accounting"), blob, 4), ERROR_SUCCESS);

    BYTE read[8] = {0};
    DWORD cb = sizeof(read);
    EXPECT_EQ(QLMGetUserBINARY(TEXT("host-queue"), TEXT("Accounting"), read, &cb), ERROR_SUCCESS)
        << "the name QLMGetPrinterName gives reaches the same key";
    EXPECT_EQ(cb, 4u);
    EXPECT_EQ(read[0], 9);
    EXPECT_EQ(read[3], 6);

    cb = sizeof(read);
    EXPECT_EQ(QLMGetUserBINARY(TEXT("\\\\host\\queue"), TEXT("Accounting"), read, &cb),
              ERROR_FILE_NOT_FOUND)
        << "the raw name is looked up as host\\queue";
    EXPECT_TRUE(host::RegistryKeyExists(kUserRoot + "host\\queue"))
        << "a read creates the key it looks in";
}

TEST(QLMUserStore, PlainQueueNameIsTheSameKeyForAllFour)
{
    HostPrinter printer(u"Plotter");
    DWORD value = 5;
    ASSERT_EQ(QLMSetUserDWORD(printer.handle(), TEXT("A"), &value), ERROR_SUCCESS);
    const BYTE blob[2] = {1, 2};
    ASSERT_EQ(QLMSetUserBINARY(printer.handle(), TEXT("B"), blob, 2), ERROR_SUCCESS);
    DWORD read = 0;
    EXPECT_EQ(QLMGetUserDWORD(printer.handle(), TEXT("A"), &read), ERROR_SUCCESS);
    EXPECT_EQ(read, 5u);
    BYTE back[2] = {0};
    DWORD cb = 2;
    EXPECT_EQ(QLMGetUserBINARY(TEXT("Plotter"), TEXT("B"), back, &cb), ERROR_SUCCESS);
    EXPECT_EQ(back[1], 2);
    EXPECT_EQ(host::RegistrySubKeys("HKCU\\Software\\Tarvo\\Wide Format").size(), 1u);
}

TEST(QLMUserStore, SetWithNullHandleReturns122AndWritesNothing)
{
    SwitchGuard guard;
    TraceCapture capture;
    g_bTraceASSERT = TRUE;
    DWORD value = 1;
    EXPECT_EQ(QLMSetUserDWORD(nullptr, TEXT("X"), &value), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(QLMSetUserBINARY(nullptr, TEXT("X"), (const BYTE*)&value, 4),
              ERROR_INSUFFICIENT_BUFFER);
    EXPECT_FALSE(host::RegistryKeyExists("HKCU\\Software\\Tarvo"));
    EXPECT_TRUE(capture.contains("***ASSERT***(pPrinterName) failed"));
}

// A value that is absent, or of a size that does not fit, is not taken half way.
TEST(QLMUserStore, FailedReadsLeaveTheTargetAlone)
{
    HostPrinter printer(u"Plotter");
    DWORD value = 0xdeadbeef;
    EXPECT_EQ(QLMGetUserDWORD(printer.handle(), TEXT("QLMIsFirstTime"), &value),
              ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(value, 0xdeadbeefu);
    EXPECT_TRUE(host::RegistryKeyExists(kUserRoot + "Plotter")) << "the read left its key behind";
    BYTE data[8] = {0xAA, 0xAA, 0xAA, 0xAA};
    DWORD cb = sizeof(data);
    EXPECT_EQ(QLMGetUserBINARY(TEXT("Plotter"), TEXT("Missing"), data, &cb), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(data[0], 0xAA);

    const BYTE two[2] = {0x11, 0x22};
    ASSERT_EQ(QLMSetUserBINARY(printer.handle(), TEXT("Short"), two, 2), ERROR_SUCCESS);
    const BYTE big[40] = {1, 2, 3, 4, 5, 6, 7, 8};
    ASSERT_EQ(QLMSetUserBINARY(printer.handle(), TEXT("Long"), big, sizeof(big)), ERROR_SUCCESS);
    EXPECT_NE(QLMGetUserDWORD(printer.handle(), TEXT("Short"), &value), ERROR_SUCCESS);
    EXPECT_EQ(value, 0xdeadbeefu);
    EXPECT_EQ(QLMGetUserDWORD(printer.handle(), TEXT("Long"), &value), ERROR_MORE_DATA);
    EXPECT_EQ(value, 0xdeadbeefu);
    cb = sizeof(data);
    EXPECT_EQ(QLMGetUserBINARY(TEXT("Plotter"), TEXT("Long"), data, &cb), ERROR_MORE_DATA);
    EXPECT_EQ(cb, 40u) << "the size needed";
}

TEST(QLMUserStore, EachUserHasAKeyOfItsOwn)
{
    HostPrinter printer(u"Plotter");
    host::SetUserName(u"alice");
    DWORD value = 1;
    ASSERT_EQ(QLMSetUserDWORD(printer.handle(), TEXT("Remember"), &value), ERROR_SUCCESS);
    host::SetUserName(u"bob");
    DWORD read = 0xdeadbeef;
    EXPECT_EQ(QLMGetUserDWORD(printer.handle(), TEXT("Remember"), &read), ERROR_FILE_NOT_FOUND);
    host::SetUserName(u"alice");
    EXPECT_EQ(QLMGetUserDWORD(printer.handle(), TEXT("Remember"), &read), ERROR_SUCCESS);
    EXPECT_EQ(read, 1u);
}
