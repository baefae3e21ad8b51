// Any bytes a printer can send, through the whole refresh: the debug switch "DBG_BidiFromFile"
// makes QLMRefresh read the six replies from a capture file instead of the socket, so the
// bytes take the real path from the receive buffer through the parser, the decoder and the
// finisher's tokens into the record. The record afterwards must still be the driver's own,
// its guards intact and its rolls within their room. (The finisher's program count is copied
// as the printer said it, beyond the block's 20 programs too; its readers cut it.)
#include "driver/config/tvoconfg.h"
#include "driver/devmode/tvodm.h"
#include "driver/dialogue/qlmrefresh.h"
#include "driver/dialogue/tvoparsepjl.h"
#include "fuzzhost.h"
#include "platform/host/host.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

struct Setup
{
    HANDLE hPrinter;
    TVOPrinterConfiguration* config;
    std::vector<uint8_t> record;
    std::string path;
};

const Setup& Once()
{
    static Setup setup = [] {
        Setup s;
        s.hPrinter = fuzzhost::FreshQueue(u"Fuzz", fuzzhost::kDriver, u"LPT1:");
        DWORD on = 1;
        std::vector<uint8_t> bytes(4);
        memcpy(bytes.data(), &on, 4);
        host::SetPrinterData(
            u"Fuzz", host::DataValue{u"DebugSettings", u"DBG_BidiFromFile", REG_DWORD, bytes});
        s.config = new TVOPrinterConfiguration(fuzzhost::kDriver);
        s.config->setPrinterHandle(s.hPrinter);
        TVODevMode defaults(s.hPrinter);
        const uint8_t* p = reinterpret_cast<const uint8_t*>(defaults.m_lpDM);
        s.record.assign(p, p + sizeof(DEVMODEEX));
        s.path = fuzzhost::HomeFile("replies.pjl");
        return s;
    }();
    return setup;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > kPJL_REPLY_BUFFER_SIZE + 16)
        return 0; // the refresh reads no more than its buffer holds
    const Setup& s = Once();
    fuzzhost::WriteFile(s.path, data, size);
    host::ClearFilePickerAnswers();
    host::QueueFilePickerAnswer(host::Utf8ToUtf16(s.path));

    std::vector<uint8_t> record(s.record);
    DEVMODEEX* dm = reinterpret_cast<DEVMODEEX*>(record.data());
    if (QLMRefresh(s.config, dm, nullptr) != 1)
        fuzzhost::Require("the refresh gave up on a capture it could read", "fuzz_conversation");

    fuzzhost::Require(fuzzhost::RecordFault(dm, record.size()), "fuzz_conversation");
    if (dm->dmxNumRolls > kMAX_ROLLS)
        fuzzhost::Require("more rolls than the record holds", "fuzz_conversation");
    return 0;
}
