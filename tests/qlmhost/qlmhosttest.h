// Running qlmhost as a user does, in a home of its own, and reading what it prints: a strict
// JSON reader, so that invalid output fails the tests that read it.
#pragma once

#include "driver/devmode/devmodeex.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <regex>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

extern char** environ;

namespace qlmhosttest {

// ---- JSON ----------------------------------------------------------------------------------

struct Json
{
    enum Type
    {
        kNull,
        kBool,
        kNumber,
        kString,
        kArray,
        kObject
    } type = kNull;
    bool boolean = false;
    double number = 0;
    std::u16string text; // strings, as the UTF-16 units they escape
    std::vector<Json> items;
    std::vector<std::pair<std::string, Json>> members; // in the order written

    const Json* Find(const std::string& key) const
    {
        for (const auto& m : members)
            if (m.first == key)
                return &m.second;
        return nullptr;
    }
    bool Has(const std::string& key) const { return Find(key) != nullptr; }
    // The member, or a null value when there is none.
    const Json& operator[](const std::string& key) const
    {
        static const Json none;
        return Find(key) ? *Find(key) : none;
    }
    const Json& operator[](size_t index) const { return items.at(index); }
    std::vector<std::string> Keys() const
    {
        std::vector<std::string> keys;
        for (const auto& m : members)
            keys.push_back(m.first);
        return keys;
    }
    long long Int() const { return static_cast<long long>(number); }
    std::string Utf8() const
    {
        std::string out;
        for (char16_t c : text)
            out += c < 0x80 ? char(c) : '?';
        return out;
    }
};

// RFC 8259, strictly: one value, no trailing text, no duplicate keys, no raw control characters.
class JsonReader
{
public:
    explicit JsonReader(const std::string& text) : m_s(text) {}
    bool Read(Json* value, std::string* error)
    {
        bool ok =
            Value(value, 0) && (Match(kSpace), m_at == m_s.size() || Fail("text after the value"));
        if (!ok)
            *error = m_error + " at byte " + std::to_string(m_at);
        return ok;
    }

private:
    static inline const std::regex kSpace{"[ \\t\\r\\n]*"},
        kNumber{"-?(0|[1-9][0-9]*)(\\.[0-9]+)?([eE][+-]?[0-9]+)?(?![0-9])"},
        kLiteral{"true|false|null"};

    bool Fail(const std::string& what)
    {
        if (m_error.empty())
            m_error = what;
        return false;
    }
    char Peek() const { return m_at < m_s.size() ? m_s[m_at] : '\0'; }
    // The rule's match at the current byte, which it then steps over; empty if none.
    std::string Match(const std::regex& rule)
    {
        std::smatch m;
        if (!std::regex_search(m_s.begin() + std::ptrdiff_t(m_at), m_s.end(), m, rule,
                               std::regex_constants::match_continuous))
            return {};
        m_at += m.length();
        return m.str();
    }
    bool Take(char c) { return Match(kSpace), Peek() == c && ++m_at; }
    bool String(std::u16string* out)
    {
        static const std::string kSimple = "\"\\/bfnrt", kMeaning = "\"\\/\b\f\n\r\t";
        for (m_at++; m_at < m_s.size();) {
            unsigned char c = m_s[m_at++];
            if (c == '"')
                return true;
            if (c < 0x20)
                return Fail("raw control character in a string");
            size_t simple = c == '\\' ? kSimple.find(Peek()) : std::string::npos;
            std::string hex = c == '\\' && Peek() == 'u' ? m_s.substr(m_at + 1, 4) : "";
            if (c != '\\')
                *out += char16_t(c); // qlmhost writes ASCII only, checked apart
            else if (simple != std::string::npos && Peek())
                *out += char16_t(kMeaning[simple]), m_at++;
            else if (hex.size() == 4 && hex.find_first_not_of("0123456789abcdefABCDEF") == hex.npos)
                *out += char16_t(std::stoul(hex, nullptr, 16)), m_at += 5;
            else
                return Fail("bad escape");
        }
        return Fail("unterminated string");
    }
    // The members or items of an object or array, up to its closing bracket.
    template <typename One> bool Sequence(char close, One one)
    {
        if (Take(close))
            return true;
        do {
            if (!one())
                return false;
        } while (Take(','));
        return Take(close) || Fail(std::string("',' or '") + close + "' expected");
    }
    bool Value(Json* v, int depth)
    {
        Match(kSpace);
        if (depth > 64)
            return Fail("too deep");
        if (Take('{')) {
            v->type = Json::kObject;
            return Sequence('}', [&] {
                std::u16string key;
                Json member;
                if (!Take('"') || (m_at--, !String(&key)))
                    return Fail("key expected");
                std::string k(key.begin(), key.end());
                if (v->Has(k))
                    return Fail("duplicate key " + k);
                if (!Take(':') || !Value(&member, depth + 1))
                    return Fail("':' and a value expected");
                v->members.emplace_back(k, std::move(member));
                return true;
            });
        }
        if (Take('[')) {
            v->type = Json::kArray;
            return Sequence(']', [&] {
                v->items.emplace_back();
                return Value(&v->items.back(), depth + 1);
            });
        }
        if (Peek() == '"') {
            v->type = Json::kString;
            return String(&v->text);
        }
        std::string word = Match(kLiteral);
        v->type = word.empty() ? Json::kNumber : word == "null" ? Json::kNull : Json::kBool;
        v->boolean = word == "true";
        if (!word.empty())
            return true;
        word = Match(kNumber);
        if (word.empty())
            return Fail("bad value");
        v->number = strtod(word.c_str(), nullptr);
        return true;
    }

    const std::string& m_s;
    size_t m_at = 0;
    std::string m_error;
};

// Parses qlmhost's JSON output, which must be one value and pure ASCII.
inline ::testing::AssertionResult ParseJson(const std::string& text, Json* value)
{
    for (unsigned char c : text)
        if (c >= 0x80)
            return ::testing::AssertionFailure() << "byte beyond ASCII in: " << text;
    std::string error;
    if (!JsonReader(text).Read(value, &error))
        return ::testing::AssertionFailure() << error << " in: " << text;
    return ::testing::AssertionSuccess();
}

// ---- The record's field names, straight from its layout lists -------------------------------

#define QLMHOSTTEST_NAME(name, offset, kind, width) #name,
inline const std::vector<std::string>& RecordFieldNames()
{
    static const std::vector<std::string> names = {DEVMODEEX_PUBLIC_FIELDS(QLMHOSTTEST_NAME)
                                                       DEVMODEEX_PRIVATE_FIELDS(QLMHOSTTEST_NAME)};
    return names;
}
inline const std::vector<std::string>& FinisherFieldNames()
{
    static const std::vector<std::string> names = {TVOFINISHERINFO_FIELDS(QLMHOSTTEST_NAME)};
    return names;
}
inline const std::vector<std::string>& ProgramFieldNames()
{
    static const std::vector<std::string> names = {TVOFINISHERPROGRAM_FIELDS(QLMHOSTTEST_NAME)};
    return names;
}
#undef QLMHOSTTEST_NAME

// ---- Records as bytes ----------------------------------------------------------------------

// A record of this driver's current layout, as bytes: identity fields set, the rest zero.
inline std::vector<uint8_t> CurrentRecord()
{
    std::vector<uint8_t> bytes(sizeof(DEVMODEEX), 0);
    auto* dm = reinterpret_cast<DEVMODEEX*>(bytes.data());
    dm->dmPublic.dmSpecVersion = TVO_SPEC_VERSION;
    dm->dmPublic.dmDriverVersion = TVO_DRIVER_VERSION;
    dm->dmPublic.dmSize = sizeof(DEVMODEW);
    dm->dmPublic.dmDriverExtra = kDEVMODEEX_DRIVER_EXTRA;
    dm->dmxSignature = DRIVER_SIGNATURE;
    return bytes;
}

inline DEVMODEEX* AsRecord(std::vector<uint8_t>& bytes)
{
    return reinterpret_cast<DEVMODEEX*>(bytes.data());
}

// ---- Running qlmhost -----------------------------------------------------------------------

struct Outcome
{
    int rc = -1;
    std::string out;
    std::string err;
};

inline std::string Slurp(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::stringstream s;
    s << file.rdbuf();
    return s.str();
}

inline void WriteBytes(const std::string& path, const void* data, size_t cb)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(static_cast<const char*>(data), std::streamsize(cb));
}

inline void WriteBytes(const std::string& path, const std::vector<uint8_t>& bytes)
{
    WriteBytes(path, bytes.data(), bytes.size());
}

// Runs the program with the words given and the environment of this process, less every
// QLMHOST_ variable, plus those given ("NAME=value").
inline Outcome RunProgram(const std::string& program, const std::vector<std::string>& words,
                          const std::vector<std::string>& env, const std::string& scratch)
{
    std::vector<std::string> environment;
    for (char** e = environ; *e; e++)
        if (strncmp(*e, "QLMHOST_", 8) != 0)
            environment.push_back(*e);
    environment.insert(environment.end(), env.begin(), env.end());
    std::vector<char*> argv = {const_cast<char*>(program.c_str())};
    for (const std::string& w : words)
        argv.push_back(const_cast<char*>(w.c_str()));
    argv.push_back(nullptr);
    std::vector<char*> envp;
    for (std::string& e : environment)
        envp.push_back(e.data());
    envp.push_back(nullptr);

    std::string outPath = scratch + "/stdout", errPath = scratch + "/stderr";
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0600);
    posix_spawn_file_actions_addopen(&actions, 2, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0600);
    pid_t pid;
    Outcome run;
    int spawned = posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        run.err = "cannot start " + program;
        return run;
    }
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    run.rc = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    run.out = Slurp(outPath);
    run.err = Slurp(errPath);
    return run;
}

// Each test gets a fresh home and scratch folder; qlmhost runs with --home pointing at it.
class QlmhostTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "qlmhost-test.XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        m_dir = pattern;
        m_home = m_dir + "/home";
        std::filesystem::create_directories(m_home);
    }
    void TearDown() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_dir, ignored);
    }

    // qlmhost --home HOME --driver-lib LIB words...
    Outcome Qlmhost(const std::vector<std::string>& words, const std::string& driverLib,
                    const std::vector<std::string>& env = {})
    {
        std::vector<std::string> all = {"--home", m_home, "--driver-lib", driverLib};
        all.insert(all.end(), words.begin(), words.end());
        return RunProgram(QLMHOST_PROGRAM, all, env, m_dir);
    }
    Outcome Real(const std::vector<std::string>& words, const std::vector<std::string>& env = {})
    {
        return Qlmhost(words, QLMHOST_REAL_DRIVER, env);
    }
    Outcome Fake(const std::vector<std::string>& words, const std::vector<std::string>& env = {})
    {
        return Qlmhost(words, QLMHOST_TEST_DRIVER, env);
    }
    // A queue of the 2440 named P.
    void AddPrinter(const std::string& name = "P")
    {
        // The real driver: the spooler stores the new queue's default record from it.
        Outcome run = Real({"printer", "add", name, "--driver", "Tarvo Plan Output System 2440"});
        ASSERT_EQ(run.rc, 0) << run.err;
    }
    std::string File(const std::string& name) const { return m_dir + "/" + name; }
    std::string WriteFile(const std::string& name, const std::vector<uint8_t>& bytes)
    {
        WriteBytes(File(name), bytes);
        return File(name);
    }

    std::string m_dir;
    std::string m_home;
};

} // namespace qlmhosttest
