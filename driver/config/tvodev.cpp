// TVODevice: capability answers, first those that need no record, then those read from one.
#include "tvodev.h"

#include "../devmode/tvodm.h"
#include "../foundation/qlmsnapshot.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/qlmswitches.h"
#include "../foundation/qlmutils.h"

#include <cstring>
#include <new>

namespace {

BOOL TraceDevice()
{
    return g_bTraceTVODevice | g_bTraceDeviceCapabilities;
}

// Escape names of the rendering half: every entry says "none" here.
const WORD kEscapeTable[62] = {
    0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,
    0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,
    0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,
    0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,
    0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,
    0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,
};

const char kPersonality[] = "HP-GL/2";
// AutoCAD's name for this driver's own plot description, padded to 34 bytes.
const char kAutoCADDriverId[34] = "IPTVOgdi7";

DWORD DeclaredSize(const DEVMODEW* pdm)
{
    return static_cast<DWORD>(pdm->dmSize) + pdm->dmDriverExtra;
}

} // namespace

BOOL QLMIsAutoCADHardcopyPresent()
{
    HKEY hKey = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("SOFTWARE\\Autodesk\\Hardcopy"), 0, KEY_QUERY_VALUE,
                      &hKey) != ERROR_SUCCESS)
        return FALSE;
    WCHAR szName[600];
    DWORD cchName = 600;
    DWORD dwType = 0;
    BYTE data[4] = {};
    DWORD cbData = sizeof(data);
    // The key is not closed on any path: that is how AutoCAD's hosts have always seen it.
    if (RegEnumValueW(hKey, 0, szName, &cchName, nullptr, &dwType, data, &cbData) != ERROR_SUCCESS)
        return FALSE;
    return data[0] >= 7;
}

TVODevice::TVODevice()
    : m_pConfig(nullptr), m_pEscapeTable(nullptr), m_bReadDebugSwitches(FALSE), m_dwSpare1(0),
      m_dwSpare2(0), lpstrDocName(nullptr), m_PrinterModel(0)
{
    memset(static_cast<void*>(&m_DevMode), 0, sizeof(m_DevMode));
    lpstrDocName = new (std::nothrow) BYTE[128]();
}

TVODevice::~TVODevice()
{
    delete m_pConfig;
    delete[] lpstrDocName;
}

void TVODevice::setDeviceConfiguration(HANDLE hPrinter)
{
    QLMPrinterSnapshot snapshot(hPrinter);
    setDeviceConfiguration(snapshot);
}

void TVODevice::setDeviceConfiguration(QLMPrinterSnapshot& snapshot)
{
    QLM_TRACE_SCOPE(TEXT("TVODevice::setDeviceConfiguration"), TraceDevice());
    if (!m_bReadDebugSwitches) {
        ReadAllDebugSwitches(snapshot);
        m_bReadDebugSwitches = TRUE;
    }
    LPCWSTR pszDriverName = QLMGetDriverName(snapshot);
    if (!pszDriverName)
        pszDriverName = TEXT("default");
    m_pConfig = new (std::nothrow) TVOPrinterConfiguration(pszDriverName);
    ASSERT(m_pConfig);
    if (!m_pConfig)
        return;
    m_pConfig->setPrinterHandle(snapshot.Printer());
    m_PrinterModel = m_pConfig->m_PrinterModel;
    m_pEscapeTable = kEscapeTable;
    m_pConfig->getUserForms(snapshot);
}

LONG TVODevice::deviceCapabilities(HANDLE hPrinter, LPCWSTR pDeviceName, WORD wIndex, void* pOutput,
                                   DEVMODEW* pDevMode)
{
    QLMPrinterSnapshot snapshot(hPrinter);
    return deviceCapabilities(snapshot, pDeviceName, wIndex, pOutput, pDevMode);
}

LONG TVODevice::deviceCapabilities(QLMPrinterSnapshot& snapshot, LPCWSTR pDeviceName, WORD wIndex,
                                   void* pOutput, DEVMODEW* pDevMode)
{
    QLM_TRACE_SCOPE(TEXT("TVODevice::deviceCapabilities"), TraceDevice());
    HANDLE hPrinter = snapshot.Printer();
    Trace(TEXT("wIndex=%u, pOutput=%p, pDevMode=%p"), wIndex, pOutput, pDevMode);
    bool bDone = false;
    LONG lAnswer = answerWithoutRecord(wIndex, pOutput, pDevMode, &bDone);
    if (bDone)
        return lAnswer;

    // The second stage reads a record: the caller's, or the queue's default.
    DEVMODEEX dmLocal;
    if (!pDevMode) {
        TVODevMode devMode(hPrinter, &snapshot);
        if (!devMode.m_lpDM || !devMode.getDeviceMode(hPrinter, pDeviceName, TEXT(""), nullptr))
            return 0;
        memcpy(static_cast<void*>(&dmLocal), devMode.m_lpDM, sizeof(DEVMODEEX));
        return answerFromRecord(wIndex, pOutput, &dmLocal);
    }
    DWORD cbDeclared = DeclaredSize(pDevMode);
    if (cbDeclared >= sizeof(DEVMODEEX))
        return answerFromRecord(wIndex, pOutput, reinterpret_cast<DEVMODEEX*>(pDevMode));

    // A record shorter than ours is read as if the rest were zero, and what the answer changes
    // goes back only as far as the record reaches.
    memset(static_cast<void*>(&dmLocal), 0, sizeof(dmLocal));
    memcpy(static_cast<void*>(&dmLocal), pDevMode, cbDeclared);
    lAnswer = answerFromRecord(wIndex, pOutput, &dmLocal);
    memcpy(pDevMode, &dmLocal, cbDeclared);
    return lAnswer;
}

LONG TVODevice::answerWithoutRecord(WORD wIndex, void* pOutput, const DEVMODEW* pDevMode,
                                    bool* pbDone)
{
    *pbDone = true;
    switch (wIndex) {
    case DC_DUPLEX:
    case DC_STAPLE:
    case DC_COLORDEVICE:
        return 0;
    case DC_SIZE:
        return sizeof(DEVMODEW);
    case DC_EXTRA:
        return kDEVMODEEX_DRIVER_EXTRA;
    case DC_VERSION:
        return TVO_SPEC_VERSION;
    case DC_DRIVER:
        return TVO_DRIVER_VERSION;
    case DC_ORIENTATION:
        return 90;
    case DC_COPIES:
        return 999;
    case DC_COLLATE:
        return 1;
    case DC_PERSONALITY:
        if (pOutput) {
            WCHAR* pszOut = static_cast<WCHAR*>(pOutput);
            for (size_t i = 0; i < sizeof(kPersonality); i++)
                pszOut[i] = static_cast<WCHAR>(kPersonality[i]);
        }
        return 1;
    case DC_IDSYSPRN:
        // With this switch set AutoCAD falls back to its general driver.
        if (g_bDontBeOptimized)
            return -1;
        if (QLMIsAutoCADHardcopyPresent() && pOutput) {
            memcpy(pOutput, kAutoCADDriverId, sizeof(kAutoCADDriverId));
            return sizeof(kAutoCADDriverId);
        }
        return -1;
    case DC_MMINCH: {
        if (!pDevMode || pDevMode->dmDriverExtra != kDEVMODEEX_DRIVER_EXTRA)
            return kBD_INCHES;
        // The units lie in the private part, read only when the record reaches them.
        if (DeclaredSize(pDevMode) < offsetof(DEVMODEEX, dmxUnits) + sizeof(DWORD))
            return kBD_INCHES;
        DWORD dwUnits;
        memcpy(&dwUnits, reinterpret_cast<const BYTE*>(pDevMode) + offsetof(DEVMODEEX, dmxUnits),
               sizeof(dwUnits));
        return dwUnits == kDISTANCE_MM ? kBD_MM : kBD_INCHES;
    }
    default:
        *pbDone = false;
        return 0;
    }
}

LONG TVODevice::answerFromRecord(WORD wIndex, void* pOutput, DEVMODEEX* pdm)
{
    if (!m_pConfig)
        return -1;
    switch (wIndex) {
    case DC_FIELDS:
        return static_cast<LONG>(pdm->dmPublic.dmFields);
    case DC_PAPERS:
    case DC_PAPERSIZE:
    case DC_PAPERNAMES:
        return m_pConfig->getPaperInfo(pdm, pOutput, wIndex);
    case DC_MINEXTENT:
    case DC_MAXEXTENT:
        return static_cast<LONG>(m_pConfig->calcMinMaxExtent(pdm, pOutput, wIndex));
    case DC_BINS:
    case DC_BINNAMES:
        return m_pConfig->getBinInfo(pdm, pOutput, wIndex);
    case DC_ENUMRESOLUTIONS:
        return m_pConfig->getResolutionInfo(pdm, pOutput, wIndex);
    case DC_BINADJUST:
        return 256;
    default:
        Trace(TEXT("Out DeviceCapabilities Unknown %d"), wIndex);
        return -1;
    }
}
