// The model catalogue: which driver name gives which model, and what each model can do.
#include "configtest.h"

#include <algorithm>
#include <cctype>

using namespace configtest;

namespace {

// Sample rows of the alias table: each model's rows in each spelling family, and the rows with
// the trade mark sign.
struct AliasRow
{
    const char* name; // UTF-8; "™" is U+2122
    DWORD model;
};
const AliasRow kAliasRows[] = {
    {"Tarvo 2410 Wide Format with Lumivar Pentara", 1},
    {"TVO Orvanta 2410 PS", 1},
    {"Tarvo 2410 PS Wide Format with Lumivar™ Pentara", 1},
    {"Pentara 2420", 0},
    {"Orvanta Print System 2420 PS", 0},
    {"Tarvo 2440 Wide Format with Lumivar™ Pentara", 3},
    {"Tarvo Plan Output System 2440", 3},
    {"Orvanta 2445", 2},
    {"Tarvo Plan Output System 2445 PS", 2},
    {"Orvanta Print System 18p", 6},
    {"Tarvo 318p PS Wide Format with Lumivar™ Pentara", 6},
    {"Orvanta Print System 427dp PS", 7},
    {"Tarvo Plan Output System 427 Series", 7},
    {"Tarvo Kesmark 3310", 8},
    {"Tarvo 3310 Wide Format PS", 8},
    {"Tarvo 3320 PS Wide Format with Lumivar™ Pentara", 9},
    {"Tarvo 3344 Wide Format", 10},
    {"Tarvo 3344 PS Wide Format with Lumivar™ Pentara", 10},
    {"Tarvo 3320A Wide Format with Lumivar Pentara", 11},
    {"Tarvo 3320A PS Wide Format with Lumivar Pentara", 11},
};

DWORD ModelOf(const std::string& utf8)
{
    std::u16string name = host::Utf8ToUtf16(utf8);
    return TVOFindPrinterModel(name.c_str());
}

std::string Lower(std::string s)
{
    for (char& c : s)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

std::string Upper(std::string s)
{
    for (char& c : s)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return s;
}

TEST(ConfigAlias, RowsGiveTheirModelWholeInAnyCaseAndInsideALongerName)
{
    for (const AliasRow& row : kAliasRows) {
        EXPECT_EQ(ModelOf(row.name), row.model) << row.name;
        EXPECT_EQ(ModelOf(Lower(row.name)), row.model) << "lower case: " << row.name;
        EXPECT_EQ(ModelOf(Upper(row.name)), row.model) << "upper case: " << row.name;
        // The second pass: the row inside a longer name, case respected.
        EXPECT_EQ(ModelOf("Office " + std::string(row.name) + " (2nd floor)"), row.model)
            << "contained: " << row.name;
    }
}

TEST(ConfigAlias, NamesOfTheTwoPassesAndTheFallback)
{
    const struct
    {
        const char* name;
        DWORD model;
    } kCases[] = {
        {"Tarvo 3320A PS Wide Format with Lumivar Pentara", 11},
        {"tarvo 3320a ps wide format with lumivar pentara", 11},
        {"Office Tarvo 3320 Wide Format", 9},
        {"office tarvo 3320 wide format", 7}, // the second pass respects case
        {"Tarvo 3320A Wide Format", 7},       // no row, and contains none
        {"default", 7},
        {"", 7},
        // The second pass takes the earliest row of the table, not the earliest in the name.
        {"Pentara 2420 and TVO 2410", 1},
        {"Tarvo 3320 Wide Format via Tarvo Kesmark 3310", 8},
        // A trade mark sign of another kind is no row.
        {"Tarvo 2410 Wide Format with Lumivar® Pentara", 7},
        // A longer name with a PS row inside takes the first row it contains.
        {"My TVO Orvanta 2445 PS", 2},
    };
    for (const auto& c : kCases)
        EXPECT_EQ(ModelOf(c.name), c.model) << c.name;
}

TEST(ConfigAlias, AnUnknownNameIsTracedAndAKnownOneIsNot)
{
    SwitchGuard guard;
    g_bTraceTVOConfig = TRUE;
    TraceCapture capture;
    EXPECT_EQ(ModelOf("Someone Else's Plotter"), 7u);
    EXPECT_TRUE(capture.contains("can't find match.")) << capture.text();
    capture.clear();
    EXPECT_EQ(ModelOf("TVO 2410"), 1u);
    EXPECT_FALSE(capture.contains("can't find match.")) << capture.text();
}

TEST(ConfigAlias, ANullNameAssertsAndGivesModel7)
{
    SwitchGuard guard;
    g_bTraceASSERT = TRUE;
    TraceCapture capture;
    TVOPrinterConfiguration config(nullptr);
    EXPECT_EQ(config.m_PrinterModel, 7u);
    EXPECT_TRUE(config.m_bInitialized);
    EXPECT_TRUE(capture.contains("***ASSERT***(szPrinter)")) << capture.text();
}

// ---- What each model can do ------------------------------------------------------------

enum JobList
{
    kGeneral,
    kWide,
    kNarrow
};

struct ModelRow
{
    DWORD model;
    WORD numRolls;
    WORD maxRes;
    int resolutions;
    int papers; // rows of m_PaperList
    int isoPapers;
    JobList jobList;
    const char* traceLabel; // nullptr: none
};
const ModelRow kModels[] = {
    {0, 3, 400, 3, 23, 9, kGeneral, "2420"},         {1, 2, 400, 3, 23, 9, kGeneral, "2410"},
    {2, 4, 400, 3, 23, 9, kGeneral, "2445"},         {3, 3, 400, 3, 23, 9, kGeneral, "2440"},
    {4, 3, 400, 3, 23, 9, kGeneral, nullptr},        {5, 3, 400, 3, 23, 9, kGeneral, nullptr},
    {6, 4, 400, 3, 19, 5, kNarrow, "Amethyst/318p"}, {7, 3, 400, 3, 23, 9, kGeneral, "Kestrel/427"},
    {8, 2, 600, 4, 23, 9, kWide, "sorrento/3310"},   {9, 4, 600, 4, 23, 9, kWide, "sorrento/3320"},
    {10, 2, 600, 4, 23, 9, kWide, "tallo/3344"},     {11, 4, 600, 4, 23, 9, kWide, "3320A"},
};

const char* const kJobLists[] = {
    // general
    "5042=0 5041=1 5610=2 5611=3 5614=4 5615=5 5617=6 5618=7 5619=8 5620=9 5621=10 5604=18 "
    "5631=21 5603=23 5630=27 5602=28 5641=25 5605=29 5629=32 5608=33 5601=34 5606=35 5607=36 "
    "5609=38",
    // wide
    "5042=0 5041=1 5610=2 5611=3 5614=4 5615=5 5617=6 5618=7 5619=8 5620=9 5621=10 5604=18 "
    "5637=19 5638=20 5639=22 5603=23 5640=24 5641=25 5642=26 5602=28 5605=29 5643=30 5644=31 "
    "5606=35 5631=21 5630=27 5629=32 5601=34 5607=36",
    // narrow
    "5042=0 5041=1 5610=2 5611=3 5614=4 5615=5 5617=6 5618=7 5619=8 5620=9 5621=10 5604=18 "
    "5603=23 5602=28 5601=34 5641=25 5607=36 5645=37 5609=38",
};

TEST(ConfigModels, EachModelHasItsRollsResolutionsPapersAndJobList)
{
    for (const ModelRow& row : kModels) {
        SCOPED_TRACE("model " + std::to_string(row.model));
        auto config = MakeConfig(row.model);
        EXPECT_EQ(config->m_PrinterModel, row.model);
        EXPECT_EQ(config->m_NumRolls, row.numRolls);
        EXPECT_EQ(config->m_maxRes, row.maxRes);
        Rows resolutions = ParseRows("5003=0 5004=1 5005=2 5006=3");
        resolutions.resize(row.resolutions);
        EXPECT_EQ(ListRows(config->m_ResolutionList), resolutions);
        EXPECT_EQ(config->CountPaperInfo(config->m_PaperList), row.papers);
        EXPECT_EQ(config->CountPaperInfo(config->m_PaperGroupIso), row.isoPapers);
        EXPECT_EQ(ListRows(config->m_SinglePageJobList), ParseRows(kJobLists[row.jobList]));

        EXPECT_TRUE(config->isValidRes(200));
        EXPECT_TRUE(config->isValidRes(300));
        EXPECT_TRUE(config->isValidRes(400));
        EXPECT_EQ(config->isValidRes(600), row.maxRes == 600);
        EXPECT_FALSE(config->isValidRes(150));
        EXPECT_FALSE(config->isValidRes(0));
        EXPECT_FALSE(config->isValidRes(-400));

        EXPECT_TRUE(config->m_bHasPermission);
        EXPECT_TRUE(config->m_bShowPaperTab && config->m_bShowJobTab &&
                    config->m_bShowGraphicsTab && config->m_bShowDeviceTab &&
                    config->m_bShowRenderTab && config->m_bSpareTabFlag);
        EXPECT_EQ(config->m_bHasSheetFeed, 1);
        EXPECT_EQ(config->m_UserFormCount, 0);
        EXPECT_EQ(config->m_ReservedSlot, nullptr);
    }
}

TEST(ConfigModels, InitializeTracesTheModelsLabel)
{
    SwitchGuard guard;
    g_bTraceTVOConfig = TRUE;
    for (const ModelRow& row : kModels) {
        TraceCapture capture;
        auto config = MakeConfig(row.model);
        if (row.traceLabel) {
            EXPECT_TRUE(capture.contains(std::string(" ") + row.traceLabel + "\n"))
                << "model " << row.model << capture.text();
        }
    }
}

TEST(ConfigModels, ASecondInitializeOnlyGivesThePermissionBack)
{
    TVOPrinterConfiguration config(u"Tarvo Kesmark 3310");
    HMODULE hResources = config.m_hResources;
    BYTE* block = config.m_pSpareBlock1;
    config.m_bHasPermission = FALSE;
    config.m_NumRolls = 5;
    config.initialize(kMODEL_318P);
    EXPECT_TRUE(config.m_bHasPermission);
    EXPECT_EQ(config.m_PrinterModel, 8u);
    EXPECT_EQ(config.m_NumRolls, 5);
    EXPECT_EQ(config.m_hResources, hResources);
    EXPECT_EQ(config.m_pSpareBlock1, block);
}

TEST(ConfigModels, TheObjectHoldsItsMediaNamesAndTwoZeroedBlocks)
{
    TVOPrinterConfiguration config(u"TVO 2410");
    EXPECT_EQ(config.m_MediaCount, 4u);
    const char* const kNames[] = {"Bond", "Vellum", "Film", "Any"};
    for (int i = 0; i < 4; i++)
        EXPECT_EQ(Utf8(config.m_MediaNames[i]), kNames[i]);
    EXPECT_EQ(config.m_MediaNames[4][0], 0);
    EXPECT_FALSE(config.m_bMediaInitialized);
    ASSERT_NE(config.m_pSpareBlock1, nullptr);
    ASSERT_NE(config.m_pSpareBlock2, nullptr);
    EXPECT_TRUE(std::all_of(config.m_pSpareBlock1, config.m_pSpareBlock1 + 8192,
                            [](BYTE b) { return b == 0; }));
    EXPECT_TRUE(std::all_of(config.m_pSpareBlock2, config.m_pSpareBlock2 + 8192,
                            [](BYTE b) { return b == 0; }));
    EXPECT_EQ(config.m_qwSpare, 0u);
}

TEST(ConfigModels, TheInstanceCounterFollowsTheObjects)
{
    LONG before = TVOPrinterConfiguration::s_nInstances;
    {
        TVOPrinterConfiguration a(u"TVO 2410");
        TVOPrinterConfiguration b(u"TVO 2420");
        EXPECT_EQ(TVOPrinterConfiguration::s_nInstances, before + 2);
    }
    EXPECT_EQ(TVOPrinterConfiguration::s_nInstances, before);
}

} // namespace
