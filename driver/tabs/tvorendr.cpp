#include "tvorendr.h"

#include "../config/tvoconfg.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "../../resources/qlmres.h"

namespace {

// Controls locked for a user without permission. 1336 stands twice; the walk does not mind.
const DWORD kRenderLockList[] = {IDC_RENDER_LIGHTNESS_CAPTION,
                                 IDC_RENDER_LIGHTNESS,
                                 IDC_RENDER_LIGHTNESS_VALUE,
                                 IDC_RENDER_CONTRAST_CAPTION,
                                 IDC_RENDER_CONTRAST,
                                 IDC_RENDER_CONTRAST_VALUE,
                                 IDC_RENDER_VECTOR_CAPTION,
                                 IDC_RENDER_VECTOR,
                                 IDC_RENDER_GRAYSCALE_CAPTION,
                                 IDC_RENDER_GRAYSCALE,
                                 IDC_RENDER_LINE_WIDTH_CAPTION,
                                 IDC_RENDER_LINE_WIDTH,
                                 IDC_RENDER_LINE_WIDTH_SPIN,
                                 IDC_RENDER_FINE_LINES,
                                 IDC_RENDER_QUALITY_CAPTION,
                                 IDC_RENDER_QUALITY,
                                 IDC_RENDER_MODE_CAPTION,
                                 IDC_RENDER_MODE,
                                 IDC_RENDER_RESOLUTION_CAPTION,
                                 IDC_RENDER_RESOLUTION,
                                 IDC_RENDER_SMOOTH_EDGES,
                                 IDC_RENDER_RASTER_CAPTION,
                                 IDC_RENDER_RASTER,
                                 IDC_RENDER_SMOOTH_EDGES,
                                 IDC_RENDER_SMOOTHING_CAPTION,
                                 IDC_RENDER_SMOOTHING,
                                 IDC_RENDER_SMOOTHING_SPIN,
                                 IDC_RENDER_CONTENT,
                                 IDC_RENDER_CONTENT_CAPTION,
                                 IDC_DEFAULTS,
                                 IDC_LOGO,
                                 0};

// The firmware levels that bring the controls. The counts given with them take in the closing
// 0, and the vector row stands in two lists: at level 8 or 9 the last call enables it again
// after the one before disabled it.
const int kFirmware14[] = {IDC_RENDER_SMOOTHING_CAPTION, IDC_RENDER_SMOOTHING,
                           IDC_RENDER_SMOOTHING_SPIN, 0};
const int kFirmware10[] = {IDC_RENDER_VECTOR_CAPTION, IDC_RENDER_VECTOR, IDC_RENDER_SMOOTH_EDGES,
                           IDC_RENDER_RASTER_CAPTION, IDC_RENDER_RASTER, 0};
const int kFirmware8[] = {IDC_RENDER_LIGHTNESS_CAPTION,
                          IDC_RENDER_LIGHTNESS,
                          IDC_RENDER_LIGHTNESS_VALUE,
                          IDC_RENDER_CONTRAST_CAPTION,
                          IDC_RENDER_CONTRAST,
                          IDC_RENDER_CONTRAST_VALUE,
                          IDC_RENDER_VECTOR_CAPTION,
                          IDC_RENDER_VECTOR,
                          IDC_RENDER_GRAYSCALE_CAPTION,
                          IDC_RENDER_GRAYSCALE,
                          IDC_RENDER_LINE_WIDTH_CAPTION,
                          IDC_RENDER_LINE_WIDTH,
                          IDC_RENDER_LINE_WIDTH_SPIN,
                          IDC_RENDER_QUALITY_CAPTION,
                          IDC_RENDER_QUALITY,
                          IDC_RENDER_MODE_CAPTION,
                          IDC_RENDER_MODE,
                          0};

// What a reduced sheet leaves out.
const int kReducedControls[] = {IDC_RENDER_VECTOR_CAPTION,     IDC_RENDER_VECTOR,
                                IDC_RENDER_GRAYSCALE_CAPTION,  IDC_RENDER_GRAYSCALE,
                                IDC_RENDER_LINE_WIDTH_CAPTION, IDC_RENDER_LINE_WIDTH,
                                IDC_RENDER_LINE_WIDTH_SPIN,    IDC_RENDER_SMOOTHING_CAPTION,
                                IDC_RENDER_SMOOTHING,          IDC_RENDER_SMOOTHING_SPIN,
                                IDC_RENDER_QUALITY_CAPTION,    IDC_RENDER_QUALITY,
                                IDC_RENDER_MODE_CAPTION,       IDC_RENDER_MODE,
                                IDC_RENDER_RESOLUTION_CAPTION, IDC_RENDER_RESOLUTION,
                                IDC_RENDER_FINE_LINES,         IDC_RENDER_SMOOTH_EDGES};

// Model 5 chooses its output by quality and render mode; the others by resolution and vector
// handling. Each model sees one pair.
const int kResolutionRows[] = {IDC_RENDER_RESOLUTION_CAPTION, IDC_RENDER_RESOLUTION,
                               IDC_RENDER_VECTOR_CAPTION, IDC_RENDER_VECTOR};
const int kQualityRows[] = {IDC_RENDER_QUALITY_CAPTION, IDC_RENDER_QUALITY, IDC_RENDER_MODE_CAPTION,
                            IDC_RENDER_MODE};

constexpr int kSLIDER_MIN = -10;
constexpr int kSLIDER_MAX = 10;
constexpr int kLINE_WIDTH_MIN = 1;
constexpr int kLINE_WIDTH_MAX = 25;
constexpr WORD kSMOOTHING_MIN = 1;
constexpr WORD kSMOOTHING_MAX = 10;

// Codes of the resolution list.
constexpr DWORD kRES_CODE_200 = 0;
constexpr DWORD kRES_CODE_300 = 1;
constexpr DWORD kRES_CODE_400 = 2;
constexpr DWORD kRES_CODE_600 = 3;

DWORD ResolutionCode(int dpi)
{
    switch (dpi) {
    case 200:
        return kRES_CODE_200;
    case 300:
        return kRES_CODE_300;
    case 600:
        return kRES_CODE_600;
    default:
        return kRES_CODE_400;
    }
}

short ResolutionDpi(DWORD code)
{
    switch (code) {
    case kRES_CODE_200:
        return 200;
    case kRES_CODE_300:
        return 300;
    case kRES_CODE_600:
        return 600;
    default:
        return 400;
    }
}

void HideControls(HWND hDlg, const int* ids, int count)
{
    for (int i = 0; i < count; ++i) {
        HWND hControl = GetDlgItem(hDlg, ids[i]);
        if (!hControl)
            continue;
        ShowWindow(hControl, SW_HIDE);
        EnableWindow(hControl, FALSE);
    }
}

// The edit's text as _wtoi reads it; cch counts the terminator.
int ReadInt(HWND hDlg, int id, int cch)
{
    WCHAR text[8] = {};
    GetDlgItemTextW(hDlg, id, text, cch);
    return static_cast<int>(WstrToLong(text));
}

} // namespace

TVORenderTab::TVORenderTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig,
                           BOOL bReducedControls)
    : TVOTab(lpdi, pConfig, IDD_RENDER_TAB), m_bReducedControls(bReducedControls)
{
    m_pPermissionIDs = kRenderLockList;
}

TVORenderTab::~TVORenderTab() = default;

INT_PTR TVORenderTab::DialogProc(UINT message, WPARAM wParam, LPARAM lParam)
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
    case WM_HSCROLL:
        // The position of a drag is a signed 16-bit number.
        OnHScroll(m_hWnd, reinterpret_cast<HWND>(lParam), LOWORD(wParam),
                  static_cast<short>(HIWORD(wParam)));
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

BOOL TVORenderTab::OnInitDialog()
{
    QLM_TRACE_SCOPE(TEXT("TVORenderTab::OnInitDialog"), g_bTraceRenderTab);
    ASSERT(m_pDM);
    ASSERT(m_pConfig);
    if (!m_pDM || !m_pConfig)
        return 1;
    if (m_pConfig->m_PrinterModel == kMODEL_WIDE_5)
        HideControls(m_hWnd, kResolutionRows, 4);
    else
        HideControls(m_hWnd, kQualityRows, 4);
    if (m_bReducedControls)
        SetDlgItemTextW(m_hWnd, IDC_RENDER_RASTER_CAPTION,
                        m_pConfig->getResourceString(IDS_RENDER_REDUCED_RASTER));
    SetControlsFromDM();
    SetModified(FALSE);
    return 1;
}

void TVORenderTab::ShowSliderValue(int valueId, int value)
{
    WCHAR text[16];
    WstrPrintf(text, 16, TEXT("%d"), value);
    SetDlgItemTextW(m_hWnd, valueId, text);
}

void TVORenderTab::SetControlsFromDM()
{
    QLM_TRACE_SCOPE(TEXT("TVORenderTab::SetControlsFromDM"), g_bTraceRenderTab);
    if (!m_pDM || !m_pConfig)
        return;
    TVOPrinterConfiguration* pConfig = m_pConfig;
    EnableForFirmware(kFirmware14, 4, 14);
    EnableForFirmware(kFirmware10, 6, 10);
    EnableForFirmware(kFirmware8, 18, 8);
    if (m_bReducedControls)
        HideControls(m_hWnd, kReducedControls, 18);

    const struct
    {
        int slider;
        int value;
        SHORT level;
    } sliders[] = {{IDC_RENDER_LIGHTNESS, IDC_RENDER_LIGHTNESS_VALUE, m_pDM->dmxRenderLevel1},
                   {IDC_RENDER_CONTRAST, IDC_RENDER_CONTRAST_VALUE, m_pDM->dmxRenderLevel2}};
    for (const auto& row : sliders) {
        SendDlgItemMessageW(m_hWnd, row.slider, TBM_SETRANGE, TRUE,
                            MAKELPARAM(static_cast<WORD>(kSLIDER_MIN), kSLIDER_MAX));
        SendDlgItemMessageW(m_hWnd, row.slider, TBM_SETPOS, TRUE, static_cast<LPARAM>(row.level));
        // The record's own value, even where the slider could not stand there.
        ShowSliderValue(row.value, row.level);
    }

    pConfig->fillComboBox1(m_hWnd, IDC_RENDER_VECTOR, pConfig->m_VectorList, m_pDM->dmxVector);
    pConfig->fillComboBox1(m_hWnd, IDC_RENDER_RASTER, pConfig->m_RasterMethodList,
                           m_pDM->dmxRasterMethod);
    CheckDlgButton(m_hWnd, IDC_RENDER_SMOOTH_EDGES,
                   m_pDM->dmxRenderFlag2 ? BST_CHECKED : BST_UNCHECKED);
    pConfig->fillComboBox1(m_hWnd, IDC_RENDER_GRAYSCALE, pConfig->m_GrayscaleList,
                           m_pDM->dmxFLGrayscaleRendering);

    // Setting the up-downs writes their buddies, whose handlers hold the record's values to
    // the fields' ranges.
    SendDlgItemMessageW(m_hWnd, IDC_RENDER_LINE_WIDTH, EM_LIMITTEXT, 2, 0);
    SendDlgItemMessageW(m_hWnd, IDC_RENDER_LINE_WIDTH_SPIN, UDM_SETRANGE, 0,
                        MAKELPARAM(kLINE_WIDTH_MAX, kLINE_WIDTH_MIN));
    SendDlgItemMessageW(m_hWnd, IDC_RENDER_LINE_WIDTH_SPIN, UDM_SETPOS, 0,
                        MAKELPARAM(m_pDM->dmxRenderValue1, 0));
    SendDlgItemMessageW(m_hWnd, IDC_RENDER_SMOOTHING, EM_LIMITTEXT, 2, 0);
    SendDlgItemMessageW(m_hWnd, IDC_RENDER_SMOOTHING_SPIN, UDM_SETRANGE, 0,
                        MAKELPARAM(kSMOOTHING_MAX, kSMOOTHING_MIN));
    SendDlgItemMessageW(m_hWnd, IDC_RENDER_SMOOTHING_SPIN, UDM_SETPOS, 0,
                        MAKELPARAM(m_pDM->dmxRenderValue2, 0));

    CheckDlgButton(m_hWnd, IDC_RENDER_FINE_LINES,
                   m_pDM->dmxRenderFlag1 ? BST_CHECKED : BST_UNCHECKED);
    pConfig->fillComboBox1(m_hWnd, IDC_RENDER_QUALITY, pConfig->m_QualityModeList,
                           m_pDM->dmxQualityMode);
    pConfig->fillComboBox1(m_hWnd, IDC_RENDER_MODE, pConfig->m_RenderModeList,
                           m_pDM->dmxRenderMode);

    // A record from a model with a finer resolution falls to this model's finest.
    if (!pConfig->isValidRes(m_pDM->dmPublic.dmPrintQuality)) {
        Trace(TEXT("resolution %d is not this model's, %d instead"),
              static_cast<int>(m_pDM->dmPublic.dmPrintQuality),
              static_cast<int>(pConfig->m_maxRes));
        m_pDM->dmPublic.dmPrintQuality = static_cast<short>(pConfig->m_maxRes);
    }
    pConfig->fillComboBox1(m_hWnd, IDC_RENDER_RESOLUTION, pConfig->m_ResolutionList,
                           ResolutionCode(m_pDM->dmPublic.dmPrintQuality));

    pConfig->fillComboBox1(m_hWnd, IDC_RENDER_CONTENT, pConfig->m_RenderList, m_pDM->dmxRenderList);
    LockControls(pConfig->m_bHasPermission);
}

void TVORenderTab::OnHScroll(HWND hWnd, HWND hwndCtl, UINT code, int pos)
{
    QLM_TRACE_SCOPE(TEXT("TVORenderTab::OnHScroll"), g_bTraceRenderTab);
    (void)hWnd;
    // A scroll bar of the window itself has no control; the tab has none.
    if (!hwndCtl || !m_pDM)
        return;
    int value = static_cast<int>(SendMessageW(hwndCtl, TBM_GETPOS, 0, 0));
    switch (code) {
    case SB_THUMBTRACK:
        value = pos;
        break;
    case SB_TOP:
        value = kSLIDER_MAX;
        break;
    case SB_BOTTOM:
        value = kSLIDER_MIN;
        break;
    default:
        break;
    }
    if (value < kSLIDER_MIN)
        value = kSLIDER_MIN;
    if (value > kSLIDER_MAX)
        value = kSLIDER_MAX;
    SendMessageW(hwndCtl, TBM_SETPOS, TRUE, value);

    const int id = GetDlgCtrlID(hwndCtl);
    if (id == IDC_RENDER_LIGHTNESS)
        m_pDM->dmxRenderLevel1 = static_cast<SHORT>(value);
    else if (id == IDC_RENDER_CONTRAST)
        m_pDM->dmxRenderLevel2 = static_cast<SHORT>(value);
    ShowSliderValue(
        id == IDC_RENDER_LIGHTNESS ? IDC_RENDER_LIGHTNESS_VALUE : IDC_RENDER_CONTRAST_VALUE, value);
    SetModified(TRUE);
}

void TVORenderTab::SetPrinterDefaults()
{
    QLM_TRACE_SCOPE(TEXT("TVORenderTab::SetPrinterDefaults"), g_bTraceRenderTab);
    if (!m_pDM || !m_pConfig)
        return;
    m_pDM->dmxRenderLevel1 = 0;
    m_pDM->dmxRenderLevel2 = 0;
    m_pDM->dmxQualityMode = 1;
    m_pDM->dmxRenderMode = 0;
    m_pDM->dmxRenderFlag1 = 0;
    m_pDM->dmxVector = 0;
    m_pDM->dmxFLGrayscaleRendering = 0;
    m_pDM->dmxRenderValue1 = 7;
    m_pDM->dmxRenderFlag2 = 0;
    m_pDM->dmxRasterMethod = 0;
    // The merge makes dmYResolution equal to it when the record leaves the sheet.
    m_pDM->dmPublic.dmPrintQuality = IsHighResolutionModel(m_pConfig->m_PrinterModel) ? 600 : 400;
    m_pDM->dmxRenderValue2 = 1;
    m_pDM->dmxRenderList = 0;
    SetControlsFromDM();
    SetFocus(m_hWnd);
}

void TVORenderTab::OnCommand(int id, int code)
{
    QLM_TRACE_SCOPE(TEXT("TVORenderTab::OnCommand"), g_bTraceRenderTab);
    if (!m_pDM || !m_pConfig)
        return;
    switch (id) {
    case IDC_RENDER_VECTOR:
        if (code == CBN_SELENDOK)
            OnVector();
        return;
    case IDC_RENDER_RASTER:
        if (code == CBN_SELENDOK)
            OnRasterMethod();
        return;
    case IDC_RENDER_GRAYSCALE:
        if (code == CBN_SELENDOK)
            OnFLGrayscaleRendering();
        return;
    case IDC_RENDER_CONTENT:
        if (code == CBN_SELENDOK)
            OnRenderList();
        return;
    case IDC_RENDER_QUALITY:
        if (code == CBN_SELENDOK)
            OnQualityMode();
        return;
    case IDC_RENDER_MODE:
        if (code == CBN_SELENDOK)
            OnRenderMode();
        return;
    case IDC_RENDER_RESOLUTION:
        if (code == CBN_SELENDOK)
            OnResolution();
        return;
    case IDC_RENDER_FINE_LINES:
        if (code == BN_CLICKED) {
            m_pDM->dmxRenderFlag1 = m_pDM->dmxRenderFlag1 ? 0 : 1;
            CheckDlgButton(m_hWnd, id, m_pDM->dmxRenderFlag1 ? BST_CHECKED : BST_UNCHECKED);
            SetModified(TRUE);
        }
        return;
    case IDC_RENDER_SMOOTH_EDGES:
        if (code == BN_CLICKED) {
            m_pDM->dmxRenderFlag2 = m_pDM->dmxRenderFlag2 ? 0 : 1;
            CheckDlgButton(m_hWnd, id, m_pDM->dmxRenderFlag2 ? BST_CHECKED : BST_UNCHECKED);
            SetModified(TRUE);
        }
        return;
    case IDC_RENDER_LINE_WIDTH:
        if (code == EN_CHANGE)
            OnLineWidthChange();
        return;
    case IDC_RENDER_SMOOTHING:
        if (code == EN_CHANGE)
            OnSmoothingChange();
        return;
    case IDC_DEFAULTS:
        SetPrinterDefaults();
        SetModified(TRUE);
        return;
    default:
        Trace(TEXT("Default OnCommand!\n"));
        return;
    }
}

void TVORenderTab::OnVector()
{
    m_pDM->dmxVector = GetComboSelection(IDC_RENDER_VECTOR);
    SetModified(TRUE);
}

void TVORenderTab::OnRasterMethod()
{
    m_pDM->dmxRasterMethod = GetComboSelection(IDC_RENDER_RASTER);
    SetModified(TRUE);
}

void TVORenderTab::OnFLGrayscaleRendering()
{
    m_pDM->dmxFLGrayscaleRendering = GetComboSelection(IDC_RENDER_GRAYSCALE);
    SetModified(TRUE);
}

void TVORenderTab::OnRenderList()
{
    m_pDM->dmxRenderList = GetComboSelection(IDC_RENDER_CONTENT);
    SetModified(TRUE);
}

void TVORenderTab::OnQualityMode() {}

void TVORenderTab::OnRenderMode() {}

void TVORenderTab::OnResolution()
{
    const short dpi = ResolutionDpi(GetComboSelection(IDC_RENDER_RESOLUTION));
    m_pDM->dmPublic.dmPrintQuality = dpi;
    m_pDM->dmPublic.dmYResolution = dpi;
    SetModified(TRUE);
}

// A value outside the field's range is replaced as it is typed and left selected, so that the
// next key replaces it.
void TVORenderTab::OnLineWidthChange()
{
    int value = ReadInt(m_hWnd, IDC_RENDER_LINE_WIDTH, 3);
    m_pDM->dmxRenderValue1 = static_cast<WORD>(value);
    if (value >= kLINE_WIDTH_MIN && value <= kLINE_WIDTH_MAX) {
        SetModified(TRUE);
        return;
    }
    value = value > kLINE_WIDTH_MAX ? kLINE_WIDTH_MAX : kLINE_WIDTH_MIN;
    m_pDM->dmxRenderValue1 = static_cast<WORD>(value);
    SetDlgItemInt(m_hWnd, IDC_RENDER_LINE_WIDTH, static_cast<UINT>(value), FALSE);
    SendDlgItemMessageW(m_hWnd, IDC_RENDER_LINE_WIDTH, EM_SETSEL, 0, -1);
    SetModified(TRUE);
}

// The same for the smoothing, read as the unsigned field it is stored in: a negative number
// counts as a large one.
void TVORenderTab::OnSmoothingChange()
{
    m_pDM->dmxRenderValue2 = static_cast<WORD>(ReadInt(m_hWnd, IDC_RENDER_SMOOTHING, 3));
    const WORD value = m_pDM->dmxRenderValue2;
    if (value >= kSMOOTHING_MIN && value <= kSMOOTHING_MAX) {
        SetModified(TRUE);
        return;
    }
    m_pDM->dmxRenderValue2 = value > kSMOOTHING_MAX ? kSMOOTHING_MAX : kSMOOTHING_MIN;
    SetDlgItemInt(m_hWnd, IDC_RENDER_SMOOTHING, m_pDM->dmxRenderValue2, FALSE);
    SendDlgItemMessageW(m_hWnd, IDC_RENDER_SMOOTHING, EM_SETSEL, 0, -1);
    SetModified(TRUE);
}
