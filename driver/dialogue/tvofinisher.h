// The finisher description as the printer reports it and as a description file gives it: the
// code tables of folds, punches, tabs, delivery and edge, the finisher tokens of a refresh and
// the program table of the TVOFINISHER reply. Both sources end in a TVOFinisherInfo block.
#pragma once

#include "../devmode/tvofinisherinfo.h"
#include "tvoparsepjl.h"

struct TVOPJLConfig;

// Code 1 is the wire's OTHER: every text a table does not list.
constexpr WORD kFINISHER_CODE_OTHER = 1;

// The tables of fold, punch and tab names. The tab's word differs by source on purpose: the
// printer says TAB, a description file TABS.
enum TVOFinisherCodeTable
{
    kFINISHER_TABLE_ACCORDION,
    kFINISHER_TABLE_CROSS,
    kFINISHER_TABLE_PUNCH,
    kFINISHER_TABLE_TAB_PRINTER,
    kFINISHER_TABLE_TAB_FILE,
};

// Exact comparison; kFINISHER_CODE_OTHER for anything not listed, a null text included.
WORD GetFinisherCode(TVOFinisherCodeTable table, LPCWSTR pszText);
// FACEUP 0, FACEDOWN 1; another text gives wCurrent back, so the field stays.
WORD GetSheetDeliveryCode(LPCWSTR pszText, WORD wCurrent);
// LONGEDGE 1, SHORTEDGE 0, anything else 2 (a row's CR left on the word included).
WORD GetEdgeCode(LPCWSTR pszText);

// The finisher type of the printer's FINISHERTYPE line as its name; "Not Installed" for any
// other text.
const WCHAR* getFinisherType(const char* text);

// One finisher token (or TOKEN_INFO_FINISHER_TYPE) of a refresh into pjlConfig. String values
// are read from the reply buffer the tokens were parsed from.
void ProcessFinisherTokens(const PJLTokenValue* tokens, DWORD index, TVOPJLConfig* pjlConfig,
                           const char* buffer, DWORD cbBuffer);
// The rows of the program table, tab and line-feed separated, 13 fields a row, into
// pjlConfig's programs; at most 32 rows. The count stays what NUMPROGRAMS said.
void getFinisherPrograms(TVOPJLConfig* pjlConfig, const char* text);
