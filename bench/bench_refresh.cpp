// What a whole refresh costs against the simulated printer on loopback, next to its floor: six
// plain TCP round trips of a line and a formfeed-ended answer on one connection, which is all
// the network a refresh needs.
#include "driver/config/tvoconfg.h"
#include "driver/devmode/tvodm.h"
#include "driver/dialogue/qlmrefresh.h"
#include "platform/host/host.h"
#include "profile.h"
#include "server.h"

#include <benchmark/benchmark.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

// The host declares the Winsock names, which clash with the system's; the floor uses the
// system's sockets directly, by these aliases of the same C functions.
namespace posix {
extern "C" int socket(int, int, int) noexcept;
extern "C" int setsockopt(int, int, int, const void*, socklen_t) noexcept;
extern "C" int connect(int, const sockaddr*, socklen_t);
extern "C" ssize_t send(int, const void*, size_t, int);
extern "C" ssize_t recv(int, void*, size_t, int);
} // namespace posix

namespace {

namespace fs = std::filesystem;

constexpr char kPrinterAddress[] = "127.0.0.71";
constexpr char kEchoAddress[] = "127.0.0.72";
constexpr uint16_t kEchoPort = 2001;

// A private home with the resource library, a queue on the simulated printer's address, and
// the printer itself, for the program's life.
struct Setup
{
    std::unique_ptr<pjlsim::Server> server;
    HANDLE hPrinter = nullptr;
    fs::path home;

    Setup()
    {
        const fs::path built = fs::read_symlink("/proc/self/exe").parent_path().parent_path() /
                               "resources" / "QLMRes.DLL";
        home = fs::temp_directory_path() / ("qlmbench-refresh-" + std::to_string(getpid()));
        fs::create_directories(home);
        host::SetHomeDirectory(home.string());
        host::OpenStore(":memory:");
        host::InstallDriverFile(built.string(), u"QLMRes.DLL", 3);
        host::PrinterRecord printer;
        printer.name = u"Plotter";
        printer.driverName = u"Tarvo Plan Output System 2440";
        printer.portName = u"127.0.0.71";
        host::AddPrinter(printer);
        OpenPrinterW(const_cast<LPWSTR>(u"Plotter"), &hPrinter, nullptr);

        std::string error;
        pjlsim::ServerOptions options;
        options.address = kPrinterAddress;
        options.port = 2000;
        server = std::make_unique<pjlsim::Server>(
            pjlsim::ParseProfile(pjlsim::DefaultProfileText(), "plan2440", &error)
                .value_or(pjlsim::Profile{}),
            options);
        if (!server->Start(&error))
            fprintf(stderr, "pjlsim: %s\n", error.c_str());
    }
    ~Setup()
    {
        server->Stop();
        ClosePrinter(hPrinter);
        std::error_code ignored;
        fs::remove_all(home, ignored);
    }
};

Setup& TheSetup()
{
    static Setup setup;
    return setup;
}

void BM_QLMRefresh(benchmark::State& state)
{
    Setup& setup = TheSetup();
    TVOPrinterConfiguration config(TEXT("Tarvo Plan Output System 2440"));
    config.setPrinterHandle(setup.hPrinter);
    TVODevMode record(setup.hPrinter);
    for (auto _ : state) {
        int rc = QLMRefresh(&config, record.m_lpDM, nullptr);
        if (rc != 1) {
            state.SkipWithError("refresh failed");
            break;
        }
    }
}
BENCHMARK(BM_QLMRefresh)->Unit(benchmark::kMillisecond);

// Answers each line with "ok" and a formfeed, one connection at a time.
class EchoServer
{
public:
    EchoServer()
    {
        m_listen = posix::socket(AF_INET, SOCK_STREAM, 0);
        int one = 1;
        posix::setsockopt(m_listen, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
        sockaddr_in addr{};
        addr.sin_family = AF_INET;
        addr.sin_port = htons(kEchoPort);
        inet_pton(AF_INET, kEchoAddress, &addr.sin_addr);
        bind(m_listen, reinterpret_cast<sockaddr*>(&addr), sizeof addr);
        listen(m_listen, 8);
        m_thread = std::thread([this] { Run(); });
    }
    ~EchoServer()
    {
        m_stop = true;
        m_thread.join();
        close(m_listen);
    }

private:
    void Run()
    {
        while (!m_stop) {
            pollfd p{m_listen, POLLIN, 0};
            if (poll(&p, 1, 50) <= 0)
                continue;
            int fd = accept(m_listen, nullptr, nullptr);
            if (fd < 0)
                continue;
            char buf[512];
            ssize_t n;
            while ((n = posix::recv(fd, buf, sizeof buf, 0)) > 0) {
                for (ssize_t i = 0; i < n; ++i) {
                    if (buf[i] == '\n')
                        posix::send(fd, "ok\f", 3, MSG_NOSIGNAL);
                }
            }
            close(fd);
        }
    }
    int m_listen = -1;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

void BM_SixTcpRoundTrips(benchmark::State& state)
{
    static EchoServer echo;
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(kEchoPort);
    inet_pton(AF_INET, kEchoAddress, &addr.sin_addr);
    for (auto _ : state) {
        int fd = posix::socket(AF_INET, SOCK_STREAM, 0);
        if (posix::connect(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0) {
            close(fd);
            state.SkipWithError("connect failed");
            break;
        }
        for (int i = 0; i < 6; ++i) {
            posix::send(fd, "@PJL INFO ID\n", 13, MSG_NOSIGNAL);
            char c = 0;
            while (posix::recv(fd, &c, 1, 0) == 1 && c != '\f') {
            }
        }
        close(fd);
    }
}
BENCHMARK(BM_SixTcpRoundTrips)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
