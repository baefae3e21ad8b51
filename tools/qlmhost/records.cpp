#include "records.h"

#include "platform/host/host.h"

#include <cstdio>
#include <cstring>

std::string JsonQuote(const std::string& text)
{
    std::string out = "\"";
    for (unsigned char c : text) {
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            if (c < 0x20) {
                char buf[8];
                snprintf(buf, sizeof(buf), "\\u%04x", c);
                out += buf;
            } else {
                out += static_cast<char>(c);
            }
        }
    }
    return out + "\"";
}

void JsonWriter::Key(const char* key)
{
    if (!m_first.empty()) {
        if (!m_first.back())
            m_text += ", ";
        m_first.back() = false;
    }
    if (key)
        m_text += JsonQuote(key) + ": ";
}

void JsonWriter::BeginObject(const char* key)
{
    Key(key);
    m_text += "{";
    m_first.push_back(true);
}

void JsonWriter::EndObject()
{
    m_text += "}";
    m_first.pop_back();
}

void JsonWriter::BeginArray(const char* key)
{
    Key(key);
    m_text += "[";
    m_first.push_back(true);
}

void JsonWriter::EndArray()
{
    m_text += "]";
    m_first.pop_back();
}

void JsonWriter::Number(const char* key, long long value)
{
    Key(key);
    m_text += std::to_string(value);
}

void JsonWriter::String(const char* key, const std::string& value)
{
    Key(key);
    m_text += JsonQuote(value);
}

void JsonWriter::Literal(const char* key, const std::string& text)
{
    Key(key);
    m_text += text;
}

void JsonWriter::Bool(const char* key, bool value)
{
    Key(key);
    m_text += value ? "true" : "false";
}

namespace {

// One element of a numeric field, widened to a signed 64-bit value.
long long Element(const BYTE* p, const DEVMODEEX_FIELD& field, DWORD index)
{
    const BYTE* e = p + index * field.cbElement;
    bool bSigned = field.eKind == kDMF_SIGNED || field.eKind == kDMF_FIXED;
    if (field.cbElement == 1)
        return bSigned ? static_cast<int8_t>(*e) : *e;
    if (field.cbElement == 2) {
        uint16_t w;
        memcpy(&w, e, 2);
        return bSigned ? static_cast<int16_t>(w) : w;
    }
    uint32_t d;
    memcpy(&d, e, 4);
    return bSigned ? static_cast<int32_t>(d) : d;
}

// Text of a WCHAR field, ending at its NUL or at the field's end.
std::string FieldText(const WCHAR* p, size_t cch)
{
    std::u16string text;
    for (size_t i = 0; i < cch && p[i]; i++)
        text += p[i];
    return host::Utf16ToUtf8(text);
}

// The names of a list field: NUL-terminated names up to an empty one or the field's end.
std::vector<std::string> FieldList(const WCHAR* p, size_t cch)
{
    std::vector<std::string> names;
    size_t i = 0;
    while (i < cch && p[i]) {
        size_t start = i;
        while (i < cch && p[i])
            i++;
        names.push_back(FieldText(p + start, i - start));
        i++;
    }
    return names;
}

std::string FixedText(long long thousandths)
{
    char buf[32];
    snprintf(buf, sizeof(buf), "%s%lld.%03lld", thousandths < 0 ? "-" : "",
             (thousandths < 0 ? -thousandths : thousandths) / 1000,
             (thousandths < 0 ? -thousandths : thousandths) % 1000);
    return buf;
}

std::string ElementText(const BYTE* p, const DEVMODEEX_FIELD& field, DWORD index)
{
    long long value = Element(p, field, index);
    if (field.eKind == kDMF_FIXED)
        return FixedText(value);
    if (field.eKind == kDMF_HEX) {
        char buf[16];
        snprintf(buf, sizeof(buf), "0x%0*llX", (int)field.cbElement * 2, value);
        return buf;
    }
    return std::to_string(value);
}

std::string HexBytes(const BYTE* p, DWORD cb)
{
    std::string hex;
    char buf[4];
    for (DWORD i = 0; i < cb; i++) {
        snprintf(buf, sizeof(buf), "%02x", p[i]);
        hex += buf;
    }
    return hex;
}

} // namespace

std::string DevmodeAsText(const DEVMODEEX& dm)
{
    const BYTE* base = reinterpret_cast<const BYTE*>(&dm);
    std::string out;
    for (size_t i = 0; i < g_cDevmodeFields; i++) {
        const DEVMODEEX_FIELD& field = g_DevmodeFields[i];
        const BYTE* p = base + field.dwOffset;
        const WCHAR* w = reinterpret_cast<const WCHAR*>(p);
        std::string value;
        switch (field.eKind) {
        case kDMF_TEXT:
            value = "\"" + FieldText(w, field.cbSize / 2) + "\"";
            break;
        case kDMF_LIST: {
            for (const std::string& name : FieldList(w, field.cbSize / 2))
                value += (value.empty() ? "" : ", ") + name;
            value = "[" + value + "]";
            break;
        }
        case kDMF_BYTES: {
            DWORD nonzero = 0;
            for (DWORD b = 0; b < field.cbSize; b++)
                nonzero += p[b] != 0;
            value = "(" + std::to_string(field.cbSize) + " bytes, " + std::to_string(nonzero) +
                    " not zero)";
            break;
        }
        default:
            for (DWORD e = 0; e < field.cbSize / field.cbElement; e++) {
                if (e)
                    value += " ";
                value += ElementText(p, field, e);
            }
        }
        char line[64];
        snprintf(line, sizeof(line), "%5u  %-24s ", field.dwOffset, field.pszName);
        out += line + value + "\n";
    }
    return out;
}

std::string DevmodeAsJson(const DEVMODEEX& dm)
{
    const BYTE* base = reinterpret_cast<const BYTE*>(&dm);
    JsonWriter json;
    json.BeginObject();
    for (size_t i = 0; i < g_cDevmodeFields; i++) {
        const DEVMODEEX_FIELD& field = g_DevmodeFields[i];
        const BYTE* p = base + field.dwOffset;
        const WCHAR* w = reinterpret_cast<const WCHAR*>(p);
        DWORD count = field.cbSize / field.cbElement;
        switch (field.eKind) {
        case kDMF_TEXT:
            json.String(field.pszName, FieldText(w, field.cbSize / 2));
            break;
        case kDMF_LIST:
            json.BeginArray(field.pszName);
            for (const std::string& name : FieldList(w, field.cbSize / 2))
                json.String(nullptr, name);
            json.EndArray();
            break;
        case kDMF_BYTES:
            json.String(field.pszName, HexBytes(p, field.cbSize));
            break;
        case kDMF_FIXED:
            // Thousandths as a decimal number: 0.2 is 0.200.
            if (count == 1) {
                json.Literal(field.pszName, FixedText(Element(p, field, 0)));
            } else {
                json.BeginArray(field.pszName);
                for (DWORD e = 0; e < count; e++)
                    json.Literal(nullptr, FixedText(Element(p, field, e)));
                json.EndArray();
            }
            break;
        default:
            if (count == 1) {
                json.Number(field.pszName, Element(p, field, 0));
            } else {
                json.BeginArray(field.pszName);
                for (DWORD e = 0; e < count; e++)
                    json.Number(nullptr, Element(p, field, e));
                json.EndArray();
            }
        }
    }
    json.EndObject();
    return json.Text();
}
