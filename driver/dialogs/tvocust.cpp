#include "tvocust.h"

#include "tvouserm.h"
#include "../config/tvoconfg.h"
#include "../foundation/qlmtrace.h"
#include "../../resources/qlmres.h"

#include <utility>

namespace {

// The list names controls of the user media dialog's template too; those are not here, and
// the size fields and the category stay live for a user without permission.
const DWORD kCustLockList[] = {IDC_CUSTOMISE_SIZE_GROUP,
                               IDC_USERMEDIA_WIDTH_CAPTION,
                               IDC_USERMEDIA_SHEET_ICON,
                               IDC_USERMEDIA_WIDTH,
                               IDC_USERMEDIA_WIDTH_SPIN,
                               IDC_USERMEDIA_WIDTH_UNIT,
                               IDC_USERMEDIA_LENGTH_CAPTION,
                               5,
                               IDC_USERMEDIA_LENGTH,
                               IDC_USERMEDIA_LENGTH_SPIN,
                               IDC_USERMEDIA_LENGTH_UNIT,
                               IDC_USERMEDIA_CATEGORY_CAPTION,
                               IDC_USERMEDIA_CATEGORY,
                               IDC_CUSTOMISE_FAMILIES_GROUP,
                               IDC_CUSTOMISE_STANDARD,
                               IDC_CUSTOMISE_ANSI,
                               IDC_CUSTOMISE_ARCH,
                               IDC_CUSTOMISE_ISO,
                               IDC_CUSTOMISE_USER,
                               IDC_DEFAULTS,
                               IDC_LOGO,
                               0};

// The family check boxes and their bits of dmxShowPaperTypes.
const struct
{
    int control;
    DWORD bit;
} kFamilies[] = {
    {IDC_CUSTOMISE_STANDARD, kSHOW_STANDARD}, {IDC_CUSTOMISE_ANSI, kSHOW_ANSI},
    {IDC_CUSTOMISE_ARCH, kSHOW_ARCH},         {IDC_CUSTOMISE_ISO, kSHOW_ISO},
    {IDC_CUSTOMISE_USER, kSHOW_USER_FORMS},
};

constexpr int kTEXT_CCH = 32;
constexpr int kSPIN_TEXT_CCH = 31;

// The restored custom paper: Letter, every family, any category.
constexpr DWORD kDEFAULT_SHOW_PAPER_TYPES = 65535;
constexpr long kDEFAULT_WIDTH = 2159;
constexpr long kDEFAULT_LENGTH = 2794;
constexpr DWORD kDEFAULT_CATEGORY = 4;

} // namespace

TVOCustDlg::TVOCustDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM) : m_bCustomMediaAllowed(1)
{
    m_iResourceID = IDD_CUSTOMISE;
    m_pConfig = pConfig;
    m_pDM = pDM;
    m_pPermissionIDs = kCustLockList;
}

TVOFixed TVOCustDlg::MinWidth() const
{
    return TVOPrinterConfiguration::getMinPaperWidth(DisplayUnits());
}

TVOFixed TVOCustDlg::MaxWidth() const
{
    return TVOPrinterConfiguration::getMaxPaperWidth(
        DisplayUnits(), m_pConfig && m_pConfig->m_PrinterModel == kMODEL_WIDE_5);
}

BOOL TVOCustDlg::OnInitDialog()
{
    QLM_TRACE_SCOPE(TEXT("TVOCustDlg::OnInitDialog"), g_bTraceMediaInfoDlg);
    ASSERT(m_pConfig);
    ASSERT(m_pDM);
    if (!m_pConfig || !m_pDM)
        return 1;
    SubclassNumericEdit(IDC_CUSTOMISE_WIDTH);
    SubclassNumericEdit(IDC_CUSTOMISE_LENGTH);
    EnableWindow(GetDlgItem(m_hWnd, IDC_CUSTOMISE_USER_MEDIA), m_bCustomMediaAllowed);
    SetControlsFromDM();
    return 1;
}

void TVOCustDlg::SetControlsFromDM()
{
    QLM_TRACE_SCOPE(TEXT("TVOCustDlg::SetControlsFromDM"), g_bTraceMediaInfoDlg);
    if (!m_pConfig || !m_pDM)
        return;
    SendDlgItemMessageW(m_hWnd, IDC_CUSTOMISE_WIDTH, EM_LIMITTEXT, kTEXT_CCH, 0);
    SendDlgItemMessageW(m_hWnd, IDC_CUSTOMISE_LENGTH, EM_LIMITTEXT, kTEXT_CCH, 0);

    const bool portrait = m_pDM->dmPublic.dmOrientation == DMORIENT_PORTRAIT;
    HICON hSheet = LoadIconW(m_pConfig->m_hResources,
                             MAKEINTRESOURCEW(portrait ? IDI_PORTRAIT_SHEET : IDI_LANDSCAPE_SHEET));
    SendDlgItemMessageW(m_hWnd, IDC_CUSTOMISE_SHEET_ICON, STM_SETICON,
                        reinterpret_cast<WPARAM>(hSheet), 0);
    HICON hWidth = LoadIconW(m_pConfig->m_hResources,
                             MAKEINTRESOURCEW(portrait ? IDI_PORTRAIT_WIDTH : IDI_LANDSCAPE_WIDTH));
    SendDlgItemMessageW(m_hWnd, IDC_CUSTOMISE_WIDTH_ICON, STM_SETICON,
                        reinterpret_cast<WPARAM>(hWidth), 0);

    const int unitIds[] = {IDC_CUSTOMISE_LENGTH_UNIT, IDC_CUSTOMISE_WIDTH_UNIT};
    SetUnitTexts(unitIds, 2);

    // The record holds tenths of a millimetre.
    TVOFixed width = m_pDM->dmxPaperWidth;
    TVOFixed length = m_pDM->dmxPaperLength;
    width /= 10;
    length /= 10;
    if (DisplayUnits() == kFIXED_INCHES) {
        width.MMToInches();
        length.MMToInches();
    }
    SetDistanceText(IDC_CUSTOMISE_WIDTH, width);
    SetDistanceText(IDC_CUSTOMISE_LENGTH, length);

    m_pConfig->fillComboBox1(m_hWnd, IDC_CUSTOMISE_CATEGORY, m_pConfig->m_UserMediaCategoryList,
                             m_pDM->dmxUserMediaCategory);

    // The masked bit goes to the box as it stands; any value but 0 checks it.
    const DWORD families = m_pDM->dmxShowPaperTypes & 0xFF;
    for (const auto& row : kFamilies)
        SendDlgItemMessageW(m_hWnd, row.control, BM_SETCHECK, families & row.bit, 0);

    LockControls(m_pConfig->m_bHasPermission);
}

int TVOCustDlg::EnteredValuesAreValid()
{
    const TVOFixed width = GetDistanceText(IDC_CUSTOMISE_WIDTH, kTEXT_CCH);
    if (width < MinWidth() || width > MaxWidth()) {
        ShowRangeError(IDC_CUSTOMISE_WIDTH_CAPTION, MinWidth(), MaxWidth());
        return IDC_CUSTOMISE_WIDTH;
    }
    const eDistanceUnits units = DisplayUnits();
    const TVOFixed minLength = TVOPrinterConfiguration::getMinPaperLength(units);
    const TVOFixed maxLength = TVOPrinterConfiguration::getMaxPaperLength(units);
    const TVOFixed length = GetDistanceText(IDC_CUSTOMISE_LENGTH, kTEXT_CCH);
    if (length < minLength || length > maxLength) {
        ShowRangeError(IDC_CUSTOMISE_LENGTH_CAPTION, minLength, maxLength);
        return IDC_CUSTOMISE_LENGTH;
    }
    return 0;
}

void TVOCustDlg::UpdateDMFromControls()
{
    QLM_TRACE_SCOPE(TEXT("TVOCustDlg::UpdateDMFromControls"), g_bTraceMediaInfoDlg);
    if (!m_pConfig || !m_pDM)
        return;
    TVOFixed width = GetDistanceText(IDC_CUSTOMISE_WIDTH, kTEXT_CCH);
    TVOFixed length = GetDistanceText(IDC_CUSTOMISE_LENGTH, kTEXT_CCH);
    // The custom paper always has its shorter side as width.
    if (width > length)
        std::swap(width, length);
    if (DisplayUnits() == kFIXED_INCHES) {
        width.InchestToMM();
        length.InchestToMM();
    }
    width *= 10;
    length *= 10;
    m_pDM->dmxPaperWidth = width;
    m_pDM->dmxPaperLength = length;

    POINT size = {};
    short scale = 100;
    m_pConfig->getLongPlotSizes(m_pDM, static_cast<unsigned long>(width),
                                static_cast<unsigned long>(length), &size, &scale);
    m_pDM->dmPublic.dmPaperWidth = static_cast<short>(size.x);
    m_pDM->dmPublic.dmPaperLength = static_cast<short>(size.y);
    m_pDM->dmPublic.dmScale = scale;

    m_pDM->dmxUserMediaCategory = GetComboSelection(IDC_CUSTOMISE_CATEGORY);
    for (const auto& row : kFamilies) {
        if (IsDlgButtonChecked(m_hWnd, row.control))
            m_pDM->dmxShowPaperTypes |= row.bit;
        else
            m_pDM->dmxShowPaperTypes &= ~row.bit;
    }
}

void TVOCustDlg::OnCommand(int id, int code)
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
    case IDC_DEFAULTS:
        if (code != BN_CLICKED || !m_pDM)
            return;
        // The record is edited in place: a Cancel after this keeps the defaults.
        setModified(TRUE);
        m_pDM->dmxShowPaperTypes = kDEFAULT_SHOW_PAPER_TYPES;
        m_pDM->dmxPaperLength = TVOFixed(kDEFAULT_LENGTH);
        m_pDM->dmxPaperWidth = TVOFixed(kDEFAULT_WIDTH);
        m_pDM->dmxUserMediaCategory = kDEFAULT_CATEGORY;
        SetControlsFromDM();
        SetFocus(m_hWnd);
        return;
    case IDC_CUSTOMISE_USER_MEDIA: {
        if (code != BN_CLICKED)
            return;
        TVOUserDefinedMediaDlg dlg(m_pConfig, m_pDM);
        if (dlg.doModal(m_hWnd) == 1)
            setModified(TRUE);
        return;
    }
    default:
        return;
    }
}

LRESULT TVOCustDlg::OnNotify(NMHDR* pnmhdr)
{
    if (!pnmhdr || pnmhdr->code != UDN_DELTAPOS)
        return 0;
    const int delta = reinterpret_cast<const NMUPDOWN*>(pnmhdr)->iDelta;
    if (pnmhdr->idFrom == IDC_CUSTOMISE_WIDTH_SPIN) {
        SpinDistanceField(IDC_CUSTOMISE_WIDTH, delta, MinWidth(), MaxWidth(), kSPIN_TEXT_CCH);
    } else {
        const eDistanceUnits units = DisplayUnits();
        SpinDistanceField(IDC_CUSTOMISE_LENGTH, delta,
                          TVOPrinterConfiguration::getMinPaperLength(units),
                          TVOPrinterConfiguration::getMaxPaperLength(units), kSPIN_TEXT_CCH);
    }
    return 1;
}

INT_PTR TVOCustDlg::DialogProc(UINT message, WPARAM wParam, LPARAM lParam)
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
