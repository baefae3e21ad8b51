// TVODevMode: the owner or viewer of one DEVMODEEX, through which all code reads, fills,
// merges and stores the settings record.
#pragma once

#include "devmodeex.h"

class TVODevMode
{
public:
    // Views the caller's record; touches none of its fields and never frees it.
    explicit TVODevMode(DEVMODEEX* lpDM);
    // Owns a fresh record filled with the defaults of no printer.
    TVODevMode();
    // Owns a fresh record filled with the defaults of hPrinter.
    explicit TVODevMode(HANDLE hPrinter);
    // An owned record has its guards checked, then is freed; the checks only report.
    virtual ~TVODevMode();
    TVODevMode(const TVODevMode&) = delete;
    TVODevMode& operator=(const TVODevMode&) = delete;

    // Fills the record with what a fresh record holds for hPrinter. Always 1.
    virtual int setDefaults(HANDLE hPrinter);

    // TRUE for the printers whose default resolution is 600: the queue's name holds 3310, 3320,
    // 3320A or 3344.
    static BOOL IsSorrento(HANDLE hPrinter);

    // How many objects each constructor made and the destructor released, for the trace at a
    // sheet's teardown.
    static LONG s_nViewConstructed;
    static LONG s_nDefaultConstructed;
    static LONG s_nPrinterConstructed;
    static LONG s_nDestructed;

    DEVMODEEX* m_lpDM;
    BOOL m_bOwnDM;
    BYTE m_szScratch[520];
    BOOL m_bGOTprinterDataAlready;

private:
    void AllocateRecord();
    void CheckGuards() const;
};

// Whether a refresh is possible on the queue's port: its monitor is the standard TCP/IP port
// monitor or the driver's own network port. Each answers 0 or 1.
BOOL QLMPortIsBiDi(HANDLE hPrinter);
BOOL QLMPortIsStdTCPIP(LPCWSTR port);
BOOL QLMPortIsTVONetPort(LPCWSTR port);
