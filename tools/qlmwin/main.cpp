// qlmwin: the driver's host on Windows. It installs the driver from its INF and plays the
// spooler, the common printer UI, an application and a person, with the commands and the
// printed answers of qlmhost, so that the two platforms' answers compare line by line.
#include "commands.h"
#include "driverlib.h"
#include "install.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

const char* const g_pszToolName = "qlmwin";

namespace {

const Command kCommands[] = {
    {"install", "--inf FILE [--queues FILE]",
     "Installs the driver from its INF and creates the queues of a list.", InstallCommand,
     "The INF's models and files are read through setupapi; the driver is added with\n"
     "  AddPrinterDriverExW level 3 from the INF's folder, once for each model name. --queues\n"
     "  names a list of queues, one a line: NAME, a tab, the model's driver name, and\n"
     "  optionally a tab and a port (LPT1: by default)."},
    {"port add", "NAME", "Adds a network port: one of the TCP/IP monitor's, as the driver sees it.",
     PortAddCommand,
     "Registers qlmnetmon.dll (beside qlmwin.exe) as the port monitor TCPMON.DLL when it is not\n"
     "  yet, and adds the port under it."},
    g_CapsCommand,
    {"event", "PRINTER initialize|delete|delete-connection|NUMBER [--no-ui] [--json]",
     "Tells the driver of a queue's life as the spooler does (DrvPrinterEvent).", EventCommand,
     "initialize fills the queue's stored record from its printer, as install does for each\n"
     "  queue it makes. Exit 0 when the driver answers TRUE."},
    g_DevmodeDefaultCommand,
    g_DevmodeShowCommand,
    g_DevmodeConvertCommand,
    g_SheetCommand,
    g_BatchCommand,
    g_ProbeCommand,
    g_BenchCommand,
    g_SoakCommand,
};
const CommandTable kTable = {kCommands, sizeof(kCommands) / sizeof(kCommands[0])};

void PrintHelp()
{
    PrintUsage("usage: qlmwin [--driver-lib PATH] [--counts] COMMAND ... [--json]\n\n"
               "The driver library is the installed QLMUIDrv.dll unless --driver-lib names one.\n"
               "--counts writes to standard error, after the command, how many spooler and\n"
               "registry calls the driver library made during it, by name.\n",
               kTable);
}

// The configuration file the spooler loads: ...\spool\drivers\x64\3\QLMUIDrv.dll.
std::string InstalledDriverLibrary()
{
    WCHAR directory[MAX_PATH] = {};
    DWORD cb = 0;
    if (!GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<LPBYTE>(directory),
                                    sizeof(directory), &cb))
        return "QLMUIDrv.dll";
    return U(reinterpret_cast<const char16_t*>(directory)) + "\\3\\QLMUIDrv.dll";
}

// A file in qlmwin.exe's folder.
std::string Beside(const char* name)
{
    WCHAR self[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    std::string path = U(reinterpret_cast<const char16_t*>(self));
    return path.substr(0, path.find_last_of('\\') + 1) + name;
}

std::string Narrow(const wchar_t* text)
{
    return U(std::u16string(reinterpret_cast<const char16_t*>(text)));
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    std::vector<std::string> words;
    for (int i = 1; i < argc; ++i)
        words.push_back(Narrow(argv[i]));
    Options options;
    options.commands = kTable;
    bool counts = false;
    size_t i = 0;
    for (; i < words.size() && words[i].rfind("--", 0) == 0 && !IsHelp(words[i]); i++) {
        if (words[i] == "--driver-lib" && i + 1 < words.size())
            options.driverLibrary = words[++i];
        else if (words[i] == "--counts")
            counts = true;
        else
            return GlobalUsageError("unknown global option " + words[i]);
    }
    if (i == words.size() || IsHelp(words[i])) {
        PrintHelp();
        return i == words.size() ? 2 : 0;
    }
    if (options.driverLibrary.empty())
        options.driverLibrary = InstalledDriverLibrary();
    options.testDialogs = Beside("testdialogs.dll");
    size_t used = 0;
    const Command* command = MatchCommand(kTable, words, i, &used);
    if (!command)
        return GlobalUsageError("unknown command '" + words[i] + "'");
    Args args(std::vector<std::string>(words.begin() + i + used, words.end()), *command);
    if (args.Flag("--help") || args.Flag("-h")) {
        PrintCommandHelp(*command);
        return 0;
    }
    options.json = args.Flag("--json");
    if (counts)
        CountDriverCalls();
    int rc = command->run(args, options);
    if (counts)
        PrintCallCounts();
    return rc;
}
