// TVOParsePJL: one pass over the replies, no allocation, no copy of text.
//
// Only the entry points open trace scopes. The steps run once per line or byte and trace only
// their failures, so that a parse with its flags off costs no more than its comparisons.
#include "tvoparsepjl.h"

#include "../foundation/qlmtrace.h"

#include <cstring>

namespace {

constexpr char kFF = 12;

// The byte at p, or zero at the end of the buffer: the end reads like the terminator.
inline char At(const ParseVars* v, const char* p)
{
    return p < v->end ? *p : 0;
}

inline bool IsBlank(char c)
{
    return c == ' ' || c == '\r' || c == '\n' || c == '\t';
}

// A zero-terminated text as a bounded one. Offsets are 32 bits, so is the length.
DWORD BoundedLength(const char* text)
{
    if (!text)
        return 0;
    size_t cb = strlen(text);
    return cb > 0xFFFFFFFFu ? 0xFFFFFFFFu : static_cast<DWORD>(cb);
}

} // namespace

TVOParsePJL::TVOParsePJL()
{
    m_notFound[kPJL_NOTFOUND_SKIP_PAST_FF] = actionNotFoundSkipPastFF;
    m_notFound[kPJL_NOTFOUND_SKIP_LINE_AND_INDENTED] = actionNotFoundSkipCFLFandIndentedLines;

    m_actions[ACTION_TOKEN_FROM_PARAM_VALUE_FROM_NUMBER_FF] = tokenFromParamValueFromNumberFF;
    m_actions[ACTION_SET_NEW_LIST] = setNewList;
    m_actions[ACTION_GET_TOTAL_AND_LARGEST_FF] = getTotalAndLargestFF;
    m_actions[ACTION_GET_CODE_AND_ONLINE_FF] = getCodeAndOnlineFF;
    m_actions[ACTION_TOKEN_FROM_INDEX_SET_NEW_LIST] = getTokenFromIndexSetNewList;
    m_actions[ACTION_SET_VALUE_FROM_PARAM_FF] = setValueFromParamFF;
    m_actions[ACTION_GET_TOKEN_FROM_INDEX_VALUE_FROM_NUMBER_EOL_FROM_PARAM] =
        getTokenFromIndexValueFromNumberEOLFromParam;
    m_actions[ACTION_SET_VALUE_FROM_PARAM] = setValueFromParam;
    m_actions[ACTION_GET_TOKEN_FROM_INDEX_VALUE_FROM_BOOLEAN_EOL] =
        getTokenFromIndexValueFromBooleanEOL;
    m_actions[ACTION_GET_TOKEN_FROM_INDEX_VALUE_FROM_STRING_EOL] =
        getTokenFromIndexValueFromStringEOL;
    m_actions[ACTION_GET_TOKEN_FROM_INDEX_VALUE_FROM_LIST] = getTokenFromIndexValueFromList;
}

TVOParsePJL::~TVOParsePJL() {}

// ---- Entry points -------------------------------------------------------------------------

int TVOParsePJL::getPJLTokens(const char* text, DWORD maxTokens, PJLTokenValue* tokens,
                              DWORD* pCount, const char** pEnd) const
{
    return getPJLTokens(text, BoundedLength(text), maxTokens, tokens, pCount, pEnd);
}

int TVOParsePJL::getPJLTokens(const char* text, DWORD cbText, DWORD maxTokens,
                              PJLTokenValue* tokens, DWORD* pCount, const char** pEnd) const
{
    QLM_TRACE_SCOPE(TEXT("TVOParsePJL::getPJLTokens"), g_bTraceParsePJL);
    ParseVars v;
    initParseVars(&v, text, text, text ? text + cbText : text, maxTokens, tokens);
    int status = parseReply(&v);
    if (pCount)
        *pCount = v.count;
    if (pEnd)
        *pEnd = v.pos;
    return status;
}

int TVOParsePJL::getAllPJLTokens(const char* text, DWORD maxTokens, PJLTokenValue* tokens,
                                 DWORD* pCount, const char** pEnd) const
{
    return getAllPJLTokens(text, BoundedLength(text), maxTokens, tokens, pCount, pEnd);
}

int TVOParsePJL::getAllPJLTokens(const char* text, DWORD cbText, DWORD maxTokens,
                                 PJLTokenValue* tokens, DWORD* pCount, const char** pEnd) const
{
    QLM_TRACE_SCOPE(TEXT("TVOParsePJL::getAllPJLTokens"), g_bTraceParsePJL);
    if (!tokens)
        maxTokens = 0;
    const char* end = text ? text + cbText : text;
    const char* pos = text;
    DWORD total = 0;
    int status;
    for (;;) {
        ParseVars v;
        // Each reply starts afresh, but its string values still count from the buffer start.
        initParseVars(&v, text, pos, end, maxTokens - total, tokens ? tokens + total : nullptr);
        status = parseReply(&v);
        pos = v.pos;
        total += v.count;
        if (status != STATUS_OK)
            break;
        if (At(&v, pos) == 0)
            break;
    }
    Trace(TEXT("getAllPJLTokens: %u tokens, status %d"), total, status);
    if (pCount)
        *pCount = total;
    if (pEnd)
        *pEnd = pos;
    return status;
}

// One reply, from its "@PJL" to its formfeed.
int TVOParsePJL::parseReply(ParseVars* v) const
{
    const char* start = v->pos;
    if (!advancePointerPastString(v, "@PJL")) {
        v->status = STATUS_NOPJL;
        unsigned char b[5] = {0, 0, 0, 0, 0};
        char c[6] = {0, 0, 0, 0, 0, 0};
        for (int i = 0; i < 5 && start + i < v->end; i++) {
            b[i] = static_cast<unsigned char>(start[i]);
            c[i] = b[i] >= 32 && b[i] < 127 ? static_cast<char>(b[i]) : '.';
        }
        Trace(TEXT("Can't find beginning @PJL string: %02X %02X %02X %02X %02X \"%S\""), b[0], b[1],
              b[2], b[3], b[4], c);
        return v->status;
    }

    while (v->status == STATUS_CONTINUE) {
        bool found = false;
        DWORD notFound = kPJL_NOTFOUND_SKIP_PAST_FF;
        for (int i = 0; i < 2 && v->lists[i]; i++) {
            v->list = v->lists[i];
            notFound = v->list->notFoundAction;
            if (!skipOverSpaces(v))
                break;
            v->keywords = v->list->keywords;
            if (lookForKeyword(v, v->keywords) >= 0) {
                found = true;
                break;
            }
        }
        if (v->status != STATUS_CONTINUE)
            break;
        if (!found) {
            m_notFound[notFound < kPJL_NOTFOUND_SLOTS ? notFound : kPJL_NOTFOUND_SKIP_PAST_FF](this,
                                                                                               v);
        } else {
            const PJLKeyword& row = v->keywords[v->keywordIndex];
            dispatch(v, row.action, row.param);
        }
    }

    if (v->status == STATUS_REACHEDFF) {
        if (v->list && v->list->reachedFFIsOK) {
            v->status = STATUS_OK;
            Trace(TEXT("(found FF/OK)"));
        } else {
            v->status = STATUS_ERROR;
            Trace(TEXT("error, found FF/ERROR"));
        }
    }
    return v->status;
}

void TVOParsePJL::dispatch(ParseVars* v, DWORD action, PJLKeywordParam param) const
{
    if (action < kPJL_ACTION_SLOTS) {
        m_actions[action](this, v, param);
    } else if (action == ACTION_GET_TVOMEDIA_SPECIFIC_SETTINGS) {
        // Only a value list gives this row a meaning; met anywhere else, its line is passed
        // over without a value, as it is there.
        skipPastNextCRLF(v);
    } else {
        v->status = STATUS_ERROR;
        Trace(TEXT("error, no action %u"), action);
    }
}

// ---- Steps --------------------------------------------------------------------------------

void TVOParsePJL::initParseVars(ParseVars* v, const char* base, const char* pos, const char* end,
                                DWORD maxTokens, PJLTokenValue* tokens)
{
    v->pos = pos;
    v->remaining = tokens ? maxTokens : 0;
    v->count = 0;
    v->out = tokens;
    v->token = 0;
    v->keywordIndex = -1;
    v->status = STATUS_CONTINUE;
    v->list = &kTopList;
    v->keywords = kTopList.keywords;
    v->lists[0] = &kTopList;
    v->lists[1] = nullptr;
    v->base = base;
    v->end = end;
}

int TVOParsePJL::skipOverSpaces(ParseVars* v)
{
    for (;;) {
        char c = At(v, v->pos);
        if (c == 0) {
            v->status = STATUS_ENDOFSTREAM;
            return 0;
        }
        if (c == kFF) {
            v->pos++;
            v->status = STATUS_REACHEDFF;
            return 0;
        }
        if (!IsBlank(c))
            return 1;
        v->pos++;
    }
}

int TVOParsePJL::lookForKeyword(ParseVars* v, const PJLKeyword* keywords)
{
    for (int i = 0; keywords[i].text; i++) {
        const char* t = keywords[i].text;
        const char* p = v->pos;
        // A zero or a formfeed in the input simply fails to match: no row holds either.
        while (*t && At(v, p) == *t) {
            t++;
            p++;
        }
        if (!*t) {
            v->pos = p;
            v->keywordIndex = i;
            if (g_bTraceLFK)
                Trace(TEXT("lookForKeyword: \"%S\" at index %d"), keywords[i].text, i);
            return i;
        }
    }
    return -1;
}

int TVOParsePJL::advancePointerPastString(ParseVars* v, const char* s)
{
    if (!s || !*s)
        return 1;
    const char* p = v->pos;
    size_t matched = 0;
    for (;;) {
        char c = At(v, p);
        if (c == 0) {
            v->pos = p;
            v->status = STATUS_ENDOFSTREAM;
            return 0;
        }
        if (c == kFF) {
            v->pos = p + 1;
            v->status = STATUS_REACHEDFF;
            return 0;
        }
        p++;
        if (c == s[matched]) {
            if (!s[++matched]) {
                v->pos = p;
                return 1;
            }
        } else {
            matched = 0;
        }
    }
}

int TVOParsePJL::expectString(ParseVars* v, const char* s)
{
    const char* p = v->pos;
    for (; *s; s++, p++) {
        char c = At(v, p);
        if (c != *s || c == kFF) {
            v->pos = p;
            v->status = c == 0 ? STATUS_ENDOFSTREAM : STATUS_ERROR;
            return 0;
        }
    }
    v->pos = p;
    return 1;
}

int TVOParsePJL::skipPastNextCRLF(ParseVars* v)
{
    if (advancePointerPastString(v, kCRLF))
        return 1;
    if (v->status == STATUS_REACHEDFF) {
        v->status = STATUS_OK;
        Trace(TEXT("reached FF, calling it OK"));
        return 1;
    }
    Trace(TEXT("didn't reach FF, failing it"));
    return 0;
}

void TVOParsePJL::skipPastFF(ParseVars* v)
{
    for (;;) {
        char c = At(v, v->pos);
        if (c == 0) {
            v->status = STATUS_ENDOFSTREAM;
            return;
        }
        v->pos++;
        if (c == kFF) {
            v->status = STATUS_OK;
            return;
        }
    }
}

int TVOParsePJL::getPositiveInteger(ParseVars* v)
{
    if (!skipOverSpaces(v)) {
        if (v->status == STATUS_REACHEDFF) {
            v->status = STATUS_ERROR;
            Trace(TEXT("error, status==REACHEDFF while looking for int"));
        }
        return -1;
    }
    DWORD value = 0;
    bool digits = false;
    char c;
    while ((c = At(v, v->pos)) >= '0' && c <= '9') {
        value = value * 10 + static_cast<DWORD>(c - '0');
        digits = true;
        v->pos++;
    }
    if (c == 0) {
        v->status = STATUS_ENDOFSTREAM;
        return -1;
    }
    if (!digits) {
        v->status = STATUS_ERROR;
        return -1;
    }
    return static_cast<int>(value);
}

void TVOParsePJL::storeToken(ParseVars* v, DWORD token)
{
    v->token = token;
}

int TVOParsePJL::storeTokenValueAndAdvancePointer(ParseVars* v, DWORD value)
{
    if (v->remaining == 0 || !v->out) {
        v->status = STATUS_OUTOFSPACE;
        return 0;
    }
    v->out->token = v->token;
    v->out->value = value;
    v->out++;
    v->remaining--;
    v->count++;
    return 1;
}

void TVOParsePJL::setNewList(ParseVars* v, const PJLKeywordList* list)
{
    v->lists[0] = list;
    v->lists[1] = nullptr;
}

void TVOParsePJL::expectFinalFF(ParseVars* v)
{
    if (v->status != STATUS_CONTINUE)
        return;
    char c = At(v, v->pos);
    if (c == kFF) {
        v->pos++;
        v->status = STATUS_OK;
    } else {
        v->status = c == 0 ? STATUS_ENDOFSTREAM : STATUS_ERROR;
    }
}

void TVOParsePJL::expectFinalCRLFFF(ParseVars* v)
{
    if (v->status != STATUS_CONTINUE)
        return;
    if (At(v, v->pos) == 0) {
        v->status = STATUS_ENDOFSTREAM;
        return;
    }
    if (!advancePointerPastString(v, kCRLF)) {
        if (v->status == STATUS_REACHEDFF) {
            v->status = STATUS_ERROR;
            Trace(TEXT("error, status==reached FF"));
        }
        return;
    }
    expectFinalFF(v);
}

// ---- Not-found table ------------------------------------------------------------------------

void TVOParsePJL::actionNotFoundSkipPastFF(const TVOParsePJL*, ParseVars* v)
{
    skipPastFF(v);
}

// Passes over an unknown line and the tab-indented lines that belong to it. The tab test
// follows every skipped line, also one that ended at the formfeed.
void TVOParsePJL::actionNotFoundSkipCFLFandIndentedLines(const TVOParsePJL*, ParseVars* v)
{
    do {
        if (!skipPastNextCRLF(v)) {
            Trace(TEXT("ActionNotFoundSkipCRLF error skipping\n"));
            return;
        }
    } while (At(v, v->pos) == '\t');
}

// ---- Action table ---------------------------------------------------------------------------

void TVOParsePJL::tokenFromParamValueFromNumberFF(const TVOParsePJL*, ParseVars* v,
                                                  PJLKeywordParam param)
{
    storeToken(v, static_cast<DWORD>(param.number));
    int n = getPositiveInteger(v);
    if (n != -1 && storeTokenValueAndAdvancePointer(v, static_cast<DWORD>(n)))
        expectFinalCRLFFF(v);
}

void TVOParsePJL::setNewList(const TVOParsePJL*, ParseVars* v, PJLKeywordParam param)
{
    setNewList(v, param.list);
}

void TVOParsePJL::getTotalAndLargestFF(const TVOParsePJL*, ParseVars* v, PJLKeywordParam)
{
    if (!expectString(v, "TOTAL="))
        return;
    storeToken(v, TOKEN_INFO_MEMORY_TOTAL);
    int n = getPositiveInteger(v);
    if (n == -1 || !storeTokenValueAndAdvancePointer(v, static_cast<DWORD>(n)))
        return;
    if (!expectString(v, "\r\nLARGEST="))
        return;
    storeToken(v, TOKEN_INFO_MEMORY_LARGEST);
    n = getPositiveInteger(v);
    if (n == -1 || !storeTokenValueAndAdvancePointer(v, static_cast<DWORD>(n)))
        return;
    expectFinalCRLFFF(v);
}

void TVOParsePJL::getCodeAndOnlineFF(const TVOParsePJL*, ParseVars* v, PJLKeywordParam)
{
    if (!expectString(v, "CODE="))
        return;
    storeToken(v, TOKEN_INFO_STATUS_CODE);
    int n = getPositiveInteger(v);
    if (n == -1 || !storeTokenValueAndAdvancePointer(v, static_cast<DWORD>(n)))
        return;
    if (!expectString(v, "\r\nDISPLAY=") || !skipPastNextCRLF(v) || !expectString(v, "ONLINE="))
        return;
    storeToken(v, TOKEN_INFO_STATUS_ONLINE);
    int index = lookForKeyword(v, kBooleanKeywords);
    if (index == -1) {
        v->status = STATUS_ERROR;
        Trace(TEXT("error, lookforkeyword returned -1"));
        return;
    }
    if (storeTokenValueAndAdvancePointer(v, static_cast<DWORD>(index)))
        expectFinalCRLFFF(v);
}

void TVOParsePJL::getTokenFromIndexSetNewList(const TVOParsePJL*, ParseVars* v,
                                              PJLKeywordParam param)
{
    storeToken(v, v->list->tokenBase + static_cast<DWORD>(v->keywordIndex));
    setNewList(v, param.list);
}

void TVOParsePJL::setValueFromParamFF(const TVOParsePJL*, ParseVars* v, PJLKeywordParam param)
{
    if (storeTokenValueAndAdvancePointer(v, static_cast<DWORD>(param.number)))
        expectFinalCRLFFF(v);
}

void TVOParsePJL::getTokenFromIndexValueFromNumberEOLFromParam(const TVOParsePJL*, ParseVars* v,
                                                               PJLKeywordParam param)
{
    storeToken(v, v->list->tokenBase + static_cast<DWORD>(v->keywordIndex));
    int n = getPositiveInteger(v);
    if (n == -1) {
        Trace(TEXT("error getting number\n"));
        return;
    }
    if (!storeTokenValueAndAdvancePointer(v, static_cast<DWORD>(n))) {
        Trace(TEXT("error storing value\n"));
        return;
    }
    expectString(v, param.string);
}

// Leaves the position on the rest of the line: the main loop skips it with its indented lines.
void TVOParsePJL::setValueFromParam(const TVOParsePJL*, ParseVars* v, PJLKeywordParam param)
{
    storeTokenValueAndAdvancePointer(v, static_cast<DWORD>(param.number));
}

void TVOParsePJL::getTokenFromIndexValueFromBooleanEOL(const TVOParsePJL*, ParseVars* v,
                                                       PJLKeywordParam param)
{
    storeToken(v, v->list->tokenBase + static_cast<DWORD>(v->keywordIndex));
    int index = lookForKeyword(v, kBooleanKeywords);
    if (index == -1) {
        v->status = STATUS_ERROR;
        Trace(TEXT("error, lfk returned -1"));
        return;
    }
    if (storeTokenValueAndAdvancePointer(v, static_cast<DWORD>(index)))
        expectString(v, param.string);
}

void TVOParsePJL::getTokenFromIndexValueFromStringEOL(const TVOParsePJL*, ParseVars* v,
                                                      PJLKeywordParam)
{
    storeToken(v, v->list->tokenBase + static_cast<DWORD>(v->keywordIndex));
    if (storeTokenValueAndAdvancePointer(v, static_cast<DWORD>(v->pos - v->base)))
        skipPastNextCRLF(v);
}

// The value list is searched but not made current, so what follows the value on its line is
// met by the current list, found unknown and skipped with the lines indented below it.
void TVOParsePJL::getTokenFromIndexValueFromList(const TVOParsePJL* parser, ParseVars* v,
                                                 PJLKeywordParam param)
{
    storeToken(v, v->list->tokenBase + static_cast<DWORD>(v->keywordIndex));
    const PJLKeyword* rows = param.list->keywords;
    int index = lookForKeyword(v, rows);
    if (index == -1) {
        v->status = STATUS_ERROR;
        Trace(TEXT("error, lfk returned -1"));
        return;
    }
    if (rows[index].action == ACTION_GET_TVOMEDIA_SPECIFIC_SETTINGS)
        skipPastNextCRLF(v);
    else
        parser->dispatch(v, rows[index].action, rows[index].param);
}
