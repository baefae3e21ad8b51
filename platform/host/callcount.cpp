// Counts of the spooler and registry names called from outside the host.
#include "hostinternal.h"

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

} // namespace

CallCounter::CallCounter(const char* name) : name(name)
{
    Lock lock(StateMutex());
    Counters().push_back(this);
}

CountedCall::CountedCall(CallCounter& counter)
{
    if (t_depth++ == 0) {
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

void ResetCallCounts()
{
    detail::Lock lock(detail::StateMutex());
    for (detail::CallCounter* counter : detail::Counters()) {
        counter->count.store(0, std::memory_order_relaxed);
    }
}

} // namespace host
