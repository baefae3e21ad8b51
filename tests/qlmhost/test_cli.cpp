// qlmhost's command line: help for every command, exit code 2 for what cannot be read, 1 with a
// message for a missing printer or file, and the resource library put where the driver looks.
#include "qlmhosttest.h"

#include <filesystem>

using namespace qlmhosttest;

namespace {

const char* const kCommands[] = {
    "printer add",  "printer remove", "printer list", "port add",        "port list",
    "data set",     "data get",       "reg set",      "reg get",         "reg delete",
    "driver",       "driver install", "caps",         "devmode layout",  "devmode new",
    "devmode show", "devmode store",  "devmode read", "devmode default", "devmode convert",
};

std::vector<std::string> Words(const std::string& line)
{
    std::vector<std::string> words;
    std::istringstream in(line);
    for (std::string w; in >> w;)
        words.push_back(w);
    return words;
}

std::string InstalledResources(const std::string& home)
{
    return home + "/Windows/System32/spool/drivers/x64/3/QLMRes.DLL";
}

} // namespace

class Cli : public QlmhostTest
{
};

TEST_F(Cli, EveryCommandHasHelpAndIsListed)
{
    Outcome all = Fake({"--help"});
    EXPECT_EQ(all.rc, 0);
    for (const char* command : kCommands) {
        std::vector<std::string> words = Words(command);
        words.push_back("--help");
        Outcome run = Fake(words);
        EXPECT_EQ(run.rc, 0) << command << ": " << run.err;
        EXPECT_EQ(run.out.rfind(std::string("usage: qlmhost ") + command + " ", 0), 0u)
            << command << ": " << run.out;
        EXPECT_NE(all.out.find(std::string("  ") + command + " "), std::string::npos) << command;
    }
    // Help opens nothing: the home stays empty.
    EXPECT_TRUE(std::filesystem::is_empty(m_home));
}

TEST_F(Cli, UsageErrorsExitTwoWithAMessage)
{
    AddPrinter();
    struct Row
    {
        std::vector<std::string> words;
        const char* message;
    } rows[] = {
        {{"caps"}, "missing arguments"},
        {{"caps", "P"}, "missing arguments"},
        {{"caps", "P", "16", "17"}, "too many arguments"},
        {{"caps", "P", "DC_NOPE"}, "'DC_NOPE' is no capability index"},
        {{"caps", "P", "DC_"}, "no capability index"},
        {{"caps", "P", ""}, "no capability index"},
        {{"caps", "P", "65536"}, "no capability index"},
        {{"caps", "P", "-1"}, "no capability index"},
        {{"caps", "P", "16x"}, "no capability index"},
        {{"caps", "P", "16", "--bogus"}, "unknown option --bogus"},
        {{"caps", "P", "16", "--devmode"}, "unknown option --devmode"},
        {{"devmode", "convert", "P"}, "--mode"},
        {{"devmode", "convert", "P", "--mode", "sideways"}, "not 'sideways'"},
        {{"devmode", "convert", "P", "--mode", "convert", "--out-size", "-1"}, "--out-size"},
        {{"devmode", "convert", "P", "--mode", "convert", "--out-size", "many"}, "--out-size"},
        {{"devmode", "convert", "P", "--mode", "convert", "--out-size", "2000000"}, "--out-size"},
        {{"devmode", "default"}, "missing arguments"},
        {{"devmode", "show", "P", "Q"}, "too many arguments"},
        {{"devmode", "read"}, "missing arguments"},
        {{"driver", "install", "extra"}, "too many arguments"},
        {{"nonsense"}, "unknown command 'nonsense'"},
        {{"--colour", "caps", "P", "16"}, "unknown global option --colour"},
        {{"--os-major", "ten", "caps", "P", "16"}, "--os-major takes a number"},
    };
    for (const Row& row : rows) {
        Outcome run = Fake(row.words);
        std::string line;
        for (const std::string& w : row.words)
            line += w + " ";
        EXPECT_EQ(run.rc, 2) << line << run.err;
        EXPECT_NE(run.err.find(row.message), std::string::npos) << line << "stderr: " << run.err;
        EXPECT_EQ(run.out, "") << line;
    }
}

TEST_F(Cli, MissingPrinterIsAnErrorOfItsOwn)
{
    std::string record = WriteFile("record", CurrentRecord());
    const std::vector<std::string> rows[] = {
        {"caps", "Nobody", "DC_SIZE"},
        {"caps", "Nobody", "DC_PAPERNAMES", "--json"},
        {"caps", "Nobody", "16", "--devmode", record},
        {"devmode", "show", "Nobody"},
        {"devmode", "new", "Nobody"},
        {"devmode", "default", "Nobody", "--json"},
        {"devmode", "convert", "Nobody", "--mode", "default"},
        {"devmode", "store", "Nobody", record},
    };
    for (const auto& words : rows) {
        Outcome run = Fake(words);
        EXPECT_EQ(run.rc, 1) << words[0] << " " << words[1];
        EXPECT_NE(run.err.find("no printer named 'Nobody'"), std::string::npos)
            << words[0] << " " << words[1] << ": " << run.err;
        EXPECT_EQ(run.out, "") << words[0] << " " << words[1];
    }
}

TEST_F(Cli, FirstPrinterInstallsTheResourceLibraryOnce)
{
    Outcome first = Fake({"printer", "add", "A", "--driver", "Tarvo Plan Output System 2440"});
    ASSERT_EQ(first.rc, 0) << first.err;
    EXPECT_NE(first.out.find("QLMRes.DLL"), std::string::npos) << first.out;
    std::string installed = InstalledResources(m_home);
    ASSERT_TRUE(std::filesystem::exists(installed));
    EXPECT_EQ(Slurp(installed).substr(0, 2), "MZ");

    Outcome second = Fake({"printer", "add", "B", "--driver", "Tarvo Plan Output System 2440"});
    ASSERT_EQ(second.rc, 0) << second.err;
    EXPECT_EQ(second.out.find("QLMRes.DLL"), std::string::npos) << second.out;
}

TEST_F(Cli, ResourceLibraryThatCannotBeHadIsAWarningForPrinterAdd)
{
    Outcome run = Fake({"printer", "add", "A", "--driver", "Tarvo Plan Output System 2440"},
                       {"QLMHOST_RESOURCES=" + File("missing.dll")});
    EXPECT_EQ(run.rc, 0) << run.err;
    EXPECT_NE(run.err.find("warning"), std::string::npos) << run.err;
    EXPECT_FALSE(std::filesystem::exists(InstalledResources(m_home)));
}

TEST_F(Cli, DriverInstallTakesOnlyAPeFile)
{
    std::string text = File("notes.txt");
    WriteBytes(text, "plain words", 11);
    struct Row
    {
        std::vector<std::string> words;
        std::vector<std::string> env;
        int rc;
        const char* message;
    } rows[] = {
        {{"driver", "install", "--resources", text}, {}, 1, "not a PE file"},
        {{"driver", "install", "--resources", File("missing.dll")}, {}, 1, "cannot read"},
        {{"driver", "install"}, {"QLMHOST_RESOURCES=" + text}, 1, "not a PE file"},
        {{"driver", "install"}, {}, 0, ""},
    };
    for (const Row& row : rows) {
        Outcome run = Fake(row.words, row.env);
        EXPECT_EQ(run.rc, row.rc) << row.words.back() << ": " << run.err;
        EXPECT_NE(run.err.find(row.message), std::string::npos) << run.err;
    }
    EXPECT_TRUE(std::filesystem::exists(InstalledResources(m_home)));
}

// The JSON checks above are only as good as the reader they use.
TEST(JsonReader, RefusesWhatIsNotJson)
{
    const char* bad[] = {
        "",          "{\"a\": 1,}",  "{\"a\": 01}",
        "\"\x01\"",  "{\"a\": 1}{}", "{\"a\": 1, \"a\": 2}",
        "\"\\ud8\"", "[1 2]",        ".5",
        "1.",        "\"\\x41\"",    "{a: 1}",
        "[tru]",     "\"open",       "\"caf\xc3\xa9\"",
    };
    for (const char* text : bad) {
        Json json;
        EXPECT_FALSE(ParseJson(text, &json)) << text;
    }
    Json json;
    ASSERT_TRUE(
        ParseJson(" {\"a\": [1, -0.5e3, \"x\\u00e9\\\"\", true, null], \"b\": {}} ", &json));
    EXPECT_EQ(json.Keys(), (std::vector<std::string>{"a", "b"}));
    EXPECT_DOUBLE_EQ(json["a"][1].number, -500);
    EXPECT_EQ(json["a"][2].text, u"x\u00e9\"");
    EXPECT_TRUE(json["a"][3].boolean);
    EXPECT_EQ(json["a"][4].type, Json::kNull);
}
