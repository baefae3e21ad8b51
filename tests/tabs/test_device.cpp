// The device settings tab and its dialogs with input that is not what they expect: finisher
// files that are cut, oversized or no text, taken through the tab's file dialog; a record whose
// roll count lies beyond the roll dialog's rows; and accounting made compulsory, which only a
// caller that asks for it meets. Each record lies in a buffer of its own size, so the
// sanitizers see any access past it.
#include "driver/config/tvoconfg.h"
#include "driver/devmode/tvodm.h"
#include "driver/dialogs/tvoroll.h"
#include "driver/entry/tvouidrv.h"
#include "driver/tabs/tvodset.h"
#include "resources/qlmres.h"
#include "support/hostprinter.h"

#include "platform/host/hostsheet.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {

LONG CALLBACK DocumentSheet(PPROPSHEETUI_INFO pInfo, LPARAM lParam)
{
    TVONTUIDriver driver;
    return driver.DrvDocumentPropertySheets(pInfo, lParam);
}

// The document sheet of printer, run by script; the caller's record comes back.
std::unique_ptr<DEVMODEEX> RunDocumentSheet(HostPrinter& printer, const std::string& script)
{
    auto out = std::make_unique<DEVMODEEX>();
    std::string error;
    EXPECT_TRUE(host::SetUserScript(script, &error)) << error;
    DOCUMENTPROPERTYHEADER header = {};
    header.cbSize = sizeof(header);
    header.hPrinter = printer.handle();
    header.pszPrinterName = const_cast<LPWSTR>(printer.name().c_str());
    header.pdmOut = &out->dmPublic;
    header.cbOut = sizeof(DEVMODEEX);
    header.fMode = DM_IN_PROMPT | DM_OUT_BUFFER;
    DWORD result = 0;
    CommonPropertySheetUIW(nullptr, DocumentSheet, reinterpret_cast<LPARAM>(&header), &result);
    for (const std::string& failure : host::UserScriptFailures())
        ADD_FAILURE() << failure;
    host::ClearUserScript();
    EXPECT_EQ(DWORD(CPSUI_OK), result);
    return out;
}

std::string WriteFile(const std::string& name, const std::string& bytes)
{
    const std::string path = (std::filesystem::path(testing::TempDir()) / name).string();
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

std::string ReadFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

std::u16string Model(const DEVMODEEX& dm)
{
    const WCHAR* p = dm.dmxFinisher.Model;
    size_t n = 0;
    while (n < std::size(dm.dmxFinisher.Model) && p[n])
        ++n;
    return std::u16string(p, p + n);
}

} // namespace

// Whatever the file holds, the tab takes what the reader makes of it: a description from what
// the file has before its cut, at most the block's room from an oversized one, and nothing at
// all from bytes that are no text. Nothing beyond the finisher block and the finishing choices
// changes.
TEST(DeviceTab, FinisherFilesOfAnyShapeChangeOnlyTheFinisher)
{
    const std::string good = ReadFile(QLM_TEST_SOURCE_DIR "/tests/fixtures/finisher/good.ini");
    std::string binary;
    for (int i = 0; i < 4096; ++i)
        binary += static_cast<char>((i * 151 + 7) & 0xFF);
    const struct
    {
        const char* what;
        std::string path;
        DWORD type;
        std::u16string model;
        DWORD programs;
    } kCases[] = {
        {"cut inside the first program",
         WriteFile("cut.ini", good.substr(0, good.find("[Endless]") + 4)), 5, u"Folder 1", 2},
        {"cut inside the model's name", WriteFile("cutname.ini", good.substr(0, 36)), 0, u"", 0},
        {"oversized", QLM_TEST_SOURCE_DIR "/tests/fixtures/finisher/absurd.ini", 5,
         std::u16string(63, u'M'), kFINISHER_MAX_PROGRAMS},
        {"no text", WriteFile("binary.ini", binary), 0, u"", 0},
        {"empty", WriteFile("empty.ini", ""), 0, u"", 0},
    };
    HostPrinter printer(u"Plan");
    // Every run shows the paper tab first, which holds the roll count to the model's, whichever
    // tab the sheet opens on.
    const std::unique_ptr<DEVMODEEX> untouched =
        RunDocumentSheet(printer, "tab 101\ntab 105\nok\n");
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.what);
        std::unique_ptr<DEVMODEEX> out = RunDocumentSheet(
            printer, "tab 101\ntab 105\nselect 1066 -1\nfile " + c.path + "\nok\n");
        EXPECT_EQ(c.type, out->dmxFinisherType);
        EXPECT_EQ(c.model, Model(*out));
        EXPECT_EQ(c.programs, out->dmxFinisher.numPrograms);

        // Everything else is as the sheet gives it untouched, the finishing choices started anew.
        DEVMODEEX expected = *untouched;
        expected.dmxFinisherType = out->dmxFinisherType;
        memcpy(static_cast<void*>(&expected.dmxFinisher), &out->dmxFinisher,
               sizeof(expected.dmxFinisher));
        expected.dmxFinishProgram = 0;
        expected.dmxFinishFlags[0] = expected.dmxFinishFlags[1] = 1;
        expected.dmxFinishFlags[2] = 0;
        expected.dmxFinishOutputBin = 0;
        EXPECT_EQ(0, memcmp(&expected, out.get(), sizeof(expected)));
    }
}

// A record that claims more rolls than the dialog has rows (it reaches the dialog unchanged on
// a port that answers): no row is hidden, all six are filled and taken back, and no field
// behind the rows is read as a roll or written.
TEST(RollDialog, ARollCountBeyondTheRowsStaysWithinTheRows)
{
    auto printer = NetworkQueue(u"Rolls", "IP_127.0.0.131");
    TVOPrinterConfiguration config(u"Tarvo Plan Output System 2440");
    config.setPrinterHandle(printer->handle());
    TVODevMode defaults(printer->handle());
    auto record = std::make_unique<DEVMODEEX>();
    memcpy(static_cast<void*>(record.get()), defaults.m_lpDM, sizeof(DEVMODEEX));
    record->dmxNumRolls = 200;
    record->dmxBiDi = 0;
    record->dmxSheetStatus = 0x5A5A5A5A;
    const DEVMODEEX before = *record;

    TVORollConfigDlg dlg(&config, record.get());
    std::string error;
    ASSERT_TRUE(host::SetUserScript("expect 1183 visible\n"
                                    "expect 1200 text Not reported\n"
                                    "select 1022 25\n"
                                    "select 1029 3\n"
                                    "select 1023 18\n"
                                    "ok\n",
                                    &error))
        << error;
    EXPECT_EQ(1, dlg.doModal(GetDesktopWindow()));
    for (const std::string& failure : host::UserScriptFailures())
        ADD_FAILURE() << failure;
    host::ClearUserScript();

    EXPECT_EQ(200, record->dmxNumRolls);
    EXPECT_EQ(25u, record->dmxRollSize[5]);
    EXPECT_EQ(3u, record->dmxRollType[5]);
    EXPECT_EQ(18u, record->dmxSheetSizeSetting) << "the sheet row writes the user's setting";
    DEVMODEEX expected = before;
    memcpy(expected.dmxRollSize, record->dmxRollSize, sizeof(expected.dmxRollSize));
    memcpy(expected.dmxRollType, record->dmxRollType, sizeof(expected.dmxRollType));
    expected.dmxSheetSizeSetting = 18;
    expected.dmxSheetTypeSetting = record->dmxSheetTypeSetting;
    EXPECT_EQ(0, memcmp(&expected, record.get(), sizeof(expected)));
}

namespace {

// The sheet builder's part for a device tab that makes accounting compulsory, which the
// driver's own builder never asks for.
struct MandatorySheet
{
    TVOPrinterConfiguration* pConfig = nullptr;
    HANDLE hPrinter = nullptr;
    TVODialogInfo* lpdi = nullptr;
    TVODeviceTab* pTab = nullptr;
    DEVMODEEX result = {};
};
MandatorySheet* g_mandatory = nullptr;

LONG CALLBACK MandatorySheetUI(PPROPSHEETUI_INFO pInfo, LPARAM)
{
    MandatorySheet& s = *g_mandatory;
    switch (pInfo->Reason) {
    case PROPSHEETUI_REASON_INIT: {
        s.lpdi = new TVODialogInfo;
        TVODevMode defaults(s.hPrinter);
        defaults.getDeviceMode(s.hPrinter, u"", u"Mandatory", u"");
        memcpy(static_cast<void*>(&s.lpdi->dmScratch), defaults.m_lpDM, sizeof(DEVMODEEX));
        s.lpdi->dmScratch.dmxFirmwareRevision = 5;
        s.lpdi->dmScratch.dmxAccountingMode = 1;
        s.lpdi->lpDM = s.lpdi->lpDMTarget = &s.lpdi->dmScratch;
        s.lpdi->pConfig = s.pConfig;
        s.lpdi->hPrinter = s.hPrinter;
        s.lpdi->hResource = s.pConfig->m_hResources;
        s.lpdi->hComPropSheet = pInfo->hComPropSheet;
        s.lpdi->pfnComPropSheet = pInfo->pfnComPropSheet;
        s.pTab = new TVODeviceTab(s.lpdi, s.pConfig, TRUE);
        s.lpdi->pTabs[0] = s.pTab;
        s.lpdi->nTabs = 1;
        PROPSHEETPAGEW page = {};
        page.dwSize = 96;
        page.hInstance = s.lpdi->hResource;
        page.pszTemplate = MAKEINTRESOURCEW(IDD_DEVICE_TAB);
        page.pfnDlgProc = TVOTabProcedure;
        page.lParam = reinterpret_cast<LPARAM>(s.pTab);
        pInfo->pfnComPropSheet(pInfo->hComPropSheet, CPSFUNC_ADD_HPROPSHEETPAGE,
                               reinterpret_cast<LPARAM>(CreatePropertySheetPageW(&page)), 0);
        return 1;
    }
    case PROPSHEETUI_REASON_DESTROY:
        memcpy(static_cast<void*>(&s.result), s.lpdi->lpDM, sizeof(DEVMODEEX));
        delete s.pTab;
        delete s.lpdi;
        return 1;
    default:
        return 1;
    }
}

} // namespace

// Compulsory accounting: switching it on asks at once for the identifiers, without the remember
// box; leaving them out explains why accounting stays off. Given, they are remembered.
TEST(DeviceTab, CompulsoryAccountingAsksAndStaysOffWithoutIdentifiers)
{
    HostPrinter printer(u"Mandatory");
    TVOPrinterConfiguration config(u"Tarvo Plan Output System 2440");
    config.setPrinterHandle(printer.handle());
    MandatorySheet sheet;
    sheet.pConfig = &config;
    sheet.hPrinter = printer.handle();
    g_mandatory = &sheet;

    std::string error;
    ASSERT_TRUE(host::SetUserScript("check 1034\n"
                                    "expect 1043 hidden\n"
                                    "type 1357 12\n"
                                    "cancel\n"
                                    "answer ok accounting identifiers\n"
                                    "expect 1034 unchecked\n"
                                    "expect 1120 disabled\n"
                                    "check 1034\n"
                                    "type 1357 12\n"
                                    "type 1060 3\n"
                                    "ok\n"
                                    "expect 1034 checked\n"
                                    "ok\n",
                                    &error))
        << error;
    DWORD result = 0;
    CommonPropertySheetUIW(nullptr, MandatorySheetUI, 0, &result);
    for (const std::string& failure : host::UserScriptFailures())
        ADD_FAILURE() << failure;
    host::ClearUserScript();

    const auto boxes = host::MessageBoxCalls();
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(u"Mandatory", boxes[0].caption);
    EXPECT_EQ(UINT(MB_ICONEXCLAMATION), boxes[0].type);
    EXPECT_EQ(1u, sheet.result.dmxAccountingEnable);
    EXPECT_EQ(12u, sheet.result.dmxAccount);
    EXPECT_EQ(3u, sheet.result.dmxSubAccount);
    EXPECT_EQ(1u, sheet.result.dmxRememberAccount) << "compulsory identifiers are remembered";
}
