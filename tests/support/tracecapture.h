// Captures what the driver sends to OutputDebugStringW, and restores every trace switch that a
// test changes, so that tests do not leak switches into each other.
#pragma once

#include "driver/foundation/qlmtrace.h"
#include "platform/host/host.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

class TraceCapture
{
public:
    TraceCapture()
    {
        host::SetDebugOutputSink(
            [this](const std::u16string& line) { m_lines.push_back(host::Utf16ToUtf8(line)); });
    }
    ~TraceCapture() { host::SetDebugOutputSink(nullptr); }

    const std::vector<std::string>& lines() const { return m_lines; }
    void clear() { m_lines.clear(); }
    // All lines joined, for "contains" checks.
    std::string text() const
    {
        std::string all;
        for (const std::string& line : m_lines)
            all += line;
        return all;
    }
    bool contains(const std::string& part) const { return text().find(part) != std::string::npos; }

private:
    std::vector<std::string> m_lines;
};

// Saves the eleven switches and every module flag, and puts them back.
class SwitchGuard
{
public:
    SwitchGuard()
    {
        for (const TVODebugSwitch& row : g_DebugSwitches)
            m_switches.push_back(*row.pSwitch);
        for (const TVOTraceFlag* row = g_TraceFlags; row->pFlag; row++)
            m_flags.push_back(*row->pFlag);
        m_emf = g_bToggleEMFSpooling;
    }
    ~SwitchGuard()
    {
        size_t i = 0;
        for (const TVODebugSwitch& row : g_DebugSwitches)
            *row.pSwitch = m_switches[i++];
        i = 0;
        for (const TVOTraceFlag* row = g_TraceFlags; row->pFlag; row++)
            *row->pFlag = m_flags[i++];
        g_bToggleEMFSpooling = m_emf;
    }

private:
    std::vector<BOOL> m_switches;
    std::vector<BOOL> m_flags;
    BOOL m_emf;
};
