// Windows of the host: handles, the parent and owner chains, creation and destruction order,
// text and window data, subclassing, focus, enabling and showing, geometry and metrics, and
// dialogs created from the templates of a resource library.
#include "hosttest.h"

#include "fixtures/testdialogs.h"
#include "platform/host/wininternal.h"

#include <gmock/gmock.h>

#include <map>

using ::testing::ElementsAre;

namespace {

std::vector<std::string> g_log;
std::map<HWND, std::string> g_names;

std::vector<LONG> Edges(const RECT& r)
{
    return {r.left, r.top, r.right, r.bottom};
}

std::string NameOf(HWND hwnd)
{
    auto it = g_names.find(hwnd);
    return it == g_names.end() ? "?" : it->second;
}

LRESULT CALLBACK Recorder(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp)
{
    const char* name = msg == WM_CREATE       ? "create"
                       : msg == WM_DESTROY    ? "destroy"
                       : msg == WM_NCDESTROY  ? "ncdestroy"
                       : msg == WM_SETFOCUS   ? "setfocus"
                       : msg == WM_KILLFOCUS  ? "killfocus"
                       : msg == WM_ENABLE     ? "enable"
                       : msg == WM_SHOWWINDOW ? "show"
                                              : nullptr;
    if (name) {
        std::string entry = NameOf(hwnd) + " " + name;
        if (msg == WM_SETFOCUS || msg == WM_KILLFOCUS) {
            entry += " " + NameOf(reinterpret_cast<HWND>(wp));
        } else if (msg == WM_ENABLE || msg == WM_SHOWWINDOW) {
            entry += " " + std::to_string(wp);
        }
        g_log.push_back(entry);
    }
    return DefWindowProcW(hwnd, msg, wp, lp);
}

class WindowTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        g_log.clear();
        g_names.clear();
        static bool registered = false;
        if (!registered) {
            WNDCLASSW wc{};
            wc.lpfnWndProc = Recorder;
            wc.cbWndExtra = 16;
            wc.lpszClassName = u"QlmTestWindow";
            ASSERT_NE(0, RegisterClassW(&wc));
            registered = true;
        }
    }
    HWND Make(const std::string& name, DWORD style, HWND parent, int id = 0,
              RECT r = {10, 20, 110, 70})
    {
        HWND h = CreateWindowExW(0, u"QlmTestWindow", u"", style, r.left, r.top, r.right - r.left,
                                 r.bottom - r.top, parent, reinterpret_cast<HMENU>(intptr_t(id)),
                                 nullptr, nullptr);
        g_names[h] = name;
        return h;
    }
};

TEST_F(WindowTest, DestroysTheWindowThenItsChildrenAndNeverReusesAHandle)
{
    HWND top = Make("top", WS_OVERLAPPED, nullptr);
    HWND a = Make("a", WS_CHILD, top, 1), b = Make("b", WS_CHILD, top, 2);
    HWND grandchild = Make("c", WS_CHILD, a, 3);
    HWND owned = Make("owned", WS_POPUP, a);
    EXPECT_EQ(a, GetWindow(top, GW_CHILD));
    EXPECT_EQ(b, GetWindow(a, GW_HWNDNEXT));
    EXPECT_EQ(nullptr, GetWindow(b, GW_HWNDNEXT));
    EXPECT_EQ(top, GetParent(a));
    EXPECT_EQ(top, GetWindow(owned, GW_OWNER)) << "the owner is the top-level window";
    EXPECT_EQ(top, GetParent(owned)) << "a popup's parent is its owner";
    EXPECT_EQ(b, GetDlgItem(top, 2));
    EXPECT_EQ(3, GetDlgCtrlID(grandchild));
    EXPECT_TRUE(IsChild(top, grandchild));

    g_log.clear();
    ASSERT_TRUE(DestroyWindow(top));
    EXPECT_THAT(g_log, ElementsAre("owned destroy", "owned ncdestroy", "top destroy", "a destroy",
                                   "c destroy", "b destroy", "c ncdestroy", "a ncdestroy",
                                   "b ncdestroy", "top ncdestroy"));
    for (HWND h : {top, a, b, grandchild, owned})
        EXPECT_FALSE(IsWindow(h));
    SetLastError(0);
    EXPECT_EQ(nullptr, GetParent(a));
    EXPECT_EQ(DWORD(ERROR_INVALID_WINDOW_HANDLE), GetLastError());
    HWND again = Make("again", WS_OVERLAPPED, nullptr);
    for (HWND h : {top, a, b, grandchild, owned})
        EXPECT_NE(h, again);
    DestroyWindow(again);
}

TEST_F(WindowTest, TextAndWindowData)
{
    HWND w = Make("w", WS_OVERLAPPED | WS_CAPTION, nullptr);
    ASSERT_TRUE(SetWindowTextW(w, u"Hello"));
    WCHAR buffer[4];
    EXPECT_EQ(3, GetWindowTextW(w, buffer, 4));
    EXPECT_EQ(std::u16string(u"Hel"), buffer);
    EXPECT_EQ(5, GetWindowTextLengthW(w));

    EXPECT_EQ(LONG(WS_OVERLAPPED | WS_CAPTION), GetWindowLongW(w, GWL_STYLE));
    EXPECT_EQ(0, SetWindowLongPtrW(w, GWLP_USERDATA, 77));
    EXPECT_EQ(77, SetWindowLongPtrW(w, GWLP_USERDATA, 78));
    EXPECT_EQ(0, SetWindowLongPtrW(w, 8, 0x123456789));
    EXPECT_EQ(0x123456789, GetWindowLongPtrW(w, 8));
    SetLastError(0);
    EXPECT_EQ(0, GetWindowLongPtrW(w, 9)) << "past the 16 extra bytes";
    EXPECT_EQ(DWORD(ERROR_INVALID_INDEX), GetLastError());
    EXPECT_EQ(reinterpret_cast<LONG_PTR>(Recorder), GetWindowLongPtrW(w, GWLP_WNDPROC));
    DestroyWindow(w);

    EXPECT_EQ(nullptr, CreateWindowExW(0, u"NoSuchClass", u"", 0, 0, 0, 1, 1, nullptr, nullptr,
                                       nullptr, nullptr));
    EXPECT_EQ(DWORD(ERROR_CANNOT_FIND_WND_CLASS), GetLastError());
}

WNDPROC g_original;
int g_filtered;
LRESULT CALLBACK DigitsOnly(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp)
{
    if (msg == WM_CHAR && !(wp >= '0' && wp <= '9')) {
        ++g_filtered;
        return 0;
    }
    return CallWindowProcW(g_original, hwnd, msg, wp, lp);
}

TEST_F(WindowTest, SubclassedEditSeesEveryCharacterAndChainsToTheOriginal)
{
    HWND top = Make("top", WS_OVERLAPPED, nullptr);
    HWND edit = CreateWindowExW(0, u"Edit", u"", WS_CHILD | WS_VISIBLE, 0, 0, 50, 20, top,
                                reinterpret_cast<HMENU>(5), nullptr, nullptr);
    g_filtered = 0;
    g_original = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(DigitsOnly)));
    ASSERT_EQ(reinterpret_cast<WNDPROC>(host::detail::EditProc), g_original);
    for (char16_t c : std::u16string(u"a1b2"))
        SendMessageW(edit, WM_CHAR, c, 1);
    WCHAR text[8];
    GetWindowTextW(edit, text, 8);
    EXPECT_EQ(std::u16string(u"12"), text);
    EXPECT_EQ(2, g_filtered);
    DestroyWindow(top);
}

TEST_F(WindowTest, FocusEnablingAndShowing)
{
    HWND top = Make("top", WS_OVERLAPPED | WS_VISIBLE, nullptr);
    HWND a = Make("a", WS_CHILD | WS_VISIBLE, top, 1), b = Make("b", WS_CHILD | WS_VISIBLE, top, 2);
    SetFocus(a);
    g_log.clear();
    EXPECT_EQ(a, SetFocus(b));
    EXPECT_EQ(b, GetFocus());
    EXPECT_THAT(g_log, ElementsAre("a killfocus b", "b setfocus a"));

    g_log.clear();
    EXPECT_FALSE(EnableWindow(a, FALSE)) << "it was enabled";
    EXPECT_TRUE(EnableWindow(a, FALSE)) << "it was disabled";
    EXPECT_EQ(nullptr, SetFocus(a)) << "a disabled window takes no focus";
    EXPECT_EQ(b, GetFocus());
    EXPECT_FALSE(IsWindowEnabled(a));
    EXPECT_TRUE(EnableWindow(a, TRUE));
    EXPECT_THAT(g_log, ElementsAre("a enable 0", "a enable 1"));

    g_log.clear();
    EXPECT_FALSE(EnableWindow(b, FALSE));
    EXPECT_EQ(nullptr, GetFocus()) << "disabling the focus takes it away";
    EXPECT_THAT(g_log, ElementsAre("b killfocus ?", "b enable 0"));

    g_log.clear();
    EXPECT_TRUE(ShowWindow(top, SW_HIDE));
    EXPECT_FALSE(IsWindowVisible(a)) << "a child of a hidden window is not visible";
    EXPECT_FALSE(ShowWindow(top, SW_SHOW));
    EXPECT_TRUE(IsWindowVisible(a));
    EXPECT_THAT(g_log, ElementsAre("top show 0", "top show 1"));
    DestroyWindow(top);
}

TEST_F(WindowTest, GeometryPlacementAndMetrics)
{
    HWND top = Make("top", WS_POPUP | WS_CAPTION, nullptr, 0, {100, 200, 400, 500});
    HWND child = Make("child", WS_CHILD | WS_BORDER, top, 1, {10, 20, 60, 40});
    RECT r;
    ASSERT_TRUE(GetWindowRect(child, &r));
    // The caption's frame is 3 pixels and the caption 23: the client area starts at 103,226.
    EXPECT_EQ((std::vector<LONG>{113, 246, 163, 266}), Edges(r));
    GetClientRect(child, &r);
    EXPECT_EQ((std::vector<LONG>{0, 0, 48, 18}), Edges(r));
    POINT p{0, 0};
    MapWindowPoints(child, top, &p, 1);
    EXPECT_EQ((std::vector<LONG>{11, 21}), (std::vector<LONG>{p.x, p.y}));

    SetWindowPos(child, nullptr, 5, 6, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    GetWindowRect(child, &r);
    EXPECT_EQ((std::vector<LONG>{108, 232, 158, 252}), Edges(r)) << "moved, not resized";

    WINDOWPLACEMENT wp{};
    static_assert(sizeof(WINDOWPLACEMENT) == 44);
    ASSERT_TRUE(GetWindowPlacement(top, &wp));
    EXPECT_EQ(UINT(SW_SHOWNORMAL), wp.showCmd);
    EXPECT_EQ(100, wp.rcNormalPosition.left);
    wp.rcNormalPosition = {50, 60, 250, 160};
    wp.length = 40;
    EXPECT_FALSE(SetWindowPlacement(top, &wp));
    EXPECT_EQ(DWORD(ERROR_INVALID_PARAMETER), GetLastError());
    wp.length = sizeof wp;
    ASSERT_TRUE(SetWindowPlacement(top, &wp));
    GetWindowRect(top, &r);
    EXPECT_EQ((std::vector<LONG>{50, 60, 250, 160}), Edges(r));
    DestroyWindow(top);

    EXPECT_EQ(1920, GetSystemMetrics(SM_CXSCREEN));
    host::SetScreenSize(1280, 720);
    EXPECT_EQ(1280, GetSystemMetrics(SM_CXSCREEN));
    EXPECT_EQ(720, GetSystemMetrics(SM_CYSCREEN));
    host::SetScreenSize(1920, 1080);
    ASSERT_TRUE(GetWindowRect(GetDesktopWindow(), &r)) << "the desktop covers the screen";
    EXPECT_EQ((std::vector<LONG>{0, 0, 1920, 1080}), Edges(r));
    ASSERT_TRUE(SystemParametersInfoW(SPI_GETWORKAREA, 0, &r, 0));
    EXPECT_EQ(1040, r.bottom) << "less the task bar";
    EXPECT_TRUE(IsWindow(GetDesktopWindow()));
    int beeps = host::MessageBeepCount();
    MessageBeep(MB_OK);
    EXPECT_EQ(beeps + 1, host::MessageBeepCount());
}

struct DialogLog
{
    std::vector<std::string> messages;
    LPARAM initParam = 0;
};
DialogLog g_dialog;

INT_PTR CALLBACK LoggingDialog(HWND, UINT msg, WPARAM, LPARAM lp)
{
    if (msg == WM_SETFONT) {
        g_dialog.messages.push_back("setfont");
    } else if (msg == WM_INITDIALOG) {
        g_dialog.messages.push_back("initdialog");
        g_dialog.initParam = lp;
        return TRUE;
    }
    return FALSE;
}

class TemplateTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        module_ = LoadLibraryW(host::Utf8ToUtf16(QLM_TEST_DIALOGS_DLL).c_str());
        ASSERT_NE(nullptr, module_) << QLM_TEST_DIALOGS_DLL;
        g_dialog = {};
    }
    void TearDown() override { FreeLibrary(module_); }
    HMODULE module_ = nullptr;
};

TEST_F(TemplateTest, CreatesTheControlsOfAnExtendedTemplateInPixels)
{
    HWND dialog =
        CreateDialogParamW(module_, MAKEINTRESOURCEW(IDD_ALL), nullptr, LoggingDialog, 42);
    ASSERT_NE(nullptr, dialog);
    EXPECT_THAT(g_dialog.messages, ElementsAre("setfont", "initdialog"));
    EXPECT_EQ(42, g_dialog.initParam);
    EXPECT_EQ(GetDlgItem(dialog, IDC_NAME), GetFocus()) << "the first tab stop";

    // 200 x 150 dialog units at 6 x 13 pixels per 4 x 8 units, in a 3-pixel frame and a caption.
    RECT r;
    GetClientRect(dialog, &r);
    EXPECT_EQ(300, r.right);
    EXPECT_EQ(244, r.bottom);
    GetWindowRect(dialog, &r);
    EXPECT_EQ((std::vector<LONG>{15, 33, 15 + 306, 33 + 244 + 29}), Edges(r));
    WCHAR text[64];
    GetWindowTextW(dialog, text, 64);
    EXPECT_EQ(std::u16string(u"All controls"), text);

    struct
    {
        int id;
        const char16_t* className;
        DWORD style; // bits that must be set
        const char16_t* text;
        RECT pixels; // in the dialog's client area
    } expected[] = {
        {IDC_LABEL, u"Static", WS_CHILD | WS_VISIBLE | WS_GROUP, u"&Name:", {6, 7, 51, 20}},
        {IDC_NAME, u"Edit", WS_TABSTOP | ES_AUTOHSCROLL | WS_BORDER, u"", {60, 7, 150, 27}},
        {IDC_PAPER, u"ComboBox", CBS_DROPDOWNLIST | WS_VSCROLL, u"", {60, 59, 180, 157}},
        {IDC_LIST, u"ListBox", LBS_NOTIFY | WS_BORDER, u"", {195, 7, 285, 72}},
        {IDC_COLLATE, u"Button", BS_AUTOCHECKBOX | WS_TABSTOP, u"&Collate", {195, 81, 285, 97}},
        {IDC_PORTRAIT,
         u"Button",
         BS_AUTORADIOBUTTON | WS_GROUP,
         u"&Portrait",
         {204, 117, 279, 133}},
        {IDC_QUALITY, u"msctls_trackbar32", TBS_AUTOTICKS, u"", {6, 114, 156, 138}},
        {IDC_TEST, u"Button", WS_DISABLED, u"&Test", {60, 163, 135, 186}},
        {IDOK, u"Button", BS_DEFPUSHBUTTON, u"OK", {135, 211, 210, 234}},
    };
    for (const auto& e : expected) {
        SCOPED_TRACE(e.id);
        HWND c = GetDlgItem(dialog, e.id);
        ASSERT_NE(nullptr, c);
        GetClassNameW(c, text, 64);
        EXPECT_EQ(std::u16string(e.className), text);
        EXPECT_EQ(e.style, DWORD(GetWindowLongW(c, GWL_STYLE)) & e.style);
        GetWindowTextW(c, text, 64);
        EXPECT_EQ(std::u16string(e.text), text);
        GetWindowRect(c, &r);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&r), 2);
        EXPECT_EQ(Edges(e.pixels), Edges(r));
    }
    // The up-down took the control before it as its buddy and sits on the buddy's right edge.
    HWND count = GetDlgItem(dialog, IDC_COUNT);
    EXPECT_EQ(count, HWND(SendDlgItemMessageW(dialog, IDC_SPIN, UDM_GETBUDDY, 0, 0)));
    RECT buddy, spin;
    GetWindowRect(count, &buddy);
    GetWindowRect(GetDlgItem(dialog, IDC_SPIN), &spin);
    EXPECT_EQ(buddy.right, spin.left);
    EXPECT_EQ(60 - 15, buddy.right - buddy.left);
    EXPECT_TRUE(DestroyWindow(dialog));
}

TEST_F(TemplateTest, ReadsOldTemplatesAndRefusesMissingOrDamagedOnes)
{
    HWND dialog =
        CreateDialogParamW(module_, MAKEINTRESOURCEW(IDD_SMALL), nullptr, LoggingDialog, 0);
    ASSERT_NE(nullptr, dialog);
    WCHAR text[16];
    GetDlgItemTextW(dialog, IDCANCEL, text, 16);
    EXPECT_EQ(std::u16string(u"Cancel"), text);
    // Dialog units map with the host's base units, 6 x 13 pixels per 4 x 8 units.
    RECT r{4, 8, 6, 12};
    ASSERT_TRUE(MapDialogRect(dialog, &r));
    EXPECT_EQ((std::vector<LONG>{6, 13, 9, 20}), Edges(r));
    HWND edit = GetDlgItem(dialog, IDC_SMALL_EDIT);
    ASSERT_NE(nullptr, edit);
    EXPECT_FALSE(MapDialogRect(edit, &r)) << "only a dialog has dialog units";
    DestroyWindow(dialog);

    g_dialog.messages.clear();
    EXPECT_EQ(-1, DialogBoxParamW(module_, MAKEINTRESOURCEW(999), nullptr, LoggingDialog, 0));
    EXPECT_EQ(DWORD(ERROR_RESOURCE_NAME_NOT_FOUND), GetLastError());
    EXPECT_EQ(-1, DialogBoxParamW(module_, MAKEINTRESOURCEW(IDD_CUT), nullptr, LoggingDialog, 0));
    EXPECT_EQ(DWORD(ERROR_INVALID_PARAMETER), GetLastError());
    EXPECT_THAT(g_dialog.messages, ::testing::IsEmpty()) << "no dialog procedure ran";

    // Every prefix of a whole template is refused, read from a buffer of exactly that size.
    HRSRC found = FindResourceW(module_, MAKEINTRESOURCEW(IDD_ALL), RT_DIALOG);
    ASSERT_NE(nullptr, found);
    auto* bytes = static_cast<const uint8_t*>(LockResource(LoadResource(module_, found)));
    size_t size = SizeofResource(module_, found);
    for (size_t n = 0; n < size; ++n) {
        std::unique_ptr<uint8_t[]> copy(new uint8_t[n ? n : 1]);
        std::memcpy(copy.get(), bytes, n);
        size_t before = g_dialog.messages.size();
        HWND cut = host::detail::CreateDialogFromTemplate(module_, copy.get(), n, nullptr,
                                                          LoggingDialog, 0, u"cut");
        if (cut) {
            // Only the trailing padding of the last item may be missing.
            EXPECT_GE(n + 4, size) << n;
            DestroyWindow(cut);
        } else {
            EXPECT_EQ(before, g_dialog.messages.size()) << "no dialog procedure ran for " << n;
        }
    }
}

INT_PTR CALLBACK ResultDialog(HWND dialog, UINT msg, WPARAM wp, LPARAM lp)
{
    switch (msg) {
    case WM_INITDIALOG:
        SetWindowLongPtrW(dialog, DWLP_USER, lp);
        return 7; // WM_INITDIALOG's result is the procedure's own
    case WM_NOTIFY:
        SetWindowLongPtrW(dialog, DWLP_MSGRESULT, 5);
        return wp == 1; // handled only for the first; the other falls to the defaults
    case WM_CTLCOLORDLG:
        return 0x4321; // a brush, returned as it is
    }
    return FALSE;
}

TEST_F(TemplateTest, DialogProcedureResultsAndDialogData)
{
    int object = 0;
    HWND dialog = CreateDialogParamW(module_, MAKEINTRESOURCEW(IDD_SMALL), nullptr, ResultDialog,
                                     reinterpret_cast<LPARAM>(&object));
    ASSERT_NE(nullptr, dialog);
    EXPECT_EQ(reinterpret_cast<LONG_PTR>(&object), GetWindowLongPtrW(dialog, DWLP_USER));
    EXPECT_EQ(reinterpret_cast<LONG_PTR>(ResultDialog), GetWindowLongPtrW(dialog, DWLP_DLGPROC));
    EXPECT_EQ(7, SendMessageW(dialog, WM_INITDIALOG, 0, 0));
    NMHDR nm{dialog, 1, 0};
    EXPECT_EQ(5, SendMessageW(dialog, WM_NOTIFY, 1, reinterpret_cast<LPARAM>(&nm)))
        << "a handled message answers DWLP_MSGRESULT";
    EXPECT_EQ(0, SendMessageW(dialog, WM_NOTIFY, 2, reinterpret_cast<LPARAM>(&nm)));
    EXPECT_EQ(0x4321, SendMessageW(dialog, WM_CTLCOLORDLG, 0, 0));
    EXPECT_EQ(MAKELONG(IDOK, DC_HASDEFID), SendMessageW(dialog, DM_GETDEFID, 0, 0));
    EXPECT_TRUE(EndDialog(dialog, 3));
    EXPECT_FALSE(IsWindowVisible(dialog)) << "EndDialog hides a modeless dialog";
    EXPECT_TRUE(IsWindow(dialog));
    DestroyWindow(dialog);
    EXPECT_FALSE(EndDialog(dialog, 3));
    EXPECT_EQ(DWORD(ERROR_INVALID_WINDOW_HANDLE), GetLastError());
}

} // namespace
