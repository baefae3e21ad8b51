// The parts of the printer driver interface (winddiui.h and compstui.h of the DDK) that
// mingw-w64 lacks, with Microsoft's x64 layouts. Both platforms take them from here.
#pragma once

#ifndef DM_ADVANCED
#define DM_ADVANCED 0x10
#endif
#ifndef DM_NOPERMISSION
#define DM_NOPERMISSION 0x20
#endif
#ifndef DM_USER_DEFAULT
#define DM_USER_DEFAULT 0x40
#endif

#define CDM_CONVERT        0x01
#define CDM_CONVERT351     0x02
#define CDM_DRIVER_DEFAULT 0x04

#ifndef PROPSHEETUI_REASON_BEFORE_INIT
#define PROPSHEETUI_REASON_BEFORE_INIT 5
#endif

#define DPS_NOPERMISSION 0x0001

typedef struct _DOCUMENTPROPERTYHEADER
{
    WORD cbSize;
    WORD Reserved;
    HANDLE hPrinter;
    LPWSTR pszPrinterName;
    PDEVMODEW pdmIn;
    PDEVMODEW pdmOut;
    DWORD cbOut;
    DWORD fMode;
} DOCUMENTPROPERTYHEADER, *PDOCUMENTPROPERTYHEADER;

typedef struct _DEVICEPROPERTYHEADER
{
    WORD cbSize;
    WORD Flags;
    HANDLE hPrinter;
    LPWSTR pszPrinterName;
} DEVICEPROPERTYHEADER, *PDEVICEPROPERTYHEADER;

typedef struct _DEVQUERYPRINT_INFO
{
    WORD cbSize;
    WORD Level;
    HANDLE hPrinter;
    DEVMODEW* pDevMode;
    LPWSTR pszErrorStr;
    DWORD cchErrorStr;
    DWORD cchNeeded;
} DEVQUERYPRINT_INFO, *PDEVQUERYPRINT_INFO;

static_assert(sizeof(DOCUMENTPROPERTYHEADER) == 48, "DOCUMENTPROPERTYHEADER is 48 bytes on x64");
static_assert(offsetof(DOCUMENTPROPERTYHEADER, hPrinter) == 8, "DOCUMENTPROPERTYHEADER.hPrinter");
static_assert(offsetof(DOCUMENTPROPERTYHEADER, pdmOut) == 32, "DOCUMENTPROPERTYHEADER.pdmOut");
static_assert(offsetof(DOCUMENTPROPERTYHEADER, cbOut) == 40, "DOCUMENTPROPERTYHEADER.cbOut");
static_assert(offsetof(DOCUMENTPROPERTYHEADER, fMode) == 44, "DOCUMENTPROPERTYHEADER.fMode");
static_assert(sizeof(DEVICEPROPERTYHEADER) == 24, "DEVICEPROPERTYHEADER is 24 bytes on x64");
static_assert(sizeof(DEVQUERYPRINT_INFO) == 40, "DEVQUERYPRINT_INFO is 40 bytes on x64");
static_assert(offsetof(DEVQUERYPRINT_INFO, cchNeeded) == 36, "DEVQUERYPRINT_INFO.cchNeeded");

// The driver's exports whose prototypes mingw-w64 does not declare.
#ifdef __cplusplus
extern "C" {
#endif
BOOL WINAPI DevQueryPrint(HANDLE hPrinter, LPDEVMODEW pDevMode, DWORD* pResID);
BOOL WINAPI DevQueryPrintEx(PDEVQUERYPRINT_INFO pDQPInfo);
DWORD WINAPI DrvDeviceCapabilities(HANDLE hPrinter, PWSTR pDeviceName, WORD iDevCap, void* pvOutput,
                                   PDEVMODEW pDevMode);
LONG WINAPI DrvDocumentProperties(HWND hwnd, HANDLE hPrinter, PWSTR lpszDeviceName,
                                  PDEVMODEW pdmOutput, PDEVMODEW pdmInput, DWORD fMode);
BOOL WINAPI DrvConvertDevMode(LPWSTR pPrinterName, PDEVMODEW pdmIn, PDEVMODEW pdmOut,
                              PLONG pcbNeeded, DWORD fMode);
LONG WINAPI DrvDocumentPropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam);
LONG WINAPI DrvDevicePropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam);
#ifdef __cplusplus
}
#endif
