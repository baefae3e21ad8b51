// qlmhost's commands: each takes its words after the command name and returns the exit code.
#pragma once

#include <string>
#include <vector>

struct Options
{
    bool json = false;
    std::string driverLibrary; // QLMUIDrv.so to load
};

// The words of one command line after the global options, with its flags picked out.
class Args
{
public:
    explicit Args(std::vector<std::string> words) : m_words(std::move(words)) {}
    // Removes "--name VALUE" and returns VALUE; empty optional when absent.
    bool Take(const std::string& name, std::string* value);
    // Removes "--name" and says whether it was there.
    bool Flag(const std::string& name);
    // The positional words left, in order.
    const std::vector<std::string>& Rest() const { return m_words; }
    // An error message when a word that looks like an option is left over.
    bool Unknown(std::string* message) const;

private:
    std::vector<std::string> m_words;
};

struct Command
{
    const char* name;  // "printer add"
    const char* usage; // "NAME --driver DRIVER [--port PORT]"
    const char* summary;
    int (*run)(Args& args, const Options& options);
};

extern const Command g_Commands[];
extern const size_t g_cCommands;

// Prints "qlmhost: message" to standard error and returns the exit code 1 or 2.
int Fail(const std::string& message);
int UsageError(const Command& command, const std::string& message);
