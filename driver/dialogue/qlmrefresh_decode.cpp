// Tokens to names to record codes.
#include "qlmrefresh_decode.h"

#include "../devmode/tvodm.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "qlmrefresh_config.h"
#include "tvofinisher.h"

#include <cstring>
#include <new>

namespace {

// A line value is a word or two; the scratch is generous and every copy is bounded by it.
constexpr DWORD kLINE_SCRATCH = 512;
constexpr char kLINE_STOPS[] = "\r\n\f";
constexpr char kLIST_STOPS[] = "\f";

// What the record's fields hold, in bytes or characters.
constexpr DWORD kFONT_LIST_COPY_BYTES = 1750;
constexpr DWORD kSTAMP_LIST_COPY_BYTES = 1024;
constexpr DWORD kDEFAULT_FONT_CCH = 65;

const WCHAR* const kRollTypeNames[] = {
    TEXT("Paper"),
    TEXT("Film"),
    TEXT("Vellum"),
    TEXT("PRESENTATION_360"),
    TEXT("PRESENTATION_720"),
    TEXT("PRODUCTION_360"),
    TEXT("REINFORCED_PAPER_360"),
    TEXT("WHITE_MATTE_FILM_360"),
    TEXT("BACKLIT_FILM_360/720"),
    TEXT("POLY_CLOTH_360"),
    TEXT("POLY_CANVAS_360"),
    TEXT("PSV_360"),
    TEXT("PHOTOGLOSSY_PAPER_360"),
    TEXT("90_GM_GA_PAPER_360"),
    TEXT("Paper"),             // the wire's outdoor paper has no name of its own
    TEXT("DISPLAY_PAPER_720"), // and its 360 display paper reads as the 720 one
    TEXT("BACKLIT_FILM_360"),
    TEXT("BACKLIT_FILM_720"),
    TEXT("LINE_ART_360"),
};

const WCHAR* const kRollStatNames[] = {TEXT("None"), TEXT("Full"), TEXT("Low"), TEXT("Empty")};

const WCHAR* const kRollSizeNames[] = {
    TEXT("Roll A0"),    TEXT("Roll A1"),    TEXT("Roll A2"),    TEXT("Roll A3"),
    TEXT("Roll 620mm"), TEXT("Roll 860mm"), TEXT("Roll 880mm"), TEXT("Roll 750mm"),
    TEXT("Roll 900mm"), TEXT("Roll 11in"),  TEXT("Roll 17in"),  TEXT("Roll 12in"),
    TEXT("Roll 34in"),  TEXT("Roll 30in"),  TEXT("Roll 18in"),  TEXT("Roll 22in"),
    TEXT("Roll 24in"),  TEXT("Roll 36in"),  TEXT("Roll 38in"),  TEXT("Roll 42in"),
    TEXT("Roll 44in"),  TEXT("Roll 48in"),  TEXT("Roll 50in"),  TEXT("Roll 53in"),
    TEXT("Roll 54in"),  TEXT("Roll B1"),    TEXT("Roll B2"),    TEXT("Roll B3"),
};

template <size_t N>
const WCHAR* NameAt(const WCHAR* const (&names)[N], DWORD n, const WCHAR* fallback)
{
    return n < N ? names[n] : fallback;
}

// Converts bytes of text one to one into a new block of cch characters, at most cchMax bytes
// and always terminated. Null when memory is short.
WCHAR* AllocWide(const char* text, size_t cch, size_t cchMax)
{
    WCHAR* result = new (std::nothrow) WCHAR[cch]();
    if (!result)
        return nullptr;
    size_t n = 0;
    for (; text && n < cchMax && n + 1 < cch && text[n]; n++)
        result[n] = static_cast<unsigned char>(text[n]);
    result[n] = 0;
    return result;
}

// A label font or default stamp: a blank and an opening quote lead the object name, which
// ends at the closing quote.
WCHAR* GetQuotedObject(const char* text, const WCHAR* failure)
{
    char scratch[kLINE_SCRATCH] = {};
    if (text) {
        // The two leading bytes are passed over unseen; a shorter text still ends at its zero.
        size_t skip = 0;
        while (skip < 2 && text[skip])
            skip++;
        strncpy(scratch, text + skip, sizeof(scratch) - 1);
        if (char* quote = strchr(scratch, '"'))
            *quote = 0;
    }
    WCHAR* result = AllocWide(scratch, kPJL_OBJECT_NAME_CCH, kPJL_OBJECT_NAME_CCH);
    if (!result)
        Trace(failure);
    return result;
}

// Every fieldsPerRow-th field, from the fourth on, of a tab and line-feed separated table:
// the quoted object names of the rows.
WCHAR* GetObjectList(const char* text, DWORD* pSize, int fieldsPerRow, const WCHAR* failure)
{
    WCHAR* list = new (std::nothrow) WCHAR[kPJL_LIST_BUFFER_SIZE / sizeof(WCHAR)]();
    if (!list) {
        Trace(failure);
        return nullptr;
    }
    if (pSize)
        *pSize = 0;
    const size_t cchList = kPJL_LIST_BUFFER_SIZE / sizeof(WCHAR);
    size_t used = 0;
    int field = 0;
    const char* p = text ? text : "";
    while (*p) {
        // Runs of separators make no empty fields; a CR stays with its field.
        while (*p == '\t' || *p == '\n')
            p++;
        if (!*p)
            break;
        const char* start = p;
        while (*p && *p != '\t' && *p != '\n')
            p++;
        field++;
        if (field < 4 || (field - 4) % fieldsPerRow != 0)
            continue;
        if (used + 1 >= cchList)
            break; // no room for even a terminator: the rest of the list is dropped
        const char* q = start + 1 < p ? start + 1 : p; // the opening quote
        while (q < p && *q != '"' && used + 1 < cchList)
            list[used++] = static_cast<unsigned char>(*q++);
        list[used++] = 0;
    }
    if (pSize)
        *pSize = static_cast<DWORD>(used * sizeof(WCHAR));
    return list;
}

// The value of a list token: the text up to the formfeed, at most 4095 bytes.
void CopyListValue(char* out, const char* buffer, DWORD cbBuffer, DWORD value)
{
    QLMCopyLineValue(out, kPJL_LIST_BUFFER_SIZE, buffer, cbBuffer, value, kLIST_STOPS);
}

void ReplaceOwned(WCHAR*& field, WCHAR* value)
{
    delete[] field;
    field = value;
}

} // namespace

const WCHAR* getRollType(DWORD n)
{
    return NameAt(kRollTypeNames, n, kDEFAULT_ROLL_TYPE);
}

const WCHAR* getRollStat(DWORD n)
{
    return NameAt(kRollStatNames, n, kDEFAULT_ROLL_STAT);
}

const WCHAR* getRollSize(DWORD n)
{
    return NameAt(kRollSizeNames, n, kDEFAULT_ROLL_SIZE);
}

const WCHAR* getAcctMode(const char* text)
{
    // The first word only: "[2 ENUMERATED]" and the like may follow it.
    size_t n = text ? strcspn(text, " [") : 0;
    if (n == 7 && strncmp(text, "ENABLED", 7) == 0)
        return TEXT("ENABLED");
    if (n == 8 && strncmp(text, "DISABLED", 8) == 0)
        return TEXT("DISABLED");
    return TEXT("OPTIONAL");
}

const WCHAR* getScanner(const char* text)
{
    return text && strcmp(text, "4126") == 0 ? TEXT("4126") : kNOT_INSTALLED;
}

const WCHAR* getModem(const char* text)
{
    return text && strcmp(text, "MODEM") == 0 ? TEXT("Modem") : kNOT_INSTALLED;
}

WCHAR* getVersion(const char* text)
{
    WCHAR* retVersion = AllocWide(text, kPJL_VERSION_CCH, kPJL_VERSION_CCH);
    ASSERT(retVersion);
    if (!retVersion)
        Trace(TEXT("malloc failed in getVersion"));
    return retVersion;
}

WCHAR* getLabelFont(const char* text)
{
    WCHAR* retFont = GetQuotedObject(text, TEXT("malloc failed in getLabelFont"));
    ASSERT(retFont);
    return retFont;
}

WCHAR* getDefaultStamp(const char* text)
{
    WCHAR* retVal = GetQuotedObject(text, TEXT("malloc failed in getDefaultStamp"));
    ASSERT(retVal);
    return retVal;
}

WCHAR* getFonts(const char* text, DWORD* pSize)
{
    WCHAR* retFonts = GetObjectList(text, pSize, 5, TEXT("malloc failed in getFonts"));
    ASSERT(retFonts);
    return retFonts;
}

WCHAR* getRasterStamps(const char* text, DWORD* pSize)
{
    WCHAR* retRasterStamps =
        GetObjectList(text, pSize, 4, TEXT("malloc failed in getRasterStamps"));
    ASSERT(retRasterStamps);
    return retRasterStamps;
}

void ProcessRollTokens(const PJLTokenValue* tokens, DWORD index, TVOPJLConfig* pjlConfig)
{
    QLM_TRACE_SCOPE(TEXT("ProcessRollTokens"), g_bTraceQLMRefresh);
    if (!tokens || !pjlConfig)
        return;
    DWORD token = tokens[index].token;
    DWORD value = tokens[index].value;
    if (token >= TOKEN_INQUIRE_ROLL1SIZE && token <= TOKEN_INQUIRE_ROLL6SIZE)
        pjlConfig->rollSize[token - TOKEN_INQUIRE_ROLL1SIZE] = getRollSize(value);
    else if (token == TOKEN_INQUIRE_MANUALSIZE)
        pjlConfig->manualSize = getRollSize(value);
    else if (token >= TOKEN_INQUIRE_ROLL1TYPE && token <= TOKEN_INQUIRE_ROLL6TYPE)
        pjlConfig->rollType[token - TOKEN_INQUIRE_ROLL1TYPE] = getRollType(value);
    else if (token == TOKEN_INQUIRE_MANUALTYPE)
        pjlConfig->manualType = getRollType(value);
    else if (token >= TOKEN_INQUIRE_ROLL1STAT && token <= TOKEN_INQUIRE_ROLL6STAT)
        pjlConfig->rollStat[token - TOKEN_INQUIRE_ROLL1STAT] = getRollStat(value);
    else if (token == TOKEN_INQUIRE_MANUALSTAT)
        pjlConfig->manualStat = getRollStat(value);
    else
        Trace(TEXT("unhandled token in ProcessRollTokens! #%d, token=%d(0x%X)"), index, token,
              token);
}

BOOL QLMTokenValueIsText(DWORD token)
{
    static const DWORD kTextTokens[] = {
        TOKEN_INQUIRE_PRTACCTMODE,    TOKEN_INQUIRE_LABELFONT,   TOKEN_INQUIRE_RASTERSTAMPID,
        TOKEN_INFO_ESS_SW_REV,        TOKEN_INFO_SCANNER_TYPE,   TOKEN_INFO_MODEM_TYPE,
        TOKEN_INFO_FINISHER_TYPE,     TOKEN_INFO_TVOFONTS,       TOKEN_INFO_RASTERSTAMP,
        TOKEN_INFO_FINISHER_MODEL,    TOKEN_INFO_FINISHER_VER,   TOKEN_INFO_FINISHER_FAN,
        TOKEN_INFO_FINISHER_CROSS,    TOKEN_INFO_FINISHER_PUNCH, TOKEN_INFO_FINISHER_TAB,
        TOKEN_INFO_FINISHER_PROGRAMS,
    };
    for (DWORD text : kTextTokens) {
        if (text == token)
            return 1;
    }
    return 0;
}

void getValuesFromTokens(TVOPJLConfig* pjlConfig, const PJLTokenValue* tokens, DWORD count,
                         const char* buffer, DWORD cbBuffer)
{
    QLM_TRACE_SCOPE(TEXT("getValuesFromTokens"), g_bTraceQLMRefresh);
    if (!pjlConfig || !tokens || count == 0)
        return;
    char line[kLINE_SCRATCH];
    for (DWORD i = 0; i < count; i++) {
        DWORD token = tokens[i].token;
        DWORD value = tokens[i].value;
        if (token >= TOKEN_INQUIRE_ROLL1SIZE && token <= TOKEN_INQUIRE_MANUALSTAT) {
            ProcessRollTokens(tokens, i, pjlConfig);
            continue;
        }
        if ((token >= TOKEN_INFO_FINISHER_MODEL && token <= TOKEN_INFO_FINISHER_PROGRAMS) ||
            token == TOKEN_INFO_FINISHER_TYPE) {
            ProcessFinisherTokens(tokens, i, pjlConfig, buffer, cbBuffer);
            continue;
        }
        switch (token) {
        case TOKEN_INQUIRE_PRTACCTMODE:
            QLMCopyLineValue(line, sizeof(line), buffer, cbBuffer, value, kLINE_STOPS);
            pjlConfig->accountingMode = getAcctMode(line);
            break;
        case TOKEN_INQUIRE_LABELFONT:
            QLMCopyLineValue(line, sizeof(line), buffer, cbBuffer, value, kLINE_STOPS);
            ReplaceOwned(pjlConfig->labelFont, getLabelFont(line));
            break;
        case TOKEN_INQUIRE_RASTERSTAMPID:
            QLMCopyLineValue(line, sizeof(line), buffer, cbBuffer, value, kLINE_STOPS);
            ReplaceOwned(pjlConfig->defaultStamp, getDefaultStamp(line));
            break;
        case TOKEN_INFO_ESS_SW_REV:
            QLMCopyLineValue(line, sizeof(line), buffer, cbBuffer, value, kLINE_STOPS);
            ReplaceOwned(pjlConfig->firmware, getVersion(line));
            break;
        case TOKEN_INFO_SCANNER_TYPE:
            QLMCopyLineValue(line, sizeof(line), buffer, cbBuffer, value, kLINE_STOPS);
            pjlConfig->scanner = getScanner(line);
            break;
        case TOKEN_INFO_MODEM_TYPE:
            QLMCopyLineValue(line, sizeof(line), buffer, cbBuffer, value, kLINE_STOPS);
            pjlConfig->modem = getModem(line);
            break;
        case TOKEN_INFO_TVOFONTS:
        case TOKEN_INFO_RASTERSTAMP: {
            char* list = new (std::nothrow) char[kPJL_LIST_BUFFER_SIZE];
            ASSERT(list);
            if (!list)
                break;
            CopyListValue(list, buffer, cbBuffer, value);
            if (token == TOKEN_INFO_TVOFONTS) {
                pjlConfig->fontListSize = 0;
                ReplaceOwned(pjlConfig->fontList, getFonts(list, &pjlConfig->fontListSize));
            } else {
                pjlConfig->stampListSize = 0;
                ReplaceOwned(pjlConfig->stampList,
                             getRasterStamps(list, &pjlConfig->stampListSize));
            }
            delete[] list;
            break;
        }
        default:
            Trace(TEXT("PJL NOT HANDLED: Token=%s 0x%x, Value=%d"), PJLTokenName(token), token,
                  value);
            break;
        }
    }
}

void writeValuesToDevmode(const TVOPJLConfig* pjlConfig, DEVMODEEX* dm)
{
    QLM_TRACE_SCOPE(TEXT("writeValuesToDevmode"), g_bTraceQLMRefresh);
    if (!pjlConfig || !dm)
        return;
    TVODevMode devMode(dm);
    DEVMODEEX* lpDM = devMode.m_lpDM;

    // The first roll in the state "None" ends the count; rolls behind it keep their values.
    lpDM->dmxNumRolls = 0;
    for (int i = 0; i < kMAX_ROLLS; i++) {
        if (pjlConfig->rollSize[i])
            lpDM->dmxRollSize[i] = TVODevMode::GetRollSizeCode(pjlConfig->rollSize[i]);
        if (pjlConfig->rollType[i])
            lpDM->dmxRollType[i] = TVODevMode::GetMediaTypeCode(pjlConfig->rollType[i]);
        if (pjlConfig->rollStat[i])
            lpDM->dmxRollStatus[i] = TVODevMode::GetRollStatusCode(pjlConfig->rollStat[i]);
        if (lpDM->dmxRollStatus[i] == 0)
            break;
        lpDM->dmxNumRolls++;
    }

    lpDM->dmxSheetSize = TVODevMode::GetRollSizeCode(pjlConfig->manualSize);
    lpDM->dmxSheetType = TVODevMode::GetMediaTypeCode(pjlConfig->manualType);
    lpDM->dmxSheetStatus = TVODevMode::GetRollStatusCode(pjlConfig->manualStat);

    if (pjlConfig->firmware)
        lpDM->dmxFirmwareRevision = TVODevMode::GetFirmwareRev(pjlConfig->firmware);

    if (pjlConfig->fontList) {
        DWORD cb = pjlConfig->fontListSize < kFONT_LIST_COPY_BYTES ? pjlConfig->fontListSize
                                                                   : kFONT_LIST_COPY_BYTES;
        cb = cb < kPJL_LIST_BUFFER_SIZE ? cb : kPJL_LIST_BUFFER_SIZE;
        memcpy(lpDM->dmxFontList, pjlConfig->fontList, cb);
        // The label font goes in without its terminator: what stood behind it in the field
        // stays, as the renderer has always read it. No label font leaves the field alone.
        if (pjlConfig->labelFont) {
            size_t cch = WstrLen(pjlConfig->labelFont);
            cch = cch < kDEFAULT_FONT_CCH ? cch : kDEFAULT_FONT_CCH;
            memcpy(lpDM->dmxDefaultFont, pjlConfig->labelFont, cch * sizeof(WCHAR));
        }
    }

    if (pjlConfig->stampList) {
        DWORD cb = pjlConfig->stampListSize < kSTAMP_LIST_COPY_BYTES ? pjlConfig->stampListSize
                                                                     : kSTAMP_LIST_COPY_BYTES;
        memcpy(lpDM->dmxRasterStampList, pjlConfig->stampList, cb);
    }

    if (pjlConfig->defaultStamp)
        WstrCopy(lpDM->dmxDefaultStamp, sizeof(lpDM->dmxDefaultStamp) / sizeof(WCHAR),
                 pjlConfig->defaultStamp);

    if (pjlConfig->finisherName)
        lpDM->dmxFinisherType = TVODevMode::GetFinisherTypeCode(pjlConfig->finisherName);

    // The count goes in as reported, even where it exceeds the twenty programs that fit.
    if (pjlConfig->finisher.numPrograms != 0)
        memcpy(&lpDM->dmxFinisher, &pjlConfig->finisher, sizeof(TVOFinisherInfo));
}
