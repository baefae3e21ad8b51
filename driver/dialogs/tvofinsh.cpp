#include "tvofinsh.h"

#include "../config/tvoconfg.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "../../resources/qlmres.h"

#include <iterator>
#include <new>

namespace {

const DWORD kFinishLockList[] = {IDC_FINISH_PROGRAM_CAPTION,
                                 IDC_FINISH_PROGRAM,
                                 IDC_FINISH_DESCRIPTION,
                                 IDC_FINISH_PUNCH,
                                 IDC_FINISH_TAB,
                                 IDC_FINISH_CROSS_FOLD,
                                 IDC_FINISH_MARGIN,
                                 IDC_FINISH_BIN_CAPTION,
                                 IDC_FINISH_BIN,
                                 IDC_FINISH_FOLD_OPTION,
                                 IDC_FINISH_OPTION,
                                 IDC_DEFAULTS,
                                 IDC_LOGO,
                                 0};

// The program names of a finisher of version "0.0", which the user sees translated.
const struct
{
    const WCHAR* name;
    UINT text;
} kFoldNames[] = {
    {TEXT("FOLD_BYPASS"), IDS_FINISHING_BYPASS},
    {TEXT("FOLD_ANSI_A"), IDS_FOLD_ANSI_A},
    {TEXT("FOLD_7HALFX11"), IDS_FOLD_7HALFX11},
    {TEXT("FOLD_7HALFX11_MARGIN"), IDS_FOLD_7HALFX11_MARGIN},
    {TEXT("FOLD_ARCH_A"), IDS_FOLD_ARCH_A},
    {TEXT("FOLD_210"), IDS_FOLD_210},
    {TEXT("FOLD_190"), IDS_FOLD_190},
    {TEXT("FOLD_190_MARGIN"), IDS_FOLD_190_MARGIN},
};

// The fold option list and the extended option came with these firmware levels.
constexpr LONG kFOLD_OPTION_FIRMWARE = 4;
constexpr LONG kOPTION_FIRMWARE = 10;

constexpr int kNAME_CCH = sizeof(TVOFinisherProgram::name) / sizeof(WCHAR);
constexpr int kVERSION_CCH = sizeof(TVOFinisherInfo::Version) / sizeof(WCHAR);
constexpr int kMODEL_CCH = sizeof(TVOFinisherInfo::Model) / sizeof(WCHAR);
constexpr int kTITLE_CCH = 256;
constexpr int kLINE_CCH = 256;
constexpr int kSIZE_TEXTS = 5;
// What the size line reads when the library's format cannot be trusted with five texts.
const WCHAR kFALLBACK_SIZES[] = TEXT("%s x %s %s, %s %s");
const WCHAR kLINE_END[] = TEXT("\r\n");

UINT FanFoldText(WORD code)
{
    if (code == 0)
        return IDS_FINISH_NO_FOLD;
    if (code >= 2 && code <= 8)
        return IDS_FINISH_FAN_2 + (code - 2);
    return IDS_FINISH_UNKNOWN;
}

UINT CrossFoldText(WORD code)
{
    if (code == 0)
        return IDS_FINISH_NO_FOLD;
    if (code >= 2 && code <= 11)
        return IDS_FINISH_CROSS_2 + (code - 2);
    return IDS_FINISH_UNKNOWN;
}

UINT PunchText(WORD code)
{
    switch (code) {
    case 0:
        return IDS_FINISH_PUNCH_NONE;
    case 2:
        return IDS_FINISH_PUNCH_2;
    case 3:
        return IDS_FINISH_PUNCH_3;
    case 4:
        return IDS_FINISH_PUNCH_4;
    default:
        return IDS_FINISH_UNKNOWN;
    }
}

UINT TabText(WORD code)
{
    switch (code) {
    case 0:
        return IDS_FINISH_TAB_NONE;
    case 2:
        return IDS_FINISH_TAB_2;
    case 3:
        return IDS_FINISH_TAB_3;
    default:
        return IDS_FINISH_UNKNOWN;
    }
}

// A size of the program, whole millimetres, as shown: in inches to one decimal, cut.
TVOFixed ShownSize(WORD mm, eDistanceUnits units)
{
    TVOFixed value(mm);
    if (units == kFIXED_INCHES) {
        value.MMToInches();
        value *= 10;
        value = TVOFixed(static_cast<long>(value.getThousandths() / 1000));
        value /= 10;
    }
    return value;
}

// The program counts beyond the block's room are cut to it.
DWORD ProgramCount(const TVOFinisherInfo& info)
{
    return info.numPrograms < kFINISHER_MAX_PROGRAMS ? info.numPrograms
                                                     : DWORD(kFINISHER_MAX_PROGRAMS);
}

void CheckItem(HWND hDlg, int id, DWORD value)
{
    CheckDlgButton(hDlg, id, value ? BST_CHECKED : BST_UNCHECKED);
}

DWORD IsItemChecked(HWND hDlg, int id)
{
    return IsDlgButtonChecked(hDlg, id) == BST_CHECKED ? 1 : 0;
}

} // namespace

TVOFinishDlg::TVOFinishDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM)
{
    m_iResourceID = IDD_FINISH;
    m_pConfig = pConfig;
    m_pDM = pDM;
    m_pPermissionIDs = kFinishLockList;
    if (pDM) {
        m_wProgram = pDM->dmxFinishProgram;
        m_wBin = pDM->dmxFinishOutputBin;
        m_dwFoldOption = pDM->dmxFinishFoldOption;
        m_dwCrossOff = pDM->dmxFinishFlags[2];
        m_dwMarginFlag = pDM->dmxFinishFlags[3];
        m_dwPunchFlag = pDM->dmxFinishFlags[0];
        m_dwTabFlag = pDM->dmxFinishFlags[1];
        m_dwOption = pDM->dmxFinishOption;
    }
    m_pszDescription = new (std::nothrow) WCHAR[kFINISH_DESCRIPTION_CCH];
    if (m_pszDescription)
        m_pszDescription[0] = 0;
}

TVOFinishDlg::~TVOFinishDlg()
{
    delete[] m_pszDescription;
}

const TVOFinisherProgram& TVOFinishDlg::Program() const
{
    const TVOFinisherInfo& info = m_pDM->dmxFinisher;
    return info.programs[m_wProgram < kFINISHER_MAX_PROGRAMS ? m_wProgram : 0];
}

BOOL TVOFinishDlg::IsVersionZero() const
{
    WCHAR version[kVERSION_CCH + 1] = {};
    WstrNCopy(version, m_pDM->dmxFinisher.Version, std::size(version) - 1);
    return WstrCmp(version, TEXT("0.0")) == 0;
}

BOOL TVOFinishDlg::OnInitDialog()
{
    QLM_TRACE_SCOPE(TEXT("TVOFinishDlg::OnInitDialog"), g_bTraceFinishingDlg);
    ASSERT(m_pDM);
    ASSERT(m_pConfig);
    if (m_pDM && m_pConfig) {
        SetControlsFromDM();
        setDialogTitle();
        setModified(FALSE);
    }
    return 1;
}

void TVOFinishDlg::setDialogTitle()
{
    WCHAR title[kTITLE_CCH] = {};
    GetWindowTextW(m_hWnd, title, kTITLE_CCH);
    WCHAR model[kMODEL_CCH + 1] = {};
    WstrNCopy(model, m_pDM->dmxFinisher.Model, std::size(model) - 1);
    WCHAR text[kTITLE_CCH + std::size(model) + 8];
    WstrPrintf(text, std::size(text), TEXT("%s - [%s]"), title, model);
    SetWindowTextW(m_hWnd, text);
}

void TVOFinishDlg::SetControlsFromDM()
{
    QLM_TRACE_SCOPE(TEXT("TVOFinishDlg::SetControlsFromDM"), g_bTraceFinishingDlg);
    if (!m_pDM || !m_pConfig)
        return;
    SetupProgram();
    SetupDescription();
    SetupCheckBoxes();
    SetupBin();

    SendDlgItemMessageW(m_hWnd, IDC_FINISH_FOLD_OPTION, CB_RESETCONTENT, 0, 0);
    m_pConfig->fillComboBox1(m_hWnd, IDC_FINISH_FOLD_OPTION, m_pConfig->m_FinishOptionList,
                             m_dwFoldOption);
    EnableWindow(GetDlgItem(m_hWnd, IDC_FINISH_FOLD_OPTION),
                 m_pDM->dmxFirmwareRevision >= kFOLD_OPTION_FIRMWARE);

    CheckItem(m_hWnd, IDC_FINISH_OPTION, m_dwOption);
    HWND hOption = GetDlgItem(m_hWnd, IDC_FINISH_OPTION);
    if (m_pDM->dmxFirmwareRevision >= kOPTION_FIRMWARE) {
        EnableWindow(hOption, TRUE);
    } else {
        ShowWindow(hOption, SW_HIDE);
        EnableWindow(hOption, FALSE);
    }
    LockControls(m_pConfig->m_bHasPermission);
}

void TVOFinishDlg::SetupProgram()
{
    SendDlgItemMessageW(m_hWnd, IDC_FINISH_PROGRAM, CB_RESETCONTENT, 0, 0);
    const TVOFinisherInfo& info = m_pDM->dmxFinisher;
    const BOOL bTranslate = IsVersionZero();
    const DWORD count = ProgramCount(info);
    for (DWORD i = 0; i < count; ++i) {
        // A name may fill its field without a terminator.
        WCHAR name[kNAME_CCH + 1] = {};
        WstrNCopy(name, info.programs[i].name, kNAME_CCH);
        WCHAR shown[512];
        WstrCopy(shown, std::size(shown), name);
        if (bTranslate) {
            for (const auto& row : kFoldNames) {
                if (WstrCmp(name, row.name) == 0) {
                    WstrCopy(shown, std::size(shown), m_pConfig->getResourceString(row.text));
                    break;
                }
            }
        }
        LRESULT index = SendDlgItemMessageW(m_hWnd, IDC_FINISH_PROGRAM, CB_ADDSTRING, 0,
                                            reinterpret_cast<LPARAM>(shown));
        SendDlgItemMessageW(m_hWnd, IDC_FINISH_PROGRAM, CB_SETITEMDATA, static_cast<WPARAM>(index),
                            static_cast<LPARAM>(i));
    }
    const LRESULT items = SendDlgItemMessageW(m_hWnd, IDC_FINISH_PROGRAM, CB_GETCOUNT, 0, 0);
    for (LRESULT i = 0; i < items; ++i) {
        if (SendDlgItemMessageW(m_hWnd, IDC_FINISH_PROGRAM, CB_GETITEMDATA, static_cast<WPARAM>(i),
                                0) == m_wProgram) {
            SendDlgItemMessageW(m_hWnd, IDC_FINISH_PROGRAM, CB_SETCURSEL, static_cast<WPARAM>(i),
                                0);
            return;
        }
    }
    m_wProgram = 0;
    SendDlgItemMessageW(m_hWnd, IDC_FINISH_PROGRAM, CB_SETCURSEL, 0, 0);
}

void TVOFinishDlg::SetupDescription()
{
    if (!m_pszDescription)
        return;
    WCHAR* text = m_pszDescription;
    const size_t cch = kFINISH_DESCRIPTION_CCH;
    const TVOFinisherProgram& program = Program();
    text[0] = 0;

    WstrCat(text, cch, m_pConfig->getResourceString(IDS_FINISH_FAN_CAPTION));
    WstrCat(text, cch, m_pConfig->getResourceString(FanFoldText(program.fanFold)));
    WstrCat(text, cch, kLINE_END);
    WstrCat(text, cch, m_pConfig->getResourceString(IDS_FINISH_CROSS_CAPTION));
    WstrCat(text, cch, m_pConfig->getResourceString(CrossFoldText(program.crossFold)));
    WstrCat(text, cch, kLINE_END);

    const eDistanceUnits units = DisplayUnits();
    // The size texts share one buffer of TVOFixed: each is copied before the next.
    WCHAR width[32], length[32], margin[32], unit[32];
    WstrCopy(width, 32, ShownSize(program.width, units).toString(units));
    WstrCopy(length, 32, ShownSize(program.length, units).toString(units));
    WstrCopy(margin, 32, ShownSize(program.margin, units).toString(units));
    WstrCopy(unit, 32,
             m_pConfig->getResourceString(units == kFIXED_INCHES ? IDS_UNITS_INCHES_SHORT
                                                                 : IDS_UNITS_MM));
    WCHAR format[kLINE_CCH];
    WstrCopy(format, kLINE_CCH, m_pConfig->getResourceString(IDS_FINISH_SIZES));
    if (!WstrFormatTakesTexts(format, kSIZE_TEXTS)) {
        Trace(TEXT("size format unusable: \"%s\""), format);
        WstrCopy(format, kLINE_CCH, kFALLBACK_SIZES);
    }
    WCHAR line[kLINE_CCH];
    WstrPrintf(line, kLINE_CCH, format, width, length, unit, margin, unit);
    WstrCat(text, cch, line);
    WstrCat(text, cch, kLINE_END);

    WstrCat(text, cch, m_pConfig->getResourceString(PunchText(program.punch)));
    WstrCat(text, cch, m_pConfig->getResourceString(IDS_FINISH_SEPARATOR));
    WstrCat(text, cch, m_pConfig->getResourceString(TabText(program.tab)));
    SetDlgItemTextW(m_hWnd, IDC_FINISH_DESCRIPTION, text);
}

void TVOFinishDlg::SetupCheckBoxes()
{
    const TVOFinisherProgram& program = Program();
    BOOL bCross = program.crossFold != 0;
    if (!bCross)
        m_dwCrossOff = 1;
    BOOL bMargin = program.margin != 0;
    if (!bMargin)
        m_dwMarginFlag = 0;
    const BOOL bPunch = program.punch != 0;
    if (!bPunch)
        m_dwPunchFlag = 0;
    const BOOL bTab = program.tab != 0;
    if (!bTab)
        m_dwTabFlag = 0;
    if (IsVersionZero()) {
        bCross = FALSE;
        bMargin = FALSE;
    }
    EnableWindow(GetDlgItem(m_hWnd, IDC_FINISH_CROSS_FOLD), bCross);
    EnableWindow(GetDlgItem(m_hWnd, IDC_FINISH_MARGIN), bMargin);
    EnableWindow(GetDlgItem(m_hWnd, IDC_FINISH_PUNCH), bPunch);
    EnableWindow(GetDlgItem(m_hWnd, IDC_FINISH_TAB), bTab);
    CheckItem(m_hWnd, IDC_FINISH_CROSS_FOLD, m_dwCrossOff == 0);
    CheckItem(m_hWnd, IDC_FINISH_MARGIN, m_dwMarginFlag);
    CheckItem(m_hWnd, IDC_FINISH_PUNCH, m_dwPunchFlag);
    CheckItem(m_hWnd, IDC_FINISH_TAB, m_dwTabFlag);
}

void TVOFinishDlg::SetupBin()
{
    SendDlgItemMessageW(m_hWnd, IDC_FINISH_BIN, CB_RESETCONTENT, 0, 0);
    LRESULT index = SendDlgItemMessageW(
        m_hWnd, IDC_FINISH_BIN, CB_ADDSTRING, 0,
        reinterpret_cast<LPARAM>(m_pConfig->getResourceString(IDS_FINISH_BIN_PRINTER)));
    SendDlgItemMessageW(m_hWnd, IDC_FINISH_BIN, CB_SETITEMDATA, static_cast<WPARAM>(index), 0);
    const DWORD bins = m_pDM->dmxFinisher.numBins;
    for (DWORD i = 1; i <= bins; ++i) {
        WCHAR number[16];
        WstrPrintf(number, 16, TEXT("%d"), static_cast<int>(i));
        index = SendDlgItemMessageW(m_hWnd, IDC_FINISH_BIN, CB_ADDSTRING, 0,
                                    reinterpret_cast<LPARAM>(number));
        SendDlgItemMessageW(m_hWnd, IDC_FINISH_BIN, CB_SETITEMDATA, static_cast<WPARAM>(index),
                            static_cast<LPARAM>(i));
    }
    const LRESULT items = SendDlgItemMessageW(m_hWnd, IDC_FINISH_BIN, CB_GETCOUNT, 0, 0);
    for (LRESULT i = 0; i < items; ++i) {
        if (SendDlgItemMessageW(m_hWnd, IDC_FINISH_BIN, CB_GETITEMDATA, static_cast<WPARAM>(i),
                                0) == m_wBin) {
            SendDlgItemMessageW(m_hWnd, IDC_FINISH_BIN, CB_SETCURSEL, static_cast<WPARAM>(i), 0);
            return;
        }
    }
    // A bin the finisher has not got becomes bin 1, while the printer's setting stays shown
    // until the user picks: a bin that the job asked for is never dropped in silence.
    m_wBin = 1;
    SendDlgItemMessageW(m_hWnd, IDC_FINISH_BIN, CB_SETCURSEL, 0, 0);
}

void TVOFinishDlg::SetPrinterDefaults()
{
    m_wProgram = 0;
    m_dwPunchFlag = 1;
    m_dwTabFlag = 1;
    m_wBin = 0;
    m_dwFoldOption = 0;
    m_dwCrossOff = 0;
    m_dwOption = 0;
    SetControlsFromDM();
    SetFocus(m_hWnd);
}

void TVOFinishDlg::UpdateDMFromControls()
{
    m_pDM->dmxFinishProgram = m_wProgram;
    m_pDM->dmxFinishFlags[0] = IsItemChecked(m_hWnd, IDC_FINISH_PUNCH);
    m_pDM->dmxFinishFlags[3] = IsItemChecked(m_hWnd, IDC_FINISH_MARGIN);
    m_pDM->dmxFinishFlags[1] = IsItemChecked(m_hWnd, IDC_FINISH_TAB);
    m_pDM->dmxFinishFlags[2] = !IsItemChecked(m_hWnd, IDC_FINISH_CROSS_FOLD);
    m_pDM->dmxFinishOutputBin = m_wBin;
    m_pDM->dmxFinishFoldOption = m_dwFoldOption;
    m_pDM->dmxFinishOption = IsItemChecked(m_hWnd, IDC_FINISH_OPTION);
}

void TVOFinishDlg::OnCommand(int id, int code)
{
    switch (id) {
    case IDC_FINISH_PROGRAM:
        if (code == CBN_SELENDOK) {
            m_wProgram = static_cast<WORD>(GetComboSelection(IDC_FINISH_PROGRAM));
            // A new program starts with everything it can do switched on; the check boxes
            // then clear what it cannot.
            m_dwCrossOff = 0;
            m_dwMarginFlag = 1;
            m_dwPunchFlag = 1;
            m_dwTabFlag = 1;
            SetupDescription();
            SetupCheckBoxes();
            setModified(TRUE);
        }
        break;
    case IDC_FINISH_BIN:
        m_wBin = static_cast<WORD>(GetComboSelection(IDC_FINISH_BIN));
        setModified(TRUE);
        break;
    case IDC_FINISH_FOLD_OPTION:
        if (code == CBN_SELENDOK) {
            m_dwFoldOption = GetComboSelection(IDC_FINISH_FOLD_OPTION);
            setModified(TRUE);
        }
        break;
    case IDC_FINISH_TAB:
    case IDC_FINISH_CROSS_FOLD:
    case IDC_FINISH_PUNCH:
    case IDC_FINISH_MARGIN:
    case IDC_FINISH_OPTION:
        // The boxes are read at OK.
        setModified(TRUE);
        break;
    case IDC_DEFAULTS:
        SetPrinterDefaults();
        setModified(TRUE);
        break;
    case IDOK:
        if (m_pDM)
            UpdateDMFromControls();
        EndDialog(m_hWnd, 1);
        break;
    case IDCANCEL:
        EndDialog(m_hWnd, 2);
        break;
    default:
        break;
    }
}

INT_PTR TVOFinishDlg::DialogProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        return OnInitDialog();
    case WM_COMMAND:
        if (m_pDM && m_pConfig)
            OnCommand(LOWORD(wParam), HIWORD(wParam));
        else if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)
            EndDialog(m_hWnd, 2);
        return 0;
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
