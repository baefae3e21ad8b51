// TVODevMode: fetching a queue's stored record, merging callers' records, and the tables that
// turn a printer's words and other drivers' codes into record values.
#include "support/devmodefields.h"
#include "support/hostprinter.h"

#include "driver/devmode/tvodm.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

// A default record of no printer, as raw bytes.
std::vector<uint8_t> DefaultRecord()
{
    TVODevMode dm;
    const uint8_t* p = reinterpret_cast<const uint8_t*>(dm.m_lpDM);
    return std::vector<uint8_t>(p, p + sizeof(DEVMODEEX));
}

DEVMODEEX* AsRecord(std::vector<uint8_t>& bytes)
{
    return reinterpret_cast<DEVMODEEX*>(bytes.data());
}

std::vector<uint8_t> StoredRecord(const std::u16string& printer)
{
    host::PrinterRecord record;
    EXPECT_TRUE(host::GetPrinterRecord(printer, &record));
    return record.devMode;
}

// A queue of the 2440 on a parallel port with the record stored.
struct StoredQueue : HostPrinter
{
    StoredQueue(const std::u16string& name, const std::vector<uint8_t>& bytes)
        : HostPrinter(name, u"Tarvo Plan Output System 2440", u"LPT1:", bytes)
    {
    }
};

// A record of another driver: a plain public part.
std::vector<uint8_t> ForeignRecord(WORD dmSize)
{
    std::vector<uint8_t> bytes(dmSize < 220 ? 220 : dmSize, 0);
    DEVMODEW* pdm = reinterpret_cast<DEVMODEW*>(bytes.data());
    pdm->dmSpecVersion = 0x0401;
    pdm->dmDriverVersion = 0x0600;
    pdm->dmSize = dmSize;
    pdm->dmOrientation = DMORIENT_LANDSCAPE;
    pdm->dmPaperSize = DMPAPER_A3;
    pdm->dmCopies = 3;
    pdm->dmPrintQuality = 300;
    pdm->dmDefaultSource = DMBIN_MANUAL;
    return bytes;
}

TEST(GetDeviceMode, QueueWithoutRecordGetsDefaultsAndKeepsThem)
{
    HostPrinter printer(u"Plan");
    TVODevMode dm(printer.handle());
    EXPECT_EQ(1, dm.getDeviceMode(printer.handle(), TEXT("LPT1:"), TEXT("Plan"), TEXT("")));
    EXPECT_EQ("Plan", FieldText(dm.m_lpDM, "dmDeviceName"));
    std::vector<uint8_t> stored = StoredRecord(u"Plan");
    ASSERT_EQ(sizeof(DEVMODEEX), stored.size()) << "the repaired record is saved";
    EXPECT_TRUE(IsOwnCurrentDevmode(reinterpret_cast<DEVMODEW*>(stored.data())));
    EXPECT_EQ(400, AsRecord(stored)->dmPublic.dmPrintQuality);
}

TEST(GetDeviceMode, OwnRecordIsTakenWholeAndNotSavedAgain)
{
    std::vector<uint8_t> bytes = DefaultRecord();
    AsRecord(bytes)->dmPublic.dmCopies = 17;
    AsRecord(bytes)->dmxPriority = 9;
    AsRecord(bytes)->dmPublic.dmFields = 0; // repaired in the copy, not in the store
    AsRecord(bytes)->dmxAccountingMode = 0;
    StoredQueue queue(u"Plan", bytes);
    TVODevMode dm(queue.handle());
    dm.getDeviceMode(queue.handle(), TEXT(""), nullptr, TEXT(""));
    EXPECT_EQ(17, dm.m_lpDM->dmPublic.dmCopies);
    EXPECT_EQ(9, dm.m_lpDM->dmxPriority);
    EXPECT_EQ(kTVO_DM_FIELDS, dm.m_lpDM->dmPublic.dmFields);
    EXPECT_EQ(1u, dm.m_lpDM->dmxAccountingMode) << "a parallel port cannot be asked";
    std::vector<uint8_t> stored = StoredRecord(u"Plan");
    EXPECT_EQ(0u, AsRecord(stored)->dmPublic.dmFields) << "not saved again";
}

TEST(GetDeviceMode, OlderOwnRecordKeepsOnlyItsPublicPart)
{
    std::vector<uint8_t> bytes = DefaultRecord();
    bytes.resize(kDEVMODEEX1_SIZE);
    DEVMODEEX* pOld = AsRecord(bytes);
    pOld->dmPublic.dmDriverExtra = kDEVMODEEX1_DRIVER_EXTRA;
    pOld->dmPublic.dmCopies = 4;
    pOld->dmPublic.dmOrientation = DMORIENT_LANDSCAPE;
    pOld->dmxBannerPage = 3; // private: the defaults win
    StoredQueue queue(u"Old", bytes);
    TVODevMode dm(queue.handle());
    dm.getDeviceMode(queue.handle(), TEXT(""), TEXT(""), TEXT(""));
    EXPECT_EQ(4, dm.m_lpDM->dmPublic.dmCopies);
    EXPECT_EQ(DMORIENT_LANDSCAPE, dm.m_lpDM->dmPublic.dmOrientation);
    EXPECT_EQ(1u, dm.m_lpDM->dmxBannerPage);
    EXPECT_TRUE(IsOwnCurrentDevmode(&dm.m_lpDM->dmPublic));
    EXPECT_EQ(kDEVMODEEX1_SIZE, StoredRecord(u"Old").size()) << "not written back";
}

TEST(GetDeviceMode, ForeignRecordIsRepairedThroughTheMerge)
{
    StoredQueue queue(u"Foreign", ForeignRecord(220));
    TVODevMode dm(queue.handle());
    dm.getDeviceMode(queue.handle(), TEXT(""), TEXT("Foreign"), TEXT(""));
    const DEVMODEEX* p = dm.m_lpDM;
    EXPECT_TRUE(IsOwnCurrentDevmode(&p->dmPublic));
    EXPECT_EQ(273, p->dmPublic.dmPaperSize);
    EXPECT_EQ(273u, p->dmxSheetSizeSetting);
    EXPECT_EQ(3, p->dmPublic.dmCopies);
    EXPECT_EQ(300, p->dmPublic.dmPrintQuality);
    EXPECT_EQ(300, p->dmPublic.dmYResolution);
    EXPECT_EQ(DMBIN_MANUAL, p->dmPublic.dmDefaultSource);
    EXPECT_EQ(1, p->dmPublic.dmColor);
    EXPECT_EQ("Foreign", FieldText(p, "dmDeviceName"));
}

// A stored record whose sizes claim more than the store holds is no record to the spooler:
// the queue gets the defaults, and they are saved over the damage.
TEST(GetDeviceMode, DamagedStoredRecordIsReplacedByTheDefaults)
{
    std::vector<uint8_t> bytes = DefaultRecord();
    bytes.resize(300);
    AsRecord(bytes)->dmPublic.dmCopies = 12;
    StoredQueue queue(u"Liar", bytes);
    TVODevMode dm(queue.handle());
    EXPECT_EQ(1, dm.getDeviceMode(queue.handle(), TEXT(""), TEXT(""), TEXT("")));
    EXPECT_EQ(1, dm.m_lpDM->dmPublic.dmCopies);
    std::vector<uint8_t> stored = StoredRecord(u"Liar");
    ASSERT_EQ(sizeof(DEVMODEEX), stored.size());
    EXPECT_TRUE(IsOwnCurrentDevmode(reinterpret_cast<DEVMODEW*>(stored.data())));
}

TEST(GetDeviceMode, UnknownPrinterGivesTheDefaultsAndSucceeds)
{
    TVODevMode dm;
    EXPECT_EQ(1, dm.getDeviceMode(nullptr, nullptr, nullptr, nullptr));
    EXPECT_TRUE(IsOwnCurrentDevmode(&dm.m_lpDM->dmPublic));
}

TEST(GetDeviceMode, DeviceNameIsCutAtThirtyTwoCharacters)
{
    HostPrinter printer(u"Plan");
    TVODevMode dm(printer.handle());
    dm.getDeviceMode(printer.handle(), TEXT(""), TEXT("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"),
                     TEXT(""));
    EXPECT_EQ(0, memcmp(dm.m_lpDM->dmPublic.dmDeviceName, TEXT("ABCDEFGHIJKLMNOPQRSTUVWXYZ012345"),
                        32 * sizeof(WCHAR)));
}

// One merge of a caller's record into a default record.
struct MergeCase
{
    const char* name;
    void (*prepare)(DEVMODEEX* pdm);
    DWORD model;
    const char* field;
    long long expected;
};

const MergeCase kMergeCases[] = {
    {"ISO A4 is the driver's A4", [](DEVMODEEX* p) { p->dmPublic.dmPaperSize = 9; }, 3,
     "dmPaperSize", 274},
    {"ISO A4 also sets the sheet size", [](DEVMODEEX* p) { p->dmPublic.dmPaperSize = 9; }, 3,
     "dmxSheetSizeSetting", 274},
    {"letter small is ANSI A", [](DEVMODEEX* p) { p->dmPublic.dmPaperSize = 2; }, 3, "dmPaperSize",
     259},
    {"a paper without counterpart keeps the previous one",
     [](DEVMODEEX* p) { p->dmPublic.dmPaperSize = 5; }, 3, "dmPaperSize", 257},
    {"... and the previous sheet size", [](DEVMODEEX* p) { p->dmPublic.dmPaperSize = 5; }, 3,
     "dmxSheetSizeSetting", 1},
    {"a user form stays", [](DEVMODEEX* p) { p->dmPublic.dmPaperSize = 300; }, 3, "dmPaperSize",
     300},
    {"a negative paper code is no paper", [](DEVMODEEX* p) { p->dmPublic.dmPaperSize = -3; }, 3,
     "dmPaperSize", 257},
    {"orientation 3 keeps the previous", [](DEVMODEEX* p) { p->dmPublic.dmOrientation = 3; }, 3,
     "dmOrientation", 1},
    {"landscape stays", [](DEVMODEEX* p) { p->dmPublic.dmOrientation = 2; }, 3, "dmOrientation", 2},
    {"scale 0 is 100", [](DEVMODEEX* p) { p->dmPublic.dmScale = 0; }, 3, "dmScale", 100},
    {"copies 0 is 1", [](DEVMODEEX* p) { p->dmPublic.dmCopies = 0; }, 3, "dmCopies", 1},
    {"draft quality is 400 on a 400 model", [](DEVMODEEX* p) { p->dmPublic.dmPrintQuality = -3; },
     3, "dmPrintQuality", 400},
    {"draft quality is 600 on a 600 model", [](DEVMODEEX* p) { p->dmPublic.dmPrintQuality = -3; },
     9, "dmPrintQuality", 600},
    {"... and y follows", [](DEVMODEEX* p) { p->dmPublic.dmPrintQuality = -3; }, 9, "dmYResolution",
     600},
    {"600 stays even where the model lacks it",
     [](DEVMODEEX* p) { p->dmPublic.dmPrintQuality = 600; }, 0, "dmPrintQuality", 600},
    {"an odd resolution is the model's", [](DEVMODEEX* p) { p->dmPublic.dmPrintQuality = 250; }, 11,
     "dmPrintQuality", 600},
    {"a form source is automatic", [](DEVMODEEX* p) { p->dmPublic.dmDefaultSource = 15; }, 3,
     "dmDefaultSource", 7},
    {"manual feed stands", [](DEVMODEEX* p) { p->dmPublic.dmDefaultSource = 4; }, 3,
     "dmDefaultSource", 4},
    {"roll 6 stands", [](DEVMODEEX* p) { p->dmPublic.dmDefaultSource = 262; }, 3, "dmDefaultSource",
     262},
    {"roll 7 is no roll", [](DEVMODEEX* p) { p->dmPublic.dmDefaultSource = 263; }, 3,
     "dmDefaultSource", 7},
    {"a custom paper without width gets letter's",
     [](DEVMODEEX* p) {
         p->dmxSheetSizeSetting = 256;
         p->dmPublic.dmPaperSize = 256;
         p->dmPublic.dmPaperWidth = 0;
     },
     3, "dmxPaperWidth", 2159000},
    {"a custom paper with a size keeps it",
     [](DEVMODEEX* p) {
         p->dmPublic.dmPaperSize = 256;
         p->dmPublic.dmPaperWidth = 5000;
         p->dmPublic.dmPaperLength = 9000;
     },
     3, "dmPaperLength", 9000},
    {"no refresh on a port that cannot answer",
     [](DEVMODEEX* p) {
         p->dmxBiDi = 0;
         p->dmxRefreshOnOpen = 1;
     },
     3, "dmxRefreshOnOpen", 0},
    {"refresh stays on a bidirectional port",
     [](DEVMODEEX* p) {
         p->dmxBiDi = 1;
         p->dmxRefreshOnOpen = 1;
     },
     3, "dmxRefreshOnOpen", 1},
    {"the identity is repaired", [](DEVMODEEX* p) { p->dmxReservedRevision = 3; }, 3,
     "dmxReservedRevision", 28},
    {"colour is always on", [](DEVMODEEX* p) { p->dmPublic.dmColor = 2; }, 3, "dmColor", 1},
};

TEST(ModifyDeviceMode, RepairsWhatTheMergeLeavesInvalid)
{
    for (const MergeCase& row : kMergeCases) {
        std::vector<uint8_t> input = DefaultRecord();
        row.prepare(AsRecord(input));
        TVODevMode dm;
        dm.modifyDeviceMode(nullptr, &AsRecord(input)->dmPublic, row.model);
        EXPECT_EQ(row.expected, FieldNumber(dm.m_lpDM, row.field)) << row.name;
        EXPECT_TRUE(IsOwnCurrentDevmode(&dm.m_lpDM->dmPublic)) << row.name;
    }
}

TEST(ModifyDeviceMode, ForeignShortRecordGivesOnlyItsBytes)
{
    std::vector<uint8_t> input = ForeignRecord(156);
    TVODevMode dm;
    dm.m_lpDM->dmPublic.dmICMMethod = 77; // behind byte 156: keeps its value
    dm.modifyDeviceMode(nullptr, reinterpret_cast<DEVMODEW*>(input.data()), 3);
    EXPECT_EQ(77u, dm.m_lpDM->dmPublic.dmICMMethod);
    EXPECT_EQ(3, dm.m_lpDM->dmPublic.dmCopies);
    EXPECT_EQ(273, dm.m_lpDM->dmPublic.dmPaperSize);
    EXPECT_EQ(220, dm.m_lpDM->dmPublic.dmSize);
}

// A record of this driver with a public part of another length.
std::vector<uint8_t> ShiftedRecord(WORD dmSize, WORD dmDriverExtra, uint8_t privateFill)
{
    std::vector<uint8_t> bytes(dmSize + dmDriverExtra, 0);
    DEVMODEW* pdm = reinterpret_cast<DEVMODEW*>(bytes.data());
    pdm->dmSpecVersion = TVO_SPEC_VERSION;
    pdm->dmDriverVersion = TVO_DRIVER_VERSION;
    pdm->dmSize = dmSize;
    pdm->dmDriverExtra = dmDriverExtra;
    pdm->dmCopies = 6;
    memset(bytes.data() + dmSize, privateFill, dmDriverExtra);
    // The identity is read at its place in the current layout.
    DWORD signature = DRIVER_SIGNATURE;
    memcpy(bytes.data() + offsetof(DEVMODEEX, dmxSignature), &signature, 4);
    return bytes;
}

TEST(ModifyDeviceMode, OwnRecordsOfOtherShapes)
{
    struct Row
    {
        const char* name;
        WORD dmSize;
        WORD dmDriverExtra;
        uint8_t fill;
        // What lands in dmxUnits: the copied fill, or the default 0.
        DWORD units;
        WORD numRolls;
    } rows[] = {
        // A shorter public part: the private part follows it directly.
        {"short public, current private", 200, kDEVMODEEX_DRIVER_EXTRA, 1, 0x01010101, 0x0101},
        {"short public, older private", 200, kDEVMODEEX1_DRIVER_EXTRA, 1, 0x01010101, 6},
        // A longer public part, private part compared at 220: anything set there is taken.
        {"long public, current private", 240, kDEVMODEEX_DRIVER_EXTRA, 1, 0x01010101, 0x0101},
        {"long public, older private", 240, kDEVMODEEX1_DRIVER_EXTRA, 1, 0x01010101, 6},
        // An empty older private part leaves the record's own.
        {"long public, empty older private", 240, kDEVMODEEX1_DRIVER_EXTRA, 0, 0, 6},
    };
    for (const Row& row : rows) {
        std::vector<uint8_t> input = ShiftedRecord(row.dmSize, row.dmDriverExtra, row.fill);
        TVODevMode dm;
        dm.modifyDeviceMode(nullptr, reinterpret_cast<DEVMODEW*>(input.data()), 3);
        EXPECT_EQ(row.units, dm.m_lpDM->dmxUnits) << row.name;
        EXPECT_EQ(row.numRolls, dm.m_lpDM->dmxNumRolls) << row.name;
        EXPECT_TRUE(IsOwnCurrentDevmode(&dm.m_lpDM->dmPublic)) << row.name;
    }
}

TEST(ModifyDeviceMode, LongPublicPartWithEmptyCurrentPrivatePartIsStillTakenWhole)
{
    // The comparison meets a scratch tail that was never cleared, so it always differs.
    std::vector<uint8_t> input = ShiftedRecord(240, kDEVMODEEX_DRIVER_EXTRA, 0);
    TVODevMode dm;
    dm.modifyDeviceMode(nullptr, reinterpret_cast<DEVMODEW*>(input.data()), 3);
    EXPECT_EQ(0, dm.m_lpDM->dmxNumRolls);
}

TEST(ModifyDeviceMode, OlderOwnRecordBringsItsFirstBytesOnly)
{
    std::vector<uint8_t> input = DefaultRecord();
    DEVMODEEX* pOld = AsRecord(input);
    pOld->dmPublic.dmDriverExtra = kDEVMODEEX1_DRIVER_EXTRA;
    pOld->dmxUnits = kDISTANCE_MM;
    pOld->dmxNumRolls = 2; // behind the older layout's end
    input.resize(kDEVMODEEX1_SIZE);
    TVODevMode dm;
    dm.modifyDeviceMode(nullptr, &AsRecord(input)->dmPublic, 3);
    EXPECT_EQ(static_cast<DWORD>(kDISTANCE_MM), dm.m_lpDM->dmxUnits);
    EXPECT_EQ(6, dm.m_lpDM->dmxNumRolls);
    EXPECT_EQ(kDEVMODEEX_DRIVER_EXTRA, dm.m_lpDM->dmPublic.dmDriverExtra);
}

TEST(ModifyDeviceMode, SourceOfARecordTooShortToHoldOneKeepsTheMergedValue)
{
    std::vector<uint8_t> input = ForeignRecord(80);
    input.resize(80);
    TVODevMode dm;
    dm.m_lpDM->dmPublic.dmDefaultSource = 258;
    dm.modifyDeviceMode(nullptr, reinterpret_cast<DEVMODEW*>(input.data()), 3);
    EXPECT_EQ(258, dm.m_lpDM->dmPublic.dmDefaultSource);
}

TEST(ModifyDeviceMode, UserNameIsRewritten)
{
    host::SetUserName(u"merger");
    std::vector<uint8_t> input = DefaultRecord();
    memset(AsRecord(input)->dmxUserName, 0, sizeof(AsRecord(input)->dmxUserName));
    TVODevMode dm;
    dm.modifyDeviceMode(nullptr, &AsRecord(input)->dmPublic, 3);
    EXPECT_EQ("merger", FieldText(dm.m_lpDM, "dmxUserName"));
}

TEST(ConvertCodes, PlatformPapersToTheDriversOwn)
{
    const struct
    {
        short in;
        short out;
    } rows[] = {{1, 259},  {2, 259},   {3, 260},   {4, 260},   {17, 260}, {8, 273}, {9, 274},
                {24, 261}, {25, 262},  {26, 263},  {42, 278},  {5, 119},  {0, 119}, {255, 119},
                {-1, 119}, {256, 256}, {257, 257}, {281, 281}, {999, 999}};
    for (const auto& row : rows)
        EXPECT_EQ(row.out, TVODevMode::convertDMPaperSize(row.in)) << row.in;
}

TEST(ConvertCodes, SourcesOtherThanRollsAndManualAreAutomatic)
{
    const struct
    {
        short in;
        short out;
    } rows[] = {{4, 4},  {257, 257}, {262, 262}, {7, 7},  {1, 7},
                {15, 7}, {256, 7},   {263, 7},   {-1, 7}, {0, 7}};
    for (const auto& row : rows)
        EXPECT_EQ(row.out, TVODevMode::convertDMDefaultSource(row.in)) << row.in;
}

TEST(PrinterWords, FirmwareLevels)
{
    const struct
    {
        const WCHAR* text;
        LONG code;
    } rows[] = {{TEXT("3.0"), 0},    {TEXT("4.0"), 1},   {TEXT("4.2"), 2},   {TEXT("7.5"), 8},
                {TEXT("10.2"), 17},  {TEXT("11.0"), 21}, {TEXT("11.1"), 22}, {TEXT("12.0"), 24},
                {TEXT("12.5"), 27},  {TEXT("12.7"), 28}, {TEXT("4.1"), 28},  {TEXT("2.0"), 28},
                {TEXT("12.7 "), 28}, {TEXT(""), 28},     {nullptr, 28}};
    for (const auto& row : rows)
        EXPECT_EQ(row.code, TVODevMode::GetFirmwareRev(row.text)) << host::Utf16ToUtf8(row.text);
}

TEST(PrinterWords, RollSizesStatusesMediaAndFinishers)
{
    EXPECT_EQ(25u, TVODevMode::GetRollSizeCode(TEXT("Roll A0")));
    EXPECT_EQ(21u, TVODevMode::GetRollSizeCode(TEXT("Roll 440mm")));
    EXPECT_EQ(0u, TVODevMode::GetRollSizeCode(TEXT("Roll 11in")));
    EXPECT_EQ(15u, TVODevMode::GetRollSizeCode(TEXT("Roll 54in")));
    EXPECT_EQ(17u, TVODevMode::GetRollSizeCode(TEXT("Roll B3")));
    EXPECT_EQ(25u, TVODevMode::GetRollSizeCode(TEXT("roll 36in"))) << "exact text only";
    EXPECT_EQ(0u, TVODevMode::GetRollStatusCode(TEXT("None")));
    EXPECT_EQ(2u, TVODevMode::GetRollStatusCode(TEXT("Low")));
    EXPECT_EQ(3u, TVODevMode::GetRollStatusCode(TEXT("Unknown")));
    EXPECT_EQ(0u, TVODevMode::GetMediaTypeCode(TEXT("Bond")));
    EXPECT_EQ(9u, TVODevMode::GetMediaTypeCode(TEXT("BACKLIT_FILM_360/720")));
    EXPECT_EQ(19u, TVODevMode::GetMediaTypeCode(TEXT("LINE_ART_360")));
    EXPECT_EQ(0u, TVODevMode::GetMediaTypeCode(TEXT("film")));
    EXPECT_EQ(3u, TVODevMode::GetFinisherTypeCode(TEXT("gera ansi special")));
    EXPECT_EQ(4u, TVODevMode::GetFinisherTypeCode(TEXT("GFI FINISHER")));
    EXPECT_EQ(0u, TVODevMode::GetFinisherTypeCode(TEXT("Gera")));
}

} // namespace
