// qlmhost refresh, printer state and parse, as a user runs them: against pjlsim on loopback,
// from the hand-written capture of the same printer, and with the address question answered.
#include "qlmhosttest.h"

#include "profile.h"
#include "server.h"

#include <memory>

using namespace qlmhosttest;

namespace {

const std::string kSource = QLM_TEST_SOURCE_DIR;
const std::string kCapture = kSource + "/tests/fixtures/pjl/plan2440.pjl";

class RefreshCommand : public QlmhostTest
{
protected:
    // pjlsim with the 2440's profile, listening on address.
    void Serve(const std::string& address)
    {
        std::string error;
        auto profile =
            pjlsim::LoadProfile(kSource + "/tools/pjlsim/profiles/plan2440.profile", &error);
        ASSERT_TRUE(profile) << error;
        pjlsim::ServerOptions options;
        options.address = address;
        options.port = 2000;
        m_server = std::make_unique<pjlsim::Server>(*profile, options);
        ASSERT_TRUE(m_server->Start(&error)) << error;
    }
    // A 2440 queue on a standard TCP/IP port named after address.
    void Queue(const std::string& name, const std::string& address)
    {
        Outcome port = Fake({"port", "add", address, "--monitor", "TCPMON.DLL"});
        ASSERT_EQ(port.rc, 0) << port.err;
        Outcome add = Fake({"printer", "add", name, "--driver", "Tarvo Plan Output System 2440",
                            "--port", address});
        ASSERT_EQ(add.rc, 0) << add.err;
    }
    Json RunJson(const std::vector<std::string>& words, int rc = 0)
    {
        std::vector<std::string> all = words;
        all.push_back("--json");
        Outcome run = Real(all);
        EXPECT_EQ(rc, run.rc) << run.err;
        Json json;
        EXPECT_TRUE(ParseJson(run.out, &json)) << run.out;
        return json;
    }
    std::unique_ptr<pjlsim::Server> m_server;
};

// The state as the text output and the record both carry it.
void ExpectThe2440(const Json& state)
{
    EXPECT_EQ("12.2", state["firmware"].Utf8());
    ASSERT_EQ(3u, state["rolls"].items.size());
    EXPECT_EQ("Roll 24in", state["rolls"][1]["size"].Utf8());
    EXPECT_EQ("PRESENTATION_360", state["rolls"][1]["type"].Utf8());
    EXPECT_EQ("Empty", state["rolls"][2]["status"].Utf8());
    EXPECT_EQ("None", state["sheetFeed"]["status"].Utf8());
    ASSERT_EQ(3u, state["fonts"].items.size());
    EXPECT_EQ("COUR", state["fonts"][2].Utf8());
    EXPECT_EQ("HELV", state["labelFont"].Utf8());
    EXPECT_EQ("APPROVED", state["rasterStamps"][2].Utf8());
    EXPECT_EQ("DRAFT", state["defaultStamp"].Utf8());
    EXPECT_EQ("Gera Iso", state["finisherType"].Utf8());
    EXPECT_EQ("Gera Folder 2400", state["finisher"]["Model"].Utf8());
    ASSERT_EQ(3u, state["finisher"]["programs"].items.size());
    EXPECT_EQ("ANSI_A_WALLET", state["finisher"]["programs"][2]["name"].Utf8());
}

std::string Text(const Json& json)
{
    std::ostringstream out;
    out << json.Keys().size();
    for (const auto& [key, value] : json.members)
        out << key << value.Utf8() << value.number << value.items.size();
    return out.str();
}

} // namespace

TEST_F(RefreshCommand, ThePrintersAnswerIsStoredAndShownByName)
{
    Serve("127.0.0.61");
    Queue("P", "127.0.0.61");
    Json refresh = RunJson({"refresh", "P"});
    EXPECT_EQ(1, refresh["result"].Int());
    EXPECT_TRUE(refresh["stored"].boolean);
    ExpectThe2440(refresh["printer"]);
    // What was shown is what the queue keeps.
    Json state = RunJson({"printer", "state", "P"});
    ExpectThe2440(state);
    EXPECT_EQ(1u, m_server->Connections());

    Outcome text = Real({"refresh", "P"});
    EXPECT_EQ(0, text.rc) << text.err;
    EXPECT_NE(std::string::npos, text.out.find("\"Gera Folder 2400\", version \"2.1\""));
    EXPECT_NE(std::string::npos, text.out.find("\"HELV\", \"TIMR\", \"COUR\""));
}

TEST_F(RefreshCommand, AnUnreachablePortAsksForTheAddressOnce)
{
    Serve("127.0.0.63");
    Queue("Q", "127.0.0.62");
    // A new queue gets its record from the driver's defaults before the refresh begins.
    Outcome refused = Real({"refresh", "Q"});
    EXPECT_EQ(1, refused.rc);
    EXPECT_NE(std::string::npos, refused.err.find("nothing of the printer was stored"));
    const std::string before = Text(RunJson({"devmode", "show", "Q"}));
    Outcome wrong = Real({"--address", "127.0.0.64", "refresh", "Q"});
    EXPECT_EQ(1, wrong.rc) << "an address that does not answer either ends as Cancel";
    EXPECT_EQ(before, Text(RunJson({"devmode", "show", "Q"})));

    Json answered = RunJson({"--address", "127.0.0.63", "refresh", "Q"});
    EXPECT_EQ(1, answered["result"].Int());
    ExpectThe2440(answered["printer"]);
}

TEST_F(RefreshCommand, ACaptureFileGivesWhatThePrinterGives)
{
    Queue("P", "127.0.0.65");
    // A switch the user set stays as it was; an absent one reads off afterwards.
    Json fromFile = RunJson({"refresh", "P", "--capture", kCapture});
    EXPECT_EQ(1, fromFile["result"].Int());
    ExpectThe2440(fromFile["printer"]);
    Json off = RunJson({"data", "get", "P", "DBG_BidiFromFile", "--key", "DebugSettings"});
    EXPECT_EQ(0, off["value"].Int());

    Outcome missing = Real({"refresh", "P", "--capture", File("none.pjl")});
    EXPECT_EQ(1, missing.rc);
    EXPECT_NE(std::string::npos, missing.err.find("no capture file")) << missing.err;
}

TEST_F(RefreshCommand, ParseShowsTokensByNameWithTheirText)
{
    Json parsed = RunJson({"parse", kCapture});
    EXPECT_EQ("STATUS_OK", parsed["status"].Utf8());
    EXPECT_FALSE(parsed["cut"].boolean);
    const Json& tokens = parsed["tokens"];
    ASSERT_EQ(36u, tokens.items.size());
    EXPECT_EQ("TOKEN_INFO_ESS_SW_REV", tokens[3]["name"].Utf8());
    EXPECT_EQ("12.2", tokens[3]["text"].Utf8());
    EXPECT_EQ("TOKEN_INQUIRE_ROLL2TYPE", tokens[11]["name"].Utf8());
    EXPECT_EQ("PRESENTATION_360", tokens[11]["meaning"].Utf8());
    EXPECT_FALSE(tokens[11].Has("text"));
    EXPECT_EQ("Gera Folder 2400", tokens[24]["text"].Utf8());

    // Not PJL at all, and a capture longer than the refresh's buffer.
    Json foreign = RunJson({"parse", WriteFile("foreign", {'G', 'E', 'T', ' ', '/', '\r', '\n'})});
    EXPECT_EQ("STATUS_NOPJL", foreign["status"].Utf8());
    EXPECT_EQ(0u, foreign["tokens"].items.size());
    std::string big = Slurp(kCapture) + std::string(40000, 'x');
    Json cut = RunJson({"parse", WriteFile("big", std::vector<uint8_t>(big.begin(), big.end()))});
    EXPECT_TRUE(cut["cut"].boolean);
    EXPECT_EQ(32768, cut["bytes"].Int());
    EXPECT_EQ(36u, cut["tokens"].items.size());
}
