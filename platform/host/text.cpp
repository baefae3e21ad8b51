// UTF-8 and UTF-16 conversions of the host: those of platform/usersim, which Windows builds
// too; malformed input never fails a conversion but becomes U+FFFD.
#include "hostinternal.h"

namespace host {

std::u16string Utf8ToUtf16(const std::string& text)
{
    return usersim::Utf8ToUtf16(text);
}

std::string Utf16ToUtf8(const std::u16string& text)
{
    return usersim::Utf16ToUtf8(text);
}

std::string Utf16ToUtf8(const WCHAR* text)
{
    return Utf16ToUtf8(detail::FromW(text));
}

} // namespace host
