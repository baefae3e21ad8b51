// QLMIniFile: the reader of Windows initialisation files that finisher description files are
// read with. It keeps the semantics of GetPrivateProfileStringW and GetPrivateProfileIntW that
// those files rely on: "[section]" heads and "key=value" lines, section and key names compared
// without regard to case, the first section and the first key of a name win, blanks around
// names and values trimmed, one pair of enclosing quotes removed, lines starting with ';' are
// comments, a value cut to the caller's buffer, and a default for what is missing.
#pragma once

#include "../../platform/win32.h"

#include <string>
#include <vector>

class QLMIniFile
{
public:
    // Reads the whole file through CreateFileW/ReadFile. Text is UTF-16 with its byte order
    // mark, or 8-bit (UTF-8, a mark optional). FALSE when the file cannot be opened or read.
    BOOL Load(LPCWSTR pszFileName);
    // Loads from memory, for the same parse.
    void LoadText(const char* pText, size_t cb);

    // As GetPrivateProfileStringW with a section and a key: copies the value (or pszDefault,
    // or the empty text when that is null) into pszOut of cchOut characters, cut to
    // cchOut - 1 and always terminated. Returns the characters copied.
    DWORD GetString(LPCWSTR pszSection, LPCWSTR pszKey, LPCWSTR pszDefault, LPWSTR pszOut,
                    DWORD cchOut) const;
    // As GetPrivateProfileIntW: the decimal number at the start of the value (a sign allowed,
    // reading stops at the first other character, no digits read as 0); nDefault when the key
    // is missing.
    UINT GetInt(LPCWSTR pszSection, LPCWSTR pszKey, INT nDefault) const;

private:
    struct Entry
    {
        std::u16string key;
        std::u16string value;
    };
    struct Section
    {
        std::u16string name;
        std::vector<Entry> entries;
    };
    const std::u16string* Find(LPCWSTR pszSection, LPCWSTR pszKey) const;
    void Parse(const std::u16string& text);

    std::vector<Section> m_sections;
};

// The Win32 shapes, each reading the file anew as the platform's functions do.
DWORD QLMGetPrivateProfileString(LPCWSTR pszSection, LPCWSTR pszKey, LPCWSTR pszDefault,
                                 LPWSTR pszOut, DWORD cchOut, LPCWSTR pszFileName);
UINT QLMGetPrivateProfileInt(LPCWSTR pszSection, LPCWSTR pszKey, INT nDefault, LPCWSTR pszFileName);
