// qlmhost caps: asks the driver's DrvDeviceCapabilities as an application asks
// DeviceCapabilitiesW, and decodes what it wrote by the index's output type.
#include "commands.h"
#include "driverlib.h"
#include "records.h"

#include <cstdio>
#include <cstring>

namespace {

// What an index writes to pOutput.
enum class CapOutput
{
    kNone,        // nothing: the answer is all
    kWords,       // WORD codes
    kDwords,      // DWORD values
    kPoints,      // POINT: two LONGs, x then y
    kNames,       // fixed-width WCHAR names
    kExtent,      // nothing; the answer packs width (low word) and length (high word)
    kAsciiBuffer, // one fixed buffer of 8-bit text, asked without a first call
};

struct CapIndex
{
    WORD index;
    const char* name;
    CapOutput output;
    DWORD width; // bytes of one element; WCHARs of one name; bytes of an ASCII buffer
};

// The indexes of wingdi.h and the two that AutoCAD asks, with what each writes.
constexpr CapIndex kCapIndexes[] = {
    {1, "DC_FIELDS", CapOutput::kNone, 0},
    {2, "DC_PAPERS", CapOutput::kWords, 2},
    {3, "DC_PAPERSIZE", CapOutput::kPoints, 8},
    {4, "DC_MINEXTENT", CapOutput::kExtent, 0},
    {5, "DC_MAXEXTENT", CapOutput::kExtent, 0},
    {6, "DC_BINS", CapOutput::kWords, 2},
    {7, "DC_DUPLEX", CapOutput::kNone, 0},
    {8, "DC_SIZE", CapOutput::kNone, 0},
    {9, "DC_EXTRA", CapOutput::kNone, 0},
    {10, "DC_VERSION", CapOutput::kNone, 0},
    {11, "DC_DRIVER", CapOutput::kNone, 0},
    {12, "DC_BINNAMES", CapOutput::kNames, 24},
    {13, "DC_ENUMRESOLUTIONS", CapOutput::kPoints, 8},
    {14, "DC_FILEDEPENDENCIES", CapOutput::kNames, 64},
    {15, "DC_TRUETYPE", CapOutput::kNone, 0},
    {16, "DC_PAPERNAMES", CapOutput::kNames, 64},
    {17, "DC_ORIENTATION", CapOutput::kNone, 0},
    {18, "DC_COPIES", CapOutput::kNone, 0},
    {19, "DC_BINADJUST", CapOutput::kNone, 0},
    {20, "DC_EMF_COMPLIANT", CapOutput::kNone, 0},
    {21, "DC_DATATYPE_PRODUCED", CapOutput::kNone, 0},
    {22, "DC_COLLATE", CapOutput::kNone, 0},
    {23, "DC_MANUFACTURER", CapOutput::kNone, 0},
    {24, "DC_MODEL", CapOutput::kNone, 0},
    {25, "DC_PERSONALITY", CapOutput::kNames, 32},
    {26, "DC_PRINTRATE", CapOutput::kNone, 0},
    {27, "DC_PRINTRATEUNIT", CapOutput::kNone, 0},
    {28, "DC_PRINTERMEM", CapOutput::kNone, 0},
    {29, "DC_MEDIAREADY", CapOutput::kNames, 64},
    {30, "DC_STAPLE", CapOutput::kNone, 0},
    {31, "DC_PRINTRATEPPM", CapOutput::kNone, 0},
    {32, "DC_COLORDEVICE", CapOutput::kNone, 0},
    {33, "DC_NUP", CapOutput::kDwords, 4},
    {34, "DC_MEDIATYPENAMES", CapOutput::kNames, 64},
    {35, "DC_MEDIATYPES", CapOutput::kDwords, 4},
    // AutoCAD's: the name of its plotter driver for this one, in a 34-byte buffer.
    {20552, "DC_IDSYSPRN", CapOutput::kAsciiBuffer, 34},
    // AutoCAD's: 1 inches, 2 millimetres.
    {20553, "DC_MMINCH", CapOutput::kNone, 0},
};

const CapIndex* FindIndex(long long index)
{
    for (const CapIndex& row : kCapIndexes)
        if (row.index == index)
            return &row;
    return nullptr;
}

// By number (decimal or 0x hex) or by name, without regard to case, with or without "DC_".
bool ParseCapIndex(const std::string& text, WORD* index)
{
    long long number;
    if (ParseNumber(text, 0, 0xFFFF, &number)) {
        *index = WORD(number);
        return true;
    }
    for (const CapIndex& row : kCapIndexes) {
        if (SameWord(text.c_str(), row.name) || SameWord(text.c_str(), row.name + 3)) {
            *index = row.index;
            return true;
        }
    }
    return false;
}

// A count beyond this is a fault, not a list to allocate room for.
constexpr int32_t kMaxElements = 65535;

using DeviceCapabilitiesFn = DWORD(HANDLE, PWSTR, WORD, void*, PDEVMODEW);

// One element of the output, as text for people and as a JSON value.
void DecodeElement(const CapIndex& row, const BYTE* p, JsonWriter* json, std::string* text)
{
    switch (row.output) {
    case CapOutput::kWords: {
        WORD w;
        memcpy(&w, p, 2);
        if (json)
            json->Number(nullptr, w);
        *text = std::to_string(w);
        break;
    }
    case CapOutput::kDwords: {
        DWORD d;
        memcpy(&d, p, 4);
        if (json)
            json->Number(nullptr, d);
        *text = std::to_string(d);
        break;
    }
    case CapOutput::kPoints: {
        LONG xy[2];
        memcpy(xy, p, 8);
        if (json) {
            json->BeginArray();
            json->Number(nullptr, xy[0]);
            json->Number(nullptr, xy[1]);
            json->EndArray();
        }
        *text = std::to_string(xy[0]) + " x " + std::to_string(xy[1]);
        break;
    }
    case CapOutput::kNames: {
        // A name that fills its element has no terminator.
        std::u16string name = BoundedText(p, row.width);
        if (json)
            json->String(nullptr, name);
        *text = TextQuote(name);
        break;
    }
    case CapOutput::kAsciiBuffer: {
        std::u16string name;
        for (DWORD i = 0; i < row.width && p[i]; i++)
            name += char16_t(p[i]);
        if (json)
            json->String(nullptr, name);
        *text = TextQuote(name);
        break;
    }
    default:
        break;
    }
}

} // namespace

int CapsCommand(Args& args, const Options& options)
{
    std::string devmodePath;
    bool withDevmode = args.Take("--devmode", &devmodePath);
    const bool app = args.Flag("--app");
    const bool noHandle = args.Flag("--no-handle");
    int rc;
    if (!Expect(args, 2, 2, &rc))
        return rc;
    const std::string& printerName = args.Rest()[0];
    WORD index;
    if (!ParseCapIndex(args.Rest()[1], &index))
        return UsageError(args.Called(),
                          "'" + args.Rest()[1] +
                              "' is no capability index: give a number from 0 to 65535 or a "
                              "DC_ name (see qlmhost caps --help)");
    const CapIndex* row = FindIndex(index);
    const CapIndex unknown = {index, nullptr, CapOutput::kNone, 0};
    if (!row)
        row = &unknown;
    std::string what = row->name ? row->name : "index " + std::to_string(index);

    // The driver reads a record of its own size from pDevMode whatever the record declares,
    // so a shorter one is handed over with zeros behind it.
    std::vector<uint8_t> devmode;
    std::string error;
    if (withDevmode) {
        if (!ReadRecordFile(devmodePath, &devmode, &error))
            return Fail(error);
        // The driver takes whatever it is given for its own current record.
        if (GetDevmodeKind(reinterpret_cast<const DEVMODEW*>(devmode.data())) != kDM_OWN_CURRENT)
            fprintf(stderr,
                    "qlmhost: note: %s is not this driver's current record (%s); the driver "
                    "reads it as one\n",
                    devmodePath.c_str(), RecordKindText(devmode.data(), devmode.size()));
        if (devmode.size() < sizeof(DEVMODEEX))
            devmode.resize(sizeof(DEVMODEEX), 0);
    }
    PDEVMODEW pDevMode = withDevmode ? reinterpret_cast<PDEVMODEW>(devmode.data()) : nullptr;

    OpenedPrinter printer(printerName);
    if (!printer.get())
        return Fail("no printer named '" + printerName + "'");
    DriverLibrary driver;
    if (!driver.Load(options.driverLibrary, &error))
        return Fail(error);
    auto* deviceCapabilities = driver.Entry<DeviceCapabilitiesFn>("DrvDeviceCapabilities");
    if (!deviceCapabilities)
        return Fail(options.driverLibrary + " does not export DrvDeviceCapabilities");

    // The answer is a DWORD that carries -1 for "not supported".
    auto ask = [&](void* output) {
#ifdef _WIN32
        // The application's way: the spooler's DeviceCapabilitiesW loads the driver itself.
        if (app)
            return static_cast<int32_t>(DeviceCapabilitiesW(printer.name(), nullptr, index,
                                                            static_cast<LPWSTR>(output), pDevMode));
#else
        (void)app; // the host's spooler hands the question to the export, as below
#endif
        return static_cast<int32_t>(deviceCapabilities(noHandle ? nullptr : printer.get(),
                                                       printer.name(), index, output, pDevMode));
    };
    int32_t result;
    int32_t count = 0;
    std::vector<std::string> problems;
    GuardedBuffer buffer(0);
    bool wrote = false;
    switch (row->output) {
    case CapOutput::kWords:
    case CapOutput::kDwords:
    case CapOutput::kPoints:
    case CapOutput::kNames: {
        // As an application does: the count first, then a buffer of exactly that many.
        count = ask(nullptr);
        result = count;
        if (count <= 0)
            break;
        if (count > kMaxElements) {
            problems.push_back("the driver answered " + std::to_string(count) + " for " + what +
                               ", more than any list holds; not asked again");
            count = 0;
            break;
        }
        size_t element = row->output == CapOutput::kNames ? row->width * 2 : row->width;
        buffer = GuardedBuffer(size_t(count) * element);
        result = ask(buffer.data());
        wrote = true;
        if (result != count)
            problems.push_back("the driver answered " + std::to_string(count) +
                               " without a buffer, but " + std::to_string(result) +
                               " with one for " + what);
        break;
    }
    case CapOutput::kAsciiBuffer:
        // Asked with the buffer straight away: without one the answer is -1.
        buffer = GuardedBuffer(row->width);
        result = ask(buffer.data());
        wrote = true;
        count = result > 0 ? 1 : 0;
        break;
    default:
        result = ask(nullptr);
        break;
    }
    if (wrote) {
        std::string overrun = OverrunMessage(buffer, what);
        if (!overrun.empty())
            problems.push_back(overrun);
    }

    // The elements the driver both counted and had room for.
    size_t shown = 0;
    if (wrote && result > 0) {
        shown = size_t(result < count ? result : count);
        if (row->output == CapOutput::kAsciiBuffer)
            shown = 1;
    }
    size_t element = row->output == CapOutput::kNames ? row->width * 2 : row->width;
    bool listOutput = row->output != CapOutput::kNone && row->output != CapOutput::kExtent;
    DWORD packed = static_cast<DWORD>(result);

    if (options.json) {
        JsonWriter json;
        json.BeginObject();
        json.Number("index", index);
        if (row->name)
            json.String("name", std::string(row->name));
        else
            json.Null("name");
        json.Number("result", result);
        if (listOutput && (wrote || count == 0) && result >= 0) {
            json.BeginArray("output");
            std::string ignored;
            for (size_t i = 0; i < shown; i++)
                DecodeElement(*row, buffer.data() + i * element, &json, &ignored);
            json.EndArray();
        }
        if (row->output == CapOutput::kExtent && result != -1) {
            json.Number("width", packed & 0xFFFF);
            json.Number("length", packed >> 16);
        }
        json.EndObject();
        printf("%s\n", json.Text().c_str());
    } else {
        printf("%s (%u) = %d", what.c_str(), index, result);
        if (row->output == CapOutput::kExtent && result != -1)
            printf(": width %u, length %u", packed & 0xFFFF, packed >> 16);
        if (index == 20553 && (result == 1 || result == 2))
            printf(" (%s)", result == 1 ? "inches" : "millimetres");
        printf("\n");
        for (size_t i = 0; i < shown; i++) {
            std::string text;
            DecodeElement(*row, buffer.data() + i * element, nullptr, &text);
            printf("%5zu  %s\n", i + 1, text.c_str());
        }
    }
    for (const std::string& problem : problems)
        Fail(problem);
    return problems.empty() ? 0 : 1;
}

extern const Command g_CapsCommand = {
    "caps", "PRINTER INDEX [--devmode FILE] [--app|--no-handle] [--json]",
    "Asks the driver's DrvDeviceCapabilities as an application does, and decodes the output.",
    CapsCommand,
    "--app asks as an application does, through the spooler's DeviceCapabilitiesW where\n"
    "  there is one (Windows); the host answers it as Windows documents it, through the export\n"
    "  with the queue's handle. --no-handle calls the export with the printer's name and a null\n"
    "  handle, as Wine's DeviceCapabilitiesW does.\n  "
    "INDEX is a number (decimal or 0x hex) or a name, without regard to case and with or\n"
    "  without DC_: FIELDS PAPERS PAPERSIZE MINEXTENT MAXEXTENT BINS DUPLEX SIZE EXTRA\n"
    "  VERSION DRIVER BINNAMES ENUMRESOLUTIONS FILEDEPENDENCIES TRUETYPE PAPERNAMES\n"
    "  ORIENTATION COPIES BINADJUST EMF_COMPLIANT DATATYPE_PRODUCED COLLATE MANUFACTURER\n"
    "  MODEL PERSONALITY PRINTRATE PRINTRATEUNIT PRINTERMEM MEDIAREADY STAPLE PRINTRATEPPM\n"
    "  COLORDEVICE NUP MEDIATYPENAMES MEDIATYPES, and AutoCAD's IDSYSPRN (20552) and MMINCH\n"
    "  (20553).\n"
    "  For a list index the driver is asked first without a buffer for the count, then with a\n"
    "  buffer of exactly that many elements; writing past its end is reported as an error.\n"
    "  Outputs: WORD codes (PAPERS, BINS), POINTs (PAPERSIZE), LONG pairs (ENUMRESOLUTIONS),\n"
    "  names of 64 characters (PAPERNAMES, FILEDEPENDENCIES, MEDIAREADY, MEDIATYPENAMES), of\n"
    "  24 (BINNAMES) and of 32 (PERSONALITY), DWORDs (NUP, MEDIATYPES), and the 34-byte text\n"
    "  of IDSYSPRN, asked with its buffer at once. MINEXTENT and MAXEXTENT answer width (low\n"
    "  16 bits) and length (high 16 bits), tenths of a millimetre. An answer of -1 means not\n"
    "  supported.\n"
    "  --devmode FILE passes a record file as pDevMode (zeros behind a shorter record, since\n"
    "  the driver reads a record of its own size); otherwise pDevMode is NULL.\n"
    "  --json prints {\"index\", \"name\", \"result\", \"output\"} (\"output\" absent when "
    "nothing\n"
    "  is written; extents add \"width\" and \"length\")."};
