// The initialisation-file reader that stands in for the platform's profile functions.
#include "qlminifile.h"

#include "../foundation/wstr.h"

namespace {

// A description file is a few kilobytes; anything far larger is not one.
constexpr DWORD kMAX_INI_FILE_SIZE = 1024 * 1024;

bool IsBlank(char16_t c)
{
    return c == u' ' || c == u'\t' || c == u'\r';
}

std::u16string Trim(const std::u16string& s)
{
    size_t start = 0;
    size_t stop = s.size();
    while (start < stop && IsBlank(s[start]))
        start++;
    while (stop > start && IsBlank(s[stop - 1]))
        stop--;
    return s.substr(start, stop - start);
}

const WCHAR* AsWide(const std::u16string& s)
{
    return reinterpret_cast<const WCHAR*>(s.c_str());
}

} // namespace

BOOL QLMIniFile::Load(LPCWSTR pszFileName)
{
    m_sections.clear();
    if (!pszFileName)
        return FALSE;
    HANDLE hFile = CreateFileW(pszFileName, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                               FILE_ATTRIBUTE_NORMAL, nullptr);
    if (hFile == INVALID_HANDLE_VALUE)
        return FALSE;
    std::vector<char> bytes;
    char chunk[4096];
    BOOL bOK = TRUE;
    for (;;) {
        DWORD cbRead = 0;
        if (!ReadFile(hFile, chunk, sizeof(chunk), &cbRead, nullptr)) {
            bOK = FALSE;
            break;
        }
        if (cbRead == 0)
            break;
        if (bytes.size() + cbRead > kMAX_INI_FILE_SIZE) {
            bOK = FALSE;
            break;
        }
        bytes.insert(bytes.end(), chunk, chunk + cbRead);
    }
    CloseHandle(hFile);
    if (!bOK)
        return FALSE;
    LoadText(bytes.data(), bytes.size());
    return TRUE;
}

void QLMIniFile::LoadText(const char* pText, size_t cb)
{
    m_sections.clear();
    std::u16string text;
    const unsigned char* p = reinterpret_cast<const unsigned char*>(pText);
    if (cb >= 2 && p[0] == 0xFF && p[1] == 0xFE) {
        for (size_t i = 2; i + 1 < cb; i += 2)
            text.push_back(static_cast<char16_t>(p[i] | (p[i + 1] << 8)));
    } else {
        size_t start = (cb >= 3 && p[0] == 0xEF && p[1] == 0xBB && p[2] == 0xBF) ? 3 : 0;
        std::string narrow(pText + start, cb - start);
        // A zero byte ends the text, as it would end the platform's read.
        narrow.resize(narrow.find('\0') == std::string::npos ? narrow.size() : narrow.find('\0'));
        std::vector<WCHAR> wide(narrow.size() + 1);
        size_t n = Utf8ToWstr(wide.data(), wide.size(), narrow.c_str());
        text.assign(reinterpret_cast<const char16_t*>(wide.data()), n);
    }
    Parse(text);
}

void QLMIniFile::Parse(const std::u16string& text)
{
    Section* current = nullptr;
    size_t pos = 0;
    while (pos <= text.size()) {
        size_t eol = text.find(u'\n', pos);
        if (eol == std::u16string::npos)
            eol = text.size();
        std::u16string line = Trim(text.substr(pos, eol - pos));
        pos = eol + 1;
        if (line.empty() || line[0] == u';')
            continue;
        if (line[0] == u'[') {
            size_t close = line.find(u']');
            std::u16string name = Trim(
                line.substr(1, close == std::u16string::npos ? std::u16string::npos : close - 1));
            m_sections.push_back(Section{name, {}});
            current = &m_sections.back();
            continue;
        }
        size_t eq = line.find(u'=');
        if (!current || eq == std::u16string::npos)
            continue;
        std::u16string value = Trim(line.substr(eq + 1));
        if (value.size() >= 2 && ((value.front() == u'"' && value.back() == u'"') ||
                                  (value.front() == u'\'' && value.back() == u'\'')))
            value = value.substr(1, value.size() - 2);
        current->entries.push_back(Entry{Trim(line.substr(0, eq)), value});
    }
}

const std::u16string* QLMIniFile::Find(LPCWSTR pszSection, LPCWSTR pszKey) const
{
    if (!pszSection || !pszKey)
        return nullptr;
    for (const Section& section : m_sections) {
        if (WstrICmp(AsWide(section.name), pszSection) != 0)
            continue;
        for (const Entry& entry : section.entries) {
            if (WstrICmp(AsWide(entry.key), pszKey) == 0)
                return &entry.value;
        }
        // The platform reads the first section of a name only.
        return nullptr;
    }
    return nullptr;
}

DWORD QLMIniFile::GetString(LPCWSTR pszSection, LPCWSTR pszKey, LPCWSTR pszDefault, LPWSTR pszOut,
                            DWORD cchOut) const
{
    if (!pszOut || cchOut == 0)
        return 0;
    const std::u16string* value = Find(pszSection, pszKey);
    const WCHAR* src = value ? AsWide(*value) : (pszDefault ? pszDefault : TEXT(""));
    return static_cast<DWORD>(WstrCopy(pszOut, cchOut, src));
}

UINT QLMIniFile::GetInt(LPCWSTR pszSection, LPCWSTR pszKey, INT nDefault) const
{
    const std::u16string* value = Find(pszSection, pszKey);
    if (!value)
        return static_cast<UINT>(nDefault);
    size_t i = 0;
    bool negative = false;
    if (i < value->size() && ((*value)[i] == u'-' || (*value)[i] == u'+'))
        negative = (*value)[i++] == u'-';
    UINT n = 0;
    for (; i < value->size() && (*value)[i] >= u'0' && (*value)[i] <= u'9'; i++)
        n = n * 10 + static_cast<UINT>((*value)[i] - u'0');
    return negative ? 0u - n : n;
}

DWORD QLMGetPrivateProfileString(LPCWSTR pszSection, LPCWSTR pszKey, LPCWSTR pszDefault,
                                 LPWSTR pszOut, DWORD cchOut, LPCWSTR pszFileName)
{
    QLMIniFile file;
    file.Load(pszFileName);
    return file.GetString(pszSection, pszKey, pszDefault, pszOut, cchOut);
}

UINT QLMGetPrivateProfileInt(LPCWSTR pszSection, LPCWSTR pszKey, INT nDefault, LPCWSTR pszFileName)
{
    QLMIniFile file;
    file.Load(pszFileName);
    return file.GetInt(pszSection, pszKey, nDefault);
}
