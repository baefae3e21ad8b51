// The spooler calls the exports from many threads at once. Every answer a thread gets (return
// value, size, output bytes, the record it gave as the call leaves it, last error) must be the
// one a single thread gets for the same call, whatever other threads ask of other queues.
#include "driver/config/tvodev.h"
#include "driver/devmode/devmodeex.h"

#include "support/hostprinter.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <algorithm>
#include <cstring>
#include <latch>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using DeviceCapabilitiesFn = DWORD WINAPI(HANDLE, PWSTR, WORD, void*, PDEVMODEW);
using DocumentPropertiesFn = LONG WINAPI(HWND, HANDLE, PWSTR, PDEVMODEW, PDEVMODEW, DWORD);
using ConvertDevModeFn = BOOL WINAPI(LPWSTR, PDEVMODEW, PDEVMODEW, PLONG, DWORD);

constexpr int kTHREADS = 8;
#ifdef __SANITIZE_THREAD__
// The sanitizer sees a race whether or not it changes an answer, and each call costs it more.
constexpr size_t kLEAST_CALLS = 10000;
#else
// Enough for a shared buffer to change answers on every run.
constexpr size_t kLEAST_CALLS = 40000;
#endif
// Behind every output buffer, so that a write past the answer shows as a difference.
constexpr size_t kGUARD_BYTES = 64;
constexpr uint8_t kFILL = 0xA5;
constexpr DWORD kLAST_ERROR_BEFORE = 0xDEADBEEF;

// Models whose paper, bin and resolution lists differ, on ports that ask no printer.
struct QueueRow
{
    const char16_t* name;
    const char16_t* driver;
};
const QueueRow kQueues[] = {
    {u"Plan 2440", u"Tarvo Plan Output System 2440"},
    {u"Wide 3320", u"Tarvo 3320 Wide Format with Lumivar Pentara"},
    {u"Pentara 2410", u"Pentara 2410"},
    {u"Print 318p", u"Orvanta Print System 318p"},
    {u"Wide 3344", u"Tarvo 3344 Wide Format with Lumivar Pentara"},
};
constexpr size_t kQUEUES = sizeof(kQueues) / sizeof(kQueues[0]);

// Every index the driver answers; a list is asked for its count and then for its items, whose
// size is itemBytes; a fixed answer has fixedBytes of output.
struct CapabilityRow
{
    WORD index;
    const char* name;
    size_t itemBytes;
    size_t fixedBytes;
};
const CapabilityRow kCapabilities[] = {
    {DC_FIELDS, "DC_FIELDS", 0, 0},
    {DC_PAPERS, "DC_PAPERS", sizeof(WORD), 0},
    {DC_PAPERSIZE, "DC_PAPERSIZE", sizeof(POINT), 0},
    {DC_MINEXTENT, "DC_MINEXTENT", 0, 0},
    {DC_MAXEXTENT, "DC_MAXEXTENT", 0, 0},
    {DC_BINS, "DC_BINS", sizeof(WORD), 0},
    {DC_DUPLEX, "DC_DUPLEX", 0, 0},
    {DC_SIZE, "DC_SIZE", 0, 0},
    {DC_EXTRA, "DC_EXTRA", 0, 0},
    {DC_VERSION, "DC_VERSION", 0, 0},
    {DC_DRIVER, "DC_DRIVER", 0, 0},
    {DC_BINNAMES, "DC_BINNAMES", 24 * sizeof(WCHAR), 0},
    {DC_ENUMRESOLUTIONS, "DC_ENUMRESOLUTIONS", 2 * sizeof(LONG), 0},
    {DC_FILEDEPENDENCIES, "DC_FILEDEPENDENCIES", 0, 0},
    {DC_TRUETYPE, "DC_TRUETYPE", 0, 0},
    {DC_PAPERNAMES, "DC_PAPERNAMES", 64 * sizeof(WCHAR), 0},
    {DC_ORIENTATION, "DC_ORIENTATION", 0, 0},
    {DC_COPIES, "DC_COPIES", 0, 0},
    {DC_BINADJUST, "DC_BINADJUST", 0, 0},
    {DC_COLLATE, "DC_COLLATE", 0, 0},
    {DC_PERSONALITY, "DC_PERSONALITY", 0, 32 * sizeof(WCHAR)},
    {DC_STAPLE, "DC_STAPLE", 0, 0},
    {DC_COLORDEVICE, "DC_COLORDEVICE", 0, 0},
    {DC_MMINCH, "DC_MMINCH", 0, 0},
    {DC_IDSYSPRN, "DC_IDSYSPRN", 0, 34},
};

// What one call gives back.
struct Answer
{
    LONG result = 0;
    LONG cbNeeded = 0;
    DWORD lastError = 0;
    std::vector<uint8_t> bytes;
    std::vector<uint8_t> record; // the record that went in, as the call leaves it
};

std::string ByteDifference(const char* what, const std::vector<uint8_t>& got,
                           const std::vector<uint8_t>& expected)
{
    auto [at, _] = std::mismatch(got.begin(), got.end(), expected.begin());
    if (at == got.end())
        return "";
    const size_t i = at - got.begin();
    return std::string(what) + " byte " + std::to_string(i) + " is " + std::to_string(got[i]) +
           ", one thread gets " + std::to_string(expected[i]);
}

// The first way in which an answer differs from the expected one, or "".
std::string Difference(const Answer& got, const Answer& expected)
{
    if (got.result != expected.result)
        return "returned " + std::to_string(got.result) + ", one thread gets " +
               std::to_string(expected.result);
    if (got.cbNeeded != expected.cbNeeded)
        return "needs " + std::to_string(got.cbNeeded) + " bytes, one thread gets " +
               std::to_string(expected.cbNeeded);
    if (got.lastError != expected.lastError)
        return "last error " + std::to_string(got.lastError) + ", one thread gets " +
               std::to_string(expected.lastError);
    std::string difference = ByteDifference("output", got.bytes, expected.bytes);
    return difference.empty() ? ByteDifference("record", got.record, expected.record) : difference;
}

enum class Export
{
    Capabilities,
    Properties,
    Convert
};

// One export call on one queue: its arguments, as far as they are the same on every thread.
struct Call
{
    Export what;
    size_t queue;
    std::string name;
    WORD index = 0;                    // capabilities
    DWORD fMode = 0;                   // properties, conversion
    bool bRecord = false;              // a record goes in (a copy, as the driver may write to it)
    std::vector<uint8_t> input;        // the record that goes in
    std::vector<uint8_t> outputHeader; // the start of the output buffer, or the whole buffer
    size_t outputBytes = 0;
    LONG cbNeeded = 0;
};

struct Exports
{
    DeviceCapabilitiesFn* capabilities;
    DocumentPropertiesFn* properties;
    ConvertDevModeFn* convert;
};

Answer Ask(const Exports& exports, const Call& call, HANDLE hPrinter)
{
    Answer answer;
    std::vector<uint8_t> input = call.input;
    answer.bytes.assign(call.outputBytes, kFILL);
    std::copy(call.outputHeader.begin(), call.outputHeader.end(), answer.bytes.begin());
    void* pOutput = call.outputBytes ? answer.bytes.data() : nullptr;
    auto* pIn = call.bRecord ? reinterpret_cast<PDEVMODEW>(input.data()) : nullptr;
    LPWSTR pName = const_cast<LPWSTR>(kQueues[call.queue].name);
    SetLastError(kLAST_ERROR_BEFORE);
    switch (call.what) {
    case Export::Capabilities:
        answer.result =
            static_cast<LONG>(exports.capabilities(hPrinter, pName, call.index, pOutput, pIn));
        break;
    case Export::Properties:
        answer.result = exports.properties(nullptr, hPrinter, pName,
                                           static_cast<PDEVMODEW>(pOutput), pIn, call.fMode);
        break;
    case Export::Convert:
        answer.cbNeeded = call.cbNeeded;
        answer.result = exports.convert(pName, pIn, static_cast<PDEVMODEW>(pOutput),
                                        &answer.cbNeeded, call.fMode);
        break;
    }
    answer.lastError = GetLastError();
    if (call.bRecord)
        answer.record = input;
    return answer;
}

class Threads : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_handle = dlopen(QLM_TEST_BINARY_DIR "/driver/QLMUIDrv.so", RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(s_handle, nullptr) << dlerror();
        auto* dllMain =
            reinterpret_cast<BOOL WINAPI (*)(HINSTANCE, DWORD, LPVOID)>(dlsym(s_handle, "DllMain"));
        ASSERT_NE(dllMain, nullptr);
        dllMain(static_cast<HINSTANCE>(s_handle), DLL_PROCESS_ATTACH, nullptr);
        s_exports.capabilities =
            reinterpret_cast<DeviceCapabilitiesFn*>(dlsym(s_handle, "DrvDeviceCapabilities"));
        s_exports.properties =
            reinterpret_cast<DocumentPropertiesFn*>(dlsym(s_handle, "DrvDocumentProperties"));
        s_exports.convert =
            reinterpret_cast<ConvertDevModeFn*>(dlsym(s_handle, "DrvConvertDevMode"));
    }
    static void TearDownTestSuite()
    {
        if (s_handle)
            dlclose(s_handle);
        s_handle = nullptr;
    }

    // The queues' records as the driver gives them, then every call of the table.
    void MakeCalls(const std::vector<std::unique_ptr<HostPrinter>>& printers)
    {
        std::vector<std::vector<uint8_t>> records;
        for (size_t q = 0; q < kQUEUES; q++) {
            std::vector<uint8_t> record(kDEVMODEEX_SIZE, 0);
            ASSERT_EQ(1, s_exports.properties(
                             nullptr, printers[q]->handle(), const_cast<LPWSTR>(kQueues[q].name),
                             reinterpret_cast<PDEVMODEW>(record.data()), nullptr, DM_OUT_BUFFER));
            records.push_back(record);
        }
        // The longest list of any queue bounds every list buffer, so that an answer meant for
        // another model still lands inside it.
        std::vector<size_t> longest(sizeof(kCapabilities) / sizeof(kCapabilities[0]), 0);
        for (size_t q = 0; q < kQUEUES; q++) {
            for (size_t c = 0; c < longest.size(); c++) {
                if (!kCapabilities[c].itemBytes)
                    continue;
                LONG n = static_cast<LONG>(s_exports.capabilities(
                    printers[q]->handle(), nullptr, kCapabilities[c].index, nullptr, nullptr));
                longest[c] = std::max(longest[c], static_cast<size_t>(std::max<LONG>(n, 0)));
            }
        }

        // Calls of one kind on every queue follow each other, so that threads walking the
        // table side by side ask different models at once.
        auto add = [&](Call call) {
            for (size_t q = 0; q < kQUEUES; q++) {
                Call c = call;
                c.queue = q;
                if (c.bRecord && c.input.empty())
                    c.input = records[q];
                m_calls.push_back(c);
            }
        };
        for (size_t c = 0; c < longest.size(); c++) {
            const CapabilityRow& row = kCapabilities[c];
            const size_t bytes = row.fixedBytes ? row.fixedBytes : longest[c] * row.itemBytes;
            for (bool bRecord : {false, true}) {
                for (bool bOutput : {false, true}) {
                    if (bOutput && !bytes)
                        continue;
                    Call call{Export::Capabilities, 0,
                              std::string("DrvDeviceCapabilities(") + row.name +
                                  (bRecord ? ", the queue's record" : "") +
                                  (bOutput ? ", output)" : ")")};
                    call.index = row.index;
                    call.bRecord = bRecord;
                    call.outputBytes = bOutput ? bytes + kGUARD_BYTES : 0;
                    add(call);
                }
            }
        }

        Call out{Export::Properties, 0, "DrvDocumentProperties(DM_OUT_BUFFER)"};
        out.fMode = DM_OUT_BUFFER;
        out.outputBytes = kDEVMODEEX_SIZE;
        add(out);
        // A changed record in: landscape, three copies, paper 258.
        for (size_t q = 0; q < kQUEUES; q++) {
            Call in{Export::Properties, q, "DrvDocumentProperties(DM_IN_BUFFER | DM_OUT_BUFFER)"};
            in.fMode = DM_IN_BUFFER | DM_OUT_BUFFER;
            in.bRecord = true;
            in.input = records[q];
            auto* pdm = reinterpret_cast<DEVMODEW*>(in.input.data());
            pdm->dmOrientation = DMORIENT_LANDSCAPE;
            pdm->dmCopies = 3;
            pdm->dmPaperSize = 258;
            in.outputBytes = kDEVMODEEX_SIZE;
            m_calls.push_back(in);
        }

        // The conversions: to the older layout and back, to the first one, and the driver's
        // default, with room and without.
        std::vector<uint8_t> older(sizeof(DEVMODEW) + kDEVMODEEX1_DRIVER_EXTRA, 0);
        auto* pOlder = reinterpret_cast<DEVMODEW*>(older.data());
        pOlder->dmSpecVersion = 0x0401;
        pOlder->dmSize = sizeof(DEVMODEW);
        pOlder->dmDriverExtra = kDEVMODEEX1_DRIVER_EXTRA;
        Call down{Export::Convert, 0, "DrvConvertDevMode(CDM_CONVERT, to the older record)"};
        down.fMode = CDM_CONVERT;
        down.bRecord = true;
        down.outputHeader = older;
        down.outputBytes = older.size();
        down.cbNeeded = static_cast<LONG>(older.size());
        add(down);

        std::vector<uint8_t> full(kDEVMODEEX_SIZE, 0);
        auto* pFull = reinterpret_cast<DEVMODEW*>(full.data());
        pFull->dmSpecVersion = 0x0401;
        pFull->dmSize = sizeof(DEVMODEW);
        pFull->dmDriverExtra = kDEVMODEEX_DRIVER_EXTRA;
        for (size_t q = 0; q < kQUEUES; q++) {
            Call up{Export::Convert, q, "DrvConvertDevMode(CDM_CONVERT, from the older record)"};
            up.fMode = CDM_CONVERT;
            up.bRecord = true;
            up.input = older;
            std::memcpy(up.input.data() + sizeof(DEVMODEW), records[q].data() + sizeof(DEVMODEW),
                        kDEVMODEEX1_DRIVER_EXTRA);
            std::memcpy(up.input.data(), records[q].data(), offsetof(DEVMODEW, dmSpecVersion));
            up.outputHeader = full;
            up.outputBytes = full.size();
            up.cbNeeded = static_cast<LONG>(full.size());
            m_calls.push_back(up);
        }

        Call convert351{Export::Convert, 0, "DrvConvertDevMode(CDM_CONVERT351)"};
        convert351.fMode = CDM_CONVERT351;
        convert351.bRecord = true;
        convert351.outputBytes = kDEVMODEEX_SIZE;
        convert351.cbNeeded = kDEVMODEEX_SIZE;
        add(convert351);

        Call byDefault{Export::Convert, 0, "DrvConvertDevMode(CDM_DRIVER_DEFAULT)"};
        byDefault.fMode = CDM_DRIVER_DEFAULT;
        byDefault.outputBytes = kDEVMODEEX_SIZE;
        byDefault.cbNeeded = kDEVMODEEX_SIZE;
        add(byDefault);
        Call size{Export::Convert, 0, "DrvConvertDevMode(CDM_DRIVER_DEFAULT, no room)"};
        size.fMode = CDM_DRIVER_DEFAULT;
        size.outputBytes = 16;
        size.cbNeeded = 16;
        add(size);
    }

    static void* s_handle;
    static Exports s_exports;
    std::vector<Call> m_calls;
};
void* Threads::s_handle = nullptr;
Exports Threads::s_exports = {};

struct Mismatch
{
    int thread;
    size_t call;
    std::string what;
};

TEST_F(Threads, EveryThreadGetsTheAnswersOfOne)
{
    ASSERT_NE(s_handle, nullptr);
    std::vector<std::unique_ptr<HostPrinter>> printers;
    for (const QueueRow& queue : kQueues)
        printers.push_back(std::make_unique<HostPrinter>(queue.name, queue.driver));
    MakeCalls(printers);
    ASSERT_FALSE(HasFatalFailure());

    // One thread's answers, once every queue's record is stored by a first pass; a third pass
    // shows that they no longer change.
    std::vector<Answer> expected;
    for (int pass = 0; pass < 3; pass++) {
        for (size_t i = 0; i < m_calls.size(); i++) {
            const Call& call = m_calls[i];
            Answer answer = Ask(s_exports, call, printers[call.queue]->handle());
            if (pass == 1)
                expected.push_back(answer);
            if (pass == 2) {
                ASSERT_EQ(Difference(answer, expected[i]), "")
                    << call.name << " on " << host::Utf16ToUtf8(kQueues[call.queue].name)
                    << ": one thread's answer changes from call to call";
            }
        }
    }

    // Each thread has handles of its own, as the spooler's calls do, and starts its walk at
    // another place in the table, all of them at once.
    const size_t rounds =
        (kLEAST_CALLS + kTHREADS * m_calls.size() - 1) / (kTHREADS * m_calls.size());
    std::vector<std::vector<Mismatch>> mismatches(kTHREADS);
    std::vector<std::thread> threads;
    std::latch start(kTHREADS);
    for (int t = 0; t < kTHREADS; t++) {
        threads.emplace_back([&, t] {
            std::vector<HANDLE> handles(kQUEUES, nullptr);
            for (size_t q = 0; q < kQUEUES; q++)
                OpenPrinterW(const_cast<LPWSTR>(kQueues[q].name), &handles[q], nullptr);
            start.arrive_and_wait();
            const size_t n = m_calls.size();
            for (size_t r = 0; r < rounds; r++) {
                for (size_t k = 0; k < n; k++) {
                    size_t i = (k + t * n / kTHREADS + r * 7) % n;
                    std::string difference = Difference(
                        Ask(s_exports, m_calls[i], handles[m_calls[i].queue]), expected[i]);
                    if (!difference.empty())
                        mismatches[t].push_back({t, i, difference});
                }
            }
            for (HANDLE h : handles)
                ClosePrinter(h);
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    size_t total = 0;
    for (const auto& list : mismatches) {
        for (const Mismatch& m : list) {
            if (++total <= 20)
                ADD_FAILURE() << m_calls[m.call].name << " on "
                              << host::Utf16ToUtf8(kQueues[m_calls[m.call].queue].name)
                              << ", thread " << m.thread << ": " << m.what;
        }
    }
    EXPECT_EQ(total, 0u) << "answers that differ from one thread's, of "
                         << rounds * kTHREADS * m_calls.size() << " calls";
}

} // namespace
