// Replies of a plotter to the six INFO queries and to the questions the driver never asks,
// written out by hand as they stand on the wire: CR LF line ends, tab-indented value lists,
// a formfeed at the end of each reply.
#pragma once

#include "driver/dialogue/tvoparsepjl.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pjlfixture {

// One run of the parser over a text that lies in a heap block of exactly its length, with no
// terminator behind it, so that a read past the reply is an AddressSanitizer report.
struct Parsed
{
    int status = -1;
    std::vector<PJLTokenValue> tokens;
    size_t endOffset = 0; // where the parse stopped
    std::string text;

    // A string value's text up to its line end or formfeed, as the decoder cuts it.
    std::string line(size_t i) const
    {
        if (i >= tokens.size() || tokens[i].value >= text.size())
            return "<outside the buffer>";
        size_t start = tokens[i].value;
        size_t stop = text.find_first_of("\r\n\f", start);
        return text.substr(start, stop == std::string::npos ? std::string::npos : stop - start);
    }
};

// A token's name as 8-bit text for messages.
inline std::string Name(DWORD token)
{
    std::string name;
    for (const WCHAR* p = PJLTokenName(token); *p; p++)
        name += static_cast<char>(*p);
    return name;
}

inline Parsed Parse(const std::string& text, bool all = true, DWORD maxTokens = kPJL_MAX_TOKENS)
{
    Parsed result;
    result.text = text;
    std::vector<char> buffer(text.begin(), text.end());
    std::vector<PJLTokenValue> tokens(maxTokens + 1, PJLTokenValue{0xdeadbeef, 0xdeadbeef});
    DWORD count = 0xdeadbeef;
    const char* end = nullptr;
    TVOParsePJL parser;
    const char* data = buffer.empty() ? "" : buffer.data();
    DWORD cb = static_cast<DWORD>(buffer.size());
    result.status = all ? parser.getAllPJLTokens(data, cb, maxTokens, tokens.data(), &count, &end)
                        : parser.getPJLTokens(data, cb, maxTokens, tokens.data(), &count, &end);
    EXPECT_LE(count, maxTokens) << "the count stays within the capacity";
    if (count <= maxTokens) {
        EXPECT_EQ(0xdeadbeefu, tokens[count].token) << "nothing is written behind the count";
        tokens.resize(count);
    }
    result.tokens = tokens;
    result.endOffset = end ? static_cast<size_t>(end - data) : static_cast<size_t>(-1);
    return result;
}

inline constexpr char kInfoID[] = "@PJL INFO ID\r\n"
                                  "\"TARVO PLAN 2440\"\r\n"
                                  "\f";

// 7 tokens: MEMORY 64, DISPLAY LINES 2, DISPLAY CHARACTER SIZE 16 and four texts. The
// IN TRAYS line is unknown and is skipped with its indented values.
inline constexpr char kInfoConfig[] = "@PJL INFO CONFIG\r\n"
                                      "IN TRAYS [1 ENUMERATED]\r\n"
                                      "\tINTRAY1\r\n"
                                      "MEMORY=64\r\n"
                                      "DISPLAY LINES=2\r\n"
                                      "DISPLAY CHARACTER SIZE=16\r\n"
                                      "ESS SW REV=3.07.12\r\n"
                                      "SCANNER TYPE=CS4300\r\n"
                                      "MODEM TYPE=NONE\r\n"
                                      "FINISHER TYPE=FOLDMASTER\r\n"
                                      "\f";

// 11 tokens: the empty manual type stores nothing, RESOLUTION is unknown.
inline constexpr char kInfoVariables[] = "@PJL INFO VARIABLES\r\n"
                                         "INROLL1SIZE = ROLL_36 [3 ENUMERATED]\r\n"
                                         "\tROLL_24\r\n"
                                         "\tROLL_36\r\n"
                                         "\tROLL_42\r\n"
                                         "INROLL1TYPE =  \"FILM\"\r\n"
                                         "INROLL1STAT = FULL\r\n"
                                         "INROLL2SIZE = ROLL_A0+\r\n"
                                         "INROLL2TYPE = PAPER\r\n"
                                         "INROLL2STAT = LOW\r\n"
                                         "MANUALSIZE = ISO_A0\r\n"
                                         "MANUALTYPE =  \"\"\r\n"
                                         "MANUALSTAT = EMPTY\r\n"
                                         "RESOLUTION = 600 [2 RANGE]\r\n"
                                         "\t300\r\n"
                                         "\t600\r\n"
                                         "PRTACCTMODE = OFF\r\n"
                                         "LABELFONTOBJ = HELV\r\n"
                                         "RASTERSTAMPID = DRAFT\r\n"
                                         "\f";

// One token, whose text starts at the first font line.
inline constexpr char kInfoFonts[] = "@PJL INFO TVOFONTS\r\n"
                                     "R/W\tDELETE\tSIZE\tOBJECT NAME\tFONT NAME\r\n"
                                     "R\tN\t41020\tHELV\tHelvetica\r\n"
                                     "RW\tY\t38800\tCOUR\tCourier\r\n"
                                     "\f";

inline constexpr char kInfoRasterStamps[] = "@PJL INFO TVORASTERSTAMPS\r\n"
                                            "R/W\tDELETE\tSIZE\tOBJECT NAME\r\n"
                                            "RW\tY\t1200\tDRAFT\r\n"
                                            "RW\tY\t1400\tCONFIDENTIAL\r\n"
                                            "\f";

// 12 tokens, one per row of the finisher's list.
inline constexpr char kInfoFinisher[] =
    "@PJL INFO TVOFINISHER\r\n"
    "MODEL = FOLDMASTER 7\r\n"
    "VERSION = 2.1\r\n"
    "NUMPROGRAMS = 2\r\n"
    "NUMBINS = 3\r\n"
    "FANFOLDS = FULL_FRONT_END_LEFT,TOP_PANEL_BINDING\r\n"
    "CROSSFOLDS = Z_BACK_FROM_TOP\r\n"
    "PUNCH = PUNCH_2\r\n"
    "TABS = TABS\r\n"
    "MINMARGIN = 5\r\n"
    "MAXMARGIN = 25\r\n"
    "FINISHERPROGRAMS\r\n"
    "NAME\tFANFOLD\tCROSSFOLD\tWIDTH\tLENGTH\tMARGIN\tPUNCH\tTAB\tBINS\tMAXLENGTH\tSHEETDELIVERY"
    "\tTITLE\tEDGE\r\n"
    "A4 FOLD\tFULL_FRONT_END_LEFT\tZ_BACK_FROM_TOP\t210\t297\t20\tNONE\tNONE\t1\t5000\t0\t1\t0\r\n"
    "A3 FOLD\tFULL_BACK_END_LEFT\tNONE\t297\t420\t20\tPUNCH_2\tNONE\t2\t5000\t0\t1\t0\r\n"
    "\f";

// Replies to questions the refresh never asks; the grammar reads them all the same.
inline constexpr char kInfoMemory[] = "@PJL INFO MEMORY\r\n"
                                      "TOTAL=8388608\r\n"
                                      "LARGEST=4194304\r\n"
                                      "\f";
inline constexpr char kInfoStatus[] = "@PJL INFO STATUS\r\n"
                                      "CODE=10001\r\n"
                                      "DISPLAY=\"READY\"\r\n"
                                      "ONLINE=TRUE\r\n"
                                      "\f";
inline constexpr char kEchoMSSync[] = "@PJL ECHO MSSYNC 4711\r\n\f";
inline constexpr char kEchoTVOSync[] = "@PJL ECHO TVOSYNC 12\r\n\f";
inline constexpr char kUstatusJob[] = "@PJL USTATUS JOB\r\n"
                                      "END\r\n"
                                      "NAME=\"MSJOB 3\"\r\n"
                                      "\f";
inline constexpr char kUstatusDevice[] = "@PJL USTATUS DEVICE\r\n"
                                         "CODE=40021\r\n"
                                         "DISPLAY=\"LOAD ROLL\"\r\n"
                                         "ONLINE=FALSE\r\n"
                                         "\f";
inline constexpr char kSysStat[] = "@PJL INFO TVO_SYS_STAT\r\n"
                                   "USERJOBID=12\r\n"
                                   "NAME=\"plan.plt\"\r\n"
                                   "PAGE=1\r\n"
                                   "COPY=2\r\n"
                                   "STATE=\"PRINTING\"\r\n"
                                   "\f";

} // namespace pjlfixture
