#include "tvopaper.h"

#include "tvoabout.h"
#include "../config/tvoconfg.h"
#include "../dialogs/tvocust.h"
#include "../dialogs/tvomarg.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "../../resources/qlmres.h"

#include <climits>
#include <memory>
#include <new>

namespace {

const DWORD kPaperLockList[] = {IDC_PAPER_SIZE_CAPTION,
                                IDC_PAPER_SIZE,
                                IDC_PAPER_MEDIA_TYPE_CAPTION,
                                IDC_PAPER_MEDIA_TYPE,
                                IDC_PAPER_SOURCE_CAPTION,
                                IDC_PAPER_SOURCE,
                                IDC_PAPER_ORIENTATION_GROUP,
                                IDC_PAPER_ORIENTATION_ICON,
                                IDC_PAPER_PORTRAIT,
                                IDC_PAPER_LANDSCAPE,
                                IDC_PAPER_COPIES_CAPTION,
                                IDC_PAPER_COPIES,
                                IDC_PAPER_COPIES_SPIN,
                                IDC_DEFAULTS,
                                IDC_LOGO,
                                0};

constexpr int kMIN_COPIES = 1;
constexpr int kMAX_COPIES = 999;
constexpr int kCOPIES_CCH = 3;
constexpr int kCOPIES_READ_CCH = 63;
constexpr int kFORM_NAME_READ_CCH = 31; // dmFormName keeps 30 characters of the row
constexpr int kCAPTION_CCH = 260;       // the tab's caption, 259 characters at most
constexpr int kROW_CCH = 256;

// The families in the order they go in front of the list: the last one put in stands first.
const struct
{
    DWORD bit;
    TVOList TVOPrinterConfiguration::*list;
} kFamilies[] = {
    {kSHOW_ISO, &TVOPrinterConfiguration::m_PaperGroupIso},
    {kSHOW_ARCH, &TVOPrinterConfiguration::m_PaperGroupArch},
    {kSHOW_ANSI, &TVOPrinterConfiguration::m_PaperGroupAnsi},
    {kSHOW_STANDARD, &TVOPrinterConfiguration::m_PaperGroupStandard},
};

void InsertRow(HWND hWnd, int control, int index, const WCHAR* text, DWORD data)
{
    SendDlgItemMessageW(hWnd, control, CB_INSERTSTRING, static_cast<WPARAM>(index),
                        reinterpret_cast<LPARAM>(text));
    SendDlgItemMessageW(hWnd, control, CB_SETITEMDATA, static_cast<WPARAM>(index),
                        static_cast<LPARAM>(data));
}

// The row of a combo box whose item data is value, or -1.
int FindRow(HWND hWnd, int control, DWORD value)
{
    const LRESULT count = SendDlgItemMessageW(hWnd, control, CB_GETCOUNT, 0, 0);
    for (int i = 0; i < count; ++i) {
        const LRESULT data =
            SendDlgItemMessageW(hWnd, control, CB_GETITEMDATA, static_cast<WPARAM>(i), 0);
        if (data == CB_ERR)
            return -1;
        if (static_cast<DWORD>(data) == value)
            return i;
    }
    return -1;
}

} // namespace

TVOPaperTab::TVOPaperTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig)
    : TVOTab(lpdi, pConfig, IDD_PAPER_TAB)
{
    m_pPermissionIDs = kPaperLockList;
}

TVOPaperTab::~TVOPaperTab() = default;

BOOL TVOPaperTab::OnInitDialog()
{
    QLM_TRACE_SCOPE(TEXT("TVOPaperTab::OnInitDialog"), g_bTracePaperTab);
    ASSERT(m_pDM);
    ASSERT(m_pConfig);
    SubclassNumericEdit(IDC_PAPER_COPIES);
    SetControlsFromDM();
    SetModified(FALSE);
    return 1;
}

void TVOPaperTab::SetControlsFromDM()
{
    QLM_TRACE_SCOPE(TEXT("TVOPaperTab::SetControlsFromDM"), g_bTracePaperTab);
    if (!m_pDM || !m_pConfig)
        return;
    SendDlgItemMessageW(m_hWnd, IDC_PAPER_COPIES_SPIN, UDM_SETRANGE, 0,
                        MAKELPARAM(kMAX_COPIES, kMIN_COPIES));
    SendDlgItemMessageW(m_hWnd, IDC_PAPER_COPIES_SPIN, UDM_SETPOS, 0,
                        MAKELPARAM(m_pDM->dmPublic.dmCopies, 0));
    SetMediaSize();
    SetMediaSource();
    SetOrientation();
    m_pConfig->fillComboBox1(m_hWnd, IDC_PAPER_MEDIA_TYPE, m_pConfig->m_MediaTypeList,
                             m_pDM->dmxMediaType);
    SendDlgItemMessageW(m_hWnd, IDC_PAPER_COPIES, EM_LIMITTEXT, kCOPIES_CCH, 0);
    LockControls(m_pConfig->m_bHasPermission);
}

int TVOPaperTab::FindPaperRow(DWORD value)
{
    return FindRow(m_hWnd, IDC_PAPER_SIZE, value);
}

void TVOPaperTab::SetMediaSize()
{
    QLM_TRACE_SCOPE(TEXT("TVOPaperTab::SetMediaSize"), g_bTracePaperTab);
    if (!m_pDM || !m_pConfig)
        return;
    SendDlgItemMessageW(m_hWnd, IDC_PAPER_SIZE, CB_RESETCONTENT, 0, 0);

    // The custom row shows its size; the record holds it in tenths of a millimetre.
    const eDistanceUnits units = DisplayUnits();
    TVOFixed width = m_pDM->dmxPaperWidth;
    TVOFixed length = m_pDM->dmxPaperLength;
    width /= 10;
    length /= 10;
    if (units == kFIXED_INCHES) {
        width.MMToInches();
        length.MMToInches();
    }
    // The configuration and TVOFixed hand out shared buffers: each text is copied at once.
    WCHAR szWidth[32], szLength[32], szUnit[64], szCustom[128], szRow[kROW_CCH];
    WstrCopy(szWidth, 32, width.toString(units));
    WstrCopy(szLength, 32, length.toString(units));
    WstrCopy(szUnit, 64,
             m_pConfig->getResourceString(units == kFIXED_MM ? IDS_UNITS_MM : IDS_UNITS_INCHES));
    WstrCopy(szCustom, 128, m_pConfig->getResourceString(IDS_PAPER_CUSTOM));
    WstrPrintf(szRow, kROW_CCH, TEXT("%s (%sx%s%s)"), szCustom, szWidth, szLength, szUnit);
    InsertRow(m_hWnd, IDC_PAPER_SIZE, 0, szRow, PAPER_CUSTOM);
    InsertRow(m_hWnd, IDC_PAPER_SIZE, 1, m_pConfig->getResourceString(IDS_PAPER_CUSTOMISE),
              kPAPER_ACTION_ROW);

    const DWORD show = m_pDM->dmxShowPaperTypes;
    if (show != 0) {
        if (show & kSHOW_USER_FORMS) {
            // The forms' rows read as in the capability lists, and stand in index order.
            std::unique_ptr<WCHAR[]> names(new (std::nothrow)
                                               WCHAR[kMAX_USER_FORMS * kPAPER_NAME_CCH]());
            WCHAR* pNames = names.get();
            const int count = names ? m_pConfig->AddUserDefinedPapers(
                                          m_pDM->dmxUnits, DC_PAPERNAMES, &pNames, nullptr, nullptr)
                                    : 0;
            for (int i = 0; i < count; ++i) {
                WCHAR name[kPAPER_NAME_CCH + 1];
                WstrNCopy(name, names.get() + i * kPAPER_NAME_CCH, kPAPER_NAME_CCH);
                name[kPAPER_NAME_CCH] = 0;
                InsertRow(m_hWnd, IDC_PAPER_SIZE, i, name, PAPER_USER_BASE + i);
            }
        }
        for (const auto& family : kFamilies) {
            if (show & family.bit)
                m_pConfig->fillComboBox2(m_hWnd, IDC_PAPER_SIZE, m_pConfig->*family.list,
                                         static_cast<WORD>(m_pDM->dmPublic.dmPaperSize));
        }
    } else {
        // No family chosen: the whole list, whose own custom row then stands before the rich
        // one, and a custom paper selects that first of the two.
        m_pConfig->fillComboBox2(m_hWnd, IDC_PAPER_SIZE, m_pConfig->m_PaperList,
                                 static_cast<WORD>(m_pDM->dmPublic.dmPaperSize));
    }
    SelectPaperSize();
}

void TVOPaperTab::SelectPaperSize()
{
    QLM_TRACE_SCOPE(TEXT("TVOPaperTab::SelectPaperSize"), g_bTracePaperTab);
    int row = FindPaperRow(static_cast<WORD>(m_pDM->dmPublic.dmPaperSize));
    if (row < 0) {
        // A family switched off or a form deleted: the custom paper stands in, with the size
        // and name the record has.
        Trace(TEXT("Couln't find paper size."));
        m_pDM->dmPublic.dmPaperSize = PAPER_CUSTOM;
        row = FindPaperRow(PAPER_CUSTOM);
    }
    SendDlgItemMessageW(m_hWnd, IDC_PAPER_SIZE, CB_SETCURSEL, static_cast<WPARAM>(row), 0);
}

void TVOPaperTab::SetMediaSource()
{
    QLM_TRACE_SCOPE(TEXT("TVOPaperTab::SetMediaSource"), g_bTracePaperTab);
    if (!m_pDM || !m_pConfig)
        return;
    SendDlgItemMessageW(m_hWnd, IDC_PAPER_SOURCE, CB_RESETCONTENT, 0, 0);
    if (m_pDM->dmxNumRolls > m_pConfig->m_NumRolls)
        m_pDM->dmxNumRolls = m_pConfig->m_NumRolls;

    const int rolls = m_pDM->dmxNumRolls;
    const DWORD source = static_cast<WORD>(m_pDM->dmPublic.dmDefaultSource);
    int next = 0;
    int selection = 0;
    TVOList bins = m_pConfig->m_BinList;
    for (int i = 0; bins && bins[i].dwResourceId; ++i) {
        const DWORD value = bins[i].dwValue;
        bool offered = i < rolls || value == DMBIN_MANUAL || value == DMBIN_AUTO;
        if (m_pConfig->m_PrinterModel == kMODEL_WIDE_5 && value == DMBIN_MANUAL)
            offered = false;
        if (offered) {
            WCHAR text[kROW_CCH];
            WstrCopy(text, kROW_CCH, m_pConfig->getResourceString(bins[i].dwResourceId));
            if (value >= 257 && value <= 262 && i < rolls) {
                WstrCat(text, kROW_CCH, TEXT(" - "));
                WstrCat(text, kROW_CCH, m_pConfig->getRollSize(m_pDM->dmxRollSize[value - 257]));
            }
            InsertRow(m_hWnd, IDC_PAPER_SOURCE, next, text, value);
            ++next;
        }
        // A source no longer offered selects the row before it; the record keeps its value.
        if (source == value)
            selection = next - 1;
    }
    SendDlgItemMessageW(m_hWnd, IDC_PAPER_SOURCE, CB_SETCURSEL, static_cast<WPARAM>(selection), 0);
}

void TVOPaperTab::SetOrientation()
{
    if (!m_pDM || !m_pConfig)
        return;
    const bool portrait = m_pDM->dmPublic.dmOrientation == DMORIENT_PORTRAIT;
    CheckRadioButton(m_hWnd, IDC_PAPER_PORTRAIT, IDC_PAPER_LANDSCAPE,
                     portrait ? IDC_PAPER_PORTRAIT : IDC_PAPER_LANDSCAPE);
    HICON hIcon = LoadIconW(m_pConfig->m_hResources,
                            MAKEINTRESOURCEW(portrait ? IDI_PORTRAIT : IDI_LANDSCAPE));
    SendDlgItemMessageW(m_hWnd, IDC_PAPER_ORIENTATION_ICON, STM_SETICON,
                        reinterpret_cast<WPARAM>(hIcon), 0);
}

void TVOPaperTab::SetDefaults()
{
    QLM_TRACE_SCOPE(TEXT("TVOPaperTab::SetDefaults"), g_bTracePaperTab);
    if (!m_pDM || !m_pConfig)
        return;
    // The form name and the paper's public size stay: the merge puts them right.
    m_pDM->dmPublic.dmPaperSize = m_pDM->dmxUnits == kDISTANCE_MM ? 274 : 257;
    SetMediaSize();
    m_pDM->dmPublic.dmDefaultSource = DMBIN_AUTO;
    SetMediaSource();
    m_pDM->dmPublic.dmOrientation = DMORIENT_PORTRAIT;
    SetOrientation();
    m_pDM->dmxMediaType = m_pConfig->m_PrinterModel == kMODEL_WIDE_5 ? 4 : 0;
    m_pConfig->fillComboBox1(m_hWnd, IDC_PAPER_MEDIA_TYPE, m_pConfig->m_MediaTypeList,
                             m_pDM->dmxMediaType);
    m_pDM->dmPublic.dmCopies = 1;
    SetDlgItemInt(m_hWnd, IDC_PAPER_COPIES, 1, FALSE);
    SetFocus(m_hWnd);
}

void TVOPaperTab::OnListChange(HWND hWnd, int id, UINT codeNotify)
{
    QLM_TRACE_SCOPE(TEXT("TVOPaperTab::OnListChange"), g_bTracePaperTab);
    if (codeNotify != CBN_SELENDOK || !m_pDM || !m_pConfig)
        return;
    const DWORD value = GetComboSelection(id);
    switch (id) {
    case IDC_PAPER_MEDIA_TYPE:
        // Finishing goes with the default media type only.
        if (m_pDM->dmxFinishing != 0 && value != 0) {
            WCHAR caption[kCAPTION_CCH] = {};
            GetWindowTextW(hWnd, caption, kCAPTION_CCH);
            WCHAR text[kROW_CCH * 2];
            WstrCopy(text, kROW_CCH * 2, m_pConfig->getResourceString(IDS_MEDIA_ENDS_FINISHING));
            if (MessageBoxW(hWnd, text, caption, MB_YESNO | MB_ICONINFORMATION) != IDYES) {
                SendDlgItemMessageW(
                    hWnd, IDC_PAPER_MEDIA_TYPE, CB_SETCURSEL,
                    static_cast<WPARAM>(FindRow(hWnd, IDC_PAPER_MEDIA_TYPE, m_pDM->dmxMediaType)),
                    0);
                return;
            }
            m_pDM->dmxFinishing = 0;
        }
        m_pDM->dmxMediaType = value;
        break;
    case IDC_PAPER_SIZE:
        if (value == kPAPER_ACTION_ROW_ALT || value == kPAPER_ACTION_ROW) {
            // The row index is taken before the dialog, which may refill the list; it is not
            // looked for again.
            const int former = FindPaperRow(static_cast<WORD>(m_pDM->dmPublic.dmPaperSize));
            SendMessageW(hWnd, WM_COMMAND, MAKEWPARAM(IDM_PAPER_CUSTOMISE, 0), 0);
            SendDlgItemMessageW(hWnd, IDC_PAPER_SIZE, CB_SETCURSEL, static_cast<WPARAM>(former), 0);
            return;
        }
        m_pDM->dmPublic.dmPaperSize = static_cast<short>(value);
        if (value == PAPER_CUSTOM) {
            POINT size = {};
            short scale = 100;
            m_pConfig->getLongPlotSizes(
                m_pDM, static_cast<DWORD>(static_cast<long>(m_pDM->dmxPaperWidth)),
                static_cast<DWORD>(static_cast<long>(m_pDM->dmxPaperLength)), &size, &scale);
            m_pDM->dmPublic.dmPaperWidth = static_cast<short>(size.x);
            m_pDM->dmPublic.dmPaperLength = static_cast<short>(size.y);
            m_pDM->dmPublic.dmScale = scale;
        }
        // The row's text as shown, sizes and all for the custom paper, cut to the field.
        GetDlgItemTextW(hWnd, IDC_PAPER_SIZE, m_pDM->dmPublic.dmFormName, kFORM_NAME_READ_CCH);
        break;
    case IDC_PAPER_SOURCE:
        m_pDM->dmPublic.dmDefaultSource = static_cast<short>(value);
        break;
    default:
        return;
    }
    SetModified(TRUE);
}

void TVOPaperTab::OnCopiesChange(UINT codeNotify)
{
    WCHAR text[kCOPIES_READ_CCH + 1] = {};
    GetDlgItemTextW(m_hWnd, IDC_PAPER_COPIES, text, kCOPIES_READ_CCH);
    long copies = WstrToLong(text);
    if (copies > SHRT_MAX || copies < SHRT_MIN)
        copies = copies > 0 ? SHRT_MAX : SHRT_MIN;
    m_pDM->dmPublic.dmCopies = static_cast<short>(copies);
    SetModified(TRUE);
    // Only a value below 1 is mended; the upper bound rests on the field's limit and the
    // up-down.
    if (codeNotify == EN_KILLFOCUS && m_pDM->dmPublic.dmCopies < kMIN_COPIES) {
        m_pDM->dmPublic.dmCopies = kMIN_COPIES;
        SetDlgItemTextW(m_hWnd, IDC_PAPER_COPIES, TEXT("1"));
    }
}

void TVOPaperTab::OnCustomise()
{
    QLM_TRACE_SCOPE(TEXT("TVOPaperTab::OnCustomise"), g_bTracePaperTab);
    TVOCustDlg dlg(m_pConfig, m_pDM);
    // The dialog always allows custom media, so the store test and the message below do not
    // run; they stay for a dialog that would not.
    if (!dlg.m_bCustomMediaAllowed) {
        HANDLE hPrinter = m_pConfig ? m_pConfig->m_hPrinter : nullptr;
        DWORD value = 1;
        if (SetPrinterDataW(hPrinter, const_cast<LPWSTR>(TEXT("UITestModify")), REG_DWORD,
                            reinterpret_cast<LPBYTE>(&value), sizeof(value)) == ERROR_SUCCESS) {
            value = 0;
            if (SetPrinterDataW(hPrinter, const_cast<LPWSTR>(TEXT("UITestModify")), REG_DWORD,
                                reinterpret_cast<LPBYTE>(&value), sizeof(value)) == ERROR_SUCCESS)
                dlg.m_bCustomMediaAllowed = 1;
        }
    }
    const INT_PTR result = dlg.doModal(m_hWnd);
    if (!dlg.m_bCustomMediaAllowed && m_pConfig) {
        WCHAR caption[kCAPTION_CCH] = {};
        GetWindowTextW(m_hWnd, caption, kCAPTION_CCH);
        WCHAR text[kROW_CCH * 2];
        WstrCopy(text, kROW_CCH * 2, m_pConfig->getResourceString(IDS_PAPER_CUSTOM_NOT_STORED));
        MessageBoxW(m_hWnd, text, caption, MB_ICONINFORMATION);
    }
    if (result == 1 && dlg.getModified()) {
        SetMediaSize();
        SetModified(TRUE);
    }
}

void TVOPaperTab::OnCommand(HWND hWnd, int id, HWND hwndCtl, UINT codeNotify)
{
    (void)hwndCtl;
    if (!m_pDM || !m_pConfig)
        return;
    switch (id) {
    case IDC_PAPER_ABOUT:
        if (codeNotify == BN_CLICKED) {
            TVOAboutDlg dlg(m_pConfig, m_pDM);
            dlg.doModal(hWnd);
        }
        return;
    case IDC_PAPER_MEDIA_TYPE:
    case IDC_PAPER_SIZE:
    case IDC_PAPER_SOURCE:
        OnListChange(hWnd, id, codeNotify);
        return;
    case IDC_PAPER_COPIES:
        if (codeNotify == EN_CHANGE || codeNotify == EN_KILLFOCUS)
            OnCopiesChange(codeNotify);
        return;
    case IDC_DEFAULTS:
        if (codeNotify == BN_CLICKED) {
            SetDefaults();
            SetModified(TRUE);
        }
        return;
    case IDC_PAPER_MARGINS:
        if (codeNotify == BN_CLICKED) {
            TVOUnprintableDlg dlg(m_pConfig, m_pDM);
            if (dlg.doModal(hWnd) == 1 && dlg.getModified())
                SetModified(TRUE);
        }
        return;
    case IDC_PAPER_PORTRAIT:
    case IDC_PAPER_LANDSCAPE:
        if (codeNotify == BN_CLICKED) {
            m_pDM->dmPublic.dmOrientation =
                id == IDC_PAPER_PORTRAIT ? DMORIENT_PORTRAIT : DMORIENT_LANDSCAPE;
            SetOrientation();
            SetModified(TRUE);
        }
        return;
    case IDM_PAPER_CUSTOMISE:
        OnCustomise();
        return;
    default:
        return;
    }
}

LRESULT TVOPaperTab::OnNotify(HWND hWnd, WPARAM wParam, NMHDR* pnmhdr)
{
    // The up-down writes the edit, whose change stores the copies.
    if (pnmhdr && pnmhdr->code == UDN_DELTAPOS && pnmhdr->idFrom == IDC_PAPER_COPIES_SPIN) {
        SetModified(TRUE);
        return 0;
    }
    return TVOTab::OnNotify(hWnd, wParam, pnmhdr);
}

INT_PTR TVOPaperTab::DialogProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        return OnInitDialog();
    case WM_COMMAND:
        OnCommand(m_hWnd, LOWORD(wParam), reinterpret_cast<HWND>(lParam), HIWORD(wParam));
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
