// Port names, the address derived from them, the address map in the printer data and the
// first-time test of a queue.
#include "driver/dialogue/qlmport.h"
#include "driver/foundation/qlmutils.h"
#include "support/hostprinter.h"
#include "support/tracecapture.h"

#include <cstring>
#include <string>

namespace {

// Stores the map value of port as the printer data holds it: wide text, as given.
void StoreMap(const HostPrinter& printer, const std::u16string& port, const std::u16string& text,
              DWORD type = REG_SZ)
{
    host::DataValue value;
    value.key = u"PrinterDriverData";
    value.name = u"QLMMapPort:" + port;
    value.type = type;
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    value.data.assign(bytes, bytes + text.size() * sizeof(char16_t));
    ASSERT_TRUE(host::SetPrinterData(printer.name(), value));
}

std::string Derived(const HostPrinter& printer, const std::u16string& port)
{
    const char* address = QLMGetIPAddressFromPort(printer.handle(), port.c_str());
    return address ? address : "(null)";
}

TEST(QLMPort, AddressDerivedFromThePortName)
{
    const std::u16string longName(300, u'p');
    struct Row
    {
        std::u16string port;
        std::string address;
    } rows[] = {
        {u"IP_10.1.2.3", "10.1.2.3"},
        {u"ip_10.1.2.3", "10.1.2.3"},
        {u"iP_plotter", "plotter"},
        {u"IP_", ""},
        {u"IP_a:2000", "a:2000"}, // the prefix is tested first
        {u"10.1.2.3:2000", "10.1.2.3"},
        {u"host:2000:2000", "host"},
        {u"x:2000_1", "x"},
        {u"10.1.2.3:9100", "10.1.2.3:9100"}, // only :2000 is cut
        {u"plotter_2", "plotter"},
        {u"plotter_9", "plotter"},
        {u"_1", ""},
        {u"plotter_0", "plotter_0"},
        {u"printer_10", "printer_10"}, // one digit only
        {u"_10", "_10"},
        {u"a_1b_1", "a_1b_1"}, // the first occurrence of _1 is not at the end
        {u"a_2b_1", "a_2b"},
        {u"plotter.example.com", "plotter.example.com"},
        {u"LPT1:", "LPT1:"},
        {u"", ""},
        {u"Plotter\u4e2d", "Plotter?"}, // no 8-bit form: a question mark, as code pages do
        {longName, std::string(kQLM_ADDRESS_CB - 1, 'p')},
        {u"IP_" + longName, std::string(kQLM_ADDRESS_CB - 1, 'p')},
    };
    HostPrinter printer(u"Plotter");
    for (const Row& row : rows) {
        SCOPED_TRACE(host::Utf16ToUtf8(row.port));
        EXPECT_EQ(row.address, Derived(printer, row.port));
    }
    EXPECT_EQ(nullptr, QLMGetIPAddressFromPort(printer.handle(), nullptr));
}

TEST(QLMPort, AMappedAddressHidesTheName)
{
    HostPrinter printer(u"Plotter");
    StoreMap(printer, u"IP_10.1.2.3", u"10.9.9.9");
    EXPECT_EQ("10.9.9.9", Derived(printer, u"IP_10.1.2.3"));
    EXPECT_EQ("10.1.2.4", Derived(printer, u"IP_10.1.2.4")) << "another port has no entry";
    EXPECT_EQ("10.9.9.9", Derived(printer, u"ip_10.1.2.3")) << "value names ignore case";
}

// A damaged value never overruns a buffer: it is cut, or not taken at all.
TEST(QLMPort, DamagedMapValues)
{
    HostPrinter printer(u"Plotter");
    struct Row
    {
        const char* name;
        std::u16string value;
        DWORD type;
        std::string address;
    } rows[] = {
        // 254 bytes without a terminator: all 127 characters are read, the address is cut.
        {"full, unterminated", std::u16string(127, u'9'), REG_SZ,
         std::string(kQLM_ADDRESS_CB - 1, '9')},
        {"longer than is read", std::u16string(200, u'9'), REG_SZ, "port"},
        {"empty", u"", REG_SZ, "port"},
        {"binary with a zero inside", std::u16string(u"10.0.0.7\0junk", 13), REG_BINARY,
         "10.0.0.7"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        StoreMap(printer, u"port", row.value, row.type);
        EXPECT_EQ(row.address, Derived(printer, u"port"));
    }
}

TEST(QLMPort, TheMapReadLeavesTheBufferAloneWithoutAnEntry)
{
    HostPrinter printer(u"Plotter");
    char address[kQLM_ADDRESS_CB] = "untouched";
    QLMGetIPAddressMap(printer.handle(), u"IP_1.2.3.4", address);
    EXPECT_STREQ("untouched", address);
    StoreMap(printer, u"IP_1.2.3.4", u"5.6.7.8");
    QLMGetIPAddressMap(printer.handle(), u"IP_1.2.3.4", address);
    EXPECT_STREQ("5.6.7.8", address);

    SwitchGuard switches;
    g_bTraceQLMUtils = TRUE;
    TraceCapture trace;
    QLMGetIPAddressMap(printer.handle(), u"IP_1.2.3.4", nullptr);
    EXPECT_TRUE(trace.contains("failing call because IPAddress == NULL"));
}

// Its argument tests stand the wrong way round: real arguments never reach the store.
TEST(QLMPort, SetIPAddressMapWritesOnlyWhenGivenNothing)
{
    HostPrinter printer(u"Plotter");
    SwitchGuard switches;
    g_bTraceQLMUtils = TRUE;
    struct Row
    {
        const WCHAR* port;
        const WCHAR* address;
        DWORD result;
        const char* trace;
    } rows[] = {
        {TEXT("IP_1.2.3.4"), TEXT("5.6.7.8"), ERROR_INVALID_PARAMETER,
         "failed because pPortName is NULL"},
        {TEXT("IP_1.2.3.4"), nullptr, ERROR_INVALID_PARAMETER, "failed because pPortName is NULL"},
        {nullptr, TEXT("5.6.7.8"), ERROR_INVALID_PARAMETER, "failed because pAddress is NULL"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.trace);
        TraceCapture trace;
        EXPECT_EQ(row.result, QLMSetIPAddressMap(printer.handle(), row.port, row.address));
        EXPECT_TRUE(trace.contains(row.trace));
        EXPECT_TRUE(host::ListPrinterData(printer.name()).empty());
    }
    EXPECT_EQ("1.2.3.4", Derived(printer, u"IP_1.2.3.4"));

    EXPECT_EQ(DWORD(ERROR_SUCCESS), QLMSetIPAddressMap(printer.handle(), nullptr, nullptr));
    host::DataValue value;
    ASSERT_TRUE(host::GetPrinterData(printer.name(), u"PrinterDriverData", u"QLMMapPort:", &value));
    EXPECT_EQ(DWORD(REG_SZ), value.type);
    EXPECT_TRUE(value.data.empty());
}

TEST(QLMPort, PortNamesInBothForms)
{
    const std::u16string longName(300, u'q');
    HostPrinter plain(u"Plotter", u"Tarvo Plan Output System 2440", u"IP_10.1.2.3");
    EXPECT_STREQ("IP_10.1.2.3", QLMGetPortName(plain.handle()));
    EXPECT_EQ(u"IP_10.1.2.3", std::u16string(QLMGetPortNameU(plain.handle())));

    HostPrinter cut(u"Long", u"Tarvo Plan Output System 2440", longName);
    EXPECT_EQ(std::string(kQLM_PORT_CB - 1, 'q'), QLMGetPortName(cut.handle()));
    EXPECT_EQ(std::u16string(kQLM_PORT_CB - 1, u'q'),
              std::u16string(QLMGetPortNameU(cut.handle())));

    SwitchGuard switches;
    g_bTraceQLMUtils = TRUE;
    TraceCapture trace;
    EXPECT_EQ(nullptr, QLMGetPortName(nullptr));
    EXPECT_EQ(nullptr, QLMGetPortNameU(nullptr));
    EXPECT_TRUE(trace.contains("Can't get port name because m_pConfig->m_hPrinter==NULL"));
}

// The presence of the value counts, not its number; anything unreadable is a first time.
TEST(QLMPort, FirstTimeEverUntilTheValueCanBeRead)
{
    HostPrinter printer(u"Plotter");
    EXPECT_EQ(1, QLMIsFirstTimeEver(printer.handle()));
    const DWORD zero = 0, one = 1;
    ASSERT_EQ(ERROR_SUCCESS, QLMSetUserDWORD(printer.handle(), TEXT("QLMIsFirstTime"), &one));
    EXPECT_EQ(0, QLMIsFirstTimeEver(printer.handle()));
    ASSERT_EQ(ERROR_SUCCESS, QLMSetUserDWORD(printer.handle(), TEXT("QLMIsFirstTime"), &zero));
    EXPECT_EQ(0, QLMIsFirstTimeEver(printer.handle()));
    const BYTE eight[8] = {};
    ASSERT_EQ(ERROR_SUCCESS,
              QLMSetUserBINARY(printer.handle(), TEXT("QLMIsFirstTime"), eight, sizeof eight));
    EXPECT_EQ(1, QLMIsFirstTimeEver(printer.handle())) << "a value too large cannot be read";

    HostPrinter other(u"Other");
    EXPECT_EQ(1, QLMIsFirstTimeEver(other.handle())) << "each printer has its own";

    SwitchGuard switches;
    g_bTraceASSERT = TRUE;
    TraceCapture trace;
    EXPECT_EQ(0, QLMIsFirstTimeEver(nullptr));
    EXPECT_TRUE(trace.contains("***ASSERT***(hPrinter) failed"));
}

} // namespace
