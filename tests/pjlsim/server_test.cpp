// The server over real loopback sockets: conversations, each fault mode, servers side by side.
#include "client.h"
#include "replies.h"
#include "server.h"

#include <gtest/gtest.h>

#include <memory>

using namespace pjlsim;
using pjlsim_test::Client;
using pjlsim_test::End;

namespace {

const char* const kSixQueries[] = {
    "@PJL INFO ID",       "@PJL INFO CONFIG",          "@PJL INFO VARIABLES",
    "@PJL INFO TVOFONTS", "@PJL INFO TVORASTERSTAMPS", "@PJL INFO TVOFINISHER"};

// A server of the small profile on a free port, running on a background thread.
std::unique_ptr<Server> StartServer(std::vector<Fault> faults = {},
                                    const char* address = "127.0.0.1", std::uint16_t port = 0,
                                    Profile profile = pjlsim_test::SmallProfile())
{
    ServerOptions options;
    options.address = address;
    options.port = port;
    options.faults = std::move(faults);
    options.delayMs = 1;
    auto server = std::make_unique<Server>(std::move(profile), options);
    std::string error;
    EXPECT_TRUE(server->Start(&error)) << error;
    EXPECT_NE(server->Port(), 0);
    return server;
}

std::string Expected(const char* query)
{
    return BuildReply(pjlsim_test::SmallProfile(), query).value_or("");
}

TEST(PjlsimServer, SixQueriesOnOneConnectionOrOneEach)
{
    auto server = StartServer();
    Client client;
    ASSERT_EQ(client.Connect("127.0.0.1", server->Port()), 0);
    for (const char* query : kSixQueries) {
        EXPECT_EQ(client.Ask(query), Expected(query)) << query;
    }
    // The status and echo questions on the same connection, after the six.
    EXPECT_EQ(client.Ask("@PJL INFO STATUS"), Expected("@PJL INFO STATUS"));
    EXPECT_EQ(client.Ask("@PJL ECHO TVOSYNC 99"), "@PJL ECHO TVOSYNC 99\r\n\f");
    client.Close();

    for (const char* query : kSixQueries) {
        Client single;
        ASSERT_EQ(single.Connect("127.0.0.1", server->Port()), 0) << query;
        EXPECT_EQ(single.Ask(query), Expected(query)) << query;
    }
    EXPECT_EQ(server->Connections(), 7u);
}

TEST(PjlsimServer, LinesArriveInPiecesOrTogether)
{
    auto server = StartServer();
    Client client;
    ASSERT_EQ(client.Connect("127.0.0.1", server->Port()), 0);
    // Two queries in one piece, CR LF ends, an unknown line between them: two replies in order,
    // and nothing for the line the printer does not know.
    ASSERT_TRUE(client.Send("@PJL INFO ID\r\n@PJL INQUIRE X\r\n@PJL INFO STATUS\r"));
    End end{};
    std::string got = client.Read(&end);
    while (end == End::FormFeed && got.find('\f') == got.rfind('\f') &&
           got.size() < Expected("@PJL INFO ID").size() + Expected("@PJL INFO STATUS").size()) {
        got += client.Read(&end);
    }
    EXPECT_EQ(got, Expected("@PJL INFO ID") + Expected("@PJL INFO STATUS"));
}

TEST(PjlsimServer, SilenceSkipsOnlyTheChosenQuery)
{
    auto server = StartServer({{FaultMode::Silence, "TVOFONTS"}});
    Client client;
    ASSERT_EQ(client.Connect("127.0.0.1", server->Port()), 0);
    // No timing needed: the first bytes after an unanswered query are the next query's reply.
    ASSERT_TRUE(client.Send("@PJL INFO TVOFONTS"));
    EXPECT_EQ(client.Ask("@PJL INFO TVORASTERSTAMPS"), Expected("@PJL INFO TVORASTERSTAMPS"));
    EXPECT_EQ(client.Ask("@PJL INFO ID"), Expected("@PJL INFO ID"));
}

TEST(PjlsimServer, DripDeliversTheWholeReplyInPieces)
{
    auto server = StartServer({{FaultMode::Drip, "ID"}});
    Client client;
    ASSERT_EQ(client.Connect("127.0.0.1", server->Port()), 0);
    ASSERT_TRUE(client.Send("@PJL INFO ID"));
    std::string got;
    End end{};
    int pieces = 0;
    do {
        int n = 0;
        got += client.Read(&end, &n);
        pieces += n;
    } while (end == End::FormFeed && got.back() != '\f');
    EXPECT_EQ(got, Expected("@PJL INFO ID"));
    EXPECT_GT(pieces, 1);
    // Other queries are answered at once, in one piece.
    EXPECT_EQ(client.Ask("@PJL INFO STATUS"), Expected("@PJL INFO STATUS"));
}

TEST(PjlsimServer, CutSendsAllButTheFormfeedAndCloses)
{
    auto server = StartServer({{FaultMode::Cut, "TVOFINISHER"}});
    Client client;
    ASSERT_EQ(client.Connect("127.0.0.1", server->Port()), 0);
    EXPECT_EQ(client.Ask("@PJL INFO ID"), Expected("@PJL INFO ID"));
    ASSERT_TRUE(client.Send("@PJL INFO TVOFINISHER"));
    End end{};
    std::string got;
    do {
        got += client.Read(&end);
    } while (end == End::FormFeed);
    EXPECT_EQ(end, End::Closed);
    std::string expected = Expected("@PJL INFO TVOFINISHER");
    expected.pop_back();
    EXPECT_EQ(got, expected);
}

TEST(PjlsimServer, GarbageIsNoPjlButEndsInAFormfeed)
{
    auto server = StartServer({{FaultMode::Garbage, "CONFIG"}});
    Client client;
    ASSERT_EQ(client.Connect("127.0.0.1", server->Port()), 0);
    const std::string got = client.Ask("@PJL INFO CONFIG");
    EXPECT_EQ(got, GarbageBytes());
    EXPECT_GT(got.size(), 100u);
    EXPECT_EQ(got.find("@PJL"), std::string::npos);
    EXPECT_EQ(got.find('\0'), std::string::npos);
    EXPECT_EQ(got.find('\f'), got.size() - 1);
    // The connection stays usable.
    EXPECT_EQ(client.Ask("@PJL INFO ID"), Expected("@PJL INFO ID"));
}

TEST(PjlsimServer, ResetAbortsTheConnection)
{
    auto server = StartServer({{FaultMode::Reset, "VARIABLES"}});
    Client client;
    ASSERT_EQ(client.Connect("127.0.0.1", server->Port()), 0);
    EXPECT_EQ(client.Ask("@PJL INFO CONFIG"), Expected("@PJL INFO CONFIG"));
    ASSERT_TRUE(client.Send("@PJL INFO VARIABLES"));
    End end{};
    EXPECT_EQ(client.Read(&end), "");
    EXPECT_EQ(end, End::Reset);
    // The next connection is served again.
    Client next;
    ASSERT_EQ(next.Connect("127.0.0.1", server->Port()), 0);
    EXPECT_EQ(next.Ask("@PJL INFO ID"), Expected("@PJL INFO ID"));
}

TEST(PjlsimServer, BigReplyOverflowsTheDriversBuffer)
{
    auto server = StartServer({{FaultMode::Big, "TVOFONTS"}});
    Client client;
    ASSERT_EQ(client.Connect("127.0.0.1", server->Port()), 0);
    const std::string got = client.Ask("@PJL INFO TVOFONTS");
    EXPECT_EQ(got.size(), kBigReplySize);
    EXPECT_GT(got.size(), 32768u);
    // The real reply comes first, so a reader that stops at its buffer's end sees it.
    std::string start = Expected("@PJL INFO TVOFONTS");
    start.pop_back();
    EXPECT_EQ(got.compare(0, start.size(), start), 0);
    EXPECT_EQ(got.find('\f'), got.size() - 1);
    EXPECT_EQ(got.find('\0'), std::string::npos);
}

TEST(PjlsimServer, RefusedAndHungUpConnections)
{
    auto refusing = StartServer({{FaultMode::Refuse, ""}});
    Client client;
    EXPECT_EQ(client.Connect("127.0.0.1", refusing->Port()), ECONNREFUSED);
    EXPECT_EQ(refusing->Connections(), 0u);

    auto hanging = StartServer({{FaultMode::Hangup, ""}});
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(client.Connect("127.0.0.1", hanging->Port()), 0);
        End end{};
        EXPECT_EQ(client.Read(&end), "");
        EXPECT_EQ(end, End::Closed);
    }
    hanging->Stop();
    EXPECT_EQ(hanging->Connections(), 2u);
}

TEST(PjlsimServer, TwoPrintersSideBySideOnOnePort)
{
    std::string error;
    Profile other = *ParseProfile("id = OTHER PRINTER\n", "other", &error);
    auto first = StartServer({}, "127.0.0.2");
    auto second = StartServer({}, "127.0.0.3", first->Port(), other);
    ASSERT_EQ(first->Port(), second->Port());

    Client a, b;
    ASSERT_EQ(a.Connect("127.0.0.2", first->Port()), 0);
    ASSERT_EQ(b.Connect("127.0.0.3", first->Port()), 0);
    EXPECT_EQ(b.Ask("@PJL INFO ID"), "@PJL INFO ID\r\n\"OTHER PRINTER\"\r\n\f");
    EXPECT_EQ(a.Ask("@PJL INFO ID"), "@PJL INFO ID\r\n\"TEST 1\"\r\n\f");

    // The same address and port a second time is an error, not a second printer.
    Server clash(pjlsim_test::SmallProfile(), ServerOptions{"127.0.0.2", first->Port()});
    EXPECT_FALSE(clash.Open(&error));
    EXPECT_NE(error.find("cannot bind 127.0.0.2:"), std::string::npos) << error;

    Server bad(pjlsim_test::SmallProfile(), ServerOptions{"localhost", 0});
    EXPECT_FALSE(bad.Open(&error));
    EXPECT_EQ(error, "\"localhost\" is not an IPv4 address");
}

TEST(PjlsimServer, StopEndsAnIdleConnectionAndOnceEndsAfterOne)
{
    auto server = StartServer();
    Client client;
    ASSERT_EQ(client.Connect("127.0.0.1", server->Port()), 0);
    EXPECT_EQ(client.Ask("@PJL INFO ID"), Expected("@PJL INFO ID"));
    server->Stop(); // returns although the client still holds its connection
    End end{};
    EXPECT_EQ(client.Read(&end), "");
    EXPECT_EQ(end, End::Closed);

    ServerOptions options;
    options.port = 0;
    options.once = true;
    Server once(pjlsim_test::SmallProfile(), options);
    std::string error;
    ASSERT_TRUE(once.Open(&error)) << error;
    std::thread client2([&] {
        Client c;
        ASSERT_EQ(c.Connect("127.0.0.1", once.Port()), 0);
        EXPECT_EQ(c.Ask("@PJL INFO ID"), Expected("@PJL INFO ID"));
    });
    once.Run(); // returns by itself once the client has gone
    client2.join();
    EXPECT_EQ(once.Connections(), 1u);
}

} // namespace
