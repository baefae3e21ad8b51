// A stand-in for QLMUIDrv.so with fixed, awkward answers, so that the tests of qlmhost can
// check its decoding, its buffers and its guards apart from the real driver. It writes what
// the real one would in shape: names that fill their element without a terminator, text beyond
// ASCII, lone surrogates and control characters. QLMHOST_TESTDRIVER_FAULT picks a fault:
// "overrun" writes one element (or 8 bytes) past the end it was given, "recount" answers one
// more with a buffer than without, "huge" answers a count no list could have.
#include "driver/devmode/devmodeex.h"

#include <cstdlib>
#include <cstring>
#include <string>

#define TEST_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

bool Fault(const char* name)
{
    const char* fault = getenv("QLMHOST_TESTDRIVER_FAULT");
    return fault && strcmp(fault, name) == 0;
}

// Names of exactly the element's width, each ending in 'X' and lacking a terminator.
std::u16string FullWidth(size_t cch)
{
    std::u16string name;
    for (size_t i = 0; i + 1 < cch; i++)
        name += char16_t(u'A' + i % 26);
    return name + u'X';
}

const std::u16string kPaperNames[] = {
    u"Letter",
    FullWidth(64),
    // é, a pair for U+1F600, a lone high surrogate, a quote, a backslash and a tab.
    std::u16string(u"Caf\u00e9 ") + char16_t(0xD83D) + char16_t(0xDE00) + u" " + char16_t(0xD800) +
        u" \"q\" \\ \t end",
};
constexpr WORD kPapers[] = {257, 258, 280};
constexpr LONG kPaperSizes[][2] = {{2159, 2794}, {9144, 12192}, {-1, 0}};
constexpr LONG kResolutions[][2] = {{300, 300}, {400, 400}};
const std::u16string kBinNames[] = {u"Roll 1", FullWidth(24)};
constexpr WORD kBins[] = {257, 7};

void PutName(void* out, size_t index, size_t cch, const std::u16string& name)
{
    char16_t* slot = static_cast<char16_t*>(out) + index * cch;
    memset(slot, 0, cch * 2);
    memcpy(slot, name.data(), (name.size() < cch ? name.size() : cch) * 2);
}

// Answers a list: its count without a buffer, else the elements (and the faults).
template <typename Write> DWORD List(void* out, DWORD count, size_t element, Write write)
{
    if (!out)
        return Fault("huge") ? 0x40000000 : count;
    for (DWORD i = 0; i < count; i++)
        write(i);
    if (Fault("overrun"))
        memset(static_cast<BYTE*>(out) + count * element, 0x41, element);
    return Fault("recount") ? count + 1 : count;
}

void FillRecord(DEVMODEEX* dm)
{
    memset(dm, 0, sizeof(*dm));
    dm->dmPublic.dmSpecVersion = TVO_SPEC_VERSION;
    dm->dmPublic.dmDriverVersion = TVO_DRIVER_VERSION;
    dm->dmPublic.dmSize = sizeof(DEVMODEW);
    dm->dmPublic.dmDriverExtra = kDEVMODEEX_DRIVER_EXTRA;
    dm->dmPublic.dmFields = kTVO_DM_FIELDS;
    dm->dmPublic.dmPaperSize = 257;
    dm->dmxSignature = DRIVER_SIGNATURE;
    dm->dmxDevmodeVersion = TVO_DEVMODE_VERSION;
    memcpy(dm->dmxOwner, u"Test \u00e9", 14);
    memcpy(dm->dmxFontList, u"Arial\0Stick\0\0", 26);
    memcpy(dm->dmxFinisher.Model, u"Fold 1", 12);
    dm->dmxFinisher.numPrograms = 1;
    memcpy(dm->dmxFinisher.programs[0].name, u"Program A", 18);
    dm->dmxFinisher.programs[0].maxLength = -1;
    memset(dm->padding_1, 0xCC, sizeof(dm->padding_1));
    memset(dm->padding_2, 0xCC, sizeof(dm->padding_2));
}

} // namespace

TEST_EXPORT BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID)
{
    return TRUE;
}

TEST_EXPORT DWORD WINAPI DrvDeviceCapabilities(HANDLE hPrinter, PWSTR pDeviceName, WORD iDevCap,
                                               void* pvOutput, PDEVMODEW pDevMode)
{
    // A record is read whole, as the real driver reads it: a short buffer shows under ASan.
    unsigned sum = 0;
    if (pDevMode)
        for (size_t i = 0; i < sizeof(DEVMODEEX); i++)
            sum += reinterpret_cast<const BYTE*>(pDevMode)[i];
    switch (iDevCap) {
    case DC_PAPERS:
        return List(pvOutput, 3, 2, [&](DWORD i) { static_cast<WORD*>(pvOutput)[i] = kPapers[i]; });
    case DC_PAPERSIZE:
        return List(pvOutput, 3, 8, [&](DWORD i) {
            memcpy(static_cast<BYTE*>(pvOutput) + 8 * i, kPaperSizes[i], 8);
        });
    case DC_PAPERNAMES:
        return List(pvOutput, 3, 128, [&](DWORD i) { PutName(pvOutput, i, 64, kPaperNames[i]); });
    case DC_BINS:
        return List(pvOutput, 2, 2, [&](DWORD i) { static_cast<WORD*>(pvOutput)[i] = kBins[i]; });
    case DC_BINNAMES:
        return List(pvOutput, 2, 48, [&](DWORD i) { PutName(pvOutput, i, 24, kBinNames[i]); });
    case DC_ENUMRESOLUTIONS:
        return List(pvOutput, 2, 8, [&](DWORD i) {
            memcpy(static_cast<BYTE*>(pvOutput) + 8 * i, kResolutions[i], 8);
        });
    case 25: // DC_PERSONALITY
        return List(pvOutput, 1, 64, [&](DWORD i) { PutName(pvOutput, i, 32, u"HP-GL/2"); });
    case 33: // DC_NUP
        return List(pvOutput, 2, 4, [&](DWORD i) { static_cast<DWORD*>(pvOutput)[i] = 1u << i; });
    case DC_FILEDEPENDENCIES:
        return pvOutput ? GDI_ERROR : 0;
    case DC_MAXEXTENT:
        return 12192u << 16 | 9144u;
    case DC_MINEXTENT:
        return 2794u << 16 | 2100u;
    case DC_SIZE:
        return sizeof(DEVMODEW);
    case 20552: // DC_IDSYSPRN
        if (!pvOutput)
            return GDI_ERROR;
        memset(pvOutput, 0, 34);
        memcpy(pvOutput, "IPTVOgdi7", 9);
        return 34;
    case 20553: // DC_MMINCH: 2 tells the tests that a record came with the call
        return pDevMode && sum ? 2 : 1;
    default:
        return GDI_ERROR;
    }
}

TEST_EXPORT LONG WINAPI DrvDocumentProperties(HWND, HANDLE hPrinter, PWSTR, PDEVMODEW pdmOutput,
                                              PDEVMODEW, DWORD fMode)
{
    if (!fMode)
        return sizeof(DEVMODEEX);
    if ((fMode & DM_OUT_BUFFER) && pdmOutput) {
        FillRecord(reinterpret_cast<DEVMODEEX*>(pdmOutput));
        if (Fault("overrun"))
            memset(reinterpret_cast<BYTE*>(pdmOutput) + sizeof(DEVMODEEX), 0, 8);
    }
    return IDOK;
}

// CDM_CONVERT copies the shorter public and private parts into the output's shape; the
// default is this driver's record; anything else is refused with ERROR_INVALID_PARAMETER.
TEST_EXPORT BOOL WINAPI DrvConvertDevMode(LPWSTR, PDEVMODEW pdmIn, PDEVMODEW pdmOut,
                                          PLONG pcbNeeded, DWORD fMode)
{
    if (fMode == CDM_DRIVER_DEFAULT) {
        if (*pcbNeeded < LONG(sizeof(DEVMODEEX)) || !pdmOut) {
            *pcbNeeded = sizeof(DEVMODEEX);
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return FALSE;
        }
        FillRecord(reinterpret_cast<DEVMODEEX*>(pdmOut));
        *pcbNeeded = sizeof(DEVMODEEX);
        return TRUE;
    }
    if (fMode != CDM_CONVERT || !pdmIn || !pdmOut ||
        *pcbNeeded < LONG(pdmOut->dmSize + pdmOut->dmDriverExtra)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    WORD size = pdmOut->dmSize, extra = pdmOut->dmDriverExtra;
    memcpy(pdmOut, pdmIn, size < pdmIn->dmSize ? size : pdmIn->dmSize);
    pdmOut->dmSize = size;
    pdmOut->dmDriverExtra = extra;
    memcpy(reinterpret_cast<BYTE*>(pdmOut) + size, reinterpret_cast<BYTE*>(pdmIn) + pdmIn->dmSize,
           extra < pdmIn->dmDriverExtra ? extra : pdmIn->dmDriverExtra);
    if (Fault("overrun"))
        memset(reinterpret_cast<BYTE*>(pdmOut) + *pcbNeeded, 0, 8);
    *pcbNeeded = size + extra;
    return TRUE;
}
