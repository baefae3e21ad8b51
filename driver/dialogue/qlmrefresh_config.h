// The record a refresh fills: the printer's answers as printer-side names, before they become
// codes of the settings record. The decoder and the finisher both write it; it rests on nothing
// of theirs.
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

// What a scanner, modem or finisher is called when the printer has none.
constexpr const WCHAR* kNOT_INSTALLED = TEXT("Not Installed");

// The name of a roll, manual feed, its type or state that no answer gave.
constexpr const WCHAR* kDEFAULT_ROLL_SIZE = TEXT("Roll 36in");
constexpr const WCHAR* kDEFAULT_ROLL_TYPE = TEXT("Paper");
constexpr const WCHAR* kDEFAULT_ROLL_STAT = TEXT("None");

// Zeroes the record and sets its defaults: rolls and manual feed "Roll 36in", "Paper",
// "None"; the finisher empty.
void QLMInitPJLConfig(TVOPJLConfig* pjlConfig);
// Releases what the decoding allocated and nulls those references.
void QLMFreePJLConfig(TVOPJLConfig* pjlConfig);

// The value text of a line token: up to, not including, the first CR, LF or formfeed, within
// the buffer and cut to cbOut - 1 bytes. Returns FALSE when the offset lies outside it.
BOOL QLMCopyLineValue(char* out, DWORD cbOut, const char* buffer, DWORD cbBuffer, DWORD value,
                      const char* stops);
