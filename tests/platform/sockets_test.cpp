// The host's Windows Sockets against POSIX peers on loopback: connect, refusal, select with
// Windows sets, a reset seen by recv, name resolution into the Windows list, the error texts.
#include "hosttest.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>

using namespace hosttest;

namespace {

// A POSIX listener on 127.0.0.<host> at a free port.
class Listener
{
public:
    explicit Listener(int host, bool listening = true)
    {
        m_fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK + uint32_t(host - 1));
        socklen_t size = sizeof address;
        if (m_fd < 0 || ::bind(m_fd, (sockaddr*)&address, size) != 0 ||
            (listening && ::listen(m_fd, 4) != 0) ||
            ::getsockname(m_fd, (sockaddr*)&address, &size) != 0) {
            return;
        }
        m_address = "127.0.0." + std::to_string(host);
        m_port = std::to_string(ntohs(address.sin_port));
    }
    ~Listener()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    bool ok() const { return !m_port.empty(); }
    int fd() const { return m_fd; }
    const char* address() const { return m_address.c_str(); }
    const char* port() const { return m_port.c_str(); }
    // The peer end of the next connection, or -1.
    int Accept() const { return ::accept(m_fd, nullptr, nullptr); }

private:
    int m_fd = -1;
    std::string m_address, m_port;
};

class Sockets : public ::testing::Test
{
protected:
    void SetUp() override
    {
        WSADATA data;
        ASSERT_EQ(0, WSAStartup(MAKEWORD(1, 0), &data));
        EXPECT_EQ(MAKEWORD(1, 0), data.wVersion);
        EXPECT_EQ(MAKEWORD(2, 2), data.wHighVersion);
    }
    void TearDown() override { WSACleanup(); }

    // A connected client socket to listener, or INVALID_SOCKET.
    SOCKET Connect(const Listener& listener)
    {
        PADDRINFOA list = nullptr;
        ADDRINFOA hints{};
        hints.ai_socktype = SOCK_STREAM;
        if (getaddrinfo(listener.address(), listener.port(), &hints, &list) != 0)
            return INVALID_SOCKET;
        SOCKET s = host::winsock::socket(list->ai_family, list->ai_socktype, list->ai_protocol);
        if (s != INVALID_SOCKET && connect(s, list->ai_addr, int(list->ai_addrlen)) != 0) {
            closesocket(s);
            s = INVALID_SOCKET;
        }
        freeaddrinfo(list);
        return s;
    }
};

TEST_F(Sockets, ConnectsToAListenerAndCarriesBytesBothWays)
{
    Listener listener(2);
    if (!listener.ok())
        GTEST_SKIP() << "cannot listen on 127.0.0.2";
    SOCKET s = Connect(listener);
    ASSERT_NE(INVALID_SOCKET, s);
    int peer = listener.Accept();
    ASSERT_GE(peer, 0);

    EXPECT_EQ(5, send(s, "hello", 5, 0));
    char text[16] = {};
    EXPECT_EQ(5, ::recv(peer, text, sizeof text, 0));
    EXPECT_STREQ("hello", text);

    ::send(peer, "back", 4, 0);
    fd_set set;
    FD_ZERO(&set);
    FD_SET(s, &set);
    FD_SET(s, &set); // already there: not added twice
    EXPECT_EQ(1u, set.fd_count);
    TIMEVAL wait{5, 0};
    EXPECT_EQ(1, select(0, &set, nullptr, nullptr, &wait));
    EXPECT_TRUE(FD_ISSET(s, &set));
    std::memset(text, 0, sizeof text);
    EXPECT_EQ(4, recv(s, text, sizeof text, 0));
    EXPECT_STREQ("back", text);

    // An orderly end is readable and reads as 0 bytes.
    ::close(peer);
    FD_ZERO(&set);
    FD_SET(s, &set);
    EXPECT_EQ(1, select(0, &set, nullptr, nullptr, &wait));
    EXPECT_EQ(0, recv(s, text, sizeof text, 0));
    EXPECT_EQ(0, closesocket(s));
}

TEST_F(Sockets, ARefusedConnectionIsWSAECONNREFUSED)
{
    Listener bound(3, false); // bound, not listening: its port refuses
    if (!bound.ok())
        GTEST_SKIP() << "cannot bind on 127.0.0.3";
    PADDRINFOA list = nullptr;
    ASSERT_EQ(0, getaddrinfo(bound.address(), bound.port(), nullptr, &list));
    SOCKET s = host::winsock::socket(AF_INET, SOCK_STREAM, 0);
    ASSERT_NE(INVALID_SOCKET, s);
    WSASetLastError(kSentinel);
    EXPECT_EQ(SOCKET_ERROR, connect(s, list->ai_addr, int(list->ai_addrlen)));
    EXPECT_EQ(WSAECONNREFUSED, WSAGetLastError());
    EXPECT_EQ(0, closesocket(s));
    freeaddrinfo(list);
}

TEST_F(Sockets, SelectTimesOutWithEmptiedSetsWhenNothingIsReady)
{
    Listener listener(4);
    if (!listener.ok())
        GTEST_SKIP() << "cannot listen on 127.0.0.4";
    SOCKET s = Connect(listener);
    ASSERT_NE(INVALID_SOCKET, s);
    int peer = listener.Accept();
    fd_set readable, failed;
    FD_ZERO(&readable);
    FD_ZERO(&failed);
    FD_SET(s, &readable);
    FD_SET(s, &failed);
    TIMEVAL wait{0, 20000};
    EXPECT_EQ(0, select(0, &readable, nullptr, &failed, &wait));
    EXPECT_EQ(0u, readable.fd_count);
    EXPECT_EQ(0u, failed.fd_count);
    // A connected socket is writable at once.
    fd_set writable;
    FD_ZERO(&writable);
    FD_SET(s, &writable);
    EXPECT_EQ(1, select(0, nullptr, &writable, nullptr, &wait));
    ::close(peer);
    closesocket(s);
}

TEST_F(Sockets, RecvAfterAResetByThePeerIsWSAECONNRESET)
{
    Listener listener(5);
    if (!listener.ok())
        GTEST_SKIP() << "cannot listen on 127.0.0.5";
    SOCKET s = Connect(listener);
    ASSERT_NE(INVALID_SOCKET, s);
    int peer = listener.Accept();
    ASSERT_GE(peer, 0);
    linger hard{1, 0};
    ::setsockopt(peer, SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
    ::close(peer);

    fd_set set;
    FD_ZERO(&set);
    FD_SET(s, &set);
    TIMEVAL wait{5, 0};
    EXPECT_EQ(1, select(0, &set, nullptr, nullptr, &wait)) << "a reset is readable";
    char text[8];
    EXPECT_EQ(SOCKET_ERROR, recv(s, text, sizeof text, 0));
    EXPECT_EQ(WSAECONNRESET, WSAGetLastError());
    // Sending to the gone peer fails too, and raises no SIGPIPE that would end the test.
    int sent = 0;
    for (int i = 0; i < 4 && sent != SOCKET_ERROR; ++i)
        sent = send(s, "x", 1, 0);
    EXPECT_EQ(SOCKET_ERROR, sent);
    closesocket(s);
}

TEST_F(Sockets, GetaddrinfoGivesTheWindowsListOrTheWindowsCode)
{
    PADDRINFOA list = nullptr;
    ASSERT_EQ(0, getaddrinfo("127.0.0.9", "2000", nullptr, &list));
    ASSERT_NE(nullptr, list);
    bool stream = false;
    for (PADDRINFOA p = list; p; p = p->ai_next) {
        EXPECT_EQ(AF_INET, p->ai_family);
        ASSERT_EQ(16u, p->ai_addrlen);
        const auto* bytes = reinterpret_cast<const uint8_t*>(p->ai_addr);
        EXPECT_EQ(AF_INET, bytes[0] | bytes[1] << 8) << "family";
        EXPECT_EQ(2000, bytes[2] << 8 | bytes[3]) << "port, network order";
        EXPECT_EQ(std::string("\x7f\0\0\x09", 4), std::string((const char*)bytes + 4, 4));
        stream = stream || p->ai_socktype == SOCK_STREAM;
    }
    EXPECT_TRUE(stream);
    freeaddrinfo(list);

    list = reinterpret_cast<PADDRINFOA>(&list);
    int rc = getaddrinfo("no-such-plotter.invalid", "2000", nullptr, &list);
    EXPECT_TRUE(rc == WSAHOST_NOT_FOUND || rc == WSATRY_AGAIN || rc == WSANO_DATA) << rc;
    EXPECT_EQ(rc, WSAGetLastError());
    EXPECT_EQ(nullptr, list);
}

// What a stray or stale handle and bad arguments give: a code, never another descriptor.
TEST_F(Sockets, BadHandlesAndArgumentsGiveTheirCodes)
{
    char byte = 0;
    struct Row
    {
        const char* name;
        int result;
        int code;
    } rows[] = {
        {"send on standard output", send(SOCKET(1), "x", 1, 0), WSAENOTSOCK},
        {"recv on an invalid socket", recv(INVALID_SOCKET, &byte, 1, 0), WSAENOTSOCK},
        {"closesocket of standard error", closesocket(SOCKET(2)), WSAENOTSOCK},
        {"connect with no address", connect(SOCKET(0), nullptr, 16), WSAENOTSOCK},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(SOCKET_ERROR, row.result);
    }
    EXPECT_EQ(WSAENOTSOCK, WSAGetLastError());

    SOCKET s = host::winsock::socket(AF_INET, SOCK_STREAM, 0);
    ASSERT_NE(INVALID_SOCKET, s);
    EXPECT_EQ(SOCKET_ERROR, recv(s, nullptr, 8, 0));
    EXPECT_EQ(WSAEFAULT, WSAGetLastError());
    EXPECT_EQ(SOCKET_ERROR, send(s, &byte, -1, 0));
    EXPECT_EQ(WSAEFAULT, WSAGetLastError());
    EXPECT_EQ(SOCKET_ERROR, connect(s, nullptr, 16));
    EXPECT_EQ(WSAEFAULT, WSAGetLastError());
    fd_set none;
    FD_ZERO(&none);
    EXPECT_EQ(SOCKET_ERROR, select(0, &none, nullptr, nullptr, nullptr));
    EXPECT_EQ(WSAEINVAL, WSAGetLastError());
    fd_set damaged;
    FD_ZERO(&damaged);
    FD_SET(s, &damaged);
    damaged.fd_count = 1000;
    EXPECT_EQ(SOCKET_ERROR, select(0, &damaged, nullptr, nullptr, nullptr));
    EXPECT_EQ(WSAEINVAL, WSAGetLastError());
    BOOL on = TRUE;
    const char* pOn = reinterpret_cast<const char*>(&on);
    EXPECT_EQ(0, setsockopt(s, 6, 1, pOn, sizeof(on))) << "TCP_NODELAY at IPPROTO_TCP";
    EXPECT_EQ(SOCKET_ERROR, setsockopt(s, 6, 1, nullptr, sizeof(on)));
    EXPECT_EQ(WSAEFAULT, WSAGetLastError());
    EXPECT_EQ(SOCKET_ERROR, setsockopt(s, 0xFFFF, 0x0080, pOn, sizeof(on))) << "SO_LINGER";
    EXPECT_EQ(WSAENOPROTOOPT, WSAGetLastError());
    EXPECT_EQ(0, closesocket(s));
    EXPECT_EQ(SOCKET_ERROR, closesocket(s)) << "closed twice";
    EXPECT_EQ(SOCKET_ERROR, setsockopt(s, 6, 1, pOn, sizeof(on)));
    EXPECT_EQ(WSAENOTSOCK, WSAGetLastError());
}

TEST(SocketsStartup, NothingWorksBeforeWSAStartupAndEachStartupNeedsItsCleanup)
{
    EXPECT_EQ(INVALID_SOCKET, host::winsock::socket(AF_INET, SOCK_STREAM, 0));
    EXPECT_EQ(WSANOTINITIALISED, WSAGetLastError());
    PADDRINFOA list = nullptr;
    EXPECT_EQ(WSANOTINITIALISED, getaddrinfo("127.0.0.1", "2000", nullptr, &list));
    EXPECT_EQ(SOCKET_ERROR, WSACleanup());

    WSADATA data;
    EXPECT_EQ(WSAVERNOTSUPPORTED, WSAStartup(MAKEWORD(0, 9), &data));
    EXPECT_EQ(WSAEFAULT, WSAStartup(MAKEWORD(2, 2), nullptr));
    ASSERT_EQ(0, WSAStartup(MAKEWORD(2, 2), &data));
    ASSERT_EQ(0, WSAStartup(MAKEWORD(1, 0), &data));
    SOCKET s = host::winsock::socket(AF_INET, SOCK_STREAM, 0);
    ASSERT_NE(INVALID_SOCKET, s);
    EXPECT_EQ(0, WSACleanup());
    EXPECT_EQ(SOCKET_ERROR, connect(s, nullptr, 16));
    EXPECT_EQ(WSAEFAULT, WSAGetLastError()) << "still a socket after the first of two cleanups";
    EXPECT_EQ(0, WSACleanup());
    EXPECT_EQ(SOCKET_ERROR, closesocket(s)) << "the last cleanup closed it";
}

TEST(SocketsMessages, ErrorTextsComeFromTheSystemTable)
{
    WCHAR text[1024];
    DWORD n = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                             WSAHOST_NOT_FOUND, 0, text, 1024, nullptr);
    EXPECT_EQ(u"No such host is known.\r\n", std::u16string(text));
    EXPECT_EQ(24u, n);
    SetLastError(kSentinel);
    EXPECT_EQ(0u, FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, WSAHOST_NOT_FOUND, 0, text,
                                 24, nullptr))
        << "no room for the terminator";
    EXPECT_EQ(DWORD(ERROR_INSUFFICIENT_BUFFER), GetLastError());
    EXPECT_EQ(0u,
              FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, 4242, 0, text, 1024, nullptr));
    EXPECT_EQ(DWORD(ERROR_MR_MID_NOT_FOUND), GetLastError());
}

} // namespace
