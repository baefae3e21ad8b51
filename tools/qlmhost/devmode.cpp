// qlmhost devmode: the settings record, as the queue stores it, as the driver's entries give it
// (DrvDocumentProperties, DrvConvertDevMode), and as files.
#include "commands.h"
#include "driverlib.h"
#include "records.h"

#include "driver/devmode/devmodeex.h"
#include "driver/devmode/tvodm.h"

#include <cstdio>
#include <cstring>

namespace {

using DocumentPropertiesFn = LONG(HWND, HANDLE, PWSTR, PDEVMODEW, PDEVMODEW, DWORD);
using ConvertDevModeFn = BOOL(LPWSTR, PDEVMODEW, PDEVMODEW, PLONG, DWORD);

// A size any caller would refuse to allocate for a record.
constexpr long long kMaxBuffer = 1 << 20;

// The bytes of a buffer that belong to the record in it: what it declares, within the buffer.
size_t RecordBytes(const BYTE* record, size_t cb)
{
    size_t declared = DeclaredRecordSize(record, cb);
    return declared < cb ? declared : cb;
}

// The record, field by field: a header line and the fields, or one JSON object.
void PrintRecord(const BYTE* record, size_t cb, bool json)
{
    size_t shown = RecordBytes(record, cb);
    if (json) {
        printf("%s\n", RecordAsJson(record, shown).c_str());
        return;
    }
    if (cb >= offsetof(DEVMODEW, dmFields)) {
        WORD size, extra;
        memcpy(&size, record + offsetof(DEVMODEW, dmSize), 2);
        memcpy(&extra, record + offsetof(DEVMODEW, dmDriverExtra), 2);
        printf("record of %zu bytes (dmSize %u + dmDriverExtra %u): %s\n", shown, size, extra,
               RecordKindText(record, cb));
    }
    printf("%s", RecordAsText(record, shown).c_str());
}

// DrvDocumentProperties as an application's DocumentPropertiesW calls it: fMode 0 for the
// size, then DM_OUT_BUFFER into a buffer of that size. Problems that leave a record go to
// *problems; false when there is no record at all.
bool DriverDefault(const DriverLibrary& driver, OpenedPrinter& printer, bool app,
                   const std::vector<uint8_t>& input, std::vector<BYTE>* record,
                   std::vector<std::string>* problems, std::string* error)
{
    auto* export_ = driver.Entry<DocumentPropertiesFn>("DrvDocumentProperties");
    if (!export_) {
        *error = "the driver library does not export DrvDocumentProperties";
        return false;
    }
    auto documentProperties = [&](HWND hwnd, HANDLE hPrinter, LPWSTR name, PDEVMODEW out,
                                  PDEVMODEW in, DWORD fMode) -> LONG {
#ifdef _WIN32
        // The application's way: the spooler's DocumentPropertiesW loads the driver itself.
        if (app)
            return DocumentPropertiesW(hwnd, hPrinter, name, out, in, fMode);
#endif
        return export_(hwnd, hPrinter, name, out, in, fMode);
    };
    PDEVMODEW pdmIn =
        input.empty() ? nullptr : reinterpret_cast<PDEVMODEW>(const_cast<uint8_t*>(input.data()));
    LONG size = documentProperties(nullptr, printer.get(), printer.name(), nullptr, nullptr, 0);
    if (size <= 0 || size > kMaxBuffer) {
        *error = "DrvDocumentProperties with fMode 0 answered " + std::to_string(size) +
                 " for the record's size";
        return false;
    }
    if (size != LONG(sizeof(DEVMODEEX)))
        problems->push_back("DrvDocumentProperties with fMode 0 answered " + std::to_string(size) +
                            " for the record's size, not " + std::to_string(sizeof(DEVMODEEX)));
    GuardedBuffer buffer{size_t(size)};
    LONG result = documentProperties(nullptr, printer.get(), printer.name(),
                                     reinterpret_cast<PDEVMODEW>(buffer.data()), pdmIn,
                                     pdmIn ? DM_IN_BUFFER | DM_OUT_BUFFER : DM_OUT_BUFFER);
    std::string overrun = OverrunMessage(buffer, "DrvDocumentProperties");
    if (!overrun.empty())
        problems->push_back(overrun);
    if (result != IDOK) {
        *error = "DrvDocumentProperties with DM_OUT_BUFFER answered " + std::to_string(result) +
                 ", not 1 (IDOK)";
        return false;
    }
    record->assign(buffer.data(), buffer.data() + buffer.size());
    return true;
}

int ReportProblems(const std::vector<std::string>& problems)
{
    for (const std::string& problem : problems)
        Fail(problem);
    return problems.empty() ? 0 : 1;
}

struct ConvertMode
{
    const char* name;
    DWORD fMode;
    long long defaultOutSize;
};
constexpr ConvertMode kConvertModes[] = {
    {"convert", CDM_CONVERT, sizeof(DEVMODEEX)},
    // What a 3.51 client takes: a 188-byte public part and no private part.
    {"convert351", CDM_CONVERT351, 188},
    {"default", CDM_DRIVER_DEFAULT, sizeof(DEVMODEEX)},
};

// Shapes the output buffer as a record of its size: the driver's default record, cut to the
// buffer and declaring what fits. A full buffer is a current record, a shorter one an older
// record (public part 220, the rest private: 3252 is the older layout), and one of at most
// 220 bytes a bare public part. Below 72 bytes the sizes themselves do not fit.
void ShapeOutput(BYTE* out, size_t cb, const std::vector<BYTE>& defaults)
{
    memcpy(out, defaults.data(), cb < defaults.size() ? cb : defaults.size());
    if (cb < offsetof(DEVMODEW, dmFields))
        return;
    WORD size = sizeof(DEVMODEW), extra = kDEVMODEEX_DRIVER_EXTRA;
    if (cb <= sizeof(DEVMODEW)) {
        size = WORD(cb);
        extra = 0;
    } else if (cb < sizeof(DEVMODEEX)) {
        extra = WORD(cb - sizeof(DEVMODEW));
    }
    memcpy(out + offsetof(DEVMODEW, dmSize), &size, 2);
    memcpy(out + offsetof(DEVMODEW, dmDriverExtra), &extra, 2);
}

// A record of no printer's defaults: the identity fields only.
std::vector<BYTE> SkeletonRecord()
{
    std::vector<BYTE> record(sizeof(DEVMODEEX), 0);
    auto* dm = reinterpret_cast<DEVMODEW*>(record.data());
    dm->dmSpecVersion = TVO_SPEC_VERSION;
    dm->dmDriverVersion = TVO_DRIVER_VERSION;
    dm->dmSize = sizeof(DEVMODEW);
    dm->dmDriverExtra = kDEVMODEEX_DRIVER_EXTRA;
    return record;
}

} // namespace

bool StoredRecord(HANDLE hPrinter, std::vector<BYTE>* info, std::vector<BYTE>* record,
                  std::string* error)
{
    DWORD needed = 0;
    GetPrinterW(hPrinter, 2, nullptr, 0, &needed);
    info->assign(needed, 0);
    if (!needed || !GetPrinterW(hPrinter, 2, info->data(), needed, &needed)) {
        *error = "GetPrinter: " + Win32Error(GetLastError());
        return false;
    }
    const auto* pi = reinterpret_cast<const PRINTER_INFO_2W*>(info->data());
    record->clear();
    if (pi->pDevMode) {
        const BYTE* p = reinterpret_cast<const BYTE*>(pi->pDevMode);
        record->assign(p, p + pi->pDevMode->dmSize + pi->pDevMode->dmDriverExtra);
    }
    return true;
}

int DevmodeLayout(Args& args, const Options& options)
{
    int rc;
    if (!Expect(args, 0, 0, &rc))
        return rc;
    static const char* kKinds[] = {"bytes", "signed", "unsigned", "hex",
                                   "text",  "list",   "fixed",    "finisher"};
    if (options.json) {
        JsonWriter w;
        w.BeginObject();
        w.Number("size", sizeof(DEVMODEEX));
        w.BeginArray("fields");
        for (size_t i = 0; i < g_cDevmodeFields; i++) {
            const DEVMODEEX_FIELD& f = g_DevmodeFields[i];
            w.BeginObject();
            w.String("name", std::string(f.pszName));
            w.Number("offset", f.dwOffset);
            w.Number("size", f.cbSize);
            w.Number("count", f.cbSize / f.cbElement);
            w.String("kind", std::string(kKinds[f.eKind]));
            w.EndObject();
        }
        w.EndArray();
        w.EndObject();
        printf("%s\n", w.Text().c_str());
        return 0;
    }
    printf("DEVMODEEX: %zu bytes, %zu named fields\n", sizeof(DEVMODEEX), g_cDevmodeFields);
    printf("offset  size  count  kind      name\n");
    for (size_t i = 0; i < g_cDevmodeFields; i++) {
        const DEVMODEEX_FIELD& f = g_DevmodeFields[i];
        printf("%6u %5u %6u  %-9s %s\n", f.dwOffset, f.cbSize, f.cbSize / f.cbElement,
               kKinds[f.eKind], f.pszName);
    }
    return 0;
}

int DevmodeShow(Args& args, const Options& options)
{
    int rc;
    if (!Expect(args, 1, 1, &rc))
        return rc;
    OpenedPrinter printer(args.Rest()[0]);
    if (!printer.get())
        return Fail("no printer named '" + args.Rest()[0] + "'");
    std::vector<BYTE> info, record;
    std::string error;
    if (!StoredRecord(printer.get(), &info, &record, &error))
        return Fail(error);
    if (record.empty())
        return Fail("printer '" + args.Rest()[0] + "' has no stored record");
    PrintRecord(record.data(), record.size(), options.json);
    return 0;
}

int DevmodeNew(Args& args, const Options& options)
{
    int rc;
    if (!Expect(args, 1, 1, &rc))
        return rc;
    OpenedPrinter printer(args.Rest()[0]);
    if (!printer.get())
        return Fail("no printer named '" + args.Rest()[0] + "'");
    TVODevMode devmode(printer.get());
    if (!devmode.m_lpDM)
        return Fail("out of memory");
    PrintRecord(reinterpret_cast<const BYTE*>(devmode.m_lpDM), sizeof(DEVMODEEX), options.json);
    return 0;
}

int DevmodeDefault(Args& args, const Options& options)
{
    std::string outPath, inPath;
    bool toFile = args.Take("--out", &outPath);
    const bool app = args.Flag("--app");
    const bool hasIn = args.Take("--in", &inPath);
    int rc;
    if (!Expect(args, 1, 1, &rc))
        return rc;
    OpenedPrinter printer(args.Rest()[0]);
    if (!printer.get())
        return Fail("no printer named '" + args.Rest()[0] + "'");
    DriverLibrary driver;
    std::string error;
    if (!driver.Load(options.driverLibrary, &error))
        return Fail(error);
    std::vector<uint8_t> input;
    if (hasIn && !ReadRecordFile(inPath, &input, &error))
        return Fail(error);
    // The driver reads a record of its own size: a shorter one goes with zeros behind it.
    if (!input.empty() && input.size() < sizeof(DEVMODEEX))
        input.resize(sizeof(DEVMODEEX), 0);
    std::vector<BYTE> record;
    std::vector<std::string> problems;
    if (!DriverDefault(driver, printer, app, input, &record, &problems, &error)) {
        ReportProblems(problems);
        return Fail(error);
    }
    if (toFile && !WriteFileBytes(outPath, record.data(), record.size(), &error))
        return Fail(error);
    PrintRecord(record.data(), record.size(), options.json);
    if (toFile && !options.json)
        printf("%zu bytes written to %s\n", record.size(), outPath.c_str());
    return ReportProblems(problems);
}

int DevmodeConvert(Args& args, const Options& options)
{
    std::string modeText, inPath, outSizeText, outPath;
    if (!args.Take("--mode", &modeText))
        return UsageError(args.Called(),
                          "--mode convert|convert351|default is required");
    bool withIn = args.Take("--in", &inPath);
    bool withOutSize = args.Take("--out-size", &outSizeText);
    bool toFile = args.Take("--out", &outPath);
    int rc;
    if (!Expect(args, 1, 1, &rc))
        return rc;

    ConvertMode mode = {nullptr, 0, sizeof(DEVMODEEX)};
    for (const ConvertMode& row : kConvertModes)
        if (SameWord(modeText.c_str(), row.name))
            mode = row;
    long long number;
    if (!mode.name) {
        // Any other number reaches the driver as it stands, to see how it refuses it.
        if (!ParseNumber(modeText, 0, 0xFFFFFFFFll, &number))
            return UsageError(args.Called(),
                              "--mode takes convert, convert351, default or a number, not '" +
                                  modeText + "'");
        mode.fMode = DWORD(number);
    }
    long long outSize = mode.defaultOutSize;
    if (withOutSize && !ParseNumber(outSizeText, 0, kMaxBuffer, &outSize))
        return UsageError(args.Called(),
                          "--out-size takes a number of bytes from 0 to " +
                              std::to_string(kMaxBuffer) + ", not '" + outSizeText + "'");

    std::vector<BYTE> in;
    std::string error;
    if (withIn) {
        if (!ReadRecordFile(inPath, &in, &error))
            return Fail(error);
        if (in.size() < sizeof(DEVMODEEX))
            in.resize(sizeof(DEVMODEEX), 0);
    }

    OpenedPrinter printer(args.Rest()[0]);
    if (!printer.get())
        return Fail("no printer named '" + args.Rest()[0] + "'");
    DriverLibrary driver;
    if (!driver.Load(options.driverLibrary, &error))
        return Fail(error);
    auto* convert = driver.Entry<ConvertDevModeFn>("DrvConvertDevMode");
    if (!convert)
        return Fail(options.driverLibrary + " does not export DrvConvertDevMode");

    std::vector<std::string> problems;
    GuardedBuffer out{size_t(outSize)};
    if (outSize > 0) {
        std::vector<BYTE> defaults;
        std::vector<std::string> ignored;
        if (!DriverDefault(driver, printer, false, {}, &defaults, &ignored, &error)) {
            fprintf(stderr,
                    "qlmhost: note: no default record to shape the output buffer (%s); "
                    "it holds the record's identity fields only\n",
                    error.c_str());
            defaults = SkeletonRecord();
        }
        ShapeOutput(out.data(), out.size(), defaults);
    }

    LONG cbNeeded = LONG(outSize);
    SetLastError(ERROR_SUCCESS);
    BOOL result = convert(printer.name(), withIn ? reinterpret_cast<PDEVMODEW>(in.data()) : nullptr,
                          outSize > 0 ? reinterpret_cast<PDEVMODEW>(out.data()) : nullptr,
                          &cbNeeded, mode.fMode);
    DWORD lastError = GetLastError();
    std::string overrun = OverrunMessage(out, "DrvConvertDevMode");
    if (!overrun.empty())
        problems.push_back(overrun);

    size_t recordBytes = result ? RecordBytes(out.data(), out.size()) : 0;
    if (options.json) {
        JsonWriter json;
        json.BeginObject();
        if (mode.name)
            json.String("mode", std::string(mode.name));
        else
            json.Null("mode");
        json.Number("fMode", mode.fMode);
        json.Number("outSize", outSize);
        json.Number("result", result);
        json.Number("cbNeeded", cbNeeded);
        json.Number("lastError", lastError);
        if (result)
            RecordToJson(json, "record", out.data(), recordBytes);
        json.EndObject();
        printf("%s\n", json.Text().c_str());
    } else {
        printf("DrvConvertDevMode(fMode %u%s%s) with a %lld-byte output buffer = %d (%s)\n",
               mode.fMode, mode.name ? ", " : "", mode.name ? mode.name : "", outSize, result,
               result ? "TRUE" : "FALSE");
        printf("cbNeeded    %d\n", cbNeeded);
        printf("last error  %s\n", lastError ? Win32Error(lastError).c_str() : "0");
        if (result)
            PrintRecord(out.data(), out.size(), false);
    }
    if (toFile) {
        if (!result)
            problems.push_back("no record written to " + outPath + ": the conversion failed");
        else if (!WriteFileBytes(outPath, out.data(), recordBytes, &error))
            problems.push_back(error);
        else if (!options.json)
            printf("%zu bytes written to %s\n", recordBytes, outPath.c_str());
    }
    return ReportProblems(problems);
}

int DevmodeRead(Args& args, const Options& options)
{
    int rc;
    if (!Expect(args, 1, 1, &rc))
        return rc;
    std::vector<BYTE> record;
    std::string error;
    if (!ReadRecordFile(args.Rest()[0], &record, &error))
        return Fail(error);
    PrintRecord(record.data(), record.size(), options.json);
    return 0;
}

int DevmodeStore(Args& args, const Options& options)
{
    int rc;
    if (!Expect(args, 2, 2, &rc))
        return rc;
    std::vector<BYTE> record;
    std::string error;
    if (!ReadRecordFile(args.Rest()[1], &record, &error))
        return Fail(error);
    OpenedPrinter printer(args.Rest()[0]);
    if (!printer.get())
        return Fail("no printer named '" + args.Rest()[0] + "'");
    // As an application stores a queue's default: read level 2, change pDevMode, write back.
    std::vector<BYTE> info, stored;
    if (!StoredRecord(printer.get(), &info, &stored, &error))
        return Fail(error);
    auto* pi = reinterpret_cast<PRINTER_INFO_2W*>(info.data());
    pi->pDevMode = reinterpret_cast<LPDEVMODEW>(record.data());
    if (!SetPrinterW(printer.get(), 2, info.data(), 0))
        return Fail("SetPrinter: " + Win32Error(GetLastError()));
    printf("record of %zu bytes stored for '%s'\n",
           DeclaredRecordSize(record.data(), record.size()), args.Rest()[0].c_str());
    return 0;
}

// As Windows' spooler makes a new queue's record: DrvConvertDevMode with CDM_DRIVER_DEFAULT.
bool StoreSpoolerDefault(const Options& options, const std::string& printerName, std::string* error)
{
    OpenedPrinter printer(printerName);
    if (!printer.get()) {
        *error = "no printer named '" + printerName + "'";
        return false;
    }
    DriverLibrary driver;
    if (!driver.Load(options.driverLibrary, error))
        return false;
    auto* convert = driver.Entry<ConvertDevModeFn>("DrvConvertDevMode");
    if (!convert) {
        *error = options.driverLibrary + " does not export DrvConvertDevMode";
        return false;
    }
    std::vector<BYTE> record(sizeof(DEVMODEEX), 0), info, stored;
    LONG cb = LONG(record.size());
    if (!convert(printer.name(), nullptr, reinterpret_cast<PDEVMODEW>(record.data()), &cb,
                 CDM_DRIVER_DEFAULT)) {
        *error = "DrvConvertDevMode(CDM_DRIVER_DEFAULT) failed: " + Win32Error(GetLastError());
        return false;
    }
    if (!StoredRecord(printer.get(), &info, &stored, error))
        return false;
    auto* pi = reinterpret_cast<PRINTER_INFO_2W*>(info.data());
    pi->pDevMode = reinterpret_cast<PDEVMODEW>(record.data());
    if (!SetPrinterW(printer.get(), 2, info.data(), 0)) {
        *error = "SetPrinter: " + Win32Error(GetLastError());
        return false;
    }
    return true;
}

extern const Command g_DevmodeDefaultCommand = {
    "devmode default", "PRINTER [--in FILE] [--app] [--out FILE] [--json]",
    "Shows the default record the driver's DrvDocumentProperties gives (DM_OUT_BUFFER).",
    DevmodeDefault,
    "The driver is asked for the size first (fMode 0), which must be 13484, then for the\n"
    "  record into a buffer of that size. --out writes the record's bytes to FILE.\n"
    "  --in merges a record file (DM_IN_BUFFER | DM_OUT_BUFFER); --app asks through the\n"
    "  spooler's DocumentPropertiesW where there is one (Windows)."};

extern const Command g_DevmodeShowCommand = {
    "devmode show", "PRINTER [--json]",
    "Shows the queue's stored record (GetPrinter level 2) field by field.", DevmodeShow};

extern const Command g_DevmodeConvertCommand = {
    "devmode convert",
    "PRINTER --mode convert|convert351|default [--in FILE] [--out-size N] [--out FILE] [--json]",
    "Calls the driver's DrvConvertDevMode as the spooler does.", DevmodeConvert,
    "--mode gives fMode: convert (CDM_CONVERT 1), convert351 (CDM_CONVERT351 2), default\n"
    "  (CDM_DRIVER_DEFAULT 4), or any number. --in FILE is pdmIn (NULL without it).\n"
    "  --out-size N is the output buffer's size and *pcbNeeded on the way in: 13484 by\n"
    "  default, 188 for convert351; 0 passes a NULL pdmOut. The buffer is shaped as a record\n"
    "  of its size, since the conversion fits the input into the output's shape: it holds the\n"
    "  driver's default record (DrvDocumentProperties) cut to N bytes, declaring dmSize 220\n"
    "  and dmDriverExtra 13264 when N is 13484 or more, dmSize 220 and dmDriverExtra N - 220\n"
    "  below that (3252 is the older layout), and dmSize N and no private part when N is 220\n"
    "  or less. Shown: the BOOL result, *pcbNeeded, the last error (set to 0 before the call;\n"
    "  after TRUE it is whatever the driver's own calls left) and, when the result is TRUE,\n"
    "  the output record (\"record\" in --json). --out writes the record's bytes to FILE."};
