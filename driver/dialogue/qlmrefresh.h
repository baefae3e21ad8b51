// QLMRefresh: asks the printer what it is and writes the answer into a settings record.
//
// The conversation is six PJL queries over one connection, their replies back to back in one
// receive buffer, parsed together and decoded into the record (qlmrefresh_decode.h). The two
// questions to the user, the printer's address when no address works and the reply file of
// the debug switch "DBG_BidiFromFile", are replaceable operations, so that the logic does not
// depend on a dialog being there.
#pragma once

#include "../../platform/win32.h"
#include "../devmode/devmodeex.h"

#include <cstddef>

class TVOPrinterConfiguration;

// 1 when the pipeline ran to its end (a printer that said nothing still gives 1, with the
// defaults written to dm); 0 when it gave up, and then dm is untouched. config supplies the
// printer handle; hwnd owns any dialog.
int QLMRefresh(TVOPrinterConfiguration* config, DEVMODEEX* dm, HWND hwnd);

// Asks for the printer's address after the port's own addresses failed. TRUE (OK) with the
// 8-bit address text in address (cbAddress bytes, terminated), FALSE for Cancel. Asked again
// after each failed connection until a connection or Cancel.
typedef BOOL (*QLMAskAddressFunc)(LPCWSTR pPortName, TVOPrinterConfiguration* config, DEVMODEEX* dm,
                                  HWND hwnd, char* address, size_t cbAddress);
// Asks for the file that holds a capture of the six replies. TRUE with the path in path
// (cchPath characters, terminated), FALSE for Cancel.
typedef BOOL (*QLMAskFileFunc)(HWND hwnd, WCHAR* path, DWORD cchPath);

struct QLMRefreshQuestions
{
    QLMAskAddressFunc askAddress;
    QLMAskFileFunc askFile;
};

// The questions QLMRefresh asks. The printer address dialog is not part of the driver yet, so
// the default address question answers Cancel. The default file question is the system's open
// dialog (on the Linux host, answered by its user simulation).
QLMRefreshQuestions QLMDefaultRefreshQuestions();
// Replaces the questions (null members: the defaults); returns those that were in force.
// Shared and unguarded, like the trace switches.
QLMRefreshQuestions QLMSetRefreshQuestions(const QLMRefreshQuestions& questions);

// Room of the file question's path, in characters.
constexpr DWORD kQLM_REFRESH_FILE_CCH = 520;
