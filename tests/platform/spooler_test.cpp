// The host's spooler: printer handles, GetPrinterW/SetPrinterW, printer data, ports and the
// driver directory.
#include "hosttest.h"

#include <map>
#include <memory>

using namespace hosttest;

namespace {

class Spooler : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(host::AddPrinter(Printer(u"QLM 5000", MakeDevMode(sizeof(DEVMODEW), 40))));
        ASSERT_TRUE(OpenPrinterW(const_cast<WCHAR*>(u"QLM 5000"), &printer_, nullptr));
    }
    void TearDown() override
    {
        if (printer_) {
            ClosePrinter(printer_);
        }
    }
    // A level 2 answer in a buffer of exactly the size the first call reported.
    std::vector<uint8_t> Info2()
    {
        DWORD needed = 0;
        EXPECT_FALSE(GetPrinterW(printer_, 2, nullptr, 0, &needed));
        std::vector<uint8_t> buffer(needed);
        EXPECT_TRUE(GetPrinterW(printer_, 2, buffer.data(), needed, &needed));
        return buffer;
    }
    static const PRINTER_INFO_2W* AsInfo2(const std::vector<uint8_t>& b)
    {
        return reinterpret_cast<const PRINTER_INFO_2W*>(b.data());
    }
    HANDLE printer_ = nullptr;
};

TEST_F(Spooler, OpenPrinterNames)
{
    struct Row
    {
        const char* what;
        const WCHAR* name;
        bool ok;
    } rows[] = {
        {"null", nullptr, false},
        {"empty", u"", false},
        {"unknown", u"QLM 6000", false},
        {"other case", u"qlm 5000", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        HANDLE handle = reinterpret_cast<HANDLE>(uintptr_t(kSentinel));
        SetLastError(kSentinel);
        BOOL ok = OpenPrinterW(const_cast<WCHAR*>(row.name), &handle, nullptr);
        EXPECT_EQ(row.ok, ok != FALSE);
        if (row.ok) {
            EXPECT_NE(nullptr, handle);
            EXPECT_EQ(kSentinel, GetLastError());
            EXPECT_TRUE(ClosePrinter(handle));
        } else {
            EXPECT_EQ(nullptr, handle);
            EXPECT_EQ(DWORD(ERROR_INVALID_PRINTER_NAME), GetLastError());
        }
    }
    SetLastError(kSentinel);
    EXPECT_FALSE(OpenPrinterW(const_cast<WCHAR*>(u"QLM 5000"), nullptr, nullptr));
    EXPECT_EQ(DWORD(ERROR_INVALID_PARAMETER), GetLastError());
}

TEST_F(Spooler, ClosePrinterAcceptsOnlyPrinterHandles)
{
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, u"Software\\X", 0, nullptr, 0,
                                             KEY_ALL_ACCESS, nullptr, &key, nullptr));
    for (HANDLE bad : {static_cast<HANDLE>(nullptr), static_cast<HANDLE>(key),
                       reinterpret_cast<HANDLE>(uintptr_t(0x4321))}) {
        SetLastError(kSentinel);
        EXPECT_FALSE(ClosePrinter(bad));
        EXPECT_EQ(DWORD(ERROR_INVALID_HANDLE), GetLastError());
    }
    EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(key));
    EXPECT_TRUE(ClosePrinter(printer_));
    EXPECT_FALSE(ClosePrinter(printer_));
    printer_ = nullptr;
}

TEST_F(Spooler, GetPrinterLevel2TwoCallsAndPacking)
{
    DWORD needed = kSentinel;
    SetLastError(kSentinel);
    ASSERT_FALSE(GetPrinterW(printer_, 2, nullptr, 0, &needed));
    EXPECT_EQ(DWORD(ERROR_INSUFFICIENT_BUFFER), GetLastError());

    // One byte short: refused and untouched.
    auto buffer = std::make_unique<uint64_t[]>(needed / 8 + 2);
    auto* bytes = reinterpret_cast<uint8_t*>(buffer.get());
    std::memset(bytes, kFill, needed + 8);
    DWORD again = 0;
    EXPECT_FALSE(GetPrinterW(printer_, 2, bytes, needed - 1, &again));
    EXPECT_EQ(needed, again);
    EXPECT_TRUE(AllFill(bytes, needed + 8));

    ASSERT_TRUE(GetPrinterW(printer_, 2, bytes, needed, &again));
    EXPECT_TRUE(AllFill(bytes + needed, 8)) << "nothing beyond the size reported";
    const auto* info = reinterpret_cast<const PRINTER_INFO_2W*>(bytes);
    const WCHAR* const* strings[] = {&info->pPrinterName, &info->pShareName,      &info->pPortName,
                                     &info->pDriverName,  &info->pComment,        &info->pLocation,
                                     &info->pSepFile,     &info->pPrintProcessor, &info->pDatatype,
                                     &info->pParameters};
    for (const WCHAR* const* s : strings) {
        ASSERT_NE(nullptr, *s);
        auto at = reinterpret_cast<const uint8_t*>(*s);
        EXPECT_GE(at, bytes + sizeof(PRINTER_INFO_2W));
        EXPECT_LT(at, bytes + needed);
    }
    EXPECT_EQ(nullptr, info->pServerName);
    EXPECT_EQ(u"QLM 5000", std::u16string(info->pPrinterName));
    EXPECT_EQ(u"", std::u16string(info->pShareName));
    EXPECT_EQ(u"IP_10.0.0.9", std::u16string(info->pPortName));
    EXPECT_EQ(u"QLM Driver", std::u16string(info->pDriverName));
    EXPECT_EQ(u"A comment", std::u16string(info->pComment));
    EXPECT_EQ(u"Room 4", std::u16string(info->pLocation));
    EXPECT_EQ(u"winprint", std::u16string(info->pPrintProcessor));
    EXPECT_EQ(u"RAW", std::u16string(info->pDatatype));
    EXPECT_EQ(u"", std::u16string(info->pParameters));
    EXPECT_EQ(DWORD(PRINTER_ATTRIBUTE_QUEUED | PRINTER_ATTRIBUTE_LOCAL), info->Attributes);
    EXPECT_EQ(1u, info->Priority);
    EXPECT_EQ(0u, info->DefaultPriority);
    EXPECT_EQ(0u, info->Status);
    EXPECT_EQ(0u, info->cJobs);

    // The record follows the structure, pointer-aligned, dmSize + dmDriverExtra bytes long.
    ASSERT_NE(nullptr, info->pDevMode);
    EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(info->pDevMode) % alignof(void*));
    EXPECT_EQ(bytes + sizeof(PRINTER_INFO_2W), reinterpret_cast<uint8_t*>(info->pDevMode));
    EXPECT_EQ(MakeDevMode(sizeof(DEVMODEW), 40), Bytes(info->pDevMode, sizeof(DEVMODEW) + 40));
}

TEST_F(Spooler, GetPrinterPacksStringsAtTheEndOfALargerBuffer)
{
    std::vector<uint8_t> buffer(4096, kFill);
    DWORD needed = 0;
    ASSERT_TRUE(GetPrinterW(printer_, 2, buffer.data(), DWORD(buffer.size()), &needed));
    const auto* info = AsInfo2(buffer);
    EXPECT_EQ(buffer.data() + buffer.size() - sizeof(u"QLM 5000"),
              reinterpret_cast<const uint8_t*>(info->pPrinterName));
}

TEST_F(Spooler, GetPrinterLevel1)
{
    DWORD needed = 0;
    ASSERT_FALSE(GetPrinterW(printer_, 1, nullptr, 0, &needed));
    std::vector<uint8_t> buffer(needed);
    ASSERT_TRUE(GetPrinterW(printer_, 1, buffer.data(), needed, &needed));
    const auto* info = reinterpret_cast<const PRINTER_INFO_1W*>(buffer.data());
    EXPECT_EQ(DWORD(PRINTER_ENUM_ICON8), info->Flags);
    EXPECT_EQ(u"QLM 5000,QLM Driver,Room 4", std::u16string(info->pDescription));
    EXPECT_EQ(u"QLM 5000", std::u16string(info->pName));
    EXPECT_EQ(u"A comment", std::u16string(info->pComment));
}

TEST_F(Spooler, GetPrinterErrors)
{
    uint8_t buffer[8];
    struct Row
    {
        const char* what;
        HANDLE handle;
        DWORD level;
        LPBYTE data;
        DWORD size;
        DWORD expected;
    } rows[] = {
        {"level 3", printer_, 3, nullptr, 0, ERROR_INVALID_LEVEL},
        {"level 0", printer_, 0, nullptr, 0, ERROR_INVALID_LEVEL},
        {"null buffer with a size", printer_, 2, nullptr, 100, ERROR_INVALID_USER_BUFFER},
        {"null handle", nullptr, 2, buffer, sizeof buffer, ERROR_INVALID_HANDLE},
        {"made-up handle", reinterpret_cast<HANDLE>(uintptr_t(0x888)), 2, buffer, sizeof buffer,
         ERROR_INVALID_HANDLE},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        std::memset(buffer, kFill, sizeof buffer);
        DWORD needed = kSentinel;
        SetLastError(kSentinel);
        EXPECT_FALSE(GetPrinterW(row.handle, row.level, row.data, row.size, &needed));
        EXPECT_EQ(row.expected, GetLastError());
        EXPECT_EQ(kSentinel, needed);
        EXPECT_TRUE(AllFill(buffer, sizeof buffer));
    }
}

TEST_F(Spooler, QueueWithoutRecordAndRemovedQueue)
{
    ASSERT_TRUE(host::AddPrinter(Printer(u"Bare")));
    HANDLE bare = nullptr;
    ASSERT_TRUE(OpenPrinterW(const_cast<WCHAR*>(u"BARE"), &bare, nullptr));
    DWORD needed = 0;
    ASSERT_FALSE(GetPrinterW(bare, 2, nullptr, 0, &needed));
    std::vector<uint8_t> buffer(needed);
    ASSERT_TRUE(GetPrinterW(bare, 2, buffer.data(), needed, &needed));
    EXPECT_EQ(nullptr, AsInfo2(buffer)->pDevMode);

    ASSERT_TRUE(host::RemovePrinter(u"Bare"));
    SetLastError(kSentinel);
    EXPECT_FALSE(GetPrinterW(bare, 2, buffer.data(), needed, &needed));
    EXPECT_EQ(DWORD(ERROR_INVALID_PRINTER_NAME), GetLastError());
    PRINTER_INFO_2W info{};
    EXPECT_FALSE(SetPrinterW(bare, 2, reinterpret_cast<LPBYTE>(&info), 0));
    EXPECT_EQ(DWORD(ERROR_INVALID_PRINTER_NAME), GetLastError());
    DWORD value = 0;
    EXPECT_EQ(DWORD(ERROR_INVALID_PRINTER_NAME),
              GetPrinterDataW(bare, const_cast<WCHAR*>(u"X"), nullptr,
                              reinterpret_cast<LPBYTE>(&value), 4, &needed));
    EXPECT_TRUE(ClosePrinter(bare));
}

TEST_F(Spooler, SetPrinterLevel2RoundTrip)
{
    std::vector<uint8_t> info = Info2();
    auto* p = reinterpret_cast<PRINTER_INFO_2W*>(info.data());
    std::vector<uint8_t> record = MakeDevMode(sizeof(DEVMODEW), 300, 7);
    p->pDevMode = reinterpret_cast<DEVMODEW*>(record.data());
    p->pComment = const_cast<WCHAR*>(u"New comment");
    p->pLocation = nullptr; // NULL keeps what is stored
    p->Attributes |= 0x1000;
    SetLastError(kSentinel);
    ASSERT_TRUE(SetPrinterW(printer_, 2, info.data(), 0));
    EXPECT_EQ(kSentinel, GetLastError());

    std::vector<uint8_t> back = Info2();
    const auto* q = AsInfo2(back);
    EXPECT_EQ(u"New comment", std::u16string(q->pComment));
    EXPECT_EQ(u"Room 4", std::u16string(q->pLocation));
    EXPECT_EQ(DWORD(PRINTER_ATTRIBUTE_QUEUED | PRINTER_ATTRIBUTE_LOCAL | 0x1000), q->Attributes);
    ASSERT_NE(nullptr, q->pDevMode);
    EXPECT_EQ(record, Bytes(q->pDevMode, record.size()));

    host::PrinterRecord stored;
    ASSERT_TRUE(host::GetPrinterRecord(u"QLM 5000", &stored));
    EXPECT_EQ(record, stored.devMode);
}

TEST_F(Spooler, SetPrinterRejectsBadInput)
{
    std::vector<uint8_t> info = Info2();
    auto* p = reinterpret_cast<PRINTER_INFO_2W*>(info.data());
    std::vector<uint8_t> tooShort = MakeDevMode(sizeof(DEVMODEW));
    reinterpret_cast<DEVMODEW*>(tooShort.data())->dmSize = 71; // cuts its own dmSize field
    std::vector<uint8_t> tooLong = MakeDevMode(sizeof(DEVMODEW));
    reinterpret_cast<DEVMODEW*>(tooLong.data())->dmDriverExtra = 0xFFFF;
    struct Row
    {
        const char* what;
        DWORD level;
        LPBYTE data;
        DWORD command;
        DEVMODEW* devMode;
        DWORD expected;
    } rows[] = {
        {"level 1", 1, info.data(), 0, nullptr, ERROR_INVALID_LEVEL},
        {"null information", 2, nullptr, 0, nullptr, ERROR_INVALID_PARAMETER},
        {"a command", 2, info.data(), 1, nullptr, ERROR_INVALID_PARAMETER},
        {"record cut short", 2, info.data(), 0, reinterpret_cast<DEVMODEW*>(tooShort.data()),
         ERROR_INVALID_PARAMETER},
        {"record beyond 64K", 2, info.data(), 0, reinterpret_cast<DEVMODEW*>(tooLong.data()),
         ERROR_INVALID_PARAMETER},
    };
    host::PrinterRecord before;
    ASSERT_TRUE(host::GetPrinterRecord(u"QLM 5000", &before));
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        p->pDevMode = row.devMode;
        p->pComment = const_cast<WCHAR*>(u"must not be stored");
        SetLastError(kSentinel);
        EXPECT_FALSE(SetPrinterW(printer_, row.level, row.data, row.command));
        EXPECT_EQ(row.expected, GetLastError());
        host::PrinterRecord after;
        ASSERT_TRUE(host::GetPrinterRecord(u"QLM 5000", &after));
        EXPECT_EQ(before.comment, after.comment);
        EXPECT_EQ(before.devMode, after.devMode);
    }
}

TEST_F(Spooler, SetPrinterRenamesAndChangesPort)
{
    ASSERT_TRUE(host::AddPrinter(Printer(u"Other")));
    DWORD one = 1;
    ASSERT_EQ(ERROR_SUCCESS, SetPrinterDataW(printer_, const_cast<WCHAR*>(u"Tab"), REG_DWORD,
                                             reinterpret_cast<LPBYTE>(&one), 4));
    std::vector<uint8_t> info = Info2();
    auto* p = reinterpret_cast<PRINTER_INFO_2W*>(info.data());

    p->pPrinterName = const_cast<WCHAR*>(u"OTHER");
    EXPECT_FALSE(SetPrinterW(printer_, 2, info.data(), 0));
    EXPECT_EQ(DWORD(ERROR_PRINTER_ALREADY_EXISTS), GetLastError());
    p->pPrinterName = const_cast<WCHAR*>(u"QLM 5000");
    p->pPortName = const_cast<WCHAR*>(u"NOPORT:");
    EXPECT_FALSE(SetPrinterW(printer_, 2, info.data(), 0));
    EXPECT_EQ(DWORD(ERROR_UNKNOWN_PORT), GetLastError());

    ASSERT_TRUE(host::AddPort({u"LPT1:", u"Local Port", u"Local Port"}));
    p->pPrinterName = const_cast<WCHAR*>(u"QLM 5100");
    p->pPortName = const_cast<WCHAR*>(u"lpt1:");
    ASSERT_TRUE(SetPrinterW(printer_, 2, info.data(), 0));
    EXPECT_FALSE(host::GetPrinterRecord(u"QLM 5000", nullptr));
    host::PrinterRecord renamed;
    ASSERT_TRUE(host::GetPrinterRecord(u"qlm 5100", &renamed));
    EXPECT_EQ(u"QLM 5100", renamed.name);
    EXPECT_EQ(u"lpt1:", renamed.portName);
    // The handle and the printer data follow the queue.
    EXPECT_EQ(u"QLM 5100", std::u16string(AsInfo2(Info2())->pPrinterName));
    host::DataValue tab;
    EXPECT_TRUE(host::GetPrinterData(u"QLM 5100", u"PrinterDriverData", u"Tab", &tab));
}

// GetPrinterDataW/SetPrinterDataW work on the key "PrinterDriverData"; the Ex variants on any.
struct DataApi
{
    const char* name;
    DWORD (*get)(HANDLE, const WCHAR*, LPDWORD, LPBYTE, DWORD, LPDWORD);
    DWORD (*set)(HANDLE, const WCHAR*, DWORD, LPBYTE, DWORD);
    const char16_t* key; // where the value lands
};

const DataApi kDataApis[] = {
    {"plain",
     [](HANDLE h, const WCHAR* n, LPDWORD t, LPBYTE d, DWORD s, LPDWORD c) {
         return GetPrinterDataW(h, const_cast<WCHAR*>(n), t, d, s, c);
     },
     [](HANDLE h, const WCHAR* n, DWORD t, LPBYTE d, DWORD s) {
         return SetPrinterDataW(h, const_cast<WCHAR*>(n), t, d, s);
     },
     u"PrinterDriverData"},
    {"Ex",
     [](HANDLE h, const WCHAR* n, LPDWORD t, LPBYTE d, DWORD s, LPDWORD c) {
         return GetPrinterDataExW(h, u"DebugSettings", n, t, d, s, c);
     },
     [](HANDLE h, const WCHAR* n, DWORD t, LPBYTE d, DWORD s) {
         return SetPrinterDataExW(h, u"DebugSettings", n, t, d, s);
     },
     u"DebugSettings"},
};

TEST_F(Spooler, PrinterDataCodes)
{
    for (const auto& api : kDataApis) {
        SCOPED_TRACE(api.name);
        uint8_t buffer[16];
        std::memset(buffer, kFill, sizeof buffer);
        DWORD type = kSentinel, needed = kSentinel;
        SetLastError(kSentinel);
        EXPECT_EQ(DWORD(ERROR_FILE_NOT_FOUND),
                  api.get(printer_, u"Value", &type, buffer, sizeof buffer, &needed));
        EXPECT_EQ(kSentinel, type);

        uint8_t data[6] = {1, 2, 3, 4, 5, 6};
        ASSERT_EQ(DWORD(ERROR_SUCCESS), api.set(printer_, u"Value", REG_BINARY, data, 6));
        // First call without a buffer: ERROR_MORE_DATA and the size.
        EXPECT_EQ(DWORD(ERROR_MORE_DATA), api.get(printer_, u"VALUE", &type, nullptr, 0, &needed));
        EXPECT_EQ(6u, needed);
        EXPECT_EQ(DWORD(ERROR_MORE_DATA), api.get(printer_, u"Value", &type, buffer, 5, &needed));
        EXPECT_EQ(6u, needed);
        EXPECT_TRUE(AllFill(buffer, sizeof buffer));
        type = kSentinel;
        ASSERT_EQ(DWORD(ERROR_SUCCESS),
                  api.get(printer_, u"value", &type, buffer, sizeof buffer, &needed));
        EXPECT_EQ(DWORD(REG_BINARY), type);
        EXPECT_EQ(6u, needed);
        EXPECT_EQ(Bytes(data, 6), Bytes(buffer, 6));
        EXPECT_TRUE(AllFill(buffer + 6, sizeof buffer - 6));
        EXPECT_EQ(DWORD(ERROR_SUCCESS), api.get(printer_, u"Value", nullptr, buffer, 6, &needed));

        // An empty value from NULL data.
        ASSERT_EQ(DWORD(ERROR_SUCCESS), api.set(printer_, u"Empty", REG_SZ, nullptr, 0));
        EXPECT_EQ(DWORD(ERROR_SUCCESS), api.get(printer_, u"Empty", &type, nullptr, 0, &needed));
        EXPECT_EQ(0u, needed);
        EXPECT_EQ(DWORD(REG_SZ), type);

        EXPECT_EQ(DWORD(ERROR_INVALID_HANDLE),
                  api.get(nullptr, u"Value", &type, buffer, sizeof buffer, &needed));
        EXPECT_EQ(DWORD(ERROR_INVALID_HANDLE), api.set(nullptr, u"Value", REG_BINARY, data, 6));
        EXPECT_EQ(kSentinel, GetLastError()) << "these report through their result only";

        host::DataValue stored;
        ASSERT_TRUE(host::GetPrinterData(u"QLM 5000", api.key, u"Value", &stored));
        EXPECT_EQ(Bytes(data, 6), stored.data);
    }
}

TEST_F(Spooler, PrinterDataKeysCompareWithoutCase)
{
    DWORD seven = 7, value = 0, needed = 0;
    ASSERT_EQ(DWORD(ERROR_SUCCESS),
              SetPrinterDataW(printer_, const_cast<WCHAR*>(u"LastTab"), REG_DWORD,
                              reinterpret_cast<LPBYTE>(&seven), 4));
    EXPECT_EQ(DWORD(ERROR_SUCCESS),
              GetPrinterDataExW(printer_, u"printerdriverdata", u"lasttab", nullptr,
                                reinterpret_cast<LPBYTE>(&value), 4, &needed));
    EXPECT_EQ(7u, value);
    EXPECT_EQ(DWORD(ERROR_FILE_NOT_FOUND),
              GetPrinterDataExW(printer_, u"DebugSettings", u"LastTab", nullptr,
                                reinterpret_cast<LPBYTE>(&value), 4, &needed));
    EXPECT_EQ(DWORD(ERROR_INVALID_PARAMETER),
              GetPrinterDataExW(printer_, u"", u"LastTab", nullptr,
                                reinterpret_cast<LPBYTE>(&value), 4, &needed));
    EXPECT_EQ(DWORD(ERROR_INVALID_PARAMETER),
              SetPrinterDataExW(printer_, nullptr, u"LastTab", REG_DWORD,
                                reinterpret_cast<LPBYTE>(&seven), 4));
}

// Look-ups fold names four characters at a time; every length and boundary must agree with
// folding one character at a time, ASCII letters only, as SQLite's NOCASE does.
TEST_F(Spooler, PrinterDataNamesFoldOnlyAsciiLetters)
{
    struct Row
    {
        const char16_t* stored;
        const char16_t* asked;
        bool found;
    } rows[] = {
        {u"Z", u"z", true},
        {u"aB", u"Ab", true},
        {u"ABC", u"abc", true},
        {u"ABCD", u"abcd", true},
        {u"AbCdE", u"aBcDe", true}, // the last word overlaps the first
        {u"ABCDEFGH", u"abcdefgh", true},
        {u"g_bLogAllEscapes", u"G_BLOGALLESCAPES", true},
        {u"ABCDEFGHI", u"abcdefghI", true},
        {u"@", u"`", false}, // the neighbours of 'A' and 'Z' are no letters
        {u"[", u"{", false},
        {u"\u00C4", u"\u00E4", false}, // nor is anything beyond ASCII
        {u"\u8041", u"\u8061", false}, // a high character whose low bits look like 'A'
        {u"ABCDEFGH", u"EFGHABCD", false},
        {u"abc", u"abcd", false},
        {u"abcd", u"abc", false},
    };
    DWORD index = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(host::Utf16ToUtf8(row.stored) + " / " + host::Utf16ToUtf8(row.asked));
        std::u16string key = u"Case" + host::Utf8ToUtf16(std::to_string(++index));
        ASSERT_EQ(DWORD(ERROR_SUCCESS),
                  SetPrinterDataExW(printer_, key.c_str(), row.stored, REG_DWORD,
                                    reinterpret_cast<LPBYTE>(&index), 4));
        std::u16string upperKey = u"CASE" + key.substr(4);
        DWORD value = 0, needed = 0;
        EXPECT_EQ(DWORD(row.found ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND),
                  GetPrinterDataExW(printer_, upperKey.c_str(), row.asked, nullptr,
                                    reinterpret_cast<LPBYTE>(&value), 4, &needed));
        EXPECT_EQ(row.found ? index : 0u, value);
        EXPECT_EQ(row.found, host::GetPrinterData(u"QLM 5000", upperKey, row.asked, nullptr));
    }
    // Listed by key and name without case, whatever the order of the look-up structure.
    auto fold = [](std::u16string text) {
        for (auto& c : text) {
            c = (c >= u'A' && c <= u'Z') ? char16_t(c + 32) : c;
        }
        return text;
    };
    std::vector<std::pair<std::u16string, std::u16string>> listed;
    for (const auto& v : host::ListPrinterData(u"QLM 5000")) {
        listed.emplace_back(fold(v.key), fold(v.name));
    }
    EXPECT_EQ(std::size(rows), listed.size());
    EXPECT_TRUE(std::is_sorted(listed.begin(), listed.end()));
}

// All values of a key in one answer: records first, each name with its data behind them, a
// name right after data of any length; the key named without case. Codes come back as the
// result, the last error stays.
TEST_F(Spooler, EnumPrinterDataExGivesAKeysValuesInOneBuffer)
{
    const uint8_t odd[3] = {7, 8, 9};
    const DWORD word = 42;
    SetPrinterDataW(printer_, const_cast<WCHAR*>(u"Odd"), REG_BINARY, const_cast<LPBYTE>(odd), 3);
    SetPrinterDataW(printer_, const_cast<WCHAR*>(u"Word"), REG_DWORD,
                    reinterpret_cast<LPBYTE>(const_cast<DWORD*>(&word)), 4);
    SetPrinterDataW(printer_, const_cast<WCHAR*>(u"Empty"), REG_SZ, nullptr, 0);
    const DWORD expected = 3 * sizeof(PRINTER_ENUM_VALUESW) + 8 + 3 + 10 + 4 + 12;

    SetLastError(kSentinel);
    DWORD needed = 0, count = 0;
    uint8_t none[1] = {kFill};
    EXPECT_EQ(DWORD(ERROR_MORE_DATA),
              EnumPrinterDataExW(printer_, u"printerdriverdata", nullptr, 0, &needed, &count));
    EXPECT_EQ(expected, needed);
    std::vector<uint8_t> buffer(needed + 8, kFill);
    EXPECT_EQ(DWORD(ERROR_MORE_DATA),
              EnumPrinterDataExW(printer_, u"PrinterDriverData", buffer.data(), needed - 1, &needed,
                                 &count));
    EXPECT_TRUE(AllFill(buffer.data(), buffer.size())) << "too small a buffer is not written";
    ASSERT_EQ(DWORD(ERROR_SUCCESS), EnumPrinterDataExW(printer_, u"PrinterDriverData",
                                                       buffer.data(), needed, &needed, &count));
    EXPECT_EQ(expected, needed);
    ASSERT_EQ(3u, count);
    EXPECT_TRUE(AllFill(buffer.data() + expected, 8));
    std::map<std::u16string, std::pair<DWORD, std::vector<uint8_t>>> values;
    const auto* records = reinterpret_cast<const PRINTER_ENUM_VALUESW*>(buffer.data());
    for (DWORD i = 0; i < count; i++) {
        std::u16string name(records[i].cbValueName / 2 - 1, u'\0');
        std::memcpy(name.data(), records[i].pValueName, name.size() * 2);
        values[name] = {records[i].dwType, Bytes(records[i].pData, records[i].cbData)};
    }
    EXPECT_EQ((std::pair<DWORD, std::vector<uint8_t>>{REG_BINARY, Bytes(odd, 3)}), values[u"Odd"]);
    EXPECT_EQ((std::pair<DWORD, std::vector<uint8_t>>{REG_DWORD, Bytes(&word, 4)}),
              values[u"Word"]);
    EXPECT_EQ((std::pair<DWORD, std::vector<uint8_t>>{REG_SZ, Bytes(nullptr, 0)}),
              values[u"Empty"]);

    EXPECT_EQ(DWORD(ERROR_FILE_NOT_FOUND),
              EnumPrinterDataExW(printer_, u"DebugSettings", none, 1, &needed, &count));
    EXPECT_EQ(DWORD(ERROR_INVALID_PARAMETER),
              EnumPrinterDataExW(printer_, u"", none, 1, &needed, &count));
    EXPECT_EQ(DWORD(ERROR_INVALID_HANDLE),
              EnumPrinterDataExW(nullptr, u"PrinterDriverData", none, 1, &needed, &count));
    EXPECT_EQ(kSentinel, GetLastError());
}

TEST_F(Spooler, EnumPortsLevel2)
{
    ASSERT_TRUE(host::AddPort({u"IP_10.0.0.9", u"Standard TCP/IP Port", u"Standard TCP/IP Port"}));
    ASSERT_TRUE(host::AddPort({u"COM1:", u"Local Port", u"Local Port"}));
    DWORD needed = kSentinel, returned = kSentinel;
    SetLastError(kSentinel);
    ASSERT_FALSE(EnumPortsW(nullptr, 2, nullptr, 0, &needed, &returned));
    EXPECT_EQ(DWORD(ERROR_INSUFFICIENT_BUFFER), GetLastError());
    EXPECT_EQ(0u, returned);

    std::vector<uint8_t> buffer(needed + 8, kFill);
    returned = kSentinel;
    EXPECT_FALSE(
        EnumPortsW(const_cast<WCHAR*>(u""), 2, buffer.data(), needed - 1, &needed, &returned));
    EXPECT_EQ(0u, returned);
    EXPECT_TRUE(AllFill(buffer.data(), buffer.size()));

    ASSERT_TRUE(EnumPortsW(nullptr, 2, buffer.data(), needed, &needed, &returned));
    ASSERT_EQ(2u, returned);
    EXPECT_TRUE(AllFill(buffer.data() + needed, 8));
    const auto* ports = reinterpret_cast<const PORT_INFO_2W*>(buffer.data());
    EXPECT_EQ(u"COM1:", std::u16string(ports[0].pPortName)); // name order
    EXPECT_EQ(u"Local Port", std::u16string(ports[0].pMonitorName));
    EXPECT_EQ(u"IP_10.0.0.9", std::u16string(ports[1].pPortName));
    EXPECT_EQ(u"Standard TCP/IP Port", std::u16string(ports[1].pMonitorName));
    EXPECT_EQ(u"Standard TCP/IP Port", std::u16string(ports[1].pDescription));
    for (DWORD i = 0; i < returned; ++i) {
        EXPECT_EQ(DWORD(PORT_TYPE_WRITE), ports[i].fPortType);
        EXPECT_EQ(0u, ports[i].Reserved);
    }

    ASSERT_TRUE(EnumPortsW(nullptr, 1, buffer.data(), DWORD(buffer.size()), &needed, &returned));
    EXPECT_EQ(u"COM1:", std::u16string(reinterpret_cast<PORT_INFO_1W*>(buffer.data())->pName));
    SetLastError(kSentinel);
    EXPECT_FALSE(EnumPortsW(nullptr, 3, buffer.data(), DWORD(buffer.size()), &needed, &returned));
    EXPECT_EQ(DWORD(ERROR_INVALID_LEVEL), GetLastError());
}

TEST_F(Spooler, DriverDirectory)
{
    const std::u16string x64 = u"C:\\Windows\\System32\\spool\\drivers\\x64";
    struct Row
    {
        const char* what;
        const WCHAR* environment;
        DWORD level;
        DWORD expectedError; // 0: success
        std::u16string expected;
    } rows[] = {
        {"own environment", nullptr, 1, 0, x64},
        {"x64", u"Windows x64", 1, 0, x64},
        {"x64 in another case", u"windows X64", 1, 0, x64},
        {"x86", u"Windows NT x86", 1, 0, u"C:\\Windows\\System32\\spool\\drivers\\W32X86"},
        {"unknown environment", u"Windows 95", 1, ERROR_INVALID_ENVIRONMENT, u""},
        {"level 2", nullptr, 2, ERROR_INVALID_LEVEL, u""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        uint8_t buffer[520];
        std::memset(buffer, kFill, sizeof buffer);
        DWORD needed = kSentinel;
        SetLastError(kSentinel);
        BOOL ok = GetPrinterDriverDirectoryW(nullptr, const_cast<WCHAR*>(row.environment),
                                             row.level, buffer, sizeof buffer, &needed);
        if (row.expectedError) {
            EXPECT_FALSE(ok);
            EXPECT_EQ(row.expectedError, GetLastError());
            EXPECT_TRUE(AllFill(buffer, sizeof buffer));
            continue;
        }
        ASSERT_TRUE(ok);
        EXPECT_EQ(DWORD((row.expected.size() + 1) * sizeof(WCHAR)), needed) << "bytes, with NUL";
        EXPECT_EQ(row.expected, std::u16string(reinterpret_cast<WCHAR*>(buffer)));
        EXPECT_TRUE(AllFill(buffer + needed, sizeof buffer - needed));
    }

    // Too small by one byte: the size needed, in bytes.
    uint8_t small[80];
    std::memset(small, kFill, sizeof small);
    DWORD needed = 0;
    DWORD exact = DWORD((x64.size() + 1) * sizeof(WCHAR));
    EXPECT_FALSE(GetPrinterDriverDirectoryW(nullptr, nullptr, 1, small, exact - 1, &needed));
    EXPECT_EQ(DWORD(ERROR_INSUFFICIENT_BUFFER), GetLastError());
    EXPECT_EQ(exact, needed);
    EXPECT_TRUE(AllFill(small, sizeof small));

    EXPECT_EQ(x64, host::DriverDirectory());
    EXPECT_EQ(host::HomeDirectory() + "/Windows/System32/spool/drivers/x64/3/QLMRes.DLL",
              host::MapWindowsPath(host::DriverDirectory() + u"\\3\\QLMRes.DLL"));
}

} // namespace
