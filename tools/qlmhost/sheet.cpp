// The sheet command: a property sheet opened through the driver's exports as the common UI
// opens it, run by a script of a person's actions, and what the caller gets back.
#include "commands.h"
#include "driverlib.h"
#include "records.h"

#include "scriptcase.h"
#include "sheetrun.h"

#include <cstdio>
#include <cstring>
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

void PageToJson(JsonWriter& json, const SheetPageReport& page)
{
    json.BeginObject();
    json.Number("template", page.templateId);
    json.Bool("created", page.created);
    ControlsToJson(json, page.controls);
    json.EndObject();
}

void PrintPageText(const SheetPageReport& page)
{
    if (!page.created) {
        printf("page %d: never shown\n", page.templateId);
        return;
    }
    printf("dialog %d %s\n%s", page.templateId, usersim::QuoteText(page.title).c_str(),
           usersim::DumpControls(page.controls).c_str());
}

// The queue's stored record with the fields of the case's "#: set" lines, as the caller's
// record of a document sheet.
bool CaseRecord(HANDLE hPrinter, const ScriptCase& scriptCase, std::vector<uint8_t>* input,
                std::string* error)
{
    std::vector<BYTE> info, record;
    if (!StoredRecord(hPrinter, &info, &record, error))
        return false;
    record.resize(sizeof(DEVMODEEX), 0);
    for (const auto& [field, text] : scriptCase.set)
        if (!SetRecordField(record.data(), record.size(), field, text, error))
            return false;
    input->assign(record.begin(), record.end());
    return true;
}

// The case's "#: data" values into the queue's printer data, as a user's earlier sessions left
// them.
bool WriteCaseData(HANDLE hPrinter, const ScriptCase& scriptCase, std::string* error)
{
    for (const CaseDataValue& value : scriptCase.data) {
        std::u16string name = W(value.name);
        std::vector<BYTE> bytes(value.bytes.begin(), value.bytes.end());
        DWORD rc = SetPrinterDataW(hPrinter, reinterpret_cast<LPWSTR>(name.data()),
                                   value.dword ? REG_DWORD : REG_BINARY, bytes.data(),
                                   static_cast<DWORD>(bytes.size()));
        if (rc != ERROR_SUCCESS) {
            *error = "cannot set the printer data " + value.name + ": " + Win32Error(rc);
            return false;
        }
    }
    return true;
}

// What the "#: stored" lines break: each value as the sheet left it, in the case's words.
void CheckCaseData(HANDLE hPrinter, const ScriptCase& scriptCase, const std::string& casePath,
                   std::vector<std::string>* failures)
{
    for (const CaseDataValue& want : scriptCase.stored) {
        std::u16string name = W(want.name);
        DWORD type = 0, cbNeeded = 0;
        DWORD rc = GetPrinterDataW(hPrinter, reinterpret_cast<LPWSTR>(name.data()), &type, nullptr,
                                   0, &cbNeeded);
        // Room for one byte at least: Wine's spooler answers ERROR_MORE_DATA to a null buffer
        // even for an empty value.
        std::vector<BYTE> bytes(cbNeeded ? cbNeeded : 1);
        if (rc == ERROR_MORE_DATA || rc == ERROR_SUCCESS)
            rc = GetPrinterDataW(hPrinter, reinterpret_cast<LPWSTR>(name.data()), &type,
                                 bytes.data(), DWORD(bytes.size()), &cbNeeded);
        bytes.resize(rc == ERROR_SUCCESS ? cbNeeded : 0);
        const std::string wanted = CaseDataText(want.dword, want.bytes);
        if (rc != ERROR_SUCCESS) {
            failures->push_back(casePath + ": printer data " + want.name + " is not there (" +
                                Win32Error(rc) + "), not " + wanted);
            continue;
        }
        const std::string have =
            CaseDataText(type == REG_DWORD, std::vector<unsigned char>(bytes.begin(), bytes.end()));
        if (have != wanted)
            failures->push_back(casePath + ": printer data " + want.name + " is " + have +
                                ", not " + wanted);
    }
}

} // namespace

int SheetCommand(Args& args, const Options& options)
{
    bool device = args.Flag("--device");
    const bool dump = args.Flag("--dump");
    std::string modeText, inPath, scriptPath, casePath;
    bool hasMode = args.Take("--mode", &modeText);
    const bool hasIn = args.Take("--in", &inPath);
    const bool hasScript = args.Take("--script", &scriptPath);
    const bool hasCase = args.Take("--case", &casePath);
    int rc;
    if (!Expect(args, hasCase ? 0 : 1, 1, &rc))
        return rc;
    if (hasCase && hasScript)
        return UsageError(args.Called(), "--case brings its own script");
    std::string script, error;
    if ((hasScript || hasCase) && !ReadTextFile(hasCase ? casePath : scriptPath, &script))
        return Fail("cannot read the script '" + (hasCase ? casePath : scriptPath) + "'");
    if ((hasScript || hasCase) && !CheckScriptActions(script, &error))
        return Fail((hasCase ? casePath : scriptPath) + ": " + error);
    // A case names its printer, sheet and mode; the command line's words come first.
    ScriptCase scriptCase;
    bool modeFromCase = false;
    if (hasCase) {
        if (!ParseScriptCase(script, &scriptCase, &error))
            return Fail(casePath + ": " + error);
        device = device || scriptCase.device;
        if (!hasMode && !scriptCase.mode.empty()) {
            modeText = scriptCase.mode;
            hasMode = modeFromCase = true;
        }
    }
    DWORD fMode = DM_IN_PROMPT | DM_IN_BUFFER | DM_OUT_BUFFER;
    if (hasMode && !ParseMode(modeText, &fMode)) {
        // A case's line is a file's mistake, not the command line's.
        if (modeFromCase)
            return Fail(casePath + ": '#: mode' takes a number or DM_ names, not '" + modeText +
                        "'");
        return UsageError(args.Called(),
                          "--mode takes a number or DM_ names, not '" + modeText + "'");
    }
    std::vector<uint8_t> input;
    if (hasIn && !ReadRecordFile(inPath, &input, &error))
        return Fail(error);
    if (hasCase && !scriptCase.set.empty() && (device || hasIn))
        return Fail(casePath + ": '#: set' gives the document sheet its record; it goes with " +
                    "neither the device sheet nor --in");
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
    const std::string name = args.Rest().empty() ? scriptCase.printer : args.Rest()[0];
    std::unique_ptr<CasePrinter> answering;
    if (scriptCase.pjlsim && !(answering = StartCasePrinter(name, *scriptCase.pjlsim, &error)))
        return Fail(casePath + ": " + error);
    OpenedPrinter printer(name);
    if (!printer.get())
        return Fail("no printer named '" + name + "'");
    if (!scriptCase.set.empty() && !CaseRecord(printer.get(), scriptCase, &input, &error))
        return Fail(casePath + ": " + error);
    if (!WriteCaseData(printer.get(), scriptCase, &error))
        return Fail(casePath + ": " + error);

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
    SheetRunReport run;
    if (!RunSheet(reinterpret_cast<PFNPROPSHEETUI>(pfn), lParam, script, &run, &error))
        return Fail((hasCase ? casePath : scriptPath) + ": " + error);
    std::string overrun = OverrunMessage(out, "the sheet's output record");

    // What the caller receives: the output record, or for the device sheet the queue's record.
    std::vector<BYTE> info, record;
    if (device) {
        if (!StoredRecord(printer.get(), &info, &record, &error))
            return Fail(error);
    } else if (fMode & (DM_OUT_BUFFER | DM_OUT_DEFAULT)) {
        record.assign(out.data(), out.data() + out.size());
    }
    const long long result = run.rc < 0 ? run.rc : static_cast<long long>(run.result);
    if (hasCase) {
        for (const std::string& f : CheckScriptCase(
                 scriptCase, result, record.empty() ? nullptr : record.data(), record.size()))
            run.failures.push_back(casePath + ": " + f);
        CheckCaseData(printer.get(), scriptCase, casePath, &run.failures);
    }

    if (options.json) {
        JsonWriter json;
        json.BeginObject();
        json.Number("result", result);
        if (record.empty())
            json.Null("record");
        else
            RecordToJson(json, "record", record.data(), record.size());
        if (dump) {
            json.BeginArray("pages");
            for (const SheetPageReport& page : run.pages)
                PageToJson(json, page);
            json.EndArray();
        }
        json.BeginArray("failures");
        for (const std::string& f : run.failures)
            json.String(nullptr, f);
        json.EndArray();
        json.EndObject();
        printf("%s\n", json.Text().c_str());
    } else {
        printf("%s: %ld (%s)\n", entry, static_cast<long>(run.rc),
               run.rc < 0               ? "the sheet did not open"
               : run.result == CPSUI_OK ? "OK"
                                        : "Cancel");
        if (dump)
            for (const SheetPageReport& page : run.pages)
                PrintPageText(page);
        if (!record.empty())
            printf("%s", RecordAsText(record.data(), record.size()).c_str());
    }
    for (const std::string& f : run.failures)
        fprintf(stderr, "%s: script %s\n", g_pszToolName, f.c_str());
    if (!overrun.empty())
        return Fail(overrun);
    return run.failures.empty() && run.rc >= 0 ? 0 : 1;
}

extern const Command g_SheetCommand = {
    "sheet",
    "PRINTER [--device] [--mode FLAGS] [--in FILE] [--script FILE] [--dump] [--json]\n"
    "                   | --case FILE [--dump] [--json]",
    "Opens a property sheet as the common UI does and runs a script of a person's actions.",
    SheetCommand,
    "The document sheet (DrvDocumentPropertySheets) with fMode DM_IN_PROMPT | DM_IN_BUFFER |\n"
    "  DM_OUT_BUFFER unless --mode gives a number or DM_ names joined by |; --device opens the\n"
    "  device sheet (DrvDevicePropertySheets). --in passes a record file as pdmIn. The script\n"
    "  (a file, or - for standard input) has one action a line, # starts a comment:\n"
    "    tab ID | click ID | check ID | uncheck ID | select ID DATA | select-text ID TEXT\n"
    "    type ID TEXT | key ID CHAR | spin ID up|down [COUNT] | slide ID POS | menu COMMAND\n"
    "    answer yes|no|ok|cancel|retry|ignore [TEXT] | file PATH | file cancel | ok | cancel\n"
    "    apply | expect ID enabled|disabled|checked|unchecked|visible|hidden|focused\n"
    "    expect ID text TEXT|data DATA|below ID GAP | expect-apply lit|unlit\n"
    "  An answer's TEXT is a part the message must hold.\n"
    "  A dialog opened by an action takes the actions that follow until it ends. Without\n"
    "  actions left the sheet ends as Cancel. Prints the result and the record the caller\n"
    "  gets (the queue's stored record for --device); --dump adds each page's controls.\n"
    "  Exit 1 when a script line fails (its line number is named on standard error).\n"
    "  --case runs a script case: its lines \"#: printer NAME\", \"#: sheet device\",\n"
    "  \"#: mode FLAGS\" choose the sheet, \"#: pjlsim [PROFILE] [--fault MODE[:QUERY]]...\n"
    "  [--delay-ms N] [--address A]\" makes its printer answer (a simulated plotter at its\n"
    "  port's address or at A: qlmhost runs it, under Windows it must be there already),\n"
    "  \"#: set FIELD TEXT\" sets a field of the queue's record given as pdmIn, \"#: data NAME\n"
    "  dword N|binary HEX\" a printer data value, and \"#: result N\", \"#: record FIELD TEXT\",\n"
    "  \"#: stored NAME VALUE\" say what must come out; what does not is a failure."};
