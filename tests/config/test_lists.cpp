// The constant list tables and the paper size table, and the strings that name their rows.
#include "configtest.h"

#include "resources/qlmres.h"

#include <algorithm>
#include <set>
#include <sstream>

using namespace configtest;

namespace {

// Each list shared by all models: its length and sample rows, "position:id=value".
struct ListCase
{
    const char* name;
    TVOList TVOPrinterConfiguration::*member;
    size_t count;
    const char* samples;
};

std::vector<ListCase> SharedLists()
{
    using C = TVOPrinterConfiguration;
    return {
        {"m_FirmwareList", &C::m_FirmwareList, 24, "0:5913=5 13:5928=18 16:5927=21 23:5937=28"},
        {"m_PaperGroupStandard", &C::m_PaperGroupStandard, 2, "0:5713=257 1:5714=258"},
        {"m_PaperGroupAnsi", &C::m_PaperGroupAnsi, 5, "0:5715=259 4:5719=263"},
        {"m_PaperGroupArch", &C::m_PaperGroupArch, 6, "2:5722=266 3:5701=267 5:5703=269"},
        {"m_PaperGroupCustom", &C::m_PaperGroupCustom, 1, "0:5728=256"},
        {"m_UserMediaCategoryList", &C::m_UserMediaCategoryList, 27,
         "0:5723=0 4:5727=4 5:5610=5 14:5604=21 26:5609=33"},
        {"m_BinList", &C::m_BinList, 8, "0:5401=257 5:5406=262 6:5252=4 7:5251=7"},
        {"m_MediaTypeList", &C::m_MediaTypeList, 4, "0:5253=0 3:5256=3"},
        {"m_RollSizeList", &C::m_RollSizeList, 22, "0:5610=0 8:5621=8 9:5604=16 21:5609=28"},
        {"m_SheetSizeList", &C::m_SheetSizeList, 22, "0:5713=1 10:5701=11 18:5709=22 21:5712=19"},
        {"m_ScaleToPaperList", &C::m_ScaleToPaperList, 43,
         "0:5713=1 10:5701=11 18:5712=19 22:5610=23 31:5604=39 42:5609=50"},
        {"m_ReservedList", &C::m_ReservedList, 4, "0:5802=0 3:5801=3"},
        {"m_FinishingList", &C::m_FinishingList, 3, "0:5217=0 1:5218=8 2:5219=9"},
        {"m_BannerList", &C::m_BannerList, 4, "0:5200=0 3:5203=3"},
        {"m_LabelList", &C::m_LabelList, 3, "0:5204=0 2:5206=2"},
        {"m_StampList", &C::m_StampList, 3, "0:5207=0 2:5209=2"},
        {"m_PlotNestList", &C::m_PlotNestList, 3, "0:5210=0 2:5212=2"},
        {"m_MismatchList", &C::m_MismatchList, 4, "0:5213=0 3:5216=3"},
        {"m_QualityModeList", &C::m_QualityModeList, 3, "0:5026=0 1:5001=1 2:5002=2"},
        {"m_RenderModeList", &C::m_RenderModeList, 2, "0:5230=0 1:5231=1"},
        {"m_GraphicsList2", &C::m_GraphicsList2, 3, "0:5022=1 1:5023=0 2:5024=2"},
        {"m_VectorList", &C::m_VectorList, 2, "0:5034=0 1:5035=1"},
        {"m_RasterMethodList", &C::m_RasterMethodList, 2, "0:5039=0 1:5040=1"},
        {"m_GrayscaleList", &C::m_GrayscaleList, 2, "0:5036=0 1:5037=1"},
        {"m_GraphicsList1", &C::m_GraphicsList1, 5, "0:5112=0 4:5116=4"},
        {"m_StampRotationList", &C::m_StampRotationList, 4, "0:5112=0 3:5115=3"},
        {"m_RenderList", &C::m_RenderList, 3, "0:5350=0 2:5352=2"},
        {"m_MarginPlacementXList", &C::m_MarginPlacementXList, 4, "1:5452=2 2:5451=1 3:5456=5"},
        {"m_StampPlacementXList", &C::m_StampPlacementXList, 4, "1:5452=2 2:5451=1 3:5456=5"},
        {"m_MarginPlacementYList", &C::m_MarginPlacementYList, 4, "0:5457=7 2:5458=8 3:5456=5"},
        {"m_StampPlacementYList", &C::m_StampPlacementYList, 4, "0:5457=7 2:5458=8 3:5456=5"},
        {"m_LabelPlacementYList", &C::m_LabelPlacementYList, 4, "0:5457=7 2:5458=8 3:5456=5"},
        {"m_LabelPlacementXList", &C::m_LabelPlacementXList, 6, "3:5453=3 4:5454=4 5:5456=5"},
        {"m_LabelFontFamily", &C::m_LabelFontFamily, 41,
         "0:4033=0 8:4039=8 9:4017=9 24:4032=24 25:4001=25 40:4016=40"},
        {"m_FinishOptionList", &C::m_FinishOptionList, 5, "0:5220=0 4:5224=4"},
    };
}

// The rows of the list at the positions the samples name.
void ExpectSamples(const Rows& rows, const std::string& samples, const std::string& what)
{
    std::istringstream in(samples);
    std::string sample;
    while (in >> sample) {
        size_t colon = sample.find(':');
        size_t at = std::stoul(sample.substr(0, colon));
        ASSERT_LT(at, rows.size()) << what << " " << sample;
        EXPECT_EQ(rows[at], ParseRows(sample.substr(colon + 1))[0]) << what << " " << sample;
    }
}

TEST(ConfigLists, TheListsOfAllModelsHaveTheirRowsInOrder)
{
    const std::vector<ListCase> lists = SharedLists();
    for (DWORD model = 0; model < kNUM_MODELS; model++) {
        auto config = MakeConfig(model);
        const std::string what = "model " + std::to_string(model);
        for (const ListCase& list : lists) {
            const Rows rows = ListRows(config.get()->*list.member);
            EXPECT_EQ(rows.size(), list.count) << list.name << ", " << what;
            ExpectSamples(rows, list.samples, list.name + (", " + what));
            std::set<DWORD> values;
            for (const auto& row : rows)
                EXPECT_TRUE(values.insert(row.second).second) << list.name << " value twice";
        }
        // The paper list is the groups in order; the narrow model has no large ISO sizes.
        const bool narrow = model == kMODEL_318P;
        Rows papers;
        for (TVOList group :
             {config->m_PaperGroupStandard, config->m_PaperGroupAnsi, config->m_PaperGroupArch,
              config->m_PaperGroupIso, config->m_PaperGroupCustom}) {
            Rows rows = ListRows(group);
            papers.insert(papers.end(), rows.begin(), rows.end());
        }
        EXPECT_EQ(ListRows(config->m_PaperList), papers) << what;
        const Rows iso = ListRows(config->m_PaperGroupIso);
        EXPECT_EQ(iso.size(), narrow ? 5u : 9u) << what;
        ExpectSamples(iso, narrow ? "0:5704=270 4:5708=274" : "0:5704=270 5:5712=275 8:5709=278",
                      what);
    }
}

TEST(ConfigLists, ThePaperSizeTableHasTwentyEightRowsByCode)
{
    TVOPrinterConfiguration config(u"TVO 2410");
    ASSERT_NE(config.m_PaperSizes, nullptr);
    const struct
    {
        int code;
        LONG x, y;
    } kSamples[] = {{257, 2159, 2794},  {258, 2794, 4318},  {263, 8636, 11176},
                    {270, 8410, 11890}, {274, 2100, 2970},  {278, 2500, 3530},
                    {279, 2159, 2794},  {280, 9144, 32767}, {284, 9144, 32767}};
    for (const auto& s : kSamples) {
        EXPECT_EQ(config.m_PaperSizes[s.code - 257].x, s.x) << "code " << s.code;
        EXPECT_EQ(config.m_PaperSizes[s.code - 257].y, s.y) << "code " << s.code;
    }
    for (int i = 0; i < kNUM_PAPER_SIZES; i++)
        EXPECT_LT(config.m_PaperSizes[i].x, config.m_PaperSizes[i].y) << "portrait, " << 257 + i;
}

// Every identifier a list names, and each text the configuration loads by number, is in the
// resource library, and no two of them share a text where the system tells them apart.
TEST(ConfigResourceStrings, EveryRowOfEveryListHasAText)
{
    std::set<DWORD> ids;
    for (DWORD model = 0; model < kNUM_MODELS; model++) {
        auto config = MakeConfig(model);
        for (const ListCase& list : SharedLists())
            for (const auto& row : ListRows(config.get()->*list.member))
                ids.insert(row.first);
        for (TVOList list : {config->m_PaperList, config->m_SinglePageJobList,
                             config->m_ResolutionList, config->m_PaperGroupIso})
            for (const auto& row : ListRows(list))
                ids.insert(row.first);
    }
    for (DWORD id : {IDS_ROLL_UNKNOWN, IDS_UNITS_INCHES, IDS_UNITS_MM, IDS_PAPER_CUSTOM})
        ids.insert(id);
    for (DWORD id = IDS_ROLL_38IN; id <= IDS_ROLL_54IN; id++)
        ids.insert(id);

    TVOPrinterConfiguration config(u"TVO 2410");
    ASSERT_NE(config.m_hResources, nullptr) << "the test home has no QLMRes.DLL";
    for (DWORD id : ids) {
        std::string text = Utf8(config.getResourceString(id));
        EXPECT_FALSE(text.empty()) << id;
        EXPECT_EQ(text.find("LoadString Error"), std::string::npos) << id << ": " << text;
    }
}

TEST(ConfigResourceStrings, PaperAndRollNamesAreTheirOwn)
{
    TVOPrinterConfiguration config(u"TVO 2410");
    const struct
    {
        UINT id;
        const char* text;
    } kTexts[] = {
        {IDS_PAPER_LETTER, "Letter"},
        {IDS_PAPER_LEDGER, "Ledger"},
        {IDS_PAPER_ANSI_E, "ANSI E"},
        {IDS_PAPER_ARCH_D, "Arch D"},
        {IDS_PAPER_ARCH_30, "Arch 30"},
        {IDS_PAPER_ISO_A0, "ISO A0"},
        {IDS_PAPER_ISO_B4, "ISO B4"},
        {IDS_PAPER_ISO_B1, "ISO B1"},
        {IDS_PAPER_CUSTOM, "Custom"},
        {IDS_UNITS_INCHES, "in"},
        {IDS_UNITS_MM, "mm"},
        {IDS_BIN_MANUAL, "Manual feed"},
        {IDS_FIRMWARE_12_7, "Firmware 12.7"},
        {IDS_FIRMWARE_11_0, "Firmware 11.0"},
        {IDS_ROTATE_90, "90\xC2\xB0"},
    };
    for (const auto& t : kTexts)
        EXPECT_EQ(Utf8(config.getResourceString(t.id)), t.text) << t.id;

    // The widths of all roll names differ from each other.
    std::set<std::string> names;
    for (const auto& row : ListRows(config.m_RollSizeList))
        EXPECT_TRUE(names.insert(Utf8(config.getResourceString(row.first))).second) << row.first;
}

// A firmware row shows the revision whose ordinal is its value.
TEST(ConfigResourceStrings, FirmwareRowsNameTheRevisionOfTheirOrdinal)
{
    const struct
    {
        DWORD ordinal;
        const char* revision;
    } kRevisions[] = {
        {5, "6.1"},   {6, "6.2"},   {7, "7.0"},   {8, "7.5"},   {9, "8.0"},
        {10, "8.5"},  {11, "9.0"},  {12, "9.1"},  {13, "9.2"},  {14, "9.5"},
        {15, "10.0"}, {16, "10.1"}, {17, "10.2"}, {21, "11.0"}, {22, "11.1"},
        {24, "12.0"}, {25, "12.1"}, {26, "12.2"}, {27, "12.5"}, {28, "12.7"},
    };
    TVOPrinterConfiguration config(u"TVO 2410");
    const Rows rows = ListRows(config.m_FirmwareList);
    for (const auto& r : kRevisions) {
        auto row = std::find_if(rows.begin(), rows.end(),
                                [&](const auto& row) { return row.second == r.ordinal; });
        ASSERT_NE(row, rows.end()) << r.ordinal;
        EXPECT_EQ(Utf8(config.getResourceString(row->first)), std::string("Firmware ") + r.revision)
            << r.ordinal;
    }
}

} // namespace
