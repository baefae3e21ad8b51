// The constant list tables and the paper size table, and the strings that name their rows.
#include "configtest.h"

#include "resources/qlmres.h"

#include <algorithm>
#include <set>

using namespace configtest;

namespace {

// The rows of a list, "id=value" in list order.
struct ListCase
{
    const char* name;
    TVOList TVOPrinterConfiguration::*member;
    std::string rows;
};

std::string Range(DWORD firstId, DWORD lastId, DWORD firstValue)
{
    std::string text;
    for (DWORD id = firstId; id <= lastId; id++)
        text += " " + std::to_string(id) + "=" + std::to_string(firstValue++);
    return text;
}

std::vector<ListCase> SharedLists()
{
    using C = TVOPrinterConfiguration;
    return {
        {"m_FirmwareList", &C::m_FirmwareList,
         "5913=5 5915=6 5916=7 5917=8 5918=9 5919=10 5920=11 5921=12 5922=13 5923=14 5924=15 "
         "5925=16 5926=17 5928=18 5929=19 5930=20 5927=21 5931=22 5932=23 5933=24 5934=25 5935=26 "
         "5936=27 5937=28"},
        {"m_PaperGroupStandard", &C::m_PaperGroupStandard, "5713=257 5714=258"},
        {"m_PaperGroupAnsi", &C::m_PaperGroupAnsi, "5715=259 5716=260 5717=261 5718=262 5719=263"},
        {"m_PaperGroupArch", &C::m_PaperGroupArch,
         "5720=264 5721=265 5722=266 5701=267 5702=268 5703=269"},
        {"m_PaperGroupCustom", &C::m_PaperGroupCustom, "5728=256"},
        {"m_UserMediaCategoryList", &C::m_UserMediaCategoryList,
         "5723=0 5724=1 5725=2 5726=3 5727=4 5610=5 5611=6 5614=7 5615=8 5617=9 5618=10 5619=11 "
         "5620=12 5621=13 5604=21 5631=22 5603=23 5630=24 5602=25 5641=26 5605=27 5629=28 5608=29 "
         "5601=30 5606=31 5607=32 5609=33"},
        {"m_BinList", &C::m_BinList,
         "5401=257 5402=258 5403=259 5404=260 5405=261 5406=262 5252=4 5251=7"},
        {"m_MediaTypeList", &C::m_MediaTypeList, "5253=0 5254=1 5255=2 5256=3"},
        {"m_RollSizeList", &C::m_RollSizeList,
         "5610=0 5611=1 5614=2 5615=3 5617=4 5618=5 5619=6 5620=7 5621=8 5604=16 5631=17 5603=18 "
         "5630=19 5602=20 5641=21 5605=22 5629=23 5608=24 5601=25 5606=26 5607=27 5609=28"},
        {"m_SheetSizeList", &C::m_SheetSizeList,
         "5713=1 5714=2 5715=3 5716=4 5717=5 5718=6 5719=7 5720=8 5721=9 5722=10 5701=11 5702=12 "
         "5703=13 5704=14 5705=15 5706=16 5707=17 5708=18 5709=22 5710=21 5711=20 5712=19"},
        {"m_ScaleToPaperList", &C::m_ScaleToPaperList,
         Range(5713, 5722, 1) + Range(5701, 5708, 11) +
             " 5712=19 5711=20 5710=21 5709=22 5610=23 5611=24 5614=25 5615=26 5617=27 5618=28 "
             "5619=29 5620=30 5621=31 5604=39 5631=40 5603=41 5630=42 5602=43 5605=44 5629=45 "
             "5608=46 5601=47 5606=48 5607=49 5609=50"},
        {"m_ReservedList", &C::m_ReservedList, "5802=0 5803=1 5804=2 5801=3"},
        {"m_FinishingList", &C::m_FinishingList, "5217=0 5218=8 5219=9"},
        {"m_BannerList", &C::m_BannerList, "5200=0 5201=1 5202=2 5203=3"},
        {"m_LabelList", &C::m_LabelList, "5204=0 5205=1 5206=2"},
        {"m_StampList", &C::m_StampList, "5207=0 5208=1 5209=2"},
        {"m_PlotNestList", &C::m_PlotNestList, "5210=0 5211=1 5212=2"},
        {"m_MismatchList", &C::m_MismatchList, "5213=0 5214=1 5215=2 5216=3"},
        {"m_QualityModeList", &C::m_QualityModeList, "5026=0 5001=1 5002=2"},
        {"m_RenderModeList", &C::m_RenderModeList, "5230=0 5231=1"},
        {"m_GraphicsList2", &C::m_GraphicsList2, "5022=1 5023=0 5024=2"},
        {"m_VectorList", &C::m_VectorList, "5034=0 5035=1"},
        {"m_RasterMethodList", &C::m_RasterMethodList, "5039=0 5040=1"},
        {"m_GrayscaleList", &C::m_GrayscaleList, "5036=0 5037=1"},
        {"m_GraphicsList1", &C::m_GraphicsList1, "5112=0 5113=1 5114=2 5115=3 5116=4"},
        {"m_StampRotationList", &C::m_StampRotationList, "5112=0 5113=1 5114=2 5115=3"},
        {"m_RenderList", &C::m_RenderList, "5350=0 5351=1 5352=2"},
        {"m_MarginPlacementXList", &C::m_MarginPlacementXList, "5450=0 5452=2 5451=1 5456=5"},
        {"m_StampPlacementXList", &C::m_StampPlacementXList, "5450=0 5452=2 5451=1 5456=5"},
        {"m_MarginPlacementYList", &C::m_MarginPlacementYList, "5457=7 5452=2 5458=8 5456=5"},
        {"m_StampPlacementYList", &C::m_StampPlacementYList, "5457=7 5452=2 5458=8 5456=5"},
        {"m_LabelPlacementYList", &C::m_LabelPlacementYList, "5457=7 5452=2 5458=8 5456=5"},
        {"m_LabelPlacementXList", &C::m_LabelPlacementXList,
         "5450=0 5452=2 5451=1 5453=3 5454=4 5456=5"},
        {"m_LabelFontFamily", &C::m_LabelFontFamily,
         "4033=0 4035=1 4037=2 4034=3 4036=4 4040=5 4041=6 4038=7 4039=8" + Range(4017, 4032, 9) +
             " 4001=25 4002=26 4004=27 4005=28 4007=29 4006=30 4012=31 4013=32 4015=33 4014=34 "
             "4008=35 4009=36 4011=37 4010=38 4003=39 4016=40"},
        {"m_FinishOptionList", &C::m_FinishOptionList, "5220=0 5221=1 5222=2 5223=3 5224=4"},
    };
}

const char* const kFullPaperList =
    "5713=257 5714=258 5715=259 5716=260 5717=261 5718=262 5719=263 5720=264 5721=265 5722=266 "
    "5701=267 5702=268 5703=269 5704=270 5705=271 5706=272 5707=273 5708=274 5712=275 5711=276 "
    "5710=277 5709=278 5728=256";
const char* const kNarrowPaperList =
    "5713=257 5714=258 5715=259 5716=260 5717=261 5718=262 5719=263 5720=264 5721=265 5722=266 "
    "5701=267 5702=268 5703=269 5704=270 5705=271 5706=272 5707=273 5708=274 5728=256";

TEST(ConfigLists, TheListsOfAllModelsHaveTheirRowsInOrder)
{
    const std::vector<ListCase> lists = SharedLists();
    for (DWORD model = 0; model < kNUM_MODELS; model++) {
        auto config = MakeConfig(model);
        for (const ListCase& list : lists)
            EXPECT_EQ(ListRows(config.get()->*list.member), ParseRows(list.rows))
                << list.name << ", model " << model;
        const bool narrow = model == kMODEL_318P;
        EXPECT_EQ(ListRows(config->m_PaperList),
                  ParseRows(narrow ? kNarrowPaperList : kFullPaperList))
            << "model " << model;
        EXPECT_EQ(ListRows(config->m_PaperGroupIso),
                  ParseRows(narrow ? "5704=270 5705=271 5706=272 5707=273 5708=274"
                                   : "5704=270 5705=271 5706=272 5707=273 5708=274 5712=275 "
                                     "5711=276 5710=277 5709=278"))
            << "model " << model;
    }
}

TEST(ConfigLists, ThePaperSizeTableHasTwentyEightRowsByCode)
{
    const POINT kSizes[kNUM_PAPER_SIZES] = {
        {2159, 2794},  {2794, 4318},  {2159, 2794},  {2794, 4318}, {4318, 5588}, {5588, 8636},
        {8636, 11176}, {2286, 3048},  {3048, 4572},  {4572, 6096}, {6096, 9144}, {9144, 12192},
        {7620, 10668}, {8410, 11890}, {5940, 8410},  {4200, 5940}, {2970, 4200}, {2100, 2970},
        {7070, 10000}, {5000, 7070},  {3530, 5000},  {2500, 3530}, {2159, 2794}, {9144, 32767},
        {9144, 32767}, {9144, 32767}, {9144, 32767}, {9144, 32767}};
    TVOPrinterConfiguration config(u"TVO 2410");
    ASSERT_NE(config.m_PaperSizes, nullptr);
    for (int i = 0; i < kNUM_PAPER_SIZES; i++) {
        EXPECT_EQ(config.m_PaperSizes[i].x, kSizes[i].x) << "code " << 257 + i;
        EXPECT_EQ(config.m_PaperSizes[i].y, kSizes[i].y) << "code " << 257 + i;
    }
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
