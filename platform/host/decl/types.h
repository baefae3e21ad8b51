// Base types of the Win32 API for the Linux host (windef.h, winnt.h, basetsd.h), with the
// sizes of 64-bit Windows: LONG and DWORD are 32 bits even though Linux's long is 64.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdarg>

#define WINAPI
#define CALLBACK
#define APIENTRY
#define WINBASEAPI
#define DECLSPEC_IMPORT

typedef char16_t WCHAR;
typedef char CHAR;
typedef uint8_t BYTE;
typedef uint16_t WORD;
typedef uint32_t DWORD;
typedef int16_t SHORT;
typedef uint16_t USHORT;
typedef int32_t INT;
typedef uint32_t UINT;
typedef int32_t LONG;
typedef uint32_t ULONG;
typedef int64_t LONGLONG;
typedef uint64_t ULONGLONG;
typedef int32_t BOOL;
typedef BOOL WINBOOL;
typedef BYTE BOOLEAN;
typedef float FLOAT;
typedef void VOID;
typedef intptr_t INT_PTR;
typedef uintptr_t UINT_PTR;
typedef intptr_t LONG_PTR;
typedef uintptr_t ULONG_PTR;
typedef uintptr_t DWORD_PTR;
typedef uintptr_t SIZE_T;
typedef UINT_PTR WPARAM;
typedef LONG_PTR LPARAM;
typedef LONG_PTR LRESULT;
typedef DWORD LCID;
typedef DWORD LCTYPE;
typedef DWORD ACCESS_MASK;
typedef ACCESS_MASK REGSAM;
typedef LONG LSTATUS;
typedef WORD ATOM;

typedef void* PVOID;
typedef void* LPVOID;
typedef const void* LPCVOID;
typedef BYTE* PBYTE;
typedef BYTE* LPBYTE;
typedef WORD* PWORD;
typedef WORD* LPWORD;
typedef DWORD* PDWORD;
typedef DWORD* LPDWORD;
typedef LONG* PLONG;
typedef LONG* LPLONG;
typedef BOOL* PBOOL;
typedef BOOL* LPBOOL;
typedef INT* LPINT;
typedef CHAR* LPSTR;
typedef const CHAR* LPCSTR;
typedef WCHAR* PWSTR;
typedef WCHAR* LPWSTR;
typedef const WCHAR* PCWSTR;
typedef const WCHAR* LPCWSTR;
typedef WCHAR* PWCHAR;
typedef WCHAR* LPWCH;
typedef WCHAR TCHAR;
typedef WCHAR* LPTSTR;
typedef const WCHAR* LPCTSTR;

typedef void* HANDLE;
typedef HANDLE* PHANDLE;
typedef HANDLE* LPHANDLE;
#define DECLARE_HANDLE(name)                                                                       \
    struct name##__                                                                                \
    {                                                                                              \
        int unused;                                                                                \
    };                                                                                             \
    typedef struct name##__* name
DECLARE_HANDLE(HWND);
DECLARE_HANDLE(HINSTANCE);
DECLARE_HANDLE(HKEY);
DECLARE_HANDLE(HDC);
DECLARE_HANDLE(HMENU);
DECLARE_HANDLE(HICON);
DECLARE_HANDLE(HBITMAP);
DECLARE_HANDLE(HFONT);
DECLARE_HANDLE(HBRUSH);
DECLARE_HANDLE(HPROPSHEETPAGE);
DECLARE_HANDLE(HRSRC);
typedef HINSTANCE HMODULE;
typedef HICON HCURSOR;
typedef HANDLE HGLOBAL;
typedef HANDLE HLOCAL;
typedef HANDLE HGDIOBJ;
typedef HKEY* PHKEY;

#define TRUE  1
#define FALSE 0
#ifndef NULL
#define NULL nullptr
#endif
#define MAX_PATH      260
#define ANYSIZE_ARRAY 1

#define TEXT(quote)   u##quote
#define __TEXT(quote) u##quote

#define LOWORD(l) ((WORD)(((DWORD_PTR)(l)) & 0xffff))
#define HIWORD(l) ((WORD)((((DWORD_PTR)(l)) >> 16) & 0xffff))
#define LOBYTE(w) ((BYTE)(((DWORD_PTR)(w)) & 0xff))
#define HIBYTE(w) ((BYTE)((((DWORD_PTR)(w)) >> 8) & 0xff))
#define MAKELONG(a, b)                                                                             \
    ((LONG)(((WORD)(((DWORD_PTR)(a)) & 0xffff)) | ((DWORD)((WORD)(((DWORD_PTR)(b)) & 0xffff)))     \
                                                      << 16))
#define MAKEWORD(a, b)                                                                             \
    ((WORD)(((BYTE)(((DWORD_PTR)(a)) & 0xff)) | ((WORD)((BYTE)(((DWORD_PTR)(b)) & 0xff))) << 8))
#define MAKEINTRESOURCEW(i) ((LPWSTR)((ULONG_PTR)((WORD)(i))))
#define IS_INTRESOURCE(r)   ((((ULONG_PTR)(r)) >> 16) == 0)

typedef struct _POINTL
{
    LONG x;
    LONG y;
} POINTL, *PPOINTL;

typedef struct tagPOINT
{
    LONG x;
    LONG y;
} POINT, *PPOINT, *LPPOINT;

typedef struct tagRECT
{
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
} RECT, *PRECT, *LPRECT;

typedef struct tagSIZE
{
    LONG cx;
    LONG cy;
} SIZE, *PSIZE, *LPSIZE;

typedef struct _SECURITY_ATTRIBUTES
{
    DWORD nLength;
    LPVOID lpSecurityDescriptor;
    BOOL bInheritHandle;
} SECURITY_ATTRIBUTES, *PSECURITY_ATTRIBUTES, *LPSECURITY_ATTRIBUTES;

// Access rights.
#define DELETE                   0x00010000L
#define READ_CONTROL             0x00020000L
#define WRITE_DAC                0x00040000L
#define WRITE_OWNER              0x00080000L
#define SYNCHRONIZE              0x00100000L
#define STANDARD_RIGHTS_REQUIRED 0x000F0000L
#define STANDARD_RIGHTS_READ     READ_CONTROL
#define STANDARD_RIGHTS_WRITE    READ_CONTROL
#define STANDARD_RIGHTS_EXECUTE  READ_CONTROL
#define STANDARD_RIGHTS_ALL      0x001F0000L
#define GENERIC_READ             0x80000000L
#define GENERIC_WRITE            0x40000000L
#define GENERIC_EXECUTE          0x20000000L
#define GENERIC_ALL              0x10000000L

// Error codes (winerror.h) that the host returns.
#define ERROR_SUCCESS                 0L
#define NO_ERROR                      0L
#define ERROR_INVALID_FUNCTION        1L
#define ERROR_FILE_NOT_FOUND          2L
#define ERROR_PATH_NOT_FOUND          3L
#define ERROR_ACCESS_DENIED           5L
#define ERROR_INVALID_HANDLE          6L
#define ERROR_NOT_ENOUGH_MEMORY       8L
#define ERROR_INVALID_DATA            13L
#define ERROR_OUTOFMEMORY             14L
#define ERROR_NOT_SUPPORTED           50L
#define ERROR_FILE_EXISTS             80L
#define ERROR_INVALID_PARAMETER       87L
#define ERROR_INSUFFICIENT_BUFFER     122L
#define ERROR_INVALID_NAME            123L
#define ERROR_INVALID_LEVEL           124L
#define ERROR_BAD_PATHNAME            161L
#define ERROR_ALREADY_EXISTS          183L
#define ERROR_MORE_DATA               234L
#define ERROR_NO_MORE_ITEMS           259L
#define ERROR_NOACCESS                998L
#define ERROR_CANTOPEN                1011L
#define ERROR_CANTREAD                1012L
#define ERROR_CANTWRITE               1013L
#define ERROR_KEY_DELETED             1018L
#define ERROR_INVALID_FLAGS           1004L
#define ERROR_RESOURCE_DATA_NOT_FOUND 1812L
#define ERROR_RESOURCE_TYPE_NOT_FOUND 1813L
#define ERROR_RESOURCE_NAME_NOT_FOUND 1814L
#define ERROR_RESOURCE_LANG_NOT_FOUND 1815L
#define ERROR_INVALID_USER_BUFFER     1784L
#define ERROR_UNKNOWN_PORT            1796L
#define ERROR_INVALID_PRINTER_NAME    1801L
#define ERROR_PRINTER_ALREADY_EXISTS  1802L
#define ERROR_INVALID_ENVIRONMENT     1805L
#define ERROR_UNKNOWN_PRINTER_DRIVER  1797L
#define ERROR_BAD_EXE_FORMAT          193L
#define ERROR_MOD_NOT_FOUND           126L
#define ERROR_DISK_FULL               112L
#define ERROR_FILENAME_EXCED_RANGE    206L
#define ERROR_BADDB                   1009L
#define ERROR_BADKEY                  1010L
#define ERROR_INVALID_MSGBOX_STYLE    1438L
#define RPC_X_NULL_REF_POINTER        1780L
