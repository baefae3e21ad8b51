// The host counts its spooler and registry names itself.
#include "driverlib.h"

#include "platform/host/host.h"

bool StartCallCounts(const DriverLibrary&, std::string*)
{
    host::ResetCallCounts();
    return true;
}

std::vector<std::pair<std::string, long long>> TakeCallCounts()
{
    std::vector<std::pair<std::string, long long>> counts = host::CallCounts();
    host::ResetCallCounts();
    return counts;
}
