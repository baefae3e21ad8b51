// qlmhost sheet as a person uses it: the device sheet's about tab with the resource library's
// version, the document sheet's result and record, a script line that does not hold, and the
// sheets opened again and again by a soak without leaving anything behind.
#include "qlmhosttest.h"

using namespace qlmhosttest;

class SheetCommand : public QlmhostTest
{
protected:
    void SetUp() override
    {
        QlmhostTest::SetUp();
        AddPrinter("P");
    }
    std::string Script(const std::string& text)
    {
        return WriteFile("script", {text.begin(), text.end()});
    }
};

TEST_F(SheetCommand, TheDeviceSheetsAboutTabShowsTheProductVersions)
{
    Outcome run = Real({"sheet", "P", "--device", "--dump", "--script", Script("ok\n")});
    ASSERT_EQ(0, run.rc) << run.err;
    EXPECT_NE(std::string::npos, run.out.find("DrvDevicePropertySheets: 1 (OK)")) << run.out;
    EXPECT_NE(std::string::npos, run.out.find("dialog 106")) << run.out;
    EXPECT_NE(std::string::npos, run.out.find("1932 Static text \"12.7.0.0\"")) << run.out;
}

TEST_F(SheetCommand, TheDocumentSheetGivesItsResultAndTheCallersRecord)
{
    Outcome ok = Real({"sheet", "P", "--json", "--script", Script("# the about tab only\nok\n")});
    ASSERT_EQ(0, ok.rc) << ok.err;
    Json json;
    ASSERT_TRUE(ParseJson(ok.out, &json)) << ok.out;
    EXPECT_EQ(1, json["result"].Int());
    EXPECT_EQ("P", json["record"]["dmDeviceName"].Utf8());
    EXPECT_EQ(13264, json["record"]["dmDriverExtra"].Int());

    // No script: the sheet is closed as Cancel and the caller's buffer stays empty.
    Outcome closed = Real({"sheet", "P", "--json"});
    ASSERT_EQ(0, closed.rc) << closed.err;
    Json cancelled;
    ASSERT_TRUE(ParseJson(closed.out, &cancelled));
    EXPECT_EQ(0, cancelled["result"].Int());
    EXPECT_EQ(0, cancelled["record"]["dmSize"].Int());
}

TEST_F(SheetCommand, AScriptLineThatDoesNotHoldFailsTheRunByItsNumber)
{
    Outcome run =
        Real({"sheet", "P", "--script", Script("ok\n"), "--mode", "DM_IN_PROMPT|DM_BOGUS"});
    EXPECT_EQ(2, run.rc);
    Outcome bad = Real({"sheet", "P", "--script", Script("expect 1932 text 0.0\nok\n")});
    EXPECT_EQ(1, bad.rc);
    EXPECT_NE(std::string::npos, bad.err.find("line 1:")) << bad.err;
    Outcome unreadable = Real({"sheet", "P", "--script", Script("wave hello\n")});
    EXPECT_EQ(1, unreadable.rc);
    EXPECT_NE(std::string::npos, unreadable.err.find("line 1:")) << unreadable.err;
}

TEST_F(SheetCommand, ACaseGivesTheSheetTheQueuesRecordWithItsFieldsSet)
{
    // Each kind of field: a number, a distance, a text, a list and a finisher program's name.
    const std::string fields[][2] = {{"dmCopies", "3"},
                                     {"dmxUnprintableMargin[2]", "0.5"},
                                     {"dmxLabelText", "Sheet <PAGE>"},
                                     {"dmxFontList", "Arial|Stick"},
                                     {"dmxFinisher.programs[1].name", "FOLD_210"}};
    std::string text = "#: printer P\n#: result 1\n";
    for (const auto& field : fields)
        text += "#: set " + field[0] + " " + field[1] + "\n#: record " + field[0] + " " + field[1] +
                "\n";
    Outcome run = Real({"sheet", "--case", Script(text + "ok\n")});
    EXPECT_EQ(0, run.rc) << run.out << run.err;

    // A field the record lacks, a value its field cannot hold, a text longer than its field.
    const std::string refused[][2] = {
        {"dmxNoSuchField 1", "no field dmxNoSuchField"},
        {"dmCopies 70000", "no value of dmCopies"},
        {"dmxJBAUser " + std::string(33, 'u'), "holds 32 characters"}};
    for (const auto& [line, why] : refused) {
        Outcome bad = Real({"sheet", "--case", Script("#: printer P\n#: set " + line + "\nok\n")});
        EXPECT_EQ(1, bad.rc) << line;
        EXPECT_NE(std::string::npos, bad.err.find(why)) << bad.err;
    }
}

TEST_F(SheetCommand, ASoakLeavesNoWindowPageOrHandleBehind)
{
    // Ten cycles of both sheets and their share of the export calls: what a sheet makes it
    // must take away again, but for what the about tab keeps on each showing by design.
    // Memory is left to the soak itself: an address sanitizer's quarantine grows it.
    Outcome run = Real({"soak", "P", "--calls", "200", "--sheets", "10", "--every", "2", "--json"});
    ASSERT_NE(run.out.find_last_of('{'), std::string::npos) << run.out << run.err;
    Json verdict;
    ASSERT_TRUE(ParseJson(run.out.substr(run.out.rfind("\n{") + 1), &verdict)) << run.out;
    EXPECT_EQ(16, verdict["aboutShowings"].Int()) << run.out;
    const Json& growth = verdict["growth"];
    for (const std::string& count : growth.Keys()) {
        if (count.find("KiB") != std::string::npos)
            continue;
        EXPECT_EQ(growth[count]["growth"].Int(), growth[count]["keptByDesign"].Int()) << count;
    }
    EXPECT_EQ(16, growth["gdi fonts"]["growth"].Int());
    EXPECT_EQ(32, growth["gdi bitmaps"]["growth"].Int());
}
