// The settings record: its layout as a table of fields, and the identity tests.
#include "driver/devmode/devmodeex.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>
#include <new>
#include <set>
#include <string>

namespace {

// A record with the identity of this driver's current layout.
std::unique_ptr<DEVMODEEX> OwnRecord()
{
    auto dm = std::make_unique<DEVMODEEX>();
    memset(dm.get(), 0, sizeof(DEVMODEEX));
    dm->dmPublic.dmSpecVersion = TVO_SPEC_VERSION;
    dm->dmPublic.dmDriverVersion = TVO_DRIVER_VERSION;
    dm->dmPublic.dmSize = sizeof(DEVMODEW);
    dm->dmPublic.dmDriverExtra = kDEVMODEEX_DRIVER_EXTRA;
    memcpy(&dm->dmxSignature, DRIVER_SIGNATURE_TEXT, 4);
    return dm;
}

} // namespace

TEST(DevmodeEx, RecordMadeInMemoryZeroesOnlyItsDistances)
{
    alignas(DEVMODEEX) unsigned char storage[sizeof(DEVMODEEX)];
    memset(storage, 0xAB, sizeof(storage));
    DEVMODEEX* dm = new (storage) DEVMODEEX;

    int fixedFields = 0;
    for (size_t i = 0; i < g_cDevmodeFields; i++) {
        const DEVMODEEX_FIELD& field = g_DevmodeFields[i];
        if (field.eKind != kDMF_FIXED)
            continue;
        SCOPED_TRACE(field.pszName);
        for (DWORD b = 0; b < field.cbSize; b++)
            EXPECT_EQ(storage[field.dwOffset + b], 0);
        fixedFields += field.cbSize / sizeof(TVOFixed);
    }
    EXPECT_EQ(fixedFields, 12) << "twelve TVOFixed members";
    EXPECT_EQ(dm->dmxPriority, 0xABAB) << "nothing else is initialised";
    dm->~DEVMODEEX();
}

TEST(DevmodeEx, FieldTableCoversTheRecordButItsPadding)
{
    // Padding words sit where alignment or the stored layout puts them.
    const std::set<DWORD> kPadding = {4166, 4286, 5020, 13198, 13218, 13226, 13246, 13258};
    std::set<std::string> names;
    DWORD next = 0;
    for (size_t i = 0; i < g_cDevmodeFields; i++) {
        const DEVMODEEX_FIELD& field = g_DevmodeFields[i];
        SCOPED_TRACE(field.pszName);
        EXPECT_TRUE(names.insert(field.pszName).second) << "names are unique";
        while (next < field.dwOffset && kPadding.count(next))
            next += next == 5020 ? 4 : 2;
        EXPECT_EQ(field.dwOffset, next) << "no gap and no overlap before this field";
        EXPECT_EQ(field.cbSize % field.cbElement, 0u);
        next = field.dwOffset + field.cbSize;
    }
    EXPECT_EQ(next, kDEVMODEEX_SIZE);
}

TEST(DevmodeEx, FieldSizesOfTheStoredLayout)
{
    std::map<std::string, DWORD> sizes;
    for (size_t i = 0; i < g_cDevmodeFields; i++)
        sizes[g_DevmodeFields[i].pszName] = g_DevmodeFields[i].cbSize;
    struct Row
    {
        const char* name;
        DWORD cb;
    } kRows[] = {
        {"padding_1", 32},
        {"dmxUserName", 128},
        {"dmxFinisher", 3620},
        {"dmxRollStatus", 24},
        {"dmxTableA", 256},
        {"dmxLabelText", 2098},
        {"dmxLabelFont", 132},
        {"dmxDefaultFont", 130},
        {"dmxFontList", 3502},
        {"dmxUnprintableMargin", 16},
        {"dmxRasterStampList", 2048},
        {"dmxStampName", 96},
        {"dmxJBAAcct", 64},
        {"dmxReservedTail", 32},
        {"padding_2", 32},
        {"dmFormName", 64},
        {"dmDeviceName", 64},
    };
    for (const Row& row : kRows)
        EXPECT_EQ(sizes[row.name], row.cb) << row.name;
}

TEST(DevmodeEx, SignatureReadsDtvoInMemory)
{
    auto dm = OwnRecord();
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(dm.get()) + 256;
    EXPECT_EQ(memcmp(bytes, "Dtvo", 4), 0);
    EXPECT_EQ(dm->dmxSignature, (DWORD)DRIVER_SIGNATURE);
    memcpy(&dm->dmxSignature, "ovtD", 4);
    EXPECT_NE(dm->dmxSignature, (DWORD)DRIVER_SIGNATURE) << "the other byte order is not ours";
}

TEST(DevmodeEx, IdentityTests)
{
    struct Row
    {
        const char* what;
        void (*change)(DEVMODEEX*);
        eDevmodeKind expected;
    } kRows[] = {
        {"own current record", [](DEVMODEEX*) {}, kDM_OWN_CURRENT},
        {"older own record", [](DEVMODEEX* d) { d->dmPublic.dmDriverExtra = 3032; }, kDM_OWN_OLDER},
        {"own private part behind a short public part",
         [](DEVMODEEX* d) { d->dmPublic.dmSize = 156; }, kDM_OWN_FOREIGN_PUBLIC},
        {"own private part behind a long public part",
         [](DEVMODEEX* d) { d->dmPublic.dmSize = 240; }, kDM_OWN_FOREIGN_PUBLIC},
        {"older private part behind another public part",
         [](DEVMODEEX* d) {
             d->dmPublic.dmSize = 212;
             d->dmPublic.dmDriverExtra = 3032;
         },
         kDM_OLDER_FOREIGN_PUBLIC},
        {"other public layout version", [](DEVMODEEX* d) { d->dmPublic.dmSpecVersion = 0x0400; },
         kDM_FOREIGN},
        {"other driver version", [](DEVMODEEX* d) { d->dmPublic.dmDriverVersion = 0x0C06; },
         kDM_FOREIGN},
        {"other signature", [](DEVMODEEX* d) { d->dmxSignature = 0; }, kDM_FOREIGN},
        {"other private size", [](DEVMODEEX* d) { d->dmPublic.dmDriverExtra = 13000; },
         kDM_FOREIGN},
        {"no private part", [](DEVMODEEX* d) { d->dmPublic.dmDriverExtra = 0; }, kDM_FOREIGN},
        {"layout version is not part of the test",
         [](DEVMODEEX* d) { d->dmxDevmodeVersion = 0x1234; }, kDM_OWN_CURRENT},
        {"damaged guards are not part of the test", [](DEVMODEEX* d) { d->padding_2[3] = 0; },
         kDM_OWN_CURRENT},
    };
    for (const Row& row : kRows) {
        auto dm = OwnRecord();
        row.change(dm.get());
        EXPECT_EQ(GetDevmodeKind(&dm->dmPublic), row.expected) << row.what;
        EXPECT_EQ(IsOwnCurrentDevmode(&dm->dmPublic), row.expected == kDM_OWN_CURRENT) << row.what;
        EXPECT_EQ(IsOwnOlderDevmode(&dm->dmPublic), row.expected == kDM_OWN_OLDER) << row.what;
    }
    EXPECT_EQ(GetDevmodeKind(nullptr), kDM_FOREIGN);
}

TEST(DevmodeEx, ShortForeignRecordIsNotReadBeyondItsDeclaredSize)
{
    // A record that declares 220 bytes and nothing behind them, alone in its allocation: the
    // sanitizer build catches a read of the signature's place behind it.
    auto bytes = std::make_unique<unsigned char[]>(sizeof(DEVMODEW));
    memset(bytes.get(), 0, sizeof(DEVMODEW));
    DEVMODEW* dm = reinterpret_cast<DEVMODEW*>(bytes.get());
    dm->dmSpecVersion = TVO_SPEC_VERSION;
    dm->dmDriverVersion = TVO_DRIVER_VERSION;
    dm->dmSize = sizeof(DEVMODEW);
    dm->dmDriverExtra = 0;
    EXPECT_EQ(GetDevmodeKind(dm), kDM_FOREIGN);
}
