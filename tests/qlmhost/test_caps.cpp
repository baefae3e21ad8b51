// qlmhost caps against a stand-in driver with known answers: index names, the two calls of a
// list, decoding by output type, the record handed over, and a driver that oversteps.
#include "qlmhosttest.h"

using namespace qlmhosttest;

namespace {

// Sample indexes by the names the platform gives them: both ends of the numbered run, two
// between them, and the two of AutoCAD.
const struct
{
    const char* name;
    int index;
} kIndexes[] = {
    {"DC_FIELDS", 1},      {"DC_PAPERNAMES", 16},  {"DC_EMF_COMPLIANT", 20},
    {"DC_MEDIATYPES", 35}, {"DC_IDSYSPRN", 20552}, {"DC_MMINCH", 20553},
};

std::u16string FullWidth(size_t cch)
{
    std::u16string name;
    for (size_t i = 0; i + 1 < cch; i++)
        name += char16_t(u'A' + i % 26);
    return name + u'X';
}

} // namespace

class Caps : public QlmhostTest
{
protected:
    void SetUp() override
    {
        QlmhostTest::SetUp();
        AddPrinter();
    }
    Json Ask(const std::vector<std::string>& words, const std::vector<std::string>& env = {})
    {
        std::vector<std::string> all = {"caps", "P"};
        all.insert(all.end(), words.begin(), words.end());
        all.push_back("--json");
        Outcome run = Fake(all, env);
        EXPECT_EQ(run.rc, 0) << words[0] << ": " << run.err;
        Json json;
        EXPECT_TRUE(ParseJson(run.out, &json)) << words[0];
        return json;
    }
};

TEST_F(Caps, IndexesByNameNumberAndCase)
{
    for (const auto& row : kIndexes) {
        std::string bare = row.name + 3, lower;
        for (char c : std::string(row.name))
            lower += char(tolower(c));
        char hex[16];
        snprintf(hex, sizeof(hex), "0x%X", row.index);
        for (const std::string& spelling :
             {std::string(row.name), bare, lower, std::to_string(row.index), std::string(hex)}) {
            Json answer = Ask({spelling});
            EXPECT_EQ(answer["index"].Int(), row.index) << spelling;
            EXPECT_EQ(answer["name"].Utf8(), row.name) << spelling;
        }
    }
    // An index no table names still reaches the driver, and has no name.
    Json unnamed = Ask({"0"});
    EXPECT_EQ(unnamed["index"].Int(), 0);
    EXPECT_EQ(unnamed["name"].type, Json::kNull);
    EXPECT_EQ(unnamed["result"].Int(), -1);
}

TEST_F(Caps, OutputIsDecodedByTheIndexType)
{
    Json papers = Ask({"DC_PAPERS"});
    EXPECT_EQ(papers.Keys(), (std::vector<std::string>{"index", "name", "result", "output"}));
    EXPECT_EQ(papers["result"].Int(), 3);
    ASSERT_EQ(papers["output"].items.size(), 3u);
    EXPECT_EQ(papers["output"][0].Int(), 257);
    EXPECT_EQ(papers["output"][2].Int(), 280);

    Json sizes = Ask({"DC_PAPERSIZE"});
    ASSERT_EQ(sizes["output"].items.size(), 3u);
    EXPECT_EQ(sizes["output"][1][0].Int(), 9144);
    EXPECT_EQ(sizes["output"][1][1].Int(), 12192);
    EXPECT_EQ(sizes["output"][2][0].Int(), -1) << "LONGs are signed";

    Json names = Ask({"DC_PAPERNAMES"});
    ASSERT_EQ(names["output"].items.size(), 3u);
    EXPECT_EQ(names["output"][0].text, u"Letter");
    EXPECT_EQ(names["output"][1].text, FullWidth(64)) << "a full name ends at its element";
    std::u16string third = std::u16string(u"Caf\u00e9 ") + char16_t(0xD83D) + char16_t(0xDE00) +
                           u" " + char16_t(0xD800) + u" \"q\" \\ \t end";
    EXPECT_EQ(names["output"][2].text, third);

    Json bins = Ask({"DC_BINS"});
    ASSERT_EQ(bins["output"].items.size(), 2u);
    EXPECT_EQ(bins["output"][1].Int(), 7);
    Json binNames = Ask({"DC_BINNAMES"});
    ASSERT_EQ(binNames["output"].items.size(), 2u);
    EXPECT_EQ(binNames["output"][1].text, FullWidth(24));

    Json resolutions = Ask({"DC_ENUMRESOLUTIONS"});
    ASSERT_EQ(resolutions["output"].items.size(), 2u);
    EXPECT_EQ(resolutions["output"][1][0].Int(), 400);
    EXPECT_EQ(resolutions["output"][1][1].Int(), 400);

    Json personality = Ask({"DC_PERSONALITY"});
    ASSERT_EQ(personality["output"].items.size(), 1u);
    EXPECT_EQ(personality["output"][0].text, u"HP-GL/2");

    Json nup = Ask({"DC_NUP"});
    ASSERT_EQ(nup["output"].items.size(), 2u);
    EXPECT_EQ(nup["output"][1].Int(), 2);

    Json idsysprn = Ask({"DC_IDSYSPRN"});
    EXPECT_EQ(idsysprn["result"].Int(), 34) << "asked with its buffer at once";
    ASSERT_EQ(idsysprn["output"].items.size(), 1u);
    EXPECT_EQ(idsysprn["output"][0].text, u"IPTVOgdi7");
}

TEST_F(Caps, AnswersWithoutOutput)
{
    Json extent = Ask({"DC_MAXEXTENT"});
    EXPECT_EQ(extent.Keys(),
              (std::vector<std::string>{"index", "name", "result", "width", "length"}));
    EXPECT_EQ(extent["result"].Int(), (12192 << 16) | 9144);
    EXPECT_EQ(extent["width"].Int(), 9144);
    EXPECT_EQ(extent["length"].Int(), 12192);

    Json size = Ask({"DC_SIZE"});
    EXPECT_EQ(size.Keys(), (std::vector<std::string>{"index", "name", "result"}));
    EXPECT_EQ(size["result"].Int(), 220);

    // -1 in the DWORD is -1, not 4294967295; a list that answers -1 wrote nothing.
    for (const char* index : {"DC_COPIES", "DC_MEDIATYPENAMES"}) {
        Json refused = Ask({index});
        EXPECT_EQ(refused["result"].Int(), -1) << index;
        EXPECT_FALSE(refused.Has("output")) << index;
    }
    // No files: an empty list, and no second call.
    Json files = Ask({"DC_FILEDEPENDENCIES"});
    EXPECT_EQ(files["result"].Int(), 0);
    EXPECT_EQ(files["output"].type, Json::kArray);
    EXPECT_TRUE(files["output"].items.empty());
}

TEST_F(Caps, TextShowsTheAnswerAndOneElementPerLine)
{
    Outcome names = Fake({"caps", "P", "papernames"});
    ASSERT_EQ(names.rc, 0) << names.err;
    EXPECT_EQ(names.out.rfind("DC_PAPERNAMES (16) = 3\n", 0), 0u) << names.out;
    EXPECT_NE(names.out.find("    1  \"Letter\"\n"), std::string::npos) << names.out;
    // The pair as UTF-8, the lone surrogate and the tab escaped.
    EXPECT_NE(names.out.find("Caf\xc3\xa9 \xf0\x9f\x98\x80 \\ud800 \\\"q\\\" \\\\ \\x09 end"),
              std::string::npos)
        << names.out;

    Outcome extent = Fake({"caps", "P", "5"});
    EXPECT_EQ(extent.out, "DC_MAXEXTENT (5) = 799024056: width 9144, length 12192\n");
    Outcome copies = Fake({"caps", "P", "DC_COPIES"});
    EXPECT_EQ(copies.out, "DC_COPIES (18) = -1\n");
    Outcome sizes = Fake({"caps", "P", "DC_PAPERSIZE"});
    EXPECT_NE(sizes.out.find("    2  9144 x 12192\n"), std::string::npos) << sizes.out;
}

TEST_F(Caps, RecordFileIsHandedToTheDriver)
{
    EXPECT_EQ(Ask({"DC_MMINCH"})["result"].Int(), 1) << "no record: pDevMode NULL";
    // The stand-in reads a whole record's bytes even from a bare public part.
    std::vector<uint8_t> bare = CurrentRecord();
    bare.resize(sizeof(DEVMODEW));
    AsRecord(bare)->dmPublic.dmDriverExtra = 0;
    EXPECT_EQ(Ask({"DC_MMINCH", "--devmode", WriteFile("bare", bare)})["result"].Int(), 2);
    EXPECT_EQ(Ask({"DC_MMINCH", "--devmode", WriteFile("full", CurrentRecord())})["result"].Int(),
              2);
}

TEST_F(Caps, DriverThatOverstepsIsReported)
{
    struct Row
    {
        const char* index;
        const char* fault;
        const char* message;
    } rows[] = {
        {"DC_PAPERNAMES", "overrun",
         "wrote 128 bytes past the end of the 384-byte buffer it was given for DC_PAPERNAMES"},
        {"DC_PAPERS", "overrun", "wrote 2 bytes past the end of the 6-byte buffer"},
        {"DC_BINNAMES", "overrun", "wrote 48 bytes past the end of the 96-byte buffer"},
        {"DC_PERSONALITY", "overrun", "wrote 64 bytes past the end of the 64-byte buffer"},
        {"DC_PAPERNAMES", "recount", "answered 3 without a buffer, but 4 with one"},
        {"DC_PAPERNAMES", "huge", "answered 1073741824 for DC_PAPERNAMES, more than any list"},
    };
    for (const Row& row : rows) {
        Outcome run = Fake({"caps", "P", row.index, "--json"},
                           {std::string("QLMHOST_TESTDRIVER_FAULT=") + row.fault});
        EXPECT_EQ(run.rc, 1) << row.index << " " << row.fault;
        EXPECT_NE(run.err.find(row.message), std::string::npos) << row.index << ": " << run.err;
        // What the driver wrote within its buffer is still shown, and only that.
        Json json;
        ASSERT_TRUE(ParseJson(run.out, &json)) << row.index;
        EXPECT_LE(json["output"].items.size(), json["index"].Int() == 25 ? 1u : 3u);
    }
}
