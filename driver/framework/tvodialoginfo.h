// The dialog-info record of one open property sheet: the working records, the mode of the
// call, the tabs and the sheet's callback. Allocated at the sheet's INIT, freed at DESTROY;
// every tab and dialog of the sheet reaches it.
#pragma once

#include "../../platform/win32.h"
#include "../devmode/devmodeex.h"

class TVOPrinterConfiguration;
class TVOTab;

constexpr int kMAX_TABS = 16;

struct TVODialogInfo
{
    DEVMODEEX* lpDM = nullptr;       // the record the tabs edit: dmScratch while open
    DEVMODEEX* lpDMTarget = nullptr; // where OK puts the result
    DEVMODEEX dmOrig = {};           // the defaults at the sheet's opening
    DEVMODEEX dmMerge = {};          // stored record, caller's input, printer's answer
    DEVMODEEX dmScratch = {};        // the working copy
    WORD wMode = 0;                  // fMode of the header, low 16 bits; 64 on a device sheet
    HINSTANCE hInstance = nullptr;   // the driver library
    HINSTANCE hResource = nullptr;   // the resource library, which holds the templates
    BOOL bExtDevMode = 0;            // 1 on a device sheet
    BOOL bOK = 0;                    // the user confirmed with OK or Apply
    TVOTab* pTabs[kMAX_TABS] = {};
    WORD nTabs = 0;
    TVOPrinterConfiguration* pConfig = nullptr; // owned
    HANDLE hPrinter = nullptr;                  // not owned
    HANDLE hComPropSheet = nullptr;
    PFNCOMPROPSHEET pfnComPropSheet = nullptr;
    // Bytes the caller's output record can take (the header's cbOut); a record of the sheet's
    // own takes a whole DEVMODEEX.
    DWORD cbTargetRoom = sizeof(DEVMODEEX);
};
