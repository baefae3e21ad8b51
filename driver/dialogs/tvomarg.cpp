#include "tvomarg.h"

#include "../config/tvoconfg.h"
#include "../foundation/qlmtrace.h"
#include "../../resources/qlmres.h"

#include <iterator>

namespace {

const DWORD kUnprintableLockList[] = {IDC_UNPRINTABLE_MARGINS_GROUP,
                                      IDC_UNPRINTABLE_TOP_CAPTION,
                                      IDC_UNPRINTABLE_TOP,
                                      IDC_UNPRINTABLE_TOP_SPIN,
                                      IDC_UNPRINTABLE_TOP_UNIT,
                                      IDC_UNPRINTABLE_LEFT_CAPTION,
                                      IDC_UNPRINTABLE_LEFT,
                                      IDC_UNPRINTABLE_LEFT_SPIN,
                                      IDC_UNPRINTABLE_LEFT_UNIT,
                                      IDC_UNPRINTABLE_RIGHT_CAPTION,
                                      IDC_UNPRINTABLE_RIGHT,
                                      IDC_UNPRINTABLE_RIGHT_SPIN,
                                      IDC_UNPRINTABLE_RIGHT_UNIT,
                                      IDC_UNPRINTABLE_BOTTOM_CAPTION,
                                      IDC_UNPRINTABLE_BOTTOM,
                                      IDC_UNPRINTABLE_BOTTOM_SPIN,
                                      IDC_UNPRINTABLE_BOTTOM_UNIT,
                                      IDC_UNPRINTABLE_PLACEMENT_GROUP,
                                      IDC_UNPRINTABLE_X_CAPTION,
                                      IDC_UNPRINTABLE_X,
                                      IDC_UNPRINTABLE_OFFSET_X,
                                      IDC_UNPRINTABLE_OFFSET_X_SPIN,
                                      IDC_UNPRINTABLE_OFFSET_X_UNIT,
                                      IDC_UNPRINTABLE_Y_CAPTION,
                                      IDC_UNPRINTABLE_Y,
                                      IDC_UNPRINTABLE_OFFSET_Y,
                                      IDC_UNPRINTABLE_OFFSET_Y_SPIN,
                                      IDC_UNPRINTABLE_OFFSET_Y_UNIT,
                                      IDC_DEFAULTS,
                                      IDC_LOGO,
                                      0};

// The six distances: the four margins by their place in dmxUnprintableMargin, then the
// horizontal and vertical offsets of the image.
struct DistanceField
{
    int edit;
    int spin;
    int label;
    int unit;
};
const DistanceField kFields[] = {
    {IDC_UNPRINTABLE_TOP, IDC_UNPRINTABLE_TOP_SPIN, IDC_UNPRINTABLE_TOP_CAPTION,
     IDC_UNPRINTABLE_TOP_UNIT},
    {IDC_UNPRINTABLE_BOTTOM, IDC_UNPRINTABLE_BOTTOM_SPIN, IDC_UNPRINTABLE_BOTTOM_CAPTION,
     IDC_UNPRINTABLE_BOTTOM_UNIT},
    {IDC_UNPRINTABLE_RIGHT, IDC_UNPRINTABLE_RIGHT_SPIN, IDC_UNPRINTABLE_RIGHT_CAPTION,
     IDC_UNPRINTABLE_RIGHT_UNIT},
    {IDC_UNPRINTABLE_LEFT, IDC_UNPRINTABLE_LEFT_SPIN, IDC_UNPRINTABLE_LEFT_CAPTION,
     IDC_UNPRINTABLE_LEFT_UNIT},
    {IDC_UNPRINTABLE_OFFSET_X, IDC_UNPRINTABLE_OFFSET_X_SPIN, IDC_UNPRINTABLE_X_CAPTION,
     IDC_UNPRINTABLE_OFFSET_X_UNIT},
    {IDC_UNPRINTABLE_OFFSET_Y, IDC_UNPRINTABLE_OFFSET_Y_SPIN, IDC_UNPRINTABLE_Y_CAPTION,
     IDC_UNPRINTABLE_OFFSET_Y_UNIT},
};
constexpr int kNUM_FIELDS = static_cast<int>(std::size(kFields));
// The fields are tested top, bottom, left, right, then the offsets; the first bad one is named.
const int kValidationOrder[] = {0, 1, 3, 2, 4, 5};
// The offset row of the placement lists, where the user gives the distance.
constexpr DWORD kPLACEMENT_OFFSET = 5;
constexpr int kTEXT_CCH = 32;

TVOFixed& FieldValue(DEVMODEEX* pDM, int i)
{
    if (i < 4)
        return pDM->dmxUnprintableMargin[i];
    return i == 4 ? pDM->dmxPlacementOffsetX : pDM->dmxPlacementOffsetY;
}

// The largest distance in whole display units; the smallest is 0.
long MaximumIn(eDistanceUnits units)
{
    return units == kFIXED_MM ? 2540 : 100;
}

} // namespace

TVOUnprintableDlg::TVOUnprintableDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM)
{
    m_iResourceID = IDD_UNPRINTABLE;
    m_pConfig = pConfig;
    m_pDM = pDM;
    m_pPermissionIDs = kUnprintableLockList;
}

BOOL TVOUnprintableDlg::OnInitDialog()
{
    QLM_TRACE_SCOPE(TEXT("TVOUnprintableDlg::OnInitDialog"), g_bTraceTVODialog);
    ASSERT(m_pConfig);
    ASSERT(m_pDM);
    if (!m_pConfig || !m_pDM)
        return 1;
    for (const DistanceField& field : kFields)
        SubclassNumericEdit(field.edit);
    SetControlsFromDM();
    return 1;
}

void TVOUnprintableDlg::SetControlsFromDM()
{
    QLM_TRACE_SCOPE(TEXT("TVOUnprintableDlg::SetControlsFromDM"), g_bTraceTVODialog);
    if (!m_pConfig || !m_pDM)
        return;
    for (const DistanceField& field : kFields)
        SendDlgItemMessageW(m_hWnd, field.edit, EM_LIMITTEXT, kTEXT_CCH, 0);
    m_pConfig->fillComboBox1(m_hWnd, IDC_UNPRINTABLE_Y, m_pConfig->m_MarginPlacementYList,
                             m_pDM->dmxPlacementY);
    m_pConfig->fillComboBox1(m_hWnd, IDC_UNPRINTABLE_X, m_pConfig->m_MarginPlacementXList,
                             m_pDM->dmxPlacementX);
    const BOOL bOffsetY = m_pDM->dmxPlacementY == kPLACEMENT_OFFSET;
    EnableWindow(GetDlgItem(m_hWnd, IDC_UNPRINTABLE_OFFSET_Y_SPIN), bOffsetY);
    EnableWindow(GetDlgItem(m_hWnd, IDC_UNPRINTABLE_OFFSET_Y), bOffsetY);
    const BOOL bOffsetX = m_pDM->dmxPlacementX == kPLACEMENT_OFFSET;
    EnableWindow(GetDlgItem(m_hWnd, IDC_UNPRINTABLE_OFFSET_X_SPIN), bOffsetX);
    EnableWindow(GetDlgItem(m_hWnd, IDC_UNPRINTABLE_OFFSET_X), bOffsetX);

    const eDistanceUnits units = DisplayUnits();
    int unitIds[kNUM_FIELDS];
    for (int i = 0; i < kNUM_FIELDS; ++i) {
        TVOFixed value = FieldValue(m_pDM, i);
        if (units == kFIXED_MM)
            value.InchestToMM();
        SetDistanceText(kFields[i].edit, value);
        unitIds[i] = kFields[i].unit;
    }
    SetUnitTexts(unitIds, kNUM_FIELDS);
    LockControls(m_pConfig->m_bHasPermission);
}

int TVOUnprintableDlg::CheckDistance(int fieldId, int labelId)
{
    const long maximum = MaximumIn(DisplayUnits());
    const TVOFixed value = GetDistanceText(fieldId, kTEXT_CCH);
    if (value < TVOFixed(0L) || value > TVOFixed(maximum)) {
        ShowRangeError(labelId, 0L, maximum);
        return fieldId;
    }
    return 0;
}

int TVOUnprintableDlg::EnteredValuesAreValid()
{
    // A disabled offset is tested as well: its text goes into the record all the same.
    for (int i : kValidationOrder) {
        if (int bad = CheckDistance(kFields[i].edit, kFields[i].label))
            return bad;
    }
    return 0;
}

void TVOUnprintableDlg::UpdateDMFromControls()
{
    QLM_TRACE_SCOPE(TEXT("TVOUnprintableDlg::UpdateDMFromControls"), g_bTraceTVODialog);
    if (!m_pDM)
        return;
    m_pDM->dmxPlacementX = GetComboSelection(IDC_UNPRINTABLE_X);
    m_pDM->dmxPlacementY = GetComboSelection(IDC_UNPRINTABLE_Y);
    const eDistanceUnits units = DisplayUnits();
    for (int i = 0; i < kNUM_FIELDS; ++i) {
        TVOFixed value = GetDistanceText(kFields[i].edit, kTEXT_CCH);
        if (units == kFIXED_MM)
            value.MMToInches();
        FieldValue(m_pDM, i) = value;
    }
}

void TVOUnprintableDlg::SetPrinterDefaults()
{
    QLM_TRACE_SCOPE(TEXT("TVOUnprintableDlg::SetPrinterDefaults"), g_bTraceTVODialog);
    if (!m_pDM)
        return;
    // No modified flag: the record holds the defaults from now on, also after Cancel, while
    // the paper tab is told of no change.
    m_pDM->dmxPlacementX = 0;
    m_pDM->dmxPlacementY = 8;
    for (TVOFixed& margin : m_pDM->dmxUnprintableMargin)
        margin = TVOFixed(0.2);
    m_pDM->dmxPlacementOffsetX = TVOFixed(0L);
    m_pDM->dmxPlacementOffsetY = TVOFixed(0L);
    SetControlsFromDM();
    SetFocus(m_hWnd);
}

void TVOUnprintableDlg::OnCommand(int id, int code)
{
    switch (id) {
    case IDOK:
        if (int bad = EnteredValuesAreValid()) {
            SetFocus(GetDlgItem(m_hWnd, bad));
            return;
        }
        UpdateDMFromControls();
        setModified(TRUE);
        EndDialog(m_hWnd, 1);
        return;
    case IDCANCEL:
        EndDialog(m_hWnd, 2);
        return;
    case IDC_UNPRINTABLE_X:
    case IDC_UNPRINTABLE_Y: {
        if (code != CBN_SELENDOK)
            return;
        // The offset's field takes part only on the offset row; the record waits for OK.
        const BOOL bOffset = GetComboSelection(id) == kPLACEMENT_OFFSET;
        const bool horizontal = id == IDC_UNPRINTABLE_X;
        EnableWindow(
            GetDlgItem(m_hWnd, horizontal ? IDC_UNPRINTABLE_OFFSET_X : IDC_UNPRINTABLE_OFFSET_Y),
            bOffset);
        EnableWindow(GetDlgItem(m_hWnd, horizontal ? IDC_UNPRINTABLE_OFFSET_X_SPIN
                                                   : IDC_UNPRINTABLE_OFFSET_Y_SPIN),
                     bOffset);
        setModified(TRUE);
        return;
    }
    case IDC_DEFAULTS:
        if (code == BN_CLICKED)
            SetPrinterDefaults();
        return;
    default:
        return;
    }
}

LRESULT TVOUnprintableDlg::OnNotify(NMHDR* pnmhdr)
{
    if (!pnmhdr || pnmhdr->code != UDN_DELTAPOS)
        return 0;
    const auto* pUpDown = reinterpret_cast<const NMUPDOWN*>(pnmhdr);
    int field = IDC_UNPRINTABLE_TOP;
    for (const DistanceField& row : kFields) {
        if (static_cast<UINT_PTR>(row.spin) == pnmhdr->idFrom)
            field = row.edit;
    }
    SpinDistanceField(field, pUpDown->iDelta, TVOFixed(0L), TVOFixed(MaximumIn(DisplayUnits())),
                      kTEXT_CCH);
    return 1;
}

INT_PTR TVOUnprintableDlg::DialogProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        return OnInitDialog();
    case WM_COMMAND:
        OnCommand(LOWORD(wParam), HIWORD(wParam));
        return 0;
    case WM_NOTIFY:
        return OnNotify(reinterpret_cast<NMHDR*>(lParam));
    case WM_HELP:
        OnHelp(m_hWnd, wParam, reinterpret_cast<const HELPINFO*>(lParam));
        return 0;
    case WM_CLOSE:
        EndDialog(m_hWnd, 2);
        return 0;
    default:
        return 0;
    }
}
