// qlmhost refresh, parse and printer state: the driver's conversation with the printer, run on
// a queue's stored record; a capture file read as the parser reads it; and what the record
// holds of the printer, by name.
#include "commands.h"
#include "printerstate.h"
#include "records.h"

#include "driver/config/tvoconfg.h"
#include "driver/devmode/tvodm.h"
#include "driver/dialogue/qlmrefresh.h"
#include "driver/dialogue/qlmrefresh_decode.h"
#include "driver/dialogue/tvoparsepjl.h"
#include "driver/dialogs/tvoprinteripdlg.h"
#include "platform/host/host.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

const char16_t kDebugKey[] = u"DebugSettings";
const char16_t kFromFileSwitch[] = u"DBG_BidiFromFile";

// Turns the switch that makes the refresh read a capture file on for the run, and puts back
// what was there: a switch that was absent is left as 0, which reads the same.
class FromFileSwitch
{
public:
    explicit FromFileSwitch(const std::u16string& printer) : m_printer(printer)
    {
        host::DataValue old;
        m_had = host::GetPrinterData(printer, kDebugKey, kFromFileSwitch, &old);
        if (m_had)
            m_old = old;
        Set({1, 0, 0, 0});
    }
    ~FromFileSwitch()
    {
        if (m_had)
            host::SetPrinterData(m_printer, m_old);
        else
            Set({0, 0, 0, 0});
    }

private:
    void Set(std::vector<uint8_t> bytes)
    {
        host::SetPrinterData(m_printer,
                             host::DataValue{kDebugKey, kFromFileSwitch, REG_DWORD, bytes});
    }
    std::u16string m_printer;
    bool m_had = false;
    host::DataValue m_old;
};

// A queue's record written back as an application stores a queue's default.
bool StoreRecord(HANDLE hPrinter, DEVMODEEX* dm, std::string* error)
{
    std::vector<BYTE> info, stored;
    if (!StoredRecord(hPrinter, &info, &stored, error))
        return false;
    reinterpret_cast<PRINTER_INFO_2W*>(info.data())->pDevMode = &dm->dmPublic;
    if (!SetPrinterW(hPrinter, 2, info.data(), 0)) {
        *error = "SetPrinter: " + Win32Error(GetLastError());
        return false;
    }
    return true;
}

const char* StatusName(int status)
{
    static const char* const kNames[] = {"STATUS_OK",      "STATUS_ENDOFSTREAM", "STATUS_ERROR",
                                         "STATUS_NOPJL",   "STATUS_OUTOFSPACE",  "STATUS_REACHEDFF",
                                         "STATUS_CONTINUE"};
    return status >= 0 && status < int(std::size(kNames)) ? kNames[status] : "unknown status";
}

std::string Narrow(const WCHAR* text)
{
    return host::Utf16ToUtf8(text);
}

// The name a roll token's list index stands for, as the decoder names it; empty for others.
std::string RollMeaning(DWORD token, DWORD value)
{
    if ((token >= TOKEN_INQUIRE_ROLL1SIZE && token <= TOKEN_INQUIRE_ROLL6SIZE) ||
        token == TOKEN_INQUIRE_MANUALSIZE)
        return Narrow(getRollSize(value));
    if ((token >= TOKEN_INQUIRE_ROLL1TYPE && token <= TOKEN_INQUIRE_ROLL6TYPE) ||
        token == TOKEN_INQUIRE_MANUALTYPE)
        return Narrow(getRollType(value));
    if ((token >= TOKEN_INQUIRE_ROLL1STAT && token <= TOKEN_INQUIRE_ROLL6STAT) ||
        token == TOKEN_INQUIRE_MANUALSTAT)
        return Narrow(getRollStat(value));
    return std::string();
}

// A text value's first line, as the 8-bit bytes stand, at most 200 of them.
std::u16string ValueLine(const char* buffer, DWORD value)
{
    char line[201];
    if (!QLMCopyLineValue(line, sizeof(line), buffer, kPJL_REPLY_BUFFER_SIZE, value, "\r\n\f"))
        return u"<outside the buffer>";
    std::u16string text;
    for (const char* p = line; *p; ++p)
        text += static_cast<char16_t>(static_cast<unsigned char>(*p));
    return text;
}

} // namespace

int RefreshCommand(Args& args, const Options& options)
{
    std::string capture;
    bool fromFile = args.Take("--capture", &capture);
    int rc;
    if (!Expect(args, 1, 1, &rc))
        return rc;
    const std::string& name = args.Rest()[0];
    std::string absolute;
    if (fromFile) {
        std::error_code ec;
        if (!std::filesystem::is_regular_file(capture, ec))
            return Fail("no capture file '" + capture + "'");
        absolute = std::filesystem::absolute(capture, ec).string();
    }
    OpenedPrinter printer(name);
    if (!printer.get())
        return Fail("no printer named '" + name + "'");

    TVODevMode devmode(printer.get());
    if (!devmode.m_lpDM)
        return Fail("out of memory");
    if (!devmode.getDeviceMode(printer.get(), TEXT(""), printer.name(), nullptr))
        return Fail("the queue's record cannot be read");
    TVOPrinterConfiguration config(printer.name());
    config.setPrinterHandle(printer.get());

    // The address question is the driver's dialog, answered by the global --address.
    QLMInstallPrinterAddressDialog();
    int result;
    {
        std::optional<FromFileSwitch> fromFileSwitch;
        if (fromFile) {
            fromFileSwitch.emplace(W(name));
            host::QueueFilePickerAnswer(W(absolute));
        }
        result = QLMRefresh(&config, devmode.m_lpDM, nullptr);
        host::ClearFilePickerAnswers();
    }

    std::string error;
    bool stored = result == 1 && StoreRecord(printer.get(), devmode.m_lpDM, &error);
    if (options.json) {
        JsonWriter json;
        json.BeginObject();
        json.Number("result", result);
        json.Bool("stored", stored);
        if (stored)
            PrinterStateToJson(json, "printer", *devmode.m_lpDM);
        json.EndObject();
        printf("%s\n", json.Text().c_str());
    } else if (stored) {
        printf("QLMRefresh = 1: '%s' now holds what the printer said\n%s", name.c_str(),
               PrinterStateAsText(*devmode.m_lpDM).c_str());
    }
    if (result != 1)
        return Fail("QLMRefresh = 0: no printer answered or the question was cancelled; nothing "
                    "of the printer was stored");
    if (!stored)
        return Fail(error);
    return 0;
}

int PrinterStateCommand(Args& args, const Options& options)
{
    int rc;
    if (!Expect(args, 1, 1, &rc))
        return rc;
    const std::string& name = args.Rest()[0];
    OpenedPrinter printer(name);
    if (!printer.get())
        return Fail("no printer named '" + name + "'");
    std::vector<BYTE> info, record;
    std::string error;
    if (!StoredRecord(printer.get(), &info, &record, &error))
        return Fail(error);
    if (record.size() < sizeof(DEVMODEEX))
        return Fail("printer '" + name + "' has no stored record of this driver (" +
                    RecordKindText(record.data(), record.size()) + ")");
    DEVMODEEX dm;
    memcpy(static_cast<void*>(&dm), record.data(), sizeof(dm));
    if (options.json) {
        JsonWriter json;
        PrinterStateToJson(json, nullptr, dm);
        printf("%s\n", json.Text().c_str());
    } else {
        printf("printer state in the record of '%s':\n%s", name.c_str(),
               PrinterStateAsText(dm).c_str());
    }
    return 0;
}

int ParseCommand(Args& args, const Options& options)
{
    int rc;
    if (!Expect(args, 1, 1, &rc))
        return rc;
    const std::string& path = args.Rest()[0];
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return Fail("cannot read '" + path + "'");
    // As the refresh reads a capture: into a zeroed buffer of its size, the rest cut off.
    std::vector<char> buffer(kPJL_REPLY_BUFFER_SIZE, 0);
    file.read(buffer.data(), kPJL_REPLY_BUFFER_SIZE);
    // A folder opens, and fails at its first read.
    if (file.bad())
        return Fail("cannot read '" + path + "'");
    size_t cbRead = static_cast<size_t>(file.gcount());
    bool cut = file.peek() != std::char_traits<char>::eof();

    TVOParsePJL parser;
    PJLTokenValue tokens[kPJL_MAX_TOKENS] = {};
    DWORD count = 0;
    const char* end = nullptr;
    int status = parser.getAllPJLTokens(buffer.data(), kPJL_REPLY_BUFFER_SIZE, kPJL_MAX_TOKENS,
                                        tokens, &count, &end);
    size_t stop = end ? size_t(end - buffer.data()) : 0;

    if (options.json) {
        JsonWriter json;
        json.BeginObject();
        json.String("status", std::string(StatusName(status)));
        json.Number("statusCode", status);
        json.Number("bytes", static_cast<long long>(cbRead));
        json.Bool("cut", cut);
        json.Number("stoppedAt", static_cast<long long>(stop));
        json.BeginArray("tokens");
        for (DWORD i = 0; i < count; i++) {
            json.BeginObject();
            json.String("name", Narrow(PJLTokenName(tokens[i].token)));
            json.Number("token", tokens[i].token);
            json.Number("value", tokens[i].value);
            if (QLMTokenValueIsText(tokens[i].token))
                json.String("text", ValueLine(buffer.data(), tokens[i].value));
            std::string meaning = RollMeaning(tokens[i].token, tokens[i].value);
            if (!meaning.empty())
                json.String("meaning", meaning);
            json.EndObject();
        }
        json.EndArray();
        json.EndObject();
        printf("%s\n", json.Text().c_str());
        return 0;
    }
    printf("%s: %zu bytes%s; %s (%d), %u tokens, parse stopped at byte %zu\n", path.c_str(), cbRead,
           cut ? " (the rest beyond the refresh's buffer is not read)" : "", StatusName(status),
           status, count, stop);
    for (DWORD i = 0; i < count; i++) {
        std::string value;
        if (QLMTokenValueIsText(tokens[i].token))
            value = "text at " + std::to_string(tokens[i].value) + ": " +
                    TextQuote(ValueLine(buffer.data(), tokens[i].value));
        else
            value = std::to_string(tokens[i].value);
        std::string meaning = RollMeaning(tokens[i].token, tokens[i].value);
        if (!meaning.empty())
            value += " (" + meaning + ")";
        printf("  %2u  %-38s 0x%05X  %s\n", i, Narrow(PJLTokenName(tokens[i].token)).c_str(),
               tokens[i].token, value.c_str());
    }
    return 0;
}
