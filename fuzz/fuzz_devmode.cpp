// Any record a caller can hand the driver: the merge, the conversion and the capability answers
// read it as the driver's own where its identity says so, yet never past the size it declares.
// The record lies in a buffer of exactly its declared size, so a read beyond is an ASan report.
#include "driver/config/tvodev.h"
#include "driver/devmode/tvodm.h"
#include "driver/devmode/tvodm_convert.h"
#include "driver/entry/tvouidrv.h"
#include "platform/host/host.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

HANDLE Printer()
{
    static HANDLE hPrinter = [] {
        host::OpenStore(":memory:");
        host::PrinterRecord printer;
        printer.name = u"Fuzz";
        printer.driverName = u"Tarvo 3320 Wide Format";
        printer.portName = u"LPT1:";
        host::AddPrinter(printer);
        HANDLE h = nullptr;
        OpenPrinterW(const_cast<LPWSTR>(u"Fuzz"), &h, nullptr);
        return h;
    }();
    return hPrinter;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < offsetof(DEVMODEW, dmFields) || size > sizeof(DEVMODEEX) + 64)
        return 0;
    DEVMODEW header;
    memcpy(&header, data, offsetof(DEVMODEW, dmFields));
    size_t declared = size_t(header.dmSize) + header.dmDriverExtra;
    if (declared != size)
        return 0; // a caller's buffer holds what its record declares
    std::vector<uint8_t> record(data, data + size);
    DEVMODEW* pdm = reinterpret_cast<DEVMODEW*>(record.data());

    TVODevMode merged;
    merged.modifyDeviceMode(nullptr, pdm, data[0] % 12);

    std::vector<uint8_t> out(sizeof(DEVMODEEX));
    memcpy(out.data(), merged.m_lpDM, out.size());
    ConvertDevmode(pdm, reinterpret_cast<DEVMODEW*>(out.data()));

    TVONTUIDriver driver;
    std::vector<uint8_t> answer(64 * 64 * 2);
    for (WORD index : {DC_PAPERS, DC_BINS, DC_MMINCH, DC_ENUMRESOLUTIONS}) {
        DWORD count = driver.DrvDeviceCapabilities(Printer(), nullptr, index, nullptr, pdm);
        if (count != GDI_ERROR && count <= 64)
            driver.DrvDeviceCapabilities(Printer(), nullptr, index, answer.data(), pdm);
    }
    return 0;
}
