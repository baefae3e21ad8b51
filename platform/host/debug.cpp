// Debug output and breakpoints.
#include "hostinternal.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

struct DebugState
{
    std::function<void(const std::u16string&)> sink;
    int breaks = 0;
};

DebugState& State()
{
    static DebugState* state = new DebugState;
    return *state;
}

// A tracer (gdb, strace) shows as a non-zero TracerPid; without one SIGTRAP would kill us.
bool DebuggerAttached()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("TracerPid:", 0) == 0) {
            return std::strtol(line.c_str() + 10, nullptr, 10) != 0;
        }
    }
    return false;
}

} // namespace

namespace host {

void SetDebugOutputSink(std::function<void(const std::u16string&)> sink)
{
    detail::Lock lock(detail::StateMutex());
    State().sink = std::move(sink);
}

int DebugBreakCount()
{
    detail::Lock lock(detail::StateMutex());
    return State().breaks;
}

} // namespace host

extern "C" {

// Nothing to return. The text goes, as given, to standard error in UTF-8 when QLMHOST_TRACE
// is set, and to the sink a test installed; otherwise nowhere, as without a debugger.
void WINAPI OutputDebugStringW(LPCWSTR lpOutputString)
{
    if (!lpOutputString) {
        return;
    }
    std::u16string text = host::detail::FromW(lpOutputString);
    if (std::getenv("QLMHOST_TRACE")) {
        std::string utf8 = host::Utf16ToUtf8(text);
        std::fwrite(utf8.data(), 1, utf8.size(), stderr);
        std::fflush(stderr);
    }
    std::function<void(const std::u16string&)> sink;
    {
        host::detail::Lock lock(host::detail::StateMutex());
        sink = State().sink;
    }
    if (sink) {
        sink(text); // outside the lock: a sink may call the host
    }
}

// Counts the call; breaks into a debugger only when one is attached to the process.
void WINAPI DebugBreak(void)
{
    {
        host::detail::Lock lock(host::detail::StateMutex());
        ++State().breaks;
    }
    if (DebuggerAttached()) {
        std::raise(SIGTRAP);
    }
}

} // extern "C"
