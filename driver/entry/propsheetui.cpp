// The property sheets' life: building the pages at INIT, handing the result back at
// SET_RESULT, releasing everything at DESTROY. The pages need the window system, which the
// host does not have yet; until it does, each branch answers the common UI with its failure
// value, so a caller falls back as it would for a driver without sheets.
#include "tvouidrv.h"

#include "../foundation/qlmtrace.h"

LONG TVONTUIDriver::PropsheetUI_Init(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::PropsheetUI_Init"), g_bTracePropsheets);
    Trace(TEXT("no document sheet in this build"));
    return -1;
}

LONG TVONTUIDriver::PropsheetUI_Set(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::PropsheetUI_Set"), g_bTracePropsheets);
    return -1;
}

LONG TVONTUIDriver::PropsheetUI_Destroy(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::PropsheetUI_Destroy"), g_bTracePropsheets);
    return -1;
}

LONG TVONTUIDriver::DeviceSheetUI_INIT(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::DeviceSheetUI_INIT"), g_bTracePropsheets);
    Trace(TEXT("no device sheet in this build"));
    return -1;
}
