// Window, dialog and control style values for the templates of QLMRes.rc. The script is
// compiled without the platform's headers, so that Linux and Windows builds read the same
// numbers; these are the values the window system defines.
#ifndef DLGSTYLES_H
#define DLGSTYLES_H

#ifndef IDOK
#define IDOK     1
#define IDCANCEL 2
#endif

#define WS_POPUP    0x80000000
#define WS_CHILD    0x40000000
#define WS_VISIBLE  0x10000000
#define WS_DISABLED 0x08000000
#define WS_CAPTION  0x00C00000
#define WS_BORDER   0x00800000
#define WS_VSCROLL  0x00200000
#define WS_SYSMENU  0x00080000
#define WS_GROUP    0x00020000
#define WS_TABSTOP  0x00010000

#define DS_MODALFRAME 0x0080
#define DS_SETFONT    0x0040
#define DS_FIXEDSYS   0x0008
#define DS_SHELLFONT  (DS_SETFONT | DS_FIXEDSYS)

#define BS_PUSHBUTTON      0x0000
#define BS_DEFPUSHBUTTON   0x0001
#define BS_AUTOCHECKBOX    0x0003
#define BS_GROUPBOX        0x0007
#define BS_AUTORADIOBUTTON 0x0009

#define ES_LEFT        0x0000
#define ES_AUTOHSCROLL 0x0080

#define SS_LEFT           0x0000
#define SS_RIGHT          0x0002
#define SS_ICON           0x0003
#define SS_LEFTNOWORDWRAP 0x000C
#define SS_BITMAP         0x000E
#define SS_NOPREFIX       0x0080
#define SS_SUNKEN         0x1000

#define CBS_DROPDOWN     0x0002
#define CBS_DROPDOWNLIST 0x0003
#define CBS_AUTOHSCROLL  0x0040

#define LBS_NOTIFY           0x0001
#define LBS_NOINTEGRALHEIGHT 0x0100

#define UDS_SETBUDDYINT 0x0002
#define UDS_ALIGNRIGHT  0x0004
#define UDS_AUTOBUDDY   0x0010
#define UDS_ARROWKEYS   0x0020
#define UDS_NOTHOUSANDS 0x0080

#define TBS_AUTOTICKS 0x0001

#define MF_POPUP 0x0010

#endif
