// TVODevMode: fetching the queue's stored record, merging a caller's record, and repairing what
// a merge leaves invalid.
#include "tvodm.h"

#include "../foundation/qlmtrace.h"
#include "../foundation/qlmutils.h"
#include "../foundation/wstr.h"
#include "tvomodels.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

BOOL TraceDevMode()
{
    return g_bTraceTVODevMode;
}

// The bytes a record declares it holds.
DWORD DeclaredSize(const DEVMODEW* pdm)
{
    return static_cast<DWORD>(pdm->dmSize) + pdm->dmDriverExtra;
}

// Whether pdm carries this driver's identity. The signature lies at its place in our layout
// and is read only when the record says it reaches that far.
bool HasOwnIdentity(const DEVMODEW* pdm)
{
    if (pdm->dmSpecVersion != TVO_SPEC_VERSION || pdm->dmDriverVersion != TVO_DRIVER_VERSION)
        return false;
    if (DeclaredSize(pdm) < offsetof(DEVMODEEX, dmxSignature) + sizeof(DWORD))
        return false;
    DWORD dwSignature;
    memcpy(&dwSignature, reinterpret_cast<const BYTE*>(pdm) + offsetof(DEVMODEEX, dmxSignature),
           sizeof(dwSignature));
    return dwSignature == DRIVER_SIGNATURE;
}

// What a block from the spooler holds from p on: a stored record is never read past its block,
// whatever its sizes claim.
DWORD RoomInBlock(const void* pBlock, const void* p)
{
    const BYTE* pBegin = static_cast<const BYTE*>(pBlock);
    const BYTE* pAt = static_cast<const BYTE*>(p);
    SIZE_T cbBlock = GlobalSize(const_cast<void*>(pBlock));
    if (pAt < pBegin || pAt >= pBegin + cbBlock)
        return kDEVMODEEX_SIZE;
    return static_cast<DWORD>(std::min<SIZE_T>(pBegin + cbBlock - pAt, kDEVMODEEX_SIZE));
}

DEVMODEEX* NewRecord()
{
    return static_cast<DEVMODEEX*>(operator new(sizeof(DEVMODEEX), std::nothrow));
}

// Whether cbPrivate bytes of pdm behind a 220-byte public part hold anything but what a fresh
// scratch record holds there. The scratch record is cleared over its first 13264 bytes only;
// its tail keeps what a fresh allocation holds, the 0xCD fill of a debug heap, so a full-size
// comparison practically always finds a difference and the whole record is taken.
bool PrivatePartDiffers(const DEVMODEW* pdm, DWORD cbPrivate)
{
    DEVMODEEX* pScratch = NewRecord();
    if (!pScratch)
        return true;
    memset(static_cast<void*>(pScratch), 0xCD, sizeof(DEVMODEEX));
    memset(static_cast<void*>(pScratch), 0, kDEVMODEEX_DRIVER_EXTRA);
    bool bDiffers =
        memcmp(reinterpret_cast<const BYTE*>(pdm) + sizeof(DEVMODEW),
               reinterpret_cast<const BYTE*>(pScratch) + sizeof(DEVMODEW), cbPrivate) != 0;
    operator delete(pScratch);
    return bDiffers;
}

// Stores info, which carries our record, as the queue's; what the call holds of the queue
// follows.
void SaveRecord(QLMPrinterSnapshot& snapshot, PRINTER_INFO_2W& info)
{
    if (SetPrinterW(snapshot.Printer(), 2, reinterpret_cast<LPBYTE>(&info), 0))
        snapshot.PrinterStored(info);
}

// Copies szDevName into dmDeviceName as wcsncpy does: at most 32 characters.
void SetDeviceName(DEVMODEEX* pdm, LPCWSTR szDevName)
{
    if (szDevName)
        WstrNCopy(pdm->dmPublic.dmDeviceName, szDevName, CCHDEVICENAME);
}

} // namespace

void TVODevMode::getPrinterData(HANDLE hPrinter)
{
    QLM_TRACE_SCOPE(TEXT("TVODevMode::getPrinterData"), TraceDevMode());
    if (m_bGOTprinterDataAlready)
        return;
    m_bGOTprinterDataAlready = TRUE;
    UseSnapshot snapshot(*this, hPrinter);
    if (!PortTestSeen(*snapshot))
        return;
    m_lpDM->dmxBiDi = QLMPortIsBiDi(*snapshot);
    if (m_lpDM->dmxBiDi == 0)
        m_lpDM->dmxAccountingMode = 1;
}

int TVODevMode::getDeviceMode(HANDLE hPrinter, LPCWSTR szPort, LPCWSTR szDevName, LPCWSTR szProfile)
{
    QLM_TRACE_SCOPE(TEXT("TVODevMode::getDeviceMode"), TraceDevMode());
    Trace(TEXT("hPrinter=%p, szPort=%s, szDevName=%s, szProfile=%s"), hPrinter,
          szPort ? szPort : TEXT("(null)"), szDevName ? szDevName : TEXT("(null)"),
          szProfile ? szProfile : TEXT("(null)"));

    // One fetch of the queue's information serves the record, the defaults and the port test.
    UseSnapshot snapshot(*this, hPrinter);
    // Set when the queue has no record at all: only then is the result saved.
    BOOL bNeedToSaveDevmode = FALSE;
    DWORD dwData = 0;
    const PRINTER_INFO_2W* pStored = snapshot->PrinterInfo();
    // What a save hands the spooler: the queue's information with our record in it.
    PRINTER_INFO_2W info = {};
    if (pStored) {
        info = *pStored;
        dwData = kDEVMODEEX_SIZE;
        if (!info.pDevMode) {
            bNeedToSaveDevmode = TRUE;
            info.pDevMode = &m_lpDM->dmPublic;
        } else {
            // The whole record when its private part has our size, else its public part; never
            // more than the stored record says it holds.
            DWORD cbCopy = info.pDevMode->dmDriverExtra == kDEVMODEEX_DRIVER_EXTRA
                               ? kDEVMODEEX_SIZE
                               : sizeof(DEVMODEW);
            cbCopy = std::min(cbCopy, DeclaredSize(info.pDevMode));
            cbCopy = std::min(cbCopy, RoomInBlock(pStored, info.pDevMode));
            memcpy(static_cast<void*>(m_lpDM), info.pDevMode, cbCopy);
            m_lpDM->dmPublic.dmSize = sizeof(DEVMODEW);
        }
    }

    const DEVMODEW& pub = m_lpDM->dmPublic;
    BOOL bOurs = dwData == kDEVMODEEX_SIZE && pub.dmSpecVersion == TVO_SPEC_VERSION &&
                 pub.dmSize == sizeof(DEVMODEW) && m_lpDM->dmxSignature == DRIVER_SIGNATURE &&
                 pub.dmDriverVersion == TVO_DRIVER_VERSION &&
                 pub.dmDriverExtra == kDEVMODEEX_DRIVER_EXTRA;
    if (bOurs) {
        m_lpDM->dmPublic.dmFields = kTVO_DM_FIELDS;
        m_lpDM->dmPublic.dmColor = 1;
        getPrinterData(hPrinter);
        SetDeviceName(m_lpDM, szDevName);
        if (bNeedToSaveDevmode)
            SaveRecord(*snapshot, info);
        return 1;
    }

    Trace(TEXT("Not our Devmode"));
    // An older record of ours lands here too: only its public part survives.
    DEVMODEEX* pForeign = nullptr;
    if (dwData != 0) {
        pForeign = NewRecord();
        if (pForeign) {
            memset(static_cast<void*>(pForeign), 0, sizeof(DEVMODEEX));
            memcpy(static_cast<void*>(pForeign), m_lpDM, std::min<DWORD>(dwData, sizeof(DEVMODEW)));
        }
    }
    setDefaults(hPrinter);
    if (dwData != 0) {
        // The queue's model, as its configuration would decide it from the driver name.
        if (pForeign)
            modifyDeviceMode(hPrinter, &pForeign->dmPublic,
                             TVOFindPrinterModel(QLMGetDriverName(*snapshot)));
        m_lpDM->dmPublic.dmColor = 1;
        operator delete(pForeign);
    }
    getPrinterData(hPrinter);
    SetDeviceName(m_lpDM, szDevName);
    if (pStored && bNeedToSaveDevmode) {
        info.pDevMode = &m_lpDM->dmPublic;
        SaveRecord(*snapshot, info);
    }
    return 1;
}

void TVODevMode::modifyDeviceMode(HANDLE hPrinter, const DEVMODEW* pdm, DWORD model)
{
    QLM_TRACE_SCOPE(TEXT("TVODevMode::modifyDeviceMode"), TraceDevMode());
    Trace(TEXT("hPrinter=%p, pdm=%p, model=%u"), hPrinter, pdm, model);
    if (!pdm) {
        ASSERT(pdm);
        return;
    }
    DEVMODEEX* pBackup = NewRecord();
    if (!pBackup) {
        ASSERT(pdm);
        return;
    }
    memcpy(static_cast<void*>(pBackup), m_lpDM, sizeof(DEVMODEEX));

    BYTE* pTarget = reinterpret_cast<BYTE*>(m_lpDM);
    const BYTE* pSource = reinterpret_cast<const BYTE*>(pdm);
    const DWORD cbPublic = sizeof(DEVMODEW);
    const WORD dmSize = pdm->dmSize;
    const WORD dmDriverExtra = pdm->dmDriverExtra;
    const bool bOwnIdentity = HasOwnIdentity(pdm);
    // Every copy below stays within dmSize + dmDriverExtra of pdm.
    if (bOwnIdentity && dmSize == cbPublic && dmDriverExtra == kDEVMODEEX_DRIVER_EXTRA) {
        memcpy(pTarget, pSource, kDEVMODEEX_SIZE);
    } else if (bOwnIdentity && dmSize == cbPublic && dmDriverExtra == kDEVMODEEX1_DRIVER_EXTRA) {
        memcpy(pTarget, pSource, kDEVMODEEX1_SIZE);
    } else if (bOwnIdentity && (dmDriverExtra == kDEVMODEEX_DRIVER_EXTRA ||
                                dmDriverExtra == kDEVMODEEX1_DRIVER_EXTRA)) {
        if (dmSize < cbPublic) {
            // A shorter public part: the private part follows it directly.
            memcpy(pTarget, pSource, dmSize);
            memcpy(pTarget + cbPublic, pSource + dmSize, dmDriverExtra);
        } else {
            // A longer public part. The private part is looked for at offset 220 all the same.
            memcpy(pTarget, pSource,
                   PrivatePartDiffers(pdm, dmDriverExtra) ? cbPublic + dmDriverExtra : cbPublic);
        }
    } else {
        memcpy(pTarget, pSource, std::min<DWORD>(dmSize, cbPublic));
    }

    DEVMODEW& pub = m_lpDM->dmPublic;
    pub.dmDriverVersion = TVO_DRIVER_VERSION;
    pub.dmSpecVersion = TVO_SPEC_VERSION;
    pub.dmSize = cbPublic;
    pub.dmDriverExtra = kDEVMODEEX_DRIVER_EXTRA;
    m_lpDM->dmxSignature = DRIVER_SIGNATURE;
    m_lpDM->dmxReservedRevision = 28;
    pub.dmFields = kTVO_DM_FIELDS;
    pub.dmColor = 1;

    short paper = convertDMPaperSize(pub.dmPaperSize);
    if (paper != 119) {
        pub.dmPaperSize = paper;
        m_lpDM->dmxSheetSizeSetting = static_cast<WORD>(paper);
    } else {
        pub.dmPaperSize = pBackup->dmPublic.dmPaperSize;
        m_lpDM->dmxSheetSizeSetting = pBackup->dmxSheetSizeSetting;
    }
    if (pub.dmOrientation != DMORIENT_PORTRAIT && pub.dmOrientation != DMORIENT_LANDSCAPE)
        pub.dmOrientation = pBackup->dmPublic.dmOrientation;
    if (pub.dmScale == 0)
        pub.dmScale = 100;
    if (pub.dmCopies == 0)
        pub.dmCopies = 1;

    // The model's own list of resolutions is enforced by the rendering tab, not here.
    short quality = pub.dmPrintQuality;
    if (quality < 1 || (quality != 200 && quality != 300 && quality != 400 && quality != 600))
        pub.dmPrintQuality = IsHighResolutionModel(model) ? 600 : 400;
    pub.dmYResolution = pub.dmPrintQuality;

    if (m_lpDM->dmxSheetSizeSetting == PAPER_CUSTOM &&
        (pub.dmPaperWidth == 0 || pub.dmPaperLength == 0)) {
        pub.dmPaperWidth = 2159;
        pub.dmPaperLength = 2794;
        m_lpDM->dmxPaperWidth = TVOFixed(2159);
        m_lpDM->dmxPaperLength = TVOFixed(2794);
    }

    // The source comes from the caller's record, not from the merge; a record too short to
    // hold the field keeps the merged value.
    short source = pub.dmDefaultSource;
    if (DeclaredSize(pdm) >= offsetof(DEVMODEW, dmDefaultSource) + sizeof(short))
        source = pdm->dmDefaultSource;
    pub.dmDefaultSource = convertDMDefaultSource(source);

    if (m_lpDM->dmxBiDi == 0)
        m_lpDM->dmxRefreshOnOpen = 0;
    DWORD cchUserName = 64;
    GetUserNameW(m_lpDM->dmxUserName, &cchUserName);
    operator delete(pBackup);
}
