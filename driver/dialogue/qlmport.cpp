// The printer's address, derived from its port name or from the map in the printer data.
#include "qlmport.h"

#include "../foundation/qlmsnapshot.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/qlmutils.h"
#include "../foundation/wstr.h"

#include <cstdlib>
#include <cstring>

namespace {

// The text results, one set per thread: the spooler's threads ask for different queues at once.
thread_local char s_szPortName[kQLM_PORT_CB];
thread_local WCHAR s_szPortNameU[kQLM_PORT_CB];
thread_local char s_szAddress[kQLM_ADDRESS_CB];

// "QLMMapPort:" and a port name.
constexpr size_t kVALUE_NAME_CCH = 11 + MAX_PATH;

BOOL TracePort()
{
    return g_bTraceQLMUtils | g_bTraceQLMPrinterFunctions;
}

// Copies text into the address buffer, cut to fit, and returns the buffer.
char* SetAddress(const char* text, size_t cch)
{
    if (cch >= kQLM_ADDRESS_CB)
        cch = kQLM_ADDRESS_CB - 1;
    std::memcpy(s_szAddress, text, cch);
    s_szAddress[cch] = 0;
    return s_szAddress;
}

// Reads the queue's PRINTER_INFO_2; the caller frees it with GlobalFree.
PRINTER_INFO_2W* GetPrinterInfo2(HANDLE hPrinter)
{
    if (!hPrinter) {
        ASSERT(hPrinter);
        Trace(TEXT("Can't get port name because m_pConfig->m_hPrinter==NULL"));
        return nullptr;
    }
    return reinterpret_cast<PRINTER_INFO_2W*>(QLMGetPrinterInfo(hPrinter, 2));
}

} // namespace

size_t QLMToNarrow(char* dst, size_t cbDst, const WCHAR* src)
{
    if (cbDst == 0)
        return 0;
    size_t n = 0;
    for (; src && src[n] && n + 1 < cbDst; n++)
        dst[n] = src[n] < 0x100 ? char(src[n]) : '?';
    dst[n] = 0;
    return n;
}

BOOL QLMIsFirstTimeEver(HANDLE hPrinter)
{
    QLMPrinterSnapshot snapshot(hPrinter);
    return QLMIsFirstTimeEver(snapshot);
}

BOOL QLMIsFirstTimeEver(QLMPrinterSnapshot& snapshot)
{
    QLM_TRACE_SCOPE(TEXT("QLMIsFirstTimeEver"), TracePort());
    HANDLE hPrinter = snapshot.Printer();
    if (!hPrinter) {
        ASSERT(hPrinter);
        return 0;
    }
    DWORD dwValue = 0;
    return QLMGetUserDWORD(snapshot, TEXT("QLMIsFirstTime"), &dwValue) != ERROR_SUCCESS ? 1 : 0;
}

WCHAR* QLMGetPortNameU(HANDLE hPrinter)
{
    QLM_TRACE_SCOPE(TEXT("QLMGetPortNameU"), TracePort());
    PRINTER_INFO_2W* pInfo = GetPrinterInfo2(hPrinter);
    if (!pInfo)
        return nullptr;
    WCHAR* pResult = nullptr;
    if (pInfo->pPortName) {
        WstrCopy(s_szPortNameU, kQLM_PORT_CB, pInfo->pPortName);
        pResult = s_szPortNameU;
    }
    GlobalFree(pInfo);
    return pResult;
}

// The 8-bit form of the wide name, cut where the wide one is.
char* QLMGetPortName(HANDLE hPrinter)
{
    QLM_TRACE_SCOPE(TEXT("QLMGetPortName"), TracePort());
    const WCHAR* pszPortName = QLMGetPortNameU(hPrinter);
    if (!pszPortName)
        return nullptr;
    std::memset(s_szPortName, 0, sizeof s_szPortName);
    QLMToNarrow(s_szPortName, sizeof s_szPortName, pszPortName);
    return s_szPortName;
}

void QLMGetIPAddressMap(HANDLE hPrinter, LPCWSTR pPortName, char* IPAddress, size_t cbAddress)
{
    QLM_TRACE_SCOPE(TEXT("QLMGetIPAddressMap"), TracePort());
    if (!IPAddress) {
        ASSERT(IPAddress);
        Trace(TEXT("failing call because IPAddress == NULL"));
        return;
    }
    WCHAR szValueName[kVALUE_NAME_CCH];
    WstrPrintf(szValueName, kVALUE_NAME_CCH, TEXT("QLMMapPort:%s"),
               pPortName ? pPortName : TEXT(""));
    // One character more than is read, so that a value without its terminator still ends.
    WCHAR szAddress[kQLM_MAP_VALUE_CB / sizeof(WCHAR) + 1];
    std::memset(szAddress, 0, sizeof szAddress);
    DWORD dwType = 0, cbNeeded = 0;
    DWORD rc = GetPrinterDataW(hPrinter, szValueName, &dwType, reinterpret_cast<LPBYTE>(szAddress),
                               kQLM_MAP_VALUE_CB, &cbNeeded);
    if (rc != ERROR_SUCCESS)
        return;
    QLMToNarrow(IPAddress, cbAddress, szAddress);
}

DWORD QLMSetIPAddressMap(HANDLE hPrinter, LPCWSTR pPortName, LPCWSTR pAddress)
{
    QLM_TRACE_SCOPE(TEXT("QLMSetIPAddressMap"), TracePort());
    if (pPortName != nullptr) {
        Trace(TEXT("failed because pPortName is NULL"));
        return ERROR_INVALID_PARAMETER;
    }
    if (pAddress != nullptr) {
        Trace(TEXT("failed because pAddress is NULL"));
        return ERROR_INVALID_PARAMETER;
    }
    WCHAR szValueName[kVALUE_NAME_CCH];
    WstrPrintf(szValueName, kVALUE_NAME_CCH, TEXT("QLMMapPort:%s"),
               pPortName ? pPortName : TEXT(""));
    DWORD rc = SetPrinterDataW(hPrinter, szValueName, REG_SZ,
                               reinterpret_cast<LPBYTE>(const_cast<LPWSTR>(pAddress)),
                               DWORD(2 * WstrLen(pAddress)));
    ASSERT(rc == 0L);
    return rc;
}

char* QLMGetIPAddressFromPort(HANDLE hPrinter, LPCWSTR pPortName)
{
    QLM_TRACE_SCOPE(TEXT("QLMGetIPAddressFromPort"), TracePort());
    std::memset(s_szAddress, 0, sizeof s_szAddress);
    QLMGetIPAddressMap(hPrinter, pPortName, s_szAddress, sizeof s_szAddress);
    if (s_szAddress[0])
        return s_szAddress;
    if (!pPortName)
        return nullptr;

    size_t cbName = WstrLen(pPortName) + 1;
    char* pPortNameANSI = static_cast<char*>(std::calloc(cbName, 1));
    if (!pPortNameANSI) {
        ASSERT(pPortNameANSI);
        Trace(TEXT("malloc failed in QLMGetIPAddressFromPort"));
        return nullptr;
    }
    size_t cch = QLMToNarrow(pPortNameANSI, cbName, pPortName);

    char* pResult;
    const char* pColon = std::strstr(pPortNameANSI, ":2000");
    if (cch >= 3 && (pPortNameANSI[0] == 'I' || pPortNameANSI[0] == 'i') &&
        (pPortNameANSI[1] == 'P' || pPortNameANSI[1] == 'p') && pPortNameANSI[2] == '_') {
        pResult = SetAddress(pPortNameANSI + 3, cch - 3);
    } else if (pColon) {
        pResult = SetAddress(pPortNameANSI, size_t(pColon - pPortNameANSI));
    } else {
        // Only a single digit counts, and only where its first occurrence ends the name.
        size_t cchKept = cch;
        for (int i = 1; i <= 9; i++) {
            char szSuffix[4] = {'_', char('0' + i), 0, 0};
            const char* pFound = std::strstr(pPortNameANSI, szSuffix);
            if (pFound && cch >= 2 && pFound == pPortNameANSI + cch - 2) {
                cchKept = cch - 2;
                break;
            }
        }
        pResult = SetAddress(pPortNameANSI, cchKept);
    }
    std::free(pPortNameANSI);
    return pResult;
}
