// The common printer UI on Windows, played by this program: the driver's PFNPROPSHEETUI is
// given a PROPSHEETUI_INFO and a pfnComPropSheet of ours, its pages go into comctl32's
// PropertySheetW, and SET_RESULT reaches the driver at once, as compstui delivers it. (Wine's
// compstui lacks CPSFUNC_SET_RESULT, so CommonPropertySheetUIW itself cannot serve.)
//
// The script runs from a thread timer, which every modal loop (the sheet's, a dialog's, a
// message box's, a menu's) dispatches when its queue is empty: each tick takes one action and
// applies it to the window that is active then, so what an action opens is there for the next.
#include "sheetrun.h"

#include "scriptcase.h"

#include "winuser.h"

#include <windows.h>

#include <cstring>
#include <cwchar>
#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

using usersim::UserAction;

constexpr UINT kTickMs = 5;
// A script that finds no window to act on for this long has stalled.
constexpr DWORD kStallMs = 10000;
constexpr int kApplyButton = 0x3021;
// The open-file dialog's file name box: the combo box of newer templates, the edit of older.
constexpr int kFileNameCombo = 0x47C;
constexpr int kFileNameEdit = 0x480;

class ScriptedSheet;
ScriptedSheet* g_pSheet = nullptr; // one sheet at a time, as on the host

// A picture of the window's client area as it stands on the screen, as a 24-bit BMP file. The
// frame is left out: without a window manager nothing draws it, and its place shows whatever
// lies behind.
void SaveSnapshot(HWND window, const std::wstring& path)
{
    RECT r;
    if (!GetClientRect(window, &r))
        return;
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&r), 2);
    int cx = r.right - r.left, cy = r.bottom - r.top;
    if (cx <= 0 || cy <= 0)
        return;
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    BITMAPINFO bmi = {};
    bmi.bmiHeader.biSize = sizeof(bmi.bmiHeader);
    bmi.bmiHeader.biWidth = cx;
    bmi.bmiHeader.biHeight = cy;
    bmi.bmiHeader.biPlanes = 1;
    bmi.bmiHeader.biBitCount = 24;
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(screen, &bmi, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, cx, cy, screen, r.left, r.top, SRCCOPY);
    SelectObject(memory, old);
    DWORD cbImage = DWORD(((cx * 3 + 3) & ~3) * cy);
    BITMAPFILEHEADER file = {};
    file.bfType = 0x4D42;
    file.bfOffBits = sizeof(file) + sizeof(bmi.bmiHeader);
    file.bfSize = file.bfOffBits + cbImage;
    HANDLE h = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (h != INVALID_HANDLE_VALUE) {
        DWORD written;
        WriteFile(h, &file, sizeof(file), &written, nullptr);
        WriteFile(h, &bmi.bmiHeader, sizeof(bmi.bmiHeader), &written, nullptr);
        WriteFile(h, bits, cbImage, &written, nullptr);
        CloseHandle(h);
    }
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
}

// With QLMWIN_SNAPSHOTS naming a folder, each window the script meets is pictured there once:
// the sheet once for each page shown, as page-TEMPLATE.bmp, and every other window (dialogs,
// message boxes) as window-N.bmp in the order met.
class Snapshots
{
public:
    Snapshots()
    {
        wchar_t folder[MAX_PATH] = {};
        if (GetEnvironmentVariableW(L"QLMWIN_SNAPSHOTS", folder, MAX_PATH))
            m_folder = folder;
    }
    // pageTemplate is the page's template when window is the sheet, else 0.
    void Take(HWND window, HWND page, int pageTemplate)
    {
        if (m_folder.empty() || m_seen.count({window, page}))
            return;
        m_seen.insert({window, page});
        RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        wchar_t name[32];
        if (page)
            swprintf(name, 32, L"\\page-%d.bmp", pageTemplate);
        else
            swprintf(name, 32, L"\\window-%d.bmp", ++m_windows);
        SaveSnapshot(window, m_folder + name);
    }

private:
    std::wstring m_folder;
    std::set<std::pair<HWND, HWND>> m_seen;
    int m_windows = 0;
};

// Which template each page was made from, learnt where the driver makes its pages.
std::map<HPROPSHEETPAGE, int> g_PageTemplates;
decltype(&CreatePropertySheetPageW) g_pfnCreatePage = nullptr;

HPROPSHEETPAGE WINAPI RecordingCreatePage(LPCPROPSHEETPAGEW psp)
{
    HPROPSHEETPAGE hPage = g_pfnCreatePage(psp);
    if (hPage && psp && !(psp->dwFlags & PSP_DLGINDIRECT) && IS_INTRESOURCE(psp->pszTemplate))
        g_PageTemplates[hPage] = int(reinterpret_cast<ULONG_PTR>(psp->pszTemplate));
    return hPage;
}

// Turns the driver module's import of CreatePropertySheetPageW to the recording one.
void HookPageCreation(HMODULE module)
{
    auto* base = reinterpret_cast<BYTE*>(module);
    auto* dos = reinterpret_cast<IMAGE_DOS_HEADER*>(base);
    auto* nt = reinterpret_cast<IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& dir =
        nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (!dir.VirtualAddress)
        return;
    for (auto* imp = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + dir.VirtualAddress);
         imp->Name; ++imp) {
        if (_stricmp(reinterpret_cast<const char*>(base + imp->Name), "comctl32.dll") != 0)
            continue;
        auto* names = reinterpret_cast<IMAGE_THUNK_DATA*>(base + imp->OriginalFirstThunk);
        auto* slots = reinterpret_cast<IMAGE_THUNK_DATA*>(base + imp->FirstThunk);
        for (; names->u1.AddressOfData; ++names, ++slots) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal))
                continue;
            auto* byName = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
            if (strcmp(reinterpret_cast<const char*>(byName->Name), "CreatePropertySheetPageW"))
                continue;
            if (reinterpret_cast<void*>(slots->u1.Function) ==
                reinterpret_cast<void*>(&RecordingCreatePage))
                return;
            DWORD old;
            VirtualProtect(&slots->u1.Function, sizeof(slots->u1.Function), PAGE_READWRITE, &old);
            g_pfnCreatePage = reinterpret_cast<decltype(g_pfnCreatePage)>(slots->u1.Function);
            slots->u1.Function = reinterpret_cast<ULONG_PTR>(&RecordingCreatePage);
            VirtualProtect(&slots->u1.Function, sizeof(slots->u1.Function), old, &old);
            return;
        }
    }
}

class ScriptedSheet
{
public:
    ScriptedSheet(PFNPROPSHEETUI pfn, LPARAM lParam, std::vector<UserAction> actions)
        : m_pfn(pfn), m_lParam(lParam), m_actions(actions.begin(), actions.end())
    {
        WCHAR folder[MAX_PATH] = {};
        DWORD cch = GetCurrentDirectoryW(MAX_PATH, folder);
        if (cch > 0 && cch < MAX_PATH)
            m_startFolder = folder;
    }

    void Run(SheetRunReport* report);
    // A modal dialog instead of a sheet: open shows it and gives its result.
    INT_PTR RunModal(const std::function<INT_PTR()>& open, std::vector<std::string>* failures);
    LONG_PTR ComPropSheet(UINT function, LPARAM lParam1, LPARAM lParam2);
    void Tick();
    void PageDestroyed(HWND page);

private:
    LONG Call(WORD reason, LPARAM lParam);
    HWND Target() const;
    bool IsSheet(HWND window) const { return window && window == m_hSheet; }
    void WatchPages();
    void Perform(HWND target, const UserAction& action);
    void Finish(HWND target);
    void Fail(const UserAction& action, const std::string& message);
    int PageIndexOf(int templateId) const;

    PFNPROPSHEETUI m_pfn;
    LPARAM m_lParam;
    std::deque<UserAction> m_actions;
    PROPSHEETUI_INFO m_info = {};
    std::vector<HPROPSHEETPAGE> m_pages;
    size_t m_start = 0;
    LONG_PTR m_result = CPSUI_CANCEL;
    HWND m_hSheet = nullptr;
    std::map<HWND, size_t> m_pageWindows; // page windows watched, by page index
    std::vector<SheetPageReport> m_reports;
    std::vector<std::string> m_failures;
    DWORD m_idleSince = 0;
    bool m_stalled = false;
    Snapshots m_snapshots;
    // Where the run started: a file dialog moves the process's current folder to its file's.
    std::wstring m_startFolder;

    friend int CALLBACK SheetCallback(HWND, UINT, LPARAM);
};

LONG_PTR CALLBACK ComPropSheetThunk(HANDLE hComPropSheet, UINT function, LPARAM lParam1,
                                    LPARAM lParam2)
{
    auto* sheet = static_cast<ScriptedSheet*>(hComPropSheet);
    if (!sheet || sheet != g_pSheet) {
        SetLastError(ERROR_INVALID_HANDLE);
        return ERR_CPSUI_GETLASTERROR;
    }
    return sheet->ComPropSheet(function, lParam1, lParam2);
}

void CALLBACK TimerThunk(HWND, UINT, UINT_PTR, DWORD)
{
    if (g_pSheet)
        g_pSheet->Tick();
}

int CALLBACK SheetCallback(HWND hwnd, UINT message, LPARAM)
{
    if (message == PSCB_INITIALIZED && g_pSheet)
        g_pSheet->m_hSheet = hwnd;
    return 0;
}

LRESULT CALLBACK PageSubclass(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                              DWORD_PTR)
{
    // The controls are still there while their page is told it goes.
    if (message == WM_DESTROY && g_pSheet)
        g_pSheet->PageDestroyed(hwnd);
    return DefSubclassProc(hwnd, message, wParam, lParam);
}

LONG ScriptedSheet::Call(WORD reason, LPARAM lParam)
{
    m_info.Reason = reason;
    return m_pfn(&m_info, lParam);
}

LONG_PTR ScriptedSheet::ComPropSheet(UINT function, LPARAM lParam1, LPARAM lParam2)
{
    switch (function) {
    case CPSFUNC_ADD_HPROPSHEETPAGE:
        if (!lParam1)
            return 0;
        m_pages.push_back(reinterpret_cast<HPROPSHEETPAGE>(lParam1));
        return static_cast<LONG_PTR>(m_pages.size()); // the page's handle within the sheet
    case CPSFUNC_SET_HSTARTPAGE:
        if (lParam1 < 1 || size_t(lParam1) > m_pages.size())
            return 0;
        m_start = size_t(lParam1 - 1);
        return 1;
    case CPSFUNC_SET_RESULT: {
        // Delivered to the sheet's function at once; the last one is the sheet's result.
        m_result = lParam2;
        SETRESULT_INFO result = {};
        result.cbSize = sizeof(result);
        result.hSetResult = reinterpret_cast<HANDLE>(lParam1);
        result.Result = lParam2;
        Call(PROPSHEETUI_REASON_SET_RESULT, reinterpret_cast<LPARAM>(&result));
        return 1;
    }
    default:
        return 0;
    }
}

// The window the next action is for: the thread's active window, when it takes input.
HWND ScriptedSheet::Target() const
{
    HWND active = GetActiveWindow();
    if (active && IsWindowVisible(active) && IsWindowEnabled(active))
        return active;
    return nullptr;
}

int ScriptedSheet::PageIndexOf(int templateId) const
{
    for (size_t i = 0; i < m_pages.size(); ++i) {
        auto it = g_PageTemplates.find(m_pages[i]);
        if (it != g_PageTemplates.end() && it->second == templateId)
            return int(i);
    }
    return -1;
}

void ScriptedSheet::WatchPages()
{
    if (!m_hSheet)
        return;
    for (size_t i = 0; i < m_pages.size(); ++i) {
        HWND page = reinterpret_cast<HWND>(SendMessageW(m_hSheet, PSM_INDEXTOHWND, i, 0));
        if (page && !m_pageWindows.count(page)) {
            m_pageWindows[page] = i;
            SetWindowSubclass(page, PageSubclass, 1, 0);
        }
    }
}

void ScriptedSheet::PageDestroyed(HWND page)
{
    auto it = m_pageWindows.find(page);
    if (it == m_pageWindows.end() || it->second >= m_reports.size())
        return;
    SheetPageReport& report = m_reports[it->second];
    report.created = true;
    WCHAR title[256] = {};
    int cch = GetWindowTextW(page, title, 256);
    report.title.assign(reinterpret_cast<const char16_t*>(title), size_t(cch > 0 ? cch : 0));
    report.controls = usersim::DescribeControls(page);
    RemoveWindowSubclass(page, PageSubclass, 1);
}

void ScriptedSheet::Fail(const UserAction& action, const std::string& message)
{
    m_failures.push_back(usersim::FailureText(action, message));
}

// With no actions left a sheet or dialog is cancelled, and a message box gets its default.
void ScriptedSheet::Finish(HWND target)
{
    if (IsSheet(target)) {
        winuser::PressButton(target, IDCANCEL);
        return;
    }
    DWORD def = DWORD(SendMessageW(target, DM_GETDEFID, 0, 0));
    if (HIWORD(def) == DC_HASDEFID && !winuser::PressButton(target, IDCANCEL))
        winuser::PressButton(target, LOWORD(def));
    else if (!winuser::PressButton(target, IDCANCEL))
        PostMessageW(target, WM_CLOSE, 0, 0);
}

void ScriptedSheet::Perform(HWND target, const UserAction& action)
{
    const std::string& verb = action.verb;
    std::string failure;
    if (verb == "ok" || verb == "cancel" || verb == "apply") {
        int id = verb == "ok" ? IDOK : verb == "cancel" ? IDCANCEL : kApplyButton;
        if (!IsSheet(target) && verb == "apply")
            Fail(action, "'apply' is for the property sheet");
        else if (!winuser::PressButton(target, id))
            Fail(action, "the window has no " + verb + " button to press");
        return;
    }
    if (verb == "expect-apply") {
        const bool lit = IsSheet(target) && IsWindowEnabled(GetDlgItem(target, kApplyButton));
        if (!IsSheet(target))
            Fail(action, "'expect-apply' is for the property sheet");
        else if (lit != (action.text == "lit"))
            Fail(action, std::string("the Apply button is ") + (lit ? "lit" : "unlit"));
        return;
    }
    if (verb == "tab") {
        int index = IsSheet(target) ? PageIndexOf(action.id) : -1;
        if (index < 0) {
            Fail(action, "the sheet has no page " + std::to_string(action.id));
            return;
        }
        // The tab clicked, as a person chooses a page.
        HWND tabs = reinterpret_cast<HWND>(SendMessageW(target, PSM_GETTABCONTROL, 0, 0));
        RECT r = {};
        SendMessageW(tabs, TCM_GETITEMRECT, WPARAM(index), reinterpret_cast<LPARAM>(&r));
        LPARAM point = MAKELPARAM((r.left + r.right) / 2, (r.top + r.bottom) / 2);
        SendMessageW(tabs, WM_LBUTTONDOWN, MK_LBUTTON, point);
        SendMessageW(tabs, WM_LBUTTONUP, 0, point);
        return;
    }
    if (verb == "answer") {
        static const struct
        {
            const char* word;
            int id;
        } kAnswers[] = {
            {"yes", IDYES},     {"no", IDNO},         {"ok", IDOK},       {"cancel", IDCANCEL},
            {"retry", IDRETRY}, {"ignore", IDIGNORE}, {"abort", IDABORT}, {"continue", IDCONTINUE}};
        // The message's text is the static 0xFFFF of the box, on Windows as under Wine.
        WCHAR text[1024] = {};
        GetDlgItemTextW(target, 0xFFFF, text, 1024);
        std::u16string message(reinterpret_cast<const char16_t*>(text));
        if (usersim::Utf16ToUtf8(message).find(action.expected) == std::string::npos)
            Fail(action, "the message box says " + usersim::QuoteText(message));
        for (const auto& row : kAnswers) {
            if (action.text != row.word)
                continue;
            bool pressed = winuser::PressButton(target, row.id) ||
                           (row.id == IDRETRY && winuser::PressButton(target, IDTRYAGAIN));
            if (!pressed) {
                Fail(action, "the message box has no " + action.text + " button");
                Finish(target);
            }
        }
        return;
    }
    if (verb == "file") {
        if (action.text == "cancel") {
            winuser::PressButton(target, IDCANCEL);
            return;
        }
        HWND box = GetDlgItem(target, kFileNameCombo);
        WCHAR boxClass[32] = {};
        if (box && GetClassNameW(box, boxClass, 32) && !lstrcmpiW(boxClass, WC_COMBOBOXEXW)) {
            // An extended combo box hands out its edit itself (Wine's template has one).
            box = reinterpret_cast<HWND>(SendMessageW(box, CBEM_GETEDITCONTROL, 0, 0));
        } else if (box) {
            COMBOBOXINFO info = {};
            info.cbSize = sizeof(info);
            GetComboBoxInfo(box, &info);
            box = info.hwndItem;
        } else {
            box = GetDlgItem(target, kFileNameEdit);
        }
        if (!box) {
            Fail(action, "no file dialog is open");
            return;
        }
        // A relative path is the run's, as on the host: neither the dialog's start folder's
        // nor that of a file an earlier dialog chose.
        std::u16string typed = usersim::Utf8ToUtf16(action.text);
        std::wstring path(typed.begin(), typed.end());
        const bool absolute = (path.size() >= 2 && path[1] == L':') ||
                              (!path.empty() && (path[0] == L'\\' || path[0] == L'/'));
        if (!absolute && !m_startFolder.empty())
            path = m_startFolder + L"\\" + path;
        WCHAR full[MAX_PATH] = {};
        DWORD cch = GetFullPathNameW(path.c_str(), MAX_PATH, full, nullptr);
        winuser::TypeText(box, cch > 0 && cch < MAX_PATH
                                   ? usersim::Utf16ToUtf8(reinterpret_cast<const char16_t*>(full))
                                   : action.text);
        winuser::PressButton(target, IDOK);
        return;
    }
    if (verb == "menu") {
        Fail(action, "no popup menu is open");
        return;
    }
    // The controls of the sheet's page shown, or of the dialog.
    HWND window = target;
    if (IsSheet(target))
        window = reinterpret_cast<HWND>(SendMessageW(target, PSM_GETCURRENTPAGEHWND, 0, 0));
    if (!winuser::PerformControlAction(window, action, &failure))
        Fail(action, failure);
}

void ScriptedSheet::Tick()
{
    WatchPages();
    // A popup menu being tracked takes the next action when it is a menu choice.
    HWND menu = FindWindowW(L"#32768", nullptr);
    if (menu && IsWindowVisible(menu) && !m_actions.empty() && m_actions.front().verb == "menu") {
        UserAction action = m_actions.front();
        m_actions.pop_front();
        HMENU hMenu = reinterpret_cast<HMENU>(SendMessageW(menu, MN_GETHMENU, 0, 0));
        int count = hMenu ? GetMenuItemCount(hMenu) : 0;
        for (int i = 0; i < count; ++i) {
            if (GetMenuItemID(hMenu, i) == UINT(action.number)) {
                for (int k = 0; k <= i; ++k)
                    PostMessageW(menu, WM_KEYDOWN, VK_DOWN, 0);
                PostMessageW(menu, WM_KEYDOWN, VK_RETURN, 0);
                return;
            }
        }
        Fail(action, "the menu has no command " + std::to_string(action.number));
        PostMessageW(menu, WM_KEYDOWN, VK_ESCAPE, 0);
        return;
    }
    HWND target = Target();
    if (!target) {
        if (!m_idleSince)
            m_idleSince = GetTickCount();
        else if (!m_stalled && GetTickCount() - m_idleSince > kStallMs) {
            m_stalled = true;
            m_failures.push_back("no window took the script's next action");
        }
        return;
    }
    m_idleSince = 0;
    HWND page = IsSheet(target)
                    ? reinterpret_cast<HWND>(SendMessageW(target, PSM_GETCURRENTPAGEHWND, 0, 0))
                    : nullptr;
    auto shown = page ? m_pageWindows.find(page) : m_pageWindows.end();
    m_snapshots.Take(target, page,
                     shown != m_pageWindows.end() && shown->second < m_reports.size()
                         ? m_reports[shown->second].templateId
                         : 0);
    if (m_actions.empty() || m_stalled) {
        Finish(target);
        return;
    }
    UserAction action = m_actions.front();
    m_actions.pop_front();
    Perform(target, action);
}

void ScriptedSheet::Run(SheetRunReport* report)
{
    m_info.cbSize = sizeof(m_info);
    m_info.Version = PROPSHEETUI_INFO_VERSION;
    m_info.hComPropSheet = this;
    m_info.pfnComPropSheet = ComPropSheetThunk;
    m_info.lParamInit = m_lParam;
    UINT_PTR timer = SetTimer(nullptr, 0, kTickMs, TimerThunk);

    LONG rc = Call(PROPSHEETUI_REASON_INIT, m_lParam);
    m_reports.resize(m_pages.size());
    for (size_t i = 0; i < m_pages.size(); ++i) {
        auto it = g_PageTemplates.find(m_pages[i]);
        m_reports[i].templateId = it == g_PageTemplates.end() ? 0 : it->second;
    }
    if (rc > 0 && !m_pages.empty()) {
        PROPSHEETHEADERW header = {};
        header.dwSize = sizeof(header);
        header.dwFlags = PSH_USECALLBACK | PSH_NOCONTEXTHELP;
        header.hwndParent = nullptr;
        header.pszCaption = L"Printing Preferences";
        header.nPages = UINT(m_pages.size());
        header.nStartPage = UINT(m_start < m_pages.size() ? m_start : 0);
        header.phpage = m_pages.data();
        header.pfnCallback = SheetCallback;
        PropertySheetW(&header);
    } else if (rc > 0) {
        m_failures.push_back("the sheet's function added no pages");
    }
    KillTimer(nullptr, timer);
    Call(PROPSHEETUI_REASON_DESTROY, rc > 0 ? 1 : 0);
    for (const UserAction& left : m_actions)
        Fail(left, "not performed: the sheet had closed");
    report->rc = rc > 0 ? LONG(m_result) : rc;
    report->result = DWORD(m_result);
    report->pages = m_reports;
    report->failures = m_failures;
}

INT_PTR ScriptedSheet::RunModal(const std::function<INT_PTR()>& open,
                                std::vector<std::string>* failures)
{
    UINT_PTR timer = SetTimer(nullptr, 0, kTickMs, TimerThunk);
    INT_PTR result = open();
    KillTimer(nullptr, timer);
    for (const UserAction& left : m_actions)
        Fail(left, "not performed: the dialog had closed");
    *failures = m_failures;
    return result;
}

void InitControls()
{
    static bool initialized = false;
    if (!initialized) {
        INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_WIN95_CLASSES};
        InitCommonControlsEx(&controls);
        initialized = true;
    }
}

} // namespace

bool RunSheet(PFNPROPSHEETUI pfn, LPARAM lParam, const std::string& script, SheetRunReport* report,
              std::string* error)
{
    std::vector<UserAction> actions;
    if (!usersim::ParseUserScript(script, &actions, error))
        return false;
    InitControls();
    HMODULE module = nullptr;
    if (GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                               GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           reinterpret_cast<LPCWSTR>(pfn), &module))
        HookPageCreation(module);
    ScriptedSheet sheet(pfn, lParam, std::move(actions));
    g_pSheet = &sheet;
    sheet.Run(report);
    g_pSheet = nullptr;
    return true;
}

bool RunDialog(const std::function<INT_PTR()>& open, const std::string& script, INT_PTR* result,
               std::vector<std::string>* failures, std::string* error)
{
    std::vector<UserAction> actions;
    if (!usersim::ParseUserScript(script, &actions, error))
        return false;
    InitControls();
    ScriptedSheet runner(nullptr, 0, std::move(actions));
    g_pSheet = &runner;
    *result = runner.RunModal(open, failures);
    g_pSheet = nullptr;
    return true;
}

// The simulated plotter is a Linux program: the Wine run (scripts/test-wine.sh) starts one on
// each case's address before the batch, so here the printer is already there to be found.
std::unique_ptr<CasePrinter> StartCasePrinter(const std::string&, const std::string& words,
                                              std::string* error)
{
    CasePjlsim setting;
    if (!ParseCasePjlsim(words, &setting, error))
        return nullptr;
    return std::make_unique<CasePrinter>();
}
