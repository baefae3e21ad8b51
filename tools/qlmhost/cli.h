// What every command-line tool of the project shares, on Linux and on Windows alike: options,
// the words of a command line, the command table's row, errors and usage, text conversions,
// and a printer opened as an application opens it.
#pragma once

#include "platform/win32.h"

#include <optional>
#include <string>
#include <vector>

// The tool's name in messages: "qlmhost" or "qlmwin".
extern const char* const g_pszToolName;

struct Command;

// A tool's command table, handed down to what runs commands by name (batch, usage).
struct CommandTable
{
    const Command* rows = nullptr;
    size_t count = 0;
};

struct Options
{
    bool json = false;
    std::string driverLibrary; // QLMUIDrv.so to load
    // The answer to the printer address question, when the user gave one.
    std::optional<std::string> address;
    std::string addressScript; // the actions that answer the address dialog with it
    std::string testDialogs;   // the test dialogs' library the probe runs on
    CommandTable commands;     // the tool's commands, for a batch
};

// The words of one command line after the global options, with its flags picked out.
class Args
{
public:
    Args(std::vector<std::string> words, const Command& called)
        : m_words(std::move(words)), m_called(&called)
    {
    }
    // Removes "--name VALUE" and returns VALUE; empty optional when absent.
    bool Take(const std::string& name, std::string* value);
    // Removes "--name" and says whether it was there.
    bool Flag(const std::string& name);
    // The positional words left, in order.
    const std::vector<std::string>& Rest() const { return m_words; }
    // An error message when a word that looks like an option is left over.
    bool Unknown(std::string* message) const;
    // The command these words were given to, for its usage line.
    const Command& Called() const { return *m_called; }

private:
    std::vector<std::string> m_words;
    const Command* m_called;
};

struct Command
{
    const char* name;  // "printer add"
    const char* usage; // "NAME --driver DRIVER [--port PORT]"
    const char* summary;
    int (*run)(Args& args, const Options& options);
    const char* details = nullptr; // more for --help, or null
};

// Prints "qlmhost: message" to standard error and returns the exit code 1 or 2.
int Fail(const std::string& message);
int UsageError(const Command& command, const std::string& message);
// Checks the positional count and that no unknown option is left; prints usage otherwise.
bool Expect(Args& args, size_t minWords, size_t maxWords, int* rc);

// The whole of a file, or of standard input for "-"; false when it cannot be read.
bool ReadTextFile(const std::string& path, std::string* text);

// Equal without regard to the case of ASCII letters.
bool SameWord(const char* a, const char* b);

std::u16string W(const std::string& s);
std::string U(const std::u16string& s);
std::string Win32Error(DWORD code);

// A queue opened with OpenPrinterW, as an application opens it; closed on leaving scope.
class OpenedPrinter
{
public:
    explicit OpenedPrinter(const std::string& name);
    ~OpenedPrinter();
    OpenedPrinter(const OpenedPrinter&) = delete;
    OpenedPrinter& operator=(const OpenedPrinter&) = delete;
    HANDLE get() const { return m_handle; }
    // The name as the spooler hands it to the driver.
    LPWSTR name() { return reinterpret_cast<LPWSTR>(m_name.data()); }

private:
    std::u16string m_name;
    HANDLE m_handle = nullptr;
};

// A parsed number with bounds; false for anything else.
bool ParseNumber(const std::string& text, long long low, long long high, long long* value);

// The queue's stored record through GetPrinterW level 2, as *info holds it and as a copy in
// *record (empty when the queue has none); false with *error when the queue cannot be read.
bool StoredRecord(HANDLE hPrinter, std::vector<BYTE>* info, std::vector<BYTE>* record,
                  std::string* error);

// The tool's usage: its own lines, then the command table.
void PrintUsage(const char* header, const CommandTable& table);
// A command line that cannot be read: exit code 2, as for a command's own usage errors.
int GlobalUsageError(const std::string& message);
bool IsHelp(const std::string& word);
// "usage: TOOL COMMAND USAGE", its summary and details.
void PrintCommandHelp(const Command& command);

// The command that words, from start on, name: the longest name they begin with ("printer add"
// before "printer"). *used is the count of words the name took; null when none matches.
const Command* MatchCommand(const CommandTable& table, const std::vector<std::string>& words,
                            size_t start, size_t* used);
