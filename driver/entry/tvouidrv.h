// TVONTUIDriver: the one driver object behind the export table. It has no data; each member
// builds what its call needs and releases it before returning.
#pragma once

#include "../../platform/win32.h"
#include "../foundation/tvoobject.h"

class QLMPrinterSnapshot;

class TVONTUIDriver : public TVOObject
{
public:
    ~TVONTUIDriver() override;

    DWORD DrvDeviceCapabilities(HANDLE hPrinter, PWSTR pDeviceName, WORD iDevCap, void* pvOutput,
                                PDEVMODEW pDevMode);
    BOOL DrvConvertDevMode(LPWSTR pPrinterName, PDEVMODEW pdmIn, PDEVMODEW pdmOut, PLONG pcbNeeded,
                           DWORD fMode);
    BOOL DrvPrinterEvent(LPWSTR pPrinterName, INT DriverEvent, DWORD Flags, LPARAM lParam);
    BOOL DevQueryPrint(HANDLE hPrinter, LPDEVMODEW pDevMode, DWORD* pResID);
    BOOL DevQueryPrintEx(PDEVQUERYPRINT_INFO pDQPInfo);
    LONG DrvDocumentProperties(HWND hwnd, HANDLE hPrinter, PWSTR lpszDeviceName,
                               PDEVMODEW pdmOutput, PDEVMODEW pdmInput, DWORD fMode);
    LONG DrvDevicePropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam);
    LONG DrvDocumentPropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam);

    // Reads the debug switches of the printer, except when the sheet is being destroyed.
    void ReadDebugSwitches(HANDLE hPrinter, WORD reason);
    void ReadDebugSwitches(QLMPrinterSnapshot& snapshot, WORD reason);

    // DrvDocumentPropertySheets without a sheet: the record's size, or its default in the
    // header's output buffer.
    LONG GetSizeOrDefault(LPARAM lParam);

    // The sheet's life; the sheets are built in their own units. snapshot is the export call's,
    // of the printer of the sheet's header.
    LONG PropsheetUI_Init(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam, QLMPrinterSnapshot& snapshot);
    LONG PropsheetUI_Set(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam, QLMPrinterSnapshot& snapshot);
    LONG PropsheetUI_Destroy(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam,
                             QLMPrinterSnapshot& snapshot);
    LONG DeviceSheetUI_INIT(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam,
                            QLMPrinterSnapshot& snapshot);
};

// TRUE when the system's major version is 6, or when it cannot be told: on that family the
// printer events do no work. FALSE where the platform has no version.
BOOL QLMIsMajorVersion6();

// The name of a document event for the trace; "DEFAULT" for one the table does not know.
const WCHAR* DocumentEventName(int iEsc);

// The flag word that governs the traces of the driver's entries.
BOOL TraceEntryFlags();
