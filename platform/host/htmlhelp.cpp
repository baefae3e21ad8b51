// HTML Help: the host shows no help window, so each request is recorded for tests to read and
// answered as a help window that could not be opened (NULL).
#include "hostgdi.h"
#include "hostinternal.h"

#include <algorithm>
#include <cstddef>
#include <deque>

namespace {

// Only the latest requests are kept, so that a long run that nobody inspects stays small.
constexpr size_t kMaxRecordedCalls = 1024;

std::deque<host::HtmlHelpCall>& Calls()
{
    static auto* calls = new std::deque<host::HtmlHelpCall>;
    return *calls;
}

// A text that a record points at; not followed when it is a resource number.
std::u16string TextAt(LPCWSTR text)
{
    return text && !IS_INTRESOURCE(text) ? host::detail::FromW(text) : std::u16string();
}

} // namespace

namespace host {

std::vector<HtmlHelpCall> TakeHtmlHelpCalls()
{
    detail::Lock lock(detail::StateMutex());
    std::vector<HtmlHelpCall> taken(Calls().begin(), Calls().end());
    Calls().clear();
    return taken;
}

} // namespace host

extern "C" {

// Records the request and returns NULL, leaving the last error alone. For HH_DISPLAY_TEXT_POPUP
// the record dwData points at is copied, as far as its cbStruct says (at most an HH_POPUP),
// together with the texts pszText and pszFont name.
HWND WINAPI HtmlHelpW(HWND hwndCaller, LPCWSTR pszFile, UINT uCommand, DWORD_PTR dwData)
{
    host::HtmlHelpCall call;
    call.owner = hwndCaller;
    call.path = TextAt(pszFile);
    call.command = uCommand;
    call.data = dwData;
    if (uCommand == HH_DISPLAY_TEXT_POPUP && dwData) {
        const auto* given = reinterpret_cast<const HH_POPUP*>(dwData);
        HH_POPUP popup{};
        const size_t size =
            given->cbStruct > 0 ? std::min<size_t>(size_t(given->cbStruct), sizeof popup) : 0;
        std::memcpy(&popup, given, size);
        if (size >= offsetof(HH_POPUP, pt)) {
            call.popupText = TextAt(popup.pszText);
        }
        if (size == sizeof popup) {
            call.popupFont = TextAt(popup.pszFont);
        }
        call.popup = popup;
    }
    host::detail::Lock lock(host::detail::StateMutex());
    Calls().push_back(std::move(call));
    if (Calls().size() > kMaxRecordedCalls) {
        Calls().pop_front();
    }
    return nullptr;
}

} // extern "C"
