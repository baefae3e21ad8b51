// TVODevMode: what a fresh record holds, the port test, and the guard checks on release.
#include "support/devmodefields.h"
#include "support/hostprinter.h"
#include "support/tracecapture.h"

#include "driver/devmode/tvodm.h"

#include <gtest/gtest.h>

namespace {

struct Expected
{
    const char* field;
    long long value; // thousandths for distances
};

// The fields that a fresh record sets to other than zero; every other number of one element is
// zero.
const Expected kDefaults[] = {
    {"dmSpecVersion", 0x0401},
    {"dmDriverVersion", 0x0C07},
    {"dmSize", 220},
    {"dmDriverExtra", 13264},
    {"dmFields", 118531},
    {"dmOrientation", 1},
    {"dmPaperSize", 257},
    {"dmPaperLength", 2794},
    {"dmPaperWidth", 2159},
    {"dmScale", 100},
    {"dmCopies", 1},
    {"dmDefaultSource", 7},
    {"dmPrintQuality", 400},
    {"dmColor", 1},
    {"dmTTOption", 1},
    {"dmxDevmodeVersion", 0x0C05},
    {"dmxSignature", 0x6F767444},
    {"dmxBannerPage", 1},
    {"dmxReservedSource", 7},
    {"dmxFirmwareRevision", 28},
    {"dmxNumRolls", 6},
    {"dmxSheetSizeSetting", 1},
    {"dmxPaperLength", 2794000},
    {"dmxPaperWidth", 2159000},
    {"dmxUserMediaCategory", 4},
    {"dmxShowPaperTypes", 0xFFFF},
    {"dmxPriority", 5},
    {"dmxGraphicsFlag", 1},
    {"dmxRotation", 4},
    {"dmxScaleToPaper", 1},
    {"dmxScalePercent", 100},
    {"dmxRasterImageScaling", 1},
    {"dmxQualityMode", 1},
    {"dmxRenderValue1", 7},
    {"dmxRenderValue2", 1},
    {"dmxLabel", 1},
    {"dmxLabelPointSize", 18},
    {"dmxLabelDensity", 100},
    {"dmxLabelAngle", 90},
    {"dmxLabelPlacementX", 4},
    {"dmxLabelPlacementY", 8},
    {"dmxPlacementY", 8},
    {"dmxStamp", 1},
    {"dmxStampScale", 100},
    {"dmxStampPlacementX", 2},
    {"dmxStampPlacementY", 2},
    {"dmxAccountingMode", 1},
    {"dmxReservedRevision", 28},
    {"dmxReservedFlag", 1},
};

void ExpectDefaults(const DEVMODEEX* dm)
{
    for (size_t i = 0; i < g_cDevmodeFields; i++) {
        const DEVMODEEX_FIELD& field = g_DevmodeFields[i];
        if (field.cbSize != field.cbElement || field.eKind == kDMF_TEXT ||
            field.eKind == kDMF_LIST || field.eKind == kDMF_BYTES || field.eKind == kDMF_FINISHER)
            continue;
        long long expected = 0;
        for (const Expected& row : kDefaults)
            if (row.field == std::string(field.pszName))
                expected = row.value;
        EXPECT_EQ(FieldNumber(dm, field.pszName), expected) << field.pszName;
    }
    for (const Expected& row : kDefaults)
        ASSERT_NE(FindField(row.field), nullptr) << row.field;
    for (int i = 0; i < 6; i++) {
        EXPECT_EQ(dm->dmxRollStatus[i], 1u) << "roll " << i;
        EXPECT_EQ(dm->dmxRollSize[i], 8u) << "roll " << i;
        EXPECT_EQ(dm->dmxRollType[i], 0u) << "roll " << i;
    }
    for (int i = 0; i < 128; i++) {
        EXPECT_EQ(dm->dmxTableA[i], 100) << i;
        EXPECT_EQ(dm->dmxTableB[i], 5) << i;
    }
    for (int i = 0; i < 4; i++)
        EXPECT_EQ(FieldNumber(dm, "dmxUnprintableMargin", i), 200) << "margin " << i;
    const long long kFinishFlags[4] = {1, 1, 0, 1};
    for (int i = 0; i < 4; i++)
        EXPECT_EQ(FieldNumber(dm, "dmxFinishFlags", i), kFinishFlags[i]) << "finish flag " << i;
    for (int i = 0; i < 8; i++) {
        EXPECT_EQ(dm->padding_1[i], 0xCCCCCCCCu) << i;
        EXPECT_EQ(dm->padding_2[i], 0xCCCCCCCCu) << i;
    }
    EXPECT_EQ(FieldText(dm, "dmFormName"), "Letter");
    EXPECT_EQ(FieldText(dm, "dmDeviceName"), "");
    EXPECT_EQ(FieldText(dm, "dmxOwner"), "");
    EXPECT_TRUE(IsOwnCurrentDevmode(&dm->dmPublic));
}

} // namespace

TEST(TVODevMode, RecordWithoutPrinterHasEveryDefault)
{
    host::SetUserName(u"plotuser");
    TVODevMode devmode;
    ASSERT_TRUE(devmode.m_bOwnDM);
    ExpectDefaults(devmode.m_lpDM);
    EXPECT_EQ(FieldText(devmode.m_lpDM, "dmxUserName"), "plotuser");
    EXPECT_FALSE(devmode.m_bGOTprinterDataAlready);
}

TEST(TVODevMode, MetricLocaleStillGivesTheUSRecord)
{
    // The measurement test looks for two NUL characters where the answer is "0" or "1".
    host::SetMetric(true);
    TVODevMode devmode;
    EXPECT_EQ(devmode.m_lpDM->dmPublic.dmPaperSize, 257);
    EXPECT_EQ(devmode.m_lpDM->dmxUnits, 0u);
    EXPECT_EQ(FieldText(devmode.m_lpDM, "dmFormName"), "Letter");
}

TEST(TVODevMode, QueueNameDecidesTheResolution)
{
    struct Row
    {
        std::u16string queue;
        std::u16string driver;
        short dpi;
    } kRows[] = {
        {u"Plan 3320A upstairs", u"Tarvo Plan Output System 2440", 600},
        {u"3310", u"x", 600},
        {u"Big 3344", u"x", 600},
        {u"Plan 3320", u"x", 600},
        {u"Plan 2440", u"Tarvo Plan Output System 3320A", 400},
        {u"Plan 33-10", u"x", 400},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(host::Utf16ToUtf8(row.queue));
        HostPrinter printer(row.queue, row.driver);
        TVODevMode devmode(printer.handle());
        EXPECT_EQ(devmode.m_lpDM->dmPublic.dmPrintQuality, row.dpi);
        EXPECT_EQ(TVODevMode::IsSorrento(printer.handle()), row.dpi == 600);
    }
    EXPECT_FALSE(TVODevMode::IsSorrento(nullptr));
}

TEST(TVODevMode, PortMonitorDecidesWhetherThePrinterCanBeAsked)
{
    ASSERT_TRUE(host::AddPort({u"IP_10.0.0.5", u"TCPMON.DLL", u"Standard TCP/IP Port"}));
    ASSERT_TRUE(host::AddPort({u"NET1:", u"TVO Net Port", u""}));
    ASSERT_TRUE(host::AddPort({u"USB001", u"USB Monitor", u""}));
    ASSERT_TRUE(host::AddPort({u"tcp2", u"tcpmon.dll", u""}));
    struct Row
    {
        std::u16string port;
        DWORD bidi;
    } kRows[] = {
        {u"IP_10.0.0.5", 1}, {u"ip_10.0.0.5", 1}, {u"NET1:", 1},     {u"tcp2", 1},
        {u"USB001", 0},      {u"LPT1:", 0},       {u"NotListed", 0},
    };
    int n = 0;
    for (const Row& row : kRows) {
        SCOPED_TRACE(host::Utf16ToUtf8(row.port));
        HostPrinter printer(u"Queue " + host::Utf8ToUtf16(std::to_string(n++)),
                            u"Tarvo Plan Output System 2440", row.port);
        EXPECT_EQ(QLMPortIsBiDi(printer.handle()), (BOOL)row.bidi);
        TVODevMode devmode(printer.handle());
        EXPECT_EQ(devmode.m_lpDM->dmxBiDi, row.bidi);
        EXPECT_EQ(devmode.m_lpDM->dmxRefreshOnOpen, 0u);
    }
    EXPECT_TRUE(QLMPortIsStdTCPIP(TEXT("IP_10.0.0.5")));
    EXPECT_FALSE(QLMPortIsTVONetPort(TEXT("IP_10.0.0.5")));
    EXPECT_TRUE(QLMPortIsTVONetPort(TEXT("net1:")));
    EXPECT_FALSE(QLMPortIsBiDi(nullptr));
}

TEST(TVODevMode, UserNameTooLongForTheFieldLeavesItEmpty)
{
    host::SetUserName(std::u16string(63, u'a'));
    TVODevMode fits;
    EXPECT_EQ(FieldText(fits.m_lpDM, "dmxUserName"), std::string(63, 'a'));

    host::SetUserName(std::u16string(64, u'b'));
    TVODevMode tooLong;
    EXPECT_EQ(FieldText(tooLong.m_lpDM, "dmxUserName"), "");
}

TEST(TVODevMode, ViewerTouchesNothingAndChecksNothing)
{
    SwitchGuard guard;
    TraceCapture capture;
    g_bTraceASSERT = TRUE;
    DEVMODEEX record;
    memset(&record, 0x5A, sizeof(record));
    {
        TVODevMode viewer(&record);
        EXPECT_FALSE(viewer.m_bOwnDM);
        EXPECT_EQ(viewer.m_lpDM, &record);
    }
    unsigned char expected[sizeof(record)];
    memset(expected, 0x5A, sizeof(expected));
    EXPECT_EQ(memcmp(&record, expected, sizeof(record)), 0);
    EXPECT_FALSE(capture.contains("ASSERT")) << "damaged guards of a viewed record are not ours";
}

TEST(TVODevMode, OwnedRecordReportsEachDamagedGuardInOrder)
{
    SwitchGuard guard;
    TraceCapture capture;
    g_bTraceASSERT = TRUE;
    {
        TVODevMode devmode;
        devmode.m_lpDM->dmxDevmodeVersion = 0x0C04;
        devmode.m_lpDM->padding_2[7] = 0;
        devmode.m_lpDM->padding_1[2] = 0xCCCCCCCD;
    }
    std::vector<std::string> asserts;
    for (const std::string& line : capture.lines())
        if (line.find("***ASSERT***") != std::string::npos)
            asserts.push_back(
                line.substr(line.find('(') + 1, line.find(") failed") - line.find('(') - 1));
    ASSERT_EQ(asserts.size(), 3u);
    EXPECT_EQ(asserts[0], "m_lpDM->dmxDevmodeVersion == 0x0C05");
    EXPECT_EQ(asserts[1], "m_lpDM->padding_1[2] == 0xCCCCCCCC");
    EXPECT_EQ(asserts[2], "m_lpDM->padding_2[7] == 0xCCCCCCCC");
}

TEST(TVODevMode, ConstructorsAndDestructorAreCounted)
{
    LONG view = TVODevMode::s_nViewConstructed, fresh = TVODevMode::s_nDefaultConstructed,
         printer = TVODevMode::s_nPrinterConstructed, gone = TVODevMode::s_nDestructed;
    DEVMODEEX record{};
    {
        TVODevMode a(&record);
        TVODevMode b;
        TVODevMode c(static_cast<HANDLE>(nullptr));
    }
    EXPECT_EQ(TVODevMode::s_nViewConstructed - view, 1);
    EXPECT_EQ(TVODevMode::s_nDefaultConstructed - fresh, 1);
    EXPECT_EQ(TVODevMode::s_nPrinterConstructed - printer, 1);
    EXPECT_EQ(TVODevMode::s_nDestructed - gone, 3);
}
