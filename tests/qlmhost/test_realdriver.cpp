// qlmhost with the real driver library: what an application learns of a 2440 queue through
// DrvDeviceCapabilities, DrvDocumentProperties and DrvConvertDevMode.
#include "qlmhosttest.h"

using namespace qlmhosttest;

class RealDriver : public QlmhostTest
{
protected:
    void SetUp() override
    {
        QlmhostTest::SetUp();
        AddPrinter("Plan 2440");
    }
    Json Caps(const std::vector<std::string>& words)
    {
        std::vector<std::string> all = {"caps", "Plan 2440"};
        all.insert(all.end(), words.begin(), words.end());
        all.push_back("--json");
        Outcome run = Real(all);
        EXPECT_EQ(run.rc, 0) << words[0] << ": " << run.err;
        Json json;
        EXPECT_TRUE(ParseJson(run.out, &json)) << words[0];
        return json;
    }
    Json Convert(const std::vector<std::string>& words)
    {
        std::vector<std::string> all = {"devmode", "convert", "Plan 2440"};
        all.insert(all.end(), words.begin(), words.end());
        all.push_back("--json");
        Outcome run = Real(all);
        EXPECT_EQ(run.rc, 0) << run.err;
        Json json;
        EXPECT_TRUE(ParseJson(run.out, &json));
        return json;
    }
    // The driver's default record, as a file and as bytes.
    std::vector<uint8_t> DefaultRecord()
    {
        Outcome run = Real({"devmode", "default", "Plan 2440", "--out", File("default")});
        EXPECT_EQ(run.rc, 0) << run.err;
        std::string bytes = Slurp(File("default"));
        return std::vector<uint8_t>(bytes.begin(), bytes.end());
    }
};

TEST_F(RealDriver, ConstantAnswers)
{
    const struct
    {
        const char* index;
        long long result;
    } rows[] = {
        // Samples: every index on every model is the entry tests' business.
        {"DC_FIELDS", 61199}, {"DC_SIZE", 220}, {"DC_DRIVER", 3079},        {"DC_ORIENTATION", 90},
        {"DC_IDSYSPRN", -1},  {"0", -1},        {"DC_FILEDEPENDENCIES", 0},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Caps({row.index})["result"].Int(), row.result) << row.index;
}

TEST_F(RealDriver, PaperListsAgreeRowForRow)
{
    Json codes = Caps({"DC_PAPERS"});
    Json sizes = Caps({"DC_PAPERSIZE"});
    Json names = Caps({"DC_PAPERNAMES"});
    long long count = names["result"].Int();
    ASSERT_GT(count, 0);
    EXPECT_EQ(names["output"].items.size(), size_t(count));
    EXPECT_EQ(codes["result"].Int(), count);
    EXPECT_EQ(codes["output"].items.size(), size_t(count));
    EXPECT_EQ(sizes["result"].Int(), count);
    EXPECT_EQ(sizes["output"].items.size(), size_t(count));
    EXPECT_EQ(names["output"][0].Utf8(), "Letter");
    EXPECT_EQ(codes["output"][0].Int(), 257);
    EXPECT_EQ(sizes["output"][0][0].Int(), 2159);
    EXPECT_EQ(sizes["output"][0][1].Int(), 2794);
    for (const Json& name : names["output"].items)
        EXPECT_FALSE(name.text.empty());
}

TEST_F(RealDriver, BinsResolutionsAndExtents)
{
    Json bins = Caps({"DC_BINS"});
    Json binNames = Caps({"DC_BINNAMES"});
    ASSERT_GT(bins["result"].Int(), 0);
    EXPECT_EQ(binNames["result"].Int(), bins["result"].Int());
    EXPECT_EQ(binNames["output"].items.size(), bins["output"].items.size());

    Json resolutions = Caps({"DC_ENUMRESOLUTIONS"});
    ASSERT_GT(resolutions["result"].Int(), 0);
    EXPECT_EQ(resolutions["output"].items.size(), size_t(resolutions["result"].Int()));
    for (const Json& pair : resolutions["output"].items)
        EXPECT_EQ(pair[0].Int(), pair[1].Int()) << "dots per inch, the same both ways";

    Json minimum = Caps({"DC_MINEXTENT"});
    EXPECT_EQ(minimum["width"].Int(), 2100);
    EXPECT_EQ(minimum["length"].Int(), 2794);
    Json maximum = Caps({"DC_MAXEXTENT"});
    EXPECT_EQ(maximum["width"].Int(), 9144);
    EXPECT_EQ(maximum["length"].Int(), 12192);

    Json personality = Caps({"DC_PERSONALITY"});
    EXPECT_EQ(personality["result"].Int(), 1);
    ASSERT_EQ(personality["output"].items.size(), 1u);
    EXPECT_EQ(personality["output"][0].Utf8(), "HP-GL/2");
}

TEST_F(RealDriver, AutoCadIndexes)
{
    const struct
    {
        std::vector<std::string> value;
        long long result;
    } rows[] = {
        {{"--dword", "7"}, 34},
        {{"--dword", "6"}, -1},
        {{"--string", "R18"}, -1}, // more than four bytes
    };
    for (const auto& row : rows) {
        std::vector<std::string> words = {"reg", "set", "HKLM\\SOFTWARE\\Autodesk\\Hardcopy",
                                          "Release"};
        words.insert(words.end(), row.value.begin(), row.value.end());
        ASSERT_EQ(Real(words).rc, 0);
        Json answer = Caps({"DC_IDSYSPRN"});
        EXPECT_EQ(answer["result"].Int(), row.result) << row.value[1];
        if (row.result == 34) {
            ASSERT_EQ(answer["output"].items.size(), 1u);
            EXPECT_EQ(answer["output"][0].Utf8(), "IPTVOgdi7");
        }
    }

    std::vector<uint8_t> record = DefaultRecord();
    ASSERT_EQ(record.size(), sizeof(DEVMODEEX));
    AsRecord(record)->dmxUnits = 1;
    EXPECT_EQ(Caps({"DC_MMINCH", "--devmode", WriteFile("mm", record)})["result"].Int(), 2);
    AsRecord(record)->dmxUnits = 0;
    EXPECT_EQ(Caps({"DC_MMINCH", "--devmode", WriteFile("inch", record)})["result"].Int(), 1);
}

TEST_F(RealDriver, DefaultRecordIsACurrentUsRecordOnEverySystem)
{
    // A queue of its own for each: the first default is stored with the queue.
    AddPrinter("Metric 2440");
    for (bool metric : {false, true}) {
        std::vector<std::string> words = {"devmode", "default",
                                          metric ? "Metric 2440" : "Plan 2440", "--json"};
        if (metric)
            words.insert(words.begin(), "--metric");
        Outcome run = Real(words);
        ASSERT_EQ(run.rc, 0) << run.err;
        Json r;
        ASSERT_TRUE(ParseJson(run.out, &r));
        EXPECT_EQ(r.Keys(), RecordFieldNames());
        EXPECT_EQ(r["dmSpecVersion"].Int(), TVO_SPEC_VERSION);
        EXPECT_EQ(r["dmDriverVersion"].Int(), TVO_DRIVER_VERSION);
        EXPECT_EQ(r["dmSize"].Int(), 220);
        EXPECT_EQ(r["dmDriverExtra"].Int(), 13264);
        EXPECT_EQ(r["dmFields"].Int(), kTVO_DM_FIELDS);
        EXPECT_EQ(r["dmxSignature"].Int(), DRIVER_SIGNATURE);
        EXPECT_EQ(r["dmxDevmodeVersion"].Int(), TVO_DEVMODE_VERSION);
        // The driver's metric test reads the locale's answer in a way no successful call passes.
        EXPECT_EQ(r["dmPaperSize"].Int(), 257) << (metric ? "metric" : "US");
        EXPECT_EQ(r["dmxUnits"].Int(), 0) << (metric ? "metric" : "US");
        for (const Json& guard : r["padding_2"].items)
            EXPECT_EQ(guard.Int(), TVO_GUARD_WORD);
    }
}

TEST_F(RealDriver, Conversions)
{
    std::vector<uint8_t> current = DefaultRecord();
    ASSERT_EQ(current.size(), sizeof(DEVMODEEX));
    std::vector<uint8_t> older(current.begin(), current.begin() + kDEVMODEEX1_SIZE);
    AsRecord(older)->dmPublic.dmDriverExtra = kDEVMODEEX1_DRIVER_EXTRA;
    std::string currentFile = WriteFile("current", current), olderFile = WriteFile("older", older);

    const struct
    {
        std::vector<std::string> words;
        long long result, cbNeeded, lastError, dmSpecVersion, dmDriverExtra;
    } rows[] = {
        {{"--mode", "default"}, 1, 13484, 0, TVO_SPEC_VERSION, 13264},
        {{"--mode", "default", "--out-size", "100"}, 0, 13484, 122, 0, 0},
        {{"--mode", "convert", "--in", olderFile}, 1, 13484, 0, TVO_SPEC_VERSION, 13264},
        {{"--mode", "convert", "--in", currentFile, "--out-size", "3252"},
         1,
         3252,
         0,
         TVO_SPEC_VERSION,
         3032},
        {{"--mode", "convert", "--in", currentFile, "--out-size", "188"}, 1, 188, 0, 800, 0},
        {{"--mode", "convert351", "--in", currentFile}, 1, 188, 0, 800, 0},
        {{"--mode", "convert"}, 0, 13484, 87, 0, 0},
    };
    for (const auto& row : rows) {
        Json answer = Convert(row.words);
        std::string label = row.words[1] + " " + row.words.back();
        EXPECT_EQ(answer["result"].Int(), row.result) << label;
        EXPECT_EQ(answer["cbNeeded"].Int(), row.cbNeeded) << label;
        // After success the last error is whatever the driver's own calls left.
        if (!row.result) {
            EXPECT_EQ(answer["lastError"].Int(), row.lastError) << label;
        } else {
            EXPECT_EQ(answer["record"]["dmSpecVersion"].Int(), row.dmSpecVersion) << label;
            EXPECT_EQ(answer["record"]["dmDriverExtra"].Int(), row.dmDriverExtra) << label;
        }
    }
}
