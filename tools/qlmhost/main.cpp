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

const Command kCommands[] = {
    {"printer add", "NAME --driver DRIVER [--port PORT]",
     "Adds a queue of the driver; installs the driver's resources when they are missing.",
     PrinterAdd,
     "DRIVER is the model's driver name, such as \"Tarvo Plan Output System 2440\". The\n"
     "  resource library comes from $QLMHOST_RESOURCES, else from this build."},
    {"printer remove", "NAME", "Removes a queue and its printer data.", PrinterRemove},
    {"printer list", "[--json]", "Lists the queues.", PrinterList},
    {"port add", "NAME --monitor MONITOR [--description TEXT]",
     "Adds a port of a monitor, such as \"TCPMON.DLL\" or \"Local Port\".", PortAdd},
    {"port list", "[--json]", "Lists the ports and their monitors.", PortList},
    {"data set", "PRINTER VALUE (--dword N | --string S | --binary HEX) [--key KEY]",
     "Sets a printer data value (key PrinterDriverData unless given).", DataSet},
    {"data get", "PRINTER VALUE [--key KEY] [--json]", "Shows a printer data value.", DataGet},
    {"reg set", "KEY VALUE (--dword N | --string S | --binary HEX)",
     "Sets a registry value; KEY starts with HKCU\\ or HKLM\\.", RegSet},
    {"reg get", "KEY VALUE [--json]", "Shows a registry value.", RegGet},
    {"reg delete", "KEY", "Deletes a registry key that has no subkeys.", RegDelete},
    {"driver", "[PRINTER] [--json]", "Loads the driver library and shows its immediate answers.",
     DriverAnswers},
    {"driver install", "[--resources FILE]",
     "Installs the resource library QLMRes.DLL where the driver loads it from.", DriverInstall,
     "The file goes to <printer driver directory>\\3\\QLMRes.DLL under the home directory.\n"
     "  FILE defaults to $QLMHOST_RESOURCES, else to the QLMRes.DLL of this build."},
    g_CapsCommand,
    {"event", "PRINTER initialize|delete|delete-connection|NUMBER [--no-ui] [--json]",
     "Tells the driver of a queue's life as the spooler does (DrvPrinterEvent).", EventCommand,
     "initialize fills the queue's stored record from its printer (over the port's address,\n"
     "  TCP port 2000); delete and delete-connection remove the queue's per-user key. Other\n"
     "  events, by name (add-connection, cache-refresh, cache-delete, attributes-changed) or\n"
     "  number, are answered without action. Exit 0 when the driver answers TRUE."},
    {"refresh", "PRINTER [--capture FILE] [--json]",
     "Asks the queue's printer what it is and stores the answer in the queue's record.",
     RefreshCommand,
     "The driver's refresh runs on the queue's stored record: the port's address, TCP port\n"
     "  2000, six PJL queries; the record is stored again and what the printer said is shown.\n"
     "  When no address answers, the driver shows its address dialog; the global --address TEXT\n"
     "  answers it (typed, then OK) once, and a dialog that comes again is cancelled.\n"
     "  --capture FILE reads the six replies from FILE instead of the printer: the driver's\n"
     "  debug switch DBG_BidiFromFile is on for the run and FILE is picked in the open dialog.\n"
     "  Exit 1, the record unchanged, when no printer answers or a question is cancelled."},
    {"parse", "FILE [--json]", "Shows the PJL tokens the driver's parser finds in a capture.",
     ParseCommand,
     "FILE is read as the refresh reads a capture: its first 32768 bytes. Each token shows its\n"
     "  name, code and value; text values show their line, roll values their name."},
    {"printer state", "PRINTER [--json]",
     "Shows what the queue's record holds of its printer: rolls, firmware, fonts, finisher.",
     PrinterStateCommand},
    g_SheetCommand,
    g_BatchCommand,
    g_ProbeCommand,
    g_BenchCommand,
    g_SoakCommand,
    {"devmode layout", "[--json]", "Shows the settings record's fields and offsets.",
     DevmodeLayout},
    {"devmode new", "PRINTER [--json]",
     "Shows the record a fresh settings object holds for the queue: the defaults, the port test.",
     DevmodeNew},
    g_DevmodeShowCommand,
    {"devmode store", "PRINTER FILE",
     "Stores a record file as the queue's record (SetPrinter level 2).", DevmodeStore},
    {"devmode read", "FILE [--json]", "Shows a record file field by field.", DevmodeRead},
    g_DevmodeDefaultCommand,
    g_DevmodeConvertCommand,
};
const CommandTable kTable = {kCommands, sizeof(kCommands) / sizeof(kCommands[0])};

void PrintHelp()
{
    PrintUsage(
        "usage: qlmhost [--home DIR] [--user NAME] [--metric|--us] [--os-major N]\n"
        "               [--driver-lib PATH] [--address TEXT] [--counts] COMMAND ... [--json]\n\n"
        "State lives in DIR (default $QLMHOST_HOME, else ~/.qlmhost). --address answers the\n"
        "printer address dialog of a refresh that reaches no printer, as if typed and "
        "OK'd.\n"
        "--counts writes to standard error, after the command, how many spooler and registry\n"
        "calls the driver library made during it, by name.\n",
        kTable);
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<std::string> words(argv + 1, argv + argc);
    Options options;
    options.commands = kTable;
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
    const Command* command = MatchCommand(kTable, words, i, &used);
    if (!command)
        return GlobalUsageError("unknown command '" + words[i] + "'");

    Args args(std::vector<std::string>(words.begin() + i + used, words.end()), *command);
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
