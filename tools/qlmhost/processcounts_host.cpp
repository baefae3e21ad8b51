// The host's counts: the process's memory as Linux reports it, and the handle tables of the
// host's Win32 (platform/host/).
#include "processcounts.h"

#include "platform/host/host.h"
#include "platform/host/hostgdi.h"

#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>

namespace {

// A "Name:  N kB" line of /proc/self/status; -1 when missing.
long long StatusKiB(const char* name)
{
    std::ifstream status("/proc/self/status");
    std::string line;
    const size_t length = strlen(name);
    while (std::getline(status, line)) {
        if (line.compare(0, length, name) == 0 && line.size() > length && line[length] == ':')
            return atoll(line.c_str() + length + 1);
    }
    return -1;
}

// Resident pages that are not shared with another mapping (statm's resident less shared), in
// KiB: what the process itself has made.
long long PrivateKiB()
{
    FILE* statm = fopen("/proc/self/statm", "r");
    if (!statm)
        return -1;
    long long size = 0, resident = 0, shared = 0;
    const bool read = fscanf(statm, "%lld %lld %lld", &size, &resident, &shared) == 3;
    fclose(statm);
    return read ? (resident - shared) * (sysconf(_SC_PAGESIZE) / 1024) : -1;
}

} // namespace

std::vector<ProcessCount> SampleProcess()
{
    const host::HandleCounts handles = host::CountHandles();
    const host::LiveObjectCounts gdi = host::LiveObjects();
    const struct mallinfo2 heap = mallinfo2();
    auto count = [](const char* name, size_t value, int kept = 0) {
        return ProcessCount{name, static_cast<long long>(value), false, kept};
    };
    return {
        {"rss KiB", StatusKiB("VmRSS"), true, 0},
        {"private KiB", PrivateKiB(), true, 0},
        {"heap KiB", static_cast<long long>(heap.uordblks / 1024), true, 0},
        count("windows", handles.windows),
        count("menus", handles.menus),
        count("pages", handles.pages),
        count("gdi fonts", gdi.fonts, 1),
        count("gdi bitmaps", gdi.bitmaps, 2),
        count("gdi icons", gdi.icons),
        count("printers", handles.printers),
        count("registry keys", handles.registryKeys),
        count("files", handles.files),
        count("modules", handles.modules),
        count("memory blocks", handles.memoryBlocks),
    };
}

std::string ProcessCountNote()
{
    return {};
}
