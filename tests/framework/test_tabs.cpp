// The tab base in a sheet of the host's common UI: two probe tabs on the paper and job
// templates edit the sheet's one record as a person's input tells them, and what reaches the
// caller's record, the queue's stored record, the other tab and the Apply button is observed.
#include "driver/config/tvoconfg.h"
#include "driver/devmode/tvodm.h"
#include "driver/foundation/qlmutils.h"
#include "driver/framework/tvotab.h"
#include "resources/qlmres.h"
#include "support/hostprinter.h"

#include "platform/host/hostsheet.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

namespace {

const TVOListEntry kBanner[] = {{IDS_FONT_SWISS, 0}, {IDS_FONT_SYMBOL, 1}, {0, 0}};

// The paper probe keeps the copies in an edit whose every change is an edit of the record; the
// job probe keeps the banner page in a list.
class ProbeTab : public TVOTab
{
public:
    ProbeTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig, int templateId)
        : TVOTab(lpdi, pConfig, templateId)
    {
    }
    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        switch (message) {
        case WM_INITDIALOG:
            SetControlsFromDM();
            SetModified(FALSE);
            return 1;
        case WM_COMMAND:
            OnCommand(LOWORD(wParam), HIWORD(wParam));
            return 0;
        case WM_NOTIFY:
            OnNotify(m_hWnd, wParam, reinterpret_cast<NMHDR*>(lParam));
            return 0;
        case WM_DEVMODECHANGE:
            ++m_devModeChanges;
            OnDMChange();
            return 0;
        default:
            return 0;
        }
    }
    void SetControlsFromDM() override
    {
        ++m_fills;
        if (m_iResourceID == IDD_PAPER_TAB)
            SetDlgItemInt(m_hWnd, IDC_PAPER_COPIES, m_pDM->dmPublic.dmCopies, FALSE);
        else
            m_pConfig->fillComboBox1(m_hWnd, IDC_JOB_BANNER, kBanner, m_pDM->dmxBannerPage);
    }
    void OnCommand(int id, int code)
    {
        if (id == IDC_PAPER_COPIES && code == EN_CHANGE) {
            m_pDM->dmPublic.dmCopies =
                static_cast<short>(GetDlgItemInt(m_hWnd, IDC_PAPER_COPIES, nullptr, FALSE));
            SetModified(TRUE);
        } else if (id == IDC_JOB_BANNER && code == CBN_SELCHANGE) {
            m_pDM->dmxBannerPage = GetComboSelection(IDC_JOB_BANNER);
            SetModified(TRUE);
        }
    }
    int m_fills = 0;
    int m_devModeChanges = 0;
};

struct SheetUnderTest
{
    TVODialogInfo* lpdi = nullptr;
    ProbeTab* paper = nullptr;
    ProbeTab* job = nullptr;
    int paperFills = 0, jobFills = 0, paperChanges = 0, jobChanges = 0;
};

SheetUnderTest* g_sheet = nullptr;
TVOPrinterConfiguration* g_config = nullptr;
HANDLE g_hPrinter = nullptr;
DEVMODEEX* g_target = nullptr;
WORD g_mode = 0;
BOOL g_device = FALSE;

// The driver's part of the sheet, reduced to the two probes: the records of the dialog-info
// record as the sheet builders set them up, the pages, and the teardown.
LONG CALLBACK ProbeSheetUI(PPROPSHEETUI_INFO pInfo, LPARAM lParam)
{
    switch (pInfo->Reason) {
    case PROPSHEETUI_REASON_INIT: {
        auto* lpdi = new TVODialogInfo;
        TVODevMode defaults(g_hPrinter);
        memcpy(static_cast<void*>(&lpdi->dmMerge), defaults.m_lpDM, sizeof(DEVMODEEX));
        memcpy(static_cast<void*>(&lpdi->dmScratch), defaults.m_lpDM, sizeof(DEVMODEEX));
        lpdi->lpDM = &lpdi->dmScratch;
        lpdi->lpDMTarget = g_target;
        lpdi->wMode = g_mode;
        lpdi->bExtDevMode = g_device;
        lpdi->pConfig = g_config;
        lpdi->hPrinter = g_hPrinter;
        lpdi->hResource = g_config->m_hResources;
        lpdi->hComPropSheet = pInfo->hComPropSheet;
        lpdi->pfnComPropSheet = pInfo->pfnComPropSheet;
        g_sheet->lpdi = lpdi;
        g_sheet->paper = new ProbeTab(lpdi, g_config, IDD_PAPER_TAB);
        g_sheet->job = new ProbeTab(lpdi, g_config, IDD_JOB_TAB);
        lpdi->pTabs[0] = g_sheet->paper;
        lpdi->pTabs[1] = g_sheet->job;
        lpdi->nTabs = 2;
        for (TVOTab* tab :
             {static_cast<TVOTab*>(g_sheet->paper), static_cast<TVOTab*>(g_sheet->job)}) {
            PROPSHEETPAGEW page = {};
            page.dwSize = 96;
            page.hInstance = lpdi->hResource;
            page.pszTemplate = MAKEINTRESOURCEW(tab->m_iResourceID);
            page.pfnDlgProc = TVOTabProcedure;
            page.lParam = reinterpret_cast<LPARAM>(tab);
            pInfo->pfnComPropSheet(pInfo->hComPropSheet, CPSFUNC_ADD_HPROPSHEETPAGE,
                                   reinterpret_cast<LPARAM>(CreatePropertySheetPageW(&page)), 0);
        }
        return 1;
    }
    case PROPSHEETUI_REASON_DESTROY:
        g_sheet->paperFills = g_sheet->paper->m_fills;
        g_sheet->jobFills = g_sheet->job->m_fills;
        g_sheet->paperChanges = g_sheet->paper->m_devModeChanges;
        g_sheet->jobChanges = g_sheet->job->m_devModeChanges;
        delete g_sheet->paper;
        delete g_sheet->job;
        delete g_sheet->lpdi;
        return 1;
    default:
        return 1;
    }
}

class Tabs : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_printer = std::make_unique<HostPrinter>(u"Tabs");
        m_config = std::make_unique<TVOPrinterConfiguration>(u"Tarvo Plan Output System 2440");
        m_config->setPrinterHandle(m_printer->handle());
        TVODevMode record(m_printer->handle());
        memcpy(static_cast<void*>(&m_target), record.m_lpDM, sizeof(DEVMODEEX));
        g_config = m_config.get();
        g_hPrinter = m_printer->handle();
        g_target = &m_target;
        g_sheet = &m_sheet;
    }
    void TearDown() override { host::ClearUserScript(); }
    host::SheetRun Run(WORD mode, BOOL device, const std::string& script)
    {
        g_mode = mode;
        g_device = device;
        std::string error;
        EXPECT_TRUE(host::SetUserScript(script, &error)) << error;
        DWORD result = 0;
        CommonPropertySheetUIW(nullptr, ProbeSheetUI, 0, &result);
        for (const std::string& failure : host::UserScriptFailures())
            ADD_FAILURE() << failure;
        return host::LastSheetRun();
    }
    int SetResults(const host::SheetRun& run)
    {
        int n = 0;
        for (const std::string& call : run.calls)
            n += call == "CPSFUNC_SET_RESULT 1" ? 1 : 0;
        return n;
    }

    std::unique_ptr<HostPrinter> m_printer;
    std::unique_ptr<TVOPrinterConfiguration> m_config;
    DEVMODEEX m_target = {};
    SheetUnderTest m_sheet;
};

constexpr WORD kPromptDocument = DM_IN_PROMPT | DM_IN_BUFFER | DM_OUT_BUFFER;
const std::string kCopies = std::to_string(IDC_PAPER_COPIES);
const std::string kBannerList = std::to_string(IDC_JOB_BANNER);

} // namespace

// Filling the controls, also when that sets off the handlers, lights nothing; a person's edit
// lights Apply, and Cancel leaves it lit and the caller's record as it was.
TEST_F(Tabs, OnlyAPersonsEditLightsApply)
{
    host::SheetRun quiet =
        Run(kPromptDocument, FALSE, "tab 102\ntab 101\nexpect-apply unlit\ncancel\n");
    EXPECT_FALSE(quiet.applyEnabled);
    EXPECT_EQ(3, m_sheet.paperFills) << "at creation and at each of its two activations";

    host::SheetRun edited =
        Run(kPromptDocument, FALSE, "type " + kCopies + " 7\nexpect-apply lit\ncancel\n");
    EXPECT_TRUE(edited.applyEnabled);
    EXPECT_EQ(1, m_target.dmPublic.dmCopies) << "Cancel writes nothing to the caller";
}

// In a document sheet a tab that comes back with an edit pending already carries the record to
// the caller, before any OK; no tab is ever told of another's change.
TEST_F(Tabs, ADocumentSheetCarriesAPendingEditWhenItsTabIsShownAgain)
{
    Run(kPromptDocument, FALSE, "type " + kCopies + " 7\ntab 102\ntab 101\ncancel\n");
    EXPECT_EQ(7, m_target.dmPublic.dmCopies);
    EXPECT_EQ(0, m_sheet.paperChanges + m_sheet.jobChanges);
}

// OK runs the apply of every page that has a window: each sets the result and marks the first
// time as past.
TEST_F(Tabs, OKAppliesOnEveryPageWithAWindow)
{
    host::SheetRun once = Run(kPromptDocument, FALSE, "type " + kCopies + " 4\nok\n");
    EXPECT_EQ(1, SetResults(once)) << "the job tab never had a window";
    EXPECT_EQ(4, m_target.dmPublic.dmCopies);
    DWORD seen = 0;
    ASSERT_EQ(0, QLMGetUserDWORD(m_printer->handle(), u"QLMIsFirstTime", &seen));
    EXPECT_EQ(1u, seen);

    host::SheetRun both =
        Run(kPromptDocument, FALSE, "tab 102\nselect " + kBannerList + " 1\nok\n");
    EXPECT_EQ(2, SetResults(both));
    EXPECT_EQ(1u, m_target.dmxBannerPage);
    EXPECT_FALSE(both.applyEnabled);
}

// In the device sheet the edited record becomes the queue's stored record, and the other tab
// that has a window is told and shows it anew.
TEST_F(Tabs, TheDeviceSheetStoresTheRecordAndTellsTheOtherTab)
{
    Run(DM_USER_DEFAULT, TRUE, "tab 102\ntab 101\ntype " + kCopies + " 9\napply\ncancel\n");
    host::PrinterRecord printer;
    ASSERT_TRUE(host::GetPrinterRecord(u"Tabs", &printer));
    ASSERT_GE(printer.devMode.size(), sizeof(DEVMODEEX));
    DEVMODEEX stored;
    memcpy(static_cast<void*>(&stored), printer.devMode.data(), sizeof(stored));
    EXPECT_EQ(9, stored.dmPublic.dmCopies);
    // Each page runs the apply: each tells the other, never itself.
    EXPECT_EQ(1, m_sheet.jobChanges);
    EXPECT_EQ(1, m_sheet.paperChanges);
}
