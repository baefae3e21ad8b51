// pjlsim: a PJL printer on a loopback address, for the driver's refresh and its tests.
#include "profile.h"
#include "server.h"

#include <csignal>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>

namespace {

const char kUsage[] =
    "usage: pjlsim [options]\n"
    "  --address ADDR     IPv4 address to listen on (default 127.0.0.1)\n"
    "  --port N           TCP port (default 2000; 0 picks a free one)\n"
    "  --profile FILE     printer profile (default: the built-in Plan 2440)\n"
    "  --fault MODE[:Q]   silence, drip, cut, garbage, reset, big: for every query or only Q\n"
    "                     (ID, CONFIG, VARIABLES, TVOFONTS, TVORASTERSTAMPS, TVOFINISHER,\n"
    "                     STATUS, MEMORY, ECHO); refuse, hangup: for every connection.\n"
    "                     May be given more than once; the first that fits a query applies.\n"
    "  --delay-ms N       pause after each byte under the drip fault (default 20)\n"
    "  --once             stop after the first connection\n"
    "  --quiet            no log of queries on standard error\n"
    "  --help             this text\n"
    "Prints one line on standard output when listening; stops on SIGINT or SIGTERM.\n";

pjlsim::Server* g_server = nullptr;

extern "C" void OnSignal(int)
{
    if (g_server) {
        g_server->RequestStop();
    }
}

bool ParseNumber(const char* text, unsigned long max, unsigned long* out)
{
    char* end = nullptr;
    errno = 0;
    unsigned long v = std::strtoul(text, &end, 10);
    if (*text == '\0' || *text == '-' || *end != '\0' || errno != 0 || v > max) {
        return false;
    }
    *out = v;
    return true;
}

int Usage(const std::string& message)
{
    std::cerr << "pjlsim: " << message << "\n" << kUsage;
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    pjlsim::ServerOptions options;
    std::string profilePath;
    bool quiet = false;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        auto value = [&](const char** out) {
            if (i + 1 >= argc) {
                return false;
            }
            *out = argv[++i];
            return true;
        };
        const char* v = nullptr;
        unsigned long n = 0;
        if (arg == "--help" || arg == "-h") {
            std::cout << kUsage;
            return 0;
        } else if (arg == "--once") {
            options.once = true;
        } else if (arg == "--quiet") {
            quiet = true;
        } else if (arg == "--address") {
            if (!value(&v)) {
                return Usage("--address needs a value");
            }
            options.address = v;
        } else if (arg == "--port") {
            if (!value(&v) || !ParseNumber(v, 65535, &n)) {
                return Usage("--port needs a number from 0 to 65535");
            }
            options.port = static_cast<std::uint16_t>(n);
        } else if (arg == "--profile") {
            if (!value(&v)) {
                return Usage("--profile needs a file");
            }
            profilePath = v;
        } else if (arg == "--delay-ms") {
            if (!value(&v) || !ParseNumber(v, 60000, &n)) {
                return Usage("--delay-ms needs a number from 0 to 60000");
            }
            options.delayMs = static_cast<unsigned>(n);
        } else if (arg == "--fault") {
            if (!value(&v)) {
                return Usage("--fault needs a mode");
            }
            std::string error;
            std::optional<pjlsim::Fault> fault = pjlsim::ParseFault(v, &error);
            if (!fault) {
                return Usage(error);
            }
            options.faults.push_back(*fault);
        } else {
            return Usage("unknown option " + arg);
        }
    }

    std::string error;
    std::optional<pjlsim::Profile> profile =
        profilePath.empty()
            ? pjlsim::ParseProfile(pjlsim::DefaultProfileText(), "<built-in plan2440>", &error)
            : pjlsim::LoadProfile(profilePath, &error);
    if (!profile) {
        std::cerr << "pjlsim: " << error << "\n";
        return 1;
    }
    if (!quiet) {
        options.log = [](const std::string& line) { std::cerr << "pjlsim: " << line << "\n"; };
    }

    bool refuse = false;
    for (const pjlsim::Fault& f : options.faults) {
        refuse = refuse || f.mode == pjlsim::FaultMode::Refuse;
    }
    std::signal(SIGPIPE, SIG_IGN);
    pjlsim::Server server(*profile, options);
    if (!server.Open(&error)) {
        std::cerr << "pjlsim: " << error << "\n";
        return 1;
    }
    g_server = &server;
    struct sigaction action
    {
    };
    action.sa_handler = OnSignal;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);

    std::cout << "pjlsim: listening on " << options.address << ":" << server.Port() << " ("
              << (profilePath.empty() ? std::string("built-in plan2440") : profilePath) << ")"
              << (refuse ? ", refusing every connection" : "") << std::endl;
    server.Run();
    g_server = nullptr;
    return 0;
}
