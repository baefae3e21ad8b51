// HTML Help for the Linux host: the calls are recorded, nothing is shown.
#pragma once

#include "gdi.h"
#include "types.h"

#define HH_DISPLAY_TOPIC       0x0000
#define HH_HELP_FINDER         0x0000
#define HH_DISPLAY_TOC         0x0001
#define HH_DISPLAY_INDEX       0x0002
#define HH_DISPLAY_SEARCH      0x0003
#define HH_SET_WIN_TYPE        0x0004
#define HH_GET_WIN_TYPE        0x0005
#define HH_GET_WIN_HANDLE      0x0006
#define HH_ENUM_INFO_TYPE      0x0007
#define HH_SET_INFO_TYPE       0x0008
#define HH_SYNC                0x0009
#define HH_KEYWORD_LOOKUP      0x000D
#define HH_DISPLAY_TEXT_POPUP  0x000E
#define HH_HELP_CONTEXT        0x000F
#define HH_TP_HELP_CONTEXTMENU 0x0010
#define HH_TP_HELP_WM_HELP     0x0011
#define HH_CLOSE_ALL           0x0012
#define HH_ALINK_LOOKUP        0x0013
#define HH_GET_LAST_ERROR      0x0014
#define HH_INITIALIZE          0x001C
#define HH_UNINITIALIZE        0x001D

typedef struct tagHH_POPUP
{
    int cbStruct;
    HINSTANCE hinst;
    UINT idString;
    LPCWSTR pszText;
    POINT pt;
    COLORREF clrForeground; // -1: the default
    COLORREF clrBackground;
    RECT rcMargins; // -1 members: the default
    LPCWSTR pszFont;
} HH_POPUP;

extern "C" {

HWND WINAPI HtmlHelpW(HWND hwndCaller, LPCWSTR pszFile, UINT uCommand, DWORD_PTR dwData);

} // extern "C"

static_assert(sizeof(HH_POPUP) == 72, "HH_POPUP");
