// kernel32 and friends for the Linux host: last error, memory, files, version, locale, debug.
#pragma once

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

DWORD WINAPI GetLastError(void);
void WINAPI SetLastError(DWORD dwErrCode);

// Global memory. A block is fixed: its handle is its address.
#define GMEM_FIXED    0x0000
#define GMEM_MOVEABLE 0x0002
#define GMEM_ZEROINIT 0x0040
#define GPTR          (GMEM_FIXED | GMEM_ZEROINIT)
#define GHND          (GMEM_MOVEABLE | GMEM_ZEROINIT)
HGLOBAL WINAPI GlobalAlloc(UINT uFlags, SIZE_T dwBytes);
HGLOBAL WINAPI GlobalFree(HGLOBAL hMem);
LPVOID WINAPI GlobalLock(HGLOBAL hMem);
BOOL WINAPI GlobalUnlock(HGLOBAL hMem);
SIZE_T WINAPI GlobalSize(HGLOBAL hMem);

// Files. Paths are Windows paths; the host maps drive C: to its home directory.
#define INVALID_HANDLE_VALUE  ((HANDLE)(LONG_PTR)-1)
#define FILE_READ_DATA        0x0001
#define FILE_WRITE_DATA       0x0002
#define FILE_APPEND_DATA      0x0004
#define FILE_SHARE_READ       0x00000001
#define FILE_SHARE_WRITE      0x00000002
#define FILE_SHARE_DELETE     0x00000004
#define CREATE_NEW            1
#define CREATE_ALWAYS         2
#define OPEN_EXISTING         3
#define OPEN_ALWAYS           4
#define TRUNCATE_EXISTING     5
#define FILE_ATTRIBUTE_NORMAL 0x00000080
#define INVALID_FILE_SIZE     ((DWORD)0xFFFFFFFF)
HANDLE WINAPI CreateFileW(LPCWSTR lpFileName, DWORD dwDesiredAccess, DWORD dwShareMode,
                          LPSECURITY_ATTRIBUTES lpSecurityAttributes, DWORD dwCreationDisposition,
                          DWORD dwFlagsAndAttributes, HANDLE hTemplateFile);
BOOL WINAPI WriteFile(HANDLE hFile, LPCVOID lpBuffer, DWORD nNumberOfBytesToWrite,
                      LPDWORD lpNumberOfBytesWritten, void* lpOverlapped);
BOOL WINAPI ReadFile(HANDLE hFile, LPVOID lpBuffer, DWORD nNumberOfBytesToRead,
                     LPDWORD lpNumberOfBytesRead, void* lpOverlapped);
DWORD WINAPI GetFileSize(HANDLE hFile, LPDWORD lpFileSizeHigh);
BOOL WINAPI CloseHandle(HANDLE hObject);

// System version.
typedef struct _OSVERSIONINFOW
{
    DWORD dwOSVersionInfoSize;
    DWORD dwMajorVersion;
    DWORD dwMinorVersion;
    DWORD dwBuildNumber;
    DWORD dwPlatformId;
    WCHAR szCSDVersion[128];
} OSVERSIONINFOW, *POSVERSIONINFOW, *LPOSVERSIONINFOW;
typedef struct _OSVERSIONINFOEXW
{
    DWORD dwOSVersionInfoSize;
    DWORD dwMajorVersion;
    DWORD dwMinorVersion;
    DWORD dwBuildNumber;
    DWORD dwPlatformId;
    WCHAR szCSDVersion[128];
    WORD wServicePackMajor;
    WORD wServicePackMinor;
    WORD wSuiteMask;
    BYTE wProductType;
    BYTE wReserved;
} OSVERSIONINFOEXW, *POSVERSIONINFOEXW, *LPOSVERSIONINFOEXW;
#define VER_PLATFORM_WIN32_NT 2
#define VER_NT_WORKSTATION    1
BOOL WINAPI GetVersionExW(LPOSVERSIONINFOW lpVersionInformation);

// Locale.
#define LOCALE_USER_DEFAULT   0x0400
#define LOCALE_SYSTEM_DEFAULT 0x0800
#define LOCALE_IMEASURE       0x0000000D
#define LOCALE_NOUSEROVERRIDE 0x80000000
#define LOCALE_RETURN_NUMBER  0x20000000
int WINAPI GetLocaleInfoW(LCID Locale, LCTYPE LCType, LPWSTR lpLCData, int cchData);

// Time, user, debugging, modules.
DWORD WINAPI GetTickCount(void);
VOID WINAPI Sleep(DWORD dwMilliseconds);
BOOL WINAPI GetUserNameW(LPWSTR lpBuffer, LPDWORD pcbBuffer);
UINT WINAPI GetSystemDirectoryW(LPWSTR lpBuffer, UINT uSize);
void WINAPI OutputDebugStringW(LPCWSTR lpOutputString);
void WINAPI DebugBreak(void);
DWORD WINAPI GetCurrentProcessId(void);
DWORD WINAPI GetCurrentThreadId(void);

#define DLL_PROCESS_DETACH 0
#define DLL_PROCESS_ATTACH 1
#define DLL_THREAD_ATTACH  2
#define DLL_THREAD_DETACH  3
BOOL WINAPI DisableThreadLibraryCalls(HMODULE hLibModule);

// Modules. The host loads PE files for their resources only: no code of them runs. A handle
// stays valid until its last FreeLibrary.
HMODULE WINAPI LoadLibraryW(LPCWSTR lpLibFileName);
BOOL WINAPI FreeLibrary(HMODULE hLibModule);

// Resources of a loaded module. HRSRC names an entry of the module's resource tree; the data
// of LoadResource is read-only and stays valid until the module's last FreeLibrary.
typedef WORD LANGID;
#define MAKELANGID(p, s)    ((((WORD)(s)) << 10) | (WORD)(p))
#define PRIMARYLANGID(lgid) ((WORD)(lgid)&0x3ff)
#define SUBLANGID(lgid)     ((WORD)(lgid) >> 10)
#define LANG_NEUTRAL        0x00
#define LANG_ENGLISH        0x09
#define SUBLANG_NEUTRAL     0x00
#define SUBLANG_DEFAULT     0x01
#define SUBLANG_ENGLISH_US  0x01
#define RT_CURSOR           MAKEINTRESOURCEW(1)
#define RT_BITMAP           MAKEINTRESOURCEW(2)
#define RT_ICON             MAKEINTRESOURCEW(3)
#define RT_MENU             MAKEINTRESOURCEW(4)
#define RT_DIALOG           MAKEINTRESOURCEW(5)
#define RT_STRING           MAKEINTRESOURCEW(6)
#define RT_FONTDIR          MAKEINTRESOURCEW(7)
#define RT_FONT             MAKEINTRESOURCEW(8)
#define RT_ACCELERATOR      MAKEINTRESOURCEW(9)
#define RT_RCDATA           MAKEINTRESOURCEW(10)
#define RT_MESSAGETABLE     MAKEINTRESOURCEW(11)
#define RT_GROUP_CURSOR     MAKEINTRESOURCEW(12)
#define RT_GROUP_ICON       MAKEINTRESOURCEW(14)
#define RT_VERSION          MAKEINTRESOURCEW(16)
#define RT_MANIFEST         MAKEINTRESOURCEW(24)
HRSRC WINAPI FindResourceW(HMODULE hModule, LPCWSTR lpName, LPCWSTR lpType);
HRSRC WINAPI FindResourceExW(HMODULE hModule, LPCWSTR lpType, LPCWSTR lpName, WORD wLanguage);
HGLOBAL WINAPI LoadResource(HMODULE hModule, HRSRC hResInfo);
LPVOID WINAPI LockResource(HGLOBAL hResData);
DWORD WINAPI SizeofResource(HMODULE hModule, HRSRC hResInfo);

#ifdef __cplusplus
}
#endif
