// The rendering and graphics tabs where no queue's sheet leads: model 5, whose rendering tab
// swaps the resolution rows for the quality rows, and the reduced tabs, which the sheet
// builder never makes. Both tabs stand in a sheet of the host's common UI and a person's
// script drives them; the scripts of tests/scripts/sheets drive them in the real sheet.
#include "driver/config/tvoconfg.h"
#include "driver/devmode/tvodm.h"
#include "driver/tabs/tvograph.h"
#include "driver/tabs/tvorendr.h"
#include "resources/qlmres.h"
#include "support/hostprinter.h"

#include "platform/host/hostsheet.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

namespace {

TVOPrinterConfiguration* g_config = nullptr;
HANDLE g_hPrinter = nullptr;
DEVMODEEX* g_target = nullptr;
BOOL g_reduced = FALSE;

// The two tabs on the queue's default record, as the sheet builder sets them up, but with the
// reduced flag of the test.
LONG CALLBACK RenderSheetUI(PPROPSHEETUI_INFO pInfo, LPARAM)
{
    auto* lpdi = reinterpret_cast<TVODialogInfo*>(pInfo->UserData);
    switch (pInfo->Reason) {
    case PROPSHEETUI_REASON_INIT: {
        lpdi = new TVODialogInfo;
        pInfo->UserData = reinterpret_cast<ULONG_PTR>(lpdi);
        TVODevMode defaults(g_hPrinter);
        memcpy(static_cast<void*>(&lpdi->dmMerge), defaults.m_lpDM, sizeof(DEVMODEEX));
        memcpy(static_cast<void*>(&lpdi->dmScratch), defaults.m_lpDM, sizeof(DEVMODEEX));
        lpdi->lpDM = &lpdi->dmScratch;
        lpdi->lpDMTarget = g_target;
        lpdi->wMode = DM_IN_PROMPT | DM_IN_BUFFER | DM_OUT_BUFFER;
        lpdi->pConfig = g_config;
        lpdi->hPrinter = g_hPrinter;
        lpdi->hResource = g_config->m_hResources;
        lpdi->hComPropSheet = pInfo->hComPropSheet;
        lpdi->pfnComPropSheet = pInfo->pfnComPropSheet;
        lpdi->pTabs[0] = new TVOGraphicsTab(lpdi, g_config, g_reduced);
        lpdi->pTabs[1] = new TVORenderTab(lpdi, g_config, g_reduced);
        lpdi->nTabs = 2;
        for (int i = 0; i < lpdi->nTabs; ++i) {
            PROPSHEETPAGEW page = {};
            page.dwSize = 96;
            page.hInstance = lpdi->hResource;
            page.pszTemplate = MAKEINTRESOURCEW(lpdi->pTabs[i]->m_iResourceID);
            page.pfnDlgProc = TVOTabProcedure;
            page.lParam = reinterpret_cast<LPARAM>(lpdi->pTabs[i]);
            pInfo->pfnComPropSheet(pInfo->hComPropSheet, CPSFUNC_ADD_HPROPSHEETPAGE,
                                   reinterpret_cast<LPARAM>(CreatePropertySheetPageW(&page)), 0);
        }
        return 1;
    }
    case PROPSHEETUI_REASON_DESTROY:
        if (lpdi) {
            for (int i = 0; i < lpdi->nTabs; ++i)
                delete lpdi->pTabs[i];
            delete lpdi;
        }
        return 1;
    default:
        return 1;
    }
}

class RenderTabs : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_printer = std::make_unique<HostPrinter>(u"Render");
        m_config = std::make_unique<TVOPrinterConfiguration>(u"Tarvo Plan Output System 2440");
        m_config->setPrinterHandle(m_printer->handle());
        TVODevMode record(m_printer->handle());
        memcpy(static_cast<void*>(&m_target), record.m_lpDM, sizeof(DEVMODEEX));
        g_config = m_config.get();
        g_hPrinter = m_printer->handle();
        g_target = &m_target;
    }
    void TearDown() override { host::ClearUserScript(); }
    void Run(BOOL reduced, const std::string& script)
    {
        g_reduced = reduced;
        std::string error;
        ASSERT_TRUE(host::SetUserScript(script, &error)) << error;
        DWORD result = 0;
        CommonPropertySheetUIW(nullptr, RenderSheetUI, 0, &result);
        for (const std::string& failure : host::UserScriptFailures())
            ADD_FAILURE() << failure;
    }

    std::unique_ptr<HostPrinter> m_printer;
    std::unique_ptr<TVOPrinterConfiguration> m_config;
    DEVMODEEX m_target = {};
};

std::string Expect(std::initializer_list<int> ids, const char* state)
{
    std::string lines;
    for (int id : ids)
        lines += "expect " + std::to_string(id) + " " + state + "\n";
    return lines;
}

} // namespace

// Model 5 shows the quality and render mode rows in place of the resolution and vector rows;
// those two lists write nothing to the record.
TEST_F(RenderTabs, ModelFiveChoosesByQualityWhichTheTabDoesNotStore)
{
    m_config->m_PrinterModel = kMODEL_WIDE_5;
    m_target.dmxQualityMode = 99;
    m_target.dmxRenderMode = 99;
    Run(FALSE, "tab 104\n" + Expect({1175, 1014, 1310, 1311}, "hidden") +
                   Expect({1328, 1324, 1329, 1323}, "visible") +
                   "expect 1324 data 1\nselect 1324 2\nselect 1323 1\nok\n");
    EXPECT_EQ(1u, m_target.dmxQualityMode) << "the sheet's record, untouched by the list";
    EXPECT_EQ(0u, m_target.dmxRenderMode);
}

// The reduced tabs hide and disable what they leave out, whatever the firmware enables, and the
// rendering tab's raster label reads the reduced text; the rest works as before.
TEST_F(RenderTabs, ReducedTabsLeaveTheirControlsOutForGood)
{
    const std::string reducedRender = Expect({1310, 1311, 1332, 1327, 1333, 1325, 1326, 1339, 1340,
                                              1341, 1328, 1324, 1329, 1323, 1175, 1014, 1035, 1336},
                                             "hidden") +
                                      Expect({1310, 1311, 1332, 1327, 1333, 1325, 1326, 1339, 1340,
                                              1341, 1328, 1324, 1329, 1323, 1175, 1014, 1035, 1336},
                                             "disabled");
    const std::string reducedGraphics =
        Expect({1041, 1145, 1095, 1096}, "hidden") + Expect({1041, 1145, 1095, 1096}, "disabled");
    Run(TRUE, "tab 104\n" + reducedRender + "expect 1337 text &Halftoning:\n" +
                  "expect 1338 visible\nselect 1338 1\nclick 1045\n" + reducedRender + "tab 103\n" +
                  reducedGraphics + "click 1045\n" + reducedGraphics + "click 1040\ntab 104\n" +
                  reducedRender + "ok\n");
    EXPECT_EQ(0u, m_target.dmxRasterMethod) << "Restore Defaults came after the choice";
    EXPECT_EQ(1u, m_target.dmxMirrorX);
}
