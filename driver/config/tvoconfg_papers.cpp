// The device answers of a configuration: resolutions, papers and their limits, rolls, bins and
// the extents.
#include "tvoconfg.h"

#include "../../resources/qlmres.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "tvoconfg_internal.h"
#include "tvoconfg_lists.h"

#include <cstdint>
#include <cstring>

using namespace tvoconfglists;

namespace {

// The user forms that the paper lists can show: the count stays within the table.
int ClampFormCount(int count)
{
    if (count < 0)
        return 0;
    return count > kMAX_USER_FORMS ? kMAX_USER_FORMS : count;
}

} // namespace

BOOL TVOPrinterConfiguration::isValidRes(int res) const
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::isValidRes"), TraceConfig());
    if (res == 200 || res == 300 || res == 400)
        return TRUE;
    if (res == 600 && IsHighResolutionModel(m_PrinterModel))
        return TRUE;
    return res == m_maxRes;
}

int TVOPrinterConfiguration::getResolutionInfo(const DEVMODEEX* lpEnv, void* lpOutput, WORD wIndex)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getResolutionInfo"), TraceConfig());
    (void)lpEnv;
    (void)wIndex;
    LONG* pOut = static_cast<LONG*>(lpOutput);
    int count = 0;
    for (TVOList row = m_ResolutionList; row && row->dwResourceId; row++) {
        count++;
        if (!pOut)
            continue;
        LONG dpi = 400;
        if (row->dwValue == 0)
            dpi = 200;
        else if (row->dwValue == 1)
            dpi = 300;
        else if (row->dwValue == 3)
            dpi = 600;
        *pOut++ = dpi;
        *pOut++ = dpi;
    }
    return count;
}

// ---- Papers ------------------------------------------------------------------------------------

int TVOPrinterConfiguration::CountPaperInfo(TVOList list) const
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::CountPaperInfo"), TraceConfig());
    int count = 0;
    for (TVOList row = list; row && row->dwResourceId; row++)
        count++;
    return count;
}

int TVOPrinterConfiguration::getPaperInfo(const DEVMODEEX* lpEnv, void* lpOutput, WORD wIndex)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getPaperInfo"), TraceConfig());
    ASSERT(lpEnv);
    if (!lpEnv) {
        Trace(TEXT("bad parameter lpEnv == NULL"));
        return 0;
    }
    ASSERT(wIndex == DC_PAPERS || wIndex == DC_PAPERSIZE || wIndex == DC_PAPERNAMES);
    if (wIndex != DC_PAPERS && wIndex != DC_PAPERSIZE && wIndex != DC_PAPERNAMES) {
        Trace(TEXT("bad parameter wIndex not valid"));
        return 0;
    }

    const DWORD dwShow = lpEnv->dmxShowPaperTypes;
    const struct
    {
        DWORD bit;
        TVOList list;
    } groups[] = {
        {kSHOW_STANDARD, m_PaperGroupStandard},
        {kSHOW_ANSI, m_PaperGroupAnsi},
        {kSHOW_ARCH, m_PaperGroupArch},
        {kSHOW_ISO, m_PaperGroupIso},
    };

    int count = 0;
    if (!lpOutput) {
        for (const auto& group : groups)
            if (dwShow & group.bit)
                count += CountPaperInfo(group.list);
        if (dwShow & kSHOW_USER_FORMS)
            count += ClampFormCount(m_UserFormCount);
        return count + 1;
    }

    WCHAR* pNames = static_cast<WCHAR*>(lpOutput);
    WORD* pPapers = static_cast<WORD*>(lpOutput);
    POINT* pSizes = static_cast<POINT*>(lpOutput);
    for (const auto& group : groups)
        if (dwShow & group.bit)
            count += AddPaperInfo(group.list, wIndex, &pNames, &pPapers, &pSizes);
    if (dwShow & kSHOW_USER_FORMS)
        count += AddUserDefinedPapers(lpEnv->dmxUnits, wIndex, &pNames, &pPapers, &pSizes);
    count += AddCustomPaper(lpEnv, wIndex, &pNames, &pPapers, &pSizes);
    return count;
}

int TVOPrinterConfiguration::AddPaperInfo(TVOList list, WORD wIndex, WCHAR** ppNames,
                                          WORD** ppPapers, POINT** ppSizes)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::AddPaperInfo"), TraceConfig());
    int count = 0;
    for (TVOList row = list; row && row->dwResourceId; row++, count++) {
        switch (wIndex) {
        case DC_PAPERS:
            *(*ppPapers)++ = static_cast<WORD>(row->dwValue);
            break;
        case DC_PAPERSIZE: {
            DWORD index = row->dwValue - PAPER_FIRST_STANDARD;
            ASSERT(index < static_cast<DWORD>(kNUM_PAPER_SIZES));
            POINT size = {0, 0};
            if (m_PaperSizes && index < static_cast<DWORD>(kNUM_PAPER_SIZES))
                size = m_PaperSizes[index];
            *(*ppSizes)++ = size;
            break;
        }
        case DC_PAPERNAMES:
            // wcsncpy's rule: a name of 64 characters or more is not terminated.
            WstrNCopy(*ppNames, getResourceString(row->dwResourceId), kPAPER_NAME_CCH);
            *ppNames += kPAPER_NAME_CCH;
            break;
        default:
            break;
        }
    }
    return count;
}

int TVOPrinterConfiguration::AddUserDefinedPapers(DWORD units, WORD wIndex, WCHAR** ppNames,
                                                  WORD** ppPapers, POINT** ppSizes)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::AddUserDefinedPapers"), TraceConfig());
    // The unit text is read once; a unit that is neither inches nor millimetres has none.
    WCHAR szUnits[64] = {};
    if (units == kDISTANCE_INCHES)
        WstrCopy(szUnits, 64, getResourceString(IDS_UNITS_INCHES));
    else if (units == kDISTANCE_MM)
        WstrCopy(szUnits, 64, getResourceString(IDS_UNITS_MM));

    const int count = ClampFormCount(m_UserFormCount);
    for (int i = 0; i < count; i++) {
        const USERFORM& form = m_UserForms[i];
        switch (wIndex) {
        case DC_PAPERS:
            *(*ppPapers)++ = static_cast<WORD>(PAPER_USER_BASE + i);
            break;
        case DC_PAPERSIZE:
            (*ppSizes)->x = static_cast<LONG>(form.width);
            (*ppSizes)->y = static_cast<LONG>(form.length);
            (*ppSizes)++;
            break;
        case DC_PAPERNAMES: {
            // Tenths of a millimetre to millimetres, and to inches for an inch display.
            TVOFixed width(static_cast<long>(form.width));
            TVOFixed length(static_cast<long>(form.length));
            width /= 10;
            length /= 10;
            if (units == kDISTANCE_INCHES) {
                width.MMToInches();
                length.MMToInches();
            }
            // toString shares one buffer: keep each text before asking for the next.
            WCHAR szWidth[32] = {};
            WCHAR szLength[32] = {};
            WstrCopy(szWidth, 32, width.toString(static_cast<eDistanceUnits>(units)));
            WstrCopy(szLength, 32, length.toString(static_cast<eDistanceUnits>(units)));

            WCHAR szName[33];
            WstrNCopy(szName, form.name, 32);
            szName[32] = 0;

            WCHAR szDisplay[160];
            WstrPrintf(szDisplay, 160, TEXT("%s (%sx%s%s)"), szName, szWidth, szLength, szUnits);
            WstrNCopy(*ppNames, szDisplay, kPAPER_NAME_CCH);
            *ppNames += kPAPER_NAME_CCH;
            break;
        }
        default:
            break;
        }
    }
    return count;
}

int TVOPrinterConfiguration::AddCustomPaper(const DEVMODEEX* lpEnv, WORD wIndex, WCHAR** ppNames,
                                            WORD** ppPapers, POINT** ppSizes)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::AddCustomPaper"), TraceConfig());
    switch (wIndex) {
    case DC_PAPERS:
        *(*ppPapers)++ = PAPER_CUSTOM;
        break;
    case DC_PAPERSIZE: {
        // Thousandths of tenths of a millimetre, rounded to whole tenths; 32-bit as stored.
        ASSERT(lpEnv);
        int64_t width = lpEnv ? lpEnv->dmxPaperWidth.getThousandths() : 0;
        int64_t length = lpEnv ? lpEnv->dmxPaperLength.getThousandths() : 0;
        (*ppSizes)->x = static_cast<LONG>(static_cast<int32_t>(width + 500) / 1000);
        (*ppSizes)->y = static_cast<LONG>(static_cast<int32_t>(length + 500) / 1000);
        (*ppSizes)++;
        break;
    }
    case DC_PAPERNAMES:
        WstrNCopy(*ppNames, getResourceString(IDS_PAPER_CUSTOM), kPAPER_NAME_CCH);
        *ppNames += kPAPER_NAME_CCH;
        break;
    default:
        break;
    }
    return 1;
}

void TVOPrinterConfiguration::getLongPlotSizes(DEVMODEEX* lpdm, DWORD dwWidth, DWORD dwLength,
                                               POINT* lpSize, short* lpScale)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getLongPlotSizes"), TraceConfig());
    ASSERT(lpdm && lpSize && lpScale);
    if (lpSize) {
        lpSize->x = static_cast<LONG>(dwWidth);
        lpSize->y = static_cast<LONG>(dwLength);
    }
    if (lpdm) {
        lpdm->dmxPaperWidth = TVOFixed(static_cast<long>(dwWidth));
        lpdm->dmxPaperLength = TVOFixed(static_cast<long>(dwLength));
        // A long plot is not scaled down.
        lpdm->dmPublic.dmScale = 100;
    }
    if (lpScale)
        *lpScale = 100;
}

// ---- Limits of a custom size -------------------------------------------------------------------

namespace {

// A limit given in thousandths of an inch and of a millimetre, in the units asked for; another
// unit asserts and gives the fallback (0 for a minimum, 1 for a maximum).
TVOFixed LimitInUnits(DWORD units, int32_t inches, int32_t millimetres, long fallback)
{
    if (units == kFIXED_INCHES)
        return TVOFixed::fromThousandths(inches);
    if (units == kFIXED_MM)
        return TVOFixed::fromThousandths(millimetres);
    ASSERT(units == kFIXED_INCHES || units == kFIXED_MM);
    return TVOFixed(fallback);
}

} // namespace

TVOFixed TVOPrinterConfiguration::getMinPaperWidth(DWORD units)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getMinPaperWidth"), TraceConfig());
    return LimitInUnits(units, 8000, 203200, 0);
}

TVOFixed TVOPrinterConfiguration::getMaxPaperWidth(DWORD units, BOOL bWide)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getMaxPaperWidth"), TraceConfig());
    return bWide ? LimitInUnits(units, 54000, 1371600, 1) : LimitInUnits(units, 36000, 914400, 1);
}

TVOFixed TVOPrinterConfiguration::getMinPaperLength(DWORD units)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getMinPaperLength"), TraceConfig());
    return LimitInUnits(units, 10000, 254000, 0);
}

TVOFixed TVOPrinterConfiguration::getMaxPaperLength(DWORD units)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getMaxPaperLength"), TraceConfig());
    return LimitInUnits(units, 960000, 24384000, 1);
}

// ---- Rolls, bins, extents ----------------------------------------------------------------------

LPWSTR TVOPrinterConfiguration::getRollSize(DWORD code)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getRollSize"), TraceConfig());
    const DWORD cCodes = sizeof(kRollSizeNames) / sizeof(kRollSizeNames[0]);
    return getResourceString(code < cCodes ? kRollSizeNames[code] : IDS_ROLL_UNKNOWN);
}

int TVOPrinterConfiguration::getBinInfo(DEVMODEEX* lpEnv, void* lpOutput, WORD wIndex)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getBinInfo"), TraceConfig());
    ASSERT(lpEnv);
    if (!lpEnv)
        return 0;
    // The caller's record learns how many rolls the model can hold.
    if (lpEnv->dmxNumRolls > m_NumRolls)
        lpEnv->dmxNumRolls = m_NumRolls;

    WORD* pBins = static_cast<WORD*>(lpOutput);
    WCHAR* pNames = static_cast<WCHAR*>(lpOutput);
    int count = 0;
    DWORD position = 0;
    for (TVOList row = m_BinList; row && row->dwResourceId; row++, position++) {
        // Rolls from roll 1 up to the rolls present; manual feed and automatic always.
        if (position >= lpEnv->dmxNumRolls && row->dwValue != DMBIN_MANUAL &&
            row->dwValue != DMBIN_AUTO)
            continue;
        count++;
        if (!lpOutput)
            continue;
        if (wIndex == DC_BINS) {
            *pBins++ = static_cast<WORD>(row->dwValue);
        } else if (wIndex == DC_BINNAMES) {
            WstrNCopy(pNames, getResourceString(row->dwResourceId), kBIN_NAME_CCH);
            pNames += kBIN_NAME_CCH;
        }
    }
    return count;
}

DWORD TVOPrinterConfiguration::calcMinMaxExtent(const DEVMODEEX* lpEnv, void* lpOutput, WORD wIndex)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::calcMinMaxExtent"), TraceConfig());
    (void)lpEnv;
    (void)lpOutput;
    LONG minWidth = 32767;
    LONG minLength = 32767;
    LONG maxWidth = 0;
    LONG maxLength = 0;
    // The sizes are taken by position in the list, not by the row's code.
    int position = 0;
    for (TVOList row = m_PaperList; row && row->dwResourceId && position < kNUM_PAPER_SIZES;
         row++, position++) {
        const POINT& size = m_PaperSizes[position];
        if (size.x < minWidth)
            minWidth = size.x;
        if (size.y < minLength)
            minLength = size.y;
        if (size.x > maxWidth)
            maxWidth = size.x;
        if (size.y > maxLength)
            maxLength = size.y;
    }
    auto pack = [](LONG length, LONG width) {
        DWORD hi = static_cast<DWORD>(length < 32767 ? length : 32767);
        DWORD lo = static_cast<DWORD>(width < 32767 ? width : 32767);
        return (hi << 16) | (lo & 0xFFFF);
    };
    if (wIndex == DC_MINEXTENT)
        return pack(minLength, minWidth);
    return pack(maxLength, maxWidth);
}
