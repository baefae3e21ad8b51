// What the benchmarks share: a private host home with the build's QLMRes.DLL installed, the
// store in memory, removed when the program ends; and a queue of a 2440 to ask.
#pragma once

#include "platform/host/host.h"

#include <unistd.h>

#include <filesystem>
#include <string>

namespace benchhome {

// Prepares the home once; false when the resource library cannot be installed.
inline bool PrepareHome()
{
    namespace fs = std::filesystem;
    static const bool ready = [] {
        const fs::path built = fs::read_symlink("/proc/self/exe").parent_path().parent_path() /
                               "resources" / "QLMRes.DLL";
        const fs::path home = fs::temp_directory_path() / ("qlmbench-" + std::to_string(getpid()));
        fs::create_directories(home);
        static struct Cleanup
        {
            fs::path dir;
            ~Cleanup()
            {
                std::error_code ignored;
                fs::remove_all(dir, ignored);
            }
        } cleanup{home};
        host::SetHomeDirectory(home.string());
        host::OpenStore(":memory:");
        return host::InstallDriverFile(built.string(), u"QLMRes.DLL", 3);
    }();
    return ready;
}

// A queue "Plan 2440" of the 2440 on LPT1:, which asks no printer; opened for the program's
// life.
inline HANDLE Plan2440()
{
    static HANDLE hPrinter = [] {
        PrepareHome();
        host::PrinterRecord printer;
        printer.name = u"Plan 2440";
        printer.driverName = u"Tarvo Plan Output System 2440";
        printer.portName = u"LPT1:";
        host::AddPrinter(printer);
        HANDLE h = nullptr;
        OpenPrinterW(const_cast<LPWSTR>(u"Plan 2440"), &h, nullptr);
        return h;
    }();
    return hPrinter;
}

} // namespace benchhome
