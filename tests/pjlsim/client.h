// A PJL client for the pjlsim tests that talks as the driver does. POSIX sockets: not to be
// included beside the driver's headers, which declare the Windows Sockets names.
#pragma once

#include "pjlsim_support.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstdint>
#include <netinet/in.h>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <unistd.h>

namespace pjlsim_test {

// How a read ended.
enum class End
{
    FormFeed,
    Closed,
    Reset,
    Quiet // nothing for 10 seconds: only a guard against a hanging test
};

// A blocking client: sends a query and its line feed in two pieces, as the driver does, and
// reads up to a formfeed.
class Client
{
public:
    ~Client() { Close(); }

    // Returns 0 when connected, else the errno of connect.
    int Connect(const char* address, std::uint16_t port)
    {
        Close();
        m_fd = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in addr{};
        addr.sin_family = AF_INET;
        addr.sin_port = htons(port);
        inet_pton(AF_INET, address, &addr.sin_addr);
        if (connect(m_fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0) {
            int err = errno;
            Close();
            return err;
        }
        return 0;
    }

    bool Send(std::string_view query)
    {
        return send(m_fd, query.data(), query.size(), MSG_NOSIGNAL) ==
                   static_cast<ssize_t>(query.size()) &&
               send(m_fd, "\n", 1, MSG_NOSIGNAL) == 1;
    }

    std::string Read(End* end, int* pieces = nullptr)
    {
        std::string got;
        char chunk[65536];
        int count = 0;
        for (;;) {
            pollfd p{m_fd, POLLIN, 0};
            if (poll(&p, 1, 10000) <= 0) {
                *end = End::Quiet;
                break;
            }
            ssize_t n = recv(m_fd, chunk, sizeof chunk, 0);
            if (n < 0) {
                *end = errno == ECONNRESET ? End::Reset : End::Quiet;
                break;
            }
            if (n == 0) {
                *end = End::Closed;
                break;
            }
            ++count;
            got.append(chunk, static_cast<std::size_t>(n));
            if (got.find('\f') != std::string::npos) {
                *end = End::FormFeed;
                break;
            }
        }
        if (pieces) {
            *pieces = count;
        }
        return got;
    }

    // The reply to one query, which must end in a formfeed.
    std::string Ask(std::string_view query)
    {
        End end{};
        EXPECT_TRUE(Send(query)) << query;
        std::string reply = Read(&end);
        EXPECT_EQ(end, End::FormFeed) << query;
        return reply;
    }

    void Close()
    {
        if (m_fd >= 0) {
            close(m_fd);
            m_fd = -1;
        }
    }

private:
    int m_fd = -1;
};

} // namespace pjlsim_test
