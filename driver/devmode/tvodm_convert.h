// The generic half of DrvConvertDevMode: fitting a record into another record's shape. It
// copies the shorter part of each half and interprets nothing; the repair comes when the
// record is merged.
#pragma once

#include "../../platform/win32.h"

// The versions this driver's records have, now and under the 3.51 layout.
struct DRIVER_VERSION_INFO
{
    WORD dmDriverVersion;
    WORD dmDriverExtra;
    WORD dmDriverVersion351;
    WORD dmDriverExtra351;
};
extern const DRIVER_VERSION_INFO g_DriverVersionInfo;

enum
{
    CDM_RESULT_FALSE = 0,
    CDM_RESULT_TRUE = 1,
    CDM_RESULT_NOT_HANDLED = 2,
};

// The dmSpecVersion a record really has, judged by its size since old records may lie.
WORD CheckDevmodeVersion(const DEVMODEW* pdm);
// Copies the shorter public part and the shorter private part of pdmIn into pdmOut, keeping
// pdmOut's sizes and driver version. The bytes copied, or -1 for a missing or unknown record.
LONG ConvertDevmode(const DEVMODEW* pdmIn, DEVMODEW* pdmOut);
// CDM_RESULT_TRUE or CDM_RESULT_FALSE (with the last error 87 or 122), or
// CDM_RESULT_NOT_HANDLED for what the driver must do itself.
LONG CommonDrvConvertDevMode(LPCWSTR pPrinterName, const DEVMODEW* pdmIn, DEVMODEW* pdmOut,
                             PLONG pcbNeeded, DWORD fMode,
                             const DRIVER_VERSION_INFO* pDriverVersionInfo);
