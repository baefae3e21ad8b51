// The debug switches' reading from the printer data key "DebugSettings", straight from the
// spooler or through the call's snapshot. The switches themselves live with the trace layer.
#pragma once

#include "../../platform/win32.h"

class QLMPrinterSnapshot;

// Reads one 32-bit switch from the printer data key "DebugSettings" into *pTarget. A failed
// read, or a value that is not four bytes, leaves *pTarget alone and is traced.
BOOL ReadDebugSwitch(HANDLE hPrinter, const WCHAR* pszName, BOOL* pTarget);
// The same from the key's values as the call's snapshot holds them.
BOOL ReadDebugSwitch(QLMPrinterSnapshot& snapshot, const WCHAR* pszName, BOOL* pTarget);
// "DBG_AssertMsgBox", "DBG_Toggle_EMF_Spooling", then every row of the switch table: one
// enumeration of the key for all of them.
void ReadAllDebugSwitches(HANDLE hPrinter);
void ReadAllDebugSwitches(QLMPrinterSnapshot& snapshot);
