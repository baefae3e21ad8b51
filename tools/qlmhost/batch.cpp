// The batch command: many command lines in one process, one answer line each.
#include "commands.h"
#include "records.h"

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

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

// Runs each command line of a file, in this process, one after the other: blank lines and
// lines that start with # are passed over, and words split at blanks, "..." keeping blanks in
// one word. Prints one line a command: the line, a tab, and what the command printed on one
// line, or {"error": ...} with its message when it printed nothing and failed. 0 when every
// command succeeded.
int RunBatch(const std::string& path, const Options& options);
int RunBatch(const std::string& path, const Options& options)
{
    std::string content;
    if (!ReadTextFile(path, &content))
        return Fail("cannot read the batch file '" + path + "'");

    // Each line starts in the batch's folder: on Windows the open-file dialog moves the
    // process's current folder to that of the file chosen.
    std::error_code ec;
    const std::filesystem::path folder = std::filesystem::current_path(ec);
    int failed = 0, commands = 0, firstFailed = 0, number = 0;
    size_t start = 0;
    while (start < content.size()) {
        if (!folder.empty())
            std::filesystem::current_path(folder, ec);
        size_t end = content.find('\n', start);
        if (end == std::string::npos)
            end = content.size();
        std::string line = content.substr(start, end - start);
        start = end + 1;
        ++number;
        while (!line.empty() && (line.back() == '\r' || line.back() == ' '))
            line.pop_back();
        std::vector<std::string> words = SplitWords(line);
        if (words.empty() || words[0][0] == '#')
            continue;
        ++commands;
        size_t used = 0;
        const Command* command = MatchCommand(options.commands, words, 0, &used);
        int rc = 2;
        std::string out, err;
        if (!command) {
            err = "unknown command '" + words[0] + "'";
        } else if (command->run == BatchCommand) {
            // A batch that names itself would never end.
            err = "a batch does not run another batch";
        } else {
            Args args(std::vector<std::string>(words.begin() + used, words.end()), *command);
            Options lineOptions = options;
            lineOptions.json = args.Flag("--json");
            Capture captureOut(stdout), captureErr(stderr);
            rc = command->run(args, lineOptions);
            out = captureOut.Take();
            err = captureErr.Take();
        }
        if (rc != 0 && failed++ == 0)
            firstFailed = number;
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
    if (commands == 0)
        return Fail("the batch file '" + path + "' holds no command");
    // Each answer says what went wrong on its own line; standard error says that something did.
    if (failed)
        return Fail(path + ": " + std::to_string(failed) + " of " + std::to_string(commands) +
                    (commands == 1 ? " command" : " commands") + " failed, the first on line " +
                    std::to_string(firstFailed));
    return 0;
}

int BatchCommand(Args& args, const Options& options)
{
    int rc;
    if (!Expect(args, 1, 1, &rc))
        return rc;
    return RunBatch(args.Rest()[0], options);
}

extern const Command g_BatchCommand = {
    "batch", "FILE", "Runs the command lines of FILE in this process, one answer line each.",
    BatchCommand,
    "Blank lines and lines that start with # are passed over. Each command prints one line:\n"
    "  the command line, a tab, and its output (--json gives JSON) or {\"error\": ...}."};
