// TVODevMode: the owner or viewer of one DEVMODEEX, through which all code reads, fills,
// merges and stores the settings record.
#pragma once

#include "devmodeex.h"

#include "../foundation/qlmsnapshot.h"

#include <optional>

class TVODevMode
{
public:
    // Views the caller's record; touches none of its fields and never frees it.
    explicit TVODevMode(DEVMODEEX* lpDM);
    // Owns a fresh record filled with the defaults of no printer.
    TVODevMode();
    // Owns a fresh record filled with the defaults of hPrinter.
    explicit TVODevMode(HANDLE hPrinter);
    // The same, within one export call: the steps on the snapshot's printer take what the call
    // has fetched of it already. The snapshot outlives the object.
    TVODevMode(DEVMODEEX* lpDM, QLMPrinterSnapshot* pSnapshot);
    TVODevMode(HANDLE hPrinter, QLMPrinterSnapshot* pSnapshot);
    // An owned record has its guards checked, then is freed; the checks only report.
    virtual ~TVODevMode();
    TVODevMode(const TVODevMode&) = delete;
    TVODevMode& operator=(const TVODevMode&) = delete;

    // Fills the record with what a fresh record holds for hPrinter. Always 1.
    virtual int setDefaults(HANDLE hPrinter);
    // Once per object: dmxBiDi from the queue's port, and accounting mode 1 on a port that
    // cannot answer.
    virtual void getPrinterData(HANDLE hPrinter);
    // Fetches the queue's stored record, or repairs what is there into a valid current record.
    // szPort and szProfile only reach the trace; szDevName, when given, becomes dmDeviceName.
    // Saves the result only when the queue had no record at all. Always 1.
    virtual int getDeviceMode(HANDLE hPrinter, LPCWSTR szPort, LPCWSTR szDevName,
                              LPCWSTR szProfile);
    // Merges pdm (own current, own older, or foreign) into the record and repairs what the
    // merge leaves invalid. model is the configuration's model identifier.
    virtual void modifyDeviceMode(HANDLE hPrinter, const DEVMODEW* pdm, DWORD model);
    // What the driver calls for the accounting identifiers: they trace only, so the
    // identifiers live in the record alone.
    virtual void getAccountingInfo(HANDLE hPrinter);
    virtual void setAccountingInfo(HANDLE hPrinter, BOOL bClean);
    // The per-user store of the identifiers, the value "Accounting" (140 bytes, or 12 in the
    // old style).
    virtual void GetAccountingInfo(HANDLE hPrinter);
    virtual void SetAccountingInfo(HANDLE hPrinter, BOOL bClean);

    // Makes pDM the queue's stored record, whole, through the printer's information block
    // pInfo as GetPrinterW level 2 gave it. The block has room only for the record it holds,
    // which may be a bare DEVMODEW of another driver, so its record pointer is turned to pDM
    // instead of copying over it. The result of SetPrinterW.
    static BOOL StoreQueueRecord(HANDLE hPrinter, PRINTER_INFO_2W* pInfo, DEVMODEEX* pDM);

    // TRUE for the printers whose default resolution is 600: the queue's name holds 3310, 3320,
    // 3320A or 3344.
    static BOOL IsSorrento(HANDLE hPrinter);
    // The same from the queue's name in the snapshot's PRINTER_INFO_2.
    static BOOL IsSorrento(QLMPrinterSnapshot& snapshot);

    // The printer's words to record codes; exact text, first row wins.
    static LONG GetFirmwareRev(LPCWSTR pszText);     // no match: 28
    static DWORD GetRollSizeCode(LPCWSTR pszText);   // no match: 25
    static DWORD GetRollStatusCode(LPCWSTR pszText); // no match: 3
    static DWORD GetMediaTypeCode(LPCWSTR pszText);  // no match: 0
    // Compared without regard to case; no match: kFINISHER_NONE.
    static DWORD GetFinisherTypeCode(LPCWSTR pszText);
    // A code back to the printer's word (the first row that gives it); null for none.
    static LPCWSTR GetFirmwareRevText(LONG lCode);
    static LPCWSTR GetRollSizeText(DWORD code);
    static LPCWSTR GetRollStatusText(DWORD code);
    static LPCWSTR GetMediaTypeText(DWORD code);
    static LPCWSTR GetFinisherTypeText(DWORD code);
    // A platform paper code to the driver's own, or 119 when there is none.
    static short convertDMPaperSize(short code);
    // Rolls 1 to 6 and manual feed stand; anything else becomes automatic.
    static short convertDMDefaultSource(short code);

    // How many objects each constructor made and the destructor released on the calling thread,
    // for the trace at a sheet's teardown.
    static thread_local constinit LONG s_nViewConstructed;
    static thread_local constinit LONG s_nDefaultConstructed;
    static thread_local constinit LONG s_nPrinterConstructed;
    static thread_local constinit LONG s_nDestructed;

    DEVMODEEX* m_lpDM;
    BOOL m_bOwnDM;
    BYTE m_szScratch[520];
    BOOL m_bGOTprinterDataAlready;

private:
    class UseSnapshot;
    void AllocateRecord();
    // Whether the port test must run for this record: the record may leave the call, in its
    // caller's hands or in the queue's store, or a trace switch would show the test.
    static bool PortTestSeen(QLMPrinterSnapshot& snapshot);
    void CheckGuards() const;

    // The export call's snapshot, or null; set for as long as one of the object's steps runs.
    QLMPrinterSnapshot* m_pSnapshot;
};

// The snapshot one step of a TVODevMode works with for hPrinter: the object's when it is of that
// printer, else one of the step's own, which the object uses until the step ends.
class TVODevMode::UseSnapshot
{
public:
    UseSnapshot(TVODevMode& devMode, HANDLE hPrinter);
    ~UseSnapshot();
    UseSnapshot(const UseSnapshot&) = delete;
    UseSnapshot& operator=(const UseSnapshot&) = delete;
    QLMPrinterSnapshot& operator*() const { return *m_devMode.m_pSnapshot; }
    QLMPrinterSnapshot* operator->() const { return m_devMode.m_pSnapshot; }

private:
    TVODevMode& m_devMode;
    QLMPrinterSnapshot* m_pSaved;
    std::optional<QLMPrinterSnapshot> m_own;
};

// Whether a refresh is possible on the queue's port: its monitor is the standard TCP/IP port
// monitor or the driver's own network port. Each answers 0 or 1.
BOOL QLMPortIsBiDi(HANDLE hPrinter);
BOOL QLMPortIsStdTCPIP(LPCWSTR port);
BOOL QLMPortIsTVONetPort(LPCWSTR port);
// The same from the port and the port list that the call's snapshot holds.
BOOL QLMPortIsBiDi(QLMPrinterSnapshot& snapshot);
BOOL QLMPortIsStdTCPIP(QLMPrinterSnapshot& snapshot, LPCWSTR port);
BOOL QLMPortIsTVONetPort(QLMPrinterSnapshot& snapshot, LPCWSTR port);
