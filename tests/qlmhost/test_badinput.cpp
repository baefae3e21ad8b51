// What a person can hand qlmhost that is wrong: a damaged store, a record file of another kind,
// a broken script, case or batch, a printer that is not there. Each gets exit code 1 and one
// line on standard error that names the problem: never a crash, a hang, or a trace.
#include "qlmhosttest.h"

#include <algorithm>

using namespace qlmhosttest;

class BadInput : public QlmhostTest
{
protected:
    // A home of its own whose store is these bytes.
    std::string HomeWithStore(const std::string& name, const std::string& bytes)
    {
        std::string home = File(name);
        std::filesystem::create_directories(home);
        WriteBytes(home + "/store.db", bytes.data(), bytes.size());
        return home;
    }
    std::string Text(const std::string& name, const std::string& text)
    {
        return WriteFile(name, {text.begin(), text.end()});
    }
};

TEST_F(BadInput, EachGetsOneLineOnStandardErrorAndExitCodeOne)
{
    AddPrinter("P");
    const std::string store = Slurp(m_home + "/store.db");
    ASSERT_GT(store.size(), 8192u);
    std::string otherProgram = store;
    otherProgram[68] = 0x12; // the header's application id, big-endian at 68
    std::string words;
    for (int i = 0; i < 200; i++)
        words += "not a database. ";
    std::vector<uint8_t> zeros(kDEVMODEEX_SIZE, 0);
    const std::string record = WriteFile("zeros.bin", zeros);
    const std::string script = Text("ok.sheet", "ok\n");

    struct Row
    {
        const char* what;
        std::string home; // empty: the test's home, with the queue P
        std::vector<std::string> words;
        const char* message;
    } rows[] = {
        {"a store that is no SQLite file",
         HomeWithStore("text", words),
         {"printer", "list"},
         "file is not a database"},
        {"a store cut in half",
         HomeWithStore("half", store.substr(0, store.size() / 2)),
         {"caps", "P", "DC_PAPERS"},
         "malformed"},
        {"a store cut after its header",
         HomeWithStore("header", store.substr(0, 100)),
         {"printer", "list"},
         "malformed"},
        {"a store of another program",
         HomeWithStore("other", otherProgram),
         {"printer", "list"},
         "some other program"},
        {"a record file of zeros", "", {"devmode", "read", record}, "no size of a record's"},
        {"a record of zeros given to a sheet",
         "",
         {"sheet", "P", "--in", record, "--script", script},
         "not a settings record"},
        {"a folder as the record", "", {"devmode", "store", "P", m_dir}, "cannot read the record"},
        {"an unknown action",
         "",
         {"sheet", "P", "--script", Text("a", "tab 101\nfly 3\nok\n")},
         "line 2: unknown action 'fly'"},
        {"a word for a number",
         "",
         {"sheet", "P", "--script", Text("b", "select 1009 big\n")},
         "line 1: 'select' needs the item data, not 'big'"},
        {"an arrow pressed for ever",
         "",
         {"sheet", "P", "--script", Text("c", "tab 101\nspin 1102 up 99999999999\nok\n")},
         "line 2: 'spin' takes a count up to"},
        {"a thumb beyond any trackbar",
         "",
         {"sheet", "P", "--script", Text("d", "tab 104\nslide 1307 99999999999\nok\n")},
         "line 2: 'slide' needs a position"},
        {"a control the page lacks",
         "",
         {"sheet", "P", "--script", Text("e", "click 4242\nok\n")},
         "line 1: control 4242 is missing"},
        {"a script that is not there",
         "",
         {"sheet", "P", "--script", File("absent")},
         "cannot read the script"},
        {"a folder as the script", "", {"sheet", "P", "--script", m_dir}, "cannot read the script"},
        {"an empty script", "", {"sheet", "P", "--script", Text("f", "")}, "has no actions"},
        {"a script of comments",
         "",
         {"probe", "--case", Text("g", "# nothing\n\n")},
         "has no actions"},
        {"an unknown directive",
         "",
         {"sheet", "--case", Text("h", "#: colour red\nok\n")},
         "line 1: unknown directive '#: colour red'"},
        {"a case's mode unknown",
         "",
         {"sheet", "--case", Text("m", "#: mode DM_SIDEWAYS\nok\n")},
         "'#: mode' takes a number or DM_ names, not 'DM_SIDEWAYS'"},
        {"a folder as a capture", "", {"parse", m_dir}, "cannot read"},
        {"a case that sets no field",
         "",
         {"sheet", "--case", Text("i", "#: printer P\n#: set dmNothing 1\nok\n")},
         "the record has no field dmNothing"},
        {"a line of the batch unknown",
         "",
         {"batch", Text("j", "printer list\nfly away\n")},
         "1 of 2 commands failed, the first on line 2"},
        {"a batch that runs itself",
         "",
         {"batch", Text("k", "batch " + File("k") + "\n")},
         "1 of 1 command failed"},
        {"an empty batch", "", {"batch", Text("l", "# nothing\n")}, "holds no command"},
        {"a batch that is not there", "", {"batch", File("absent")}, "cannot read the batch file"},
        {"a printer that is not there: caps",
         "",
         {"caps", "Nobody", "DC_PAPERS"},
         "no printer named 'Nobody'"},
        {"a printer that is not there: sheet",
         "",
         {"sheet", "Nobody", "--script", script},
         "no printer named 'Nobody'"},
        {"a printer that is not there: soak", "", {"soak", "Nobody"}, "no printer named 'Nobody'"},
        {"a printer that is not there: event",
         "",
         {"event", "Nobody", "initialize"},
         "no printer named 'Nobody'"},
    };
    for (const Row& row : rows) {
        std::vector<std::string> all = {"--home", row.home.empty() ? m_home : row.home,
                                        "--driver-lib", QLMHOST_REAL_DRIVER};
        all.insert(all.end(), row.words.begin(), row.words.end());
        Outcome run = RunProgram(QLMHOST_PROGRAM, all, {}, m_dir);
        EXPECT_EQ(run.rc, 1) << row.what << ": " << run.err;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1)
            << row.what << ": " << run.err;
        EXPECT_EQ(run.err.rfind("qlmhost: ", 0), 0u) << row.what << ": " << run.err;
        EXPECT_NE(run.err.find(row.message), std::string::npos) << row.what << ": " << run.err;
    }
}
