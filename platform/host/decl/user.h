// user32 for the Linux host: windows, messages, dialogs, the standard controls, menus and
// message boxes, with the values and x64 layouts of Windows.
#pragma once

#include "types.h"

#define MB_OK                0x00000000L
#define MB_OKCANCEL          0x00000001L
#define MB_ABORTRETRYIGNORE  0x00000002L
#define MB_YESNOCANCEL       0x00000003L
#define MB_YESNO             0x00000004L
#define MB_RETRYCANCEL       0x00000005L
#define MB_CANCELTRYCONTINUE 0x00000006L
#define MB_TYPEMASK          0x0000000FL
#define MB_ICONHAND          0x00000010L
#define MB_ICONQUESTION      0x00000020L
#define MB_ICONEXCLAMATION   0x00000030L
#define MB_ICONASTERISK      0x00000040L
#define MB_ICONERROR         MB_ICONHAND
#define MB_ICONSTOP          MB_ICONHAND
#define MB_ICONWARNING       MB_ICONEXCLAMATION
#define MB_ICONINFORMATION   MB_ICONASTERISK
#define MB_DEFBUTTON1        0x00000000L
#define MB_DEFBUTTON2        0x00000100L
#define MB_DEFBUTTON3        0x00000200L
#define MB_DEFBUTTON4        0x00000300L
#define MB_DEFMASK           0x00000F00L
#define MB_APPLMODAL         0x00000000L
#define MB_SYSTEMMODAL       0x00001000L
#define MB_TASKMODAL         0x00002000L

#define IDOK       1
#define IDCANCEL   2
#define IDABORT    3
#define IDRETRY    4
#define IDIGNORE   5
#define IDYES      6
#define IDNO       7
#define IDCLOSE    8
#define IDHELP     9
#define IDTRYAGAIN 10
#define IDCONTINUE 11

// winerror.h codes of the window system.
#define ERROR_INVALID_WINDOW_HANDLE   1400L
#define ERROR_INVALID_MENU_HANDLE     1401L
#define ERROR_CANNOT_FIND_WND_CLASS   1407L
#define ERROR_WINDOW_OF_OTHER_THREAD  1408L
#define ERROR_CLASS_ALREADY_EXISTS    1410L
#define ERROR_CLASS_DOES_NOT_EXIST    1411L
#define ERROR_INVALID_INDEX           1413L
#define ERROR_CONTROL_ID_NOT_FOUND    1421L
#define ERROR_NOT_CHILD_WINDOW        1442L
#define ERROR_MENU_ITEM_NOT_FOUND     1456L
#define ERROR_INVALID_SHOWWIN_COMMAND 1409L

typedef LRESULT(CALLBACK* WNDPROC)(HWND, UINT, WPARAM, LPARAM);
typedef INT_PTR(CALLBACK* DLGPROC)(HWND, UINT, WPARAM, LPARAM);

#define MAKEWPARAM(l, h)  ((WPARAM)(DWORD)MAKELONG(l, h))
#define MAKELPARAM(l, h)  ((LPARAM)(DWORD)MAKELONG(l, h))
#define MAKELRESULT(l, h) ((LRESULT)(DWORD)MAKELONG(l, h))
#define MAKEINTATOM(i)    ((LPWSTR)((ULONG_PTR)((WORD)(i))))
#define CW_USEDEFAULT     ((int)0x80000000)

// Messages.
#define WM_NULL              0x0000
#define WM_CREATE            0x0001
#define WM_DESTROY           0x0002
#define WM_MOVE              0x0003
#define WM_SIZE              0x0005
#define WM_ACTIVATE          0x0006
#define WM_SETFOCUS          0x0007
#define WM_KILLFOCUS         0x0008
#define WM_ENABLE            0x000A
#define WM_SETREDRAW         0x000B
#define WM_SETTEXT           0x000C
#define WM_GETTEXT           0x000D
#define WM_GETTEXTLENGTH     0x000E
#define WM_PAINT             0x000F
#define WM_CLOSE             0x0010
#define WM_QUIT              0x0012
#define WM_ERASEBKGND        0x0014
#define WM_SHOWWINDOW        0x0018
#define WM_ACTIVATEAPP       0x001C
#define WM_SETCURSOR         0x0020
#define WM_GETMINMAXINFO     0x0024
#define WM_NEXTDLGCTL        0x0028
#define WM_DRAWITEM          0x002B
#define WM_MEASUREITEM       0x002C
#define WM_DELETEITEM        0x002D
#define WM_VKEYTOITEM        0x002E
#define WM_CHARTOITEM        0x002F
#define WM_SETFONT           0x0030
#define WM_GETFONT           0x0031
#define WM_QUERYDRAGICON     0x0037
#define WM_COMPAREITEM       0x0039
#define WM_WINDOWPOSCHANGING 0x0046
#define WM_WINDOWPOSCHANGED  0x0047
#define WM_NOTIFY            0x004E
#define WM_HELP              0x0053
#define WM_CONTEXTMENU       0x007B
#define WM_STYLECHANGING     0x007C
#define WM_STYLECHANGED      0x007D
#define WM_GETICON           0x007F
#define WM_SETICON           0x0080
#define WM_NCCREATE          0x0081
#define WM_NCDESTROY         0x0082
#define WM_NCCALCSIZE        0x0083
#define WM_GETDLGCODE        0x0087
#define WM_KEYDOWN           0x0100
#define WM_KEYUP             0x0101
#define WM_CHAR              0x0102
#define WM_INITDIALOG        0x0110
#define WM_COMMAND           0x0111
#define WM_SYSCOMMAND        0x0112
#define WM_TIMER             0x0113
#define WM_HSCROLL           0x0114
#define WM_VSCROLL           0x0115
#define WM_INITMENU          0x0116
#define WM_INITMENUPOPUP     0x0117
#define WM_MENUSELECT        0x011F
#define WM_ENTERIDLE         0x0121
#define WM_CTLCOLORMSGBOX    0x0132
#define WM_CTLCOLOREDIT      0x0133
#define WM_CTLCOLORLISTBOX   0x0134
#define WM_CTLCOLORBTN       0x0135
#define WM_CTLCOLORDLG       0x0136
#define WM_CTLCOLORSCROLLBAR 0x0137
#define WM_CTLCOLORSTATIC    0x0138
#define WM_MOUSEMOVE         0x0200
#define WM_LBUTTONDOWN       0x0201
#define WM_LBUTTONUP         0x0202
#define WM_CUT               0x0300
#define WM_COPY              0x0301
#define WM_PASTE             0x0302
#define WM_CLEAR             0x0303
#define WM_UNDO              0x0304
#define WM_USER              0x0400
#define WM_APP               0x8000

#define DM_GETDEFID   (WM_USER + 0)
#define DM_SETDEFID   (WM_USER + 1)
#define DM_REPOSITION (WM_USER + 2)
#define DC_HASDEFID   0x534B

// Window styles.
#define WS_OVERLAPPED   0x00000000L
#define WS_POPUP        0x80000000L
#define WS_CHILD        0x40000000L
#define WS_MINIMIZE     0x20000000L
#define WS_VISIBLE      0x10000000L
#define WS_DISABLED     0x08000000L
#define WS_CLIPSIBLINGS 0x04000000L
#define WS_CLIPCHILDREN 0x02000000L
#define WS_MAXIMIZE     0x01000000L
#define WS_CAPTION      0x00C00000L
#define WS_BORDER       0x00800000L
#define WS_DLGFRAME     0x00400000L
#define WS_VSCROLL      0x00200000L
#define WS_HSCROLL      0x00100000L
#define WS_SYSMENU      0x00080000L
#define WS_THICKFRAME   0x00040000L
#define WS_GROUP        0x00020000L
#define WS_TABSTOP      0x00010000L
#define WS_MINIMIZEBOX  0x00020000L
#define WS_MAXIMIZEBOX  0x00010000L
#define WS_CHILDWINDOW  WS_CHILD
#define WS_SIZEBOX      WS_THICKFRAME
#define WS_OVERLAPPEDWINDOW                                                                        \
    (WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX)
#define WS_POPUPWINDOW (WS_POPUP | WS_BORDER | WS_SYSMENU)

#define WS_EX_DLGMODALFRAME  0x00000001L
#define WS_EX_NOPARENTNOTIFY 0x00000004L
#define WS_EX_TOPMOST        0x00000008L
#define WS_EX_TRANSPARENT    0x00000020L
#define WS_EX_TOOLWINDOW     0x00000080L
#define WS_EX_WINDOWEDGE     0x00000100L
#define WS_EX_CLIENTEDGE     0x00000200L
#define WS_EX_CONTEXTHELP    0x00000400L
#define WS_EX_RIGHT          0x00001000L
#define WS_EX_CONTROLPARENT  0x00010000L
#define WS_EX_STATICEDGE     0x00020000L
#define WS_EX_APPWINDOW      0x00040000L

// Dialog styles.
#define DS_ABSALIGN      0x0001L
#define DS_SYSMODAL      0x0002L
#define DS_3DLOOK        0x0004L
#define DS_FIXEDSYS      0x0008L
#define DS_NOFAILCREATE  0x0010L
#define DS_LOCALEDIT     0x0020L
#define DS_SETFONT       0x0040L
#define DS_MODALFRAME    0x0080L
#define DS_NOIDLEMSG     0x0100L
#define DS_SETFOREGROUND 0x0200L
#define DS_CONTROL       0x0400L
#define DS_CENTER        0x0800L
#define DS_CENTERMOUSE   0x1000L
#define DS_CONTEXTHELP   0x2000L
#define DS_SHELLFONT     (DS_SETFONT | DS_FIXEDSYS)

// Buttons.
#define BS_PUSHBUTTON      0x00000000L
#define BS_DEFPUSHBUTTON   0x00000001L
#define BS_CHECKBOX        0x00000002L
#define BS_AUTOCHECKBOX    0x00000003L
#define BS_RADIOBUTTON     0x00000004L
#define BS_3STATE          0x00000005L
#define BS_AUTO3STATE      0x00000006L
#define BS_GROUPBOX        0x00000007L
#define BS_USERBUTTON      0x00000008L
#define BS_AUTORADIOBUTTON 0x00000009L
#define BS_PUSHBOX         0x0000000AL
#define BS_OWNERDRAW       0x0000000BL
#define BS_TYPEMASK        0x0000000FL
#define BS_LEFTTEXT        0x00000020L
#define BS_TEXT            0x00000000L
#define BS_ICON            0x00000040L
#define BS_BITMAP          0x00000080L
#define BS_LEFT            0x00000100L
#define BS_RIGHT           0x00000200L
#define BS_CENTER          0x00000300L
#define BS_TOP             0x00000400L
#define BS_BOTTOM          0x00000800L
#define BS_VCENTER         0x00000C00L
#define BS_PUSHLIKE        0x00001000L
#define BS_MULTILINE       0x00002000L
#define BS_NOTIFY          0x00004000L
#define BS_FLAT            0x00008000L

#define BN_CLICKED       0
#define BN_PAINT         1
#define BN_HILITE        2
#define BN_UNHILITE      3
#define BN_DISABLE       4
#define BN_DOUBLECLICKED 5
#define BN_SETFOCUS      6
#define BN_KILLFOCUS     7

#define BM_GETCHECK     0x00F0
#define BM_SETCHECK     0x00F1
#define BM_GETSTATE     0x00F2
#define BM_SETSTATE     0x00F3
#define BM_SETSTYLE     0x00F4
#define BM_CLICK        0x00F5
#define BM_GETIMAGE     0x00F6
#define BM_SETIMAGE     0x00F7
#define BM_SETDONTCLICK 0x00F8

#define BST_UNCHECKED     0x0000
#define BST_CHECKED       0x0001
#define BST_INDETERMINATE 0x0002
#define BST_PUSHED        0x0004
#define BST_FOCUS         0x0008

#ifndef IMAGE_BITMAP
#define IMAGE_BITMAP 0
#endif
#ifndef IMAGE_ICON
#define IMAGE_ICON 1
#endif

// Edit controls.
#define ES_LEFT        0x0000L
#define ES_CENTER      0x0001L
#define ES_RIGHT       0x0002L
#define ES_MULTILINE   0x0004L
#define ES_UPPERCASE   0x0008L
#define ES_LOWERCASE   0x0010L
#define ES_PASSWORD    0x0020L
#define ES_AUTOVSCROLL 0x0040L
#define ES_AUTOHSCROLL 0x0080L
#define ES_NOHIDESEL   0x0100L
#define ES_OEMCONVERT  0x0400L
#define ES_READONLY    0x0800L
#define ES_WANTRETURN  0x1000L
#define ES_NUMBER      0x2000L

#define EN_SETFOCUS  0x0100
#define EN_KILLFOCUS 0x0200
#define EN_CHANGE    0x0300
#define EN_UPDATE    0x0400
#define EN_ERRSPACE  0x0500
#define EN_MAXTEXT   0x0501
#define EN_HSCROLL   0x0601
#define EN_VSCROLL   0x0602

#define EM_GETSEL          0x00B0
#define EM_SETSEL          0x00B1
#define EM_GETRECT         0x00B2
#define EM_SETRECT         0x00B3
#define EM_SCROLLCARET     0x00B7
#define EM_GETMODIFY       0x00B8
#define EM_SETMODIFY       0x00B9
#define EM_GETLINECOUNT    0x00BA
#define EM_LINEINDEX       0x00BB
#define EM_LINELENGTH      0x00C1
#define EM_REPLACESEL      0x00C2
#define EM_GETLINE         0x00C4
#define EM_LIMITTEXT       0x00C5
#define EM_SETLIMITTEXT    EM_LIMITTEXT
#define EM_CANUNDO         0x00C6
#define EM_UNDO            0x00C7
#define EM_SETPASSWORDCHAR 0x00CC
#define EM_EMPTYUNDOBUFFER 0x00CD
#define EM_SETREADONLY     0x00CF
#define EM_GETPASSWORDCHAR 0x00D2
#define EM_GETLIMITTEXT    0x00D5

// Statics.
#define SS_LEFT           0x00000000L
#define SS_CENTER         0x00000001L
#define SS_RIGHT          0x00000002L
#define SS_ICON           0x00000003L
#define SS_BLACKRECT      0x00000004L
#define SS_GRAYRECT       0x00000005L
#define SS_WHITERECT      0x00000006L
#define SS_BLACKFRAME     0x00000007L
#define SS_GRAYFRAME      0x00000008L
#define SS_WHITEFRAME     0x00000009L
#define SS_SIMPLE         0x0000000BL
#define SS_LEFTNOWORDWRAP 0x0000000CL
#define SS_OWNERDRAW      0x0000000DL
#define SS_BITMAP         0x0000000EL
#define SS_ETCHEDHORZ     0x00000010L
#define SS_ETCHEDVERT     0x00000011L
#define SS_ETCHEDFRAME    0x00000012L
#define SS_TYPEMASK       0x0000001FL
#define SS_NOPREFIX       0x00000080L
#define SS_NOTIFY         0x00000100L
#define SS_CENTERIMAGE    0x00000200L
#define SS_REALSIZEIMAGE  0x00000800L
#define SS_SUNKEN         0x00001000L

#define STN_CLICKED 0

#define STM_SETICON  0x0170
#define STM_GETICON  0x0171
#define STM_SETIMAGE 0x0172
#define STM_GETIMAGE 0x0173

// Combo boxes.
#define CBS_SIMPLE            0x0001L
#define CBS_DROPDOWN          0x0002L
#define CBS_DROPDOWNLIST      0x0003L
#define CBS_OWNERDRAWFIXED    0x0010L
#define CBS_OWNERDRAWVARIABLE 0x0020L
#define CBS_AUTOHSCROLL       0x0040L
#define CBS_OEMCONVERT        0x0080L
#define CBS_SORT              0x0100L
#define CBS_HASSTRINGS        0x0200L
#define CBS_NOINTEGRALHEIGHT  0x0400L
#define CBS_DISABLENOSCROLL   0x0800L
#define CBS_UPPERCASE         0x2000L
#define CBS_LOWERCASE         0x4000L

#define CB_OKAY     0
#define CB_ERR      (-1)
#define CB_ERRSPACE (-2)

#define CBN_ERRSPACE     (-1)
#define CBN_SELCHANGE    1
#define CBN_DBLCLK       2
#define CBN_SETFOCUS     3
#define CBN_KILLFOCUS    4
#define CBN_EDITCHANGE   5
#define CBN_EDITUPDATE   6
#define CBN_DROPDOWN     7
#define CBN_CLOSEUP      8
#define CBN_SELENDOK     9
#define CBN_SELENDCANCEL 10

#define CB_GETEDITSEL      0x0140
#define CB_LIMITTEXT       0x0141
#define CB_SETEDITSEL      0x0142
#define CB_ADDSTRING       0x0143
#define CB_DELETESTRING    0x0144
#define CB_GETCOUNT        0x0146
#define CB_GETCURSEL       0x0147
#define CB_GETLBTEXT       0x0148
#define CB_GETLBTEXTLEN    0x0149
#define CB_INSERTSTRING    0x014A
#define CB_RESETCONTENT    0x014B
#define CB_FINDSTRING      0x014C
#define CB_SELECTSTRING    0x014D
#define CB_SETCURSEL       0x014E
#define CB_SHOWDROPDOWN    0x014F
#define CB_GETITEMDATA     0x0150
#define CB_SETITEMDATA     0x0151
#define CB_SETITEMHEIGHT   0x0153
#define CB_GETITEMHEIGHT   0x0154
#define CB_SETEXTENDEDUI   0x0155
#define CB_GETEXTENDEDUI   0x0156
#define CB_GETDROPPEDSTATE 0x0157
#define CB_FINDSTRINGEXACT 0x0158
#define CB_GETTOPINDEX     0x015B
#define CB_SETTOPINDEX     0x015C
#define CB_GETDROPPEDWIDTH 0x015F
#define CB_SETDROPPEDWIDTH 0x0160
#define CB_INITSTORAGE     0x0161

// List boxes.
#define LBS_NOTIFY            0x0001L
#define LBS_SORT              0x0002L
#define LBS_NOREDRAW          0x0004L
#define LBS_MULTIPLESEL       0x0008L
#define LBS_OWNERDRAWFIXED    0x0010L
#define LBS_OWNERDRAWVARIABLE 0x0020L
#define LBS_HASSTRINGS        0x0040L
#define LBS_USETABSTOPS       0x0080L
#define LBS_NOINTEGRALHEIGHT  0x0100L
#define LBS_MULTICOLUMN       0x0200L
#define LBS_WANTKEYBOARDINPUT 0x0400L
#define LBS_EXTENDEDSEL       0x0800L
#define LBS_DISABLENOSCROLL   0x1000L
#define LBS_NODATA            0x2000L
#define LBS_NOSEL             0x4000L
#define LBS_STANDARD          (LBS_NOTIFY | LBS_SORT | WS_VSCROLL | WS_BORDER)

#define LB_OKAY     0
#define LB_ERR      (-1)
#define LB_ERRSPACE (-2)

#define LBN_ERRSPACE  (-2)
#define LBN_SELCHANGE 1
#define LBN_DBLCLK    2
#define LBN_SELCANCEL 3
#define LBN_SETFOCUS  4
#define LBN_KILLFOCUS 5

#define LB_ADDSTRING       0x0180
#define LB_INSERTSTRING    0x0181
#define LB_DELETESTRING    0x0182
#define LB_RESETCONTENT    0x0184
#define LB_SETSEL          0x0185
#define LB_SETCURSEL       0x0186
#define LB_GETSEL          0x0187
#define LB_GETCURSEL       0x0188
#define LB_GETTEXT         0x0189
#define LB_GETTEXTLEN      0x018A
#define LB_GETCOUNT        0x018B
#define LB_SELECTSTRING    0x018C
#define LB_GETTOPINDEX     0x018E
#define LB_FINDSTRING      0x018F
#define LB_GETSELCOUNT     0x0190
#define LB_GETSELITEMS     0x0191
#define LB_SETTOPINDEX     0x0197
#define LB_GETITEMDATA     0x0199
#define LB_SETITEMDATA     0x019A
#define LB_SETITEMHEIGHT   0x01A0
#define LB_GETITEMHEIGHT   0x01A1
#define LB_FINDSTRINGEXACT 0x01A2

// Scroll codes of WM_HSCROLL and WM_VSCROLL.
#define SB_LINEUP        0
#define SB_LINELEFT      0
#define SB_LINEDOWN      1
#define SB_LINERIGHT     1
#define SB_PAGEUP        2
#define SB_PAGELEFT      2
#define SB_PAGEDOWN      3
#define SB_PAGERIGHT     3
#define SB_THUMBPOSITION 4
#define SB_THUMBTRACK    5
#define SB_TOP           6
#define SB_LEFT          6
#define SB_BOTTOM        7
#define SB_RIGHT         7
#define SB_ENDSCROLL     8

// Virtual keys the host's controls understand.
#define VK_BACK   0x08
#define VK_TAB    0x09
#define VK_RETURN 0x0D
#define VK_ESCAPE 0x1B
#define VK_SPACE  0x20
#define VK_END    0x23
#define VK_HOME   0x24
#define VK_LEFT   0x25
#define VK_UP     0x26
#define VK_RIGHT  0x27
#define VK_DOWN   0x28
#define VK_DELETE 0x2E

// Window data indices; the dialog ones are x64 offsets.
#define GWLP_WNDPROC    (-4)
#define GWLP_HINSTANCE  (-6)
#define GWLP_HWNDPARENT (-8)
#define GWLP_ID         (-12)
#define GWL_ID          (-12)
#define GWL_STYLE       (-16)
#define GWL_EXSTYLE     (-20)
#define GWLP_USERDATA   (-21)
#define GWL_USERDATA    (-21)
#define DWLP_MSGRESULT  0
#define DWLP_DLGPROC    8
#define DWLP_USER       16
#define DLGWINDOWEXTRA  30

#define GW_HWNDFIRST    0
#define GW_HWNDLAST     1
#define GW_HWNDNEXT     2
#define GW_HWNDPREV     3
#define GW_OWNER        4
#define GW_CHILD        5
#define GW_ENABLEDPOPUP 6
#define GA_PARENT       1
#define GA_ROOT         2
#define GA_ROOTOWNER    3

#define SW_HIDE            0
#define SW_SHOWNORMAL      1
#define SW_NORMAL          1
#define SW_SHOWMINIMIZED   2
#define SW_SHOWMAXIMIZED   3
#define SW_MAXIMIZE        3
#define SW_SHOWNOACTIVATE  4
#define SW_SHOW            5
#define SW_MINIMIZE        6
#define SW_SHOWMINNOACTIVE 7
#define SW_SHOWNA          8
#define SW_RESTORE         9
#define SW_SHOWDEFAULT     10
#define SW_FORCEMINIMIZE   11

#define SWP_NOSIZE         0x0001
#define SWP_NOMOVE         0x0002
#define SWP_NOZORDER       0x0004
#define SWP_NOREDRAW       0x0008
#define SWP_NOACTIVATE     0x0010
#define SWP_FRAMECHANGED   0x0020
#define SWP_SHOWWINDOW     0x0040
#define SWP_HIDEWINDOW     0x0080
#define SWP_NOCOPYBITS     0x0100
#define SWP_NOOWNERZORDER  0x0200
#define SWP_NOSENDCHANGING 0x0400
#define SWP_DEFERERASE     0x2000
#define SWP_ASYNCWINDOWPOS 0x4000

#define HWND_TOP       ((HWND)0)
#define HWND_BOTTOM    ((HWND)1)
#define HWND_TOPMOST   ((HWND)-1)
#define HWND_NOTOPMOST ((HWND)-2)
#define HWND_MESSAGE   ((HWND)-3)

#define WPF_SETMINPOSITION       0x0001
#define WPF_RESTORETOMAXIMIZED   0x0002
#define WPF_ASYNCWINDOWPLACEMENT 0x0004

#define SM_CXSCREEN        0
#define SM_CYSCREEN        1
#define SM_CXVSCROLL       2
#define SM_CYHSCROLL       3
#define SM_CYCAPTION       4
#define SM_CXBORDER        5
#define SM_CYBORDER        6
#define SM_CXDLGFRAME      7
#define SM_CYDLGFRAME      8
#define SM_CXFIXEDFRAME    SM_CXDLGFRAME
#define SM_CYFIXEDFRAME    SM_CYDLGFRAME
#define SM_CXICON          11
#define SM_CYICON          12
#define SM_CYMENU          15
#define SM_CXFULLSCREEN    16
#define SM_CYFULLSCREEN    17
#define SM_CXMIN           28
#define SM_CYMIN           29
#define SM_CXFRAME         32
#define SM_CYFRAME         33
#define SM_CXSIZEFRAME     SM_CXFRAME
#define SM_CYSIZEFRAME     SM_CYFRAME
#define SM_CXEDGE          45
#define SM_CYEDGE          46
#define SM_CXSMICON        49
#define SM_CYSMICON        50
#define SM_CXMAXIMIZED     61
#define SM_CYMAXIMIZED     62
#define SM_XVIRTUALSCREEN  76
#define SM_YVIRTUALSCREEN  77
#define SM_CXVIRTUALSCREEN 78
#define SM_CYVIRTUALSCREEN 79
#define SM_CMONITORS       80
#define SM_CXPADDEDBORDER  92

#define SPI_GETWORKAREA 0x0030

// Menus.
#define MF_INSERT          0x00000000L
#define MF_CHANGE          0x00000080L
#define MF_APPEND          0x00000100L
#define MF_DELETE          0x00000200L
#define MF_REMOVE          0x00001000L
#define MF_BYCOMMAND       0x00000000L
#define MF_BYPOSITION      0x00000400L
#define MF_SEPARATOR       0x00000800L
#define MF_ENABLED         0x00000000L
#define MF_GRAYED          0x00000001L
#define MF_DISABLED        0x00000002L
#define MF_UNCHECKED       0x00000000L
#define MF_CHECKED         0x00000008L
#define MF_USECHECKBITMAPS 0x00000200L
#define MF_STRING          0x00000000L
#define MF_BITMAP          0x00000004L
#define MF_OWNERDRAW       0x00000100L
#define MF_POPUP           0x00000010L
#define MF_MENUBARBREAK    0x00000020L
#define MF_MENUBREAK       0x00000040L
#define MF_HILITE          0x00000080L
#define MF_DEFAULT         0x00001000L
#define MF_HELP            0x00004000L
#define MF_END             0x00000080L
#define MFT_STRING         MF_STRING
#define MFT_SEPARATOR      MF_SEPARATOR
#define MFT_RADIOCHECK     0x00000200L
#define MFS_GRAYED         0x00000003L
#define MFS_DISABLED       MFS_GRAYED
#define MFS_CHECKED        MF_CHECKED
#define MFS_ENABLED        MF_ENABLED
#define MFS_DEFAULT        MF_DEFAULT

#define TPM_LEFTBUTTON   0x0000L
#define TPM_RIGHTBUTTON  0x0002L
#define TPM_LEFTALIGN    0x0000L
#define TPM_CENTERALIGN  0x0004L
#define TPM_RIGHTALIGN   0x0008L
#define TPM_TOPALIGN     0x0000L
#define TPM_VCENTERALIGN 0x0010L
#define TPM_BOTTOMALIGN  0x0020L
#define TPM_VERTICAL     0x0040L
#define TPM_NONOTIFY     0x0080L
#define TPM_RETURNCMD    0x0100L
#define TPM_RECURSE      0x0001L
#define TPM_NOANIMATION  0x4000L

typedef struct tagWNDCLASSW
{
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCWSTR lpszMenuName;
    LPCWSTR lpszClassName;
} WNDCLASSW, *PWNDCLASSW, *LPWNDCLASSW;

typedef struct tagWNDCLASSEXW
{
    UINT cbSize;
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCWSTR lpszMenuName;
    LPCWSTR lpszClassName;
    HICON hIconSm;
} WNDCLASSEXW, *PWNDCLASSEXW, *LPWNDCLASSEXW;

typedef struct tagCREATESTRUCTW
{
    LPVOID lpCreateParams;
    HINSTANCE hInstance;
    HMENU hMenu;
    HWND hwndParent;
    int cy;
    int cx;
    int y;
    int x;
    LONG style;
    LPCWSTR lpszName;
    LPCWSTR lpszClass;
    DWORD dwExStyle;
} CREATESTRUCTW, *LPCREATESTRUCTW;

typedef struct tagWINDOWPLACEMENT
{
    UINT length;
    UINT flags;
    UINT showCmd;
    POINT ptMinPosition;
    POINT ptMaxPosition;
    RECT rcNormalPosition;
} WINDOWPLACEMENT, *PWINDOWPLACEMENT, *LPWINDOWPLACEMENT;

typedef struct tagMSG
{
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
} MSG, *PMSG, *LPMSG;

// WM_HELP's lParam.
typedef struct tagHELPINFO
{
    UINT cbSize;
    int iContextType;
    int iCtrlId;
    HANDLE hItemHandle;
    DWORD_PTR dwContextId;
    POINT MousePos;
} HELPINFO, *LPHELPINFO;

#define HELPINFO_WINDOW   0x0001
#define HELPINFO_MENUITEM 0x0002

typedef struct tagTPMPARAMS
{
    UINT cbSize;
    RECT rcExclude;
} TPMPARAMS, *LPTPMPARAMS;

// The fixed head of an old-style template; the items and strings follow, WORD-aligned.
#pragma pack(push, 2)
typedef struct
{
    DWORD style;
    DWORD dwExtendedStyle;
    WORD cdit;
    short x;
    short y;
    short cx;
    short cy;
} DLGTEMPLATE, *LPDLGTEMPLATEW, *LPDLGTEMPLATE;
#pragma pack(pop)
typedef const DLGTEMPLATE* LPCDLGTEMPLATEW;
typedef const DLGTEMPLATE* LPCDLGTEMPLATE;

#ifdef __cplusplus
extern "C" {
#endif
int WINAPI MessageBoxW(HWND hWnd, LPCWSTR lpText, LPCWSTR lpCaption, UINT uType);
BOOL WINAPI MessageBeep(UINT uType);
HWND WINAPI GetDesktopWindow(void);
// Copies string uID of the module's string tables into lpBuffer (at most cchBufferMax - 1
// characters and a terminator) and returns its length; cchBufferMax 0 stores a read-only
// pointer to the string in *lpBuffer instead.
int WINAPI LoadStringW(HINSTANCE hInstance, UINT uID, LPWSTR lpBuffer, int cchBufferMax);

// Classes and windows.
ATOM WINAPI RegisterClassW(const WNDCLASSW* lpWndClass);
ATOM WINAPI RegisterClassExW(const WNDCLASSEXW* lpWndClass);
BOOL WINAPI UnregisterClassW(LPCWSTR lpClassName, HINSTANCE hInstance);
int WINAPI GetClassNameW(HWND hWnd, LPWSTR lpClassName, int nMaxCount);
HWND WINAPI CreateWindowExW(DWORD dwExStyle, LPCWSTR lpClassName, LPCWSTR lpWindowName,
                            DWORD dwStyle, int X, int Y, int nWidth, int nHeight, HWND hWndParent,
                            HMENU hMenu, HINSTANCE hInstance, LPVOID lpParam);
BOOL WINAPI DestroyWindow(HWND hWnd);
BOOL WINAPI IsWindow(HWND hWnd);
BOOL WINAPI IsChild(HWND hWndParent, HWND hWnd);
HWND WINAPI GetParent(HWND hWnd);
HWND WINAPI GetAncestor(HWND hwnd, UINT gaFlags);
HWND WINAPI GetWindow(HWND hWnd, UINT uCmd);
HWND WINAPI GetDlgItem(HWND hDlg, int nIDDlgItem);
int WINAPI GetDlgCtrlID(HWND hWnd);
BOOL WINAPI SetWindowTextW(HWND hWnd, LPCWSTR lpString);
int WINAPI GetWindowTextW(HWND hWnd, LPWSTR lpString, int nMaxCount);
int WINAPI GetWindowTextLengthW(HWND hWnd);
LONG WINAPI GetWindowLongW(HWND hWnd, int nIndex);
LONG WINAPI SetWindowLongW(HWND hWnd, int nIndex, LONG dwNewLong);
LONG_PTR WINAPI GetWindowLongPtrW(HWND hWnd, int nIndex);
LONG_PTR WINAPI SetWindowLongPtrW(HWND hWnd, int nIndex, LONG_PTR dwNewLong);
LRESULT WINAPI CallWindowProcW(WNDPROC lpPrevWndFunc, HWND hWnd, UINT Msg, WPARAM wParam,
                               LPARAM lParam);
LRESULT WINAPI DefWindowProcW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);
LRESULT WINAPI DefDlgProcW(HWND hDlg, UINT Msg, WPARAM wParam, LPARAM lParam);
LRESULT WINAPI SendMessageW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);
BOOL WINAPI PostMessageW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);
BOOL WINAPI EnableWindow(HWND hWnd, BOOL bEnable);
BOOL WINAPI IsWindowEnabled(HWND hWnd);
BOOL WINAPI ShowWindow(HWND hWnd, int nCmdShow);
BOOL WINAPI IsWindowVisible(HWND hWnd);
HWND WINAPI SetFocus(HWND hWnd);
HWND WINAPI GetFocus(void);
HWND WINAPI GetActiveWindow(void);
HWND WINAPI SetActiveWindow(HWND hWnd);
BOOL WINAPI SetForegroundWindow(HWND hWnd);
BOOL WINAPI GetWindowRect(HWND hWnd, LPRECT lpRect);
BOOL WINAPI GetClientRect(HWND hWnd, LPRECT lpRect);
BOOL WINAPI SetWindowPos(HWND hWnd, HWND hWndInsertAfter, int X, int Y, int cx, int cy,
                         UINT uFlags);
BOOL WINAPI MoveWindow(HWND hWnd, int X, int Y, int nWidth, int nHeight, BOOL bRepaint);
BOOL WINAPI GetWindowPlacement(HWND hWnd, WINDOWPLACEMENT* lpwndpl);
BOOL WINAPI SetWindowPlacement(HWND hWnd, const WINDOWPLACEMENT* lpwndpl);
BOOL WINAPI ScreenToClient(HWND hWnd, LPPOINT lpPoint);
BOOL WINAPI ClientToScreen(HWND hWnd, LPPOINT lpPoint);
int WINAPI MapWindowPoints(HWND hWndFrom, HWND hWndTo, LPPOINT lpPoints, UINT cPoints);
BOOL WINAPI InvalidateRect(HWND hWnd, const RECT* lpRect, BOOL bErase);
BOOL WINAPI UpdateWindow(HWND hWnd);
int WINAPI GetSystemMetrics(int nIndex);
BOOL WINAPI SystemParametersInfoW(UINT uiAction, UINT uiParam, PVOID pvParam, UINT fWinIni);

// Dialogs.
INT_PTR WINAPI DialogBoxParamW(HINSTANCE hInstance, LPCWSTR lpTemplateName, HWND hWndParent,
                               DLGPROC lpDialogFunc, LPARAM dwInitParam);
INT_PTR WINAPI DialogBoxIndirectParamW(HINSTANCE hInstance, LPCDLGTEMPLATEW hDialogTemplate,
                                       HWND hWndParent, DLGPROC lpDialogFunc, LPARAM dwInitParam);
HWND WINAPI CreateDialogParamW(HINSTANCE hInstance, LPCWSTR lpTemplateName, HWND hWndParent,
                               DLGPROC lpDialogFunc, LPARAM dwInitParam);
HWND WINAPI CreateDialogIndirectParamW(HINSTANCE hInstance, LPCDLGTEMPLATEW lpTemplate,
                                       HWND hWndParent, DLGPROC lpDialogFunc, LPARAM dwInitParam);
BOOL WINAPI EndDialog(HWND hDlg, INT_PTR nResult);
BOOL WINAPI MapDialogRect(HWND hDlg, LPRECT lpRect);
LONG WINAPI GetDialogBaseUnits(void);
UINT WINAPI GetDlgItemTextW(HWND hDlg, int nIDDlgItem, LPWSTR lpString, int cchMax);
BOOL WINAPI SetDlgItemTextW(HWND hDlg, int nIDDlgItem, LPCWSTR lpString);
UINT WINAPI GetDlgItemInt(HWND hDlg, int nIDDlgItem, BOOL* lpTranslated, BOOL bSigned);
BOOL WINAPI SetDlgItemInt(HWND hDlg, int nIDDlgItem, UINT uValue, BOOL bSigned);
LRESULT WINAPI SendDlgItemMessageW(HWND hDlg, int nIDDlgItem, UINT Msg, WPARAM wParam,
                                   LPARAM lParam);
BOOL WINAPI CheckDlgButton(HWND hDlg, int nIDButton, UINT uCheck);
UINT WINAPI IsDlgButtonChecked(HWND hDlg, int nIDButton);
BOOL WINAPI CheckRadioButton(HWND hDlg, int nIDFirstButton, int nIDLastButton, int nIDCheckButton);

// Menus.
HMENU WINAPI LoadMenuW(HINSTANCE hInstance, LPCWSTR lpMenuName);
HMENU WINAPI CreatePopupMenu(void);
BOOL WINAPI AppendMenuW(HMENU hMenu, UINT uFlags, UINT_PTR uIDNewItem, LPCWSTR lpNewItem);
HMENU WINAPI GetSubMenu(HMENU hMenu, int nPos);
int WINAPI GetMenuItemCount(HMENU hMenu);
UINT WINAPI GetMenuItemID(HMENU hMenu, int nPos);
UINT WINAPI GetMenuState(HMENU hMenu, UINT uId, UINT uFlags);
DWORD WINAPI CheckMenuItem(HMENU hMenu, UINT uIDCheckItem, UINT uCheck);
BOOL WINAPI EnableMenuItem(HMENU hMenu, UINT uIDEnableItem, UINT uEnable);
BOOL WINAPI DestroyMenu(HMENU hMenu);
BOOL WINAPI TrackPopupMenu(HMENU hMenu, UINT uFlags, int x, int y, int nReserved, HWND hWnd,
                           const RECT* prcRect);
BOOL WINAPI TrackPopupMenuEx(HMENU hMenu, UINT uFlags, int x, int y, HWND hwnd, LPTPMPARAMS lptpm);
#ifdef __cplusplus
}
#endif
