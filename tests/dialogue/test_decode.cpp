// Decoding a refresh: the parser's tokens to names, the names to the settings record.

#include "support/tracecapture.h"

#include "driver/devmode/tvodm.h"
#include "driver/dialogue/qlmrefresh_decode.h"
#include "driver/dialogue/tvofinisher.h"
#include "driver/dialogue/tvoparsepjl.h"
#include "driver/foundation/wstr.h"

#include "dialogue/decodefixture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

using decodefixture::Decoded;
using decodefixture::Names;
using decodefixture::Narrow;

namespace {

// A plotter with three rolls, a sheet feed, two lists and a folder, written out by hand.
const std::string kReplies =
    "@PJL INFO ID\r\n\"TARVO PLAN 2440\"\r\n\f"
    "@PJL INFO CONFIG\r\n"
    "MEMORY=67108864\r\n"
    "DISPLAY LINES=2\r\n"
    "ESS SW REV=12.2\r\n"
    "SCANNER TYPE=4126\r\n"
    "MODEM TYPE=MODEM\r\n"
    "FINISHER TYPE=GERA_ANSI\r\n"
    "\f"
    "@PJL INFO VARIABLES\r\n"
    "INROLL1SIZE = ROLL_A0 [3 ENUMERATED]\r\n"
    "\tROLL_A0\r\n"
    "\tROLL_36\r\n"
    "\tROLL_24\r\n"
    "INROLL2SIZE = ROLL_36\r\n"
    "INROLL3SIZE = ROLL_24\r\n"
    "INROLL1TYPE = FILM\r\n"
    "INROLL2TYPE =  \"PRESENTATION_360\"\r\n"
    "INROLL3TYPE =  \"DISPLAY_PAPER_360\"\r\n"
    "INROLL1STAT = FULL\r\n"
    "INROLL2STAT = LOW\r\n"
    "INROLL3STAT = EMPTY\r\n"
    "MANUALSIZE = ROLL_A0+\r\n"
    "MANUALTYPE = VELLUM\r\n"
    "MANUALSTAT = FULL\r\n"
    "PRTACCTMODE = DISABLED [3 ENUMERATED]\r\n"
    "LABELFONTOBJ =  \"TIMR\"\r\n"
    "RASTERSTAMPID =  \"CONFIDENTIAL\"\r\n"
    "\f"
    "@PJL INFO TVOFONTS\r\n"
    "R/W\tDELETE\tSIZE\tOBJECT NAME\tFONT NAME\r\n"
    "R\tN\t28456\t\"HELV\"\tHelvetica\r\n"
    "R\tN\t31220\t\"TIMR\"\tTimes Roman\r\n"
    "RW\tY\t19876\t\"COUR\"\tCourier\r\n"
    "\f"
    "@PJL INFO TVORASTERSTAMPS\r\n"
    "R/W\tDELETE\tSIZE\tOBJECT NAME\r\n"
    "R\tN\t4096\t\"DRAFT\"\r\n"
    "RW\tY\t6144\t\"CONFIDENTIAL\"\r\n"
    "\f"
    "@PJL INFO TVOFINISHER\r\n"
    "MODEL = Gera Folder 2400\r\n"
    "VERSION = 2.1\r\n"
    "NUMPROGRAMS = 3\r\n"
    "NUMBINS = 2\r\n"
    "FANFOLDS = 2\r\n"
    "\tFULL_FRONT_END_LEFT\r\n"
    "\tMIN_COMP_ENDLESS\r\n"
    "CROSSFOLDS = 1\r\n"
    "\tZ_BACK_FROM_TOP\r\n"
    "PUNCH = 1\r\n"
    "\tPUNCH_2\r\n"
    "TABS = 1\r\n"
    "\tTAB\r\n"
    "MINMARGIN = 0\r\n"
    "MAXMARGIN = 40\r\n"
    "FINISHERPROGRAMS\r\n"
    "NAME\tFANFOLD\tCROSSFOLD\tWIDTH\tLENGTH\tMARGIN\tPUNCH\tTAB\tBINS\tMAXLENGTH\tSHEETDELIVERY"
    "\tTITLE\tEDGE\r\n"
    "A4_DIN\tFULL_FRONT_END_LEFT\tZ_BACK_FROM_TOP\t210\t297\t20\tPUNCH_2\tTAB\t1\t3000\tFACEUP"
    "\t1\tLONGEDGE\r\n"
    "A4_ENDLESS\tMIN_COMP_ENDLESS\tNONE\t211\t298\t21\tNONE\tTABS\t2\t15000\tFACEDOWN\t0"
    "\tSHORTEDGE\n"
    "ANSI_A_WALLET\tOTHER\tWALLET\t216\t279\t25\tPUNCH_4\tREINFORCEMENT_STRIP\t1\t5000\tSIDEWAYS"
    "\t1\tLONGEDGE\n"
    "\f";

// A default record to write into.
struct Written
{
    TVODevMode record;
    DEVMODEEX* dm() { return record.m_lpDM; }
};

TEST(DecodeTokens, SixRepliesParsedDecodedAndWritten)
{
    Decoded decoded(kReplies);
    ASSERT_EQ(STATUS_OK, decoded.status);
    const TVOPJLConfig& c = decoded.config;
    EXPECT_EQ("DISABLED", Narrow(c.accountingMode));
    EXPECT_EQ("4126", Narrow(c.scanner));
    EXPECT_EQ("Modem", Narrow(c.modem));
    EXPECT_EQ("12.2", Narrow(c.firmware));
    EXPECT_EQ("Gera Ansi", Narrow(c.finisherName));

    Written w;
    DEVMODEEX before = *w.dm();
    writeValuesToDevmode(&c, w.dm());
    DEVMODEEX* dm = w.dm();

    EXPECT_EQ(3, dm->dmxNumRolls) << "three rolls, the fourth reported as none";
    const struct
    {
        DWORD size, type, status;
        const char* what;
    } rolls[] = {
        {25, 2, 1, "roll 1: ROLL_A0, FILM, FULL"},
        {8, 5, 2, "roll 2: ROLL_36, PRESENTATION_360, LOW"},
        {5, 16, 3, "roll 3: ROLL_24, DISPLAY_PAPER_360 read as the 720 paper, EMPTY"},
        {8, 0, 0, "roll 4: the defaults"},
    };
    for (int i = 0; i < 4; i++) {
        EXPECT_EQ(rolls[i].size, dm->dmxRollSize[i]) << rolls[i].what;
        EXPECT_EQ(rolls[i].type, dm->dmxRollType[i]) << rolls[i].what;
        EXPECT_EQ(rolls[i].status, dm->dmxRollStatus[i]) << rolls[i].what;
    }
    EXPECT_EQ(before.dmxRollSize[4], dm->dmxRollSize[4]) << "rolls behind the stop keep theirs";
    EXPECT_EQ(26u, dm->dmxSheetSize) << "ROLL_A0+ is the 860 mm roll";
    EXPECT_EQ(1u, dm->dmxSheetType) << "Vellum";
    EXPECT_EQ(1u, dm->dmxSheetStatus) << "Full";
    EXPECT_EQ(26, dm->dmxFirmwareRevision) << "12.2";

    EXPECT_EQ((std::vector<std::string>{"HELV", "TIMR", "COUR"}),
              Names(dm->dmxFontList, c.fontListSize));
    EXPECT_EQ(15u * sizeof(WCHAR), c.fontListSize) << "three names of four and terminators";
    EXPECT_EQ((std::vector<std::string>{"DRAFT", "CONFIDENTIAL"}),
              Names(dm->dmxRasterStampList, c.stampListSize));
    EXPECT_EQ("TIMR", Narrow(dm->dmxDefaultFont));
    EXPECT_EQ("CONFIDENTIAL", Narrow(dm->dmxDefaultStamp));
    EXPECT_EQ(static_cast<DWORD>(kFINISHER_GERA_ANSI), dm->dmxFinisherType);
    EXPECT_EQ(before.dmxAccountingMode, dm->dmxAccountingMode)
        << "the accounting mode is not written";

    const TVOFinisherInfo& f = dm->dmxFinisher;
    EXPECT_EQ("Gera Folder 2400", Narrow(f.Model));
    EXPECT_EQ("2.1", Narrow(f.Version));
    EXPECT_EQ(3u, f.numPrograms);
    EXPECT_EQ(2, f.numBins);
    EXPECT_EQ(0, f.minMargin);
    EXPECT_EQ(40, f.maxMargin);
    for (int i = 0; i < 33; i++) {
        EXPECT_EQ(0, f.accordionFolds[i]) << "the printer's fold lists are only traced, " << i;
        EXPECT_EQ(0, f.crossFolds[i]) << i;
    }
    const struct
    {
        const char* name;
        WORD fan, cross, width, length, margin, punch, tab, bins;
        LONG maxLength;
        WORD delivery, title, edge;
        const char* what;
    } programs[] = {
        {"A4_DIN", 2, 2, 210, 297, 20, 2, 2, 1, 3000, 0, 1, 2,
         "a row ending in CR LF keeps the CR on its edge: unknown"},
        {"A4_ENDLESS", 8, 0, 211, 298, 21, 0, 1, 2, 15000, 1, 0, 0,
         "TABS is the file's word: from the printer it is OTHER"},
        {"ANSI_A_WALLET", 1, 10, 216, 279, 25, 4, 3, 1, 5000, 0, 1, 1,
         "OTHER and an unknown delivery, which leaves the field as it was"},
    };
    for (int i = 0; i < 3; i++) {
        const TVOFinisherProgram& p = f.programs[i];
        const auto& e = programs[i];
        EXPECT_EQ(e.name, Narrow(p.name)) << e.what;
        EXPECT_EQ(e.fan, p.fanFold) << e.what;
        EXPECT_EQ(e.cross, p.crossFold) << e.what;
        EXPECT_EQ(e.width, p.width) << e.what;
        EXPECT_EQ(e.length, p.length) << e.what;
        EXPECT_EQ(e.margin, p.margin) << e.what;
        EXPECT_EQ(e.punch, p.punch) << e.what;
        EXPECT_EQ(e.tab, p.tab) << e.what;
        EXPECT_EQ(e.bins, p.bins) << e.what;
        EXPECT_EQ(e.maxLength, p.maxLength) << e.what;
        EXPECT_EQ(e.delivery, p.sheetDelivery) << e.what;
        EXPECT_EQ(e.title, p.title) << e.what;
        EXPECT_EQ(e.edge, p.edge) << e.what;
    }
}

TEST(DecodeTokens, NoTokensWriteTheDefaultRollsAndNothingElse)
{
    TVOPJLConfig config;
    QLMInitPJLConfig(&config);
    getValuesFromTokens(&config, nullptr, 0, nullptr, 0);
    Written w;
    DEVMODEEX* dm = w.dm();
    dm->dmxNumRolls = 4;
    dm->dmxFirmwareRevision = 7;
    dm->dmxFinisherType = 3;
    dm->dmxFontList[0] = 'X';
    dm->dmxRasterStampList[0] = 'Y';
    dm->dmxFinisher.numPrograms = 9;
    writeValuesToDevmode(&config, dm);
    EXPECT_EQ(0, dm->dmxNumRolls);
    EXPECT_EQ(8u, dm->dmxRollSize[0]) << "Roll 36in";
    EXPECT_EQ(0u, dm->dmxRollType[0]);
    EXPECT_EQ(0u, dm->dmxRollStatus[0]);
    EXPECT_EQ(8u, dm->dmxSheetSize);
    EXPECT_EQ(0u, dm->dmxSheetType);
    EXPECT_EQ(0u, dm->dmxSheetStatus);
    EXPECT_EQ(7, dm->dmxFirmwareRevision);
    EXPECT_EQ(3u, dm->dmxFinisherType);
    EXPECT_EQ('X', dm->dmxFontList[0]);
    EXPECT_EQ('Y', dm->dmxRasterStampList[0]);
    EXPECT_EQ(9u, dm->dmxFinisher.numPrograms);
    QLMFreePJLConfig(&config);
}

TEST(DecodeTokens, TheFirstRollThatIsNoneEndsTheCount)
{
    Decoded decoded("@PJL INFO VARIABLES\r\n"
                    "INROLL1STAT = FULL\r\nINROLL2STAT = FULL\r\nINROLL3STAT = NONE\r\n"
                    "INROLL4STAT = FULL\r\nINROLL4SIZE = ROLL_42\r\n\f");
    Written w;
    w.dm()->dmxRollSize[3] = 17;
    writeValuesToDevmode(&decoded.config, w.dm());
    EXPECT_EQ(2, w.dm()->dmxNumRolls);
    EXPECT_EQ(17u, w.dm()->dmxRollSize[3]) << "roll 4 is not looked at";
}

// Wire values to record codes, through the parser's tables and the names.
TEST(DecodeTokens, WireWordsToRecordCodes)
{
    const struct
    {
        const char* line; // a VARIABLES line for roll 1 (the manual feed for sizes)
        DWORD DEVMODEEX::*field;
        DWORD code;
    } rows[] = {
        {"INROLL1SIZE = ROLL_A0", nullptr, 25},
        {"INROLL1SIZE = ROLL_36", nullptr, 8},
        {"INROLL1SIZE = ROLL_A0+", nullptr, 26},
        {"INROLL1SIZE = ISO_A0", nullptr, 20},
        {"INROLL1SIZE = LETTER", nullptr, 0},
        {"INROLL1SIZE = ROLL_B3", nullptr, 17},
        {"MANUALTYPE =  \"OUTDOOR_PAPER_360\"", &DEVMODEEX::dmxSheetType, 0},
        {"MANUALTYPE =  \"DISPLAY_PAPER_360\"", &DEVMODEEX::dmxSheetType, 16},
        {"MANUALTYPE =  \"LINE_ART_360\"", &DEVMODEEX::dmxSheetType, 19},
        {"MANUALTYPE =  \"BACKLIT_FILM_360/720\"", &DEVMODEEX::dmxSheetType, 9},
        {"MANUALTYPE = BOND", &DEVMODEEX::dmxSheetType, 0},
        {"MANUALSTAT = LOW", &DEVMODEEX::dmxSheetStatus, 2},
        {"MANUALSTAT = EMPTY", &DEVMODEEX::dmxSheetStatus, 3},
    };
    for (const auto& row : rows) {
        Decoded decoded(std::string("@PJL INFO VARIABLES\r\n") + row.line + "\r\n\f");
        Written w;
        writeValuesToDevmode(&decoded.config, w.dm());
        DWORD got = row.field ? w.dm()->*row.field : w.dm()->dmxRollSize[0];
        EXPECT_EQ(row.code, got) << row.line;
    }
}

TEST(DecodeTokens, FirmwareLevels)
{
    const struct
    {
        const char* text;
        LONG code;
    } rows[] = {{"3.0", 0}, {"10.2", 17}, {"11.0", 21}, {"12.7", 28}, {"12.8", 28}, {"", 28}};
    for (const auto& row : rows) {
        Decoded decoded(std::string("@PJL INFO CONFIG\r\nESS SW REV=") + row.text + "\r\n\f");
        Written w;
        w.dm()->dmxFirmwareRevision = -1;
        writeValuesToDevmode(&decoded.config, w.dm());
        EXPECT_EQ(row.code, w.dm()->dmxFirmwareRevision) << row.text;
    }
}

// Sample rows of the three tables and what lies past their ends.
TEST(DecodeConversions, NumbersToNames)
{
    const struct
    {
        const WCHAR* (*convert)(DWORD);
        DWORD number;
        const char* name;
    } rows[] = {
        {getRollType, 0, "Paper"},
        {getRollType, 1, "Film"},
        {getRollType, 8, "BACKLIT_FILM_360/720"},
        {getRollType, 14, "Paper"},
        {getRollType, 18, "LINE_ART_360"},
        {getRollType, 19, "Paper"},
        {getRollType, 0xFFFFFFFF, "Paper"},
        {getRollSize, 0, "Roll A0"},
        {getRollSize, 5, "Roll 860mm"},
        {getRollSize, 17, "Roll 36in"},
        {getRollSize, 27, "Roll B3"},
        {getRollSize, 28, "Roll 36in"},
        {getRollStat, 0, "None"},
        {getRollStat, 3, "Empty"},
        {getRollStat, 4, "None"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.name, Narrow(row.convert(row.number))) << row.number;

    std::set<std::string> sizes;
    for (DWORD n = 0; n < 28; n++)
        sizes.insert(Narrow(getRollSize(n)));
    EXPECT_EQ(28u, sizes.size()) << "every size has a name of its own";
}

TEST(DecodeConversions, WordsToNames)
{
    const struct
    {
        const WCHAR* (*convert)(const char*);
        const char* text;
        const char* name;
    } rows[] = {
        {getFinisherType, "GERA_ISO", "Gera Iso"},
        {getFinisherType, "GERA_ANSI", "Gera Ansi"},
        {getFinisherType, "GERA_ANSI_SPECIAL", "Gera Ansi Special"},
        {getFinisherType, "GFI", "GFI Finisher"},
        {getFinisherType, "NONE", "Not Installed"},
        {getFinisherType, "gfi", "Not Installed"},
        {getFinisherType, "GERA_ISO ", "Not Installed"},
        {getAcctMode, "ENABLED", "ENABLED"},
        {getAcctMode, "ENABLED [2 ENUMERATED]", "ENABLED"},
        {getAcctMode, "DISABLED[2 ENUMERATED]", "DISABLED"},
        {getAcctMode, "ENABLEDX", "OPTIONAL"},
        {getAcctMode, "OFF", "OPTIONAL"},
        {getAcctMode, "", "OPTIONAL"},
        {getScanner, "4126", "4126"},
        {getScanner, "4126 ", "Not Installed"},
        {getScanner, "CS4300", "Not Installed"},
        {getModem, "MODEM", "Modem"},
        {getModem, "NONE", "Not Installed"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.name, Narrow(row.convert(row.text))) << "\"" << row.text << "\"";
}

TEST(DecodeConversions, AllocatedTexts)
{
    const struct
    {
        WCHAR* (*convert)(const char*);
        const char* text;
        const char* result;
    } rows[] = {
        {getLabelFont, " \"HELV\"", "HELV"},
        {getLabelFont, "xxHELV\" trailing", "HELV"},
        {getLabelFont, " \"NOCLOSE", "NOCLOSE"},
        {getLabelFont, "\"", ""},
        {getDefaultStamp, " \"DRAFT\"", "DRAFT"},
        {getDefaultStamp, "", ""},
        {getVersion, "12.2", "12.2"},
        {getVersion, "0123456789ABCDEFGHIJ", "0123456789ABCDE"},
    };
    for (const auto& row : rows) {
        WCHAR* text = row.convert(row.text);
        ASSERT_NE(nullptr, text) << row.text;
        EXPECT_EQ(row.result, Narrow(text)) << "\"" << row.text << "\"";
        delete[] text;
    }
    std::string longName = " \"" + std::string(200, 'N') + "\"";
    WCHAR* font = getLabelFont(longName.c_str());
    EXPECT_EQ(std::string(kPJL_OBJECT_NAME_CCH - 1, 'N'), Narrow(font))
        << "cut to its 64 characters with the terminator";
    delete[] font;
}

TEST(DecodeConversions, ListsTakeTheQuotedObjectColumn)
{
    DWORD size = 0xdeadbeef;
    WCHAR* fonts =
        getFonts("R\tN\t1\t\"A\"\tAlpha\r\n\tR\tN\t2\t\"BB\"\tBeta\r\nR\tN\t3\tCC\tGamma", &size);
    ASSERT_NE(nullptr, fonts);
    EXPECT_EQ((std::vector<std::string>{"A", "BB", "C"}), Names(fonts, size))
        << "empty fields collapse; a name without quotes loses its first byte";
    delete[] fonts;

    WCHAR* stamps = getRasterStamps("R\tN\t1\t\"S1\"\r\nR\tN\t2\t\"S2\"\r\n", &size);
    ASSERT_NE(nullptr, stamps);
    EXPECT_EQ((std::vector<std::string>{"S1", "S2"}), Names(stamps, size));
    delete[] stamps;

    stamps = getRasterStamps("", &size);
    EXPECT_EQ(0u, size);
    delete[] stamps;
}

// A printer that sends more than the fields hold changes the settings and nothing beside them.
TEST(DecodeTokens, OverlongValuesAreCutAtTheirFields)
{
    std::string fonts = "@PJL INFO TVOFONTS\r\nR/W\tDELETE\tSIZE\tOBJECT NAME\tFONT NAME\r\n";
    for (int i = 0; i < 60; i++)
        fonts += "R\tN\t1\t\"" + std::string(60, static_cast<char>('A' + i % 26)) + "\"\tF\r\n";
    fonts += "\f";
    std::string stamps = "@PJL INFO TVORASTERSTAMPS\r\nR/W\tDELETE\tSIZE\tOBJECT NAME\r\n";
    for (int i = 0; i < 60; i++)
        stamps += "R\tN\t1\t\"" + std::string(70, 'S') + "\"\r\n";
    stamps += "\f";
    std::string variables = "@PJL INFO VARIABLES\r\nLABELFONTOBJ =  \"" + std::string(300, 'L') +
                            "\"\r\nRASTERSTAMPID =  \"" + std::string(300, 'D') + "\"\r\n\f";
    std::string config = "@PJL INFO CONFIG\r\nESS SW REV=" + std::string(3000, '9') +
                         "\r\nSCANNER TYPE=" + std::string(3000, '4') + "\r\n\f";
    Decoded decoded(config + variables + fonts + stamps);
    ASSERT_EQ(STATUS_OK, decoded.status);
    const TVOPJLConfig& c = decoded.config;
    EXPECT_LE(c.fontListSize, kPJL_LIST_BUFFER_SIZE);
    EXPECT_LE(c.stampListSize, kPJL_LIST_BUFFER_SIZE);
    EXPECT_EQ(std::string(15, '9'), Narrow(c.firmware));
    EXPECT_EQ("Not Installed", Narrow(c.scanner));

    Written w;
    DEVMODEEX* dm = w.dm();
    DEVMODEEX before = *dm;
    writeValuesToDevmode(&c, dm);
    EXPECT_EQ(0, memcmp(dm->dmxFontList, c.fontList, 1750)) << "1750 bytes of the list";
    EXPECT_EQ(0, memcmp(reinterpret_cast<BYTE*>(dm->dmxFontList) + 1750,
                        reinterpret_cast<BYTE*>(before.dmxFontList) + 1750,
                        sizeof(dm->dmxFontList) - 1750))
        << "the rest of the field stays";
    EXPECT_EQ(0, memcmp(dm->dmxRasterStampList, c.stampList, 1024));
    EXPECT_EQ(std::string(63, 'L'), Narrow(dm->dmxDefaultFont).substr(0, 63));
    EXPECT_EQ(0, memcmp(dm->dmxUnprintableMargin, before.dmxUnprintableMargin,
                        sizeof(dm->dmxUnprintableMargin)))
        << "the field behind the label font";
    EXPECT_EQ(std::string(47, 'D'), Narrow(dm->dmxDefaultStamp)) << "cut, with its terminator";
    EXPECT_EQ(0, memcmp(dm->dmxStampName, before.dmxStampName, sizeof(dm->dmxStampName)));
}

// Settled: lists are copied by length, and the label font without its terminator.
TEST(DecodeTokens, ShorterListsAndNamesLeaveTheOldTailBehind)
{
    Written w;
    DEVMODEEX* dm = w.dm();
    {
        Decoded longer("@PJL INFO VARIABLES\r\nLABELFONTOBJ =  \"HELVETICA\"\r\n\f"
                       "@PJL INFO TVOFONTS\r\nR/W\tDELETE\tSIZE\tOBJECT NAME\tFONT NAME\r\n"
                       "R\tN\t1\t\"LONGNAME\"\tF\r\n\f");
        writeValuesToDevmode(&longer.config, dm);
    }
    Decoded shorter("@PJL INFO VARIABLES\r\nLABELFONTOBJ =  \"TIMR\"\r\n\f"
                    "@PJL INFO TVOFONTS\r\nR/W\tDELETE\tSIZE\tOBJECT NAME\tFONT NAME\r\n"
                    "R\tN\t1\t\"AB\"\tF\r\n\f");
    writeValuesToDevmode(&shorter.config, dm);
    EXPECT_EQ("TIMRETICA", Narrow(dm->dmxDefaultFont));
    EXPECT_EQ((std::vector<std::string>{"AB", "GNAME"}), Names(dm->dmxFontList, 9 * sizeof(WCHAR)));
}

TEST(DecodeTokens, FontsWithoutALabelFontLeaveTheDefaultFont)
{
    Written w;
    WstrCopy(w.dm()->dmxDefaultFont, 65, TEXT("KEEP"));
    Decoded decoded("@PJL INFO TVOFONTS\r\nR/W\tDELETE\tSIZE\tOBJECT NAME\tFONT NAME\r\n"
                    "R\tN\t1\t\"AB\"\tF\r\n\f");
    writeValuesToDevmode(&decoded.config, w.dm());
    EXPECT_EQ("KEEP", Narrow(w.dm()->dmxDefaultFont));
    EXPECT_EQ("AB", Narrow(w.dm()->dmxFontList));
}

TEST(DecodeTokens, ALaterTokenOfAKindReplacesTheEarlier)
{
    Decoded decoded("@PJL INFO CONFIG\r\nESS SW REV=9.0\r\nESS SW REV=12.5\r\n\f"
                    "@PJL INFO VARIABLES\r\nLABELFONTOBJ =  \"A\"\r\nLABELFONTOBJ =  \"B\"\r\n"
                    "INROLL1SIZE = ROLL_24\r\nINROLL1SIZE = ROLL_42\r\n\f");
    EXPECT_EQ("12.5", Narrow(decoded.config.firmware));
    EXPECT_EQ("B", Narrow(decoded.config.labelFont));
    EXPECT_EQ("Roll 42in", Narrow(decoded.config.rollSize[0]));
}

TEST(DecodeTokens, TokensOfOtherKindsAreTracedAndDropped)
{
    TraceCapture capture;
    SwitchGuard guard;
    g_bTraceQLMRefresh = TRUE;
    g_bTraceFinisher = TRUE;
    TVOPJLConfig config;
    QLMInitPJLConfig(&config);
    const PJLTokenValue tokens[] = {
        {TOKEN_INFO_CONFIG_MEMORY, 64},    {TOKEN_INQUIRE_TRAY1SIZE, 9},
        {TOKEN_INQUIRE_ROLL1SIZE, 4711}, // a number no table gives: the default name
        {TOKEN_INQUIRE_ROLL1TYPE, 99},     {TOKEN_INQUIRE_ROLL1STAT, 7},
        {TOKEN_INFO_ESS_SW_REV, 0xFFFFFF}, // a string value outside the buffer
    };
    getValuesFromTokens(&config, tokens, 6, "x", 1);
    EXPECT_TRUE(capture.contains("PJL NOT HANDLED: Token=TOKEN_INFO_CONFIG_MEMORY 0x50000"))
        << capture.text();
    EXPECT_TRUE(capture.contains("PJL NOT HANDLED: Token=TOKEN_INQUIRE_TRAY1SIZE 0x10000"));
    EXPECT_EQ("Roll 36in", Narrow(config.rollSize[0]));
    EXPECT_EQ("Paper", Narrow(config.rollType[0]));
    EXPECT_EQ("None", Narrow(config.rollStat[0]));
    EXPECT_EQ("", Narrow(config.firmware)) << "an empty text, never bytes outside the reply";

    capture.clear();
    const PJLTokenValue stray[] = {{TOKEN_INQUIRE_PRTACCTMODE, 0}};
    ProcessRollTokens(stray, 0, &config);
    EXPECT_TRUE(capture.contains("unhandled token in ProcessRollTokens! #0"));
    QLMFreePJLConfig(&config);
    EXPECT_EQ(nullptr, config.firmware);
    EXPECT_EQ(nullptr, config.fontList);
}

TEST(DecodeTokens, DefaultsOfTheRecord)
{
    TVOPJLConfig config;
    memset(&config, 0x5A, sizeof(config));
    QLMInitPJLConfig(&config);
    EXPECT_EQ(1u, config.dwReserved1);
    EXPECT_EQ(0u, config.dwReserved2);
    EXPECT_EQ(1u, config.dwReserved3);
    for (int i = 0; i < kMAX_ROLLS; i++) {
        EXPECT_EQ("Roll 36in", Narrow(config.rollSize[i])) << i;
        EXPECT_EQ("Paper", Narrow(config.rollType[i])) << i;
        EXPECT_EQ("None", Narrow(config.rollStat[i])) << i;
    }
    EXPECT_EQ("Roll 36in", Narrow(config.manualSize));
    EXPECT_EQ(nullptr, config.firmware);
    EXPECT_EQ(nullptr, config.accountingMode);
    EXPECT_EQ(nullptr, config.finisherName);
    EXPECT_EQ(0u, config.finisher.numPrograms);
    EXPECT_EQ(0, config.finisher.Model[0]);
}

} // namespace
