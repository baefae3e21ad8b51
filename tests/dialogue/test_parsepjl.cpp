// TVOParsePJL: what a run of replies yields, and how it ends on cut, odd or hostile text.
#include "pjlfixtures.h"

#include "support/tracecapture.h"

#include "driver/dialogue/tvoparsepjl.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using pjlfixture::Parse;
using pjlfixture::Parsed;

namespace {

std::string AllSix()
{
    return std::string(pjlfixture::kInfoID) + pjlfixture::kInfoConfig + pjlfixture::kInfoVariables +
           pjlfixture::kInfoFonts + pjlfixture::kInfoRasterStamps + pjlfixture::kInfoFinisher;
}

// A token expected at a place in the output: a number, or the text a string value starts with.
struct Expected
{
    DWORD token;
    long long number; // -1: a string value, compared by text
    const char* text;
};

void ExpectTokens(const Parsed& parsed, const std::vector<Expected>& expected, const char* what)
{
    ASSERT_EQ(expected.size(), parsed.tokens.size()) << what;
    for (size_t i = 0; i < expected.size(); i++) {
        EXPECT_EQ(expected[i].token, parsed.tokens[i].token)
            << what << ", token " << i << " is " << pjlfixture::Name(parsed.tokens[i].token);
        if (expected[i].number >= 0)
            EXPECT_EQ(expected[i].number, parsed.tokens[i].value) << what << ", token " << i;
        else
            EXPECT_EQ(expected[i].text, parsed.line(i)) << what << ", token " << i;
    }
}

TEST(ParsePJL, TheSixRepliesOfARefreshInOneBuffer)
{
    Parsed parsed = Parse(AllSix());
    EXPECT_EQ(STATUS_OK, parsed.status);
    EXPECT_EQ(parsed.text.size(), parsed.endOffset) << "every byte was read";
    ExpectTokens(parsed,
                 {
                     {TOKEN_INFO_CONFIG_MEMORY, 64, nullptr},
                     {TOKEN_INFO_DISPLAY_LINES, 2, nullptr},
                     {TOKEN_INFO_DISPLAY_CHARACTER_SIZE, 16, nullptr},
                     {TOKEN_INFO_ESS_SW_REV, -1, "3.07.12"},
                     {TOKEN_INFO_SCANNER_TYPE, -1, "CS4300"},
                     {TOKEN_INFO_MODEM_TYPE, -1, "NONE"},
                     {TOKEN_INFO_FINISHER_TYPE, -1, "FOLDMASTER"},
                     {TOKEN_INQUIRE_ROLL1SIZE, 17, nullptr},
                     {TOKEN_INQUIRE_ROLL1TYPE, 1, nullptr},
                     {TOKEN_INQUIRE_ROLL1STAT, 1, nullptr},
                     {TOKEN_INQUIRE_ROLL2SIZE, 5, nullptr},
                     {TOKEN_INQUIRE_ROLL2TYPE, 0, nullptr},
                     {TOKEN_INQUIRE_ROLL2STAT, 2, nullptr},
                     {TOKEN_INQUIRE_MANUALSIZE, 1, nullptr},
                     {TOKEN_INQUIRE_MANUALSTAT, 3, nullptr},
                     {TOKEN_INQUIRE_PRTACCTMODE, -1, "OFF"},
                     {TOKEN_INQUIRE_LABELFONT, -1, "HELV"},
                     {TOKEN_INQUIRE_RASTERSTAMPID, -1, "DRAFT"},
                     {TOKEN_INFO_TVOFONTS, -1, "R\tN\t41020\tHELV\tHelvetica"},
                     {TOKEN_INFO_RASTERSTAMP, -1, "RW\tY\t1200\tDRAFT"},
                     {TOKEN_INFO_FINISHER_MODEL, -1, "FOLDMASTER 7"},
                     {TOKEN_INFO_FINISHER_VER, -1, "2.1"},
                     {TOKEN_INFO_FINISHER_NUMPROG, 2, nullptr},
                     {TOKEN_INFO_FINISHER_NUMBINS, 3, nullptr},
                     {TOKEN_INFO_FINISHER_FAN, -1, "FULL_FRONT_END_LEFT,TOP_PANEL_BINDING"},
                     {TOKEN_INFO_FINISHER_CROSS, -1, "Z_BACK_FROM_TOP"},
                     {TOKEN_INFO_FINISHER_PUNCH, -1, "PUNCH_2"},
                     {TOKEN_INFO_FINISHER_TAB, -1, "TABS"},
                     {TOKEN_INFO_FINISHER_MINMARG, 5, nullptr},
                     {TOKEN_INFO_FINISHER_MAXMARG, 25, nullptr},
                     {TOKEN_INFO_FINISHER_PROGRAMS_HEADING, -1, ""},
                     {TOKEN_INFO_FINISHER_PROGRAMS, -1,
                      "A4 FOLD\tFULL_FRONT_END_LEFT\tZ_BACK_FROM_TOP\t210\t297\t20\tNONE\tNONE\t1"
                      "\t5000\t0\t1\t0"},
                 },
                 "six replies");
}

TEST(ParsePJL, ListValuesRunToTheFormfeedAndOffsetsCountFromTheBufferStart)
{
    std::string text = AllSix();
    Parsed parsed = Parse(text);
    for (const PJLTokenValue& t : parsed.tokens) {
        if (t.token == TOKEN_INFO_TVOFONTS) {
            EXPECT_EQ(text.find("R\tN\t41020"), t.value);
            EXPECT_EQ("R\tN\t41020\tHELV\tHelvetica\r\nRW\tY\t38800\tCOUR\tCourier\r\n",
                      text.substr(t.value, text.find('\f', t.value) - t.value));
        }
    }
    const char* buffer = text.c_str();
    EXPECT_EQ(buffer + 5, PJLValueText(buffer, 10, 5));
    EXPECT_EQ(nullptr, PJLValueText(buffer, 10, 10)) << "an offset at the end is outside";
}

TEST(ParsePJL, OneCallParsesOneReplyAndStopsBehindItsFormfeed)
{
    std::string text = std::string(pjlfixture::kInfoConfig) + pjlfixture::kInfoFonts;
    Parsed one = Parse(text, false);
    EXPECT_EQ(STATUS_OK, one.status);
    EXPECT_EQ(7u, one.tokens.size());
    EXPECT_EQ(strlen(pjlfixture::kInfoConfig), one.endOffset);
}

TEST(ParsePJL, ZeroTerminatedFormsAgreeWithTheBoundedOnes)
{
    std::string text = AllSix();
    TVOParsePJL parser;
    PJLTokenValue tokens[kPJL_MAX_TOKENS];
    DWORD count = 0;
    const char* end = nullptr;
    EXPECT_EQ(STATUS_OK,
              parser.getAllPJLTokens(text.c_str(), kPJL_MAX_TOKENS, tokens, &count, &end));
    EXPECT_EQ(Parse(text).tokens.size(), count);
    EXPECT_EQ(text.c_str() + text.size(), end);
    EXPECT_EQ(STATUS_OK,
              parser.getPJLTokens(text.c_str(), kPJL_MAX_TOKENS, tokens, &count, nullptr));
    EXPECT_EQ(0u, count) << "the first reply, INFO ID, has no token";
    count = 0xdeadbeef;
    EXPECT_EQ(STATUS_NOPJL, parser.getAllPJLTokens(nullptr, kPJL_MAX_TOKENS, tokens, &count, &end));
    EXPECT_EQ(0u, count) << "no text is an empty buffer";
}

// Each reply alone: its status, count and where it stops.
struct ReplyCase
{
    const char* name;
    std::string text;
    int status;
    size_t count;
};

TEST(ParsePJL, EndsOfRepliesTable)
{
    std::string cut = pjlfixture::kInfoConfig;
    cut.resize(cut.find("ESS SW R") + 8);
    const ReplyCase cases[] = {
        {"INFO ID yields nothing and ends well", pjlfixture::kInfoID, STATUS_OK, 0},
        {"empty buffer", "", STATUS_NOPJL, 0},
        {"no @PJL", "PJL INFO CONFIG\r\nMEMORY=8\r\n\f", STATUS_NOPJL, 0},
        {"formfeed ahead of @PJL", "\f@PJL INFO CONFIG\r\nMEMORY=8\r\n\f", STATUS_NOPJL, 0},
        {"bytes ahead of @PJL are passed over", "\x01\x02xx@PJL INFO CONFIG\r\nMEMORY=8\r\n\f",
         STATUS_OK, 1},
        {"a doubled @ breaks the match and is not tried again",
         "@@PJL INFO CONFIG\r\nMEMORY=8\r\n\f", STATUS_NOPJL, 0},
        {"trailing CR LF is one more reply without @PJL",
         std::string(pjlfixture::kInfoConfig) + "\r\n", STATUS_NOPJL, 7},
        {"cut in a keyword keeps what was read", cut, STATUS_ENDOFSTREAM, 3},
        {"reply without its formfeed", "@PJL INFO CONFIG\r\nMEMORY=8\r\n", STATUS_ENDOFSTREAM, 1},
        {"digits at the very end", "@PJL INFO CONFIG\r\nMEMORY=64", STATUS_ENDOFSTREAM, 0},
        {"MEMORY=16MB stores 16, then MB is no line end",
         std::string("@PJL INFO CONFIG\r\nMEMORY=16MB\r\n\f") + pjlfixture::kInfoFonts,
         STATUS_ERROR, 1},
        {"unknown category is skipped to its formfeed", "@PJL INFO PAGECOUNT\r\n1234\r\n\f",
         STATUS_OK, 0},
        {"unknown command is skipped to its formfeed", "@PJL DINQUIRE X\r\n1\r\n\f", STATUS_OK, 0},
        {"formfeed where the category is looked for", "@PJL INFO \f", STATUS_ERROR, 0},
        {"text ends where the category is looked for", "@PJL INFO ", STATUS_ENDOFSTREAM, 0},
        {"number missing", "@PJL INFO CONFIG\r\nMEMORY=\r\n\f", STATUS_ERROR, 0},
        {"formfeed where a number is looked for", "@PJL INFO CONFIG\r\nMEMORY= \f", STATUS_ERROR,
         0},
        {"number too large to be told from failure", "@PJL ECHO MSSYNC 4294967295\r\n\f", STATUS_OK,
         0},
        {"numbers wrap at 32 bits", "@PJL ECHO MSSYNC 4294967296\r\n\f", STATUS_OK, 1},
        {"echo without the final formfeed", "@PJL ECHO MSSYNC 1\r\n", STATUS_ENDOFSTREAM, 1},
        {"echo with text behind the formfeed's line", "@PJL ECHO MSSYNC 1\r\nX\f", STATUS_ERROR, 1},
        {"echo whose line ends at the formfeed", "@PJL ECHO MSSYNC 1\f", STATUS_ERROR, 1},
        {"status with an unknown Boolean",
         "@PJL INFO STATUS\r\nCODE=1\r\nDISPLAY=\"\"\r\nONLINE=YES"
         "\r\n\f",
         STATUS_ERROR, 1},
        {"status without CODE", "@PJL INFO STATUS\r\nKODE=1\r\n\f", STATUS_ERROR, 0},
        {"memory cut after TOTAL", "@PJL INFO MEMORY\r\nTOTAL=8\r\n", STATUS_ENDOFSTREAM, 1},
        {"device online line without CR LF", "@PJL USTATUS DEVICE\r\nONLINE=TRUE\n\f", STATUS_ERROR,
         1},
    };
    for (const ReplyCase& c : cases) {
        Parsed parsed = Parse(c.text);
        EXPECT_EQ(c.status, parsed.status) << c.name;
        EXPECT_EQ(c.count, parsed.tokens.size()) << c.name;
        EXPECT_LE(parsed.endOffset, c.text.size()) << c.name;
    }
}

TEST(ParsePJL, NumbersWrapAndMinusOneIsFailure)
{
    Parsed wrapped = Parse("@PJL ECHO TVOSYNC 4294967297\r\n\f");
    ASSERT_EQ(1u, wrapped.tokens.size());
    EXPECT_EQ(TOKEN_ECHO_TVOSYNC_NUMBER, wrapped.tokens[0].token);
    EXPECT_EQ(1u, wrapped.tokens[0].value);

    ParseVars v;
    const char text[] = "  \t4294967295x";
    TVOParsePJL::initParseVars(&v, text, text, text + strlen(text), 0, nullptr);
    EXPECT_EQ(-1, TVOParsePJL::getPositiveInteger(&v));
    EXPECT_EQ(STATUS_CONTINUE, v.status) << "the number was read; only its value says failure";
    EXPECT_EQ('x', *v.pos);
}

TEST(ParsePJL, RestartRuleMissesALineEndBehindADoubledCR)
{
    // The CR that breaks "\r\r" is not tried again, so the VERSION line is taken as the rest
    // of the MODEL line.
    Parsed parsed =
        Parse("@PJL INFO TVOFINISHER\r\nMODEL = X\r\r\nVERSION = 2\r\nNUMBINS = 4\r\n\f");
    EXPECT_EQ(STATUS_OK, parsed.status);
    ExpectTokens(parsed,
                 {{TOKEN_INFO_FINISHER_MODEL, -1, "X"}, {TOKEN_INFO_FINISHER_NUMBINS, 4, nullptr}},
                 "doubled CR");
}

TEST(ParsePJL, OnlyTabIndentedLinesBelongToASkippedLine)
{
    Parsed tab = Parse("@PJL INFO VARIABLES\r\nCOPIES = 1 [2 RANGE]\r\n\tINROLL1STAT = LOW\r\n\f");
    EXPECT_EQ(STATUS_OK, tab.status);
    EXPECT_EQ(0u, tab.tokens.size()) << "the tab line is a value of COPIES";

    Parsed blank = Parse("@PJL INFO VARIABLES\r\nCOPIES = 1 [2 RANGE]\r\n INROLL1STAT = LOW\r\n\f");
    EXPECT_EQ(STATUS_OK, blank.status);
    ExpectTokens(blank, {{TOKEN_INQUIRE_ROLL1STAT, 2, nullptr}}, "blank line is looked up");
}

TEST(ParsePJL, ATabBehindTheFormfeedOfASkippedLineSwallowsTheNextReplysFirstLine)
{
    Parsed plain = Parse("@PJL INFO CONFIG\r\nUNKNOWN\f@PJL INFO CONFIG\r\nMEMORY=8\r\n\f");
    EXPECT_EQ(STATUS_OK, plain.status);
    EXPECT_EQ(1u, plain.tokens.size());

    Parsed tab = Parse("@PJL INFO CONFIG\r\nUNKNOWN\f\t@PJL INFO CONFIG\r\nMEMORY=8\r\n\f");
    EXPECT_EQ(STATUS_NOPJL, tab.status) << "the second reply lost its @PJL line";
    EXPECT_EQ(0u, tab.tokens.size());
}

TEST(ParsePJL, OutOfSpaceStopsAtTheFirstValueThatDoesNotFitAndLeavesTheRestUnread)
{
    std::string text = "@PJL INFO VARIABLES\r\n";
    for (int i = 0; i < 70; i++)
        text += i % 2 ? "INROLL1STAT = FULL\r\n" : "INROLL2STAT = LOW\r\n";
    text += "\f";
    Parsed parsed = Parse(text);
    EXPECT_EQ(STATUS_OUTOFSPACE, parsed.status);
    ASSERT_EQ(64u, parsed.tokens.size());
    EXPECT_EQ(TOKEN_INQUIRE_ROLL2STAT, parsed.tokens[0].token);
    EXPECT_EQ(TOKEN_INQUIRE_ROLL1STAT, parsed.tokens[63].token);
    EXPECT_LT(parsed.endOffset, text.size() - 5 * 19) << "later lines are not read";

    Parsed across =
        Parse(std::string(pjlfixture::kInfoConfig) + pjlfixture::kInfoVariables, true, 9);
    EXPECT_EQ(STATUS_OUTOFSPACE, across.status) << "the capacity is shared by all replies";
    EXPECT_EQ(9u, across.tokens.size());

    Parsed none = Parse(pjlfixture::kEchoMSSync, true, 0);
    EXPECT_EQ(STATUS_OUTOFSPACE, none.status);
}

TEST(ParsePJL, UnaskedRepliesTable)
{
    struct Case
    {
        const char* name;
        const char* text;
        std::vector<Expected> tokens;
    };
    const Case cases[] = {
        {"memory",
         pjlfixture::kInfoMemory,
         {{TOKEN_INFO_MEMORY_TOTAL, 8388608, nullptr},
          {TOKEN_INFO_MEMORY_LARGEST, 4194304, nullptr}}},
        {"status",
         pjlfixture::kInfoStatus,
         {{TOKEN_INFO_STATUS_CODE, 10001, nullptr}, {TOKEN_INFO_STATUS_ONLINE, 1, nullptr}}},
        {"echo MSSYNC", pjlfixture::kEchoMSSync, {{TOKEN_ECHO_MSSYNC_NUMBER, 4711, nullptr}}},
        {"echo TVOSYNC", pjlfixture::kEchoTVOSync, {{TOKEN_ECHO_TVOSYNC_NUMBER, 12, nullptr}}},
        {"job status",
         pjlfixture::kUstatusJob,
         {{TOKEN_USTATUS_JOB_END, 0, nullptr}, {TOKEN_USTATUS_JOB_NAME_MSJOB, 3, nullptr}}},
        {"device status",
         pjlfixture::kUstatusDevice,
         {{TOKEN_USTATUS_DEVICE_CODE, 40021, nullptr},
          {TOKEN_USTATUS_DEVICE_DISPLAY, -1, "\"LOAD ROLL\""},
          {TOKEN_USTATUS_DEVICE_ONLINE, 0, nullptr}}},
        {"timed status reads as device status",
         "@PJL USTATUS TIMED\r\nCODE=10001\r\n\f",
         {{TOKEN_USTATUS_DEVICE_CODE, 10001, nullptr}}},
        {"system status",
         pjlfixture::kSysStat,
         {{TOKEN_INFO_TVO_STAT_USERJOBID, 12, nullptr},
          {TOKEN_INFO_TVO_STAT_NAME, -1, "plan.plt\""},
          {TOKEN_INFO_TVO_STAT_PAGE, 1, nullptr},
          {TOKEN_INFO_TVO_STAT_COPY, 2, nullptr},
          {TOKEN_INFO_TVO_STAT_STATE, -1, "PRINTING\""}}},
    };
    for (const Case& c : cases) {
        Parsed parsed = Parse(c.text);
        EXPECT_EQ(STATUS_OK, parsed.status) << c.name;
        ExpectTokens(parsed, c.tokens, c.name);
    }
}

TEST(ParsePJL, BinaryGarbageNeverReadsPastTheBuffer)
{
    // A full receive buffer with no zero byte anywhere: the end of the buffer ends the text.
    std::string text = std::string(pjlfixture::kInfoConfig) + "@PJL INFO VARIABLES\r\n";
    unsigned seed = 12345;
    while (text.size() < kPJL_REPLY_BUFFER_SIZE) {
        seed = seed * 1103515245 + 12345;
        char c = static_cast<char>((seed >> 16) & 0xFF);
        text += c == 0 || c == '\f' ? 'A' : c;
    }
    Parsed parsed = Parse(text);
    ASSERT_GE(parsed.tokens.size(), 7u) << "the reply ahead of the garbage keeps its values";
    EXPECT_EQ(TOKEN_INFO_FINISHER_TYPE, parsed.tokens[6].token);
    EXPECT_NE(STATUS_OK, parsed.status);
    EXPECT_LE(parsed.endOffset, text.size());

    // Every prefix of a well-formed capture ends in a status, never beyond its bytes.
    std::string all = AllSix();
    for (size_t n = 0; n <= all.size(); n++) {
        Parsed prefix = Parse(all.substr(0, n));
        ASSERT_LE(prefix.endOffset, n) << "prefix of " << n;
        for (const PJLTokenValue& t : prefix.tokens)
            ASSERT_NE(u'?', PJLTokenName(t.token)[0]) << "prefix of " << n << ": " << t.token;
    }
}

TEST(ParsePJL, TracesTheMissingStartWithTheFirstBytes)
{
    SwitchGuard guard;
    TraceCapture capture;
    g_bTraceParsePJL = TRUE;
    Parse("PJL?\x01\f");
    EXPECT_TRUE(capture.contains("Can't find beginning @PJL string")) << capture.text();
    EXPECT_TRUE(capture.contains("50 4A 4C 3F 01")) << capture.text();
    capture.clear();
    Parse(pjlfixture::kInfoConfig);
    EXPECT_TRUE(capture.contains("(found FF/OK)")) << capture.text();
    capture.clear();
    Parse("@PJL INFO \f");
    EXPECT_TRUE(capture.contains("error, found FF/ERROR")) << capture.text();
}

} // namespace
