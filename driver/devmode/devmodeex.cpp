// DEVMODEEX: the field table, the identity tests and the dump.
#include "devmodeex.h"

#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"

#include <cstring>

#define DEVMODEEX_PUBLIC_ROW(name, offset, kind, width)                                            \
    {#name, offset, sizeof(DEVMODEW::name), width, kind},
#define DEVMODEEX_PRIVATE_ROW(name, offset, kind, width)                                           \
    {#name, offset, sizeof(DEVMODEEX::name), width, kind},
const DEVMODEEX_FIELD g_DevmodeFields[] = {DEVMODEEX_PUBLIC_FIELDS(DEVMODEEX_PUBLIC_ROW)
                                               DEVMODEEX_PRIVATE_FIELDS(DEVMODEEX_PRIVATE_ROW)};
#undef DEVMODEEX_PUBLIC_ROW
#undef DEVMODEEX_PRIVATE_ROW
const size_t g_cDevmodeFields = sizeof(g_DevmodeFields) / sizeof(g_DevmodeFields[0]);

#define TVOFINISHERINFO_ROW(name, offset, kind, width)                                             \
    {#name, offset, sizeof(TVOFinisherInfo::name), width, kind},
#define TVOFINISHERPROGRAM_ROW(name, offset, kind, width)                                          \
    {#name, offset, sizeof(TVOFinisherProgram::name), width, kind},
const DEVMODEEX_FIELD g_FinisherInfoFields[] = {TVOFINISHERINFO_FIELDS(TVOFINISHERINFO_ROW)};
const size_t g_cFinisherInfoFields = sizeof(g_FinisherInfoFields) / sizeof(g_FinisherInfoFields[0]);
const DEVMODEEX_FIELD g_FinisherProgramFields[] = {
    TVOFINISHERPROGRAM_FIELDS(TVOFINISHERPROGRAM_ROW)};
const size_t g_cFinisherProgramFields =
    sizeof(g_FinisherProgramFields) / sizeof(g_FinisherProgramFields[0]);
#undef TVOFINISHERINFO_ROW
#undef TVOFINISHERPROGRAM_ROW

eDevmodeKind GetDevmodeKind(const DEVMODEW* pdm)
{
    if (!pdm || pdm->dmSpecVersion != TVO_SPEC_VERSION ||
        pdm->dmDriverVersion != TVO_DRIVER_VERSION)
        return kDM_FOREIGN;

    // The signature is read at its place in our layout, and only when the record says it
    // reaches that far.
    DWORD cbDeclared = static_cast<DWORD>(pdm->dmSize) + pdm->dmDriverExtra;
    if (cbDeclared < offsetof(DEVMODEEX, dmxSignature) + sizeof(DWORD))
        return kDM_FOREIGN;
    DWORD dwSignature = 0;
    memcpy(&dwSignature, reinterpret_cast<const BYTE*>(pdm) + offsetof(DEVMODEEX, dmxSignature),
           sizeof(dwSignature));
    if (dwSignature != DRIVER_SIGNATURE)
        return kDM_FOREIGN;

    bool bOwnPublicSize = pdm->dmSize == sizeof(DEVMODEW);
    if (pdm->dmDriverExtra == kDEVMODEEX_DRIVER_EXTRA)
        return bOwnPublicSize ? kDM_OWN_CURRENT : kDM_OWN_FOREIGN_PUBLIC;
    if (pdm->dmDriverExtra == kDEVMODEEX1_DRIVER_EXTRA)
        return bOwnPublicSize ? kDM_OWN_OLDER : kDM_OLDER_FOREIGN_PUBLIC;
    return kDM_FOREIGN;
}

BOOL IsOwnCurrentDevmode(const DEVMODEW* pdm)
{
    return GetDevmodeKind(pdm) == kDM_OWN_CURRENT;
}

BOOL IsOwnOlderDevmode(const DEVMODEW* pdm)
{
    return GetDevmodeKind(pdm) == kDM_OWN_OLDER;
}

namespace {

LONG ReadElement(const BYTE* p, DWORD cbElement, bool bSigned)
{
    switch (cbElement) {
    case 1:
        return bSigned ? static_cast<LONG>(static_cast<int8_t>(*p)) : *p;
    case 2: {
        uint16_t w;
        memcpy(&w, p, sizeof(w));
        return bSigned ? static_cast<LONG>(static_cast<int16_t>(w)) : w;
    }
    default: {
        uint32_t d;
        memcpy(&d, p, sizeof(d));
        return static_cast<LONG>(d);
    }
    }
}

// The elements of a numeric field, joined by blanks, cut to the buffer.
void FormatNumbers(WCHAR* pszOut, size_t cchOut, const BYTE* p, const DEVMODEEX_FIELD& field)
{
    pszOut[0] = 0;
    size_t cch = 0;
    DWORD count = field.cbSize / field.cbElement;
    for (DWORD i = 0; i < count && cch + 1 < cchOut; i++) {
        LONG value = ReadElement(p + i * field.cbElement, field.cbElement,
                                 field.eKind == kDMF_SIGNED || field.eKind == kDMF_FIXED);
        const WCHAR* format = field.eKind == kDMF_HEX        ? (i ? TEXT(" 0x%X") : TEXT("0x%X"))
                              : field.eKind == kDMF_UNSIGNED ? (i ? TEXT(" %u") : TEXT("%u"))
                                                             : (i ? TEXT(" %d") : TEXT("%d"));
        if (field.eKind == kDMF_FIXED) {
            TVOFixed fixed;
            memcpy(&fixed, p + i * field.cbElement, sizeof(fixed));
            cch += WstrPrintf(pszOut + cch, cchOut - cch, i ? TEXT(" %S") : TEXT("%S"),
                              static_cast<char*>(fixed));
        } else {
            cch += WstrPrintf(pszOut + cch, cchOut - cch, format, value);
        }
    }
}

} // namespace

void TraceDevmode(const DEVMODEEX* pdm, const WCHAR* pszTitle)
{
    TVOTraceFlagScope scope(g_bTraceTVODevMode);
    if (!pdm) {
        Trace(TEXT("%s: pointer is NULL"), pszTitle);
        return;
    }
    Trace(TEXT("%s:"), pszTitle);
    const BYTE* base = reinterpret_cast<const BYTE*>(pdm);
    for (size_t i = 0; i < g_cDevmodeFields; i++) {
        const DEVMODEEX_FIELD& field = g_DevmodeFields[i];
        const BYTE* p = base + field.dwOffset;
        WCHAR szValue[200];
        switch (field.eKind) {
        case kDMF_TEXT:
        case kDMF_LIST: {
            // A list shows its first name; the text is bounded by the field, terminated or not.
            size_t cchField = field.cbSize / sizeof(WCHAR);
            WCHAR szText[200];
            size_t n = 0;
            const WCHAR* pText = reinterpret_cast<const WCHAR*>(p);
            while (n < cchField && n + 1 < 200 && pText[n]) {
                szText[n] = pText[n];
                n++;
            }
            szText[n] = 0;
            WstrPrintf(szValue, 200, TEXT("\"%s\""), szText);
            break;
        }
        case kDMF_BYTES:
            WstrPrintf(szValue, 200, TEXT("(%u bytes)"), field.cbSize);
            break;
        case kDMF_FINISHER: {
            WCHAR szModel[64];
            WstrNCopy(szModel, pdm->dmxFinisher.Model, 63);
            szModel[63] = 0;
            WstrPrintf(szValue, 200, TEXT("model \"%s\", %u programs"), szModel,
                       pdm->dmxFinisher.numPrograms);
            break;
        }
        default:
            FormatNumbers(szValue, 200, p, field);
            break;
        }
        Trace(TEXT("  %4u %S = %s"), field.dwOffset, field.pszName, szValue);
    }
}
