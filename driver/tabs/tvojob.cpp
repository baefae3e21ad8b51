#include "tvojob.h"

#include "../config/tvoconfg.h"
#include "../dialogs/tvofinsh.h"
#include "../dialogs/tvolabel.h"
#include "../dialogs/tvonest.h"
#include "../dialogs/tvostamp.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "../../resources/qlmres.h"

namespace {

const DWORD kJobLockList[] = {IDC_JOB_BANNER_CAPTION,
                              IDC_JOB_BANNER,
                              IDC_LABEL_CAPTION,
                              IDC_JOB_LABEL,
                              IDC_JOB_STAMP_CAPTION,
                              IDC_JOB_STAMP,
                              IDC_JOB_FINISHING_CAPTION,
                              IDC_JOB_FINISHING,
                              IDC_JOB_NEST_CAPTION,
                              IDC_JOB_NEST,
                              IDC_JOB_MISMATCH_CAPTION,
                              IDC_JOB_MISMATCH,
                              IDC_JOB_PRIORITY_CAPTION,
                              IDC_JOB_PRIORITY,
                              IDC_JOB_PRIORITY_SPIN,
                              IDC_DEFAULTS,
                              IDC_LOGO,
                              0};

// The single-page job's caption and list, and a third entry that names no control: the call
// passes all three, and the zero finds nothing to enable.
const int kJobFirmwareList[] = {IDC_JOB_SINGLEPAGE_CAPTION, IDC_JOB_SINGLEPAGE, 0};
constexpr int kJOB_FIRMWARE_COUNT = 3;
// The single-page job came with this firmware level; nesting and the mismatch choice with 1.
constexpr LONG kSINGLE_PAGE_FIRMWARE = 14;
constexpr LONG kNEST_FIRMWARE = 1;

// dmx values that open a settings dialog, and the finishing choices.
constexpr DWORD kLABEL_SETTINGS = 2;
constexpr DWORD kSTAMP_SETTINGS = 2;
constexpr DWORD kFINISHING_BYPASS = 0;
constexpr DWORD kFINISHING_PROGRAM = 9;

constexpr WORD kPRIORITY_MIN = 1;
constexpr WORD kPRIORITY_MAX = 10;
constexpr WORD kPRIORITY_DEFAULT = 5;
constexpr int kPRIORITY_TEXT_CCH = 32;
// Two digits hold every priority.
constexpr int kPRIORITY_SHOWN_CCH = 2;

// Enables or disables a control the template must have; a missing one is asserted and skipped.
void EnableItem(HWND hDlg, int id, BOOL bEnable)
{
    HWND hControl = GetDlgItem(hDlg, id);
    ASSERT(hControl);
    if (hControl)
        EnableWindow(hControl, bEnable);
}

BOOL IsListNotification(int code)
{
    return code == CBN_SELENDOK || code == CBN_SELCHANGE;
}

} // namespace

TVOJobTab::TVOJobTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig)
    : TVOTab(lpdi, pConfig, IDD_JOB_TAB)
{
    m_pPermissionIDs = kJobLockList;
}

INT_PTR TVOJobTab::DialogProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        return OnInitDialog();
    case WM_COMMAND:
        OnCommand(LOWORD(wParam), HIWORD(wParam));
        return 0;
    case WM_NOTIFY:
        TVOTab::OnNotify(m_hWnd, wParam, reinterpret_cast<NMHDR*>(lParam));
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

BOOL TVOJobTab::OnInitDialog()
{
    QLM_TRACE_SCOPE(TEXT("TVOJobTab::OnInitDialog"), g_bTraceJobTab);
    ASSERT(m_pDM);
    ASSERT(m_pConfig);
    EnableForFirmware(kJobFirmwareList, kJOB_FIRMWARE_COUNT, kSINGLE_PAGE_FIRMWARE);
    SetControlsFromDM();
    SetModified(FALSE);
    return 1;
}

void TVOJobTab::ApplyFirmwareRules()
{
    if (!m_pDM)
        return;
    if (m_pDM->dmxFirmwareRevision < kNEST_FIRMWARE) {
        m_pDM->dmxPlotNest = 0;
        m_pDM->dmxMismatch = 0;
    }
    const BOOL bEnable = m_pDM->dmxFirmwareRevision >= kNEST_FIRMWARE;
    EnableItem(m_hWnd, IDC_JOB_NEST, bEnable);
    EnableItem(m_hWnd, IDC_JOB_MISMATCH, bEnable);
}

BOOL TVOJobTab::OnSetActive()
{
    QLM_TRACE_SCOPE(TEXT("TVOJobTab::OnSetActive"), g_bTraceJobTab);
    ApplyFirmwareRules();
    return TVOTab::OnSetActive();
}

void TVOJobTab::OnDMChange()
{
    QLM_TRACE_SCOPE(TEXT("TVOJobTab::OnDMChange"), g_bTraceJobTab);
    ApplyFirmwareRules();
    TVOTab::OnDMChange();
}

void TVOJobTab::SetControlsFromDM()
{
    QLM_TRACE_SCOPE(TEXT("TVOJobTab::SetControlsFromDM"), g_bTraceJobTab);
    if (!m_pDM || !m_pConfig)
        return;
    TVOPrinterConfiguration* pConfig = m_pConfig;
    SendDlgItemMessageW(m_hWnd, IDC_JOB_PRIORITY, EM_LIMITTEXT, kPRIORITY_TEXT_CCH, 0);

    ResetComboContent(IDC_JOB_BANNER);
    pConfig->fillComboBox1(m_hWnd, IDC_JOB_BANNER, pConfig->m_BannerList, m_pDM->dmxBannerPage);
    ResetComboContent(IDC_JOB_LABEL);
    pConfig->fillComboBox1(m_hWnd, IDC_JOB_LABEL, pConfig->m_LabelList, m_pDM->dmxLabel);
    UpdateLabelSettingsButton();

    ResetComboContent(IDC_JOB_STAMP);
    pConfig->fillComboBox1(m_hWnd, IDC_JOB_STAMP, pConfig->m_StampList, m_pDM->dmxStamp);
    UpdateRasterStampSettingsButton();

    ResetComboContent(IDC_JOB_FINISHING);
    pConfig->fillComboBox1(m_hWnd, IDC_JOB_FINISHING, pConfig->m_FinishingList,
                           m_pDM->dmxFinishing);
    UpdateFinishingOptionsSettingsButton();

    if (m_pDM->dmxFirmwareRevision < kNEST_FIRMWARE) {
        m_pDM->dmxPlotNest = 0;
        m_pDM->dmxMismatch = 0;
    }
    ResetComboContent(IDC_JOB_NEST);
    pConfig->fillComboBox1(m_hWnd, IDC_JOB_NEST, pConfig->m_PlotNestList, m_pDM->dmxPlotNest);
    UpdatePlotNestingSettingsButton();
    ResetComboContent(IDC_JOB_MISMATCH);
    pConfig->fillComboBox1(m_hWnd, IDC_JOB_MISMATCH, pConfig->m_MismatchList, m_pDM->dmxMismatch);
    ResetComboContent(IDC_JOB_SINGLEPAGE);
    pConfig->fillComboBox1(m_hWnd, IDC_JOB_SINGLEPAGE, pConfig->m_SinglePageJobList,
                           m_pDM->dmxSinglePageJob);

    EnableForFirmware(kJobFirmwareList, kJOB_FIRMWARE_COUNT, kSINGLE_PAGE_FIRMWARE);

    SendDlgItemMessageW(m_hWnd, IDC_JOB_PRIORITY, EM_LIMITTEXT, kPRIORITY_SHOWN_CCH, 0);
    SendDlgItemMessageW(m_hWnd, IDC_JOB_PRIORITY_SPIN, UDM_SETRANGE, 0,
                        MAKELPARAM(kPRIORITY_MAX, kPRIORITY_MIN));
    SendDlgItemMessageW(m_hWnd, IDC_JOB_PRIORITY_SPIN, UDM_SETPOS, 0,
                        MAKELPARAM(m_pDM->dmxPriority, 0));

    LockControls(pConfig->m_bHasPermission);
    // Nesting and the mismatch choice follow both the firmware and the permission.
    const BOOL bNest = m_pDM->dmxFirmwareRevision >= kNEST_FIRMWARE && pConfig->m_bHasPermission;
    EnableItem(m_hWnd, IDC_JOB_NEST, bNest);
    EnableItem(m_hWnd, IDC_JOB_MISMATCH, bNest);
}

void TVOJobTab::OnCommand(int id, int code)
{
    if (!m_pDM || !m_pConfig)
        return;
    switch (id) {
    case IDC_JOB_BANNER:
        if (IsListNotification(code))
            OnBanner();
        break;
    case IDC_JOB_LABEL:
        if (IsListNotification(code))
            OnLabel();
        break;
    case IDC_JOB_STAMP:
        if (IsListNotification(code))
            OnStamp();
        break;
    case IDC_JOB_FINISHING:
        if (IsListNotification(code))
            OnFinishing();
        break;
    case IDC_JOB_NEST:
        if (IsListNotification(code))
            OnNest();
        break;
    case IDC_JOB_MISMATCH:
        if (IsListNotification(code))
            OnMismatch();
        break;
    case IDC_JOB_SINGLEPAGE:
        if (IsListNotification(code))
            OnSinglePageJob();
        break;
    case IDC_JOB_PRIORITY:
        if (code == EN_CHANGE)
            OnPriority();
        break;
    case IDC_DEFAULTS:
        SetPrinterDefaults();
        break;
    case IDC_JOB_FINISHING_OPTIONS:
        OnSetFinishing();
        break;
    case IDC_JOB_LABEL_SETTINGS:
        OnSetLabel();
        break;
    case IDC_JOB_NEST_SETTINGS:
        OnSetNest();
        break;
    case IDC_JOB_STAMP_SETTINGS:
        OnSetStamp();
        break;
    default:
        break;
    }
}

void TVOJobTab::SetPrinterDefaults()
{
    QLM_TRACE_SCOPE(TEXT("TVOJobTab::SetPrinterDefaults"), g_bTraceJobTab);
    if (!m_pDM)
        return;
    m_pDM->dmxBannerPage = 1;
    m_pDM->dmxLabel = 1;
    m_pDM->dmxStamp = 1;
    m_pDM->dmxFinishing = 0;
    m_pDM->dmxPlotNest = 0;
    m_pDM->dmxMismatch = 0;
    m_pDM->dmxPriority = kPRIORITY_DEFAULT;
    m_pDM->dmxSinglePageJob = 0;
    // The priority's refill raises its EN_CHANGE; the Apply button stays as it was.
    RefillControls();
    SetFocus(m_hWnd);
}

// Banner, mismatch and single-page job count as a change even when the same entry is chosen
// again.
void TVOJobTab::OnBanner()
{
    m_pDM->dmxBannerPage = GetComboSelection(IDC_JOB_BANNER);
    SetModified(TRUE);
}

void TVOJobTab::OnMismatch()
{
    m_pDM->dmxMismatch = GetComboSelection(IDC_JOB_MISMATCH);
    SetModified(TRUE);
}

void TVOJobTab::OnSinglePageJob()
{
    m_pDM->dmxSinglePageJob = GetComboSelection(IDC_JOB_SINGLEPAGE);
    SetModified(TRUE);
}

// Label, stamp, nesting and finishing count only a changed value.
void TVOJobTab::OnLabel()
{
    UpdateLabelSettingsButton();
    const DWORD value = GetComboSelection(IDC_JOB_LABEL);
    if (value != m_pDM->dmxLabel) {
        m_pDM->dmxLabel = value;
        SetModified(TRUE);
    }
}

void TVOJobTab::OnStamp()
{
    UpdateRasterStampSettingsButton();
    const DWORD value = GetComboSelection(IDC_JOB_STAMP);
    if (value != m_pDM->dmxStamp) {
        m_pDM->dmxStamp = value;
        SetModified(TRUE);
    }
}

void TVOJobTab::OnNest()
{
    UpdatePlotNestingSettingsButton();
    const DWORD value = GetComboSelection(IDC_JOB_NEST);
    if (value != m_pDM->dmxPlotNest) {
        m_pDM->dmxPlotNest = value;
        SetModified(TRUE);
    }
}

void TVOJobTab::OnFinishing()
{
    UpdateFinishingOptionsSettingsButton();
    const DWORD value = GetComboSelection(IDC_JOB_FINISHING);
    if (value != m_pDM->dmxFinishing) {
        m_pDM->dmxFinishing = value;
        SetModified(TRUE);
    }
}

void TVOJobTab::OnPriority()
{
    WCHAR text[kPRIORITY_TEXT_CCH + 1] = {};
    GetDlgItemTextW(m_hWnd, IDC_JOB_PRIORITY, text, kPRIORITY_TEXT_CCH);
    m_pDM->dmxPriority = static_cast<WORD>(WstrToLong(text));
    // An emptied field or a 0 becomes the lowest priority at once, selected so the next key
    // replaces it.
    WORD corrected = 0;
    if (m_pDM->dmxPriority > kPRIORITY_MAX)
        corrected = kPRIORITY_MAX;
    else if (m_pDM->dmxPriority == 0)
        corrected = kPRIORITY_MIN;
    if (corrected) {
        m_pDM->dmxPriority = corrected;
        SetDlgItemInt(m_hWnd, IDC_JOB_PRIORITY, corrected, FALSE);
        SendDlgItemMessageW(m_hWnd, IDC_JOB_PRIORITY, EM_SETSEL, 0, -1);
    }
    SetModified(TRUE);
}

void TVOJobTab::OnSetLabel()
{
    TVOLabelDlg dlg(m_pConfig, m_pDM);
    if (dlg.doModal(m_hWnd) == 1 && dlg.getModified())
        SetModified(TRUE);
}

void TVOJobTab::OnSetStamp()
{
    TVOStampDlg dlg(m_pConfig, m_pDM);
    if (dlg.doModal(m_hWnd) == 1 && dlg.getModified())
        SetModified(TRUE);
}

void TVOJobTab::OnSetNest()
{
    TVOPlotNestDlg dlg(m_pConfig, m_pDM);
    if (dlg.doModal(m_hWnd) == 1 && dlg.getModified())
        SetModified(TRUE);
}

void TVOJobTab::OnSetFinishing()
{
    TVOFinishDlg dlg(m_pConfig, m_pDM);
    if (dlg.doModal(m_hWnd) == 1 && dlg.getModified())
        SetModified(TRUE);
}

void TVOJobTab::ResetComboContent(int control)
{
    SendDlgItemMessageW(m_hWnd, control, CB_RESETCONTENT, 0, 0);
}

void TVOJobTab::UpdateLabelSettingsButton()
{
    EnableItem(m_hWnd, IDC_JOB_LABEL_SETTINGS, GetComboSelection(IDC_JOB_LABEL) == kLABEL_SETTINGS);
}

void TVOJobTab::UpdateRasterStampSettingsButton()
{
    EnableItem(m_hWnd, IDC_JOB_STAMP_SETTINGS, GetComboSelection(IDC_JOB_STAMP) == kSTAMP_SETTINGS);
}

void TVOJobTab::UpdatePlotNestingSettingsButton()
{
    const DWORD value = GetComboSelection(IDC_JOB_NEST);
    EnableItem(m_hWnd, IDC_JOB_NEST_SETTINGS, value != 0 && value != 1);
}

void TVOJobTab::UpdateFinishingOptionsSettingsButton()
{
    if (m_pDM && m_pConfig &&
        (m_pDM->dmxFinisherType == kFINISHER_NONE || m_pDM->dmxMediaType != 0)) {
        m_pDM->dmxFinishing = kFINISHING_BYPASS;
        m_pConfig->fillComboBox1(m_hWnd, IDC_JOB_FINISHING, m_pConfig->m_FinishingList,
                                 kFINISHING_BYPASS);
        EnableItem(m_hWnd, IDC_JOB_FINISHING, FALSE);
        EnableItem(m_hWnd, IDC_JOB_FINISHING_CAPTION, FALSE);
    } else {
        EnableItem(m_hWnd, IDC_JOB_FINISHING, TRUE);
        EnableItem(m_hWnd, IDC_JOB_FINISHING_CAPTION, TRUE);
    }
    EnableItem(m_hWnd, IDC_JOB_FINISHING_OPTIONS,
               GetComboSelection(IDC_JOB_FINISHING) == kFINISHING_PROGRAM);
}
