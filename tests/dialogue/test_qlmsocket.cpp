// QLMSocket against a scripted TCP peer on loopback: the line that goes out, replies in pieces,
// the stop conditions of a read, refused and unresolvable addresses, and the trace names.
#include "driver/dialogue/qlmsocket.h"
#include "support/tracecapture.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

// What the peer does, in order, once the client has connected.
struct Step
{
    enum Kind
    {
        ReadLine, // read up to a line feed
        Send,
        Pause,
        Reset, // close with a reset instead of an orderly end
        Close, // what the peer does after its last step anyway
    } kind;
    std::string bytes;
    int ms = 0;
};

// A peer on 127.0.0.1 at a free port that plays its steps for one connection on a thread of
// its own, then closes. Every wait of the peer is capped, so that a faulty client cannot hang
// the test.
class ScriptedPeer
{
public:
    explicit ScriptedPeer(std::vector<Step> steps) : m_steps(std::move(steps)) { Open(true); }
    // A port that is bound, never listening: it refuses every connection.
    explicit ScriptedPeer(bool listening) { Open(listening); }
    ~ScriptedPeer()
    {
        if (m_thread.joinable())
            m_thread.join();
        if (m_listener >= 0)
            ::close(m_listener);
    }
    bool ok() const { return !m_service.empty(); }
    const char* service() const { return m_service.c_str(); }
    // What the client sent; complete once the peer's thread has ended.
    std::string received()
    {
        if (m_thread.joinable())
            m_thread.join();
        return m_received;
    }

private:
    void Open(bool listening)
    {
        m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        if (m_listener < 0 || ::bind(m_listener, (sockaddr*)&address, size) != 0 ||
            (listening && ::listen(m_listener, 1) != 0) ||
            ::getsockname(m_listener, (sockaddr*)&address, &size)) {
            return;
        }
        m_service = std::to_string(ntohs(address.sin_port));
        if (listening)
            m_thread = std::thread([this] { Run(); });
    }
    static bool Wait(int fd, int ms)
    {
        pollfd p{fd, POLLIN, 0};
        return ::poll(&p, 1, ms) == 1;
    }
    void Run()
    {
        if (!Wait(m_listener, 10000))
            return;
        int fd = ::accept(m_listener, nullptr, nullptr);
        if (fd < 0)
            return;
        for (const Step& step : m_steps) {
            if (step.kind == Step::ReadLine) {
                char c = 0;
                while (c != '\n' && Wait(fd, 10000) && ::recv(fd, &c, 1, 0) == 1)
                    m_received += c;
            } else if (step.kind == Step::Send) {
                ::send(fd, step.bytes.data(), step.bytes.size(), MSG_NOSIGNAL);
            } else if (step.kind == Step::Pause) {
                std::this_thread::sleep_for(std::chrono::milliseconds(step.ms));
            } else if (step.kind == Step::Reset) {
                linger hard{1, 0};
                ::setsockopt(fd, SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
                break;
            } else {
                break;
            }
        }
        ::close(fd);
    }

    std::vector<Step> m_steps;
    int m_listener = -1;
    std::string m_service;
    std::string m_received;
    std::thread m_thread;
};

class SocketTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        g_bTraceQLMSocket = TRUE;
        g_bTraceASSERT = TRUE;
    }
    // Connects to peer, skipping the test when loopback cannot be had.
    bool ConnectTo(ScriptedPeer& peer)
    {
        if (!peer.ok()) {
            ADD_FAILURE() << "no loopback listener";
            return false;
        }
        return m_socket.Connect("127.0.0.1", 0, 1, peer.service()) == 1;
    }
    void TearDown() override
    {
        m_socket.Close();
        m_socket.SocketCleanup();
    }

    SwitchGuard m_switches;
    TraceCapture m_trace;
    QLMSocket m_socket;
};

constexpr char kFF = '\f';

TEST_F(SocketTest, SendsTheTextAndALineFeedAndGathersPiecesUpToTheFormfeed)
{
    ScriptedPeer peer({{Step::ReadLine},
                       {Step::Send, "@PJL INFO ID\r\n"},
                       {Step::Pause, "", 100},
                       {Step::Send, "\"Plan 2440\"\r\n"},
                       {Step::Pause, "", 100},
                       {Step::Send, std::string(1, kFF)}});
    ASSERT_TRUE(ConnectTo(peer));
    EXPECT_TRUE(m_trace.contains("socket created & connected on family: AF_INET"));
    EXPECT_EQ(1, m_socket.SocketSend("@PJL INFO ID"));

    char buffer[256] = {};
    int bytes = -1;
    EXPECT_EQ(1, m_socket.SocketRecv(buffer, sizeof buffer, &bytes));
    EXPECT_EQ(std::string("@PJL INFO ID\r\n\"Plan 2440\"\r\n\f"), std::string(buffer));
    EXPECT_EQ(int(std::strlen(buffer)), bytes);
    EXPECT_TRUE(m_trace.contains("exitting loop because: found a formfeed at 0x1B"));
    EXPECT_TRUE(m_trace.contains("SocketRecv, result=TRUE, 28 bytes complete in"));
    m_socket.Close();
    EXPECT_EQ("@PJL INFO ID\n", peer.received());
}

TEST_F(SocketTest, AnEmptyTextSendsOnlyTheLineFeed)
{
    ScriptedPeer peer({{Step::ReadLine}, {Step::Close}});
    ASSERT_TRUE(ConnectTo(peer));
    EXPECT_EQ(1, m_socket.SocketSend(""));
    EXPECT_TRUE(m_trace.contains("SocketSend complete in 0 calls"));
    EXPECT_EQ("\n", peer.received());
}

// The stop conditions of a read that end with result 1, and what each leaves in the buffer.
TEST_F(SocketTest, AReadStopsAtTheFormfeedOrAFullBufferWithResultOne)
{
    struct Row
    {
        const char* name;
        std::string reply;
        int size;
        int expectedBytes;
        const char* expectedTrace;
    } rows[] = {
        // The bytes behind a formfeed of the same piece stay and count.
        {"formfeed mid-piece", std::string("AB\fCD"), 64, 5, "found a formfeed at 0x2"},
        {"exactly full, no formfeed", std::string(16, 'x'), 16, 16, "buffer full"},
        {"larger than the buffer", std::string(5000, 'y') + kFF, 1000, 1000, "buffer full"},
        {"nothing read with size 0", std::string("data\f"), 0, 0, "result=TRUE, 0 bytes"},
        {"nothing read with size -5", std::string("data\f"), -5, 0, "result=TRUE, 0 bytes"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        m_trace.clear();
        ScriptedPeer peer({{Step::Send, row.reply}});
        ASSERT_TRUE(ConnectTo(peer));
        // Guard bytes behind the size the read is given must stay untouched.
        std::vector<char> buffer(size_t(row.size > 0 ? row.size : 0) + 64, 0);
        std::memset(buffer.data() + (row.size > 0 ? row.size : 0), 0x5A, 64);
        int bytes = -1;
        EXPECT_EQ(1, m_socket.SocketRecv(buffer.data(), row.size, &bytes));
        EXPECT_EQ(row.expectedBytes, bytes);
        EXPECT_TRUE(m_trace.contains(row.expectedTrace)) << m_trace.text();
        EXPECT_EQ(std::string(row.expectedTrace) == "buffer full",
                  m_trace.contains("***ASSERT***(remainingbytes > 0) failed"));
        for (size_t i = buffer.size() - 64; i < buffer.size(); ++i)
            ASSERT_EQ(0x5A, buffer[i]) << "written beyond the buffer at " << i;
        m_socket.Close();
        m_socket.SocketCleanup();
    }
}

// A later reply is read at a position behind the earlier one, whose formfeed it must not see.
TEST_F(SocketTest, AReadBehindAnEarlierReplyFindsItsOwnFormfeed)
{
    ScriptedPeer peer({{Step::Send, "one\f"}, {Step::Pause, "", 100}, {Step::Send, "two\f"}});
    ASSERT_TRUE(ConnectTo(peer));
    char buffer[64] = {};
    int first = 0, second = 0;
    EXPECT_EQ(1, m_socket.SocketRecv(buffer, sizeof buffer, &first));
    ASSERT_EQ(4, first);
    EXPECT_EQ(1, m_socket.SocketRecv(buffer + first, int(sizeof buffer) - first, &second));
    EXPECT_EQ(4, second);
    EXPECT_STREQ("one\ftwo\f", buffer);
}

TEST_F(SocketTest, AResetByThePeerEndsTheReadWithResultZeroAndKeepsTheBytes)
{
    ScriptedPeer peer({{Step::Send, "partial"}, {Step::Pause, "", 100}, {Step::Reset}});
    ASSERT_TRUE(ConnectTo(peer));
    char buffer[64] = {};
    int bytes = -1;
    EXPECT_EQ(0, m_socket.SocketRecv(buffer, sizeof buffer, &bytes));
    EXPECT_EQ(7, bytes);
    EXPECT_STREQ("partial", buffer);
    EXPECT_TRUE(m_trace.contains("exitting loop because: recv error, le=10054 (0x2746)"))
        << m_trace.text();
}

// The platform's WSAEFAULT (here: no buffer) ends a read as a success with nothing read.
TEST_F(SocketTest, AnInvalidBufferEndsTheReadWithResultOne)
{
    ScriptedPeer peer({{Step::Send, "data\f"}});
    ASSERT_TRUE(ConnectTo(peer));
    int bytes = -1;
    EXPECT_EQ(1, m_socket.SocketRecv(nullptr, 64, &bytes));
    EXPECT_EQ(0, bytes);
    EXPECT_TRUE(m_trace.contains("exitting loop because: wsaefault"));
}

// The one test that waits out the fixed 5-second time-out: a peer that sends part of a reply
// and falls silent, then one that closes without a formfeed, which sends no more data.
TEST_F(SocketTest, FiveSecondsWithoutDataEndTheReadWithResultZero)
{
    for (Step::Kind end : {Step::Pause, Step::Close}) {
        SCOPED_TRACE(end == Step::Pause ? "silent peer" : "closed peer");
        m_trace.clear();
        ScriptedPeer peer({{Step::Send, "@PJL"}, {end, "", 5500}});
        ASSERT_TRUE(ConnectTo(peer));
        char buffer[64] = {};
        int bytes = -1;
        EXPECT_EQ(0, m_socket.SocketRecv(buffer, sizeof buffer, &bytes));
        EXPECT_EQ(4, bytes);
        EXPECT_STREQ("@PJL", buffer);
        EXPECT_TRUE(m_trace.contains("exitting loop because: timeout"));
        m_socket.Close();
        m_socket.SocketCleanup();
    }
}

TEST_F(SocketTest, ARefusedConnectionLeavesTheObjectFreeForTheNextAddress)
{
    ScriptedPeer closed(false);
    ASSERT_TRUE(closed.ok());
    EXPECT_EQ(0, m_socket.Connect("127.0.0.1", 0, 1, closed.service()));
    m_socket.SocketCleanup();

    // The refresh tries its candidates one after another on the same object.
    ScriptedPeer peer({Step{Step::Close}});
    EXPECT_TRUE(ConnectTo(peer));
}

TEST_F(SocketTest, AnUnknownHostIsTracedWithTheSystemText)
{
    EXPECT_EQ(0, m_socket.Connect("no-such-plotter.invalid", 0, 1, "2000"));
    EXPECT_TRUE(m_trace.contains("Cannot resolve address [no-such-plotter.invalid] and port "
                                 "[2000], error 1100"))
        << m_trace.text();
}

TEST_F(SocketTest, ASecondConnectWhileConnectedIsRefused)
{
    ScriptedPeer peer({Step{Step::Close}});
    ASSERT_TRUE(ConnectTo(peer));
    EXPECT_EQ(0, m_socket.Connect("127.0.0.1", 0, 1, peer.service()));
    EXPECT_TRUE(m_trace.contains("socket is NOT invalid in Connect, calling multiple times?"));
}

TEST_F(SocketTest, ClosingAnUnconnectedSocketAssertsAndGivesZero)
{
    EXPECT_EQ(0, m_socket.Close());
    EXPECT_TRUE(m_trace.contains("m_s != (SOCKET)(~0)"));
}

TEST(SocketNames, TypesAndFamiliesHaveTheirTraceNames)
{
    struct Row
    {
        int number;
        const char* type;
        const char* family;
    } rows[] = {
        {-1, "???", "???"},
        {0, "???", "AF_UNSPEC"},
        {1, "SOCK_STREAM", "AF_UNIX"},
        {5, "SOCK_SEQPACKET", "AF_CHAOS"},
        {6, "???", "AF_NS/AF_IPX"},
        {7, "???", "AF_ISO/AF_OSI"},
        {17, "???", "???"},
        {18, "???", "AF_VOICEVIEW"},
        {23, "???", "AF_INET6"},
        {24, "???", "???"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.number);
        EXPECT_EQ(row.type, host::Utf16ToUtf8(QLMGetSocketTypeName(row.number)));
        EXPECT_EQ(row.family, host::Utf16ToUtf8(QLMGetAddressFamilyName(row.number)));
    }
}

} // namespace
