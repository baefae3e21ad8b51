// The trace layer: lines, scopes, assertions, the memory dump, the log file and the switches.
#include "support/hostprinter.h"
#include "support/tracecapture.h"

#include "driver/foundation/qlmtrace.h"
#include "driver/foundation/qlmswitches.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

namespace {

class TraceTest : public ::testing::Test
{
protected:
    SwitchGuard m_guard;
    TraceCapture m_capture;
};

void NestScopes(int levels, std::vector<int>* depths)
{
    if (levels == 0)
        return;
    QLM_TRACE_SCOPE(TEXT("Nested"), TRUE);
    depths->push_back(GetTraceDepth());
    NestScopes(levels - 1, depths);
}

} // namespace

TEST_F(TraceTest, LineIsModuleIndentTextAndOneNewline)
{
    g_bTrace = TRUE;
    Trace(TEXT("value %d"), 7);
    Trace(TEXT("has its own\n"));
    Trace(TEXT("argument %s"), TEXT("ends in newline\n"));
    ASSERT_EQ(m_capture.lines().size(), 3u);
    EXPECT_EQ(m_capture.lines()[0], "QLMUIDrv:value 7\n");
    EXPECT_EQ(m_capture.lines()[1], "QLMUIDrv:has its own\n")
        << "a newline in the format is enough";
    EXPECT_EQ(m_capture.lines()[2], "QLMUIDrv:argument ends in newline\n\n")
        << "only the format is looked at for the newline";
}

TEST_F(TraceTest, NothingIsSentWhileTraceIsOff)
{
    g_bTrace = FALSE;
    Trace(TEXT("hidden"));
    EXPECT_TRUE(m_capture.lines().empty());
}

TEST_F(TraceTest, LongLinesAreCutAt255Characters)
{
    g_bTrace = TRUE;
    std::u16string text(400, u'x');
    Trace(TEXT("%s"), text.c_str());
    ASSERT_EQ(m_capture.lines().size(), 1u);
    const std::string& line = m_capture.lines()[0];
    EXPECT_EQ(line.size(), 256u) << "255 characters and the newline";
    EXPECT_EQ(line.back(), '\n');
    EXPECT_EQ(line.compare(0, 9, "QLMUIDrv:"), 0);
}

TEST_F(TraceTest, FlagScopeSetsAndRestoresTheGlobalSwitch)
{
    g_bTrace = TRUE;
    {
        TVOTraceFlagScope scope(FALSE);
        EXPECT_EQ(g_bTrace, FALSE);
        Trace(TEXT("module flag off"));
        {
            TVOTraceFlagScope inner(TRUE);
            Trace(TEXT("module flag on"));
        }
        EXPECT_EQ(g_bTrace, FALSE);
    }
    EXPECT_EQ(g_bTrace, TRUE);
    ASSERT_EQ(m_capture.lines().size(), 1u);
    EXPECT_EQ(m_capture.lines()[0], "QLMUIDrv:module flag on\n");
}

TEST_F(TraceTest, FunctionScopeTracesEntryAndExitWhenItsFlagIsOn)
{
    g_bTraceFunctionEntry = FALSE;
    {
        QLM_TRACE_SCOPE(TEXT("Quiet"), FALSE);
    }
    EXPECT_TRUE(m_capture.lines().empty()) << "flag off and entry tracing off";

    {
        QLM_TRACE_SCOPE(TEXT("Loud"), TRUE);
        Trace(TEXT("inside"));
    }
    ASSERT_EQ(m_capture.lines().size(), 3u);
    EXPECT_EQ(m_capture.lines()[0], "QLMUIDrv:Entered function:Loud\n");
    EXPECT_EQ(m_capture.lines()[1], "QLMUIDrv:  inside\n") << "one level deeper";
    EXPECT_EQ(m_capture.lines()[2], "QLMUIDrv:Exited  function:Loud\n");
}

TEST_F(TraceTest, EntryTracingShowsFunctionsWhoseFlagIsOff)
{
    g_bTraceFunctionEntry = TRUE;
    {
        TVOTraceFlagScope flags(FALSE);
        TVOTraceFunctionScope function(TEXT("Counted"), FALSE, TEXT("a, b"));
        Trace(TEXT("not shown: the module flag is off"));
    }
    ASSERT_EQ(m_capture.lines().size(), 2u);
    EXPECT_EQ(m_capture.lines()[0], "QLMUIDrv:Entered function:Counted(a, b)\n");
    EXPECT_EQ(m_capture.lines()[1], "QLMUIDrv:Exited  function:Counted\n");
}

TEST_F(TraceTest, DepthStopsAtTwentyAndUnwindsToZero)
{
    ASSERT_EQ(GetTraceDepth(), 0);
    std::vector<int> depths;
    NestScopes(25, &depths);
    ASSERT_EQ(depths.size(), 25u);
    for (int i = 0; i < 25; i++)
        EXPECT_EQ(depths[i], i + 1 < 20 ? i + 1 : 20) << "scope " << i;
    EXPECT_EQ(GetTraceDepth(), 0) << "never below zero on the way out";

    // The deepest entry line is indented by 20 levels: 40 blanks.
    std::string deepest;
    for (const std::string& line : m_capture.lines())
        if (line.find("Entered") != std::string::npos)
            deepest = line;
    EXPECT_EQ(deepest, "QLMUIDrv:" + std::string(40, ' ') + "Entered function:Nested\n");
}

TEST_F(TraceTest, AssertTracesUnderItsOwnSwitchAndReturns)
{
    g_bTrace = TRUE;
    g_bTraceASSERT = FALSE;
    g_bAssertMsgBox = FALSE;
    Assert(TEXT("unit.cpp"), 12, "p != 0");
    EXPECT_TRUE(m_capture.lines().empty()) << "both switches off: nothing visible";
    EXPECT_TRUE(host::MessageBoxCalls().empty());

    g_bTraceASSERT = TRUE;
    Assert(TEXT("unit.cpp"), 12, "p != 0");
    ASSERT_EQ(m_capture.lines().size(), 1u);
    EXPECT_EQ(m_capture.lines()[0],
              "QLMUIDrv:***ASSERT***(p != 0) failed, File unit.cpp, line 12\r\n");
    EXPECT_EQ(g_bTrace, TRUE) << "the assertion's flag scope is closed again";
}

TEST_F(TraceTest, AssertMacroNamesTheExpressionAndThisFile)
{
    g_bTraceASSERT = TRUE;
    int* pNothing = nullptr;
    ASSERT(pNothing);
    ASSERT_EQ(m_capture.lines().size(), 1u);
    EXPECT_TRUE(m_capture.contains("***ASSERT***(pNothing) failed, File "));
    EXPECT_TRUE(m_capture.contains("test_qlmtrace.cpp, line "));
}

TEST_F(TraceTest, AssertMessageBoxIgnoreGoesOnRetryBreaks)
{
    g_bAssertMsgBox = TRUE;
    host::QueueMessageBoxAnswer(IDIGNORE);
    host::QueueMessageBoxAnswer(IDRETRY);
    int breaks = host::DebugBreakCount();

    Assert(TEXT("f.cpp"), 3, "x");
    EXPECT_EQ(host::DebugBreakCount(), breaks) << "ignore goes on without a break";
    Assert(TEXT("f.cpp"), 4, "y");
    EXPECT_EQ(host::DebugBreakCount(), breaks + 1) << "retry breaks into the debugger";

    std::vector<host::MessageBoxCall> calls = host::MessageBoxCalls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(host::Utf16ToUtf8(calls[0].text),
              "***Assertion Failed***\n(x)\nFile f.cpp\n\tline 3");
    EXPECT_EQ(host::Utf16ToUtf8(calls[0].caption), "Assertion Failed!");
    EXPECT_EQ(calls[0].type, 4114u) << "abort/retry/ignore, error icon, system modal";
    EXPECT_EQ(calls[0].owner, GetDesktopWindow());
}

TEST_F(TraceTest, AssertMessageBoxAbortEndsTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            g_bAssertMsgBox = TRUE;
            host::QueueMessageBoxAnswer(IDABORT);
            Assert(TEXT("f.cpp"), 5, "z");
        },
        "");
    EXPECT_DEATH(
        {
            // With no answer queued the box takes its default button, which is Abort.
            g_bAssertMsgBox = TRUE;
            Assert(TEXT("f.cpp"), 6, "w");
        },
        "");
}

TEST_F(TraceTest, MemoryDumpShowsHexAndPrintableCharacters)
{
    g_bTrace = TRUE;
    const char bytes[18] = {'D', 't', 'v', 'o', 0,   1,   0x7F, 'a', 'b',
                            'c', 'd', 'e', 'f', 'g', 'h', 'i',  'Z', '\n'};
    TraceMemory(bytes, sizeof(bytes), TEXT("record"));
    ASSERT_EQ(m_capture.lines().size(), 3u);
    EXPECT_EQ(m_capture.lines()[0].rfind("QLMUIDrv:record at 0x", 0), 0u);
    EXPECT_EQ(m_capture.lines()[1],
              "QLMUIDrv:0000: 44 74 76 6f 00 01 7f 61 62 63 64 65 66 67 68 69 Dtvo...abcdefghi\n");
    EXPECT_EQ(m_capture.lines()[2], "QLMUIDrv:0010: 5a 0a " + std::string(14 * 3, ' ') + "Z." +
                                        std::string(14, ' ') + "\n");

    m_capture.clear();
    TraceMemory(nullptr, 16, TEXT("nothing"));
    ASSERT_EQ(m_capture.lines().size(), 1u);
    EXPECT_EQ(m_capture.lines()[0], "QLMUIDrv:    pointer is NULL\n");
}

TEST_F(TraceTest, BoolText)
{
    EXPECT_EQ(host::Utf16ToUtf8(TraceBOOL(TRUE)), "TRUE");
    EXPECT_EQ(host::Utf16ToUtf8(TraceBOOL(7)), "TRUE");
    EXPECT_EQ(host::Utf16ToUtf8(TraceBOOL(FALSE)), "FALSE");
}

TEST_F(TraceTest, LogFileGetsEveryLineBehindTheModuleName)
{
    std::filesystem::path log = std::filesystem::path(host::HomeDirectory()) / "QLM_DEBUG.TXT";
    std::filesystem::remove(log);
    g_bTrace = TRUE;
    g_bLog = TRUE;
    Trace(TEXT("first"));
    Trace(TEXT("second %d"), 2);
    g_bLog = FALSE;
    Trace(TEXT("not logged"));

    std::ifstream in(log);
    std::stringstream content;
    content << in.rdbuf();
    EXPECT_EQ(content.str(), "QLMUIDrv: QLMUIDrv:first\nQLMUIDrv: QLMUIDrv:second 2\n");
    EXPECT_EQ(m_capture.lines().size(), 3u) << "the debugger sees every line as well";
}

TEST_F(TraceTest, LogFileThatCannotBeOpenedIsReportedOnce)
{
    std::string home = host::HomeDirectory();
    // A directory in the log file's place cannot be opened as a file.
    std::filesystem::path log = std::filesystem::path(home) / "QLM_DEBUG.TXT";
    std::filesystem::remove(log);
    std::filesystem::create_directory(log);
    g_bTrace = TRUE;
    g_bLog = TRUE;
    Trace(TEXT("line"));
    g_bLog = FALSE;
    std::filesystem::remove(log);

    ASSERT_EQ(m_capture.lines().size(), 2u);
    EXPECT_EQ(m_capture.lines()[0], "QLMUIDrv:line\n");
    EXPECT_EQ(m_capture.lines()[1], "QLMUIDrv:Attempt to open log file failed\n");
}

// The switch table: a null row ends it, names are unique, and twelve modules have a _RENDER and
// a _UI row that share one flag.
TEST(TraceFlags, TableHasItsHundredRowsInOrderWithSharedFlags)
{
    std::map<std::string, BOOL*> byName;
    std::vector<std::string> order;
    for (int i = 0; i < kTRACE_FLAG_ROWS; i++) {
        ASSERT_NE(g_TraceFlags[i].pFlag, nullptr) << i;
        order.push_back(host::Utf16ToUtf8(g_TraceFlags[i].pszName));
        byName[order.back()] = g_TraceFlags[i].pFlag;
    }
    EXPECT_EQ(g_TraceFlags[kTRACE_FLAG_ROWS].pFlag, nullptr) << "a null row ends the table";
    EXPECT_EQ(byName.size(), 100u) << "no name twice";
    const std::pair<int, const char*> kSamples[] = {
        {0, "ALLTVOHPGL2"},     {16, "TVOFixed"}, {46, "DevmodeLife_RENDER"},
        {58, "DevmodeLife_UI"}, {94, "LFK"},      {99, "DeviceCapabilities"}};
    for (const auto& [row, name] : kSamples)
        EXPECT_EQ(order[row], name) << row;

    const char* kModules[] = {"DevmodeLife",        "SetPrinter", "TVOAcct",
                              "TVOConfig",          "TVODevMode", "TVODMRegistry",
                              "TVOLanguageMonitor", "TVOMem",     "TVOSpool",
                              "DontBeOptimized",    "QLMUtils",   "ASSERT"};
    for (const char* module : kModules) {
        SCOPED_TRACE(module);
        ASSERT_TRUE(byName.count(std::string(module) + "_UI"));
        EXPECT_EQ(byName[std::string(module) + "_RENDER"], byName[std::string(module) + "_UI"]);
    }
    EXPECT_EQ(byName["QLMUtils_UI"], &g_bTraceQLMUtils);
    EXPECT_EQ(byName["ASSERT_UI"], &g_bTraceASSERT);
    EXPECT_EQ(byName["TVODevMode_UI"], &g_bTraceTVODevMode);
    EXPECT_EQ(byName["ParsePJL"], &g_bTraceParsePJL);

    std::set<BOOL*> distinct;
    for (const auto& [name, flag] : byName)
        distinct.insert(flag);
    EXPECT_EQ(distinct.size(), 88u) << "100 rows, twelve pairs sharing a flag";
}

TEST(TraceFlags, GlobalSwitchDefaultsAndDescriptions)
{
    std::set<std::string> names;
    for (const TVODebugSwitch& row : g_DebugSwitches) {
        std::string name = host::Utf16ToUtf8(row.pszName);
        names.insert(name);
        EXPECT_EQ(*row.pSwitch, name == "g_bTrace" ? 1 : 0) << name << ": only tracing is on";
        EXPECT_NE(host::Utf16ToUtf8(row.pszDescription), "") << name;
    }
    EXPECT_EQ(names.size(), 11u);
    EXPECT_EQ(host::Utf16ToUtf8(g_DebugSwitches[0].pszName), "g_bTraceQLMUtils");
    EXPECT_EQ(host::Utf16ToUtf8(g_DebugSwitches[8].pszDescription),
              "TRUE: ASSERT pops up a message box; FALSE: it only traces");
    EXPECT_EQ(host::Utf16ToUtf8(g_DebugSwitches[10].pszName), "g_bTraceQLMSocket");
}

// Switches live in the printer data key "DebugSettings" as 32-bit values.
class DebugSwitchTest : public TraceTest
{
protected:
    void SetSwitch(const std::u16string& name, std::vector<uint8_t> bytes, DWORD type = REG_DWORD)
    {
        host::DataValue value{u"DebugSettings", name, type, std::move(bytes)};
        ASSERT_TRUE(host::SetPrinterData(u"Plotter", value));
    }
    static std::vector<uint8_t> Word(DWORD v)
    {
        return {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)};
    }

    HostPrinter m_printer{u"Plotter"};
    HANDLE m_hPrinter = m_printer.handle();
};

TEST_F(DebugSwitchTest, RowsTakeTheirValuesAndAbsentOnesKeepTheirs)
{
    SetSwitch(u"DBG_AssertMsgBox", Word(1));
    SetSwitch(u"DBG_Toggle_EMF_Spooling", Word(1));
    SetSwitch(u"TVODevMode_UI", Word(1));
    SetSwitch(u"ParsePJL", Word(0));
    g_bTraceParsePJL = TRUE;
    g_bTraceTVOSocket = TRUE; // absent from the printer data

    ReadAllDebugSwitches(m_hPrinter);

    EXPECT_EQ(g_bAssertMsgBox, 1);
    EXPECT_EQ(g_bToggleEMFSpooling, 1);
    EXPECT_EQ(g_bTraceTVODevMode, 1);
    EXPECT_EQ(g_bTraceParsePJL, 0) << "a stored 0 switches a flag off";
    EXPECT_EQ(g_bTraceTVOSocket, TRUE) << "an absent switch keeps its value";
}

TEST_F(DebugSwitchTest, LaterRowOfASharedFlagWins)
{
    SetSwitch(u"TVODevMode_RENDER", Word(1));
    SetSwitch(u"TVODevMode_UI", Word(0));
    ReadAllDebugSwitches(m_hPrinter);
    EXPECT_EQ(g_bTraceTVODevMode, 0) << "the _UI row comes after the _RENDER row";
}

// One switch read alone, or all of them in one enumeration of the key: the same outcome.
TEST_F(DebugSwitchTest, ValueOfTheWrongSizeLeavesTheFlagAlone)
{
    SetSwitch(u"ParsePJL", {1, 0, 0, 0, 0, 0, 0, 0}, REG_BINARY);
    SetSwitch(u"QLMRefresh", {1, 0}, REG_BINARY);
    const struct
    {
        const char* how;
        void (*read)(HANDLE);
    } kReads[] = {
        {"one by one",
         [](HANDLE h) {
             EXPECT_FALSE(ReadDebugSwitch(h, TEXT("ParsePJL"), &g_bTraceParsePJL));
             EXPECT_FALSE(ReadDebugSwitch(h, TEXT("QLMRefresh"), &g_bTraceQLMRefresh));
         }},
        {"the whole table", [](HANDLE h) { ReadAllDebugSwitches(h); }},
    };
    for (const auto& read : kReads) {
        SCOPED_TRACE(read.how);
        g_bTraceParsePJL = FALSE;
        g_bTraceQLMRefresh = FALSE;
        g_bTrace = TRUE;
        m_capture.clear();
        SetLastError(0x57);
        read.read(m_hPrinter);
        EXPECT_EQ(g_bTraceParsePJL, FALSE);
        EXPECT_EQ(g_bTraceQLMRefresh, FALSE);
        EXPECT_TRUE(
            m_capture.contains("GetPrinterDataEx returns ea, GetLastError() is 57, ParsePJL is 0"))
            << "too long a value is ERROR_MORE_DATA (0xea)";
        EXPECT_TRUE(
            m_capture.contains("GetPrinterDataEx returns 0, GetLastError() is 57, QLMRefresh is 0"))
            << "too short a value is read and refused";
    }
}

TEST_F(DebugSwitchTest, EachRowIsTracedWithItsValue)
{
    SetSwitch(u"Finisher", Word(1));
    g_bTrace = TRUE;
    ReadAllDebugSwitches(m_hPrinter);
    EXPECT_TRUE(m_capture.contains("QLMUIDrv:Finisher = 1\n"));
    EXPECT_TRUE(m_capture.contains("QLMUIDrv:ALLTVOHPGL2 = 0\n"));
}
