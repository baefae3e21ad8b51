// The user simulation: scripts parsed with their errors, modal dialog runs driven as a person
// would (nested dialogs, no script, failures named by line), message boxes, file pickers,
// menus and popup menus, and the dump of a dialog.
#include "hosttest.h"

#include "fixtures/testdialogs.h"
#include "platform/host/wininternal.h"

#include <gmock/gmock.h>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

// What the "All controls" dialog's procedure saw and read when it closed.
struct Outcome
{
    std::u16string name, count, address, inner;
    LRESULT paperData = -1;
    bool collate = false, landscape = false;
    int quality = -1;
    std::vector<std::string> events;
    bool ignoreCancel = false;
    bool trackFocus = false;
    HMODULE module = nullptr;
};
Outcome g_out;

std::u16string ItemText(HWND dialog, int id)
{
    WCHAR text[64];
    GetDlgItemTextW(dialog, id, text, 64);
    return text;
}

INT_PTR CALLBACK SmallDialog(HWND dialog, UINT msg, WPARAM wp, LPARAM)
{
    if (msg == WM_COMMAND && (LOWORD(wp) == IDOK || LOWORD(wp) == IDCANCEL)) {
        g_out.inner = ItemText(dialog, IDC_SMALL_EDIT);
        EndDialog(dialog, LOWORD(wp));
        return TRUE;
    }
    return msg == WM_INITDIALOG;
}

INT_PTR CALLBACK AllDialog(HWND dialog, UINT msg, WPARAM wp, LPARAM lp)
{
    switch (msg) {
    case WM_INITDIALOG: {
        const struct
        {
            const char16_t* name;
            LPARAM data;
        } papers[] = {{u"A4", 274}, {u"A3", 273}, {u"A0", 270}};
        for (const auto& p : papers) {
            auto i = SendDlgItemMessageW(dialog, IDC_PAPER, CB_ADDSTRING, 0,
                                         reinterpret_cast<LPARAM>(p.name));
            SendDlgItemMessageW(dialog, IDC_PAPER, CB_SETITEMDATA, WPARAM(i), p.data);
        }
        SendDlgItemMessageW(dialog, IDC_PAPER, CB_SETCURSEL, 0, 0);
        SendDlgItemMessageW(dialog, IDC_SPIN, UDM_SETRANGE32, 1, 99);
        SendDlgItemMessageW(dialog, IDC_SPIN, UDM_SETPOS32, 0, 1);
        EnableWindow(GetDlgItem(dialog, IDC_TEST), TRUE);
        PostMessageW(dialog, WM_APP, 0, 0);
        return TRUE;
    }
    case WM_APP:
        g_out.events.push_back("posted");
        return TRUE;
    case WM_COMMAND:
        switch (LOWORD(wp)) {
        case IDC_PAPER:
            if (HIWORD(wp) == CBN_SELCHANGE || HIWORD(wp) == CBN_SELENDOK)
                g_out.events.push_back(HIWORD(wp) == CBN_SELCHANGE ? "selchange" : "selendok");
            return TRUE;
        case IDC_NAME:
            if (g_out.trackFocus && HIWORD(wp) == EN_KILLFOCUS)
                g_out.events.push_back("name killfocus " +
                                       host::Utf16ToUtf8(ItemText(dialog, IDC_NAME)));
            return TRUE;
        case IDC_TEST:
            g_out.events.push_back(
                "test " + std::to_string(DialogBoxParamW(g_out.module, MAKEINTRESOURCEW(IDD_SMALL),
                                                         dialog, SmallDialog, 0)));
            return TRUE;
        case IDOK:
            g_out.name = ItemText(dialog, IDC_NAME);
            g_out.count = ItemText(dialog, IDC_COUNT);
            g_out.address = ItemText(dialog, IDC_ADDRESS);
            g_out.paperData =
                SendDlgItemMessageW(dialog, IDC_PAPER, CB_GETITEMDATA,
                                    SendDlgItemMessageW(dialog, IDC_PAPER, CB_GETCURSEL, 0, 0), 0);
            g_out.collate = IsDlgButtonChecked(dialog, IDC_COLLATE) == BST_CHECKED;
            g_out.landscape = IsDlgButtonChecked(dialog, IDC_LANDSCAPE) == BST_CHECKED;
            g_out.quality = int(SendDlgItemMessageW(dialog, IDC_QUALITY, TBM_GETPOS, 0, 0));
            EndDialog(dialog, IDOK);
            return TRUE;
        case IDCANCEL:
            g_out.events.push_back("cancel " + std::to_string(lp != 0));
            if (!g_out.ignoreCancel)
                EndDialog(dialog, IDCANCEL);
            return TRUE;
        }
        return FALSE;
    }
    return FALSE;
}

class UserSimTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        module_ = LoadLibraryW(host::Utf8ToUtf16(QLM_TEST_DIALOGS_DLL).c_str());
        ASSERT_NE(nullptr, module_);
        g_out = {};
        g_out.module = module_;
        host::ClearUserScript();
    }
    void TearDown() override
    {
        host::ClearUserScript();
        FreeLibrary(module_);
    }
    void Script(const std::string& script)
    {
        std::string error;
        ASSERT_TRUE(host::SetUserScript(script, &error)) << error;
    }
    INT_PTR Run()
    {
        return DialogBoxParamW(module_, MAKEINTRESOURCEW(IDD_ALL), nullptr, AllDialog, 0);
    }
    HMODULE module_ = nullptr;
};

TEST(UserScriptTest, ParsesActionsAndNamesTheLineOfAnError)
{
    std::string error;
    ASSERT_TRUE(host::SetUserScript("# a comment\n\n"
                                    "type 1001 Plotter 7  # trailing comment\n"
                                    "select 0x3EC 274\n"
                                    "spin 1003 down 2\n"
                                    "expect 1001 text Plotter 7\n"
                                    "answer yes\n"
                                    "file C:\\Data\\job.plt\n"
                                    "ok\n",
                                    &error))
        << error;
    host::UserAction a;
    ASSERT_TRUE(host::PeekUserAction(&a));
    EXPECT_EQ("type", a.verb) << "peeking leaves the action in place";
    std::vector<std::string> taken;
    while (host::TakeUserAction(&a))
        taken.push_back(a.verb + " " + std::to_string(a.id) + " " + std::to_string(a.number) +
                        " '" + a.text + "' line " + std::to_string(a.line));
    EXPECT_THAT(taken,
                ElementsAre("type 1001 0 'Plotter 7' line 3", "select 1004 274 '' line 4",
                            "spin 1003 2 'down' line 5", "expect 1001 0 'text Plotter 7' line 6",
                            "answer 0 0 'yes' line 7", "file 0 0 'C:\\Data\\job.plt' line 8",
                            "ok 0 0 '' line 9"));

    struct
    {
        const char* script;
        const char* error;
    } bad[] = {
        {"ok\njump 3", "line 2: unknown action 'jump'"},
        {"click", "line 1: 'click' needs a control id"},
        {"click abc", "line 1: 'click' needs a control id, not 'abc'"},
        {"\n\nselect 1004", "line 3: 'select' needs the item data"},
        {"ok now", "line 1: unexpected 'now' after 'ok'"},
        {"answer maybe",
         "line 1: 'answer' needs yes, no, ok, cancel, retry, ignore, abort or continue"},
        {"key 1001 ab", "line 1: 'key' needs one character, backspace, space, down or up"},
        {"expect 1001 shiny", "line 1: 'expect' needs enabled, disabled, checked, unchecked, "
                              "visible, hidden, focused, text, data or below"},
        {"file", "line 1: 'file' needs a path or cancel"},
    };
    ASSERT_TRUE(host::SetUserScript("ok", &error));
    for (const auto& b : bad) {
        EXPECT_FALSE(host::SetUserScript(b.script, &error)) << b.script;
        EXPECT_EQ(b.error, error);
    }
    EXPECT_TRUE(host::PeekUserAction(&a)) << "a refused script leaves the one before installed";
    host::ClearUserScript();
}

TEST_F(UserSimTest, ModalRunTakesTheScriptAsAPersonsInput)
{
    Script("type 1001 Plotter 7\n"
           "select 1004 273\n"
           "check 1007\n"
           "click 1010\n"
           "spin 1003 up 2\n"
           "slide 1011 40\n"
           "type 1005 10.0.0.9\n"
           "expect 1005 focused\n"
           "expect 1002 text 3\n"
           "expect 1004 data 273\n"
           "expect 1004 focused\n"
           "ok\n"
           "answer no\n");
    EXPECT_EQ(IDOK, Run());
    EXPECT_THAT(host::UserScriptFailures(),
                ElementsAre("line 11: control 1004 does not have the focus"));
    EXPECT_EQ(u"Plotter 7", g_out.name);
    EXPECT_EQ(273, g_out.paperData);
    EXPECT_TRUE(g_out.collate);
    EXPECT_TRUE(g_out.landscape);
    EXPECT_EQ(u"3", g_out.count);
    EXPECT_EQ(40, g_out.quality);
    EXPECT_EQ(u"10.0.0.9", g_out.address);
    EXPECT_THAT(g_out.events, ElementsAre("posted", "selendok", "selchange"));
    host::UserAction rest;
    ASSERT_TRUE(host::PeekUserAction(&rest)) << "the run stops taking actions when it ends";
    EXPECT_EQ("answer", rest.verb);
}

TEST_F(UserSimTest, ANestedDialogTakesTheFollowingActionsUntilItEnds)
{
    Script("click 1014\n"
           "type 2001 inner\n"
           "ok\n"
           "type 1001 outer\n"
           "ok\n");
    EXPECT_EQ(IDOK, Run());
    EXPECT_EQ(u"inner", g_out.inner);
    EXPECT_EQ(u"outer", g_out.name);
    EXPECT_THAT(g_out.events, ElementsAre("posted", "test 1"));
}

TEST_F(UserSimTest, AClickTakesTheFocusBeforeTheButtonReports)
{
    g_out.trackFocus = true;
    Script("type 1001 abc\nok\n");
    EXPECT_EQ(IDOK, Run());
    EXPECT_THAT(g_out.events, ElementsAre("posted", "name killfocus abc"))
        << "a field validated on leaving it is validated before OK acts";
    EXPECT_EQ(u"abc", g_out.name);
}

TEST_F(UserSimTest, WithoutAScriptTheRunEndsAsCancel)
{
    EXPECT_EQ(IDCANCEL, Run());
    EXPECT_THAT(g_out.events, ElementsAre("posted", "cancel 1")) << "the Cancel button's click";

    g_out.events.clear();
    g_out.ignoreCancel = true;
    EXPECT_EQ(IDCANCEL, Run()) << "ended by the host when the procedure does not end it";
}

TEST_F(UserSimTest, FailuresNameTheirLine)
{
    Script("expect 1007 checked\n"
           "click 1012\n"
           "type 1015 abc\n"
           "click 4242\n"
           "select 1004 999\n"
           "spin 1001 up\n"
           "uncheck 1009\n"
           "expect 1014 disabled\n"
           "tab 2\n"
           "type 1001 never\n");
    EXPECT_EQ(IDCANCEL, Run()) << "'tab' cannot apply to a dialog and ends the run";
    EXPECT_THAT(host::UserScriptFailures(),
                ElementsAre("line 1: control 1007 is unchecked",
                            "line 3: control 1015 is read-only", "line 4: control 4242 is missing",
                            "line 5: control 1004 has no item with data 999",
                            "line 6: control 1001 is not an up-down control",
                            "line 8: control 1014 is enabled",
                            "line 9: 'tab' does not apply to a dialog"));
    EXPECT_EQ(u"", g_out.name);
}

std::vector<std::string> g_notes;
INT_PTR CALLBACK NotingDialog(HWND dialog, UINT msg, WPARAM wp, LPARAM lp)
{
    if (msg == WM_INITDIALOG) {
        for (const char16_t* item : {u"one", u"two", u"three"})
            SendDlgItemMessageW(dialog, IDC_LIST, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item));
        SendDlgItemMessageW(dialog, IDC_LIST, LB_SETITEMDATA, 2, 33);
        return FALSE;
    }
    if (msg == WM_COMMAND && lp) {
        WORD code = HIWORD(wp);
        const char* name = code == BN_CLICKED ? "clicked" : code == EN_CHANGE ? "change" : nullptr;
        if (LOWORD(wp) == IDC_LIST)
            name = code == LBN_SELCHANGE ? "selchange" : nullptr;
        if (name)
            g_notes.push_back(std::to_string(LOWORD(wp)) + " " + name);
    }
    return FALSE;
}

TEST_F(UserSimTest, ControlActionsRaiseAPersonsNotifications)
{
    HWND dialog = CreateDialogParamW(module_, MAKEINTRESOURCEW(IDD_ALL), nullptr, NotingDialog, 0);
    ShowWindow(dialog, SW_SHOW);
    struct
    {
        host::UserAction action;
        std::vector<std::string> notes;
        bool ok;
    } rows[] = {
        {{"check", IDC_COLLATE}, {"1007 clicked"}, true},
        {{"check", IDC_COLLATE}, {}, true}, // already checked: no click
        {{"uncheck", IDC_COLLATE}, {"1007 clicked"}, true},
        {{"check", IDC_LANDSCAPE}, {"1010 clicked"}, true},
        {{"key", IDC_NAME, 'x'}, {"1001 change"}, true},
        {{"key", IDC_NAME, VK_BACK}, {"1001 change"}, true},
        {{"key", IDC_NAME, VK_BACK}, {}, true}, // nothing left to delete
        {{"type", IDC_COUNT, 0, "12"}, {"1002 change", "1002 change"}, true},
        {{"type", IDC_COUNT, 0, ""}, {"1002 change"}, true},
        {{"select", IDC_LIST, 33}, {"1006 selchange"}, true},
        {{"select-text", IDC_LIST, 0, "TWO"}, {"1006 selchange"}, true},
        {{"expect", IDC_LIST, 0, "visible"}, {}, true},
        {{"expect", IDC_LIST, 0, "hidden"}, {}, false},
        {{"click", IDC_GROUP}, {}, false},
        {{"slide", IDC_SPIN, 3}, {}, false},
        {{"type", IDC_PAPER, 0, "A4"}, {}, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.action.verb + " " + std::to_string(row.action.id));
        g_notes.clear();
        EXPECT_EQ(row.ok, host::PerformUserAction(dialog, row.action));
        EXPECT_EQ(row.notes, g_notes);
    }
    EXPECT_EQ(BST_CHECKED, IsDlgButtonChecked(dialog, IDC_LANDSCAPE));
    EXPECT_EQ(1, SendDlgItemMessageW(dialog, IDC_LIST, LB_GETCURSEL, 0, 0));
    EXPECT_EQ(4u, host::UserScriptFailures().size());

    EnableWindow(GetDlgItem(dialog, IDC_COLLATE), FALSE);
    g_notes.clear();
    EXPECT_FALSE(host::PerformUserAction(dialog, {"click", IDC_COLLATE, 0, "", 7}));
    EXPECT_EQ(BST_UNCHECKED, IsDlgButtonChecked(dialog, IDC_COLLATE)) << "a disabled control";
    EXPECT_THAT(g_notes, IsEmpty());
    ASSERT_EQ(5u, host::UserScriptFailures().size());
    EXPECT_EQ("line 7: control 1007 is disabled", host::UserScriptFailures().back());
    DestroyWindow(dialog);
}

TEST_F(UserSimTest, MessageBoxesAndFilePickersTakeTheirScriptedAnswers)
{
    Script("answer no Save\nanswer retry\nanswer ok Saved\nfile cancel\nfile C:\\plot.plt\n");
    EXPECT_EQ(IDNO, MessageBoxW(nullptr, u"Save the plot?", u"Q", MB_YESNO));
    EXPECT_EQ(IDOK, MessageBoxW(nullptr, u"Done", u"Q", MB_OK)) << "not a button: the default";
    EXPECT_EQ(IDOK, MessageBoxW(nullptr, u"Not saved", u"Q", MB_OK));
    EXPECT_THAT(host::UserScriptFailures(),
                ElementsAre("line 2: the message box has no retry button",
                            "line 3: the message box says \"Not saved\""));
    WCHAR path[MAX_PATH] = {};
    OPENFILENAMEW ofn{};
    ofn.lStructSize = sizeof ofn;
    ofn.lpstrFile = path;
    ofn.nMaxFile = MAX_PATH;
    EXPECT_FALSE(GetOpenFileNameW(&ofn));
    EXPECT_TRUE(GetOpenFileNameW(&ofn));
    EXPECT_EQ(std::u16string(u"C:\\plot.plt"), path);
    EXPECT_EQ(IDYES, MessageBoxW(nullptr, u"Again?", u"Q", MB_YESNO)) << "no script: the default";
}

TEST_F(UserSimTest, MenusFromNormalAndExtendedTemplates)
{
    for (int id : {IDM_CONTEXT, IDM_CONTEXTEX}) {
        SCOPED_TRACE(id);
        HMENU menu = LoadMenuW(module_, MAKEINTRESOURCEW(id));
        ASSERT_NE(nullptr, menu);
        EXPECT_EQ(1, GetMenuItemCount(menu));
        HMENU popup = GetSubMenu(menu, 0);
        ASSERT_NE(nullptr, popup);
        EXPECT_EQ(UINT(-1), GetMenuItemID(menu, 0)) << "a popup has no command";
        EXPECT_EQ(4, GetMenuItemCount(popup));
        EXPECT_EQ(UINT(IDM_OPEN), GetMenuItemID(popup, 0));
        EXPECT_EQ(UINT(MF_SEPARATOR), GetMenuState(popup, 1, MF_BYPOSITION) & MF_SEPARATOR);
        EXPECT_EQ(UINT(MF_GRAYED), GetMenuState(popup, IDM_DELETE, MF_BYCOMMAND) & MF_GRAYED);
        EXPECT_EQ(DWORD(MF_CHECKED), CheckMenuItem(menu, IDM_RENAME, MF_UNCHECKED))
            << "found in a submenu by command";
        EXPECT_EQ(MF_GRAYED, EnableMenuItem(popup, IDM_DELETE, MF_ENABLED) & MF_GRAYED);
        EXPECT_EQ(MF_ENABLED, EnableMenuItem(popup, IDM_DELETE, MF_GRAYED));
        EXPECT_EQ(-1, EnableMenuItem(popup, 999, MF_ENABLED));
        EXPECT_TRUE(DestroyMenu(menu));
        EXPECT_EQ(-1, GetMenuItemCount(popup)) << "destroyed with its parent";
    }
    EXPECT_EQ(nullptr, LoadMenuW(module_, MAKEINTRESOURCEW(IDD_ALL)));
    EXPECT_EQ(DWORD(ERROR_RESOURCE_NAME_NOT_FOUND), GetLastError());

    // Every prefix of both templates is refused, read from a buffer of exactly that size.
    for (int id : {IDM_CONTEXT, IDM_CONTEXTEX}) {
        HRSRC found = FindResourceW(module_, MAKEINTRESOURCEW(id), RT_MENU);
        ASSERT_NE(nullptr, found);
        auto* bytes = static_cast<const uint8_t*>(LockResource(LoadResource(module_, found)));
        size_t size = SizeofResource(module_, found);
        for (size_t n = 0; n < size; ++n) {
            std::unique_ptr<uint8_t[]> copy(new uint8_t[n ? n : 1]);
            std::memcpy(copy.get(), bytes, n);
            HMENU cut = host::detail::LoadMenuFromTemplate(copy.get(), n);
            EXPECT_TRUE(!cut || n + 2 >= size) << id << " cut at " << n;
            if (cut)
                DestroyMenu(cut);
        }
    }
}

std::vector<std::string> g_commands;
LRESULT CALLBACK Owner(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp)
{
    if (msg == WM_COMMAND) {
        g_commands.push_back("command " + std::to_string(LOWORD(wp)));
    } else if (msg == WM_INITMENUPOPUP) {
        g_commands.push_back("initmenupopup");
    }
    return DefWindowProcW(hwnd, msg, wp, lp);
}

TEST_F(UserSimTest, PopupMenusTakeTheScriptedCommand)
{
    WNDCLASSW wc{};
    wc.lpfnWndProc = Owner;
    wc.lpszClassName = u"QlmMenuOwner";
    RegisterClassW(&wc);
    HWND owner = CreateWindowExW(0, u"QlmMenuOwner", u"", WS_OVERLAPPED, 0, 0, 100, 100, nullptr,
                                 nullptr, nullptr, nullptr);
    HMENU popup = GetSubMenu(LoadMenuW(module_, MAKEINTRESOURCEW(IDM_CONTEXT)), 0);
    Script("menu 300\nmenu 302\nmenu 301\nok\n");
    g_commands.clear();
    EXPECT_EQ(IDM_OPEN, TrackPopupMenu(popup, TPM_RETURNCMD, 0, 0, 0, owner, nullptr));
    EXPECT_TRUE(TrackPopupMenu(popup, 0, 0, 0, 0, owner, nullptr));
    EXPECT_THAT(g_commands, ElementsAre("initmenupopup", "initmenupopup", "command 302"));
    EXPECT_EQ(0, TrackPopupMenu(popup, TPM_RETURNCMD, 0, 0, 0, owner, nullptr)) << "grayed";
    EXPECT_THAT(host::UserScriptFailures(),
                ElementsAre("line 3: menu command 301 is not an enabled item of the menu"));
    EXPECT_EQ(0, TrackPopupMenu(popup, TPM_RETURNCMD, 0, 0, 0, owner, nullptr));
    host::UserAction next;
    ASSERT_TRUE(host::PeekUserAction(&next));
    EXPECT_EQ("ok", next.verb) << "a dismissed menu takes no action";
    DestroyWindow(owner);
}

TEST_F(UserSimTest, DumpShowsEveryControl)
{
    HWND dialog = CreateDialogParamW(module_, MAKEINTRESOURCEW(IDD_ALL), nullptr, AllDialog, 0);
    SetDlgItemTextW(dialog, IDC_NAME, u"Say \"hi\"");
    CheckDlgButton(dialog, IDC_PORTRAIT, BST_CHECKED);
    SendDlgItemMessageW(dialog, IDC_PAPER, CB_SETCURSEL, 1, 0);
    EXPECT_EQ("dialog 100 \"All controls\"\n"
              "  1012 Static text \"&Name:\" enabled visible\n"
              "  1001 Edit edit \"Say \\\"hi\\\"\" enabled visible\n"
              "  1002 Edit edit \"1\" enabled visible\n"
              "  1003 msctls_updown32 vertical \"\" enabled visible position 1 range 1..99\n"
              "  1004 ComboBox dropdownlist \"A3\" enabled visible selection 1: \"A4\"=274, "
              "*\"A3\"=273, \"A0\"=270\n"
              "  1005 ComboBox dropdown \"\" enabled visible selection none: (empty)\n"
              "  1006 ListBox single \"\" enabled visible selection none: (empty)\n"
              "  1007 Button checkbox \"&Collate\" enabled visible unchecked\n"
              "  1008 Button groupbox \"Orientation\" enabled visible\n"
              "  1009 Button radio \"&Portrait\" enabled visible checked\n"
              "  1010 Button radio \"&Landscape\" enabled visible unchecked\n"
              "  1011 msctls_trackbar32 horizontal \"\" enabled visible position 0 range 0..100\n"
              "  1013 Static icon \"\" enabled visible\n"
              "  1014 Button push \"&Test\" enabled visible\n"
              "  1015 Edit edit \"\" enabled visible\n"
              "  1 Button defpush \"OK\" enabled visible\n"
              "  2 Button push \"Cancel\" enabled visible\n",
              host::DumpWindow(dialog));
    DestroyWindow(dialog);
}

} // namespace
