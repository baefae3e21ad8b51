// A queue in the test's private store, with the record stored for it if one is given, opened
// for the length of a test.
#pragma once

#include "platform/host/host.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

class HostPrinter
{
public:
    explicit HostPrinter(const std::u16string& name,
                         const std::u16string& driver = u"Tarvo Plan Output System 2440",
                         const std::u16string& port = u"LPT1:",
                         const std::vector<uint8_t>& storedRecord = {})
    {
        host::PrinterRecord printer;
        printer.name = name;
        printer.driverName = driver;
        printer.portName = port;
        printer.devMode = storedRecord;
        EXPECT_TRUE(host::AddPrinter(printer)) << host::Utf16ToUtf8(name);
        m_name = name;
        EXPECT_TRUE(OpenPrinterW(const_cast<LPWSTR>(m_name.c_str()), &m_hPrinter, nullptr));
    }
    ~HostPrinter()
    {
        if (m_hPrinter)
            ClosePrinter(m_hPrinter);
    }
    HostPrinter(const HostPrinter&) = delete;
    HostPrinter& operator=(const HostPrinter&) = delete;

    HANDLE handle() const { return m_hPrinter; }
    const std::u16string& name() const { return m_name; }

private:
    std::u16string m_name;
    HANDLE m_hPrinter = nullptr;
};

// A queue of the 2440 on a port of the standard TCP/IP monitor named after address, which makes
// the port bidirectional.
inline std::unique_ptr<HostPrinter> NetworkQueue(const std::u16string& name, const char* address)
{
    std::string a(address);
    std::u16string port(a.begin(), a.end());
    EXPECT_TRUE(host::AddPort({port, u"TCPMON.DLL", u"Standard TCP/IP Port"}));
    return std::make_unique<HostPrinter>(name, u"Tarvo Plan Output System 2440", port);
}
