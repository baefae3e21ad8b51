// The store: persistence across opens, writes of other processes, concurrent writers, damage.
#include "hosttest.h"

#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>

using namespace hosttest;

namespace {

class Store : public ::testing::Test
{
protected:
    void SetUp() override
    {
        path_ = HomeFile(
            "store-" +
            std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()) + ".db");
        for (const char* suffix : {"", "-wal", "-shm"}) {
            std::filesystem::remove(path_ + suffix);
        }
    }
    void Open()
    {
        std::string error;
        ASSERT_TRUE(host::OpenStore(path_, &error)) << error;
    }
    // Waits for a child and gives its exit code (-1 when it did not exit normally).
    static int Wait(pid_t pid)
    {
        int status = 0;
        if (waitpid(pid, &status, 0) != pid || !WIFEXITED(status)) {
            return -1;
        }
        return WEXITSTATUS(status);
    }
    std::string path_;
};

HANDLE OpenQueue(const WCHAR* name)
{
    HANDLE h = nullptr;
    return OpenPrinterW(const_cast<WCHAR*>(name), &h, nullptr) ? h : nullptr;
}

TEST_F(Store, ReopenedFileStoreHoldsEverything)
{
    Open();
    host::SetUserName(u"carol");
    host::SetMetric(false);
    host::SetSystemVersion(6, 3, 9600);
    ASSERT_TRUE(host::AddPrinter(Printer(u"QLM 5000", MakeDevMode(sizeof(DEVMODEW), 12))));
    ASSERT_TRUE(host::AddPort({u"IP_10.0.0.9", u"Standard TCP/IP Port", u"TCP"}));
    HANDLE printer = OpenQueue(u"QLM 5000");
    ASSERT_NE(nullptr, printer);
    DWORD one = 1;
    ASSERT_EQ(DWORD(ERROR_SUCCESS),
              SetPrinterDataExW(printer, u"DebugSettings", u"g_bLog", REG_DWORD,
                                reinterpret_cast<LPBYTE>(&one), 4));
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS,
              RegCreateKeyExW(HKEY_CURRENT_USER, u"Software\\Tarvo\\Wide Format\\QLM 5000", 0,
                              nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr));
    for (const WCHAR* name : {u"Second", u"First"}) {
        ASSERT_EQ(ERROR_SUCCESS,
                  RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&one), 4));
    }
    host::CloseStore();

    // Handles into a store that was closed are dead, also after it is opened again.
    Open();
    EXPECT_EQ(ERROR_INVALID_HANDLE, RegSetValueExW(key, u"X", 0, REG_NONE, nullptr, 0));
    DWORD needed = 0;
    EXPECT_FALSE(GetPrinterW(printer, 2, nullptr, 0, &needed));
    EXPECT_EQ(DWORD(ERROR_INVALID_HANDLE), GetLastError());
    RegCloseKey(key);
    ClosePrinter(printer);

    EXPECT_EQ(u"carol", host::UserName());
    EXPECT_FALSE(host::IsMetric());
    DWORD major = 0, minor = 0, build = 0;
    host::GetSystemVersion(&major, &minor, &build);
    EXPECT_EQ(6u, major);
    EXPECT_EQ(3u, minor);
    EXPECT_EQ(9600u, build);
    host::PrinterRecord record;
    ASSERT_TRUE(host::GetPrinterRecord(u"qlm 5000", &record));
    EXPECT_EQ(MakeDevMode(sizeof(DEVMODEW), 12), record.devMode);
    EXPECT_EQ(1u, host::ListPorts().size());

    printer = OpenQueue(u"QLM 5000");
    ASSERT_NE(nullptr, printer);
    DWORD value = 0;
    EXPECT_EQ(DWORD(ERROR_SUCCESS),
              GetPrinterDataExW(printer, u"DebugSettings", u"G_BLOG", nullptr,
                                reinterpret_cast<LPBYTE>(&value), 4, &needed));
    EXPECT_EQ(1u, value);
    ClosePrinter(printer);
    ASSERT_EQ(ERROR_SUCCESS,
              RegOpenKeyExW(HKEY_CURRENT_USER, u"software\\tarvo\\wide format\\qlm 5000", 0,
                            KEY_READ, &key));
    EXPECT_EQ((std::vector<std::u16string>{u"Second", u"First"}), ValueNames(key));
    RegCloseKey(key);
    EXPECT_EQ(std::vector<std::u16string>{u"Wide Format"},
              host::RegistrySubKeys("HKCU\\Software\\Tarvo"));
}

TEST_F(Store, AnotherProcessWriteIsSeenByTheNextRead)
{
    Open();
    ASSERT_TRUE(host::AddPrinter(Printer(u"QLM")));
    HANDLE printer = OpenQueue(u"QLM");
    ASSERT_NE(nullptr, printer);
    DWORD value = 0, needed = 0;
    ASSERT_EQ(DWORD(ERROR_FILE_NOT_FOUND),
              GetPrinterDataW(printer, const_cast<WCHAR*>(u"FromChild"), nullptr,
                              reinterpret_cast<LPBYTE>(&value), 4, &needed));
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_FILE_NOT_FOUND,
              RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"Software\\Child", 0, KEY_READ, &key));

    pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        // The parent's connection and handles are not the child's to use.
        DWORD childNeeded = 0;
        if (GetPrinterW(printer, 2, nullptr, 0, &childNeeded) ||
            GetLastError() != ERROR_INVALID_HANDLE) {
            _exit(1);
        }
        if (!host::OpenStore(path_)) {
            _exit(2);
        }
        HANDLE own = OpenQueue(u"QLM");
        DWORD answer = 42;
        HKEY childKey = nullptr;
        if (!own ||
            SetPrinterDataW(own, const_cast<WCHAR*>(u"FromChild"), REG_DWORD,
                            reinterpret_cast<LPBYTE>(&answer), 4) != ERROR_SUCCESS ||
            RegCreateKeyExW(HKEY_LOCAL_MACHINE, u"Software\\Child", 0, nullptr, 0, KEY_ALL_ACCESS,
                            nullptr, &childKey, nullptr) != ERROR_SUCCESS) {
            _exit(3);
        }
        _exit(0);
    }
    ASSERT_EQ(0, Wait(pid));

    // Same connection, same handle: the next read sees the other process's commit.
    ASSERT_EQ(DWORD(ERROR_SUCCESS),
              GetPrinterDataW(printer, const_cast<WCHAR*>(u"FromChild"), nullptr,
                              reinterpret_cast<LPBYTE>(&value), 4, &needed));
    EXPECT_EQ(42u, value);
    ASSERT_EQ(ERROR_SUCCESS,
              RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"Software\\Child", 0, KEY_READ, &key));
    RegCloseKey(key);
    ClosePrinter(printer);
}

// Reads skip the freshness check while SQLite's shared WAL-index header is unchanged. Two
// processes take turns: each must see the other's latest value, also right after a read that
// followed its own write (its cached header is then one its own commit wrote).
TEST_F(Store, TurnsTakenByTwoProcessesAreEachSeen)
{
    constexpr DWORD kRounds = 40;
    Open();
    ASSERT_TRUE(host::AddPrinter(Printer(u"QLM")));
    int turn[2]; // the token passes both ways; a send to a dead child fails instead of killing us
    ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM, 0, turn));
    auto pass = [](int fd) {
        char token = 't';
        return send(fd, &token, 1, MSG_NOSIGNAL) == 1 && recv(fd, &token, 1, 0) == 1;
    };
    auto read = [](HANDLE printer) {
        DWORD value = kSentinel, needed = 0;
        GetPrinterDataExW(printer, u"Turns", u"Last", nullptr, reinterpret_cast<LPBYTE>(&value), 4,
                          &needed);
        return value;
    };
    auto write = [](HANDLE printer, DWORD value) {
        return SetPrinterDataExW(printer, u"Turns", u"Last", REG_DWORD,
                                 reinterpret_cast<LPBYTE>(&value), 4) == ERROR_SUCCESS;
    };
    pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        close(turn[0]);
        HANDLE printer = host::OpenStore(path_) ? OpenQueue(u"QLM") : nullptr;
        char token;
        for (DWORD round = 0; printer && round < kRounds; ++round) {
            if (recv(turn[1], &token, 1, 0) != 1 || read(printer) != 2 * round ||
                !write(printer, 2 * round + 1) || read(printer) != 2 * round + 1 ||
                send(turn[1], &token, 1, MSG_NOSIGNAL) != 1) {
                _exit(1);
            }
        }
        _exit(printer ? 0 : 2);
    }
    close(turn[1]);
    HANDLE printer = OpenQueue(u"QLM");
    for (DWORD round = 0; printer && round < kRounds; ++round) {
        SCOPED_TRACE(round);
        EXPECT_TRUE(write(printer, 2 * round));
        EXPECT_EQ(2 * round, read(printer));
        if (!pass(turn[0])) {
            break; // the child has failed; its exit code tells
        }
        if (read(printer) != 2 * round + 1) {
            ADD_FAILURE() << "the child's turn was not seen";
            break;
        }
    }
    close(turn[0]); // a child still waiting for its turn gives up
    EXPECT_EQ(0, Wait(pid));
    EXPECT_NE(nullptr, printer);
    ClosePrinter(printer);
}

// Writers need not be hosts: whatever commits to the file through SQLite is seen by the next
// read, also after the WAL was checkpointed and started over.
TEST_F(Store, CommitsOfTheSqliteShellAreSeen)
{
    if (std::system("command -v sqlite3 >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "no sqlite3 shell";
    }
    Open();
    ASSERT_TRUE(host::AddPrinter(Printer(u"QLM")));
    HANDLE printer = OpenQueue(u"QLM");
    ASSERT_NE(nullptr, printer);
    auto read = [&]() {
        DWORD value = kSentinel, needed = 0;
        DWORD rc = GetPrinterDataExW(printer, u"Shell", u"Value", nullptr,
                                     reinterpret_cast<LPBYTE>(&value), 4, &needed);
        return rc == ERROR_SUCCESS ? value : rc == ERROR_FILE_NOT_FOUND ? 0 : kSentinel;
    };
    struct Row
    {
        const char* what;
        std::string sql;
        DWORD expected; // 0: absent
    } rows[] = {
        {"an insert",
         "INSERT INTO printer_data(printer, key, name, type, data) SELECT id, 'Shell', 'Value', "
         "4, x'07000000' FROM printers",
         7},
        {"an update after a truncating checkpoint",
         "PRAGMA wal_checkpoint(TRUNCATE); UPDATE printer_data SET data = x'08000000'", 8},
        {"an update", "UPDATE printer_data SET data = x'09000000'", 9},
        {"a deletion", "DELETE FROM printer_data", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        read(); // takes the current header: the next read must see that it changed
        read();
        std::string command =
            "sqlite3 -cmd '.timeout 5000' '" + path_ + "' \"" + row.sql + "\" >/dev/null";
        ASSERT_EQ(0, std::system(command.c_str()));
        EXPECT_EQ(row.expected, read());
    }
    ClosePrinter(printer);
}

TEST_F(Store, TwoProcessesWritingAtOnceLoseNothing)
{
    constexpr int kValues = 200;
    Open();
    ASSERT_TRUE(host::AddPrinter(Printer(u"QLM")));
    host::CloseStore();
    ASSERT_TRUE(host::OpenStore(":memory:"));

    int gate[2];
    ASSERT_EQ(0, pipe(gate));
    pid_t children[2];
    for (int c = 0; c < 2; ++c) {
        children[c] = fork();
        ASSERT_GE(children[c], 0);
        if (children[c] == 0) {
            close(gate[1]);
            char go;
            (void)!read(gate[0], &go, 1); // returns when the parent closes the gate
            if (!host::OpenStore(path_)) {
                _exit(1);
            }
            HANDLE printer = OpenQueue(u"QLM");
            HKEY key = nullptr;
            if (!printer || RegCreateKeyExW(HKEY_LOCAL_MACHINE, u"Software\\Race", 0, nullptr, 0,
                                            KEY_ALL_ACCESS, nullptr, &key, nullptr)) {
                _exit(2);
            }
            for (int i = 0; i < kValues; ++i) {
                std::u16string name =
                    host::Utf8ToUtf16("c" + std::to_string(c) + "_" + std::to_string(i));
                DWORD value = DWORD(c * 1000 + i);
                if (SetPrinterDataExW(printer, u"Race", name.c_str(), REG_DWORD,
                                      reinterpret_cast<LPBYTE>(&value), 4) != ERROR_SUCCESS) {
                    _exit(3);
                }
                if (RegSetValueExW(key, name.c_str(), 0, REG_DWORD,
                                   reinterpret_cast<const BYTE*>(&value), 4) != ERROR_SUCCESS) {
                    _exit(4);
                }
                // Both make the same keys: each must find what the other made just before.
                std::u16string shared = u"Shared\\" + host::Utf8ToUtf16(std::to_string(i));
                HKEY sub = nullptr;
                if (RegCreateKeyExW(key, shared.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                    &sub, nullptr) != ERROR_SUCCESS) {
                    _exit(5);
                }
                RegCloseKey(sub);
            }
            _exit(0);
        }
    }
    close(gate[0]);
    close(gate[1]); // both children start now
    EXPECT_EQ(0, Wait(children[0]));
    EXPECT_EQ(0, Wait(children[1]));

    Open();
    std::set<std::u16string> expected;
    for (int c = 0; c < 2; ++c) {
        for (int i = 0; i < kValues; ++i) {
            expected.insert(host::Utf8ToUtf16("c" + std::to_string(c) + "_" + std::to_string(i)));
        }
    }
    std::set<std::u16string> data;
    for (const auto& v : host::ListPrinterData(u"QLM")) {
        EXPECT_EQ(u"Race", v.key);
        data.insert(v.name);
    }
    EXPECT_EQ(expected, data);

    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS,
              RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"Software\\Race", 0, KEY_READ, &key));
    std::vector<std::u16string> names = ValueNames(key);
    EXPECT_EQ(expected, std::set<std::u16string>(names.begin(), names.end()));
    EXPECT_EQ(size_t(2 * kValues), names.size());
    DWORD value = 0, size = 4;
    ASSERT_EQ(ERROR_SUCCESS, RegQueryValueExW(key, u"c1_199", nullptr, nullptr,
                                              reinterpret_cast<BYTE*>(&value), &size));
    EXPECT_EQ(1199u, value);
    RegCloseKey(key);
    EXPECT_EQ(size_t(kValues), host::RegistrySubKeys("HKLM\\Software\\Race\\Shared").size());
}

// Overwrites four bytes of the database header (big-endian, as SQLite stores them).
void PatchHeader(const std::string& path, long offset, uint32_t value)
{
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(offset);
    char bytes[4] = {char(value >> 24), char(value >> 16), char(value >> 8), char(value)};
    file.write(bytes, 4);
}

std::string Contents(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

TEST_F(Store, FilesThatAreNoStoreAreRefusedClearly)
{
    struct Row
    {
        const char* what;
        void (*make)(const std::string& path);
        const char* message;
    } rows[] = {
        {"garbage", [](const std::string& path) { std::ofstream(path) << std::string(4096, 'x'); },
         "not a database"},
        {"another program's database",
         [](const std::string& path) {
             ASSERT_TRUE(host::OpenStore(path));
             host::CloseStore();
             PatchHeader(path, 68, 0x12345678); // application_id
         },
         "other program"},
        {"a newer store",
         [](const std::string& path) {
             ASSERT_TRUE(host::OpenStore(path));
             host::CloseStore();
             PatchHeader(path, 60, 99); // user_version
         },
         "newer"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        std::filesystem::remove(path_);
        row.make(path_);
        std::string before = Contents(path_);
        std::string error;
        EXPECT_FALSE(host::OpenStore(path_, &error));
        EXPECT_NE(std::string::npos, error.find(path_)) << error;
        EXPECT_NE(std::string::npos, error.find(row.message)) << error;
        EXPECT_EQ(before, Contents(path_)) << "a refused file is left as it was";
    }
    std::string error;
    EXPECT_FALSE(host::OpenStore(host::HomeDirectory(), &error)) << "a directory";
    EXPECT_FALSE(error.empty());
}

TEST_F(Store, DamagedRecordsReadAsNone)
{
    auto withSize = [](std::vector<uint8_t> dm, size_t size) {
        dm.resize(size, 0xEE);
        return dm;
    };
    std::vector<uint8_t> tinyHeader = MakeDevMode();
    reinterpret_cast<DEVMODEW*>(tinyHeader.data())->dmSize = 10;
    struct Row
    {
        const char* what;
        std::vector<uint8_t> stored;
        size_t expectedSize; // 0: no record
    } rows[] = {
        {"claims more than was stored", withSize(MakeDevMode(sizeof(DEVMODEW), 500), 230), 0},
        {"shorter than its header", withSize(MakeDevMode(), 40), 0},
        {"dmSize below the header", tinyHeader, 0},
        {"trailing bytes", withSize(MakeDevMode(sizeof(DEVMODEW), 8), 300), sizeof(DEVMODEW) + 8},
    };
    Open();
    for (const auto& row : rows) {
        ASSERT_TRUE(host::AddPrinter(Printer(host::Utf8ToUtf16(row.what), row.stored)));
    }
    host::CloseStore();
    Open(); // the damage is met when the file is read
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        HANDLE printer = OpenQueue(host::Utf8ToUtf16(row.what).c_str());
        ASSERT_NE(nullptr, printer);
        DWORD needed = 0;
        ASSERT_FALSE(GetPrinterW(printer, 2, nullptr, 0, &needed));
        std::vector<uint8_t> buffer(needed);
        ASSERT_TRUE(GetPrinterW(printer, 2, buffer.data(), needed, &needed));
        const auto* info = reinterpret_cast<const PRINTER_INFO_2W*>(buffer.data());
        if (row.expectedSize == 0) {
            EXPECT_EQ(nullptr, info->pDevMode);
        } else {
            ASSERT_NE(nullptr, info->pDevMode);
            EXPECT_EQ(Bytes(row.stored.data(), row.expectedSize),
                      Bytes(info->pDevMode, row.expectedSize));
            EXPECT_LE(sizeof(PRINTER_INFO_2W) + row.expectedSize, needed);
        }
        ClosePrinter(printer);
    }
}

} // namespace
