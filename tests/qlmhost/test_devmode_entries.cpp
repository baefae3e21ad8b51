// qlmhost devmode default and convert against a stand-in driver: the calls as the spooler makes
// them, the output buffer shaped by its size, and what comes back.
#include "qlmhosttest.h"

using namespace qlmhosttest;

class DevmodeEntries : public QlmhostTest
{
protected:
    void SetUp() override
    {
        QlmhostTest::SetUp();
        AddPrinter();
    }
    Json Convert(const std::vector<std::string>& words, int rc = 0)
    {
        std::vector<std::string> all = {"devmode", "convert", "P"};
        all.insert(all.end(), words.begin(), words.end());
        all.push_back("--json");
        Outcome run = Fake(all);
        EXPECT_EQ(run.rc, rc) << run.err;
        Json json;
        EXPECT_TRUE(ParseJson(run.out, &json));
        return json;
    }
};

TEST_F(DevmodeEntries, DefaultIsTheDriversRecordAndItsFile)
{
    Outcome run = Fake({"devmode", "default", "P", "--json", "--out", File("default")});
    ASSERT_EQ(run.rc, 0) << run.err;
    Json r;
    ASSERT_TRUE(ParseJson(run.out, &r));
    EXPECT_EQ(r.Keys(), RecordFieldNames());
    EXPECT_EQ(r["dmxOwner"].text, u"Test \u00e9");
    ASSERT_EQ(r["dmxFontList"].items.size(), 2u);
    EXPECT_EQ(r["dmxFontList"][1].text, u"Stick");
    ASSERT_EQ(r["dmxFinisher"]["programs"].items.size(), 1u);
    EXPECT_EQ(r["dmxFinisher"]["programs"][0]["name"].text, u"Program A");
    EXPECT_EQ(r["dmxFinisher"]["programs"][0]["maxLength"].Int(), -1);

    EXPECT_EQ(Slurp(File("default")).size(), sizeof(DEVMODEEX));
    EXPECT_EQ(Fake({"devmode", "read", File("default"), "--json"}).out, run.out);

    Outcome text = Fake({"devmode", "default", "P"});
    EXPECT_EQ(text.rc, 0);
    EXPECT_EQ(text.out.rfind("record of 13484 bytes (dmSize 220 + dmDriverExtra 13264): this "
                             "driver's current layout\n",
                             0),
              0u)
        << text.out;
}

TEST_F(DevmodeEntries, DefaultWrittenPastItsBufferIsAnError)
{
    Outcome run = Fake({"devmode", "default", "P"}, {"QLMHOST_TESTDRIVER_FAULT=overrun"});
    EXPECT_EQ(run.rc, 1);
    EXPECT_NE(run.err.find("wrote 8 bytes past the end of the 13484-byte buffer"),
              std::string::npos)
        << run.err;
}

TEST_F(DevmodeEntries, OutputBufferTakesTheShapeOfItsSize)
{
    std::string in = WriteFile("in", CurrentRecord());
    struct Row
    {
        int outSize;
        int dmSize;
        int dmDriverExtra;
        const char* lastField; // the last field the output record holds
    } rows[] = {
        {13484, 220, 13264, "padding_2"},
        {20000, 220, 13264, "padding_2"}, // room beyond the record stays outside it
        {3252, 220, 3032, "dmxFinisher"}, // the older layout ends inside it
        {220, 220, 0, "dmPanningHeight"},
        {188, 188, 0, "dmDisplayFrequency"},
    };
    for (const Row& row : rows) {
        Json answer =
            Convert({"--mode", "convert", "--in", in, "--out-size", std::to_string(row.outSize)});
        std::string label = std::to_string(row.outSize);
        EXPECT_EQ(answer["result"].Int(), 1) << label;
        EXPECT_EQ(answer["cbNeeded"].Int(), row.dmSize + row.dmDriverExtra) << label;
        EXPECT_EQ(answer["outSize"].Int(), row.outSize) << label;
        const Json& record = answer["record"];
        EXPECT_EQ(record["dmSize"].Int(), row.dmSize) << label;
        EXPECT_EQ(record["dmDriverExtra"].Int(), row.dmDriverExtra) << label;
        ASSERT_FALSE(record.members.empty()) << label;
        EXPECT_EQ(record.members.back().first, row.lastField) << label;
    }
}

TEST_F(DevmodeEntries, ResultsAndLastErrorsAsTheDriverGivesThem)
{
    std::string in = WriteFile("in", CurrentRecord());
    struct Row
    {
        std::vector<std::string> words;
        int result;
        int cbNeeded;
        int lastError;
    } rows[] = {
        {{"--mode", "default"}, 1, 13484, 0},
        {{"--mode", "default", "--out-size", "100"}, 0, 13484, 122},
        {{"--mode", "default", "--out-size", "0"}, 0, 13484, 122},
        {{"--mode", "convert"}, 0, 13484, 87}, // no pdmIn
        {{"--mode", "3", "--in", in}, 0, 13484, 87},
        {{"--mode", "CONVERT", "--in", in, "--out-size", "3000"}, 1, 3000, 0},
    };
    for (const Row& row : rows) {
        Json answer = Convert(row.words);
        std::string label = row.words[1] + (row.words.size() > 2 ? " " + row.words.back() : "");
        EXPECT_EQ(answer.Keys().front(), "mode") << label;
        EXPECT_EQ(answer["result"].Int(), row.result) << label;
        EXPECT_EQ(answer["cbNeeded"].Int(), row.cbNeeded) << label;
        EXPECT_EQ(answer["lastError"].Int(), row.lastError) << label;
        EXPECT_EQ(answer.Has("record"), row.result == 1) << label;
    }
    EXPECT_EQ(Convert({"--mode", "3", "--in", in})["mode"].type, Json::kNull);
    EXPECT_EQ(Convert({"--mode", "convert351", "--in", in})["fMode"].Int(), 2);
}

TEST_F(DevmodeEntries, ConvertedRecordGoesToItsFile)
{
    std::string in = WriteFile("in", CurrentRecord());
    Outcome run = Fake({"devmode", "convert", "P", "--mode", "convert", "--in", in, "--out-size",
                        "3252", "--out", File("older")});
    ASSERT_EQ(run.rc, 0) << run.err;
    EXPECT_EQ(Slurp(File("older")).size(), size_t(kDEVMODEEX1_SIZE));
    EXPECT_NE(run.out.find("this driver's older layout"), std::string::npos) << run.out;

    Outcome failed = Fake({"devmode", "convert", "P", "--mode", "default", "--out-size", "100",
                           "--out", File("nothing")});
    EXPECT_EQ(failed.rc, 1);
    EXPECT_NE(failed.err.find("no record written"), std::string::npos) << failed.err;
    EXPECT_NE(failed.out.find("last error  buffer too small (error 122)"), std::string::npos)
        << failed.out;
}

TEST_F(DevmodeEntries, ConversionWrittenPastItsBufferIsAnError)
{
    Outcome run = Fake({"devmode", "convert", "P", "--mode", "convert", "--in",
                        WriteFile("in", CurrentRecord()), "--out-size", "3252"},
                       {"QLMHOST_TESTDRIVER_FAULT=overrun"});
    EXPECT_EQ(run.rc, 1);
    EXPECT_NE(run.err.find("past the end of the 3252-byte buffer it was given for "
                           "DrvConvertDevMode"),
              std::string::npos)
        << run.err;
}
