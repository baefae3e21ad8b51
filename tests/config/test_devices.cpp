// Sources, resolutions, extents, roll names, the last tab, and the resource library itself.
#include "configtest.h"

#include "resources/qlmres.h"

#include <algorithm>

using namespace configtest;

namespace {

std::unique_ptr<DEVMODEEX> Rolls(WORD numRolls)
{
    auto dm = std::make_unique<DEVMODEEX>();
    dm->dmxNumRolls = numRolls;
    return dm;
}

std::vector<WORD> Bins(TVOPrinterConfiguration& config, DEVMODEEX* dm)
{
    int count = config.getBinInfo(dm, nullptr, DC_BINS);
    std::vector<WORD> bins(count + 1, 0xBEEF);
    EXPECT_EQ(config.getBinInfo(dm, bins.data(), DC_BINS), count);
    EXPECT_EQ(bins.back(), 0xBEEF) << "DC_BINS wrote past its count";
    bins.pop_back();
    return bins;
}

std::vector<std::string> BinNames(TVOPrinterConfiguration& config, DEVMODEEX* dm)
{
    int count = config.getBinInfo(dm, nullptr, DC_BINNAMES);
    std::vector<WCHAR> buffer((count + 1) * kBIN_NAME_CCH, u'#');
    EXPECT_EQ(config.getBinInfo(dm, buffer.data(), DC_BINNAMES), count);
    EXPECT_EQ(buffer[count * kBIN_NAME_CCH], u'#') << "DC_BINNAMES wrote past its count";
    std::vector<std::string> names;
    for (int i = 0; i < count; i++)
        names.push_back(Utf8(&buffer[i * kBIN_NAME_CCH]));
    return names;
}

TEST(ConfigBins, RollSourcesGoAsFarAsTheRollsAndTheModelAllow)
{
    const struct
    {
        DWORD model;
        WORD recordRolls;
        std::vector<WORD> bins;
        WORD rollsAfter;
    } kCases[] = {
        {kMODEL_2410, 6, {257, 258, 4, 7}, 2},
        {kMODEL_2410, 1, {257, 4, 7}, 1},
        {kMODEL_2420, 0, {4, 7}, 0},
        {kMODEL_2420, 6, {257, 258, 259, 4, 7}, 3},
        {kMODEL_2445, 6, {257, 258, 259, 260, 4, 7}, 4},
        {kMODEL_318P, 3, {257, 258, 259, 4, 7}, 3},
        {kMODEL_3320A, 60, {257, 258, 259, 260, 4, 7}, 4}, // a damaged record
        {kMODEL_WIDE_5, 6, {257, 258, 259, 4, 7}, 3},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE("model " + std::to_string(c.model) + ", rolls " +
                     std::to_string(c.recordRolls));
        auto config = MakeConfig(c.model);
        auto dm = Rolls(c.recordRolls);
        EXPECT_EQ(Bins(*config, dm.get()), c.bins);
        EXPECT_EQ(dm->dmxNumRolls, c.rollsAfter) << "the caller's record is lowered";
    }
}

TEST(ConfigBins, NamesComeInTheOrderOfTheValuesTwiceAlike)
{
    TVOPrinterConfiguration config(u"Tarvo Kesmark 3320"); // four rolls
    auto dm = Rolls(6);
    const std::vector<std::string> kNames = {"Roll 1", "Roll 2",      "Roll 3",
                                             "Roll 4", "Manual feed", "Automatic"};
    EXPECT_EQ(BinNames(config, dm.get()), kNames);
    EXPECT_EQ(BinNames(config, dm.get()), kNames);
    EXPECT_EQ(Bins(config, dm.get()), (std::vector<WORD>{257, 258, 259, 260, 4, 7}));
}

TEST(ConfigBins, AnotherIndexCountsAndWritesNothing)
{
    TVOPrinterConfiguration config(u"TVO 2420");
    auto dm = Rolls(2);
    WORD buffer[8] = {0xBEEF, 0xBEEF, 0xBEEF, 0xBEEF, 0xBEEF, 0xBEEF, 0xBEEF, 0xBEEF};
    EXPECT_EQ(config.getBinInfo(dm.get(), buffer, DC_PAPERS), 4);
    EXPECT_TRUE(
        std::all_of(std::begin(buffer), std::end(buffer), [](WORD w) { return w == 0xBEEF; }));
}

TEST(ConfigResolutions, PairsOfDotsPerInchByModel)
{
    for (DWORD model = 0; model < kNUM_MODELS; model++) {
        auto config = MakeConfig(model);
        std::vector<LONG> expected = {200, 200, 300, 300, 400, 400};
        if (IsHighResolutionModel(model))
            expected.insert(expected.end(), {600, 600});
        int count = config->getResolutionInfo(nullptr, nullptr, DC_ENUMRESOLUTIONS);
        ASSERT_EQ(count * 2u, expected.size()) << "model " << model;
        std::vector<LONG> pairs(count * 2 + 1, -1);
        EXPECT_EQ(config->getResolutionInfo(nullptr, pairs.data(), DC_ENUMRESOLUTIONS), count);
        EXPECT_EQ(pairs.back(), -1) << "model " << model;
        pairs.pop_back();
        EXPECT_EQ(pairs, expected) << "model " << model;
    }
}

TEST(ConfigExtents, SmallestAndLargestPaperOnEveryModel)
{
    for (DWORD model = 0; model < kNUM_MODELS; model++) {
        auto config = MakeConfig(model);
        auto dm = Rolls(6);
        // Neither the record nor the forms nor the custom size change the answer.
        dm->dmxPaperLength = TVOFixed(30000);
        config->m_UserFormCount = 1;
        config->m_UserForms[0].width = 100;
        config->m_UserForms[0].length = 100;
        DWORD minimum = config->calcMinMaxExtent(dm.get(), nullptr, DC_MINEXTENT);
        DWORD maximum = config->calcMinMaxExtent(nullptr, nullptr, DC_MAXEXTENT);
        EXPECT_EQ(LOWORD(minimum), 2100) << "model " << model;
        EXPECT_EQ(minimum >> 16, 2794u) << "model " << model;
        EXPECT_EQ(LOWORD(maximum), 9144) << "model " << model;
        EXPECT_EQ(maximum >> 16, 12192u) << "model " << model;
        EXPECT_EQ(config->calcMinMaxExtent(nullptr, nullptr, 99), maximum) << "model " << model;
    }
}

TEST(ConfigRolls, EachCodeIsNamedAsInTheRollListButCode21)
{
    TVOPrinterConfiguration config(u"TVO 2410");
    const std::string unknown = Utf8(config.getResourceString(IDS_ROLL_UNKNOWN));
    const Rows rows = ListRows(config.m_RollSizeList);
    const UINT kWideRolls[] = {IDS_ROLL_38IN, IDS_ROLL_42IN, IDS_ROLL_44IN, IDS_ROLL_48IN,
                               IDS_ROLL_50IN, IDS_ROLL_53IN, IDS_ROLL_54IN};
    for (DWORD code = 0; code <= 28; code++) {
        std::string expected;
        if (code == 21) {
            expected = unknown;
        } else if (code >= 9 && code <= 15) {
            expected = Utf8(config.getResourceString(kWideRolls[code - 9]));
        } else {
            auto row = std::find_if(rows.begin(), rows.end(),
                                    [&](const auto& r) { return r.second == code; });
            ASSERT_NE(row, rows.end()) << code;
            expected = Utf8(config.getResourceString(row->first));
        }
        EXPECT_EQ(Utf8(config.getRollSize(code)), expected) << "code " << code;
        if (code != 21) {
            EXPECT_NE(expected, unknown) << "code " << code;
        }
    }
    EXPECT_EQ(Utf8(config.getRollSize(29)), unknown);
    EXPECT_EQ(Utf8(config.getRollSize(0xFFFFFFFF)), unknown);
    EXPECT_EQ(Utf8(config.getRollSize(8)), "36 in");
}

// ---- The last tab --------------------------------------------------------------------------

TEST(ConfigLastTab, AStoredTabSurvivesANewObjectOfThePrinter)
{
    HostPrinter printer(u"Plotter");
    {
        TVOPrinterConfiguration config(u"TVO 2410");
        config.setPrinterHandle(printer.handle());
        EXPECT_EQ(config.GetLastActiveTab(), 0) << "a first opening";
        config.SetLastActiveTab(106);
    }
    host::DataValue value;
    ASSERT_TRUE(host::GetPrinterData(u"Plotter", u"PrinterDriverData", u"LastActiveTab", &value));
    EXPECT_EQ(value.type, static_cast<DWORD>(REG_DWORD));
    EXPECT_EQ(value.data, (std::vector<uint8_t>{5, 0, 0, 0}));

    TVOPrinterConfiguration config(u"TVO 2410");
    config.setPrinterHandle(printer.handle());
    EXPECT_EQ(config.GetLastActiveTab(), 5);
}

TEST(ConfigLastTab, AValueTooLargeOrNoPrinterGivesTheFirstTab)
{
    HostPrinter printer(u"Plotter");
    host::DataValue value;
    value.key = u"PrinterDriverData";
    value.name = u"LastActiveTab";
    value.type = REG_BINARY;
    value.data = {3, 0, 0, 0, 0, 0, 0, 0};
    ASSERT_TRUE(host::SetPrinterData(u"Plotter", value));
    TVOPrinterConfiguration config(u"TVO 2410");
    config.setPrinterHandle(printer.handle());
    EXPECT_EQ(config.GetLastActiveTab(), 0);
    config.setPrinterHandle(nullptr);
    EXPECT_EQ(config.GetLastActiveTab(), 0);
    config.SetLastActiveTab(102); // no printer: nothing to write to, and no harm
}

// ---- The resource library -----------------------------------------------------------------

TEST(ConfigResourceLibrary, LoadedFromTheDriverDirectoryAndFreedWithTheObject)
{
    SwitchGuard guard;
    g_bTraceTVOConfig = TRUE;
    TraceCapture capture;
    {
        TVOPrinterConfiguration config(u"TVO 2410");
        EXPECT_NE(config.m_hResources, nullptr);
        EXPECT_TRUE(capture.contains(
            "Loaded RESDLL (C:\\Windows\\System32\\spool\\drivers\\x64\\3\\QLMRes.DLL) OK!"))
            << capture.text();
        EXPECT_EQ(Utf8(config.getResourceString(IDS_PAPER_LETTER)), "Letter");
    }
    EXPECT_TRUE(capture.contains("Resources freed!")) << capture.text();
}

TEST(ConfigResourceLibrary, AStringThatIsNotThereReadsAsTheErrorText)
{
    TVOPrinterConfiguration config(u"TVO 2410");
    EXPECT_EQ(Utf8(config.getResourceString(4999)), "LoadString Error=1814 (0X716)");
    // The shared buffer takes the next string whole.
    EXPECT_EQ(Utf8(config.getResourceString(IDS_UNITS_MM)), "mm");
}

TEST(ConfigResourceLibrary, TheOlderSubdirectoryIsTriedSecond)
{
    SwitchGuard guard;
    g_bTraceTVOConfig = TRUE;
    EmptyHome home;
    ASSERT_TRUE(
        host::InstallDriverFile(QLM_TEST_BINARY_DIR "/resources/QLMRes.DLL", u"QLMRes.DLL", 2));
    TraceCapture capture;
    TVOPrinterConfiguration config(u"TVO 2410");
    EXPECT_TRUE(capture.contains("\\2\\QLMRes.DLL) OK!")) << capture.text();
    EXPECT_EQ(Utf8(config.getResourceString(IDS_PAPER_ISO_A4)), "ISO A4");
}

TEST(ConfigResourceLibrary, WithoutTheLibraryEveryStringIsTheErrorText)
{
    SwitchGuard guard;
    g_bTraceTVOConfig = TRUE;
    EmptyHome home;
    TraceCapture capture;
    {
        TVOPrinterConfiguration config(u"Tarvo Kesmark 3320");
        EXPECT_TRUE(capture.contains(
            "Failed to load RESDLL:C:\\Windows\\System32\\spool\\drivers\\x64\\2\\QLMRes.DLL!"))
            << capture.text();
        EXPECT_EQ(config.m_PrinterModel, 9u) << "the lists do not need the library";
        EXPECT_EQ(config.m_NumRolls, 4);

        const std::string error = "LoadString Error=1812 (0X714)";
        EXPECT_EQ(Utf8(config.getResourceString(IDS_PAPER_LETTER)), error);
        EXPECT_EQ(Utf8(config.getRollSize(8)), error);

        auto dm = std::make_unique<DEVMODEEX>();
        dm->dmxShowPaperTypes = 0xFFFF;
        int count = config.getPaperInfo(dm.get(), nullptr, DC_PAPERNAMES);
        EXPECT_EQ(count, 23);
        std::vector<WCHAR> names(count * kPAPER_NAME_CCH);
        EXPECT_EQ(config.getPaperInfo(dm.get(), names.data(), DC_PAPERNAMES), count);
        EXPECT_EQ(Utf8(&names[0]), error);
        EXPECT_EQ(Utf8(&names[(count - 1) * kPAPER_NAME_CCH]), error);

        dm->dmxNumRolls = 6;
        std::vector<WCHAR> bins(6 * kBIN_NAME_CCH);
        EXPECT_EQ(config.getBinInfo(dm.get(), bins.data(), DC_BINNAMES), 6);
        // 24 characters of the error text, not terminated.
        EXPECT_EQ(host::Utf16ToUtf8(std::u16string(&bins[0], kBIN_NAME_CCH)),
                  error.substr(0, kBIN_NAME_CCH));
    }
    EXPECT_TRUE(capture.contains("FreeLibrary failed, resources not freed!")) << capture.text();
}

} // namespace
