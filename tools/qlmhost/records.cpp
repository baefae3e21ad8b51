#include "records.h"

#include "platform/usersim/controlstate.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

namespace {

// A record is at most two 16-bit sizes long; a file far beyond that is not a record.
constexpr size_t kMaxRecordFile = 1 << 20;

bool IsHighSurrogate(char16_t c)
{
    return c >= 0xD800 && c <= 0xDBFF;
}

bool IsLowSurrogate(char16_t c)
{
    return c >= 0xDC00 && c <= 0xDFFF;
}

void AppendUtf8(std::string& out, char32_t c)
{
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | c >> 6);
        out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += char(0xE0 | c >> 12);
        out += char(0x80 | (c >> 6 & 0x3F));
        out += char(0x80 | (c & 0x3F));
    } else {
        out += char(0xF0 | c >> 18);
        out += char(0x80 | (c >> 12 & 0x3F));
        out += char(0x80 | (c >> 6 & 0x3F));
        out += char(0x80 | (c & 0x3F));
    }
}

std::string Hex4(unsigned value)
{
    char buf[8];
    snprintf(buf, sizeof(buf), "\\u%04x", value & 0xFFFF);
    return buf;
}

} // namespace

std::string JsonQuote(const std::u16string& text)
{
    std::string out = "\"";
    for (char16_t c : text) {
        switch (c) {
        case u'"':
            out += "\\\"";
            break;
        case u'\\':
            out += "\\\\";
            break;
        case u'\n':
            out += "\\n";
            break;
        case u'\r':
            out += "\\r";
            break;
        case u'\t':
            out += "\\t";
            break;
        default:
            if (c < 0x20 || c >= 0x7F)
                out += Hex4(c);
            else
                out += char(c);
        }
    }
    return out + "\"";
}

std::string JsonQuote(const std::string& utf8)
{
    return JsonQuote(usersim::Utf8ToUtf16(utf8));
}

std::string TextQuote(const std::u16string& text)
{
    std::string out = "\"";
    for (size_t i = 0; i < text.size(); i++) {
        char16_t c = text[i];
        if (c == u'"' || c == u'\\') {
            out += '\\';
            out += char(c);
        } else if (c < 0x20 || c == 0x7F) {
            char buf[8];
            snprintf(buf, sizeof(buf), "\\x%02x", unsigned(c));
            out += buf;
        } else if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
            AppendUtf8(out, 0x10000 + ((char32_t(c) - 0xD800) << 10) + (text[i + 1] - 0xDC00));
            i++;
        } else if (IsHighSurrogate(c) || IsLowSurrogate(c)) {
            out += Hex4(c);
        } else {
            AppendUtf8(out, c);
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
        m_text += JsonQuote(std::string(key)) + ": ";
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

void JsonWriter::String(const char* key, const std::string& utf8)
{
    Key(key);
    m_text += JsonQuote(utf8);
}

void JsonWriter::String(const char* key, const std::u16string& text)
{
    Key(key);
    m_text += JsonQuote(text);
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

void JsonWriter::Null(const char* key)
{
    Key(key);
    m_text += "null";
}

std::u16string BoundedText(const BYTE* p, size_t cch)
{
    std::u16string text;
    for (size_t i = 0; i < cch; i++) {
        char16_t c;
        memcpy(&c, p + 2 * i, 2);
        if (!c)
            break;
        text += c;
    }
    return text;
}

std::string FixedText(long long thousandths)
{
    unsigned long long magnitude =
        thousandths < 0 ? 0ull - (unsigned long long)thousandths : (unsigned long long)thousandths;
    std::string text = (thousandths < 0 ? "-" : "") + std::to_string(magnitude / 1000);
    unsigned fraction = unsigned(magnitude % 1000);
    if (fraction) {
        char buf[8];
        snprintf(buf, sizeof(buf), ".%03u", fraction);
        std::string digits = buf;
        while (digits.back() == '0')
            digits.pop_back();
        text += digits;
    }
    return text;
}

// The names of a list field: NUL-terminated names up to an empty one or the field's end.
std::vector<std::u16string> BoundedList(const BYTE* p, size_t cch)
{
    std::vector<std::u16string> names;
    size_t i = 0;
    while (i < cch) {
        std::u16string name = BoundedText(p + 2 * i, cch - i);
        if (name.empty())
            break;
        i += name.size() + 1;
        names.push_back(std::move(name));
    }
    return names;
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
    // Each arm widened on its own: a ternary of int32_t and uint32_t would be unsigned.
    return bSigned ? static_cast<long long>(static_cast<int32_t>(d)) : static_cast<long long>(d);
}

std::string ElementText(const BYTE* p, const DEVMODEEX_FIELD& field, DWORD index)
{
    long long value = Element(p, field, index);
    if (field.eKind == kDMF_FIXED)
        return FixedText(value);
    if (field.eKind == kDMF_HEX) {
        char buf[24];
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

// The finisher's programs that are both counted and within the cb bytes at hand.
DWORD ProgramsShown(const BYTE* info, size_t cb)
{
    constexpr size_t kCount = offsetof(TVOFinisherInfo, numPrograms);
    if (cb < kCount + sizeof(DWORD))
        return 0;
    DWORD count;
    memcpy(&count, info + kCount, sizeof(count));
    if (count > kFINISHER_MAX_PROGRAMS)
        count = kFINISHER_MAX_PROGRAMS;
    size_t room = cb < offsetof(TVOFinisherInfo, programs)
                      ? 0
                      : (cb - offsetof(TVOFinisherInfo, programs)) / sizeof(TVOFinisherProgram);
    return count < room ? count : DWORD(room);
}

void FieldsToJson(JsonWriter& json, const DEVMODEEX_FIELD* fields, size_t cFields, const BYTE* base,
                  size_t cb);

} // namespace

void FinisherToJson(JsonWriter& json, const char* key, const BYTE* info, size_t cb)
{
    if (cb > sizeof(TVOFinisherInfo))
        cb = sizeof(TVOFinisherInfo);
    json.BeginObject(key);
    FieldsToJson(json, g_FinisherInfoFields, g_cFinisherInfoFields, info, cb);
    if (cb >= offsetof(TVOFinisherInfo, programs)) {
        json.BeginArray("programs");
        DWORD shown = ProgramsShown(info, cb);
        for (DWORD i = 0; i < shown; i++) {
            json.BeginObject();
            FieldsToJson(json, g_FinisherProgramFields, g_cFinisherProgramFields,
                         info + offsetof(TVOFinisherInfo, programs) +
                             i * sizeof(TVOFinisherProgram),
                         sizeof(TVOFinisherProgram));
            json.EndObject();
        }
        json.EndArray();
    }
    json.EndObject();
}

namespace {

void FieldsToJson(JsonWriter& json, const DEVMODEEX_FIELD* fields, size_t cFields, const BYTE* base,
                  size_t cb)
{
    for (size_t i = 0; i < cFields; i++) {
        const DEVMODEEX_FIELD& field = fields[i];
        const BYTE* p = base + field.dwOffset;
        if (field.eKind == kDMF_FINISHER) {
            if (field.dwOffset < cb)
                FinisherToJson(json, field.pszName, p, cb - field.dwOffset);
            continue;
        }
        if (size_t(field.dwOffset) + field.cbSize > cb)
            continue;
        DWORD count = field.cbSize / field.cbElement;
        switch (field.eKind) {
        case kDMF_TEXT:
            json.String(field.pszName, BoundedText(p, field.cbSize / 2));
            break;
        case kDMF_LIST:
            json.BeginArray(field.pszName);
            for (const std::u16string& name : BoundedList(p, field.cbSize / 2))
                json.String(nullptr, name);
            json.EndArray();
            break;
        case kDMF_BYTES:
            json.String(field.pszName, HexBytes(p, field.cbSize));
            break;
        default:
            // Distances in their unit: thousandths 200 are 0.2.
            if (count != 1)
                json.BeginArray(field.pszName);
            for (DWORD e = 0; e < count; e++) {
                const char* key = count == 1 ? field.pszName : nullptr;
                if (field.eKind == kDMF_FIXED)
                    json.Literal(key, FixedText(Element(p, field, e)));
                else
                    json.Number(key, Element(p, field, e));
            }
            if (count != 1)
                json.EndArray();
        }
    }
}

void FieldsToText(std::string& out, const std::string& prefix, const DEVMODEEX_FIELD* fields,
                  size_t cFields, const BYTE* base, size_t cb, size_t baseOffset);

void FinisherToText(std::string& out, const std::string& name, const BYTE* info, size_t cb,
                    size_t offset)
{
    if (cb > sizeof(TVOFinisherInfo))
        cb = sizeof(TVOFinisherInfo);
    FieldsToText(out, name + ".", g_FinisherInfoFields, g_cFinisherInfoFields, info, cb, offset);
    DWORD shown = ProgramsShown(info, cb);
    for (DWORD i = 0; i < shown; i++) {
        size_t at = offsetof(TVOFinisherInfo, programs) + i * sizeof(TVOFinisherProgram);
        FieldsToText(out, name + ".programs[" + std::to_string(i) + "].", g_FinisherProgramFields,
                     g_cFinisherProgramFields, info + at, sizeof(TVOFinisherProgram), offset + at);
    }
}

void FieldsToText(std::string& out, const std::string& prefix, const DEVMODEEX_FIELD* fields,
                  size_t cFields, const BYTE* base, size_t cb, size_t baseOffset)
{
    for (size_t i = 0; i < cFields; i++) {
        const DEVMODEEX_FIELD& field = fields[i];
        const BYTE* p = base + field.dwOffset;
        if (field.eKind == kDMF_FINISHER) {
            if (field.dwOffset < cb)
                FinisherToText(out, prefix + field.pszName, p, cb - field.dwOffset,
                               baseOffset + field.dwOffset);
            continue;
        }
        if (size_t(field.dwOffset) + field.cbSize > cb)
            continue;
        std::string value;
        switch (field.eKind) {
        case kDMF_TEXT:
            value = TextQuote(BoundedText(p, field.cbSize / 2));
            break;
        case kDMF_LIST:
            for (const std::u16string& name : BoundedList(p, field.cbSize / 2))
                value += (value.empty() ? "" : ", ") + TextQuote(name);
            value = "[" + value + "]";
            break;
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
        char line[32];
        snprintf(line, sizeof(line), "%5zu  ", baseOffset + field.dwOffset);
        std::string name = prefix + field.pszName;
        if (name.size() < 24)
            name.resize(24, ' ');
        out += line + name + " " + value + "\n";
    }
}

} // namespace

namespace {

// "NAME" or "NAME[I]": the name and the element index (0 without one).
bool SplitIndex(const std::string& path, std::string* name, DWORD* index)
{
    *index = 0;
    size_t open = path.find('[');
    if (open == std::string::npos) {
        *name = path;
        return !path.empty();
    }
    if (path.back() != ']' || open == 0 || open + 2 >= path.size())
        return false;
    char* end = nullptr;
    unsigned long value = strtoul(path.c_str() + open + 1, &end, 10);
    if (end != path.c_str() + path.size() - 1 || value > 0xFFFF)
        return false;
    *name = path.substr(0, open);
    *index = static_cast<DWORD>(value);
    return true;
}

const DEVMODEEX_FIELD* FindIn(const DEVMODEEX_FIELD* fields, size_t cFields,
                              const std::string& name)
{
    for (size_t i = 0; i < cFields; i++)
        if (name == fields[i].pszName)
            return &fields[i];
    return nullptr;
}

// Where a named field lies in the record: its table row, its offset from the record's start
// and the element index. The finisher's fields are "dmxFinisher.NAME" and
// "dmxFinisher.programs[I].NAME".
struct FieldPlace
{
    const DEVMODEEX_FIELD* field = nullptr;
    size_t offset = 0;
    DWORD index = 0;
};

bool LocateField(const std::string& path, FieldPlace* place)
{
    const std::string kFinisher = "dmxFinisher.";
    const std::string kPrograms = "programs[";
    const DEVMODEEX_FIELD* fields = g_DevmodeFields;
    size_t cFields = g_cDevmodeFields;
    std::string rest = path;
    size_t base = 0;
    if (path.compare(0, kFinisher.size(), kFinisher) == 0) {
        base = offsetof(DEVMODEEX, dmxFinisher);
        fields = g_FinisherInfoFields;
        cFields = g_cFinisherInfoFields;
        rest = path.substr(kFinisher.size());
        if (rest.compare(0, kPrograms.size(), kPrograms) == 0) {
            size_t close = rest.find("].");
            std::string program;
            DWORD i = 0;
            if (close == std::string::npos ||
                !SplitIndex(rest.substr(0, close + 1), &program, &i) || i >= kFINISHER_MAX_PROGRAMS)
                return false;
            base += offsetof(TVOFinisherInfo, programs) + i * sizeof(TVOFinisherProgram);
            fields = g_FinisherProgramFields;
            cFields = g_cFinisherProgramFields;
            rest = rest.substr(close + 2);
        }
    }
    std::string name;
    if (!SplitIndex(rest, &name, &place->index))
        return false;
    place->field = FindIn(fields, cFields, name);
    if (!place->field || place->field->eKind == kDMF_FINISHER || place->field->eKind == kDMF_BYTES)
        return false;
    bool whole = place->field->eKind == kDMF_TEXT || place->field->eKind == kDMF_LIST;
    if (whole ? place->index != 0 : place->index >= place->field->cbSize / place->field->cbElement)
        return false;
    place->offset = base + place->field->dwOffset;
    return true;
}

// A decimal number, or 0x hex; a fixed-point field takes thousandths as a decimal fraction.
bool ParseFieldNumber(const std::string& text, bool fixed, long long* value)
{
    if (text.empty())
        return false;
    const char* s = text.c_str();
    char* end = nullptr;
    if (!fixed) {
        errno = 0;
        *value = strtoll(s, &end, 0);
        return errno == 0 && *end == 0;
    }
    bool negative = *s == '-';
    if (*s == '-' || *s == '+')
        ++s;
    long long whole = 0, fraction = 0;
    int digits = 0;
    for (; *s >= '0' && *s <= '9'; ++s, ++digits)
        whole = whole * 10 + (*s - '0');
    if (*s == '.') {
        long long scale = 100;
        for (++s; *s >= '0' && *s <= '9'; ++s, ++digits, scale /= 10)
            fraction += (*s - '0') * scale;
    }
    if (*s || digits == 0 || digits > 12)
        return false;
    *value = (negative ? -1 : 1) * (whole * 1000 + fraction);
    return true;
}

} // namespace

bool RecordFieldText(const BYTE* record, size_t cb, const std::string& name, std::string* text)
{
    FieldPlace place;
    if (!LocateField(name, &place) || place.offset + place.field->cbSize > cb)
        return false;
    const BYTE* p = record + place.offset;
    switch (place.field->eKind) {
    case kDMF_TEXT:
        *text = usersim::Utf16ToUtf8(BoundedText(p, place.field->cbSize / 2));
        return true;
    case kDMF_LIST:
        text->clear();
        for (const std::u16string& item : BoundedList(p, place.field->cbSize / 2))
            *text += (text->empty() ? "" : "|") + usersim::Utf16ToUtf8(item);
        return true;
    default:
        *text = ElementText(p, *place.field, place.index);
        return true;
    }
}

bool SetRecordField(BYTE* record, size_t cb, const std::string& name, const std::string& text,
                    std::string* error)
{
    FieldPlace place;
    if (!LocateField(name, &place) || place.offset + place.field->cbSize > cb) {
        *error = "the record has no field " + name;
        return false;
    }
    const DEVMODEEX_FIELD& field = *place.field;
    BYTE* p = record + place.offset;
    if (field.eKind == kDMF_TEXT || field.eKind == kDMF_LIST) {
        // A list's names are joined by "|"; each is stored with its NUL, and an empty one ends it.
        std::u16string units;
        if (field.eKind == kDMF_TEXT) {
            units = usersim::Utf8ToUtf16(text);
        } else {
            size_t start = 0;
            while (start < text.size()) {
                size_t bar = text.find('|', start);
                if (bar == std::string::npos)
                    bar = text.size();
                units += usersim::Utf8ToUtf16(text.substr(start, bar - start)) + u'\0';
                start = bar + 1;
            }
            units += u'\0';
        }
        if (units.size() * 2 > field.cbSize) {
            *error = name + " holds " + std::to_string(field.cbSize / 2) + " characters";
            return false;
        }
        memset(p, 0, field.cbSize);
        memcpy(p, units.data(), units.size() * 2);
        return true;
    }
    long long value = 0;
    const long long bits = 8 * field.cbElement;
    if (!ParseFieldNumber(text, field.eKind == kDMF_FIXED, &value) ||
        value < -(1LL << (bits - 1)) || value >= (1LL << bits)) {
        *error = "'" + text + "' is no value of " + name;
        return false;
    }
    uint32_t element = static_cast<uint32_t>(value);
    memcpy(p + place.index * field.cbElement, &element, field.cbElement);
    return true;
}

std::string RecordAsText(const BYTE* record, size_t cb)
{
    std::string out;
    FieldsToText(out, "", g_DevmodeFields, g_cDevmodeFields, record, cb, 0);
    return out;
}

void RecordToJson(JsonWriter& json, const char* key, const BYTE* record, size_t cb)
{
    json.BeginObject(key);
    FieldsToJson(json, g_DevmodeFields, g_cDevmodeFields, record, cb);
    json.EndObject();
}

std::string RecordAsJson(const BYTE* record, size_t cb)
{
    JsonWriter json;
    RecordToJson(json, nullptr, record, cb);
    return json.Text();
}

const char* RecordKindText(const BYTE* record, size_t cb)
{
    // The identity test reads as far as the signature: give it a copy that reaches that far.
    std::vector<BYTE> copy(record, record + cb);
    if (copy.size() < sizeof(DEVMODEEX))
        copy.resize(sizeof(DEVMODEEX), 0);
    switch (GetDevmodeKind(reinterpret_cast<const DEVMODEW*>(copy.data()))) {
    case kDM_OWN_CURRENT:
        return "this driver's current layout";
    case kDM_OWN_OLDER:
        return "this driver's older layout";
    case kDM_OWN_FOREIGN_PUBLIC:
        return "this driver's private part behind a public part of another size";
    case kDM_OLDER_FOREIGN_PUBLIC:
        return "this driver's older private part behind a public part of another size";
    default:
        return "not a record of this driver";
    }
}

size_t DeclaredRecordSize(const BYTE* record, size_t cb)
{
    constexpr size_t kSize = offsetof(DEVMODEW, dmSize);
    static_assert(offsetof(DEVMODEW, dmDriverExtra) == kSize + 2, "the two sizes are adjacent");
    if (cb < kSize + 4)
        return 0;
    WORD size, extra;
    memcpy(&size, record + kSize, 2);
    memcpy(&extra, record + kSize + 2, 2);
    return size_t(size) + extra;
}

bool ReadRecordFile(const std::string& path, std::vector<uint8_t>* bytes, std::string* error)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        *error = "cannot read the record file " + path;
        return false;
    }
    bytes->clear();
    char buf[65536];
    while (file.read(buf, sizeof(buf)) || file.gcount() > 0) {
        bytes->insert(bytes->end(), buf, buf + file.gcount());
        if (bytes->size() > kMaxRecordFile) {
            *error = path + " is larger than any settings record (over " +
                     std::to_string(kMaxRecordFile) + " bytes)";
            return false;
        }
    }
    if (file.bad()) {
        *error = "cannot read the record file " + path;
        return false;
    }
    if (bytes->size() < sizeof(DEVMODEW)) {
        *error = path + " holds " + std::to_string(bytes->size()) +
                 " bytes, fewer than the 220 of a record's public part: not a settings record";
        return false;
    }
    // Another driver's record is welcome (the driver's repair is what it tests), but a public
    // part must at least reach past its own size fields to dmFields, and no DEVMODEW's public
    // part is larger than this one's: anything else is a file of another kind.
    WORD publicSize;
    memcpy(&publicSize, bytes->data() + offsetof(DEVMODEW, dmSize), 2);
    constexpr size_t kSmallestPublic = offsetof(DEVMODEW, dmFields) + sizeof(DWORD);
    if (publicSize < kSmallestPublic || publicSize > sizeof(DEVMODEW)) {
        *error = path + ": its dmSize " + std::to_string(publicSize) + " is no size of a " +
                 "record's public part (" + std::to_string(kSmallestPublic) + " to " +
                 std::to_string(sizeof(DEVMODEW)) + "): not a settings record";
        return false;
    }
    size_t declared = DeclaredRecordSize(bytes->data(), bytes->size());
    if (bytes->size() < declared) {
        WORD size, extra;
        memcpy(&size, bytes->data() + offsetof(DEVMODEW, dmSize), 2);
        memcpy(&extra, bytes->data() + offsetof(DEVMODEW, dmDriverExtra), 2);
        *error = path + " holds " + std::to_string(bytes->size()) + " bytes, but its dmSize " +
                 std::to_string(size) + " and dmDriverExtra " + std::to_string(extra) +
                 " declare " + std::to_string(declared) +
                 ": the record is truncated, or not a settings record";
        return false;
    }
    return true;
}

bool WriteFileBytes(const std::string& path, const void* data, size_t cb, std::string* error)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (file)
        file.write(static_cast<const char*>(data), std::streamsize(cb));
    if (file)
        file.close();
    if (!file) {
        *error = "cannot write " + path;
        return false;
    }
    return true;
}

void ControlsToJson(JsonWriter& json, const std::vector<usersim::ControlState>& controls)
{
    json.BeginArray("controls");
    for (const usersim::ControlState& c : controls) {
        json.BeginObject();
        json.Number("id", c.id);
        json.String("class", c.className);
        json.String("kind", c.kind);
        json.String("text", c.text);
        json.Bool("enabled", c.enabled);
        json.Bool("visible", c.visible);
        json.Bool("checked", c.checked);
        if (!c.items.empty()) {
            json.Number("selection", c.selection);
            json.BeginArray("items");
            for (const auto& item : c.items) {
                json.BeginObject();
                json.String("text", item.first);
                json.Number("data", item.second);
                json.EndObject();
            }
            json.EndArray();
        }
        if (c.className == "msctls_updown32" || c.className == "msctls_trackbar32") {
            json.Number("position", c.position);
            json.Number("min", c.rangeMin);
            json.Number("max", c.rangeMax);
        }
        json.EndObject();
    }
    json.EndArray();
}
