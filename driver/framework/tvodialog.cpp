#include "tvodialog.h"

#include "../config/tvoconfg.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "../../resources/qlmres.h"

#include <cstring>

const WCHAR kNUMERIC_EDIT_CHARS[] = TEXT("01234567890-+.,");

namespace {

constexpr DWORD kHELP_DIRECTORY_BYTES = 324;
constexpr int kRANGE_TEXT_CCH = 512;
const WCHAR kUNKNOWN_LABEL[] = TEXT("?unknown?");
// What the warning says when the library's format cannot be trusted with three texts.
const WCHAR kFALLBACK_RANGE_FORMAT[] = TEXT("%s: %s .. %s");

void RemoveMnemonics(WCHAR* text)
{
    WCHAR* out = text;
    for (const WCHAR* in = text; *in; ++in) {
        if (*in != '&')
            *out++ = *in;
    }
    *out = 0;
}

} // namespace

TVODialog::TVODialog() = default;

TVODialog::~TVODialog() = default;

BOOL TVODialog::DefaultTrue()
{
    return TRUE;
}

void TVODialog::setModified(BOOL bModified)
{
    m_bModified = bModified;
}

void TVODialog::OnDMChange()
{
    QLM_TRACE_SCOPE(TEXT("TVODialog::OnDMChange"), g_bTraceTVODialog);
    ASSERT(m_pDM);
    ASSERT(m_pConfig);
    SetControlsFromDM();
    setModified(FALSE);
}

void TVODialog::SetControlsFromDM() {}

void TVODialog::LockControls(BOOL bHasPermission)
{
    ASSERT(m_pPermissionIDs != 0);
    if (bHasPermission || !m_pPermissionIDs || m_pPermissionIDs[0] == 0)
        return;
    for (const DWORD* pId = m_pPermissionIDs; *pId; ++pId) {
        HWND hControl = GetDlgItem(m_hWnd, static_cast<int>(*pId));
        if (hControl)
            EnableWindow(hControl, FALSE);
    }
}

INT_PTR TVODialog::doModal(HWND hWndParent)
{
    QLM_TRACE_SCOPE(TEXT("TVODialog::doModal"), g_bTraceTVODialog);
    ASSERT(m_pConfig);
    ASSERT(hWndParent);
    HINSTANCE hResources = m_pConfig ? m_pConfig->m_hResources : nullptr;
    INT_PTR result = DialogBoxParamW(hResources, MAKEINTRESOURCEW(m_iResourceID), hWndParent,
                                     TVODialogProcedure, reinterpret_cast<LPARAM>(this));
    Trace(TEXT("DialogBoxParam(%d) returns %d"), m_iResourceID, static_cast<int>(result));
    return result;
}

DWORD TVODialog::GetComboSelection(int controlId)
{
    LRESULT index = SendDlgItemMessageW(m_hWnd, controlId, CB_GETCURSEL, 0, 0);
    return static_cast<DWORD>(
        SendDlgItemMessageW(m_hWnd, controlId, CB_GETITEMDATA, static_cast<WPARAM>(index), 0));
}

void TVODialog::CenterDialog(HWND hWndReference)
{
    const int screenWidth = GetSystemMetrics(SM_CXSCREEN);
    const int screenHeight = GetSystemMetrics(SM_CYSCREEN);
    if (!hWndReference)
        hWndReference = GetWindow(m_hWnd, GW_OWNER);

    // Without a reference the screen's height and width stand crossed, and so do the limits
    // below: dialogs have always stood there, and users know where to look for them.
    RECT reference = {0, 0, screenHeight, screenWidth};
    if (hWndReference)
        GetWindowRect(hWndReference, &reference);
    const int centerX = (reference.left + reference.right) / 2;
    const int centerY = (reference.top + reference.bottom) / 2;

    RECT own = {};
    GetWindowRect(m_hWnd, &own);
    const int width = own.right - own.left;
    const int height = own.bottom - own.top;
    int x = centerX - width / 2;
    int y = centerY - height / 2;
    if (x < 0)
        x = 0;
    else if (x + width > screenHeight)
        x = screenHeight - width;
    if (y < 0)
        y = 0;
    else if (y + height > screenWidth)
        y = screenWidth - height;
    SetWindowPos(m_hWnd, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
}

void TVODialog::SubclassNumericEdit(int controlId)
{
    HWND hEdit = GetDlgItem(m_hWnd, controlId);
    ASSERT(hEdit);
    // One value for the whole dialog: all of its numeric fields are edits of one class.
    m_wpOrigEditProc = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(
        hEdit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(TVODialogNumericEditSubclassProc)));
    ASSERT(m_wpOrigEditProc);
}

void TVODialog::EnableForFirmware(const int* ids, int count, LONG minimumRevision)
{
    EnableControls(ids, count, m_pDM && m_pDM->dmxFirmwareRevision >= minimumRevision);
}

void TVODialog::EnableControls(const int* ids, int count, BOOL bEnable)
{
    for (int i = 0; i < count; ++i) {
        HWND hControl = GetDlgItem(m_hWnd, ids[i]);
        if (hControl)
            EnableWindow(hControl, bEnable);
    }
}

TVOWorkingCopyDialog::TVOWorkingCopyDialog(int resourceId, TVOPrinterConfiguration* pConfig,
                                           DEVMODEEX* pDM, const DWORD* pPermissionIDs)
    : m_pOrigDM(pDM)
{
    m_iResourceID = resourceId;
    m_pConfig = pConfig;
    m_pPermissionIDs = pPermissionIDs;
    memset(static_cast<void*>(&m_DM), 0, sizeof(m_DM));
    if (pDM)
        memcpy(static_cast<void*>(&m_DM), pDM, sizeof(m_DM));
    m_pDM = pDM ? &m_DM : nullptr;
}

void TVOWorkingCopyDialog::KeepWorkingCopy()
{
    if (m_pOrigDM)
        memcpy(static_cast<void*>(m_pOrigDM), &m_DM, sizeof(m_DM));
    m_pDM = m_pOrigDM;
}

void TVOWorkingCopyDialog::DropWorkingCopy()
{
    m_pDM = m_pOrigDM;
}

void TVOWorkingCopyDialog::OnClose()
{
    EndDialog(m_hWnd, 2);
}

void TVOWorkingCopyDialog::OnDestroy() {}

INT_PTR TVOWorkingCopyDialog::DialogProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        return OnInitDialog();
    case WM_COMMAND:
        if (m_pDM && m_pConfig)
            OnCommand(LOWORD(wParam), HIWORD(wParam));
        else if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)
            EndDialog(m_hWnd, 2);
        return 0;
    case WM_NOTIFY:
        return OnNotify(reinterpret_cast<const NMHDR*>(lParam));
    case WM_HELP:
        OnHelp(m_hWnd, wParam, reinterpret_cast<const HELPINFO*>(lParam));
        return 0;
    case WM_CLOSE:
        OnClose();
        return 0;
    case WM_DESTROY:
        OnDestroy();
        return 0;
    default:
        return 0;
    }
}

void TVODialog::ShowRangeMessage(int controlId, DWORD cchLabel, const WCHAR* minimum,
                                 const WCHAR* maximum)
{
    WCHAR format[kRANGE_TEXT_CCH] = {};
    if (m_pConfig)
        WstrCopy(format, kRANGE_TEXT_CCH, m_pConfig->getResourceString(IDS_RANGE_ERROR));
    if (!WstrFormatTakesTexts(format, 3)) {
        Trace(TEXT("range error format unusable: \"%s\""), format);
        WstrCopy(format, kRANGE_TEXT_CCH, kFALLBACK_RANGE_FORMAT);
    }

    WCHAR label[257] = {};
    if (!GetDlgItem(m_hWnd, controlId)) {
        ASSERT(0 != GetDlgItem(m_hWnd, controlId));
        WstrCopy(label, cchLabel, kUNKNOWN_LABEL);
    } else {
        GetDlgItemTextW(m_hWnd, controlId, label, static_cast<int>(cchLabel));
    }
    RemoveMnemonics(label);

    WCHAR message[kRANGE_TEXT_CCH];
    WstrPrintf(message, kRANGE_TEXT_CCH, format, label, minimum, maximum);
    // The record's device name, which need not be terminated within its field.
    WCHAR caption[CCHDEVICENAME + 1] = {};
    if (m_pDM)
        WstrNCopy(caption, m_pDM->dmPublic.dmDeviceName, CCHDEVICENAME);
    MessageBoxW(m_hWnd, message, caption, MB_ICONEXCLAMATION);
}

void TVODialog::ShowRangeError(int controlId, long minimum, long maximum)
{
    WCHAR low[24], high[24];
    WstrPrintf(low, 24, TEXT("%d"), static_cast<int>(minimum));
    WstrPrintf(high, 24, TEXT("%d"), static_cast<int>(maximum));
    ShowRangeMessage(controlId, 128, low, high);
}

void TVODialog::ShowRangeError(int controlId, TVOFixed minimum, TVOFixed maximum)
{
    const eDistanceUnits units =
        m_pDM ? static_cast<eDistanceUnits>(m_pDM->dmxUnits) : kFIXED_INCHES;
    // toString hands out one shared buffer: each text is copied before the next.
    WCHAR low[32], high[32];
    WstrCopy(low, 32, minimum.toString(units));
    WstrCopy(high, 32, maximum.toString(units));
    ShowRangeMessage(controlId, 256, low, high);
}

void TVODialog::OnHelp(HWND hWnd, WPARAM wParam, const HELPINFO* helpInfo)
{
    QLM_TRACE_SCOPE(TEXT("TVODialog::OnHelp"), g_bTraceTVODialog);
    (void)wParam;
    HH_POPUP popup;
    memset(&popup, 0xFF, sizeof(popup));
    popup.cbStruct = 72;
    popup.hinst = nullptr;
    popup.idString = helpInfo ? static_cast<UINT>(helpInfo->iCtrlId) : 0;
    popup.pszText = nullptr;
    if (helpInfo)
        popup.pt = helpInfo->MousePos;
    popup.pszFont = nullptr;

    WCHAR path[MAX_PATH] = {};
    DWORD cbNeeded = 0;
    if (GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<LPBYTE>(path),
                                   kHELP_DIRECTORY_BYTES, &cbNeeded)) {
        OSVERSIONINFOW version = {};
        version.dwOSVersionInfoSize = sizeof(version);
        const BOOL bVersion = GetVersionExW(&version);
        WstrCat(path, MAX_PATH,
                bVersion && version.dwMajorVersion >= 5 ? TEXT("\\3\\") : TEXT("\\2\\"));
        WstrCat(path, MAX_PATH, TEXT("QLMDrv.chm::/cshelp.txt"));
    }
    HWND hHelp = HtmlHelpW(hWnd, path, HH_DISPLAY_TEXT_POPUP, reinterpret_cast<DWORD_PTR>(&popup));
    Trace(TEXT("HtmlHelp(%s, %d) returns %p"), path, popup.idString, static_cast<void*>(hHelp));
}

eDistanceUnits TVODialog::DisplayUnits() const
{
    const DWORD eDistanceUnits = m_pDM ? m_pDM->dmxUnits : kDISTANCE_INCHES;
    ASSERT(eDistanceUnits == kDISTANCE_MM || eDistanceUnits == kDISTANCE_INCHES);
    return eDistanceUnits == kDISTANCE_MM ? kFIXED_MM : kFIXED_INCHES;
}

TVOFixed TVODialog::GetDistanceText(int editId, int cch)
{
    WCHAR text[64] = {};
    GetDlgItemTextW(m_hWnd, editId, text, cch < 64 ? cch : 64);
    return TVOFixed(text);
}

void TVODialog::SetDistanceText(int editId, TVOFixed value)
{
    SetDlgItemTextW(m_hWnd, editId, value.toString(DisplayUnits()));
}

void TVODialog::SpinDistanceField(int editId, int delta, TVOFixed minimum, TVOFixed maximum,
                                  int cch)
{
    TVOFixed value = GetDistanceText(editId, cch);
    value.spinDistanceUnits(DisplayUnits(), delta);
    if (value > maximum)
        value = maximum;
    if (value < minimum)
        value = minimum;
    SetDistanceText(editId, value);
}

void TVODialog::SetUnitTexts(const int* ids, int count)
{
    if (!m_pConfig)
        return;
    const UINT unit = DisplayUnits() == kFIXED_MM ? IDS_UNITS_MM : IDS_UNITS_INCHES;
    for (int i = 0; i < count; ++i)
        SetDlgItemTextW(m_hWnd, ids[i], m_pConfig->getResourceString(unit));
}

INT_PTR CALLBACK TVODialogProcedure(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    TVODialog* pDlg = nullptr;
    if (message == WM_INITDIALOG) {
        // The title bar's help button.
        SetWindowLongW(hWnd, GWL_EXSTYLE, GetWindowLongW(hWnd, GWL_EXSTYLE) | WS_EX_CONTEXTHELP);
        ASSERT(lParam != 0);
        pDlg = reinterpret_cast<TVODialog*>(lParam);
        if (!pDlg)
            return 0;
        pDlg->m_hWnd = hWnd;
        SetWindowLongPtrW(hWnd, DWLP_USER, reinterpret_cast<LONG_PTR>(pDlg));
        pDlg->CenterDialog(GetParent(hWnd));
    } else {
        // Messages that come before WM_INITDIALOG find no object.
        pDlg = reinterpret_cast<TVODialog*>(GetWindowLongPtrW(hWnd, DWLP_USER));
        if (!pDlg)
            return 0;
    }
    return pDlg->DialogProc(message, wParam, lParam);
}

LRESULT CALLBACK TVODialogNumericEditSubclassProc(HWND hWnd, UINT message, WPARAM wParam,
                                                  LPARAM lParam)
{
    if (message == WM_CHAR && wParam != 8) {
        const WCHAR c = static_cast<WCHAR>(wParam);
        if (c == 0 || !WstrChr(kNUMERIC_EDIT_CHARS, c)) {
            MessageBeep(0);
            return 0;
        }
    }
    TVODialog* pDlg = reinterpret_cast<TVODialog*>(GetWindowLongPtrW(GetParent(hWnd), DWLP_USER));
    if (!pDlg) {
        ASSERT(pDlg != 0);
        return 0;
    }
    if (!pDlg->m_wpOrigEditProc)
        return 0;
    return CallWindowProcW(pDlg->m_wpOrigEditProc, hWnd, message, wParam, lParam);
}
