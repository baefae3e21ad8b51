// The PJL grammar row by row: each keyword written as a printer sends it, and the token and
// value it must give. The expectations are written out from the reply formats, not taken from
// the driver's tables, so that a wrong row shows.
#include "pjlfixtures.h"

#include "driver/dialogue/pjlgrammar.h"
#include "driver/dialogue/tvoparsepjl.h"

#include <gtest/gtest.h>

#include <string>

using pjlfixture::Parse;
using pjlfixture::Parsed;

namespace {

struct ValueRow
{
    const char* keyword;
    DWORD value;
};

// One variable line in a reply of its own, which must give exactly this pair and end well.
void ExpectVariable(const std::string& line, DWORD token, DWORD value, const std::string& what)
{
    Parsed parsed = Parse("@PJL INFO VARIABLES\r\n" + line + "\r\n\f");
    EXPECT_EQ(STATUS_OK, parsed.status) << what;
    ASSERT_EQ(1u, parsed.tokens.size()) << what;
    EXPECT_EQ(token, parsed.tokens[0].token) << what;
    EXPECT_EQ(value, parsed.tokens[0].value) << what;
}

// Each value for each of the six rolls and the manual feed, whose tokens follow each other.
template <size_t N>
void ExpectRollValues(const char* kind, DWORD firstToken, const ValueRow (&rows)[N])
{
    const std::string names[] = {"INROLL1", "INROLL2", "INROLL3", "INROLL4",
                                 "INROLL5", "INROLL6", "MANUAL"};
    for (const ValueRow& row : rows) {
        for (DWORD i = 0; i < 7; i++) {
            std::string line = names[i] + kind + " = " + row.keyword;
            ExpectVariable(line, firstToken + i, row.value, line);
        }
    }
}

// Samples of each family, the keywords that share a prefix, and words with no size of their own.
TEST(PJLGrammar, RollSizeKeywordsTable)
{
    const ValueRow rows[] = {
        {"ANY", 17},     {"ANSI_E", 17},   {"ARCH_30", 17}, {"ISO_A0", 1},    {"ISO_A2", 2},
        {"ISO_B3", 27},  {"ISO_B4", 17},   {"JIS_B1", 17},  {"ROLL_A0++", 6}, {"ROLL_A0+", 5},
        {"ROLL_A0", 0},  {"ROLL_A1+", 4},  {"ROLL_A1", 1},  {"ROLL_B1", 25},  {"ROLL_JIS_B3", 17},
        {"ROLL_750", 7}, {"ROLL_900", 8},  {"ROLL_11", 9},  {"ROLL_14", 17},  {"ROLL_17", 10},
        {"ROLL_22", 15}, {"ROLL_34", 12},  {"ROLL_54", 24}, {"LETTER", 9},    {"LEGAL", 9},
        {"LEDGER", 17},  {"ANY_ROLL", 17},
    };
    ExpectRollValues("SIZE", TOKEN_INQUIRE_ROLL1SIZE, rows);
}

TEST(PJLGrammar, LongerRollNamesWinAndANYShadowsItsLongerForms)
{
    // The rest of the text behind a shorter match is the rest of the line, and is skipped.
    Parsed parsed = Parse("@PJL INFO VARIABLES\r\n"
                          "INROLL1SIZE = ANY_ROLL\r\n"
                          "INROLL2SIZE = ROLL_A0+ [4 ENUMERATED]\r\n"
                          "\tROLL_A0\r\n"
                          "INROLL3SIZE = ROLL_A0++\r\n"
                          "INROLL4SIZE = ROLL_A0\r\n"
                          "INROLL5SIZE = ROLL_A1+\r\n"
                          "INROLL1STAT = NONE\r\n"
                          "\f");
    EXPECT_EQ(STATUS_OK, parsed.status);
    const DWORD expected[][2] = {{TOKEN_INQUIRE_ROLL1SIZE, 17}, {TOKEN_INQUIRE_ROLL2SIZE, 5},
                                 {TOKEN_INQUIRE_ROLL3SIZE, 6},  {TOKEN_INQUIRE_ROLL4SIZE, 0},
                                 {TOKEN_INQUIRE_ROLL5SIZE, 4},  {TOKEN_INQUIRE_ROLL1STAT, 0}};
    ASSERT_EQ(6u, parsed.tokens.size());
    for (size_t i = 0; i < 6; i++) {
        EXPECT_EQ(expected[i][0], parsed.tokens[i].token) << i;
        EXPECT_EQ(expected[i][1], parsed.tokens[i].value) << i;
    }
}

TEST(PJLGrammar, RollTypeKeywordsTable)
{
    // The quoted names need a second blank behind the "= " of the variable.
    const ValueRow rows[] = {
        {"PAPER", 0},
        {"FILM", 1},
        {"VELLUM", 2},
        {"BOND", 0},
        {" \"VELLUM\"", 2},
        {" \"PRESENTATION_360\"", 3},
        {" \"BACKLIT_FILM_360/720\"", 8},
        {" \"90_GM_GA_PAPER_360\"", 13},
        {" \"BACKLIT_FILM_360\"", 16},
        {" \"LINE_ART_360\"", 18},
        {" \"ANY\"", 0},
    };
    ExpectRollValues("TYPE", TOKEN_INQUIRE_ROLL1TYPE, rows);
}

TEST(PJLGrammar, RollTypeOddities)
{
    Parsed empty = Parse("@PJL INFO VARIABLES\r\nINROLL1TYPE =  \"\"\r\nINROLL1STAT = LOW\r\n\f");
    EXPECT_EQ(STATUS_OK, empty.status);
    ASSERT_EQ(1u, empty.tokens.size()) << "an empty type stores nothing";
    EXPECT_EQ(TOKEN_INQUIRE_ROLL1STAT, empty.tokens[0].token);

    Parsed oneBlank = Parse("@PJL INFO VARIABLES\r\nINROLL1TYPE = \"PAPER\"\r\n\f");
    EXPECT_EQ(STATUS_ERROR, oneBlank.status) << "a quoted name needs its second blank";
    EXPECT_EQ(0u, oneBlank.tokens.size());

    Parsed unknown = Parse("@PJL INFO VARIABLES\r\nINROLL1TYPE = CANVAS\r\n\f");
    EXPECT_EQ(STATUS_ERROR, unknown.status);
}

TEST(PJLGrammar, RollStateKeywordsTable)
{
    const ValueRow rows[] = {{"NONE", 0}, {"FULL", 1}, {"LOW", 2}, {"EMPTY", 3}};
    ExpectRollValues("STAT", TOKEN_INQUIRE_ROLL1STAT, rows);
}

TEST(PJLGrammar, TraySizesTableAndTheFormfeedTheyDemand)
{
    const ValueRow rows[] = {{"LETTER", 1},    {"LEGAL", 5},  {"A4", 9},
                             {"EXECUTIVE", 7}, {"COM10", 20}, {"MONARCH", 37},
                             {"C5", 28},       {"DL", 27},    {"B5", 34}};
    for (const ValueRow& row : rows) {
        for (DWORD i = 0; i < 4; i++) {
            std::string line = "INTRAY" + std::to_string(i + 1) + "SIZE = " + row.keyword;
            ExpectVariable(line, TOKEN_INQUIRE_TRAY1SIZE + i, row.value, line + " as last line");

            // Anywhere but last, the tray line ends the parse, keeping what it stored.
            Parsed parsed = Parse("@PJL INFO VARIABLES\r\n" + line +
                                  " [9 ENUMERATED]\r\n\tA4\r\nINROLL1STAT = FULL\r\n\f");
            EXPECT_EQ(STATUS_ERROR, parsed.status) << line;
            ASSERT_EQ(1u, parsed.tokens.size()) << line;
            EXPECT_EQ(row.value, parsed.tokens[0].value) << line;
        }
    }
}

TEST(PJLGrammar, StringVariablesAndUnknownOnesTable)
{
    struct Row
    {
        const char* line;
        DWORD token;
        const char* text;
    };
    const Row rows[] = {
        {"PRTACCTMODE = USERID", TOKEN_INQUIRE_PRTACCTMODE, "USERID"},
        {"LABELFONTOBJ = COUR [2 ENUMERATED]", TOKEN_INQUIRE_LABELFONT, "COUR [2 ENUMERATED]"},
        {"RASTERSTAMPID = CONFIDENTIAL", TOKEN_INQUIRE_RASTERSTAMPID, "CONFIDENTIAL"},
    };
    for (const Row& row : rows) {
        Parsed parsed = Parse(std::string("@PJL INFO VARIABLES\r\n"
                                          "PAPERMODE = FAST [2 ENUMERATED]\r\n"
                                          "\tFAST\r\n"
                                          "\tBEST\r\n") +
                              row.line + "\r\n\tHELV\r\n\f");
        EXPECT_EQ(STATUS_OK, parsed.status) << row.line;
        ASSERT_EQ(1u, parsed.tokens.size()) << row.line;
        EXPECT_EQ(row.token, parsed.tokens[0].token) << row.line;
        EXPECT_EQ(row.text, parsed.line(0)) << row.line;
    }
}

TEST(PJLGrammar, ConfigRowsTable)
{
    struct Row
    {
        const char* line;
        DWORD token;
        long long number; // -1 for a text
        const char* text;
    };
    const Row rows[] = {
        {"MEMORY=32", TOKEN_INFO_CONFIG_MEMORY, 32, nullptr},
        {"MEMORY = 48", TOKEN_INFO_CONFIG_MEMORY_SPACE, 48, nullptr},
        {"DISPLAY LINES=4", TOKEN_INFO_DISPLAY_LINES, 4, nullptr},
        {"DISPLAY CHARACTER SIZE=20", TOKEN_INFO_DISPLAY_CHARACTER_SIZE, 20, nullptr},
        {"ESS SW REV=A.02.10", TOKEN_INFO_ESS_SW_REV, -1, "A.02.10"},
        {"SCANNER TYPE=NONE", TOKEN_INFO_SCANNER_TYPE, -1, "NONE"},
        {"MODEM TYPE=V90", TOKEN_INFO_MODEM_TYPE, -1, "V90"},
        {"FINISHER TYPE=FOLDMASTER", TOKEN_INFO_FINISHER_TYPE, -1, "FOLDMASTER"},
    };
    for (const Row& row : rows) {
        Parsed parsed = Parse(std::string("@PJL INFO CONFIG\r\n") + row.line + "\r\n\f");
        EXPECT_EQ(STATUS_OK, parsed.status) << row.line;
        ASSERT_EQ(1u, parsed.tokens.size()) << row.line;
        EXPECT_EQ(row.token, parsed.tokens[0].token) << row.line;
        if (row.number >= 0)
            EXPECT_EQ(row.number, parsed.tokens[0].value) << row.line;
        else
            EXPECT_EQ(row.text, parsed.line(0)) << row.line;
    }
}

TEST(PJLGrammar, InquireIndicesRunAheadOfTheVariableTokens)
{
    // Hand-counted: the inquire list has no manual rows, so a type is one token early and a
    // state two.
    struct Row
    {
        const char* name;
        const char* value;
        DWORD token;
        DWORD number;
        int status;
    };
    const Row rows[] = {
        {"INTRAY1SIZE", "A4", TOKEN_INQUIRE_TRAY1SIZE, 9, STATUS_OK},
        {"INTRAY4SIZE", "DL", TOKEN_INQUIRE_TRAY4SIZE, 27, STATUS_OK},
        // A roll value does not end the reply, and a value list's formfeed is an error.
        {"INROLL1SIZE", "ROLL_24", TOKEN_INQUIRE_ROLL1SIZE, 16, STATUS_ERROR},
        {"INROLL6SIZE", "ROLL_42", TOKEN_INQUIRE_ROLL6SIZE, 19, STATUS_ERROR},
        {"INROLL1TYPE", "FILM", TOKEN_INQUIRE_MANUALSIZE, 1, STATUS_ERROR},
        {"INROLL2TYPE", "VELLUM", TOKEN_INQUIRE_ROLL1TYPE, 2, STATUS_ERROR},
        {"INROLL6TYPE", "PAPER", TOKEN_INQUIRE_ROLL5TYPE, 0, STATUS_ERROR},
        {"INROLL1STAT", "LOW", TOKEN_INQUIRE_ROLL6TYPE, 2, STATUS_ERROR},
        {"INROLL2STAT", "FULL", TOKEN_INQUIRE_MANUALTYPE, 1, STATUS_ERROR},
        {"INROLL6STAT", "EMPTY", TOKEN_INQUIRE_ROLL4STAT, 3, STATUS_ERROR},
    };
    for (const Row& row : rows) {
        std::string text = std::string("@PJL INQUIRE ") + row.name + "\r\n" + row.value + "\r\n\f";
        Parsed parsed = Parse(text);
        EXPECT_EQ(row.status, parsed.status) << row.name;
        ASSERT_EQ(1u, parsed.tokens.size()) << row.name;
        EXPECT_EQ(row.token, parsed.tokens[0].token) << row.name;
        EXPECT_EQ(row.number, parsed.tokens[0].value) << row.name;
    }
    Parsed manual = Parse("@PJL INQUIRE MANUALSIZE\r\nANY\r\n\f");
    EXPECT_EQ(STATUS_OK, manual.status) << "no manual rows: the reply is skipped to its formfeed";
    EXPECT_EQ(0u, manual.tokens.size());
}

TEST(PJLGrammar, TokenNamesTable)
{
    struct Row
    {
        DWORD token;
        const char16_t* name;
    };
    // Samples of each range, and numbers just outside them.
    const Row rows[] = {
        {0x10000, u"TOKEN_INQUIRE_TRAY1SIZE"},
        {0x1000a, u"TOKEN_INQUIRE_MANUALSIZE"},
        {0x1001b, u"TOKEN_INQUIRE_RASTERSTAMPID"},
        {0x20001, u"TOKEN_ECHO_TVOSYNC_NUMBER"},
        {0x40000, u"TOKEN_INFO_STATUS_CODE"},
        {0x50007, u"TOKEN_INFO_FINISHER_TYPE"},
        {0x60001, u"TOKEN_USTATUS_JOB_NAME_MSJOB"},
        {0x9002b, u"TOKEN_INFO_FINISHER_PROGRAMS"},
        {0x9003e, u"TOKEN_INFO_MEDIA_NAME_PTG"},
        {0, u"??"},
        {0x1001c, u"??"},
        {0x60002, u"??"},
        {0x90001, u"??"},
        {0x9002c, u"??"},
        {0x9003f, u"??"},
        {0xffffffff, u"??"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(std::u16string(row.name), std::u16string(PJLTokenName(row.token)))
            << std::hex << row.token;
}

TEST(PJLGrammar, QueriesAndService)
{
    const char* expected[] = {
        "@PJL INFO ID",       "@PJL INFO CONFIG",          "@PJL INFO VARIABLES",
        "@PJL INFO TVOFONTS", "@PJL INFO TVORASTERSTAMPS", "@PJL INFO TVOFINISHER"};
    for (int i = 0; i < kPJL_QUERY_COUNT; i++)
        EXPECT_STREQ(expected[i], kPJLQueries[i]) << i;
    EXPECT_EQ(nullptr, kPJLQueries[kPJL_QUERY_COUNT]);
    EXPECT_STREQ("2000", kPJLService);
    EXPECT_STREQ("\r\n", kCRLF);
    EXPECT_STREQ("\"\r\n", kQuoteCRLF);
}

} // namespace
