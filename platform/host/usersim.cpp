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

std::string Trim(const std::string& s)
{
    size_t b = s.find_first_not_of(" \t\r\n");
    if (b == std::string::npos) {
        return "";
    }
    size_t e = s.find_last_not_of(" \t\r\n");
    return s.substr(b, e - b + 1);
}

// Splits off the first word of text.
std::string Word(std::string* text)
{
    std::string t = Trim(*text);
    size_t space = t.find_first_of(" \t");
    std::string word = t.substr(0, space);
    *text = space == std::string::npos ? "" : t.substr(space + 1);
    return word;
}

bool ParseNumber(const std::string& word, long long* value)
{
    if (word.empty()) {
        return false;
    }
    const char* s = word.c_str();
    bool negative = *s == '-';
    if (negative) {
        ++s;
    }
    int base = 10;
    if (s[0] == '0' && (s[1] == 'x' || s[1] == 'X')) {
        base = 16;
        s += 2;
    }
    if (!*s) {
        return false;
    }
    char* end = nullptr;
    errno = 0;
    unsigned long long v = strtoull(s, &end, base);
    if (*end || errno) {
        return false;
    }
    *value = negative ? -(long long)v : (long long)v;
    return true;
}

const char* const kAnswers[] = {"yes",   "no",     "ok",    "cancel",
                                "retry", "ignore", "abort", "continue"};

bool ParseLine(const std::string& raw, int line, UserAction* action, std::string* why)
{
    std::string rest = raw;
    action->line = line;
    action->verb = Word(&rest);
    const std::string& verb = action->verb;
    auto id = [&]() {
        long long v;
        std::string w = Word(&rest);
        if (!ParseNumber(w, &v) || v < INT32_MIN || v > INT32_MAX) {
            *why = "'" + verb + "' needs a control id" + (w.empty() ? "" : ", not '" + w + "'");
            return false;
        }
        action->id = int(v);
        return true;
    };
    auto number = [&](const char* what) {
        std::string w = Word(&rest);
        if (!ParseNumber(w, &action->number)) {
            *why = "'" + verb + "' needs " + what + (w.empty() ? "" : ", not '" + w + "'");
            return false;
        }
        return true;
    };
    auto nothingMore = [&] {
        if (!Trim(rest).empty()) {
            *why = "unexpected '" + Trim(rest) + "' after '" + verb + "'";
            return false;
        }
        return true;
    };
    if (verb == "ok" || verb == "cancel" || verb == "apply") {
        return nothingMore();
    }
    if (verb == "tab" || verb == "click" || verb == "check" || verb == "uncheck") {
        return id() && nothingMore();
    }
    if (verb == "select") {
        return id() && number("the item data") && nothingMore();
    }
    if (verb == "spin") {
        return id() && number("a delta") && nothingMore();
    }
    if (verb == "slide") {
        return id() && number("a position") && nothingMore();
    }
    if (verb == "menu") {
        return number("a command") && nothingMore();
    }
    if (verb == "select-text" || verb == "type" || verb == "key") {
        if (!id()) {
            return false;
        }
        // The text starts after the one blank that ends the id.
        action->text = Trim(rest);
        if (verb == "select-text" && action->text.empty()) {
            *why = "'select-text' needs a text";
            return false;
        }
        if (verb == "key") {
            std::u16string k = Utf8ToUtf16(action->text);
            if (action->text == "backspace") {
                action->number = VK_BACK;
            } else if (action->text == "space") {
                action->number = u' ';
            } else if (k.size() == 1) {
                action->number = k[0];
            } else {
                *why = "'key' needs one character or backspace or space";
                return false;
            }
        }
        return true;
    }
    if (verb == "answer") {
        action->text = Word(&rest);
        for (const char* a : kAnswers) {
            if (action->text == a) {
                return nothingMore();
            }
        }
        *why = "'answer' needs yes, no, ok, cancel, retry, ignore, abort or continue";
        return false;
    }
    if (verb == "file") {
        action->text = Trim(rest);
        if (action->text.empty()) {
            *why = "'file' needs a path or cancel";
            return false;
        }
        return true;
    }
    if (verb == "expect") {
        if (!id()) {
            return false;
        }
        action->text = Word(&rest);
        const std::string& what = action->text;
        if (what == "enabled" || what == "disabled" || what == "checked" || what == "unchecked" ||
            what == "visible" || what == "hidden") {
            return nothingMore();
        }
        if (what == "text") {
            action->text = "text " + Trim(rest);
            return true;
        }
        if (what == "data") {
            return number("the item data") && nothingMore();
        }
        *why = "'expect' needs enabled, disabled, checked, unchecked, visible, hidden, text or "
               "data";
        return false;
    }
    *why = "unknown action '" + verb + "'";
    return false;
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

void SelectAsUser(HWND control, ControlKind kind, int index)
{
    SetFocus(control);
    if (kind == ControlKind::ComboBox) {
        NotifyParent(control, CBN_DROPDOWN);
        SendMessageW(control, CB_SETCURSEL, WPARAM(index), 0);
        NotifyParent(control, CBN_SELCHANGE);
        NotifyParent(control, CBN_SELENDOK);
        NotifyParent(control, CBN_CLOSEUP);
    } else {
        SendMessageW(control, LB_SETCURSEL, WPARAM(index), 0);
        if (GetWindowLongW(control, GWL_STYLE) & LBS_NOTIFY) {
            NotifyParent(control, LBN_SELCHANGE);
        }
    }
}

bool Expect(HWND control, const WindowPtr& w, const UserAction& action)
{
    const std::string& what = action.text;
    std::string name = Describe(action);
    if (what == "enabled" || what == "disabled") {
        bool enabled = IsWindowEnabled(control);
        return enabled == (what == "enabled") ||
               Fail(action, name + " is " + (enabled ? "enabled" : "disabled"));
    }
    if (what == "visible" || what == "hidden") {
        bool visible = IsWindowVisible(control);
        return visible == (what == "visible") ||
               Fail(action, name + " is " + (visible ? "visible" : "hidden"));
    }
    if (what == "checked" || what == "unchecked") {
        if (w->kind != ControlKind::Button) {
            return Fail(action, name + " is not a button");
        }
        bool checked = SendMessageW(control, BM_GETCHECK, 0, 0) == BST_CHECKED;
        return checked == (what == "checked") ||
               Fail(action, name + " is " + (checked ? "checked" : "unchecked"));
    }
    if (what == "data") {
        if (w->kind != ControlKind::ComboBox && w->kind != ControlKind::ListBox) {
            return Fail(action, name + " is not a list");
        }
        bool combo = w->kind == ControlKind::ComboBox;
        auto sel = SendMessageW(control, combo ? CB_GETCURSEL : LB_GETCURSEL, 0, 0);
        if (sel < 0) {
            return Fail(action, name + " has no item selected");
        }
        auto data = SendMessageW(control, combo ? CB_GETITEMDATA : LB_GETITEMDATA, WPARAM(sel), 0);
        return data == LRESULT(action.number) ||
               Fail(action, name + " has data " + std::to_string(data) + " selected");
    }
    // text TEXT
    std::string want = what.substr(5);
    int length = GetWindowTextLengthW(control);
    std::u16string text(size_t(length) + 1, u'\0');
    text.resize(size_t(GetWindowTextW(control, text.data(), length + 1)));
    std::string have = Utf16ToUtf8(text);
    return have == want || Fail(action, name + " has text \"" + have + "\"");
}

} // namespace

bool TakeScriptedMessageBoxAnswer(const std::vector<int>& buttons, int defaultButton, int* answer)
{
    UserAction action;
    if (!PeekUserAction(&action) || action.verb != "answer") {
        return false;
    }
    TakeUserAction(&action);
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

namespace {

bool ParseScript(const std::string& script, std::deque<UserAction>* parsed, std::string* error)
{
    std::deque<UserAction>& actions = *parsed;
    size_t start = 0;
    int line = 0;
    while (start <= script.size()) {
        size_t end = script.find('\n', start);
        if (end == std::string::npos) {
            end = script.size();
        }
        std::string text = script.substr(start, end - start);
        start = end + 1;
        ++line;
        size_t hash = text.find('#');
        if (hash != std::string::npos) {
            text.resize(hash);
        }
        if (Trim(text).empty()) {
            continue;
        }
        UserAction action;
        std::string why;
        if (!ParseLine(text, line, &action, &why)) {
            if (error) {
                *error = "line " + std::to_string(line) + ": " + why;
            }
            return false;
        }
        actions.push_back(std::move(action));
    }
    return true;
}

} // namespace

bool SetUserScript(const std::string& script, std::string* error)
{
    std::deque<UserAction> actions;
    if (!ParseScript(script, &actions, error)) {
        return false;
    }
    Lock lock(StateMutex());
    State().actions = std::move(actions);
    State().failures.clear();
    return true;
}

bool AppendUserScript(const std::string& script, std::string* error)
{
    std::deque<UserAction> actions;
    if (!ParseScript(script, &actions, error)) {
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
    State().failures.push_back("line " + std::to_string(action.line) + ": " + message);
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
        return Expect(control, w, action);
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
        SpinUpDown(control, int(action.number));
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
    std::vector<ControlState> states;
    for (HWND c = GetWindow(window, GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT)) {
        WindowPtr w = FindWindowQuiet(c);
        if (!w) {
            continue;
        }
        bool visible = IsWindowVisible(c);
        ControlState s;
        Lock lock(StateMutex());
        const ControlData& d = w->control;
        s.id = int(w->id);
        s.className = Utf16ToUtf8(w->className);
        s.text = w->text;
        s.enabled = !(w->style & WS_DISABLED);
        s.visible = visible;
        DWORD style = w->style;
        switch (w->kind) {
        case ControlKind::Button: {
            static const char* const kinds[] = {
                "push",   "defpush",  "checkbox",    "checkbox",      "radio",   "3state",
                "3state", "groupbox", "user",        "radio",         "pushbox", "ownerdraw",
                "split",  "defsplit", "commandlink", "defcommandlink"};
            s.kind = kinds[style & BS_TYPEMASK];
            s.checked = d.check == BST_CHECKED;
            break;
        }
        case ControlKind::Edit:
            s.kind = (style & ES_MULTILINE)  ? "multiline"
                     : (style & ES_PASSWORD) ? "password"
                                             : "edit";
            break;
        case ControlKind::Static: {
            DWORD type = style & SS_TYPEMASK;
            s.kind = type == SS_ICON        ? "icon"
                     : type == SS_BITMAP    ? "bitmap"
                     : type == SS_OWNERDRAW ? "ownerdraw"
                     : (type <= SS_RIGHT || type == SS_SIMPLE || type == SS_LEFTNOWORDWRAP)
                         ? "text"
                         : "frame";
            if (d.resourceId && s.text.empty()) {
                s.text = u"#" + Utf8ToUtf16(std::to_string(d.resourceId));
            }
            break;
        }
        case ControlKind::ComboBox:
        case ControlKind::ListBox:
            if (w->kind == ControlKind::ComboBox) {
                DWORD type = style & 3;
                s.kind = type == CBS_SIMPLE     ? "simple"
                         : type == CBS_DROPDOWN ? "dropdown"
                                                : "dropdownlist";
                if (WindowPtr e = FindWindowQuiet(d.edit)) {
                    s.text = e->text;
                } else {
                    s.text = d.selection >= 0 ? d.items[size_t(d.selection)].text : u"";
                }
            } else {
                s.kind = (style & LBS_MULTIPLESEL)   ? "multiple"
                         : (style & LBS_EXTENDEDSEL) ? "extended"
                                                     : "single";
            }
            s.selection = d.selection;
            for (const auto& item : d.items) {
                s.items.emplace_back(item.text, (long long)item.data);
            }
            break;
        case ControlKind::UpDown:
        case ControlKind::Trackbar:
            if (w->kind == ControlKind::UpDown) {
                s.kind = (style & UDS_HORZ) ? "horizontal" : "vertical";
            } else {
                s.kind = (style & TBS_VERT) ? "vertical" : "horizontal";
            }
            s.position = d.position;
            s.rangeMin = d.rangeMin;
            s.rangeMax = d.rangeMax;
            break;
        default:
            break;
        }
        states.push_back(std::move(s));
    }
    return states;
}

namespace {

std::string Quote(const std::u16string& text)
{
    std::string out = "\"";
    for (char c : Utf16ToUtf8(text)) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (c == '\n') {
            out += "\\n";
        } else if (c == '\r') {
            out += "\\r";
        } else if (c == '\t') {
            out += "\\t";
        } else {
            out += c;
        }
    }
    return out + "\"";
}

} // namespace

// One line for the window, then one a control:
//   dialog 217 "Printer address"
//     1349 Edit edit "10.0.0.5" enabled visible
//     1004 ComboBox dropdownlist "A3" enabled visible selection 1: "A4"=274, *"A3"=273
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
            out = "dialog " + Utf16ToUtf8(w->dialog->templateName) + " " + Quote(w->text) + "\n";
        } else {
            out = "window " + Utf16ToUtf8(w->className) + " " + Quote(w->text) + "\n";
        }
    }
    for (const ControlState& s : DescribeWindow(window)) {
        out += "  " + std::to_string(s.id) + " " + s.className;
        if (!s.kind.empty()) {
            out += " " + s.kind;
        }
        out += " " + Quote(s.text);
        out += s.enabled ? " enabled" : " disabled";
        out += s.visible ? " visible" : " hidden";
        if (s.className == "Button" &&
            (s.kind == "checkbox" || s.kind == "radio" || s.kind == "3state")) {
            out += s.checked ? " checked" : " unchecked";
        }
        if (s.className == "ComboBox" || s.className == "ListBox") {
            out += " selection " +
                   (s.selection < 0 ? std::string("none") : std::to_string(s.selection)) + ":";
            if (s.items.empty()) {
                out += " (empty)";
            }
            for (size_t i = 0; i < s.items.size(); ++i) {
                out += std::string(i ? ", " : " ") + (int(i) == s.selection ? "*" : "") +
                       Quote(s.items[i].first) + "=" + std::to_string(s.items[i].second);
            }
        }
        if (s.className == "msctls_updown32" || s.className == "msctls_trackbar32") {
            out += " position " + std::to_string(s.position) + " range " +
                   std::to_string(s.rangeMin) + ".." + std::to_string(s.rangeMax);
        }
        out += "\n";
    }
    return out;
}

} // namespace host
