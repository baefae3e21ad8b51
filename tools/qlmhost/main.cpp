// qlmhost: the driver's host on Linux. It plays the spooler, the common UI and an application:
// it manages printers, ports, printer data and the registry, and calls the driver's exports as
// they would, printing what comes back field by field.
#include "commands.h"
#include "driverlib.h"

#include "platform/host/host.h"
#include "resources/qlmres.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

const char* const g_pszToolName = "qlmhost";

namespace {

void PrintHelp()
{
    PrintUsage(
        "usage: qlmhost [--home DIR] [--user NAME] [--metric|--us] [--os-major N]\n"
        "               [--driver-lib PATH] [--address TEXT] [--counts] COMMAND ... [--json]\n\n"
        "State lives in DIR (default $QLMHOST_HOME, else ~/.qlmhost). --address answers the\n"
        "printer address dialog of a refresh that reaches no printer, as if typed and "
        "OK'd.\n"
        "--counts writes to standard error, after the command, how many spooler and registry\n"
        "calls the driver library made during it, by name.\n");
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<std::string> words(argv + 1, argv + argc);
    Options options;
    const char* envDriver = getenv("QLMHOST_DRIVER");
    options.driverLibrary = envDriver && *envDriver ? envDriver : QLM_DEFAULT_DRIVER;
    options.testDialogs = QLM_TEST_DIALOGS;

    // Global options come before the command.
    size_t i = 0;
    std::string home, user, osMajor;
    int metric = -1;
    bool counts = false;
    for (; i < words.size() && words[i].rfind("--", 0) == 0 && !IsHelp(words[i]); i++) {
        const std::string& w = words[i];
        bool hasValue = i + 1 < words.size();
        if (w == "--home" && hasValue)
            home = words[++i];
        else if (w == "--user" && hasValue)
            user = words[++i];
        else if (w == "--os-major" && hasValue)
            osMajor = words[++i];
        else if (w == "--driver-lib" && hasValue)
            options.driverLibrary = words[++i];
        else if (w == "--address" && hasValue)
            options.address = words[++i];
        else if (w == "--metric")
            metric = 1;
        else if (w == "--us")
            metric = 0;
        else if (w == "--counts")
            counts = true;
        else
            return GlobalUsageError(hasValue || w == "--metric" || w == "--us" || w == "--counts"
                                        ? "unknown global option " + w
                                        : "unknown global option " + w + ", or it lacks its value");
    }
    long long major = 0;
    if (!osMajor.empty() && !ParseNumber(osMajor, 0, 0xFFFFFFFFll, &major))
        return GlobalUsageError("--os-major takes a number, not '" + osMajor + "'");
    if (i == words.size() || IsHelp(words[i])) {
        PrintHelp();
        return i == words.size() ? 2 : 0;
    }

    size_t used = 0;
    const Command* command = MatchCommand(words, i, &used);
    if (!command)
        return GlobalUsageError("unknown command '" + words[i] + "'");

    Args args(std::vector<std::string>(words.begin() + i + used, words.end()));
    if (args.Flag("--help") || args.Flag("-h")) {
        PrintCommandHelp(*command);
        return 0;
    }
    // Help leaves no trace: the store is opened only for a command that runs.
    if (!home.empty())
        host::SetHomeDirectory(home);
    std::string error;
    if (!host::OpenStore(host::HomeDirectory() + "/store.db", &error))
        return Fail(error);
    if (!user.empty())
        host::SetUserName(host::Utf8ToUtf16(user));
    if (metric >= 0)
        host::SetMetric(metric == 1);
    if (!osMajor.empty()) {
        DWORD oldMajor, minor, build;
        host::GetSystemVersion(&oldMajor, &minor, &build);
        host::SetSystemVersion(static_cast<DWORD>(major), minor, build);
    }

    // The address dialog, when it comes, is answered as a person would: the address typed, OK.
    if (options.address) {
        std::string error;
        options.addressScript =
            "type " + std::to_string(IDC_PRINTERIP_ADDRESS) + " " + *options.address + "\nok\n";
        if (!host::SetUserScript(options.addressScript, &error))
            return GlobalUsageError("--address: " + error);
    }
    options.json = args.Flag("--json");
    if (counts)
        CountDriverCalls();
    int rc = command->run(args, options);
    if (counts)
        PrintCallCounts();
    host::CloseStore();
    return rc;
}
