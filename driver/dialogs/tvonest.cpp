#include "tvonest.h"

#include "../config/tvoconfg.h"
#include "../foundation/qlmtrace.h"
#include "../../resources/qlmres.h"

#include <cstring>

namespace {

const DWORD kPlotNestLockList[] = {IDC_PLOTNEST_MARGIN_CAPTION,
                                   IDC_PLOTNEST_MARGIN,
                                   IDC_PLOTNEST_MARGIN_SPIN,
                                   IDC_PLOTNEST_MARGIN_UNIT,
                                   IDC_DEFAULTS,
                                   IDC_LOGO,
                                   0};

// The field's text limit is its own identifier, as it has always been.
constexpr int kMARGIN_LIMIT = IDC_PLOTNEST_MARGIN;
constexpr int kFIELD_CCH = 32;

} // namespace

TVOPlotNestDlg::TVOPlotNestDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM)
    : TVOWorkingCopyDialog(IDD_PLOTNEST, pConfig, pDM, kPlotNestLockList)
{
}

TVOFixed TVOPlotNestDlg::Maximum() const
{
    return TVOFixed(m_pDM->dmxUnits == kDISTANCE_INCHES ? 1L : 25L);
}

BOOL TVOPlotNestDlg::OnInitDialog()
{
    QLM_TRACE_SCOPE(TEXT("TVOPlotNestDlg::OnInitDialog"), g_bTraceTVODialog);
    ASSERT(m_pConfig);
    ASSERT(m_pDM);
    if (m_pConfig && m_pDM) {
        SubclassNumericEdit(IDC_PLOTNEST_MARGIN);
        SetControlsFromDM();
    }
    return 1;
}

void TVOPlotNestDlg::SetControlsFromDM()
{
    if (!m_pDM || !m_pConfig)
        return;
    SendDlgItemMessageW(m_hWnd, IDC_PLOTNEST_MARGIN, EM_LIMITTEXT, kMARGIN_LIMIT, 0);
    TVOFixed margin(m_pDM->dmxPlotNestMargin);
    if (m_pDM->dmxUnits == kDISTANCE_INCHES)
        margin.MMToInches();
    SetDistanceText(IDC_PLOTNEST_MARGIN, margin);
    SetDlgItemTextW(
        m_hWnd, IDC_PLOTNEST_MARGIN_UNIT,
        m_pConfig->getResourceString(m_pDM->dmxUnits ? IDS_UNITS_MM : IDS_UNITS_INCHES));
    LockControls(m_pConfig->m_bHasPermission);
}

int TVOPlotNestDlg::EnteredValuesAreValid()
{
    // In inches only 0 and 1 are whole legal values; the fractions between them pass.
    const TVOFixed margin = GetDistanceText(IDC_PLOTNEST_MARGIN, kFIELD_CCH);
    const TVOFixed minimum(0L);
    const TVOFixed maximum = Maximum();
    if (margin < minimum || margin > maximum) {
        ShowRangeError(IDC_PLOTNEST_MARGIN_CAPTION, long(minimum), long(maximum));
        return IDC_PLOTNEST_MARGIN;
    }
    return 0;
}

void TVOPlotNestDlg::UpdateDMFromControls()
{
    TVOFixed margin = GetDistanceText(IDC_PLOTNEST_MARGIN, kFIELD_CCH);
    if (m_pDM->dmxUnits == kDISTANCE_INCHES)
        margin.InchestToMM();
    // Whole millimetres, rounded.
    m_pDM->dmxPlotNestMargin = static_cast<WORD>(static_cast<short>(margin));
}

void TVOPlotNestDlg::OnCommand(int id, int code)
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
    case IDC_DEFAULTS:
        setModified(TRUE);
        m_pDM->dmxPlotNestMargin = 0;
        SetControlsFromDM();
        SetFocus(m_hWnd);
        return;
    default:
        return;
    }
}

LRESULT TVOPlotNestDlg::OnNotify(const NMHDR* pnmhdr)
{
    if (!pnmhdr || pnmhdr->code != UDN_DELTAPOS)
        return 0;
    const auto* pUpDown = reinterpret_cast<const NMUPDOWN*>(pnmhdr);
    SpinDistanceField(IDC_PLOTNEST_MARGIN, pUpDown->iDelta, TVOFixed(0L), Maximum(), kFIELD_CCH);
    return 1;
}
