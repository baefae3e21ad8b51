// The tables by which a printer's words and other drivers' codes become record values.
#include "tvodm.h"

#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"

namespace {

struct TextCode
{
    const WCHAR* pszText;
    LONG lCode;
};

template <size_t N>
LONG LookUp(const TextCode (&table)[N], LPCWSTR pszText, LONG lNoMatch, bool bIgnoreCase = false)
{
    if (!pszText)
        return lNoMatch;
    for (const TextCode& row : table) {
        int cmp = bIgnoreCase ? WstrICmp(row.pszText, pszText) : WstrCmp(row.pszText, pszText);
        if (cmp == 0)
            return row.lCode;
    }
    return lNoMatch;
}

// The other way: the first row's text for a code, as tools and displays name it.
template <size_t N> LPCWSTR TextOf(const TextCode (&table)[N], LONG lCode)
{
    for (const TextCode& row : table) {
        if (row.lCode == lCode)
            return row.pszText;
    }
    return nullptr;
}

// Firmware levels by ordinal. 18, 19, 20 and 23 are unused, and "4.1" has no row: the code
// that compares revisions works with these ordinals.
const TextCode kFirmwareRevisions[] = {
    {TEXT("3.0"), 0},   {TEXT("4.0"), 1},   {TEXT("4.2"), 2},   {TEXT("5.0"), 3},
    {TEXT("6.0"), 4},   {TEXT("6.1"), 5},   {TEXT("6.2"), 6},   {TEXT("7.0"), 7},
    {TEXT("7.5"), 8},   {TEXT("8.0"), 9},   {TEXT("8.5"), 10},  {TEXT("9.0"), 11},
    {TEXT("9.1"), 12},  {TEXT("9.2"), 13},  {TEXT("9.5"), 14},  {TEXT("10.0"), 15},
    {TEXT("10.1"), 16}, {TEXT("10.2"), 17}, {TEXT("11.0"), 21}, {TEXT("11.1"), 22},
    {TEXT("12.0"), 24}, {TEXT("12.1"), 25}, {TEXT("12.2"), 26}, {TEXT("12.5"), 27},
    {TEXT("12.7"), 28},
};

const TextCode kRollSizes[] = {
    {TEXT("Roll A0"), 25},    {TEXT("Roll A1"), 20},    {TEXT("Roll A2"), 18},
    {TEXT("Roll A3"), 16},    {TEXT("Roll 440mm"), 21}, {TEXT("Roll 620mm"), 22},
    {TEXT("Roll 860mm"), 26}, {TEXT("Roll 880mm"), 27}, {TEXT("Roll 750mm"), 24},
    {TEXT("Roll 900mm"), 28}, {TEXT("Roll 11in"), 0},   {TEXT("Roll 17in"), 2},
    {TEXT("Roll 12in"), 1},   {TEXT("Roll 34in"), 7},   {TEXT("Roll 30in"), 6},
    {TEXT("Roll 18in"), 3},   {TEXT("Roll 24in"), 5},   {TEXT("Roll 22in"), 4},
    {TEXT("Roll 36in"), 8},   {TEXT("Roll 38in"), 9},   {TEXT("Roll 42in"), 10},
    {TEXT("Roll 44in"), 11},  {TEXT("Roll 48in"), 12},  {TEXT("Roll 50in"), 13},
    {TEXT("Roll 53in"), 14},  {TEXT("Roll 54in"), 15},  {TEXT("Roll B1"), 23},
    {TEXT("Roll B2"), 19},    {TEXT("Roll B3"), 17},
};

const TextCode kRollStatuses[] = {
    {TEXT("None"), 0},
    {TEXT("Full"), 1},
    {TEXT("Low"), 2},
    {TEXT("Empty"), 3},
};

const TextCode kMediaTypes[] = {
    {TEXT("Paper"), 0},
    {TEXT("Bond"), 0},
    {TEXT("Vellum"), 1},
    {TEXT("Film"), 2},
    {TEXT("Any"), 3},
    {TEXT("PRODUCTION_360"), 4},
    {TEXT("PRESENTATION_360"), 5},
    {TEXT("PRESENTATION_720"), 6},
    {TEXT("REINFORCED_PAPER_360"), 7},
    {TEXT("WHITE_MATTE_FILM_360"), 8},
    {TEXT("BACKLIT_FILM_360/720"), 9},
    {TEXT("POLY_CLOTH_360"), 10},
    {TEXT("POLY_CANVAS_360"), 11},
    {TEXT("PSV_360"), 12},
    {TEXT("PHOTOGLOSSY_PAPER_360"), 13},
    {TEXT("90_GM_GA_PAPER_360"), 14},
    {TEXT("OUTDOOR_PAPER_360"), 15},
    {TEXT("DISPLAY_PAPER_720"), 16},
    {TEXT("BACKLIT_FILM_360"), 17},
    {TEXT("BACKLIT_FILM_720"), 18},
    {TEXT("LINE_ART_360"), 19},
};

const TextCode kFinisherTypes[] = {
    {TEXT("Not Installed"), kFINISHER_NONE},
    {TEXT("Gera Iso"), kFINISHER_GERA_ISO},
    {TEXT("Gera Ansi"), kFINISHER_GERA_ANSI},
    {TEXT("Gera Ansi Special"), kFINISHER_GERA_ANSI_SPECIAL},
    {TEXT("GFI Finisher"), kFINISHER_GFI},
};

// The platform's standard papers that have a counterpart among the driver's own.
const struct
{
    short platform;
    short own;
} kPaperCodes[] = {
    {DMPAPER_LETTER, 259}, {DMPAPER_LETTERSMALL, 259}, {DMPAPER_TABLOID, 260},
    {DMPAPER_LEDGER, 260}, {DMPAPER_11X17, 260},       {DMPAPER_A3, 273},
    {DMPAPER_A4, 274},     {DMPAPER_CSHEET, 261},      {DMPAPER_DSHEET, 262},
    {DMPAPER_ESHEET, 263}, {DMPAPER_ISO_B4, 278},
};

} // namespace

LONG TVODevMode::GetFirmwareRev(LPCWSTR pszText)
{
    return LookUp(kFirmwareRevisions, pszText, 28);
}

DWORD TVODevMode::GetRollSizeCode(LPCWSTR pszText)
{
    return static_cast<DWORD>(LookUp(kRollSizes, pszText, 25));
}

DWORD TVODevMode::GetRollStatusCode(LPCWSTR pszText)
{
    return static_cast<DWORD>(LookUp(kRollStatuses, pszText, 3));
}

DWORD TVODevMode::GetMediaTypeCode(LPCWSTR pszText)
{
    return static_cast<DWORD>(LookUp(kMediaTypes, pszText, 0));
}

DWORD TVODevMode::GetFinisherTypeCode(LPCWSTR pszText)
{
    return static_cast<DWORD>(LookUp(kFinisherTypes, pszText, kFINISHER_NONE, true));
}

LPCWSTR TVODevMode::GetFirmwareRevText(LONG lCode)
{
    return TextOf(kFirmwareRevisions, lCode);
}

LPCWSTR TVODevMode::GetRollSizeText(DWORD code)
{
    return TextOf(kRollSizes, static_cast<LONG>(code));
}

LPCWSTR TVODevMode::GetRollStatusText(DWORD code)
{
    return TextOf(kRollStatuses, static_cast<LONG>(code));
}

LPCWSTR TVODevMode::GetMediaTypeText(DWORD code)
{
    return TextOf(kMediaTypes, static_cast<LONG>(code));
}

LPCWSTR TVODevMode::GetFinisherTypeText(DWORD code)
{
    return TextOf(kFinisherTypes, static_cast<LONG>(code));
}

short TVODevMode::convertDMPaperSize(short code)
{
    // The driver's own codes, custom and user forms included, pass unchanged.
    if (code >= 256)
        return code;
    for (const auto& row : kPaperCodes) {
        if (row.platform == code)
            return row.own;
    }
    return 119;
}

short TVODevMode::convertDMDefaultSource(short code)
{
    if (code == DMBIN_MANUAL || (code >= 257 && code <= 262))
        return code;
    return DMBIN_AUTO;
}
