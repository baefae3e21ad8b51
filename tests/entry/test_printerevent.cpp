// DrvPrinterEvent: a new queue stores what the printer said; a queue that goes away loses its
// per-user key; everything else succeeds without work.
#include "driver/devmode/devmodeex.h"
#include "driver/entry/tvouidrv.h"
#include "driver/foundation/qlmutils.h"
#include "pjlsim/pjlsim_support.h"
#include "server.h"
#include "support/hostprinter.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using pjlsim_test::Serve;

const char kUserKey[] = "HKCU\\Software\\Tarvo\\Wide Format\\";

std::vector<uint8_t> StoredRecord(const std::u16string& name)
{
    host::PrinterRecord record;
    EXPECT_TRUE(host::GetPrinterRecord(name, &record));
    return record.devMode;
}

void CreateUserKey(const std::u16string& name)
{
    std::u16string subkey = u"Software\\Tarvo\\Wide Format\\" + name;
    HKEY hKey = nullptr;
    ASSERT_EQ(0, RegCreateKeyExW(HKEY_CURRENT_USER, reinterpret_cast<LPCWSTR>(subkey.c_str()), 0,
                                 nullptr, 0, KEY_ALL_ACCESS, nullptr, &hKey, nullptr));
    RegCloseKey(hKey);
}

class PrinterEvent : public ::testing::Test
{
protected:
    void TearDown() override { host::SetSystemVersion(10, 0, 19045); }
    BOOL Event(const std::u16string& name, INT event)
    {
        return m_driver.DrvPrinterEvent(const_cast<LPWSTR>(reinterpret_cast<LPCWSTR>(name.c_str())),
                                        event, 0, 0);
    }
    TVONTUIDriver m_driver;
};

TEST_F(PrinterEvent, InitializeStoresThePrintersStateAsTheQueuesRecord)
{
    auto server = Serve("127.0.0.61");
    auto queue = NetworkQueue(u"Plotter", "127.0.0.61");
    EXPECT_EQ(TRUE, Event(u"Plotter", PRINTER_EVENT_INITIALIZE));
    std::vector<uint8_t> stored = StoredRecord(u"Plotter");
    ASSERT_GE(stored.size(), sizeof(DEVMODEEX));
    const DEVMODEEX* dm = reinterpret_cast<const DEVMODEEX*>(stored.data());
    EXPECT_EQ(2, dm->dmxNumRolls);
    EXPECT_EQ(std::u16string(u"F1"), std::u16string(dm->dmxFinisher.Model));
    EXPECT_EQ(1, dm->dmPublic.dmColor);
    EXPECT_EQ(1u, server->Connections());
}

TEST_F(PrinterEvent, InitializeWithoutAnAnsweringPrinterStillStoresDefaults)
{
    // A port that cannot answer is not asked; one whose printer is away fails quietly.
    HostPrinter local(u"Local");
    EXPECT_EQ(TRUE, Event(u"Local", PRINTER_EVENT_INITIALIZE));
    EXPECT_FALSE(StoredRecord(u"Local").empty());

    auto away = NetworkQueue(u"Away", "127.0.0.62");
    EXPECT_EQ(TRUE, Event(u"Away", PRINTER_EVENT_INITIALIZE));
    EXPECT_FALSE(StoredRecord(u"Away").empty());

    EXPECT_EQ(TRUE, Event(u"NoSuchQueue", PRINTER_EVENT_INITIALIZE)) << "cannot open: no work";
}

TEST_F(PrinterEvent, InitializeRefusesBadNamesAndDoesNothingOnVersion6)
{
    EXPECT_EQ(FALSE, m_driver.DrvPrinterEvent(nullptr, PRINTER_EVENT_INITIALIZE, 0, 0));
    EXPECT_EQ(FALSE, Event(u"", PRINTER_EVENT_INITIALIZE));

    auto server = Serve("127.0.0.63");
    auto queue = NetworkQueue(u"Plotter", "127.0.0.63");
    host::SetSystemVersion(6, 1, 7601);
    EXPECT_TRUE(QLMIsMajorVersion6());
    EXPECT_EQ(TRUE, Event(u"Plotter", PRINTER_EVENT_INITIALIZE));
    EXPECT_TRUE(StoredRecord(u"Plotter").empty());
    EXPECT_EQ(0u, server->Connections());
    host::SetSystemVersion(10, 0, 19045);
    EXPECT_FALSE(QLMIsMajorVersion6());
}

TEST_F(PrinterEvent, DeleteRemovesOnlyThatQueuesUserKey)
{
    HostPrinter queue(u"Plotter");
    CreateUserKey(u"Plotter");
    CreateUserKey(u"Other");
    EXPECT_EQ(TRUE, Event(u"Plotter", PRINTER_EVENT_DELETE));
    EXPECT_FALSE(host::RegistryKeyExists(std::string(kUserKey) + "Plotter"));
    EXPECT_TRUE(host::RegistryKeyExists(std::string(kUserKey) + "Other"));

    // A queue that can no longer be opened loses the key of the name given.
    CreateUserKey(u"Gone");
    EXPECT_EQ(TRUE, Event(u"Gone", PRINTER_EVENT_DELETE_CONNECTION));
    EXPECT_FALSE(host::RegistryKeyExists(std::string(kUserKey) + "Gone"));
    EXPECT_EQ(TRUE, Event(u"Gone", PRINTER_EVENT_DELETE)) << "no key: still success";
}

TEST_F(PrinterEvent, OtherEventsSucceedWithoutWork)
{
    HostPrinter queue(u"Plotter");
    CreateUserKey(u"Plotter");
    for (INT event : {PRINTER_EVENT_ADD_CONNECTION, PRINTER_EVENT_CACHE_REFRESH,
                      PRINTER_EVENT_CACHE_DELETE, PRINTER_EVENT_ATTRIBUTES_CHANGED, 99}) {
        EXPECT_EQ(TRUE, Event(u"Plotter", event)) << event;
    }
    EXPECT_TRUE(host::RegistryKeyExists(std::string(kUserKey) + "Plotter"));
    EXPECT_TRUE(StoredRecord(u"Plotter").empty());
}

} // namespace
