// The one header through which the driver reaches its platform.
//
// On Windows it is the real SDK and DDK headers. On Linux it declares the same names, values and
// layouts, implemented by the host in platform/host/. Either way the DDK pieces that mingw-w64
// lacks come from win32_ddk.h, with Microsoft's x64 layouts proven below.
#pragma once

#ifdef _WIN32
#ifndef UNICODE
#define UNICODE
#endif
#ifndef _UNICODE
#define _UNICODE
#endif
// winsock2.h must come before windows.h, which would otherwise pull in the old winsock.h.
#include <winsock2.h>
#include <ws2tcpip.h>
#include <windows.h>
#include <winspool.h>
#include <commctrl.h>
#include <commdlg.h>
#include <compstui.h>
#include <winddiui.h>
#include <htmlhelp.h>
#else
#include "host/decl/types.h"
#include "host/decl/kernel.h"
#include "host/decl/registry.h"
#include "host/decl/spooler.h"
#include "host/decl/user.h"
#include "host/decl/commctrl.h"
#include "host/decl/gdi.h"
#include "host/decl/version.h"
#include "host/decl/htmlhelp.h"
#include "host/decl/compstui.h"
#include "host/decl/commdlg.h"
#include "host/decl/winsock.h"
#endif

#include "win32_ddk.h"

// Layouts that cross a process boundary, identical on both platforms (x64).
static_assert(sizeof(WCHAR) == 2, "WCHAR is one UTF-16 code unit");
static_assert(sizeof(DEVMODEW) == 220, "DEVMODEW");
static_assert(offsetof(DEVMODEW, dmSpecVersion) == 64, "DEVMODEW.dmSpecVersion");
static_assert(offsetof(DEVMODEW, dmFields) == 72, "DEVMODEW.dmFields");
static_assert(offsetof(DEVMODEW, dmOrientation) == 76, "DEVMODEW.dmOrientation");
static_assert(offsetof(DEVMODEW, dmPrintQuality) == 90, "DEVMODEW.dmPrintQuality");
static_assert(offsetof(DEVMODEW, dmColor) == 92, "DEVMODEW.dmColor");
static_assert(offsetof(DEVMODEW, dmFormName) == 102, "DEVMODEW.dmFormName");
static_assert(offsetof(DEVMODEW, dmLogPixels) == 166, "DEVMODEW.dmLogPixels");
static_assert(offsetof(DEVMODEW, dmPanningHeight) == 216, "DEVMODEW.dmPanningHeight");
static_assert(sizeof(PRINTER_INFO_1W) == 32, "PRINTER_INFO_1W");
static_assert(sizeof(PRINTER_INFO_2W) == 136, "PRINTER_INFO_2W");
static_assert(offsetof(PRINTER_INFO_2W, pDevMode) == 56, "PRINTER_INFO_2W.pDevMode");
static_assert(offsetof(PRINTER_INFO_2W, Attributes) == 104, "PRINTER_INFO_2W.Attributes");
static_assert(sizeof(PORT_INFO_2W) == 32, "PORT_INFO_2W");
static_assert(sizeof(PRINTER_ENUM_VALUESW) == 32, "PRINTER_ENUM_VALUESW");
static_assert(offsetof(PRINTER_ENUM_VALUESW, pData) == 16, "PRINTER_ENUM_VALUESW.pData");
static_assert(sizeof(OSVERSIONINFOW) == 276, "OSVERSIONINFOW");
static_assert(sizeof(PROPSHEETUI_INFO) == 48, "PROPSHEETUI_INFO");
static_assert(sizeof(OPENFILENAMEW) == 152, "OPENFILENAMEW");
