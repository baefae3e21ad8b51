#include "tvodset.h"

#include "../config/tvoconfg.h"
#include "../devmode/tvodm.h"
#include "../dialogs/tvoacct.h"
#include "../dialogs/tvojba.h"
#include "../dialogs/tvoroll.h"
#include "../dialogue/qlmrefresh.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/qlmutils.h"
#include "../foundation/wstr.h"
#include "../../resources/qlmres.h"

#include <cstddef>
#include <cstring>
#include <iterator>

namespace {

// The static labels stand before their controls. The roll button is not here: a user without
// permission still sees the rolls, locked by the roll dialog's own list.
const DWORD kDeviceLockList[] = {IDC_DEVICE_UNITS_CAPTION,
                                 IDC_DEVICE_INCHES,
                                 IDC_DEVICE_MM,
                                 IDC_DEVICE_BIDI_CAPTION,
                                 IDC_DEVICE_REFRESH_ON_OPEN,
                                 IDC_DEVICE_REFRESH,
                                 IDC_ACCOUNT_CAPTION,
                                 IDC_DEVICE_ACCOUNTING,
                                 IDC_DEVICE_ACCOUNT_IDS,
                                 IDC_DEVICE_FIRMWARE_CAPTION,
                                 IDC_DEVICE_FIRMWARE,
                                 IDC_DEVICE_FINISHER_CAPTION,
                                 IDC_DEVICE_FINISHER,
                                 IDC_DEVICE_OWNER_CAPTION,
                                 IDC_DEVICE_OWNER_LOGIN,
                                 IDC_DEVICE_OWNER_TYPED,
                                 IDC_DEVICE_OWNER,
                                 IDC_DEFAULTS,
                                 IDC_LOGO,
                                 0};

const int kBiDiControls[] = {IDC_DEVICE_BIDI_CAPTION, IDC_DEVICE_REFRESH_ON_OPEN,
                             IDC_DEVICE_REFRESH};

// Item data of the finisher list: no finisher, "read a description file", the record's finisher.
constexpr DWORD kFINISHER_ROW_NONE = 0;
constexpr DWORD kFINISHER_ROW_FILE = static_cast<DWORD>(-1);
constexpr DWORD kFINISHER_ROW_RECORD = 5;
constexpr int kRECORD_FINISHER_INDEX = 2;

// Accounting modes of dmxAccountingMode.
constexpr DWORD kACCOUNTING_UNAVAILABLE = 0;
constexpr DWORD kACCOUNTING_OPTIONAL = 1;
constexpr DWORD kACCOUNTING_MANDATORY = 2;
// From this firmware level on the printer takes accounting texts instead of numbers.
constexpr LONG kJBA_FIRMWARE = 6;

constexpr UINT kFILE_CCH = 512;
constexpr UINT kSYSTEM_DIRECTORY_CCH = 256;
constexpr int kMESSAGE_CCH = 1024;

void Check(HWND hDlg, int id, BOOL bChecked)
{
    CheckDlgButton(hDlg, id, bChecked ? BST_CHECKED : BST_UNCHECKED);
}

BOOL IsChecked(HWND hDlg, int id)
{
    return IsDlgButtonChecked(hDlg, id) == BST_CHECKED;
}

} // namespace

TVODeviceTab::TVODeviceTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig,
                           BOOL bMandatoryAccounting)
    : TVOTab(lpdi, pConfig, IDD_DEVICE_TAB), m_bMandatoryAccounting(bMandatoryAccounting),
      m_iSavedAccountingMode(m_pDM ? m_pDM->dmxAccountingMode : kACCOUNTING_OPTIONAL)
{
    m_pPermissionIDs = kDeviceLockList;
}

HANDLE TVODeviceTab::PrinterHandle() const
{
    if (m_pConfig && m_pConfig->m_hPrinter)
        return m_pConfig->m_hPrinter;
    return m_pDialogInfo ? m_pDialogInfo->hPrinter : nullptr;
}

BOOL TVODeviceTab::AccountingIdsComplete() const
{
    if (m_pDM->dmxFirmwareRevision >= kJBA_FIRMWARE)
        return m_pDM->dmxJBAUser[0] != 0 && m_pDM->dmxJBAAcct[0] != 0;
    return m_pDM->dmxAccount != 0 && m_pDM->dmxSubAccount != 0;
}

BOOL TVODeviceTab::OnInitDialog()
{
    QLM_TRACE_SCOPE(TEXT("TVODeviceTab::OnInitDialog"), g_bTraceDeviceOptionsDlg);
    ASSERT(m_pDM);
    ASSERT(m_pConfig);
    if (!m_pDM || !m_pConfig)
        return 1;
    // Printers below the first firmware level take no accounting at all.
    if (m_pDM->dmxFirmwareRevision < 1)
        m_pDM->dmxAccountingMode = kACCOUNTING_UNAVAILABLE;
    // The edit holds no more of a typed owner than the record keeps.
    SendDlgItemMessageW(m_hWnd, IDC_DEVICE_OWNER, EM_LIMITTEXT, kOWNER_CCH - 1, 0);
    SetControlsFromDM();
    SetModified(FALSE);
    return 1;
}

void TVODeviceTab::SetControlsFromDM()
{
    QLM_TRACE_SCOPE(TEXT("TVODeviceTab::SetControlsFromDM"), g_bTraceDeviceOptionsDlg);
    if (!m_pDM || !m_pConfig) {
        ASSERT(m_pDM && m_pConfig);
        return;
    }
    SetDisplayUnits();
    SetAccountingControls();
    SetBiDi();
    SetFirmwareRev();
    SetFinisherList();
    // Model 5 has no finisher to choose.
    const BOOL bFinisher = !m_pDM->dmxBiDi && m_pConfig->m_PrinterModel != kMODEL_WIDE_5;
    EnableControl(IDC_DEVICE_FINISHER_CAPTION, bFinisher);
    EnableControl(IDC_DEVICE_FINISHER, bFinisher);
    SetOwnerControls();
    LockControls(m_pConfig->m_bHasPermission);
}

void TVODeviceTab::SetDisplayUnits()
{
    Check(m_hWnd, IDC_DEVICE_INCHES, FALSE);
    Check(m_hWnd, IDC_DEVICE_MM, FALSE);
    Check(m_hWnd, m_pDM->dmxUnits ? IDC_DEVICE_MM : IDC_DEVICE_INCHES, TRUE);
}

void TVODeviceTab::SetAccountingControls()
{
    if (m_bMandatoryAccounting && !AccountingIdsComplete())
        m_pDM->dmxAccountingEnable = 0;
    switch (m_pDM->dmxAccountingMode) {
    case kACCOUNTING_UNAVAILABLE:
        EnableControl(IDC_DEVICE_ACCOUNTING, FALSE);
        Check(m_hWnd, IDC_DEVICE_ACCOUNTING, FALSE);
        EnableControl(IDC_DEVICE_ACCOUNT_IDS, FALSE);
        break;
    case kACCOUNTING_OPTIONAL:
        EnableControl(IDC_DEVICE_ACCOUNTING, TRUE);
        Check(m_hWnd, IDC_DEVICE_ACCOUNTING, m_pDM->dmxAccountingEnable != 0);
        EnableControl(IDC_DEVICE_ACCOUNT_IDS, m_pDM->dmxAccountingEnable != 0);
        break;
    case kACCOUNTING_MANDATORY:
        // Shown as on; the record's own flag is left as it is.
        EnableControl(IDC_DEVICE_ACCOUNTING, FALSE);
        Check(m_hWnd, IDC_DEVICE_ACCOUNTING, TRUE);
        EnableControl(IDC_DEVICE_ACCOUNT_IDS, TRUE);
        break;
    default:
        ASSERT(m_pDM->dmxAccountingMode <= kACCOUNTING_MANDATORY);
        break;
    }
}

void TVODeviceTab::SetBiDi()
{
    Check(m_hWnd, IDC_DEVICE_REFRESH_ON_OPEN, m_pDM->dmxRefreshOnOpen != 0);
    BOOL bEnable = m_pDM->dmxBiDi != 0;
    // The record may still say so of a port that was changed since.
    if (!QLMPortIsBiDi(m_pConfig->m_hPrinter))
        bEnable = FALSE;
    for (int id : kBiDiControls)
        EnableControl(id, bEnable);
}

void TVODeviceTab::SetFirmwareRev()
{
    SendDlgItemMessageW(m_hWnd, IDC_DEVICE_FIRMWARE, CB_RESETCONTENT, 0, 0);
    m_pConfig->fillComboBox1(m_hWnd, IDC_DEVICE_FIRMWARE, m_pConfig->m_FirmwareList,
                             static_cast<DWORD>(m_pDM->dmxFirmwareRevision));
    EnableControl(IDC_DEVICE_FIRMWARE_CAPTION, m_pDM->dmxBiDi == 0);
    EnableControl(IDC_DEVICE_FIRMWARE, m_pDM->dmxBiDi == 0);
}

int TVODeviceTab::FindFinisherRow()
{
    const LRESULT count = SendDlgItemMessageW(m_hWnd, IDC_DEVICE_FINISHER, CB_GETCOUNT, 0, 0);
    // The file row always follows the first, so the walk ends there at the latest: either the
    // record's type is the first row's, or the record's finisher is the row behind the file row.
    for (int index = 0; index < count; ++index) {
        const DWORD data = static_cast<DWORD>(
            SendDlgItemMessageW(m_hWnd, IDC_DEVICE_FINISHER, CB_GETITEMDATA, index, 0));
        if (data == m_pDM->dmxFinisherType)
            return index;
        if (data == kFINISHER_ROW_FILE)
            break;
    }
    return count > kRECORD_FINISHER_INDEX ? kRECORD_FINISHER_INDEX : 0;
}

void TVODeviceTab::SetFinisherList()
{
    const HWND hList = GetDlgItem(m_hWnd, IDC_DEVICE_FINISHER);
    SendMessageW(hList, CB_RESETCONTENT, 0, 0);
    struct
    {
        WCHAR text[kFILE_CCH];
        DWORD data;
    } rows[3] = {};
    int count = 0;
    WstrCopy(rows[count].text, kFILE_CCH, m_pConfig->getResourceString(IDS_FINISHER_NONE));
    rows[count++].data = kFINISHER_ROW_NONE;
    WstrCopy(rows[count].text, kFILE_CCH, m_pConfig->getResourceString(IDS_FINISHER_FROM_FILE));
    rows[count++].data = kFINISHER_ROW_FILE;
    if (m_pDM->dmxFinisherType != 0) {
        // The model's name heads the block and need not be terminated within its field.
        WstrNCopy(rows[count].text, m_pDM->dmxFinisher.Model, std::size(m_pDM->dmxFinisher.Model));
        rows[count++].data = kFINISHER_ROW_RECORD;
    }
    for (int index = 0; index < count; ++index) {
        SendMessageW(hList, CB_INSERTSTRING, index, reinterpret_cast<LPARAM>(rows[index].text));
        // The file row's data is -1 itself, not its 32 bits widened.
        SendMessageW(hList, CB_SETITEMDATA, index,
                     static_cast<LPARAM>(static_cast<LONG>(rows[index].data)));
    }
    SendMessageW(hList, CB_SETCURSEL, FindFinisherRow(), 0);
}

void TVODeviceTab::SetOwnerControls()
{
    Check(m_hWnd, IDC_DEVICE_OWNER_LOGIN, FALSE);
    Check(m_hWnd, IDC_DEVICE_OWNER_TYPED, FALSE);
    const BOOL bTyped = m_pDM->dmxUserSpecifiedOwner != 0;
    Check(m_hWnd, bTyped ? IDC_DEVICE_OWNER_TYPED : IDC_DEVICE_OWNER_LOGIN, TRUE);
    // A record from elsewhere may fill the field to its end; the edit shows what it can hold.
    WCHAR owner[kOWNER_CCH] = {};
    WstrNCopy(owner, m_pDM->dmxOwner, kOWNER_CCH - 1);
    SetDlgItemTextW(m_hWnd, IDC_DEVICE_OWNER, owner);
    EnableControl(IDC_DEVICE_OWNER, bTyped);
}

void TVODeviceTab::OnUseLoginName()
{
    m_pDM->dmxUserSpecifiedOwner = !IsChecked(m_hWnd, IDC_DEVICE_OWNER_LOGIN);
    SetControlsFromDM();
    SetModified(TRUE);
}

void TVODeviceTab::OnUserSpecifiedOwner()
{
    m_pDM->dmxUserSpecifiedOwner = IsChecked(m_hWnd, IDC_DEVICE_OWNER_TYPED);
    SetControlsFromDM();
    SetModified(TRUE);
}

void TVODeviceTab::SetAccounting(BOOL bEnable)
{
    m_pDM->dmxAccountingEnable = bEnable ? 1 : 0;
    SetModified(TRUE);
}

void TVODeviceTab::OnFirmwareCommand(int code)
{
    if (code != CBN_SELENDOK)
        return;
    QLM_TRACE_SCOPE(TEXT("TVODeviceTab::OnFirmwareCommand"), g_bTraceDeviceOptionsDlg);
    m_pDM->dmxFirmwareRevision = static_cast<LONG>(GetComboSelection(IDC_DEVICE_FIRMWARE));
    // Any firmware level gives the accounting back that the sheet opened with.
    m_pDM->dmxAccountingMode =
        m_pDM->dmxFirmwareRevision > 0 ? m_iSavedAccountingMode : kACCOUNTING_UNAVAILABLE;
    SetControlsFromDM();
    SetModified(TRUE);
}

void TVODeviceTab::OnFinisherCommand(int code)
{
    if (code != CBN_SELENDOK)
        return;
    QLM_TRACE_SCOPE(TEXT("TVODeviceTab::OnFinisherCommand"), g_bTraceDeviceOptionsDlg);
    const DWORD value = GetComboSelection(IDC_DEVICE_FINISHER);
    if (value != kFINISHER_ROW_FILE) {
        m_pDM->dmxFinisherType = value;
    } else {
        // The filter's last character separates its parts; each becomes a terminator, and
        // the zeroed rest of the buffer ends the list.
        WCHAR filter[kFILE_CCH + 2] = {};
        WstrCopy(filter, kFILE_CCH, m_pConfig->getResourceString(IDS_FINISHER_FILE_FILTER));
        const size_t cchFilter = WstrLen(filter);
        if (cchFilter > 0) {
            const WCHAR separator = filter[cchFilter - 1];
            for (size_t i = 0; i < cchFilter; ++i) {
                if (filter[i] == separator)
                    filter[i] = 0;
            }
        }
        WCHAR title[kFILE_CCH] = {};
        WstrCopy(title, kFILE_CCH, m_pConfig->getResourceString(IDS_FINISHER_FILE_TITLE));
        WCHAR directory[kSYSTEM_DIRECTORY_CCH] = {};
        if (GetSystemDirectoryW(directory, kSYSTEM_DIRECTORY_CCH) >= kSYSTEM_DIRECTORY_CCH)
            directory[0] = 0;
        WCHAR path[kFILE_CCH] = {};
        WCHAR fileTitle[kFILE_CCH] = {};

        OPENFILENAMEW ofn = {};
        ofn.lStructSize = sizeof(ofn);
        ofn.hwndOwner = m_hWnd;
        ofn.lpstrFilter = filter;
        ofn.nFilterIndex = 1;
        ofn.lpstrFile = path;
        ofn.nMaxFile = kFILE_CCH;
        ofn.lpstrFileTitle = fileTitle;
        ofn.nMaxFileTitle = kFILE_CCH;
        ofn.lpstrInitialDir = directory;
        ofn.lpstrTitle = title;
        ofn.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_HIDEREADONLY;
        if (GetOpenFileNameW(&ofn)) {
            QLMWaitCursor cursor;
            m_pDM->dmxFinisherType = m_pConfig->addFInisherFromFileToDevmode(path, m_pDM);
            SetFinisherList();
        } else {
            // The list shows the record's finisher again.
            SendDlgItemMessageW(m_hWnd, IDC_DEVICE_FINISHER, CB_SETCURSEL, FindFinisherRow(), 0);
        }
    }
    // Another finisher, or none: the finishing choices made for the old one start again.
    m_pDM->dmxFinishProgram = 0;
    m_pDM->dmxFinishFlags[0] = 1;
    m_pDM->dmxFinishFlags[1] = 1;
    m_pDM->dmxFinishFlags[2] = 0;
    m_pDM->dmxFinishOutputBin = 0;
    SetModified(TRUE);
}

void TVODeviceTab::OnUnits(int code)
{
    if (code != BN_CLICKED)
        return;
    SetDispUnits();
    SetModified(TRUE);
}

void TVODeviceTab::SetDispUnits()
{
    m_pDM->dmxUnits = IsChecked(m_hWnd, IDC_DEVICE_MM) ? kDISTANCE_MM : kDISTANCE_INCHES;
    SetModified(TRUE);
}

void TVODeviceTab::RefreshSettings()
{
    QLM_TRACE_SCOPE(TEXT("TVODeviceTab::RefreshSettings"), g_bTraceDeviceOptionsDlg);
    QLMWaitCursor cursor;
    NewRefresh();
    SetControlsFromDM();
}

void TVODeviceTab::NewRefresh()
{
    const int rc = QLMRefresh(m_pConfig, m_pDM, m_hWnd);
    Trace(TEXT("QLMRefresh returns %d"), rc);
    // A printer that does not answer leaves accounting optional.
    if (m_pDM->dmxBiDi == 0)
        m_pDM->dmxAccountingMode = kACCOUNTING_OPTIONAL;
}

void TVODeviceTab::DoRollConfigDlg()
{
    TVORollConfigDlg dlg(m_pConfig, m_pDM);
    if (dlg.doModal(m_hWnd) == 1 && dlg.getModified())
        SetModified(TRUE);
}

void TVODeviceTab::DoAccountDlg()
{
    QLM_TRACE_SCOPE(TEXT("TVODeviceTab::DoAccountDlg"), g_bTraceDeviceOptionsDlg);
    INT_PTR result = 0;
    BOOL bModified = FALSE;
    if (m_pDM->dmxFirmwareRevision < kJBA_FIRMWARE) {
        TVOAccountDlg dlg(m_pConfig, m_pDM);
        if (m_bMandatoryAccounting)
            dlg.SetHideRemember();
        result = dlg.doModal(m_hWnd);
        bModified = dlg.getModified();
    } else {
        TVOJBADlg dlg(m_pConfig, m_pDM);
        if (m_bMandatoryAccounting)
            dlg.SetHideRemember();
        result = dlg.doModal(m_hWnd);
        bModified = dlg.getModified();
    }

    if (result == 1) {
        if (bModified)
            SetModified(TRUE);
        if (!m_bMandatoryAccounting || AccountingIdsComplete()) {
            TVODevMode record(m_pDM);
            if (m_bMandatoryAccounting)
                m_pDM->dmxRememberAccount = 1;
            record.setAccountingInfo(PrinterHandle(), FALSE);
            return;
        }
    } else if (!m_bMandatoryAccounting) {
        return;
    }
    if (AccountingIdsComplete())
        return;

    // Accounting that the printer requires cannot stay on without its identifiers.
    WCHAR message[kMESSAGE_CCH] = {};
    WstrCopy(message, kMESSAGE_CCH, m_pConfig->getResourceString(IDS_ACCOUNTING_REQUIRED));
    WCHAR caption[CCHDEVICENAME + 1] = {};
    WstrNCopy(caption, m_pDM->dmPublic.dmDeviceName, CCHDEVICENAME);
    MessageBoxW(m_hWnd, message, caption, MB_ICONEXCLAMATION);
    SetFocus(m_hWnd);
    m_pDM->dmxAccountingEnable = 0;
    SetControlsFromDM();
}

void TVODeviceTab::OnCommand(int id, int code)
{
    switch (id) {
    case IDC_DEVICE_ACCOUNTING: {
        const BOOL bEnable = IsChecked(m_hWnd, IDC_DEVICE_ACCOUNTING);
        EnableControl(IDC_DEVICE_ACCOUNT_IDS, bEnable);
        SetAccounting(bEnable);
        if (m_bMandatoryAccounting && m_pDM->dmxAccountingEnable && !AccountingIdsComplete())
            DoAccountDlg();
        break;
    }
    case IDC_DEFAULTS:
        SetPrinterDefaults();
        break;
    case IDC_DEVICE_FINISHER:
        OnFinisherCommand(code);
        break;
    case IDC_DEVICE_FIRMWARE:
        OnFirmwareCommand(code);
        break;
    case IDC_DEVICE_INCHES:
    case IDC_DEVICE_MM:
        OnUnits(code);
        break;
    case IDC_DEVICE_ROLLS:
        DoRollConfigDlg();
        break;
    case IDC_DEVICE_ACCOUNT_IDS:
        DoAccountDlg();
        break;
    case IDC_DEVICE_REFRESH_ON_OPEN:
        m_pDM->dmxRefreshOnOpen = !m_pDM->dmxRefreshOnOpen;
        Check(m_hWnd, IDC_DEVICE_REFRESH_ON_OPEN, m_pDM->dmxRefreshOnOpen);
        SetModified(TRUE);
        break;
    case IDC_DEVICE_REFRESH:
        RefreshSettings();
        // Apply lights even when the printer said what the record held.
        SetModified(TRUE);
        break;
    case IDC_DEVICE_OWNER_LOGIN:
        OnUseLoginName();
        break;
    case IDC_DEVICE_OWNER_TYPED:
        OnUserSpecifiedOwner();
        break;
    case IDC_DEVICE_OWNER:
        if (m_pDM->dmxUserSpecifiedOwner && code == EN_CHANGE) {
            // At most 63 characters and their terminator, which the field always keeps.
            WCHAR owner[kOWNER_CCH] = {};
            GetDlgItemTextW(m_hWnd, IDC_DEVICE_OWNER, owner, kOWNER_CCH);
            if (WstrNCmp(owner, m_pDM->dmxOwner, kOWNER_CCH) != 0) {
                WstrNCopy(m_pDM->dmxOwner, owner, kOWNER_CCH);
                SetModified(TRUE);
            }
        }
        break;
    default:
        Trace(TEXT("TVODeviceTab: command %d (%d) not handled"), id, code);
        break;
    }
}

LRESULT TVODeviceTab::OnNotify(HWND hWnd, WPARAM wParam, NMHDR* pnmhdr)
{
    if (pnmhdr && pnmhdr->code == static_cast<UINT>(PSN_SETACTIVE)) {
        // The port may have changed while the sheet was open.
        m_pDM->dmxBiDi = QLMPortIsBiDi(m_pDialogInfo ? m_pDialogInfo->hPrinter : nullptr);
        SetControlsFromDM();
        OnSetActive();
    } else if (pnmhdr && pnmhdr->code == static_cast<UINT>(PSN_APPLY)) {
        ASSERT(m_iResourceID == 105);
    }
    // For PSN_SETACTIVE the base activates the tab a second time, filling it once more.
    return TVOTab::OnNotify(hWnd, wParam, pnmhdr);
}

BOOL TVODeviceTab::OnSetActive()
{
    QLM_TRACE_SCOPE(TEXT("TVODeviceTab::OnSetActive"), g_bTraceDeviceOptionsDlg);
    return TVOTab::OnSetActive();
}

void TVODeviceTab::SetPrinterDefaults()
{
    QLM_TRACE_SCOPE(TEXT("TVODeviceTab::SetPrinterDefaults"), g_bTraceDeviceOptionsDlg);
    m_pDM->dmxRefreshOnOpen = 0;
    m_pDM->dmxUnits = kDISTANCE_INCHES;
    m_pDM->dmxAccountingEnable = 0;
    m_pDM->dmxUserSpecifiedOwner = 0;
    // 64 bytes, the first half of the name: enough to leave it empty.
    memset(reinterpret_cast<BYTE*>(m_pDM) + offsetof(DEVMODEEX, dmxOwner), 0, 64);
    m_pDM->dmxAccountingMode = kACCOUNTING_OPTIONAL;
    m_pDM->dmxFirmwareRevision = 28;
    m_pDM->dmxFinisherType = 0;
    SetControlsFromDM();
    SetFocus(m_hWnd);
}

INT_PTR TVODeviceTab::DialogProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        return OnInitDialog();
    case WM_COMMAND:
        if (m_pDM && m_pConfig)
            OnCommand(LOWORD(wParam), HIWORD(wParam));
        return 0;
    case WM_NOTIFY:
        if (m_pDM)
            OnNotify(m_hWnd, wParam, reinterpret_cast<NMHDR*>(lParam));
        return 0;
    case WM_HELP:
        OnHelp(m_hWnd, wParam, reinterpret_cast<const HELPINFO*>(lParam));
        return 0;
    case WM_DEVMODECHANGE:
        TVOTab::OnDMChange();
        return 0;
    default:
        return 0;
    }
}
