// The refresh's record: its defaults, its release, and the line values it is filled from.
#include "qlmrefresh_config.h"

#include <cstring>

namespace {

void ReleaseOwned(WCHAR*& field)
{
    delete[] field;
    field = nullptr;
}

} // namespace

BOOL QLMCopyLineValue(char* out, DWORD cbOut, const char* buffer, DWORD cbBuffer, DWORD value,
                      const char* stops)
{
    if (!out || cbOut == 0)
        return FALSE;
    out[0] = 0;
    const char* text = PJLValueText(buffer, cbBuffer, value);
    if (!text)
        return FALSE;
    DWORD n = 0;
    DWORD available = cbBuffer - value;
    while (n + 1 < cbOut && n < available && text[n] && !strchr(stops, text[n]))
        n++;
    memcpy(out, text, n);
    out[n] = 0;
    return TRUE;
}

void QLMInitPJLConfig(TVOPJLConfig* pjlConfig)
{
    if (!pjlConfig)
        return;
    memset(pjlConfig, 0, sizeof(*pjlConfig));
    pjlConfig->dwReserved1 = 1;
    pjlConfig->dwReserved2 = 0;
    pjlConfig->dwReserved3 = 1;
    for (int i = 0; i < kMAX_ROLLS; i++) {
        pjlConfig->rollSize[i] = kDEFAULT_ROLL_SIZE;
        pjlConfig->rollType[i] = kDEFAULT_ROLL_TYPE;
        pjlConfig->rollStat[i] = kDEFAULT_ROLL_STAT;
    }
    pjlConfig->manualSize = kDEFAULT_ROLL_SIZE;
    pjlConfig->manualType = kDEFAULT_ROLL_TYPE;
    pjlConfig->manualStat = kDEFAULT_ROLL_STAT;
}

void QLMFreePJLConfig(TVOPJLConfig* pjlConfig)
{
    if (!pjlConfig)
        return;
    ReleaseOwned(pjlConfig->firmware);
    ReleaseOwned(pjlConfig->labelFont);
    ReleaseOwned(pjlConfig->fontList);
    ReleaseOwned(pjlConfig->defaultStamp);
    ReleaseOwned(pjlConfig->stampList);
    pjlConfig->fontListSize = 0;
    pjlConfig->stampListSize = 0;
}
