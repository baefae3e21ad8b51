// The decoding half of a refresh: the parser's tokens become printer-side names in a
// TVOPJLConfig, and those names become codes of the settings record. The name in the middle
// is the seam that keeps raw wire numbers out of the record: an unknown value becomes the
// default name of its conversion.
#pragma once

#include "../devmode/devmodeex.h"
#include "tvoparsepjl.h"

#include <cstddef>

constexpr int kPJL_FINISHER_MAX_PROGRAMS = 32;

// The finisher as a refresh collects it: TVOFinisherInfo with room for 32 programs. The first
// 3620 bytes are TVOFinisherInfo's, so the block is copied into the record whole and the
// copy ends after the twentieth program.
struct TVOPJLFinisherInfo
{
    WCHAR Model[128];
    WCHAR Version[16];
    WORD numBins;
    WORD titleBlock;
    WORD minMargin;
    WORD maxMargin;
    WORD accordionFolds[33];
    WORD crossFolds[33];
    WORD punches[17];
    WORD tabs[17];
    DWORD numPrograms;
    TVOFinisherProgram programs[kPJL_FINISHER_MAX_PROGRAMS];
};
#define TVOPJLFINISHER_CHECK_INFO(name, offset, kind, width)                                       \
    static_assert(offsetof(TVOPJLFinisherInfo, name) == (offset), #name " lies at " #offset);
TVOFINISHERINFO_FIELDS(TVOPJLFINISHER_CHECK_INFO)
#undef TVOPJLFINISHER_CHECK_INFO
static_assert(offsetof(TVOPJLFinisherInfo, programs) == offsetof(TVOFinisherInfo, programs),
              "the programs start where the record's do");
static_assert(offsetof(TVOPJLFinisherInfo, programs) +
                      kFINISHER_MAX_PROGRAMS * sizeof(TVOFinisherProgram) ==
                  sizeof(TVOFinisherInfo),
              "the record's block is the first 3620 bytes");

// The refresh's record. Names without a note are constant texts; the others are allocations
// that QLMFreePJLConfig releases.
struct TVOPJLConfig
{
    DWORD dwReserved1; // 1, 0, 1 by the defaults; read by nothing here
    DWORD dwReserved2;
    DWORD dwReserved3;
    const WCHAR* scanner;
    const WCHAR* modem;
    WCHAR* firmware; // allocated
    const WCHAR* accountingMode;
    const WCHAR* rollSize[kMAX_ROLLS];
    const WCHAR* rollType[kMAX_ROLLS];
    const WCHAR* rollStat[kMAX_ROLLS];
    const WCHAR* manualSize;
    const WCHAR* manualType;
    const WCHAR* manualStat;
    WCHAR* labelFont;    // allocated
    DWORD fontListSize;  // bytes, terminators included
    WCHAR* fontList;     // allocated: zero-terminated names one after another
    WCHAR* defaultStamp; // allocated
    DWORD stampListSize;
    WCHAR* stampList; // allocated
    const WCHAR* finisherName;
    TVOPJLFinisherInfo finisher;
};

// Sizes of the conversions' results.
constexpr DWORD kPJL_LIST_BUFFER_SIZE = 4096; // a font or stamp list, in bytes
constexpr DWORD kPJL_VERSION_CCH = 16;
constexpr DWORD kPJL_OBJECT_NAME_CCH = 64; // a label font or default stamp

// Zeroes the record and sets its defaults: rolls and manual feed "Roll 36in", "Paper",
// "None"; the finisher empty.
void QLMInitPJLConfig(TVOPJLConfig* pjlConfig);
// Releases what the decoding allocated and nulls those references.
void QLMFreePJLConfig(TVOPJLConfig* pjlConfig);

// Walks count tokens in order, a later one of a kind overwriting an earlier one. String
// values are offsets into buffer (cbBuffer bytes), the buffer the tokens were parsed from.
void getValuesFromTokens(TVOPJLConfig* pjlConfig, const PJLTokenValue* tokens, DWORD count,
                         const char* buffer, DWORD cbBuffer);
// TRUE for the tokens whose value the decoder reads as text: the byte offset of a line, or of a
// list that runs to the formfeed. Every other value is a number or a list index.
BOOL QLMTokenValueIsText(DWORD token);
// One roll, manual-feed size, type or state token into its name.
void ProcessRollTokens(const PJLTokenValue* tokens, DWORD index, TVOPJLConfig* pjlConfig);
// The names into record codes, through a TVODevMode view of dm.
void writeValuesToDevmode(const TVOPJLConfig* pjlConfig, DEVMODEEX* dm);

// ---- Conversions: wire values to names --------------------------------------------------
const WCHAR* getRollType(DWORD n);
const WCHAR* getRollStat(DWORD n);
const WCHAR* getRollSize(DWORD n);
const WCHAR* getFinisherType(const char* text);
const WCHAR* getAcctMode(const char* text);
const WCHAR* getScanner(const char* text);
const WCHAR* getModem(const char* text);
// Allocations (delete[]), or null when memory is short.
WCHAR* getLabelFont(const char* text);
WCHAR* getDefaultStamp(const char* text);
WCHAR* getVersion(const char* text);
// The object names of a TVOFONTS or TVORASTERSTAMPS reply's rows, as a run of zero-terminated
// names in a block of kPJL_LIST_BUFFER_SIZE bytes; *pSize is the bytes used.
WCHAR* getFonts(const char* text, DWORD* pSize);
WCHAR* getRasterStamps(const char* text, DWORD* pSize);

// The value text of a line token: up to, not including, the first CR, LF or formfeed, within
// the buffer and cut to cbOut - 1 bytes. Returns FALSE when the offset lies outside it.
BOOL QLMCopyLineValue(char* out, DWORD cbOut, const char* buffer, DWORD cbBuffer, DWORD value,
                      const char* stops);
