// The driver library as the spooler loads it, its exports looked up by name: QLMUIDrv.dll
// through the Windows loader, or QLMUIDrv.so on the host, whose DllMain is called on load as
// Windows' loader would.
#pragma once

#include "platform/win32.h"

#include <string>
#include <utility>
#include <vector>

class DriverLibrary
{
public:
    ~DriverLibrary();
    // Loads the library and calls DllMain(DLL_PROCESS_ATTACH). False with *error on failure.
    bool Load(const std::string& path, std::string* error);
    void* Export(const char* name) const;
    void* Handle() const { return m_handle; }
    template <typename F> F* Entry(const char* name) const
    {
        return reinterpret_cast<F*>(Export(name));
    }

private:
    void* m_handle = nullptr;
};

// A caller's buffer of exactly the size asked, zeroed, with guard bytes behind it: a driver
// that writes past the end it was given is caught, and the tool's memory stays whole as long
// as the overrun stays within the guard.
class GuardedBuffer
{
public:
    explicit GuardedBuffer(size_t cb);
    BYTE* data() { return m_bytes.data(); }
    const BYTE* data() const { return m_bytes.data(); }
    size_t size() const { return m_cb; }
    // How far past the end the driver wrote: the distance to the last guard byte changed, 0
    // when the guard is whole.
    size_t Overrun() const;

private:
    static constexpr size_t kGuard = 4096;
    static constexpr BYTE kGuardByte = 0xFD;
    size_t m_cb;
    std::vector<BYTE> m_bytes;
};

// "the driver wrote N bytes past the end of the B-byte buffer it was given for WHAT", or
// empty when the guard is whole.
std::string OverrunMessage(const GuardedBuffer& buffer, const std::string& what);

// Counting the driver's spooler and registry calls: from StartCallCounts on, TakeCallCounts
// gives the calls by name since the last take and starts again. Each platform counts its own
// way: the host in its names, for the calls made from the driver library's code; Windows in
// the driver module's imports. A library loaded again is counted again.
bool StartCallCounts(const DriverLibrary& driver, std::string* error);
std::vector<std::pair<std::string, long long>> TakeCallCounts();

using CallCountList = std::vector<std::pair<std::string, long long>>;
// The spooler's names (winspool) and the registry's (Reg*) apart: their totals, and the
// counts as "N Name" joined by ", ".
struct CallCountSummary
{
    long long spooler = 0;
    long long registry = 0;
    std::string spoolerText;
    std::string registryText;
};
CallCountSummary SummarizeCallCounts(const CallCountList& counts);

// The global --counts option: from here on every driver library loaded is counted, and
// PrintCallCounts writes what was counted to standard error.
void CountDriverCalls();
void PrintCallCounts();
