#include "cli.h"

#include "records.h"

#include "platform/usersim/controlstate.h"

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

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
    fprintf(stderr, "%s: %s\n", g_pszToolName, message.c_str());
    return 1;
}

int UsageError(const Command& command, const std::string& message)
{
    fprintf(stderr, "%s %s: %s\nusage: %s %s %s\n", g_pszToolName, command.name, message.c_str(),
            g_pszToolName, command.name, command.usage);
    return 2;
}

const Command& FindCommand(const char* name)
{
    for (size_t i = 0; i < g_cCommands; i++)
        if (strcmp(g_Commands[i].name, name) == 0)
            return g_Commands[i];
    abort();
}

bool Expect(Args& args, const char* command, size_t minWords, size_t maxWords, int* rc)
{
    std::string message;
    if (args.Unknown(&message)) {
        *rc = UsageError(FindCommand(command), message);
        return false;
    }
    size_t n = args.Rest().size();
    if (n < minWords || n > maxWords) {
        *rc = UsageError(FindCommand(command),
                         n < minWords ? "missing arguments" : "too many arguments");
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
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return false;
    *text = std::string(std::istreambuf_iterator<char>(file), {});
    return true;
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

void PrintUsage(const char* header)
{
    printf("%s\ncommands:\n", header);
    for (size_t i = 0; i < g_cCommands; i++)
        printf("  %-14s %s\n  %-14s   %s\n", g_Commands[i].name, g_Commands[i].usage, "",
               g_Commands[i].summary);
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

const Command* MatchCommand(const std::vector<std::string>& words, size_t start, size_t* used)
{
    const Command* command = nullptr;
    *used = 0;
    for (size_t c = 0; c < g_cCommands; c++) {
        std::vector<std::string> parts;
        for (const char *p = g_Commands[c].name, *q; *p; p = *q ? q + 1 : q) {
            q = strchr(p, ' ');
            if (!q)
                q = p + strlen(p);
            parts.emplace_back(p, q);
        }
        bool match = start + parts.size() <= words.size();
        for (size_t k = 0; match && k < parts.size(); k++)
            match = words[start + k] == parts[k];
        if (match && parts.size() > *used) {
            command = &g_Commands[c];
            *used = parts.size();
        }
    }
    return command;
}

namespace {

std::vector<std::string> SplitWords(const std::string& line)
{
    std::vector<std::string> words;
    std::string word;
    bool inWord = false, quoted = false;
    for (char c : line) {
        if (c == '"') {
            quoted = !quoted;
            inWord = true;
        } else if ((c == ' ' || c == '\t' || c == '\r') && !quoted) {
            if (inWord)
                words.push_back(word);
            word.clear();
            inWord = false;
        } else {
            word += c;
            inWord = true;
        }
    }
    if (inWord)
        words.push_back(word);
    return words;
}

// Standard output or error sent to a temporary file while a command runs.
class Capture
{
public:
    explicit Capture(FILE* stream) : m_stream(stream), m_file(tmpfile())
    {
        fflush(m_stream);
        m_saved = dup(fileno(m_stream));
        if (m_file)
            dup2(fileno(m_file), fileno(m_stream));
    }
    ~Capture()
    {
        Restore();
        if (m_file)
            fclose(m_file);
    }
    std::string Take()
    {
        Restore();
        std::string text;
        if (!m_file)
            return text;
        rewind(m_file);
        char buffer[4096];
        for (size_t n; (n = fread(buffer, 1, sizeof(buffer), m_file)) > 0;)
            text.append(buffer, n);
        while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
            text.pop_back();
        return text;
    }

private:
    void Restore()
    {
        if (m_saved < 0)
            return;
        fflush(m_stream);
        dup2(m_saved, fileno(m_stream));
        close(m_saved);
        m_saved = -1;
    }
    FILE* m_stream;
    FILE* m_file;
    int m_saved = -1;
};

std::string OneLine(std::string text)
{
    for (char& c : text)
        if (c == '\n' || c == '\r')
            c = ' ';
    return text;
}

} // namespace

int RunBatch(const std::string& path, const Options& options)
{
    std::string content;
    if (!ReadTextFile(path, &content))
        return Fail("cannot read the batch file '" + path + "'");

    // Each line starts in the batch's folder: on Windows the open-file dialog moves the
    // process's current folder to that of the file chosen.
    std::error_code ec;
    const std::filesystem::path folder = std::filesystem::current_path(ec);
    int failed = 0;
    size_t start = 0;
    while (start < content.size()) {
        if (!folder.empty())
            std::filesystem::current_path(folder, ec);
        size_t end = content.find('\n', start);
        if (end == std::string::npos)
            end = content.size();
        std::string line = content.substr(start, end - start);
        start = end + 1;
        while (!line.empty() && (line.back() == '\r' || line.back() == ' '))
            line.pop_back();
        std::vector<std::string> words = SplitWords(line);
        if (words.empty() || words[0][0] == '#')
            continue;
        size_t used = 0;
        const Command* command = MatchCommand(words, 0, &used);
        int rc = 2;
        std::string out, err;
        if (!command) {
            err = "unknown command '" + words[0] + "'";
        } else {
            Args args(std::vector<std::string>(words.begin() + used, words.end()));
            Options lineOptions = options;
            lineOptions.json = args.Flag("--json");
            Capture captureOut(stdout), captureErr(stderr);
            rc = command->run(args, lineOptions);
            out = captureOut.Take();
            err = captureErr.Take();
        }
        if (rc != 0)
            ++failed;
        if (out.empty() && rc != 0) {
            JsonWriter json;
            json.BeginObject();
            json.String("error", OneLine(err.empty() ? "exit code " + std::to_string(rc) : err));
            json.EndObject();
            out = json.Text();
        }
        printf("%s\t%s\n", line.c_str(), OneLine(out).c_str());
        fflush(stdout);
    }
    return failed ? 1 : 0;
}

int BatchCommand(Args& args, const Options& options)
{
    int rc;
    if (!Expect(args, "batch", 1, 1, &rc))
        return rc;
    return RunBatch(args.Rest()[0], options);
}

extern const Command g_BatchCommand = {
    "batch", "FILE", "Runs the command lines of FILE in this process, one answer line each.",
    BatchCommand,
    "Blank lines and lines that start with # are passed over. Each command prints one line:\n"
    "  the command line, a tab, and its output (--json gives JSON) or {\"error\": ...}."};
