// The PJL grammar as constant rows. Row order matters: the first row whose whole text is a
// prefix of the input wins, so a longer keyword must stand before its own prefix.
#include "pjlgrammar.h"

const char kCRLF[] = "\r\n";
const char kQuoteCRLF[] = "\"\r\n";

const char* const kPJLQueries[kPJL_QUERY_COUNT + 1] = {"@PJL INFO ID",
                                                       "@PJL INFO CONFIG",
                                                       "@PJL INFO VARIABLES",
                                                       "@PJL INFO TVOFONTS",
                                                       "@PJL INFO TVORASTERSTAMPS",
                                                       "@PJL INFO TVOFINISHER",
                                                       nullptr};

const char kPJLService[] = "2000";

namespace {

constexpr PJLKeyword kEnd = {nullptr, 0, PJLParamNone()};

// A row that stores its param as the value (value lists).
constexpr PJLKeyword Value(const char* text, DWORD value)
{
    return {text, ACTION_SET_VALUE_FROM_PARAM, PJLParamNumber(value)};
}
// A tray row also demands the end of the reply behind its line.
constexpr PJLKeyword TrayValue(const char* text, DWORD value)
{
    return {text, ACTION_SET_VALUE_FROM_PARAM_FF, PJLParamNumber(value)};
}
constexpr PJLKeyword NumberLine(const char* text, const char* end = kCRLF)
{
    return {text, ACTION_GET_TOKEN_FROM_INDEX_VALUE_FROM_NUMBER_EOL_FROM_PARAM,
            PJLParamString(end)};
}
constexpr PJLKeyword StringLine(const char* text)
{
    return {text, ACTION_GET_TOKEN_FROM_INDEX_VALUE_FROM_STRING_EOL, PJLParamNone()};
}
constexpr PJLKeyword GoTo(const char* text, const PJLKeywordList* list)
{
    return {text, ACTION_SET_NEW_LIST, PJLParamList(list)};
}
constexpr PJLKeyword TokenAndGoTo(const char* text, const PJLKeywordList* list)
{
    return {text, ACTION_TOKEN_FROM_INDEX_SET_NEW_LIST, PJLParamList(list)};
}
constexpr PJLKeyword FromList(const char* text, const PJLKeywordList* list)
{
    return {text, ACTION_GET_TOKEN_FROM_INDEX_VALUE_FROM_LIST, PJLParamList(list)};
}

// ---- Value lists ----------------------------------------------------------------------------

// Standard paper codes of the platform's DEVMODE.
constexpr PJLKeyword kTraySizeRows[] = {TrayValue("LETTER", 1), TrayValue("LEGAL", 5),
                                        TrayValue("A4", 9),     TrayValue("EXECUTIVE", 7),
                                        TrayValue("COM10", 20), TrayValue("MONARCH", 37),
                                        TrayValue("C5", 28),    TrayValue("DL", 27),
                                        TrayValue("B5", 34),    kEnd};

// Roll size indexes; 17 is the driver's default for a roll it has no size for. ISO_A0 giving
// the A1 roll, LETTER and LEGAL giving the 11 inch roll, and ANY shadowing the ANY_ rows are
// settled behaviour that stored records already reflect: they stay.
constexpr PJLKeyword kRollSizeRows[] = {Value("ANY", 17),         Value("ANSI_A", 17),
                                        Value("ANSI_B", 17),      Value("ANSI_C", 17),
                                        Value("ANSI_D", 17),      Value("ANSI_E", 17),
                                        Value("ARCH_A", 17),      Value("ARCH_B", 17),
                                        Value("ARCH_C", 17),      Value("ARCH_D", 17),
                                        Value("ARCH_E", 17),      Value("ARCH_30", 17),
                                        Value("ISO_A0", 1),       Value("ISO_A1", 1),
                                        Value("ISO_A2", 2),       Value("ISO_A3", 3),
                                        Value("ISO_A4", 17),      Value("ISO_B1", 25),
                                        Value("ISO_B2", 26),      Value("ISO_B3", 27),
                                        Value("ISO_B4", 17),      Value("JIS_B1", 17),
                                        Value("JIS_B2", 17),      Value("JIS_B3", 17),
                                        Value("JIS_B4", 17),      Value("ROLL_A0++", 6),
                                        Value("ROLL_A0+", 5),     Value("ROLL_A0", 0),
                                        Value("ROLL_A1+", 4),     Value("ROLL_A1", 1),
                                        Value("ROLL_A2", 2),      Value("ROLL_A3", 3),
                                        Value("ROLL_B1", 25),     Value("ROLL_B2", 26),
                                        Value("ROLL_B3", 27),     Value("ROLL_JIS_B1", 17),
                                        Value("ROLL_JIS_B2", 17), Value("ROLL_JIS_B3", 17),
                                        Value("ROLL_750", 7),     Value("ROLL_900", 8),
                                        Value("ROLL_11", 9),      Value("ROLL_14", 17),
                                        Value("ROLL_15", 17),     Value("ROLL_17", 10),
                                        Value("ROLL_21", 17),     Value("ROLL_22", 15),
                                        Value("ROLL_34", 12),     Value("ROLL_30", 13),
                                        Value("ROLL_12", 11),     Value("ROLL_18", 14),
                                        Value("ROLL_24", 16),     Value("ROLL_36", 17),
                                        Value("ROLL_38", 18),     Value("ROLL_42", 19),
                                        Value("ROLL_44", 20),     Value("ROLL_48", 21),
                                        Value("ROLL_50", 22),     Value("ROLL_53", 23),
                                        Value("ROLL_54", 24),     Value("LETTER", 9),
                                        Value("LEGAL", 9),        Value("LEDGER", 17),
                                        Value("ANY_ANSI", 17),    Value("ANY_ISO", 17),
                                        Value("ANY_ARCH", 17),    Value("ANY_JIS", 17),
                                        Value("ANY_ROLL", 17),    kEnd};

// The quoted names are compared directly behind the "= " that led here, so their rows carry
// a blank of their own. An empty name leaves the roll's type at its default.
constexpr PJLKeyword kRollTypeRows[] = {
    Value("PAPER", 0),
    Value("FILM", 1),
    Value("VELLUM", 2),
    Value("BOND", 0),
    {" \"\"", ACTION_GET_TVOMEDIA_SPECIFIC_SETTINGS, PJLParamNone()},
    Value(" \"PAPER\"", 0),
    Value(" \"FILM\"", 1),
    Value(" \"VELLUM\"", 2),
    Value(" \"BOND\"", 0),
    Value(" \"PRESENTATION_360\"", 3),
    Value(" \"PRESENTATION_720\"", 4),
    Value(" \"PRODUCTION_360\"", 5),
    Value(" \"REINFORCED_PAPER_360\"", 6),
    Value(" \"WHITE_MATTE_FILM_360\"", 7),
    Value(" \"BACKLIT_FILM_360/720\"", 8),
    Value(" \"POLY_CLOTH_360\"", 9),
    Value(" \"POLY_CANVAS_360\"", 10),
    Value(" \"PSV_360\"", 11),
    Value(" \"PHOTOGLOSSY_PAPER_360\"", 12),
    Value(" \"90_GM_GA_PAPER_360\"", 13),
    Value(" \"OUTDOOR_PAPER_360\"", 14),
    Value(" \"DISPLAY_PAPER_360\"", 15),
    Value(" \"BACKLIT_FILM_360\"", 16),
    Value(" \"BACKLIT_FILM_720\"", 17),
    Value(" \"LINE_ART_360\"", 18),
    Value(" \"ANY\"", 0),
    kEnd};

constexpr PJLKeyword kRollStatRows[] = {Value("NONE", 0), Value("FULL", 1), Value("LOW", 2),
                                        Value("EMPTY", 3), kEnd};

} // namespace

constinit const PJLKeyword kBooleanKeywords[] = {
    {"FALSE", 0, PJLParamNone()}, {"TRUE", 0, PJLParamNone()}, kEnd};

constinit const PJLKeywordList kTraySizeValues = {0, kPJL_NOTFOUND_SKIP_PAST_FF, 0, kTraySizeRows};
constinit const PJLKeywordList kRollSizeValues = {0, kPJL_NOTFOUND_SKIP_PAST_FF, 0, kRollSizeRows};
constinit const PJLKeywordList kRollTypeValues = {0, kPJL_NOTFOUND_SKIP_PAST_FF, 0, kRollTypeRows};
constinit const PJLKeywordList kRollStatValues = {0, kPJL_NOTFOUND_SKIP_PAST_FF, 0, kRollStatRows};

// ---- Lists behind a category ----------------------------------------------------------------
namespace {

constexpr PJLKeyword kConfigRows[] = {NumberLine("MEMORY="),
                                      NumberLine("MEMORY = "),
                                      NumberLine("DISPLAY LINES="),
                                      NumberLine("DISPLAY CHARACTER SIZE="),
                                      StringLine("ESS SW REV="),
                                      StringLine("SCANNER TYPE="),
                                      StringLine("MODEM TYPE="),
                                      StringLine("FINISHER TYPE="),
                                      kEnd};

// Laid out so that index = token - TOKEN_INQUIRE_TRAY1SIZE.
constexpr PJLKeyword kVariablesRows[] = {FromList("INTRAY1SIZE = ", &kTraySizeValues),
                                         FromList("INTRAY2SIZE = ", &kTraySizeValues),
                                         FromList("INTRAY3SIZE = ", &kTraySizeValues),
                                         FromList("INTRAY4SIZE = ", &kTraySizeValues),
                                         FromList("INROLL1SIZE = ", &kRollSizeValues),
                                         FromList("INROLL2SIZE = ", &kRollSizeValues),
                                         FromList("INROLL3SIZE = ", &kRollSizeValues),
                                         FromList("INROLL4SIZE = ", &kRollSizeValues),
                                         FromList("INROLL5SIZE = ", &kRollSizeValues),
                                         FromList("INROLL6SIZE = ", &kRollSizeValues),
                                         FromList("MANUALSIZE = ", &kRollSizeValues),
                                         FromList("INROLL1TYPE = ", &kRollTypeValues),
                                         FromList("INROLL2TYPE = ", &kRollTypeValues),
                                         FromList("INROLL3TYPE = ", &kRollTypeValues),
                                         FromList("INROLL4TYPE = ", &kRollTypeValues),
                                         FromList("INROLL5TYPE = ", &kRollTypeValues),
                                         FromList("INROLL6TYPE = ", &kRollTypeValues),
                                         FromList("MANUALTYPE = ", &kRollTypeValues),
                                         FromList("INROLL1STAT = ", &kRollStatValues),
                                         FromList("INROLL2STAT = ", &kRollStatValues),
                                         FromList("INROLL3STAT = ", &kRollStatValues),
                                         FromList("INROLL4STAT = ", &kRollStatValues),
                                         FromList("INROLL5STAT = ", &kRollStatValues),
                                         FromList("INROLL6STAT = ", &kRollStatValues),
                                         FromList("MANUALSTAT = ", &kRollStatValues),
                                         StringLine("PRTACCTMODE = "),
                                         StringLine("LABELFONTOBJ = "),
                                         StringLine("RASTERSTAMPID = "),
                                         kEnd};

// No manual rows here, so from INROLL1TYPE on the index runs ahead of the token layout of the
// variables; the tokens keep that shift.
constexpr PJLKeyword kInquireRows[] = {TokenAndGoTo("INTRAY1SIZE\r\n", &kTraySizeValues),
                                       TokenAndGoTo("INTRAY2SIZE\r\n", &kTraySizeValues),
                                       TokenAndGoTo("INTRAY3SIZE\r\n", &kTraySizeValues),
                                       TokenAndGoTo("INTRAY4SIZE\r\n", &kTraySizeValues),
                                       TokenAndGoTo("INROLL1SIZE\r\n", &kRollSizeValues),
                                       TokenAndGoTo("INROLL2SIZE\r\n", &kRollSizeValues),
                                       TokenAndGoTo("INROLL3SIZE\r\n", &kRollSizeValues),
                                       TokenAndGoTo("INROLL4SIZE\r\n", &kRollSizeValues),
                                       TokenAndGoTo("INROLL5SIZE\r\n", &kRollSizeValues),
                                       TokenAndGoTo("INROLL6SIZE\r\n", &kRollSizeValues),
                                       TokenAndGoTo("INROLL1TYPE\r\n", &kRollTypeValues),
                                       TokenAndGoTo("INROLL2TYPE\r\n", &kRollTypeValues),
                                       TokenAndGoTo("INROLL3TYPE\r\n", &kRollTypeValues),
                                       TokenAndGoTo("INROLL4TYPE\r\n", &kRollTypeValues),
                                       TokenAndGoTo("INROLL5TYPE\r\n", &kRollTypeValues),
                                       TokenAndGoTo("INROLL6TYPE\r\n", &kRollTypeValues),
                                       TokenAndGoTo("INROLL1STAT\r\n", &kRollStatValues),
                                       TokenAndGoTo("INROLL2STAT\r\n", &kRollStatValues),
                                       TokenAndGoTo("INROLL3STAT\r\n", &kRollStatValues),
                                       TokenAndGoTo("INROLL4STAT\r\n", &kRollStatValues),
                                       TokenAndGoTo("INROLL5STAT\r\n", &kRollStatValues),
                                       TokenAndGoTo("INROLL6STAT\r\n", &kRollStatValues),
                                       kEnd};

constexpr PJLKeyword kEchoRows[] = {{"MSSYNC", ACTION_TOKEN_FROM_PARAM_VALUE_FROM_NUMBER_FF,
                                     PJLParamNumber(TOKEN_ECHO_MSSYNC_NUMBER)},
                                    {"TVOSYNC", ACTION_TOKEN_FROM_PARAM_VALUE_FROM_NUMBER_FF,
                                     PJLParamNumber(TOKEN_ECHO_TVOSYNC_NUMBER)},
                                    kEnd};

constexpr PJLKeyword kUstatusJobRows[] = {Value("END\r\n", 0),
                                          NumberLine("NAME=\"MSJOB ", kQuoteCRLF), kEnd};

constexpr PJLKeyword kUstatusDeviceRows[] = {
    NumberLine("CODE="),
    StringLine("DISPLAY="),
    {"ONLINE=", ACTION_GET_TOKEN_FROM_INDEX_VALUE_FROM_BOOLEAN_EOL, PJLParamString(kCRLF)},
    kEnd};

constexpr PJLKeyword kSysStatRows[] = {NumberLine("USERJOBID="), StringLine("NAME=\""),
                                       NumberLine("PAGE="),      NumberLine("COPY="),
                                       StringLine("STATE=\""),   kEnd};

constexpr PJLKeyword kFontsRows[] = {StringLine("R/W\tDELETE\tSIZE\tOBJECT NAME\tFONT NAME\r\n"),
                                     kEnd};

constexpr PJLKeyword kRasterStampsRows[] = {StringLine("R/W\tDELETE\tSIZE\tOBJECT NAME\r\n"), kEnd};

constexpr PJLKeyword kFinisherRows[] = {
    StringLine("MODEL = "),
    StringLine("VERSION = "),
    NumberLine("NUMPROGRAMS = "),
    NumberLine("NUMBINS = "),
    StringLine("FANFOLDS = "),
    StringLine("CROSSFOLDS = "),
    StringLine("PUNCH = "),
    StringLine("TABS = "),
    NumberLine("MINMARGIN = "),
    NumberLine("MAXMARGIN = "),
    StringLine("FINISHERPROGRAMS"),
    StringLine("NAME\tFANFOLD\tCROSSFOLD\tWIDTH\tLENGTH\tMARGIN\tPUNCH\tTAB\tBINS\tMAXLENGTH\t"
               "SHEETDELIVERY\tTITLE\tEDGE\r\n"),
    kEnd};

} // namespace

constinit const PJLKeywordList kConfigList = {1, kPJL_NOTFOUND_SKIP_LINE_AND_INDENTED,
                                              TOKEN_INFO_CONFIG_MEMORY, kConfigRows};
constinit const PJLKeywordList kVariablesList = {1, kPJL_NOTFOUND_SKIP_LINE_AND_INDENTED,
                                                 TOKEN_INQUIRE_TRAY1SIZE, kVariablesRows};
constinit const PJLKeywordList kSysStatList = {1, kPJL_NOTFOUND_SKIP_LINE_AND_INDENTED,
                                               TOKEN_INFO_TVO_STAT_USERJOBID, kSysStatRows};
constinit const PJLKeywordList kFontsList = {1, kPJL_NOTFOUND_SKIP_LINE_AND_INDENTED,
                                             TOKEN_INFO_TVOFONTS, kFontsRows};
constinit const PJLKeywordList kRasterStampsList = {1, kPJL_NOTFOUND_SKIP_LINE_AND_INDENTED,
                                                    TOKEN_INFO_RASTERSTAMP, kRasterStampsRows};
constinit const PJLKeywordList kFinisherList = {1, kPJL_NOTFOUND_SKIP_LINE_AND_INDENTED,
                                                TOKEN_INFO_FINISHER_MODEL, kFinisherRows};
constinit const PJLKeywordList kInquireList = {0, kPJL_NOTFOUND_SKIP_PAST_FF,
                                               TOKEN_INQUIRE_TRAY1SIZE, kInquireRows};
constinit const PJLKeywordList kEchoList = {1, kPJL_NOTFOUND_SKIP_PAST_FF, 0, kEchoRows};
constinit const PJLKeywordList kUstatusJobList = {1, kPJL_NOTFOUND_SKIP_PAST_FF,
                                                  TOKEN_USTATUS_JOB_END, kUstatusJobRows};
constinit const PJLKeywordList kUstatusDeviceList = {1, kPJL_NOTFOUND_SKIP_PAST_FF,
                                                     TOKEN_USTATUS_DEVICE_CODE, kUstatusDeviceRows};

// ---- Categories -------------------------------------------------------------------------------
namespace {

// Every category row ends in CR LF; ID has none, so an ID reply is skipped to its formfeed.
constexpr PJLKeyword kInfoRows[] = {{"MEMORY\r\n", ACTION_GET_TOTAL_AND_LARGEST_FF, PJLParamNone()},
                                    {"STATUS\r\n", ACTION_GET_CODE_AND_ONLINE_FF, PJLParamNone()},
                                    GoTo("CONFIG\r\n", &kConfigList),
                                    GoTo("VARIABLES\r\n", &kVariablesList),
                                    GoTo("TVO_SYS_STAT\r\n", &kSysStatList),
                                    GoTo("TVOFONTS\r\n", &kFontsList),
                                    GoTo("TVORASTERSTAMPS\r\n", &kRasterStampsList),
                                    GoTo("TVOFINISHER\r\n", &kFinisherList),
                                    kEnd};

// The second DEVICE row can never win, since the first one matches the same text; it is kept
// so that the rows stay as they have always been.
constexpr PJLKeyword kUstatusRows[] = {
    TokenAndGoTo("JOB\r\n", &kUstatusJobList),
    TokenAndGoTo("DEVICE\r\n", &kUstatusDeviceList),
    {"DEVICE\r\n", ACTION_GET_CODE_AND_ONLINE_FF, PJLParamNone()},
    TokenAndGoTo("TIMED\r\n", &kUstatusDeviceList),
    kEnd};

} // namespace

constinit const PJLKeywordList kInfoList = {0, kPJL_NOTFOUND_SKIP_PAST_FF, 0, kInfoRows};
constinit const PJLKeywordList kUstatusList = {1, kPJL_NOTFOUND_SKIP_PAST_FF, TOKEN_USTATUS_JOB_END,
                                               kUstatusRows};

namespace {

constexpr PJLKeyword kTopRows[] = {GoTo("INFO", &kInfoList), GoTo("ECHO", &kEchoList),
                                   GoTo("INQUIRE", &kInquireList), GoTo("USTATUS", &kUstatusList),
                                   kEnd};

// ---- Token names ----------------------------------------------------------------------------
struct PJLTokenNameRow
{
    DWORD token;
    const WCHAR* name;
};

#define QLM_PJL_TOKEN_NAME_ROW(name, number) {name, QLM_PJL_WIDEN(#name)},
#define QLM_PJL_WIDEN(s)                     TEXT(s)
constexpr PJLTokenNameRow kTokenNames[] = {QLM_PJL_TOKENS(QLM_PJL_TOKEN_NAME_ROW)};
#undef QLM_PJL_TOKEN_NAME_ROW

} // namespace

constinit const PJLKeywordList kTopList = {0, kPJL_NOTFOUND_SKIP_PAST_FF, 0, kTopRows};

const WCHAR* PJLTokenName(DWORD token)
{
    // Rows are in ascending order, and the table is short.
    for (const PJLTokenNameRow& row : kTokenNames) {
        if (row.token == token)
            return row.name;
        if (row.token > token)
            break;
    }
    return TEXT("??");
}
