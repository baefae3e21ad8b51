// Reads a record's field by its name through the record's field table, so that tests can be
// written as tables of (field, expected value).
#pragma once

#include "driver/devmode/devmodeex.h"
#include "platform/host/host.h"

#include <cstring>
#include <string>

inline const DEVMODEEX_FIELD* FindField(const std::string& name)
{
    for (size_t i = 0; i < g_cDevmodeFields; i++)
        if (name == g_DevmodeFields[i].pszName)
            return &g_DevmodeFields[i];
    return nullptr;
}

// Element index of a numeric field, widened; thousandths for distances.
inline long long FieldNumber(const DEVMODEEX* dm, const std::string& name, size_t index = 0)
{
    const DEVMODEEX_FIELD* field = FindField(name);
    if (!field)
        return -999999;
    const unsigned char* p =
        reinterpret_cast<const unsigned char*>(dm) + field->dwOffset + index * field->cbElement;
    bool bSigned = field->eKind == kDMF_SIGNED || field->eKind == kDMF_FIXED;
    if (field->cbElement == 2) {
        uint16_t w;
        memcpy(&w, p, 2);
        return bSigned ? (long long)(int16_t)w : (long long)w;
    }
    uint32_t d;
    memcpy(&d, p, 4);
    return bSigned ? (long long)(int32_t)d : (long long)d;
}

inline std::string FieldText(const DEVMODEEX* dm, const std::string& name)
{
    const DEVMODEEX_FIELD* field = FindField(name);
    if (!field)
        return "<no such field>";
    const WCHAR* p = reinterpret_cast<const WCHAR*>(reinterpret_cast<const unsigned char*>(dm) +
                                                    field->dwOffset);
    std::u16string text;
    for (size_t i = 0; i < field->cbSize / 2 && p[i]; i++)
        text += p[i];
    return host::Utf16ToUtf8(text);
}
