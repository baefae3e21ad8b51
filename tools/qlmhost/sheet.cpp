// qlmhost sheet: a property sheet opened through the driver's exports as the common UI opens
// it, run by a script of a person's actions, and what the caller gets back.
#include "commands.h"
#include "driverlib.h"
#include "records.h"

#include "platform/host/host.h"
#include "platform/host/hostsheet.h"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

namespace {

const struct
{
    const char* name;
    DWORD value;
} kModeFlags[] = {
    {"DM_OUT_DEFAULT", DM_OUT_DEFAULT},   {"DM_OUT_BUFFER", DM_OUT_BUFFER},
    {"DM_IN_PROMPT", DM_IN_PROMPT},       {"DM_IN_BUFFER", DM_IN_BUFFER},
    {"DM_ADVANCED", DM_ADVANCED},         {"DM_NOPERMISSION", DM_NOPERMISSION},
    {"DM_USER_DEFAULT", DM_USER_DEFAULT},
};

// "14", "0xE" or names joined by | or , ("DM_IN_PROMPT|DM_OUT_BUFFER").
bool ParseMode(const std::string& text, DWORD* mode)
{
    long long number = 0;
    if (ParseNumber(text, 0, 0xFFFF, &number)) {
        *mode = static_cast<DWORD>(number);
        return true;
    }
    DWORD value = 0;
    std::string name;
    std::istringstream words(text);
    while (std::getline(words, name, text.find('|') != std::string::npos ? '|' : ',')) {
        bool known = false;
        for (const auto& row : kModeFlags) {
            if (name == row.name) {
                value |= row.value;
                known = true;
            }
        }
        if (!known)
            return false;
    }
    *mode = value;
    return !text.empty();
}

bool ReadScript(const std::string& path, std::string* text)
{
    if (path == "-") {
        *text = std::string(std::istreambuf_iterator<char>(std::cin), {});
        return true;
    }
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return false;
    *text = std::string(std::istreambuf_iterator<char>(file), {});
    return true;
}

void PrintPages(const host::SheetRun& run, bool json, JsonWriter* writer)
{
    if (json) {
        writer->BeginArray("pages");
        for (const host::SheetPage& page : run.pages) {
            writer->BeginObject();
            writer->Number("template", page.templateId);
            writer->Bool("created", page.created);
            writer->BeginArray("controls");
            for (const host::ControlState& c : page.controls) {
                writer->BeginObject();
                writer->Number("id", c.id);
                writer->String("class", c.className);
                writer->String("kind", c.kind);
                writer->String("text", c.text);
                writer->Bool("enabled", c.enabled);
                writer->Bool("visible", c.visible);
                writer->Bool("checked", c.checked);
                if (!c.items.empty()) {
                    writer->Number("selection", c.selection);
                    writer->BeginArray("items");
                    for (const auto& item : c.items) {
                        writer->BeginObject();
                        writer->String("text", item.first);
                        writer->Number("data", item.second);
                        writer->EndObject();
                    }
                    writer->EndArray();
                }
                writer->EndObject();
            }
            writer->EndArray();
            writer->EndObject();
        }
        writer->EndArray();
        return;
    }
    for (const host::SheetPage& page : run.pages) {
        if (page.created)
            printf("%s", page.dump.c_str());
        else
            printf("page %d: never shown\n", page.templateId);
    }
}

} // namespace

int SheetCommand(Args& args, const Options& options)
{
    const bool device = args.Flag("--device");
    const bool dump = args.Flag("--dump");
    std::string modeText, inPath, scriptPath;
    const bool hasMode = args.Take("--mode", &modeText);
    const bool hasIn = args.Take("--in", &inPath);
    const bool hasScript = args.Take("--script", &scriptPath);
    int rc;
    if (!Expect(args, "sheet", 1, 1, &rc))
        return rc;
    DWORD fMode = DM_IN_PROMPT | DM_IN_BUFFER | DM_OUT_BUFFER;
    if (hasMode && !ParseMode(modeText, &fMode))
        return UsageError(FindCommand("sheet"),
                          "--mode takes a number or DM_ names, not '" + modeText + "'");
    std::string script, error;
    if (hasScript && !ReadScript(scriptPath, &script))
        return Fail("cannot read the script '" + scriptPath + "'");
    // Behind the answer to the address dialog (--address), which comes before the sheet opens.
    if (!host::AppendUserScript(script, &error))
        return Fail(scriptPath + ": " + error);
    std::vector<uint8_t> input;
    if (hasIn && !ReadRecordFile(inPath, &input, &error))
        return Fail(error);
    // The driver reads a record of its own size: a shorter one goes with zeros behind it.
    if (!input.empty() && input.size() < sizeof(DEVMODEEX))
        input.resize(sizeof(DEVMODEEX), 0);

    DriverLibrary driver;
    if (!driver.Load(options.driverLibrary, &error))
        return Fail(error);
    const char* entry = device ? "DrvDevicePropertySheets" : "DrvDocumentPropertySheets";
    auto* pfn = driver.Entry<LONG WINAPI(PPROPSHEETUI_INFO, LPARAM)>(entry);
    if (!pfn)
        return Fail(std::string("the driver library has no ") + entry);
    const std::string& name = args.Rest()[0];
    OpenedPrinter printer(name);
    if (!printer.get())
        return Fail("no printer named '" + name + "'");

    GuardedBuffer out(sizeof(DEVMODEEX));
    DOCUMENTPROPERTYHEADER document = {};
    DEVICEPROPERTYHEADER deviceHeader = {};
    LPARAM lParam;
    if (device) {
        deviceHeader.cbSize = sizeof(deviceHeader);
        deviceHeader.Flags = (fMode & DM_NOPERMISSION) ? DPS_NOPERMISSION : 0;
        deviceHeader.hPrinter = printer.get();
        deviceHeader.pszPrinterName = printer.name();
        lParam = reinterpret_cast<LPARAM>(&deviceHeader);
    } else {
        document.cbSize = sizeof(document);
        document.hPrinter = printer.get();
        document.pszPrinterName = printer.name();
        document.pdmIn = input.empty() ? nullptr : reinterpret_cast<PDEVMODEW>(input.data());
        document.pdmOut = reinterpret_cast<PDEVMODEW>(out.data());
        document.cbOut = static_cast<DWORD>(out.size());
        document.fMode = fMode;
        lParam = reinterpret_cast<LPARAM>(&document);
    }
    DWORD result = 0;
    LONG sheetRc =
        CommonPropertySheetUIW(nullptr, reinterpret_cast<PFNPROPSHEETUI>(pfn), lParam, &result);
    host::SheetRun run = host::LastSheetRun();
    std::vector<std::string> failures = host::UserScriptFailures();
    host::ClearUserScript();
    std::string overrun = OverrunMessage(out, "the sheet's output record");

    // What the caller receives: the output record, or for the device sheet the queue's record.
    std::vector<BYTE> info, record;
    if (device) {
        if (!StoredRecord(printer.get(), &info, &record, &error))
            return Fail(error);
    } else if (fMode & (DM_OUT_BUFFER | DM_OUT_DEFAULT)) {
        record.assign(out.data(), out.data() + out.size());
    }

    if (options.json) {
        JsonWriter json;
        json.BeginObject();
        json.Number("result", sheetRc < 0 ? sheetRc : static_cast<long long>(result));
        if (record.empty())
            json.Null("record");
        else
            RecordToJson(json, "record", record.data(), record.size());
        if (dump)
            PrintPages(run, true, &json);
        json.BeginArray("failures");
        for (const std::string& f : failures)
            json.String(nullptr, f);
        json.EndArray();
        json.EndObject();
        printf("%s\n", json.Text().c_str());
    } else {
        printf("%s: %ld (%s)\n", entry, static_cast<long>(sheetRc),
               sheetRc < 0          ? "the sheet did not open"
               : result == CPSUI_OK ? "OK"
                                    : "Cancel");
        if (dump)
            PrintPages(run, false, nullptr);
        if (!record.empty())
            printf("%s", RecordAsText(record.data(), record.size()).c_str());
    }
    for (const std::string& f : failures)
        fprintf(stderr, "qlmhost: script %s\n", f.c_str());
    if (!overrun.empty())
        return Fail(overrun);
    return failures.empty() && sheetRc >= 0 ? 0 : 1;
}
