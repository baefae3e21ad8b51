// What the units of the host share and nobody outside it sees: the one lock of the host's
// state, and the text helpers that the Win32 names need for their UTF-16 arguments.
#pragma once

#include "host.h"

#include <cstdint>
#include <cstring>
#include <mutex>
#include <string>

namespace host::detail {

// One lock for the store, the handle table and the queues of the host. Recursive, because a
// Win32 name may call a host:: helper (UserName() inside the registry, for instance).
std::recursive_mutex& StateMutex();
using Lock = std::lock_guard<std::recursive_mutex>;

// ---- UTF-16 text ---------------------------------------------------------------------------
inline size_t WLen(const WCHAR* s)
{
    size_t n = 0;
    if (s) {
        while (s[n]) {
            ++n;
        }
    }
    return n;
}
inline std::u16string FromW(const WCHAR* s)
{
    return s ? std::u16string(s, WLen(s)) : u"";
}

// The registry and the spooler compare names with ASCII letters folded; so does SQLite's NOCASE.
inline char16_t FoldChar(char16_t c)
{
    return (c >= u'A' && c <= u'Z') ? char16_t(c + 32) : c;
}
inline std::u16string Fold(std::u16string s)
{
    for (auto& c : s) {
        c = FoldChar(c);
    }
    return s;
}
inline bool EqualNoCase(const std::u16string& a, const std::u16string& b)
{
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        if (FoldChar(a[i]) != FoldChar(b[i])) {
            return false;
        }
    }
    return true;
}

// Copies text and its terminator; the caller has checked the room.
inline void PutW(WCHAR* dst, const std::u16string& text)
{
    std::memcpy(dst, text.data(), text.size() * sizeof(WCHAR));
    dst[text.size()] = 0;
}

// The login name of the process's user, as GetUserNameW reports it without an override.
std::u16string LoginName();

} // namespace host::detail
