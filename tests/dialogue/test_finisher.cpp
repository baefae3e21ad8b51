// The finisher: its code tables, the TVOFINISHER reply, and its copy into the record.

#include "support/tracecapture.h"

#include "driver/devmode/tvodm.h"
#include "driver/dialogue/qlmrefresh_decode.h"
#include "driver/dialogue/tvofinisher.h"
#include "driver/dialogue/tvoparsepjl.h"
#include "driver/foundation/wstr.h"

#include "dialogue/decodefixture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

using decodefixture::Decoded;
using decodefixture::Narrow;

namespace {

const char kHeading[] = "NAME\tFANFOLD\tCROSSFOLD\tWIDTH\tLENGTH\tMARGIN\tPUNCH\tTAB\tBINS"
                        "\tMAXLENGTH\tSHEETDELIVERY\tTITLE\tEDGE\r\n";

// A finisher reply with rows program rows (named P1, P2, ...) and the count NUMPROGRAMS says;
// count < 0 leaves the count out.
std::string FinisherReply(int rows, int count, const std::string& version = "1.0",
                          const std::string& model = "Folder")
{
    std::string reply =
        "@PJL INFO TVOFINISHER\r\nMODEL = " + model + "\r\nVERSION = " + version + "\r\n";
    if (count >= 0)
        reply += "NUMPROGRAMS = " + std::to_string(count) + "\r\n";
    reply += std::string("FINISHERPROGRAMS\r\n") + kHeading;
    for (int i = 1; i <= rows; i++)
        reply += "P" + std::to_string(i) + "\tNONE\tNONE\t" + std::to_string(100 + i) +
                 "\t297\t20\tNONE\tNONE\t1\t0\tFACEUP\t0\tLONGEDGE\n";
    return reply + "\f";
}

TEST(FinisherCodes, TablesByName)
{
    const struct
    {
        TVOFinisherCodeTable table;
        const WCHAR* name;
        WORD code;
    } rows[] = {
        // Samples of each table, a name of another table, and the case of the name.
        {kFINISHER_TABLE_ACCORDION, TEXT("NONE"), 0},
        {kFINISHER_TABLE_ACCORDION, TEXT("FULL_FRONT_END_LEFT"), 2},
        {kFINISHER_TABLE_ACCORDION, TEXT("TOP_PANEL_BINDING"), 5},
        {kFINISHER_TABLE_ACCORDION, TEXT("MIN_COMP_ENDLESS"), 8},
        {kFINISHER_TABLE_ACCORDION, TEXT("Z_BACK_FROM_TOP"), 1},
        {kFINISHER_TABLE_ACCORDION, TEXT("none"), 1},
        {kFINISHER_TABLE_CROSS, TEXT("NONE"), 0},
        {kFINISHER_TABLE_CROSS, TEXT("Z_BACK_FROM_TOP"), 2},
        {kFINISHER_TABLE_CROSS, TEXT("C_FORWARD_FROM_BOTTOM"), 9},
        {kFINISHER_TABLE_CROSS, TEXT("RESERVED"), 11},
        {kFINISHER_TABLE_CROSS, TEXT("FULL_FRONT_END_LEFT"), 1},
        {kFINISHER_TABLE_PUNCH, TEXT("NONE"), 0},
        {kFINISHER_TABLE_PUNCH, TEXT("PUNCH_2"), 2},
        {kFINISHER_TABLE_PUNCH, TEXT("PUNCH_4"), 4},
        {kFINISHER_TABLE_PUNCH, TEXT("PUNCH_5"), 1},
        // The printer's and the file's tab tables give TAB and TABS the other way round.
        {kFINISHER_TABLE_TAB_PRINTER, TEXT("TAB"), 2},
        {kFINISHER_TABLE_TAB_PRINTER, TEXT("TABS"), 1},
        {kFINISHER_TABLE_TAB_PRINTER, TEXT("REINFORCEMENT_STRIP"), 3},
        {kFINISHER_TABLE_TAB_FILE, TEXT("NONE"), 0},
        {kFINISHER_TABLE_TAB_FILE, TEXT("TABS"), 2},
        {kFINISHER_TABLE_TAB_FILE, TEXT("TAB"), 1},
        {kFINISHER_TABLE_TAB_FILE, TEXT(""), 1},
        {kFINISHER_TABLE_TAB_FILE, nullptr, 1},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.code, GetFinisherCode(row.table, row.name))
            << "table " << row.table << ", " << Narrow(row.name);

    EXPECT_EQ(0, GetSheetDeliveryCode(TEXT("FACEUP"), 7));
    EXPECT_EQ(1, GetSheetDeliveryCode(TEXT("FACEDOWN"), 7));
    EXPECT_EQ(7, GetSheetDeliveryCode(TEXT("FACEDOWN\r"), 7)) << "another text keeps the field";
    EXPECT_EQ(1, GetEdgeCode(TEXT("LONGEDGE")));
    EXPECT_EQ(0, GetEdgeCode(TEXT("SHORTEDGE")));
    EXPECT_EQ(2, GetEdgeCode(TEXT("LONGEDGE\r")));
    EXPECT_EQ(2, GetEdgeCode(nullptr));
}

TEST(FinisherTokens, TwentyFiveProgramsReachTheRecordAsTwentyWithTheCountOf25)
{
    Decoded decoded(FinisherReply(25, 25));
    ASSERT_EQ(STATUS_OK, decoded.status);
    EXPECT_EQ(25u, decoded.config.finisher.numPrograms);
    EXPECT_EQ("P25", Narrow(decoded.config.finisher.programs[24].name));

    TVODevMode record;
    DEVMODEEX* dm = record.m_lpDM;
    DEVMODEEX before = *dm;
    writeValuesToDevmode(&decoded.config, dm);
    EXPECT_EQ(25u, dm->dmxFinisher.numPrograms) << "the count is copied as reported";
    for (int i = 0; i < kFINISHER_MAX_PROGRAMS; i++) {
        EXPECT_EQ("P" + std::to_string(i + 1), Narrow(dm->dmxFinisher.programs[i].name)) << i;
        EXPECT_EQ(101 + i, dm->dmxFinisher.programs[i].width) << i;
    }
    EXPECT_EQ(0, memcmp(&before.dmxSheetSizeSetting, &dm->dmxSheetSizeSetting, 8))
        << "fields behind the block are not touched";
}

TEST(FinisherTokens, ACountOfZeroLeavesTheBlockButNotTheType)
{
    for (int count : {0, -1}) {
        std::string reply = "@PJL INFO CONFIG\r\nFINISHER TYPE=GFI\r\n\f" + FinisherReply(2, count);
        Decoded decoded(reply);
        TVODevMode record;
        DEVMODEEX* dm = record.m_lpDM;
        WstrCopy(dm->dmxFinisher.Model, 128, TEXT("Old model"));
        dm->dmxFinisher.numPrograms = 4;
        dm->dmxFinisherType = kFINISHER_NONE;
        TVOFinisherInfo before = dm->dmxFinisher;
        writeValuesToDevmode(&decoded.config, dm);
        EXPECT_EQ(0, memcmp(&before, &dm->dmxFinisher, sizeof(before)))
            << (count == 0 ? "NUMPROGRAMS = 0" : "no NUMPROGRAMS line");
        EXPECT_EQ(static_cast<DWORD>(kFINISHER_GFI), dm->dmxFinisherType);
    }
}

TEST(FinisherTokens, ThirtyThreeRowsFillThirtyTwoPrograms)
{
    Decoded decoded(FinisherReply(33, 33));
    const TVOPJLFinisherInfo& f = decoded.config.finisher;
    EXPECT_EQ("P32", Narrow(f.programs[31].name));
    EXPECT_EQ(132, f.programs[31].width);
    EXPECT_EQ(33u, f.numPrograms) << "the count is not compared with the rows";
}

TEST(FinisherTokens, VersionModelAndNamesAreCut)
{
    const struct
    {
        std::string version;
        const char* expected;
    } versions[] = {
        {"0.0", "0.01"}, {"0.00", "0.00"}, {"2.1", "2.1"}, {std::string(40, '7'), nullptr}};
    for (const auto& row : versions) {
        Decoded decoded(FinisherReply(1, 1, row.version));
        std::string expected = row.expected ? row.expected : std::string(15, '7');
        EXPECT_EQ(expected, Narrow(decoded.config.finisher.Version)) << row.version;
        EXPECT_EQ("P1", Narrow(decoded.config.finisher.programs[0].name))
            << "the programs go through under any version";
    }

    std::string longName(80, 'n');
    std::string reply = "@PJL INFO TVOFINISHER\r\nMODEL = " + std::string(300, 'M') +
                        "\r\nNUMPROGRAMS = 1\r\nFINISHERPROGRAMS\r\n" + kHeading + longName +
                        "\tNONE\tNONE\t1\t2\t3\tNONE\tNONE\t1\t0\tFACEUP\t0\tLONGEDGE\n\f";
    Decoded decoded(reply);
    EXPECT_EQ(std::string(63, 'M'), Narrow(decoded.config.finisher.Model));
    EXPECT_EQ(std::string(31, 'n'), Narrow(decoded.config.finisher.programs[0].name));
}

TEST(FinisherTokens, NumbersOfTheReply)
{
    Decoded decoded("@PJL INFO TVOFINISHER\r\nNUMPROGRAMS = 65539\r\nNUMBINS = 3\r\n"
                    "MINMARGIN = 5\r\nMAXMARGIN = 25\r\n\f");
    const TVOPJLFinisherInfo& f = decoded.config.finisher;
    EXPECT_EQ(3u, f.numPrograms) << "the low 16 bits of the count";
    EXPECT_EQ(3, f.numBins);
    EXPECT_EQ(5, f.minMargin);
    EXPECT_EQ(25, f.maxMargin);
}

TEST(FinisherTokens, ARowCutShortEndsTheWalk)
{
    TVOPJLConfig config;
    QLMInitPJLConfig(&config);
    getFinisherPrograms(&config, "A\tNONE\tNONE\t1\t2\t3\tNONE\tNONE\t1\t0\tFACEUP\t0\tLONGEDGE\n"
                                 "B\tNONE\tWALLET\t9\n");
    EXPECT_EQ("A", Narrow(config.finisher.programs[0].name));
    EXPECT_EQ(0, config.finisher.programs[1].name[0]) << "the half row is not taken";
    getFinisherPrograms(&config, "");
    EXPECT_EQ("A", Narrow(config.finisher.programs[0].name));
    QLMFreePJLConfig(&config);
}

TEST(FinisherTokens, ListsAreTracedNotStored)
{
    TraceCapture capture;
    SwitchGuard guard;
    g_bTraceFinisher = TRUE;
    Decoded decoded("@PJL INFO TVOFINISHER\r\nFANFOLDS = 2\r\n\tFULL_FRONT_END_LEFT\r\n"
                    "\tMIN_COMP_ENDLESS\r\nPUNCH = 1\r\n\tPUNCH_2\r\n\f");
    EXPECT_TRUE(capture.contains("ACCORDION FOLDS \tFULL_FRONT_END_LEFT")) << capture.text();
    for (int i = 0; i < 33; i++)
        EXPECT_EQ(0, decoded.config.finisher.accordionFolds[i]) << i;
    for (int i = 0; i < 17; i++)
        EXPECT_EQ(0, decoded.config.finisher.punches[i]) << i;

    capture.clear();
    const PJLTokenValue stray[] = {{TOKEN_INFO_TVOFONTS, 0}};
    ProcessFinisherTokens(stray, 0, &decoded.config, "x", 1);
    EXPECT_TRUE(capture.contains("Unhandled finisher token: 589824 (0x90000)")) << capture.text();
}

} // namespace
