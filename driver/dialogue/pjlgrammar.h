// The PJL grammar the driver understands: what it asks the printer, the keyword tables the
// parser walks, the actions their rows name, and the tokens the parser hands to the decoder.
// Everything here is constant data; nothing is computed from a reply.
#pragma once

#include "../../platform/win32.h"

// ---- Tokens -------------------------------------------------------------------------------
// The high half of a token is its family, the low half its index. The list is also the table
// of names used by traces and tools.
#define QLM_PJL_TOKENS(X)                                                                          \
    X(TOKEN_INQUIRE_TRAY1SIZE, 0x10000)                                                            \
    X(TOKEN_INQUIRE_TRAY2SIZE, 0x10001)                                                            \
    X(TOKEN_INQUIRE_TRAY3SIZE, 0x10002)                                                            \
    X(TOKEN_INQUIRE_TRAY4SIZE, 0x10003)                                                            \
    X(TOKEN_INQUIRE_ROLL1SIZE, 0x10004)                                                            \
    X(TOKEN_INQUIRE_ROLL2SIZE, 0x10005)                                                            \
    X(TOKEN_INQUIRE_ROLL3SIZE, 0x10006)                                                            \
    X(TOKEN_INQUIRE_ROLL4SIZE, 0x10007)                                                            \
    X(TOKEN_INQUIRE_ROLL5SIZE, 0x10008)                                                            \
    X(TOKEN_INQUIRE_ROLL6SIZE, 0x10009)                                                            \
    X(TOKEN_INQUIRE_MANUALSIZE, 0x1000a)                                                           \
    X(TOKEN_INQUIRE_ROLL1TYPE, 0x1000b)                                                            \
    X(TOKEN_INQUIRE_ROLL2TYPE, 0x1000c)                                                            \
    X(TOKEN_INQUIRE_ROLL3TYPE, 0x1000d)                                                            \
    X(TOKEN_INQUIRE_ROLL4TYPE, 0x1000e)                                                            \
    X(TOKEN_INQUIRE_ROLL5TYPE, 0x1000f)                                                            \
    X(TOKEN_INQUIRE_ROLL6TYPE, 0x10010)                                                            \
    X(TOKEN_INQUIRE_MANUALTYPE, 0x10011)                                                           \
    X(TOKEN_INQUIRE_ROLL1STAT, 0x10012)                                                            \
    X(TOKEN_INQUIRE_ROLL2STAT, 0x10013)                                                            \
    X(TOKEN_INQUIRE_ROLL3STAT, 0x10014)                                                            \
    X(TOKEN_INQUIRE_ROLL4STAT, 0x10015)                                                            \
    X(TOKEN_INQUIRE_ROLL5STAT, 0x10016)                                                            \
    X(TOKEN_INQUIRE_ROLL6STAT, 0x10017)                                                            \
    X(TOKEN_INQUIRE_MANUALSTAT, 0x10018)                                                           \
    X(TOKEN_INQUIRE_PRTACCTMODE, 0x10019)                                                          \
    X(TOKEN_INQUIRE_LABELFONT, 0x1001a)                                                            \
    X(TOKEN_INQUIRE_RASTERSTAMPID, 0x1001b)                                                        \
    X(TOKEN_ECHO_MSSYNC_NUMBER, 0x20000)                                                           \
    X(TOKEN_ECHO_TVOSYNC_NUMBER, 0x20001)                                                          \
    X(TOKEN_INFO_MEMORY_TOTAL, 0x30000)                                                            \
    X(TOKEN_INFO_MEMORY_LARGEST, 0x30001)                                                          \
    X(TOKEN_INFO_STATUS_CODE, 0x40000)                                                             \
    X(TOKEN_INFO_STATUS_ONLINE, 0x40001)                                                           \
    X(TOKEN_INFO_CONFIG_MEMORY, 0x50000)                                                           \
    X(TOKEN_INFO_CONFIG_MEMORY_SPACE, 0x50001)                                                     \
    X(TOKEN_INFO_DISPLAY_LINES, 0x50002)                                                           \
    X(TOKEN_INFO_DISPLAY_CHARACTER_SIZE, 0x50003)                                                  \
    X(TOKEN_INFO_ESS_SW_REV, 0x50004)                                                              \
    X(TOKEN_INFO_SCANNER_TYPE, 0x50005)                                                            \
    X(TOKEN_INFO_MODEM_TYPE, 0x50006)                                                              \
    X(TOKEN_INFO_FINISHER_TYPE, 0x50007)                                                           \
    X(TOKEN_USTATUS_JOB_END, 0x60000)                                                              \
    X(TOKEN_USTATUS_JOB_NAME_MSJOB, 0x60001)                                                       \
    X(TOKEN_USTATUS_DEVICE_CODE, 0x70000)                                                          \
    X(TOKEN_USTATUS_DEVICE_DISPLAY, 0x70001)                                                       \
    X(TOKEN_USTATUS_DEVICE_ONLINE, 0x70002)                                                        \
    X(TOKEN_INFO_TVO_STAT_USERJOBID, 0x80000)                                                      \
    X(TOKEN_INFO_TVO_STAT_NAME, 0x80001)                                                           \
    X(TOKEN_INFO_TVO_STAT_PAGE, 0x80002)                                                           \
    X(TOKEN_INFO_TVO_STAT_COPY, 0x80003)                                                           \
    X(TOKEN_INFO_TVO_STAT_STATE, 0x80004)                                                          \
    X(TOKEN_INFO_TVOFONTS, 0x90000)                                                                \
    X(TOKEN_INFO_RASTERSTAMP, 0x90010)                                                             \
    X(TOKEN_INFO_FINISHER_MODEL, 0x90020)                                                          \
    X(TOKEN_INFO_FINISHER_VER, 0x90021)                                                            \
    X(TOKEN_INFO_FINISHER_NUMPROG, 0x90022)                                                        \
    X(TOKEN_INFO_FINISHER_NUMBINS, 0x90023)                                                        \
    X(TOKEN_INFO_FINISHER_FAN, 0x90024)                                                            \
    X(TOKEN_INFO_FINISHER_CROSS, 0x90025)                                                          \
    X(TOKEN_INFO_FINISHER_PUNCH, 0x90026)                                                          \
    X(TOKEN_INFO_FINISHER_TAB, 0x90027)                                                            \
    X(TOKEN_INFO_FINISHER_MINMARG, 0x90028)                                                        \
    X(TOKEN_INFO_FINISHER_MAXMARG, 0x90029)                                                        \
    X(TOKEN_INFO_FINISHER_PROGRAMS_HEADING, 0x9002a)                                               \
    X(TOKEN_INFO_FINISHER_PROGRAMS, 0x9002b)                                                       \
    X(TOKEN_INFO_MEDIA_NAME, 0x90030)                                                              \
    X(TOKEN_INFO_MEDIA_MISMATCHMODE, 0x90031)                                                      \
    X(TOKEN_INFO_MEDIA_GAMMAC, 0x90032)                                                            \
    X(TOKEN_INFO_MEDIA_GAMMAM, 0x90033)                                                            \
    X(TOKEN_INFO_MEDIA_GAMMAY, 0x90034)                                                            \
    X(TOKEN_INFO_MEDIA_GAMMAK, 0x90035)                                                            \
    X(TOKEN_INFO_MEDIA_INKLC, 0x90036)                                                             \
    X(TOKEN_INFO_MEDIA_INKLM, 0x90037)                                                             \
    X(TOKEN_INFO_MEDIA_INKLY, 0x90038)                                                             \
    X(TOKEN_INFO_MEDIA_INKLK, 0x90039)                                                             \
    X(TOKEN_INFO_MEDIA_NAME_FRA, 0x9003a)                                                          \
    X(TOKEN_INFO_MEDIA_NAME_ITA, 0x9003b)                                                          \
    X(TOKEN_INFO_MEDIA_NAME_DEU, 0x9003c)                                                          \
    X(TOKEN_INFO_MEDIA_NAME_ESP, 0x9003d)                                                          \
    X(TOKEN_INFO_MEDIA_NAME_PTG, 0x9003e)

#define QLM_PJL_DECLARE_TOKEN(name, number) constexpr DWORD name = number;
QLM_PJL_TOKENS(QLM_PJL_DECLARE_TOKEN)
#undef QLM_PJL_DECLARE_TOKEN

// The name of a token for traces and tools, "??" for a number that names no token.
const WCHAR* PJLTokenName(DWORD token);

// ---- Actions ------------------------------------------------------------------------------
// Numbers of a row's action. 0 to 10 are the slots of the parser's dispatch table; 11 is only
// meaningful in a value list reached through ACTION_GET_TOKEN_FROM_INDEX_VALUE_FROM_LIST.
constexpr DWORD ACTION_TOKEN_FROM_PARAM_VALUE_FROM_NUMBER_FF = 0;
constexpr DWORD ACTION_SET_NEW_LIST = 1;
constexpr DWORD ACTION_GET_TOTAL_AND_LARGEST_FF = 2;
constexpr DWORD ACTION_GET_CODE_AND_ONLINE_FF = 3;
constexpr DWORD ACTION_TOKEN_FROM_INDEX_SET_NEW_LIST = 4;
constexpr DWORD ACTION_SET_VALUE_FROM_PARAM_FF = 5;
constexpr DWORD ACTION_GET_TOKEN_FROM_INDEX_VALUE_FROM_NUMBER_EOL_FROM_PARAM = 6;
constexpr DWORD ACTION_SET_VALUE_FROM_PARAM = 7;
constexpr DWORD ACTION_GET_TOKEN_FROM_INDEX_VALUE_FROM_BOOLEAN_EOL = 8;
constexpr DWORD ACTION_GET_TOKEN_FROM_INDEX_VALUE_FROM_STRING_EOL = 9;
constexpr DWORD ACTION_GET_TOKEN_FROM_INDEX_VALUE_FROM_LIST = 10;
constexpr DWORD ACTION_GET_TVOMEDIA_SPECIFIC_SETTINGS = 11;
constexpr DWORD kPJL_ACTION_SLOTS = 11;

// What a list does with text where none of its keywords stands.
constexpr DWORD kPJL_NOTFOUND_SKIP_PAST_FF = 0;
constexpr DWORD kPJL_NOTFOUND_SKIP_LINE_AND_INDENTED = 1;
constexpr DWORD kPJL_NOTFOUND_SLOTS = 2;

// ---- Tables -------------------------------------------------------------------------------
struct PJLKeywordList;

// A row's param: one pointer-sized word that is a number, a list or an end string, as the
// row's action reads it.
union PJLKeywordParam
{
    UINT_PTR number;
    const PJLKeywordList* list;
    const char* string;
};

constexpr PJLKeywordParam PJLParamNone()
{
    return PJLKeywordParam{.number = 0};
}
constexpr PJLKeywordParam PJLParamNumber(DWORD n)
{
    return PJLKeywordParam{.number = n};
}
constexpr PJLKeywordParam PJLParamList(const PJLKeywordList* list)
{
    return PJLKeywordParam{.list = list};
}
constexpr PJLKeywordParam PJLParamString(const char* s)
{
    return PJLKeywordParam{.string = s};
}

// One row: the text must stand as a prefix at the current position. A row with a null text
// ends its table.
struct PJLKeyword
{
    const char* text;
    DWORD action;
    PJLKeywordParam param;
};

struct PJLKeywordList
{
    DWORD reachedFFIsOK;  // a formfeed where a keyword is looked for ends the reply well
    DWORD notFoundAction; // kPJL_NOTFOUND_...
    DWORD tokenBase;      // a row at index i that takes its token from the index makes base + i
    const PJLKeyword* keywords;
};

extern const char kCRLF[];
extern const char kQuoteCRLF[];

extern const PJLKeywordList kTopList;
extern const PJLKeywordList kInfoList;
extern const PJLKeywordList kEchoList;
extern const PJLKeywordList kInquireList;
extern const PJLKeywordList kUstatusList;
extern const PJLKeywordList kUstatusJobList;
extern const PJLKeywordList kUstatusDeviceList;
extern const PJLKeywordList kConfigList;
extern const PJLKeywordList kVariablesList;
extern const PJLKeywordList kSysStatList;
extern const PJLKeywordList kFontsList;
extern const PJLKeywordList kRasterStampsList;
extern const PJLKeywordList kFinisherList;
extern const PJLKeywordList kTraySizeValues;
extern const PJLKeywordList kRollSizeValues;
extern const PJLKeywordList kRollTypeValues;
extern const PJLKeywordList kRollStatValues;
// FALSE at index 0, TRUE at index 1; read directly, without a list head.
extern const PJLKeyword kBooleanKeywords[];

// ---- Queries ------------------------------------------------------------------------------
// Sent in this order on one connection, each followed by a lone line feed; a null ends them.
constexpr int kPJL_QUERY_COUNT = 6;
extern const char* const kPJLQueries[kPJL_QUERY_COUNT + 1];
// The TCP service the printer answers on.
extern const char kPJLService[];
