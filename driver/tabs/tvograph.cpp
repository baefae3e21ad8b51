#include "tvograph.h"

#include "../config/tvoconfg.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "../../resources/qlmres.h"

namespace {

const DWORD kGraphicsLockList[] = {IDC_SCALING_GROUP,
                                   IDC_GRAPHICS_SCALE_NONE,
                                   IDC_GRAPHICS_SCALE_PAPER,
                                   IDC_GRAPHICS_SCALE_TO_PAPER,
                                   IDC_GRAPHICS_SCALE_PERCENT,
                                   IDC_GRAPHICS_PERCENT,
                                   IDC_GRAPHICS_PERCENT_SPIN,
                                   IDC_GRAPHICS_MERGE_CAPTION,
                                   IDC_GRAPHICS_MERGE,
                                   IDC_GRAPHICS_RASTER_GROUP,
                                   IDC_GRAPHICS_RASTER_KEEP,
                                   IDC_GRAPHICS_RASTER_SCALE,
                                   IDC_GRAPHICS_MIRROR_GROUP,
                                   IDC_GRAPHICS_MIRROR_X,
                                   IDC_GRAPHICS_MIRROR_Y,
                                   IDC_ROTATION_CAPTION,
                                   IDC_GRAPHICS_ROTATION,
                                   IDC_GRAPHICS_RASTER_SMOOTH,
                                   IDC_DEFAULTS,
                                   IDC_LOGO,
                                   0};

// What a reduced sheet leaves out: the raster image group.
const int kReducedControls[] = {IDC_GRAPHICS_RASTER_SMOOTH, IDC_GRAPHICS_RASTER_GROUP,
                                IDC_GRAPHICS_RASTER_KEEP, IDC_GRAPHICS_RASTER_SCALE};

// The line merge list needs this firmware level.
constexpr LONG kMERGE_FIRMWARE = 8;

constexpr int kPERCENT_MIN = 10;
constexpr int kPERCENT_MAX = 999;

// Values of dmxScalingMode.
constexpr DWORD kSCALE_NONE = 0;
constexpr DWORD kSCALE_PERCENT = 1;
constexpr DWORD kSCALE_TO_PAPER = 2;

// Defaults of the paper to scale to: ISO A4 for a metric user, Letter otherwise.
constexpr DWORD kSCALE_TO_A4 = 18;
constexpr DWORD kSCALE_TO_LETTER = 1;

} // namespace

TVOGraphicsTab::TVOGraphicsTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig,
                               BOOL bReducedControls)
    : TVOTab(lpdi, pConfig, IDD_GRAPHICS_TAB), m_bReducedControls(bReducedControls)
{
    m_pPermissionIDs = kGraphicsLockList;
}

TVOGraphicsTab::~TVOGraphicsTab() = default;

INT_PTR TVOGraphicsTab::DialogProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        return OnInitDialog();
    case WM_COMMAND:
        OnCommand(LOWORD(wParam), HIWORD(wParam));
        return 0;
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

BOOL TVOGraphicsTab::OnInitDialog()
{
    QLM_TRACE_SCOPE(TEXT("TVOGraphicsTab::OnInitDialog"), g_bTraceGraphicsTab);
    ASSERT(m_pDM);
    ASSERT(m_pConfig);
    if (!m_pDM || !m_pConfig)
        return 1;
    SubclassNumericEdit(IDC_GRAPHICS_PERCENT);
    // Tested here only: a record that gains the level later wakes the list in a new sheet.
    if (m_pDM->dmxFirmwareRevision < kMERGE_FIRMWARE) {
        EnableControl(IDC_GRAPHICS_MERGE_CAPTION, FALSE);
        EnableControl(IDC_GRAPHICS_MERGE, FALSE);
    }
    SetControlsFromDM();
    SetModified(FALSE);
    return 1;
}

void TVOGraphicsTab::SetControlsFromDM()
{
    QLM_TRACE_SCOPE(TEXT("TVOGraphicsTab::SetControlsFromDM"), g_bTraceGraphicsTab);
    if (!m_pDM || !m_pConfig)
        return;
    TVOPrinterConfiguration* pConfig = m_pConfig;
    if (m_bReducedControls) {
        for (int id : kReducedControls) {
            HWND hControl = GetDlgItem(m_hWnd, id);
            if (!hControl)
                continue;
            ShowWindow(hControl, SW_HIDE);
            EnableWindow(hControl, FALSE);
        }
    }

    // The up-down's range binds its arrows only; what is typed is taken as it stands.
    SendDlgItemMessageW(m_hWnd, IDC_GRAPHICS_PERCENT, EM_LIMITTEXT, 3, 0);
    SendDlgItemMessageW(m_hWnd, IDC_GRAPHICS_PERCENT_SPIN, UDM_SETRANGE, 0,
                        MAKELPARAM(kPERCENT_MAX, kPERCENT_MIN));
    SendDlgItemMessageW(m_hWnd, IDC_GRAPHICS_PERCENT_SPIN, UDM_SETPOS, 0,
                        MAKELPARAM(m_pDM->dmxScalePercent, 0));

    checkScalingRadioButton();
    enableGraphicsScalingFields();
    pConfig->fillComboBox1(m_hWnd, IDC_GRAPHICS_SCALE_TO_PAPER, pConfig->m_ScaleToPaperList,
                           m_pDM->dmxScaleToPaper);
    checkRasterImageScalingRadioButton();
    CheckDlgButton(m_hWnd, IDC_GRAPHICS_MIRROR_X, m_pDM->dmxMirrorX ? BST_CHECKED : BST_UNCHECKED);
    CheckDlgButton(m_hWnd, IDC_GRAPHICS_MIRROR_Y, m_pDM->dmxMirrorY ? BST_CHECKED : BST_UNCHECKED);
    pConfig->fillComboBox1(m_hWnd, IDC_GRAPHICS_ROTATION, pConfig->m_GraphicsList1,
                           m_pDM->dmxRotation);
    CheckDlgButton(m_hWnd, IDC_GRAPHICS_RASTER_SMOOTH,
                   m_pDM->dmxGraphicsFlag ? BST_CHECKED : BST_UNCHECKED);
    pConfig->fillComboBox1(m_hWnd, IDC_GRAPHICS_MERGE, pConfig->m_GraphicsList2,
                           m_pDM->dmxGraphicsList);
    LockControls(pConfig->m_bHasPermission);
}

void TVOGraphicsTab::checkScalingRadioButton()
{
    int id = IDC_GRAPHICS_SCALE_NONE;
    if (m_pDM->dmxScalingMode == kSCALE_PERCENT)
        id = IDC_GRAPHICS_SCALE_PERCENT;
    else if (m_pDM->dmxScalingMode == kSCALE_TO_PAPER)
        id = IDC_GRAPHICS_SCALE_PAPER;
    CheckRadioButton(m_hWnd, IDC_GRAPHICS_SCALE_NONE, IDC_GRAPHICS_SCALE_PERCENT, id);
}

void TVOGraphicsTab::checkRasterImageScalingRadioButton()
{
    CheckRadioButton(m_hWnd, IDC_GRAPHICS_RASTER_KEEP, IDC_GRAPHICS_RASTER_SCALE,
                     m_pDM->dmxRasterImageScaling == 1 ? IDC_GRAPHICS_RASTER_SCALE
                                                       : IDC_GRAPHICS_RASTER_KEEP);
}

void TVOGraphicsTab::enableGraphicsScalingFields()
{
    BOOL bPercent, bPaper;
    switch (m_pDM->dmxScalingMode) {
    case kSCALE_NONE:
        bPercent = FALSE;
        bPaper = FALSE;
        break;
    case kSCALE_PERCENT:
        bPercent = TRUE;
        bPaper = FALSE;
        break;
    case kSCALE_TO_PAPER:
        bPercent = FALSE;
        bPaper = TRUE;
        break;
    default:
        return;
    }
    EnableControl(IDC_GRAPHICS_PERCENT, bPercent);
    EnableControl(IDC_GRAPHICS_PERCENT_SPIN, bPercent);
    EnableControl(IDC_GRAPHICS_SCALE_TO_PAPER, bPaper);
}

// Choosing the row that is chosen already changes nothing.
void TVOGraphicsTab::OnListChoice(int id, DWORD* pField)
{
    const DWORD value = GetComboSelection(id);
    if (value == *pField)
        return;
    *pField = value;
    SetModified(TRUE);
}

void TVOGraphicsTab::OnToggle(int id, DWORD* pField)
{
    *pField = *pField ? 0 : 1;
    CheckDlgButton(m_hWnd, id, *pField ? BST_CHECKED : BST_UNCHECKED);
    SetModified(TRUE);
}

void TVOGraphicsTab::OnCommand(int id, int code)
{
    QLM_TRACE_SCOPE(TEXT("TVOGraphicsTab::OnCommand"), g_bTraceGraphicsTab);
    if (!m_pDM || !m_pConfig)
        return;
    switch (id) {
    case IDC_GRAPHICS_MERGE:
        if (code == CBN_SELENDOK)
            OnListChoice(id, &m_pDM->dmxGraphicsList);
        return;
    case IDC_GRAPHICS_ROTATION:
        if (code == CBN_SELENDOK)
            OnListChoice(id, &m_pDM->dmxRotation);
        return;
    case IDC_GRAPHICS_SCALE_TO_PAPER:
        if (code == CBN_SELENDOK)
            OnListChoice(id, &m_pDM->dmxScaleToPaper);
        return;
    case IDC_GRAPHICS_MIRROR_X:
        if (code == BN_CLICKED)
            OnToggle(id, &m_pDM->dmxMirrorX);
        return;
    case IDC_GRAPHICS_MIRROR_Y:
        if (code == BN_CLICKED)
            OnToggle(id, &m_pDM->dmxMirrorY);
        return;
    case IDC_GRAPHICS_RASTER_SMOOTH:
        if (code == BN_CLICKED)
            OnToggle(id, &m_pDM->dmxGraphicsFlag);
        return;
    case IDC_DEFAULTS:
        SetPrinterDefaults();
        SetModified(TRUE);
        return;
    case IDC_GRAPHICS_PERCENT:
        if (code == EN_CHANGE) {
            // No check of its own: the three characters of the field bound it from above.
            WCHAR text[5] = {};
            GetDlgItemTextW(m_hWnd, IDC_GRAPHICS_PERCENT, text, 5);
            m_pDM->dmxScalePercent = static_cast<DWORD>(static_cast<int>(WstrToLong(text)));
            SetModified(TRUE);
        }
        return;
    case IDC_GRAPHICS_RASTER_KEEP:
    case IDC_GRAPHICS_RASTER_SCALE:
        if (code == BN_CLICKED) {
            m_pDM->dmxRasterImageScaling = id == IDC_GRAPHICS_RASTER_SCALE ? 1 : 0;
            SetModified(TRUE);
        }
        return;
    case IDC_GRAPHICS_SCALE_NONE:
    case IDC_GRAPHICS_SCALE_PAPER:
    case IDC_GRAPHICS_SCALE_PERCENT:
        if (code == BN_CLICKED) {
            m_pDM->dmxScalingMode = id == IDC_GRAPHICS_SCALE_NONE    ? kSCALE_NONE
                                    : id == IDC_GRAPHICS_SCALE_PAPER ? kSCALE_TO_PAPER
                                                                     : kSCALE_PERCENT;
            enableGraphicsScalingFields();
            SetModified(TRUE);
        }
        return;
    default:
        return;
    }
}

LRESULT TVOGraphicsTab::OnNotify(HWND hWnd, WPARAM wParam, NMHDR* pnmhdr)
{
    return TVOTab::OnNotify(hWnd, wParam, pnmhdr);
}

void TVOGraphicsTab::SetPrinterDefaults()
{
    QLM_TRACE_SCOPE(TEXT("TVOGraphicsTab::SetPrinterDefaults"), g_bTraceGraphicsTab);
    if (!m_pDM || !m_pConfig)
        return;
    m_pDM->dmxScalingMode = kSCALE_NONE;
    m_pDM->dmxScaleToPaper =
        m_pDM->dmxUnits == static_cast<DWORD>(kDISTANCE_MM) ? kSCALE_TO_A4 : kSCALE_TO_LETTER;
    m_pDM->dmxScalePercent = 100;
    m_pDM->dmxRasterImageScaling = 1;
    m_pDM->dmxMirrorX = 0;
    m_pDM->dmxMirrorY = 0;
    m_pDM->dmxRotation = 4;
    m_pDM->dmxGraphicsFlag = 1;
    m_pDM->dmxGraphicsList = 0;
    SetControlsFromDM();
    SetFocus(m_hWnd);
}
