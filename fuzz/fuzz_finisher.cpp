// Any finisher description file a user can pick, read as the device tab reads it: through the
// initialisation-file reader into the record's finisher block, the result becoming the
// record's finisher type. Nothing outside the block and the type may change, the guards
// included, whatever the file holds: a count, a section or a value of any size.
#include "driver/config/tvoconfg.h"
#include "driver/devmode/tvodm.h"
#include "fuzzhost.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

struct Setup
{
    HANDLE hPrinter;
    TVOPrinterConfiguration* config;
    std::vector<uint8_t> record; // the queue's default record, the same for every input
    std::string path;
    std::u16string widePath;
};

const Setup& Once()
{
    static Setup setup = [] {
        Setup s;
        s.hPrinter = fuzzhost::FreshQueue(u"Fuzz", fuzzhost::kDriver, u"LPT1:");
        s.config = new TVOPrinterConfiguration(fuzzhost::kDriver);
        s.config->setPrinterHandle(s.hPrinter);
        TVODevMode defaults(s.hPrinter);
        const uint8_t* p = reinterpret_cast<const uint8_t*>(defaults.m_lpDM);
        s.record.assign(p, p + sizeof(DEVMODEEX));
        s.path = fuzzhost::HomeFile("finisher.ini");
        s.widePath.assign(s.path.begin(), s.path.end());
        return s;
    }();
    return setup;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const Setup& s = Once();
    fuzzhost::WriteFile(s.path, data, size);

    // The record in a heap block of exactly its size, so a write past it is a report.
    std::vector<uint8_t> before(s.record);
    // The block starts from what a record may hold: a marker shows what the file leaves alone.
    DEVMODEEX* seed = reinterpret_cast<DEVMODEEX*>(before.data());
    memset(&seed->dmxFinisher, size ? data[0] : 0xA5, sizeof(seed->dmxFinisher));
    std::vector<uint8_t> after(before);
    DEVMODEEX* dm = reinterpret_cast<DEVMODEEX*>(after.data());

    DWORD type =
        s.config->addFInisherFromFileToDevmode(reinterpret_cast<LPCWSTR>(s.widePath.c_str()), dm);
    dm->dmxFinisherType = type;

    // What the file may touch: the type and the block; every other byte stays.
    const size_t first = offsetof(DEVMODEEX, dmxFinisherType);
    const size_t last = offsetof(DEVMODEEX, dmxFinisher) + sizeof(TVOFinisherInfo);
    if (memcmp(before.data(), after.data(), first) != 0 ||
        memcmp(before.data() + last, after.data() + last, after.size() - last) != 0)
        fuzzhost::Require("a byte outside the finisher block changed", "fuzz_finisher");
    fuzzhost::Require(fuzzhost::RecordFault(dm, after.size()), "fuzz_finisher");
    if (type != 0 && type != 5)
        fuzzhost::Require("the file gave a finisher type other than none or from a file",
                          "fuzz_finisher");
    if (type && dm->dmxFinisher.numPrograms > kFINISHER_MAX_PROGRAMS)
        fuzzhost::Require("more programs than the block holds", "fuzz_finisher");
    const TVOFinisherInfo& f = dm->dmxFinisher;
    // The file's texts are cut to 64 and 16 characters, terminator included.
    if (type && (std::find(f.Model, f.Model + 64, 0) == f.Model + 64 ||
                 std::find(f.Version, f.Version + 16, 0) == f.Version + 16))
        fuzzhost::Require("the model or version is not terminated", "fuzz_finisher");
    return 0;
}
