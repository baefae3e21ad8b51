// UTF-8 and UTF-16 conversions of the host. The host keeps its own so that it depends on no
// unit of the driver; malformed input never fails a conversion but becomes U+FFFD.
#include "hostinternal.h"

namespace host {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

void AppendUtf8(std::string& out, char32_t c)
{
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | (c >> 6));
        out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += char(0xE0 | (c >> 12));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    } else {
        out += char(0xF0 | (c >> 18));
        out += char(0x80 | ((c >> 12) & 0x3F));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    }
}

} // namespace

std::u16string Utf8ToUtf16(const std::string& text)
{
    std::u16string out;
    out.reserve(text.size());
    const auto* s = reinterpret_cast<const unsigned char*>(text.data());
    size_t n = text.size();
    size_t i = 0;
    while (i < n) {
        unsigned char b = s[i];
        char32_t c;
        size_t len;
        if (b < 0x80) {
            c = b;
            len = 1;
        } else if (b >= 0xC2 && b <= 0xDF) {
            c = b & 0x1F;
            len = 2;
        } else if (b >= 0xE0 && b <= 0xEF) {
            c = b & 0x0F;
            len = 3;
        } else if (b >= 0xF0 && b <= 0xF4) {
            c = b & 0x07;
            len = 4;
        } else {
            out += char16_t(kReplacement);
            ++i;
            continue;
        }
        size_t j = 1;
        for (; j < len && i + j < n && (s[i + j] & 0xC0) == 0x80; ++j) {
            c = (c << 6) | (s[i + j] & 0x3F);
        }
        // Truncated, overlong, surrogate or beyond U+10FFFF: one replacement for what was read.
        bool bad = j < len || (len == 3 && c < 0x800) || (len == 4 && c < 0x10000) ||
                   (c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF;
        i += j;
        if (bad) {
            out += char16_t(kReplacement);
        } else if (c >= 0x10000) {
            c -= 0x10000;
            out += char16_t(0xD800 + (c >> 10));
            out += char16_t(0xDC00 + (c & 0x3FF));
        } else {
            out += char16_t(c);
        }
    }
    return out;
}

std::string Utf16ToUtf8(const std::u16string& text)
{
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
            text[i + 1] <= 0xDFFF) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00);
            ++i;
        } else if (c >= 0xD800 && c <= 0xDFFF) {
            c = kReplacement;
        }
        AppendUtf8(out, c);
    }
    return out;
}

std::string Utf16ToUtf8(const WCHAR* text)
{
    return Utf16ToUtf8(detail::FromW(text));
}

} // namespace host
