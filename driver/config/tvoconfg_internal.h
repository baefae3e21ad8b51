// What the configuration's own units share and no one else uses.
#pragma once

#include "../../platform/win32.h"
#include "../foundation/qlmtrace.h"

inline BOOL TraceConfig()
{
    return g_bTraceTVOConfig;
}

// The spooler's value names are not const in its prototypes; it does not write to them.
inline LPWSTR ValueName(const WCHAR* pszName)
{
    return const_cast<LPWSTR>(pszName);
}
