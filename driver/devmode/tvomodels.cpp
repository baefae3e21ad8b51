// The alias table and the model a driver name stands for.
#include "tvomodels.h"

#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"

namespace {

// ---- The alias table ---------------------------------------------------------------------
// Driver names and the model each stands for. The order is a tie-break: the second pass takes
// the first row that a longer name contains.
struct TVOPrinterAlias
{
    const WCHAR* pszName;
    DWORD model;
};

// clang-format off
const TVOPrinterAlias kAliases[] = {
    {TEXT("Tarvo 2410 Wide Format with Lumivar Pentara"), kMODEL_2410},
    {TEXT("Tarvo 2410 PS Wide Format with Lumivar Pentara"), kMODEL_2410},
    {TEXT("Pentara 2410"), kMODEL_2410},
    {TEXT("TVO 2410"), kMODEL_2410},
    {TEXT("TVO Orvanta 2410"), kMODEL_2410},
    {TEXT("TVO Orvanta 2410 PS"), kMODEL_2410},
    {TEXT("Orvanta 2410"), kMODEL_2410},
    {TEXT("Orvanta 2410 PS"), kMODEL_2410},
    {TEXT("Orvanta Print System 2410"), kMODEL_2410},
    {TEXT("Orvanta Print System 2410 PS"), kMODEL_2410},
    {TEXT("Tarvo Plan Output System 2410"), kMODEL_2410},
    {TEXT("Tarvo Plan Output System 2410 PS"), kMODEL_2410},
    {TEXT("Tarvo 2410 Wide Format with Lumivar\u2122 Pentara"), kMODEL_2410},
    {TEXT("Tarvo 2410 PS Wide Format with Lumivar\u2122 Pentara"), kMODEL_2410},

    {TEXT("Tarvo 2420 Wide Format with Lumivar Pentara"), kMODEL_2420},
    {TEXT("Tarvo 2420 PS Wide Format with Lumivar Pentara"), kMODEL_2420},
    {TEXT("Pentara 2420"), kMODEL_2420},
    {TEXT("TVO 2420"), kMODEL_2420},
    {TEXT("TVO Orvanta 2420"), kMODEL_2420},
    {TEXT("TVO Orvanta 2420 PS"), kMODEL_2420},
    {TEXT("Orvanta 2420"), kMODEL_2420},
    {TEXT("Orvanta 2420 PS"), kMODEL_2420},
    {TEXT("Orvanta Print System 2420"), kMODEL_2420},
    {TEXT("Orvanta Print System 2420 PS"), kMODEL_2420},
    {TEXT("Tarvo Plan Output System 2420"), kMODEL_2420},
    {TEXT("Tarvo Plan Output System 2420 PS"), kMODEL_2420},
    {TEXT("Tarvo 2420 Wide Format with Lumivar\u2122 Pentara"), kMODEL_2420},
    {TEXT("Tarvo 2420 PS Wide Format with Lumivar\u2122 Pentara"), kMODEL_2420},

    {TEXT("Tarvo 2440 Wide Format with Lumivar Pentara"), kMODEL_2440},
    {TEXT("Tarvo 2440 PS Wide Format with Lumivar Pentara"), kMODEL_2440},
    {TEXT("Pentara 2440"), kMODEL_2440},
    {TEXT("TVO 2440"), kMODEL_2440},
    {TEXT("TVO Orvanta 2440"), kMODEL_2440},
    {TEXT("TVO Orvanta 2440 PS"), kMODEL_2440},
    {TEXT("Orvanta 2440"), kMODEL_2440},
    {TEXT("Orvanta 2440 PS"), kMODEL_2440},
    {TEXT("Orvanta Print System 2440"), kMODEL_2440},
    {TEXT("Orvanta Print System 2440 PS"), kMODEL_2440},
    {TEXT("Tarvo Plan Output System 2440"), kMODEL_2440},
    {TEXT("Tarvo Plan Output System 2440 PS"), kMODEL_2440},
    {TEXT("Tarvo 2440 Wide Format with Lumivar\u2122 Pentara"), kMODEL_2440},
    {TEXT("Tarvo 2440 PS Wide Format with Lumivar\u2122 Pentara"), kMODEL_2440},

    {TEXT("Pentara 2445"), kMODEL_2445},
    {TEXT("TVO 2445"), kMODEL_2445},
    {TEXT("TVO Orvanta 2445"), kMODEL_2445},
    {TEXT("TVO Orvanta 2445 PS"), kMODEL_2445},
    {TEXT("Orvanta 2445"), kMODEL_2445},
    {TEXT("Orvanta 2445 PS"), kMODEL_2445},
    {TEXT("Orvanta Print System 2445"), kMODEL_2445},
    {TEXT("Orvanta Print System 2445 PS"), kMODEL_2445},
    {TEXT("Tarvo Plan Output System 2445"), kMODEL_2445},
    {TEXT("Tarvo Plan Output System 2445 PS"), kMODEL_2445},

    {TEXT("Tarvo 318p Wide Format with Lumivar Pentara"), kMODEL_318P},
    {TEXT("Tarvo 318p PS Wide Format with Lumivar Pentara"), kMODEL_318P},
    {TEXT("Orvanta Print System 18p"), kMODEL_318P},
    {TEXT("Orvanta Print System 18p PS"), kMODEL_318P},
    {TEXT("Orvanta Print System 318p"), kMODEL_318P},
    {TEXT("Orvanta Print System 318p PS"), kMODEL_318P},
    {TEXT("Tarvo Plan Output System 318p"), kMODEL_318P},
    {TEXT("Tarvo Plan Output System 318p PS"), kMODEL_318P},
    {TEXT("Tarvo 318p Wide Format with Lumivar\u2122 Pentara"), kMODEL_318P},
    {TEXT("Tarvo 318p PS Wide Format with Lumivar\u2122 Pentara"), kMODEL_318P},

    {TEXT("Tarvo 427 Series Wide Format with Lumivar Pentara"), kMODEL_427},
    {TEXT("Tarvo 427 Series PS Wide Format with Lumivar Pentara"), kMODEL_427},
    {TEXT("Orvanta Print System 427dp"), kMODEL_427},
    {TEXT("Orvanta Print System 427dp PS"), kMODEL_427},
    {TEXT("Tarvo Plan Output System 427dp"), kMODEL_427},
    {TEXT("Tarvo Plan Output System 427dp PS"), kMODEL_427},
    {TEXT("Tarvo Plan Output System 427 Series"), kMODEL_427},
    {TEXT("Tarvo Plan Output System 427 Series PS"), kMODEL_427},
    {TEXT("Tarvo 427 Series Wide Format with Lumivar\u2122 Pentara"), kMODEL_427},
    {TEXT("Tarvo 427 Series PS Wide Format with Lumivar\u2122 Pentara"), kMODEL_427},

    {TEXT("Tarvo 3310 Wide Format with Lumivar Pentara"), kMODEL_3310},
    {TEXT("Tarvo 3310 PS Wide Format with Lumivar Pentara"), kMODEL_3310},
    {TEXT("Tarvo Kesmark 3310"), kMODEL_3310},
    {TEXT("Tarvo Kesmark 3310 PS"), kMODEL_3310},
    {TEXT("Tarvo 3310 Wide Format"), kMODEL_3310},
    {TEXT("Tarvo 3310 Wide Format PS"), kMODEL_3310},
    {TEXT("Tarvo 3310 Wide Format with Lumivar\u2122 Pentara"), kMODEL_3310},
    {TEXT("Tarvo 3310 PS Wide Format with Lumivar\u2122 Pentara"), kMODEL_3310},

    {TEXT("Tarvo 3320 Wide Format with Lumivar Pentara"), kMODEL_3320},
    {TEXT("Tarvo 3320 PS Wide Format with Lumivar Pentara"), kMODEL_3320},
    {TEXT("Tarvo Kesmark 3320"), kMODEL_3320},
    {TEXT("Tarvo Kesmark 3320 PS"), kMODEL_3320},
    {TEXT("Tarvo 3320 Wide Format"), kMODEL_3320},
    {TEXT("Tarvo 3320 Wide Format PS"), kMODEL_3320},
    {TEXT("Tarvo 3320 Wide Format with Lumivar\u2122 Pentara"), kMODEL_3320},
    {TEXT("Tarvo 3320 PS Wide Format with Lumivar\u2122 Pentara"), kMODEL_3320},

    {TEXT("Tarvo 3344 Wide Format with Lumivar Pentara"), kMODEL_3344},
    {TEXT("Tarvo 3344 PS Wide Format with Lumivar Pentara"), kMODEL_3344},
    {TEXT("Tarvo 3344 Wide Format"), kMODEL_3344},
    {TEXT("Tarvo 3344 Wide Format PS"), kMODEL_3344},
    {TEXT("Tarvo 3344 Wide Format with Lumivar\u2122 Pentara"), kMODEL_3344},
    {TEXT("Tarvo 3344 PS Wide Format with Lumivar\u2122 Pentara"), kMODEL_3344},

    {TEXT("Tarvo 3320A Wide Format with Lumivar Pentara"), kMODEL_3320A},
    {TEXT("Tarvo 3320A PS Wide Format with Lumivar Pentara"), kMODEL_3320A},
};
// clang-format on
static_assert(sizeof(kAliases) / sizeof(kAliases[0]) == 96, "the alias table has 96 rows");

} // namespace

DWORD TVOFindPrinterModel(LPCWSTR szPrinter)
{
    QLM_TRACE_SCOPE(TEXT("TVOFindPrinterModel"), g_bTraceTVOConfig);
    if (!szPrinter)
        return kMODEL_427;
    // First the whole name, with case ignored.
    for (const TVOPrinterAlias& alias : kAliases) {
        if (WstrICmp(szPrinter, alias.pszName) == 0)
            return alias.model;
    }
    // Then any row that the name contains, case respected: the earliest row wins.
    for (const TVOPrinterAlias& alias : kAliases) {
        if (WstrStr(szPrinter, alias.pszName))
            return alias.model;
    }
    Trace(TEXT("can't find match."));
    return kMODEL_427;
}
