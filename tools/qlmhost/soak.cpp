// The soak command: the driver as the spooler or a CAD program keeps it, loaded for days, asked
// the same questions and opening the same sheets again and again, while the process's memory
// and handle counts are sampled. What grows from the first sample after the warm-up to the
// last is a leak, unless the about tab keeps it by design (a heavy font and two pictures each
// time it is shown). Both tools run it, with the same words.
#include "commands.h"
#include "driverlib.h"
#include "processcounts.h"
#include "records.h"
#include "sheetrun.h"

#include "driver/devmode/devmodeex.h"
#include "resources/qlmres.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

using DocumentPropertiesFn = LONG(HWND, HANDLE, LPWSTR, PDEVMODEW, PDEVMODEW, DWORD);
using DeviceCapabilitiesFn = DWORD(HANDLE, PWSTR, WORD, void*, PDEVMODEW);
using ConvertDevModeFn = BOOL(LPWSTR, PDEVMODEW, PDEVMODEW, PLONG, DWORD);
using SheetFn = LONG WINAPI(PPROPSHEETUI_INFO, LPARAM);

// The capability questions an application asks, each with the bytes one element takes: a count
// first (no buffer), then the answer into a buffer of that many elements.
const struct
{
    WORD index;
    DWORD width;
} kCapabilities[] = {
    {DC_FIELDS, 0},           {DC_PAPERS, 2},       {DC_PAPERSIZE, 8},   {DC_MINEXTENT, 0},
    {DC_MAXEXTENT, 0},        {DC_BINS, 2},         {DC_BINNAMES, 48},   {DC_ENUMRESOLUTIONS, 8},
    {DC_PAPERNAMES, 128},     {DC_ORIENTATION, 0},  {DC_COPIES, 0},      {DC_COLLATE, 0},
    {DC_MEDIATYPENAMES, 128}, {DC_MEDIATYPES, 4},   {DC_COLORDEVICE, 0}, {DC_NUP, 4},
    {DC_MEDIAREADY, 128},     {DC_PERSONALITY, 64},
};

// The document sheet's script: something set on every tab, a dialog opened from a tab and a
// popup menu in it, then OK. The same words run on both platforms.
const char kDocumentScript[] = "tab 101\n"
                               "select-text 1009 ISO A1\n"
                               "click 1094\n"
                               "type 1044 2\n"
                               "tab 102\n"
                               "select 1006 2\n"
                               "click 1123\n"
                               "type 1050 Drawing:\n"
                               "click 1082\n"
                               "menu 2004\n"
                               "ok\n"
                               "tab 103\n"
                               "click 1099\n"
                               "type 1069 50\n"
                               "tab 104\n"
                               "select 1014 1\n"
                               "slide 1307 3\n"
                               "tab 105\n"
                               "click 1344\n"
                               "type 1345 Drafting room\n"
                               "tab 106\n"
                               "ok\n";
const char kDeviceScript[] = "ok\n";

// Memory is flat when it grows, beyond what the about tab keeps, by no more than an
// allocator's own slack: a fixed margin, a tenth of what it holds for the about tab (pages and
// tables grow in steps) and a few bytes a cycle. A record, a window or a resource library left
// behind once a cycle is well above it.
constexpr long long kMemorySlackKiB = 64;
constexpr long long kMemorySlackBytesPerCycle = 64;
// How many showings' worth of the about tab's objects measure what one keeps.
constexpr int kCalibrationShowings = 200;

struct Sample
{
    long long cycle = 0;
    long long calls = 0;
    long long about = 0; // showings of the about tab so far
    std::vector<ProcessCount> counts;
};

void PrintSample(const Sample& s, bool json)
{
    if (json) {
        JsonWriter w;
        w.BeginObject();
        w.Number("cycle", s.cycle);
        w.Number("calls", s.calls);
        w.Number("about", s.about);
        w.BeginObject("counts");
        for (const ProcessCount& c : s.counts) {
            if (c.value < 0)
                w.Null(c.name.c_str());
            else
                w.Number(c.name.c_str(), c.value);
        }
        w.EndObject();
        w.EndObject();
        printf("%s\n", w.Text().c_str());
    } else {
        printf("cycle %lld, calls %lld, about %lld:", s.cycle, s.calls, s.about);
        for (const ProcessCount& c : s.counts) {
            if (c.value < 0)
                printf("  %s -", c.name.c_str());
            else
                printf("  %s %lld", c.name.c_str(), c.value);
        }
        printf("\n");
    }
    fflush(stdout);
}

// The KiB that one showing of the about tab keeps, measured in this process after the soak:
// its two pictures loaded and its heavy font made many times over, the memory counts taken
// before and after, and all of it freed again. Zero where it cannot be measured.
double KeptMemoryPerShowing()
{
    WCHAR directory[MAX_PATH] = {};
    DWORD cb = 0;
    GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<LPBYTE>(directory),
                               sizeof(directory), &cb);
    std::u16string path =
        std::u16string(reinterpret_cast<const char16_t*>(directory)) + u"\\3\\QLMRes.DLL";
    HMODULE resources = LoadLibraryW(reinterpret_cast<LPCWSTR>(path.c_str()));
    if (!resources)
        return 0;
    const std::vector<ProcessCount> before = SampleProcess();
    LOGFONTW heavy = {};
    heavy.lfHeight = -11;
    heavy.lfWeight = 900;
    memcpy(heavy.lfFaceName, u"MS Shell Dlg", sizeof(u"MS Shell Dlg"));
    std::vector<HGDIOBJ> objects;
    for (int i = 0; i < kCalibrationShowings; ++i) {
        objects.push_back(LoadImageW(resources, MAKEINTRESOURCEW(IDB_MODEL_OTHER), IMAGE_BITMAP, 0,
                                     0, LR_DEFAULTSIZE));
        objects.push_back(LoadImageW(resources, MAKEINTRESOURCEW(IDB_ABOUT), IMAGE_BITMAP, 0, 0,
                                     LR_DEFAULTSIZE | LR_LOADMAP3DCOLORS));
        objects.push_back(CreateFontIndirectW(&heavy));
    }
    const std::vector<ProcessCount> after = SampleProcess();
    for (HGDIOBJ object : objects) {
        if (object)
            DeleteObject(object);
    }
    FreeLibrary(resources);
    // Every memory count sees the same bytes, but a count of whole pages may not move where
    // the allocator had room already: the largest growth stands for all.
    double most = 0;
    for (size_t i = 0; i < before.size(); ++i) {
        if (before[i].memory && before[i].value >= 0 && after[i].value >= 0)
            most = std::max(most, double(after[i].value - before[i].value) / kCalibrationShowings);
    }
    return most;
}

struct Growth
{
    std::string name;
    long long growth = 0;
    long long kept = 0; // by design
    bool flat = true;
};

} // namespace

int SoakCommand(Args& args, const Options& options)
{
    std::string callsText = "1000", sheetsText = "10", everyText, warmupText;
    args.Take("--calls", &callsText);
    args.Take("--sheets", &sheetsText);
    const bool hasEvery = args.Take("--every", &everyText);
    const bool hasWarmup = args.Take("--warmup", &warmupText);
    int rc;
    if (!Expect(args, 1, 1, &rc))
        return rc;
    long long calls = 0, sheets = 0, every = 0, warmup = 0;
    if (!ParseNumber(callsText, 0, 100000000, &calls))
        return UsageError(args.Called(), "--calls takes a number from 0 to 100000000");
    if (!ParseNumber(sheetsText, 0, 1000000, &sheets))
        return UsageError(args.Called(), "--sheets takes a number from 0 to 1000000");
    // A cycle is one sheet of each kind and its share of the export calls; without sheets, one
    // export call.
    const long long cycles = sheets > 0 ? sheets : calls;
    if (cycles == 0)
        return UsageError(args.Called(), "nothing to do: give --calls or --sheets above 0");
    if (hasEvery && !ParseNumber(everyText, 1, cycles, &every))
        return UsageError(args.Called(),
                          "--every takes a number of cycles from 1 to " + std::to_string(cycles));
    if (!hasEvery)
        every = std::max(1LL, cycles / 10);
    if (hasWarmup && !ParseNumber(warmupText, 0, cycles, &warmup))
        return UsageError(args.Called(),
                          "--warmup takes a number of cycles from 0 to " + std::to_string(cycles));
    if (!hasWarmup)
        warmup = every;

    OpenedPrinter printer(args.Rest()[0]);
    if (!printer.get())
        return Fail("no printer named '" + args.Rest()[0] + "'");
    DriverLibrary driver;
    std::string error;
    if (!driver.Load(options.driverLibrary, &error))
        return Fail(error);
    auto* documentProperties = driver.Entry<DocumentPropertiesFn>("DrvDocumentProperties");
    auto* deviceCapabilities = driver.Entry<DeviceCapabilitiesFn>("DrvDeviceCapabilities");
    auto* convertDevMode = driver.Entry<ConvertDevModeFn>("DrvConvertDevMode");
    auto* documentSheets = driver.Entry<SheetFn>("DrvDocumentPropertySheets");
    auto* deviceSheets = driver.Entry<SheetFn>("DrvDevicePropertySheets");
    if (!documentProperties || !deviceCapabilities || !convertDevMode || !documentSheets ||
        !deviceSheets)
        return Fail(options.driverLibrary + " lacks an entry of the export table");

    HANDLE h = printer.get();
    LPWSTR name = printer.name();
    std::vector<BYTE> answer(256 * 1024);
    std::vector<BYTE> record(sizeof(DEVMODEEX)), converted(sizeof(DEVMODEEX));
    // One export call of the rotation: the capability questions (a count, then the answer),
    // the document properties, and the conversion to the driver's default and from it.
    const size_t kRotation = 2 * std::size(kCapabilities) + 3;
    auto exportCall = [&](size_t turn) {
        turn %= kRotation;
        if (turn < 2 * std::size(kCapabilities)) {
            const auto& cap = kCapabilities[turn / 2];
            if (turn % 2 == 0 || cap.width == 0) {
                deviceCapabilities(h, name, cap.index, nullptr, nullptr);
                return;
            }
            DWORD count = deviceCapabilities(h, name, cap.index, nullptr, nullptr);
            if (count != GDI_ERROR && count * cap.width <= answer.size())
                deviceCapabilities(h, name, cap.index, answer.data(), nullptr);
            return;
        }
        turn -= 2 * std::size(kCapabilities);
        LONG cb = static_cast<LONG>(record.size());
        if (turn == 0)
            documentProperties(nullptr, h, name, reinterpret_cast<PDEVMODEW>(record.data()),
                               nullptr, DM_OUT_BUFFER);
        else if (turn == 1)
            convertDevMode(name, nullptr, reinterpret_cast<PDEVMODEW>(record.data()), &cb,
                           CDM_DRIVER_DEFAULT);
        else
            convertDevMode(name, reinterpret_cast<PDEVMODEW>(record.data()),
                           reinterpret_cast<PDEVMODEW>(converted.data()), &cb, CDM_CONVERT);
    };

    // One sheet, its script run; the about tab's showings counted from the pages it made.
    long long about = 0;
    auto sheet = [&](bool device) -> bool {
        std::vector<BYTE> out(sizeof(DEVMODEEX) * 2);
        DOCUMENTPROPERTYHEADER document = {};
        DEVICEPROPERTYHEADER deviceHeader = {};
        LPARAM lParam;
        if (device) {
            deviceHeader.cbSize = sizeof(deviceHeader);
            deviceHeader.hPrinter = h;
            deviceHeader.pszPrinterName = name;
            lParam = reinterpret_cast<LPARAM>(&deviceHeader);
        } else {
            document.cbSize = sizeof(document);
            document.hPrinter = h;
            document.pszPrinterName = name;
            document.pdmOut = reinterpret_cast<PDEVMODEW>(out.data());
            document.cbOut = sizeof(DEVMODEEX);
            document.fMode = DM_IN_PROMPT | DM_OUT_BUFFER;
            lParam = reinterpret_cast<LPARAM>(&document);
        }
        SheetRunReport report;
        auto* pfn = reinterpret_cast<PFNPROPSHEETUI>(device ? deviceSheets : documentSheets);
        if (!RunSheet(pfn, lParam, device ? kDeviceScript : kDocumentScript, &report, &error))
            return false;
        for (const SheetPageReport& page : report.pages)
            about += page.created && page.templateId == IDD_ABOUT_TAB;
        if (report.rc < 0 || report.result != CPSUI_OK || !report.failures.empty()) {
            error = std::string(device ? "the device sheet" : "the document sheet") +
                    (report.failures.empty() ? " did not end with OK"
                                             : " script failed: " + report.failures[0]);
            return false;
        }
        return true;
    };

    std::vector<Sample> samples;
    long long callsMade = 0;
    auto take = [&](long long cycle) {
        samples.push_back({cycle, callsMade, about, SampleProcess()});
        PrintSample(samples.back(), options.json);
    };
    take(0);
    for (long long cycle = 0; cycle < cycles; ++cycle) {
        const long long share = calls * (cycle + 1) / cycles - calls * cycle / cycles;
        for (long long i = 0; i < share; ++i)
            exportCall(static_cast<size_t>(callsMade++));
        if (sheets > 0 && (!sheet(false) || !sheet(true)))
            return Fail("cycle " + std::to_string(cycle + 1) + ": " + error);
        if ((cycle + 1) % every == 0 || cycle + 1 == cycles)
            take(cycle + 1);
    }

    // From the first sample after the warm-up to the last.
    size_t first = 0;
    while (first + 1 < samples.size() && samples[first].cycle < warmup)
        ++first;
    const Sample& base = samples[first];
    const Sample& last = samples.back();
    const long long span = last.cycle - base.cycle;
    const long long showings = last.about - base.about;
    const double keptMemory = KeptMemoryPerShowing();
    std::vector<Growth> growths;
    for (size_t i = 0; i < last.counts.size(); ++i) {
        const ProcessCount& now = last.counts[i];
        const ProcessCount& then = base.counts[i];
        if (now.value < 0 || then.value < 0)
            continue;
        Growth g{now.name, now.value - then.value, now.keptPerAbout * showings};
        if (now.memory) {
            g.kept = static_cast<long long>(keptMemory * double(showings) + 0.5);
            g.flat = g.growth - g.kept <=
                     kMemorySlackKiB + g.kept / 10 + kMemorySlackBytesPerCycle * span / 1024;
        } else {
            g.flat = g.growth <= g.kept;
        }
        growths.push_back(g);
    }
    const bool flat = span > 0 && std::all_of(growths.begin(), growths.end(),
                                              [](const Growth& g) { return g.flat; });
    std::string kept;
    for (const Growth& g : growths) {
        if (g.kept > 0)
            kept += (kept.empty() ? "" : ", ") + g.name + " +" + std::to_string(g.kept);
    }
    std::string verdict = span == 0 ? "too short: no sample after the warm-up"
                          : flat    ? "flat"
                                    : "GROWS";
    if (flat && !kept.empty())
        verdict += " apart from the about tab's heavy font and two pictures a showing (" +
                   std::to_string(showings) + " showings: " + kept + ")";
    const std::string note = ProcessCountNote();

    if (options.json) {
        JsonWriter w;
        w.BeginObject();
        w.String("verdict", std::string(span == 0 ? "too short" : flat ? "flat" : "grows"));
        w.Number("fromCycle", base.cycle);
        w.Number("toCycle", last.cycle);
        w.Number("aboutShowings", showings);
        w.BeginObject("growth");
        for (const Growth& g : growths) {
            w.BeginObject(g.name.c_str());
            w.Number("growth", g.growth);
            w.Number("keptByDesign", g.kept);
            w.Bool("flat", g.flat);
            w.EndObject();
        }
        w.EndObject();
        if (!note.empty())
            w.String("note", note);
        w.EndObject();
        printf("%s\n", w.Text().c_str());
    } else {
        printf("growth from cycle %lld to %lld (%lld calls, %lld sheet cycles, %lld about "
               "showings):\n",
               base.cycle, last.cycle, last.calls - base.calls, sheets > 0 ? span : 0, showings);
        for (const Growth& g : growths) {
            printf("  %-16s %+10lld", g.name.c_str(), g.growth);
            if (g.kept > 0)
                printf("  (the about tab keeps %lld by design)", g.kept);
            if (!g.flat)
                printf("  GROWS");
            printf("\n");
        }
        if (!note.empty())
            printf("note: %s\n", note.c_str());
        printf("verdict: %s\n", verdict.c_str());
    }
    return flat ? 0 : 1;
}

extern const Command g_SoakCommand = {
    "soak", "PRINTER [--calls N] [--sheets N] [--every N] [--warmup N]",
    "Asks and opens the same things many times in one process; memory and handles must stay flat.",
    SoakCommand,
    "N cycles (--sheets, 10 by default): in each, its share of the export calls (--calls, 1000\n"
    "  by default: DrvDeviceCapabilities over its indexes, a count then the answer,\n"
    "  DrvDocumentProperties DM_OUT_BUFFER, DrvConvertDevMode to the default and from it), the\n"
    "  document sheet with a script that sets something on every tab and opens a dialog, OK,\n"
    "  and the device sheet, OK. Without sheets a cycle is one export call. The process's memory\n"
    "  and handle counts are printed at the start and every N cycles (--every, a tenth of the\n"
    "  cycles by default), then the growth of each from the first sample after the warm-up\n"
    "  (--warmup cycles, one sample's worth by default) to the last. The about tab keeps a heavy\n"
    "  font and two pictures each time it is shown, by design: counted apart, and their memory\n"
    "  measured after the soak by making as many again. Memory is flat within 64 KiB, a tenth\n"
    "  of that and 64 bytes a cycle. Exit 0 when everything is flat, 1 when something grows or a\n"
    "  sheet fails. The queue should be on a port where no printer is asked (LPT1:)."};
