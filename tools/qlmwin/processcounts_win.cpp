// Windows' counts: the process's private bytes and working set, its GDI and USER objects, its
// kernel handles, and the windows of this thread counted one by one.
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

// GetGuiResources' count, or -1 where the platform does not keep it (Wine answers 0 with
// ERROR_CALL_NOT_IMPLEMENTED: no process of it has no GDI object at all).
long long GuiResources(DWORD flags)
{
    SetLastError(ERROR_SUCCESS);
    DWORD count = GetGuiResources(GetCurrentProcess(), flags);
    return count == 0 && GetLastError() == ERROR_CALL_NOT_IMPLEMENTED ? -1 : count;
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
    const bool haveHandles = GetProcessHandleCount(GetCurrentProcess(), &handles);
    return {
        {"private KiB", haveMemory ? static_cast<long long>(memory.PrivateUsage / 1024) : -1, true,
         0},
        {"working set KiB", haveMemory ? static_cast<long long>(memory.WorkingSetSize / 1024) : -1,
         true, 0},
        {"gdi objects", GuiResources(GR_GDIOBJECTS), false, 3},
        {"user objects", GuiResources(GR_USEROBJECTS), false, 0},
        {"windows", windows, false, 0},
        {"kernel handles", haveHandles ? static_cast<long long>(handles) : -1, false, 0},
    };
}

std::string ProcessCountNote()
{
    if (GuiResources(GR_GDIOBJECTS) < 0)
        return "GetGuiResources is not implemented here: GDI and USER objects are not counted";
    return {};
}
