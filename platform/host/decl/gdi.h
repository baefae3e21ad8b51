// Images, icons, cursors and fonts for the Linux host (gdi32 and the image half of user32), with
// the values and x64 layouts of Windows.
#pragma once

#include "types.h"

typedef DWORD COLORREF;
#ifndef RGB
#define RGB(r, g, b)                                                                               \
    ((COLORREF)(((BYTE)(r) | ((WORD)((BYTE)(g)) << 8)) | (((DWORD)(BYTE)(b)) << 16)))
#endif

// winerror.h codes of icons and cursors.
#ifndef ERROR_INVALID_CURSOR_HANDLE
#define ERROR_INVALID_CURSOR_HANDLE 1402L
#endif
#ifndef ERROR_INVALID_ICON_HANDLE
#define ERROR_INVALID_ICON_HANDLE 1414L
#endif

// ---- LoadImageW ----------------------------------------------------------------------------
#ifndef IMAGE_BITMAP
#define IMAGE_BITMAP 0
#endif
#ifndef IMAGE_ICON
#define IMAGE_ICON 1
#endif
#ifndef IMAGE_CURSOR
#define IMAGE_CURSOR 2
#endif
#ifndef IMAGE_ENHMETAFILE
#define IMAGE_ENHMETAFILE 3
#endif

#define LR_DEFAULTCOLOR     0x00000000
#define LR_MONOCHROME       0x00000001
#define LR_COLOR            0x00000002
#define LR_COPYRETURNORG    0x00000004
#define LR_COPYDELETEORG    0x00000008
#define LR_LOADFROMFILE     0x00000010
#define LR_LOADTRANSPARENT  0x00000020
#define LR_DEFAULTSIZE      0x00000040
#define LR_VGACOLOR         0x00000080
#define LR_LOADMAP3DCOLORS  0x00001000
#define LR_CREATEDIBSECTION 0x00002000
#define LR_COPYFROMRESOURCE 0x00004000
#define LR_SHARED           0x00008000

// The system's icons and cursors, loaded with a null module.
#define IDI_APPLICATION MAKEINTRESOURCEW(32512)
#define IDI_HAND        MAKEINTRESOURCEW(32513)
#define IDI_QUESTION    MAKEINTRESOURCEW(32514)
#define IDI_EXCLAMATION MAKEINTRESOURCEW(32515)
#define IDI_ASTERISK    MAKEINTRESOURCEW(32516)
#define IDI_WINLOGO     MAKEINTRESOURCEW(32517)
#define IDI_SHIELD      MAKEINTRESOURCEW(32518)
#define IDI_WARNING     IDI_EXCLAMATION
#define IDI_ERROR       IDI_HAND
#define IDI_INFORMATION IDI_ASTERISK

#define IDC_ARROW       MAKEINTRESOURCEW(32512)
#define IDC_IBEAM       MAKEINTRESOURCEW(32513)
#define IDC_WAIT        MAKEINTRESOURCEW(32514)
#define IDC_CROSS       MAKEINTRESOURCEW(32515)
#define IDC_UPARROW     MAKEINTRESOURCEW(32516)
#define IDC_SIZENWSE    MAKEINTRESOURCEW(32642)
#define IDC_SIZENESW    MAKEINTRESOURCEW(32643)
#define IDC_SIZEWE      MAKEINTRESOURCEW(32644)
#define IDC_SIZENS      MAKEINTRESOURCEW(32645)
#define IDC_SIZEALL     MAKEINTRESOURCEW(32646)
#define IDC_NO          MAKEINTRESOURCEW(32648)
#define IDC_HAND        MAKEINTRESOURCEW(32649)
#define IDC_APPSTARTING MAKEINTRESOURCEW(32650)
#define IDC_HELP        MAKEINTRESOURCEW(32651)

// ---- Bitmaps ---------------------------------------------------------------------------------
typedef struct tagBITMAP
{
    LONG bmType;
    LONG bmWidth;
    LONG bmHeight;
    LONG bmWidthBytes;
    WORD bmPlanes;
    WORD bmBitsPixel;
    LPVOID bmBits;
} BITMAP, *PBITMAP, *LPBITMAP;

typedef struct tagBITMAPINFOHEADER
{
    DWORD biSize;
    LONG biWidth;
    LONG biHeight;
    WORD biPlanes;
    WORD biBitCount;
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
} BITMAPINFOHEADER, *PBITMAPINFOHEADER, *LPBITMAPINFOHEADER;

typedef struct tagRGBQUAD
{
    BYTE rgbBlue;
    BYTE rgbGreen;
    BYTE rgbRed;
    BYTE rgbReserved;
} RGBQUAD;

#define BI_RGB       0L
#define BI_RLE8      1L
#define BI_RLE4      2L
#define BI_BITFIELDS 3L
#define BI_JPEG      4L
#define BI_PNG       5L

// ---- Fonts -------------------------------------------------------------------------------------
#define LF_FACESIZE 32

typedef struct tagLOGFONTW
{
    LONG lfHeight;
    LONG lfWidth;
    LONG lfEscapement;
    LONG lfOrientation;
    LONG lfWeight;
    BYTE lfItalic;
    BYTE lfUnderline;
    BYTE lfStrikeOut;
    BYTE lfCharSet;
    BYTE lfOutPrecision;
    BYTE lfClipPrecision;
    BYTE lfQuality;
    BYTE lfPitchAndFamily;
    WCHAR lfFaceName[LF_FACESIZE];
} LOGFONTW, *PLOGFONTW, *LPLOGFONTW;

#define FW_DONTCARE   0
#define FW_THIN       100
#define FW_EXTRALIGHT 200
#define FW_ULTRALIGHT 200
#define FW_LIGHT      300
#define FW_NORMAL     400
#define FW_REGULAR    400
#define FW_MEDIUM     500
#define FW_SEMIBOLD   600
#define FW_DEMIBOLD   600
#define FW_BOLD       700
#define FW_EXTRABOLD  800
#define FW_ULTRABOLD  800
#define FW_HEAVY      900
#define FW_BLACK      900

#define ANSI_CHARSET        0
#define DEFAULT_CHARSET     1
#define SYMBOL_CHARSET      2
#define OUT_DEFAULT_PRECIS  0
#define CLIP_DEFAULT_PRECIS 0
#define DEFAULT_QUALITY     0
#define DEFAULT_PITCH       0
#define FIXED_PITCH         1
#define VARIABLE_PITCH      2
#define FF_DONTCARE         0x00
#define FF_ROMAN            0x10
#define FF_SWISS            0x20
#define FF_MODERN           0x30

// ---- Brushes and pens (what GetObjectW reports of the stock ones) -----------------------------
typedef struct tagLOGBRUSH
{
    UINT lbStyle;
    COLORREF lbColor;
    ULONG_PTR lbHatch;
} LOGBRUSH, *PLOGBRUSH, *LPLOGBRUSH;

typedef struct tagLOGPEN
{
    UINT lopnStyle;
    POINT lopnWidth;
    COLORREF lopnColor;
} LOGPEN, *PLOGPEN, *LPLOGPEN;

#define BS_SOLID  0
#define BS_NULL   1
#define BS_HOLLOW BS_NULL
#define PS_SOLID  0
#define PS_NULL   5

// ---- Stock objects ---------------------------------------------------------------------------
#define WHITE_BRUSH         0
#define LTGRAY_BRUSH        1
#define GRAY_BRUSH          2
#define DKGRAY_BRUSH        3
#define BLACK_BRUSH         4
#define NULL_BRUSH          5
#define HOLLOW_BRUSH        NULL_BRUSH
#define WHITE_PEN           6
#define BLACK_PEN           7
#define NULL_PEN            8
#define OEM_FIXED_FONT      10
#define ANSI_FIXED_FONT     11
#define ANSI_VAR_FONT       12
#define SYSTEM_FONT         13
#define DEVICE_DEFAULT_FONT 14
#define DEFAULT_PALETTE     15
#define SYSTEM_FIXED_FONT   16
#define DEFAULT_GUI_FONT    17
#define DC_BRUSH            18
#define DC_PEN              19

// GetObjectType.
#define OBJ_PEN    1
#define OBJ_BRUSH  2
#define OBJ_PAL    5
#define OBJ_FONT   6
#define OBJ_BITMAP 7

extern "C" {

HANDLE WINAPI LoadImageW(HINSTANCE hInst, LPCWSTR name, UINT type, int cx, int cy, UINT fuLoad);
HICON WINAPI LoadIconW(HINSTANCE hInstance, LPCWSTR lpIconName);
HCURSOR WINAPI LoadCursorW(HINSTANCE hInstance, LPCWSTR lpCursorName);
HCURSOR WINAPI SetCursor(HCURSOR hCursor);
HCURSOR WINAPI GetCursor(void);
BOOL WINAPI DestroyIcon(HICON hIcon);
BOOL WINAPI DestroyCursor(HCURSOR hCursor);

HFONT WINAPI CreateFontIndirectW(const LOGFONTW* lplf);
int WINAPI GetObjectW(HANDLE h, int c, LPVOID pv);
DWORD WINAPI GetObjectType(HGDIOBJ h);
BOOL WINAPI DeleteObject(HGDIOBJ ho);
HGDIOBJ WINAPI GetStockObject(int i);

} // extern "C"

static_assert(sizeof(LOGFONTW) == 92, "LOGFONTW");
static_assert(sizeof(BITMAP) == 32, "BITMAP");
static_assert(sizeof(BITMAPINFOHEADER) == 40, "BITMAPINFOHEADER");
