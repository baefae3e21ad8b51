#include "cli.h"

#include "platform/usersim/controlstate.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

bool Args::Take(const std::string& name, std::string* value)
{
    for (size_t i = 0; i + 1 < m_words.size(); i++) {
        if (m_words[i] == name) {
            *value = m_words[i + 1];
            m_words.erase(m_words.begin() + i, m_words.begin() + i + 2);
            return true;
        }
    }
    return false;
}

bool Args::Flag(const std::string& name)
{
    for (size_t i = 0; i < m_words.size(); i++) {
        if (m_words[i] == name) {
            m_words.erase(m_words.begin() + i);
            return true;
        }
    }
    return false;
}

bool Args::Unknown(std::string* message) const
{
    for (const std::string& w : m_words) {
        if (w.size() > 2 && w.rfind("--", 0) == 0) {
            *message = "unknown option " + w + " (or it lacks its value)";
            return true;
        }
    }
    return false;
}

int Fail(const std::string& message)
{
    // One line, whatever a file's bytes put into the message: control characters are shown
    // as escapes, so that a line break or a NUL read from a damaged file cannot split or cut it.
    std::string line;
    for (unsigned char c : message) {
        if (c < 0x20 || c == 0x7F) {
            char escape[8];
            snprintf(escape, sizeof(escape), "\\x%02X", c);
            line += escape;
        } else {
            line += char(c);
        }
    }
    fprintf(stderr, "%s: %s\n", g_pszToolName, line.c_str());
    return 1;
}

int UsageError(const Command& command, const std::string& message)
{
    fprintf(stderr, "%s %s: %s\nusage: %s %s %s\n", g_pszToolName, command.name, message.c_str(),
            g_pszToolName, command.name, command.usage);
    return 2;
}

bool Expect(Args& args, size_t minWords, size_t maxWords, int* rc)
{
    std::string message;
    if (args.Unknown(&message)) {
        *rc = UsageError(args.Called(), message);
        return false;
    }
    size_t n = args.Rest().size();
    if (n < minWords || n > maxWords) {
        *rc = UsageError(args.Called(), n < minWords ? "missing arguments" : "too many arguments");
        return false;
    }
    return true;
}

bool ReadTextFile(const std::string& path, std::string* text)
{
    if (path == "-") {
        *text = std::string(std::istreambuf_iterator<char>(std::cin), {});
        return true;
    }
    // A folder opens as a file on Linux and fails only at the first read, with an exception
    // of the stream's own: it is no text file, and neither is one that cannot be read through.
    std::error_code ec;
    if (std::filesystem::is_directory(std::filesystem::path(path), ec))
        return false;
    try {
        std::ifstream file(path, std::ios::binary);
        if (!file)
            return false;
        *text = std::string(std::istreambuf_iterator<char>(file), {});
        return !file.bad();
    } catch (const std::exception&) {
        return false;
    }
}

bool SameWord(const char* a, const char* b)
{
    for (; *a && *b; ++a, ++b)
        if (tolower(static_cast<unsigned char>(*a)) != tolower(static_cast<unsigned char>(*b)))
            return false;
    return *a == *b;
}

std::u16string W(const std::string& s)
{
    return usersim::Utf8ToUtf16(s);
}

std::string U(const std::u16string& s)
{
    return usersim::Utf16ToUtf8(s);
}

std::string Win32Error(DWORD code)
{
    struct Row
    {
        DWORD code;
        const char* text;
    } kRows[] = {
        {ERROR_FILE_NOT_FOUND, "not found"},
        {ERROR_INVALID_HANDLE, "invalid handle"},
        {ERROR_ACCESS_DENIED, "access denied (the key has subkeys)"},
        {ERROR_INVALID_PARAMETER, "invalid parameter"},
        {ERROR_INSUFFICIENT_BUFFER, "buffer too small"},
        {ERROR_INVALID_PRINTER_NAME, "no such printer"},
        {ERROR_BAD_PATHNAME, "bad key path"},
        {ERROR_MORE_DATA, "more data than room"},
        {ERROR_NOT_SUPPORTED, "not supported"},
    };
    for (const Row& row : kRows)
        if (row.code == code)
            return row.text + std::string(" (error ") + std::to_string(code) + ")";
    return "error " + std::to_string(code);
}

bool ParseNumber(const std::string& text, long long low, long long high, long long* value)
{
    if (text.empty() || text.size() > 20 || isspace(static_cast<unsigned char>(text[0])))
        return false;
    char* end = nullptr;
    errno = 0;
    long long v = strtoll(text.c_str(), &end, 0);
    if (*end || errno || v < low || v > high)
        return false;
    *value = v;
    return true;
}

OpenedPrinter::OpenedPrinter(const std::string& name) : m_name(W(name))
{
    if (m_name.empty() || !OpenPrinterW(this->name(), &m_handle, nullptr))
        m_handle = nullptr;
}

OpenedPrinter::~OpenedPrinter()
{
    if (m_handle)
        ClosePrinter(m_handle);
}

void PrintUsage(const char* header, const CommandTable& table)
{
    printf("%s\ncommands:\n", header);
    for (size_t i = 0; i < table.count; i++)
        printf("  %-14s %s\n  %-14s   %s\n", table.rows[i].name, table.rows[i].usage, "",
               table.rows[i].summary);
}

int GlobalUsageError(const std::string& message)
{
    fprintf(stderr, "%s: %s (see %s --help)\n", g_pszToolName, message.c_str(), g_pszToolName);
    return 2;
}

bool IsHelp(const std::string& word)
{
    return word == "--help" || word == "-h" || word == "help";
}

void PrintCommandHelp(const Command& command)
{
    printf("usage: %s %s %s\n  %s\n", g_pszToolName, command.name, command.usage, command.summary);
    if (command.details)
        printf("  %s\n", command.details);
}

const Command* MatchCommand(const CommandTable& table, const std::vector<std::string>& words,
                            size_t start, size_t* used)
{
    const Command* command = nullptr;
    *used = 0;
    for (size_t c = 0; c < table.count; c++) {
        std::vector<std::string> parts;
        for (const char *p = table.rows[c].name, *q; *p; p = *q ? q + 1 : q) {
            q = strchr(p, ' ');
            if (!q)
                q = p + strlen(p);
            parts.emplace_back(p, q);
        }
        bool match = start + parts.size() <= words.size();
        for (size_t k = 0; match && k < parts.size(); k++)
            match = words[start + k] == parts[k];
        if (match && parts.size() > *used) {
            command = &table.rows[c];
            *used = parts.size();
        }
    }
    return command;
}
