// Profile files: what a good one yields, and where a bad one is reported.
#include "profile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace pjlsim;

namespace {

TEST(PjlsimProfile, DriverRollNames)
{
    const std::pair<const char*, const char*> rows[] = {
        {"Roll 36in", "ROLL_36"},   {"Roll A0", "ROLL_A0"},      {"Roll 620mm", "ROLL_A1+"},
        {"Roll 860mm", "ROLL_A0+"}, {"Roll 880mm", "ROLL_A0++"}, {"Roll B3", "ROLL_B3"},
        {"Roll 11in", "ROLL_11"},   {"Roll 54in", "ROLL_54"}};
    for (auto [name, keyword] : rows) {
        EXPECT_EQ(RollKeywordForName(name), std::string(keyword)) << name;
    }
    // No keyword gives these names: the driver has no row for them.
    EXPECT_FALSE(RollKeywordForName("Roll 440mm"));
    EXPECT_FALSE(RollKeywordForName("roll 36in"));
}

TEST(PjlsimProfile, MalformedProfilesNameFileAndLine)
{
    const struct
    {
        const char* text;
        int line;
        const char* message;
    } rows[] = {
        {"id = X\nbogus = 1\n", 2, "unknown key \"bogus\""},
        {"\n# comment\nroll1 = ROLL_36, FULL\n", 3, "three fields"},
        {"roll7 = ROLL_36, FULL, PAPER\n", 1, "roll1 to roll6"},
        {"roll1 = ROLL_99, FULL, PAPER\n", 1, "unknown roll size \"ROLL_99\""},
        {"roll1 = ROLL_36, HALF, PAPER\n", 1, "roll state \"HALF\""},
        {"roll1 = ROLL_36, FULL, \"CARDBOARD\"\n", 1, "quoted media type \"CARDBOARD\""},
        {"roll1 = ROLL_36, FULL, PRESENTATION_360\n", 1, "media type \"PRESENTATION_360\""},
        {"memory = 16MB\n", 1, "memory must be a whole number"},
        {"memory = 99999999999\n", 1, "memory must be a whole number"},
        {"memory = 4294967295\n", 1, "cannot be read by the driver"},
        {"firmware = 1\r\nid = A\r\nfirmware = 2\r\n", 3, "given again (first on line 1)"},
        {"font = HELV\n", 1, "a font is"},
        {"font = HE\"LV, Helvetica\n", 1, "double quote"},
        {"font = HELV, Helvetica, weight=3\n", 1, "unknown font option \"weight\""},
        {"stamp = ,size=3\n", 1, "stamp object name is empty"},
        {"label-font =\n", 1, "label-font is empty"},
        {"finisher.program = P1, fanfold=SIDEWAYS\n", 1, "fanfold \"SIDEWAYS\""},
        {"finisher.program = P1, width\n", 1, "not of the form name=value"},
        {"finisher.program = P1, colour=red\n", 1, "unknown program field \"colour\""},
        {"finisher.row-end = CR\n", 1, "CRLF or LF"},
        {"justtext\n", 1, "expected \"key = value\""},
        {"= 5\n", 1, "key before '=' is missing"},
        {"online = yes\n", 1, "TRUE or FALSE"},
        {"accounting = MAYBE\n", 1, "accounting \"MAYBE\""},
        {"\xff\xfe=\x01\n", 1, "unknown key"},
    };
    for (const auto& row : rows) {
        std::string error;
        EXPECT_FALSE(ParseProfile(row.text, "bad.profile", &error)) << row.text;
        const std::string where = "bad.profile:" + std::to_string(row.line) + ": ";
        EXPECT_EQ(error.rfind(where, 0), 0u) << row.text << " gave: " << error;
        EXPECT_NE(error.find(row.message), std::string::npos) << row.text << " gave: " << error;
    }

    // A zero byte in the middle of a file is reported, not taken as the end of the text.
    std::string error;
    const std::string withZero("id = A\nid2 = B\0C\n", 17);
    EXPECT_FALSE(ParseProfile(withZero, "zero.profile", &error));
    EXPECT_EQ(error, "zero.profile:2: the line holds a zero byte");
}

TEST(PjlsimProfile, FilesOnDisk)
{
    std::string error;
    EXPECT_FALSE(LoadProfile("/nonexistent/dir/x.profile", &error));
    EXPECT_EQ(error.rfind("/nonexistent/dir/x.profile: cannot open the profile", 0), 0u) << error;
    // A directory opens but cannot be read as a profile.
    EXPECT_FALSE(LoadProfile("/", &error));
    EXPECT_EQ(error.rfind("/: ", 0), 0u) << error;

    const auto path = std::filesystem::temp_directory_path() /
                      ("pjlsim-profile-" + std::to_string(getpid()) + ".profile");
    std::ofstream(path) << "id = ONE\nroll1 = ROLL_36, FULL, PAPER\nroll1 = ROLL_24, FULL, PAPER\n";
    EXPECT_FALSE(LoadProfile(path.string(), &error));
    EXPECT_EQ(error, path.string() + ":3: \"roll1\" is given again (first on line 2)");
    std::filesystem::remove(path);
}

TEST(PjlsimProfile, ShippedProfilesAndTheBuiltInOne)
{
    const std::string dir = QLM_TEST_SOURCE_DIR "/tools/pjlsim/profiles/";
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir)) {
        if (entry.path().extension() != ".profile") {
            continue;
        }
        std::string error;
        EXPECT_TRUE(LoadProfile(entry.path().string(), &error)) << error;
        ++count;
    }
    EXPECT_GE(count, 3);

    std::string error;
    auto builtIn = ParseProfile(DefaultProfileText(), "built-in", &error);
    ASSERT_TRUE(builtIn) << error;
    auto plan2440 = LoadProfile(dir + "plan2440.profile", &error);
    ASSERT_TRUE(plan2440) << error;
    EXPECT_EQ(builtIn->id, plan2440->id);
    EXPECT_EQ(builtIn->id, "Tarvo Plan Output System 2440");
    EXPECT_TRUE(builtIn->finisher.present);
    EXPECT_GE(builtIn->finisher.programs.size(), 3u);

    auto plan318p = LoadProfile(dir + "plan318p.profile", &error);
    ASSERT_TRUE(plan318p) << error;
    EXPECT_FALSE(plan318p->finisher.present);
}

} // namespace
