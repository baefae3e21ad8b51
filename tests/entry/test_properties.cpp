// Settings without a sheet: the record's size and default through DrvDocumentProperties and
// DrvDocumentPropertySheets, and conversions through DrvConvertDevMode.
#include "support/devmodefields.h"
#include "support/hostprinter.h"
#include "support/tracecapture.h"

#include "driver/devmode/tvodm.h"
#include "driver/entry/tvouidrv.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

// A buffer of one record and a tail that shows any write past it.
struct RecordBuffer
{
    std::vector<uint8_t> bytes = std::vector<uint8_t>(sizeof(DEVMODEEX) + 64, 0x5A);
    DEVMODEW* dm() { return reinterpret_cast<DEVMODEW*>(bytes.data()); }
    DEVMODEEX* dmx() { return reinterpret_cast<DEVMODEEX*>(bytes.data()); }
    bool untouched() const
    {
        for (uint8_t b : bytes)
            if (b != 0x5A)
                return false;
        return true;
    }
    bool tailIntact() const
    {
        for (size_t i = sizeof(DEVMODEEX); i < bytes.size(); i++)
            if (bytes[i] != 0x5A)
                return false;
        return true;
    }
};

bool HasStoredRecord(const std::u16string& name)
{
    host::PrinterRecord record;
    return host::GetPrinterRecord(name, &record) && !record.devMode.empty();
}

TEST(DrvDocumentProperties, ModeZeroGivesTheSizeAfterReadingTheQueue)
{
    HostPrinter printer(u"Plan");
    TVONTUIDriver driver;
    RecordBuffer out;
    EXPECT_EQ(13484, driver.DrvDocumentProperties(nullptr, printer.handle(), nullptr, out.dm(),
                                                  nullptr, 0));
    EXPECT_TRUE(out.untouched());
    EXPECT_TRUE(HasStoredRecord(u"Plan")) << "the stored record is read, and made, first";
}

TEST(DrvDocumentProperties, OutputBufferGetsACompleteRecordWithOrWithoutPrompt)
{
    HostPrinter printer(u"Plan");
    TVONTUIDriver driver;
    for (DWORD fMode : {DWORD(DM_OUT_BUFFER), DWORD(DM_OUT_BUFFER | DM_IN_PROMPT)}) {
        RecordBuffer out;
        EXPECT_EQ(1, driver.DrvDocumentProperties(nullptr, printer.handle(), nullptr, out.dm(),
                                                  nullptr, fMode))
            << fMode;
        EXPECT_TRUE(IsOwnCurrentDevmode(out.dm())) << fMode;
        EXPECT_EQ(400, out.dm()->dmPrintQuality) << fMode;
        EXPECT_TRUE(out.tailIntact()) << fMode;
    }
}

TEST(DrvDocumentProperties, RawInputWinsOverTheMerge)
{
    HostPrinter printer(u"Plan");
    TVONTUIDriver driver;
    RecordBuffer in, out;
    TVODevMode defaults;
    memcpy(in.bytes.data(), defaults.m_lpDM, sizeof(DEVMODEEX));
    in.dm()->dmPaperSize = DMPAPER_A4; // the merge would make this 274
    in.dm()->dmCopies = 9;
    EXPECT_EQ(1, driver.DrvDocumentProperties(nullptr, printer.handle(), const_cast<PWSTR>(u"Plan"),
                                              out.dm(), in.dm(), DM_IN_BUFFER | DM_OUT_BUFFER));
    EXPECT_EQ(DMPAPER_A4, out.dm()->dmPaperSize);
    EXPECT_EQ(9, out.dm()->dmCopies);
}

TEST(DrvDocumentProperties, ShortInputIsReadOnlyAsFarAsItDeclares)
{
    HostPrinter printer(u"Plan");
    TVONTUIDriver driver;
    // A bare public part in a buffer of exactly its size: a read past it is a sanitizer error.
    std::vector<uint8_t> in(sizeof(DEVMODEW), 0);
    DEVMODEW* pdm = reinterpret_cast<DEVMODEW*>(in.data());
    pdm->dmSize = sizeof(DEVMODEW);
    pdm->dmSpecVersion = 0x0401;
    pdm->dmCopies = 2;
    RecordBuffer out;
    EXPECT_EQ(1, driver.DrvDocumentProperties(nullptr, printer.handle(), const_cast<PWSTR>(u"Plan"),
                                              out.dm(), pdm, DM_IN_BUFFER | DM_OUT_BUFFER));
    EXPECT_EQ(2, out.dm()->dmCopies);
    EXPECT_EQ(0, out.dm()->dmDriverExtra) << "the raw public part is what the caller gave";
    EXPECT_EQ(0x0C05u, out.dmx()->dmxDevmodeVersion) << "the private part is the merged one";
}

DOCUMENTPROPERTYHEADER Header(HANDLE hPrinter, DEVMODEW* in, DEVMODEW* out, DWORD fMode)
{
    DOCUMENTPROPERTYHEADER header{};
    header.cbSize = sizeof(header);
    header.hPrinter = hPrinter;
    header.pszPrinterName = const_cast<LPWSTR>(u"Plan");
    header.pdmIn = in;
    header.pdmOut = out;
    header.cbOut = 0;
    header.fMode = fMode;
    return header;
}

TEST(DrvDocumentPropertySheets, WithoutSheetAnswersSizeOrDefault)
{
    HostPrinter printer(u"Plan", u"Tarvo 3320 Wide Format");
    TVONTUIDriver driver;
    struct Row
    {
        const char* name;
        DWORD fMode;
        bool bOutput;
        LONG result;
        bool bWritten;
    } rows[] = {
        {"size only", 0, true, 13484, false},
        {"no output buffer", DM_OUT_BUFFER, false, 13484, false},
        {"input alone writes nothing", DM_IN_BUFFER, true, 1, false},
        {"default", DM_OUT_DEFAULT, true, 1, true},
        {"buffer", DM_OUT_BUFFER, true, 1, true},
    };
    for (const Row& row : rows) {
        RecordBuffer out;
        DOCUMENTPROPERTYHEADER header =
            Header(printer.handle(), nullptr, row.bOutput ? out.dm() : nullptr, row.fMode);
        EXPECT_EQ(row.result,
                  driver.DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header)))
            << row.name;
        EXPECT_EQ(13484u, header.cbOut) << row.name;
        EXPECT_EQ(!row.bWritten, out.untouched()) << row.name;
        if (row.bWritten) {
            EXPECT_TRUE(IsOwnCurrentDevmode(out.dm())) << row.name;
            EXPECT_EQ("Plan", FieldText(out.dmx(), "dmDeviceName")) << row.name;
            EXPECT_TRUE(out.tailIntact()) << row.name;
        }
    }
}

TEST(DrvDocumentPropertySheets, DefaultMergesTheInputWithTheDriversModel)
{
    HostPrinter printer(u"Plan", u"Tarvo 3320 Wide Format");
    TVONTUIDriver driver;
    RecordBuffer in, out;
    TVODevMode defaults;
    memcpy(in.bytes.data(), defaults.m_lpDM, sizeof(DEVMODEEX));
    in.dm()->dmPrintQuality = -4; // a platform quality token: the model decides
    in.dm()->dmPaperSize = DMPAPER_A4;
    DOCUMENTPROPERTYHEADER header =
        Header(printer.handle(), in.dm(), out.dm(), DM_IN_BUFFER | DM_OUT_BUFFER);
    EXPECT_EQ(1, driver.DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header)));
    EXPECT_EQ(600, out.dm()->dmPrintQuality);
    EXPECT_EQ(274, out.dm()->dmPaperSize);
}

TEST(DrvDocumentPropertySheets, NullHeaderIsRefusedAndNoSheetReadsNoSwitches)
{
    SwitchGuard guard;
    HostPrinter printer(u"Plan");
    TVONTUIDriver driver;
    EXPECT_EQ(-1, driver.DrvDocumentPropertySheets(nullptr, 0));

    DWORD on = 1;
    ASSERT_EQ(static_cast<DWORD>(ERROR_SUCCESS),
              SetPrinterDataExW(printer.handle(), TEXT("DebugSettings"), TEXT("DBG_AssertMsgBox"),
                                REG_DWORD, reinterpret_cast<LPBYTE>(&on), sizeof(on)));
    g_bAssertMsgBox = 0;
    DOCUMENTPROPERTYHEADER header = Header(printer.handle(), nullptr, nullptr, 0);
    EXPECT_EQ(13484, driver.DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header)));
    EXPECT_EQ(0, g_bAssertMsgBox) << "the size question reads no switches";

    // A sheet reason does read them. INIT starts from empty user data, whatever was there.
    PROPSHEETUI_INFO info{};
    info.cbSize = sizeof(info);
    info.Reason = PROPSHEETUI_REASON_INIT;
    info.lParamInit = reinterpret_cast<LPARAM>(&header);
    info.UserData = 0x1234;
    EXPECT_EQ(1, driver.DrvDocumentPropertySheets(&info, reinterpret_cast<LPARAM>(&header)));
    EXPECT_EQ(1, g_bAssertMsgBox);
    EXPECT_NE(0x1234u, info.UserData);
    g_bAssertMsgBox = 0;
    info.Reason = PROPSHEETUI_REASON_DESTROY;
    EXPECT_EQ(1, driver.DrvDocumentPropertySheets(&info, 1));
    info.Reason = PROPSHEETUI_REASON_GET_INFO_HEADER;
    EXPECT_EQ(0, driver.DrvDocumentPropertySheets(&info, reinterpret_cast<LPARAM>(&header)));
}

TEST(DrvDevicePropertySheets, NullSheetIsRefusedAndOtherReasonsAnswerZero)
{
    TVONTUIDriver driver;
    TraceCapture trace;
    EXPECT_EQ(-1, driver.DrvDevicePropertySheets(nullptr, 1));
    PROPSHEETUI_INFO info{};
    info.cbSize = sizeof(info);
    info.Reason = PROPSHEETUI_REASON_GET_ICON;
    info.lParamInit = 0x100; // no header: never read
    EXPECT_EQ(0, driver.DrvDevicePropertySheets(&info, 0x100));
}

TEST(DrvConvertDevMode, DefaultNeedsRoomThenGivesTheQueuesRecord)
{
    HostPrinter printer(u"Plan 3320A");
    TVONTUIDriver driver;
    RecordBuffer out;
    LONG cbNeeded = 100;
    SetLastError(0xDEADBEEF);
    EXPECT_FALSE(driver.DrvConvertDevMode(const_cast<LPWSTR>(u"Plan 3320A"), nullptr, out.dm(),
                                          &cbNeeded, CDM_DRIVER_DEFAULT));
    EXPECT_EQ(13484, cbNeeded);
    EXPECT_EQ(static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER), GetLastError());
    EXPECT_TRUE(out.untouched());

    EXPECT_TRUE(driver.DrvConvertDevMode(const_cast<LPWSTR>(u"Plan 3320A"), nullptr, out.dm(),
                                         &cbNeeded, CDM_DRIVER_DEFAULT));
    EXPECT_TRUE(IsOwnCurrentDevmode(out.dm()));
    EXPECT_EQ(600, out.dm()->dmPrintQuality) << "the queue's name holds 3320A";
    EXPECT_EQ("Plan 3320A", FieldText(out.dmx(), "dmDeviceName"));
    EXPECT_TRUE(out.tailIntact());
}

TEST(DrvConvertDevMode, ConvertsAndRefusesAsTheCommonRoutineSays)
{
    TVONTUIDriver driver;
    TVODevMode defaults;
    std::vector<uint8_t> older(kDEVMODEEX1_SIZE);
    memcpy(older.data(), defaults.m_lpDM, kDEVMODEEX1_SIZE);
    reinterpret_cast<DEVMODEW*>(older.data())->dmDriverExtra = kDEVMODEEX1_DRIVER_EXTRA;
    reinterpret_cast<DEVMODEW*>(older.data())->dmCopies = 8;
    RecordBuffer out;
    memcpy(out.bytes.data(), defaults.m_lpDM, sizeof(DEVMODEEX));
    LONG cbNeeded = 13484;
    EXPECT_TRUE(driver.DrvConvertDevMode(nullptr, reinterpret_cast<DEVMODEW*>(older.data()),
                                         out.dm(), &cbNeeded, CDM_CONVERT));
    EXPECT_EQ(13484, cbNeeded);
    EXPECT_EQ(8, out.dm()->dmCopies);

    SetLastError(0);
    EXPECT_FALSE(driver.DrvConvertDevMode(nullptr, nullptr, out.dm(), &cbNeeded, CDM_CONVERT));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), GetLastError());
}

TEST(DrvConvertDevMode, UnknownModeIsReportedOnceAndRefused)
{
    SwitchGuard guard;
    g_bTraceASSERT = 1;
    TVONTUIDriver driver;
    TraceCapture trace;
    RecordBuffer out;
    LONG cbNeeded = 100;
    EXPECT_FALSE(driver.DrvConvertDevMode(nullptr, nullptr, out.dm(), &cbNeeded, 3));
    EXPECT_EQ(13484, cbNeeded) << "a short size is raised first";
    EXPECT_FALSE(driver.DrvConvertDevMode(nullptr, nullptr, out.dm(), &cbNeeded, 3));
    EXPECT_FALSE(driver.DrvConvertDevMode(nullptr, nullptr, out.dm(), &cbNeeded, 3));
    size_t reports = 0;
    for (const std::string& line : trace.lines())
        if (line.find("unhandled option") != std::string::npos)
            reports++;
    EXPECT_EQ(1u, reports);
    EXPECT_TRUE(out.untouched());
}

} // namespace
