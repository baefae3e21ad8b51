// The replies read back through the driver's own parser: every shipped profile parses to its
// end, and the small profile yields exactly the tokens its lines stand for.
#include "driver/dialogue/tvoparsepjl.h"
#include "pjlsim_support.h"
#include "replies.h"
#include "server.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

using namespace pjlsim;

namespace {

const char* const kConversation[] = {
    "@PJL INFO ID",       "@PJL INFO CONFIG",          "@PJL INFO VARIABLES",
    "@PJL INFO TVOFONTS", "@PJL INFO TVORASTERSTAMPS", "@PJL INFO TVOFINISHER",
    "@PJL INFO STATUS",   "@PJL ECHO TVOSYNC 7"};

std::string Replies(const Profile& profile)
{
    std::string all;
    for (const char* query : kConversation) {
        all += BuildReply(profile, query).value_or("");
    }
    return all;
}

struct Parsed
{
    int status = -1;
    std::vector<PJLTokenValue> tokens;
};

Parsed Parse(const std::string& text)
{
    Parsed out;
    PJLTokenValue tokens[kPJL_MAX_TOKENS] = {};
    DWORD count = 0;
    const char* end = nullptr;
    TVOParsePJL parser;
    out.status = parser.getAllPJLTokens(text.c_str(), kPJL_MAX_TOKENS, tokens, &count, &end);
    out.tokens.assign(tokens, tokens + count);
    return out;
}

// The text of a string value up to its line end, as the decoder cuts a line value.
std::string LineAt(const std::string& text, DWORD offset)
{
    std::size_t end = text.find_first_of("\r\n\f", offset);
    return text.substr(offset, end - offset);
}

TEST(PjlsimGrammar, SmallProfileYieldsItsTokens)
{
    const std::string text = Replies(pjlsim_test::SmallProfile());
    const Parsed parsed = Parse(text);
    EXPECT_EQ(parsed.status, STATUS_OK);

    // 32 tokens in the order of the lines; the empty manual type stores none. Samples of each
    // reply: the token, and its number or the line at its value's offset.
    ASSERT_EQ(parsed.tokens.size(), 32u);
    const struct
    {
        size_t at;
        DWORD token;
        DWORD number;     // when text is null
        const char* text; // the line at the value's offset
    } samples[] = {
        {0, 0x50000, 1024, nullptr}, // MEMORY
        {1, 0x50004, 0, "12.5"},     // ESS SW REV
        {5, 0x10005, 5, nullptr},    // roll 2 ROLL_A0+
        {8, 0x1000c, 3, nullptr},    // roll 2 "PRESENTATION_360"
        {9, 0x10012, 1, nullptr},    // roll 1 FULL
        {11, 0x10018, 0, nullptr},   // manual NONE
        {13, 0x1001a, 0, " \"HELV\""},
        {15, 0x90000, 0, "R\tN\t100\t\"HELV\"\tHelvetica"},
        {16, 0x90010, 0, "RW\tN\t50\t\"DRAFT\""},
        {26, 0x90029, 20, nullptr},
        {28, 0x9002b, 0,
         "P1\tFULL_FRONT_END_LEFT\tWALLET\t210\t297\t20\tPUNCH_3\tTAB\t2\t900\tFACEDOWN\t1\t"
         "SHORTEDGE"},
        {29, 0x40000, 40000, nullptr},
        {31, 0x20001, 7, nullptr},
    };
    for (const auto& e : samples) {
        const PJLTokenValue& got = parsed.tokens[e.at];
        EXPECT_EQ(got.token, e.token) << "element " << e.at;
        if (e.text) {
            EXPECT_EQ(LineAt(text, got.value), e.text) << "element " << e.at;
        } else {
            EXPECT_EQ(got.value, e.number) << "element " << e.at;
        }
    }
}

TEST(PjlsimGrammar, ShippedProfilesParseToTheirEnd)
{
    const std::string dir = QLM_TEST_SOURCE_DIR "/tools/pjlsim/profiles/";
    for (const auto& entry : std::filesystem::directory_iterator(dir)) {
        if (entry.path().extension() != ".profile") {
            continue;
        }
        std::string error;
        auto profile = LoadProfile(entry.path().string(), &error);
        ASSERT_TRUE(profile) << error;
        const std::string text = Replies(*profile);
        const Parsed parsed = Parse(text);
        EXPECT_EQ(parsed.status, STATUS_OK) << entry.path();
        EXPECT_LT(parsed.tokens.size(), kPJL_MAX_TOKENS) << entry.path();
        EXPECT_LT(text.size(), kPJL_REPLY_BUFFER_SIZE) << entry.path();
        // The firmware level arrives as the text the profile gave.
        bool sawFirmware = false;
        for (const PJLTokenValue& t : parsed.tokens) {
            if (t.token == 0x50004) {
                sawFirmware = true;
                EXPECT_EQ(LineAt(text, t.value), profile->firmware.value_or("")) << entry.path();
            }
        }
        EXPECT_EQ(sawFirmware, profile->firmware.has_value()) << entry.path();
    }
}

TEST(PjlsimGrammar, FaultyRepliesFailAsIntended)
{
    const Profile profile = pjlsim_test::SmallProfile();
    // A reply cut before its formfeed ends the text: the tokens before the cut are kept.
    std::string cut = BuildReply(profile, "@PJL INFO CONFIG").value_or("");
    cut.pop_back();
    Parsed parsed = Parse(cut);
    EXPECT_EQ(parsed.status, STATUS_ENDOFSTREAM);
    EXPECT_EQ(parsed.tokens.size(), 4u);
    // Garbage holds no "@PJL".
    parsed = Parse(GarbageBytes() + BuildReply(profile, "@PJL INFO CONFIG").value_or(""));
    EXPECT_EQ(parsed.status, STATUS_NOPJL);
    EXPECT_TRUE(parsed.tokens.empty());
}

} // namespace
