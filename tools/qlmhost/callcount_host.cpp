// The host counts its spooler and registry names itself.
#include "driverlib.h"

#include "platform/host/host.h"

bool StartCallCounts(const DriverLibrary& driver, std::string* error)
{
    if (!host::CountCallsFromModuleOf(driver.Export("DllMain"))) {
        *error = "cannot tell the driver library's calls from the others";
        return false;
    }
    return true;
}

std::vector<std::pair<std::string, long long>> TakeCallCounts()
{
    std::vector<std::pair<std::string, long long>> counts = host::CallCounts();
    host::ResetCallCounts();
    return counts;
}
