// What a document sheet costs on the host: opened through the driver's sheet entry by the
// host's common UI, every page it has activated in turn, OK, and closed. The queue's port is
// not bidirectional, so no refresh runs.
#include "driver/entry/tvouidrv.h"
#include "platform/host/host.h"
#include "platform/host/hostsheet.h"

#include "benchhome.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

TVONTUIDriver g_driver;

LONG CALLBACK DocumentSheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    return g_driver.DrvDocumentPropertySheets(pPSUIInfo, lParam);
}

LONG RunSheet(const std::string& script, std::vector<BYTE>& out)
{
    std::string error;
    host::SetUserScript(script, &error);
    DOCUMENTPROPERTYHEADER header = {};
    header.cbSize = sizeof(header);
    header.hPrinter = benchhome::Plan2440();
    header.pszPrinterName = const_cast<LPWSTR>(u"Plan 2440");
    header.pdmOut = reinterpret_cast<PDEVMODEW>(out.data());
    header.cbOut = static_cast<DWORD>(out.size());
    header.fMode = DM_IN_PROMPT | DM_IN_BUFFER | DM_OUT_BUFFER;
    DWORD result = 0;
    return CommonPropertySheetUIW(nullptr, DocumentSheets, reinterpret_cast<LPARAM>(&header),
                                  &result);
}

void BM_DocumentSheetOpenEveryTabOK(benchmark::State& state)
{
    std::vector<BYTE> out(13484);
    // The pages the sheet has, learnt from one run: each is activated in turn, then OK.
    RunSheet("ok\n", out);
    std::string script;
    for (const host::SheetPage& page : host::LastSheetRun().pages)
        script += "tab " + std::to_string(page.templateId) + "\n";
    script += "ok\n";
    for (auto _ : state) {
        LONG rc = RunSheet(script, out);
        benchmark::DoNotOptimize(rc);
        if (rc != 1)
            state.SkipWithError("the sheet did not end with OK");
    }
    state.counters["pages"] = static_cast<double>(host::LastSheetRun().pages.size());
}
BENCHMARK(BM_DocumentSheetOpenEveryTabOK)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
