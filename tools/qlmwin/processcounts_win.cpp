// Windows' counts: the process's private bytes (not its working set, which holds the pages of
// every library and font it has touched), its GDI and USER objects, its kernel handles, and
// the windows of this thread counted one by one.
#include "processcounts.h"

#include <windows.h>

#include <psapi.h>

#include <cstdlib>
#include <cstring>

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

// Under Wine, whose PrivateUsage stays 0, the private memory is that of the Linux process
// behind it: its anonymous resident KiB, read through the drive that maps the Unix root.
long long WineAnonymousKiB()
{
    HANDLE file = CreateFileW(L"Z:\\proc\\self\\status", GENERIC_READ, FILE_SHARE_READ, nullptr,
                              OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return -1;
    char text[8192] = {};
    DWORD read = 0;
    ReadFile(file, text, sizeof(text) - 1, &read, nullptr);
    CloseHandle(file);
    const char* line = strstr(text, "RssAnon:");
    return line ? atoll(line + 8) : -1;
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
    if (privateKiB <= 0 && UnderWine())
        privateKiB = WineAnonymousKiB();
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
                "under Wine the private KiB are the Linux process's RssAnon";
    return note;
}
