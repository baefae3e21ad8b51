// Counts of the spooler and registry names called from outside the host.
#include "hostinternal.h"

#include <link.h>

#include <map>
#include <vector>

namespace host::detail {

namespace {

// Every counter made so far; a name's counter is made on its first call.
std::vector<CallCounter*>& Counters()
{
    static auto* counters = new std::vector<CallCounter*>;
    return *counters;
}

thread_local int t_depth = 0;

// The address ranges of the module whose calls alone are counted; no range counts every caller.
// Set before the counting it filters, read by every counted call.
constexpr int kMaxRanges = 8;
uintptr_t g_rangeBegin[kMaxRanges];
uintptr_t g_rangeEnd[kMaxRanges];
std::atomic<int> g_ranges{0};

bool Counted(const void* caller)
{
    const int ranges = g_ranges.load(std::memory_order_acquire);
    if (ranges == 0) {
        return true;
    }
    const auto at = reinterpret_cast<uintptr_t>(caller);
    for (int i = 0; i < ranges; ++i) {
        if (at >= g_rangeBegin[i] && at < g_rangeEnd[i]) {
            return true;
        }
    }
    return false;
}

struct ModuleSearch
{
    uintptr_t address;
    int ranges = 0;
    uintptr_t begin[kMaxRanges];
    uintptr_t end[kMaxRanges];
};

int FindModule(dl_phdr_info* info, size_t, void* data)
{
    auto* search = static_cast<ModuleSearch*>(data);
    ModuleSearch found{search->address};
    bool holds = false;
    for (ElfW(Half) i = 0; i < info->dlpi_phnum && found.ranges < kMaxRanges; ++i) {
        const ElfW(Phdr)& segment = info->dlpi_phdr[i];
        if (segment.p_type != PT_LOAD) {
            continue;
        }
        uintptr_t begin = info->dlpi_addr + segment.p_vaddr;
        uintptr_t end = begin + segment.p_memsz;
        found.begin[found.ranges] = begin;
        found.end[found.ranges++] = end;
        holds = holds || (search->address >= begin && search->address < end);
    }
    if (!holds) {
        return 0;
    }
    *search = found;
    return 1;
}

} // namespace

CallCounter::CallCounter(const char* name) : name(name)
{
    Lock lock(StateMutex());
    Counters().push_back(this);
}

CountedCall::CountedCall(CallCounter& counter, const void* caller)
{
    if (t_depth++ == 0 && Counted(caller)) {
        counter.count.fetch_add(1, std::memory_order_relaxed);
    }
}

CountedCall::~CountedCall()
{
    --t_depth;
}

} // namespace host::detail

namespace host {

std::vector<std::pair<std::string, long long>> CallCounts()
{
    detail::Lock lock(detail::StateMutex());
    std::map<std::string, long long> byName;
    for (const detail::CallCounter* counter : detail::Counters()) {
        if (long long count = counter->count.load(std::memory_order_relaxed)) {
            byName[counter->name] += count;
        }
    }
    return {byName.begin(), byName.end()};
}

bool CountCallsFromModuleOf(const void* address)
{
    detail::Lock lock(detail::StateMutex());
    if (!address) {
        detail::g_ranges.store(0, std::memory_order_release);
        return true;
    }
    detail::ModuleSearch search{reinterpret_cast<uintptr_t>(address)};
    if (!dl_iterate_phdr(detail::FindModule, &search) || search.ranges == 0) {
        return false;
    }
    detail::g_ranges.store(0, std::memory_order_release);
    for (int i = 0; i < search.ranges; ++i) {
        detail::g_rangeBegin[i] = search.begin[i];
        detail::g_rangeEnd[i] = search.end[i];
    }
    detail::g_ranges.store(search.ranges, std::memory_order_release);
    return true;
}

void ResetCallCounts()
{
    detail::Lock lock(detail::StateMutex());
    for (detail::CallCounter* counter : detail::Counters()) {
        counter->count.store(0, std::memory_order_relaxed);
    }
}

} // namespace host
