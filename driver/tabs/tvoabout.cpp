#include "tvoabout.h"

#include "../config/tvoconfg.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "../../resources/qlmres.h"

#include <cstring>
#include <iterator>
#include <new>

namespace {

const DWORD kAboutLockList[] = {0};

const struct
{
    DWORD model;
    int bitmap;
} kModelBitmaps[] = {
    {0, IDB_MODEL_0}, {1, IDB_MODEL_1}, {3, IDB_MODEL_3},   {6, IDB_MODEL_6},   {7, IDB_MODEL_7},
    {8, IDB_MODEL_8}, {9, IDB_MODEL_8}, {10, IDB_MODEL_10}, {11, IDB_MODEL_11},
};

const struct
{
    const WCHAR* file;
    int control;
} kVersionFiles[] = {
    {TEXT("\\3\\QLMUIDrv.DLL"), IDC_ABOUT_UIDRV_VERSION},
    {TEXT("\\3\\QLMPDDrv.DLL"), IDC_ABOUT_PDDRV_VERSION},
    {TEXT("\\3\\QLMRes.DLL"), IDC_ABOUT_RES_VERSION},
};

const int kHeavyControls[] = {IDC_ABOUT_HEAVY1, IDC_ABOUT_HEAVY3, IDC_ABOUT_HEAVY2};

constexpr int kVERSION_CCH = 128;
constexpr DWORD kDIRECTORY_BYTES = 260;

HBITMAP LoadBitmapResource(TVOPrinterConfiguration* pConfig, int id, UINT flags)
{
    return static_cast<HBITMAP>(LoadImageW(pConfig ? pConfig->m_hResources : nullptr,
                                           MAKEINTRESOURCEW(id), IMAGE_BITMAP, 0, 0, flags));
}

// What the tab and the dialog show alike: the text, the two pictures and the three versions.
void ShowAbout(HWND hDlg, TVOPrinterConfiguration* pConfig)
{
    WCHAR text[257] = {};
    GetDlgItemTextW(hDlg, IDC_ABOUT_TEXT, text, 256);
    WCHAR again[257];
    WstrPrintf(again, 257, TEXT("%s%s"), TEXT(""), text);
    SetDlgItemTextW(hDlg, IDC_ABOUT_TEXT, again);

    HBITMAP hModel = LoadBitmapResource(
        pConfig, QLMModelBitmap(pConfig ? pConfig->m_PrinterModel : 0xFFFFFFFF), LR_DEFAULTSIZE);
    SendDlgItemMessageW(hDlg, IDC_ABOUT_MODEL_BITMAP, STM_SETIMAGE, IMAGE_BITMAP,
                        reinterpret_cast<LPARAM>(hModel));
    HBITMAP hPicture = LoadBitmapResource(pConfig, IDB_ABOUT, LR_DEFAULTSIZE | LR_LOADMAP3DCOLORS);
    SendDlgItemMessageW(hDlg, IDC_ABOUT_BITMAP, STM_SETIMAGE, IMAGE_BITMAP,
                        reinterpret_cast<LPARAM>(hPicture));

    WCHAR directory[kDIRECTORY_BYTES / sizeof(WCHAR)] = {};
    DWORD cbNeeded = 0;
    GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<LPBYTE>(directory),
                               kDIRECTORY_BYTES, &cbNeeded);
    directory[std::size(directory) - 1] = 0;
    for (const auto& row : kVersionFiles) {
        WCHAR path[MAX_PATH];
        WstrCopy(path, MAX_PATH, directory);
        WstrCat(path, MAX_PATH, row.file);
        WCHAR version[kVERSION_CCH];
        memset(version, 0, sizeof(version));
        QLMGetProductVersion(path, version, kVERSION_CCH);
        SetDlgItemTextW(hDlg, row.control, version);
    }
}

// The heavy font of three statics: the dialog's own font at weight 900. A new one is made on
// each opening and none is ever deleted.
void SetHeavyFont(HWND hDlg, LOGFONTW* pLogFont, HFONT* pFont)
{
    HFONT hFont = reinterpret_cast<HFONT>(SendMessageW(hDlg, WM_GETFONT, 0, 0));
    if (!hFont)
        return;
    GetObjectW(hFont, sizeof(LOGFONTW), pLogFont);
    pLogFont->lfWeight = 900;
    *pFont = CreateFontIndirectW(pLogFont);
    for (int id : kHeavyControls)
        SendDlgItemMessageW(hDlg, id, WM_SETFONT, reinterpret_cast<WPARAM>(*pFont), TRUE);
}

// Per thread, as sheets of different queues may open on different threads.
thread_local LOGFONTW s_tabLogFont;
thread_local HFONT s_hTabFont;
thread_local LOGFONTW s_dlgLogFont;
thread_local HFONT s_hDlgFont;

} // namespace

int QLMModelBitmap(DWORD model)
{
    for (const auto& row : kModelBitmaps) {
        if (row.model == model)
            return row.bitmap;
    }
    return IDB_MODEL_OTHER;
}

BOOL QLMGetProductVersion(LPCWSTR path, WCHAR* buffer, DWORD characters)
{
    DWORD handle = 0;
    DWORD cb = GetFileVersionInfoSizeW(path, &handle);
    if (cb == 0)
        return 0;
    BYTE* block = new (std::nothrow) BYTE[cb];
    if (!block)
        return 0;
    BOOL bResult = 0;
    void* pValue = nullptr;
    UINT cbValue = 0;
    if (GetFileVersionInfoW(path, 0, cb, block) &&
        VerQueryValueW(block, TEXT("\\"), &pValue, &cbValue) &&
        VerQueryValueW(block, TEXT("\\VarFileInfo\\Translation"), &pValue, &cbValue) &&
        cbValue >= 2 * sizeof(WORD)) {
        WORD translation[2];
        memcpy(translation, pValue, sizeof(translation));
        WCHAR query[64];
        WstrPrintf(query, 64, TEXT("\\StringFileInfo\\%04X%04X\\ProductVersion"), translation[0],
                   translation[1]);
        if (VerQueryValueW(block, query, &pValue, &cbValue) && characters > 0) {
            memset(buffer, 0, characters * sizeof(WCHAR));
            DWORD cch = cbValue < characters ? cbValue : characters - 1;
            memcpy(buffer, pValue, cch * sizeof(WCHAR));
            buffer[characters - 1] = 0;
            bResult = 1;
        }
    }
    delete[] block;
    return bResult;
}

TVOAboutTab::TVOAboutTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig, BOOL bFlag)
    : TVOTab(lpdi, pConfig, IDD_ABOUT_TAB), m_bFlag(bFlag)
{
    m_pPermissionIDs = kAboutLockList;
}

BOOL TVOAboutTab::OnInitDialog()
{
    QLM_TRACE_SCOPE(TEXT("TVOAboutTab::OnInitDialog"), g_bTraceAboutTab);
    ASSERT(m_pDM);
    ASSERT(m_pConfig);
    ShowAbout(m_hWnd, m_pConfig);
    SetControlsFromDM();
    SetModified(FALSE);
    SetHeavyFont(m_hWnd, &s_tabLogFont, &s_hTabFont);
    return 1;
}

void TVOAboutTab::SetControlsFromDM()
{
    LockControls(m_pConfig ? m_pConfig->m_bHasPermission : 0);
}

INT_PTR TVOAboutTab::DialogProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        return OnInitDialog();
    case WM_NOTIFY:
        OnNotify(m_hWnd, wParam, reinterpret_cast<NMHDR*>(lParam));
        return 0;
    case WM_HELP:
        OnHelp(m_hWnd, wParam, reinterpret_cast<const HELPINFO*>(lParam));
        return 0;
    case WM_DEVMODECHANGE:
        OnDMChange();
        return 0;
    default:
        return 0;
    }
}

TVOAboutDlg::TVOAboutDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM)
{
    m_iResourceID = IDD_ABOUT;
    m_pConfig = pConfig;
    m_pDM = pDM;
}

BOOL TVOAboutDlg::OnInitDialog()
{
    QLM_TRACE_SCOPE(TEXT("TVOAboutDlg::OnInitDialog"), g_bTraceAboutTab);
    ASSERT(m_pDM);
    ASSERT(m_pConfig);
    ShowAbout(m_hWnd, m_pConfig);
    SetHeavyFont(m_hWnd, &s_dlgLogFont, &s_hDlgFont);
    return 1;
}

INT_PTR TVOAboutDlg::DialogProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        return OnInitDialog();
    case WM_COMMAND:
        if (LOWORD(wParam) == IDOK)
            EndDialog(m_hWnd, 1);
        else if (LOWORD(wParam) == IDCANCEL)
            EndDialog(m_hWnd, 2);
        return 0;
    case WM_CLOSE:
        EndDialog(m_hWnd, 2);
        return 0;
    case WM_HELP:
        OnHelp(m_hWnd, wParam, reinterpret_cast<const HELPINFO*>(lParam));
        return 0;
    default:
        return 0;
    }
}
