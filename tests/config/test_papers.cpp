// The paper answers: DC_PAPERS, DC_PAPERSIZE and DC_PAPERNAMES agree row by row for every
// family mask, with user forms and the custom row; and the limits of a custom size.
#include "configtest.h"

#include <cstring>

using namespace configtest;

namespace {

std::unique_ptr<DEVMODEEX> Record(DWORD show, DWORD units = kDISTANCE_INCHES)
{
    auto dm = std::make_unique<DEVMODEEX>();
    dm->dmxShowPaperTypes = show;
    dm->dmxUnits = units;
    dm->dmxPaperWidth = TVOFixed(2159);
    dm->dmxPaperLength = TVOFixed(2794);
    return dm;
}

void AddForm(TVOPrinterConfiguration& config, const char16_t* name, DWORD width, DWORD length)
{
    USERFORM& form = config.m_UserForms[config.m_UserFormCount++];
    memset(&form, 0, sizeof(form));
    WstrNCopy(form.name, name, 32);
    form.width = width;
    form.length = length;
}

struct Answer
{
    std::vector<WORD> papers;
    std::vector<POINT> sizes;
    std::vector<std::string> names;
};

// All three answers, each from a buffer sized by a first call without one, with a sentinel
// row behind it that must stay untouched.
Answer Ask(TVOPrinterConfiguration& config, const DEVMODEEX* dm)
{
    Answer answer;
    int count = config.getPaperInfo(dm, nullptr, DC_PAPERS);
    EXPECT_EQ(config.getPaperInfo(dm, nullptr, DC_PAPERSIZE), count);
    EXPECT_EQ(config.getPaperInfo(dm, nullptr, DC_PAPERNAMES), count);

    answer.papers.assign(count + 1, 0xBEEF);
    EXPECT_EQ(config.getPaperInfo(dm, answer.papers.data(), DC_PAPERS), count);
    EXPECT_EQ(answer.papers.back(), 0xBEEF) << "DC_PAPERS wrote past its count";
    answer.papers.pop_back();

    answer.sizes.assign(count + 1, POINT{-7, -7});
    EXPECT_EQ(config.getPaperInfo(dm, answer.sizes.data(), DC_PAPERSIZE), count);
    EXPECT_EQ(answer.sizes.back().x, -7) << "DC_PAPERSIZE wrote past its count";
    answer.sizes.pop_back();

    std::vector<WCHAR> names((count + 1) * kPAPER_NAME_CCH, u'#');
    EXPECT_EQ(config.getPaperInfo(dm, names.data(), DC_PAPERNAMES), count);
    EXPECT_EQ(names[count * kPAPER_NAME_CCH], u'#') << "DC_PAPERNAMES wrote past its count";
    for (int i = 0; i < count; i++) {
        const WCHAR* name = &names[i * kPAPER_NAME_CCH];
        size_t length = 0;
        while (length < kPAPER_NAME_CCH && name[length])
            length++;
        answer.names.push_back(host::Utf16ToUtf8(std::u16string(name, length)));
    }
    return answer;
}

std::vector<WORD> Codes(std::initializer_list<std::pair<int, int>> ranges)
{
    std::vector<WORD> codes;
    for (auto [first, last] : ranges)
        for (int code = first; code <= last; code++)
            codes.push_back(static_cast<WORD>(code));
    return codes;
}

TEST(ConfigPapers, TheFamilyMaskChoosesTheRowsInFamilyOrder)
{
    const struct
    {
        DWORD show;
        std::vector<WORD> full; // models other than 6
        std::vector<WORD> narrow;
    } kCases[] = {
        {0, {256}, {256}},
        {kSHOW_STANDARD, Codes({{257, 258}, {256, 256}}), Codes({{257, 258}, {256, 256}})},
        {kSHOW_ANSI, Codes({{259, 263}, {256, 256}}), Codes({{259, 263}, {256, 256}})},
        {kSHOW_ARCH, Codes({{264, 269}, {256, 256}}), Codes({{264, 269}, {256, 256}})},
        {kSHOW_ISO, Codes({{270, 278}, {256, 256}}), Codes({{270, 274}, {256, 256}})},
        {kSHOW_USER_FORMS, Codes({{281, 282}, {256, 256}}), Codes({{281, 282}, {256, 256}})},
        {kSHOW_ISO | kSHOW_STANDARD, Codes({{257, 258}, {270, 278}, {256, 256}}),
         Codes({{257, 258}, {270, 274}, {256, 256}})},
        {0xFFFF, Codes({{257, 278}, {281, 282}, {256, 256}}),
         Codes({{257, 274}, {281, 282}, {256, 256}})},
        {0xFFE0, {256}, {256}}, // bits above 16 mean nothing
    };
    for (DWORD model : {kMODEL_427, kMODEL_318P, kMODEL_3320A}) {
        auto config = MakeConfig(model);
        AddForm(*config, u"Site plan", 5940, 8410);
        AddForm(*config, u"Banner", 9144, 30000);
        for (const auto& c : kCases) {
            SCOPED_TRACE("model " + std::to_string(model) + ", mask " + std::to_string(c.show));
            auto dm = Record(c.show);
            Answer answer = Ask(*config, dm.get());
            EXPECT_EQ(answer.papers, model == kMODEL_318P ? c.narrow : c.full);
            // Each row's size and name belong to its code.
            for (size_t i = 0; i < answer.papers.size(); i++) {
                WORD code = answer.papers[i];
                if (code >= 257 && code <= 278) {
                    EXPECT_EQ(answer.sizes[i].x, config->m_PaperSizes[code - 257].x) << code;
                    EXPECT_EQ(answer.sizes[i].y, config->m_PaperSizes[code - 257].y) << code;
                }
            }
            EXPECT_EQ(answer.names.back(), "Custom");
        }
    }
}

TEST(ConfigPapers, NamesAndSizesOfTheStandardRows)
{
    TVOPrinterConfiguration config(u"TVO 2410");
    auto dm = Record(kSHOW_STANDARD | kSHOW_ARCH | kSHOW_ISO);
    Answer answer = Ask(config, dm.get());
    const std::vector<std::string> kNames = {
        "Letter", "Ledger", "Arch A", "Arch B", "Arch C", "Arch D", "Arch E", "Arch 30", "ISO A0",
        "ISO A1", "ISO A2", "ISO A3", "ISO A4", "ISO B1", "ISO B2", "ISO B3", "ISO B4",  "Custom"};
    EXPECT_EQ(answer.names, kNames);
    EXPECT_EQ(answer.sizes[0].x, 2159);
    EXPECT_EQ(answer.sizes[0].y, 2794);
    EXPECT_EQ(answer.sizes[8].x, 8410); // ISO A0
    EXPECT_EQ(answer.sizes[8].y, 11890);
}

TEST(ConfigPapers, UserFormsShowTheirSizesInTheRecordsUnits)
{
    TVOPrinterConfiguration config(u"TVO 2410");
    AddForm(config, u"Plan", 2540, 5080);
    // A name of all 32 characters has no terminator in the record; the width follows it.
    AddForm(config, u"ABCDEFGHIJKLMNOPQRSTUVWXYZ012345", 6000, 9000);
    EXPECT_EQ(config.m_UserForms[1].name[31], u'5');

    auto inches = Record(kSHOW_USER_FORMS, kDISTANCE_INCHES);
    Answer a = Ask(config, inches.get());
    ASSERT_EQ(a.names.size(), 3u);
    EXPECT_EQ(a.names[0], "Plan (10.00x20.00in)");
    EXPECT_EQ(a.names[1], "ABCDEFGHIJKLMNOPQRSTUVWXYZ012345 (23.62x35.43in)");
    EXPECT_EQ(a.sizes[0].x, 2540);
    EXPECT_EQ(a.sizes[0].y, 5080);
    EXPECT_EQ(a.sizes[1].x, 6000);
    EXPECT_EQ(a.sizes[1].y, 9000);

    auto mm = Record(kSHOW_USER_FORMS, kDISTANCE_MM);
    Answer b = Ask(config, mm.get());
    EXPECT_EQ(b.names[0], "Plan (254.0x508.0mm)");
    EXPECT_EQ(b.names[1], "ABCDEFGHIJKLMNOPQRSTUVWXYZ012345 (600.0x900.0mm)");
    EXPECT_EQ(b.papers, (std::vector<WORD>{281, 282, 256}));
}

TEST(ConfigPapers, AFormInUnknownUnitsStillGivesItsRow)
{
    SwitchGuard guard;
    TVOPrinterConfiguration config(u"TVO 2410");
    AddForm(config, u"Plan", 2540, 5080);
    auto dm = Record(kSHOW_USER_FORMS, 7);
    Answer answer = Ask(config, dm.get());
    EXPECT_EQ(answer.papers, (std::vector<WORD>{281, 256}));
    EXPECT_EQ(answer.names[0].rfind("Plan (", 0), 0u) << answer.names[0];
}

TEST(ConfigPapers, TheCustomRowRoundsToWholeTenthsAndKeepsLongPlots)
{
    TVOPrinterConfiguration config(u"TVO 2410");
    const struct
    {
        int32_t width, length; // thousandths of tenths of a millimetre
        LONG x, y;
    } kCases[] = {
        {2159000, 2794000, 2159, 2794},
        {2159499, 2794500, 2159, 2795},
        {9144000, 30000000, 9144, 30000},
        {9144000, 40000000, 9144, 40000}, // more than a 16-bit field holds
    };
    for (const auto& c : kCases) {
        auto dm = Record(0);
        dm->dmxPaperWidth = TVOFixed::fromThousandths(c.width);
        dm->dmxPaperLength = TVOFixed::fromThousandths(c.length);
        POINT size = {};
        EXPECT_EQ(config.getPaperInfo(dm.get(), &size, DC_PAPERSIZE), 1);
        EXPECT_EQ(size.x, c.x);
        EXPECT_EQ(size.y, c.y);
    }
}

TEST(ConfigPapers, LongPlotSizesGoIntoTheRecordAtScale100)
{
    TVOPrinterConfiguration config(u"TVO 2410");
    auto dm = Record(0);
    dm->dmPublic.dmScale = 55;
    POINT size = {};
    short scale = 0;
    config.getLongPlotSizes(dm.get(), 9144, 40000, &size, &scale);
    EXPECT_EQ(size.x, 9144);
    EXPECT_EQ(size.y, 40000);
    EXPECT_EQ(scale, 100);
    EXPECT_EQ(dm->dmPublic.dmScale, 100);
    EXPECT_EQ(dm->dmxPaperWidth.getThousandths(), 9144000);
    EXPECT_EQ(dm->dmxPaperLength.getThousandths(), 40000000);
}

TEST(ConfigPapers, BadParametersGiveNoPapers)
{
    SwitchGuard guard;
    g_bTraceTVOConfig = TRUE;
    TraceCapture capture;
    TVOPrinterConfiguration config(u"TVO 2410");
    WORD papers[4] = {1, 2, 3, 4};
    EXPECT_EQ(config.getPaperInfo(nullptr, papers, DC_PAPERS), 0);
    EXPECT_TRUE(capture.contains("bad parameter lpEnv == NULL")) << capture.text();
    auto dm = Record(0xFFFF);
    EXPECT_EQ(config.getPaperInfo(dm.get(), papers, DC_BINS), 0);
    EXPECT_EQ(config.getPaperInfo(dm.get(), nullptr, 0), 0);
    EXPECT_TRUE(capture.contains("bad parameter wIndex not valid")) << capture.text();
    EXPECT_EQ(papers[0], 1);
}

TEST(ConfigPapers, AStoredFormCountAboveTheTableIsNotFollowed)
{
    TVOPrinterConfiguration config(u"TVO 2410");
    config.m_UserFormCount = 1000;
    auto dm = Record(kSHOW_USER_FORMS);
    EXPECT_EQ(config.getPaperInfo(dm.get(), nullptr, DC_PAPERS), kMAX_USER_FORMS + 1);
    std::vector<WORD> papers(kMAX_USER_FORMS + 1);
    EXPECT_EQ(config.getPaperInfo(dm.get(), papers.data(), DC_PAPERS), kMAX_USER_FORMS + 1);
    EXPECT_EQ(papers[kMAX_USER_FORMS - 1], PAPER_USER_BASE + kMAX_USER_FORMS - 1);
}

// ---- Limits of a custom size -------------------------------------------------------------

TEST(ConfigPaperLimits, LimitsInBothUnitsAndTheWideModel)
{
    using C = TVOPrinterConfiguration;
    const struct
    {
        const char* what;
        TVOFixed value;
        int32_t expected;
    } kCases[] = {
        {"min width in", C::getMinPaperWidth(kFIXED_INCHES), 8000},
        {"min width mm", C::getMinPaperWidth(kFIXED_MM), 203200},
        {"max width in", C::getMaxPaperWidth(kFIXED_INCHES, FALSE), 36000},
        {"max width in, wide", C::getMaxPaperWidth(kFIXED_INCHES, TRUE), 54000},
        {"max width mm", C::getMaxPaperWidth(kFIXED_MM, FALSE), 914400},
        {"max width mm, wide", C::getMaxPaperWidth(kFIXED_MM, TRUE), 1371600},
        {"min length in", C::getMinPaperLength(kFIXED_INCHES), 10000},
        {"min length mm", C::getMinPaperLength(kFIXED_MM), 254000},
        {"max length in", C::getMaxPaperLength(kFIXED_INCHES), 960000},
        {"max length mm", C::getMaxPaperLength(kFIXED_MM), 24384000},
    };
    for (const auto& c : kCases)
        EXPECT_EQ(c.value.getThousandths(), c.expected) << c.what;
}

TEST(ConfigPaperLimits, AnUnknownUnitAssertsAndGivesZeroOrOne)
{
    SwitchGuard guard;
    g_bTraceASSERT = TRUE;
    TraceCapture capture;
    using C = TVOPrinterConfiguration;
    EXPECT_EQ(C::getMinPaperWidth(2).getThousandths(), 0);
    EXPECT_EQ(C::getMinPaperLength(2).getThousandths(), 0);
    EXPECT_EQ(C::getMaxPaperWidth(2, TRUE).getThousandths(), 1000);
    EXPECT_EQ(C::getMaxPaperLength(0xFFFFFFFF).getThousandths(), 1000);
    EXPECT_TRUE(capture.contains("***ASSERT***")) << capture.text();
}

} // namespace
