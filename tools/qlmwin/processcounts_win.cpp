// Windows' counts: the process's private bytes (not its working set, which holds the pages of
// every library and font it has touched), its GDI and USER objects, its kernel handles, and
// the windows of this thread counted one by one.
#include "processcounts.h"

#include <windows.h>

#include <psapi.h>

namespace {

BOOL CALLBACK CountChild(HWND, LPARAM lParam)
{
    ++*reinterpret_cast<long long*>(lParam);
    return TRUE;
}

BOOL CALLBACK CountTopLevel(HWND hwnd, LPARAM lParam)
{
    ++*reinterpret_cast<long long*>(lParam);
    EnumChildWindows(hwnd, CountChild, lParam);
    return TRUE;
}

// GetGuiResources' count, or -1 where the platform does not keep it: Wine 8 answers every
// process with 0 or ~0, and no process that has made a window has no GDI object.
long long GuiResources(DWORD flags)
{
    DWORD count = GetGuiResources(GetCurrentProcess(), flags);
    return count == 0 || count == ~DWORD(0) ? -1 : static_cast<long long>(count);
}

bool UnderWine()
{
    HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    return ntdll && GetProcAddress(ntdll, "wine_get_version");
}

// Where PrivateUsage stays 0 (Wine), the committed private regions of the address space,
// which are what it counts on Windows. (A file such as Z:\\proc\\self\\status would be opened
// by wineserver, and describe that process instead.) Wine's allocations on its Unix side, GDI
// objects' among them, lie outside.
long long CommittedPrivateKiB()
{
    unsigned long long total = 0;
    MEMORY_BASIC_INFORMATION info;
    for (const BYTE* at = nullptr; VirtualQuery(at, &info, sizeof(info)) == sizeof(info);) {
        if (info.State == MEM_COMMIT && info.Type == MEM_PRIVATE)
            total += info.RegionSize;
        const BYTE* next = static_cast<const BYTE*>(info.BaseAddress) + info.RegionSize;
        if (next <= at)
            break;
        at = next;
    }
    return static_cast<long long>(total / 1024);
}

} // namespace

std::vector<ProcessCount> SampleProcess()
{
    PROCESS_MEMORY_COUNTERS_EX memory = {};
    memory.cb = sizeof(memory);
    const bool haveMemory = GetProcessMemoryInfo(
        GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&memory), sizeof(memory));
    long long windows = 0;
    EnumThreadWindows(GetCurrentThreadId(), CountTopLevel, reinterpret_cast<LPARAM>(&windows));
    DWORD handles = 0;
    // Wine answers TRUE with a count of 0, which no process has.
    const bool haveHandles = GetProcessHandleCount(GetCurrentProcess(), &handles) && handles;
    long long privateKiB = haveMemory ? static_cast<long long>(memory.PrivateUsage / 1024) : -1;
    if (privateKiB <= 0)
        privateKiB = CommittedPrivateKiB();
    return {
        {"private KiB", privateKiB, true, 0},
        {"gdi objects", GuiResources(GR_GDIOBJECTS), false, 3},
        {"user objects", GuiResources(GR_USEROBJECTS), false, 0},
        {"windows", windows, false, 0},
        {"kernel handles", haveHandles ? static_cast<long long>(handles) : -1, false, 0},
    };
}

std::string ProcessCountNote()
{
    std::string note;
    if (GuiResources(GR_GDIOBJECTS) < 0)
        note = "GetGuiResources is not implemented here: GDI and USER objects are not counted";
    if (UnderWine())
        note += std::string(note.empty() ? "" : "; ") +
                "under Wine the private KiB are the committed private regions (VirtualQuery)";
    return note;
}
