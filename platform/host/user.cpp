// user32: message boxes answered by the user simulation's script or a queue of answers, and
// the desktop window.
#include "wininternal.h"

#include <deque>
#include <vector>

namespace {

struct MessageBoxState
{
    std::deque<int> answers;
    std::vector<host::MessageBoxCall> calls;
};

MessageBoxState& State()
{
    static auto* state = new MessageBoxState;
    return *state;
}

// The buttons of each MB_TYPEMASK value, left to right; MB_DEFBUTTONn picks the n-th.
const std::vector<int>* Buttons(UINT type)
{
    static const std::vector<int> sets[] = {
        {IDOK},                             // MB_OK
        {IDOK, IDCANCEL},                   // MB_OKCANCEL
        {IDABORT, IDRETRY, IDIGNORE},       // MB_ABORTRETRYIGNORE
        {IDYES, IDNO, IDCANCEL},            // MB_YESNOCANCEL
        {IDYES, IDNO},                      // MB_YESNO
        {IDRETRY, IDCANCEL},                // MB_RETRYCANCEL
        {IDCANCEL, IDTRYAGAIN, IDCONTINUE}, // MB_CANCELTRYCONTINUE
    };
    UINT index = type & MB_TYPEMASK;
    return index < std::size(sets) ? &sets[index] : nullptr;
}

} // namespace

namespace host {

void QueueMessageBoxAnswer(int answer)
{
    detail::Lock lock(detail::StateMutex());
    State().answers.push_back(answer);
}

void ClearMessageBoxAnswers()
{
    detail::Lock lock(detail::StateMutex());
    State().answers.clear();
}

std::vector<MessageBoxCall> MessageBoxCalls()
{
    detail::Lock lock(detail::StateMutex());
    return State().calls;
}

void ClearMessageBoxCalls()
{
    detail::Lock lock(detail::StateMutex());
    State().calls.clear();
}

} // namespace host

extern "C" {

// The button "pressed": the script's `answer` when it is the next action (the default button,
// with a failure recorded, when the box lacks the answer's button), else the next queued answer,
// else the default button (MB_DEFBUTTONn of the type's buttons; the first when n is beyond
// them). A caption of NULL reads "Error", as the system shows it. An unknown button set is 0 with
// ERROR_INVALID_MSGBOX_STYLE. Every call is recorded, failed ones with answer 0.
int WINAPI MessageBoxW(HWND hWnd, LPCWSTR lpText, LPCWSTR lpCaption, UINT uType)
{
    host::detail::Lock lock(host::detail::StateMutex());
    MessageBoxState& state = State();
    host::MessageBoxCall call{hWnd, host::detail::FromW(lpText),
                              lpCaption ? host::detail::FromW(lpCaption) : u"Error", uType, 0};
    const std::vector<int>* buttons = Buttons(uType);
    if (!buttons) {
        state.calls.push_back(call);
        SetLastError(ERROR_INVALID_MSGBOX_STYLE);
        return 0;
    }
    size_t index = (uType & MB_DEFMASK) >> 8;
    int defaultButton = index < buttons->size() ? (*buttons)[index] : buttons->front();
    int scripted = 0;
    if (host::detail::TakeScriptedMessageBoxAnswer(call.text, *buttons, defaultButton, &scripted)) {
        call.answer = scripted;
    } else if (!state.answers.empty()) {
        call.answer = state.answers.front();
        state.answers.pop_front();
    } else {
        call.answer = defaultButton;
    }
    state.calls.push_back(call);
    return call.answer;
}

// A fixed handle, the same for every call, as the one desktop of a session.
HWND WINAPI GetDesktopWindow(void)
{
    return reinterpret_cast<HWND>(uintptr_t(0x10010));
}

} // extern "C"
