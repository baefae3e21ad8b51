#include "tvostamp.h"

#include "../config/tvoconfg.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "../../resources/qlmres.h"

#include <cstring>

namespace {

// The list names the label dialog's placement controls (1222 to 1185) and not this dialog's
// own, which therefore stay live for a user without permission. It stays as it is.
const DWORD kStampLockList[] = {IDC_STAMP_NAME_CAPTION,
                                IDC_STAMP_NAME,
                                IDC_SCALING_GROUP,
                                IDC_STAMP_SCALE_CAPTION,
                                IDC_STAMP_SCALE,
                                IDC_STAMP_SCALE_SPIN,
                                IDC_STAMP_SCALE_UNIT,
                                IDC_STAMP_BEHIND,
                                IDC_STAMP_FRONT,
                                IDC_STAMP_LAYER_GROUP,
                                IDC_LABEL_X_CAPTION,
                                IDC_LABEL_X,
                                IDC_LABEL_OFFSET_X,
                                IDC_LABEL_OFFSET_X_SPIN,
                                IDC_LABEL_OFFSET_X_UNIT,
                                IDC_LABEL_Y_CAPTION,
                                IDC_LABEL_Y,
                                IDC_LABEL_OFFSET_Y,
                                IDC_LABEL_OFFSET_Y_SPIN,
                                IDC_LABEL_OFFSET_Y_UNIT,
                                IDC_ROTATION_CAPTION,
                                IDC_GRAPHICS_ROTATION,
                                IDC_LABEL_ANGLE_UNIT,
                                IDC_DEFAULTS,
                                IDC_LOGO,
                                0};

constexpr DWORD kPLACE_OFFSET = 5;
constexpr int kFIELD_CCH = 32;
constexpr int kSTAMP_NAME_CCH = 32;
constexpr int kSCALE_CCH = 3;
constexpr int kSCALE_MIN = 10;
constexpr int kSCALE_MAX = 999;
// The printer's stamp list is walked no further than this position, which lies beyond the
// field: the field's end stops a list without its empty name.
constexpr size_t kSTAMP_LIST_END = 4095;
constexpr size_t kSTAMP_LIST_CCH = sizeof(DEVMODEEX::dmxRasterStampList) / sizeof(WCHAR);
constexpr size_t kNAME_FIELD_CCH = sizeof(DEVMODEEX::dmxStampName) / sizeof(WCHAR);

// The stamp's defaults.
constexpr WORD kDEFAULT_SCALE = 100;
constexpr DWORD kDEFAULT_PLACEMENT = 2;

} // namespace

TVOStampDlg::TVOStampDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM)
    : TVOWorkingCopyDialog(IDD_STAMP, pConfig, pDM, kStampLockList)
{
}

BOOL TVOStampDlg::OnInitDialog()
{
    QLM_TRACE_SCOPE(TEXT("TVOStampDlg::OnInitDialog"), g_bTraceRasterStampDlg);
    ASSERT(m_pConfig);
    ASSERT(m_pDM);
    if (m_pConfig && m_pDM) {
        SubclassNumericEdit(IDC_STAMP_OFFSET_X);
        SubclassNumericEdit(IDC_STAMP_OFFSET_Y);
        SetControlsFromDM();
    }
    return 1;
}

void TVOStampDlg::SetControlsFromDM()
{
    QLM_TRACE_SCOPE(TEXT("TVOStampDlg::SetControlsFromDM"), g_bTraceRasterStampDlg);
    if (!m_pDM || !m_pConfig)
        return;
    SendDlgItemMessageW(m_hWnd, IDC_STAMP_SCALE, EM_LIMITTEXT, kSCALE_CCH, 0);
    SendDlgItemMessageW(m_hWnd, IDC_STAMP_OFFSET_X, EM_LIMITTEXT, kFIELD_CCH, 0);
    SendDlgItemMessageW(m_hWnd, IDC_STAMP_OFFSET_Y, EM_LIMITTEXT, kFIELD_CCH, 0);

    SendDlgItemMessageW(m_hWnd, IDC_STAMP_NAME, CB_RESETCONTENT, 0, 0);
    SendDlgItemMessageW(m_hWnd, IDC_STAMP_NAME, CB_LIMITTEXT, kSTAMP_NAME_CCH, 0);
    WCHAR name[kNAME_FIELD_CCH + 1] = {};
    WstrNCopy(name, m_pDM->dmxStampName, kNAME_FIELD_CCH);
    if (name[0])
        SetDlgItemTextW(m_hWnd, IDC_STAMP_NAME, name);

    const WCHAR* stamps = m_pDM->dmxRasterStampList;
    size_t pos = 0;
    while (pos < kSTAMP_LIST_END && pos < kSTAMP_LIST_CCH && stamps[pos]) {
        WCHAR stamp[kSTAMP_LIST_CCH + 1];
        size_t len = 0;
        while (pos + len < kSTAMP_LIST_CCH && stamps[pos + len]) {
            stamp[len] = stamps[pos + len];
            ++len;
        }
        stamp[len] = 0;
        SendDlgItemMessageW(m_hWnd, IDC_STAMP_NAME, CB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(stamp));
        pos += len + 1;
    }

    // Without a name of the job's own the printer's default stamp is looked for. A typed name
    // that the printer does not list stays in the edit as written above.
    if (!name[0])
        WstrNCopy(name, m_pDM->dmxDefaultStamp, kNAME_FIELD_CCH);
    const LRESULT found =
        SendDlgItemMessageW(m_hWnd, IDC_STAMP_NAME, CB_FINDSTRING, static_cast<WPARAM>(-1),
                            reinterpret_cast<LPARAM>(name));
    if (found != CB_ERR)
        SendDlgItemMessageW(m_hWnd, IDC_STAMP_NAME, CB_SETCURSEL, static_cast<WPARAM>(found), 0);

    SendDlgItemMessageW(m_hWnd, IDC_STAMP_SCALE_SPIN, UDM_SETRANGE, 0,
                        MAKELPARAM(kSCALE_MAX, kSCALE_MIN));
    SendDlgItemMessageW(m_hWnd, IDC_STAMP_SCALE_SPIN, UDM_SETPOS, 0,
                        MAKELPARAM(m_pDM->dmxStampScale, 0));

    CheckDlgButton(m_hWnd, IDC_STAMP_FRONT, BST_UNCHECKED);
    CheckDlgButton(m_hWnd, IDC_STAMP_BEHIND, BST_UNCHECKED);
    CheckDlgButton(m_hWnd, m_pDM->dmxStampOption > 0 ? IDC_STAMP_FRONT : IDC_STAMP_BEHIND,
                   BST_CHECKED);

    m_pConfig->fillComboBox1(m_hWnd, IDC_STAMP_X, m_pConfig->m_StampPlacementXList,
                             m_pDM->dmxStampPlacementX);
    UpdatePlacementButtonX();
    m_pConfig->fillComboBox1(m_hWnd, IDC_STAMP_Y, m_pConfig->m_StampPlacementYList,
                             m_pDM->dmxStampPlacementY);
    UpdatePlacementButtonY();
    m_pConfig->fillComboBox1(m_hWnd, IDC_STAMP_ROTATION, m_pConfig->m_StampRotationList,
                             m_pDM->dmxStampRotation);

    const int units[] = {IDC_STAMP_OFFSET_X_UNIT, IDC_STAMP_OFFSET_Y_UNIT};
    SetUnitTexts(units, 2);
    TVOFixed offsetX = m_pDM->dmxStampOffsetX;
    TVOFixed offsetY = m_pDM->dmxStampOffsetY;
    if (m_pDM->dmxUnits == kDISTANCE_MM) {
        offsetX.InchestToMM();
        offsetY.InchestToMM();
    }
    SetDistanceText(IDC_STAMP_OFFSET_X, offsetX);
    SetDistanceText(IDC_STAMP_OFFSET_Y, offsetY);

    LockControls(m_pConfig->m_bHasPermission);
}

void TVOStampDlg::UpdatePlacementButtonX()
{
    const int ids[] = {IDC_STAMP_OFFSET_X, IDC_STAMP_OFFSET_X_SPIN, IDC_STAMP_OFFSET_X_UNIT};
    EnableControls(ids, 3, GetComboSelection(IDC_STAMP_X) == kPLACE_OFFSET);
}

void TVOStampDlg::UpdatePlacementButtonY()
{
    const int ids[] = {IDC_STAMP_OFFSET_Y, IDC_STAMP_OFFSET_Y_SPIN, IDC_STAMP_OFFSET_Y_UNIT};
    EnableControls(ids, 3, GetComboSelection(IDC_STAMP_Y) == kPLACE_OFFSET);
}

int TVOStampDlg::EnteredValuesAreValid()
{
    QLM_TRACE_SCOPE(TEXT("TVOStampDlg::EnteredValuesAreValid"), g_bTraceRasterStampDlg);
    // Offsets are compared as typed, in the display units.
    const TVOFixed minimum(0L);
    const TVOFixed maximum(DisplayUnits() == kFIXED_MM ? 30480L : 1200L);
    const struct
    {
        int field, caption;
    } offsets[] = {{IDC_STAMP_OFFSET_X, IDC_STAMP_X_CAPTION},
                   {IDC_STAMP_OFFSET_Y, IDC_STAMP_Y_CAPTION}};
    for (const auto& row : offsets) {
        const TVOFixed offset = GetDistanceText(row.field, kFIELD_CCH);
        if (offset < minimum || offset > maximum) {
            ShowRangeError(row.caption, long(minimum), long(maximum));
            return row.field;
        }
    }
    const UINT scale = GetDlgItemInt(m_hWnd, IDC_STAMP_SCALE, nullptr, TRUE);
    if (scale < UINT(kSCALE_MIN) || scale > UINT(kSCALE_MAX)) {
        ShowRangeError(IDC_STAMP_SCALE_CAPTION, long(kSCALE_MIN), long(kSCALE_MAX));
        return IDC_STAMP_SCALE;
    }
    return 0;
}

void TVOStampDlg::UpdateDMFromControls()
{
    WCHAR name[kSTAMP_NAME_CCH + 1] = {};
    GetDlgItemTextW(m_hWnd, IDC_STAMP_NAME, name, kSTAMP_NAME_CCH + 1);
    WstrCopy(m_pDM->dmxStampName, kNAME_FIELD_CCH, name);
    m_pDM->dmxStampScale = static_cast<WORD>(GetDlgItemInt(m_hWnd, IDC_STAMP_SCALE, nullptr, TRUE));
    m_pDM->dmxStampOption = IsDlgButtonChecked(m_hWnd, IDC_STAMP_FRONT) == BST_CHECKED ? 1 : 0;
    m_pDM->dmxStampPlacementX = GetComboSelection(IDC_STAMP_X);
    TVOFixed offsetX = GetDistanceText(IDC_STAMP_OFFSET_X, kFIELD_CCH);
    m_pDM->dmxStampPlacementY = GetComboSelection(IDC_STAMP_Y);
    TVOFixed offsetY = GetDistanceText(IDC_STAMP_OFFSET_Y, kFIELD_CCH);
    if (m_pDM->dmxUnits == kDISTANCE_MM) {
        offsetX.MMToInches();
        offsetY.MMToInches();
    }
    m_pDM->dmxStampOffsetX = offsetX;
    m_pDM->dmxStampOffsetY = offsetY;
    m_pDM->dmxStampRotation = static_cast<WORD>(GetComboSelection(IDC_STAMP_ROTATION));
}

void TVOStampDlg::SetPrinterDefaults()
{
    memset(m_pDM->dmxStampName, 0, sizeof(m_pDM->dmxStampName));
    m_pDM->dmxStampRotation = 0;
    m_pDM->dmxStampOption = 0;
    m_pDM->dmxStampPlacementX = kDEFAULT_PLACEMENT;
    m_pDM->dmxStampOffsetX = TVOFixed(0L);
    m_pDM->dmxStampPlacementY = kDEFAULT_PLACEMENT;
    m_pDM->dmxStampOffsetY = TVOFixed(0L);
    m_pDM->dmxStampScale = kDEFAULT_SCALE;
    SetControlsFromDM();
    SetFocus(m_hWnd);
}

void TVOStampDlg::OnCommand(int id, int code)
{
    switch (id) {
    case IDOK: {
        const int bad = EnteredValuesAreValid();
        if (bad) {
            SetFocus(GetDlgItem(m_hWnd, bad));
            return;
        }
        UpdateDMFromControls();
        setModified(TRUE);
        KeepWorkingCopy();
        EndDialog(m_hWnd, 1);
        return;
    }
    case IDCANCEL:
        DropWorkingCopy();
        EndDialog(m_hWnd, 2);
        return;
    case IDC_DEFAULTS:
        setModified(TRUE);
        SetPrinterDefaults();
        return;
    case IDC_STAMP_X:
        if (code == CBN_SELCHANGE)
            UpdatePlacementButtonX();
        return;
    case IDC_STAMP_Y:
        if (code == CBN_SELCHANGE)
            UpdatePlacementButtonY();
        return;
    default:
        return;
    }
}

LRESULT TVOStampDlg::OnNotify(const NMHDR* pnmhdr)
{
    if (!pnmhdr || pnmhdr->code != UDN_DELTAPOS)
        return 0;
    // The scale's up-down steps its own number.
    if (pnmhdr->idFrom == IDC_STAMP_SCALE_SPIN)
        return 1;
    int field = IDC_STAMP_OFFSET_X;
    if (pnmhdr->idFrom == IDC_STAMP_OFFSET_Y_SPIN) {
        field = IDC_STAMP_OFFSET_Y;
    } else if (pnmhdr->idFrom != IDC_STAMP_OFFSET_X_SPIN) {
        Trace(TEXT("error: lpnmhdr->idFrom bad value\n"));
        ASSERT(0);
    }
    const auto* pUpDown = reinterpret_cast<const NMUPDOWN*>(pnmhdr);
    SpinDistanceField(field, pUpDown->iDelta, TVOFixed(0L),
                      TVOFixed(DisplayUnits() == kFIXED_MM ? 30480L : 1200L), kFIELD_CCH);
    return 1;
}

void TVOStampDlg::OnDestroy()
{
    // The subclassed fields go with their window.
    QLM_TRACE_SCOPE(TEXT("TVOStampDlg::OnDestroy"), g_bTraceRasterStampDlg);
}
