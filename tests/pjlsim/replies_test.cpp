// The replies' exact bytes, written out by hand, and which lines count as queries.
#include "pjlsim_support.h"
#include "replies.h"
#include "server.h"

#include <gtest/gtest.h>

using namespace pjlsim;
using pjlsim_test::SmallProfile;

namespace {

struct ReplyRow
{
    const char* query;
    const char* expected;
};

const ReplyRow kReplies[] = {
    {"@PJL INFO ID", "@PJL INFO ID\r\n\"TEST 1\"\r\n\f"},
    {"@PJL INFO CONFIG",
     "@PJL INFO CONFIG\r\nMEMORY=1024\r\nESS SW REV=12.5\r\nSCANNER TYPE=4126\r\n"
     "FINISHER TYPE=GFI\r\n\f"},
    {"@PJL INFO VARIABLES",
     "@PJL INFO VARIABLES\r\n"
     "INROLL1SIZE = ROLL_36 [2 ENUMERATED]\r\n\tROLL_36\r\n\tROLL_A0+\r\n"
     "INROLL2SIZE = ROLL_A0+ [2 ENUMERATED]\r\n\tROLL_36\r\n\tROLL_A0+\r\n"
     "MANUALSIZE = ANY [1 ENUMERATED]\r\n\tANY\r\n"
     "INROLL1TYPE = PAPER [4 ENUMERATED]\r\n\tPAPER\r\n\tFILM\r\n\tVELLUM\r\n\tBOND\r\n"
     "INROLL2TYPE =  \"PRESENTATION_360\"\r\n"
     "MANUALTYPE =  \"\"\r\n"
     "INROLL1STAT = FULL [4 ENUMERATED]\r\n\tNONE\r\n\tFULL\r\n\tLOW\r\n\tEMPTY\r\n"
     "INROLL2STAT = LOW [4 ENUMERATED]\r\n\tNONE\r\n\tFULL\r\n\tLOW\r\n\tEMPTY\r\n"
     "MANUALSTAT = NONE [4 ENUMERATED]\r\n\tNONE\r\n\tFULL\r\n\tLOW\r\n\tEMPTY\r\n"
     "PRTACCTMODE = DISABLED [3 ENUMERATED]\r\n\tENABLED\r\n\tDISABLED\r\n\tOPTIONAL\r\n"
     "LABELFONTOBJ =  \"HELV\"\r\n"
     "RASTERSTAMPID =  \"DRAFT\"\r\n"
     "\f"},
    {"@PJL INFO TVOFONTS", "@PJL INFO TVOFONTS\r\nR/W\tDELETE\tSIZE\tOBJECT NAME\tFONT NAME\r\n"
                           "R\tN\t100\t\"HELV\"\tHelvetica\r\n\f"},
    {"@PJL INFO TVORASTERSTAMPS",
     "@PJL INFO TVORASTERSTAMPS\r\nR/W\tDELETE\tSIZE\tOBJECT NAME\r\nRW\tN\t50\t\"DRAFT\"\r\n\f"},
    {"@PJL INFO TVOFINISHER",
     "@PJL INFO TVOFINISHER\r\n"
     "MODEL = F1\r\nVERSION = 0.0\r\nNUMPROGRAMS = 1\r\nNUMBINS = 1\r\n"
     "FANFOLDS = 1\r\n\tFULL_FRONT_END_LEFT\r\nCROSSFOLDS = 0\r\nPUNCH = 0\r\nTABS = 0\r\n"
     "MINMARGIN = 0\r\nMAXMARGIN = 20\r\nFINISHERPROGRAMS\r\n"
     "NAME\tFANFOLD\tCROSSFOLD\tWIDTH\tLENGTH\tMARGIN\tPUNCH\tTAB\tBINS\tMAXLENGTH\t"
     "SHEETDELIVERY\tTITLE\tEDGE\r\n"
     "P1\tFULL_FRONT_END_LEFT\tWALLET\t210\t297\t20\tPUNCH_3\tTAB\t2\t900\tFACEDOWN\t1\t"
     "SHORTEDGE\r\n\f"},
    {"@PJL INFO STATUS",
     "@PJL INFO STATUS\r\nCODE=40000\r\nDISPLAY=\"SLEEP MODE\"\r\nONLINE=FALSE\r\n\f"},
    {"@PJL INFO MEMORY", "@PJL INFO MEMORY\r\nTOTAL=1024\r\nLARGEST=0\r\n\f"},
    {"@PJL ECHO TVOSYNC 7", "@PJL ECHO TVOSYNC 7\r\n\f"},
    {"@PJL ECHO", "@PJL ECHO\r\n\f"},
};

TEST(PjlsimReplies, EachQueryGetsItsExactBytes)
{
    const Profile profile = SmallProfile();
    for (const ReplyRow& row : kReplies) {
        std::optional<std::string> reply = BuildReply(profile, row.query);
        ASSERT_TRUE(reply) << row.query;
        EXPECT_EQ(*reply, row.expected) << row.query;
    }
    // What the printer sends back is the canonical command, however the query was written.
    EXPECT_EQ(BuildReply(profile, "\x1b%-12345X@pjl info  config \r"),
              BuildReply(profile, "@PJL INFO CONFIG"));
}

TEST(PjlsimReplies, OptionalPartsOfTheProfile)
{
    std::string error;
    auto profile = ParseProfile("finisher.model = F2\n"
                                "finisher.version = 1.0\n"
                                "finisher.program-count = 25\n"
                                "finisher.row-end = LF\n"
                                "finisher.program = P\n"
                                "config-line = IN TRAYS [1 ENUMERATED]\n"
                                "config-line = \\tINTRAY1\n"
                                "variables-line = INTRAY1SIZE = A4\n",
                                "optional", &error);
    ASSERT_TRUE(profile) << error;
    // Rows ending in a line feed alone, and a program count that is not the number of rows.
    EXPECT_NE(BuildReply(*profile, "@PJL INFO TVOFINISHER")->find("NUMPROGRAMS = 25\r\n"),
              std::string::npos);
    EXPECT_NE(BuildReply(*profile, "@PJL INFO TVOFINISHER")
                  ->find("\r\nP\tNONE\tNONE\t0\t0\t0\tNONE\tNONE\t1\t0\tFACEUP\t0\tLONGEDGE\n\f"),
              std::string::npos);
    // Raw lines go last, with "\t" for a tab; without rolls the reply has nothing else.
    EXPECT_EQ(BuildReply(*profile, "@PJL INFO CONFIG"),
              "@PJL INFO CONFIG\r\nIN TRAYS [1 ENUMERATED]\r\n\tINTRAY1\r\n\f");
    EXPECT_EQ(BuildReply(*profile, "@PJL INFO VARIABLES"),
              "@PJL INFO VARIABLES\r\nINTRAY1SIZE = A4\r\n\f");
    EXPECT_EQ(BuildReply(*profile, "@PJL INFO TVOFONTS"),
              "@PJL INFO TVOFONTS\r\nR/W\tDELETE\tSIZE\tOBJECT NAME\tFONT NAME\r\n\f");

    // A printer without a finisher still answers, with nothing but the command.
    auto bare = ParseProfile("id = BARE\n", "bare", &error);
    ASSERT_TRUE(bare) << error;
    EXPECT_EQ(BuildReply(*bare, "@PJL INFO TVOFINISHER"), "@PJL INFO TVOFINISHER\r\n\f");
    EXPECT_EQ(BuildReply(*bare, "@PJL INFO CONFIG"), "@PJL INFO CONFIG\r\n\f");
}

TEST(PjlsimReplies, LinesThatAreNoQuery)
{
    const struct
    {
        const char* line;
        const char* name; // null: no reply
    } rows[] = {
        {"@PJL INFO ID", "ID"},
        {"@PJL INFO TVORASTERSTAMPS", "TVORASTERSTAMPS"},
        {"@pjl Info tvofinisher", "TVOFINISHER"},
        {"\x1b%-12345X@PJL INFO VARIABLES", "VARIABLES"},
        {"  @PJL\tINFO   STATUS  ", "STATUS"},
        {"@PJL ECHO anything at all", "ECHO"},
        {"", nullptr},
        {"@PJL", nullptr},
        {"@PJL INFO", nullptr},
        {"@PJL INFO ECHO", nullptr},
        {"@PJL INFO IDS", nullptr},
        {"@PJL INFO ID EXTRA", nullptr},
        {"@PJL INQUIRE INROLL1SIZE", nullptr},
        {"@PJLINFO ID", nullptr},
        {"INFO ID", nullptr},
        {"\x01\xff\x7f", nullptr},
    };
    const Profile profile = SmallProfile();
    for (const auto& row : rows) {
        std::optional<std::string> name = QueryName(row.line);
        if (row.name) {
            EXPECT_EQ(name, std::string(row.name)) << "line \"" << row.line << "\"";
        } else {
            EXPECT_FALSE(name) << "line \"" << row.line << "\"";
            EXPECT_FALSE(BuildReply(profile, row.line)) << "line \"" << row.line << "\"";
        }
    }
}

TEST(PjlsimReplies, FaultOptions)
{
    const struct
    {
        const char* text;
        bool ok;
        FaultMode mode;
        const char* query;
        const char* message;
    } rows[] = {
        {"silence", true, FaultMode::Silence, "", nullptr},
        {"drip:tvofonts", true, FaultMode::Drip, "TVOFONTS", nullptr},
        {"cut:TVOFINISHER", true, FaultMode::Cut, "TVOFINISHER", nullptr},
        {"garbage:ID", true, FaultMode::Garbage, "ID", nullptr},
        {"reset:ECHO", true, FaultMode::Reset, "ECHO", nullptr},
        {"big:VARIABLES", true, FaultMode::Big, "VARIABLES", nullptr},
        {"refuse", true, FaultMode::Refuse, "", nullptr},
        {"hangup", true, FaultMode::Hangup, "", nullptr},
        {"hangup:ID", false, FaultMode::Hangup, "", "acts on the connection"},
        {"refuse:CONFIG", false, FaultMode::Refuse, "", "acts on the connection"},
        {"slow", false, FaultMode::Silence, "", "unknown fault \"slow\""},
        {"cut:FONTS", false, FaultMode::Cut, "", "unknown query \"FONTS\""},
        {"", false, FaultMode::Silence, "", "unknown fault"},
    };
    for (const auto& row : rows) {
        std::string error;
        std::optional<Fault> fault = ParseFault(row.text, &error);
        ASSERT_EQ(fault.has_value(), row.ok) << row.text << ": " << error;
        if (row.ok) {
            EXPECT_EQ(fault->mode, row.mode) << row.text;
            EXPECT_EQ(fault->query, row.query) << row.text;
        } else {
            EXPECT_NE(error.find(row.message), std::string::npos) << row.text << ": " << error;
        }
    }

    // The first fault that fits a query wins; connection faults fit no query.
    const std::vector<Fault> faults = {
        {FaultMode::Hangup, ""}, {FaultMode::Cut, "TVOFONTS"}, {FaultMode::Silence, ""}};
    EXPECT_EQ(FaultFor(faults, "TVOFONTS")->mode, FaultMode::Cut);
    EXPECT_EQ(FaultFor(faults, "ID")->mode, FaultMode::Silence);
    EXPECT_EQ(FaultFor({{FaultMode::Drip, "ID"}}, "CONFIG"), nullptr);
}

} // namespace
