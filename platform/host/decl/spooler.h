// wingdi's DEVMODEW and winspool's printer, printer data, port and driver directory
// operations for the Linux host.
#pragma once

#include "types.h"

#define CCHDEVICENAME 32
#define CCHFORMNAME   32

typedef struct _devicemodeW
{
    WCHAR dmDeviceName[CCHDEVICENAME];
    WORD dmSpecVersion;
    WORD dmDriverVersion;
    WORD dmSize;
    WORD dmDriverExtra;
    DWORD dmFields;
    union
    {
        struct
        {
            short dmOrientation;
            short dmPaperSize;
            short dmPaperLength;
            short dmPaperWidth;
            short dmScale;
            short dmCopies;
            short dmDefaultSource;
            short dmPrintQuality;
        };
        struct
        {
            POINTL dmPosition;
            DWORD dmDisplayOrientation;
            DWORD dmDisplayFixedOutput;
        };
    };
    short dmColor;
    short dmDuplex;
    short dmYResolution;
    short dmTTOption;
    short dmCollate;
    WCHAR dmFormName[CCHFORMNAME];
    WORD dmLogPixels;
    DWORD dmBitsPerPel;
    DWORD dmPelsWidth;
    DWORD dmPelsHeight;
    union
    {
        DWORD dmDisplayFlags;
        DWORD dmNup;
    };
    DWORD dmDisplayFrequency;
    DWORD dmICMMethod;
    DWORD dmICMIntent;
    DWORD dmMediaType;
    DWORD dmDitherType;
    DWORD dmReserved1;
    DWORD dmReserved2;
    DWORD dmPanningWidth;
    DWORD dmPanningHeight;
} DEVMODEW, *PDEVMODEW, *LPDEVMODEW;

#define DM_SPECVERSION 0x0401

#define DM_ORIENTATION      0x00000001L
#define DM_PAPERSIZE        0x00000002L
#define DM_PAPERLENGTH      0x00000004L
#define DM_PAPERWIDTH       0x00000008L
#define DM_SCALE            0x00000010L
#define DM_POSITION         0x00000020L
#define DM_NUP              0x00000040L
#define DM_COPIES           0x00000100L
#define DM_DEFAULTSOURCE    0x00000200L
#define DM_PRINTQUALITY     0x00000400L
#define DM_COLOR            0x00000800L
#define DM_DUPLEX           0x00001000L
#define DM_YRESOLUTION      0x00002000L
#define DM_TTOPTION         0x00004000L
#define DM_COLLATE          0x00008000L
#define DM_FORMNAME         0x00010000L
#define DM_LOGPIXELS        0x00020000L
#define DM_BITSPERPEL       0x00040000L
#define DM_PELSWIDTH        0x00080000L
#define DM_PELSHEIGHT       0x00100000L
#define DM_DISPLAYFLAGS     0x00200000L
#define DM_DISPLAYFREQUENCY 0x00400000L
#define DM_ICMMETHOD        0x00800000L
#define DM_ICMINTENT        0x01000000L
#define DM_MEDIATYPE        0x02000000L
#define DM_DITHERTYPE       0x04000000L

// fMode bits of DocumentProperties.
#define DM_UPDATE      1
#define DM_COPY        2
#define DM_PROMPT      4
#define DM_MODIFY      8
#define DM_OUT_DEFAULT DM_UPDATE
#define DM_OUT_BUFFER  DM_COPY
#define DM_IN_PROMPT   DM_PROMPT
#define DM_IN_BUFFER   DM_MODIFY

#define DMORIENT_PORTRAIT   1
#define DMORIENT_LANDSCAPE  2
#define DMCOLOR_MONOCHROME  1
#define DMCOLOR_COLOR       2
#define DMBIN_MANUAL        4
#define DMBIN_AUTO          7
#define DMBIN_USER          256
#define DMPAPER_LETTER      1
#define DMPAPER_LETTERSMALL 2
#define DMPAPER_TABLOID     3
#define DMPAPER_LEDGER      4
#define DMPAPER_A3          8
#define DMPAPER_A4          9
#define DMPAPER_11X17       17
#define DMPAPER_CSHEET      24
#define DMPAPER_DSHEET      25
#define DMPAPER_ESHEET      26
#define DMPAPER_ISO_B4      42
#define DMPAPER_USER        256
#define DMTT_BITMAP         1
#define DMCOLLATE_FALSE     0
#define DMCOLLATE_TRUE      1

typedef struct _PRINTER_INFO_1W
{
    DWORD Flags;
    LPWSTR pDescription;
    LPWSTR pName;
    LPWSTR pComment;
} PRINTER_INFO_1W, *PPRINTER_INFO_1W, *LPPRINTER_INFO_1W;

typedef struct _PRINTER_INFO_2W
{
    LPWSTR pServerName;
    LPWSTR pPrinterName;
    LPWSTR pShareName;
    LPWSTR pPortName;
    LPWSTR pDriverName;
    LPWSTR pComment;
    LPWSTR pLocation;
    LPDEVMODEW pDevMode;
    LPWSTR pSepFile;
    LPWSTR pPrintProcessor;
    LPWSTR pDatatype;
    LPWSTR pParameters;
    PVOID pSecurityDescriptor;
    DWORD Attributes;
    DWORD Priority;
    DWORD DefaultPriority;
    DWORD StartTime;
    DWORD UntilTime;
    DWORD Status;
    DWORD cJobs;
    DWORD AveragePPM;
} PRINTER_INFO_2W, *PPRINTER_INFO_2W, *LPPRINTER_INFO_2W;

typedef struct _PRINTER_DEFAULTSW
{
    LPWSTR pDatatype;
    LPDEVMODEW pDevMode;
    ACCESS_MASK DesiredAccess;
} PRINTER_DEFAULTSW, *PPRINTER_DEFAULTSW, *LPPRINTER_DEFAULTSW;

typedef struct _PORT_INFO_1W
{
    LPWSTR pName;
} PORT_INFO_1W, *PPORT_INFO_1W, *LPPORT_INFO_1W;

typedef struct _PORT_INFO_2W
{
    LPWSTR pPortName;
    LPWSTR pMonitorName;
    LPWSTR pDescription;
    DWORD fPortType;
    DWORD Reserved;
} PORT_INFO_2W, *PPORT_INFO_2W, *LPPORT_INFO_2W;

// One value of EnumPrinterDataExW: its name (cbValueName bytes with the NUL), type and data.
typedef struct _PRINTER_ENUM_VALUESW
{
    LPWSTR pValueName;
    DWORD cbValueName;
    DWORD dwType;
    LPBYTE pData;
    DWORD cbData;
} PRINTER_ENUM_VALUESW, *PPRINTER_ENUM_VALUESW, *LPPRINTER_ENUM_VALUESW;

typedef struct _DRIVER_INFO_1W
{
    LPWSTR pName;
} DRIVER_INFO_1W, *PDRIVER_INFO_1W;

#define PORT_TYPE_WRITE 0x0001
#define PORT_TYPE_READ  0x0002

#define PRINTER_ENUM_ICON8 0x00800000

#define PRINTER_ATTRIBUTE_QUEUED   0x00000001
#define PRINTER_ATTRIBUTE_DEFAULT  0x00000004
#define PRINTER_ATTRIBUTE_SHARED   0x00000008
#define PRINTER_ATTRIBUTE_NETWORK  0x00000010
#define PRINTER_ATTRIBUTE_LOCAL    0x00000040
#define PRINTER_ATTRIBUTE_RAW_ONLY 0x00001000

#define PRINTER_ACCESS_ADMINISTER 0x00000004
#define PRINTER_ACCESS_USE        0x00000008
#define PRINTER_ALL_ACCESS                                                                         \
    (STANDARD_RIGHTS_REQUIRED | PRINTER_ACCESS_ADMINISTER | PRINTER_ACCESS_USE)

#ifdef __cplusplus
extern "C" {
#endif
BOOL WINAPI OpenPrinterW(LPWSTR pPrinterName, LPHANDLE phPrinter, LPPRINTER_DEFAULTSW pDefault);
BOOL WINAPI ClosePrinter(HANDLE hPrinter);
BOOL WINAPI GetPrinterW(HANDLE hPrinter, DWORD Level, LPBYTE pPrinter, DWORD cbBuf,
                        LPDWORD pcbNeeded);
BOOL WINAPI SetPrinterW(HANDLE hPrinter, DWORD Level, LPBYTE pPrinter, DWORD Command);
DWORD WINAPI GetPrinterDataW(HANDLE hPrinter, LPWSTR pValueName, LPDWORD pType, LPBYTE pData,
                             DWORD nSize, LPDWORD pcbNeeded);
DWORD WINAPI SetPrinterDataW(HANDLE hPrinter, LPWSTR pValueName, DWORD Type, LPBYTE pData,
                             DWORD cbData);
DWORD WINAPI GetPrinterDataExW(HANDLE hPrinter, LPCWSTR pKeyName, LPCWSTR pValueName, LPDWORD pType,
                               LPBYTE pData, DWORD nSize, LPDWORD pcbNeeded);
DWORD WINAPI SetPrinterDataExW(HANDLE hPrinter, LPCWSTR pKeyName, LPCWSTR pValueName, DWORD Type,
                               LPBYTE pData, DWORD cbData);
DWORD WINAPI EnumPrinterDataExW(HANDLE hPrinter, LPCWSTR pKeyName, LPBYTE pEnumValues,
                                DWORD cbEnumValues, LPDWORD pcbEnumValues, LPDWORD pnEnumValues);
BOOL WINAPI EnumPortsW(LPWSTR pName, DWORD Level, LPBYTE pPorts, DWORD cbBuf, LPDWORD pcbNeeded,
                       LPDWORD pcReturned);
BOOL WINAPI GetPrinterDriverDirectoryW(LPWSTR pName, LPWSTR pEnvironment, DWORD Level,
                                       LPBYTE pDriverDirectory, DWORD cbBuf, LPDWORD pcbNeeded);
#ifdef __cplusplus
}
#endif
