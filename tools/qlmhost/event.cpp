// qlmhost event: the spooler's notice of a queue's life, through the driver's DrvPrinterEvent.
#include "commands.h"
#include "driverlib.h"

#include <cstdio>
#include <strings.h>

namespace {

const struct
{
    const char* name;
    INT event;
} kEvents[] = {
    {"add-connection", PRINTER_EVENT_ADD_CONNECTION},
    {"delete-connection", PRINTER_EVENT_DELETE_CONNECTION},
    {"initialize", PRINTER_EVENT_INITIALIZE},
    {"delete", PRINTER_EVENT_DELETE},
    {"cache-refresh", PRINTER_EVENT_CACHE_REFRESH},
    {"cache-delete", PRINTER_EVENT_CACHE_DELETE},
    {"attributes-changed", PRINTER_EVENT_ATTRIBUTES_CHANGED},
};

bool ParseEvent(const std::string& text, INT* event)
{
    for (const auto& row : kEvents) {
        if (strcasecmp(text.c_str(), row.name) == 0) {
            *event = row.event;
            return true;
        }
    }
    long long number = 0;
    if (!ParseNumber(text, 0, 0x7FFFFFFF, &number))
        return false;
    *event = static_cast<INT>(number);
    return true;
}

} // namespace

int EventCommand(Args& args, const Options& options)
{
    bool noUi = args.Flag("--no-ui");
    int rc;
    if (!Expect(args, 2, 2, &rc))
        return rc;
    INT event = 0;
    if (!ParseEvent(args.Rest()[1], &event))
        return UsageError(args.Called(), "unknown event '" + args.Rest()[1] + "'");
    DriverLibrary driver;
    std::string error;
    if (!driver.Load(options.driverLibrary, &error))
        return Fail(error);
    auto* printerEvent = driver.Entry<BOOL WINAPI(LPWSTR, INT, DWORD, LPARAM)>("DrvPrinterEvent");
    if (!printerEvent)
        return Fail("the driver library has no DrvPrinterEvent");
    // The spooler tells of queues that exist (a queue being deleted still does); the driver
    // opens it itself, by the name.
    if (!OpenedPrinter(args.Rest()[0]).get())
        return Fail("no printer named '" + args.Rest()[0] + "'");
    std::u16string name = W(args.Rest()[0]);
    BOOL result = printerEvent(reinterpret_cast<LPWSTR>(name.data()), event,
                               noUi ? PRINTER_EVENT_FLAG_NO_UI : 0, 0);
    if (options.json)
        printf("{\"event\": %d, \"result\": %d}\n", event, result);
    else
        printf("DrvPrinterEvent(%s, %d) = %d (%s)\n", args.Rest()[0].c_str(), event, result,
               result ? "TRUE" : "FALSE");
    return result ? 0 : 1;
}
