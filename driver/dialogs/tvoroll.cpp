#include "tvoroll.h"

#include "../config/tvoconfg.h"
#include "../devmode/tvodm.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "../../resources/qlmres.h"

#include <cstring>
#include <initializer_list>

namespace {

const DWORD kRollLockList[] = {IDC_ROLL_HEAD_ROLL,
                               IDC_ROLL_HEAD_SIZE,
                               IDC_ROLL_HEAD_TYPE,
                               IDC_ROLL_CAPTION1,
                               IDC_ROLL_SIZE1,
                               IDC_ROLL_TYPE1,
                               IDC_ROLL_CAPTION1 + 1,
                               IDC_ROLL_SIZE1 + 1,
                               IDC_ROLL_TYPE1 + 1,
                               IDC_ROLL_CAPTION1 + 2,
                               IDC_ROLL_SIZE1 + 2,
                               IDC_ROLL_TYPE1 + 2,
                               IDC_ROLL_CAPTION1 + 3,
                               IDC_ROLL_SIZE1 + 3,
                               IDC_ROLL_TYPE1 + 3,
                               IDC_ROLL_CAPTION1 + 4,
                               IDC_ROLL_SIZE1 + 4,
                               IDC_ROLL_TYPE1 + 4,
                               IDC_ROLL_CAPTION1 + 5,
                               IDC_ROLL_SIZE1 + 5,
                               IDC_ROLL_TYPE1 + 5,
                               IDC_ROLL_SHEET_CAPTION,
                               IDC_ROLL_SHEET_SIZE,
                               IDC_ROLL_SHEET_TYPE,
                               IDC_DEFAULTS,
                               IDC_LOGO,
                               0};

constexpr int kROWS = kMAX_ROLLS;
enum eRollColumn
{
    kLABEL,
    kSIZE,
    kTYPE,
    kSTATUS,
};
const int kRowControls[kROWS][4] = {
    {IDC_ROLL_CAPTION1, IDC_ROLL_SIZE1, IDC_ROLL_TYPE1, IDC_ROLL_STATUS1},
    {IDC_ROLL_CAPTION1 + 1, IDC_ROLL_SIZE1 + 1, IDC_ROLL_TYPE1 + 1, IDC_ROLL_STATUS1 + 1},
    {IDC_ROLL_CAPTION1 + 2, IDC_ROLL_SIZE1 + 2, IDC_ROLL_TYPE1 + 2, IDC_ROLL_STATUS1 + 2},
    {IDC_ROLL_CAPTION1 + 3, IDC_ROLL_SIZE1 + 3, IDC_ROLL_TYPE1 + 3, IDC_ROLL_STATUS1 + 3},
    {IDC_ROLL_CAPTION1 + 4, IDC_ROLL_SIZE1 + 4, IDC_ROLL_TYPE1 + 4, IDC_ROLL_STATUS1 + 4},
    {IDC_ROLL_CAPTION1 + 5, IDC_ROLL_SIZE1 + 5, IDC_ROLL_TYPE1 + 5, IDC_ROLL_STATUS1 + 5},
};
const int kSheetRow[] = {IDC_ROLL_SHEET_CAPTION, IDC_ROLL_SHEET_SIZE, IDC_ROLL_SHEET_TYPE};
const int kButtons[] = {IDOK, IDCANCEL, IDC_DEFAULTS};

constexpr int kLABEL_GAP = 20;
constexpr int kFIELD_GAP = 10;
constexpr int kBUTTON_GAP = 9;
constexpr int kSTATUS_CCH = 513;

// A row that the table does not have stands for identifiers that no control has.
int RowControl(int row, eRollColumn column)
{
    return row >= 0 && row < kROWS ? kRowControls[row][column] : 0;
}

// The words for a roll's state; without a printer that answers there is none to tell.
UINT StatusString(BOOL bBiDi, DWORD status)
{
    if (!bBiDi)
        return IDS_ROLL_STATUS_NONE;
    switch (status) {
    case 1:
        return IDS_ROLL_STATUS_FULL;
    case 2:
        return IDS_ROLL_STATUS_LOW;
    case 3:
        return IDS_ROLL_STATUS_EMPTY;
    default:
        return IDS_ROLL_STATUS_NONE;
    }
}

} // namespace

WORD QLMModelRollCount(DWORD model)
{
    switch (model) {
    case kMODEL_2410:
    case kMODEL_3310:
    case kMODEL_3344:
        return 2;
    case kMODEL_2445:
    case kMODEL_318P:
    case kMODEL_3320:
    case kMODEL_3320A:
        return 4;
    default:
        return 3;
    }
}

TVORollConfigDlg::TVORollConfigDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM)
{
    m_iResourceID = IDD_ROLLCONFIG;
    m_pConfig = pConfig;
    m_pDM = pDM;
    m_pPermissionIDs = kRollLockList;
    if (m_pConfig && m_pDM && !QLMPortIsBiDi(m_pConfig->m_hPrinter))
        m_pDM->dmxNumRolls = QLMModelRollCount(m_pConfig->m_PrinterModel);
}

TVORollConfigDlg::~TVORollConfigDlg() = default;

// The control's window rectangle in the dialog's client coordinates.
static RECT ChildRect(HWND hDlg, HWND hChild)
{
    RECT r = {};
    GetWindowRect(hChild, &r);
    POINT corners[2] = {{r.left, r.top}, {r.right, r.bottom}};
    ScreenToClient(hDlg, &corners[0]);
    ScreenToClient(hDlg, &corners[1]);
    return RECT{corners[0].x, corners[0].y, corners[1].x, corners[1].y};
}

void TVORollConfigDlg::MoveControlBelow(int srcId, int destId, int gap)
{
    HWND hwndDest = destId ? GetDlgItem(m_hWnd, destId) : nullptr;
    HWND hwndSrc = srcId ? GetDlgItem(m_hWnd, srcId) : nullptr;
    ASSERT(hwndDest);
    ASSERT(hwndSrc);
    if (!hwndDest || !hwndSrc)
        return;
    const RECT dest = ChildRect(m_hWnd, hwndDest);
    RECT size = {};
    GetClientRect(hwndSrc, &size);
    MoveWindow(hwndSrc, dest.left, dest.bottom + gap, size.right - size.left,
               size.bottom - size.top, TRUE);
}

void TVORollConfigDlg::SetControlsFromDM()
{
    QLM_TRACE_SCOPE(TEXT("TVORollConfigDlg::SetControlsFromDM"), g_bTraceTVORollConfigDlg);
    if (!m_pDM || !m_pConfig) {
        ASSERT(m_pDM && m_pConfig);
        return;
    }
    const int n = m_pDM->dmxNumRolls;
    const BOOL bBiDi = m_pDM->dmxBiDi != 0;
    const BOOL bSheetFeed = m_pConfig->m_bHasSheetFeed != 0;

    if (n < kROWS) {
        for (int row = n; row < kROWS; ++row) {
            for (eRollColumn column : {kLABEL, kSIZE, kTYPE, kSTATUS})
                ShowWindow(GetDlgItem(m_hWnd, RowControl(row, column)), SW_HIDE);
        }
        // The sheet feed row takes the place of the first hidden row.
        const int anchor = bSheetFeed ? n - 1 : n - 2;
        MoveControlBelow(IDC_ROLL_SHEET_CAPTION, RowControl(anchor, kLABEL), kLABEL_GAP);
        MoveControlBelow(IDC_ROLL_SHEET_SIZE, RowControl(anchor, kSIZE), kFIELD_GAP);
        MoveControlBelow(IDC_ROLL_SHEET_TYPE, RowControl(anchor, kTYPE), kFIELD_GAP);
        if (!bSheetFeed) {
            for (int id : kSheetRow)
                ShowWindow(GetDlgItem(m_hWnd, id), SW_HIDE);
        }

        // The buttons follow the sheet row, and the dialog's bottom follows the buttons.
        HWND hwndOK = GetDlgItem(m_hWnd, IDOK);
        const RECT okBefore = hwndOK ? ChildRect(m_hWnd, hwndOK) : RECT{};
        HWND hwndLabel = GetDlgItem(m_hWnd, IDC_ROLL_SHEET_CAPTION);
        ASSERT(hwndLabel);
        if (hwndLabel) {
            const RECT label = ChildRect(m_hWnd, hwndLabel);
            for (int id : kButtons) {
                HWND hwndButton = GetDlgItem(m_hWnd, id);
                ASSERT(hwndButton);
                if (!hwndButton)
                    continue;
                const RECT r = ChildRect(m_hWnd, hwndButton);
                MoveWindow(hwndButton, r.left, label.bottom + kBUTTON_GAP, r.right - r.left,
                           r.bottom - r.top, TRUE);
            }
        }
        if (hwndOK) {
            const RECT okAfter = ChildRect(m_hWnd, hwndOK);
            RECT dialog = {};
            GetWindowRect(m_hWnd, &dialog);
            SetWindowPos(m_hWnd, nullptr, 0, 0, dialog.right - dialog.left,
                         dialog.bottom - dialog.top - (okBefore.top - okAfter.top),
                         SWP_NOMOVE | SWP_NOZORDER);
        }
    }

    // One round past the last roll, which fills the first hidden row too; a round past the
    // table has no control to fill and no field to read.
    for (int row = 0; row <= n && row < kROWS; ++row) {
        m_pConfig->fillComboBox1(m_hWnd, RowControl(row, kSIZE), m_pConfig->m_RollSizeList,
                                 m_pDM->dmxRollSize[row]);
        m_pConfig->fillComboBox1(m_hWnd, RowControl(row, kTYPE), m_pConfig->m_MediaTypeList,
                                 m_pDM->dmxRollType[row]);
        if (bBiDi) {
            for (eRollColumn column : {kLABEL, kSIZE, kTYPE})
                EnableWindow(GetDlgItem(m_hWnd, RowControl(row, column)), FALSE);
        }
    }
    if (bSheetFeed) {
        m_pConfig->fillComboBox1(m_hWnd, IDC_ROLL_SHEET_SIZE, m_pConfig->m_SheetSizeList,
                                 m_pDM->dmxSheetSize);
        m_pConfig->fillComboBox1(m_hWnd, IDC_ROLL_SHEET_TYPE, m_pConfig->m_MediaTypeList,
                                 m_pDM->dmxSheetType);
        if (bBiDi) {
            for (int id : kSheetRow)
                EnableWindow(GetDlgItem(m_hWnd, id), FALSE);
        }
    }
    // What the printer reported is not the user's to restore.
    if (bBiDi)
        EnableWindow(GetDlgItem(m_hWnd, IDC_DEFAULTS), FALSE);

    for (int row = 0; row <= n && row < kROWS; ++row) {
        const UINT id = StatusString(bBiDi, m_pDM->dmxRollStatus[row]);
        WCHAR status[kSTATUS_CCH] = {};
        if (!LoadStringW(m_pConfig->m_hResources, id, status, kSTATUS_CCH)) {
            Trace(TEXT("Error updating roll status, can't load string resource %d\n"), id);
            WstrCopy(status, kSTATUS_CCH, m_pConfig->getResourceString(id));
        }
        SetDlgItemTextW(m_hWnd, RowControl(row, kSTATUS), status);
    }
    LockControls(m_pConfig->m_bHasPermission);
}

void TVORollConfigDlg::UpdateDMFromControls()
{
    QLM_TRACE_SCOPE(TEXT("TVORollConfigDlg::UpdateDMFromControls"), g_bTraceTVORollConfigDlg);
    if (!m_pDM)
        return;
    // The same rounds as the filling: the first hidden row gives back the value it was given.
    const int n = m_pDM->dmxNumRolls;
    for (int row = 0; row <= n && row < kROWS; ++row) {
        m_pDM->dmxRollType[row] = GetComboSelection(RowControl(row, kTYPE));
        m_pDM->dmxRollSize[row] = GetComboSelection(RowControl(row, kSIZE));
    }
    // The printer's report stays in dmxSheetSize; the user's choice is a field of its own.
    m_pDM->dmxSheetSizeSetting = GetComboSelection(IDC_ROLL_SHEET_SIZE);
    m_pDM->dmxSheetTypeSetting = GetComboSelection(IDC_ROLL_SHEET_TYPE);
    if (!m_pDM->dmxBiDi)
        setModified(TRUE);
}

void TVORollConfigDlg::SetPrinterDefaults()
{
    if (m_pDM) {
        m_pDM->dmxSheetSizeSetting = 1;
        m_pDM->dmxSheetTypeSetting = 0;
        for (int row = 0; row < kROWS; ++row) {
            m_pDM->dmxRollStatus[row] = 1;
            m_pDM->dmxRollSize[row] = 8;
            m_pDM->dmxRollType[row] = 0;
        }
    }
    SetControlsFromDM();
    setModified(TRUE);
    SetFocus(m_hWnd);
}

INT_PTR TVORollConfigDlg::DialogProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        SetControlsFromDM();
        return 1;
    case WM_COMMAND:
        switch (LOWORD(wParam)) {
        case IDOK:
            UpdateDMFromControls();
            EndDialog(m_hWnd, 1);
            break;
        case IDCANCEL:
            EndDialog(m_hWnd, 2);
            break;
        case IDC_DEFAULTS:
            SetPrinterDefaults();
            break;
        default:
            break;
        }
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
