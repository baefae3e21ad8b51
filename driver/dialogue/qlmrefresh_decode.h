// The decoding half of a refresh: the parser's tokens become printer-side names in a
// TVOPJLConfig, and those names become codes of the settings record. The name in the middle
// is the seam that keeps raw wire numbers out of the record: an unknown value becomes the
// default name of its conversion.
#pragma once

#include "../devmode/devmodeex.h"
#include "qlmrefresh_config.h"
#include "tvoparsepjl.h"

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
