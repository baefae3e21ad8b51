// comctl32's property sheet pages and compstui's CommonPropertySheetUIW: the common printer UI
// of the host. The sheet is a window whose children are the pages; the user simulation's
// actions switch pages, press OK, Cancel and Apply, or go to the controls of the page shown.
#include "hostinternal.h"
#include "hostsheet.h"
#include "wininternal.h"

#include <algorithm>
#include <map>
#include <memory>
#include <vector>

namespace {

struct Page
{
    PROPSHEETPAGEW psp = {};        // the caller's page as it was given, up to its dwSize
    std::vector<BYTE> templateCopy; // the template as a child window, made at creation
    HWND hwnd = nullptr;            // from the first activation on
};

struct PageTable
{
    std::map<uintptr_t, std::unique_ptr<Page>> pages;
    uintptr_t next = 0x7A000;
    host::SheetRun last;
};

PageTable& Pages()
{
    static auto* table = new PageTable;
    return *table;
}

Page* FindPage(HPROPSHEETPAGE hPage)
{
    auto& pages = Pages().pages;
    auto it = pages.find(reinterpret_cast<uintptr_t>(hPage));
    return it == pages.end() ? nullptr : it->second.get();
}

int TemplateNumber(const PROPSHEETPAGEW& psp)
{
    if (psp.dwFlags & PSP_DLGINDIRECT)
        return 0;
    uintptr_t value = reinterpret_cast<uintptr_t>(psp.pszTemplate);
    return value < 0x10000 ? static_cast<int>(value) : 0;
}

// The oldest page the sheet accepts: the fields up to pcRefParent.
constexpr DWORD kPROPSHEETPAGEW_V1_SIZE = 72;

// comctl32 makes a page a child control of the sheet, enabled and hidden until it is shown,
// whatever its template says: a template's WS_DISABLED would keep the focus out of the page.
constexpr DWORD kChildStyle = WS_CHILD | WS_TABSTOP | DS_CONTROL;
constexpr DWORD kTopLevelStyles =
    WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_DISABLED | WS_VISIBLE | DS_MODALFRAME;

// The page's template with the style of a child window, as the sheet creates its pages: the
// DLGTEMPLATEEX keeps its style at offset 12, the older DLGTEMPLATE at 0.
bool CopyTemplateAsChild(const PROPSHEETPAGEW& psp, std::vector<BYTE>* copy)
{
    const BYTE* bytes = nullptr;
    DWORD cb = 0;
    if (psp.dwFlags & PSP_DLGINDIRECT) {
        SetLastError(ERROR_NOT_SUPPORTED);
        return false;
    }
    HRSRC hInfo = FindResourceW(psp.hInstance, psp.pszTemplate, MAKEINTRESOURCEW(5));
    HGLOBAL hData = hInfo ? LoadResource(psp.hInstance, hInfo) : nullptr;
    bytes = static_cast<const BYTE*>(hData ? LockResource(hData) : nullptr);
    cb = hInfo ? SizeofResource(psp.hInstance, hInfo) : 0;
    if (!bytes || cb < 18) {
        if (bytes)
            SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
        return false;
    }
    copy->assign(bytes, bytes + cb);
    WORD signature[2];
    memcpy(signature, copy->data(), sizeof(signature));
    size_t offset = (signature[0] == 1 && signature[1] == 0xFFFF) ? 12 : 0;
    DWORD style;
    memcpy(&style, copy->data() + offset, sizeof(style));
    style = (style & ~kTopLevelStyles) | kChildStyle;
    memcpy(copy->data() + offset, &style, sizeof(style));
    return true;
}

// One run of CommonPropertySheetUIW.
class Sheet
{
public:
    Sheet(PFNPROPSHEETUI pfn, LPARAM lParam) : m_pfn(pfn), m_lParam(lParam) {}

    LONG Run(HWND hWndOwner, LPDWORD pResult);
    LONG_PTR ComPropSheet(UINT function, LPARAM lParam1, LPARAM lParam2);
    LRESULT SheetProc(UINT message, WPARAM wParam, LPARAM lParam);

private:
    LONG CallDriver(WORD reason, LPARAM lParam);
    bool Activate(size_t index);
    LRESULT Notify(Page& page, UINT code, LPARAM lParam);
    bool ApplyAll(bool ok);
    bool CancelAll();
    void ResetAll();
    void Close();
    size_t IndexOfTemplate(int templateId) const;

    PFNPROPSHEETUI m_pfn;
    LPARAM m_lParam;
    PROPSHEETUI_INFO m_info = {};
    HWND m_hwnd = nullptr;
    std::vector<HPROPSHEETPAGE> m_pages;
    size_t m_start = 0;
    size_t m_current = SIZE_MAX;
    std::vector<HWND> m_changed; // pages that lit the Apply button
    LONG_PTR m_result = CPSUI_CANCEL;
    host::SheetRun m_run;
};

Sheet* g_pSheet = nullptr; // the sheet being run; sheets do not nest

LONG_PTR CALLBACK ComPropSheetThunk(HANDLE hComPropSheet, UINT function, LPARAM lParam1,
                                    LPARAM lParam2)
{
    auto* pSheet = static_cast<Sheet*>(hComPropSheet);
    if (!pSheet || pSheet != g_pSheet) {
        SetLastError(ERROR_INVALID_HANDLE);
        return ERR_CPSUI_GETLASTERROR;
    }
    return pSheet->ComPropSheet(function, lParam1, lParam2);
}

LRESULT CALLBACK SheetWindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (g_pSheet && (message == PSM_CHANGED || message == PSM_UNCHANGED))
        return g_pSheet->SheetProc(message, wParam, lParam);
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

const WCHAR kSheetClass[] = u"QLMHostPropertySheet";

bool RegisterSheetClass()
{
    static bool registered = false;
    if (registered)
        return true;
    WNDCLASSW wc = {};
    wc.lpfnWndProc = SheetWindowProc;
    wc.lpszClassName = kSheetClass;
    registered = RegisterClassW(&wc) != 0;
    return registered;
}

LONG Sheet::CallDriver(WORD reason, LPARAM lParam)
{
    static const char* const kReasons[] = {"INIT", "GET_INFO_HEADER", "DESTROY", "SET_RESULT",
                                           "GET_ICON"};
    // Recorded before the call, so that what the driver asks of the sheet comes after it.
    size_t slot = m_run.calls.size();
    m_run.calls.push_back(reason < 5 ? kReasons[reason] : "REASON");
    m_info.Reason = reason;
    LONG rc = m_pfn(&m_info, lParam);
    m_run.calls[slot] += " " + std::to_string(rc);
    return rc;
}

LONG_PTR Sheet::ComPropSheet(UINT function, LPARAM lParam1, LPARAM lParam2)
{
    switch (function) {
    case CPSFUNC_ADD_HPROPSHEETPAGE: {
        m_run.calls.push_back("CPSFUNC_ADD_HPROPSHEETPAGE");
        auto hPage = reinterpret_cast<HPROPSHEETPAGE>(lParam1);
        if (!FindPage(hPage))
            return 0;
        m_pages.push_back(hPage);
        return static_cast<LONG_PTR>(m_pages.size()); // the page's handle within the sheet
    }
    case CPSFUNC_SET_HSTARTPAGE:
        m_run.calls.push_back("CPSFUNC_SET_HSTARTPAGE " + std::to_string(lParam1));
        if (lParam1 < 1 || static_cast<size_t>(lParam1) > m_pages.size())
            return 0;
        m_start = static_cast<size_t>(lParam1 - 1);
        return 1;
    case CPSFUNC_SET_RESULT: {
        // Delivered to the sheet's function at once, inside the page's PSN_APPLY; the last
        // value set is also what the sheet reports when it ends.
        m_run.calls.push_back("CPSFUNC_SET_RESULT " + std::to_string(lParam2));
        m_result = lParam2;
        m_run.result = lParam2;
        SETRESULT_INFO result = {};
        result.cbSize = sizeof(result);
        result.hSetResult = reinterpret_cast<HANDLE>(lParam1);
        result.Result = lParam2;
        CallDriver(PROPSHEETUI_REASON_SET_RESULT, reinterpret_cast<LPARAM>(&result));
        return 1;
    }
    default:
        m_run.calls.push_back("CPSFUNC " + std::to_string(function));
        return 0;
    }
}

LRESULT Sheet::SheetProc(UINT message, WPARAM wParam, LPARAM)
{
    HWND hPage = reinterpret_cast<HWND>(wParam);
    auto it = std::find(m_changed.begin(), m_changed.end(), hPage);
    if (message == PSM_CHANGED && it == m_changed.end())
        m_changed.push_back(hPage);
    else if (message == PSM_UNCHANGED && it != m_changed.end())
        m_changed.erase(it);
    return 0;
}

LRESULT Sheet::Notify(Page& page, UINT code, LPARAM lParam)
{
    PSHNOTIFY notify = {};
    notify.hdr.hwndFrom = m_hwnd;
    notify.hdr.idFrom = 0;
    notify.hdr.code = code;
    notify.lParam = lParam;
    SetWindowLongPtrW(page.hwnd, DWLP_MSGRESULT, 0);
    SendMessageW(page.hwnd, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notify));
    return GetWindowLongPtrW(page.hwnd, DWLP_MSGRESULT);
}

bool Sheet::Activate(size_t index)
{
    if (index >= m_pages.size())
        return false;
    Page* pOld = m_current < m_pages.size() ? FindPage(m_pages[m_current]) : nullptr;
    // A page that refuses to be left stays.
    if (pOld && pOld->hwnd && Notify(*pOld, PSN_KILLACTIVE, 0))
        return false;
    Page* pPage = FindPage(m_pages[index]);
    if (!pPage)
        return false;
    if (!pPage->hwnd) {
        pPage->hwnd = host::detail::CreateDialogFromTemplate(
            pPage->psp.hInstance, pPage->templateCopy.data(), pPage->templateCopy.size(), m_hwnd,
            pPage->psp.pfnDlgProc, reinterpret_cast<LPARAM>(&pPage->psp),
            host::Utf8ToUtf16(std::to_string(TemplateNumber(pPage->psp))));
        if (!pPage->hwnd)
            return false;
    }
    // As comctl32 does: the new page hears PSN_SETACTIVE before it is shown, and -1 keeps it
    // from being shown.
    if (Notify(*pPage, PSN_SETACTIVE, 0) == -1)
        return false;
    if (pOld && pOld->hwnd && pOld != pPage)
        ShowWindow(pOld->hwnd, SW_HIDE);
    m_current = index;
    m_run.activations.push_back(TemplateNumber(pPage->psp));
    ShowWindow(pPage->hwnd, SW_SHOW);
    return true;
}

// False when a page refused: the sheet then stays open.
bool Sheet::ApplyAll(bool ok)
{
    Page* pCurrent = m_current < m_pages.size() ? FindPage(m_pages[m_current]) : nullptr;
    if (pCurrent && pCurrent->hwnd && Notify(*pCurrent, PSN_KILLACTIVE, 0))
        return false;
    for (size_t i = 0; i < m_pages.size(); ++i) {
        Page* pPage = FindPage(m_pages[i]);
        if (!pPage || !pPage->hwnd)
            continue;
        LRESULT rc = Notify(*pPage, PSN_APPLY, ok ? 1 : 0);
        if (rc == PSNRET_INVALID || rc == PSNRET_INVALID_NOCHANGEPAGE) {
            if (rc == PSNRET_INVALID && i != m_current)
                Activate(i);
            return false;
        }
    }
    m_changed.clear();
    // Apply leaves the sheet open; its page is told it is active again.
    if (!ok && pCurrent && pCurrent->hwnd)
        Notify(*pCurrent, PSN_SETACTIVE, 0);
    return true;
}

// False when the page shown refuses the Cancel (PSN_QUERYCANCEL).
bool Sheet::CancelAll()
{
    Page* pCurrent = m_current < m_pages.size() ? FindPage(m_pages[m_current]) : nullptr;
    if (pCurrent && pCurrent->hwnd && Notify(*pCurrent, PSN_QUERYCANCEL, 0))
        return false;
    ResetAll();
    return true;
}

void Sheet::ResetAll()
{
    for (HPROPSHEETPAGE hPage : m_pages) {
        Page* pPage = FindPage(hPage);
        if (pPage && pPage->hwnd)
            Notify(*pPage, PSN_RESET, 0);
    }
}

size_t Sheet::IndexOfTemplate(int templateId) const
{
    for (size_t i = 0; i < m_pages.size(); ++i) {
        const Page* pPage = FindPage(m_pages[i]);
        if (pPage && TemplateNumber(pPage->psp) == templateId)
            return i;
    }
    return SIZE_MAX;
}

// Records what the pages show, then destroys them and the sheet.
void Sheet::Close()
{
    m_run.applyEnabled = !m_changed.empty();
    m_run.startPage = static_cast<int>(m_start);
    for (HPROPSHEETPAGE hPage : m_pages) {
        Page* pPage = FindPage(hPage);
        host::SheetPage page;
        if (pPage) {
            page.templateId = TemplateNumber(pPage->psp);
            page.created = pPage->hwnd != nullptr;
            if (pPage->hwnd) {
                page.dump = host::DumpWindow(pPage->hwnd);
                WCHAR title[256] = {};
                int cch = GetWindowTextW(pPage->hwnd, title, 256);
                page.title.assign(title, size_t(cch > 0 ? cch : 0));
                page.controls = host::DescribeWindow(pPage->hwnd);
            }
        }
        m_run.pages.push_back(std::move(page));
    }
    for (HPROPSHEETPAGE hPage : m_pages)
        DestroyPropertySheetPage(hPage);
    if (m_hwnd)
        DestroyWindow(m_hwnd);
    m_hwnd = nullptr;
}

LONG Sheet::Run(HWND hWndOwner, LPDWORD pResult)
{
    m_info.cbSize = sizeof(PROPSHEETUI_INFO);
    m_info.Version = PROPSHEETUI_INFO_VERSION;
    m_info.hComPropSheet = this;
    m_info.pfnComPropSheet = ComPropSheetThunk;
    m_info.lParamInit = m_lParam;
    if (!RegisterSheetClass())
        return ERR_CPSUI_GETLASTERROR;
    m_hwnd = CreateWindowExW(0, kSheetClass, u"Properties", WS_POPUP | WS_CAPTION, 0, 0, 640, 480,
                             hWndOwner, nullptr, nullptr, nullptr);

    LONG rc = CallDriver(PROPSHEETUI_REASON_INIT, m_lParam);
    if (m_hwnd && rc > 0)
        ShowWindow(m_hwnd, SW_SHOW);
    if (rc > 0 && !m_pages.empty() && Activate(m_start < m_pages.size() ? m_start : 0)) {
        bool open = true;
        while (open) {
            host::UserAction action;
            if (!host::TakeUserAction(&action)) {
                if (!CancelAll()) // the user closes the sheet: Cancel
                    ResetAll();
                break;
            }
            if (action.verb == "ok") {
                open = !ApplyAll(true);
            } else if (action.verb == "cancel") {
                open = !CancelAll();
            } else if (action.verb == "apply") {
                // Apply is lit only once a page has reported a change.
                if (m_changed.empty())
                    host::RecordUserScriptFailure(action,
                                                  "the window has no apply button to press");
                else
                    ApplyAll(false);
            } else if (action.verb == "expect-apply") {
                const bool lit = !m_changed.empty();
                if (lit != (action.text == "lit"))
                    host::RecordUserScriptFailure(action, std::string("the Apply button is ") +
                                                              (lit ? "lit" : "unlit"));
            } else if (action.verb == "tab") {
                size_t index = IndexOfTemplate(action.id);
                if (index == SIZE_MAX)
                    host::RecordUserScriptFailure(action, "the sheet has no page " +
                                                              std::to_string(action.id));
                // A page that keeps the sheet where it is has answered; one that cannot be
                // made is the script's failure.
                else if (!Activate(index) && !FindPage(m_pages[index])->hwnd)
                    host::RecordUserScriptFailure(action, "page " + std::to_string(action.id) +
                                                              " cannot be shown");
            } else if (m_current < m_pages.size()) {
                Page* pPage = FindPage(m_pages[m_current]);
                if (pPage && pPage->hwnd)
                    host::PerformUserAction(pPage->hwnd, action);
            }
        }
    }
    if (rc > 0) {
        Close();
    } else if (m_hwnd) {
        DestroyWindow(m_hwnd);
    }
    CallDriver(PROPSHEETUI_REASON_DESTROY, rc > 0 ? 1 : 0);
    if (pResult)
        *pResult = static_cast<DWORD>(m_result);
    {
        host::detail::Lock lock(host::detail::StateMutex());
        Pages().last = m_run;
    }
    return rc > 0 ? static_cast<LONG>(m_result) : rc;
}

} // namespace

namespace host {

SheetRun LastSheetRun()
{
    detail::Lock lock(detail::StateMutex());
    return Pages().last;
}

size_t detail::LivePageCount()
{
    detail::Lock lock(detail::StateMutex());
    return Pages().pages.size();
}

} // namespace host

extern "C" {

HPROPSHEETPAGE WINAPI CreatePropertySheetPageW(LPCPROPSHEETPAGEW lppsp)
{
    if (!lppsp || lppsp->dwSize < kPROPSHEETPAGEW_V1_SIZE ||
        lppsp->dwSize > sizeof(PROPSHEETPAGEW)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    auto page = std::make_unique<Page>();
    memcpy(&page->psp, lppsp, lppsp->dwSize);
    if (!CopyTemplateAsChild(page->psp, &page->templateCopy))
        return nullptr;
    host::detail::Lock lock(host::detail::StateMutex());
    PageTable& table = Pages();
    uintptr_t handle = table.next;
    table.next += 8;
    table.pages[handle] = std::move(page);
    return reinterpret_cast<HPROPSHEETPAGE>(handle);
}

BOOL WINAPI DestroyPropertySheetPage(HPROPSHEETPAGE hPage)
{
    std::unique_ptr<Page> page;
    {
        host::detail::Lock lock(host::detail::StateMutex());
        auto& pages = Pages().pages;
        auto it = pages.find(reinterpret_cast<uintptr_t>(hPage));
        if (it == pages.end()) {
            SetLastError(ERROR_INVALID_HANDLE);
            return FALSE;
        }
        page = std::move(it->second);
        pages.erase(it);
    }
    if (page->hwnd && IsWindow(page->hwnd))
        DestroyWindow(page->hwnd);
    return TRUE;
}

LONG WINAPI CommonPropertySheetUIW(HWND hWndOwner, PFNPROPSHEETUI pfnPropSheetUI, LPARAM lParam,
                                   LPDWORD pResult)
{
    if (!pfnPropSheetUI || g_pSheet) {
        SetLastError(ERROR_INVALID_PARAMETER); // no function, or a sheet already open
        return ERR_CPSUI_GETLASTERROR;
    }
    Sheet sheet(pfnPropSheetUI, lParam);
    g_pSheet = &sheet;
    LONG rc = sheet.Run(hWndOwner, pResult);
    g_pSheet = nullptr;
    return rc;
}

} // extern "C"
