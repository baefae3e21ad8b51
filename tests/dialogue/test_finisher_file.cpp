// A finisher description file into the record's finisher block.

#include "driver/config/tvoconfg.h"
#include "driver/devmode/tvodm.h"
#include "driver/foundation/wstr.h"

#include "dialogue/decodefixture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using decodefixture::Narrow;

namespace {

std::u16string FixturePath(const char* name)
{
    std::string path = std::string(QLM_TEST_SOURCE_DIR) + "/tests/fixtures/finisher/" + name;
    return std::u16string(path.begin(), path.end());
}

struct FileResult
{
    DWORD result;
    DEVMODEEX before;
    DEVMODEEX after;
};

// Reads the file into a default record whose finisher block is filled with a marker, so that
// what the file does not set shows.
FileResult ReadFinisherFile(const char* name)
{
    TVOPrinterConfiguration config(TEXT("Tarvo Plan 2440"));
    TVODevMode record;
    DEVMODEEX* dm = record.m_lpDM;
    memset(&dm->dmxFinisher, 0xA5, sizeof(dm->dmxFinisher));
    FileResult r{};
    r.before = *dm;
    std::u16string path = FixturePath(name);
    r.result = config.addFInisherFromFileToDevmode(reinterpret_cast<LPCWSTR>(path.c_str()), dm);
    r.after = *dm;
    return r;
}

constexpr WORD kMARK = 0xA5A5;

TEST(FinisherFile, AGoodFileFillsTheBlock)
{
    FileResult r = ReadFinisherFile("good.ini");
    ASSERT_EQ(5u, r.result);
    const TVOFinisherInfo& f = r.after.dmxFinisher;
    EXPECT_EQ("Folder 1", Narrow(f.Model));
    EXPECT_EQ("1.0", Narrow(f.Version));
    EXPECT_EQ(2u, f.numPrograms);
    EXPECT_EQ(20, f.maxMargin) << "the file's Margin is the largest margin";
    EXPECT_EQ(kMARK, f.minMargin) << "not in the file";
    EXPECT_EQ(3, f.numBins);
    EXPECT_EQ(1, f.titleBlock);

    const struct
    {
        const WORD* list;
        WORD expected[4]; // slots 0 to 3
        const char* what;
    } lists[] = {
        {f.accordionFolds, {kMARK, 2, 8, kMARK}, "accordion: from slot 1, up to the count"},
        {f.crossFolds, {kMARK, 2, kMARK, kMARK}, "cross"},
        {f.punches, {kMARK, 2, 1, kMARK}, "punch: PUNCH_5 is OTHER"},
        {f.tabs, {kMARK, 2, 1, kMARK}, "tab: TABS is the file's word, TAB is OTHER"},
    };
    for (const auto& list : lists)
        for (int i = 0; i < 4; i++)
            EXPECT_EQ(list.expected[i], list.list[i]) << list.what << ", slot " << i;

    const TVOFinisherProgram& a = f.programs[0];
    EXPECT_EQ("FOLD_ANSI_A", Narrow(a.name));
    EXPECT_EQ(210, a.width) << "its section is found whatever the case";
    EXPECT_EQ(297, a.length);
    EXPECT_EQ(20, a.margin);
    EXPECT_EQ(1, a.title);
    EXPECT_EQ(2, a.fanFold);
    EXPECT_EQ(2, a.crossFold);
    EXPECT_EQ(0, a.punch);
    EXPECT_EQ(3, a.tab);
    EXPECT_EQ(kMARK, a.bins) << "bins, maxLength, edge and delivery are not in the file";
    EXPECT_EQ(static_cast<LONG>(0xA5A5A5A5), a.maxLength);
    EXPECT_EQ(kMARK, a.edge);
    EXPECT_EQ(kMARK, a.sheetDelivery);

    const TVOFinisherProgram& b = f.programs[1];
    EXPECT_EQ("Endless", Narrow(b.name));
    EXPECT_EQ(914, b.width);
    EXPECT_EQ(0, b.length) << "a bad number reads 0";
    EXPECT_EQ(0, b.margin) << "a missing number reads 0";
    EXPECT_EQ(8, b.fanFold);
    EXPECT_EQ(10, b.crossFold);
    EXPECT_EQ(4, b.punch);
    EXPECT_EQ(1, b.tab) << "a missing name is OTHER";
    EXPECT_EQ(0xA5, reinterpret_cast<const BYTE*>(&f.programs[2])[0]) << "program 3 untouched";
}

TEST(FinisherFile, FilesWithoutTheirFirstThreeKeysChangeNothing)
{
    for (const char* name : {"noversion.ini", "noprograms.ini", "missing.ini"}) {
        FileResult r = ReadFinisherFile(name);
        EXPECT_EQ(0u, r.result) << name;
        EXPECT_EQ(0, memcmp(&r.before, &r.after, sizeof(DEVMODEEX))) << name;
    }
}

TEST(FinisherFile, AbsurdCountsAreCutToTheBlock)
{
    FileResult r = ReadFinisherFile("absurd.ini");
    ASSERT_EQ(5u, r.result);
    const TVOFinisherInfo& f = r.after.dmxFinisher;
    EXPECT_EQ(std::string(63, 'M'), Narrow(f.Model));
    EXPECT_EQ(std::string(15, 'V'), Narrow(f.Version));
    EXPECT_EQ(static_cast<DWORD>(kFINISHER_MAX_PROGRAMS), f.numPrograms);
    for (int i = 1; i <= 32; i++) {
        EXPECT_EQ(5, f.accordionFolds[i]) << i;
        EXPECT_EQ(10, f.crossFolds[i]) << i;
    }
    for (int i = 1; i <= 16; i++) {
        EXPECT_EQ(3, f.punches[i]) << i;
        EXPECT_EQ(2, f.tabs[i]) << i;
    }
    EXPECT_EQ("Program_number_20_with_a_name_f", Narrow(f.programs[19].name)) << "31 characters";
    EXPECT_EQ(0, f.programs[19].width) << "no section of that name";
    EXPECT_EQ(1, f.programs[19].fanFold);
    // Whatever lies behind the block stays as it was.
    const size_t behind = offsetof(DEVMODEEX, dmxFinisher) + sizeof(TVOFinisherInfo);
    EXPECT_EQ(0,
              memcmp(reinterpret_cast<const BYTE*>(&r.before) + behind,
                     reinterpret_cast<const BYTE*>(&r.after) + behind, sizeof(DEVMODEEX) - behind));
    EXPECT_EQ(0, memcmp(&r.before, &r.after, offsetof(DEVMODEEX, dmxFinisher)));
}

} // namespace
