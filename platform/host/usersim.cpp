// The user simulation: scripts of a person's actions, parsed up front and taken one by one by
// the modal runs (dialogs, message boxes, file pickers, popup menus), control actions that
// raise the messages a person's input raises, and the description and dump of a window.
#include "wininternal.h"

#include <cstdlib>
#include <deque>

namespace host::detail {

namespace {

struct ScriptState
{
    std::deque<UserAction> actions;
    std::vector<std::string> failures;
};

ScriptState& State()
{
    static auto* state = new ScriptState;
    return *state;
}

bool Fail(const UserAction& action, const std::string& message)
{
    RecordUserScriptFailure(action, message);
    return false;
}

std::string Describe(const UserAction& a)
{
    return "control " + std::to_string(a.id);
}

// The item index of a list whose data or text is the action's.
int FindListItem(HWND control, ControlKind kind, const UserAction& action)
{
    bool combo = kind == ControlKind::ComboBox;
    if (action.verb == "select-text") {
        std::u16string text = Utf8ToUtf16(action.text);
        return int(SendMessageW(control, combo ? CB_FINDSTRINGEXACT : LB_FINDSTRINGEXACT,
                                WPARAM(-1), reinterpret_cast<LPARAM>(text.c_str())));
    }
    int count = int(SendMessageW(control, combo ? CB_GETCOUNT : LB_GETCOUNT, 0, 0));
    for (int i = 0; i < count; ++i) {
        if (SendMessageW(control, combo ? CB_GETITEMDATA : LB_GETITEMDATA, WPARAM(i), 0) ==
            LRESULT(action.number)) {
            return i;
        }
    }
    return -1;
}

// The combo box's selection moved without its edit told yet.
void SelectQuietly(HWND control, int index)
{
    if (WindowPtr w = FindWindowQuiet(control)) {
        Lock lock(StateMutex());
        w->control.selection = index;
    }
}

// The chosen item's text goes to the edit, unless the parent chose another item (or refilled
// the list) while it was told: the list's own selection is what user32 then shows.
void ShowChosenItem(HWND control, int index)
{
    if (SendMessageW(control, CB_GETCURSEL, 0, 0) == index)
        SendMessageW(control, CB_SETCURSEL, WPARAM(index), 0);
}

void SelectAsUser(HWND control, ControlKind kind, int index)
{
    SetFocus(control);
    if (kind == ControlKind::ComboBox) {
        // As user32's combo box: the list drops, the click ends the selection and closes the
        // list, then the change is told, and only then does an edit take the item's text.
        NotifyParent(control, CBN_DROPDOWN);
        SelectQuietly(control, index);
        NotifyParent(control, CBN_SELENDOK);
        NotifyParent(control, CBN_CLOSEUP);
        NotifyParent(control, CBN_SELCHANGE);
        ShowChosenItem(control, index);
    } else {
        SendMessageW(control, LB_SETCURSEL, WPARAM(index), 0);
        if (GetWindowLongW(control, GWL_STYLE) & LBS_NOTIFY) {
            NotifyParent(control, LBN_SELCHANGE);
        }
    }
}

// An arrow key on a closed combo box: the next or previous item becomes the selection.
void ChooseWithArrow(HWND control, bool down)
{
    int count = int(SendMessageW(control, CB_GETCOUNT, 0, 0));
    int current = int(SendMessageW(control, CB_GETCURSEL, 0, 0));
    int next = current < 0 ? 0 : current + (down ? 1 : -1);
    if (count <= 0 || next < 0 || next >= count) {
        return;
    }
    SelectQuietly(control, next);
    NotifyParent(control, CBN_SELENDOK);
    NotifyParent(control, CBN_SELCHANGE);
    ShowChosenItem(control, next);
}

} // namespace

bool TakeScriptedMessageBoxAnswer(const std::u16string& text, const std::vector<int>& buttons,
                                  int defaultButton, int* answer)
{
    UserAction action;
    if (!PeekUserAction(&action) || action.verb != "answer") {
        return false;
    }
    TakeUserAction(&action);
    std::string message = Utf16ToUtf8(text);
    if (message.find(action.expected) == std::string::npos) {
        RecordUserScriptFailure(action, "the message box says " + usersim::QuoteText(text));
    }
    auto has = [&](int b) { return std::find(buttons.begin(), buttons.end(), b) != buttons.end(); };
    const std::string& a = action.text;
    int wanted = a == "yes"      ? IDYES
                 : a == "no"     ? IDNO
                 : a == "ok"     ? IDOK
                 : a == "cancel" ? IDCANCEL
                 : a == "retry"  ? (has(IDTRYAGAIN) ? IDTRYAGAIN : IDRETRY)
                 : a == "ignore" ? IDIGNORE
                 : a == "abort"  ? IDABORT
                                 : IDCONTINUE;
    if (has(wanted)) {
        *answer = wanted;
    } else {
        RecordUserScriptFailure(action, "the message box has no " + a + " button");
        *answer = defaultButton;
    }
    return true;
}

bool TakeScriptedFile(std::optional<std::u16string>* path)
{
    UserAction action;
    if (!PeekUserAction(&action) || action.verb != "file") {
        return false;
    }
    TakeUserAction(&action);
    if (action.text == "cancel") {
        path->reset();
    } else {
        *path = Utf8ToUtf16(action.text);
    }
    return true;
}

} // namespace host::detail

namespace host {

using namespace detail;

bool SetUserScript(const std::string& script, std::string* error)
{
    std::vector<UserAction> actions;
    if (!usersim::ParseUserScript(script, &actions, error)) {
        return false;
    }
    Lock lock(StateMutex());
    State().actions.assign(actions.begin(), actions.end());
    State().failures.clear();
    return true;
}

bool AppendUserScript(const std::string& script, std::string* error)
{
    std::vector<UserAction> actions;
    if (!usersim::ParseUserScript(script, &actions, error)) {
        return false;
    }
    Lock lock(StateMutex());
    for (UserAction& action : actions) {
        State().actions.push_back(std::move(action));
    }
    return true;
}

void ClearUserScript()
{
    Lock lock(StateMutex());
    State().actions.clear();
    State().failures.clear();
}

bool PeekUserAction(UserAction* action)
{
    Lock lock(StateMutex());
    if (State().actions.empty()) {
        return false;
    }
    if (action) {
        *action = State().actions.front();
    }
    return true;
}

bool TakeUserAction(UserAction* action)
{
    Lock lock(StateMutex());
    if (State().actions.empty()) {
        return false;
    }
    if (action) {
        *action = std::move(State().actions.front());
    }
    State().actions.pop_front();
    return true;
}

void RecordUserScriptFailure(const UserAction& action, const std::string& message)
{
    Lock lock(StateMutex());
    State().failures.push_back(usersim::FailureText(action, message));
}

std::vector<std::string> UserScriptFailures()
{
    Lock lock(StateMutex());
    return State().failures;
}

bool PerformUserAction(HWND window, const UserAction& action)
{
    HWND control = nullptr;
    for (HWND c = GetWindow(window, GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT)) {
        if (GetDlgCtrlID(c) == action.id) {
            control = c;
            break;
        }
    }
    WindowPtr w = FindWindowQuiet(control);
    std::string name = Describe(action);
    if (!w) {
        return Fail(action, name + " is missing");
    }
    const std::string& verb = action.verb;
    if (verb == "expect") {
        std::string failure;
        return usersim::CheckExpectation(control, action, &failure) || Fail(action, failure);
    }
    if (!IsWindowVisible(control)) {
        return Fail(action, name + " is hidden");
    }
    if (!IsWindowEnabled(control)) {
        return Fail(action, name + " is disabled");
    }
    DWORD style = DWORD(GetWindowLongW(control, GWL_STYLE));
    ControlKind kind = w->kind;
    if (verb == "click" || verb == "check" || verb == "uncheck") {
        if (kind == ControlKind::Static && verb == "click") {
            if (style & SS_NOTIFY) {
                NotifyParent(control, STN_CLICKED);
            }
            return true;
        }
        DWORD type = style & BS_TYPEMASK;
        if (kind != ControlKind::Button || type == BS_GROUPBOX) {
            return Fail(action, name + " is not a button");
        }
        if (verb != "click") {
            bool radio = type == BS_RADIOBUTTON || type == BS_AUTORADIOBUTTON;
            bool checkable = radio || type == BS_CHECKBOX || type == BS_AUTOCHECKBOX ||
                             type == BS_3STATE || type == BS_AUTO3STATE;
            if (!checkable) {
                return Fail(action, name + " is not a check box or radio button");
            }
            bool checked = SendMessageW(control, BM_GETCHECK, 0, 0) == BST_CHECKED;
            if (checked == (verb == "check")) {
                return true; // already as wanted: a person would not click
            }
            if (radio && verb == "uncheck") {
                return Fail(action, name + " is a radio button, which a click does not uncheck");
            }
        }
        SetFocus(control);
        SendMessageW(control, BM_CLICK, 0, 0);
        return true;
    }
    if (verb == "select" || verb == "select-text") {
        if (kind != ControlKind::ComboBox && kind != ControlKind::ListBox) {
            return Fail(action, name + " is not a list");
        }
        int index = FindListItem(control, kind, action);
        if (index < 0) {
            return Fail(action, name + " has no item " +
                                    (verb == "select" ? "with data " + std::to_string(action.number)
                                                      : "\"" + action.text + "\""));
        }
        SelectAsUser(control, kind, index);
        return true;
    }
    if (verb == "key" && kind == ControlKind::ComboBox &&
        (action.text == "down" || action.text == "up")) {
        SetFocus(control);
        ChooseWithArrow(control, action.text == "down");
        return true;
    }
    if (verb == "type" || verb == "key") {
        HWND edit = control;
        if (kind == ControlKind::ComboBox) {
            Lock lock(StateMutex());
            edit = w->control.edit;
        } else if (kind != ControlKind::Edit) {
            edit = nullptr;
        }
        if (!edit) {
            return Fail(action, name + " takes no typing");
        }
        if (GetWindowLongW(edit, GWL_STYLE) & ES_READONLY) {
            return Fail(action, name + " is read-only");
        }
        SetFocus(control);
        if (verb == "key") {
            SendMessageW(edit, WM_CHAR, WPARAM(action.number), 1);
            return true;
        }
        SendMessageW(edit, EM_SETSEL, 0, -1);
        SendMessageW(edit, WM_KEYDOWN, VK_DELETE, 1);
        for (char16_t ch : Utf8ToUtf16(action.text)) {
            SendMessageW(edit, WM_CHAR, WPARAM(ch), 1);
        }
        return true;
    }
    if (verb == "spin") {
        if (kind != ControlKind::UpDown) {
            return Fail(action, name + " is not an up-down control");
        }
        HWND buddy = reinterpret_cast<HWND>(SendMessageW(control, UDM_GETBUDDY, 0, 0));
        if (buddy) {
            SetFocus(buddy);
        }
        for (long long i = 0; i < action.number; ++i) {
            SpinUpDown(control, action.text == "up");
        }
        return true;
    }
    if (verb == "slide") {
        if (kind != ControlKind::Trackbar) {
            return Fail(action, name + " is not a trackbar");
        }
        SetFocus(control);
        SlideTrackbar(control, int(action.number));
        return true;
    }
    return Fail(action, "'" + verb + "' is not an action on a control");
}

std::vector<ControlState> DescribeWindow(HWND window)
{
    return usersim::DescribeControls(window);
}

// The window's own line, then one a control:
//   dialog 217 "Printer address"
//     1349 Edit edit "10.0.0.5" enabled visible
std::string DumpWindow(HWND window)
{
    WindowPtr w = FindWindowQuiet(window);
    if (!w) {
        return "no window\n";
    }
    std::string out;
    {
        Lock lock(StateMutex());
        if (w->dialog) {
            out = "dialog " + Utf16ToUtf8(w->dialog->templateName) + " " +
                  usersim::QuoteText(w->text) + "\n";
        } else {
            out = "window " + Utf16ToUtf8(w->className) + " " + usersim::QuoteText(w->text) + "\n";
        }
    }
    return out + usersim::DumpControls(DescribeWindow(window));
}

} // namespace host
