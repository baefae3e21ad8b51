// TVOParsePJL: the table-driven parser of the printer's PJL replies. It walks the keyword
// tables of pjlgrammar.h over the reply text and writes (token, value) pairs; what a token
// means is the decoder's business. It never allocates and never copies text: a string value
// is the byte offset of its first byte from the start of the reply buffer.
//
// A hostile printer decides what is in the buffer, so every read is bounded by the buffer's
// end as well as by its zero byte, and every write by the capacity of the token array.
#pragma once

#include "pjlgrammar.h"

// What the refresh gives the parser: all six replies in one buffer, and room for 64 pairs.
constexpr DWORD kPJL_REPLY_BUFFER_SIZE = 32768;
constexpr DWORD kPJL_MAX_TOKENS = 64;

constexpr int STATUS_OK = 0;          // this reply was parsed to its end
constexpr int STATUS_ENDOFSTREAM = 1; // the zero byte (or the end of the buffer) was met
constexpr int STATUS_ERROR = 2;       // the text does not fit the grammar
constexpr int STATUS_NOPJL = 3;       // no "@PJL" at the start
constexpr int STATUS_OUTOFSPACE = 4;  // the token array is full
constexpr int STATUS_REACHEDFF = 5;   // a formfeed was met; callers turn it into OK or ERROR
constexpr int STATUS_CONTINUE = 6;    // parsing goes on

struct PJLTokenValue
{
    DWORD token;
    DWORD value; // a number, 0/1, an index, or the byte offset of a string in the reply buffer
};
static_assert(sizeof(PJLTokenValue) == 8, "two 32-bit words on every platform");

// The text a string value refers to, or null when the offset lies outside the buffer. The text
// is not terminated where the value ends: the reader cuts it at the line end or formfeed.
inline const char* PJLValueText(const char* buffer, DWORD cbBuffer, DWORD value)
{
    return buffer && value < cbBuffer ? buffer + value : nullptr;
}

// The state of one reply's parse.
struct ParseVars
{
    const char* pos; // current position in the reply text
    DWORD remaining; // free elements of the output array
    DWORD count;     // elements written
    PJLTokenValue* out;
    DWORD token;      // the current token
    int keywordIndex; // index of the row found last
    int status;
    const PJLKeywordList* list;     // the list being tried
    const PJLKeyword* keywords;     // the rows being searched
    const PJLKeywordList* lists[2]; // zero-terminated; the second slot stays zero
    const char* base;               // start of the reply buffer: string values count from here
    const char* end;                // first byte that may not be read; it reads as zero
};

class TVOParsePJL
{
public:
    typedef void (*ActionFunc)(const TVOParsePJL* parser, ParseVars* vars, PJLKeywordParam param);
    typedef void (*NotFoundFunc)(const TVOParsePJL* parser, ParseVars* vars);

    TVOParsePJL();
    virtual ~TVOParsePJL();

    // Parses one reply of the zero-terminated text. Returns the final STATUS_...; writes the
    // number of pairs stored to *pCount and the position reached to *pEnd (either may be null).
    // String values count from text.
    int getPJLTokens(const char* text, DWORD maxTokens, PJLTokenValue* tokens, DWORD* pCount,
                     const char** pEnd) const;
    // The same over a buffer of cbText bytes that need not hold a zero byte: the parse stops at
    // the first zero byte or at the end of the buffer, whichever comes first.
    int getPJLTokens(const char* text, DWORD cbText, DWORD maxTokens, PJLTokenValue* tokens,
                     DWORD* pCount, const char** pEnd) const;

    // Parses replies one after another until one does not end with STATUS_OK or the text is
    // used up; returns the status of the last reply tried. *pCount is the total of all pairs,
    // which stay valid whatever the status. String values count from text.
    int getAllPJLTokens(const char* text, DWORD maxTokens, PJLTokenValue* tokens, DWORD* pCount,
                        const char** pEnd) const;
    // The bounded form is the one for a receive buffer, whose bytes the printer chose:
    // getAllPJLTokens(buffer, kPJL_REPLY_BUFFER_SIZE, kPJL_MAX_TOKENS, tokens, &count, &end).
    int getAllPJLTokens(const char* text, DWORD cbText, DWORD maxTokens, PJLTokenValue* tokens,
                        DWORD* pCount, const char** pEnd) const;

    // ---- The engine's steps, public so that each rule can be checked on its own ----------
    // Sets up the state of a parse of [pos, end) within a buffer starting at base.
    static void initParseVars(ParseVars* v, const char* base, const char* pos, const char* end,
                              DWORD maxTokens, PJLTokenValue* tokens);
    // Passes over space, CR, LF and tab. Returns 0 at a zero byte (STATUS_ENDOFSTREAM, the
    // position stays) or at a formfeed (STATUS_REACHEDFF, the position behind it).
    static int skipOverSpaces(ParseVars* v);
    // The index of the first row that stands at the position, which moves behind it; or -1.
    static int lookForKeyword(ParseVars* v, const PJLKeyword* keywords);
    // Searches forward for s. A byte that breaks a partial match restarts the pattern with the
    // byte after it, never with itself. 1 with the position behind s; 0 at a zero byte or a
    // formfeed, with the status set as skipOverSpaces sets it.
    static int advancePointerPastString(ParseVars* v, const char* s);
    // Demands s at the position. 0 leaves the position on the failing byte, with
    // STATUS_ENDOFSTREAM at a zero byte and STATUS_ERROR otherwise, a formfeed included.
    static int expectString(ParseVars* v, const char* s);
    // Passes the next CR LF; a formfeed met first ends the reply well.
    static int skipPastNextCRLF(ParseVars* v);
    static void skipPastFF(ParseVars* v);
    // An unsigned decimal number, wrapping at 32 bits; -1 on failure, so 4294967295 fails too.
    static int getPositiveInteger(ParseVars* v);
    static void storeToken(ParseVars* v, DWORD token);
    static int storeTokenValueAndAdvancePointer(ParseVars* v, DWORD value);
    static void setNewList(ParseVars* v, const PJLKeywordList* list);
    static void expectFinalFF(ParseVars* v);
    static void expectFinalCRLFFF(ParseVars* v);

    // Runs the action of a row, as the main loop and ACTION_GET_TOKEN_FROM_INDEX_VALUE_FROM_LIST
    // do.
    void dispatch(ParseVars* v, DWORD action, PJLKeywordParam param) const;

private:
    int parseReply(ParseVars* v) const;

    static void actionNotFoundSkipPastFF(const TVOParsePJL* parser, ParseVars* v);
    static void actionNotFoundSkipCFLFandIndentedLines(const TVOParsePJL* parser, ParseVars* v);

    static void tokenFromParamValueFromNumberFF(const TVOParsePJL* parser, ParseVars* v,
                                                PJLKeywordParam param);
    static void setNewList(const TVOParsePJL* parser, ParseVars* v, PJLKeywordParam param);
    static void getTotalAndLargestFF(const TVOParsePJL* parser, ParseVars* v,
                                     PJLKeywordParam param);
    static void getCodeAndOnlineFF(const TVOParsePJL* parser, ParseVars* v, PJLKeywordParam param);
    static void getTokenFromIndexSetNewList(const TVOParsePJL* parser, ParseVars* v,
                                            PJLKeywordParam param);
    static void setValueFromParamFF(const TVOParsePJL* parser, ParseVars* v, PJLKeywordParam param);
    static void getTokenFromIndexValueFromNumberEOLFromParam(const TVOParsePJL* parser,
                                                             ParseVars* v, PJLKeywordParam param);
    static void setValueFromParam(const TVOParsePJL* parser, ParseVars* v, PJLKeywordParam param);
    static void getTokenFromIndexValueFromBooleanEOL(const TVOParsePJL* parser, ParseVars* v,
                                                     PJLKeywordParam param);
    static void getTokenFromIndexValueFromStringEOL(const TVOParsePJL* parser, ParseVars* v,
                                                    PJLKeywordParam param);
    static void getTokenFromIndexValueFromList(const TVOParsePJL* parser, ParseVars* v,
                                               PJLKeywordParam param);

    NotFoundFunc m_notFound[kPJL_NOTFOUND_SLOTS];
    ActionFunc m_actions[kPJL_ACTION_SLOTS];
};
