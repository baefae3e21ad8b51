// comctl32 for the Linux host: the common controls' messages and notifications, and the
// property sheet page structures.
#pragma once

#include "user.h"

typedef struct tagNMHDR
{
    HWND hwndFrom;
    UINT_PTR idFrom;
    UINT code;
} NMHDR, *LPNMHDR;

typedef struct tagINITCOMMONCONTROLSEX
{
    DWORD dwSize;
    DWORD dwICC;
} INITCOMMONCONTROLSEX, *LPINITCOMMONCONTROLSEX;

#define ICC_UPDOWN_CLASS     0x00000010
#define ICC_BAR_CLASSES      0x00000004
#define ICC_WIN95_CLASSES    0x000000FF
#define ICC_STANDARD_CLASSES 0x00004000

#define UPDOWN_CLASSW   u"msctls_updown32"
#define TRACKBAR_CLASSW u"msctls_trackbar32"
#define WC_BUTTONW      u"Button"
#define WC_EDITW        u"Edit"
#define WC_STATICW      u"Static"
#define WC_COMBOBOXW    u"ComboBox"
#define WC_LISTBOXW     u"ListBox"

#define NM_FIRST  (0U - 0U)
#define UDN_FIRST (0U - 721)
#define PSN_FIRST (0U - 200U)

// Up-down controls.
#define UDS_WRAP        0x0001
#define UDS_SETBUDDYINT 0x0002
#define UDS_ALIGNRIGHT  0x0004
#define UDS_ALIGNLEFT   0x0008
#define UDS_AUTOBUDDY   0x0010
#define UDS_ARROWKEYS   0x0020
#define UDS_HORZ        0x0040
#define UDS_NOTHOUSANDS 0x0080
#define UDS_HOTTRACK    0x0100

#define UD_MAXVAL 0x7fff
#define UD_MINVAL (-UD_MAXVAL)

#define UDM_SETRANGE   (WM_USER + 101)
#define UDM_GETRANGE   (WM_USER + 102)
#define UDM_SETPOS     (WM_USER + 103)
#define UDM_GETPOS     (WM_USER + 104)
#define UDM_SETBUDDY   (WM_USER + 105)
#define UDM_GETBUDDY   (WM_USER + 106)
#define UDM_SETACCEL   (WM_USER + 107)
#define UDM_GETACCEL   (WM_USER + 108)
#define UDM_SETBASE    (WM_USER + 109)
#define UDM_GETBASE    (WM_USER + 110)
#define UDM_SETRANGE32 (WM_USER + 111)
#define UDM_GETRANGE32 (WM_USER + 112)
#define UDM_SETPOS32   (WM_USER + 113)
#define UDM_GETPOS32   (WM_USER + 114)

#define UDN_DELTAPOS (UDN_FIRST - 1)

typedef struct _NM_UPDOWN
{
    NMHDR hdr;
    int iPos;
    int iDelta;
} NMUPDOWN, *LPNMUPDOWN;

// Trackbars.
#define TBS_AUTOTICKS      0x0001
#define TBS_VERT           0x0002
#define TBS_HORZ           0x0000
#define TBS_TOP            0x0004
#define TBS_BOTTOM         0x0000
#define TBS_LEFT           0x0004
#define TBS_RIGHT          0x0000
#define TBS_BOTH           0x0008
#define TBS_NOTICKS        0x0010
#define TBS_ENABLESELRANGE 0x0020
#define TBS_FIXEDLENGTH    0x0040
#define TBS_NOTHUMB        0x0080
#define TBS_TOOLTIPS       0x0100
#define TBS_REVERSED       0x0200
#define TBS_DOWNISLEFT     0x0400

#define TBM_GETPOS       (WM_USER)
#define TBM_GETRANGEMIN  (WM_USER + 1)
#define TBM_GETRANGEMAX  (WM_USER + 2)
#define TBM_GETTIC       (WM_USER + 3)
#define TBM_SETTIC       (WM_USER + 4)
#define TBM_SETPOS       (WM_USER + 5)
#define TBM_SETRANGE     (WM_USER + 6)
#define TBM_SETRANGEMIN  (WM_USER + 7)
#define TBM_SETRANGEMAX  (WM_USER + 8)
#define TBM_CLEARTICS    (WM_USER + 9)
#define TBM_SETSEL       (WM_USER + 10)
#define TBM_SETSELSTART  (WM_USER + 11)
#define TBM_SETSELEND    (WM_USER + 12)
#define TBM_GETNUMTICS   (WM_USER + 16)
#define TBM_GETSELSTART  (WM_USER + 17)
#define TBM_GETSELEND    (WM_USER + 18)
#define TBM_CLEARSEL     (WM_USER + 19)
#define TBM_SETTICFREQ   (WM_USER + 20)
#define TBM_SETPAGESIZE  (WM_USER + 21)
#define TBM_GETPAGESIZE  (WM_USER + 22)
#define TBM_SETLINESIZE  (WM_USER + 23)
#define TBM_GETLINESIZE  (WM_USER + 24)
#define TBM_SETBUDDY     (WM_USER + 32)
#define TBM_GETBUDDY     (WM_USER + 33)
#define TBM_SETPOSNOTIFY (WM_USER + 34)

#define TB_LINEUP        0
#define TB_LINEDOWN      1
#define TB_PAGEUP        2
#define TB_PAGEDOWN      3
#define TB_THUMBPOSITION 4
#define TB_THUMBTRACK    5
#define TB_TOP           6
#define TB_BOTTOM        7
#define TB_ENDTRACK      8

// Property sheet pages.
struct _PROPSHEETPAGEW;
typedef UINT(CALLBACK* LPFNPSPCALLBACKW)(HWND hwnd, UINT uMsg, struct _PROPSHEETPAGEW* ppsp);

typedef struct _PROPSHEETPAGEW
{
    DWORD dwSize;
    DWORD dwFlags;
    HINSTANCE hInstance;
    union
    {
        LPCWSTR pszTemplate;
        LPCDLGTEMPLATE pResource;
    };
    union
    {
        HICON hIcon;
        LPCWSTR pszIcon;
    };
    LPCWSTR pszTitle;
    DLGPROC pfnDlgProc;
    LPARAM lParam;
    LPFNPSPCALLBACKW pfnCallback;
    UINT* pcRefParent;
    LPCWSTR pszHeaderTitle;
    LPCWSTR pszHeaderSubTitle;
    HANDLE hActCtx;
    union
    {
        HBITMAP hbmHeader;
        LPCWSTR pszbmHeader;
    };
} PROPSHEETPAGEW, *LPPROPSHEETPAGEW;
typedef const PROPSHEETPAGEW* LPCPROPSHEETPAGEW;

// The size of the structure up to and including hActCtx, which is what the driver passes.
#define PROPSHEETPAGEW_V3_SIZE 96
#define PROPSHEETPAGEW_V4_SIZE 104

#define PSP_DEFAULT           0x00000000
#define PSP_DLGINDIRECT       0x00000001
#define PSP_USEHICON          0x00000002
#define PSP_USEICONID         0x00000004
#define PSP_USETITLE          0x00000008
#define PSP_RTLREADING        0x00000010
#define PSP_HASHELP           0x00000020
#define PSP_USEREFPARENT      0x00000040
#define PSP_USECALLBACK       0x00000080
#define PSP_PREMATURE         0x00000400
#define PSP_HIDEHEADER        0x00000800
#define PSP_USEHEADERTITLE    0x00001000
#define PSP_USEHEADERSUBTITLE 0x00002000
#define PSP_USEFUSIONCONTEXT  0x00004000

#define PSPCB_ADDREF  0
#define PSPCB_RELEASE 1
#define PSPCB_CREATE  2

#define PSN_SETACTIVE         (PSN_FIRST - 0)
#define PSN_KILLACTIVE        (PSN_FIRST - 1)
#define PSN_APPLY             (PSN_FIRST - 2)
#define PSN_RESET             (PSN_FIRST - 3)
#define PSN_HELP              (PSN_FIRST - 5)
#define PSN_WIZBACK           (PSN_FIRST - 6)
#define PSN_WIZNEXT           (PSN_FIRST - 7)
#define PSN_WIZFINISH         (PSN_FIRST - 8)
#define PSN_QUERYCANCEL       (PSN_FIRST - 9)
#define PSN_QUERYINITIALFOCUS (PSN_FIRST - 13)

typedef struct _PSHNOTIFY
{
    NMHDR hdr;
    LPARAM lParam;
} PSHNOTIFY, *LPPSHNOTIFY;

#define PSNRET_NOERROR              0
#define PSNRET_INVALID              1
#define PSNRET_INVALID_NOCHANGEPAGE 2
#define PSNRET_MESSAGEHANDLED       3

#define PSM_SETCURSEL          (WM_USER + 101)
#define PSM_REMOVEPAGE         (WM_USER + 102)
#define PSM_ADDPAGE            (WM_USER + 103)
#define PSM_CHANGED            (WM_USER + 104)
#define PSM_RESTARTWINDOWS     (WM_USER + 105)
#define PSM_REBOOTSYSTEM       (WM_USER + 106)
#define PSM_CANCELTOCLOSE      (WM_USER + 107)
#define PSM_QUERYSIBLINGS      (WM_USER + 108)
#define PSM_UNCHANGED          (WM_USER + 109)
#define PSM_APPLY              (WM_USER + 110)
#define PSM_SETWIZBUTTONS      (WM_USER + 112)
#define PSM_PRESSBUTTON        (WM_USER + 113)
#define PSM_GETCURRENTPAGEHWND (WM_USER + 118)
#define PSM_SETTITLEW          (WM_USER + 120)

#ifdef __cplusplus
extern "C" {
#endif
BOOL WINAPI InitCommonControlsEx(const INITCOMMONCONTROLSEX* picce);
HPROPSHEETPAGE WINAPI CreatePropertySheetPageW(LPCPROPSHEETPAGEW constPropSheetPagePointer);
BOOL WINAPI DestroyPropertySheetPage(HPROPSHEETPAGE hPropPage);
#ifdef __cplusplus
}
#endif
