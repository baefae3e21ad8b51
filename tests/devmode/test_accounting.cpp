// The accounting identifiers: the pair the driver calls leaves the store alone; the store pair
// reads and writes the per-user value "Accounting".
#include "support/hostprinter.h"

#include "driver/devmode/tvodm.h"
#include "driver/devmode/tvodm_accounting.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

const char kKey[] = "HKCU\\Software\\Tarvo\\Wide Format\\Plan";

LSTATUS ReadValue(std::vector<uint8_t>* data, DWORD* type)
{
    HKEY hKey = nullptr;
    LSTATUS rc = RegOpenKeyExW(HKEY_CURRENT_USER, TEXT("Software\\Tarvo\\Wide Format\\Plan"), 0,
                               KEY_QUERY_VALUE, &hKey);
    if (rc != ERROR_SUCCESS)
        return rc;
    DWORD cb = 0;
    RegQueryValueExW(hKey, TEXT("Accounting"), nullptr, type, nullptr, &cb);
    data->assign(cb, 0);
    rc = RegQueryValueExW(hKey, TEXT("Accounting"), nullptr, type, data->data(), &cb);
    RegCloseKey(hKey);
    return rc;
}

void WriteValue(const void* data, DWORD cb, DWORD type = REG_BINARY)
{
    HKEY hKey = nullptr;
    ASSERT_EQ(ERROR_SUCCESS,
              RegCreateKeyExW(HKEY_CURRENT_USER, TEXT("Software\\Tarvo\\Wide Format\\Plan"), 0,
                              nullptr, 0, KEY_ALL_ACCESS, nullptr, &hKey, nullptr));
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExW(hKey, TEXT("Accounting"), 0, type,
                                            static_cast<const BYTE*>(data), cb));
    RegCloseKey(hKey);
}

void FillIdentifiers(DEVMODEEX* p)
{
    p->dmxRememberAccount = 1;
    p->dmxAccount = 4711;
    p->dmxSubAccount = 42;
    memcpy(p->dmxJBAUser, TEXT("anna"), 5 * sizeof(WCHAR));
    memcpy(p->dmxJBAAcct, TEXT("proj-7"), 7 * sizeof(WCHAR));
}

TEST(Accounting, CalledPairLeavesTheStoreAlone)
{
    HostPrinter printer(u"Plan");
    TVODevMode dm(printer.handle());
    FillIdentifiers(dm.m_lpDM);
    dm.setAccountingInfo(printer.handle(), 1);
    dm.setAccountingInfo(printer.handle(), 0);
    dm.getAccountingInfo(printer.handle());
    EXPECT_FALSE(host::RegistryKeyExists(kKey));
    EXPECT_EQ(4711u, dm.m_lpDM->dmxAccount);
}

TEST(Accounting, StoreRoundTripKeepsAllFiveFields)
{
    HostPrinter printer(u"Plan");
    TVODevMode writer(printer.handle());
    FillIdentifiers(writer.m_lpDM);
    writer.SetAccountingInfo(printer.handle(), 0);

    std::vector<uint8_t> data;
    DWORD type = 0;
    ASSERT_EQ(ERROR_SUCCESS, ReadValue(&data, &type));
    EXPECT_EQ(static_cast<DWORD>(REG_BINARY), type);
    ASSERT_EQ(140u, data.size());
    TVOAccountingBlock block;
    memcpy(&block, data.data(), sizeof(block));
    EXPECT_EQ(4711u, block.dmxAccount);
    EXPECT_EQ(42u, block.dmxSubAccount);

    TVODevMode reader(printer.handle());
    reader.GetAccountingInfo(printer.handle());
    EXPECT_EQ(1u, reader.m_lpDM->dmxRememberAccount);
    EXPECT_EQ(4711u, reader.m_lpDM->dmxAccount);
    EXPECT_EQ(42u, reader.m_lpDM->dmxSubAccount);
    EXPECT_EQ(0, memcmp(reader.m_lpDM->dmxJBAAcct, TEXT("proj-7"), 7 * sizeof(WCHAR)));
}

TEST(Accounting, CleanCloseForgetsWhatIsNotRemembered)
{
    HostPrinter printer(u"Plan");
    TVODevMode dm(printer.handle());
    FillIdentifiers(dm.m_lpDM);
    dm.m_lpDM->dmxRememberAccount = 0;
    dm.SetAccountingInfo(printer.handle(), 1);
    std::vector<uint8_t> data;
    DWORD type = 0;
    ASSERT_EQ(ERROR_SUCCESS, ReadValue(&data, &type));
    EXPECT_EQ(std::vector<uint8_t>(140, 0), data);

    // Without bClean the block is written whatever dmxRememberAccount says.
    dm.SetAccountingInfo(printer.handle(), 0);
    ASSERT_EQ(ERROR_SUCCESS, ReadValue(&data, &type));
    EXPECT_NE(std::vector<uint8_t>(140, 0), data);
}

TEST(Accounting, FullLengthTextIsStoredWithoutTerminator)
{
    HostPrinter printer(u"Plan");
    TVODevMode dm(printer.handle());
    for (int i = 0; i < 32; i++)
        dm.m_lpDM->dmxJBAUser[i] = static_cast<WCHAR>('a' + i % 26);
    dm.m_lpDM->dmxJBAAcct[0] = 0x7777; // the field after it in the block
    dm.SetAccountingInfo(printer.handle(), 0);
    std::vector<uint8_t> data;
    DWORD type = 0;
    ASSERT_EQ(ERROR_SUCCESS, ReadValue(&data, &type));
    WCHAR last, next;
    memcpy(&last, data.data() + 12 + 31 * 2, 2);
    memcpy(&next, data.data() + 76, 2);
    EXPECT_EQ(static_cast<WCHAR>('a' + 31 % 26), last);
    EXPECT_EQ(0x7777, next);
}

TEST(Accounting, ReadingTheStoredValueByItsShape)
{
    struct Row
    {
        const char* name;
        std::vector<uint8_t> value; // empty: no value
        DWORD account;
        WCHAR firstUserChar;
    };
    TVOAccountingBlock full{};
    full.dmxAccount = 99;
    full.dmxJBAUser[0] = 'x';
    std::vector<uint8_t> fullBytes(reinterpret_cast<uint8_t*>(&full),
                                   reinterpret_cast<uint8_t*>(&full) + sizeof(full));
    std::vector<uint8_t> oldStyle(fullBytes.begin(), fullBytes.begin() + 12);
    std::vector<uint8_t> oversize(fullBytes);
    oversize.resize(200, 0xEE);
    const Row rows[] = {
        {"a new user creates the key and clears the fields", {}, 0, 0},
        {"the full value", fullBytes, 99, 'x'},
        {"the old style brings the numbers alone", oldStyle, 99, 0},
        {"a value too large for both reads is cleared", oversize, 0, 0},
    };
    for (const Row& row : rows) {
        host::OpenStore(":memory:");
        HostPrinter printer(u"Plan");
        if (!row.value.empty())
            WriteValue(row.value.data(), static_cast<DWORD>(row.value.size()));
        TVODevMode dm(printer.handle());
        FillIdentifiers(dm.m_lpDM);
        dm.GetAccountingInfo(printer.handle());
        EXPECT_TRUE(host::RegistryKeyExists(kKey)) << row.name;
        EXPECT_EQ(row.account, dm.m_lpDM->dmxAccount) << row.name;
        EXPECT_EQ(row.firstUserChar, dm.m_lpDM->dmxJBAUser[0]) << row.name;
        EXPECT_EQ(0, dm.m_lpDM->dmxJBAAcct[0]) << row.name;
    }
}

TEST(Accounting, NoPrinterNameStopsBeforeTheRecord)
{
    TVODevMode dm;
    FillIdentifiers(dm.m_lpDM);
    dm.GetAccountingInfo(nullptr);
    dm.SetAccountingInfo(nullptr, 0);
    EXPECT_EQ(4711u, dm.m_lpDM->dmxAccount);
}

} // namespace
