// TVODevMode: construction, release with its guard checks, and the defaults of a record.
#include "tvodm.h"

#include "../foundation/qlmtrace.h"
#include "../foundation/qlmutils.h"
#include "../foundation/wstr.h"

#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <new>

thread_local constinit LONG TVODevMode::s_nViewConstructed = 0;
thread_local constinit LONG TVODevMode::s_nDefaultConstructed = 0;
thread_local constinit LONG TVODevMode::s_nPrinterConstructed = 0;
thread_local constinit LONG TVODevMode::s_nDestructed = 0;

namespace {

BOOL TraceDevMode()
{
    return g_bTraceTVODevMode | g_bTraceDevmodeLife;
}

} // namespace

TVODevMode::TVODevMode(DEVMODEEX* lpDM) : TVODevMode(lpDM, nullptr) {}

TVODevMode::TVODevMode(DEVMODEEX* lpDM, QLMPrinterSnapshot* pSnapshot)
    : m_lpDM(lpDM), m_bOwnDM(FALSE), m_szScratch{}, m_bGOTprinterDataAlready(FALSE),
      m_pSnapshot(pSnapshot)
{
    QLM_TRACE_SCOPE(TEXT("TVODevMode::TVODevMode(lpDM)"), TraceDevMode());
    ASSERT(lpDM);
    s_nViewConstructed++;
}

TVODevMode::TVODevMode()
    : m_lpDM(nullptr), m_bOwnDM(FALSE), m_szScratch{}, m_bGOTprinterDataAlready(FALSE),
      m_pSnapshot(nullptr)
{
    QLM_TRACE_SCOPE(TEXT("TVODevMode::TVODevMode()"), TraceDevMode());
    s_nDefaultConstructed++;
    AllocateRecord();
    if (m_lpDM)
        setDefaults(nullptr);
}

TVODevMode::TVODevMode(HANDLE hPrinter) : TVODevMode(hPrinter, nullptr) {}

TVODevMode::TVODevMode(HANDLE hPrinter, QLMPrinterSnapshot* pSnapshot)
    : m_lpDM(nullptr), m_bOwnDM(FALSE), m_szScratch{}, m_bGOTprinterDataAlready(FALSE),
      m_pSnapshot(pSnapshot)
{
    QLM_TRACE_SCOPE(TEXT("TVODevMode::TVODevMode(hPrinter)"), TraceDevMode());
    s_nPrinterConstructed++;
    AllocateRecord();
    if (m_lpDM)
        setDefaults(hPrinter);
}

TVODevMode::UseSnapshot::UseSnapshot(TVODevMode& devMode, HANDLE hPrinter)
    : m_devMode(devMode), m_pSaved(devMode.m_pSnapshot)
{
    if (!m_pSaved || m_pSaved->Printer() != hPrinter)
        m_devMode.m_pSnapshot = &m_own.emplace(hPrinter);
}

TVODevMode::UseSnapshot::~UseSnapshot()
{
    m_devMode.m_pSnapshot = m_pSaved;
}

bool TVODevMode::PortTestSeen(QLMPrinterSnapshot& snapshot)
{
    if (!snapshot.RecordsStay() || TraceCouldShow(g_bTraceQLMPrinterFunctions))
        return true;
    // A queue without a stored record gets this one saved.
    const PRINTER_INFO_2W* pInfo = snapshot.PrinterInfo();
    return pInfo && !pInfo->pDevMode;
}

void TVODevMode::AllocateRecord()
{
    m_lpDM = static_cast<DEVMODEEX*>(operator new(sizeof(DEVMODEEX), std::nothrow));
    ASSERT(m_lpDM);
    if (!m_lpDM)
        return;
    m_bOwnDM = TRUE;
    memset(m_lpDM, 0, sizeof(DEVMODEEX));
}

TVODevMode::~TVODevMode()
{
    QLM_TRACE_SCOPE(TEXT("TVODevMode::~TVODevMode"), TraceDevMode());
    s_nDestructed++;
    if (!m_bOwnDM || !m_lpDM)
        return;
    CheckGuards();
    operator delete(m_lpDM);
    m_lpDM = nullptr;
}

// Reports each guard word that something wrote over: a sign of a write past a field.
void TVODevMode::CheckGuards() const
{
    ASSERT(m_lpDM->dmxDevmodeVersion == 0x0C05);
    const struct
    {
        const char* name;
        const DWORD* words;
    } kBlocks[] = {{"padding_1", m_lpDM->padding_1}, {"padding_2", m_lpDM->padding_2}};
    for (const auto& block : kBlocks) {
        for (int i = 0; i < 8; i++) {
            if (block.words[i] == TVO_GUARD_WORD)
                continue;
            char expression[64];
            snprintf(expression, sizeof(expression), "m_lpDM->%s[%d] == 0xCCCCCCCC", block.name, i);
            Assert(QLM_WIDEN(__FILE__), __LINE__, expression);
        }
    }
}

BOOL TVODevMode::StoreQueueRecord(HANDLE hPrinter, PRINTER_INFO_2W* pInfo, DEVMODEEX* pDM)
{
    const DEVMODEW* pStored = pInfo->pDevMode;
    const size_t cbField = offsetof(DEVMODEEX, dmxFirmwareRevision) + sizeof(LONG);
    if (pStored && size_t(pStored->dmSize) + pStored->dmDriverExtra >= cbField)
        Trace(TEXT("firmware of the stored record: %d"),
              reinterpret_cast<const DEVMODEEX*>(pStored)->dmxFirmwareRevision);
    pInfo->pDevMode = &pDM->dmPublic;
    return SetPrinterW(hPrinter, 2, reinterpret_cast<LPBYTE>(pInfo), 0);
}

namespace {

// Whether a queue's name holds one of the names of the 600 dpi family.
BOOL IsSorrentoName(LPCWSTR pszName)
{
    static const WCHAR* const kFamily[] = {TEXT("3310"), TEXT("3320"), TEXT("3320A"), TEXT("3344")};
    if (!pszName)
        return FALSE;
    for (const WCHAR* model : kFamily) {
        if (WstrStr(pszName, model))
            return TRUE;
    }
    return FALSE;
}

} // namespace

BOOL TVODevMode::IsSorrento(HANDLE hPrinter)
{
    QLM_TRACE_SCOPE(TEXT("TVODevMode::IsSorrento"), TraceDevMode());
    PRINTER_INFO_1W* pInfo = reinterpret_cast<PRINTER_INFO_1W*>(QLMGetPrinterInfo(hPrinter, 1));
    if (!pInfo)
        return FALSE;
    // The queue's name decides, not the driver's: a renamed queue loses or gains the default.
    BOOL bSorrento = IsSorrentoName(pInfo->pName);
    GlobalFree(pInfo);
    return bSorrento;
}

BOOL TVODevMode::IsSorrento(QLMPrinterSnapshot& snapshot)
{
    QLM_TRACE_SCOPE(TEXT("TVODevMode::IsSorrento"), TraceDevMode());
    // Level 2 names the queue as level 1 does; the call has it in hand already.
    const PRINTER_INFO_2W* pInfo = snapshot.PrinterInfo();
    return pInfo ? IsSorrentoName(pInfo->pPrinterName) : FALSE;
}

int TVODevMode::setDefaults(HANDLE hPrinter)
{
    QLM_TRACE_SCOPE(TEXT("TVODevMode::setDefaults"), TraceDevMode());
    UseSnapshot snapshot(*this, hPrinter);
    DEVMODEEX* dm = m_lpDM;
    DEVMODEW& pub = dm->dmPublic;

    memset(dm->padding_1, 0xCC, sizeof(dm->padding_1));
    memset(dm->padding_2, 0xCC, sizeof(dm->padding_2));
    dm->dmxDevmodeVersion = TVO_DEVMODE_VERSION;
    // Only the first 64 bytes of each name field: the rest of a fresh record is zero already.
    for (WCHAR* name : {dm->dmxReservedName, dm->dmxUserName, dm->dmxOwner})
        memset(static_cast<void*>(name), 0, 64);

    pub.dmDriverVersion = TVO_DRIVER_VERSION;
    pub.dmSpecVersion = TVO_SPEC_VERSION;
    pub.dmSize = sizeof(DEVMODEW);
    pub.dmDriverExtra = kDEVMODEEX_DRIVER_EXTRA;
    pub.dmPrintQuality = IsSorrento(*snapshot) ? 600 : 400;
    pub.dmFields = kTVO_DM_FIELDS;
    pub.dmOrientation = DMORIENT_PORTRAIT;
    pub.dmCollate = DMCOLLATE_FALSE;
    pub.dmTTOption = DMTT_BITMAP;
    pub.dmDefaultSource = DMBIN_AUTO;
    pub.dmColor = 1;

    // The measurement answer is the text "0" or "1", so its first two characters are never
    // both NUL: this test always takes the US branch. Other parties rely on that record.
    WCHAR szMeasure[2] = {TEXT('1'), 0};
    GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_IMEASURE, szMeasure, 2);
    DWORD dwMeasure;
    memcpy(&dwMeasure, szMeasure, sizeof(dwMeasure));
    const WCHAR* pszFormName;
    if (dwMeasure == 0) {
        pub.dmPaperSize = 274;
        dm->dmxSheetSizeSetting = 18;
        pszFormName = TEXT("ISO A4");
        dm->dmxUnits = kDISTANCE_MM;
    } else {
        pub.dmPaperSize = 257;
        dm->dmxSheetSizeSetting = 1;
        pszFormName = TEXT("Letter");
        dm->dmxUnits = kDISTANCE_INCHES;
    }

    dm->dmxShowPaperTypes = 0xFFFF;
    WstrCopy(pub.dmFormName, CCHFORMNAME, pszFormName);
    pub.dmScale = 100;
    pub.dmCopies = 1;
    memcpy(&dm->dmxSignature, DRIVER_SIGNATURE_TEXT, sizeof(dm->dmxSignature));
    dm->dmxBannerPage = 1;
    dm->dmxReservedSource = 7;
    dm->dmxUserMediaCategory = 4;
    dm->dmxReservedFlag = 1;
    dm->dmxReservedRevision = 28;

    dm->dmxNumRolls = kMAX_ROLLS;
    for (int i = 0; i < kMAX_ROLLS; i++) {
        dm->dmxRollStatus[i] = 1;
        dm->dmxRollSize[i] = 8;
        dm->dmxRollType[i] = 0;
    }
    for (int i = 0; i < 128; i++) {
        dm->dmxTableA[i] = 100;
        dm->dmxTableB[i] = 5;
    }

    // Job settings.
    dm->dmxRenderFlag1 = 0;
    dm->dmxFinishing = 0;
    dm->dmxPriority = 5;
    dm->dmxSinglePageJob = 0;
    dm->dmxMismatch = 0;
    dm->dmxLabel = 1;
    dm->dmxLabelPointSize = 18;
    dm->dmxLabelDensity = 100;
    dm->dmxLabelAngle = 90;
    dm->dmxLabelFontFamily = 0;
    dm->dmxLabelPlacementX = 4;
    dm->dmxLabelOffsetX = TVOFixed(0);
    dm->dmxLabelPlacementY = 8;
    dm->dmxLabelOffsetY = TVOFixed(0);

    for (TVOFixed& margin : dm->dmxUnprintableMargin)
        margin = TVOFixed(0.2);
    dm->dmxPlacementX = 0;
    dm->dmxPlacementOffsetX = TVOFixed(0.0);
    dm->dmxPlacementY = 8;
    dm->dmxPlacementOffsetY = TVOFixed(0.0);

    // Graphics and rendering.
    dm->dmxMediaType = 0;
    dm->dmxMirrorX = 0;
    dm->dmxMirrorY = 0;
    dm->dmxGraphicsFlag = 1;
    dm->dmxRotation = 4;
    dm->dmxScalingMode = 0;
    dm->dmxScaleToPaper = 1;
    dm->dmxScalePercent = 100;
    dm->dmxRasterImageScaling = 1;
    dm->dmxQualityMode = 1;
    dm->dmxRenderMode = 0;
    dm->dmxGraphicsList = 0;
    dm->dmxRenderLevel1 = 0;
    dm->dmxRenderLevel2 = 0;
    dm->dmxVector = 0;
    dm->dmxRasterMethod = 0;
    dm->dmxRenderFlag2 = 0;
    dm->dmxReservedRender = 0;
    dm->dmxFLGrayscaleRendering = 0;
    dm->dmxRenderValue1 = 7;
    dm->dmxRenderValue2 = 1;
    dm->dmxReservedOwner = 0;
    dm->dmxUserSpecifiedOwner = 0;

    // Stamp, finishing and nesting.
    dm->dmxStamp = 1;
    dm->dmxStampScale = 100;
    dm->dmxStampPlacementX = 2;
    dm->dmxStampOffsetX = TVOFixed(0);
    dm->dmxStampPlacementY = 2;
    dm->dmxStampOffsetY = TVOFixed(0);
    dm->dmxStampRotation = 0;
    dm->dmxStampOption = 0;
    dm->dmxFinishProgram = 0;
    dm->dmxFinishFlags[0] = 1;
    dm->dmxFinishFlags[1] = 1;
    dm->dmxFinishFlags[2] = 0;
    dm->dmxFinishFlags[3] = 1;
    dm->dmxFinishOutputBin = 0;
    dm->dmxFinishFoldOption = 0;
    dm->dmxFinishOption = 0;
    dm->dmxPlotNest = 0;
    dm->dmxPlotNestMargin = 0;

    dm->dmxAccountingEnable = 0;
    dm->dmxAccountingMode = 1;
    dm->dmxRememberAccount = 0;
    dm->dmxAccount = 0;
    dm->dmxSubAccount = 0;

    dm->dmxFirmwareRevision = 28;

    // A name too long for the field fails the look-up and leaves the field empty.
    DWORD cchUserName = 64;
    GetUserNameW(dm->dmxUserName, &cchUserName);

    pub.dmPaperWidth = 2159;
    dm->dmxPaperWidth = TVOFixed(2159);
    pub.dmPaperLength = 2794;
    dm->dmxPaperLength = TVOFixed(2794);

    if (PortTestSeen(*snapshot))
        dm->dmxBiDi = QLMPortIsBiDi(*snapshot);
    dm->dmxRefreshOnOpen = 0;
    dm->dmxRenderList = 0;
    return 1;
}

namespace {

// Whether the port list holds the port (compared without regard to case) with the monitor.
BOOL PortHasMonitor(QLMPrinterSnapshot& snapshot, LPCWSTR port, LPCWSTR monitor,
                    LPCWSTR pszAllocationFailure)
{
    DWORD cPorts = 0;
    const PORT_INFO_2W* pInfo = snapshot.Ports(&cPorts, pszAllocationFailure);
    if (!pInfo)
        return 0;
    for (DWORD i = 0; i < cPorts; i++) {
        if (port && pInfo[i].pPortName && WstrICmp(pInfo[i].pPortName, port) == 0)
            return pInfo[i].pMonitorName && WstrICmp(pInfo[i].pMonitorName, monitor) == 0;
    }
    return 0;
}

} // namespace

BOOL QLMPortIsStdTCPIP(QLMPrinterSnapshot& snapshot, LPCWSTR port)
{
    QLM_TRACE_SCOPE(TEXT("QLMPortIsStdTCPIP"), g_bTraceQLMPrinterFunctions);
    return PortHasMonitor(snapshot, port, TEXT("TCPMON.DLL"),
                          TEXT("failed allocating PORT_INFO_2 in QLMPortIsStdTCPIP"));
}

BOOL QLMPortIsStdTCPIP(LPCWSTR port)
{
    QLMPrinterSnapshot snapshot(nullptr);
    return QLMPortIsStdTCPIP(snapshot, port);
}

BOOL QLMPortIsTVONetPort(QLMPrinterSnapshot& snapshot, LPCWSTR port)
{
    QLM_TRACE_SCOPE(TEXT("QLMPortIsTVONetPort"), g_bTraceQLMPrinterFunctions);
    return PortHasMonitor(snapshot, port, TEXT("TVO Net Port"),
                          TEXT("failed allocating PORT_INFO_2 in QLMPortIsTVONetPort"));
}

BOOL QLMPortIsTVONetPort(LPCWSTR port)
{
    QLMPrinterSnapshot snapshot(nullptr);
    return QLMPortIsTVONetPort(snapshot, port);
}

BOOL QLMPortIsBiDi(QLMPrinterSnapshot& snapshot)
{
    QLM_TRACE_SCOPE(TEXT("QLMPortIsBiDi"), g_bTraceQLMPrinterFunctions);
    if (!snapshot.Printer()) {
        Trace(TEXT("Port is not bidi because hPrinter==NULL"));
        return 0;
    }
    const PRINTER_INFO_2W* pInfo =
        snapshot.PrinterInfo(TEXT("failed allocating PRINTER_INFO_2 in QLMPortIsBiDi"));
    if (!pInfo)
        return 0;
    // The monitor alone decides; whether the printer answers shows when it is asked.
    return pInfo->pPortName && (QLMPortIsStdTCPIP(snapshot, pInfo->pPortName) ||
                                QLMPortIsTVONetPort(snapshot, pInfo->pPortName));
}

BOOL QLMPortIsBiDi(HANDLE hPrinter)
{
    QLMPrinterSnapshot snapshot(hPrinter);
    return QLMPortIsBiDi(snapshot);
}
