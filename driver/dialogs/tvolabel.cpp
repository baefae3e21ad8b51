#include "tvolabel.h"

#include "../config/tvoconfg.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "../../resources/qlmres.h"

#include <cstring>
#include <iterator>

namespace {

// The up-downs of density and point size are not in the list: they stay live for a user
// without permission, as they always have.
const DWORD kLabelLockList[] = {IDC_LABEL_CAPTION,
                                IDC_LABEL_TEXT,
                                IDC_LABEL_FIELDS,
                                IDC_LABEL_PLACEMENT_GROUP,
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
                                IDC_LABEL_ANGLE,
                                IDC_LABEL_ANGLE_SPIN,
                                IDC_LABEL_ANGLE_UNIT,
                                IDC_LABEL_FONT_GROUP,
                                IDC_LABEL_DENSITY_CAPTION,
                                IDC_LABEL_DENSITY,
                                IDC_LABEL_DENSITY_UNIT,
                                IDC_LABEL_FONT_CAPTION,
                                IDC_LABEL_FONT,
                                IDC_LABEL_SIZE_CAPTION,
                                IDC_LABEL_SIZE,
                                IDC_LABEL_SIZE_UNIT,
                                IDC_DEFAULTS,
                                IDC_LOGO,
                                0};

// The special-field menu's commands and the texts they append; the last four stand in this
// order.
const struct
{
    int command;
    UINT text;
} kLabelFields[] = {
    {IDM_FIELD_DATE, IDS_FIELD_DATE},   {IDM_FIELD_TIME, IDS_FIELD_TIME},
    {IDM_FIELD_USER, IDS_FIELD_USER},   {IDM_FIELD_DOCUMENT, IDS_FIELD_DOCUMENT},
    {IDM_FIELD_PAGE, IDS_FIELD_PAGE},   {IDM_FIELD_COPIES, IDS_FIELD_COPIES},
    {IDM_FIELD_PAPER, IDS_FIELD_PAPER}, {IDM_FIELD_PRINTER, IDS_FIELD_PRINTER},
};

// The placement row whose offset the user types.
constexpr DWORD kPLACE_OFFSET = 5;
constexpr int kFIELD_CCH = 32;
constexpr int kFONT_NAME_CCH = 64;
constexpr int kFONT_EDIT_CCH = 32;
constexpr int kLABEL_SHOWN_CCH = 1048;
// The printer's font list is walked no further than this position.
constexpr size_t kFONT_LIST_END = 1749;
constexpr size_t kFONT_LIST_CCH = sizeof(DEVMODEEX::dmxFontList) / sizeof(WCHAR);
constexpr size_t kLABEL_FONT_CCH = sizeof(DEVMODEEX::dmxLabelFont) / sizeof(WCHAR);
constexpr size_t kDEFAULT_FONT_CCH = sizeof(DEVMODEEX::dmxDefaultFont) / sizeof(WCHAR);
constexpr LONG kMARLETT_HEIGHT = 24;

constexpr UINT kDENSITY_MAX = 100;
constexpr UINT kSIZE_MIN = 6;
constexpr UINT kSIZE_MAX = 72;
constexpr UINT kANGLE_MAX = 359;

// The label's defaults.
constexpr WORD kDEFAULT_POINT_SIZE = 18;
constexpr WORD kDEFAULT_DENSITY = 100;
constexpr WORD kDEFAULT_ANGLE = 90;
constexpr DWORD kDEFAULT_PLACEMENT_X = 4;
constexpr DWORD kDEFAULT_PLACEMENT_Y = 8;

void SetSpin(HWND hDlg, int id, int minimum, int maximum, WORD position)
{
    SendDlgItemMessageW(hDlg, id, UDM_SETRANGE, 0, MAKELPARAM(maximum, minimum));
    SendDlgItemMessageW(hDlg, id, UDM_SETPOS, 0, MAKELPARAM(position, 0));
}

WORD SpinPosition(HWND hDlg, int id)
{
    return LOWORD(SendDlgItemMessageW(hDlg, id, UDM_GETPOS, 0, 0));
}

} // namespace

TVOLabelDlg::TVOLabelDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM)
    : TVOWorkingCopyDialog(IDD_LABEL, pConfig, pDM, kLabelLockList)
{
}

BOOL TVOLabelDlg::OnInitDialog()
{
    QLM_TRACE_SCOPE(TEXT("TVOLabelDlg::OnInitDialog"), g_bTraceLabelDlg);
    ASSERT(m_pConfig);
    ASSERT(m_pDM);
    if (m_pConfig && m_pDM) {
        // The whole-number fields are guarded by their up-downs and the validation.
        SubclassNumericEdit(IDC_LABEL_OFFSET_Y);
        SubclassNumericEdit(IDC_LABEL_OFFSET_X);
        SetLabelSpecialCharacter();
        SetControlsFromDM();
    }
    return 1;
}

void TVOLabelDlg::SetLabelSpecialCharacter()
{
    LOGFONTW font;
    memset(&font, 0, sizeof(font));
    font.lfHeight = kMARLETT_HEIGHT;
    font.lfCharSet = DEFAULT_CHARSET;
    WstrCopy(font.lfFaceName, LF_FACESIZE, TEXT("Marlett"));
    m_hfn = CreateFontIndirectW(&font);
    SendDlgItemMessageW(m_hWnd, IDC_LABEL_FIELDS, WM_SETFONT, reinterpret_cast<WPARAM>(m_hfn),
                        TRUE);
}

void TVOLabelDlg::SetControlsFromDM()
{
    QLM_TRACE_SCOPE(TEXT("TVOLabelDlg::SetControlsFromDM"), g_bTraceLabelDlg);
    if (!m_pDM || !m_pConfig)
        return;
    SendDlgItemMessageW(m_hWnd, IDC_LABEL_TEXT, EM_LIMITTEXT, kLABEL_SHOWN_CCH, 0);
    for (int id : {IDC_LABEL_OFFSET_X, IDC_LABEL_OFFSET_Y, IDC_LABEL_ANGLE, IDC_LABEL_DENSITY,
                   IDC_LABEL_SIZE})
        SendDlgItemMessageW(m_hWnd, id, EM_LIMITTEXT, kFIELD_CCH, 0);

    WCHAR text[kLABEL_TEXT_CCH + 1] = {};
    WstrNCopy(text, m_pDM->dmxLabelText, kLABEL_TEXT_CCH);
    SetDlgItemTextW(m_hWnd, IDC_LABEL_TEXT, text);

    m_pConfig->fillComboBox1(m_hWnd, IDC_LABEL_X, m_pConfig->m_LabelPlacementXList,
                             m_pDM->dmxLabelPlacementX);
    UpdatePlacementButtonX();
    m_pConfig->fillComboBox1(m_hWnd, IDC_LABEL_Y, m_pConfig->m_LabelPlacementYList,
                             m_pDM->dmxLabelPlacementY);
    UpdatePlacementButtonY();

    TVOFixed offsetX = m_pDM->dmxLabelOffsetX;
    TVOFixed offsetY = m_pDM->dmxLabelOffsetY;
    if (m_pDM->dmxUnits == kDISTANCE_MM) {
        offsetX.InchestToMM();
        offsetY.InchestToMM();
    }
    SetDistanceText(IDC_LABEL_OFFSET_X, offsetX);
    SetDistanceText(IDC_LABEL_OFFSET_Y, offsetY);
    const int units[] = {IDC_LABEL_OFFSET_X_UNIT, IDC_LABEL_OFFSET_Y_UNIT};
    SetUnitTexts(units, 2);

    SetSpin(m_hWnd, IDC_LABEL_ANGLE_SPIN, 0, kANGLE_MAX, m_pDM->dmxLabelAngle);
    SetSpin(m_hWnd, IDC_LABEL_DENSITY_SPIN, 0, kDENSITY_MAX, m_pDM->dmxLabelDensity);
    SetSpin(m_hWnd, IDC_LABEL_SIZE_SPIN, kSIZE_MIN, kSIZE_MAX, m_pDM->dmxLabelPointSize);

    const WCHAR* fonts = m_pDM->dmxFontList;
    if (fonts[0]) {
        SendDlgItemMessageW(m_hWnd, IDC_LABEL_FONT, CB_RESETCONTENT, 0, 0);
        SendDlgItemMessageW(m_hWnd, IDC_LABEL_FONT, CB_LIMITTEXT, kFONT_EDIT_CCH, 0);
        // The printer's names, each ended by a NUL, the list by an empty name. A list that runs
        // to the field's end is read no further than the field.
        size_t pos = 0;
        while (pos < kFONT_LIST_END && fonts[pos]) {
            WCHAR name[kFONT_LIST_CCH + 1];
            size_t len = 0;
            while (pos + len < kFONT_LIST_CCH && fonts[pos + len]) {
                name[len] = fonts[pos + len];
                ++len;
            }
            name[len] = 0;
            SendDlgItemMessageW(m_hWnd, IDC_LABEL_FONT, CB_ADDSTRING, 0,
                                reinterpret_cast<LPARAM>(name));
            pos += len + 1;
        }
    } else {
        m_pConfig->fillComboBox1(m_hWnd, IDC_LABEL_FONT, m_pConfig->m_LabelFontFamily,
                                 m_pDM->dmxLabelFontFamily);
    }

    if (!m_pDM->dmxLabelFont[0]) {
        WstrNCopy(m_pDM->dmxLabelFont, m_pDM->dmxDefaultFont, kDEFAULT_FONT_CCH);
        m_pDM->dmxLabelFont[kLABEL_FONT_CCH - 1] = 0;
    }
    WCHAR font[kLABEL_FONT_CCH + 1] = {};
    WstrNCopy(font, m_pDM->dmxLabelFont, kLABEL_FONT_CCH);
    // The whole list is searched from its first entry, so a name that begins another one
    // ("Arc", "Arc Italic") finds itself.
    LRESULT found = SendDlgItemMessageW(m_hWnd, IDC_LABEL_FONT, CB_FINDSTRING,
                                        static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(font));
    SendDlgItemMessageW(m_hWnd, IDC_LABEL_FONT, CB_SETCURSEL,
                        static_cast<WPARAM>(found == CB_ERR ? 0 : found), 0);

    LockControls(m_pConfig->m_bHasPermission);
}

void TVOLabelDlg::UpdatePlacementButtonX()
{
    const int ids[] = {IDC_LABEL_OFFSET_X, IDC_LABEL_OFFSET_X_SPIN, IDC_LABEL_OFFSET_X_UNIT};
    EnableControls(ids, 3, GetComboSelection(IDC_LABEL_X) == kPLACE_OFFSET);
}

void TVOLabelDlg::UpdatePlacementButtonY()
{
    const int ids[] = {IDC_LABEL_OFFSET_Y, IDC_LABEL_OFFSET_Y_SPIN, IDC_LABEL_OFFSET_Y_UNIT};
    EnableControls(ids, 3, GetComboSelection(IDC_LABEL_Y) == kPLACE_OFFSET);
}

int TVOLabelDlg::EnteredValuesAreValid()
{
    QLM_TRACE_SCOPE(TEXT("TVOLabelDlg::EnteredValuesAreValid"), g_bTraceLabelDlg);
    // Negative numbers count as too large: the values are taken unsigned. An empty field
    // fails without a message; the focus shows where.
    BOOL bTranslated = FALSE;
    UINT value = GetDlgItemInt(m_hWnd, IDC_LABEL_DENSITY, &bTranslated, TRUE);
    if (!bTranslated)
        return IDC_LABEL_DENSITY;
    if (value > kDENSITY_MAX) {
        ShowRangeError(IDC_LABEL_DENSITY_CAPTION, 0L, long(kDENSITY_MAX));
        return IDC_LABEL_DENSITY;
    }
    value = GetDlgItemInt(m_hWnd, IDC_LABEL_SIZE, &bTranslated, TRUE);
    if (!bTranslated)
        return IDC_LABEL_SIZE;
    if (value < kSIZE_MIN || value > kSIZE_MAX) {
        ShowRangeError(IDC_LABEL_SIZE_CAPTION, long(kSIZE_MIN), long(kSIZE_MAX));
        return IDC_LABEL_SIZE;
    }
    value = GetDlgItemInt(m_hWnd, IDC_LABEL_ANGLE, &bTranslated, TRUE);
    if (!bTranslated)
        return IDC_LABEL_ANGLE;
    if (value > kANGLE_MAX) {
        ShowRangeError(IDC_ROTATION_CAPTION, 0L, long(kANGLE_MAX));
        return IDC_LABEL_ANGLE;
    }

    // The offsets count only where the user places the label by them.
    const TVOFixed minimum(0L);
    const TVOFixed maximum(DisplayUnits() == kFIXED_MM ? 30480L : 1200L);
    const struct
    {
        int list, field, caption;
    } offsets[] = {{IDC_LABEL_X, IDC_LABEL_OFFSET_X, IDC_LABEL_X_CAPTION},
                   {IDC_LABEL_Y, IDC_LABEL_OFFSET_Y, IDC_LABEL_Y_CAPTION}};
    for (const auto& row : offsets) {
        if (GetComboSelection(row.list) != kPLACE_OFFSET)
            continue;
        const TVOFixed offset = GetDistanceText(row.field, kFIELD_CCH);
        if (offset < minimum || offset > maximum) {
            ShowRangeError(row.caption, long(minimum), long(maximum));
            return row.field;
        }
    }
    return 0;
}

void TVOLabelDlg::UpdateDMFromControls()
{
    GetDlgItemTextW(m_hWnd, IDC_LABEL_TEXT, m_pDM->dmxLabelText, kLABEL_TEXT_CCH);
    const BOOL bMM = m_pDM->dmxUnits == kDISTANCE_MM;
    m_pDM->dmxLabelPlacementX = GetComboSelection(IDC_LABEL_X);
    TVOFixed offset = GetDistanceText(IDC_LABEL_OFFSET_X, kFIELD_CCH);
    if (bMM)
        offset.MMToInches();
    m_pDM->dmxLabelOffsetX = offset;
    m_pDM->dmxLabelPlacementY = GetComboSelection(IDC_LABEL_Y);
    offset = GetDistanceText(IDC_LABEL_OFFSET_Y, kFIELD_CCH);
    if (bMM)
        offset.MMToInches();
    m_pDM->dmxLabelOffsetY = offset;
    // The printer's own fonts carry no family: their item data is 0.
    m_pDM->dmxLabelFontFamily = GetComboSelection(IDC_LABEL_FONT);
    m_pDM->dmxLabelAngle = SpinPosition(m_hWnd, IDC_LABEL_ANGLE_SPIN);
    m_pDM->dmxLabelDensity = SpinPosition(m_hWnd, IDC_LABEL_DENSITY_SPIN);
    m_pDM->dmxLabelPointSize = SpinPosition(m_hWnd, IDC_LABEL_SIZE_SPIN);
    GetDlgItemTextW(m_hWnd, IDC_LABEL_FONT, m_pDM->dmxLabelFont, kFONT_NAME_CCH);
}

void TVOLabelDlg::SetPrinterDefaults()
{
    m_pDM->dmxLabelText[0] = 0;
    WstrNCopy(m_pDM->dmxLabelFont, m_pDM->dmxDefaultFont, kDEFAULT_FONT_CCH);
    m_pDM->dmxLabelFont[kLABEL_FONT_CCH - 1] = 0;
    m_pDM->dmxLabelPointSize = kDEFAULT_POINT_SIZE;
    m_pDM->dmxLabelDensity = kDEFAULT_DENSITY;
    m_pDM->dmxLabelAngle = kDEFAULT_ANGLE;
    m_pDM->dmxLabelPlacementX = kDEFAULT_PLACEMENT_X;
    m_pDM->dmxLabelOffsetX = TVOFixed(0L);
    m_pDM->dmxLabelPlacementY = kDEFAULT_PLACEMENT_Y;
    m_pDM->dmxLabelOffsetY = TVOFixed(0L);
    m_pDM->dmxLabelFontFamily = 0;
    SetControlsFromDM();
    SetFocus(m_hWnd);
}

void TVOLabelDlg::OnSpecialLabel()
{
    HMENU hMenu = LoadMenuW(m_pConfig->m_hResources, MAKEINTRESOURCEW(IDM_LABEL_FIELDS));
    HMENU hFields = hMenu ? GetSubMenu(hMenu, 0) : nullptr;
    HWND hButton = GetDlgItem(m_hWnd, IDC_LABEL_FIELDS);
    RECT rect = {};
    GetClientRect(hButton, &rect);
    // The menu opens at the button's bottom and right taken as x and y, as it always has.
    POINT point = {rect.bottom, rect.right};
    ClientToScreen(hButton, &point);
    if (hFields)
        TrackPopupMenu(hFields, 0, point.x, point.y, 0, m_hWnd, nullptr);
    if (hFields)
        DestroyMenu(hFields);
    if (hMenu)
        DestroyMenu(hMenu);
}

void TVOLabelDlg::AppendToLabel(UINT stringId)
{
    WCHAR text[512];
    WstrCopy(text, std::size(text), m_pConfig->getResourceString(stringId));
    AppendToLabel(text);
}

void TVOLabelDlg::AppendToLabel(const WCHAR* text)
{
    WCHAR label[kLABEL_TEXT_CCH] = {};
    GetDlgItemTextW(m_hWnd, IDC_LABEL_TEXT, label, kLABEL_TEXT_CCH);
    if (WstrLen(label) + WstrLen(text) < kLABEL_TEXT_CCH) {
        WstrCat(label, kLABEL_TEXT_CCH, text);
        SetDlgItemTextW(m_hWnd, IDC_LABEL_TEXT, label);
    } else {
        MessageBeep(static_cast<UINT>(-1));
    }
}

void TVOLabelDlg::OnCommand(int id, int code)
{
    (void)code;
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
    case IDC_LABEL_X:
        UpdatePlacementButtonX();
        return;
    case IDC_LABEL_Y:
        UpdatePlacementButtonY();
        return;
    case IDC_DEFAULTS:
        setModified(TRUE);
        SetPrinterDefaults();
        return;
    case IDC_LABEL_FIELDS:
        OnSpecialLabel();
        return;
    default:
        for (const auto& row : kLabelFields) {
            if (row.command == id) {
                AppendToLabel(row.text);
                return;
            }
        }
        return;
    }
}

LRESULT TVOLabelDlg::OnNotify(const NMHDR* pnmhdr)
{
    if (!pnmhdr || pnmhdr->code != UDN_DELTAPOS)
        return 0;
    int field = 0;
    if (pnmhdr->idFrom == IDC_LABEL_OFFSET_X_SPIN)
        field = IDC_LABEL_OFFSET_X;
    else if (pnmhdr->idFrom == IDC_LABEL_OFFSET_Y_SPIN)
        field = IDC_LABEL_OFFSET_Y;
    else
        return 0;
    const auto* pUpDown = reinterpret_cast<const NMUPDOWN*>(pnmhdr);
    SpinDistanceField(field, pUpDown->iDelta, TVOFixed(0L),
                      TVOFixed(DisplayUnits() == kFIXED_MM ? 30480L : 1200L), kFIELD_CCH);
    return 1;
}

void TVOLabelDlg::OnDestroy()
{
    QLM_TRACE_SCOPE(TEXT("TVOLabelDlg::OnDestroy"), g_bTraceLabelDlg);
    ASSERT(m_hfn);
    if (m_hfn) {
        DeleteObject(m_hfn);
        m_hfn = nullptr;
    }
    if (m_wpOrigEditProc) {
        for (int id : {IDC_LABEL_OFFSET_X, IDC_LABEL_OFFSET_Y})
            SetWindowLongPtrW(GetDlgItem(m_hWnd, id), GWLP_WNDPROC,
                              reinterpret_cast<LONG_PTR>(m_wpOrigEditProc));
        m_wpOrigEditProc = nullptr;
    }
}
