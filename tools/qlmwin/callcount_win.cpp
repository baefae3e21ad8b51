// Counting the driver's spooler and registry calls on Windows: the driver module's imports
// from winspool.drv and advapi32's Reg* names are turned to small stubs that count and jump
// on to the system's entry. x64 only, as the driver is.
#include "driverlib.h"

#include <windows.h>

#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace {

struct Counter
{
    std::string name;
    void* target = nullptr; // the system's entry the stub jumps on to
    BYTE* stub = nullptr;
    volatile LONG64 count = 0;
};

std::vector<Counter*> g_counters;
BYTE* g_stubs = nullptr;
size_t g_used = 0;
constexpr size_t kStubBytes = 32;
constexpr size_t kStubRegion = 64 * 1024;

// mov rax, &counter; lock inc qword [rax]; mov rax, target; jmp rax. rax carries no argument in
// the x64 convention, so the call reaches its target as it was made.
BYTE* MakeStub(BYTE* at, volatile LONG64* counter, void* target)
{
    const BYTE code[] = {0x48, 0xB8, 0,    0, 0, 0, 0, 0, 0, 0, 0xF0, 0x48, 0xFF,
                         0x00, 0x48, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0,    0xFF, 0xE0};
    memcpy(at, code, sizeof(code));
    memcpy(at + 2, &counter, 8);
    memcpy(at + 16, &target, 8);
    return at;
}

bool Counted(const char* dll, const char* name)
{
    return _stricmp(dll, "winspool.drv") == 0 ||
           (_stricmp(dll, "advapi32.dll") == 0 && strncmp(name, "Reg", 3) == 0);
}

// The stub of a name and target: the one made for an earlier load of the library when the
// target is the same (the system's libraries stay where they are), else a new one.
BYTE* StubFor(const char* name, void* target)
{
    for (Counter* counter : g_counters) {
        if (counter->name == name && counter->target == target)
            return counter->stub;
    }
    if (g_used + kStubBytes > kStubRegion)
        return nullptr;
    auto* counter = new Counter;
    counter->name = name;
    counter->target = target;
    counter->stub = MakeStub(g_stubs + g_used, &counter->count, target);
    g_used += kStubBytes;
    g_counters.push_back(counter);
    return counter->stub;
}

} // namespace

bool StartCallCounts(const DriverLibrary& driver, std::string* error)
{
    auto* base = static_cast<BYTE*>(driver.Handle());
    auto* nt = reinterpret_cast<IMAGE_NT_HEADERS*>(
        base + reinterpret_cast<IMAGE_DOS_HEADER*>(base)->e_lfanew);
    const IMAGE_DATA_DIRECTORY& dir =
        nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (!g_stubs)
        g_stubs = static_cast<BYTE*>(
            VirtualAlloc(nullptr, kStubRegion, MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE));
    if (!g_stubs || !dir.VirtualAddress) {
        *error = "cannot count the driver's calls";
        return false;
    }
    for (auto* imp = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + dir.VirtualAddress);
         imp->Name; ++imp) {
        const char* dll = reinterpret_cast<const char*>(base + imp->Name);
        auto* names = reinterpret_cast<IMAGE_THUNK_DATA*>(base + imp->OriginalFirstThunk);
        auto* slots = reinterpret_cast<IMAGE_THUNK_DATA*>(base + imp->FirstThunk);
        for (; names->u1.AddressOfData; ++names, ++slots) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal))
                continue;
            const char* name = reinterpret_cast<const char*>(
                reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData)->Name);
            auto* target = reinterpret_cast<BYTE*>(slots->u1.Function);
            // A slot that leads to a stub already is counted.
            if (!Counted(dll, name) || (target >= g_stubs && target < g_stubs + kStubRegion))
                continue;
            BYTE* stub = StubFor(name, target);
            if (!stub)
                continue;
            DWORD old;
            VirtualProtect(&slots->u1.Function, sizeof(slots->u1.Function), PAGE_READWRITE, &old);
            slots->u1.Function = reinterpret_cast<ULONG_PTR>(stub);
            VirtualProtect(&slots->u1.Function, sizeof(slots->u1.Function), old, &old);
        }
    }
    FlushInstructionCache(GetCurrentProcess(), g_stubs, g_used);
    return true;
}

std::vector<std::pair<std::string, long long>> TakeCallCounts()
{
    std::map<std::string, long long> byName;
    for (Counter* counter : g_counters) {
        LONG64 count = InterlockedExchange64(&counter->count, 0);
        if (count)
            byName[counter->name] += count;
    }
    return {byName.begin(), byName.end()};
}
