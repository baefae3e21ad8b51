#include "server.h"

#include "replies.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace pjlsim {
namespace {

constexpr std::pair<std::string_view, FaultMode> kFaultNames[] = {
    {"silence", FaultMode::Silence}, {"drip", FaultMode::Drip},    {"cut", FaultMode::Cut},
    {"garbage", FaultMode::Garbage}, {"reset", FaultMode::Reset},  {"big", FaultMode::Big},
    {"refuse", FaultMode::Refuse},   {"hangup", FaultMode::Hangup}};

// A client that sends without line ends must not grow the buffer without bound.
constexpr std::size_t kMaxPending = 65536;

std::string SystemError(const char* what)
{
    return std::string(what) + ": " + std::strerror(errno);
}

bool ConnectionLevel(FaultMode mode)
{
    return mode == FaultMode::Refuse || mode == FaultMode::Hangup;
}

// A reply grown past the driver's receive buffer with lines that every list skips.
std::string Padded(std::string reply)
{
    if (!reply.empty() && reply.back() == kFormFeed) {
        reply.pop_back();
    }
    std::string line(62, 'X');
    line.front() = '\t';
    line += "\r\n";
    while (reply.size() + 1 < kBigReplySize) {
        reply += line.substr(0, std::min(line.size(), kBigReplySize - 1 - reply.size()));
    }
    return reply + kFormFeed;
}

// Closes with a reset: a zero linger time makes close() send RST instead of FIN.
void ResetClose(int fd)
{
    linger lin{};
    lin.l_onoff = 1;
    lin.l_linger = 0;
    setsockopt(fd, SOL_SOCKET, SO_LINGER, &lin, sizeof lin);
    close(fd);
}

} // namespace

std::optional<Fault> ParseFault(std::string_view text, std::string* error)
{
    std::string_view modeText = text.substr(0, text.find(':'));
    std::string query;
    if (modeText.size() < text.size()) {
        for (char c : text.substr(modeText.size() + 1)) {
            query += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        }
    }
    for (auto [name, mode] : kFaultNames) {
        if (name != modeText) {
            continue;
        }
        if (modeText.size() < text.size()) {
            if (ConnectionLevel(mode)) {
                *error = "fault " + std::string(name) + " acts on the connection, not on a query";
                return std::nullopt;
            }
            if (!IsQueryName(query)) {
                *error = "unknown query \"" + query +
                         "\" (ID, CONFIG, VARIABLES, TVOFONTS, TVORASTERSTAMPS, TVOFINISHER, "
                         "STATUS, MEMORY, ECHO)";
                return std::nullopt;
            }
        }
        return Fault{mode, query};
    }
    *error = "unknown fault \"" + std::string(modeText) +
             "\" (silence, drip, cut, garbage, reset, big, refuse, hangup)";
    return std::nullopt;
}

const Fault* FaultFor(const std::vector<Fault>& faults, std::string_view query)
{
    for (const Fault& f : faults) {
        if (!ConnectionLevel(f.mode) && (f.query.empty() || f.query == query)) {
            return &f;
        }
    }
    return nullptr;
}

std::string GarbageBytes()
{
    // A fixed sequence, so that a failing test sees the same bytes again.
    std::string out;
    std::uint32_t state = 2463534242u;
    while (out.size() < 511) {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        char c = static_cast<char>(state & 0xff);
        if (c != 0 && c != kFormFeed && c != '@') {
            out += c;
        }
    }
    return out + kFormFeed;
}

Server::Server(Profile profile, ServerOptions options)
    : m_profile(std::move(profile)), m_options(std::move(options))
{
}

Server::~Server()
{
    Stop();
    if (m_listen >= 0) {
        close(m_listen);
    }
    for (int fd : m_wake) {
        if (fd >= 0) {
            close(fd);
        }
    }
}

void Server::Log(const std::string& text) const
{
    if (m_options.log) {
        m_options.log(text);
    }
}

bool Server::Open(std::string* error)
{
    if (m_wake[0] < 0 && pipe2(m_wake, O_CLOEXEC | O_NONBLOCK) != 0) {
        *error = SystemError("pipe");
        return false;
    }
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(m_options.port);
    if (inet_pton(AF_INET, m_options.address.c_str(), &addr.sin_addr) != 1) {
        *error = "\"" + m_options.address + "\" is not an IPv4 address";
        return false;
    }
    m_listen = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (m_listen < 0) {
        *error = SystemError("socket");
        return false;
    }
    int on = 1;
    setsockopt(m_listen, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    const std::string where = m_options.address + ":" + std::to_string(m_options.port);
    if (bind(m_listen, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0) {
        *error = SystemError(("cannot bind " + where).c_str());
        close(m_listen);
        m_listen = -1;
        return false;
    }
    socklen_t len = sizeof addr;
    getsockname(m_listen, reinterpret_cast<sockaddr*>(&addr), &len);
    m_port = ntohs(addr.sin_port);
    // A bound socket that does not listen answers every connection with a reset: refused.
    bool refuse = false;
    for (const Fault& f : m_options.faults) {
        refuse = refuse || f.mode == FaultMode::Refuse;
    }
    if (!refuse && listen(m_listen, 8) != 0) {
        *error = SystemError(("cannot listen on " + where).c_str());
        close(m_listen);
        m_listen = -1;
        return false;
    }
    return true;
}

bool Server::Start(std::string* error)
{
    if (!Open(error)) {
        return false;
    }
    m_thread = std::thread([this] { Run(); });
    return true;
}

void Server::RequestStop() noexcept
{
    m_stop.store(true);
    if (m_wake[1] >= 0) {
        char byte = 1;
        ssize_t ignored = write(m_wake[1], &byte, 1);
        (void)ignored;
    }
}

void Server::Stop()
{
    RequestStop();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

Server::Wait Server::WaitFor(int fd, short events, int timeoutMs)
{
    pollfd fds[2] = {{m_wake[0], POLLIN, 0}, {fd, events, 0}};
    for (;;) {
        if (m_stop.load()) {
            return Wait::Stop;
        }
        int n = poll(fds, fd >= 0 ? 2 : 1, timeoutMs);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0) {
            return Wait::Error;
        }
        if (fds[0].revents != 0 || m_stop.load()) {
            return Wait::Stop;
        }
        return Wait::Ready; // data, hang-up, error or time-out: the caller's next call tells
    }
}

bool Server::Pause(unsigned ms)
{
    return WaitFor(-1, 0, static_cast<int>(ms)) == Wait::Ready;
}

bool Server::SendAll(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        if (WaitFor(fd, POLLOUT, -1) != Wait::Ready) {
            return false;
        }
        ssize_t n = send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (n < 0 && (errno == EINTR || errno == EAGAIN)) {
            continue;
        }
        if (n <= 0) {
            Log(SystemError("send"));
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(n));
    }
    return true;
}

// Answers one line. Returns false when the connection is to end; then fd is closed already.
bool Server::Answer(int fd, const std::string& line)
{
    std::optional<std::string> name = QueryName(line);
    std::optional<std::string> reply = BuildReply(m_profile, line);
    if (!reply) {
        Log("ignored \"" + line + "\"");
        return true;
    }
    const Fault* fault = FaultFor(m_options.faults, *name);
    if (!fault) {
        Log(*name + ": " + std::to_string(reply->size()) + " bytes");
        if (SendAll(fd, *reply)) {
            return true;
        }
        close(fd);
        return false;
    }
    switch (fault->mode) {
    case FaultMode::Silence:
        Log(*name + ": silence");
        return true;
    case FaultMode::Drip:
        Log(*name + ": dripping " + std::to_string(reply->size()) + " bytes");
        for (char c : *reply) {
            if (!SendAll(fd, std::string_view(&c, 1)) || !Pause(m_options.delayMs)) {
                close(fd);
                return false;
            }
        }
        return true;
    case FaultMode::Cut:
        Log(*name + ": cut before the formfeed");
        reply->pop_back();
        SendAll(fd, *reply);
        shutdown(fd, SHUT_RDWR);
        close(fd);
        return false;
    case FaultMode::Garbage:
        Log(*name + ": garbage");
        if (SendAll(fd, GarbageBytes())) {
            return true;
        }
        close(fd);
        return false;
    case FaultMode::Reset:
        Log(*name + ": reset");
        ResetClose(fd);
        return false;
    case FaultMode::Big:
        Log(*name + ": " + std::to_string(kBigReplySize) + " bytes");
        if (SendAll(fd, Padded(*reply))) {
            return true;
        }
        close(fd);
        return false;
    case FaultMode::Refuse:
    case FaultMode::Hangup:
        break;
    }
    return true;
}

// Reads lines until the peer closes; every line is answered in turn. Closes fd.
void Server::Serve(int fd)
{
    std::string pending;
    char chunk[4096];
    for (;;) {
        Wait w = WaitFor(fd, POLLIN, -1);
        if (w != Wait::Ready) {
            close(fd);
            return;
        }
        ssize_t n = recv(fd, chunk, sizeof chunk, 0);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            Log(n == 0 ? "connection closed by the client" : SystemError("recv"));
            close(fd);
            return;
        }
        pending.append(chunk, static_cast<std::size_t>(n));
        // The driver sends the query and its line feed in two pieces: answer whole lines only.
        std::size_t lf;
        while ((lf = pending.find('\n')) != std::string::npos) {
            std::string line = pending.substr(0, lf);
            pending.erase(0, lf + 1);
            if (!line.empty() && line.back() == '\r') {
                line.pop_back();
            }
            if (line.empty()) {
                continue;
            }
            if (!Answer(fd, line)) {
                return;
            }
        }
        if (pending.size() > kMaxPending) {
            Log("line too long, closing");
            close(fd);
            return;
        }
    }
}

void Server::Run()
{
    if (m_listen < 0) {
        return;
    }
    bool hangup = false, refuse = false;
    for (const Fault& f : m_options.faults) {
        hangup = hangup || f.mode == FaultMode::Hangup;
        refuse = refuse || f.mode == FaultMode::Refuse;
    }
    if (refuse) {
        while (WaitFor(-1, 0, -1) == Wait::Ready) {
        }
        return;
    }
    for (;;) {
        Wait w = WaitFor(m_listen, POLLIN, -1);
        if (w != Wait::Ready) {
            return;
        }
        int fd = accept4(m_listen, nullptr, nullptr, SOCK_CLOEXEC);
        if (fd < 0) {
            if (errno == EINTR || errno == ECONNABORTED || errno == EAGAIN) {
                continue;
            }
            Log(SystemError("accept"));
            return;
        }
        ++m_connections;
        if (hangup) {
            Log("connection accepted and closed");
            close(fd);
        } else {
            Log("connection accepted");
            Serve(fd);
        }
        if (m_options.once || m_stop.load()) {
            return;
        }
    }
}

} // namespace pjlsim
