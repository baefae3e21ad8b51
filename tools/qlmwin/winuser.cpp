// Script actions on real controls, as a person's input reaches them.
#include "winuser.h"

#include "platform/usersim/controlstate.h"

#include <algorithm>
#include <vector>

namespace winuser {

namespace {

using usersim::UserAction;

std::string ClassOf(HWND window)
{
    WCHAR name[64] = {};
    int n = GetClassNameW(window, name, 64);
    std::u16string text(reinterpret_cast<const char16_t*>(name), size_t(n > 0 ? n : 0));
    std::string utf8 = usersim::Utf16ToUtf8(text);
    std::transform(utf8.begin(), utf8.end(), utf8.begin(),
                   [](unsigned char c) { return char(tolower(c)); });
    return utf8;
}

LPARAM Point(int x, int y)
{
    return MAKELPARAM(x, y);
}

// A left click at a point of the window's client area.
void Click(HWND window, int x, int y)
{
    SendMessageW(window, WM_MOUSEMOVE, 0, Point(x, y));
    SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, Point(x, y));
    SendMessageW(window, WM_LBUTTONUP, 0, Point(x, y));
}

int FindItem(HWND control, bool combo, const UserAction& action)
{
    if (action.verb == "select-text") {
        std::u16string text = usersim::Utf8ToUtf16(action.text);
        return int(SendMessageW(control, combo ? CB_FINDSTRINGEXACT : LB_FINDSTRINGEXACT,
                                WPARAM(-1), reinterpret_cast<LPARAM>(text.c_str())));
    }
    int count = int(SendMessageW(control, combo ? CB_GETCOUNT : LB_GETCOUNT, 0, 0));
    for (int i = 0; i < count; ++i)
        if (SendMessageW(control, combo ? CB_GETITEMDATA : LB_GETITEMDATA, WPARAM(i), 0) ==
            LRESULT(action.number))
            return i;
    return -1;
}

// A pick with the mouse: the list dropped, the item brought into view and clicked.
void PickInList(HWND control, bool combo, int index)
{
    SetFocus(control);
    HWND list = control;
    if (combo) {
        COMBOBOXINFO info = {};
        info.cbSize = sizeof(info);
        GetComboBoxInfo(control, &info);
        if ((GetWindowLongW(control, GWL_STYLE) & 3) != CBS_SIMPLE) {
            RECT r;
            GetClientRect(control, &r);
            // The drop arrow: where a person clicks to open the list.
            Click(control, r.right - 4, (r.top + r.bottom) / 2);
        }
        list = info.hwndList;
    }
    SendMessageW(list, LB_SETTOPINDEX, WPARAM(index), 0);
    RECT item = {};
    SendMessageW(list, LB_GETITEMRECT, WPARAM(index), reinterpret_cast<LPARAM>(&item));
    int x = (item.left + item.right) / 2, y = (item.top + item.bottom) / 2;
    SendMessageW(list, WM_MOUSEMOVE, 0, Point(x, y));
    SendMessageW(list, WM_LBUTTONDOWN, MK_LBUTTON, Point(x, y));
    SendMessageW(list, WM_LBUTTONUP, 0, Point(x, y));
}

void PressKey(HWND control, WPARAM key)
{
    SendMessageW(control, WM_KEYDOWN, key, 1);
    SendMessageW(control, WM_KEYUP, key, 0xC0000001);
}

// The up-down's upper (or, horizontal, right) half pressed and released, count times.
void PressArrow(HWND updown, bool up, long long count)
{
    RECT r;
    GetClientRect(updown, &r);
    bool horizontal = GetWindowLongW(updown, GWL_STYLE) & UDS_HORZ;
    int x = horizontal ? (up ? r.right * 3 / 4 : r.right / 4) : r.right / 2;
    int y = horizontal ? r.bottom / 2 : (up ? r.bottom / 4 : r.bottom * 3 / 4);
    for (long long i = 0; i < count; ++i) {
        SendMessageW(updown, WM_LBUTTONDOWN, MK_LBUTTON, Point(x, y));
        SendMessageW(updown, WM_LBUTTONUP, 0, Point(x, y));
    }
}

// The thumb dragged to the position: pressed, moved, released.
bool DragThumb(HWND trackbar, int position)
{
    RECT thumb = {}, channel = {};
    SendMessageW(trackbar, TBM_GETTHUMBRECT, 0, reinterpret_cast<LPARAM>(&thumb));
    SendMessageW(trackbar, TBM_GETCHANNELRECT, 0, reinterpret_cast<LPARAM>(&channel));
    int low = int(SendMessageW(trackbar, TBM_GETRANGEMIN, 0, 0));
    int high = int(SendMessageW(trackbar, TBM_GETRANGEMAX, 0, 0));
    position = std::clamp(position, low, std::max(low, high));
    int width = thumb.right - thumb.left;
    int span = (channel.right - channel.left) - width;
    int x = channel.left + width / 2 +
            (high > low ? int((long long)(position - low) * span / (high - low)) : 0);
    int y = (thumb.top + thumb.bottom) / 2;
    int from = (thumb.left + thumb.right) / 2;
    SendMessageW(trackbar, WM_LBUTTONDOWN, MK_LBUTTON, Point(from, y));
    SendMessageW(trackbar, WM_MOUSEMOVE, MK_LBUTTON, Point(x, y));
    SendMessageW(trackbar, WM_LBUTTONUP, 0, Point(x, y));
    return int(SendMessageW(trackbar, TBM_GETPOS, 0, 0)) == position;
}

} // namespace

bool PressButton(HWND window, int id)
{
    HWND button = GetDlgItem(window, id);
    if (!button || !IsWindowVisible(button) || !IsWindowEnabled(button))
        return false;
    PostMessageW(button, BM_CLICK, 0, 0);
    return true;
}

void TypeText(HWND edit, const std::string& utf8)
{
    SetFocus(edit);
    SendMessageW(edit, EM_SETSEL, 0, -1);
    PressKey(edit, VK_DELETE);
    for (char16_t ch : usersim::Utf8ToUtf16(utf8))
        SendMessageW(edit, WM_CHAR, WPARAM(ch), 1);
}

bool PerformControlAction(HWND window, const UserAction& action, std::string* failure)
{
    HWND control = GetDlgItem(window, action.id);
    std::string name = "control " + std::to_string(action.id);
    auto fail = [&](const std::string& message) {
        *failure = message;
        return false;
    };
    if (!control)
        return fail(name + " is missing");
    const std::string kind = ClassOf(control);
    const std::string& verb = action.verb;
    if (verb == "expect")
        return usersim::CheckExpectation(control, action, failure);
    if (!IsWindowVisible(control))
        return fail(name + " is hidden");
    if (!IsWindowEnabled(control))
        return fail(name + " is disabled");
    DWORD style = DWORD(GetWindowLongW(control, GWL_STYLE));
    if (verb == "click" || verb == "check" || verb == "uncheck") {
        if (kind == "static" && verb == "click") {
            RECT r;
            GetClientRect(control, &r);
            Click(control, r.right / 2, r.bottom / 2);
            return true;
        }
        DWORD type = style & BS_TYPEMASK;
        if (kind != "button" || type == BS_GROUPBOX)
            return fail(name + " is not a button");
        if (verb != "click") {
            bool radio = type == BS_RADIOBUTTON || type == BS_AUTORADIOBUTTON;
            bool checkable = radio || type == BS_CHECKBOX || type == BS_AUTOCHECKBOX ||
                             type == BS_3STATE || type == BS_AUTO3STATE;
            if (!checkable)
                return fail(name + " is not a check box or radio button");
            bool checked = SendMessageW(control, BM_GETCHECK, 0, 0) == BST_CHECKED;
            if (checked == (verb == "check"))
                return true; // already as wanted: a person would not click
            if (radio && verb == "uncheck")
                return fail(name + " is a radio button, which a click does not uncheck");
        }
        SetFocus(control);
        SendMessageW(control, BM_CLICK, 0, 0);
        return true;
    }
    if (verb == "select" || verb == "select-text") {
        if (kind != "combobox" && kind != "listbox")
            return fail(name + " is not a list");
        int index = FindItem(control, kind == "combobox", action);
        if (index < 0)
            return fail(name + " has no item " +
                        (verb == "select" ? "with data " + std::to_string(action.number)
                                          : "\"" + action.text + "\""));
        PickInList(control, kind == "combobox", index);
        return true;
    }
    if (verb == "type" || verb == "key") {
        HWND edit = control;
        if (kind == "combobox") {
            COMBOBOXINFO info = {};
            info.cbSize = sizeof(info);
            GetComboBoxInfo(control, &info);
            edit = info.hwndItem;
            if (verb == "key" && (action.text == "down" || action.text == "up")) {
                SetFocus(control);
                PressKey(control, action.text == "down" ? VK_DOWN : VK_UP);
                return true;
            }
        } else if (kind != "edit") {
            edit = nullptr;
        }
        if (!edit)
            return fail(name + " takes no typing");
        if (GetWindowLongW(edit, GWL_STYLE) & ES_READONLY)
            return fail(name + " is read-only");
        if (verb == "type") {
            TypeText(edit, action.text);
            return true;
        }
        SetFocus(edit);
        SendMessageW(edit, WM_CHAR, WPARAM(action.number), 1);
        return true;
    }
    if (verb == "spin") {
        if (kind != "msctls_updown32")
            return fail(name + " is not an up-down control");
        HWND buddy = reinterpret_cast<HWND>(SendMessageW(control, UDM_GETBUDDY, 0, 0));
        if (buddy)
            SetFocus(buddy);
        PressArrow(control, action.text == "up", action.number);
        return true;
    }
    if (verb == "slide") {
        if (kind != "msctls_trackbar32")
            return fail(name + " is not a trackbar");
        SetFocus(control);
        return DragThumb(control, int(action.number)) ||
               fail(name + " did not reach position " + std::to_string(action.number));
    }
    return fail("'" + verb + "' is not an action on a control");
}

} // namespace winuser
