// Tracing, assertions and debug switches.
#include "qlmtrace.h"

#include "wstr.h"

#include <cstdlib>

thread_local constinit BOOL g_bTraceQLMUtils = 0;
thread_local constinit BOOL g_bTraceQLMPrinterFunctions = 0;
thread_local constinit BOOL g_bTraceQLMRegistryFunctions = 0;
thread_local constinit BOOL g_bTraceParameters = 0;
thread_local constinit BOOL g_bLog = 0;
thread_local constinit BOOL g_bTrace = 1;
thread_local constinit BOOL g_bTraceFunctionEntry = 0;
thread_local constinit BOOL g_bIncludeProcess = 0;
thread_local constinit BOOL g_bAssertMsgBox = 0;
thread_local constinit BOOL g_bTraceASSERT = 0;
thread_local constinit BOOL g_bTraceQLMSocket = 0;

thread_local const TVODebugSwitch g_DebugSwitches[11] = {
    {&g_bTraceQLMUtils, TEXT("g_bTraceQLMUtils"),
     TEXT("Turns on tracing of all QLM utility functions")},
    {&g_bTraceQLMPrinterFunctions, TEXT("g_bTraceQLMPrinterFunctions"),
     TEXT("Turns on tracing of all QLM printer utility functions")},
    {&g_bTraceQLMRegistryFunctions, TEXT("g_bTraceQLMRegistryFunctions"),
     TEXT("Turns on tracing of all QLM registry utility functions")},
    {&g_bTraceParameters, TEXT("g_bTraceParameters"),
     TEXT("Turns on tracing of parameters of functions being traced")},
    {&g_bLog, TEXT("g_bLog"), TEXT("Turns on logging to a file")},
    {&g_bTrace, TEXT("g_bTrace"), TEXT("Turns on tracing globally")},
    {&g_bTraceFunctionEntry, TEXT("g_bTraceFunctionEntry"),
     TEXT("Turns on tracing of function entry and exit")},
    {&g_bIncludeProcess, TEXT("g_bIncludeProcess"),
     TEXT("Includes process ID in trace statements")},
    {&g_bAssertMsgBox, TEXT("g_bAssertMsgBox"),
     TEXT("TRUE: ASSERT pops up a message box; FALSE: it only traces")},
    {&g_bTraceASSERT, TEXT("g_bTraceASSERT"), TEXT("Turns on tracing in ASSERTs")},
    {&g_bTraceQLMSocket, TEXT("g_bTraceQLMSocket"),
     TEXT("Turns on tracing of QLM Socket functions")},
};

#define QLM_DEFINE_TRACE_FLAG(name) thread_local constinit BOOL g_bTrace##name = 0;
QLM_TRACE_FLAGS(QLM_DEFINE_TRACE_FLAG)
#undef QLM_DEFINE_TRACE_FLAG

thread_local constinit BOOL g_bDontBeOptimized = 0;
thread_local constinit BOOL g_bToggleEMFSpooling = 0;

// Shared with the rendering half, so it names flags that this library never tests.
#define ROW(name)                                                                                  \
    {                                                                                              \
        &g_bTrace##name, TEXT(#name), 0                                                            \
    }
#define ROW2(name, flag)                                                                           \
    {                                                                                              \
        &flag, TEXT(#name), 0                                                                      \
    }
thread_local const TVOTraceFlag g_TraceFlags[] = {
    ROW(ALLTVOHPGL2),
    ROW(AllTVONTKMDriver),
    ROW(ALLTVORTL),
    ROW(BitBLT),
    ROW(BitBLTWithSource),
    ROW(BitBLTNoSource),
    ROW(BitmapRealize),
    ROW(CopyBits),
    ROW(DDI),
    ROW(LINEATTRS),
    ROW(PDEV),
    ROW(PE),
    ROW(PenStyle),
    ROW(RealizeBrush),
    ROW(StretchBLT),
    ROW(Surface),
    ROW(TVOFixed),
    ROW(TVOHPGL2),
    ROW(TVONTKMDriver),
    ROW(TVOPJL),
    ROW(TVORTL),
    ROW(AllPathAPIs),
    ROW(StrokePath),
    ROW(FillPath),
    ROW(StrokeAndFillPath),
    ROW(InitLineAttrs),
    ROW(CreatePolyLine),
    ROW(CreatePolygon),
    ROW(TextOut),
    ROW(StartDoc),
    ROW(HPGL2Initialize),
    ROW(Brush),
    ROW(SetRasterFill),
    ROW(BeginDoc),
    ROW(BeginPage),
    ROW(DrawMode),
    ROW(ClipRect),
    ROW(AllCompression),
    ROW(AdaptiveCompression),
    ROW(RLECompression),
    ROW(TIFFCompression),
    ROW(DeltaCompression),
    ROW(StartPage),
    ROW(TVODevice),
    ROW(Escape),
    ROW(IgnoreClipRect),
    ROW2(DevmodeLife_RENDER, g_bTraceDevmodeLife),
    ROW2(SetPrinter_RENDER, g_bTraceSetPrinter),
    ROW2(TVOAcct_RENDER, g_bTraceTVOAcct),
    ROW2(TVOConfig_RENDER, g_bTraceTVOConfig),
    ROW2(TVODevMode_RENDER, g_bTraceTVODevMode),
    ROW2(TVODMRegistry_RENDER, g_bTraceTVODMRegistry),
    ROW2(TVOLanguageMonitor_RENDER, g_bTraceTVOLanguageMonitor),
    ROW2(TVOMem_RENDER, g_bTraceTVOMem),
    ROW2(TVOSpool_RENDER, g_bTraceTVOSpool),
    ROW2(DontBeOptimized_RENDER, g_bDontBeOptimized),
    ROW2(QLMUtils_RENDER, g_bTraceQLMUtils),
    ROW2(ASSERT_RENDER, g_bTraceASSERT),
    ROW2(DevmodeLife_UI, g_bTraceDevmodeLife),
    ROW2(SetPrinter_UI, g_bTraceSetPrinter),
    ROW2(TVOAcct_UI, g_bTraceTVOAcct),
    ROW2(TVOConfig_UI, g_bTraceTVOConfig),
    ROW2(TVODevMode_UI, g_bTraceTVODevMode),
    ROW2(TVODMRegistry_UI, g_bTraceTVODMRegistry),
    ROW2(TVOLanguageMonitor_UI, g_bTraceTVOLanguageMonitor),
    ROW2(TVOMem_UI, g_bTraceTVOMem),
    ROW2(TVOSpool_UI, g_bTraceTVOSpool),
    ROW2(DontBeOptimized_UI, g_bDontBeOptimized),
    ROW2(QLMUtils_UI, g_bTraceQLMUtils),
    ROW2(ASSERT_UI, g_bTraceASSERT),
    ROW(UIDDI),
    ROW(Propsheets),
    ROW(TVODialog),
    ROW(TVOTab),
    ROW(PaperTab),
    ROW(JobTab),
    ROW(RenderTab),
    ROW(GraphicsTab),
    ROW(AboutTab),
    ROW(DeviceOptionsDlg),
    ROW(LabelDlg),
    ROW(RasterStampDlg),
    ROW(FinishingDlg),
    ROW(MediaInfoDlg),
    ROW(UserDefinedMediaDlg),
    ROW(TVORollConfigDlg),
    ROW(PrinterIPDialog),
    ROW(AllPrinterIPDialog),
    ROW(Gamma),
    ROW(TVONTUIDriver),
    ROW(DebugTab),
    ROW(TVOSocket),
    ROW(ParsePJL),
    ROW(LowLevelParser),
    ROW(LFK),
    ROW(QLMRefresh),
    ROW(Finisher),
    ROW(DynamicMedia),
    ROW(InkLimit),
    ROW(DeviceCapabilities),
    {nullptr, nullptr, 0},
};
#undef ROW
#undef ROW2

namespace {

// Set by DllMain at load, before any call, and only read after: one for the process.
const WCHAR* s_pszModuleName = TEXT("QLMUIDrv");
thread_local constinit int s_nDepth = 0;
// Set while the log file's own failure is traced, so that the line does not try the file again.
thread_local constinit bool s_bInLogFailure = false;

const WCHAR kLOG_FILE[] = TEXT("C:\\QLM_DEBUG.TXT");
constexpr int kMAX_INDENT = 64;

BOOL FormatHasNewline(const WCHAR* format)
{
    return WstrChr(format, TEXT('\n')) != nullptr;
}

// Appends "%S: %S" of the module name and the line to the log file, opened for this line only so
// that a crash loses nothing.
void AppendToLogFile(const WCHAR* line)
{
    HANDLE hFile = CreateFileW(kLOG_FILE, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                               nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (hFile == INVALID_HANDLE_VALUE) {
        s_bInLogFailure = true;
        Trace(TEXT("Attempt to open log file failed"));
        s_bInLogFailure = false;
        return;
    }
    WCHAR text[2 * (kTRACE_MAX_LINE + 2)];
    WstrPrintf(text, sizeof(text) / sizeof(text[0]), TEXT("%s: %s"), s_pszModuleName, line);
    char bytes[sizeof(text) * 2];
    size_t cb = WstrToUtf8(bytes, sizeof(bytes), text);
    DWORD written = 0;
    WriteFile(hFile, bytes, static_cast<DWORD>(cb), &written, nullptr);
    CloseHandle(hFile);
}

} // namespace

TVOTraceFlagScope::TVOTraceFlagScope(BOOL flags) : m_bSavedTrace(g_bTrace)
{
    g_bTrace = flags;
}

TVOTraceFlagScope::~TVOTraceFlagScope()
{
    g_bTrace = m_bSavedTrace;
}

TVOTraceFunctionScope::TVOTraceFunctionScope(const WCHAR* pszFunction, BOOL flags)
    : TVOTraceFunctionScope(pszFunction, flags, nullptr)
{
}

TVOTraceFunctionScope::TVOTraceFunctionScope(const WCHAR* pszFunction, BOOL flags,
                                             const WCHAR* pszParameters)
    : m_pszFunction(pszFunction), m_flags(flags), m_bTraceAtEntry(g_bTrace)
{
    g_bTrace = g_bTraceFunctionEntry | m_flags;
    if (m_bTraceAtEntry || g_bTraceFunctionEntry || m_flags) {
        if (pszParameters)
            Trace(TEXT("Entered function:%s(%s)\n"), m_pszFunction, pszParameters);
        else
            Trace(TEXT("Entered function:%s\n"), m_pszFunction);
    }
    if (s_nDepth < kTRACE_MAX_DEPTH)
        s_nDepth++;
    g_bTrace = m_bTraceAtEntry;
}

TVOTraceFunctionScope::~TVOTraceFunctionScope()
{
    BOOL bTraceAtExit = g_bTrace;
    g_bTrace = g_bTraceFunctionEntry | m_flags;
    if (s_nDepth > 0)
        s_nDepth--;
    if (m_flags || g_bTraceFunctionEntry || bTraceAtExit)
        Trace(TEXT("Exited  function:%s\n"), m_pszFunction);
    g_bTrace = m_bTraceAtEntry;
}

void Trace(const WCHAR* format, ...)
{
    if (!g_bTrace)
        return;

    WCHAR indent[kMAX_INDENT + 1];
    int cchIndent = 2 * s_nDepth < kMAX_INDENT ? 2 * s_nDepth : kMAX_INDENT;
    for (int i = 0; i < cchIndent; i++)
        indent[i] = TEXT(' ');
    indent[cchIndent] = 0;

    WCHAR text[kTRACE_MAX_LINE + 1];
    va_list args;
    va_start(args, format);
    WstrVPrintf(text, kTRACE_MAX_LINE + 1, format, args);
    va_end(args);

    // Room for the newline behind a line that was cut at its limit.
    WCHAR line[kTRACE_MAX_LINE + 2];
    size_t cch =
        WstrPrintf(line, kTRACE_MAX_LINE + 1, TEXT("%s:%s%s"), s_pszModuleName, indent, text);
    if (!FormatHasNewline(format)) {
        line[cch] = TEXT('\n');
        line[cch + 1] = 0;
    }

    OutputDebugStringW(line);
    if (g_bLog && !s_bInLogFailure)
        AppendToLogFile(line);
}

void Assert(const WCHAR* pszFile, int line, const char* pszExpression)
{
    {
        TVOTraceFlagScope scope(g_bTraceASSERT);
        Trace(TEXT("***ASSERT***(%S) failed, File %s, line %d\r\n"), pszExpression, pszFile, line);
    }
    if (!g_bAssertMsgBox)
        return;

    WCHAR text[1024];
    WstrPrintf(text, sizeof(text) / sizeof(text[0]),
               TEXT("***Assertion Failed***\n(%S)\nFile %s\n\tline %d"), pszExpression, pszFile,
               line);
    int answer = MessageBoxW(GetDesktopWindow(), text, TEXT("Assertion Failed!"),
                             MB_ABORTRETRYIGNORE | MB_ICONERROR | MB_SYSTEMMODAL);
    if (answer == IDIGNORE)
        return;
    if (answer == IDRETRY) {
        DebugBreak();
        return;
    }
    abort();
}

BOOL TraceCouldShow(BOOL flags)
{
    return flags || g_bTraceFunctionEntry || g_bTraceASSERT || g_bAssertMsgBox;
}

const WCHAR* TraceBOOL(BOOL b)
{
    return b ? TEXT("TRUE") : TEXT("FALSE");
}

void TraceMemory(const void* p, DWORD cb, const WCHAR* pszTitle)
{
    if (!p) {
        Trace(TEXT("    pointer is NULL"));
        return;
    }
    Trace(TEXT("%s at 0x%llX"), pszTitle,
          static_cast<unsigned long long>(reinterpret_cast<ULONG_PTR>(p)));
    const BYTE* bytes = static_cast<const BYTE*>(p);
    for (DWORD offset = 0; offset < cb; offset += 16) {
        WCHAR line[6 + 16 * 3 + 16 + 1];
        size_t cch = WstrPrintf(line, 7, TEXT("%04x: "), offset);
        WCHAR chars[17];
        for (DWORD i = 0; i < 16; i++) {
            if (offset + i < cb) {
                BYTE b = bytes[offset + i];
                cch += WstrPrintf(line + cch, 4, TEXT("%02x "), b);
                chars[i] = (b >= 0x20 && b < 0x7F) ? static_cast<WCHAR>(b) : TEXT('.');
            } else {
                cch += WstrPrintf(line + cch, 4, TEXT("   "));
                chars[i] = TEXT(' ');
            }
        }
        chars[16] = 0;
        WstrCopy(line + cch, sizeof(line) / sizeof(line[0]) - cch, chars);
        Trace(TEXT("%s"), line);
    }
}

void SetTraceModuleName(const WCHAR* pszName)
{
    s_pszModuleName = pszName ? pszName : TEXT("");
}

const WCHAR* GetTraceModuleName()
{
    return s_pszModuleName;
}

int GetTraceDepth()
{
    return s_nDepth;
}
