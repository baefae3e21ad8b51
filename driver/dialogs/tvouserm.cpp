#include "tvouserm.h"

#include "../config/tvoconfg.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "../../resources/qlmres.h"

#include <cstring>
#include <utility>

namespace {

const DWORD kUserMediaLockList[] = {IDC_USERMEDIA_NAME_CAPTION,
                                    IDC_USERMEDIA_NAME,
                                    IDC_USERMEDIA_LIST,
                                    IDC_USERMEDIA_SAVE,
                                    IDC_USERMEDIA_DELETE,
                                    IDC_USERMEDIA_SIZE_GROUP,
                                    IDC_USERMEDIA_WIDTH_CAPTION,
                                    IDC_USERMEDIA_WIDTH,
                                    IDC_USERMEDIA_WIDTH_SPIN,
                                    IDC_USERMEDIA_WIDTH_UNIT,
                                    IDC_USERMEDIA_LENGTH_CAPTION,
                                    IDC_USERMEDIA_WIDTH_ICON,
                                    IDC_USERMEDIA_LENGTH,
                                    IDC_USERMEDIA_LENGTH_SPIN,
                                    IDC_USERMEDIA_LENGTH_UNIT,
                                    IDC_USERMEDIA_CATEGORY_CAPTION,
                                    IDC_USERMEDIA_CATEGORY,
                                    IDC_LOGO,
                                    0};

constexpr int kTEXT_CCH = 32;
constexpr int kNAME_CCH = 32; // a form's name, as stored
constexpr int kNAME_READ_CCH = 33;

// The forms the table really holds, whatever the count says.
int FormCount(const TVOPrinterConfiguration* pConfig)
{
    if (!pConfig || pConfig->m_UserFormCount < 0)
        return 0;
    return pConfig->m_UserFormCount < kMAX_USER_FORMS ? pConfig->m_UserFormCount : kMAX_USER_FORMS;
}

} // namespace

TVOUserDefinedMediaDlg::TVOUserDefinedMediaDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM)
{
    m_iResourceID = IDD_USERMEDIA;
    m_pConfig = pConfig;
    m_pDM = pDM;
    m_pPermissionIDs = kUserMediaLockList;
}

BOOL TVOUserDefinedMediaDlg::OnInitDialog()
{
    QLM_TRACE_SCOPE(TEXT("TVOUserDefinedMediaDlg::OnInitDialog"), g_bTraceUserDefinedMediaDlg);
    ASSERT(m_pConfig);
    ASSERT(m_pDM);
    if (!m_pConfig || !m_pDM)
        return 1;
    SubclassNumericEdit(IDC_USERMEDIA_WIDTH);
    SubclassNumericEdit(IDC_USERMEDIA_LENGTH);
    SetControlsFromDM();
    return 1;
}

void TVOUserDefinedMediaDlg::AddFormNames()
{
    for (int i = 0; i < FormCount(m_pConfig); ++i) {
        WCHAR name[kNAME_CCH + 1];
        WstrNCopy(name, m_pConfig->m_UserForms[i].name, kNAME_CCH);
        name[kNAME_CCH] = 0;
        SendDlgItemMessageW(m_hWnd, IDC_USERMEDIA_LIST, LB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(name));
    }
}

void TVOUserDefinedMediaDlg::ShowSize(TVOFixed w, TVOFixed l)
{
    w /= 10;
    l /= 10;
    if (DisplayUnits() == kFIXED_INCHES) {
        w.MMToInches();
        l.MMToInches();
    }
    SetDistanceText(IDC_USERMEDIA_WIDTH, w);
    SetDistanceText(IDC_USERMEDIA_LENGTH, l);
}

void TVOUserDefinedMediaDlg::SetControlsFromDM()
{
    QLM_TRACE_SCOPE(TEXT("TVOUserDefinedMediaDlg::SetControlsFromDM"), g_bTraceUserDefinedMediaDlg);
    if (!m_pConfig || !m_pDM)
        return;
    SendDlgItemMessageW(m_hWnd, IDC_USERMEDIA_NAME, EM_LIMITTEXT, kTEXT_CCH, 0);
    SendDlgItemMessageW(m_hWnd, IDC_USERMEDIA_WIDTH, EM_LIMITTEXT, kTEXT_CCH, 0);
    SendDlgItemMessageW(m_hWnd, IDC_USERMEDIA_LENGTH, EM_LIMITTEXT, kTEXT_CCH, 0);
    EnableWindow(GetDlgItem(m_hWnd, IDC_USERMEDIA_DELETE), FALSE);
    m_pConfig->fillComboBox1(m_hWnd, IDC_USERMEDIA_CATEGORY, m_pConfig->m_UserMediaCategoryList,
                             m_pDM->dmxUserMediaCategory);
    AddFormNames();

    const bool portrait = m_pDM->dmPublic.dmOrientation == DMORIENT_PORTRAIT;
    HICON hSheet = LoadIconW(m_pConfig->m_hResources,
                             MAKEINTRESOURCEW(portrait ? IDI_PORTRAIT_SHEET : IDI_LANDSCAPE_SHEET));
    SendDlgItemMessageW(m_hWnd, IDC_USERMEDIA_SHEET_ICON, STM_SETICON,
                        reinterpret_cast<WPARAM>(hSheet), 0);
    HICON hWidth = LoadIconW(m_pConfig->m_hResources,
                             MAKEINTRESOURCEW(portrait ? IDI_PORTRAIT_WIDTH : IDI_LANDSCAPE_WIDTH));
    SendDlgItemMessageW(m_hWnd, IDC_USERMEDIA_WIDTH_ICON, STM_SETICON,
                        reinterpret_cast<WPARAM>(hWidth), 0);
    const int unitIds[] = {IDC_USERMEDIA_WIDTH_UNIT, IDC_USERMEDIA_LENGTH_UNIT};
    SetUnitTexts(unitIds, 2);

    // The fields start with the custom paper's size.
    ShowSize(m_pDM->dmxPaperWidth, m_pDM->dmxPaperLength);
    LockControls(m_pConfig->m_bHasPermission);
}

void TVOUserDefinedMediaDlg::OnFormSelected(HWND hWnd, int listId)
{
    QLM_TRACE_SCOPE(TEXT("TVOUserDefinedMediaDlg::OnFormSelected"), g_bTraceUserDefinedMediaDlg);
    const LRESULT index = SendDlgItemMessageW(hWnd, listId, LB_GETCURSEL, 0, 0);
    if (index < 0 || index >= FormCount(m_pConfig))
        return;
    // A row holds at most the 32 characters of a stored name.
    WCHAR name[kNAME_CCH + 1] = {};
    if (SendDlgItemMessageW(hWnd, listId, LB_GETTEXTLEN, static_cast<WPARAM>(index), 0) <=
        kNAME_CCH)
        SendDlgItemMessageW(hWnd, listId, LB_GETTEXT, static_cast<WPARAM>(index),
                            reinterpret_cast<LPARAM>(name));
    SetDlgItemTextW(hWnd, IDC_USERMEDIA_NAME, name);
    EnableWindow(GetDlgItem(hWnd, IDC_USERMEDIA_DELETE), TRUE);
    const USERFORM& form = m_pConfig->m_UserForms[index];
    ShowSize(TVOFixed(static_cast<unsigned long>(form.width)),
             TVOFixed(static_cast<unsigned long>(form.length)));
    m_pConfig->fillComboBox1(hWnd, IDC_USERMEDIA_CATEGORY, m_pConfig->m_UserMediaCategoryList,
                             form.category);
}

int TVOUserDefinedMediaDlg::EnteredValuesAreValid()
{
    if (GetWindowTextLengthW(GetDlgItem(m_hWnd, IDC_USERMEDIA_NAME)) == 0) {
        WCHAR caption[CCHDEVICENAME + 1] = {};
        WstrNCopy(caption, m_pDM->dmPublic.dmDeviceName, CCHDEVICENAME);
        MessageBoxW(m_hWnd, m_pConfig->getResourceString(IDS_FORM_NAME_MISSING), caption,
                    MB_ICONERROR);
        return IDC_USERMEDIA_NAME;
    }
    // The limits apply as typed, before a width above the length is turned.
    const eDistanceUnits units = DisplayUnits();
    const TVOFixed minWidth = TVOPrinterConfiguration::getMinPaperWidth(units);
    const TVOFixed maxWidth = TVOPrinterConfiguration::getMaxPaperWidth(
        units, m_pConfig->m_PrinterModel == kMODEL_WIDE_5);
    const TVOFixed width = GetDistanceText(IDC_USERMEDIA_WIDTH, kTEXT_CCH);
    if (width < minWidth || width > maxWidth) {
        ShowRangeError(IDC_USERMEDIA_WIDTH_CAPTION, minWidth, maxWidth);
        return IDC_USERMEDIA_WIDTH;
    }
    const TVOFixed minLength = TVOPrinterConfiguration::getMinPaperLength(units);
    const TVOFixed maxLength = TVOPrinterConfiguration::getMaxPaperLength(units);
    const TVOFixed length = GetDistanceText(IDC_USERMEDIA_LENGTH, kTEXT_CCH);
    if (length < minLength || length > maxLength) {
        ShowRangeError(IDC_USERMEDIA_LENGTH_CAPTION, minLength, maxLength);
        return IDC_USERMEDIA_LENGTH;
    }
    return 0;
}

void TVOUserDefinedMediaDlg::SaveForm()
{
    QLM_TRACE_SCOPE(TEXT("TVOUserDefinedMediaDlg::SaveForm"), g_bTraceUserDefinedMediaDlg);
    TVOFixed width = GetDistanceText(IDC_USERMEDIA_WIDTH, kTEXT_CCH);
    TVOFixed length = GetDistanceText(IDC_USERMEDIA_LENGTH, kTEXT_CCH);
    // A form is stored with its width not above its length.
    if (width > length)
        std::swap(width, length);
    if (DisplayUnits() == kFIXED_INCHES) {
        width.InchestToMM();
        length.InchestToMM();
    }
    width *= 10;
    length *= 10;
    const DWORD dwWidth = static_cast<DWORD>(static_cast<long>(width));
    const DWORD dwLength = static_cast<DWORD>(static_cast<long>(length));
    const DWORD category = GetComboSelection(IDC_USERMEDIA_CATEGORY);
    WCHAR name[kNAME_READ_CCH] = {};
    GetDlgItemTextW(m_hWnd, IDC_USERMEDIA_NAME, name, kNAME_READ_CCH);

    // Names are told apart with case respected.
    const int count = FormCount(m_pConfig);
    bool found = false;
    for (int i = 0; i < count; ++i) {
        USERFORM& form = m_pConfig->m_UserForms[i];
        if (WstrNCmp(form.name, name, kNAME_CCH) != 0)
            continue;
        WstrNCopy(form.name, name, kNAME_CCH);
        form.width = dwWidth;
        form.length = dwLength;
        form.category = category;
        found = true;
        break;
    }
    // A full table says so even when the form was overwritten.
    if (m_pConfig->m_UserFormCount >= kMAX_USER_FORMS) {
        WCHAR caption[CCHDEVICENAME + 1] = {};
        WstrNCopy(caption, m_pDM->dmPublic.dmDeviceName, CCHDEVICENAME);
        MessageBoxW(m_hWnd, m_pConfig->getResourceString(IDS_FORMS_FULL), caption, MB_ICONERROR);
        return;
    }
    if (found)
        return;

    USERFORM& form = m_pConfig->m_UserForms[count];
    memset(&form, 0, sizeof(form));
    WstrNCopy(form.name, name, kNAME_CCH);
    form.width = dwWidth;
    form.length = dwLength;
    form.category = category;
    m_pConfig->m_UserFormCount = count + 1;
    const LRESULT row = SendDlgItemMessageW(m_hWnd, IDC_USERMEDIA_LIST, LB_ADDSTRING, 0,
                                            reinterpret_cast<LPARAM>(name));
    SendDlgItemMessageW(m_hWnd, IDC_USERMEDIA_LIST, LB_SETCURSEL, static_cast<WPARAM>(row), 0);
    OnFormSelected(m_hWnd, IDC_USERMEDIA_LIST);
}

void TVOUserDefinedMediaDlg::DeleteForm()
{
    QLM_TRACE_SCOPE(TEXT("TVOUserDefinedMediaDlg::DeleteForm"), g_bTraceUserDefinedMediaDlg);
    // Without a selection the index reads 65535, which is below no count.
    WORD index =
        static_cast<WORD>(SendDlgItemMessageW(m_hWnd, IDC_USERMEDIA_LIST, LB_GETCURSEL, 0, 0));
    const int count = FormCount(m_pConfig);
    // Each form moves up by one and the one behind it is cleared; the last round clears the
    // record behind the last form, the table's spare one when it is full.
    USERFORM* forms = m_pConfig->m_UserForms;
    for (; index < count; ++index) {
        WstrNCopy(forms[index].name, forms[index + 1].name, kNAME_CCH);
        forms[index].width = forms[index + 1].width;
        forms[index].length = forms[index + 1].length;
        forms[index].category = forms[index + 1].category;
        memset(&forms[index + 1], 0, sizeof(USERFORM));
    }
    if (m_pConfig->m_UserFormCount != 0)
        m_pConfig->m_UserFormCount = count - 1;

    SendDlgItemMessageW(m_hWnd, IDC_USERMEDIA_LIST, LB_RESETCONTENT, 0, 0);
    SetDlgItemTextW(m_hWnd, IDC_USERMEDIA_NAME, TEXT(""));
    AddFormNames();
    if (FormCount(m_pConfig) > 0) {
        SendDlgItemMessageW(m_hWnd, IDC_USERMEDIA_LIST, LB_SETCURSEL, 0, 0);
        OnFormSelected(m_hWnd, IDC_USERMEDIA_LIST);
    } else {
        EnableWindow(GetDlgItem(m_hWnd, IDC_USERMEDIA_DELETE), FALSE);
    }
}

void TVOUserDefinedMediaDlg::OnCommand(int id, int code)
{
    switch (id) {
    case IDC_USERMEDIA_SAVE:
        if (code != BN_CLICKED || !m_pConfig || !m_pDM)
            return;
        if (int bad = EnteredValuesAreValid())
            SetFocus(GetDlgItem(m_hWnd, bad));
        else
            SaveForm();
        return;
    case IDC_USERMEDIA_CLOSE:
    case IDOK:
    case IDCANCEL:
        EndDialog(m_hWnd, 2);
        return;
    case IDC_USERMEDIA_LIST:
        if (code == LBN_SELCHANGE && m_pConfig)
            OnFormSelected(m_hWnd, IDC_USERMEDIA_LIST);
        return;
    case IDC_USERMEDIA_DELETE:
        if (code == BN_CLICKED && m_pConfig)
            DeleteForm();
        return;
    default:
        return;
    }
}

LRESULT TVOUserDefinedMediaDlg::OnNotify(NMHDR* pnmhdr)
{
    if (!pnmhdr || pnmhdr->code != UDN_DELTAPOS || !m_pConfig)
        return 0;
    const eDistanceUnits units = DisplayUnits();
    int id = 0xFFFF;
    TVOFixed minimum, maximum;
    if (pnmhdr->idFrom == IDC_USERMEDIA_WIDTH_SPIN) {
        id = IDC_USERMEDIA_WIDTH;
        minimum = TVOPrinterConfiguration::getMinPaperWidth(units);
        maximum = TVOPrinterConfiguration::getMaxPaperWidth(units, m_pConfig->m_PrinterModel ==
                                                                       kMODEL_WIDE_5);
    } else if (pnmhdr->idFrom == IDC_USERMEDIA_LENGTH_SPIN) {
        id = IDC_USERMEDIA_LENGTH;
        minimum = TVOPrinterConfiguration::getMinPaperLength(units);
        maximum = TVOPrinterConfiguration::getMaxPaperLength(units);
    }
    if (id == 0xFFFF) {
        ASSERT(id != 0xFFFF);
        return 0;
    }
    SpinDistanceField(id, reinterpret_cast<const NMUPDOWN*>(pnmhdr)->iDelta, minimum, maximum,
                      kTEXT_CCH);
    return 1;
}

INT_PTR TVOUserDefinedMediaDlg::DialogProc(UINT message, WPARAM wParam, LPARAM lParam)
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
