// The generic conversion of records between sizes and versions.
#include "tvodm_convert.h"

#include "devmodeex.h"

#include "../foundation/qlmtrace.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

const DRIVER_VERSION_INFO g_DriverVersionInfo = {0x0400, kDEVMODEEX_DRIVER_EXTRA, 0, 0};

namespace {

// The public part sizes of the three layouts the platform has had.
constexpr WORD kDEVMODE_SIZE_351 = 188;
constexpr WORD kDEVMODE_SIZE_400 = 212;
constexpr WORD kDEVMODE_SIZE_401 = 220;

} // namespace

WORD CheckDevmodeVersion(const DEVMODEW* pdm)
{
    switch (pdm->dmSize) {
    case kDEVMODE_SIZE_351:
        return 0x0320;
    case kDEVMODE_SIZE_400:
        return 0x0400;
    case kDEVMODE_SIZE_401:
        return 0x0401;
    default:
        return pdm->dmSpecVersion;
    }
}

LONG ConvertDevmode(const DEVMODEW* pdmIn, DEVMODEW* pdmOut)
{
    QLM_TRACE_SCOPE(TEXT("ConvertDevmode"), g_bTraceTVODevMode);
    if (!pdmIn || !pdmOut || !CheckDevmodeVersion(pdmIn) || !CheckDevmodeVersion(pdmOut))
        return -1;
    WORD wSpecVersion = CheckDevmodeVersion(pdmOut);
    WORD wDriverVersion = pdmOut->dmDriverVersion;
    WORD wSize = pdmOut->dmSize;
    WORD wDriverExtra = pdmOut->dmDriverExtra;

    DWORD cbPublic = std::min(wSize, pdmIn->dmSize);
    memmove(pdmOut, pdmIn, cbPublic);
    pdmOut->dmSpecVersion = wSpecVersion;
    pdmOut->dmDriverVersion = wDriverVersion;
    pdmOut->dmSize = wSize;
    pdmOut->dmDriverExtra = wDriverExtra;

    DWORD cbPrivate = std::min(wDriverExtra, pdmIn->dmDriverExtra);
    memmove(reinterpret_cast<BYTE*>(pdmOut) + wSize,
            reinterpret_cast<const BYTE*>(pdmIn) + pdmIn->dmSize, cbPrivate);
    return static_cast<LONG>(cbPublic + cbPrivate);
}

LONG CommonDrvConvertDevMode(LPCWSTR pPrinterName, const DEVMODEW* pdmIn, DEVMODEW* pdmOut,
                             PLONG pcbNeeded, DWORD fMode,
                             const DRIVER_VERSION_INFO* pDriverVersionInfo)
{
    QLM_TRACE_SCOPE(TEXT("CommonDrvConvertDevMode"), g_bTraceTVODevMode);
    Trace(TEXT("pPrinterName=%s, fMode=%u"), pPrinterName ? pPrinterName : TEXT("(null)"), fMode);
    if (!pcbNeeded) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return CDM_RESULT_FALSE;
    }
    switch (fMode) {
    case CDM_CONVERT: {
        // The output's own header names the form wanted; a block too small for the header
        // holds no form at all.
        if (!pdmOut || *pcbNeeded < static_cast<LONG>(offsetof(DEVMODEW, dmFields))) {
            SetLastError(ERROR_INVALID_PARAMETER);
            return CDM_RESULT_FALSE;
        }
        // The size asked for, taken before the copy: behind a public part shorter than the
        // header, the private part lands on the header's size fields.
        const LONG cbOut = static_cast<LONG>(pdmOut->dmSize) + pdmOut->dmDriverExtra;
        if (*pcbNeeded >= cbOut && ConvertDevmode(pdmIn, pdmOut) > 0) {
            *pcbNeeded = cbOut;
            return CDM_RESULT_TRUE;
        }
        SetLastError(ERROR_INVALID_PARAMETER);
        return CDM_RESULT_FALSE;
    }
    case CDM_CONVERT351: {
        LONG cbNeeded = pDriverVersionInfo->dmDriverExtra351 + kDEVMODE_SIZE_351;
        if (*pcbNeeded < cbNeeded || !pdmOut) {
            *pcbNeeded = cbNeeded;
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return CDM_RESULT_FALSE;
        }
        pdmOut->dmSpecVersion = 0x0320;
        pdmOut->dmSize = kDEVMODE_SIZE_351;
        pdmOut->dmDriverVersion = pDriverVersionInfo->dmDriverVersion351;
        pdmOut->dmDriverExtra = pDriverVersionInfo->dmDriverExtra351;
        if (ConvertDevmode(pdmIn, pdmOut) > 0) {
            *pcbNeeded = cbNeeded;
            return CDM_RESULT_TRUE;
        }
        SetLastError(ERROR_INVALID_PARAMETER);
        return CDM_RESULT_FALSE;
    }
    case CDM_DRIVER_DEFAULT: {
        LONG cbNeeded = pDriverVersionInfo->dmDriverExtra + kDEVMODE_SIZE_401;
        if (*pcbNeeded < cbNeeded || !pdmOut) {
            *pcbNeeded = cbNeeded;
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return CDM_RESULT_FALSE;
        }
        return CDM_RESULT_NOT_HANDLED;
    }
    default:
        return CDM_RESULT_NOT_HANDLED;
    }
}
