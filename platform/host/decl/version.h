// version.dll for the Linux host: the version resources of PE files.
#pragma once

#include "types.h"

typedef UINT* PUINT;

typedef struct tagVS_FIXEDFILEINFO
{
    DWORD dwSignature;
    DWORD dwStrucVersion;
    DWORD dwFileVersionMS;
    DWORD dwFileVersionLS;
    DWORD dwProductVersionMS;
    DWORD dwProductVersionLS;
    DWORD dwFileFlagsMask;
    DWORD dwFileFlags;
    DWORD dwFileOS;
    DWORD dwFileType;
    DWORD dwFileSubtype;
    DWORD dwFileDateMS;
    DWORD dwFileDateLS;
} VS_FIXEDFILEINFO;

#define VS_FILE_INFO    RT_VERSION
#define VS_VERSION_INFO 1
#define VS_USER_DEFINED 100

#define VS_FFI_SIGNATURE     0xFEEF04BDL
#define VS_FFI_STRUCVERSION  0x00010000L
#define VS_FFI_FILEFLAGSMASK 0x0000003FL

#define VS_FF_DEBUG        0x00000001L
#define VS_FF_PRERELEASE   0x00000002L
#define VS_FF_PATCHED      0x00000004L
#define VS_FF_PRIVATEBUILD 0x00000008L
#define VS_FF_INFOINFERRED 0x00000010L
#define VS_FF_SPECIALBUILD 0x00000020L

#define VOS_UNKNOWN      0x00000000L
#define VOS_NT           0x00040000L
#define VOS__WINDOWS32   0x00000004L
#define VOS_NT_WINDOWS32 0x00040004L

#define VFT_UNKNOWN    0x00000000L
#define VFT_APP        0x00000001L
#define VFT_DLL        0x00000002L
#define VFT_DRV        0x00000003L
#define VFT_FONT       0x00000004L
#define VFT_VXD        0x00000005L
#define VFT_STATIC_LIB 0x00000007L

#define VFT2_UNKNOWN     0x00000000L
#define VFT2_DRV_PRINTER 0x00000001L

extern "C" {

DWORD WINAPI GetFileVersionInfoSizeW(LPCWSTR lptstrFilename, LPDWORD lpdwHandle);
BOOL WINAPI GetFileVersionInfoW(LPCWSTR lptstrFilename, DWORD dwHandle, DWORD dwLen, LPVOID lpData);
BOOL WINAPI VerQueryValueW(LPCVOID pBlock, LPCWSTR lpSubBlock, LPVOID* lplpBuffer, PUINT puLen);

} // extern "C"

static_assert(sizeof(VS_FIXEDFILEINFO) == 52, "VS_FIXEDFILEINFO");
