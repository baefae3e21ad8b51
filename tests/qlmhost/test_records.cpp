// Records as qlmhost prints them: every field by its name, bounded by the field and by the
// record, as valid JSON whatever the text holds; and record files refused when they cannot be
// records.
#include "qlmhosttest.h"

using namespace qlmhosttest;

namespace {

// A record whose fields test the bounds: texts that fill their field, a list without its
// final terminator, text that JSON must escape, distances, and a finisher with more programs
// than its block holds.
std::vector<uint8_t> AwkwardRecord()
{
    std::vector<uint8_t> bytes = CurrentRecord();
    DEVMODEEX* dm = AsRecord(bytes);
    for (int i = 0; i < 32; i++)
        dm->dmPublic.dmDeviceName[i] = u'a' + i % 26;
    dm->dmPublic.dmPaperSize = 274;
    dm->dmPublic.dmOrientation = -2;
    int fixed[] = {200, -1500, 5};
    memcpy(&dm->dmxPaperWidth, &fixed[0], 4);
    memcpy(&dm->dmxPaperLength, &fixed[1], 4);
    memcpy(&dm->dmxUnprintableMargin[3], &fixed[2], 4);
    // A control character, a quote, a pair and a lone low surrogate.
    const char16_t owner[] = {u'O', 0x01, u'"', 0xD83D, 0xDE00, 0xDC00, u'\u00e9', 0};
    memcpy(dm->dmxOwner, owner, sizeof(owner));
    // "Ab" names up to the last unit of the field, the last one without its terminator.
    for (size_t i = 0; i < 1751; i++)
        dm->dmxFontList[i] = i % 3 == 2 ? 0 : (i % 3 ? u'b' : u'A');
    memcpy(dm->dmxFinisher.Model, u"Fold 9", 12);
    dm->dmxFinisher.accordionFolds[1] = 7;
    dm->dmxFinisher.numPrograms = 25;
    for (int p = 0; p < kFINISHER_MAX_PROGRAMS; p++) {
        for (int i = 0; i < 64; i++)
            dm->dmxFinisher.programs[p].name[i] = u'0' + p % 10;
        dm->dmxFinisher.programs[p].maxLength = -p;
    }
    dm->dmxNumRolls = 3;
    dm->dmxRollSize[5] = 42;
    return bytes;
}

Json ReadJson(const Outcome& run)
{
    Json json;
    EXPECT_TRUE(ParseJson(run.out, &json));
    return json;
}

} // namespace

class Records : public QlmhostTest
{
};

TEST_F(Records, JsonHasEveryFieldOfTheTableByNameAndInOrder)
{
    Outcome run = Fake({"devmode", "read", WriteFile("r", AwkwardRecord()), "--json"});
    ASSERT_EQ(run.rc, 0) << run.err;
    Json r = ReadJson(run);
    EXPECT_EQ(r.Keys(), RecordFieldNames());
    std::vector<std::string> finisherKeys = FinisherFieldNames();
    finisherKeys.push_back("programs");
    EXPECT_EQ(r["dmxFinisher"].Keys(), finisherKeys);
    // The count says 25; the block holds 20.
    ASSERT_EQ(r["dmxFinisher"]["programs"].items.size(), 20u);
    for (const Json& program : r["dmxFinisher"]["programs"].items)
        EXPECT_EQ(program.Keys(), ProgramFieldNames());
}

TEST_F(Records, JsonValuesKeepTheirTypeAndBounds)
{
    Outcome run = Fake({"devmode", "read", WriteFile("r", AwkwardRecord()), "--json"});
    ASSERT_EQ(run.rc, 0) << run.err;
    Json r = ReadJson(run);

    std::u16string deviceName;
    for (int i = 0; i < 32; i++)
        deviceName += char16_t(u'a' + i % 26);
    EXPECT_EQ(r["dmDeviceName"].text, deviceName) << "a full field has no terminator";
    EXPECT_EQ(r["dmPaperSize"].type, Json::kNumber);
    EXPECT_EQ(r["dmPaperSize"].Int(), 274);
    EXPECT_EQ(r["dmOrientation"].Int(), -2);
    EXPECT_EQ(r["dmSize"].Int(), 220);
    EXPECT_EQ(r["dmxSignature"].Int(), DRIVER_SIGNATURE);
    EXPECT_DOUBLE_EQ(r["dmxPaperWidth"].number, 0.2);
    EXPECT_DOUBLE_EQ(r["dmxPaperLength"].number, -1.5);
    ASSERT_EQ(r["dmxUnprintableMargin"].items.size(), 4u);
    EXPECT_DOUBLE_EQ(r["dmxUnprintableMargin"][3].number, 0.005);
    EXPECT_EQ(r["dmxOwner"].text,
              (std::u16string{u'O', 0x01, u'"', 0xD83D, 0xDE00, 0xDC00, u'\u00e9'}));
    EXPECT_NE(run.out.find("\\u0001"), std::string::npos);
    EXPECT_NE(run.out.find("\\udc00"), std::string::npos);

    const Json& fonts = r["dmxFontList"];
    ASSERT_EQ(fonts.type, Json::kArray);
    ASSERT_EQ(fonts.items.size(), 584u) << "583 terminated names, and one the field's end ends";
    EXPECT_EQ(fonts[0].text, u"Ab");
    EXPECT_EQ(fonts[583].text, u"Ab");
    EXPECT_EQ(r["dmxRasterStampList"].type, Json::kArray);
    EXPECT_TRUE(r["dmxRasterStampList"].items.empty());

    ASSERT_EQ(r["dmxRollSize"].items.size(), 6u);
    EXPECT_EQ(r["dmxRollSize"][5].Int(), 42);
    EXPECT_EQ(r["dmxTableA"].items.size(), 128u);
    EXPECT_EQ(r["dmxReservedTail"].type, Json::kString) << "reserved bytes as hex";
    EXPECT_EQ(r["dmxReservedTail"].text.size(), 64u);

    const Json& finisher = r["dmxFinisher"];
    EXPECT_EQ(finisher["Model"].text, u"Fold 9");
    EXPECT_EQ(finisher["numPrograms"].Int(), 25);
    ASSERT_EQ(finisher["accordionFolds"].items.size(), 33u);
    EXPECT_EQ(finisher["accordionFolds"][1].Int(), 7);
    EXPECT_EQ(finisher["programs"][19]["name"].text, std::u16string(64, u'9'));
    EXPECT_EQ(finisher["programs"][19]["maxLength"].Int(), -19);
}

TEST_F(Records, TextShowsTheSameFieldsOnePerLineAndEscapesControls)
{
    Outcome run = Fake({"devmode", "read", WriteFile("r", AwkwardRecord())});
    ASSERT_EQ(run.rc, 0) << run.err;
    EXPECT_NE(run.out.find("this driver's current layout"), std::string::npos) << run.out;
    for (const std::string& name : RecordFieldNames()) {
        if (name == "dmxFinisher")
            continue;
        EXPECT_NE(run.out.find("  " + name + " "), std::string::npos) << name;
    }
    EXPECT_NE(run.out.find("dmxFinisher.Model"), std::string::npos);
    EXPECT_NE(run.out.find("dmxFinisher.programs[19].maxLength"), std::string::npos);
    EXPECT_EQ(run.out.find("dmxFinisher.programs[20]"), std::string::npos);
    EXPECT_NE(run.out.find("-1.5"), std::string::npos);
    EXPECT_NE(run.out.find("\"O\\x01\\\""), std::string::npos) << "the owner, escaped";
    EXPECT_EQ(run.out.find('\x01'), std::string::npos);
}

TEST_F(Records, ShorterRecordsShowOnlyWhatTheyHold)
{
    // The public part alone; and the older layout, which ends inside the finisher block.
    std::vector<uint8_t> publicOnly = CurrentRecord();
    publicOnly.resize(sizeof(DEVMODEW));
    AsRecord(publicOnly)->dmPublic.dmDriverExtra = 0;
    std::vector<uint8_t> older = AwkwardRecord();
    older.resize(kDEVMODEEX1_SIZE);
    AsRecord(older)->dmPublic.dmDriverExtra = kDEVMODEEX1_DRIVER_EXTRA;

    Outcome run = Fake({"devmode", "read", WriteFile("public", publicOnly), "--json"});
    ASSERT_EQ(run.rc, 0) << run.err;
    Json r = ReadJson(run);
    EXPECT_TRUE(r.Has("dmPanningHeight"));
    EXPECT_FALSE(r.Has("padding_1"));
    EXPECT_FALSE(r.Has("dmxSignature"));

    run = Fake({"devmode", "read", WriteFile("older", older), "--json"});
    ASSERT_EQ(run.rc, 0) << run.err;
    r = ReadJson(run);
    EXPECT_TRUE(r.Has("dmxFinisherType"));
    EXPECT_FALSE(r.Has("dmxNumRolls"));
    EXPECT_FALSE(r.Has("dmxFinishOption"));
    // (3252 - 544 - 500) / 156: 14 whole programs lie within the older record.
    EXPECT_EQ(r["dmxFinisher"]["programs"].items.size(), 14u);

    run = Fake({"devmode", "read", File("older")});
    EXPECT_NE(run.out.find("this driver's older layout"), std::string::npos) << run.out;
}

TEST_F(Records, FilesThatCannotBeRecordsAreRefused)
{
    std::vector<uint8_t> truncated = CurrentRecord();
    truncated.resize(kDEVMODEEX_SIZE - 1);
    std::vector<uint8_t> olderTruncated = CurrentRecord();
    olderTruncated.resize(3000);
    AsRecord(olderTruncated)->dmPublic.dmDriverExtra = kDEVMODEEX1_DRIVER_EXTRA;
    std::string words;
    for (int i = 0; i < 40; i++)
        words += "not a record at all. ";
    struct Row
    {
        const char* name;
        std::vector<uint8_t> bytes;
        const char* message;
    } rows[] = {
        {"empty", {}, "fewer than the 220"},
        {"short", std::vector<uint8_t>(219, 0), "fewer than the 220"},
        {"truncated", truncated, "declare 13484"},
        {"olderTruncated", olderTruncated, "declare 3252"},
        {"text", std::vector<uint8_t>(words.begin(), words.end()), "not a settings record"},
        {"zeros", std::vector<uint8_t>(kDEVMODEEX_SIZE, 0), "no size of a record's public part"},
        {"huge", std::vector<uint8_t>((1 << 20) + 1, 0), "larger than any settings record"},
    };
    AddPrinter();
    for (const Row& row : rows) {
        std::string path = WriteFile(row.name, row.bytes);
        const std::vector<std::string> commands[] = {
            {"devmode", "read", path},
            {"devmode", "store", "P", path},
            {"caps", "P", "DC_PAPERNAMES", "--devmode", path},
            {"devmode", "convert", "P", "--mode", "convert", "--in", path},
        };
        for (const auto& command : commands) {
            Outcome run = Fake(command);
            EXPECT_EQ(run.rc, 1) << row.name << ", " << command[0] << " " << command[1];
            EXPECT_NE(run.err.find(row.message), std::string::npos)
                << row.name << ", " << command[0] << " " << command[1] << ": " << run.err;
            EXPECT_EQ(run.out, "") << row.name;
        }
    }
    Outcome run = Fake({"devmode", "read", File("absent")});
    EXPECT_EQ(run.rc, 1);
    EXPECT_NE(run.err.find("cannot read the record file"), std::string::npos) << run.err;
}

TEST_F(Records, StoredRecordShowsAsItsFile)
{
    // A new queue holds its driver's default record, named after the queue.
    AddPrinter();
    Outcome fresh = Fake({"devmode", "show", "P", "--json"});
    ASSERT_EQ(fresh.rc, 0) << fresh.err;
    Json record;
    ASSERT_TRUE(ParseJson(fresh.out, &record)) << fresh.out;
    EXPECT_EQ("P", record["dmDeviceName"].Utf8());

    std::string path = WriteFile("r", AwkwardRecord());
    Outcome store = Fake({"devmode", "store", "P", path});
    ASSERT_EQ(store.rc, 0) << store.err;
    Outcome shown = Fake({"devmode", "show", "P", "--json"});
    ASSERT_EQ(shown.rc, 0) << shown.err;
    EXPECT_EQ(shown.out, Fake({"devmode", "read", path, "--json"}).out);
}
