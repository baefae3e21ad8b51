// The paper tab's two lists and the user-defined papers dialog, where a script cannot set things
// up: a model no queue name reaches, forms put into the configuration, and a damaged form store.
// Under the sanitizers nothing may reach outside the record or the form table.
#include "driver/config/tvoconfg.h"
#include "driver/devmode/tvodm.h"
#include "driver/dialogs/tvouserm.h"
#include "driver/tabs/tvopaper.h"
#include "resources/qlmres.h"
#include "support/hostprinter.h"

#include "platform/host/hostsheet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr long long kAction = 0xFFFFFFFF;

// The sheet of one paper tab over the test's record and configuration; the record comes back
// as the tab left it.
TVOPrinterConfiguration* g_config = nullptr;
DEVMODEEX* g_record = nullptr;

LONG CALLBACK PaperSheetUI(PPROPSHEETUI_INFO pInfo, LPARAM)
{
    auto* lpdi = reinterpret_cast<TVODialogInfo*>(pInfo->UserData);
    switch (pInfo->Reason) {
    case PROPSHEETUI_REASON_INIT: {
        lpdi = new TVODialogInfo;
        memcpy(static_cast<void*>(&lpdi->dmScratch), g_record, sizeof(DEVMODEEX));
        lpdi->lpDM = &lpdi->dmScratch;
        lpdi->pConfig = g_config;
        lpdi->hResource = g_config->m_hResources;
        lpdi->pTabs[0] = new TVOPaperTab(lpdi, g_config);
        lpdi->nTabs = 1;
        pInfo->UserData = reinterpret_cast<ULONG_PTR>(lpdi);
        PROPSHEETPAGEW page = {};
        page.dwSize = 96;
        page.hInstance = lpdi->hResource;
        page.pszTemplate = MAKEINTRESOURCEW(IDD_PAPER_TAB);
        page.pfnDlgProc = TVOTabProcedure;
        page.lParam = reinterpret_cast<LPARAM>(lpdi->pTabs[0]);
        pInfo->pfnComPropSheet(pInfo->hComPropSheet, CPSFUNC_ADD_HPROPSHEETPAGE,
                               reinterpret_cast<LPARAM>(CreatePropertySheetPageW(&page)), 0);
        return 1;
    }
    case PROPSHEETUI_REASON_DESTROY:
        memcpy(static_cast<void*>(g_record), &lpdi->dmScratch, sizeof(DEVMODEEX));
        delete lpdi->pTabs[0];
        delete lpdi;
        return 1;
    default:
        return 1;
    }
}

struct List
{
    std::vector<long long> data;
    int selection = -1;
};

class PaperTab : public ::testing::Test
{
protected:
    // A queue of its own for each case.
    void Open(const char16_t* driver)
    {
        const std::string name = "Paper " + std::to_string(++m_queues);
        m_printer.reset();
        m_printer = std::make_unique<HostPrinter>(std::u16string(name.begin(), name.end()), driver);
        m_config = std::make_unique<TVOPrinterConfiguration>(driver);
        m_config->setPrinterHandle(m_printer->handle());
        TVODevMode record(m_printer->handle());
        memcpy(static_cast<void*>(&m_record), record.m_lpDM, sizeof(DEVMODEEX));
        g_config = m_config.get();
        g_record = &m_record;
    }
    void TearDown() override { host::ClearUserScript(); }
    // The list's rows by item data, as the tab left them when the sheet closed.
    List Run(int listId)
    {
        std::string error;
        EXPECT_TRUE(host::SetUserScript("cancel\n", &error)) << error;
        DWORD result = 0;
        CommonPropertySheetUIW(nullptr, PaperSheetUI, 0, &result);
        List list;
        const host::SheetRun run = host::LastSheetRun();
        for (const auto& c : run.pages.at(0).controls) {
            if (c.id != listId)
                continue;
            for (const auto& item : c.items)
                list.data.push_back(item.second);
            list.selection = c.selection;
        }
        return list;
    }
    void AddForms(int count)
    {
        for (int i = 0; i < count; ++i) {
            USERFORM& form = m_config->m_UserForms[i];
            const std::u16string name = u"Form " + std::u16string(1, char16_t(u'A' + i));
            memcpy(form.name, name.c_str(), (name.size() + 1) * sizeof(char16_t));
            form.width = 3000;
            form.length = 4000;
        }
        m_config->m_UserFormCount = count;
    }

    std::unique_ptr<HostPrinter> m_printer;
    std::unique_ptr<TVOPrinterConfiguration> m_config;
    DEVMODEEX m_record = {};
    int m_queues = 0;
};

std::vector<long long> Codes(long long first, long long last)
{
    std::vector<long long> codes;
    for (long long c = first; c <= last; ++c)
        codes.push_back(c);
    return codes;
}

std::vector<long long> operator+(std::vector<long long> a, const std::vector<long long>& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

const char16_t k2440[] = u"Tarvo Plan Output System 2440";
const char16_t k318p[] = u"Tarvo Plan Output System 318p";
const char16_t k2410[] = u"Tarvo Plan Output System 2410";

} // namespace

// The paper list: the families switched on (Standard, ANSI, Arch, ISO), the forms, the custom
// row, the action row; with no family at all every paper and the custom row twice. A paper
// the list lacks becomes the custom paper, which selects the first row that has it.
TEST_F(PaperTab, PaperListRowsFollowTheFamiliesAndTheForms)
{
    const struct
    {
        const char16_t* driver;
        DWORD show;
        int forms;
        short paper;
        std::vector<long long> rows;
        short paperAfter;
    } cases[] = {
        {k2440, 0xFFFF, 2, 282,
         Codes(257, 278) + Codes(281, 282) + std::vector<long long>{256, kAction}, 282},
        {k318p, 0xFFFF, 0, 275, Codes(257, 274) + std::vector<long long>{256, kAction}, 256},
        {k2440, kSHOW_ISO | kSHOW_USER_FORMS, 1, 281,
         Codes(270, 278) + std::vector<long long>{281, 256, kAction}, 281},
        {k2440, kSHOW_ARCH | kSHOW_STANDARD, 1, 281,
         Codes(257, 258) + Codes(264, 269) + std::vector<long long>{256, kAction}, 256},
        {k2440, 0, 2, 282, Codes(257, 278) + std::vector<long long>{256, 256, kAction}, 256},
        {k2440, 0x10000, 0, 257, {256, kAction}, 256},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "show " << c.show << ", " << c.forms << " forms");
        Open(c.driver);
        AddForms(c.forms);
        m_record.dmxShowPaperTypes = c.show;
        m_record.dmPublic.dmPaperSize = c.paper;
        List list = Run(IDC_PAPER_SIZE);
        EXPECT_EQ(c.rows, list.data);
        EXPECT_EQ(c.paperAfter, m_record.dmPublic.dmPaperSize);
        ASSERT_GE(list.selection, 0);
        int first = 0;
        while (list.data[first] != c.paperAfter)
            ++first;
        EXPECT_EQ(first, list.selection);
    }
}

// The source list: the rolls the record reports, no more than the model holds, then manual feed
// (not on model 5) and automatic. A source no longer offered selects the row before it, or none.
TEST_F(PaperTab, SourceListOffersTheRollsTheModelHolds)
{
    const struct
    {
        const char16_t* driver;
        DWORD model; // 0: the driver name's
        WORD rolls;
        short source;
        std::vector<long long> rows;
        int selection;
        WORD rollsAfter;
    } cases[] = {
        {k2440, 0, 6, DMBIN_AUTO, {257, 258, 259, 4, 7}, 4, 3},
        {k2440, 0, 0, DMBIN_AUTO, {4, 7}, 1, 0},
        {k2440, 0, 2, 259, {257, 258, 4, 7}, 1, 2},
        {k2440, 0, 0, 257, {4, 7}, -1, 0},
        {k2410, 0, 65535, DMBIN_MANUAL, {257, 258, 4, 7}, 2, 2},
        {k2440, kMODEL_WIDE_5, 1, DMBIN_MANUAL, {257, 7}, 0, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.rolls << " rolls, source " << c.source);
        Open(c.driver);
        if (c.model)
            m_config->m_PrinterModel = c.model;
        m_record.dmxNumRolls = c.rolls;
        m_record.dmPublic.dmDefaultSource = c.source;
        List list = Run(IDC_PAPER_SOURCE);
        EXPECT_EQ(c.rows, list.data);
        EXPECT_EQ(c.selection, list.selection);
        EXPECT_EQ(c.rollsAfter, m_record.dmxNumRolls);
        EXPECT_EQ(c.source, m_record.dmPublic.dmDefaultSource);
    }
}

namespace {

class UserForms : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_printer = std::make_unique<HostPrinter>(u"Forms full");
        m_record = std::make_unique<TVODevMode>(m_printer->handle());
        ASSERT_TRUE(m_record->getDeviceMode(m_printer->handle(), u"", u"Forms full", nullptr));
    }
    void TearDown() override { host::ClearUserScript(); }
    void StoreCount(DWORD count)
    {
        SetPrinterDataW(m_printer->handle(), const_cast<LPWSTR>(u"UserFormCount"), REG_DWORD,
                        reinterpret_cast<LPBYTE>(&count), sizeof(count));
    }
    void StoreForm(int number, const std::u16string& name, DWORD width, DWORD length,
                   DWORD cb = sizeof(USERFORM))
    {
        USERFORM form = {};
        memcpy(form.name, name.c_str(), std::min<size_t>(name.size(), 32) * sizeof(char16_t));
        form.width = width;
        form.length = length;
        const std::u16string value = u"UserForm" + Number(number);
        SetPrinterDataW(m_printer->handle(), const_cast<LPWSTR>(value.c_str()), REG_BINARY,
                        reinterpret_cast<LPBYTE>(&form), cb);
    }
    // The stored value's bytes; empty when it is empty or missing.
    std::vector<BYTE> Stored(const std::u16string& value)
    {
        std::vector<BYTE> bytes(256);
        DWORD type = 0, cb = 0;
        if (GetPrinterDataW(m_printer->handle(), const_cast<LPWSTR>(value.c_str()), &type,
                            bytes.data(), DWORD(bytes.size()), &cb) != ERROR_SUCCESS)
            cb = 0;
        bytes.resize(cb);
        return bytes;
    }
    static std::u16string Number(int n)
    {
        std::string s = std::to_string(n);
        return std::u16string(s.begin(), s.end());
    }
    // The dialog on the configuration's forms, run by the script until it ends.
    INT_PTR Run(TVOPrinterConfiguration& config, const std::string& script)
    {
        std::string error;
        EXPECT_TRUE(host::SetUserScript(script, &error)) << error;
        TVOUserDefinedMediaDlg dlg(&config, m_record->m_lpDM);
        INT_PTR result = dlg.doModal(nullptr);
        for (const std::string& failure : host::UserScriptFailures())
            ADD_FAILURE() << failure;
        EXPECT_FALSE(dlg.getModified()) << "the dialog never reports a change";
        return result;
    }

    std::unique_ptr<HostPrinter> m_printer;
    std::unique_ptr<TVODevMode> m_record;
};

std::u16string FormName(const USERFORM& form)
{
    return std::u16string(form.name, std::find(form.name, form.name + 32, u'\0'));
}

} // namespace

// A stored count of 70 gives a full table of 64. Saving under an existing name changes that
// form and still says the table is full; a new name is refused. Deleting the first form moves
// the others up through the spare record, and the store then holds 63.
TEST_F(UserForms, AFullTableOverwritesRefusesAndDeletesWithinItsRecords)
{
    StoreCount(70);
    for (int n = 1; n <= 70; ++n)
        StoreForm(n, u"Form " + Number(n), 2100, 2970);
    TVOPrinterConfiguration config(u"Tarvo Plan Output System 2440");
    config.setPrinterHandle(m_printer->handle());
    config.getUserForms(m_printer->handle());
    ASSERT_EQ(kMAX_USER_FORMS, config.m_UserFormCount);

    EXPECT_EQ(2, Run(config, "select-text 1228 Form 5\n"
                             "expect 1063 text 8.27\n"
                             "type 1063 20\n"
                             "type 1052 10\n"
                             "click 1232\n"
                             "answer ok all 64 are in use\n"
                             "type 1229 New form\n"
                             "click 1232\n"
                             "answer ok all 64 are in use\n"
                             "select-text 1228 Form 1\n"
                             "click 1230\n"
                             "expect 1229 text Form 2\n"
                             "click 1233\n"));
    auto boxes = host::MessageBoxCalls();
    ASSERT_EQ(2u, boxes.size());
    EXPECT_EQ(std::u16string(config.getResourceString(IDS_FORMS_FULL)), boxes[0].text);
    EXPECT_EQ(u"Forms full", boxes[0].caption);
    EXPECT_EQ(UINT(MB_ICONERROR), boxes[0].type);

    EXPECT_EQ(63, config.m_UserFormCount);
    EXPECT_EQ(u"Form 5", FormName(config.m_UserForms[3]));
    EXPECT_EQ(2540u, config.m_UserForms[3].width) << "stored turned, in tenths of a millimetre";
    EXPECT_EQ(5080u, config.m_UserForms[3].length);
    EXPECT_EQ(u"Form 64", FormName(config.m_UserForms[62]));
    const USERFORM empty = {};
    EXPECT_EQ(0, memcmp(&empty, &config.m_UserForms[63], sizeof(USERFORM)));
    EXPECT_EQ(0, memcmp(&empty, &config.m_UserForms[64], sizeof(USERFORM)));

    config.setUserForms(m_printer->handle());
    std::vector<BYTE> count = Stored(u"UserFormCount");
    ASSERT_EQ(4u, count.size());
    EXPECT_EQ(63, count[0]);
    ASSERT_EQ(sizeof(USERFORM), Stored(u"UserForm63").size());
    EXPECT_EQ(u"Form 64",
              FormName(*reinterpret_cast<const USERFORM*>(Stored(u"UserForm63").data())));
    EXPECT_TRUE(Stored(u"UserForm64").empty());
}

// Missing and short stored forms are taken as far as they go; the dialog shows and deletes them
// like any other, and the store ends empty.
TEST_F(UserForms, MissingAndShortStoredFormsAreShownAndDeleted)
{
    StoreCount(3);
    StoreForm(2, u"Short name", 1000, 2000, 10);
    StoreForm(3, u"Roll plan", 6096, 9144);
    TVOPrinterConfiguration config(u"Tarvo Plan Output System 2440");
    config.setPrinterHandle(m_printer->handle());
    config.getUserForms(m_printer->handle());
    ASSERT_EQ(3, config.m_UserFormCount);

    EXPECT_EQ(2, Run(config, "select-text 1228 Roll plan\n"
                             "expect 1063 text 24.00\n"
                             "expect 1052 text 36.00\n"
                             "select-text 1228 Short\n"
                             "expect 1063 text 0.00\n"
                             "click 1230\n"
                             "click 1230\n"
                             "expect 1229 text Roll plan\n"
                             "click 1230\n"
                             "expect 1230 disabled\n"
                             "click 1233\n"));
    EXPECT_EQ(0, config.m_UserFormCount);
    config.setUserForms(m_printer->handle());
    EXPECT_EQ(0, Stored(u"UserFormCount").at(0));
    for (const char16_t* value : {u"UserForm1", u"UserForm2", u"UserForm3"})
        EXPECT_TRUE(Stored(value).empty()) << std::string(value, value + 9);
}
