// The finisher's code tables, its tokens and program table from a refresh, and its
// description file.
#include "tvofinisher.h"

#include "../config/tvoconfg.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "qlminifile.h"
#include "qlmrefresh_config.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace {

struct FinisherCodeRow
{
    const WCHAR* pszName;
    WORD wCode;
};

const FinisherCodeRow kAccordionCodes[] = {
    {TEXT("NONE"), 0},
    {TEXT("FULL_FRONT_END_LEFT"), 2},
    {TEXT("FULL_BACK_END_LEFT"), 3},
    {TEXT("FULL_FRONT_AND_BACK_END_LEFT"), 4},
    {TEXT("TOP_PANEL_BINDING"), 5},
    {TEXT("MIN_COMP_HALF_BACK"), 6},
    {TEXT("MIN_COMP_INTERNAL"), 7},
    {TEXT("MIN_COMP_ENDLESS"), 8},
    {nullptr, 0},
};

const FinisherCodeRow kCrossCodes[] = {
    {TEXT("NONE"), 0},
    {TEXT("Z_BACK_FROM_TOP"), 2},
    {TEXT("Z_FORWARD_FROM_TOP"), 3},
    {TEXT("Z_BACK_FROM_BOTTOM"), 4},
    {TEXT("Z_FORWARD_FROM_BOTTOM"), 5},
    {TEXT("C_BACK_FROM_TOP"), 6},
    {TEXT("C_FORWARD_FROM_TOP"), 7},
    {TEXT("C_BACK_FROM_BOTTOM"), 8},
    {TEXT("C_FORWARD_FROM_BOTTOM"), 9},
    {TEXT("WALLET"), 10},
    {TEXT("RESERVED"), 11},
    {nullptr, 0},
};

const FinisherCodeRow kPunchCodes[] = {
    {TEXT("NONE"), 0},    {TEXT("PUNCH_2"), 2}, {TEXT("PUNCH_3"), 3},
    {TEXT("PUNCH_4"), 4}, {nullptr, 0},
};

// The printer and the description file name the tab differently, and each is read only
// with its own word.
const FinisherCodeRow kTabPrinterCodes[] = {
    {TEXT("NONE"), 0},
    {TEXT("TAB"), 2},
    {TEXT("REINFORCEMENT_STRIP"), 3},
    {nullptr, 0},
};
const FinisherCodeRow kTabFileCodes[] = {
    {TEXT("NONE"), 0},
    {TEXT("TABS"), 2},
    {TEXT("REINFORCEMENT_STRIP"), 3},
    {nullptr, 0},
};

const FinisherCodeRow* const kFinisherTables[] = {
    kAccordionCodes, kCrossCodes, kPunchCodes, kTabPrinterCodes, kTabFileCodes,
};

constexpr DWORD kFINISHER_SCRATCH = 4096;
constexpr DWORD kPROGRAM_NAME_MAX_BYTES = 31;
constexpr DWORD kMODEL_MAX_BYTES = 63;
constexpr int kPROGRAM_FIELDS = 13;

// Room of the block's lists: slot 0 stays 0, entries run from slot 1.
constexpr UINT kMAX_FOLD_ROWS = 32;
constexpr UINT kMAX_PUNCH_TAB_ROWS = 16;
constexpr DWORD kFILE_VALUE_CCH = 256;
constexpr DWORD kFILE_PROGRAM_NAME_CCH = 32;
constexpr DWORD kFILE_MODEL_CCH = 64;
constexpr DWORD kFILE_VERSION_CCH = 16;

// 8-bit wire text, one byte to one character, cut at cchMax and terminated.
void WidenBounded(WCHAR* dst, size_t cchDst, const char* src, size_t cbMax)
{
    size_t n = 0;
    for (; src && src[n] && n < cbMax && n + 1 < cchDst; n++)
        dst[n] = static_cast<unsigned char>(src[n]);
    dst[n] = 0;
}

WORD WireCode(TVOFinisherCodeTable table, const char* text)
{
    WCHAR wide[kFILE_VALUE_CCH];
    WidenBounded(wide, kFILE_VALUE_CCH, text, kFILE_VALUE_CCH - 1);
    return GetFinisherCode(table, wide);
}

// Fields of a tab and line-feed separated text, as strtok gives them: runs of separators
// make no empty fields, and a CR stays with its field.
class FieldWalker
{
public:
    explicit FieldWalker(char* text) : m_p(text) {}
    char* Next()
    {
        while (*m_p == '\t' || *m_p == '\n')
            m_p++;
        if (!*m_p)
            return nullptr;
        char* start = m_p;
        while (*m_p && *m_p != '\t' && *m_p != '\n')
            m_p++;
        if (*m_p)
            *m_p++ = 0;
        return start;
    }

private:
    char* m_p;
};

// The fold, punch and tab lists of a reply are only traced: from the printer the block's
// lists stay empty and the programs carry the codes.
void TraceFinisherList(const char* text, const WCHAR* format, bool bFanFold)
{
    const char* separators = bFanFold ? "\r\n" : "\t\n";
    int misses = 0;
    const char* p = text;
    while (misses < 2) {
        p += strspn(p, separators);
        if (!*p)
            break;
        size_t n = strcspn(p, separators);
        if (memchr(p, '\t', n)) {
            WCHAR piece[kFILE_VALUE_CCH];
            WidenBounded(piece, kFILE_VALUE_CCH, p, n);
            Trace(format, piece);
        } else {
            misses++;
        }
        p += n;
    }
}

WORD WordOf(const char* text)
{
    return static_cast<WORD>(strtoul(text, nullptr, 10));
}

} // namespace

WORD GetFinisherCode(TVOFinisherCodeTable table, LPCWSTR pszText)
{
    if (!pszText || table < kFINISHER_TABLE_ACCORDION || table > kFINISHER_TABLE_TAB_FILE)
        return kFINISHER_CODE_OTHER;
    for (const FinisherCodeRow* row = kFinisherTables[table]; row->pszName; row++) {
        if (WstrCmp(row->pszName, pszText) == 0)
            return row->wCode;
    }
    return kFINISHER_CODE_OTHER;
}

WORD GetSheetDeliveryCode(LPCWSTR pszText, WORD wCurrent)
{
    if (WstrCmp(pszText, TEXT("FACEUP")) == 0)
        return 0;
    if (WstrCmp(pszText, TEXT("FACEDOWN")) == 0)
        return 1;
    return wCurrent;
}

WORD GetEdgeCode(LPCWSTR pszText)
{
    if (WstrCmp(pszText, TEXT("LONGEDGE")) == 0)
        return 1;
    if (WstrCmp(pszText, TEXT("SHORTEDGE")) == 0)
        return 0;
    return 2;
}

void getFinisherPrograms(TVOPJLConfig* pjlConfig, const char* text)
{
    QLM_TRACE_SCOPE(TEXT("getFinisherPrograms"), g_bTraceFinisher);
    if (!pjlConfig || !text)
        return;
    char* copy = new (std::nothrow) char[kFINISHER_SCRATCH];
    ASSERT(copy);
    if (!copy)
        return;
    strncpy(copy, text, kFINISHER_SCRATCH - 1);
    copy[kFINISHER_SCRATCH - 1] = 0;

    FieldWalker walker(copy);
    char* fields[kPROGRAM_FIELDS];
    for (int n = 0; n < kPJL_FINISHER_MAX_PROGRAMS; n++) {
        // A row cut short ends the walk: its fields would be read from the next row.
        int got = 0;
        while (got < kPROGRAM_FIELDS && (fields[got] = walker.Next()) != nullptr)
            got++;
        if (got < kPROGRAM_FIELDS) {
            if (got > 0)
                Trace(TEXT("finisher program %d has %d of 13 fields"), n + 1, got);
            break;
        }
        TVOFinisherProgram& program = pjlConfig->finisher.programs[n];
        WidenBounded(program.name, sizeof(program.name) / sizeof(WCHAR), fields[0],
                     kPROGRAM_NAME_MAX_BYTES);
        program.fanFold = WireCode(kFINISHER_TABLE_ACCORDION, fields[1]);
        program.crossFold = WireCode(kFINISHER_TABLE_CROSS, fields[2]);
        program.width = WordOf(fields[3]);
        program.length = WordOf(fields[4]);
        program.margin = WordOf(fields[5]);
        program.punch = WireCode(kFINISHER_TABLE_PUNCH, fields[6]);
        program.tab = WireCode(kFINISHER_TABLE_TAB_PRINTER, fields[7]);
        program.bins = WordOf(fields[8]);
        program.maxLength = static_cast<LONG>(strtol(fields[9], nullptr, 10));
        WCHAR wide[kFILE_VALUE_CCH];
        WidenBounded(wide, kFILE_VALUE_CCH, fields[10], kFILE_VALUE_CCH - 1);
        program.sheetDelivery = GetSheetDeliveryCode(wide, program.sheetDelivery);
        program.title = WordOf(fields[11]);
        // A row ending in CR LF leaves the CR on the edge word, which then reads as unknown.
        WidenBounded(wide, kFILE_VALUE_CCH, fields[12], kFILE_VALUE_CCH - 1);
        program.edge = GetEdgeCode(wide);
    }
    delete[] copy;
}

const WCHAR* getFinisherType(const char* text)
{
    static const struct
    {
        const char* wire;
        const WCHAR* name;
    } kTypes[] = {
        {"GERA_ISO", TEXT("Gera Iso")},
        {"GERA_ANSI", TEXT("Gera Ansi")},
        {"GERA_ANSI_SPECIAL", TEXT("Gera Ansi Special")},
        {"GFI", TEXT("GFI Finisher")},
    };
    for (const auto& row : kTypes) {
        if (text && strcmp(text, row.wire) == 0)
            return row.name;
    }
    return kNOT_INSTALLED;
}

void ProcessFinisherTokens(const PJLTokenValue* tokens, DWORD index, TVOPJLConfig* pjlConfig,
                           const char* buffer, DWORD cbBuffer)
{
    QLM_TRACE_SCOPE(TEXT("ProcessFinisherTokens"), g_bTraceFinisher);
    if (!tokens || !pjlConfig)
        return;
    char* szTokens = new (std::nothrow) char[kFINISHER_SCRATCH];
    ASSERT(szTokens);
    if (!szTokens)
        return;
    szTokens[0] = 0;
    TVOPJLFinisherInfo& finisher = pjlConfig->finisher;
    DWORD token = tokens[index].token;
    DWORD value = tokens[index].value;
    switch (token) {
    case TOKEN_INFO_FINISHER_TYPE:
        QLMCopyLineValue(szTokens, kFINISHER_SCRATCH, buffer, cbBuffer, value, "\r\n\f");
        pjlConfig->finisherName = getFinisherType(szTokens);
        break;
    case TOKEN_INFO_FINISHER_MODEL:
        QLMCopyLineValue(szTokens, kFINISHER_SCRATCH, buffer, cbBuffer, value, "\r\n");
        WidenBounded(finisher.Model, sizeof(finisher.Model) / sizeof(WCHAR), szTokens,
                     kMODEL_MAX_BYTES);
        break;
    case TOKEN_INFO_FINISHER_VER:
        QLMCopyLineValue(szTokens, kFINISHER_SCRATCH, buffer, cbBuffer, value, "\r\n");
        // "0.0" marks a file-made finisher in the finishing dialog; a printer never means it.
        if (strcmp(szTokens, "0.0") == 0)
            strcpy(szTokens, "0.01");
        WidenBounded(finisher.Version, sizeof(finisher.Version) / sizeof(WCHAR), szTokens,
                     sizeof(finisher.Version) / sizeof(WCHAR));
        break;
    case TOKEN_INFO_FINISHER_NUMPROG:
        finisher.numPrograms = value & 0xFFFF;
        break;
    case TOKEN_INFO_FINISHER_NUMBINS:
        finisher.numBins = static_cast<WORD>(value);
        break;
    case TOKEN_INFO_FINISHER_FAN:
    case TOKEN_INFO_FINISHER_CROSS:
    case TOKEN_INFO_FINISHER_PUNCH:
    case TOKEN_INFO_FINISHER_TAB: {
        static const WCHAR* const kFormats[] = {
            TEXT("ACCORDION FOLDS %s\n"),
            TEXT("CROSS FOLDS %s\n"),
            TEXT("PUNCH %s\n"),
            TEXT("TAB %s\n"),
        };
        QLMCopyLineValue(szTokens, kFINISHER_SCRATCH, buffer, cbBuffer, value, "\f");
        TraceFinisherList(szTokens, kFormats[token - TOKEN_INFO_FINISHER_FAN],
                          token == TOKEN_INFO_FINISHER_FAN);
        break;
    }
    case TOKEN_INFO_FINISHER_MINMARG:
        finisher.minMargin = static_cast<WORD>(value);
        break;
    case TOKEN_INFO_FINISHER_MAXMARG:
        finisher.maxMargin = static_cast<WORD>(value);
        break;
    case TOKEN_INFO_FINISHER_PROGRAMS_HEADING:
        break;
    case TOKEN_INFO_FINISHER_PROGRAMS:
        QLMCopyLineValue(szTokens, kFINISHER_SCRATCH, buffer, cbBuffer, value, "\f");
        getFinisherPrograms(pjlConfig, szTokens);
        break;
    default:
        Trace(TEXT("Unhandled finisher token: %d (0x%X)"), token, token);
        ASSERT(FALSE);
        break;
    }
    delete[] szTokens;
}

DWORD TVOPrinterConfiguration::addFInisherFromFileToDevmode(LPCWSTR fileName, DEVMODEEX* dm)
{
    QLM_TRACE_SCOPE(TEXT("addFInisherFromFileToDevmode"), g_bTraceFinisher);
    if (!fileName || !dm)
        return 0;
    QLMIniFile file;
    if (!file.Load(fileName)) {
        Trace(TEXT("cannot read the finisher file %s"), fileName);
        return 0;
    }
    const WCHAR* kSection = TEXT("Finisher");
    WCHAR value[kFILE_VALUE_CCH];

    // Model, version and a program count make a description; without them nothing changes.
    if (file.GetString(kSection, TEXT("Model"), TEXT(""), value, kFILE_VALUE_CCH) == 0 ||
        file.GetString(kSection, TEXT("Version"), TEXT(""), value, kFILE_VALUE_CCH) == 0 ||
        file.GetInt(kSection, TEXT("Programs"), 0) == 0) {
        Trace(TEXT("finisher file %s lacks Model, Version or Programs"), fileName);
        return 0;
    }

    TVOFinisherInfo& finisher = dm->dmxFinisher;
    file.GetString(kSection, TEXT("Model"), TEXT(""), finisher.Model, kFILE_MODEL_CCH);
    file.GetString(kSection, TEXT("Version"), TEXT(""), finisher.Version, kFILE_VERSION_CCH);
    // The block's neighbours lie behind it: counts beyond its room are cut to it.
    UINT programs = file.GetInt(kSection, TEXT("Programs"), 0);
    if (programs > static_cast<UINT>(kFINISHER_MAX_PROGRAMS)) {
        Trace(TEXT("finisher file asks for %u programs; %d are kept"), programs,
              kFINISHER_MAX_PROGRAMS);
        programs = kFINISHER_MAX_PROGRAMS;
    }
    finisher.numPrograms = programs;
    finisher.maxMargin = static_cast<WORD>(file.GetInt(kSection, TEXT("Margin"), 0));
    finisher.numBins = static_cast<WORD>(file.GetInt(kSection, TEXT("Bin"), 0));
    finisher.titleBlock = static_cast<WORD>(file.GetInt(kSection, TEXT("Titleblock"), 0));

    static const struct
    {
        const WCHAR* pszCount;
        const WCHAR* pszRow;
        TVOFinisherCodeTable table;
        UINT room;
        size_t offset;
    } kLists[] = {
        {TEXT("Accordion"), TEXT("Accordion%d"), kFINISHER_TABLE_ACCORDION, kMAX_FOLD_ROWS,
         offsetof(TVOFinisherInfo, accordionFolds)},
        {TEXT("Cross"), TEXT("Cross%d"), kFINISHER_TABLE_CROSS, kMAX_FOLD_ROWS,
         offsetof(TVOFinisherInfo, crossFolds)},
        {TEXT("Punch"), TEXT("Punch%d"), kFINISHER_TABLE_PUNCH, kMAX_PUNCH_TAB_ROWS,
         offsetof(TVOFinisherInfo, punches)},
        {TEXT("Tab"), TEXT("Tab%d"), kFINISHER_TABLE_TAB_FILE, kMAX_PUNCH_TAB_ROWS,
         offsetof(TVOFinisherInfo, tabs)},
    };
    static_assert(sizeof(TVOFinisherInfo::accordionFolds) / sizeof(WORD) == kMAX_FOLD_ROWS + 1);
    static_assert(sizeof(TVOFinisherInfo::punches) / sizeof(WORD) == kMAX_PUNCH_TAB_ROWS + 1);
    WCHAR key[32];
    for (const auto& list : kLists) {
        UINT count = file.GetInt(kSection, list.pszCount, 0);
        if (count > list.room) {
            Trace(TEXT("finisher file asks for %u %s rows; %u are kept"), count, list.pszCount,
                  list.room);
            count = list.room;
        }
        WORD* codes = reinterpret_cast<WORD*>(reinterpret_cast<BYTE*>(&finisher) + list.offset);
        for (UINT n = 1; n <= count; n++) {
            WstrPrintf(key, 32, list.pszRow, n);
            file.GetString(kSection, key, TEXT(""), value, kFILE_VALUE_CCH);
            codes[n] = GetFinisherCode(list.table, value);
        }
    }

    for (UINT n = 1; n <= programs; n++) {
        TVOFinisherProgram& program = finisher.programs[n - 1];
        WstrPrintf(key, 32, TEXT("Program%d"), n);
        file.GetString(kSection, key, TEXT(""), program.name, kFILE_PROGRAM_NAME_CCH);
        // The program's own section is found by the exact text of its name.
        const WCHAR* section = program.name;
        program.width = static_cast<WORD>(file.GetInt(section, TEXT("Width"), 0));
        program.length = static_cast<WORD>(file.GetInt(section, TEXT("Length"), 0));
        program.margin = static_cast<WORD>(file.GetInt(section, TEXT("Margin"), 0));
        program.title = static_cast<WORD>(file.GetInt(section, TEXT("TitleBlock"), 0));
        file.GetString(section, TEXT("Accordion"), TEXT(""), value, kFILE_VALUE_CCH);
        program.fanFold = GetFinisherCode(kFINISHER_TABLE_ACCORDION, value);
        file.GetString(section, TEXT("Cross"), TEXT(""), value, kFILE_VALUE_CCH);
        program.crossFold = GetFinisherCode(kFINISHER_TABLE_CROSS, value);
        file.GetString(section, TEXT("Punch"), TEXT(""), value, kFILE_VALUE_CCH);
        program.punch = GetFinisherCode(kFINISHER_TABLE_PUNCH, value);
        file.GetString(section, TEXT("Tab"), TEXT(""), value, kFILE_VALUE_CCH);
        program.tab = GetFinisherCode(kFINISHER_TABLE_TAB_FILE, value);
    }
    return 5;
}
