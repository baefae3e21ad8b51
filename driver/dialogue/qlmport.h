// The printer's address, derived from its port, and the first-time test of a queue.
//
// The text results live in module buffers, one for each function, that the next call of the
// same function overwrites: copy the text at once.
#pragma once

#include "../../platform/win32.h"

#include <cstddef>

class QLMPrinterSnapshot;

// Room of each text result, terminator included.
constexpr size_t kQLM_PORT_CB = 127;
constexpr size_t kQLM_ADDRESS_CB = 127;
// Room of the stored map value: 127 wide characters.
constexpr DWORD kQLM_MAP_VALUE_CB = 254;

// 1 if this user has never confirmed a sheet of this printer: the per-user value
// "QLMIsFirstTime" cannot be read, whatever the reason. Its value does not count. A null
// handle asserts and gives 0.
BOOL QLMIsFirstTimeEver(HANDLE hPrinter);
// The same with the queue's name from the call's snapshot.
BOOL QLMIsFirstTimeEver(QLMPrinterSnapshot& snapshot);

// The queue's port name in 8-bit form (cut to fit), or null.
char* QLMGetPortName(HANDLE hPrinter);
// The queue's port name, wide (cut to fit), or null.
WCHAR* QLMGetPortNameU(HANDLE hPrinter);

// Fills IPAddress (cbAddress bytes, the text cut to fit) with the address that the printer
// data value "QLMMapPort:<port>" holds. Without a value, or with one that cannot be read,
// IPAddress stays as it was.
void QLMGetIPAddressMap(HANDLE hPrinter, LPCWSTR pPortName, char* IPAddress,
                        size_t cbAddress = kQLM_ADDRESS_CB);

// Meant to store the map entry of a port. Its argument tests stand the wrong way round, and
// other parties depend on what that does: any non-null argument gives ERROR_INVALID_PARAMETER
// and nothing is written, so an address typed by the user does not persist. Only both null
// reach the write (of an empty entry).
DWORD QLMSetIPAddressMap(HANDLE hPrinter, LPCWSTR pPortName, LPCWSTR pAddress);

// The address to connect to for a port, 8-bit, or null: the mapped address if there is one;
// else the text behind "IP_" (any case); else the text before ":2000"; else the name without a
// last "_1" to "_9" (when that is the first occurrence of the text); else the whole name, for
// a port named after a host or an address.
char* QLMGetIPAddressFromPort(HANDLE hPrinter, LPCWSTR pPortName);

// Wide text to 8 bits into dst of cbDst bytes, always terminated when cbDst > 0: a character of
// the 8-bit range is its byte, any other '?'. Returns the bytes written without the end. It
// stands in for EngUnicodeToMultiByteN, which neither platform's headers declare.
size_t QLMToNarrow(char* dst, size_t cbDst, const WCHAR* src);
