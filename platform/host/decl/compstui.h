// The common printer UI's sheet interface (compstui.h) for the Linux host.
#pragma once

#include "types.h"

typedef LONG_PTR(CALLBACK* PFNCOMPROPSHEET)(HANDLE hComPropSheet, UINT Function, LPARAM lParam1,
                                            LPARAM lParam2);

typedef struct _PROPSHEETUI_INFO
{
    WORD cbSize;
    WORD Version;
    WORD Flags;
    WORD Reason;
    HANDLE hComPropSheet;
    PFNCOMPROPSHEET pfnComPropSheet;
    LPARAM lParamInit;
    ULONG_PTR UserData;
    ULONG_PTR Result;
} PROPSHEETUI_INFO, *PPROPSHEETUI_INFO;

#define PROPSHEETUI_INFO_VERSION 0x0100

#define PROPSHEETUI_REASON_INIT            0
#define PROPSHEETUI_REASON_GET_INFO_HEADER 1
#define PROPSHEETUI_REASON_DESTROY         2
#define PROPSHEETUI_REASON_SET_RESULT      3
#define PROPSHEETUI_REASON_GET_ICON        4

#define CPSFUNC_ADD_HPROPSHEETPAGE 0
#define CPSFUNC_SET_HSTARTPAGE     7
#define CPSFUNC_SET_RESULT         9

#define CPSUI_CANCEL         0
#define CPSUI_OK             1
#define CPSUI_RESTARTWINDOWS 2
#define CPSUI_REBOOTSYSTEM   3

typedef struct _SETRESULT_INFO
{
    WORD cbSize;
    WORD wReserved;
    HANDLE hSetResult;
    LRESULT Result;
} SETRESULT_INFO, *PSETRESULT_INFO;

// Events of a printer's life (winddiui.h).
#define PRINTER_EVENT_ADD_CONNECTION     1
#define PRINTER_EVENT_DELETE_CONNECTION  2
#define PRINTER_EVENT_INITIALIZE         3
#define PRINTER_EVENT_DELETE             4
#define PRINTER_EVENT_CACHE_REFRESH      5
#define PRINTER_EVENT_CACHE_DELETE       6
#define PRINTER_EVENT_ATTRIBUTES_CHANGED 7
#define PRINTER_EVENT_FLAG_NO_UI         1

#define DOCUMENTEVENT_CREATEDCPRE  1
#define DOCUMENTEVENT_CREATEDCPOST 2
#define DOCUMENTEVENT_RESETDCPRE   3
#define DOCUMENTEVENT_RESETDCPOST  4
#define DOCUMENTEVENT_STARTDOC     5
#define DOCUMENTEVENT_STARTPAGE    6
#define DOCUMENTEVENT_ENDPAGE      7
#define DOCUMENTEVENT_ENDDOC       8
#define DOCUMENTEVENT_ABORTDOC     9
#define DOCUMENTEVENT_DELETEDC     10
#define DOCUMENTEVENT_ESCAPE       11
#define DOCUMENTEVENT_ENDDOCPOST   12
#define DOCUMENTEVENT_STARTDOCPOST 13
#define DOCUMENTEVENT_QUERYFILTER  14
#define DOCUMENTEVENT_LAST         15

// Device capability indexes (wingdi.h).
#define DC_FIELDS            1
#define DC_PAPERS            2
#define DC_PAPERSIZE         3
#define DC_MINEXTENT         4
#define DC_MAXEXTENT         5
#define DC_BINS              6
#define DC_DUPLEX            7
#define DC_SIZE              8
#define DC_EXTRA             9
#define DC_VERSION           10
#define DC_DRIVER            11
#define DC_BINNAMES          12
#define DC_ENUMRESOLUTIONS   13
#define DC_FILEDEPENDENCIES  14
#define DC_TRUETYPE          15
#define DC_PAPERNAMES        16
#define DC_ORIENTATION       17
#define DC_COPIES            18
#define DC_BINADJUST         19
#define DC_EMF_COMPLIANT     20
#define DC_DATATYPE_PRODUCED 21
#define DC_COLLATE           22
#define DC_MANUFACTURER      23
#define DC_MODEL             24
#define DC_PERSONALITY       25
#define DC_PRINTRATE         26
#define DC_PRINTRATEUNIT     27
#define DC_PRINTERMEM        28
#define DC_MEDIAREADY        29
#define DC_STAPLE            30
#define DC_PRINTRATEPPM      31
#define DC_COLORDEVICE       32
#define DC_NUP               33
#define DC_MEDIATYPENAMES    34
#define DC_MEDIATYPES        35
#define GDI_ERROR            (0xFFFFFFFFL)

#ifdef __cplusplus
extern "C" {
#endif
int WINAPI DrvDocumentEvent(HANDLE hPrinter, HDC hdc, int iEsc, ULONG cbIn, PVOID pvIn, ULONG cbOut,
                            PVOID pvOut);
BOOL WINAPI DrvPrinterEvent(LPWSTR pPrinterName, INT DriverEvent, DWORD Flags, LPARAM lParam);
BOOL WINAPI PrinterProperties(HWND hWnd, HANDLE hPrinter);
#ifdef __cplusplus
}
#endif

// The common UI's entry (compstui.dll): runs a sheet whose pages pfnPropSheetUI adds. On the
// Linux host the sheet takes its user's actions from the user simulation.
typedef LONG(CALLBACK* PFNPROPSHEETUI)(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam);
#define ERR_CPSUI_GETLASTERROR (-1)
#ifdef __cplusplus
extern "C" {
#endif
LONG WINAPI CommonPropertySheetUIW(HWND hWndOwner, PFNPROPSHEETUI pfnPropSheetUI, LPARAM lParam,
                                   LPDWORD pResult);
#ifdef __cplusplus
}
#endif
