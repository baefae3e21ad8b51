// Any record a caller can hand the exports, with any buffer sizes: the conversion with every
// mode and any pair of record sizes, too-small output buffers included; DocumentProperties in
// each mode that opens no sheet; DeviceCapabilities on every index, unknown ones included. The
// input record lies in a heap block of exactly the size it declares and every output block is
// exactly the size the call is told, so that a read or write beyond either is an ASan report.
// What the driver gives as its own record must pass its own test.
//
// The input: a selector byte (model, which calls), the conversion's output sizes, then the
// record. A record shorter than it declares is completed from the driver's default record, so
// that a cut corpus file stays the record it was.
#include "driver/config/tvodev.h"
#include "driver/devmode/devmodeex.h"
#include "fuzzhost.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

extern "C" {
DWORD WINAPI DrvDeviceCapabilities(HANDLE, PWSTR, WORD, void*, PDEVMODEW);
LONG WINAPI DrvDocumentProperties(HWND, HANDLE, PWSTR, PDEVMODEW, PDEVMODEW, DWORD);
BOOL WINAPI DrvConvertDevMode(LPWSTR, PDEVMODEW, PDEVMODEW, PLONG, DWORD);
}

namespace {

constexpr size_t kHeader = offsetof(DEVMODEW, dmFields); // what holds the declared sizes

// A heap block of exactly n bytes (n may be 0), filled from src where src has bytes.
std::unique_ptr<uint8_t[]> Block(size_t n, const uint8_t* src, size_t cbSrc)
{
    std::unique_ptr<uint8_t[]> block(new uint8_t[n]);
    if (n)
        memcpy(block.get(), src, std::min(n, cbSrc));
    return block;
}

// The bytes one element of a capability's list takes in the caller's buffer.
size_t ElementSize(WORD index)
{
    switch (index) {
    case DC_PAPERS:
    case DC_BINS:
        return sizeof(WORD);
    case DC_PAPERSIZE:
    case DC_ENUMRESOLUTIONS:
        return 2 * sizeof(LONG);
    case DC_PAPERNAMES:
    case DC_FILEDEPENDENCIES:
    case DC_MEDIAREADY:
    case DC_MEDIATYPENAMES:
        return 64 * sizeof(WCHAR);
    case DC_BINNAMES:
        return 24 * sizeof(WCHAR);
    case DC_PERSONALITY:
        return 32 * sizeof(WCHAR);
    case DC_MEDIATYPES:
    case DC_NUP:
        return sizeof(DWORD);
    default:
        return 0; // no list: nothing may be written
    }
}

std::u16string g_name = u"Fuzz";
std::vector<uint8_t> g_default;

void Capabilities(HANDLE hPrinter, PDEVMODEW pdm, WORD extra)
{
    std::vector<WORD> indexes;
    for (WORD i = 0; i <= 42; i++)
        indexes.push_back(i);
    indexes.push_back(DC_IDSYSPRN);
    indexes.push_back(DC_MMINCH);
    indexes.push_back(extra);
    for (WORD index : indexes) {
        const size_t cb = index == DC_IDSYSPRN ? 34 : ElementSize(index);
        // An index without a list is asked once, with a block of no bytes: any write to it
        // is a report. A list is counted first, then read into a block of its count.
        DWORD count = 0;
        if (cb) {
            count = DrvDeviceCapabilities(hPrinter, nullptr, index, nullptr, pdm);
            if (count == GDI_ERROR || count > 4096)
                count = 0;
        }
        std::unique_ptr<uint8_t[]> out(new uint8_t[index == DC_IDSYSPRN ? cb : cb * count]);
        DrvDeviceCapabilities(hPrinter, nullptr, index, out.get(), pdm);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzhost::Input in(data, size);
    const uint8_t selector = in.Byte();
    const std::u16string driver = fuzzhost::kDrivers[(selector & 0x0F) % fuzzhost::kDriverCount];
    HANDLE hPrinter = fuzzhost::FreshQueue(g_name, driver, u"LPT1:");
    if (g_default.empty()) {
        g_default.resize(sizeof(DEVMODEEX));
        DrvDocumentProperties(nullptr, hPrinter, g_name.data(),
                              reinterpret_cast<PDEVMODEW>(g_default.data()), nullptr,
                              DM_OUT_BUFFER);
    }
    const WORD cbOutConvert = in.Word(); // the conversion's output block
    const WORD outSize = in.Word();      // and the sizes its header declares
    const WORD outExtra = in.Word();
    const WORD extraIndex = in.Word(); // one more capability index

    // The caller's record: completed from the default where the input stops, in a block of
    // exactly what it declares (never less than the header that declares it).
    std::vector<uint8_t> bytes = in.Bytes(in.Left());
    if (bytes.size() < kHeader)
        bytes.insert(bytes.end(), g_default.begin() + bytes.size(), g_default.begin() + kHeader);
    const DEVMODEW* header = reinterpret_cast<const DEVMODEW*>(bytes.data());
    const size_t declared = std::max(kHeader, size_t(header->dmSize) + header->dmDriverExtra);
    if (bytes.size() < declared && bytes.size() < g_default.size())
        bytes.insert(bytes.end(), g_default.begin() + bytes.size(),
                     g_default.begin() + std::min(declared, g_default.size()));
    bytes.resize(declared, 0);
    std::unique_ptr<uint8_t[]> record = Block(declared, bytes.data(), bytes.size());
    PDEVMODEW pdm = reinterpret_cast<PDEVMODEW>(record.get());

    // The conversion, each mode, into a block of the size the call is told.
    for (DWORD mode : {DWORD(CDM_CONVERT), DWORD(CDM_CONVERT351), DWORD(CDM_DRIVER_DEFAULT), 0u,
                       DWORD(selector)}) {
        std::unique_ptr<uint8_t[]> out = Block(cbOutConvert, g_default.data(), g_default.size());
        if (cbOutConvert >= kHeader) {
            PDEVMODEW pOut = reinterpret_cast<PDEVMODEW>(out.get());
            pOut->dmSize = outSize;
            pOut->dmDriverExtra = outExtra;
        }
        LONG cb = cbOutConvert;
        BOOL ok = DrvConvertDevMode(g_name.data(), pdm, reinterpret_cast<PDEVMODEW>(out.get()), &cb,
                                    mode);
        if (ok && mode == CDM_DRIVER_DEFAULT)
            fuzzhost::Require(fuzzhost::RecordFault(out.get(), cbOutConvert),
                              "fuzz_exports: the conversion's default");
        if (ok && cb > LONG(cbOutConvert)) {
            std::fprintf(stderr, "mode %u: %d bytes in a block of %u\n", mode, cb, cbOutConvert);
            fuzzhost::Require("the conversion says it wrote more than the block holds",
                              "fuzz_exports");
        }
    }

    // DocumentProperties: the size, then each mode with an output block of that size.
    const LONG cbRecord = DrvDocumentProperties(nullptr, hPrinter, g_name.data(), nullptr, pdm, 0);
    if (cbRecord != LONG(sizeof(DEVMODEEX)))
        fuzzhost::Require("DocumentProperties gave another size", "fuzz_exports");
    for (DWORD mode : {DWORD(DM_OUT_BUFFER), DWORD(DM_IN_BUFFER | DM_OUT_BUFFER),
                       DWORD(DM_IN_BUFFER), DWORD(DM_IN_PROMPT | DM_IN_BUFFER | DM_OUT_BUFFER),
                       DWORD(DM_OUT_DEFAULT), DWORD(selector) & ~DWORD(DM_IN_PROMPT)}) {
        std::unique_ptr<uint8_t[]> out(new uint8_t[cbRecord]);
        memset(out.get(), 0, cbRecord);
        LONG rc = DrvDocumentProperties(nullptr, hPrinter, g_name.data(),
                                        reinterpret_cast<PDEVMODEW>(out.get()), pdm, mode);
        if (rc == 1 && mode == DM_OUT_BUFFER)
            fuzzhost::Require(fuzzhost::RecordFault(out.get(), cbRecord),
                              "fuzz_exports: DocumentProperties' own record");
    }

    Capabilities(hPrinter, pdm, extraIndex);
    if (selector & 0x80)
        Capabilities(hPrinter, nullptr, extraIndex);
    return 0;
}
