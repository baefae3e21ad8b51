// comdlg32's open dialog for the Linux host: the structure and the flags the driver uses.
#pragma once

#include "types.h"

typedef UINT_PTR(CALLBACK* LPOFNHOOKPROC)(HWND, UINT, WPARAM, LPARAM);

typedef struct tagOFNW
{
    DWORD lStructSize;
    HWND hwndOwner;
    HINSTANCE hInstance;
    LPCWSTR lpstrFilter;
    LPWSTR lpstrCustomFilter;
    DWORD nMaxCustFilter;
    DWORD nFilterIndex;
    LPWSTR lpstrFile;
    DWORD nMaxFile;
    LPWSTR lpstrFileTitle;
    DWORD nMaxFileTitle;
    LPCWSTR lpstrInitialDir;
    LPCWSTR lpstrTitle;
    DWORD Flags;
    WORD nFileOffset;
    WORD nFileExtension;
    LPCWSTR lpstrDefExt;
    LPARAM lCustData;
    LPOFNHOOKPROC lpfnHook;
    LPCWSTR lpTemplateName;
    void* pvReserved;
    DWORD dwReserved;
    DWORD FlagsEx;
} OPENFILENAMEW, *LPOPENFILENAMEW;

#define OFN_READONLY      0x00000001
#define OFN_HIDEREADONLY  0x00000004
#define OFN_NOCHANGEDIR   0x00000008
#define OFN_PATHMUSTEXIST 0x00000800
#define OFN_FILEMUSTEXIST 0x00001000
#define OFN_EXPLORER      0x00080000

#define CDERR_STRUCTSIZE     0x0001
#define CDERR_INITIALIZATION 0x0002
#define FNERR_BUFFERTOOSMALL 0x3003

#ifdef __cplusplus
extern "C" {
#endif
// The open dialog: the next scripted answer of the host's user simulation (host.h), or Cancel
// when there is none.
BOOL WINAPI GetOpenFileNameW(LPOPENFILENAMEW lpofn);
// Why the last dialog ended without a file: 0 for Cancel, else a CDERR_ or FNERR_ code.
DWORD WINAPI CommDlgExtendedError(void);
#ifdef __cplusplus
}
#endif
