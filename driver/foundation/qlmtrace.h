// Tracing, assertions and debug switches.
//
// Every traced function opens a flag scope and then a function scope (QLM_TRACE_SCOPE does
// both). Trace lines go to OutputDebugStringW and, with g_bLog, to the log file. An assertion
// reports and returns: the code after it must cope. The switches, read from the printer data
// key "DebugSettings", and the scopes' state are per thread: the spooler calls in on many
// threads at once, and one call's scopes must neither see nor change another's.
#pragma once

#include "../../platform/win32.h"

// ---- The eleven global switches --------------------------------------------------------
extern thread_local constinit BOOL g_bTraceQLMUtils;
extern thread_local constinit BOOL g_bTraceQLMPrinterFunctions;
extern thread_local constinit BOOL g_bTraceQLMRegistryFunctions;
extern thread_local constinit BOOL g_bTraceParameters;
extern thread_local constinit BOOL g_bLog;
extern thread_local constinit BOOL g_bTrace;
extern thread_local constinit BOOL g_bTraceFunctionEntry;
extern thread_local constinit BOOL g_bIncludeProcess;
extern thread_local constinit BOOL g_bAssertMsgBox;
extern thread_local constinit BOOL g_bTraceASSERT;
extern thread_local constinit BOOL g_bTraceQLMSocket;

// A documentation row for a global switch. Nothing reads this table at run time. Its rows
// point at the calling thread's switches, so each thread has the table of its own.
struct TVODebugSwitch
{
    BOOL* pSwitch;
    const WCHAR* pszName;
    const WCHAR* pszDescription;
};
extern thread_local const TVODebugSwitch g_DebugSwitches[11];

// ---- Module trace flags ------------------------------------------------------------------
// One flag per name of the switch table. The _RENDER and _UI rows of a module share a flag;
// QLMUtils_* is g_bTraceQLMUtils, ASSERT_* is g_bTraceASSERT.
#define QLM_TRACE_FLAGS(X)                                                                         \
    X(ALLTVOHPGL2)                                                                                 \
    X(AllTVONTKMDriver) X(ALLTVORTL) X(BitBLT) X(BitBLTWithSource) X(BitBLTNoSource) X(            \
        BitmapRealize) X(CopyBits) X(DDI) X(LINEATTRS) X(PDEV) X(PE) X(PenStyle) X(RealizeBrush)   \
        X(StretchBLT) X(Surface) X(TVOFixed) X(TVOHPGL2) X(TVONTKMDriver) X(TVOPJL) X(TVORTL) X(   \
            AllPathAPIs) X(StrokePath) X(FillPath) X(StrokeAndFillPath) X(InitLineAttrs)           \
            X(CreatePolyLine) X(CreatePolygon) X(TextOut) X(StartDoc) X(HPGL2Initialize) X(Brush)  \
                X(SetRasterFill) X(BeginDoc) X(BeginPage) X(DrawMode) X(ClipRect) X(               \
                    AllCompression) X(AdaptiveCompression) X(RLECompression) X(TIFFCompression)    \
                    X(DeltaCompression) X(StartPage) X(TVODevice) X(Escape) X(IgnoreClipRect)      \
                        X(DevmodeLife) X(SetPrinter) X(TVOAcct) X(TVOConfig) X(TVODevMode)         \
                            X(TVODMRegistry) X(TVOLanguageMonitor) X(TVOMem) X(TVOSpool) X(UIDDI)  \
                                X(Propsheets) X(TVODialog) X(TVOTab) X(PaperTab) X(JobTab)         \
                                    X(RenderTab) X(GraphicsTab) X(AboutTab) X(DeviceOptionsDlg)    \
                                        X(LabelDlg) X(RasterStampDlg) X(FinishingDlg)              \
                                            X(MediaInfoDlg) X(UserDefinedMediaDlg)                 \
                                                X(TVORollConfigDlg) X(PrinterIPDialog)             \
                                                    X(AllPrinterIPDialog) X(Gamma)                 \
                                                        X(TVONTUIDriver) X(DebugTab) X(TVOSocket)  \
                                                            X(ParsePJL) X(LowLevelParser) X(LFK)   \
                                                                X(QLMRefresh) X(Finisher)          \
                                                                    X(DynamicMedia) X(InkLimit)    \
                                                                        X(DeviceCapabilities)

#define QLM_DECLARE_TRACE_FLAG(name) extern thread_local constinit BOOL g_bTrace##name;
QLM_TRACE_FLAGS(QLM_DECLARE_TRACE_FLAG)
#undef QLM_DECLARE_TRACE_FLAG

// DontBeOptimized_RENDER and _UI; set by the switch table, tested by the rendering half.
extern thread_local constinit BOOL g_bDontBeOptimized;
// "DBG_Toggle_EMF_Spooling": read with the switches, tested by the rendering half.
extern thread_local constinit BOOL g_bToggleEMFSpooling;

// A row of the switch table: the flag, its name in "DebugSettings", a reserved word.
struct TVOTraceFlag
{
    BOOL* pFlag;
    const WCHAR* pszName;
    DWORD dwReserved;
};
// 100 named rows, then a row with a null flag. The flags are the calling thread's, as for the
// switch table.
constexpr int kTRACE_FLAG_ROWS = 100;
extern thread_local const TVOTraceFlag g_TraceFlags[kTRACE_FLAG_ROWS + 1];

// ---- Scopes ------------------------------------------------------------------------------
constexpr int kTRACE_MAX_DEPTH = 20;
constexpr int kTRACE_MAX_LINE = 255;

// Sets the thread's g_bTrace to the module's flag word for the life of the scope.
class TVOTraceFlagScope
{
public:
    explicit TVOTraceFlagScope(BOOL flags);
    ~TVOTraceFlagScope();
    TVOTraceFlagScope(const TVOTraceFlagScope&) = delete;
    TVOTraceFlagScope& operator=(const TVOTraceFlagScope&) = delete;

private:
    BOOL m_bSavedTrace;
};

// Traces entry and exit of a function and keeps the thread's indentation depth.
class TVOTraceFunctionScope
{
public:
    TVOTraceFunctionScope(const WCHAR* pszFunction, BOOL flags);
    TVOTraceFunctionScope(const WCHAR* pszFunction, BOOL flags, const WCHAR* pszParameters);
    ~TVOTraceFunctionScope();
    TVOTraceFunctionScope(const TVOTraceFunctionScope&) = delete;
    TVOTraceFunctionScope& operator=(const TVOTraceFunctionScope&) = delete;

private:
    const WCHAR* m_pszFunction;
    BOOL m_flags;
    BOOL m_bTraceAtEntry;
};

#define QLM_TRACE_CONCAT2(a, b) a##b
#define QLM_TRACE_CONCAT(a, b)  QLM_TRACE_CONCAT2(a, b)
// Opens the flag scope and the function scope of a traced function.
#define QLM_TRACE_SCOPE(name, flags)                                                               \
    TVOTraceFlagScope QLM_TRACE_CONCAT(qlmFlagScope, __LINE__)(flags);                             \
    TVOTraceFunctionScope QLM_TRACE_CONCAT(qlmFunctionScope, __LINE__)(name, flags)

// ---- Lines, assertions, helpers ------------------------------------------------------------
// Formats with the wide conventions of WstrPrintf; a newline is added when the format has none.
void Trace(const WCHAR* format, ...);

// Reports a failed assertion: a trace line, and with g_bAssertMsgBox a message box whose
// answer may break into the debugger or end the process. Otherwise returns to the caller.
void Assert(const WCHAR* pszFile, int line, const char* pszExpression);

#define QLM_WIDEN2(s) TEXT(s)
#define QLM_WIDEN(s)  QLM_WIDEN2(s)
// Active in the released driver as in a debug build.
#define ASSERT(expr)                                                                               \
    do {                                                                                           \
        if (!(expr))                                                                               \
            Assert(QLM_WIDEN(__FILE__), __LINE__, #expr);                                          \
    } while (0)

// Whether a step traced under flags could leave anything to see: a line of its own, an entry
// line, or an assertion. A step whose only effects are its trace may be left out when not.
BOOL TraceCouldShow(BOOL flags);

// "TRUE" or "FALSE".
const WCHAR* TraceBOOL(BOOL b);
// Hex and character dump of memory, 16 bytes a line.
void TraceMemory(const void* p, DWORD cb, const WCHAR* pszTitle);

// The module name that prefixes every line ("QLMUIDrv", set by DllMain). One for the process:
// it is set at load, before any call, and only read after.
void SetTraceModuleName(const WCHAR* pszName);
const WCHAR* GetTraceModuleName();
// The calling thread's indentation depth, 0..kTRACE_MAX_DEPTH.
int GetTraceDepth();

