// The host's property sheet against comctl32's order: PSN_KILLACTIVE before a page is left,
// PSN_SETACTIVE before one is shown, PSN_QUERYCANCEL before Cancel, and the answers of
// PSN_KILLACTIVE, PSN_APPLY and PSN_QUERYCANCEL honoured.
#include "hosttest.h"

#include "fixtures/testdialogs.h"
#include "platform/host/hostsheet.h"

#include <gmock/gmock.h>

#include <map>

using ::testing::ElementsAreArray;

namespace {

std::vector<std::string> g_log;
std::map<UINT, LRESULT> g_answers; // what the second page answers, by notification
HMODULE g_module = nullptr;

const char* Name(UINT code)
{
    switch (code) {
    case PSN_SETACTIVE:
        return "setactive";
    case PSN_KILLACTIVE:
        return "killactive";
    case PSN_APPLY:
        return "apply";
    case PSN_RESET:
        return "reset";
    case PSN_QUERYCANCEL:
        return "querycancel";
    default:
        return "other";
    }
}

// Both pages log; the second (IDD_SMALL) answers as g_answers says.
INT_PTR CALLBACK PageProc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp)
{
    if (msg == WM_INITDIALOG) {
        int page = int(reinterpret_cast<const PROPSHEETPAGEW*>(lp)->lParam);
        SetWindowLongPtrW(hwnd, DWLP_USER, page);
        return TRUE;
    }
    if (msg == WM_SHOWWINDOW && wp) {
        g_log.push_back(std::to_string(GetWindowLongPtrW(hwnd, DWLP_USER)) + " shown");
        return FALSE;
    }
    if (msg != WM_NOTIFY)
        return FALSE;
    auto* hdr = reinterpret_cast<NMHDR*>(lp);
    LONG_PTR page = GetWindowLongPtrW(hwnd, DWLP_USER);
    g_log.push_back(std::to_string(page) + " " + Name(hdr->code));
    LRESULT answer = 0;
    if (page == 2 && g_answers.count(hdr->code)) {
        answer = g_answers[hdr->code];
        g_answers.erase(hdr->code); // once: a person's next try goes through
    }
    SetWindowLongPtrW(hwnd, DWLP_MSGRESULT, answer);
    return TRUE;
}

LONG CALLBACK SheetFunction(PPROPSHEETUI_INFO info, LPARAM)
{
    if (info->Reason != PROPSHEETUI_REASON_INIT)
        return 1;
    const int templates[] = {IDD_CHILD, IDD_SMALL};
    for (int i = 0; i < 2; ++i) {
        PROPSHEETPAGEW psp = {};
        psp.dwSize = sizeof(psp);
        psp.hInstance = g_module;
        psp.pszTemplate = MAKEINTRESOURCEW(templates[i]);
        psp.pfnDlgProc = PageProc;
        psp.lParam = i + 1;
        info->pfnComPropSheet(info->hComPropSheet, CPSFUNC_ADD_HPROPSHEETPAGE,
                              reinterpret_cast<LPARAM>(CreatePropertySheetPageW(&psp)), 0);
    }
    return 1;
}

std::vector<std::string> RunSheet(const std::string& script)
{
    g_log.clear();
    std::string error;
    EXPECT_TRUE(host::SetUserScript(script, &error)) << error;
    DWORD result = 0;
    CommonPropertySheetUIW(nullptr, SheetFunction, 0, &result);
    EXPECT_THAT(host::UserScriptFailures(), ::testing::IsEmpty()) << script;
    host::ClearUserScript();
    return g_log;
}

} // namespace

class PropertySheetTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        g_module = LoadLibraryW(host::Utf8ToUtf16(QLM_TEST_DIALOGS_DLL).c_str());
        ASSERT_NE(nullptr, g_module);
        g_answers.clear();
    }
    void TearDown() override { FreeLibrary(g_module); }
};

TEST_F(PropertySheetTest, NotificationsComeInComctl32sOrderAndTheirAnswersCount)
{
    const struct
    {
        const char* what;
        std::map<UINT, LRESULT> answers;
        const char* script;
        std::vector<std::string> log;
    } cases[] = {
        {"a page is told before it is shown, the one left first",
         {},
         "tab 101\ncancel\n",
         {"1 setactive", "1 shown", "1 killactive", "2 setactive", "2 shown", "2 querycancel",
          "1 reset", "2 reset"}},
        {"OK asks the page shown, then applies every page that exists",
         {},
         "tab 101\nok\n",
         {"1 setactive", "1 shown", "1 killactive", "2 setactive", "2 shown", "2 killactive",
          "1 apply", "2 apply"}},
        {"a page that refuses to be left stays",
         {{PSN_KILLACTIVE, TRUE}},
         "tab 101\ntab 103\ntab 103\ncancel\n",
         {"1 setactive", "1 shown", "1 killactive", "2 setactive", "2 shown", "2 killactive",
          "2 killactive", "1 setactive", "1 shown", "1 querycancel", "1 reset", "2 reset"}},
        {"an invalid apply keeps the sheet open; Cancel asked to wait waits",
         {{PSN_APPLY, PSNRET_INVALID_NOCHANGEPAGE}, {PSN_QUERYCANCEL, TRUE}},
         "tab 101\nok\ncancel\ncancel\n",
         {"1 setactive", "1 shown", "1 killactive", "2 setactive", "2 shown", "2 killactive",
          "1 apply", "2 apply", "2 querycancel", "2 querycancel", "1 reset", "2 reset"}},
    };
    for (const auto& c : cases) {
        g_answers = c.answers;
        EXPECT_THAT(RunSheet(c.script), ElementsAreArray(c.log)) << c.what;
    }
}
