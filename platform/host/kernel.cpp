// kernel32 and advapi32 odds: last error, version, locale, user name, ticks, ids, DLL calls.
#include "hostinternal.h"

#include <pwd.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace {
thread_local DWORD t_lastError = ERROR_SUCCESS;
} // namespace

namespace host::detail {

// Looked up once: the account database is a file, and Windows answers GetUserNameW from the
// process's token without reading one.
std::u16string LoginName()
{
    static const std::u16string name = [] {
        if (passwd* pw = getpwuid(geteuid()); pw && pw->pw_name && *pw->pw_name) {
            return Utf8ToUtf16(pw->pw_name);
        }
        if (const char* user = std::getenv("USER"); user && *user) {
            return Utf8ToUtf16(user);
        }
        return std::u16string(u"user");
    }();
    return name;
}

} // namespace host::detail

using namespace host::detail;

extern "C" {

// The calling thread's last error code. Successful calls mostly leave it alone, so a caller
// that wants to tell sets it first.
DWORD WINAPI GetLastError(void)
{
    return t_lastError;
}

// Sets the calling thread's last error; other threads keep theirs.
void WINAPI SetLastError(DWORD dwErrCode)
{
    t_lastError = dwErrCode;
}

// TRUE and the configured system version (host::SetSystemVersion, default 10.0.19045).
// Only the two structure sizes of the system are accepted in dwOSVersionInfoSize; any other
// gives FALSE with ERROR_INSUFFICIENT_BUFFER, as Windows does. The EX tail reports a
// workstation without service pack.
BOOL WINAPI GetVersionExW(LPOSVERSIONINFOW lpVersionInformation)
{
    if (!lpVersionInformation) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    DWORD size = lpVersionInformation->dwOSVersionInfoSize;
    if (size != sizeof(OSVERSIONINFOW) && size != sizeof(OSVERSIONINFOEXW)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    DWORD major, minor, build;
    host::GetSystemVersion(&major, &minor, &build);
    OSVERSIONINFOW* info = lpVersionInformation;
    info->dwMajorVersion = major;
    info->dwMinorVersion = minor;
    info->dwBuildNumber = build;
    info->dwPlatformId = VER_PLATFORM_WIN32_NT;
    std::memset(info->szCSDVersion, 0, sizeof info->szCSDVersion);
    if (size == sizeof(OSVERSIONINFOEXW)) {
        auto* ex = reinterpret_cast<OSVERSIONINFOEXW*>(info);
        ex->wServicePackMajor = 0;
        ex->wServicePackMinor = 0;
        ex->wSuiteMask = 0x0100; // VER_SUITE_SINGLEUSERTS, as a desktop system reports
        ex->wProductType = VER_NT_WORKSTATION;
        ex->wReserved = 0;
    }
    return TRUE;
}

// The number of WCHARs written including the NUL, or needed when cchData is 0; 0 on failure.
// Only LOCALE_IMEASURE is known: "0" metric, "1" US, as host::SetMetric chooses, for every
// locale id. With LOCALE_RETURN_NUMBER the answer is a DWORD, counted as two WCHARs.
int WINAPI GetLocaleInfoW(LCID Locale, LCTYPE LCType, LPWSTR lpLCData, int cchData)
{
    if (cchData < 0 || (cchData > 0 && !lpLCData)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    LCTYPE type = LCType & ~(LCTYPE(LOCALE_NOUSEROVERRIDE) | LOCALE_RETURN_NUMBER);
    if (type != LOCALE_IMEASURE) {
        SetLastError(ERROR_INVALID_FLAGS);
        return 0;
    }
    DWORD measure = host::IsMetric() ? 0 : 1;
    const int needed = 2;
    if (cchData == 0) {
        return needed;
    }
    if (cchData < needed) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    if (LCType & LOCALE_RETURN_NUMBER) {
        std::memcpy(lpLCData, &measure, sizeof measure);
    } else {
        lpLCData[0] = WCHAR(u'0' + measure);
        lpLCData[1] = 0;
    }
    return needed;
}

// TRUE with the name of host::UserName() and *pcbBuffer = its length + 1 (WCHARs, despite
// the parameter's name). Too small a buffer, or none: FALSE, ERROR_INSUFFICIENT_BUFFER and
// *pcbBuffer = the WCHARs needed including the NUL; the buffer is not touched.
BOOL WINAPI GetUserNameW(LPWSTR lpBuffer, LPDWORD pcbBuffer)
{
    if (!pcbBuffer) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    std::u16string name = host::UserName();
    DWORD needed = DWORD(name.size() + 1);
    if (!lpBuffer || *pcbBuffer < needed) {
        *pcbBuffer = needed;
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    PutW(lpBuffer, name);
    *pcbBuffer = needed;
    return TRUE;
}

// "C:\Windows\System32" and its length when uSize characters hold it with its NUL; otherwise
// the characters needed, the NUL included, and the buffer is not touched.
UINT WINAPI GetSystemDirectoryW(LPWSTR lpBuffer, UINT uSize)
{
    static const std::u16string kSystemDirectory = u"C:\\Windows\\System32";
    const UINT needed = UINT(kSystemDirectory.size() + 1);
    if (!lpBuffer || uSize < needed)
        return needed;
    PutW(lpBuffer, kSystemDirectory);
    return needed - 1;
}

// Milliseconds of CLOCK_MONOTONIC, wrapping at 2^32 like the system's (after 49.7 days).
DWORD WINAPI GetTickCount(void)
{
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    uint64_t ms = uint64_t(ts.tv_sec) * 1000u + uint64_t(ts.tv_nsec) / 1000000u;
    return DWORD(ms);
}

// Suspends the calling thread for at least dwMilliseconds, resuming after a signal.
VOID WINAPI Sleep(DWORD dwMilliseconds)
{
    timespec rest{time_t(dwMilliseconds / 1000), long(dwMilliseconds % 1000) * 1000000L};
    while (nanosleep(&rest, &rest) != 0 && errno == EINTR) {
    }
}

// The POSIX process id, the number that tools listing processes show.
DWORD WINAPI GetCurrentProcessId(void)
{
    return DWORD(getpid());
}

// The kernel's thread id (gettid): unique among the system's live threads, as on Windows.
DWORD WINAPI GetCurrentThreadId(void)
{
    return DWORD(syscall(SYS_gettid));
}

// TRUE: there are no thread notifications to turn off. A null module is FALSE with
// ERROR_INVALID_HANDLE, as the system says of a module it does not know.
BOOL WINAPI DisableThreadLibraryCalls(HMODULE hLibModule)
{
    if (!hLibModule) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    return TRUE;
}

} // extern "C"
