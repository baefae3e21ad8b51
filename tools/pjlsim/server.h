// The simulated printer's PJL port: a TCP listener on one IPv4 address that answers queries
// from a profile, one connection at a time, with optional faults.
#pragma once

#include "profile.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace pjlsim {

enum class FaultMode
{
    Silence, // no answer
    Drip,    // the reply one byte at a time, with a pause after each
    Cut,     // the reply without its formfeed, then the connection is closed
    Garbage, // bytes that are no PJL, ended by a formfeed
    Reset,   // the connection is reset instead of answered
    Big,     // the reply padded beyond the driver's 32,768-byte buffer
    Refuse,  // nothing listens: connections are refused
    Hangup,  // connections are accepted and closed at once
};

struct Fault
{
    FaultMode mode;
    std::string query; // a query name of replies.h; empty means every query
};

// Parses "MODE" or "MODE:QUERY". On failure returns nothing and sets *error.
std::optional<Fault> ParseFault(std::string_view text, std::string* error);

// The fault that applies to a query, or nothing.
const Fault* FaultFor(const std::vector<Fault>& faults, std::string_view query);

// Size of a reply under the Big fault.
constexpr std::size_t kBigReplySize = 36864;

// Bytes sent under the Garbage fault, formfeed included: no zero, no '@', one formfeed last.
std::string GarbageBytes();

struct ServerOptions
{
    std::string address = "127.0.0.1";
    std::uint16_t port = 2000; // 0 picks a free port
    std::vector<Fault> faults;
    unsigned delayMs = 20;                       // pause after each byte of a dripped reply
    bool once = false;                           // stop after the first connection
    std::function<void(const std::string&)> log; // one line per event; called on the server thread
};

class Server
{
public:
    Server(Profile profile, ServerOptions options);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // Binds (and listens, unless connections are refused). Returns false with *error set.
    bool Open(std::string* error);
    // The bound port, after Open.
    std::uint16_t Port() const { return m_port; }
    // Serves until RequestStop, or after one connection with options.once.
    void Run();
    // Open, then Run on a background thread.
    bool Start(std::string* error);
    // Ends Run from any thread or a signal handler; safe to call more than once.
    void RequestStop() noexcept;
    // RequestStop, then waits for the background thread.
    void Stop();
    // Connections accepted so far.
    unsigned Connections() const { return m_connections.load(); }

private:
    enum class Wait
    {
        Ready,
        Stop,
        Error
    };
    Wait WaitFor(int fd, short events, int timeoutMs);
    bool Pause(unsigned ms);
    bool SendAll(int fd, std::string_view bytes);
    void Serve(int fd);
    bool Answer(int fd, const std::string& line);
    void Log(const std::string& text) const;

    Profile m_profile;
    ServerOptions m_options;
    int m_listen = -1;
    int m_wake[2] = {-1, -1};
    std::uint16_t m_port = 0;
    std::atomic<bool> m_stop{false};
    std::atomic<unsigned> m_connections{0};
    std::thread m_thread;
};

} // namespace pjlsim
