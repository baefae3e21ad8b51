// QLMPrinterSnapshot: the spooler's state of one printer as one export call sees it.
//
// Every spooler call crosses into the spooler service, and one export call asks the same
// questions from many steps: the queue's PRINTER_INFO_2 for its names, port and record, the
// port list for the port's monitor, the printer data for the switches, the user forms and the
// last tab. The snapshot fetches each piece on its first use, with the platform's calls, and
// hands it to every later step of the same call. It lives for that one call and no longer:
// another process may change the queue between two calls, and the next call must see it.
//
// A reuse answers as the fetch it stands for would have: the same data or code, the same trace
// line and assertion on a failure, and the thread's last error as the fetch left it. The
// driver's own writes during the call are told to the snapshot (PrinterStored, DataStored), so
// that what it holds stays what the spooler holds.
#pragma once

#include "../../platform/win32.h"

#include <optional>

// The printer data key behind GetPrinterDataW and SetPrinterDataW.
#define QLM_DRIVER_DATA_KEY TEXT("PrinterDriverData")
// The printer data key of the debug switches.
#define QLM_DEBUG_SETTINGS_KEY TEXT("DebugSettings")

// How a fetch of printer information or of the port list ended.
enum QLMFetchResult : DWORD
{
    kFETCH_DONE,      // the data is at hand
    kFETCH_NO_ANSWER, // the first call failed for another reason than the buffer's size
    kFETCH_NO_MEMORY, // the block for the answer could not be had
    kFETCH_FAILED,    // the second call failed
};

// PRINTER_INFO_<level> in the platform's two calls, size then data, into a global memory block
// (GlobalFree); null unless *pResult is kFETCH_DONE. Reports nothing itself.
LPBYTE QLMFetchPrinterInfo(HANDLE hPrinter, DWORD level, QLMFetchResult* pResult);
// What a fetch reports of its end: the allocation failure as pszAllocationFailure (when given),
// a failed second call as an assertion.
void QLMReportPrinterInfoFetch(QLMFetchResult result, const WCHAR* pszAllocationFailure);

class QLMPrinterSnapshot
{
public:
    explicit QLMPrinterSnapshot(HANDLE hPrinter);
    ~QLMPrinterSnapshot();
    QLMPrinterSnapshot(const QLMPrinterSnapshot&) = delete;
    QLMPrinterSnapshot& operator=(const QLMPrinterSnapshot&) = delete;

    HANDLE Printer() const { return m_hPrinter; }

    // A call whose settings records reach no caller (a capability answer) says so: the steps
    // may then leave out what only a record that leaves the call would show.
    void RecordsStayInCall() { m_bRecordsStay = true; }
    bool RecordsStay() const { return m_bRecordsStay; }

    // The queue's PRINTER_INFO_2 (GetPrinterW level 2, size then data), null when it cannot be
    // had. The block is a global memory block that the snapshot owns; it stays valid until the
    // snapshot ends, or until PrinterInfo is asked again after a write made it stale.
    const PRINTER_INFO_2W* PrinterInfo(const WCHAR* pszAllocationFailure = nullptr);
    // The driver stored info (SetPrinterW level 2 succeeded) for this queue, through any handle.
    // A copy of PrinterInfo with only its numbers changed is taken as it is; anything else makes
    // the next PrinterInfo fetch again.
    void PrinterStored(const PRINTER_INFO_2W& info);

    // The local ports at level 2 (EnumPortsW) and their number; null when the list cannot be
    // had, after tracing pszAllocationFailure when its block could not be had.
    const PORT_INFO_2W* Ports(DWORD* pcPorts, const WCHAR* pszAllocationFailure);

    // What GetPrinterDataExW would answer for the value pszValue of the key pszKey. All values
    // of a key come with one enumeration (EnumPrinterDataExW) on the key's first use, which
    // leaves the thread's last error alone as the single reads do.
    DWORD GetData(LPCWSTR pszKey, LPCWSTR pszValue, LPDWORD pType, LPBYTE pData, DWORD nSize,
                  LPDWORD pcbNeeded);
    // Whether the key holds pszValue with exactly this type and these bytes: a write of the
    // same would change nothing.
    bool Holds(LPCWSTR pszKey, LPCWSTR pszValue, DWORD dwType, const BYTE* pData, DWORD cbData);
    // The driver wrote values of the key: its values are enumerated again on their next use.
    void DataStored(LPCWSTR pszKey);

private:
    // The values of one key, as one enumeration gave them.
    struct KeyValues
    {
        WCHAR szKey[32] = {};            // empty: the slot is free
        const WCHAR* pszAsked = nullptr; // the text the key was last asked by
        bool bLoaded = false;
        DWORD rc = ERROR_SUCCESS;
        DWORD count = 0;
        LPBYTE pBlock = nullptr;
    };
    void FetchPorts();
    KeyValues* Values(LPCWSTR pszKey);
    const PRINTER_ENUM_VALUESW* Find(KeyValues* pKey, LPCWSTR pszValue) const;

    HANDLE m_hPrinter;
    bool m_bRecordsStay = false;

    LPBYTE m_pInfo = nullptr;
    bool m_bInfoFetched = false;
    bool m_bInfoStale = false;
    QLMFetchResult m_infoResult = kFETCH_NO_ANSWER;
    DWORD m_dwInfoLastError = 0;

    LPBYTE m_pPorts = nullptr;
    bool m_bPortsFetched = false;
    QLMFetchResult m_portsResult = kFETCH_NO_ANSWER;
    DWORD m_cPorts = 0;
    DWORD m_dwPortsLastError = 0;

    // The driver reads two keys: "DebugSettings" and "PrinterDriverData".
    static constexpr int kKEYS = 2;
    KeyValues m_keys[kKEYS];
};

// The snapshot a step on hPrinter works with: the call's own when it is of that printer, else
// one of the step's own for as long as the step lasts.
class QLMSnapshotFor
{
public:
    QLMSnapshotFor(QLMPrinterSnapshot* pShared, HANDLE hPrinter)
    {
        if (pShared && pShared->Printer() == hPrinter)
            m_pSnapshot = pShared;
        else
            m_pSnapshot = &m_own.emplace(hPrinter);
    }
    QLMSnapshotFor(const QLMSnapshotFor&) = delete;
    QLMSnapshotFor& operator=(const QLMSnapshotFor&) = delete;
    QLMPrinterSnapshot& operator*() const { return *m_pSnapshot; }
    QLMPrinterSnapshot* operator->() const { return m_pSnapshot; }
    QLMPrinterSnapshot* get() const { return m_pSnapshot; }

private:
    std::optional<QLMPrinterSnapshot> m_own;
    QLMPrinterSnapshot* m_pSnapshot;
};
