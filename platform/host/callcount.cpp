// Counts of the spooler and registry names called from outside the host.
#include "hostinternal.h"

#include <map>

namespace host::detail {

namespace {

struct Counts
{
    std::map<std::string, long long> byName;
};

Counts& State()
{
    static auto* counts = new Counts;
    return *counts;
}

thread_local int t_depth = 0;

} // namespace

CountedCall::CountedCall(const char* name)
{
    if (t_depth++ == 0) {
        Lock lock(StateMutex());
        ++State().byName[name];
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
    const auto& byName = detail::State().byName;
    return {byName.begin(), byName.end()};
}

void ResetCallCounts()
{
    detail::Lock lock(detail::StateMutex());
    detail::State().byName.clear();
}

} // namespace host
