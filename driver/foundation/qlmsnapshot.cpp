// QLMPrinterSnapshot: each piece of a printer's spooler state fetched once per export call.
#include "qlmsnapshot.h"

#include "qlmtrace.h"
#include "wstr.h"

#include <cstring>

namespace {

// Room for the first enumeration of a key: the whole switch table, or 64 user forms with the
// other values of the driver's key, fit with room to spare. A larger key costs one more call.
constexpr DWORD kFIRST_ENUMERATION_CB = 16 * 1024;
// Room for the first enumeration of the ports.
constexpr DWORD kFIRST_PORTS_CB = 16 * 1024;
// A list that keeps growing between the calls of an enumeration is given up after this many.
constexpr int kENUMERATION_TRIES = 3;

// Upper case of an ASCII letter, as the registry folds value names.
WCHAR FoldName(WCHAR c)
{
    return (c >= 'a' && c <= 'z') ? static_cast<WCHAR>(c - ('a' - 'A')) : c;
}

// Whether an enumerated name (cbName bytes with its NUL, at any alignment: a name follows the
// data of the value before it) is pszName, without regard to case.
bool SameName(const BYTE* pName, DWORD cbName, LPCWSTR pszName, size_t cchName)
{
    if (cbName != (cchName + 1) * sizeof(WCHAR))
        return false;
    for (size_t i = 0; i < cchName; i++) {
        WCHAR c;
        memcpy(&c, pName + i * sizeof(WCHAR), sizeof(WCHAR));
        if (FoldName(c) != FoldName(pszName[i]))
            return false;
    }
    return true;
}

bool SamePointers(const PRINTER_INFO_2W& a, const PRINTER_INFO_2W& b)
{
    return a.pServerName == b.pServerName && a.pPrinterName == b.pPrinterName &&
           a.pShareName == b.pShareName && a.pPortName == b.pPortName &&
           a.pDriverName == b.pDriverName && a.pComment == b.pComment &&
           a.pLocation == b.pLocation && a.pDevMode == b.pDevMode && a.pSepFile == b.pSepFile &&
           a.pPrintProcessor == b.pPrintProcessor && a.pDatatype == b.pDatatype &&
           a.pParameters == b.pParameters && a.pSecurityDescriptor == b.pSecurityDescriptor;
}

} // namespace

LPBYTE QLMFetchPrinterInfo(HANDLE hPrinter, DWORD level, QLMFetchResult* pResult)
{
    DWORD cbNeeded = 0;
    if (GetPrinterW(hPrinter, level, nullptr, 0, &cbNeeded) ||
        GetLastError() != ERROR_INSUFFICIENT_BUFFER || cbNeeded == 0) {
        *pResult = kFETCH_NO_ANSWER;
        return nullptr;
    }
    LPBYTE pInfo = static_cast<LPBYTE>(GlobalAlloc(GPTR, cbNeeded));
    if (!pInfo) {
        *pResult = kFETCH_NO_MEMORY;
        return nullptr;
    }
    if (!GetPrinterW(hPrinter, level, pInfo, cbNeeded, &cbNeeded)) {
        GlobalFree(pInfo);
        *pResult = kFETCH_FAILED;
        return nullptr;
    }
    *pResult = kFETCH_DONE;
    return pInfo;
}

void QLMReportPrinterInfoFetch(QLMFetchResult result, const WCHAR* pszAllocationFailure)
{
    if (result == kFETCH_NO_MEMORY && pszAllocationFailure)
        Trace(TEXT("%s"), pszAllocationFailure);
    if (result == kFETCH_FAILED) {
        const BOOL bResult = FALSE;
        ASSERT(bResult);
    }
}

QLMPrinterSnapshot::QLMPrinterSnapshot(HANDLE hPrinter) : m_hPrinter(hPrinter) {}

QLMPrinterSnapshot::~QLMPrinterSnapshot()
{
    if (m_pInfo)
        GlobalFree(m_pInfo);
    if (m_pPorts)
        GlobalFree(m_pPorts);
    for (KeyValues& key : m_keys) {
        if (key.pBlock)
            GlobalFree(key.pBlock);
    }
}

const PRINTER_INFO_2W* QLMPrinterSnapshot::PrinterInfo(const WCHAR* pszAllocationFailure)
{
    if (!m_bInfoFetched || m_bInfoStale) {
        if (m_pInfo)
            GlobalFree(m_pInfo);
        m_pInfo = QLMFetchPrinterInfo(m_hPrinter, 2, &m_infoResult);
        m_dwInfoLastError = GetLastError();
        m_bInfoFetched = true;
        m_bInfoStale = false;
    } else {
        SetLastError(m_dwInfoLastError);
    }
    QLMReportPrinterInfoFetch(m_infoResult, pszAllocationFailure);
    return reinterpret_cast<const PRINTER_INFO_2W*>(m_pInfo);
}

void QLMPrinterSnapshot::PrinterStored(const PRINTER_INFO_2W& info)
{
    auto* pHeld = reinterpret_cast<PRINTER_INFO_2W*>(m_pInfo);
    if (pHeld && !m_bInfoStale && SamePointers(*pHeld, info)) {
        // Names, port and record are the ones held; the numbers are the ones just stored.
        memcpy(static_cast<void*>(pHeld), &info, sizeof(info));
        return;
    }
    m_bInfoStale = true;
}

const PORT_INFO_2W* QLMPrinterSnapshot::Ports(DWORD* pcPorts, const WCHAR* pszAllocationFailure)
{
    if (!m_bPortsFetched) {
        m_bPortsFetched = true;
        FetchPorts();
    } else {
        SetLastError(m_dwPortsLastError);
    }
    if (m_portsResult == kFETCH_NO_MEMORY && pszAllocationFailure)
        Trace(TEXT("%s"), pszAllocationFailure);
    *pcPorts = m_cPorts;
    return reinterpret_cast<const PORT_INFO_2W*>(m_pPorts);
}

void QLMPrinterSnapshot::FetchPorts()
{
    // A first buffer holds the ports of nearly any machine, so that one call usually does;
    // a longer list is asked again with the size the first call gave.
    DWORD cbBlock = kFIRST_PORTS_CB;
    DWORD cbNeeded = 0, cReturned = 0;
    for (int tries = 1;; tries++) {
        m_pPorts = static_cast<LPBYTE>(GlobalAlloc(GPTR, cbBlock));
        if (!m_pPorts) {
            m_portsResult = kFETCH_NO_MEMORY;
            break;
        }
        if (EnumPortsW(nullptr, 2, m_pPorts, cbBlock, &cbNeeded, &cReturned)) {
            m_cPorts = cReturned;
            m_portsResult = kFETCH_DONE;
            break;
        }
        GlobalFree(m_pPorts);
        m_pPorts = nullptr;
        m_portsResult = kFETCH_FAILED;
        if (GetLastError() != ERROR_INSUFFICIENT_BUFFER || cbNeeded <= cbBlock ||
            tries == kENUMERATION_TRIES)
            break;
        cbBlock = cbNeeded;
    }
    // The fetch asked for the size first, which leaves ERROR_INSUFFICIENT_BUFFER behind
    // whenever there is a port; later steps may trace the last error.
    m_dwPortsLastError = m_portsResult == kFETCH_DONE && cbNeeded ? DWORD(ERROR_INSUFFICIENT_BUFFER)
                                                                  : GetLastError();
    SetLastError(m_dwPortsLastError);
}

QLMPrinterSnapshot::KeyValues* QLMPrinterSnapshot::Values(LPCWSTR pszKey)
{
    // The steps name a key by the same text each time: a hundred switches, one comparison.
    for (KeyValues& key : m_keys) {
        if (key.pszAsked == pszKey && key.bLoaded)
            return &key;
    }
    // A key without a slot is read value by value, as the platform offers it.
    const size_t cchKey = WstrLen(pszKey);
    if (cchKey == 0 || cchKey >= sizeof(m_keys[0].szKey) / sizeof(WCHAR))
        return nullptr;
    KeyValues* pKey = nullptr;
    for (KeyValues& key : m_keys) {
        if (key.szKey[0] && WstrICmp(key.szKey, pszKey) == 0) {
            pKey = &key;
            break;
        }
        if (!key.szKey[0] && !pKey)
            pKey = &key;
    }
    if (!pKey)
        return nullptr;
    pKey->pszAsked = pszKey;
    if (pKey->bLoaded)
        return pKey;

    // The single reads this enumeration stands for leave the last error alone.
    const DWORD dwLastError = GetLastError();
    WstrCopy(pKey->szKey, sizeof(pKey->szKey) / sizeof(WCHAR), pszKey);
    pKey->bLoaded = true;
    pKey->count = 0;
    DWORD cbBlock = kFIRST_ENUMERATION_CB;
    for (int tries = 1;; tries++) {
        pKey->pBlock = static_cast<LPBYTE>(GlobalAlloc(GMEM_FIXED, cbBlock));
        if (!pKey->pBlock) {
            pKey->rc = ERROR_NOT_ENOUGH_MEMORY;
            break;
        }
        DWORD cbNeeded = 0, count = 0;
        pKey->rc = EnumPrinterDataExW(m_hPrinter, pszKey, pKey->pBlock, cbBlock, &cbNeeded, &count);
        if (pKey->rc == ERROR_SUCCESS) {
            pKey->count = count;
            break;
        }
        GlobalFree(pKey->pBlock);
        pKey->pBlock = nullptr;
        if (pKey->rc != ERROR_MORE_DATA || cbNeeded <= cbBlock || tries == kENUMERATION_TRIES)
            break;
        cbBlock = cbNeeded;
    }
    SetLastError(dwLastError);
    return pKey;
}

const PRINTER_ENUM_VALUESW* QLMPrinterSnapshot::Find(KeyValues* pKey, LPCWSTR pszValue) const
{
    if (!pKey->pBlock || !pszValue)
        return nullptr;
    const size_t cchValue = WstrLen(pszValue);
    const auto* pValues = reinterpret_cast<const PRINTER_ENUM_VALUESW*>(pKey->pBlock);
    for (DWORD i = 0; i < pKey->count; i++) {
        if (SameName(reinterpret_cast<const BYTE*>(pValues[i].pValueName), pValues[i].cbValueName,
                     pszValue, cchValue))
            return &pValues[i];
    }
    return nullptr;
}

DWORD QLMPrinterSnapshot::GetData(LPCWSTR pszKey, LPCWSTR pszValue, LPDWORD pType, LPBYTE pData,
                                  DWORD nSize, LPDWORD pcbNeeded)
{
    KeyValues* pKey = Values(pszKey);
    if (!pKey)
        return GetPrinterDataExW(m_hPrinter, pszKey, pszValue, pType, pData, nSize, pcbNeeded);
    if (pKey->rc != ERROR_SUCCESS)
        return pKey->rc;
    const PRINTER_ENUM_VALUESW* pValue = Find(pKey, pszValue);
    if (!pValue)
        return ERROR_FILE_NOT_FOUND;
    if (pType)
        *pType = pValue->dwType;
    *pcbNeeded = pValue->cbData;
    if (pValue->cbData > nSize)
        return ERROR_MORE_DATA;
    if (pValue->cbData)
        memcpy(pData, pValue->pData, pValue->cbData);
    return ERROR_SUCCESS;
}

bool QLMPrinterSnapshot::Holds(LPCWSTR pszKey, LPCWSTR pszValue, DWORD dwType, const BYTE* pData,
                               DWORD cbData)
{
    KeyValues* pKey = Values(pszKey);
    if (!pKey || pKey->rc != ERROR_SUCCESS)
        return false;
    const PRINTER_ENUM_VALUESW* pValue = Find(pKey, pszValue);
    return pValue && pValue->dwType == dwType && pValue->cbData == cbData &&
           (cbData == 0 || memcmp(pValue->pData, pData, cbData) == 0);
}

void QLMPrinterSnapshot::DataStored(LPCWSTR pszKey)
{
    for (KeyValues& key : m_keys) {
        if (key.szKey[0] && WstrICmp(key.szKey, pszKey) == 0) {
            if (key.pBlock)
                GlobalFree(key.pBlock);
            key = KeyValues();
        }
    }
}
