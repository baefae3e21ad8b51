// The pjlsim program as a user runs it: options, a bad profile, serving until a signal.
#include "client.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>
#include <vector>

using pjlsim_test::Client;

namespace {

struct Child
{
    pid_t pid = -1;
    int out = -1;
    int err = -1;
};

Child Spawn(std::vector<std::string> args)
{
    int out[2], err[2];
    EXPECT_EQ(pipe(out), 0);
    EXPECT_EQ(pipe(err), 0);
    Child child;
    child.pid = fork();
    if (child.pid == 0) {
        dup2(out[1], 1);
        dup2(err[1], 2);
        close(out[0]);
        close(err[0]);
        std::vector<char*> argv;
        args.insert(args.begin(), PJLSIM_PROGRAM);
        for (std::string& a : args) {
            argv.push_back(a.data());
        }
        argv.push_back(nullptr);
        execv(PJLSIM_PROGRAM, argv.data());
        _exit(127);
    }
    close(out[1]);
    close(err[1]);
    child.out = out[0];
    child.err = err[0];
    return child;
}

// Reads fd to its end, or to the first line end with untilLine.
std::string ReadFd(int fd, bool untilLine = false)
{
    std::string got;
    char c;
    for (;;) {
        pollfd p{fd, POLLIN, 0};
        if (poll(&p, 1, 10000) <= 0 || read(fd, &c, 1) != 1) {
            break;
        }
        got += c;
        if (untilLine && c == '\n') {
            break;
        }
    }
    return got;
}

// The exit status; a child that does not end within 10 seconds is killed and fails the test.
int Wait(pid_t pid)
{
    int status = 0;
    for (int i = 0; i < 1000; ++i) {
        if (waitpid(pid, &status, WNOHANG) == pid) {
            return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        }
        usleep(10000);
    }
    kill(pid, SIGKILL);
    waitpid(pid, &status, 0);
    ADD_FAILURE() << "pjlsim did not end";
    return -1;
}

struct Result
{
    int status;
    std::string out, err;
};

Result RunProgram(std::vector<std::string> args)
{
    Child child = Spawn(std::move(args));
    Result r;
    r.out = ReadFd(child.out);
    r.err = ReadFd(child.err);
    close(child.out);
    close(child.err);
    r.status = Wait(child.pid);
    return r;
}

std::uint16_t PortOf(const std::string& line)
{
    // "pjlsim: listening on 127.0.0.4:40123 (...)"
    std::size_t colon = line.rfind(':', line.find(" ("));
    return static_cast<std::uint16_t>(std::stoi(line.substr(colon + 1)));
}

TEST(PjlsimProgram, HelpAndBadOptions)
{
    Result help = RunProgram({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("--fault MODE[:Q]"), std::string::npos) << help.out;

    const struct
    {
        std::vector<std::string> args;
        const char* message;
    } rows[] = {
        {{"--fault", "slow"}, "unknown fault \"slow\""},
        {{"--fault", "hangup:ID"}, "acts on the connection"},
        {{"--port", "70000"}, "--port needs a number"},
        {{"--port", "-1"}, "--port needs a number"},
        {{"--delay-ms"}, "--delay-ms needs a number"},
        {{"--colour"}, "unknown option --colour"},
    };
    for (const auto& row : rows) {
        Result r = RunProgram(row.args);
        EXPECT_EQ(r.status, 2) << row.message;
        EXPECT_NE(r.err.find(row.message), std::string::npos) << r.err;
    }
}

TEST(PjlsimProgram, BadProfileIsReportedWithFileAndLine)
{
    const auto path = std::filesystem::temp_directory_path() /
                      ("pjlsim-bad-" + std::to_string(getpid()) + ".profile");
    std::ofstream(path) << "id = BAD\nroll1 = ROLL_36, FULL\n";
    Result r = RunProgram({"--profile", path.string(), "--port", "0"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "pjlsim: " + path.string() +
                         ":2: a roll is \"SIZE, STATE, TYPE\", three fields, not 2\n");
    std::filesystem::remove(path);

    Result missing = RunProgram({"--profile", "/nonexistent.profile"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.err.find("/nonexistent.profile: cannot open"), std::string::npos);
}

TEST(PjlsimProgram, ServesTheBuiltInPrinterUntilTerminated)
{
    Child child = Spawn({"--address", "127.0.0.4", "--port", "0", "--quiet"});
    const std::string line = ReadFd(child.out, true);
    ASSERT_EQ(line.rfind("pjlsim: listening on 127.0.0.4:", 0), 0u) << line;
    Client client;
    ASSERT_EQ(client.Connect("127.0.0.4", PortOf(line)), 0);
    EXPECT_EQ(client.Ask("@PJL INFO ID"),
              "@PJL INFO ID\r\n\"Tarvo Plan Output System 2440\"\r\n\f");
    kill(child.pid, SIGTERM);
    EXPECT_EQ(Wait(child.pid), 0);
    close(child.out);
    close(child.err);
}

TEST(PjlsimProgram, OnceEndsAfterTheFirstConnection)
{
    Child child = Spawn({"--address", "127.0.0.4", "--port", "0", "--once", "--profile",
                         QLM_TEST_SOURCE_DIR "/tools/pjlsim/profiles/plan318p.profile"});
    const std::string line = ReadFd(child.out, true);
    ASSERT_NE(line.find("plan318p.profile"), std::string::npos) << line;
    {
        Client client;
        ASSERT_EQ(client.Connect("127.0.0.4", PortOf(line)), 0);
        EXPECT_EQ(client.Ask("@PJL INFO TVOFINISHER"), "@PJL INFO TVOFINISHER\r\n\f");
    }
    EXPECT_EQ(Wait(child.pid), 0);
    // The log names what was asked.
    EXPECT_NE(ReadFd(child.err).find("TVOFINISHER: "), std::string::npos);
    close(child.out);
    close(child.err);
}

} // namespace
